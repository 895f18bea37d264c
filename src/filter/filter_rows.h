#pragma once

// The byte-wise convolution row of FilterImage, in a plain reference and an AVX2 form chosen once
// per call from the CPU. Both compute, for every byte index i in [start, end):
//   out[i] = clamp(divider(sum over taps t of weights[t] * tapRows[t][i]) + offset, 0, 255)
// with 32-bit sums, and give identical bytes; the AVX2 form handles whole blocks of 32 bytes
// and hands the rest of the range to the reference.

#include "filter/exact_divide.h"
#include "platform/cpu_features.h"

#include <vistrane/platform/types.h>

namespace vistrane::filter {

using ConvolveBytesFn = void (*)(const BYTE* const* tapRows, const int* weights, int nTaps,
                                 int start, int end, const ExactDivider& divider, int offset,
                                 BYTE* out);

void ConvolveBytesRef(const BYTE* const* tapRows, const int* weights, int nTaps, int start, int end,
                      const ExactDivider& divider, int offset, BYTE* out);
// Defined in filter_rows_avx2.cpp; call only when the CPU has AVX2.
void ConvolveBytesAvx2(const BYTE* const* tapRows, const int* weights, int nTaps, int start,
                       int end, const ExactDivider& divider, int offset, BYTE* out);

ConvolveBytesFn ConvolveBytesFor(cpu::InstructionSet set);

}  // namespace vistrane::filter
