// vistrane tile IN OUT --percent P

#include <string>

#include <vistrane/blend/image_luts.h>
#include <vistrane/image/image.h>
#include <vistrane/io/image_file.h>

#include "commands/commands.h"
#include "common/edit_options.h"
#include "common/output_file.h"

namespace vistrane::cli {
namespace {

// Colours cannot be faded as palette indices, so a palette picture that is not grey becomes
// 24-bit first, through its colour table.
bool WidenPalette(C_Image& image) {
    C_Image wide;
    if (!wide.Create(image.Width(), image.Height(), 1, nullptr, 0)) {
        return false;
    }
    wide.DibBlt(0, 0, image.Width(), image.Height(), &image, 0, 0, 0);
    wide.CopyPaintColors(&image);
    return image.Clone(&wide) != 0;
}

int RunTile(const Subcommand& command, const ParsedArgs& args) {
    const std::string& input = args.Positionals()[0];
    const std::string& output = args.Positionals()[1];
    if (!args.Has("percent")) {
        return UsageError(command, "give the band size with --percent P");
    }
    int percent = 0;
    std::string error;
    if (!ParseInt(args.Value("percent"), 1, 99, "--percent", percent, error)) {
        return UsageError(command, error);
    }
    C_Image image;
    if (const int failed = LoadInput(command, input, image)) {
        return failed;
    }
    if (!image.CanEditTrueColor() && !WidenPalette(image)) {
        return Failure(command, "not enough memory to turn the palette picture into 24-bit");
    }
    glb_CreateImageLUTs();
    if (glb_LUTsCreatedOK() == 0) {
        glb_ReleaseImageLUTs();
        return Failure(command, "cannot build the blend tables");
    }
    const long width = image.Width();
    const long height = image.Height();
    const int done = image.SeamlessPattern(percent);
    glb_ReleaseImageLUTs();
    if (!done) {
        return Failure(command, std::to_string(percent) + " % of the " + std::to_string(width) +
                                    " x " + std::to_string(height) +
                                    " image gives an empty band or one as large as the image,"
                                    " or memory is short");
    }
    return SaveOutput(command, output, image);
}

constexpr OptionSpec kTileOptions[] = {
    {"percent", "P", "band size in per cent (1-99) of the width and of the height"},
};

}  // namespace

const Subcommand kTileCommand = {
    "tile",
    "IN OUT",
    "make a tile that repeats without seams",
    "Reads IN, cross-fades a band of P per cent of the height along the bottom into the top\n"
    "and one of P per cent of the width along the right edge into the left, cuts both bands\n"
    "away and writes the tile to OUT (.bmp or .png). Palette pictures become 24-bit first.\n"
    "Fails when a band rounds to no pixels or covers the whole picture.",
    kTileOptions,
    2,
    2,
    RunTile,
};

}  // namespace vistrane::cli
