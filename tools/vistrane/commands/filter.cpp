// vistrane filter IN OUT: a 3x3, 5x5 or 7x7 integer convolution laid over the picture in a blend
// mode, at an opacity, through an optional mask.

#include <sstream>
#include <string>
#include <vector>

#include <vistrane/blend/image_luts.h>
#include <vistrane/image/image.h>
#include <vistrane/io/image_file.h>

#include "commands/commands.h"
#include "common/edit_options.h"
#include "common/output_file.h"
#include "common/progress.h"

namespace vistrane::cli {
namespace {

struct Preset {
    const char* name;
    std::vector<int> weights;
    int divisor;
    int offset;
};

const Preset kPresets[] = {
    {"blur", {1, 1, 1, 1, 1, 1, 1, 1, 1}, 9, 0},
    {"blur7", std::vector<int>(FILTER_KERNEL_TAPS, 1), FILTER_KERNEL_TAPS, 0},
    {"sharpen", {0, -1, 0, -1, 5, -1, 0, -1, 0}, 1, 0},
    {"edge", {-1, -1, -1, -1, 8, -1, -1, -1, -1}, 1, 0},
    {"emboss", {-2, -1, 0, -1, 1, 1, 0, 1, 2}, 1, 0},
};

// Writes an n x n kernel (n = 3, 5 or 7) into the middle of the 7 x 7 field.
void Centre(const std::vector<int>& weights, int* field) {
    const int n = weights.size() == 9 ? 3 : (weights.size() == 25 ? 5 : 7);
    const int margin = (7 - n) / 2;
    std::fill(field, field + FILTER_KERNEL_TAPS, 0);
    for (int r = 0; r < n; ++r) {
        for (int c = 0; c < n; ++c) {
            field[(r + margin) * 7 + c + margin] = weights[r * n + c];
        }
    }
}

bool ParseKernel(const std::string& text, std::vector<int>& weights, std::string& error) {
    std::stringstream stream(text);
    std::string item;
    while (std::getline(stream, item, ',')) {
        int w = 0;
        if (!ParseInt(item, -65536, 65536, "a kernel weight", w, error)) {
            return false;
        }
        weights.push_back(w);
    }
    if (weights.size() != 9 && weights.size() != 25 && weights.size() != FILTER_KERNEL_TAPS) {
        error = "--kernel needs 9, 25 or 49 comma-separated weights, not " +
                std::to_string(weights.size());
        return false;
    }
    return true;
}

int RunFilter(const Subcommand& command, const ParsedArgs& args) {
    std::vector<int> weights;
    int divisor = 1, offset = 0, opacity = 255, option = 50;
    std::string error;
    if (args.Has("kernel")) {
        if (!ParseKernel(args.Value("kernel"), weights, error)) {
            return UsageError(command, error);
        }
    } else {
        const std::string name = args.Value("preset", "blur");
        const Preset* preset = nullptr;
        for (const Preset& p : kPresets) {
            preset = name == p.name ? &p : preset;
        }
        if (preset == nullptr) {
            return UsageError(command,
                              "unknown preset '" + name + "' (blur, blur7, sharpen, edge, emboss)");
        }
        weights = preset->weights;
        divisor = preset->divisor;
        offset = preset->offset;
    }
    if ((args.Has("divisor") &&
         !ParseInt(args.Value("divisor"), -65536, 65536, "--divisor", divisor, error)) ||
        (args.Has("offset") &&
         !ParseInt(args.Value("offset"), -65536, 65536, "--offset", offset, error)) ||
        (args.Has("opacity") &&
         !ParseInt(args.Value("opacity"), 0, 255, "--opacity", opacity, error)) ||
        (args.Has("option") &&
         !ParseInt(args.Value("option"), 0, 100, "--option", option, error))) {
        return UsageError(command, error);
    }
    if (divisor == 0) {
        return UsageError(command, "--divisor must not be 0");
    }
    BLENDMODES mode = BLENDMODE_NORMAL;
    if (args.Has("mode") && !BlendModeFromName(args.Value("mode"), mode)) {
        return UsageError(command, "unknown mode '" + args.Value("mode") + "'");
    }
    const std::string typeName = args.Value("type", "per-channel");
    const FILTER_TYPE type = typeName == "gray"         ? FILTER_GRAY
                             : typeName == "brightness" ? FILTER_BRIGHTNESS
                                                        : FILTER_PER_CHANNEL;
    if (typeName != "gray" && typeName != "brightness" && typeName != "per-channel") {
        return UsageError(command, "--type is per-channel, gray or brightness");
    }
    C_Image image;
    C_Image mask;
    bool hasMask = false;
    if (!LoadPictureAndMask(args, image, mask, hasMask, error)) {
        return Failure(command, error);
    }
    // Greying a colour picture to filter it would be doing something else than asked.
    if (!image.CanEditTrueColor()) {
        return Failure(command, "a palette image of " + std::to_string(image.NColors()) +
                                    " colours cannot be filtered: convert it to 24-bit first "
                                    "(vistrane convert --truecolor)");
    }
    int field[FILTER_KERNEL_TAPS];
    Centre(weights, field);
    glb_CreateImageLUTs();
    int done = 0;
    {
        // The bar goes before the report of what was written.
        ProgressReporter progress("filtering");
        image.SetProgressCallback(&ProgressReporter::Report, &progress);
        done = image.FilterImage(mode, static_cast<unsigned char>(opacity), option, 0, 0,
                                 image.Width(), image.Height(), hasMask ? &mask : nullptr, field,
                                 offset, divisor, type, nullptr, 0, 0);
        image.SetProgressCallback(nullptr, nullptr);
    }
    glb_ReleaseImageLUTs();
    if (done == 0) {
        return Failure(command, "the filter could not run on this " +
                                    std::to_string(image.Width()) + " x " +
                                    std::to_string(image.Height()) + " picture");
    }
    return SaveOutput(command, args.Positionals()[1], image);
}

constexpr OptionSpec kFilterOptions[] = {
    {"preset", "NAME", "blur (default), blur7, sharpen, edge or emboss"},
    {"kernel", "W,W,...", "9, 25 or 49 integer weights, row by row (3x3, 5x5 or 7x7)"},
    {"divisor", "N", "the weighted sum is divided by N (default 1, or the preset's)"},
    {"offset", "N", "added after the division (default 0)"},
    {"type", "TYPE", "per-channel (default), gray or brightness"},
    {"mode", "MODE", "blend mode of the result over the picture (default normal)"},
    {"opacity", "0..255", "strength of the result (default 255)"},
    {"option", "0..100", "the dissolve percentage (default 50)"},
    {"mask", "FILE", "a picture of the same size whose grey levels scale the opacity"},
};

}  // namespace

const Subcommand kFilterCommand = {
    "filter",
    "IN OUT",
    "convolve with a preset or an integer kernel, blended over the picture",
    "Edges repeat the picture's border pixels. Palette pictures are turned grey first.\n"
    "Modes: normal, dissolve, multiply, screen, overlay, softlight, hardlight, colordodge,\n"
    "colorburn, darken, lighten, difference, exclusion, hue, saturation, color, luminosity\n"
    "(the others act as normal here).",
    kFilterOptions,
    2,
    2,
    RunFilter,
};

}  // namespace vistrane::cli
