// Sixteen pixels (48 bytes, three 16-byte registers a, b, c) a step:
//   - byte shuffles gather the 16 blues, greens and reds (byte 3j + channel of the 48 comes from
//     register (3j + channel) / 16; a shuffle index of 0x80 writes 0, so OR joins the three);
//   - the sums s <= 765 in 16-bit lanes divide by 3 as (s * 21846) >> 16, exact for s < 32768
//     (21846 = ceil(2^16 / 3); the error s / 98304 stays below the 1/3 gap between quotients);
//   - three shuffles of the 16 greys write each one three times.

#include "filter/grey_bgr.h"

#include <immintrin.h>
#include <array>

namespace vistrane::filter {
namespace {

using Mask = std::array<signed char, 16>;

// Shuffle of source register `reg` gathering byte 3j + channel into place j.
constexpr Mask GatherMask(int channel, int reg) {
    Mask m{};
    for (int j = 0; j < 16; ++j) {
        const int at = 3 * j + channel;
        m[j] = static_cast<signed char>(at / 16 == reg ? at % 16 : 0x80);
    }
    return m;
}

// Shuffle of the 16 greys filling output register `reg`: byte k is grey (16 reg + k) / 3.
constexpr Mask SpreadMask(int reg) {
    Mask m{};
    for (int k = 0; k < 16; ++k) {
        m[k] = static_cast<signed char>((16 * reg + k) / 3);
    }
    return m;
}

inline __m128i Load(const Mask& m) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(m.data()));
}

}  // namespace

void GreyBgrAvx2(BYTE* row, int count) {
    static constexpr Mask kGather[3][3] = {
        {GatherMask(0, 0), GatherMask(0, 1), GatherMask(0, 2)},
        {GatherMask(1, 0), GatherMask(1, 1), GatherMask(1, 2)},
        {GatherMask(2, 0), GatherMask(2, 1), GatherMask(2, 2)},
    };
    static constexpr Mask kSpread[3] = {SpreadMask(0), SpreadMask(1), SpreadMask(2)};
    __m128i gather[3][3];
    for (int c = 0; c < 3; ++c) {
        for (int r = 0; r < 3; ++r) {
            gather[c][r] = Load(kGather[c][r]);
        }
    }
    const __m128i spread[3] = {Load(kSpread[0]), Load(kSpread[1]), Load(kSpread[2])};
    const __m128i third = _mm_set1_epi16(21846);
    const __m128i zero = _mm_setzero_si128();
    int i = 0;
    for (; i + 16 <= count; i += 16) {
        BYTE* p = row + 3 * i;
        const __m128i in[3] = {_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)),
                               _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 16)),
                               _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 32))};
        __m128i channel[3];
        for (int c = 0; c < 3; ++c) {
            channel[c] = _mm_or_si128(_mm_or_si128(_mm_shuffle_epi8(in[0], gather[c][0]),
                                                   _mm_shuffle_epi8(in[1], gather[c][1])),
                                      _mm_shuffle_epi8(in[2], gather[c][2]));
        }
        __m128i lo = _mm_unpacklo_epi8(channel[0], zero);
        __m128i hi = _mm_unpackhi_epi8(channel[0], zero);
        for (int c = 1; c < 3; ++c) {
            lo = _mm_add_epi16(lo, _mm_unpacklo_epi8(channel[c], zero));
            hi = _mm_add_epi16(hi, _mm_unpackhi_epi8(channel[c], zero));
        }
        const __m128i grey =
            _mm_packus_epi16(_mm_mulhi_epu16(lo, third), _mm_mulhi_epu16(hi, third));
        for (int r = 0; r < 3; ++r) {
            _mm_storeu_si128(reinterpret_cast<__m128i*>(p + 16 * r),
                             _mm_shuffle_epi8(grey, spread[r]));
        }
    }
    if (i < count) {
        GreyBgrRef(row + 3 * i, count - i);
    }
}

}  // namespace vistrane::filter
