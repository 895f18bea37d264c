// vistrane convert IN OUT [--grey | --truecolor]: BMP and PNG in both directions.

#include <string>

#include <vistrane/image/image.h>
#include <vistrane/io/image_file.h>

#include "commands/commands.h"
#include "common/output_file.h"

namespace vistrane::cli {
namespace {

// The grey level of every pixel, written into a new grey mask: the mean of blue, green and red
// truncated, taken from the pixel of a 24-bit image or from the colour-table entry of an 8-bit
// one.
bool MakeGrey(C_Image& source, C_Image& grey) {
    const long width = source.Width();
    const long height = source.Height();
    if (!grey.CreateMask(width, height)) {
        return false;
    }
    if (source.IsTrueColor()) {
        for (long y = 0; y < height; ++y) {
            const BYTE* from = source.PixelPtr(0, y);
            BYTE* to = grey.PixelPtr(0, y);
            for (long x = 0; x < width; ++x, from += 3) {
                to[x] = static_cast<BYTE>((from[0] + from[1] + from[2]) / 3);
            }
        }
        return true;
    }
    // Every 8-bit image reserves all 256 table entries, so any index has one to read.
    BYTE levels[256];
    const RGBQUAD* colors = source.RGBQs();
    for (int i = 0; i < 256; ++i) {
        levels[i] =
            static_cast<BYTE>((colors[i].rgbBlue + colors[i].rgbGreen + colors[i].rgbRed) / 3);
    }
    for (long y = 0; y < height; ++y) {
        const BYTE* from = source.PixelPtr(0, y);
        BYTE* to = grey.PixelPtr(0, y);
        for (long x = 0; x < width; ++x) {
            to[x] = levels[from[x]];
        }
    }
    return true;
}

// A 24-bit copy of a picture: each pixel takes its colour-table entry.
bool MakeTrueColor(C_Image& source, C_Image& colour) {
    if (source.IsTrueColor()) {
        return colour.Clone(&source) != 0;
    }
    const long width = source.Width();
    const long height = source.Height();
    if (!colour.Create(width, height, 1, nullptr, 0)) {
        return false;
    }
    const RGBQUAD* colors = source.RGBQs();
    for (long y = 0; y < height; ++y) {
        const BYTE* from = source.PixelPtr(0, y);
        BYTE* to = colour.PixelPtr(0, y);
        for (long x = 0; x < width; ++x, to += 3) {
            const RGBQUAD& c = colors[from[x]];
            to[0] = c.rgbBlue, to[1] = c.rgbGreen, to[2] = c.rgbRed;
        }
    }
    return true;
}

int RunConvert(const Subcommand& command, const ParsedArgs& args) {
    const std::string& input = args.Positionals()[0];
    const std::string& output = args.Positionals()[1];
    C_Image image;
    if (const int failed = LoadInput(command, input, image)) {
        return failed;
    }
    if (args.Has("grey") && args.Has("truecolor")) {
        return UsageError(command, "--grey and --truecolor exclude each other");
    }
    C_Image converted;
    const bool convert = args.Has("grey") || args.Has("truecolor");
    if (convert &&
        !(args.Has("grey") ? MakeGrey(image, converted) : MakeTrueColor(image, converted))) {
        return Failure(command, "not enough memory for a picture of " +
                                    std::to_string(image.Width()) + " x " +
                                    std::to_string(image.Height()));
    }
    return SaveOutput(command, output, convert ? converted : image);
}

constexpr OptionSpec kConvertOptions[] = {
    {"grey", nullptr, "write an 8-bit grey image (the mean of blue, green and red)"},
    {"truecolor", nullptr, "write a 24-bit image (a palette picture's entries become its pixels)"},
};

}  // namespace

const Subcommand kConvertCommand = {
    "convert",
    "IN OUT",
    "convert between BMP and PNG",
    "Reads IN (BMP or PNG, recognised by its contents) and writes OUT in the format its\n"
    "extension names (.bmp or .png). Transparency in a PNG is flattened onto white.",
    kConvertOptions,
    2,
    2,
    RunConvert,
};

}  // namespace vistrane::cli
