// The run fill behind MaskFill and MaskGrowMasked against the generational flood, its row
// kernels against the reference test, and the fills' refusals of arguments that would reach
// outside memory.

#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <random>
#include <vector>

#include <vistrane/image/image.h>
#include <vistrane/image/simple_image.h>

#include "image/pixel_view.h"
#include "mask/color_match.h"
#include "mask/fill_runs.h"
#include "mask/mask_flood.h"

namespace vistrane::mask {
namespace {

class FillRunsTest : public ::testing::Test {
  protected:
    void SetUp() override { C_Image::CheckBitmapHeaderType(); }
};

// Bytes clustered round a few levels, so that range edges are crossed often.
BYTE NearLevel(std::mt19937& rng) {
    const BYTE levels[] = {0, 40, 128, 200, 255};
    const int level = levels[rng() % 5] + static_cast<int>(rng() % 9) - 4;
    return static_cast<BYTE>(std::clamp(level, 0, 255));
}

// Blobs of few colours, or of a 16-entry palette when paletted.
void RandomPicture(C_Image& image, int w, int h, bool paletted, std::uint32_t seed) {
    RGBQUAD colors[16];
    std::mt19937 rng(seed);
    for (RGBQUAD& c : colors) {
        c = {NearLevel(rng), NearLevel(rng), NearLevel(rng), 0};
    }
    ASSERT_TRUE(image.Create(w, h, paletted ? 0 : 1, colors, 16));
    const int bytes = paletted ? 1 : 3;
    for (int y = 0; y < h; ++y) {
        BYTE* row = image.PixelPtr(0, y);
        for (int x = 0; x < w; ++x) {
            for (int c = 0; c < bytes; ++c) {
                const bool repeat = x > 0 && rng() % 4 != 0;
                row[x * bytes + c] = repeat     ? row[(x - 1) * bytes + c]
                                     : paletted ? static_cast<BYTE>(rng() % 16)
                                                : NearLevel(rng);
            }
        }
    }
}

std::vector<BYTE> Bytes(const C_Image& mask) {
    std::vector<BYTE> out;
    for (long y = 0; y < mask.Height(); ++y) {
        out.insert(out.end(), mask.PixelPtr(0, y), mask.PixelPtr(0, y) + mask.Width());
    }
    return out;
}

// The generational flood from every selected pixel of `start` (all are seeds; inner ones
// reach nothing new), as MaskExpandColorMatching defines it.
std::vector<BYTE> Generational(C_Image& source, const C_Image& start, const S_ColorMatchData& data,
                               BYTE value) {
    C_Image mask;
    EXPECT_TRUE(mask.CreateMask(start.Width(), start.Height()));
    const int w = static_cast<int>(start.Width());
    const int h = static_cast<int>(start.Height());
    C_SimpleImage work;
    EXPECT_TRUE(work.CreateMask(w + 2, h + 2, 1));
    work.ZeroBitmapBytes();
    std::vector<S_TwoPointers> queue(static_cast<std::size_t>(w * h));
    long seeds = 0;
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
            *mask.PixelPtr(x, y) = *start.PixelPtr(x, y);
            if (*start.PixelPtr(x, y) != 0) {
                queue[static_cast<std::size_t>(seeds++)] = {work.PixelPtr(x + 1, y + 1),
                                                            mask.PixelPtr(x, y)};
            }
        }
    }
    S_ColorMatchData copy = data;
    mask.MaskExpandColorMatching(queue.data(), seeds, w * h, &source, &work, &copy, value);
    return Bytes(mask);
}

TEST_F(FillRunsTest, RunFillMatchesTheGenerationalFloodWithAnyStackSize) {
    const COLOR_MATCH_MODE modes[] = {COLOR_MATCH_RGB, COLOR_MATCH_HUE, COLOR_MATCH_INTENSITY,
                                      COLOR_MATCH_ANY};
    for (std::uint32_t seed = 1; seed <= 40; ++seed) {
        const int w = 1 + static_cast<int>(seed * 37 % 131);
        const int h = 1 + static_cast<int>(seed * 11 % 23);
        const bool paletted = seed % 4 == 0;
        C_Image source;
        RandomPicture(source, w, h, paletted, seed);
        const image::ConstPixelView from = image::AsConst(image::ViewOf(source));
        const COLOR_MATCH_MODE mode = modes[seed % 4];
        const int tolerance = static_cast<int>(seed * 7 % 50) - 2;
        std::mt19937 rng(seed);
        C_Image start;
        ASSERT_TRUE(start.CreateMask(w, h));
        const CPoint at(static_cast<LONG>(rng() % w), static_cast<LONG>(rng() % h));
        // Half the cases start from a single seed (MaskFill), half from scattered selected
        // pixels (MaskGrowMasked).
        const bool grow = seed % 2 == 1;
        if (grow) {
            for (int k = 0; k < 1 + w * h / 40; ++k) {
                *start.PixelPtr(static_cast<long>(rng() % w), static_cast<long>(rng() % h)) = 9;
            }
        } else {
            *start.PixelPtr(at.x, at.y) = 77;
        }
        S_ColorMatchData data;
        PrepareColorMatch(&data, ColorAt(from, at.x, at.y), mode, tolerance);
        const std::vector<BYTE> expected = Generational(source, start, data, 77);
        for (RowKernels kernels : {RowKernels::Reference, RowKernels::Scalar, RowKernels::Best}) {
            const RowTest test = ChooseRowTest(data, from, kernels);
            for (std::size_t capacity : {std::size_t{1}, std::size_t{3}, std::size_t{4096}}) {
                C_Image mask;
                ASSERT_TRUE(mask.CreateMask(w, h));
                mask.MaskCopy(&start);
                FillStack stack;
                ASSERT_TRUE(stack.Allocate(capacity));
                RunFill(image::ViewOf(mask), from, test, 77, stack, grow ? nullptr : &at);
                ASSERT_EQ(Bytes(mask), expected)
                    << "seed " << seed << " " << w << " x " << h << " mode " << mode
                    << " tolerance " << tolerance << " kernels " << static_cast<int>(kernels)
                    << " capacity " << capacity;
            }
        }
    }
}

// Every count 1..32 at every offset of a 140-pixel row, the source and mask rows held in
// buffers of exactly their size so that a read past the count shows under AddressSanitizer.
TEST_F(FillRunsTest, RowKernelsMatchTheReferenceOnEveryCountAndOffset) {
    constexpr int kWidth = 140;
    for (std::uint32_t seed = 1; seed <= 30; ++seed) {
        std::mt19937 rng(seed);
        std::vector<BYTE> pixels(3 * kWidth);
        std::vector<BYTE> mask(kWidth);
        for (BYTE& b : pixels) {
            b = NearLevel(rng);
        }
        for (BYTE& b : mask) {
            b = rng() % 5 == 0 ? static_cast<BYTE>(1 + rng() % 255) : 0;
        }
        const BYTE reference[3] = {NearLevel(rng), NearLevel(rng), NearLevel(rng)};
        const int tolerances[] = {-300, -1, 0, 3, 30, 254, 255, INT_MAX};
        const int tolerance = tolerances[seed % 8];
        S_ColorMatchData data;
        PrepareColorMatch(&data, reference, COLOR_MATCH_RGB, tolerance);
        const image::ConstPixelView row{pixels.data(), 3 * kWidth, kWidth, 1, 3, nullptr, 0};
        const RowTest plain = ChooseRowTest(data, row, RowKernels::Reference);
        const RowTest best = ChooseRowTest(data, row, RowKernels::Best);
        for (int count = 1; count <= 32; ++count) {
            for (int x = 0; x + count <= kWidth; ++x) {
                const std::uint32_t expected =
                    OpenBitsRef(plain, pixels.data(), mask.data(), x, count);
                ASSERT_EQ(OpenBitsRgb24(plain, pixels.data(), mask.data(), x, count), expected)
                    << "seed " << seed << " x " << x << " count " << count;
                ASSERT_EQ(best.openBits(best, pixels.data(), mask.data(), x, count), expected)
                    << "seed " << seed << " x " << x << " count " << count;
            }
        }
    }
}

TEST_F(FillRunsTest, IndexedKernelTestsEachIndexThroughItsColour) {
    C_Image source;
    RandomPicture(source, 70, 1, true, 5);
    const image::ConstPixelView from = image::AsConst(image::ViewOf(source));
    const std::vector<BYTE> mask(70, 0);
    for (COLOR_MATCH_MODE mode : {COLOR_MATCH_RGB, COLOR_MATCH_HUE, COLOR_MATCH_INTENSITY}) {
        S_ColorMatchData data;
        PrepareColorMatch(&data, ColorAt(from, 3, 0), mode, 20);
        const RowTest plain = ChooseRowTest(data, from, RowKernels::Reference);
        const RowTest indexed = ChooseRowTest(data, from, RowKernels::Scalar);
        ASSERT_EQ(indexed.openBits, &OpenBitsIndexed);
        for (int x = 0; x + 32 <= 70; x += 5) {
            EXPECT_EQ(indexed.openBits(indexed, from.Row(0), mask.data(), x, 32),
                      OpenBitsRef(plain, from.Row(0), mask.data(), x, 32))
                << "mode " << mode << " x " << x;
        }
    }
}

TEST_F(FillRunsTest, ExtremeTolerancesMarkAllOrNothing) {
    const BYTE reference[3] = {10, 200, 90};
    for (COLOR_MATCH_MODE mode : {COLOR_MATCH_RGB, COLOR_MATCH_HUE, COLOR_MATCH_INTENSITY}) {
        S_ColorMatchData all;
        S_ColorMatchData none;
        PrepareColorMatch(&all, reference, mode, INT_MAX);
        PrepareColorMatch(&none, reference, mode, INT_MIN);
        const int used = mode == COLOR_MATCH_RGB ? 768 : mode == COLOR_MATCH_HUE ? 360 : 256;
        for (int i = 0; i < 768; ++i) {
            ASSERT_EQ(all.m_Accept[i], i < used ? 1 : 0) << "mode " << mode << " entry " << i;
            ASSERT_EQ(none.m_Accept[i], 0) << "mode " << mode << " entry " << i;
        }
    }
}

TEST_F(FillRunsTest, ExpansionRefusesArgumentsThatReachOutside) {
    constexpr int kW = 6;
    constexpr int kH = 4;
    C_Image source;
    ASSERT_TRUE(source.Create(kW, kH, 1, nullptr, 0));
    C_Image mask;
    ASSERT_TRUE(mask.CreateMask(kW, kH));
    S_ColorMatchData data;
    const BYTE black[3] = {0, 0, 0};
    PrepareColorMatch(&data, black, COLOR_MATCH_RGB, 0);
    std::vector<S_TwoPointers> queue(kW * kH);

    C_SimpleImage work;
    ASSERT_TRUE(work.CreateMask(kW + 2, kH + 2, 1));
    work.ZeroBitmapBytes();
    const auto seedAt = [&](int x, int y) {
        queue[0] = {work.PixelPtr(x + 1, y + 1), mask.PixelPtr(x, y)};
    };
    // A frame byte set, a seed on the frame, a seed whose two pointers disagree, a short
    // queue and a work map of the wrong size: each would let the flood leave the buffers.
    work.PixelPtr(0, 2)[0] = 255;
    seedAt(1, 1);
    mask.MaskExpandColorMatching(queue.data(), 1, kW * kH, &source, &work, &data, 50);
    EXPECT_EQ(Bytes(mask), std::vector<BYTE>(kW * kH, 0));
    work.PixelPtr(0, 2)[0] = 0;

    queue[0] = {work.PixelPtr(0, 1), mask.PixelPtr(0, 0)};
    mask.MaskExpandColorMatching(queue.data(), 1, kW * kH, &source, &work, &data, 50);
    queue[0] = {work.PixelPtr(2, 2), mask.PixelPtr(2, 1)};
    mask.MaskExpandColorMatching(queue.data(), 1, kW * kH, &source, &work, &data, 50);
    seedAt(1, 1);
    mask.MaskExpandColorMatching(queue.data(), 1, kW * kH - 1, &source, &work, &data, 50);
    C_SimpleImage small;
    ASSERT_TRUE(small.CreateMask(kW + 1, kH + 2, 1));
    small.ZeroBitmapBytes();
    mask.MaskExpandColorMatching(queue.data(), 1, kW * kH, &source, &small, &data, 50);
    EXPECT_EQ(Bytes(mask), std::vector<BYTE>(kW * kH, 0));

    // The same call with sound arguments floods the black picture from the seed.
    mask.MaskExpandColorMatching(queue.data(), 1, kW * kH, &source, &work, &data, 50);
    // The seed's own byte was left 0, so its neighbours reach it too.
    EXPECT_EQ(Bytes(mask), std::vector<BYTE>(kW * kH, 50));
}

TEST_F(FillRunsTest, StackThatCannotBeHadIsReportedNotThrown) {
    FillStack stack;
    EXPECT_FALSE(stack.Allocate(SIZE_MAX / 4));
    EXPECT_TRUE(stack.Allocate(FillStack::CapacityFor(1, 1)));
    EXPECT_EQ(FillStack::CapacityFor(1, 1), 1024u);
    EXPECT_EQ(FillStack::CapacityFor(4096, 3072), 2u * 4096 * 3072 / sizeof(PendingRun));
}

}  // namespace
}  // namespace vistrane::mask
