// vistrane warp IN OUT --corners X1,Y1,...,X4,Y4 [--mask MASK] [--mask-out FILE] [--nearest]

#include <string>
#include <vector>

#include <vistrane/image/image.h>
#include <vistrane/io/image_file.h>

#include "commands/commands.h"
#include "common/output_file.h"
#include "common/progress.h"

namespace vistrane::cli {
namespace {

bool KnownFormat(const std::string& path) {
    return ImageFileFormatFromPath(path) != ImageFileFormat::Unknown;
}

int RunWarp(const Subcommand& command, const ParsedArgs& args) {
    const std::string& input = args.Positionals()[0];
    const std::string& output = args.Positionals()[1];
    if (!args.Has("corners")) {
        return UsageError(command, "give the four corners with --corners X1,Y1,X2,Y2,X3,Y3,X4,Y4");
    }
    const std::string cornersText = args.Value("corners");
    std::vector<long> c;
    if (!ParseIntegerList(cornersText, 1000000, c) || c.size() != 8) {
        return UsageError(command, "'" + cornersText +
                                       "' is not eight whole numbers X1,Y1,...,X4,Y4 "
                                       "(-1000000 to 1000000)");
    }
    const std::string maskOut = args.Value("mask-out");
    for (const std::string& path : {output, maskOut}) {
        if (!path.empty() && !KnownFormat(path)) {
            return UsageError(command,
                              "cannot tell the format of '" + path + "': name it .bmp or .png");
        }
    }
    C_Image image;
    if (const int failed = LoadInput(command, input, image)) {
        return failed;
    }
    C_Image mask;
    CRect whole;
    image.Rectangle(&whole);
    CRect* sourceRect = &whole;
    if (args.Has("mask")) {
        if (const int failed = LoadInput(command, args.Value("mask"), mask)) {
            return failed;
        }
        if (!mask.IsMask() || !mask.SameDimensionsAs(&image)) {
            return Failure(command, "the mask must be a grey image of the same size as the input");
        }
        // The selection's bounds become the source rectangle.
        sourceRect = nullptr;
    } else if (!mask.CreateMask(image.Width(), image.Height())) {
        return Failure(command, "not enough memory for the mask");
    } else {
        mask.FillBitmapBytes(255);
    }
    C_Image warped;
    C_Image warpedMask;
    ProgressReporter progress("warping");
    warpedMask.SetProgressCallback(&ProgressReporter::Report, &progress);
    const FREEXFORM_RESULTS result = warpedMask.MaskFreeXForm(
        CPoint(c[0], c[1]), CPoint(c[2], c[3]), CPoint(c[4], c[5]), CPoint(c[6], c[7]), &mask,
        &warped, &image, args.Has("nearest") ? 1 : 0, sourceRect);
    progress.Finish();
    switch (result) {
        case FREEXFORM_OK:
            break;
        case FREEXFORM_NOTHING:
            return Failure(command, "the corners " + cornersText +
                                        " are degenerate: opposite corners coincide or they lie "
                                        "on one line");
        case FREEXFORM_NOMEMORY:
            return Failure(command, "not enough memory to warp the image");
        case FREEXFORM_NOSELECTION:
            return Failure(command, "the mask selects nothing");
    }
    if (const int saved = SaveOutput(command, output, warped); saved != kExitSuccess) {
        return saved;
    }
    if (!maskOut.empty()) {
        const ImageFileResult maskSaved = SaveImageFile(maskOut, warpedMask);
        if (!maskSaved.ok) {
            return Failure(command, maskSaved.error);
        }
    }
    return kExitSuccess;
}

constexpr OptionSpec kWarpOptions[] = {
    {"corners", "X1,Y1,...,X4,Y4",
     "where the top-left, top-right, bottom-right and bottom-left corners go"},
    {"mask", "MASK", "a grey mask of IN's size: only its selection is warped"},
    {"mask-out", "FILE", "also write the warped mask"},
    {"nearest", nullptr, "copy the nearest pixel instead of interpolating"},
};

}  // namespace

const Subcommand kWarpCommand = {
    "warp",
    "IN OUT",
    "map an image onto any four-cornered shape",
    "Reads IN and maps it (or the bounds of the selection of --mask) onto the quadrilateral of\n"
    "the four corners, in the order top-left, top-right, bottom-right, bottom-left. OUT (.bmp\n"
    "or .png) covers the corners' bounding box, with the box's top-left as its origin; pixels\n"
    "outside the shape stay zero, and --mask-out shows which pixels the shape covers.",
    kWarpOptions,
    2,
    2,
    RunWarp,
};

}  // namespace vistrane::cli
