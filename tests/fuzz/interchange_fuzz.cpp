// The engine's own interchange forms: a packed bitmap handle, a memory block of known length and
// an archive stream. Each one that loads is stored the same way and loaded again.

#include <cstring>
#include <vector>

#include <vistrane/platform/archive.h>
#include <vistrane/platform/file.h>
#include <vistrane/platform/memory.h>

#include "fuzz/fuzz_target.h"

namespace vistrane::fuzz {

int FuzzPackedDib(const std::uint8_t* data, std::size_t size) {
    HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, size == 0 ? 1 : size);
    if (block == nullptr) {
        return 0;
    }
    std::memcpy(GlobalLock(block), data, size);
    GlobalUnlock(block);
    C_Image image;
    const int loaded = image.CreateFromhDib(block);
    GlobalFree(block);
    if (loaded) {
        CheckImage(image);
    }
    return 0;
}

int FuzzMemoryBlock(const std::uint8_t* data, std::size_t size) {
    C_Image image;
    if (!image.VirtualSerializeLoad(data, static_cast<unsigned long>(size))) {
        return 0;
    }
    CheckImage(image);
    BYTE* saved = nullptr;
    C_Image again;
    if (!image.VirtualSerializeSave(&saved) || !again.VirtualSerializeLoad(saved)) {
        __builtin_trap();
    }
    C_Helper().SafeVirtualFree(saved);
    CheckSameImage(image, again);
    return 0;
}

int FuzzArchive(const std::uint8_t* data, std::size_t size) {
    std::vector<BYTE> bytes(data, data + size);
    CMemFile file(bytes.data(), static_cast<UINT>(bytes.size()));
    CArchive reading(&file, CArchive::load);
    C_Image image;
    if (!image.ReadFromArchive(reading)) {
        return 0;
    }
    CheckImage(image);
    CMemFile stored;
    {
        CArchive writing(&stored, CArchive::store);
        if (!image.WriteToArchive(writing)) {
            __builtin_trap();
        }
    }
    std::vector<BYTE> storedBytes(stored.Data(), stored.Data() + stored.GetLength());
    CMemFile copy(storedBytes.data(), static_cast<UINT>(storedBytes.size()));
    CArchive rereading(&copy, CArchive::load);
    C_Image again;
    if (!again.ReadFromArchive(rereading)) {
        __builtin_trap();
    }
    CheckSameImage(image, again);
    return 0;
}

}  // namespace vistrane::fuzz
