// AVX2 convolution rows: 32 bytes a block, as four vectors of eight 32-bit sums, two taps per
// multiply-add when the weights fit 16 bits and one per 32-bit multiply otherwise.
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

// Lays the four vectors of eight sums out as 32 bytes after division, offset and clamping.
// `order` undoes the groupings that the packs (and the caller's sum layout) leave behind.
inline void Finish(const __m256i* sum, const ExactDivider& divider, __m256i magic, __m128i shift,
                   __m256i offsets, BYTE* out, bool pairedLayout) {
    const __m256i zero = _mm256_setzero_si256();
    const __m256i top = _mm256_set1_epi32(255);
    __m256i level[4];
    for (int k = 0; k < 4; ++k) {
        const __m256i v = _mm256_add_epi32(DivideLanes(sum[k], divider, magic, shift), offsets);
        level[k] = _mm256_min_epi32(_mm256_max_epi32(v, zero), top);
    }
    const __m256i packed = _mm256_packus_epi16(_mm256_packus_epi32(level[0], level[1]),
                                               _mm256_packus_epi32(level[2], level[3]));
    if (pairedLayout) {
        // sums hold bytes [0-3, 8-11], [4-7, 12-15], [16-19, 24-27], [20-23, 28-31]; after the
        // packs the 8-byte groups are 0-7, 16-23, 8-15, 24-31.
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(out),
                            _mm256_permute4x64_epi64(packed, 0xD8));
        return;
    }
    // sums hold bytes 0-7, 8-15, 16-23, 24-31; after the packs the 4-byte groups are
    // 0-3, 8-11, 16-19, 24-27, 4-7, 12-15, 20-23, 28-31.
    const __m256i order = _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(out),
                        _mm256_permutevar8x32_epi32(packed, order));
}

// Weights that fit 16 bits: two taps per _mm256_madd_epi16, which multiplies the interleaved
// 16-bit bytes of two rows by their two weights and adds each pair into a 32-bit lane, exactly
// (255 * 32768 * 2 < 2^31). An odd last tap is paired with itself at weight 0.
void ConvolvePairs(const BYTE* const* tapRows, const int* weights, int nTaps, int& i, int end,
                   const ExactDivider& divider, int offset, BYTE* out) {
    const __m256i magic = _mm256_set1_epi32(divider.Magic());
    const __m128i shift = _mm_cvtsi32_si128(divider.Shift());
    const __m256i offsets = _mm256_set1_epi32(offset);
    for (; i + 32 <= end; i += 32) {
        __m256i sum[4] = {_mm256_setzero_si256(), _mm256_setzero_si256(), _mm256_setzero_si256(),
                          _mm256_setzero_si256()};
        for (int t = 0; t < nTaps; t += 2) {
            const bool single = t + 1 == nTaps;
            const BYTE* a = tapRows[t] + i;
            const BYTE* b = single ? a : tapRows[t + 1] + i;
            const int wb = single ? 0 : weights[t + 1];
            // (low 16 bits: weight of a, high 16 bits: weight of b) in every 32-bit lane
            const __m256i w = _mm256_set1_epi32(static_cast<int>(
                (static_cast<unsigned>(wb) << 16) | (static_cast<unsigned>(weights[t]) & 0xFFFFu)));
            for (int half = 0; half < 2; ++half) {
                const __m256i va = _mm256_cvtepu8_epi16(
                    _mm_loadu_si128(reinterpret_cast<const __m128i*>(a + 16 * half)));
                const __m256i vb = _mm256_cvtepu8_epi16(
                    _mm_loadu_si128(reinterpret_cast<const __m128i*>(b + 16 * half)));
                sum[2 * half] = _mm256_add_epi32(
                    sum[2 * half], _mm256_madd_epi16(_mm256_unpacklo_epi16(va, vb), w));
                sum[2 * half + 1] = _mm256_add_epi32(
                    sum[2 * half + 1], _mm256_madd_epi16(_mm256_unpackhi_epi16(va, vb), w));
            }
        }
        Finish(sum, divider, magic, shift, offsets, out + i, true);
    }
}

bool FitSixteenBits(const int* weights, int nTaps) {
    for (int t = 0; t < nTaps; ++t) {
        if (weights[t] < -32768 || weights[t] > 32767) {
            return false;
        }
    }
    return true;
}

}  // namespace

void ConvolveBytesAvx2(const BYTE* const* tapRows, const int* weights, int nTaps, int start,
                       int end, const ExactDivider& divider, int offset, BYTE* out) {
    int i = start;
    if (FitSixteenBits(weights, nTaps)) {
        ConvolvePairs(tapRows, weights, nTaps, i, end, divider, offset, out);
    } else {
        const __m256i magic = _mm256_set1_epi32(divider.Magic());
        const __m128i shift = _mm_cvtsi32_si128(divider.Shift());
        const __m256i offsets = _mm256_set1_epi32(offset);
        for (; i + 32 <= end; i += 32) {
            __m256i sum[4] = {_mm256_setzero_si256(), _mm256_setzero_si256(),
                              _mm256_setzero_si256(), _mm256_setzero_si256()};
            for (int t = 0; t < nTaps; ++t) {
                const BYTE* p = tapRows[t] + i;
                const __m256i w = _mm256_set1_epi32(weights[t]);
                for (int k = 0; k < 4; ++k) {
                    const __m256i bytes = _mm256_cvtepu8_epi32(
                        _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p + 8 * k)));
                    sum[k] = _mm256_add_epi32(sum[k], _mm256_mullo_epi32(bytes, w));
                }
            }
            Finish(sum, divider, magic, shift, offsets, out + i, false);
        }
    }
    if (i < end) {
        ConvolveBytesRef(tapRows, weights, nTaps, i, end, divider, offset, out);
    }
}

}  // namespace vistrane::filter
