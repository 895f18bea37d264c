// vistrane text TEXT --font FAMILY_OR_FILE --size PX --out FILE.path [--svg FILE.svg]

#include <charconv>
#include <cstdio>
#include <string>
#include <vector>

#include <unistd.h>

#include <vistrane/path/point_path.h>
#include <vistrane/platform/font.h>
#include <vistrane/platform/text.h>

#include "commands/commands.h"
#include "common/font_families.h"
#include "common/path_output.h"
#include "common/values.h"

namespace vistrane::cli {
namespace {

int RunText(const Subcommand& command, const ParsedArgs& args) {
    if (!args.Has("font") || !args.Has("out")) {
        return UsageError(command, "give --font FAMILY_OR_FILE and --out FILE.path");
    }
    const std::string sizeText = args.Value("size", "64");
    int pixelSize = 0;
    const char* end = sizeText.data() + sizeText.size();
    const auto parsed = std::from_chars(sizeText.data(), end, pixelSize);
    if (parsed.ec != std::errc() || parsed.ptr != end || pixelSize < 1 || pixelSize > 4096) {
        return UsageError(command, "'" + sizeText + "' is not a pixel size from 1 to 4096");
    }
    const std::string family = args.Value("font");
    if (access(family.c_str(), R_OK) != 0) {
        const std::vector<std::string> installed = InstalledFontFamilies();
        if (!HasFamily(family, installed)) {
            const std::vector<std::string> close = CloseFamilies(family, installed);
            std::string message = "no installed font family is called " + Quote(family);
            for (std::size_t i = 0; i < close.size(); ++i) {
                message += (i == 0 ? "; close: " : ", ") + Quote(close[i]);
            }
            return Failure(command, message);
        }
    }
    CFont font;
    if (!font.CreateFont(family.c_str(), pixelSize)) {
        return Failure(command, "no font file or installed family matches '" + family + "'");
    }
    CString text(args.Positionals()[0].c_str());
    C_PointPath path;
    if (!path.CreateFromText(text, &font, CPoint(0, 0), 0)) {
        return Failure(command, "cannot outline the text in '" + family + "'");
    }
    const std::string written = WritePathFiles(path, args.Value("out"), args.Value("svg"));
    if (!written.empty()) {
        return Failure(command, written);
    }
    PrintPathSummary(stdout, SummarisePath(path));
    return kExitSuccess;
}

constexpr OptionSpec kTextOptions[] = {
    {"font", "FAMILY_OR_FILE", "a font file, or a family such as \"DejaVu Sans\" (required)"},
    {"size", "PX", "the em size in pixels, 1 to 4096 (64)"},
    {"out", "FILE.path", "the path file to write (required)"},
    {"svg", "FILE.svg", "also write an SVG preview of the outlines"},
};

}  // namespace

const Subcommand kTextCommand = {
    "text",
    "TEXT",
    "set a line of text in a font and write its outlines as a path",
    "Sets TEXT (UTF-8) in the font with the text cell's top-left corner at (0, 0) and writes\n"
    "the glyph outlines, lines and cubic curves as the font draws them, to the path file (and\n"
    "as SVG with --svg). A family name must be installed (fc-list : family shows them); one\n"
    "that is not is refused with the names that come close. Prints the counts and the bounds.",
    kTextOptions,
    1,
    1,
    RunText,
};

}  // namespace vistrane::cli
