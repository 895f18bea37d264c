// vistrane crop IN OUT --rect X,Y,W,H

#include <string>
#include <vector>

#include <vistrane/image/image.h>
#include <vistrane/io/image_file.h>

#include "commands/commands.h"
#include "common/output_file.h"

namespace vistrane::cli {
namespace {

int RunCrop(const Subcommand& command, const ParsedArgs& args) {
    const std::string& input = args.Positionals()[0];
    const std::string& output = args.Positionals()[1];
    if (!args.Has("rect")) {
        return UsageError(command, "give the rectangle to keep with --rect X,Y,W,H");
    }
    const std::string rectText = args.Value("rect");
    std::vector<long> values;
    if (!ParseIntegerList(rectText, 65535, values) || values.size() != 4 || values[2] < 1 ||
        values[3] < 1) {
        return UsageError(command,
                          "'" + rectText + "' is not a rectangle X,Y,W,H with W and H above 0");
    }
    C_Image image;
    if (const int failed = LoadInput(command, input, image)) {
        return failed;
    }
    const CRect rect(values[0], values[1], values[0] + values[2], values[1] + values[3]);
    CRect whole;
    image.Rectangle(&whole);
    CRect kept;
    if (!kept.IntersectRect(rect, whole)) {
        return Failure(command, "the rectangle " + rectText + " lies outside the " +
                                    std::to_string(image.Width()) + " x " +
                                    std::to_string(image.Height()) + " image");
    }
    if (!image.CropTo(rect)) {
        return Failure(command, "not enough memory to crop the image");
    }
    return SaveOutput(command, output, image);
}

constexpr OptionSpec kCropOptions[] = {
    {"rect", "X,Y,W,H", "keep W x H pixels from (X, Y), the top-left being (0, 0)"},
};

}  // namespace

const Subcommand kCropCommand = {
    "crop",
    "IN OUT",
    "keep a rectangle of an image",
    "Reads IN, keeps the part of the picture inside the rectangle and writes OUT (.bmp or\n"
    ".png). A rectangle reaching past the picture is cut to it; one that misses it fails.",
    kCropOptions,
    2,
    2,
    RunCrop,
};

}  // namespace vistrane::cli
