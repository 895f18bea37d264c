#pragma once

// The contour tracer over a plain byte view, shared by C_ContourBug's members and the tests.
// `inner` points at pixel (0, 0) of the mask area of a working buffer that has one empty
// pixel of border on every side; the next row down is at -scan bytes.

#include <vistrane/path/contour_bug.h>

namespace vistrane::path {

// Writes the working form of a mask: 255 on selected pixels with an unselected (or outside)
// 4-neighbour, 0 everywhere else. `mask` has the same orientation (next row at -maskScan).
// Returns the number of edge pixels.
long MarkEdgePixels(const unsigned char* mask, long maskScan, unsigned char* inner, long scan,
                    long width, long height);

// Scans the working buffer in raster order and traces each untraced edge pixel's contour into
// a sub-path at the head of `path` (contours longer than 3 pixels only).
CB_ContourFollowResult TraceEdgePixels(C_ContourBug* bug, unsigned char* inner, long scan,
                                       long width, long height, C_PointPath* path);

}  // namespace vistrane::path
