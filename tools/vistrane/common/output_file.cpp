#include "common/output_file.h"

#include <vistrane/io/image_file.h>

namespace vistrane::cli {

int CheckOutputName(const Subcommand& command, const std::string& path) {
    if (ImageFileFormatFromPath(path) != ImageFileFormat::Unknown) {
        return kExitSuccess;
    }
    return UsageError(command, "cannot tell the format of '" + path + "': name it .bmp or .png");
}

int LoadInput(const Subcommand& command, const std::string& path, C_Image& image) {
    const ImageFileResult loaded = LoadImageFile(path, image);
    return loaded.ok ? kExitSuccess : Failure(command, loaded.error);
}

int SaveOutput(const Subcommand& command, const std::string& path, C_Image& image) {
    const ImageFileResult saved = SaveImageFile(path, image);
    return saved.ok ? kExitSuccess : Failure(command, saved.error);
}

}  // namespace vistrane::cli
