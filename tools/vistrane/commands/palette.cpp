// vistrane palette IN OUT ACTION ...: sort, delete or swap colour-table entries of an 8-bit
// picture; the picture looks the same afterwards except where entries were deleted or swapped.

#include <string>

#include <vistrane/companion/palette_sort.h>
#include <vistrane/image/image.h>
#include <vistrane/io/image_file.h>

#include "commands/commands.h"
#include "common/edit_options.h"
#include "common/output_file.h"

namespace vistrane::cli {
namespace {

int RunPalette(const Subcommand& command, const ParsedArgs& args) {
    const std::vector<std::string>& positionals = args.Positionals();
    const std::string& action = positionals[2];
    const std::string what = positionals.size() > 3 ? positionals[3] : "";
    std::string error;
    int fore = 0, back = 0, trans = 0, threshold = 1;
    if ((args.Has("fore") && !ParseInt(args.Value("fore"), 0, 255, "--fore", fore, error)) ||
        (args.Has("back") && !ParseInt(args.Value("back"), 0, 255, "--back", back, error)) ||
        (args.Has("trans") && !ParseInt(args.Value("trans"), 0, 255, "--trans", trans, error)) ||
        (args.Has("threshold") &&
         !ParseInt(args.Value("threshold"), 0, 1 << 30, "--threshold", threshold, error))) {
        return UsageError(command, error);
    }
    C_Image image;
    if (const int failed = LoadInput(command, positionals[0], image)) {
        return failed;
    }
    if (image.IsTrueColor()) {
        return Failure(command, "the picture has no colour table (24 bits a pixel)");
    }
    image.SetForePalInd(static_cast<unsigned char>(fore));
    image.SetBackPalInd(static_cast<unsigned char>(back));
    image.SetTransPalInd(static_cast<unsigned char>(trans));
    if (action == "sort") {
        const char* keys[] = {"luminance", "hue", "saturation", "usage"};
        int key = -1;
        for (int k = 0; k < 4; ++k) {
            key = what == keys[k] ? k : key;
        }
        if (key < 0) {
            return UsageError(command, "sort by luminance, hue, saturation or usage");
        }
        S_SortPalData data{key, args.Has("descending") ? 1 : 0};
        S_CalcSortError sortError{};
        if (image.SortPalColors(&data, &sortError) == 0) {
            return Failure(command, "the colour table could not be sorted");
        }
    } else if (action == "delete") {
        const char* modes[] = {"unused", "fore", "back", "trans", "rare"};
        int mode = -1;
        for (int m = 0; m < 5; ++m) {
            mode = what == modes[m] ? m : mode;
        }
        if (mode < 0) {
            return UsageError(command, "delete unused, fore, back, trans or rare");
        }
        S_DelPalData data{mode, static_cast<unsigned long>(threshold)};
        image.DelPalColors(&data);
    } else if (action == "swap") {
        const int pair = what == "fore-back" ? 0 : (what == "back-trans" ? 1 : 2);
        if (what != "fore-back" && what != "back-trans" && what != "trans-fore") {
            return UsageError(command, "swap fore-back, back-trans or trans-fore");
        }
        S_SwapPalData data{pair};
        image.SwapPalColors(&data);
    } else {
        return UsageError(command, "the action is sort, delete or swap, not '" + action + "'");
    }
    return SaveOutput(command, positionals[1], image);
}

constexpr OptionSpec kPaletteOptions[] = {
    {"descending", nullptr, "sort the largest key first"},
    {"threshold", "N", "delete rare: entries used by fewer than N pixels (default 1)"},
    {"fore", "INDEX", "the foreground entry (default 0)"},
    {"back", "INDEX", "the background entry (default 0)"},
    {"trans", "INDEX", "the transparent entry (default 0)"},
};

}  // namespace

const Subcommand kPaletteCommand = {
    "palette",
    "IN OUT ACTION WHAT",
    "sort, delete or swap colour-table entries",
    "  sort luminance|hue|saturation|usage   re-order the table; the picture is unchanged\n"
    "  delete unused|fore|back|trans|rare    drop entries (at least two stay); pixels of a\n"
    "                                        dropped entry take the nearest remaining colour\n"
    "  swap fore-back|back-trans|trans-fore  exchange two entries",
    kPaletteOptions,
    4,
    4,
    RunPalette,
};

}  // namespace vistrane::cli
