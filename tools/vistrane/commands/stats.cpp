// vistrane stats IN: pixel count, average colour, distinct colours and the histogram summary;
// --plot draws the four histograms as a picture.

#include <cstdio>
#include <string>
#include <vector>

#include <vistrane/image/image.h>
#include <vistrane/io/image_file.h>

#include "commands/commands.h"
#include "common/output_file.h"
#include "common/edit_options.h"

namespace vistrane::cli {
namespace {

// Distinct colours (24-bit) or table indices among the pixels the mask selects at all.
unsigned long CountColorsUnderMask(const C_Image& image, const C_Image& mask) {
    std::vector<bool> seen(1UL << 24);
    unsigned long count = 0;
    for (long y = 0; y < image.Height(); ++y) {
        for (long x = 0; x < image.Width(); ++x) {
            if (mask.GetPixelPalInd(x, y) == 0) {
                continue;
            }
            const unsigned long key = image.IsTrueColor() ? image.GetPixelColorRef(x, y) & 0xFFFFFF
                                                          : image.GetPixelPalInd(x, y);
            if (!seen[key]) {
                seen[key] = true;
                ++count;
            }
        }
    }
    return count;
}

int RunStats(const Subcommand& command, const ParsedArgs& args) {
    C_Image image;
    if (const int failed = LoadInput(command, args.Positionals()[0], image)) {
        return failed;
    }
    C_Image mask;
    bool hasMask = false;
    std::string error;
    if (!LoadMaskOption(args, image, mask, hasMask, error)) {
        return Failure(command, error);
    }
    S_Histogram h;
    image.ComputeHistogram(&h, hasMask ? &mask : nullptr);
    const unsigned long average = image.CalcAverageColor(hasMask ? &mask : nullptr);
    unsigned long distinct = 0;
    unsigned long usage[256];
    if (hasMask) {
        distinct = CountColorsUnderMask(image, mask);
    } else if (image.CountColors(&distinct, usage) == 0) {
        return Failure(command, "not enough memory to count the colours");
    }
    std::printf("size             %ld x %ld, %d bits\n", image.Width(), image.Height(),
                image.BitCount());
    std::printf("pixels counted   %lu\n", static_cast<unsigned long>(h.counted));
    std::printf("average colour   #%02X%02X%02X\n", GetRValue(average), GetGValue(average),
                GetBValue(average));
    std::printf("distinct colours %lu%s\n", distinct, image.IsTrueColor() ? "" : " (indices used)");
    const char* names[4] = {"gray", "red", "green", "blue"};
    std::printf("channel  median     mean  std.dev\n");
    for (int c = 0; c < 4; ++c) {
        std::printf("%-7s %7ld %8.2f %8.2f\n", names[c], static_cast<long>(h.median[c]), h.mean[c],
                    h.deviation[c]);
    }
    if (args.Has("plot")) {
        C_Image plot;
        if (!RenderHistogramPlot(h, plot)) {
            return Failure(command, "cannot make the plot picture");
        }
        const ImageFileResult saved = SaveImageFile(args.Value("plot"), plot);
        if (!saved.ok) {
            return Failure(command, saved.error);
        }
    }
    return kExitSuccess;
}

constexpr OptionSpec kStatsOptions[] = {
    {"mask", "FILE", "count only where this same-size picture is not black"},
    {"plot", "FILE", "draw the grey, red, green and blue histograms into FILE (.png or .bmp)"},
};

}  // namespace

const Subcommand kStatsCommand = {
    "stats",
    "IN",
    "print histogram figures, the average colour and the number of colours",
    "The grey histogram is the average of the three channel histograms. Palette pictures\n"
    "count the red of each entry in the blue histogram as well, as the engine does.",
    kStatsOptions,
    1,
    1,
    RunStats,
};

}  // namespace vistrane::cli
