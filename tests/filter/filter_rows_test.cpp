#include "filter/filter_rows.h"

#include "blend/blend_dispatch.h"
#include "support/random_bytes.h"

#include <gtest/gtest.h>

#include <vector>

namespace vistrane::filter {
namespace {

// Every range length 0..100 and around 4096, random tap rows at odd offsets, weights of both
// signs and divisors including 1 and -1; bytes outside [start, end) must stay untouched.
TEST(ConvolveBytes, Avx2MatchesTheReferenceOnAwkwardRanges) {
    if (blend::BestKernelSet() != blend::KernelSet::kAvx2) {
        GTEST_SKIP() << "no AVX2 on this CPU";
    }
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
            weights[t] = random.Below(3) == 0 ? random.Below(65535) - 32768 : random.Below(33) - 16;
        }
        if (round % 5 == 0) {
            weights[random.Below(nTaps)] = 40000 * (round % 2 == 0 ? 1 : -1);
        }
        const ExactDivider divider(divisors[round % 9]);
        const int offset = random.Below(301) - 150;
        std::vector<BYTE> expected(static_cast<std::size_t>(length) + 8, 0xA5);
        std::vector<BYTE> actual(expected);
        ConvolveBytesRef(rows, weights, nTaps, start, length, divider, offset, expected.data());
        ConvolveBytesAvx2(rows, weights, nTaps, start, length, divider, offset, actual.data());
        for (std::size_t i = 0; i < expected.size(); ++i) {
            ASSERT_EQ(actual[i], expected[i])
                << "byte " << i << " of length " << length << ", round " << round;
        }
        ++round;
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
