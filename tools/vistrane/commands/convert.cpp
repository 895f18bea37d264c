// vistrane convert IN OUT [--grey]: BMP and PNG in both directions.

#include <string>

#include <vistrane/image/image.h>
#include <vistrane/io/image_file.h>

#include "commands.h"
#include "output_file.h"

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

int RunConvert(const Subcommand& command, const ParsedArgs& args) {
    const std::string& input = args.Positionals()[0];
    const std::string& output = args.Positionals()[1];
    if (ImageFileFormatFromPath(output) == ImageFileFormat::Unknown) {
        return UsageError(command,
                          "cannot tell the format of '" + output + "': name it .bmp or .png");
    }
    C_Image image;
    const ImageFileResult loaded = LoadImageFile(input, image);
    if (!loaded.ok) {
        return Failure(command, loaded.error);
    }
    C_Image grey;
    if (args.Has("grey") && !MakeGrey(image, grey)) {
        return Failure(command, "cannot make a grey image of " + std::to_string(image.Width()) +
                                    " x " + std::to_string(image.Height()));
    }
    return SaveOutput(command, output, args.Has("grey") ? grey : image);
}

constexpr OptionSpec kConvertOptions[] = {
    {"grey", nullptr, "write an 8-bit grey image (the mean of blue, green and red)"},
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
