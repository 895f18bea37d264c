#include <vistrane/platform/section.h>

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <deque>
#include <mutex>
#include <type_traits>
#include <unordered_map>
#include <vector>

namespace {

struct Section {
    int fd;  // -1 for an anonymous shared mapping
    void* view;
    DWORD size;
    bool descriptorHandedOut = false;
};

// Populating a fresh section costs the kernel far more than clearing one already mapped (about
// 20 ms against 4 ms for a 4096 x 3072 24-bit image), and editing makes and drops temporaries
// of one size again and again. So a few closed sections are kept for the next request of
// exactly their size. A section whose descriptor a host asked for is never kept: a compositor
// may still be reading it.
constexpr DWORD kMinRecycledBytes = 1u << 20;
constexpr std::size_t kMaxRecycledSections = 4;
constexpr std::uint64_t kMaxRecycledBytes = 256u << 20;

// Handles are drawn from a counter that only ever increases, so a closed handle is never
// handed out again and a stale one is simply "not open" rather than someone else's section.
struct SectionRegistry {
    std::mutex mutex;
    std::unordered_map<HANDLE, Section> open;
    std::deque<Section> recycled;  // oldest first
    HANDLE nextHandle = 1;
};

SectionRegistry& Registry() {
    static SectionRegistry registry;
    return registry;
}

void Release(const Section& section) {
    munmap(section.view, section.size);
    if (section.fd >= 0) {
        close(section.fd);
    }
}

// A memfd lets a host pass the pixels to a compositor by descriptor; where the kernel has no
// memfd (old kernels, some sandboxes) an anonymous shared mapping still gives the engine its
// memory, only without a descriptor to share.
bool MapSection(DWORD bytes, Section* out) {
    const int fd = memfd_create("vistrane-section", MFD_CLOEXEC);
    if (fd < 0) {
        void* view =
            mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        if (view == MAP_FAILED) {
            return false;
        }
        *out = Section{-1, view, bytes};
        return true;
    }
    if (ftruncate(fd, static_cast<off_t>(bytes)) != 0) {
        close(fd);
        return false;
    }
    void* view = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_POPULATE, fd, 0);
    if (view == MAP_FAILED) {
        close(fd);
        return false;
    }
    *out = Section{fd, view, bytes};
    return true;
}

// A kept section of exactly `bytes` bytes, taken out of the pool; false when there is none.
bool TakeRecycled(SectionRegistry& registry, DWORD bytes, Section* out) {
    const std::lock_guard lock(registry.mutex);
    for (auto it = registry.recycled.begin(); it != registry.recycled.end(); ++it) {
        if (it->size == bytes) {
            *out = *it;
            registry.recycled.erase(it);
            return true;
        }
    }
    return false;
}

// Keeps a closed section for reuse when it qualifies, dropping the oldest kept ones beyond the
// limits; returns the sections to release (outside the lock).
std::vector<Section> Recycle(SectionRegistry& registry, const Section& section) {
    std::vector<Section> released;
    if (section.size < kMinRecycledBytes || section.descriptorHandedOut ||
        section.size > kMaxRecycledBytes) {
        released.push_back(section);
        return released;
    }
    registry.recycled.push_back(section);
    std::uint64_t total = 0;
    for (const Section& kept : registry.recycled) {
        total += kept.size;
    }
    while (registry.recycled.size() > kMaxRecycledSections || total > kMaxRecycledBytes) {
        total -= registry.recycled.front().size;
        released.push_back(registry.recycled.front());
        registry.recycled.pop_front();
    }
    return released;
}

}  // namespace

HANDLE CreateSharedSection(DWORD bytes, void** view) {
    if (view != nullptr) {
        *view = nullptr;
    }
    if (bytes == 0) {
        return 0;
    }
    SectionRegistry& registry = Registry();
    Section section{};
    if (TakeRecycled(registry, bytes, &section)) {
        std::memset(section.view, 0, section.size);
    } else if (!MapSection(bytes, &section)) {
        return 0;
    }
    HANDLE handle = 0;
    try {
        const std::lock_guard lock(registry.mutex);
        handle = registry.nextHandle;
        registry.open.emplace(handle, section);
        ++registry.nextHandle;
    } catch (...) {
        Release(section);
        return 0;
    }
    if (view != nullptr) {
        *view = section.view;
    }
    return handle;
}

BOOL CloseSharedSection(HANDLE handle) {
    std::vector<Section> released;
    {
        SectionRegistry& registry = Registry();
        const std::lock_guard lock(registry.mutex);
        const auto found = registry.open.find(handle);
        if (found == registry.open.end()) {
            return 0;
        }
        const Section section = found->second;
        registry.open.erase(found);
        try {
            released = Recycle(registry, section);
        } catch (...) {
            Release(section);
            return 1;
        }
    }
    for (const Section& section : released) {
        Release(section);
    }
    return 1;
}

void ReleaseRecycledSections() {
    std::deque<Section> released;
    {
        SectionRegistry& registry = Registry();
        const std::lock_guard lock(registry.mutex);
        released.swap(registry.recycled);
    }
    for (const Section& section : released) {
        Release(section);
    }
}

namespace {

template <typename Field>
Field Query(HANDLE handle, Field Section::*field, std::type_identity_t<Field> absent) {
    SectionRegistry& registry = Registry();
    const std::lock_guard lock(registry.mutex);
    const auto found = registry.open.find(handle);
    return found == registry.open.end() ? absent : found->second.*field;
}

}  // namespace

void* SectionView(HANDLE section) {
    return Query(section, &Section::view, nullptr);
}

DWORD SectionSize(HANDLE section) {
    return Query(section, &Section::size, 0);
}

int SectionFileDescriptor(HANDLE section) {
    SectionRegistry& registry = Registry();
    const std::lock_guard lock(registry.mutex);
    const auto found = registry.open.find(section);
    if (found == registry.open.end()) {
        return -1;
    }
    found->second.descriptorHandedOut = true;
    return found->second.fd;
}
