// The PNG reader over bytes in memory; what it reads is written back and read again.

#include <vector>

#include <vistrane/io/image_file.h>

#include "fuzz/fuzz_target.h"

namespace vistrane::fuzz {

int FuzzPngMemory(const std::uint8_t* data, std::size_t size) {
    C_Image image;
    if (!LoadPngMemory(data, size, image).ok) {
        return 0;
    }
    CheckImage(image);
    std::vector<BYTE> written;
    C_Image again;
    if (!SavePngMemory(image, written).ok ||
        !LoadPngMemory(written.data(), written.size(), again).ok) {
        __builtin_trap();
    }
    CheckSameImage(image, again);
    return 0;
}

}  // namespace vistrane::fuzz
