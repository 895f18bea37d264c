// vistrane path FILE.path [--svg FILE.svg]

#include <cstdio>
#include <filesystem>
#include <string>

#include <vistrane/path/path_svg.h>
#include <vistrane/path/point_path.h>

#include "commands/commands.h"
#include "common/path_output.h"

namespace vistrane::cli {
namespace {

int RunPath(const Subcommand& command, const ParsedArgs& args) {
    const std::string& input = args.Positionals()[0];
    // LoadFromFile answers 0 alike for a missing file and a damaged one; the message tells
    // them apart.
    std::error_code error;
    if (!std::filesystem::is_regular_file(input, error)) {
        return Failure(command, "cannot open '" + input + "': no such file");
    }
    C_PointPath path;
    if (!path.LoadFromFile(input.c_str(), 0)) {
        return Failure(command,
                       "'" + input + "' is not a path file, holds no sub-path or is damaged");
    }
    PrintPathSummary(stdout, SummarisePath(path));
    const std::string svg = args.Value("svg");
    if (!svg.empty() && SavePointPathAsSvg(path, CRect(), svg.c_str()) == 0) {
        return Failure(command, "cannot write the SVG file '" + svg + "'");
    }
    return kExitSuccess;
}

constexpr OptionSpec kPathOptions[] = {
    {"svg", "FILE.svg", "also write an SVG preview of the path"},
};

}  // namespace

const Subcommand kPathCommand = {
    "path",
    "FILE.path",
    "describe a path file: sub-paths, anchors, segments and bounds",
    "Reads a path file and prints how many sub-paths (and how many closed), anchors and\n"
    "segments it holds and the box round its curves (pixels, right and bottom inclusive).",
    kPathOptions,
    1,
    1,
    RunPath,
};

}  // namespace vistrane::cli
