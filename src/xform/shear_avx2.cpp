// The AVX2 row kernels of the blending shears. Built with -mavx2 on its own and called only
// when the CPU reports AVX2 (BestShearRow and BestShearPairs in rotate.cpp).
//
// Each output byte weighs its input byte and one earlier byte (the same channel one pixel
// earlier in a row shear, the pixel above in the column shear): the two are interleaved as
// 16-bit pairs (in, before) and one madd against (4096 - frac, frac) gives the exact 32-bit
// sum, at most 255 * 4096. The first pixel of a row shear, whose earlier pixel is `prev`, and
// the tails go to the reference kernels.

#include <immintrin.h>

#include <cstdint>

#include "xform/xform_kernels.h"

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

void ShearPairsAvx2(BYTE* out, const BYTE* in, const BYTE* above, const std::int32_t* weights,
                    int bytes) {
    const __m256i round = _mm256_set1_epi32(2048);
    int j = 0;
    for (; j + 16 <= bytes; j += 16) {
        const __m256i current =
            _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(in + j)));
        const __m256i before =
            _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(above + j)));
        const __m256i w0 = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(weights + j));
        const __m256i w1 = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(weights + j + 8));
        // unpacklo pairs bytes 0-3 and 8-11, unpackhi bytes 4-7 and 12-15: the weights of the
        // same bytes are the low and the high 128-bit halves of w0 and w1.
        const __m256i low = _mm256_srai_epi32(
            _mm256_add_epi32(_mm256_madd_epi16(_mm256_unpacklo_epi16(current, before),
                                               _mm256_permute2x128_si256(w0, w1, 0x20)),
                             round),
            12);
        const __m256i high = _mm256_srai_epi32(
            _mm256_add_epi32(_mm256_madd_epi16(_mm256_unpackhi_epi16(current, before),
                                               _mm256_permute2x128_si256(w0, w1, 0x31)),
                             round),
            12);
        // packs restores the order within each half; packus of the two halves against each
        // other then gives bytes 0-7 and 8-15 in the low 64 bits of each half.
        const __m256i words = _mm256_packs_epi32(low, high);
        const __m128i bytes16 =
            _mm_packus_epi16(_mm256_castsi256_si128(words), _mm256_extracti128_si256(words, 1));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + j), bytes16);
    }
    if (j < bytes) {
        ShearPairsRef(out + j, in + j, above + j, weights + j, bytes - j);
    }
}

}  // namespace vistrane::xform
