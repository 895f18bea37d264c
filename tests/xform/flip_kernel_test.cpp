// The fast FlipHorizontal row kernel against FlipRowRef: every width 1..67 and some around
// 4096, 1 and 3 bytes a pixel, odd offsets into the buffer, and guard bytes on both sides that
// must come back untouched.

#include <gtest/gtest.h>

#include "support/instruction_sets.h"

#include <cstdint>
#include <vector>

#include "support/awkward_widths.h"
#include "xform/rotate.h"

namespace vistrane {
namespace {

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

TEST(FlipRowKernel, FastSetsMatchReferenceOnAwkwardWidths) {
    for (const cpu::InstructionSet set : test::FastSets()) {
        SCOPED_TRACE(cpu::Name(set));
        const std::vector<int> widths = vistrane::test::AwkwardWidths();
        for (int bpp : {1, 3}) {
            for (int w : widths) {
                for (int offset : {0, 1, 7}) {
                    CheckKernel(xform::FlipRowFor(set), bpp, w, offset, 1000u * bpp + w + offset);
                    if (HasFatalFailure()) {
                        return;
                    }
                }
            }
        }
    }
}

}  // namespace
}  // namespace vistrane
