// The HSV shift eight pixels at a time, one pixel per 32-bit lane, with compares and blends in
// place of the reference's branches on the largest channel and on the hue sector.
//
// Every division of the rule (saturation by the maximum, the hue position by twice the chroma,
// p, q and t by 255 and 255 * 60) has a non-negative integer numerator below 2^24 and an integer
// divisor, so it is done in single precision: both operands are exact floats, _mm256_div_ps
// rounds the true quotient a / b correctly, and a non-integral a / b lies at least 1 / b from the
// next integer while the rounding moves it by at most (a / b) * 2^-24 < 1 / b. Truncating the
// rounded quotient therefore gives exactly the integer quotient. The one signed division, the
// hue position floor((120 difference + delta) / (2 delta)), is moved to a non-negative
// numerator by adding 120 delta (60 whole steps) first and taking 60 off afterwards.

#include "filter/hsv_shift.h"

#include <immintrin.h>

namespace vistrane::filter {
namespace {

constexpr int kSector = 60;

// sector = h / 60 for h in 0..359 as (h * 1093) >> 16: 1093 / 65536 exceeds 1 / 60 by less than
// 1.2e-5, which moves h / 60 by under 0.005, while its fraction is at most 59 / 60.
constexpr bool SectorMagicHolds() {
    for (int h = 0; h < 360; ++h) {
        if ((h * 1093) >> 16 != h / kSector) {
            return false;
        }
    }
    return true;
}
static_assert(SectorMagicHolds());

inline __m256i Quotient(__m256i numerator, __m256 divisor) {
    return _mm256_cvttps_epi32(_mm256_div_ps(_mm256_cvtepi32_ps(numerator), divisor));
}

inline __m256i ClampByte(__m256i v) {
    return _mm256_min_epi32(_mm256_max_epi32(v, _mm256_setzero_si256()), _mm256_set1_epi32(255));
}

// Eight pixels (24 bytes) to one pixel per 32-bit lane as blue | green << 8 | red << 16.
inline __m256i LoadPixels(const BYTE* p) {
    const __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));        // bytes 0..15
    const __m128i tail = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p + 16));  // 16..23
    const __m128i high = _mm_alignr_epi8(tail, low, 12);  // bytes 12..23, then zeros
    const __m256i both = _mm256_set_m128i(high, low);
    const __m256i spread = _mm256_setr_epi8(0, 1, 2, -1, 3, 4, 5, -1, 6, 7, 8, -1, 9, 10, 11, -1, 0,
                                            1, 2, -1, 3, 4, 5, -1, 6, 7, 8, -1, 9, 10, 11, -1);
    return _mm256_shuffle_epi8(both, spread);
}

// The inverse of LoadPixels; writes exactly 24 bytes.
inline void StorePixels(BYTE* p, __m256i lanes) {
    const __m256i gather = _mm256_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1,
                                            0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1);
    const __m256i packed = _mm256_shuffle_epi8(lanes, gather);  // 12 bytes at each lane's start
    const __m128i low = _mm256_castsi256_si128(packed);
    const __m128i high = _mm256_extracti128_si256(packed, 1);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p), _mm_or_si128(low, _mm_slli_si128(high, 12)));
    _mm_storel_epi64(reinterpret_cast<__m128i*>(p + 16), _mm_srli_si128(high, 4));
}

inline __m256i Select(__m256i otherwise, __m256i value, __m256i where) {
    return _mm256_blendv_epi8(otherwise, value, where);
}

}  // namespace

void ShiftHsvAvx2(BYTE* pixels, int count, const HsvShifter& shifter) {
    const __m256i hueShift = _mm256_set1_epi32(shifter.HueShift());
    const __m256i saturationShift = _mm256_set1_epi32(shifter.SaturationShift());
    const __m256i valueShift = _mm256_set1_epi32(shifter.ValueShift());
    const __m256i zero = _mm256_setzero_si256();
    const __m256i one = _mm256_set1_epi32(1);
    const __m256i byteMask = _mm256_set1_epi32(0xFF);
    const __m256i full = _mm256_set1_epi32(360);
    const __m256i last = _mm256_set1_epi32(359);
    const __m256i sixty = _mm256_set1_epi32(kSector);
    const __m256i twoSectors = _mm256_set1_epi32(2 * kSector);
    const __m256i fourSectors = _mm256_set1_epi32(4 * kSector);
    const __m256i v255 = _mm256_set1_epi32(255);
    constexpr int kDen = 255 * kSector;
    const __m256 divide255 = _mm256_set1_ps(255.0f);
    const __m256 divideDen = _mm256_set1_ps(static_cast<float>(kDen));
    int i = 0;
    for (; i + 8 <= count; i += 8) {
        BYTE* px = pixels + 3 * i;
        const __m256i lanes = LoadPixels(px);
        const __m256i b = _mm256_and_si256(lanes, byteMask);
        const __m256i g = _mm256_and_si256(_mm256_srli_epi32(lanes, 8), byteMask);
        const __m256i r = _mm256_srli_epi32(lanes, 16);
        const __m256i maxC = _mm256_max_epi32(r, _mm256_max_epi32(g, b));
        const __m256i delta = _mm256_sub_epi32(maxC, _mm256_min_epi32(r, _mm256_min_epi32(g, b)));

        // (255 delta + max / 2) / max; max = 0 only with delta = 0, where the quotient is 0.
        const __m256i saturation =
            Quotient(_mm256_add_epi32(_mm256_mullo_epi32(delta, v255), _mm256_srli_epi32(maxC, 1)),
                     _mm256_cvtepi32_ps(_mm256_max_epi32(maxC, one)));

        // Ties go to red, then green, as in the reference's if-chain.
        const __m256i isRed = _mm256_cmpeq_epi32(maxC, r);
        const __m256i isGreen = _mm256_andnot_si256(isRed, _mm256_cmpeq_epi32(maxC, g));
        __m256i difference = _mm256_sub_epi32(r, g);
        difference = Select(difference, _mm256_sub_epi32(b, r), isGreen);
        difference = Select(difference, _mm256_sub_epi32(g, b), isRed);
        const __m256i base = Select(Select(fourSectors, twoSectors, isGreen), zero, isRed);
        const __m256i safeDelta = _mm256_max_epi32(delta, one);
        const __m256i shifted = _mm256_add_epi32(
            _mm256_mullo_epi32(_mm256_add_epi32(difference, delta), twoSectors), safeDelta);
        const __m256i position = _mm256_sub_epi32(
            Quotient(shifted, _mm256_cvtepi32_ps(_mm256_add_epi32(safeDelta, safeDelta))), sixty);
        __m256i hue = _mm256_add_epi32(base, position);  // -60..300
        hue = _mm256_add_epi32(hue, _mm256_and_si256(_mm256_cmpgt_epi32(zero, hue), full));
        hue = _mm256_andnot_si256(_mm256_cmpeq_epi32(delta, zero), hue);  // no chroma: hue 0

        const __m256i s = ClampByte(_mm256_add_epi32(saturation, saturationShift));
        const __m256i v = ClampByte(_mm256_add_epi32(maxC, valueShift));
        // hue + shift lies in -359..718, so one step of 360 either way wraps it into 0..359.
        __m256i h = _mm256_add_epi32(hue, hueShift);
        h = _mm256_add_epi32(h, _mm256_and_si256(_mm256_cmpgt_epi32(zero, h), full));
        h = _mm256_sub_epi32(h, _mm256_and_si256(_mm256_cmpgt_epi32(h, last), full));
        // h < 2^16 and the lanes' high halves are 0, so the unsigned 16-bit high multiply gives
        // (h * 1093) >> 16 in every 32-bit lane.
        const __m256i sector = _mm256_mulhi_epu16(h, _mm256_set1_epi32(1093));
        const __m256i f = _mm256_sub_epi32(h, _mm256_mullo_epi32(sector, sixty));

        // p = v (1 - s), q = v (1 - s f / 60), t = v (1 - s (60 - f) / 60), rounded by half the
        // divisor. With s = 0 all three are v, so the reference's grey case needs no branch.
        const __m256i denominator = _mm256_set1_epi32(kDen);
        const __m256i p =
            Quotient(_mm256_add_epi32(_mm256_mullo_epi32(v, _mm256_sub_epi32(v255, s)),
                                      _mm256_set1_epi32(127)),
                     divide255);
        const __m256i q = Quotient(
            _mm256_add_epi32(
                _mm256_mullo_epi32(v, _mm256_sub_epi32(denominator, _mm256_mullo_epi32(s, f))),
                _mm256_set1_epi32(kDen / 2)),
            divideDen);
        const __m256i t = Quotient(
            _mm256_add_epi32(
                _mm256_mullo_epi32(
                    v, _mm256_sub_epi32(denominator,
                                        _mm256_mullo_epi32(s, _mm256_sub_epi32(sixty, f)))),
                _mm256_set1_epi32(kDen / 2)),
            divideDen);

        // Sector:  0      1      2      3      4      5
        //  red     v      q      p      p      t      v
        //  green   t      v      v      q      p      p
        //  blue    p      p      t      v      v      q
        const __m256i s0 = _mm256_cmpeq_epi32(sector, zero);
        const __m256i s1 = _mm256_cmpeq_epi32(sector, one);
        const __m256i s2 = _mm256_cmpeq_epi32(sector, _mm256_set1_epi32(2));
        const __m256i s3 = _mm256_cmpeq_epi32(sector, _mm256_set1_epi32(3));
        const __m256i s4 = _mm256_cmpeq_epi32(sector, _mm256_set1_epi32(4));
        const __m256i s5 = _mm256_cmpeq_epi32(sector, _mm256_set1_epi32(5));
        __m256i nr = Select(p, v, _mm256_or_si256(s0, s5));
        nr = Select(nr, q, s1);
        nr = Select(nr, t, s4);
        __m256i ng = Select(p, t, s0);
        ng = Select(ng, v, _mm256_or_si256(s1, s2));
        ng = Select(ng, q, s3);
        __m256i nb = Select(v, p, _mm256_or_si256(s0, s1));
        nb = Select(nb, t, s2);
        nb = Select(nb, q, s5);
        StorePixels(px, _mm256_or_si256(_mm256_or_si256(nb, _mm256_slli_epi32(ng, 8)),
                                        _mm256_slli_epi32(nr, 16)));
    }
    if (i < count) {
        shifter.ApplyRef(pixels + 3 * i, count - i);
    }
}

}  // namespace vistrane::filter
