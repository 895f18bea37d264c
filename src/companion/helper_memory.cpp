// C_Helper: memory blocks and shareable map buffers.

#include <cstdlib>

#include <vistrane/companion/helper.h>
#include <vistrane/platform/section.h>

void* C_Helper::SafeVirtualAlloc(DWORD bytes) { return std::malloc(bytes == 0 ? 1 : bytes); }

int C_Helper::SafeVirtualFree(void* block) {
    std::free(block);
    return 1;
}

void* C_Helper::AllocSysMapBuffer(HANDLE* section, DWORD bytes) {
    void* view = nullptr;
    *section = CreateSharedSection(bytes, &view);
    return *section != 0 ? view : nullptr;
}

void C_Helper::FreeMapBuffer(HANDLE* section, void* /*view: the section knows its own*/) {
    CloseSharedSection(*section);
    *section = 0;
}
