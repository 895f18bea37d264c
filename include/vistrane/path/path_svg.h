#pragma once

// SVG previews of paths, so that a person can look at any path: each sub-path becomes one
// <path> element of cubic segments ("M x y C ..."), closed sub-paths end with "Z". Outlines
// are stroked, not filled, since holes are sub-paths of their own. Coordinates are the
// integer image pixels of the path.

#include <string>

#include <vistrane/export.h>
#include <vistrane/path/point_path.h>
#include <vistrane/platform/geometry.h>

// The SVG document of `path` over `viewBox` (right and bottom exclusive). An empty viewBox
// means the path's own bounding rectangle with a one-pixel margin.
VISTRANE_API std::string PointPathToSvg(const C_PointPath& path, const CRect& viewBox);
// Writes that document to a file; 1 on success, 0 when the file cannot be written.
VISTRANE_API int SavePointPathAsSvg(const C_PointPath& path, const CRect& viewBox,
                                    const char* fileName);
