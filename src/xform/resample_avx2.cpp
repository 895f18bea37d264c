// The AVX2 row kernel of the enlarging resample worker. Built with -mavx2 on its own and called
// only when the CPU reports AVX2 (BestExpandRow in resample.cpp).
//
// Sixteen destination bytes at a time in 16-bit lanes. Every product of the rule is at most
// 255 * 100 (a byte times a weight) or 100 * 50 (two offsets), and for 0 <= x <= 43,698
// (x * 41,944) >> 22 equals x / 100 truncated (41,944 = ceil(2^22 / 100); the excess
// 96 / 2^22 per unit stays below the gap to the next multiple of 100 up to there), so each
// truncating division is one high multiply and one shift. The tail goes to ExpandRowRef.

#include <immintrin.h>

#include "xform/xform_kernels.h"

namespace vistrane::xform {

namespace {

// x / 100 for 16-bit lanes 0..43,698: mulhi gives (x * 41,944) >> 16, then >> 6.
inline __m256i DivideBy100(__m256i x) {
    return _mm256_srli_epi16(_mm256_mulhi_epu16(x, _mm256_set1_epi16(static_cast<short>(41944))),
                             6);
}

inline __m256i LoadWidened(const BYTE* p) {
    return _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)));
}

// Sixteen destination bytes, each in the low byte of a 16-bit lane (at most 255).
inline __m256i Expand16(const ExpandRowInputs& in, int i, __m256i ay, __m256i ayRest) {
    const __m256i hundred = _mm256_set1_epi16(100);
    const __m256i ax = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(in.ax + i));
    const __m256i wD = DivideBy100(_mm256_mullo_epi16(ay, ax));
    const __m256i wR = DivideBy100(_mm256_mullo_epi16(_mm256_sub_epi16(hundred, ax), ay));
    const __m256i wC = DivideBy100(_mm256_mullo_epi16(ayRest, ax));
    const __m256i wM = _mm256_sub_epi16(_mm256_sub_epi16(_mm256_sub_epi16(hundred, wC), wR), wD);
    const __m256i own = DivideBy100(_mm256_mullo_epi16(LoadWidened(in.own + i), wM));
    const __m256i side = DivideBy100(_mm256_mullo_epi16(LoadWidened(in.side + i), wC));
    const __m256i ownNext = DivideBy100(_mm256_mullo_epi16(LoadWidened(in.ownNext + i), wR));
    const __m256i sideNext = DivideBy100(_mm256_mullo_epi16(LoadWidened(in.sideNext + i), wD));
    return _mm256_add_epi16(_mm256_add_epi16(own, side), _mm256_add_epi16(ownNext, sideNext));
}

}  // namespace

void ExpandRowAvx2(BYTE* dst, int count, const ExpandRowInputs& in) {
    const __m256i ay = _mm256_set1_epi16(static_cast<short>(in.ay));
    const __m256i ayRest = _mm256_set1_epi16(static_cast<short>(100 - in.ay));
    int i = 0;
    for (; i + 32 <= count; i += 32) {
        const __m256i low = Expand16(in, i, ay, ayRest);
        const __m256i high = Expand16(in, i + 16, ay, ayRest);
        // packus interleaves the 128-bit lanes (low0, high0, low1, high1); 0xD8 = 0, 2, 1, 3
        // puts them back in order.
        const __m256i bytes = _mm256_permute4x64_epi64(_mm256_packus_epi16(low, high), 0xD8);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(dst + i), bytes);
    }
    if (i < count) {
        const ExpandRowInputs rest{in.own + i,      in.side + i, in.ownNext + i,
                                   in.sideNext + i, in.ax + i,   in.ay};
        ExpandRowRef(dst + i, count - i, rest);
    }
}

}  // namespace vistrane::xform
