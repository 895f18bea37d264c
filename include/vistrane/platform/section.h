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

// Closes the section; returns 0 for a handle that is not open. The handle is never valid
// again. Up to four sections of 1 MiB or more (256 MiB in all) are kept mapped after closing
// and handed, cleared, to the next request of exactly their size, because clearing costs far
// less than populating new pages; a section whose descriptor was asked for is always unmapped
// and closed at once.
VISTRANE_API BOOL CloseSharedSection(HANDLE section);

// Unmaps and closes the sections kept for reuse, for a host that wants the memory back now.
VISTRANE_API void ReleaseRecycledSections();

// The mapped view, size in bytes and file descriptor of an open section: null, 0 and -1 for a
// handle that is not open (and -1 for an anonymous mapping, which has no descriptor). Asking
// for the descriptor marks the section as shared with someone else, so it is not reused.
VISTRANE_API void* SectionView(HANDLE section);
VISTRANE_API DWORD SectionSize(HANDLE section);
VISTRANE_API int SectionFileDescriptor(HANDLE section);
