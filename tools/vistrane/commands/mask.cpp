// vistrane mask OPERATION MASK [OTHER] [OUT]: logic between selection masks, thresholds,
// opacity scaling and statistics.

#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include <vistrane/image/image.h>
#include <vistrane/io/image_file.h>
#include <vistrane/mask/mask_features.h>

#include "commands/commands.h"
#include "common/edit_options.h"
#include "common/output_file.h"
#include "common/values.h"

namespace vistrane::cli {
namespace {

using BinaryOperation = void (C_Image::*)(C_Image*);

struct Operation {
    const char* name;
    std::size_t masks;           // mask files read
    bool writes;                 // whether OUT follows them
    BinaryOperation binary;      // null for the operations on one mask
    const char* const* options;  // the options it reads, null-terminated
};

constexpr const char* kNoOptions[] = {nullptr};
constexpr const char* kThresholdOptions[] = {"level", "keep", nullptr};
constexpr const char* kScaleOptions[] = {"min", "max", nullptr};

constexpr Operation kOperations[] = {
    {"and", 2, true, &C_Image::MaskAnd, kNoOptions},
    {"or", 2, true, &C_Image::MaskOr, kNoOptions},
    {"xor", 2, true, &C_Image::MaskXor, kNoOptions},
    {"and-not", 2, true, &C_Image::MaskAndNot, kNoOptions},
    {"invert", 1, true, nullptr, kNoOptions},
    {"threshold", 1, true, nullptr, kThresholdOptions},
    {"scale", 1, true, nullptr, kScaleOptions},
    {"features", 1, false, nullptr, kNoOptions},
};

constexpr const char* kAllOptions[] = {"level", "keep", "min", "max"};

bool Reads(const Operation& operation, std::string_view option) {
    for (const char* const* name = operation.options; *name != nullptr; ++name) {
        if (option == *name) {
            return true;
        }
    }
    return false;
}

void PrintFeatures(C_Image& mask) {
    S_MaskFeatures features{};
    mask.MaskExtractFeatures(&features);
    std::printf("size:      %ld x %ld\n", features.m_ImageWidth, features.m_ImageHeight);
    std::printf("selected:  %ld\n", features.m_NSelected);
    if (features.m_NSelected < 1) {
        return;
    }
    std::printf("bounds:    %ld,%ld to %ld,%ld (%ld x %ld)\n", features.m_Left, features.m_Top,
                features.m_Right, features.m_Bottom, features.m_BoundWidth, features.m_BoundHeight);
    std::printf("opacity:   %d to %d, mean %d\n", features.m_MinOpacity, features.m_MaxOpacity,
                features.m_AverageOpacity);
}

int RunMask(const Subcommand& command, const ParsedArgs& args) {
    const std::vector<std::string>& positionals = args.Positionals();
    const Operation* operation = nullptr;
    for (const Operation& candidate : kOperations) {
        if (positionals[0] == candidate.name) {
            operation = &candidate;
        }
    }
    if (operation == nullptr) {
        return UsageError(command, "unknown operation " + Quote(positionals[0]));
    }
    const std::size_t expected = 1 + operation->masks + (operation->writes ? 1 : 0);
    if (positionals.size() != expected) {
        return UsageError(command, Quote(positionals[0]) + " takes " +
                                       std::to_string(operation->masks) + " mask file(s)" +
                                       (operation->writes ? " and an output file" : ""));
    }
    for (const char* option : kAllOptions) {
        if (args.Has(option) && !Reads(*operation, option)) {
            return UsageError(command, Quote("--" + std::string(option)) + " does not apply to " +
                                           Quote(positionals[0]));
        }
    }
    long level = 0;
    if (Reads(*operation, "level") && !ParseNumber(args.Value("level"), 0, 255, level)) {
        return UsageError(command, "threshold needs --level from 0 to 255");
    }
    long minOpacity = 0;
    long maxOpacity = 255;
    if (Reads(*operation, "min") && (!ParseNumber(args.Value("min", "0"), 0, 255, minOpacity) ||
                                     !ParseNumber(args.Value("max", "255"), 1, 255, maxOpacity))) {
        return UsageError(command, "--min takes 0 to 255 and --max 1 to 255");
    }
    const std::string& output = positionals.back();

    C_Image masks[2];
    for (std::size_t i = 0; i < operation->masks; ++i) {
        const std::string problem = LoadMaskFile(positionals[1 + i], masks[i]);
        if (!problem.empty()) {
            return Failure(command, problem);
        }
    }
    C_Image& mask = masks[0];
    if (operation->binary != nullptr) {
        // The engine trusts its caller on sizes; the tool is that caller.
        if (!mask.SameDimensionsAs(&masks[1])) {
            return Failure(command, "the masks differ in size: " + std::to_string(mask.Width()) +
                                        " x " + std::to_string(mask.Height()) + " and " +
                                        std::to_string(masks[1].Width()) + " x " +
                                        std::to_string(masks[1].Height()));
        }
        (mask.*operation->binary)(&masks[1]);
    } else if (positionals[0] == "invert") {
        mask.MaskInvert();
    } else if (positionals[0] == "threshold") {
        const long passed = args.Has("keep")
                                ? mask.ThresholdMaskGreaterOrEqual(static_cast<BYTE>(level), 0)
                                : mask.ThresholdMask(static_cast<BYTE>(level));
        std::printf("selected:  %ld\n", passed);
    } else if (positionals[0] == "scale") {
        std::printf("selected:  %ld\n", mask.MaskScaleOpacity(static_cast<int>(maxOpacity),
                                                              static_cast<int>(minOpacity)));
    } else {
        PrintFeatures(mask);
    }
    if (!operation->writes) {
        return kExitSuccess;
    }
    return SaveOutput(command, output, mask);
}

constexpr OptionSpec kMaskOptions[] = {
    {"level", "T", "threshold: bytes up to T become 0, the others 255"},
    {"keep", nullptr, "threshold: bytes below T become 0, the others keep their opacity"},
    {"min", "A", "scale: the faintest selected opacity becomes A (default 0)"},
    {"max", "B", "scale: the strongest selected opacity becomes at most B (default 255)"},
};

}  // namespace

const Subcommand kMaskCommand = {
    "mask",
    "OPERATION MASK [OTHER] [OUT]",
    "combine, invert, threshold, rescale or describe selection masks",
    "Masks are 8-bit grey images (.bmp or .png), one byte of opacity a pixel. Operations:\n"
    "  and | or | xor | and-not MASK OTHER OUT   bitwise, byte by byte (and of 200 and 100\n"
    "                                            is 64); both masks of one size\n"
    "  invert MASK OUT                           every byte b becomes 255 - b\n"
    "  threshold MASK OUT --level T [--keep]     prints how many pixels pass\n"
    "  scale MASK OUT [--min A] [--max B]        stretches the selected opacities linearly\n"
    "                                            onto A..B; prints how many stay selected\n"
    "  features MASK                             prints the selected count, bounds and\n"
    "                                            opacities",
    kMaskOptions,
    2,
    4,
    RunMask,
};

}  // namespace vistrane::cli
