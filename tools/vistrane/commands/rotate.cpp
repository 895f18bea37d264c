// vistrane rotate IN OUT (--degrees D | --left | --right | --flip h|v)

#include <cmath>
#include <cstdlib>
#include <string>

#include <vistrane/image/image.h>
#include <vistrane/io/image_file.h>

#include "commands/commands.h"
#include "common/output_file.h"
#include "common/progress.h"

namespace vistrane::cli {
namespace {

int RunRotate(const Subcommand& command, const ParsedArgs& args) {
    const std::string& input = args.Positionals()[0];
    const std::string& output = args.Positionals()[1];
    const int chosen = int{args.Has("degrees")} + int{args.Has("left")} + int{args.Has("right")} +
                       int{args.Has("flip")};
    if (chosen != 1) {
        return UsageError(command, "give exactly one of --degrees, --left, --right and --flip");
    }
    double degrees = 0;
    if (args.Has("degrees")) {
        const std::string text = args.Value("degrees");
        char* end = nullptr;
        degrees = std::strtod(text.c_str(), &end);
        if (text.empty() || *end != '\0' || !std::isfinite(degrees) || std::fabs(degrees) > 1e6) {
            return UsageError(command, "'" + text + "' is not an angle in degrees");
        }
    }
    const std::string flip = args.Value("flip");
    if (args.Has("flip") && flip != "h" && flip != "v") {
        return UsageError(command, "--flip takes h or v, not '" + flip + "'");
    }
    C_Image image;
    if (const int failed = LoadInput(command, input, image)) {
        return failed;
    }
    int done = 1;
    if (args.Has("left")) {
        done = image.RotateLeft();
    } else if (args.Has("right")) {
        done = image.RotateRight();
    } else if (flip == "h") {
        image.FlipHorizontal();
    } else if (flip == "v") {
        image.FlipVertical();
    } else {
        // Whole turns beyond one are taken off first: the engine keeps 360 as two quarter
        // turns, a half turn and a zero shear.
        ProgressReporter progress("rotating");
        image.SetProgressCallback(&ProgressReporter::Report, &progress);
        done = image.Rotate1To359Double(std::fmod(degrees, 360.0));
        image.SetProgressCallback(nullptr, nullptr);
    }
    if (!done) {
        return Failure(command, "not enough memory to rotate the image");
    }
    return SaveOutput(command, output, image);
}

constexpr OptionSpec kRotateOptions[] = {
    {"degrees", "D", "turn clockwise by D degrees (any value; negative turns counter-clockwise)"},
    {"left", nullptr, "a quarter turn counter-clockwise"},
    {"right", nullptr, "a quarter turn clockwise"},
    {"flip", "h|v", "mirror left-right (h) or top-bottom (v)"},
};

}  // namespace

const Subcommand kRotateCommand = {
    "rotate",
    "IN OUT",
    "rotate by any angle, turn a quarter, or flip",
    "Reads IN, turns or mirrors it and writes OUT (.bmp or .png). Quarter and half turns are\n"
    "exact; other angles shear the picture three times with 12-bit blending (24-bit and grey\n"
    "images) or copy indices (palette images), growing the canvas, and fill what the turn\n"
    "uncovers with the image's background colour.",
    kRotateOptions,
    2,
    2,
    RunRotate,
};

}  // namespace vistrane::cli
