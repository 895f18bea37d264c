// vistrane color IN OUT OPERATION [P0 [P1 [P2]]]: one colour operation, its parameters checked
// against the ranges the engine reports.

#include <string>

#include <vistrane/blend/image_luts.h>
#include <vistrane/image/image.h>
#include <vistrane/io/image_file.h>

#include "commands/commands.h"
#include "common/edit_options.h"
#include "common/output_file.h"
#include "common/progress.h"

namespace vistrane::cli {
namespace {

constexpr const char* kOperationNames[kColorOperCount] = {
    "negative", "grayscale", "rgb-offset",   "rgb-gamma",      "contrast",     "gamma",
    "hsv",      "yuv",       "log-contrast", "sineh-contrast", "exp-contrast",
};
constexpr const char* kParamNames[kColorOperCount][3] = {
    {"", "", ""},
    {"", "", ""},
    {"red", "green", "blue"},
    {"red", "green", "blue"},
    {"contrast", "", ""},
    {"gamma", "", ""},
    {"hue", "saturation", "value"},
    {"Y", "U", "V"},
    {"contrast", "", ""},
    {"contrast", "", ""},
    {"contrast", "", ""},
};

int RunColor(const Subcommand& command, const ParsedArgs& args) {
    const std::vector<std::string>& positionals = args.Positionals();
    int type = -1;
    for (int t = 0; t < kColorOperCount; ++t) {
        type = positionals[2] == kOperationNames[t] ? t : type;
    }
    if (type < 0) {
        return UsageError(command, "unknown operation '" + positionals[2] + "'");
    }
    int min[3], max[3], params[3];
    C_Image::GetColorOperParams(static_cast<COLOROPER_TYPE>(type), min, max, params);
    const std::size_t taken =
        static_cast<std::size_t>((max[0] != min[0]) + (max[1] != min[1]) + (max[2] != min[2]));
    if (positionals.size() - 3 > taken) {
        return UsageError(command,
                          positionals[2] + " takes " + std::to_string(taken) + " parameter(s)");
    }
    std::string error;
    for (std::size_t i = 3; i < positionals.size(); ++i) {
        const int p = static_cast<int>(i - 3);
        const std::string what = std::string("the ") + kParamNames[type][p] + " parameter";
        if (!ParseInt(positionals[i], min[p], max[p], what.c_str(), params[p], error)) {
            return UsageError(command, error);
        }
    }
    C_Image image;
    if (const int failed = LoadInput(command, positionals[0], image)) {
        return failed;
    }
    C_Image mask;
    bool hasMask = false;
    if (!LoadMaskOption(args, image, mask, hasMask, error)) {
        return Failure(command, error);
    }
    glb_CreateImageLUTs();
    {
        // The bar goes before the report of what was written.
        ProgressReporter progress("colour");
        image.SetProgressCallback(&ProgressReporter::Report, &progress);
        image.ColorOperation(static_cast<COLOROPER_TYPE>(type), params, hasMask ? &mask : nullptr);
        image.SetProgressCallback(nullptr, nullptr);
    }
    glb_ReleaseImageLUTs();
    return SaveOutput(command, positionals[1], image);
}

constexpr OptionSpec kColorOptions[] = {
    {"mask", "FILE", "an 8-bit grey picture of the same size: how strongly each pixel changes"},
};

}  // namespace

const Subcommand kColorCommand = {
    "color",
    "IN OUT OPERATION [P0 [P1 [P2]]]",
    "apply a colour operation",
    "Operations and their parameter ranges (missing parameters are 0):\n"
    "  negative, grayscale\n"
    "  rgb-offset RED GREEN BLUE    -255..255 each\n"
    "  rgb-gamma RED GREEN BLUE     -99..300 each: gamma (p + 100) / 100\n"
    "  contrast C                   -64..64\n"
    "  gamma G                      -99..300\n"
    "  hsv HUE SAT VALUE            -359..359, -255..255, -255..255\n"
    "  yuv Y U V                    -255..255 each\n"
    "  log-contrast C 0..200, sineh-contrast C 0..99, exp-contrast C 0..5\n"
    "Palette pictures change their colour table only. Put -- before the parameters when one\n"
    "of them is negative: vistrane color in.png out.png hsv -- -30 0 10",
    kColorOptions,
    3,
    6,
    RunColor,
};

}  // namespace vistrane::cli
