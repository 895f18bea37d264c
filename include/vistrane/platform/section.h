#pragma once

// Shareable memory sections. A section is a memfd (or, where memfd is unavailable, an anonymous
// shared mapping) mapped once with MAP_SHARED; its HANDLE is an opaque non-zero value. A host that
// wants to hand an image's pixels to a compositor (Wayland wl_shm, X11 MIT-SHM) without a copy
// asks for the descriptor with SectionFileDescriptor and maps it itself.

#include <vistrane/export.h>
#include <vistrane/platform/types.h>

// Creates a section of `bytes` bytes (at least 1) and maps a view of it from offset 0. The pages
// of a new section read as zero. Returns the handle and stores the view in *view, or returns 0
// and stores null on failure.
VISTRANE_API HANDLE CreateSharedSection(DWORD bytes, void** view);

// Unmaps the section's view and closes it. Returns 0 for a handle that is not open.
VISTRANE_API BOOL CloseSharedSection(HANDLE section);

// The mapped view, size in bytes and file descriptor of an open section: null, 0 and -1 for a
// handle that is not open (and -1 for an anonymous mapping, which has no descriptor).
VISTRANE_API void* SectionView(HANDLE section);
VISTRANE_API DWORD SectionSize(HANDLE section);
VISTRANE_API int SectionFileDescriptor(HANDLE section);
