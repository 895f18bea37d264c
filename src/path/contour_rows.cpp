// The reference forms of the tracer's byte-row loops and the choice of the fastest set.

#include "path/contour_rows.h"

namespace vistrane::path {

long MarkEdgeRowRef(const unsigned char* row, const unsigned char* up, const unsigned char* down,
                    unsigned char* out, long x0, long x1, long width) {
    long edges = 0;
    for (long x = x0; x < x1; ++x) {
        const unsigned left = x > 0 ? row[x - 1] : 0;
        const unsigned right = x + 1 < width ? row[x + 1] : 0;
        const unsigned isEdge =
            static_cast<unsigned>(row[x] != 0) &
            (static_cast<unsigned>(left == 0) | static_cast<unsigned>(right == 0) |
             static_cast<unsigned>(up[x] == 0) | static_cast<unsigned>(down[x] == 0));
        out[x] = static_cast<unsigned char>(0u - isEdge);  // 1 -> 255, 0 -> 0
        edges += isEdge;
    }
    return edges;
}

void KeepEdgesRef(unsigned char* p, long n) {
    for (long i = 0; i < n; ++i) {
        p[i] = static_cast<unsigned char>(0u - static_cast<unsigned>(p[i] == 255));
    }
}

const ContourRowKernels& ContourRowKernelsFor(cpu::InstructionSet set) {
    static const ContourRowKernels reference{MarkEdgeRowRef, KeepEdgesRef};
#if VISTRANE_X86_KERNELS
    static const ContourRowKernels sse2{MarkEdgeRowSse2, KeepEdgesSse2};
    if (set != cpu::InstructionSet::kReference) {
        return sse2;
    }
#else
    (void)set;
#endif
    return reference;
}

}  // namespace vistrane::path
