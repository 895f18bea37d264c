// AVX2 convolution rows: 32 bytes a block, as four vectors of eight 32-bit sums; two taps per
// byte multiply-add with 16-bit sums when the weights are small, two per 16-bit multiply-add
// when they fit 16 bits, and one per 32-bit multiply otherwise.
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

// Weights of at most 64 in size: two taps per _mm256_maddubs_epi16, which multiplies the
// interleaved bytes of two rows (unsigned) by two signed 8-bit weights and adds each pair into
// a 16-bit lane. Its saturation never acts, since |a wa + b wb| <= 255 * 128 < 32767. The 16-bit
// sums then run over a group of taps whose weights add up (in size) to at most 128, which keeps
// every partial sum within 255 * 128 too; each group is widened into the 32-bit sums. A kernel
// whose weights add up (in size) to at most 128, as blur, sharpen, edge and emboss kernels of
// small integers do, is one group: per pair of taps and 32 bytes, two loads, two unpacks, two
// multiply-adds and two adds, and its division is done in 16 bits (NarrowDivider).
constexpr int kGroupWeight = 128;

bool FitSmallWeights(const int* weights, int nTaps) {
    for (int t = 0; t < nTaps; ++t) {
        if (weights[t] < -kGroupWeight / 2 || weights[t] > kGroupWeight / 2) {
            return false;
        }
    }
    return true;
}

int Magnitude(int w) {
    return w < 0 ? -w : w;
}

// Pairs of taps (an odd last tap pairs with itself at weight 0) for ConvolveSmallWeights.
struct TapPair {
    const BYTE* a;
    const BYTE* b;
    __m256i weights;  // (weight of a, weight of b) as signed bytes, repeated
};

// Division of 16-bit sums |n| <= 255 * 128 < 2^15 by d, truncating toward zero, for a one-group
// kernel: |n| / |d| is floor(|n| * m / 2^(15 + l)) with l = ceil(log2 |d|) and
// m = ceil(2^(15 + l) / |d|), since then 0 <= m |d| - 2^(15 + l) < |d| <= 2^l (Granlund and
// Montgomery, "Division by invariant integers using multiplication", 1994, theorem 4.2, for
// 15-bit dividends). For |d| <= 2^16, m < 2^16, so the product's high half comes from
// _mm256_mulhi_epu16 and the rest of the shift is l - 1. The sign is put back with
// (q ^ s) - s, s all ones when n and d differ in sign.
struct NarrowDivider {
    bool usable = false;
    bool unit = false;  // |d| = 1
    __m256i magic;
    __m128i shift;
    __m256i divisorSign;
    __m256i offset;  // fits 16 bits; the saturating add keeps the later clamp to 0..255 exact
};

NarrowDivider MakeNarrowDivider(int d, int offset) {
    NarrowDivider narrow;
    const long long ad = d < 0 ? -static_cast<long long>(d) : d;
    if (ad > 65536 || offset < -32768 || offset > 32767) {
        return narrow;
    }
    int l = 0;
    while ((1LL << l) < ad) {
        ++l;
    }
    narrow.usable = true;
    narrow.unit = ad == 1;
    const long long m = narrow.unit ? 0 : ((1LL << (15 + l)) + ad - 1) / ad;
    narrow.magic = _mm256_set1_epi16(static_cast<short>(static_cast<unsigned short>(m)));
    narrow.shift = _mm_cvtsi32_si128(narrow.unit ? 0 : l - 1);
    narrow.divisorSign = _mm256_set1_epi16(d < 0 ? -1 : 0);
    narrow.offset = _mm256_set1_epi16(static_cast<short>(offset));
    return narrow;
}

inline __m256i NarrowLevels(__m256i n, const NarrowDivider& narrow) {
    const __m256i magnitude = _mm256_abs_epi16(n);
    const __m256i q =
        narrow.unit ? magnitude
                    : _mm256_srl_epi16(_mm256_mulhi_epu16(magnitude, narrow.magic), narrow.shift);
    const __m256i sign = _mm256_xor_si256(_mm256_srai_epi16(n, 15), narrow.divisorSign);
    return _mm256_adds_epi16(_mm256_sub_epi16(_mm256_xor_si256(q, sign), sign), narrow.offset);
}

// Adds pairs [first, last) of the kernel into 16-bit sums of `blocks` 32-byte blocks from byte
// i on: low holds bytes 0-7 and 16-23 of each block, high bytes 8-15 and 24-31.
template <int blocks>
inline void AddPairs(const TapPair* pairs, int first, int last, int i, __m256i* low,
                     __m256i* high) {
    for (int k = first; k < last; ++k) {
        const TapPair& pair = pairs[k];
        for (int n = 0; n < blocks; ++n) {
            const __m256i a =
                _mm256_loadu_si256(reinterpret_cast<const __m256i*>(pair.a + i + 32 * n));
            const __m256i b =
                _mm256_loadu_si256(reinterpret_cast<const __m256i*>(pair.b + i + 32 * n));
            low[n] = _mm256_add_epi16(
                low[n], _mm256_maddubs_epi16(_mm256_unpacklo_epi8(a, b), pair.weights));
            high[n] = _mm256_add_epi16(
                high[n], _mm256_maddubs_epi16(_mm256_unpackhi_epi8(a, b), pair.weights));
        }
    }
}

// `blocks` consecutive 32-byte blocks of a one-group kernel whose division fits 16 bits.
template <int blocks>
inline void NarrowBlocks(const TapPair* pairs, int nPairs, int i, const NarrowDivider& narrow,
                         BYTE* out) {
    __m256i low[blocks], high[blocks];
    for (int n = 0; n < blocks; ++n) {
        low[n] = high[n] = _mm256_setzero_si256();
    }
    AddPairs<blocks>(pairs, 0, nPairs, i, low, high);
    for (int n = 0; n < blocks; ++n) {
        // low holds bytes 0-7 | 16-23 and high 8-15 | 24-31, so the lane-wise pack (which also
        // clamps to 0..255) puts all 32 in order.
        _mm256_storeu_si256(
            reinterpret_cast<__m256i*>(out + i + 32 * n),
            _mm256_packus_epi16(NarrowLevels(low[n], narrow), NarrowLevels(high[n], narrow)));
    }
}

// `blocks` consecutive 32-byte blocks from byte i on: 16-bit sums per group of pairs, widened
// into 32-bit sums after each group.
template <int blocks>
inline void SmallWeightBlocks(const TapPair* pairs, const int* groupEnds, int nGroups, int i,
                              const ExactDivider& divider, __m256i magic, __m128i shift,
                              __m256i offsets, BYTE* out) {
    __m256i sum[blocks][4];
    for (int n = 0; n < blocks; ++n) {
        for (int k = 0; k < 4; ++k) {
            sum[n][k] = _mm256_setzero_si256();
        }
    }
    int k = 0;
    for (int g = 0; g < nGroups; ++g) {
        // 16-bit sums of bytes 0-7 and 16-23 (low) and 8-15 and 24-31 (high) of each block
        __m256i low[blocks], high[blocks];
        for (int n = 0; n < blocks; ++n) {
            low[n] = high[n] = _mm256_setzero_si256();
        }
        AddPairs<blocks>(pairs, k, groupEnds[g], i, low, high);
        k = groupEnds[g];
        for (int n = 0; n < blocks; ++n) {
            sum[n][0] =
                _mm256_add_epi32(sum[n][0], _mm256_cvtepi16_epi32(_mm256_castsi256_si128(low[n])));
            sum[n][1] =
                _mm256_add_epi32(sum[n][1], _mm256_cvtepi16_epi32(_mm256_castsi256_si128(high[n])));
            sum[n][2] = _mm256_add_epi32(
                sum[n][2], _mm256_cvtepi16_epi32(_mm256_extracti128_si256(low[n], 1)));
            sum[n][3] = _mm256_add_epi32(
                sum[n][3], _mm256_cvtepi16_epi32(_mm256_extracti128_si256(high[n], 1)));
        }
    }
    for (int n = 0; n < blocks; ++n) {
        Finish(sum[n], divider, magic, shift, offsets, out + i + 32 * n, false);
    }
}

void ConvolveSmallWeights(const BYTE* const* tapRows, const int* weights, int nTaps, int& i,
                          int end, const ExactDivider& divider, int offset, BYTE* out) {
    TapPair pairs[25];
    int groupEnds[25];
    int nPairs = 0;
    int nGroups = 0;
    int groupWeight = kGroupWeight + 1;
    for (int t = 0; t < nTaps; t += 2) {
        const bool single = t + 1 == nTaps;
        const int wa = weights[t];
        const int wb = single ? 0 : weights[t + 1];
        const int size = Magnitude(wa) + Magnitude(wb);
        if (groupWeight + size > kGroupWeight) {
            ++nGroups;
            groupWeight = 0;
        }
        groupWeight += size;
        const auto pairBytes = static_cast<short>((static_cast<unsigned>(wb) & 0xFFu) << 8 |
                                                  (static_cast<unsigned>(wa) & 0xFFu));
        pairs[nPairs++] =
            TapPair{tapRows[t], single ? tapRows[t] : tapRows[t + 1], _mm256_set1_epi16(pairBytes)};
        groupEnds[nGroups - 1] = nPairs;
    }
    const NarrowDivider narrow = MakeNarrowDivider(divider.Divisor(), offset);
    if (nGroups == 1 && narrow.usable) {
        for (; i + 64 <= end; i += 64) {
            NarrowBlocks<2>(pairs, nPairs, i, narrow, out);
        }
        for (; i + 32 <= end; i += 32) {
            NarrowBlocks<1>(pairs, nPairs, i, narrow, out);
        }
        return;
    }
    const __m256i magic = _mm256_set1_epi32(divider.Magic());
    const __m128i shift = _mm_cvtsi32_si128(divider.Shift());
    const __m256i offsets = _mm256_set1_epi32(offset);
    for (; i + 64 <= end; i += 64) {
        SmallWeightBlocks<2>(pairs, groupEnds, nGroups, i, divider, magic, shift, offsets, out);
    }
    for (; i + 32 <= end; i += 32) {
        SmallWeightBlocks<1>(pairs, groupEnds, nGroups, i, divider, magic, shift, offsets, out);
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
    if (FitSmallWeights(weights, nTaps)) {
        ConvolveSmallWeights(tapRows, weights, nTaps, i, end, divider, offset, out);
    } else if (FitSixteenBits(weights, nTaps)) {
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
