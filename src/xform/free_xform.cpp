#include "xform/free_xform.h"

#include <cassert>
#include <cmath>

#include <vistrane/companion/geom.h>

namespace vistrane::xform {

QuadDistances::QuadDistances(const CPoint (&corners)[4], const CRect& rect)
    : m_Left(rect.left),
      m_Top(rect.top),
      m_Width(static_cast<double>(rect.right) - rect.left - 1),
      m_Height(static_cast<double>(rect.bottom) - rect.top - 1) {
    for (int k = 0; k < 4; ++k) {
        const CPoint& a = corners[k];
        const CPoint& b = corners[(k + 1) % 4];
        m_StartX[k] = a.x;
        m_StartY[k] = a.y;
        m_EdgeX[k] = static_cast<double>(b.x) - a.x;
        m_EdgeY[k] = static_cast<double>(b.y) - a.y;
        const double sq = m_EdgeX[k] * m_EdgeX[k] + m_EdgeY[k] * m_EdgeY[k];
        m_SqLength[k] = sq == 0.0 ? 1.0 : sq;
    }
}

SourcePoint QuadDistances::SourceOf(double x, double y) const {
    double d[4];
    for (int k = 0; k < 4; ++k) {
        // The distance to the edge's line as the length of P - A minus its projection on e.
        const double px = x - m_StartX[k];
        const double py = y - m_StartY[k];
        const double t = (px * m_EdgeX[k] + py * m_EdgeY[k]) / m_SqLength[k];
        const double rx = px - t * m_EdgeX[k];
        const double ry = py - t * m_EdgeY[k];
        d[k] = std::sqrt(rx * rx + ry * ry);
    }
    const double across = d[1] + d[3];
    const double down = d[0] + d[2];
    return {m_Left + (across == 0.0 ? m_Width * 0.5 : m_Width * d[3] / across),
            m_Top + (down == 0.0 ? m_Height * 0.5 : m_Height * d[0] / down)};
}

namespace {

// The rounded percent bilinear rule on one byte of each of the four pixels.
inline BYTE Interpolate100(int s00, int s10, int s01, int s11, int fx, int fy) {
    return static_cast<BYTE>((s00 * (100 - fx) * (100 - fy) + s10 * fx * (100 - fy) +
                              s01 * (100 - fx) * fy + s11 * fx * fy + 5000) /
                             10000);
}

void SampleNearest(const FreeXFormSource& source, const FreeXFormTarget& target, SourcePoint s,
                   int x, int y) {
    const int sx = static_cast<int>(s.x);
    const int sy = static_cast<int>(s.y);
    const CRect& r = source.rect;
    if (sx < r.left || sx >= r.right || sy < r.top || sy >= r.bottom) {
        return;
    }
    *target.mask.Pixel(x, y) = *source.mask.Pixel(sx, sy);
    if (!target.image.Empty()) {
        const BYTE* in = source.image.Pixel(sx, sy);
        BYTE* out = target.image.Pixel(x, y);
        for (int ch = 0; ch < target.image.bytesPerPixel; ++ch) {
            out[ch] = in[ch];
        }
    }
}

void SampleInterpolated(const FreeXFormSource& source, const FreeXFormTarget& target, SourcePoint s,
                        int x, int y) {
    const CRect& r = source.rect;
    const double fx0 = std::floor(s.x);
    const double fy0 = std::floor(s.y);
    const int fx = static_cast<int>((s.x - fx0) * 100.0);
    const int fy = static_cast<int>((s.y - fy0) * 100.0);
    // The distance ratios keep the point within the rectangle's span; the clamps only guard the
    // reads.
    int x0 = static_cast<int>(fx0);
    int y0 = static_cast<int>(fy0);
    x0 = x0 < r.left ? r.left : (x0 > r.right - 1 ? r.right - 1 : x0);
    y0 = y0 < r.top ? r.top : (y0 > r.bottom - 1 ? r.bottom - 1 : y0);
    const int x1 = x0 + 1 < r.right ? x0 + 1 : x0;
    const int y1 = y0 + 1 < r.bottom ? y0 + 1 : y0;
    const image::ConstPixelView& m = source.mask;
    *target.mask.Pixel(x, y) = Interpolate100(*m.Pixel(x0, y0), *m.Pixel(x1, y0), *m.Pixel(x0, y1),
                                              *m.Pixel(x1, y1), fx, fy);
    if (!target.image.Empty()) {
        const image::ConstPixelView& v = source.image;
        const BYTE* p00 = v.Pixel(x0, y0);
        const BYTE* p10 = v.Pixel(x1, y0);
        const BYTE* p01 = v.Pixel(x0, y1);
        const BYTE* p11 = v.Pixel(x1, y1);
        BYTE* out = target.image.Pixel(x, y);
        for (int ch = 0; ch < v.bytesPerPixel; ++ch) {
            out[ch] = Interpolate100(p00[ch], p10[ch], p01[ch], p11[ch], fx, fy);
        }
    }
}

}  // namespace

bool FreeXForm(const FreeXFormSource& source, const FreeXFormTarget& target,
               const CPoint (&corners)[4], bool nearest, const image::Progress* progress) {
    assert(source.mask.bytesPerPixel == 1 && target.mask.bytesPerPixel == 1);
    assert(source.image.Empty() == target.image.Empty());
    assert(target.image.Empty() ||
           (source.image.bytesPerPixel == target.image.bytesPerPixel &&
            target.image.width == target.mask.width && target.image.height == target.mask.height));
    C_Geom geom;
    S_PointInsidePolyData inside;
    geom.PreCalcPointInsidePoly(&inside, corners, 4);
    const QuadDistances distances(corners, source.rect);
    for (int y = 0; y < target.mask.height; ++y) {
        if (!image::GoOn(progress, y)) {
            return false;
        }
        for (int x = 0; x < target.mask.width; ++x) {
            if (!geom.IsPointInsidePolyPreCalc(&inside, CPoint(x, y))) {
                continue;
            }
            const SourcePoint s = distances.SourceOf(x, y);
            if (nearest) {
                SampleNearest(source, target, s, x, y);
            } else {
                SampleInterpolated(source, target, s, x, y);
            }
        }
    }
    return progress == nullptr || progress->Report(target.mask.height);
}

}  // namespace vistrane::xform
