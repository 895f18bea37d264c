// vistrane stats IN: pixel count, average colour, distinct colours and the histogram summary;
// --plot draws the four histograms as a picture.

#include <algorithm>
#include <cstdio>
#include <string>

#include <vistrane/image/image.h>
#include <vistrane/io/image_file.h>

#include "commands.h"
#include "edit_options.h"

namespace vistrane::cli {
namespace {

constexpr int kPlotBandHeight = 100;

// Four bands, grey, red, green and blue from the top, each bin a column scaled to the band's
// highest bin.
bool Plot(const S_Histogram& h, const std::string& path, std::string& error) {
    C_Image plot;
    if (plot.Create(256, 4 * kPlotBandHeight, 1, nullptr, 0) == 0) {
        error = "cannot make the plot picture";
        return false;
    }
    plot.FillWithColorRef(RGB(255, 255, 255));
    const LONG* bands[4] = {h.gray, h.red, h.green, h.blue};
    const unsigned long inks[4] = {RGB(80, 80, 80), RGB(200, 30, 30), RGB(30, 160, 30),
                                   RGB(30, 60, 200)};
    for (int b = 0; b < 4; ++b) {
        const LONG highest = std::max<LONG>(1, *std::max_element(bands[b], bands[b] + 256));
        for (int i = 0; i < 256; ++i) {
            const long bar = static_cast<long>(static_cast<long long>(bands[b][i]) *
                                               (kPlotBandHeight - 4) / highest);
            for (long k = 0; k < bar; ++k) {
                BYTE* p = plot.PixelPtr(i, (b + 1) * kPlotBandHeight - 1 - k);
                p[0] = GetBValue(inks[b]), p[1] = GetGValue(inks[b]), p[2] = GetRValue(inks[b]);
            }
        }
    }
    const ImageFileResult saved = SaveImageFile(path, plot);
    error = saved.error;
    return saved.ok;
}

int RunStats(const Subcommand& command, const ParsedArgs& args) {
    C_Image image;
    const ImageFileResult loaded = LoadImageFile(args.Positionals()[0], image);
    if (!loaded.ok) {
        return Failure(command, loaded.error);
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
    if (image.CountColors(&distinct, usage) == 0) {
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
    if (args.Has("plot") && !Plot(h, args.Value("plot"), error)) {
        return Failure(command, error);
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
