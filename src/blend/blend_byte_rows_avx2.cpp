// AVX2 byte rows. Each computes, 32 bytes at a time, exactly the table entry that the plain row
// looks up, and hands the remaining bytes to the plain row.
//
// Exact truncating division by 255 of a product x = a * b <= 65025 in a 16-bit lane:
//   x / 255 == (x + 1 + (x >> 8)) >> 8     for every 0 <= x <= 65534,
// and x + 1 + (x >> 8) <= 65280 still fits the unsigned lane. Overlay divides by 128, a shift.

#include "blend/blend_dispatch.h"

#include <vistrane/blend/blend_modes.h>

#include <immintrin.h>

namespace vistrane::blend {
namespace {

inline __m256i Div255(__m256i x) {
    const __m256i one = _mm256_set1_epi16(1);
    return _mm256_srli_epi16(_mm256_add_epi16(_mm256_add_epi16(x, one), _mm256_srli_epi16(x, 8)),
                             8);
}

// Widens the 32 bytes of s and d into two halves of 16-bit lanes, applies op to each half and
// packs back. The unpack/pack pair keeps the byte order (both work within 128-bit lanes).
template <typename Op>
inline __m256i Widened(__m256i s, __m256i d, Op op) {
    const __m256i zero = _mm256_setzero_si256();
    const __m256i lo = op(_mm256_unpacklo_epi8(s, zero), _mm256_unpacklo_epi8(d, zero));
    const __m256i hi = op(_mm256_unpackhi_epi8(s, zero), _mm256_unpackhi_epi8(d, zero));
    return _mm256_packus_epi16(lo, hi);
}

template <typename VectorOp>
void Rows(const BYTE* s, const BYTE* d, BYTE* r, int bytes, VectorOp op, ByteRowFn tail) {
    int i = 0;
    for (; i + 32 <= bytes; i += 32) {
        const __m256i vs = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(s + i));
        const __m256i vd = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(d + i));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(r + i), op(vs, vd));
    }
    if (i < bytes) {
        tail(s + i, d + i, r + i, bytes - i);
    }
}

inline __m256i MultiplyVec(__m256i s, __m256i d) {
    return Widened(s, d, [](__m256i a, __m256i b) { return Div255(_mm256_mullo_epi16(a, b)); });
}

// 255 - (255 - s)(255 - d) / 255.
inline __m256i ScreenVec(__m256i s, __m256i d) {
    const __m256i ones = _mm256_set1_epi8(static_cast<char>(0xFF));
    return _mm256_xor_si256(ones,
                            MultiplyVec(_mm256_xor_si256(s, ones), _mm256_xor_si256(d, ones)));
}

// d <= 128: s d >> 7; d >= 129: 255 - ((255 - s)(255 - d) >> 7). Products stay below 2^15.
inline __m256i OverlayVec(__m256i s, __m256i d) {
    return Widened(s, d, [](__m256i a, __m256i b) {
        const __m256i c255 = _mm256_set1_epi16(255);
        const __m256i low = _mm256_srli_epi16(_mm256_mullo_epi16(a, b), 7);
        const __m256i high = _mm256_sub_epi16(
            c255, _mm256_srli_epi16(
                      _mm256_mullo_epi16(_mm256_sub_epi16(c255, a), _mm256_sub_epi16(c255, b)), 7));
        const __m256i upper = _mm256_cmpgt_epi16(b, _mm256_set1_epi16(128));
        return _mm256_blendv_epi8(low, high, upper);
    });
}

void MultiplyRow(const BYTE* s, const BYTE* d, BYTE* r, int bytes) {
    Rows(s, d, r, bytes, MultiplyVec,
         ByteRowFor(BLENDMODE_MULTIPLY, cpu::InstructionSet::kReference));
}
void ScreenRow(const BYTE* s, const BYTE* d, BYTE* r, int bytes) {
    Rows(s, d, r, bytes, ScreenVec, ByteRowFor(BLENDMODE_SCREEN, cpu::InstructionSet::kReference));
}
void OverlayRow(const BYTE* s, const BYTE* d, BYTE* r, int bytes) {
    Rows(s, d, r, bytes, OverlayVec,
         ByteRowFor(BLENDMODE_OVERLAY, cpu::InstructionSet::kReference));
}
void DarkenRow(const BYTE* s, const BYTE* d, BYTE* r, int bytes) {
    Rows(
        s, d, r, bytes, [](__m256i a, __m256i b) { return _mm256_min_epu8(a, b); },
        ByteRowFor(BLENDMODE_DARKEN, cpu::InstructionSet::kReference));
}
void LightenRow(const BYTE* s, const BYTE* d, BYTE* r, int bytes) {
    Rows(
        s, d, r, bytes, [](__m256i a, __m256i b) { return _mm256_max_epu8(a, b); },
        ByteRowFor(BLENDMODE_LIGHTEN, cpu::InstructionSet::kReference));
}
void DifferenceRow(const BYTE* s, const BYTE* d, BYTE* r, int bytes) {
    Rows(
        s, d, r, bytes,
        [](__m256i a, __m256i b) {
            return _mm256_or_si256(_mm256_subs_epu8(a, b), _mm256_subs_epu8(b, a));
        },
        ByteRowFor(BLENDMODE_DIFFERENCE, cpu::InstructionSet::kReference));
}

// Lays 32 result bytes over 32 pixel bytes with 32 per-byte opacities:
// div255((255 - a) p) + div255(a n), the two table entries of the plain merge.
inline __m256i MergeVec(__m256i p, __m256i n, __m256i a) {
    const __m256i zero = _mm256_setzero_si256();
    const __m256i c255 = _mm256_set1_epi16(255);
    auto half = [&](__m256i p16, __m256i n16, __m256i a16) {
        return _mm256_add_epi16(Div255(_mm256_mullo_epi16(_mm256_sub_epi16(c255, a16), p16)),
                                Div255(_mm256_mullo_epi16(a16, n16)));
    };
    const __m256i lo = half(_mm256_unpacklo_epi8(p, zero), _mm256_unpacklo_epi8(n, zero),
                            _mm256_unpacklo_epi8(a, zero));
    const __m256i hi = half(_mm256_unpackhi_epi8(p, zero), _mm256_unpackhi_epi8(n, zero),
                            _mm256_unpackhi_epi8(a, zero));
    return _mm256_packus_epi16(lo, hi);
}

void MergeGreyAvx2(BYTE* pixels, const BYTE* result, const BYTE* opacity, int count) {
    int i = 0;
    for (; i + 32 <= count; i += 32) {
        const __m256i p = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(pixels + i));
        const __m256i n = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(result + i));
        const __m256i a = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(opacity + i));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(pixels + i), MergeVec(p, n, a));
    }
    MergeGreyRow(pixels + i, result + i, opacity + i, count - i);
}

// 32 pixels (96 bytes) at a time; the opacities are first spread to one per byte.
void MergeTrueColorAvx2(BYTE* pixels, const BYTE* result, const BYTE* opacity, int count) {
    int i = 0;
    alignas(32) BYTE spread[96];
    for (; i + 32 <= count; i += 32) {
        for (int k = 0; k < 32; ++k) {
            spread[3 * k] = spread[3 * k + 1] = spread[3 * k + 2] = opacity[i + k];
        }
        for (int part = 0; part < 3; ++part) {
            BYTE* p = pixels + 3 * i + 32 * part;
            const __m256i vp = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
            const __m256i vn =
                _mm256_loadu_si256(reinterpret_cast<const __m256i*>(result + 3 * i + 32 * part));
            const __m256i va =
                _mm256_load_si256(reinterpret_cast<const __m256i*>(spread + 32 * part));
            _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), MergeVec(vp, vn, va));
        }
    }
    MergeTrueColorRow(pixels + 3 * i, result + 3 * i, opacity + i, count - i);
}

}  // namespace

ByteRowFn Avx2ByteRow(int mode) {
    switch (mode) {
        case BLENDMODE_MULTIPLY:
            return MultiplyRow;
        case BLENDMODE_SCREEN:
            return ScreenRow;
        case BLENDMODE_OVERLAY:
        case BLENDMODE_HARDLIGHT:
            return OverlayRow;
        case BLENDMODE_DARKEN:
            return DarkenRow;
        case BLENDMODE_LIGHTEN:
            return LightenRow;
        case BLENDMODE_DIFFERENCE:
            return DifferenceRow;
        default:
            return nullptr;
    }
}

MergeRowFn Avx2MergeRow(int bytesPerPixel) {
    return bytesPerPixel == 3 ? MergeTrueColorAvx2 : MergeGreyAvx2;
}

}  // namespace vistrane::blend
