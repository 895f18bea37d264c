#pragma once

// Global memory handles for packed bitmaps: heap blocks behind opaque handles. A handle is locked
// to reach its bytes; the block does not move while the handle lives.

#include <cstddef>

#include <vistrane/export.h>
#include <vistrane/platform/types.h>

namespace vistrane::platform {
struct GlobalBlock;
}
using HGLOBAL = vistrane::platform::GlobalBlock*;

constexpr UINT GMEM_FIXED = 0x0000;
constexpr UINT GMEM_MOVEABLE = 0x0002;
constexpr UINT GMEM_ZEROINIT = 0x0040;
constexpr UINT GHND = GMEM_MOVEABLE | GMEM_ZEROINIT;

// A new block of `bytes` bytes, zero-filled with GMEM_ZEROINIT; null when it cannot be had.
VISTRANE_API HGLOBAL GlobalAlloc(UINT flags, std::size_t bytes);
// The block's bytes (null for a null handle); every lock is matched by a GlobalUnlock.
VISTRANE_API void* GlobalLock(HGLOBAL block);
// Non-zero while the block is still locked after this unlock.
VISTRANE_API BOOL GlobalUnlock(HGLOBAL block);
// The block's size in bytes; 0 for a null handle.
VISTRANE_API std::size_t GlobalSize(HGLOBAL block);
// Frees the block; returns null on success (and for a null handle).
VISTRANE_API HGLOBAL GlobalFree(HGLOBAL block);
