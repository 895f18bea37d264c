#pragma once

// What the path subcommands and the demo share: a path's summary in words and the writing of a
// path file with its optional SVG preview.

#include <cstdio>
#include <string>

#include <vistrane/path/point_path.h>
#include <vistrane/platform/geometry.h>

namespace vistrane::cli {

struct PathSummary {
    int subPaths = 0;
    int closed = 0;
    long anchors = 0;
    long segments = 0;  // a closed sub-path of n anchors has n segments, an open one n - 1
    CRect bounds;       // right and bottom inclusive; empty when no sub-path has points
};

PathSummary SummarisePath(const C_PointPath& path);

// Lines "sub-paths: ...", "anchors: ...", "segments: ..." and "bounds: ..." on `out`.
void PrintPathSummary(std::FILE* out, const PathSummary& summary);

// Writes `path` to the path file `pathFile` and, unless `svgFile` is empty, its SVG preview.
// Returns an empty string, or a sentence naming the file that could not be written.
std::string WritePathFiles(C_PointPath& path, const std::string& pathFile,
                           const std::string& svgFile);

}  // namespace vistrane::cli
