// vistrane shape IN OUT --kind rect|roundrect|ellipse --rect L,T,R,B [--color RRGGBB]
//                       [--pen W] [--filled] [--soft]

#include <string>

#include <vistrane/blend/image_luts.h>
#include <vistrane/image/image.h>
#include <vistrane/io/image_file.h>

#include "commands/commands.h"
#include "common/output_file.h"
#include "common/values.h"

namespace vistrane::cli {
namespace {

int RunShape(const Subcommand& command, const ParsedArgs& args) {
    const std::string& input = args.Positionals()[0];
    const std::string& output = args.Positionals()[1];
    const std::string kindText = args.Value("kind");
    int kind = 0;
    if (kindText == "rect") {
        kind = 0;
    } else if (kindText == "roundrect") {
        kind = 1;
    } else if (kindText == "ellipse") {
        kind = 2;
    } else {
        return UsageError(command,
                          args.Has("kind")
                              ? "--kind takes rect, roundrect or ellipse, not " + Quote(kindText)
                              : "give the shape with --kind");
    }
    CRect rect;
    if (!ParseRect(args.Value("rect"), rect)) {
        return UsageError(command, args.Has("rect")
                                       ? Quote(args.Value("rect")) + " is not a rectangle L,T,R,B"
                                       : "give the bounds with --rect L,T,R,B");
    }
    unsigned long colour = 0;
    if (!ParseColor(args.Value("color", "000000"), colour)) {
        return UsageError(command, ColorError(args.Value("color")));
    }
    long penWidth = 1;
    if (!ParseNumber(args.Value("pen", "1"), 1, 1000, penWidth)) {
        return UsageError(command, Quote(args.Value("pen")) + " is not a pen width from 1 to 1000");
    }
    C_Image image;
    if (const int failed = LoadInput(command, input, image)) {
        return failed;
    }
    // An 8-bit image paints with a colour-table index: the entry nearest the colour.
    if (image.IsTrueColor()) {
        image.SetForeTrueColor(colour);
    } else {
        image.SetForePalInd(static_cast<unsigned char>(image.GetNearestColorRef(colour) & 0xFF));
    }
    const bool soft = args.Has("soft");
    // The soft fringe is painted through a mask, which needs the blend tables.
    if (soft) {
        glb_CreateImageLUTs();
        if (glb_LUTsCreatedOK() == 0) {
            glb_ReleaseImageLUTs();
            return Failure(command, "cannot build the blend tables for the soft edge");
        }
    }
    image.PaintEllipseOrRect(kind, rect, PAINT_COLORS_FORE, static_cast<int>(penWidth),
                             args.Has("filled") ? 1 : 0, soft ? 1 : 0);
    if (soft) {
        glb_ReleaseImageLUTs();
    }
    return SaveOutput(command, output, image);
}

constexpr OptionSpec kShapeOptions[] = {
    {"kind", "KIND", "rect, roundrect or ellipse"},
    {"rect", "L,T,R,B", "the bounds; right and bottom are outside the shape"},
    {"color", "[#]RRGGBB", "the paint colour (default 000000); the nearest entry on 8-bit images"},
    {"pen", "W", "outline width in pixels, centred on the bounds, 1 to 1000 (default 1)"},
    {"filled", nullptr, "fill the inside too (else it is left as it is)"},
    {"soft", nullptr, "an anti-aliased one-pixel fringe (24-bit and grey images only)"},
};

}  // namespace

const Subcommand kShapeCommand = {
    "shape",
    "IN OUT",
    "paint a rectangle, rounded rectangle or ellipse",
    "Reads IN, paints the shape and writes OUT (.bmp or .png). The rounded rectangle's corners\n"
    "are ellipses of a quarter of the smaller side. With --soft the shape's edges are blended\n"
    "into the picture over one pixel.",
    kShapeOptions,
    2,
    2,
    RunShape,
};

}  // namespace vistrane::cli
