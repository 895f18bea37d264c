#pragma once

// One 256-entry table applied to every byte of a span: the unmasked form of a colour operation
// whose three channel tables are equal (negative, contrast, gamma and the other one-table
// operations), and of every unmasked grey-image table operation. The AVX2 form gives the
// reference's bytes and handles whole 32-byte blocks, the rest going to the reference.

#include <vistrane/platform/types.h>
#include "platform/cpu_features.h"

#include <cstdint>

namespace vistrane::filter {

using LutBytesFn = void (*)(BYTE* bytes, int count, const BYTE* table);

void LutBytesRef(BYTE* bytes, int count, const BYTE* table);
// Defined in lut_bytes_avx2.cpp; call only when the CPU has AVX2.
void LutBytesAvx2(BYTE* bytes, int count, const BYTE* table);
LutBytesFn LutBytesFor(cpu::InstructionSet set);

// Three different tables over 24-bit pixels: blue[B], green[G], red[R]. The word row takes
// four pixels (12 bytes) a step and writes them back as three 32-bit words, each assembled from
// four entries of tables widened to 32 bits (so no byte merging is needed): twelve byte loads,
// twelve look-ups and three stores per four pixels where the plain loop has twelve stores, all
// loads of a step before its stores. It needs no vector instructions, so it serves every CPU;
// the widened tables are made once per operation. (An AVX2 gather form, eight look-ups an
// instruction, ran no faster than the plain loop on the machines we measured.)
struct BgrLut {
    std::uint32_t entries[3][256];  // [channel][byte]; channel 0 blue, 1 green, 2 red
};
void FillBgrLut(BgrLut& lut, const BYTE* blue, const BYTE* green, const BYTE* red);

using LutBgrFn = void (*)(BYTE* pixels, int count, const BgrLut& lut);

void LutBgrRef(BYTE* pixels, int count, const BgrLut& lut);
// Whole groups of four pixels; the rest goes to the reference.
void LutBgrWords(BYTE* pixels, int count, const BgrLut& lut);

}  // namespace vistrane::filter
