// The AVX2 row kernel of the blending row shears. Built with -mavx2 on its own and called only
// when the CPU reports AVX2 (BestShearRow in rotate.cpp).
//
// Each output byte weighs its input byte and the same channel one pixel earlier: the two are
// interleaved as 16-bit pairs (in, before) and one madd against (4096 - frac, frac) gives the
// exact 32-bit sum, at most 255 * 4096. The first pixel, whose earlier pixel is `prev`, and the
// tail go to ShearRowRef.

#include <immintrin.h>

#include "xform/rotate.h"

namespace vistrane::xform {

namespace {

// Sixteen output bytes in 16-bit lanes, in order.
inline __m256i Shear16(const BYTE* in, int bpp, __m256i weights) {
    const __m256i current =
        _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(in)));
    const __m256i before =
        _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(in - bpp)));
    const __m256i round = _mm256_set1_epi32(2048);
    // unpacklo/hi take lanes 0-3 and 4-7 of each 128-bit half; packs puts them back in order.
    const __m256i low = _mm256_srai_epi32(
        _mm256_add_epi32(_mm256_madd_epi16(_mm256_unpacklo_epi16(current, before), weights), round),
        12);
    const __m256i high = _mm256_srai_epi32(
        _mm256_add_epi32(_mm256_madd_epi16(_mm256_unpackhi_epi16(current, before), weights), round),
        12);
    return _mm256_packs_epi32(low, high);
}

}  // namespace

void ShearRowAvx2(BYTE* out, const BYTE* in, int bytes, int bpp, const BYTE* prev, int frac) {
    const int head = bytes < bpp ? bytes : bpp;
    ShearRowRef(out, in, head, bpp, prev, frac);
    // 16-bit pairs (in, before) against (4096 - frac, frac): bits 0-15 and 16-31 of each lane.
    const __m256i weights = _mm256_set1_epi32((frac << 16) | (4096 - frac));
    int j = head;
    for (; j + 32 <= bytes; j += 32) {
        const __m256i low = Shear16(in + j, bpp, weights);
        const __m256i high = Shear16(in + j + 16, bpp, weights);
        // packus interleaves the 128-bit lanes; 0xD8 = 0, 2, 1, 3 restores the order.
        const __m256i result = _mm256_permute4x64_epi64(_mm256_packus_epi16(low, high), 0xD8);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + j), result);
    }
    if (j < bytes) {
        ShearRowRef(out + j, in + j, bytes - j, bpp, in + j - bpp, frac);
    }
}

}  // namespace vistrane::xform
