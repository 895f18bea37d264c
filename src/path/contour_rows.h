#pragma once

// The tracer's two byte-row loops, each with a plain reference and an SSE2 form of the same
// bytes: marking the edge pixels of one mask row, and wiping the labels of traced contours.

#include "platform/cpu_features.h"

namespace vistrane::path {

// For x in [x0, x1): out[x] = 255 when row[x] is non-zero and one of its 4-neighbours is zero
// (row[x - 1] and row[x + 1] count as zero outside 0..width-1; `up` and `down` are the rows
// above and below, all zero outside the mask), otherwise 0. Returns the number of 255s written.
using MarkEdgeRowFunction = long (*)(const unsigned char* row, const unsigned char* up,
                                     const unsigned char* down, unsigned char* out, long x0,
                                     long x1, long width);

// p[i] = 255 where it is 255, otherwise 0, for i < n: edge pixels stay untraced, labels go.
using KeepEdgesFunction = void (*)(unsigned char* p, long n);

struct ContourRowKernels {
    MarkEdgeRowFunction markEdgeRow;
    KeepEdgesFunction keepEdges;
};

long MarkEdgeRowRef(const unsigned char* row, const unsigned char* up, const unsigned char* down,
                    unsigned char* out, long x0, long x1, long width);
void KeepEdgesRef(unsigned char* p, long n);

long MarkEdgeRowSse2(const unsigned char* row, const unsigned char* up, const unsigned char* down,
                     unsigned char* out, long x0, long x1, long width);
void KeepEdgesSse2(unsigned char* p, long n);

// The kernels written for an instruction set: SSE2 serves AVX2 too.
const ContourRowKernels& ContourRowKernelsFor(cpu::InstructionSet set);

}  // namespace vistrane::path
