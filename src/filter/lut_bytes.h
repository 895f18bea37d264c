#pragma once

// One 256-entry table applied to every byte of a span: the unmasked form of a colour operation
// whose three channel tables are equal (negative, contrast, gamma and the other one-table
// operations), and of every unmasked grey-image table operation. The AVX2 form gives the
// reference's bytes and handles whole 32-byte blocks, the rest going to the reference.

#include <vistrane/platform/types.h>

namespace vistrane::filter {

using LutBytesFn = void (*)(BYTE* bytes, int count, const BYTE* table);

void LutBytesRef(BYTE* bytes, int count, const BYTE* table);
// Defined in lut_bytes_avx2.cpp; call only when the CPU has AVX2.
void LutBytesAvx2(BYTE* bytes, int count, const BYTE* table);
LutBytesFn BestLutBytes();

}  // namespace vistrane::filter
