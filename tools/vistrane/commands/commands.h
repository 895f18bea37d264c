#pragma once

// The subcommands of the tool, one file each. A new subcommand is a new file that defines its
// Subcommand record, a declaration here and a row in the table in main.cpp.

#include "common/args.h"

namespace vistrane::cli {

extern const Subcommand kInfoCommand;
extern const Subcommand kConvertCommand;
extern const Subcommand kResizeCommand;
extern const Subcommand kRotateCommand;
extern const Subcommand kCropCommand;
extern const Subcommand kBorderCommand;
extern const Subcommand kTileCommand;
extern const Subcommand kWarpCommand;
extern const Subcommand kXFormCommand;
extern const Subcommand kTraceCommand;
extern const Subcommand kTextCommand;
extern const Subcommand kPathCommand;
extern const Subcommand kSelectCommand;
extern const Subcommand kMaskCommand;
extern const Subcommand kShapeCommand;
extern const Subcommand kBlitCommand;
extern const Subcommand kDemoCommand;
extern const Subcommand kFilterCommand;
extern const Subcommand kColorCommand;
extern const Subcommand kPaintCommand;
extern const Subcommand kStatsCommand;
extern const Subcommand kPaletteCommand;

}  // namespace vistrane::cli
