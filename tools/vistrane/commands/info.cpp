// vistrane info FILE: what an image file holds, as the engine sees it once loaded.

#include <cstdio>

#include <vistrane/image/image.h>
#include <vistrane/io/image_file.h>

#include "commands/commands.h"

namespace vistrane::cli {
namespace {

int RunInfo(const Subcommand& command, const ParsedArgs& args) {
    const std::string& path = args.Positionals()[0];
    C_Image image;
    const ImageFileResult loaded = LoadImageFile(path, image);
    if (!loaded.ok) {
        return Failure(command, loaded.error);
    }
    std::printf("file:      %s\n", path.c_str());
    std::printf("size:      %ld x %ld\n", image.Width(), image.Height());
    std::printf("depth:     %u bits (%s)\n", static_cast<unsigned>(image.BitCount()),
                image.IsTrueColor() ? "true colour" : "colour table");
    if (image.IsTrueColor()) {
        unsigned long distinct = 0;
        if (image.CountColors(&distinct, nullptr) == 0) {
            return Failure(command, "cannot count the colours of " + path);
        }
        std::printf("colours:   %lu distinct\n", distinct);
    } else {
        std::printf("colours:   %lu table entries\n", image.NColors());
    }
    std::printf("grey mask: %s\n", image.IsMask() ? "yes" : "no");
    std::printf("bytes:     %lu\n", image.NBytesImage());
    if (loaded.alphaFlattened) {
        std::printf("alpha:     flattened onto white\n");
    }
    return kExitSuccess;
}

}  // namespace

const Subcommand kInfoCommand = {
    "info",
    "FILE",
    "show an image file's size, depth, colours and byte count",
    "Loads a BMP or PNG file and prints its size in pixels, bits per pixel, the number of\n"
    "colour-table entries, whether it is a grey selection mask, and the bytes of its pixel rows\n"
    "(each row padded to a multiple of four bytes).",
    {},
    1,
    1,
    RunInfo,
};

}  // namespace vistrane::cli
