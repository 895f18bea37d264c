// vistrane blit DEST SOURCE OUT [--at X,Y] [--from X,Y] [--size WxH] [--transparent RRGGBB]

#include <string>

#include <vistrane/image/image.h>
#include <vistrane/io/image_file.h>

#include "commands/commands.h"
#include "common/output_file.h"
#include "common/values.h"

namespace vistrane::cli {
namespace {

// "WxH", each 1 to 1000000.
bool ParseExtent(const std::string& text, long& width, long& height) {
    const std::size_t cross = text.find('x');
    return cross != std::string::npos && ParseNumber(text.substr(0, cross), 1, 1000000, width) &&
           ParseNumber(text.substr(cross + 1), 1, 1000000, height);
}

// The first colour-table entry of exactly this colour.
bool FindColorIndex(const C_Image& image, unsigned long colour, unsigned char& index) {
    const RGBQUAD* colors = image.RGBQs();
    for (unsigned long i = 0; i < image.NColors(); ++i) {
        if (RGB(colors[i].rgbRed, colors[i].rgbGreen, colors[i].rgbBlue) == colour) {
            index = static_cast<unsigned char>(i);
            return true;
        }
    }
    return false;
}

int RunBlit(const Subcommand& command, const ParsedArgs& args) {
    const std::string& destinationPath = args.Positionals()[0];
    const std::string& sourcePath = args.Positionals()[1];
    const std::string& output = args.Positionals()[2];
    CPoint at(0, 0);
    if (args.Has("at") && !ParsePoint(args.Value("at"), at)) {
        return UsageError(command, Quote(args.Value("at")) + " is not a point X,Y");
    }
    CPoint from(0, 0);
    if (args.Has("from") && !ParsePoint(args.Value("from"), from)) {
        return UsageError(command, Quote(args.Value("from")) + " is not a point X,Y");
    }
    long width = 0;
    long height = 0;
    if (args.Has("size") && !ParseExtent(args.Value("size"), width, height)) {
        return UsageError(command, Quote(args.Value("size")) + " is not a size WxH");
    }
    unsigned long transparent = 0;
    if (args.Has("transparent") && !ParseColor(args.Value("transparent"), transparent)) {
        return UsageError(command, ColorError(args.Value("transparent")));
    }
    C_Image destination;
    C_Image source;
    if (const int failed = LoadInput(command, destinationPath, destination)) {
        return failed;
    }
    if (const int failed = LoadInput(command, sourcePath, source)) {
        return failed;
    }
    if (source.IsTrueColor() && !destination.IsTrueColor()) {
        return Failure(command, "a 24-bit source cannot be copied into the 8-bit " +
                                    Quote(destinationPath) + "; convert it first");
    }
    if (args.Has("transparent")) {
        if (source.IsTrueColor()) {
            source.SetTranspTrueColor(transparent);
        } else {
            unsigned char index = 0;
            if (!FindColorIndex(source, transparent, index)) {
                return Failure(command, "the colour table of " + Quote(sourcePath) +
                                            " has no entry " + args.Value("transparent"));
            }
            source.SetTransPalInd(index);
        }
    }
    if (!args.Has("size")) {
        width = source.Width();
        height = source.Height();
    }
    destination.DibBlt(at.x, at.y, width, height, &source, from.x, from.y,
                       args.Has("transparent") ? 1 : 0);
    return SaveOutput(command, output, destination);
}

constexpr OptionSpec kBlitOptions[] = {
    {"at", "X,Y", "where the copy lands in DEST; may be negative (default 0,0)"},
    {"from", "X,Y", "the copied area's top-left corner in SOURCE (default 0,0)"},
    {"size", "WxH", "the largest area copied (default: all of SOURCE from --from on)"},
    {"transparent", "[#]RRGGBB", "source pixels of this colour leave DEST as it is"},
};

}  // namespace

const Subcommand kBlitCommand = {
    "blit",
    "DEST SOURCE OUT",
    "copy a rectangle of one image into another",
    "Copies SOURCE from --from to its right and bottom edges, at most --size, onto DEST at\n"
    "--at, clipped to both images, and writes the result as OUT (.bmp or .png). An 8-bit\n"
    "SOURCE is converted through its colour table into a 24-bit DEST and copied as indices\n"
    "into an 8-bit one; a 24-bit SOURCE needs a 24-bit DEST. With --transparent, an 8-bit\n"
    "SOURCE must have the colour in its table, and its pixels of that entry are skipped.",
    kBlitOptions,
    3,
    3,
    RunBlit,
};

}  // namespace vistrane::cli
