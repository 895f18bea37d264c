// The tracer's byte-row loops, 16 pixels per SSE2 register; see contour_rows.h. The first and
// last pixel of a row, whose neighbours lie outside it, and the tail are left to the reference.
// SSE2 is part of every x86-64 processor, so this file needs no extra compiler flags.

#include "path/contour_rows.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace vistrane::path {

#if defined(__SSE2__)

namespace {

inline __m128i Load(const unsigned char* p) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
}

}  // namespace

long MarkEdgeRowSse2(const unsigned char* row, const unsigned char* up, const unsigned char* down,
                     unsigned char* out, long x0, long x1, long width) {
    // Inside [1, width - 1) every neighbour is in the row, so no byte needs the outside rule.
    const long lo = x0 > 1 ? x0 : 1;
    const long hi = x1 < width - 1 ? x1 : width - 1;
    if (hi - lo < 16) {
        return MarkEdgeRowRef(row, up, down, out, x0, x1, width);
    }
    long edges = MarkEdgeRowRef(row, up, down, out, x0, lo, width);
    const __m128i zero = _mm_setzero_si128();
    long x = lo;
    for (; x + 16 <= hi; x += 16) {
        const __m128i anyZero = _mm_or_si128(
            _mm_or_si128(_mm_cmpeq_epi8(Load(row + x - 1), zero),
                         _mm_cmpeq_epi8(Load(row + x + 1), zero)),
            _mm_or_si128(_mm_cmpeq_epi8(Load(up + x), zero), _mm_cmpeq_epi8(Load(down + x), zero)));
        // 0xff where selected and some neighbour is not: the byte the reference writes.
        const __m128i edge = _mm_andnot_si128(_mm_cmpeq_epi8(Load(row + x), zero), anyZero);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + x), edge);
        edges += __builtin_popcount(static_cast<unsigned>(_mm_movemask_epi8(edge)));
    }
    return edges + MarkEdgeRowRef(row, up, down, out, x, x1, width);
}

void KeepEdgesSse2(unsigned char* p, long n) {
    const __m128i edge = _mm_set1_epi8(static_cast<char>(0xff));
    long i = 0;
    for (; i + 16 <= n; i += 16) {
        __m128i* q = reinterpret_cast<__m128i*>(p + i);
        _mm_storeu_si128(q, _mm_cmpeq_epi8(_mm_loadu_si128(q), edge));
    }
    KeepEdgesRef(p + i, n - i);
}

#else

long MarkEdgeRowSse2(const unsigned char* row, const unsigned char* up, const unsigned char* down,
                     unsigned char* out, long x0, long x1, long width) {
    return MarkEdgeRowRef(row, up, down, out, x0, x1, width);
}

void KeepEdgesSse2(unsigned char* p, long n) {
    KeepEdgesRef(p, n);
}

#endif

}  // namespace vistrane::path
