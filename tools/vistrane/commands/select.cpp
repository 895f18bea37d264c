// vistrane select IN OUT (--at X,Y | --grow T --mask MASK | --color RRGGBB) [--tolerance T]
//                        [--match MODE] [--value V]

#include <string>

#include <vistrane/image/image.h>
#include <vistrane/io/image_file.h>

#include "commands/commands.h"
#include "common/output_file.h"
#include "common/values.h"

namespace vistrane::cli {
namespace {

int RunSelect(const Subcommand& command, const ParsedArgs& args) {
    const std::string& input = args.Positionals()[0];
    const std::string& output = args.Positionals()[1];
    const int chosen = int{args.Has("at")} + int{args.Has("grow")} + int{args.Has("color")};
    if (chosen != 1) {
        return UsageError(command, "give exactly one of --at, --grow and --color");
    }
    if (args.Has("grow") != args.Has("mask")) {
        return UsageError(command, args.Has("grow") ? "--grow needs the selection to grow (--mask)"
                                                    : "--mask is only read with --grow");
    }
    if (args.Has("grow") && args.Has("tolerance")) {
        return UsageError(command, "--grow takes the tolerance itself; leave out --tolerance");
    }
    const std::string toleranceText =
        args.Has("grow") ? args.Value("grow") : args.Value("tolerance", "32");
    long tolerance = 0;
    if (!ParseNumber(toleranceText, 0, 255, tolerance)) {
        return UsageError(command, Quote(toleranceText) + " is not a tolerance from 0 to 255");
    }
    COLOR_MATCH_MODE mode = COLOR_MATCH_RGB;
    const std::string modeText = args.Value("match", "rgb");
    if (!ParseMatchMode(modeText, mode)) {
        return UsageError(command,
                          "--match takes rgb, hue, intensity or any, not " + Quote(modeText));
    }
    long value = 255;
    if (!ParseNumber(args.Value("value", "255"), 1, 255, value)) {
        return UsageError(command, Quote(args.Value("value")) + " is not an opacity from 1 to 255");
    }
    CPoint seed;
    if (args.Has("at") && !ParsePoint(args.Value("at"), seed)) {
        return UsageError(command, Quote(args.Value("at")) + " is not a point X,Y");
    }
    unsigned long colour = 0;
    if (args.Has("color") && !ParseColor(args.Value("color"), colour)) {
        return UsageError(command, ColorError(args.Value("color")));
    }

    C_Image image;
    if (const int failed = LoadInput(command, input, image)) {
        return failed;
    }
    C_Image mask;
    if (args.Has("grow")) {
        const std::string problem = LoadMaskFor(args.Value("mask"), image, mask);
        if (!problem.empty()) {
            return Failure(command, problem);
        }
    } else if (!mask.CreateMask(image.Width(), image.Height())) {
        return Failure(command, "not enough memory for a mask of the image's size");
    }

    if (args.Has("at")) {
        if (seed.x < 0 || seed.y < 0 || seed.x >= image.Width() || seed.y >= image.Height()) {
            return Failure(command, "the point " + args.Value("at") + " lies outside the " +
                                        std::to_string(image.Width()) + " x " +
                                        std::to_string(image.Height()) + " image");
        }
        if (!mask.MaskFill(&image, seed, mode, static_cast<int>(tolerance),
                           static_cast<unsigned char>(value))) {
            return Failure(command, "not enough memory to fill the selection");
        }
    } else if (args.Has("grow")) {
        if (!mask.MaskGrowMasked(&image, mode, static_cast<int>(tolerance))) {
            return Failure(command, "not enough memory to grow the selection");
        }
    } else {
        image.MaskAlikePixelsOnMask(&mask, colour, static_cast<unsigned char>(value), 0, 1,
                                    static_cast<int>(tolerance), mode);
    }

    return SaveOutput(command, output, mask);
}

constexpr OptionSpec kSelectOptions[] = {
    {"at", "X,Y", "magic wand: the region 4-connected to pixel (X, Y) alike its colour"},
    {"grow", "T", "grow the selection given with --mask by tolerance T"},
    {"mask", "MASK", "the selection to grow (an 8-bit grey image of IN's size)"},
    {"color", "[#]RRGGBB", "every pixel alike this colour, connected or not"},
    {"tolerance", "T", "how far a colour may be from the reference, 0 to 255 (default 32)"},
    {"match", "MODE", "rgb (each channel), hue, intensity or any (default rgb)"},
    {"value", "V", "opacity of the selected pixels, 1 to 255 (default 255)"},
};

}  // namespace

const Subcommand kSelectCommand = {
    "select",
    "IN OUT",
    "select by colour: magic wand, growing, or alike pixels",
    "Reads IN and writes the selection as an 8-bit grey mask OUT (.bmp or .png): 0 where\n"
    "nothing is selected, the opacity where it is. --at selects the pixels 4-connected to the\n"
    "point through colours alike the point's own. --grow extends an existing selection into\n"
    "the 4-connected pixels alike the average colour under it, at the average opacity of its\n"
    "edge. --color selects every pixel alike the colour. A colour is alike the reference when\n"
    "each of red, green and blue (rgb), the hue in degrees round the circle (hue) or the mean\n"
    "of the three (intensity) lies within the tolerance; any accepts every colour.",
    kSelectOptions,
    2,
    2,
    RunSelect,
};

}  // namespace vistrane::cli
