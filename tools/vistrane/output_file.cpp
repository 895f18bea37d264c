#include "output_file.h"

#include <vistrane/io/image_file.h>

namespace vistrane::cli {

int SaveOutput(const Subcommand& command, const std::string& path, C_Image& image) {
    const ImageFileResult saved = SaveImageFile(path, image);
    return saved.ok ? kExitSuccess : Failure(command, saved.error);
}

}  // namespace vistrane::cli
