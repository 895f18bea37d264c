#pragma once

// Every size that becomes a 32-bit header field or allocation is computed here, in 64 bits,
// once, so no caller multiplies widths and heights itself.

#include <optional>

#include <vistrane/platform/types.h>

namespace vistrane::image {

// Bytes of a padded bitmap row of `width` pixels of `bits` bits; nullopt when width < 1.
std::optional<long long> PaddedRowBytes(long width, int bits);

// Bytes of width x height pixels of `bits` bits in padded rows, plus `extraBytes` (a header);
// nullopt when a dimension is below 1 or the total does not fit a signed 32-bit size field.
std::optional<DWORD> BitmapBytes(long width, long height, int bits, long long extraBytes = 0);

// Bytes of width x height pixels of pixSize bytes in packed rows; same refusals.
std::optional<DWORD> PackedBytes(long width, long height, int pixSize);

}  // namespace vistrane::image
