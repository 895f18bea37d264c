// vistrane border IN OUT --margins N|L,T,R,B [--color RRGGBB]

#include <string>
#include <vector>

#include <vistrane/image/image.h>
#include <vistrane/io/image_file.h>

#include "commands/commands.h"
#include "common/output_file.h"
#include "common/values.h"

namespace vistrane::cli {
namespace {

int RunBorder(const Subcommand& command, const ParsedArgs& args) {
    const std::string& input = args.Positionals()[0];
    const std::string& output = args.Positionals()[1];
    if (!args.Has("margins")) {
        return UsageError(command, "give the border widths with --margins N or --margins L,T,R,B");
    }
    const std::string marginsText = args.Value("margins");
    std::vector<long> m;
    if (!ParseIntegerList(marginsText, 65535, m) || (m.size() != 1 && m.size() != 4)) {
        return UsageError(command, "'" + marginsText + "' is not N or L,T,R,B (-65535 to 65535)");
    }
    if (m.size() == 1) {
        m.assign(4, m[0]);
    }
    unsigned long color = 0;
    const std::string colorText = args.Value("color");
    if (args.Has("color") && !ParseColor(colorText, color)) {
        return UsageError(command, ColorError(colorText));
    }
    C_Image image;
    if (const int failed = LoadInput(command, input, image)) {
        return failed;
    }
    if (args.Has("color")) {
        if (image.IsTrueColor()) {
            image.SetBackTrueColor(color);
        } else {
            // A palette image borders in its nearest colour (low byte of PALETTEINDEX).
            image.SetBackPalInd(static_cast<unsigned char>(image.GetNearestColorRef(color)));
        }
    }
    const long long width = image.Width() + m[0] + m[2];
    const long long height = image.Height() + m[1] + m[3];
    if (width < 1 || height < 1) {
        return Failure(command, "the margins " + marginsText + " leave nothing of the image");
    }
    if (!image.AddBorders(m[0], m[1], m[2], m[3])) {
        return Failure(command, "not enough memory to add the borders");
    }
    return SaveOutput(command, output, image);
}

constexpr OptionSpec kBorderOptions[] = {
    {"margins", "N|L,T,R,B", "border widths: one for every side, or left, top, right, bottom"},
    {"color", "[#]RRGGBB", "the border colour in hexadecimal (default: the background colour)"},
};

}  // namespace

const Subcommand kBorderCommand = {
    "border",
    "IN OUT",
    "add borders around an image",
    "Reads IN, grows the canvas by the margins, fills the new pixels with the background\n"
    "colour and writes OUT (.bmp or .png). A palette image takes the palette entry nearest to\n"
    "--color. Negative margins cut the picture instead.",
    kBorderOptions,
    2,
    2,
    RunBorder,
};

}  // namespace vistrane::cli
