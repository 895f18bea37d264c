// vistrane: runs the engine's capabilities on image files.

#include <cstdio>
#include <span>
#include <string_view>

#include <vistrane/image/image.h>
#include <vistrane/version.h>

#include "commands/commands.h"
#include "common/args.h"

namespace {

using vistrane::cli::Subcommand;

const Subcommand* const kSubcommands[] = {
    &vistrane::cli::kInfoCommand,    &vistrane::cli::kConvertCommand,
    &vistrane::cli::kFilterCommand,  &vistrane::cli::kColorCommand,
    &vistrane::cli::kPaintCommand,   &vistrane::cli::kStatsCommand,
    &vistrane::cli::kPaletteCommand, &vistrane::cli::kSelectCommand,
    &vistrane::cli::kMaskCommand,    &vistrane::cli::kShapeCommand,
    &vistrane::cli::kBlitCommand,    &vistrane::cli::kResizeCommand,
    &vistrane::cli::kRotateCommand,  &vistrane::cli::kCropCommand,
    &vistrane::cli::kBorderCommand,  &vistrane::cli::kTileCommand,
    &vistrane::cli::kWarpCommand,    &vistrane::cli::kXFormCommand,
    &vistrane::cli::kTraceCommand,   &vistrane::cli::kTextCommand,
    &vistrane::cli::kPathCommand,    &vistrane::cli::kDemoCommand,
};

void PrintToolHelp(std::FILE* out) {
    std::fprintf(out,
                 "Usage: vistrane COMMAND [OPTIONS] [ARGUMENTS]\n"
                 "       vistrane --help | --version\n\n"
                 "Runs the Vistrane image-editing engine on BMP and PNG files.\n\nCommands:\n");
    for (const Subcommand* command : kSubcommands) {
        std::fprintf(out, "  %-10s %s\n", command->name, command->summary);
    }
    std::fprintf(out, "\nRun 'vistrane COMMAND --help' for a command's arguments and options.\n");
}

}  // namespace

int main(int argc, char** argv) {
    // The host's start-up duty: the engine's bitmap header size is set before any image exists.
    C_Image::CheckBitmapHeaderType();

    const std::span<char* const> arguments(argv, static_cast<std::size_t>(argc));
    if (arguments.size() < 2) {
        PrintToolHelp(stderr);
        return vistrane::cli::kExitUsage;
    }
    const std::string_view first = arguments[1];
    if (first == "--help" || first == "-h") {
        PrintToolHelp(stdout);
        return vistrane::cli::kExitSuccess;
    }
    if (first == "--version") {
        std::printf("vistrane %s\n", VISTRANE_VERSION_STRING);
        return vistrane::cli::kExitSuccess;
    }
    for (const Subcommand* command : kSubcommands) {
        if (first == command->name) {
            return vistrane::cli::RunSubcommand(*command, arguments.subspan(2));
        }
    }
    std::fprintf(stderr, "vistrane: unknown %s '%s'\nTry 'vistrane --help'.\n",
                 first.starts_with('-') ? "option" : "command", argv[1]);
    return vistrane::cli::kExitUsage;
}
