// vistrane info FILE: what an image file holds, as the engine sees it once loaded.

#include <cstdio>

#include <vistrane/image/image.h>
#include <vistrane/io/image_file.h>

#include "common/commands.h"
#include "common/output_file.h"

namespace vistrane::cli {
namespace {

int RunInfo(const Subcommand& command, const ParsedArgs& args) {
    const std::string& path = args.Positionals()[0];
    C_Image image;
    const ImageFileResult loaded = LoadImageFile(path, image);
    if (!loaded.ok) {
        return Failure(command, loaded.error);
    }
    // A 24-bit picture has no colour table; its colours are the distinct ones among the pixels.
    unsigned long colours = image.NColors();
    if (image.IsTrueColor() && !image.CountColors(&colours, nullptr)) {
        return Failure(command, "not enough memory to count the colours");
    }
    std::printf("file:      %s\n", path.c_str());
    std::printf("size:      %ld x %ld\n", image.Width(), image.Height());
    std::printf("depth:     %u bits (%s)\n", static_cast<unsigned>(image.BitCount()),
                image.IsTrueColor() ? "true colour" : "colour table");
    std::printf("colours:   %lu%s\n", colours, image.IsTrueColor() ? " (distinct)" : "");
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
