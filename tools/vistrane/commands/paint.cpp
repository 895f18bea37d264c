// vistrane paint IN OUT --color RRGGBB: one colour painted in a blend mode through an optional
// mask.

#include <string>

#include <vistrane/blend/image_luts.h>
#include <vistrane/image/image.h>
#include <vistrane/io/image_file.h>

#include "commands/commands.h"
#include "common/edit_options.h"
#include "common/output_file.h"
#include "common/values.h"

namespace vistrane::cli {
namespace {

int RunPaint(const Subcommand& command, const ParsedArgs& args) {
    unsigned long colour = 0;
    if (!ParseColor(args.Value("color", "000000"), colour)) {
        return UsageError(command, ColorError(args.Value("color")));
    }
    int opacity = 255, option = 50;
    std::string error;
    if ((args.Has("opacity") &&
         !ParseInt(args.Value("opacity"), 0, 255, "--opacity", opacity, error)) ||
        (args.Has("option") &&
         !ParseInt(args.Value("option"), 0, 100, "--option", option, error))) {
        return UsageError(command, error);
    }
    BLENDMODES mode = BLENDMODE_NORMAL;
    if (args.Has("mode") && !BlendModeFromName(args.Value("mode"), mode)) {
        return UsageError(
            command, "unknown mode '" + args.Value("mode") + "'; modes are " + BlendModeNames());
    }
    // The filter modes and smudge take their source from a neighbourhood or a stroke, which a
    // flat fill has not; they would paint as normal.
    if (mode >= BLENDMODE_FILTER1) {
        return UsageError(command, "--mode " + args.Value("mode") +
                                       " needs a brush stroke and has no meaning for paint");
    }
    C_Image image;
    C_Image mask;
    bool hasMask = false;
    if (!LoadPictureAndMask(args, image, mask, hasMask, error)) {
        return Failure(command, error);
    }
    // A grey or palette picture has no saturation to move: the mode would act as normal.
    if ((mode == BLENDMODE_SATURATE || mode == BLENDMODE_DESATURATE) && !image.IsTrueColor()) {
        return UsageError(command, "--mode " + args.Value("mode") +
                                       " needs a 24-bit picture, not a grey or palette one");
    }
    if (image.IsTrueColor()) {
        image.SetForeTrueColor(colour);
    } else {
        image.SetForePalInd(static_cast<unsigned char>(image.GetNearestColorRef(colour) & 0xFF));
    }
    glb_CreateImageLUTs();
    const int done =
        image.PaintMasked(PAINT_COLORS_FORE, mode, option, static_cast<unsigned char>(opacity),
                          hasMask ? &mask : nullptr, nullptr);
    glb_ReleaseImageLUTs();
    if (done == 0) {
        return Failure(command, "cannot paint this picture");
    }
    return SaveOutput(command, args.Positionals()[1], image);
}

constexpr OptionSpec kPaintOptions[] = {
    {"color", "[#]RRGGBB", "the colour (default 000000)"},
    {"mode", "MODE", "blend mode (default normal)"},
    {"opacity", "0..255", "strength (default 255)"},
    {"option", "0..100", "the dissolve percentage (default 50; 100 acts as 50)"},
    {"mask", "FILE", "a picture of the same size whose grey levels scale the opacity"},
};

}  // namespace

const Subcommand kPaintCommand = {
    "paint",
    "IN OUT",
    "paint a colour over the picture in a blend mode",
    "24-bit pictures take modes normal to desaturate; grey pictures normal to exclusion;\n"
    "palette pictures normal and dissolve (the nearest palette colour is painted).",
    kPaintOptions,
    2,
    2,
    RunPaint,
};

}  // namespace vistrane::cli
