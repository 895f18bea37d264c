// The fast row kernel of the blending row shears against ShearRowRef: every pixel count 1..67
// and some around 4096, 1 and 3 bytes a pixel, the fractions at the ends of their range and
// random ones, odd offsets, and guard bytes around the output that must stay untouched.

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "support/random_bytes.h"
#include "xform/rotate.h"

namespace vistrane {
namespace {

bool HasAvx2() {
#if defined(__x86_64__)
    return __builtin_cpu_supports("avx2");
#else
    return false;
#endif
}

void CheckShearRow(int bpp, int pixels, int frac, int offset, std::uint32_t seed) {
    constexpr int kGuard = 40;
    const int bytes = pixels * bpp;
    test::RandomBytes random(seed);
    const std::vector<BYTE> in = random.Fill(static_cast<std::size_t>(offset + bytes));
    const std::vector<BYTE> prev = random.Fill(3);
    std::vector<BYTE> fast = random.Fill(static_cast<std::size_t>(bytes) + 2 * kGuard);
    std::vector<BYTE> reference = fast;
    xform::ShearRowAvx2(fast.data() + kGuard, in.data() + offset, bytes, bpp, prev.data(), frac);
    xform::ShearRowRef(reference.data() + kGuard, in.data() + offset, bytes, bpp, prev.data(),
                       frac);
    for (std::size_t i = 0; i < fast.size(); ++i) {
        ASSERT_EQ(fast[i], reference[i])
            << "byte " << static_cast<long>(i) - kGuard << " of " << pixels << " pixels of " << bpp
            << " bytes, frac " << frac << ", offset " << offset << ", seed " << seed;
    }
}

TEST(ShearRowKernel, Avx2MatchesReferenceOnAwkwardWidthsAndFractions) {
    if (!HasAvx2()) {
        GTEST_SKIP() << "no AVX2 on this CPU";
    }
    std::vector<int> widths;
    for (int w = 1; w <= 67; ++w) {
        widths.push_back(w);
    }
    for (int w : {95, 96, 97, 4093, 4095, 4096, 4097, 4099}) {
        widths.push_back(w);
    }
    test::RandomBytes random(99);
    for (const int bpp : {1, 3}) {
        for (const int w : widths) {
            for (const int frac : {0, 1, 2047, 2048, 4095, random.Below(4096)}) {
                for (const int offset : {0, 1, 7}) {
                    CheckShearRow(bpp, w, frac, offset, 1000u * bpp + 10u * w + offset);
                    if (HasFatalFailure()) {
                        return;
                    }
                }
            }
        }
    }
}

TEST(ShearRowKernel, BestKernelIsTheOneTheCpuRuns) {
    EXPECT_EQ(xform::BestShearRow(), HasAvx2() ? xform::ShearRowAvx2 : xform::ShearRowRef);
}

}  // namespace
}  // namespace vistrane
