#pragma once

// The last step of every editing subcommand: write the result where the user asked.

#include <string>

#include "args.h"

class C_Image;

namespace vistrane::cli {

// Saves the image by the path's extension; kExitSuccess, or the failure reported on stderr.
int SaveOutput(const Subcommand& command, const std::string& path, C_Image& image);

}  // namespace vistrane::cli
