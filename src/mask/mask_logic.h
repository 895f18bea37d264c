#pragma once

// Whole-buffer byte operations between masks. They run over the buffer bytes, padding included,
// so one pass covers the image; the loops are plain enough for the compiler to vectorise, and
// they run at memory speed.

#include <cstddef>

#include <vistrane/platform/types.h>

namespace vistrane::mask {

enum class LogicOp { kAnd, kAndNot, kOr, kOrNot, kXor };

// d = d op s over `count` bytes (bitwise).
void CombineBytes(BYTE* d, const BYTE* s, std::size_t count, LogicOp op);
void InvertBytes(BYTE* d, std::size_t count);
// The first (number of non-zero bytes of s) bytes of d become 0: the logical and-not keeps a
// cursor in d that only moves on a selected source byte.
void ClearCountOfSelected(BYTE* d, const BYTE* s, std::size_t count);
void ReplaceBytes(BYTE* d, std::size_t count, BYTE from, BYTE to);
void ReplaceBytesElse(BYTE* d, std::size_t count, BYTE from, BYTE to, BYTE other);

}  // namespace vistrane::mask
