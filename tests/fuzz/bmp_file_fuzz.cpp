// The file loader, which names the format from the file's first bytes and reads BMP or PNG.

#include <cstdio>
#include <string>

#include <unistd.h>

#include <vistrane/io/image_file.h>

#include "fuzz/fuzz_target.h"

namespace vistrane::fuzz {

int FuzzBmpFile(const std::uint8_t* data, std::size_t size) {
    static const std::string path = "/tmp/vistrane-fuzz-" + std::to_string(getpid()) + ".img";
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (file == nullptr) {
        return 0;
    }
    const bool written = std::fwrite(data, 1, size, file) == size;
    std::fclose(file);
    C_Image image;
    if (written && LoadImageFile(path, image).ok) {
        CheckImage(image);
    }
    std::remove(path.c_str());
    return 0;
}

}  // namespace vistrane::fuzz
