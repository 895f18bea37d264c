#pragma once

// The four-corner free transform over pixel views: a source rectangle of a mask (and
// optionally of an image) mapped onto a quadrilateral.
//
// The mapping is neither projective nor bilinear. A destination point P inside the
// quadrilateral measures its perpendicular distance d1..d4 to the lines of the top, right,
// bottom and left edges, and reads the source at
//   x = left + W * d4 / (d2 + d4),   y = top + H * d1 / (d1 + d3)
// with W = right - left - 1 and H = bottom - top - 1, so the edges stay straight and the source
// is spread evenly between opposite edges. No matrix is solved; each pixel costs four
// projections, four square roots and two divisions.

#include <vistrane/platform/geometry.h>

#include "image/pixel_view.h"
#include "image/progress.h"

namespace vistrane::xform {

struct FreeXFormSource {
    image::ConstPixelView mask;   // 1 byte a pixel
    image::ConstPixelView image;  // empty when only the mask is transformed
    CRect rect;                   // inside both views, right and bottom exclusive, not empty
};

// The destination: a mask and, with a source image, an image of the same bytes per pixel as
// the source image, both the size of the corners' bounding box and already cleared.
struct FreeXFormTarget {
    image::PixelView mask;
    image::PixelView image;
};

// Where a destination point reads the source, as real coordinates.
struct SourcePoint {
    double x;
    double y;
};

// The per-edge data of the distance rule for corners given relative to the box's top-left:
// edge k runs from corner k to corner k + 1 (wrapping).
class QuadDistances {
  public:
    QuadDistances(const CPoint (&corners)[4], const CRect& rect);
    SourcePoint SourceOf(double x, double y) const;

  private:
    double m_StartX[4];
    double m_StartY[4];
    double m_EdgeX[4];
    double m_EdgeY[4];
    double m_SqLength[4];  // 1.0 for a zero-length edge, so nothing divides by zero
    double m_Left;
    double m_Top;
    double m_Width;   // W
    double m_Height;  // H
};

// Transforms every pixel of the box. Points outside the quadrilateral (C_Geom's half-open
// rule: left and top edges in, right and bottom out) are left as they are. Nearest: both
// coordinates truncated; a position outside the rectangle counts as outside. Interpolating:
// (s00 (100 - fx)(100 - fy) + s10 fx (100 - fy) + s01 (100 - fx) fy + s11 fx fy + 5000) / 10000
// with fx, fy the truncated percent fractions; neighbours past the rectangle's last column or
// row repeat it. False when `progress` says the host cancelled (the target is then part-done).
bool FreeXForm(const FreeXFormSource& source, const FreeXFormTarget& target,
               const CPoint (&corners)[4], bool nearest, const image::Progress* progress = nullptr);

}  // namespace vistrane::xform
