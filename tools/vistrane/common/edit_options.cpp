#include "common/edit_options.h"

#include <vistrane/io/image_file.h>

#include <algorithm>
#include <charconv>

#include "common/values.h"

namespace vistrane::cli {
namespace {

constexpr const char* kModeNames[] = {
    "normal",     "dissolve",  "multiply",   "screen",  "overlay",    "softlight",  "hardlight",
    "colordodge", "colorburn", "darken",     "lighten", "rgbdarken",  "rgblighten", "difference",
    "exclusion",  "hue",       "saturation", "color",   "luminosity", "saturate",   "desaturate",
    "filter1",    "filter2",   "filter3",    "filter4", "smudge",
};

}  // namespace

bool BlendModeFromName(const std::string& name, BLENDMODES& mode) {
    for (int m = 0; m <= BLENDMODE_SMUDGE; ++m) {
        if (name == kModeNames[m]) {
            mode = static_cast<BLENDMODES>(m);
            return true;
        }
    }
    return false;
}

std::string BlendModeNames() {
    std::string out;
    for (const char* name : kModeNames) {
        out += out.empty() ? name : std::string(", ") + name;
    }
    return out;
}

const char* BlendModeName(int mode) {
    return mode >= 0 && mode <= BLENDMODE_SMUDGE ? kModeNames[mode] : "normal";
}

bool ParseInt(const std::string& text, int first, int last, const char* what, int& value,
              std::string& error) {
    int parsed = 0;
    const char* end = text.data() + text.size();
    const auto [ptr, ec] = std::from_chars(text.data(), end, parsed);
    if (ec != std::errc() || ptr != end) {
        error = std::string(what) + " must be a whole number, not '" + text + "'";
        return false;
    }
    if (parsed < first || parsed > last) {
        error = std::string(what) + " must be in " + std::to_string(first) + ".." +
                std::to_string(last) + ", not " + text;
        return false;
    }
    value = parsed;
    return true;
}

bool LoadMaskOption(const ParsedArgs& args, C_Image& image, C_Image& mask, bool& hasMask,
                    std::string& error) {
    hasMask = args.Has("mask");
    if (!hasMask) {
        return true;
    }
    error = LoadMaskFor(args.Value("mask"), image, mask);
    return error.empty();
}

bool RenderHistogramPlot(const S_Histogram& h, C_Image& plot) {
    constexpr long kBand = 100;
    if (plot.Create(256, 4 * kBand, 1, nullptr, 0) == 0) {
        return false;
    }
    plot.FillWithColorRef(RGB(255, 255, 255));
    const LONG* bands[4] = {h.gray, h.red, h.green, h.blue};
    const BYTE inks[4][3] = {{80, 80, 80}, {30, 30, 200}, {30, 160, 30}, {200, 60, 30}};
    for (int b = 0; b < 4; ++b) {
        const LONG highest = std::max<LONG>(1, *std::max_element(bands[b], bands[b] + 256));
        for (int i = 0; i < 256; ++i) {
            const long bar =
                static_cast<long>(static_cast<long long>(bands[b][i]) * (kBand - 4) / highest);
            for (long k = 0; k < bar; ++k) {
                std::copy(inks[b], inks[b] + 3, plot.PixelPtr(i, (b + 1) * kBand - 1 - k));
            }
        }
    }
    return true;
}

bool LoadPictureAndMask(const ParsedArgs& args, C_Image& image, C_Image& mask, bool& hasMask,
                        std::string& error) {
    const ImageFileResult loaded = LoadImageFile(args.Positionals()[0], image);
    if (!loaded.ok) {
        error = loaded.error;
        return false;
    }
    return LoadMaskOption(args, image, mask, hasMask, error);
}

}  // namespace vistrane::cli
