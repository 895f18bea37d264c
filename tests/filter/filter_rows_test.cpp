#include "filter/filter_rows.h"

#include "support/instruction_sets.h"
#include "support/random_bytes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace vistrane::filter {
namespace {

// Every range length 0..100 and around 4096, random tap rows at odd offsets, weights of both
// signs and divisors including 1 and -1; bytes outside [start, end) must stay untouched.
TEST(ConvolveBytes, FastSetsMatchesTheReferenceOnAwkwardRanges) {
    for (const cpu::InstructionSet set : test::FastSets()) {
        const ConvolveBytesFn fast = ConvolveBytesFor(set);
        SCOPED_TRACE(cpu::Name(set));
        test::RandomBytes random(31);
        std::vector<int> lengths;
        for (int n = 0; n <= 100; ++n) {
            lengths.push_back(n);
        }
        for (int n = 4090; n <= 4100; ++n) {
            lengths.push_back(n);
        }
        const int divisors[] = {1, -1, 2, 9, -7, 49, 98, 1000, 3};
        int round = 0;
        for (const int length : lengths) {
            const int nTaps = 1 + random.Below(49);
            const int start = random.Below(5);
            const std::vector<BYTE> source = random.Fill(static_cast<std::size_t>(length) + 64 + 8);
            const BYTE* rows[49];
            int weights[49];
            for (int t = 0; t < nTaps; ++t) {
                rows[t] = source.data() + random.Below(64);
                // Every fifth range has a weight beyond 16 bits, which takes the 32-bit multiply.
                weights[t] =
                    random.Below(3) == 0 ? random.Below(65535) - 32768 : random.Below(33) - 16;
            }
            if (round % 5 == 0) {
                weights[random.Below(nTaps)] = 40000 * (round % 2 == 0 ? 1 : -1);
            }
            const ExactDivider divider(divisors[round % 9]);
            const int offset = random.Below(301) - 150;
            std::vector<BYTE> expected(static_cast<std::size_t>(length) + 8, 0xA5);
            std::vector<BYTE> actual(expected);
            ConvolveBytesRef(rows, weights, nTaps, start, length, divider, offset, expected.data());
            fast(rows, weights, nTaps, start, length, divider, offset, actual.data());
            for (std::size_t i = 0; i < expected.size(); ++i) {
                ASSERT_EQ(actual[i], expected[i])
                    << "byte " << i << " of length " << length << ", round " << round;
            }
            ++round;
        }
    }
}

// Weights of at most 64 in size take the 16-bit byte multiply-add: every tap count 1..49 with
// tiny weights (one group of taps), weights of exactly +-64 over rows of 255 (the largest pair
// and group sums, many groups) and mixed weights in -64..64, at awkward lengths.
TEST(ConvolveBytes, FastSetsMatchesTheReferenceWithSmallWeights) {
    for (const cpu::InstructionSet set : test::FastSets()) {
        const ConvolveBytesFn fast = ConvolveBytesFor(set);
        SCOPED_TRACE(cpu::Name(set));
        test::RandomBytes random(37);
        const int divisors[] = {1, -1, 18, 98, 7, -3, 1000, 2, 64 * 49};
        const std::vector<BYTE> full(4200 + 64, 255);
        for (int round = 0; round < 3 * 49 * 2; ++round) {
            const int nTaps = 1 + (round / 2) % 49;
            const int kind = round / 98;
            const int length = round % 2 == 0 ? 1 + random.Below(67) : 4090 + random.Below(11);
            const int start = random.Below(3);
            const std::vector<BYTE> noise = random.Fill(static_cast<std::size_t>(length) + 64 + 8);
            const std::vector<BYTE>& source = kind == 1 && round % 4 < 2 ? full : noise;
            const BYTE* rows[49];
            int weights[49];
            for (int t = 0; t < nTaps; ++t) {
                rows[t] = source.data() + random.Below(64);
                if (kind == 0) {
                    weights[t] = 1 + random.Below(3);
                } else if (kind == 1) {
                    weights[t] = random.Below(2) == 0 ? 64 : -64;
                    if (round % 8 < 4) {
                        weights[t] = 64;
                    }
                } else {
                    weights[t] = random.Below(129) - 64;
                }
            }
            const ExactDivider divider(divisors[round % 9]);
            const int offset = random.Below(301) - 150;
            std::vector<BYTE> expected(static_cast<std::size_t>(length) + 8, 0xA5);
            std::vector<BYTE> actual(expected);
            ConvolveBytesRef(rows, weights, nTaps, start, length, divider, offset, expected.data());
            fast(rows, weights, nTaps, start, length, divider, offset, actual.data());
            for (std::size_t i = 0; i < expected.size(); ++i) {
                ASSERT_EQ(actual[i], expected[i])
                    << "byte " << i << " of length " << length << ", round " << round << ", "
                    << nTaps << " taps";
            }
        }
    }
}

// A one-group kernel's sums are divided in 16 bits. Three rows laid out so that byte x sums to
// exactly +-x under weights (64, 63, 1) and (-64, -63, -1) reach every sum such a kernel can
// make, 0..255 * 128 of both signs; each is divided by divisors of both signs around the
// powers of two and the ends of the 16-bit form's range, with offsets up to the 16-bit limits
// and beyond.
TEST(ConvolveBytes, FastSetsDividesEveryOneGroupSumExactly) {
    for (const cpu::InstructionSet set : test::FastSets()) {
        const ConvolveBytesFn fast = ConvolveBytesFor(set);
        SCOPED_TRACE(cpu::Name(set));
        constexpr int kTop = 255 * 128;
        const int length = kTop + 1;
        std::vector<BYTE> a(length), b(length), c(length);
        for (int n = 0; n <= kTop; ++n) {
            const int ai = std::min(255, n / 64);
            const int bi = std::min(255, (n - 64 * ai) / 63);
            a[n] = static_cast<BYTE>(ai), b[n] = static_cast<BYTE>(bi);
            c[n] = static_cast<BYTE>(n - 64 * ai - 63 * bi);
            ASSERT_EQ(64 * a[n] + 63 * b[n] + c[n], n);
        }
        const BYTE* rows[3] = {a.data(), b.data(), c.data()};
        const int divisors[] = {1,     2,     3,     7,     9,      18,      49,        98,
                                127,   128,   129,   255,   256,    1000,    32639,     32640,
                                32641, 65535, 65536, 65537, 100000, 1 << 30, 2147483647};
        const int offsets[] = {0, -100, 255, 32767, -32768, 40000, -40000};
        for (const int sign : {1, -1}) {
            const int weights[3] = {64 * sign, 63 * sign, sign};
            for (const int divisor : divisors) {
                for (const int d : {divisor, -divisor}) {
                    for (const int offset : offsets) {
                        std::vector<BYTE> expected(length), actual(length);
                        ConvolveBytesRef(rows, weights, 3, 0, length, ExactDivider(d), offset,
                                         expected.data());
                        fast(rows, weights, 3, 0, length, ExactDivider(d), offset, actual.data());
                        for (int n = 0; n < length; ++n) {
                            ASSERT_EQ(actual[n], expected[n])
                                << "sum " << sign * n << " divisor " << d << " offset " << offset;
                        }
                    }
                }
            }
        }
        std::vector<BYTE> expected(length), actual(length);
        const int weights[3] = {64, 63, 1};
        ConvolveBytesRef(rows, weights, 3, 0, length, ExactDivider(-2147483647 - 1), 7,
                         expected.data());
        fast(rows, weights, 3, 0, length, ExactDivider(-2147483647 - 1), 7, actual.data());
        ASSERT_EQ(actual, expected);
    }
}

TEST(ConvolveBytes, ReferenceSumsDividesTruncatingAndClamps) {
    const BYTE a[3] = {10, 200, 7};
    const BYTE b[3] = {3, 0, 255};
    const BYTE* rows[2] = {a, b};
    const int weights[2] = {1, -3};
    BYTE out[3];
    // 10 - 9 = 1 -> 1 / 2 = 0 + 5; 200 -> 100 + 5; 7 - 765 = -758 -> -379 + 5 -> 0.
    ConvolveBytesRef(rows, weights, 2, 0, 3, ExactDivider(2), 5, out);
    EXPECT_EQ(out[0], 5);
    EXPECT_EQ(out[1], 105);
    EXPECT_EQ(out[2], 0);
}

}  // namespace
}  // namespace vistrane::filter
