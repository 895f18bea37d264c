// The fast row kernel of the enlarging resample worker against ExpandRowRef: every offset pair
// 0..50, awkward counts, bytes biased towards 0x00 and 0xFF, guard bytes that must stay; and the
// whole worker with each kernel on awkward sizes.

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include <vistrane/image/image.h>

#include "image/pixel_view.h"
#include "support/image_support.h"
#include "support/instruction_sets.h"
#include "support/random_bytes.h"
#include "xform/resample.h"

namespace vistrane {
namespace {

using image::ViewOf;

void CheckExpandRow(xform::ExpandRowKernel kernel, int count, int ay, std::uint32_t seed) {
    constexpr int kGuard = 40;
    test::RandomBytes random(seed);
    std::vector<BYTE> rows[4];
    for (auto& row : rows) {
        row = random.Fill(static_cast<std::size_t>(count));
    }
    std::vector<std::uint16_t> ax(static_cast<std::size_t>(count));
    for (auto& a : ax) {
        const int pick = random.Below(4);
        a = static_cast<std::uint16_t>(pick == 0 ? 0 : pick == 1 ? 50 : random.Below(51));
    }
    const xform::ExpandRowInputs in{rows[0].data(), rows[1].data(), rows[2].data(),
                                    rows[3].data(), ax.data(),      ay};
    std::vector<BYTE> fast = random.Fill(static_cast<std::size_t>(count) + 2 * kGuard);
    std::vector<BYTE> reference = fast;
    kernel(fast.data() + kGuard, count, in);
    xform::ExpandRowRef(reference.data() + kGuard, count, in);
    for (std::size_t i = 0; i < fast.size(); ++i) {
        ASSERT_EQ(fast[i], reference[i]) << "byte " << static_cast<long>(i) - kGuard << " of "
                                         << count << ", ay " << ay << ", seed " << seed;
    }
}

TEST(ExpandRowKernel, FastSetsMatchReferenceForEveryRowOffsetAndAwkwardCounts) {
    for (const cpu::InstructionSet set : test::FastSets()) {
        SCOPED_TRACE(cpu::Name(set));
        std::vector<int> counts;
        for (int n = 1; n <= 67; ++n) {
            counts.push_back(n);
        }
        for (int n : {95, 96, 97, 4093, 4095, 4096, 4097, 12291}) {
            counts.push_back(n);
        }
        for (int ay = 0; ay <= 50; ++ay) {
            for (int n : counts) {
                CheckExpandRow(xform::ExpandRowFor(set), n, ay, 77u * ay + n);
                if (HasFatalFailure()) {
                    return;
                }
            }
        }
    }
}

// Every byte against every offset pair, for the division by multiplication's whole range.
TEST(ExpandRowKernel, FastSetsMatchReferenceOnAllBytesAndOffsets) {
    for (const cpu::InstructionSet set : test::FastSets()) {
        SCOPED_TRACE(cpu::Name(set));
        const int count = 256 * 51;
        std::vector<BYTE> own(count), side(count), next(count), sideNext(count);
        std::vector<std::uint16_t> ax(count);
        for (int i = 0; i < count; ++i) {
            own[i] = static_cast<BYTE>(i % 256);
            side[i] = static_cast<BYTE>(255 - i % 256);
            next[i] = static_cast<BYTE>(i * 7 % 256);
            sideNext[i] = static_cast<BYTE>(i % 256 < 128 ? 255 : i * 13 % 256);
            ax[i] = static_cast<std::uint16_t>(i / 256);
        }
        std::vector<BYTE> fast(count), reference(count);
        for (int ay = 0; ay <= 50; ++ay) {
            const xform::ExpandRowInputs in{own.data(),      side.data(), next.data(),
                                            sideNext.data(), ax.data(),   ay};
            xform::ExpandRowFor(set)(fast.data(), count, in);
            xform::ExpandRowRef(reference.data(), count, in);
            ASSERT_EQ(fast, reference) << "ay " << ay;
        }
    }
}

struct Size {
    int w, h, W, H;
};

// The worker through each kernel, on source and destination images of awkward sizes (rows
// padded, stored bottom-up): the gathering of source rows and columns is shared, so any
// difference is the kernel's.
TEST(ExpandRowKernel, WorkerGivesTheSameBytesWithEitherKernel) {
    for (const cpu::InstructionSet set : test::FastSets()) {
        SCOPED_TRACE(cpu::Name(set));
        const Size sizes[] = {{1, 1, 1, 1},    {1, 1, 37, 5},    {7, 5, 7, 5},
                              {5, 3, 67, 9},   {33, 17, 67, 34}, {41, 29, 123, 31},
                              {2, 70, 3, 141}, {100, 3, 200, 6}};
        for (const bool trueColor : {false, true}) {
            for (const Size& s : sizes) {
                C_Image source, fast, reference;
                if (trueColor) {
                    ASSERT_EQ(source.Create(s.w, s.h, 1, nullptr, 0), 1);
                    ASSERT_EQ(fast.Create(s.W, s.H, 1, nullptr, 0), 1);
                    ASSERT_EQ(reference.Create(s.W, s.H, 1, nullptr, 0), 1);
                } else {
                    ASSERT_EQ(source.CreateMask(s.w, s.h), 1);
                    ASSERT_EQ(fast.CreateMask(s.W, s.H), 1);
                    ASSERT_EQ(reference.CreateMask(s.W, s.H), 1);
                }
                test::FillRandomPixels(source, 5u * s.w + s.H);
                const image::ConstPixelView src = image::AsConst(ViewOf(source));
                ASSERT_TRUE(xform::ResampleExpandWith(src, ViewOf(fast), xform::ExpandRowFor(set)));
                ASSERT_TRUE(xform::ResampleExpandWith(src, ViewOf(reference), xform::ExpandRowRef));
                EXPECT_TRUE(test::SamePixels(reference, fast))
                    << (trueColor ? "24-bit " : "grey ") << s.w << "x" << s.h << " -> " << s.W
                    << "x" << s.H;
            }
        }
    }
}

}  // namespace
}  // namespace vistrane
