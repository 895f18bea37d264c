// AVX2 convolution rows: 32 bytes a block, as four vectors of eight 32-bit sums.
//
// The exact division runs the scalar ExactDivider rule in every lane: the high half of the
// signed 64-bit product magic * n comes from _mm256_mul_epi32 on the even lanes and on the odd
// lanes shifted down, re-interleaved with one blend; then the same correction, arithmetic shift
// and +1 for negative quotients.

#include "filter/filter_rows.h"

#include <immintrin.h>

namespace vistrane::filter {
namespace {

inline __m256i DivideLanes(__m256i n, const ExactDivider& divider, __m256i magic, __m128i shift) {
    if (divider.Trivial() == 1) {
        return n;
    }
    if (divider.Trivial() == -1) {
        return _mm256_sub_epi32(_mm256_setzero_si256(), n);
    }
    const __m256i even = _mm256_srli_epi64(_mm256_mul_epi32(n, magic), 32);
    const __m256i odd = _mm256_mul_epi32(_mm256_srli_epi64(n, 32), magic);
    __m256i q = _mm256_blend_epi32(even, odd, 0xAA);  // high halves: lanes 0,2,4,6 | 1,3,5,7
    if (divider.Correction() > 0) {
        q = _mm256_add_epi32(q, n);
    } else if (divider.Correction() < 0) {
        q = _mm256_sub_epi32(q, n);
    }
    q = _mm256_sra_epi32(q, shift);
    return _mm256_add_epi32(q, _mm256_srli_epi32(q, 31));
}

}  // namespace

void ConvolveBytesAvx2(const BYTE* const* tapRows, const int* weights, int nTaps, int start,
                       int end, const ExactDivider& divider, int offset, BYTE* out) {
    const __m256i magic = _mm256_set1_epi32(divider.Magic());
    const __m128i shift = _mm_cvtsi32_si128(divider.Shift());
    const __m256i offsets = _mm256_set1_epi32(offset);
    const __m256i zero = _mm256_setzero_si256();
    const __m256i top = _mm256_set1_epi32(255);
    // packus_epi32 then packus_epi16 leave the four 4-byte groups of each 128-bit lane in the
    // order a, b, c, d; this permutation of 32-bit groups restores a0-7 b0-7 c0-7 d0-7.
    const __m256i order = _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7);
    int i = start;
    for (; i + 32 <= end; i += 32) {
        __m256i sum[4] = {zero, zero, zero, zero};
        for (int t = 0; t < nTaps; ++t) {
            const BYTE* p = tapRows[t] + i;
            const __m256i w = _mm256_set1_epi32(weights[t]);
            for (int k = 0; k < 4; ++k) {
                const __m256i bytes = _mm256_cvtepu8_epi32(
                    _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p + 8 * k)));
                sum[k] = _mm256_add_epi32(sum[k], _mm256_mullo_epi32(bytes, w));
            }
        }
        __m256i level[4];
        for (int k = 0; k < 4; ++k) {
            const __m256i v = _mm256_add_epi32(DivideLanes(sum[k], divider, magic, shift), offsets);
            level[k] = _mm256_min_epi32(_mm256_max_epi32(v, zero), top);
        }
        const __m256i packed = _mm256_packus_epi16(_mm256_packus_epi32(level[0], level[1]),
                                                   _mm256_packus_epi32(level[2], level[3]));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + i),
                            _mm256_permutevar8x32_epi32(packed, order));
    }
    if (i < end) {
        ConvolveBytesRef(tapRows, weights, nTaps, i, end, divider, offset, out);
    }
}

}  // namespace vistrane::filter
