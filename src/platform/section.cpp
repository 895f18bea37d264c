#include <vistrane/platform/section.h>

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <mutex>
#include <type_traits>
#include <unordered_map>

namespace {

struct Section {
    int fd;  // -1 for an anonymous shared mapping
    void* view;
    DWORD size;
};

// Handles are drawn from a counter that only ever increases, so a closed handle is never
// handed out again and a stale one is simply "not open" rather than someone else's section.
struct SectionRegistry {
    std::mutex mutex;
    std::unordered_map<HANDLE, Section> open;
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
    void* view = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
    if (view == MAP_FAILED) {
        close(fd);
        return false;
    }
    *out = Section{fd, view, bytes};
    return true;
}

}  // namespace

HANDLE CreateSharedSection(DWORD bytes, void** view) {
    if (view != nullptr) {
        *view = nullptr;
    }
    if (bytes == 0) {
        return 0;
    }
    Section section{};
    if (!MapSection(bytes, &section)) {
        return 0;
    }
    HANDLE handle = 0;
    try {
        SectionRegistry& registry = Registry();
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
    Section section{};
    {
        SectionRegistry& registry = Registry();
        const std::lock_guard lock(registry.mutex);
        const auto found = registry.open.find(handle);
        if (found == registry.open.end()) {
            return 0;
        }
        section = found->second;
        registry.open.erase(found);
    }
    Release(section);
    return 1;
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
    return Query(section, &Section::fd, -1);
}
