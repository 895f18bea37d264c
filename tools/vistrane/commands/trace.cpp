// vistrane trace MASK --out FILE.path [--tolerance T] [--svg FILE.svg] [--invert]

#include <charconv>
#include <cmath>
#include <cstdio>
#include <string>

#include <vistrane/image/image.h>
#include <vistrane/io/image_file.h>
#include <vistrane/path/point_path.h>

#include "commands/commands.h"
#include "common/output_file.h"
#include "common/path_output.h"

namespace vistrane::cli {
namespace {

// A whole or decimal number and nothing else.
bool ParseNumber(const std::string& text, double& value) {
    const char* end = text.data() + text.size();
    const auto parsed = std::from_chars(text.data(), end, value);
    return parsed.ec == std::errc() && parsed.ptr == end && std::isfinite(value);
}

// The engine traces grey masks; a colour or palette image is read as the grey level of each
// pixel (the mean of blue, green and red, as `convert --grey` makes it). Non-zero is selected,
// or zero with `invert` (dark ink on white paper).
bool MakeSelection(C_Image& image, bool invert, C_Image& mask) {
    const long width = image.Width();
    const long height = image.Height();
    if (!mask.CreateMask(width, height)) {
        return false;
    }
    BYTE greyOfIndex[256];
    const RGBQUAD* colors = image.RGBQs();
    const long nColors = static_cast<long>(image.NColors());
    for (int i = 0; i < 256; ++i) {
        greyOfIndex[i] = image.IsMask() || i >= nColors
                             ? static_cast<BYTE>(i)
                             : static_cast<BYTE>(
                                   (colors[i].rgbBlue + colors[i].rgbGreen + colors[i].rgbRed) / 3);
    }
    const bool trueColor = image.IsTrueColor() != 0;
    for (long y = 0; y < height; ++y) {
        const BYTE* from = image.PixelPtr(0, y);
        BYTE* to = mask.PixelPtr(0, y);
        for (long x = 0; x < width; ++x) {
            const int grey = trueColor ? (from[3 * x] + from[3 * x + 1] + from[3 * x + 2]) / 3
                                       : greyOfIndex[from[x]];
            to[x] = (grey != 0) != invert ? 255 : 0;
        }
    }
    return true;
}

int RunTrace(const Subcommand& command, const ParsedArgs& args) {
    const std::string& input = args.Positionals()[0];
    if (!args.Has("out")) {
        return UsageError(command, "give the path file to write with --out FILE.path");
    }
    double tolerance = 1.0;
    if (args.Has("tolerance") && !ParseNumber(args.Value("tolerance"), tolerance)) {
        // Built by appending: GCC 12 at -O3 warns falsely about "'" + std::string + "..." here.
        std::string message = "'";
        message += args.Value("tolerance");
        message += "' is not a number of pixels";
        return UsageError(command, message);
    }
    if (tolerance < 0.5 || tolerance > 10.0) {
        return UsageError(
            command, "--tolerance " + args.Value("tolerance") + " is outside 0.5 to 10 pixels");
    }
    C_Image image;
    if (const int failed = LoadInput(command, input, image)) {
        return failed;
    }
    C_Image mask;
    if (!MakeSelection(image, args.Has("invert"), mask)) {
        return Failure(command, "not enough memory for a mask of " + input);
    }
    C_PointPath path;
    if (!path.CreateFromMask(&mask, CSize(), tolerance, 0)) {
        return Failure(command, "'" + input + "' selects no pixel" +
                                    (args.Has("invert") ? "" : " (try --invert for dark ink)"));
    }
    const std::string written = WritePathFiles(path, args.Value("out"), args.Value("svg"));
    if (!written.empty()) {
        return Failure(command, written);
    }
    PrintPathSummary(stdout, SummarisePath(path));
    return kExitSuccess;
}

constexpr OptionSpec kTraceOptions[] = {
    {"out", "FILE.path", "the path file to write (required)"},
    {"tolerance", "T", "how far in pixels a curve may stray from the outline (0.5 to 10, 1)"},
    {"svg", "FILE.svg", "also write an SVG preview of the outlines"},
    {"invert", nullptr, "select the zero (dark) pixels instead of the non-zero ones"},
};

}  // namespace

const Subcommand kTraceCommand = {
    "trace",
    "MASK",
    "trace the outlines of a selection mask into a path of Bezier curves",
    "Reads MASK (.bmp or .png): a grey mask in which every non-zero pixel is selected, or any\n"
    "other image read as its grey levels. Every outline of the selection, holes included,\n"
    "becomes a sub-path fitted with cubic curves within the tolerance, closed when it keeps\n"
    "three or more anchors (a small outline may fit as one looping curve between two), and\n"
    "the path is written to the path file (and as SVG with --svg). Prints the counts and the\n"
    "bounds.",
    kTraceOptions,
    1,
    1,
    RunTrace,
};

}  // namespace vistrane::cli
