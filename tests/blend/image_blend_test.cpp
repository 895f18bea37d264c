#include "support/image_support.h"
#include "support/random_bytes.h"

#include <vistrane/blend/image_luts.h>
#include <vistrane/image/image.h>

#include <gtest/gtest.h>

#include <vector>

namespace {

class ImageBlend : public ::testing::Test {
  protected:
    static void SetUpTestSuite() { glb_CreateImageLUTs(); }
    static void TearDownTestSuite() { glb_ReleaseImageLUTs(); }
};

C_Image::BlendKernel KernelAfterFill(C_Image& image, BLENDMODES mode) {
    image.FigureFillReplaceBlendingModeFunction(mode, 50);
    return image.m_pBlendColors;
}

TEST_F(ImageBlend, SelectorsOfferTheirModesPerImageKind) {
    C_Image colour, mask, palette;
    ASSERT_EQ(colour.Create(4, 4, 1, nullptr, 0), 1);
    ASSERT_EQ(mask.CreateMask(4, 4), 1);
    const RGBQUAD colours[4] = {{0, 0, 255, 0}, {0, 255, 0, 0}, {255, 0, 0, 0}, {9, 9, 9, 0}};
    ASSERT_EQ(palette.Create(4, 4, 0, colours, 4), 1);

    EXPECT_EQ(KernelAfterFill(colour, BLENDMODE_SATURATE), &C_Image::BlendColorsSaturate);
    EXPECT_EQ(KernelAfterFill(colour, BLENDMODE_SMUDGE), &C_Image::BlendColorsNormal);
    EXPECT_EQ(KernelAfterFill(mask, BLENDMODE_EXCLUSION), &C_Image::BlendColorsExclusionMask);
    EXPECT_EQ(KernelAfterFill(mask, BLENDMODE_HUE), &C_Image::BlendColorsNormalMask);
    EXPECT_EQ(KernelAfterFill(palette, BLENDMODE_MULTIPLY), &C_Image::BlendColorsNormalMask);
    EXPECT_EQ(KernelAfterFill(palette, BLENDMODE_DISSOLVE), &C_Image::BlendColorsDissolveMask);
    EXPECT_EQ(palette.m_pOpaqueMerge, &C_Image::OpaqueMergePal);
    EXPECT_EQ(mask.m_pOpaqueMerge, &C_Image::OpaqueMergeCanEditTrue);

    colour.InitImageFilterBlend(BLENDMODE_RGBDARKEN, 7);
    EXPECT_EQ(colour.m_pBlendColors, &C_Image::BlendColorsNormal);
    colour.InitImageFilterBlend(BLENDMODE_LUMINOSITY, 7);
    EXPECT_EQ(colour.m_pBlendColors, &C_Image::BlendColorsLuminosity);
    mask.InitImageFilterBlend(BLENDMODE_HUE, 7);
    EXPECT_EQ(mask.m_pBlendColors, &C_Image::BlendColorsNormalMask);
    // A palette image keeps whatever kernel it had.
    palette.InitImageFilterBlend(BLENDMODE_MULTIPLY, 7);
    EXPECT_EQ(palette.m_pBlendColors, &C_Image::BlendColorsDissolveMask);

    colour.SetPaintBlendingModeFunction(BLENDMODE_FILTER3, 10);
    EXPECT_EQ(colour.m_pBlendColors, &C_Image::BlendColorsFilter);
    mask.SetPaintBlendingModeFunction(BLENDMODE_SMUDGE, 10);
    EXPECT_EQ(mask.m_pBlendColors, &C_Image::BlendColorsSmudgeMask);
}

TEST_F(ImageBlend, OptionOf100IsStoredAs50ExceptByTheFilterSelector) {
    C_Image image;
    ASSERT_EQ(image.Create(2, 2, 1, nullptr, 0), 1);
    image.FigureFillReplaceBlendingModeFunction(BLENDMODE_DISSOLVE, 100);
    EXPECT_EQ(image.m_BlendModeOption, 50);
    image.SetPaintBlendingModeFunction(BLENDMODE_DISSOLVE, 100);
    EXPECT_EQ(image.m_BlendModeOption, 50);
    image.FigureFillReplaceBlendingModeFunction(BLENDMODE_DISSOLVE, 99);
    EXPECT_EQ(image.m_BlendModeOption, 99);
    image.InitImageFilterBlend(BLENDMODE_DISSOLVE, 100);
    EXPECT_EQ(image.m_BlendModeOption, 100);
}

TEST_F(ImageBlend, IsFilterModeHoldsForTheNeighbourhoodModesOnly) {
    for (int m = 0; m <= 26; ++m) {
        EXPECT_EQ(C_Image::IsFilterMode(static_cast<BLENDMODES>(m)), m >= 21 && m <= 25 ? 1 : 0)
            << m;
    }
}

TEST_F(ImageBlend, StoredKernelAndMergeStepWorkOnThePaintingState) {
    C_Image image;
    ASSERT_EQ(image.Create(1, 1, 1, nullptr, 0), 1);
    BYTE* pixel = image.PixelPtr(0, 0);
    pixel[0] = 3, pixel[1] = 100, pixel[2] = 255;
    image.FigureFillReplaceBlendingModeFunction(BLENDMODE_RGBDARKEN, 0);
    image.SetBlendSourceColor(RGB(200, 10, 77));
    image.SetBlendDestination(pixel);
    (image.*image.m_pBlendColors)();
    EXPECT_EQ(image.BlendResult()[0], 0);
    EXPECT_EQ(image.BlendResult()[1], 92);
    EXPECT_EQ(image.BlendResult()[2], 247);
    // Half opacity: MultiplyLUT[127][old] + MultiplyLUT[128][new], e.g. 49 + 46 = 95 for green.
    (image.*image.m_pOpaqueMerge)(128);
    EXPECT_EQ(pixel[0], 3 * 127 / 255 + 0);
    EXPECT_EQ(pixel[1], 100 * 127 / 255 + 92 * 128 / 255);
    EXPECT_EQ(pixel[2], 255 * 127 / 255 + 247 * 128 / 255);
}

TEST_F(ImageBlend, DissolveWithOptionZeroNeverPaints) {
    C_Image image;
    ASSERT_EQ(image.Create(37, 11, 1, nullptr, 0), 1);
    vistrane::test::FillRandomPixels(image, 5);
    C_Image before;
    ASSERT_EQ(before.Clone(&image), 1);
    ASSERT_EQ(image.PaintMasked(PAINT_COLORS_FORE, BLENDMODE_DISSOLVE, 0, 255, nullptr, nullptr),
              1);
    EXPECT_TRUE(vistrane::test::SamePixels(before, image));
}

// PaintMasked runs whole rows through the fastest routines; the per-pixel path through the
// stored kernel and merge step defines the bytes it must produce.
void PaintPerPixel(C_Image& image, PAINT_COLORS color, BLENDMODES mode, unsigned char opacity,
                   C_Image* mask, const CRect& r) {
    image.FigureFillReplaceBlendingModeFunction(mode, 30);
    if (image.IsTrueColor()) {
        image.SetBlendSourceColor(image.GetTruePaintColor(color));
    } else {
        image.SetBlendSourceColor(image.GetPalPaintColor(color));
    }
    for (long y = r.top; y < r.bottom; ++y) {
        for (long x = r.left; x < r.right; ++x) {
            const int m = mask != nullptr ? *mask->PixelPtr(x, y) : 255;
            const int a = opacity * m / 255;
            if (a == 0) {
                continue;
            }
            image.SetBlendDestination(image.PixelPtr(x, y));
            (image.*image.m_pBlendColors)();
            (image.*image.m_pOpaqueMerge)(static_cast<unsigned char>(a));
        }
    }
}

TEST_F(ImageBlend, PaintMaskedMatchesTheStoredKernelPixelByPixel) {
    vistrane::test::RandomBytes random(99);
    const long sizes[][2] = {{1, 1}, {3, 2}, {33, 5}, {67, 9}, {101, 3}};
    for (const auto& size : sizes) {
        for (int kind = 0; kind < 3; ++kind) {
            for (int mode = 0; mode <= 26; ++mode) {
                C_Image image;
                if (kind == 0) {
                    ASSERT_EQ(image.Create(size[0], size[1], 1, nullptr, 0), 1);
                    image.SetForeTrueColor(RGB(random.Next(), random.Next(), random.Next()));
                } else if (kind == 1) {
                    ASSERT_EQ(image.CreateMask(size[0], size[1]), 1);
                    image.SetForePalInd(random.Next());
                } else {
                    const RGBQUAD colours[3] = {{1, 2, 3, 0}, {4, 5, 6, 0}, {7, 8, 9, 0}};
                    ASSERT_EQ(image.Create(size[0], size[1], 0, colours, 3), 1);
                    image.SetForePalInd(2);
                }
                vistrane::test::FillRandomPixels(image, 1000 + mode);
                if (kind == 2) {
                    for (long y = 0; y < size[1]; ++y) {
                        for (long x = 0; x < size[0]; ++x) {
                            *image.PixelPtr(x, y) %= 3;
                        }
                    }
                }
                C_Image mask;
                ASSERT_EQ(mask.CreateMask(size[0], size[1]), 1);
                vistrane::test::FillRandomPixels(mask, 2000 + mode);
                C_Image expected;
                ASSERT_EQ(expected.Clone(&image), 1);
                const CRect r(0, size[1] / 3, size[0], size[1]);
                const unsigned char opacity = mode % 2 == 0 ? 255 : 200;
                C_Image* maskOrNull = mode % 3 == 0 ? nullptr : &mask;
                // The same random sequence for both paths, so dissolve draws alike.
                C_Helper::SeedRandom(7);
                PaintPerPixel(expected, PAINT_COLORS_FORE, static_cast<BLENDMODES>(mode), opacity,
                              maskOrNull, r);
                C_Helper::SeedRandom(7);
                ASSERT_EQ(image.PaintMasked(PAINT_COLORS_FORE, static_cast<BLENDMODES>(mode), 30,
                                            opacity, maskOrNull, &r),
                          1);
                EXPECT_TRUE(vistrane::test::SamePixels(expected, image))
                    << "kind " << kind << " mode " << mode << " size " << size[0];
            }
        }
    }
}

TEST_F(ImageBlend, PaintMaskedRefusesAMaskOfAnotherSize) {
    C_Image image, mask;
    ASSERT_EQ(image.Create(5, 5, 1, nullptr, 0), 1);
    ASSERT_EQ(mask.CreateMask(5, 4), 1);
    EXPECT_EQ(image.PaintMasked(PAINT_COLORS_FORE, BLENDMODE_NORMAL, 0, 255, &mask, nullptr), 0);
    C_Image empty;
    EXPECT_EQ(empty.PaintMasked(PAINT_COLORS_FORE, BLENDMODE_NORMAL, 0, 255, nullptr, nullptr), 0);
}

}  // namespace
