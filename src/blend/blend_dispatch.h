#pragma once

// Fast paths of the blend subsystem.
//
// The rules in blend_kernels.h are the reference and define the bytes. A mode whose rule treats
// every byte alike (normal, multiply, screen, overlay, hard light, darken, lighten, difference)
// also has byte rows: functions over `bytes` contiguous bytes that serve 1 and 3 bytes per
// pixel alike. The plain byte rows below look the tables up exactly as the rules do; the AVX2
// rows compute the same table entries arithmetically, 32 bytes at a time, and hand the last
// bytes of a row to the plain byte row. The sets are those of platform/cpu_features.h; a set
// without rows of its own gives the plain ones.

#include "blend/blend_kernels.h"
#include "platform/cpu_features.h"

namespace vistrane::blend {

// The byte row of a mode in a set, or null when the mode has none (the caller then loops over
// the pixel rule). kReference gives the plain table rows; FastByteRow the best set's row.
ByteRowFn ByteRowFor(int mode, cpu::InstructionSet set);
ByteRowFn FastByteRow(int mode);

// The AVX2 rows, defined in blend_byte_rows_avx2.cpp; null when the mode has no AVX2 row.
ByteRowFn Avx2ByteRow(int mode);

// The merge step for whole vectors; the opacities are per pixel, the pixels 1 or 3 bytes. The
// plain form is MergeTrueColorRow / MergeGreyRow.
using MergeRowFn = void (*)(BYTE* pixels, const BYTE* result, const BYTE* opacity, int count);
MergeRowFn MergeRowFor(int bytesPerPixel, cpu::InstructionSet set);
MergeRowFn Avx2MergeRow(int bytesPerPixel);

}  // namespace vistrane::blend
