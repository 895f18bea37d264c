#include "path_output.h"

#include <algorithm>
#include <filesystem>
#include <fstream>

#include <vistrane/path/path_svg.h>

namespace vistrane::cli {

PathSummary SummarisePath(const C_PointPath& path) {
    PathSummary summary;
    bool anyPoints = false;
    for (const C_SubPath* sub = path.GetFirstSubPath(); sub != nullptr; sub = sub->GetNext()) {
        const int count = sub->GetCount();
        ++summary.subPaths;
        summary.closed += sub->IsClosed() != 0 ? 1 : 0;
        summary.anchors += count;
        summary.segments += sub->IsClosed() != 0 ? count : std::max(count - 1, 0);
        if (count == 0) {
            continue;
        }
        CRect box;
        sub->GetBoundingRect(&box);
        if (!anyPoints) {
            summary.bounds = box;
            anyPoints = true;
        } else {
            summary.bounds.left = std::min(summary.bounds.left, box.left);
            summary.bounds.top = std::min(summary.bounds.top, box.top);
            summary.bounds.right = std::max(summary.bounds.right, box.right);
            summary.bounds.bottom = std::max(summary.bounds.bottom, box.bottom);
        }
    }
    return summary;
}

void PrintPathSummary(std::FILE* out, const PathSummary& summary) {
    std::fprintf(out, "sub-paths: %d (%d closed)\n", summary.subPaths, summary.closed);
    std::fprintf(out, "anchors:   %ld\n", summary.anchors);
    std::fprintf(out, "segments:  %ld\n", summary.segments);
    if (summary.anchors == 0) {
        std::fprintf(out, "bounds:    none\n");
    } else {
        std::fprintf(out, "bounds:    %d, %d to %d, %d (%d x %d)\n",
                     static_cast<int>(summary.bounds.left), static_cast<int>(summary.bounds.top),
                     static_cast<int>(summary.bounds.right),
                     static_cast<int>(summary.bounds.bottom),
                     static_cast<int>(summary.bounds.right - summary.bounds.left + 1),
                     static_cast<int>(summary.bounds.bottom - summary.bounds.top + 1));
    }
}

std::string WritePathFiles(C_PointPath& path, const std::string& pathFile,
                           const std::string& svgFile) {
    // SaveToFile reports success when it cannot even open the file, so the file's existence is
    // checked here: a stale file of the same name is removed first.
    std::error_code ignored;
    std::filesystem::remove(pathFile, ignored);
    if (path.SaveToFile(pathFile.c_str()) == 0 || !std::filesystem::exists(pathFile)) {
        return "cannot write the path file '" + pathFile + "'";
    }
    if (!svgFile.empty() && SavePointPathAsSvg(path, CRect(), svgFile.c_str()) == 0) {
        return "cannot write the SVG file '" + svgFile + "'";
    }
    return {};
}

}  // namespace vistrane::cli
