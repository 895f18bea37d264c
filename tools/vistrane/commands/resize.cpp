// vistrane resize IN OUT (--size WxH | --fit WxH) [--nearest]

#include <charconv>
#include <string>

#include <vistrane/image/image.h>
#include <vistrane/io/image_file.h>

#include "commands/commands.h"
#include "common/output_file.h"
#include "common/progress.h"

namespace vistrane::cli {
namespace {

// "WxH" with both parts whole numbers from 1 to 65535.
bool ParseSize(const std::string& text, long& width, long& height) {
    const std::size_t cross = text.find('x');
    if (cross == std::string::npos) {
        return false;
    }
    const char* begin = text.data();
    const char* end = begin + text.size();
    const auto w = std::from_chars(begin, begin + cross, width);
    const auto h = std::from_chars(begin + cross + 1, end, height);
    return w.ec == std::errc() && w.ptr == begin + cross && h.ec == std::errc() && h.ptr == end &&
           width >= 1 && height >= 1 && width <= 65535 && height <= 65535;
}

int RunResize(const Subcommand& command, const ParsedArgs& args) {
    const std::string& input = args.Positionals()[0];
    const std::string& output = args.Positionals()[1];
    if (args.Has("size") == args.Has("fit")) {
        return UsageError(command, "give exactly one of --size and --fit");
    }
    const std::string sizeText = args.Has("size") ? args.Value("size") : args.Value("fit");
    long width = 0;
    long height = 0;
    if (!ParseSize(sizeText, width, height)) {
        return UsageError(command, "'" + sizeText + "' is not a size WxH (1 to 65535 each)");
    }
    C_Image image;
    if (const int failed = LoadInput(command, input, image)) {
        return failed;
    }
    const bool nearest = args.Has("nearest");
    int done = 0;
    ProgressReporter progress("resizing");
    image.SetProgressCallback(&ProgressReporter::Report, &progress);
    if (args.Has("fit")) {
        LONG fitted = image.Width();
        LONG fittedHeight = image.Height();
        C_Helper helper;
        if (!helper.FitIfGreater(&fitted, &fittedHeight, width, height)) {
            done = 1;
        } else {
            const CSize size(fitted, fittedHeight);
            done = nearest ? image.DIBResize(size) : image.Resample(size);
        }
    } else {
        const CSize size(width, height);
        done = nearest ? image.DIBResize(size) : image.Resample(size);
    }
    image.SetProgressCallback(nullptr, nullptr);
    progress.Finish();
    if (!done) {
        return Failure(command, "not enough memory to resize to " + sizeText);
    }
    return SaveOutput(command, output, image);
}

constexpr OptionSpec kResizeOptions[] = {
    {"size", "WxH", "resize to exactly W x H pixels"},
    {"fit", "WxH", "shrink to fit within W x H keeping the proportions (a smaller image stays)"},
    {"nearest", nullptr, "copy the nearest pixel instead of filtering"},
};

}  // namespace

const Subcommand kResizeCommand = {
    "resize",
    "IN OUT",
    "resize an image, filtered or by nearest neighbour",
    "Reads IN, resizes it and writes OUT (.bmp or .png). Filtered resizing interpolates an\n"
    "enlarged axis and averages a reduced one; it applies to 24-bit and grey images, while\n"
    "palette images are always resized by nearest neighbour so that no new colours appear.",
    kResizeOptions,
    2,
    2,
    RunResize,
};

}  // namespace vistrane::cli
