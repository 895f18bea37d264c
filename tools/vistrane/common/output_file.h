#pragma once

// The first and last steps of every subcommand that reads a picture and writes one: the output
// name is checked and the input loaded before any work, and the result is written where the
// user asked. Each returns kExitSuccess to go on, or the exit code after its message.

#include <string>

#include "common/args.h"

class C_Image;

namespace vistrane::cli {

// A name whose extension the tool cannot write (.bmp and .png) is a usage error.
int CheckOutputName(const Subcommand& command, const std::string& path);
// Loads the picture, or reports why it cannot be read.
int LoadInput(const Subcommand& command, const std::string& path, C_Image& image);
// Saves the image by the path's extension.
int SaveOutput(const Subcommand& command, const std::string& path, C_Image& image);

}  // namespace vistrane::cli
