#pragma once

// The unmasked grey conversion of a 24-bit row: every pixel becomes (B + G + R) / 3 (truncating)
// in all three bytes. The AVX2 form gives the reference's bytes, 16 pixels a step, the rest of
// the row going to the reference.

#include <vistrane/platform/types.h>
#include "platform/cpu_features.h"

namespace vistrane::filter {

using GreyBgrFn = void (*)(BYTE* row, int count);

void GreyBgrRef(BYTE* row, int count);
// Defined in grey_bgr_avx2.cpp; call only when the CPU has AVX2.
void GreyBgrAvx2(BYTE* row, int count);
GreyBgrFn GreyBgrFor(cpu::InstructionSet set);

}  // namespace vistrane::filter
