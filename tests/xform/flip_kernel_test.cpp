// The fast FlipHorizontal row kernel against FlipRowRef: every width 1..67 and some around
// 4096, 1 and 3 bytes a pixel, odd offsets into the buffer, and guard bytes on both sides that
// must come back untouched.

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "support/awkward_widths.h"
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

void CheckKernel(xform::FlipRowKernel kernel, int bytesPerPixel, int width, int offset,
                 std::uint32_t seed) {
    constexpr int kGuard = 64;
    const int bytes = width * bytesPerPixel;
    std::vector<BYTE> fast(static_cast<std::size_t>(offset + bytes + 2 * kGuard));
    std::uint32_t state = seed;
    for (BYTE& b : fast) {
        state = state * 1664525u + 1013904223u;
        b = static_cast<BYTE>(state >> 24);
    }
    std::vector<BYTE> reference = fast;
    kernel(fast.data() + kGuard + offset, width, bytesPerPixel);
    xform::FlipRowRef(reference.data() + kGuard + offset, width, bytesPerPixel);
    for (std::size_t i = 0; i < fast.size(); ++i) {
        ASSERT_EQ(fast[i], reference[i])
            << "byte " << static_cast<long>(i) - kGuard - offset << " of a row of " << width
            << " pixels of " << bytesPerPixel << " bytes, offset " << offset << ", seed " << seed;
    }
}

TEST(FlipRowKernel, Avx2MatchesReferenceOnAwkwardWidths) {
    if (!HasAvx2()) {
        GTEST_SKIP() << "no AVX2 on this CPU";
    }
    const std::vector<int> widths = vistrane::test::AwkwardWidths();
    for (int bpp : {1, 3}) {
        for (int w : widths) {
            for (int offset : {0, 1, 7}) {
                CheckKernel(xform::FlipRowAvx2, bpp, w, offset, 1000u * bpp + w + offset);
                if (HasFatalFailure()) {
                    return;
                }
            }
        }
    }
}

TEST(FlipRowKernel, BestKernelIsTheOneTheCpuRuns) {
    EXPECT_EQ(xform::BestFlipRow(), HasAvx2() ? xform::FlipRowAvx2 : xform::FlipRowRef);
}

}  // namespace
}  // namespace vistrane
