// A 256-entry byte table in registers: sixteen 16-entry slices, each broadcast to both 128-bit
// lanes. For a byte b, _mm256_shuffle_epi8 of slice k by b gives slice k's entry (b & 15) when
// b's top bit is clear (and 0 when set, which the selection below discards), so
//   result = OR over k of (shuffle(slice k, b & 15) AND (b >> 4 == k)).
// Sixteen shuffles, compares and ORs per 32 bytes, no memory look-ups.

#include "filter/lut_bytes.h"

#include <immintrin.h>

namespace vistrane::filter {

void LutBytesAvx2(BYTE* bytes, int count, const BYTE* table) {
    __m256i slices[16];
    for (int k = 0; k < 16; ++k) {
        slices[k] = _mm256_broadcastsi128_si256(
            _mm_loadu_si128(reinterpret_cast<const __m128i*>(table + 16 * k)));
    }
    const __m256i lowNibble = _mm256_set1_epi8(0x0F);
    int i = 0;
    for (; i + 32 <= count; i += 32) {
        const __m256i b = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes + i));
        const __m256i low = _mm256_and_si256(b, lowNibble);
        const __m256i high = _mm256_and_si256(_mm256_srli_epi16(b, 4), lowNibble);
        __m256i result = _mm256_setzero_si256();
        for (int k = 0; k < 16; ++k) {
            const __m256i select = _mm256_cmpeq_epi8(high, _mm256_set1_epi8(static_cast<char>(k)));
            result = _mm256_or_si256(result,
                                     _mm256_and_si256(select, _mm256_shuffle_epi8(slices[k], low)));
        }
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(bytes + i), result);
    }
    if (i < count) {
        LutBytesRef(bytes + i, count - i, table);
    }
}

}  // namespace vistrane::filter
