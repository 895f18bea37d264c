#include <vistrane/platform/memory.h>

#include <cstddef>
#include <cstdlib>
#include <limits>
#include <new>

namespace vistrane::platform {

// The handle is the block record itself; the bytes are a separate heap allocation so that a
// failed allocation of a huge block is an ordinary null rather than an exception.
struct GlobalBlock {
    std::size_t size;
    unsigned lockCount;
    void* bytes;
};

}  // namespace vistrane::platform

using vistrane::platform::GlobalBlock;

HGLOBAL GlobalAlloc(UINT flags, std::size_t bytes) {
    // No object can be larger than a pointer difference can span; asking the allocator would
    // only fail, or abort under a sanitizer's allocator.
    if (bytes > static_cast<std::size_t>(std::numeric_limits<std::ptrdiff_t>::max())) {
        return nullptr;
    }
    // A zero-byte block still gets a distinct address, so locking it never looks like failure.
    const std::size_t allocated = bytes != 0 ? bytes : 1;
    void* memory =
        (flags & GMEM_ZEROINIT) != 0 ? std::calloc(allocated, 1) : std::malloc(allocated);
    if (memory == nullptr) {
        return nullptr;
    }
    auto* block = new (std::nothrow) GlobalBlock{bytes, 0, memory};
    if (block == nullptr) {
        std::free(memory);
    }
    return block;
}

void* GlobalLock(HGLOBAL block) {
    if (block == nullptr) {
        return nullptr;
    }
    ++block->lockCount;
    return block->bytes;
}

BOOL GlobalUnlock(HGLOBAL block) {
    if (block == nullptr || block->lockCount == 0) {
        return 0;
    }
    --block->lockCount;
    return block->lockCount != 0 ? 1 : 0;
}

std::size_t GlobalSize(HGLOBAL block) {
    return block != nullptr ? block->size : 0;
}

HGLOBAL GlobalFree(HGLOBAL block) {
    if (block != nullptr) {
        std::free(block->bytes);
        delete block;
    }
    return nullptr;
}
