#pragma once

// The row kernels of the flips, the shears of the rotation and the bilinear enlargement: the
// plain rule of each, its AVX2 form (x86-64 only) with the same bytes, and the choice by
// instruction set. Narrow on purpose: the AVX2 files include this header and nothing that could
// carry inline code of the rest of the engine.

#include <cstdint>

#include <vistrane/platform/types.h>

#include "platform/cpu_features.h"

namespace vistrane::xform {

// The row kernels of FlipHorizontal: each reverses the order of `count` pixels of 1 or 3 bytes
// in place, touching nothing outside them. FlipRowRef is the rule; FlipRowAvx2 (x86-64 only,
// callable only on a CPU with AVX2) gives the same bytes.
void FlipRowRef(BYTE* row, int count, int bytesPerPixel);
void FlipRowAvx2(BYTE* row, int count, int bytesPerPixel);
using FlipRowKernel = void (*)(BYTE* row, int count, int bytesPerPixel);
FlipRowKernel FlipRowFor(cpu::InstructionSet set);

// The row kernels of the blending row shears: byte j of `out` becomes
// (in[j] * (4096 - frac) + before * frac + 2048) >> 12, where `before` is in[j - bpp], or
// prev[j] for the first pixel. `bytes` is a whole number of pixels. ShearRowRef is the rule;
// ShearRowAvx2 (x86-64 only, callable only on a CPU with AVX2) gives the same bytes and never
// touches anything outside the row.
void ShearRowRef(BYTE* out, const BYTE* in, int bytes, int bpp, const BYTE* prev, int frac);
void ShearRowAvx2(BYTE* out, const BYTE* in, int bytes, int bpp, const BYTE* prev, int frac);
using ShearRowKernel = void (*)(BYTE* out, const BYTE* in, int bytes, int bpp, const BYTE* prev,
                                int frac);
ShearRowKernel ShearRowFor(cpu::InstructionSet set);

// The row kernel of the column shear, which runs across a strip of columns one source row at
// a time: byte j of `out` becomes (in[j] * (4096 - f) + above[j] * f + 2048) >> 12, with the
// byte's own fraction packed as weights[j] = f << 16 | (4096 - f). ShearPairsRef is the rule;
// ShearPairsAvx2 gives the same bytes, as above.
void ShearPairsRef(BYTE* out, const BYTE* in, const BYTE* above, const std::int32_t* weights,
                   int bytes);
void ShearPairsAvx2(BYTE* out, const BYTE* in, const BYTE* above, const std::int32_t* weights,
                    int bytes);
using ShearPairsKernel = void (*)(BYTE* out, const BYTE* in, const BYTE* above,
                                  const std::int32_t* weights, int bytes);
ShearPairsKernel ShearPairsFor(cpu::InstructionSet set);

// The row kernels of the enlarging worker. The worker first gathers each source row it needs
// into two byte rows laid out like the destination row (byte i of `own` is the channel of the
// source pixel in the destination pixel's own column, byte i of `side` the same channel in its
// neighbour column), so a kernel only weighs four aligned bytes per destination byte:
//   wD = ay * ax / 100, wR = (100 - ax) * ay / 100, wC = (100 - ay) * ax / 100,
//   wM = 100 - wC - wR - wD,
//   out = own * wM / 100 + side * wC / 100 + ownNext * wR / 100 + sideNext * wD / 100,
// every division truncating on its own. ExpandRowRef is the rule; ExpandRowAvx2 (x86-64 only,
// callable only on a CPU with AVX2) gives the same bytes and never touches anything past
// `count`.
struct ExpandRowInputs {
    const BYTE* own;          // source row, own column
    const BYTE* side;         // source row, neighbour column
    const BYTE* ownNext;      // neighbour row, own column
    const BYTE* sideNext;     // neighbour row, neighbour column
    const std::uint16_t* ax;  // |fx| of each destination byte's column, 0..50
    int ay;                   // |fy| of the row, 0..50
};
void ExpandRowRef(BYTE* dst, int count, const ExpandRowInputs& in);
void ExpandRowAvx2(BYTE* dst, int count, const ExpandRowInputs& in);
using ExpandRowKernel = void (*)(BYTE* dst, int count, const ExpandRowInputs& in);
ExpandRowKernel ExpandRowFor(cpu::InstructionSet set);

}  // namespace vistrane::xform
