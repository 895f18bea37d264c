#pragma once

// The files every subcommand reads and writes, handled in one place: names are checked and
// "-" (standard input or output) is spooled before the command does any work, and what was
// written is reported after it.

#include <string>

#include "common/args.h"

class C_Image;

namespace vistrane::cli {

// Checks the output name (.bmp or .png, or "-"), makes the input files readable (spooling "-"
// from standard input), runs the command, and copies a "-" output to standard output.
int RunWithFiles(const Subcommand& command, ParsedArgs& args);

// Loads the input picture, or reports on stderr why it cannot be read.
int LoadInput(const Subcommand& command, const std::string& path, C_Image& image);
// Saves the image by the path's extension and reports it; kExitSuccess, or the failure
// reported on stderr.
int SaveOutput(const Subcommand& command, const std::string& path, C_Image& image);
// "wrote NAME (W x H, N-bit) in T s" on stdout (stderr when the picture itself went to
// stdout), unless -q was given.
void ReportWritten(const std::string& path, const C_Image& image);

}  // namespace vistrane::cli
