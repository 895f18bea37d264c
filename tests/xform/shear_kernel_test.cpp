// The fast row kernel of the blending row shears against ShearRowRef: every pixel count 1..67
// and some around 4096, 1 and 3 bytes a pixel, the fractions at the ends of their range and
// random ones, odd offsets, and guard bytes around the output that must stay untouched.

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "support/awkward_widths.h"
#include "support/instruction_sets.h"
#include "support/random_bytes.h"
#include "xform/rotate.h"

namespace vistrane {
namespace {

void CheckShearRow(xform::ShearRowKernel kernel, int bpp, int pixels, int frac, int offset,
                   std::uint32_t seed) {
    constexpr int kGuard = 40;
    const int bytes = pixels * bpp;
    test::RandomBytes random(seed);
    const std::vector<BYTE> in = random.Fill(static_cast<std::size_t>(offset + bytes));
    const std::vector<BYTE> prev = random.Fill(3);
    std::vector<BYTE> fast = random.Fill(static_cast<std::size_t>(bytes) + 2 * kGuard);
    std::vector<BYTE> reference = fast;
    kernel(fast.data() + kGuard, in.data() + offset, bytes, bpp, prev.data(), frac);
    xform::ShearRowRef(reference.data() + kGuard, in.data() + offset, bytes, bpp, prev.data(),
                       frac);
    for (std::size_t i = 0; i < fast.size(); ++i) {
        ASSERT_EQ(fast[i], reference[i])
            << "byte " << static_cast<long>(i) - kGuard << " of " << pixels << " pixels of " << bpp
            << " bytes, frac " << frac << ", offset " << offset << ", seed " << seed;
    }
}

TEST(ShearRowKernel, FastSetsMatchReferenceOnAwkwardWidthsAndFractions) {
    for (const cpu::InstructionSet set : test::FastSets()) {
        SCOPED_TRACE(cpu::Name(set));
        const std::vector<int> widths = vistrane::test::AwkwardWidths();
        test::RandomBytes random(99);
        for (const int bpp : {1, 3}) {
            for (const int w : widths) {
                for (const int frac : {0, 1, 2047, 2048, 4095, random.Below(4096)}) {
                    for (const int offset : {0, 1, 7}) {
                        CheckShearRow(xform::ShearRowFor(set), bpp, w, frac, offset,
                                      1000u * bpp + 10u * w + offset);
                        if (HasFatalFailure()) {
                            return;
                        }
                    }
                }
            }
        }
    }
}

// Every byte count up to three strips of 3-byte columns, each byte with its own fraction
// (the extremes 0 and 4095 included).
TEST(ShearPairsKernel, FastSetsMatchReferenceWithAFractionPerByte) {
    for (const cpu::InstructionSet set : test::FastSets()) {
        SCOPED_TRACE(cpu::Name(set));
        constexpr int kGuard = 40;
        for (int bytes = 1; bytes <= 3 * 192; ++bytes) {
            test::RandomBytes random(500u + bytes);
            const std::vector<BYTE> in = random.Fill(static_cast<std::size_t>(bytes));
            const std::vector<BYTE> above = random.Fill(static_cast<std::size_t>(bytes));
            std::vector<std::int32_t> weights(static_cast<std::size_t>(bytes));
            for (auto& w : weights) {
                const int pick = random.Below(4);
                const int frac = pick == 0 ? 0 : pick == 1 ? 4095 : random.Below(4096);
                w = frac << 16 | (4096 - frac);
            }
            std::vector<BYTE> fast = random.Fill(static_cast<std::size_t>(bytes) + 2 * kGuard);
            std::vector<BYTE> reference = fast;
            xform::ShearPairsFor(set)(fast.data() + kGuard, in.data(), above.data(), weights.data(),
                                      bytes);
            xform::ShearPairsRef(reference.data() + kGuard, in.data(), above.data(), weights.data(),
                                 bytes);
            ASSERT_EQ(fast, reference) << bytes << " bytes";
        }
    }
}

// The whole rotation through the reference kernels and through the fast ones.
TEST(ShearRowKernel, RotationGivesTheSameBytesWithEitherKernelSet) {
    for (const cpu::InstructionSet set : test::FastSets()) {
        SCOPED_TRACE(cpu::Name(set));
        for (const int bpp : {1, 3}) {
            for (const double degrees : {-30.0, 7.0, 44.0}) {
                const int w = 150, h = 97;
                std::vector<BYTE> in(static_cast<std::size_t>(w) * h * bpp);
                test::RandomBytes random(31u * bpp);
                for (auto& b : in) {
                    b = random.Next();
                }
                const double radians = degrees * 3.141592653589793 / 180;
                xform::ShearSizes sizes{};
                ASSERT_TRUE(xform::ComputeShearSizes(w, h, radians, sizes));
                const std::size_t outBytes =
                    static_cast<std::size_t>(sizes.width) * sizes.height * bpp;
                std::vector<BYTE> fast(outBytes), reference(outBytes);
                const image::ConstPixelView src{in.data(), w * bpp, w, h, bpp, nullptr, 0};
                const BYTE bg[3] = {9, 200, 77};
                ASSERT_TRUE(xform::ShearRotateWith(
                    src,
                    {fast.data(), sizes.width * bpp, sizes.width, sizes.height, bpp, nullptr, 0},
                    radians, sizes, bg, xform::ShearMode::Blend,
                    {xform::ShearRowFor(set), xform::ShearPairsFor(set)}));
                ASSERT_TRUE(xform::ShearRotateWith(src,
                                                   {reference.data(), sizes.width * bpp,
                                                    sizes.width, sizes.height, bpp, nullptr, 0},
                                                   radians, sizes, bg, xform::ShearMode::Blend,
                                                   {xform::ShearRowRef, xform::ShearPairsRef}));
                ASSERT_EQ(fast, reference) << bpp << " bytes a pixel, " << degrees << " degrees";
            }
        }
    }
}

}  // namespace
}  // namespace vistrane
