// Soft-edged shapes: the hard shape, plus a fringe blended through the anti-aliased coverage.

#include <gtest/gtest.h>

#include <vector>

#include <vistrane/blend/image_luts.h>
#include <vistrane/image/image.h>

#include "support/image_support.h"

namespace {

class SoftShapeTest : public ::testing::Test {
  protected:
    static void SetUpTestSuite() { glb_CreateImageLUTs(); }
    static void TearDownTestSuite() { glb_ReleaseImageLUTs(); }
};

struct ShapeCall {
    int kind;
    CRect rect;
    int penWidth;
    int filled;
};

// The pixels the hard shape covers, drawn alone on an empty mask.
std::vector<bool> HardCoverage(const ShapeCall& shape, long width, long height) {
    C_Image mask;
    EXPECT_TRUE(mask.CreateMask(width, height));
    mask.SetForePalInd(255);
    mask.PaintEllipseOrRect(shape.kind, shape.rect, PAINT_COLORS_FORE, shape.penWidth, shape.filled,
                            0);
    std::vector<bool> covered;
    for (long y = 0; y < height; ++y) {
        for (long x = 0; x < width; ++x) {
            covered.push_back(*mask.PixelPtr(x, y) == 255);
        }
    }
    return covered;
}

// What each pixel of `before` must become: the paint where the hard shape covers it; where
// k of the n neighbours of its 3 x 3 block that lie in the image are covered, the anti-aliased
// coverage a = (255 k + n / 2) / n laid over the old byte by the merge rule
// M[255 - a][old] + M[a][paint]; anything farther away stays as it was.
::testing::AssertionResult IsHardShapeWithFringe(const C_Image& before, const C_Image& soft,
                                                 const ShapeCall& shape, const BYTE* paint) {
    const long width = before.Width();
    const long height = before.Height();
    const std::vector<bool> covered = HardCoverage(shape, width, height);
    const int channels = before.BitCount() / 8;
    const auto& multiply = *glb_MultiplyLUT;
    for (long y = 0; y < height; ++y) {
        for (long x = 0; x < width; ++x) {
            int neighbours = 0;
            int inside = 0;
            for (long dy = -1; dy <= 1; ++dy) {
                for (long dx = -1; dx <= 1; ++dx) {
                    const long nx = x + dx;
                    const long ny = y + dy;
                    if (nx >= 0 && ny >= 0 && nx < width && ny < height) {
                        ++inside;
                        neighbours += covered[static_cast<std::size_t>(ny * width + nx)] ? 1 : 0;
                    }
                }
            }
            const int coverage = (255 * neighbours + inside / 2) / inside;
            for (int c = 0; c < channels; ++c) {
                const BYTE old = before.PixelPtr(x, y)[c];
                int expected = multiply[255 - coverage][old] + multiply[coverage][paint[c]];
                if (covered[static_cast<std::size_t>(y * width + x)]) {
                    expected = paint[c];
                }
                const BYTE actual = soft.PixelPtr(x, y)[c];
                if (actual != expected) {
                    return ::testing::AssertionFailure()
                           << "pixel (" << x << ", " << y << ") channel " << c << ": expected "
                           << expected << ", got " << int{actual} << " (" << neighbours
                           << " covered neighbours)";
                }
            }
        }
    }
    return ::testing::AssertionSuccess();
}

const ShapeCall kShapes[] = {
    {0, CRect(6, 5, 22, 17), 1, 1}, {0, CRect(6, 5, 22, 17), 3, 0}, {1, CRect(4, 4, 26, 19), 1, 1},
    {1, CRect(4, 4, 26, 19), 2, 0}, {2, CRect(5, 3, 24, 20), 1, 1}, {2, CRect(5, 3, 24, 20), 4, 0},
};

TEST_F(SoftShapeTest, TrueColourShapesGainABlendedFringeAndKeepTheirInside) {
    ASSERT_EQ(glb_LUTsCreatedOK(), 1);
    const BYTE paint[3] = {100, 200, 250};  // blue, green, red
    for (const ShapeCall& shape : kShapes) {
        SCOPED_TRACE(::testing::Message() << "kind " << shape.kind << " pen " << shape.penWidth
                                          << " filled " << shape.filled);
        C_Image before;
        ASSERT_TRUE(before.Create(30, 24, 1, nullptr, 0));
        vistrane::test::FillRandomPixels(before, 77u + static_cast<unsigned>(shape.kind));
        C_Image soft;
        ASSERT_TRUE(soft.Clone(&before));
        soft.SetForeTrueColor(RGB(paint[2], paint[1], paint[0]));
        soft.PaintEllipseOrRect(shape.kind, shape.rect, PAINT_COLORS_FORE, shape.penWidth,
                                shape.filled, 1);
        EXPECT_TRUE(IsHardShapeWithFringe(before, soft, shape, paint));
    }
}

TEST_F(SoftShapeTest, GreyMaskShapesGainABlendedFringe) {
    const BYTE paint[1] = {200};
    for (const ShapeCall& shape : kShapes) {
        SCOPED_TRACE(::testing::Message() << "kind " << shape.kind << " pen " << shape.penWidth
                                          << " filled " << shape.filled);
        C_Image before;
        ASSERT_TRUE(before.CreateMask(30, 24));
        vistrane::test::FillRandomPixels(before, 5u + static_cast<unsigned>(shape.penWidth));
        C_Image soft;
        ASSERT_TRUE(soft.Clone(&before));
        ASSERT_TRUE(soft.IsMask());
        soft.SetBackPalInd(paint[0]);
        soft.PaintEllipseOrRect(shape.kind, shape.rect, PAINT_COLORS_BACK, shape.penWidth,
                                shape.filled, 1);
        EXPECT_TRUE(IsHardShapeWithFringe(before, soft, shape, paint));
    }
}

TEST_F(SoftShapeTest, FringeOfAFilledRectangleWorkedByHand) {
    C_Image image;
    ASSERT_TRUE(image.Create(12, 10, 1, nullptr, 0));
    image.FillWithColorRef(RGB(10, 10, 10));
    image.SetForeTrueColor(RGB(250, 250, 250));
    image.PaintRectangle(CRect(3, 3, 9, 7), PAINT_COLORS_FORE, 1, 1, 1);
    // Beside a straight edge 3 of 9 neighbours are covered: a = 85, and 10 * 170 / 255 +
    // 250 * 85 / 255 = 6 + 83 = 89. Off a corner 1 of 9: a = 28, 10 * 227 / 255 + 250 * 28 / 255
    // = 8 + 27 = 35.
    EXPECT_EQ(image.GetPixelColorRef(5, 2), RGB(89, 89, 89));
    EXPECT_EQ(image.GetPixelColorRef(9, 4), RGB(89, 89, 89));
    EXPECT_EQ(image.GetPixelColorRef(2, 2), RGB(35, 35, 35));
    EXPECT_EQ(image.GetPixelColorRef(9, 7), RGB(35, 35, 35));
    EXPECT_EQ(image.GetPixelColorRef(3, 3), RGB(250, 250, 250));  // the hard edge wins inside
    EXPECT_EQ(image.GetPixelColorRef(6, 5), RGB(250, 250, 250));
    EXPECT_EQ(image.GetPixelColorRef(1, 1), RGB(10, 10, 10));
    EXPECT_EQ(image.GetPixelColorRef(10, 4), RGB(10, 10, 10));
}

TEST_F(SoftShapeTest, PaletteImagesThatAreNotMasksGetTheHardShape) {
    const RGBQUAD colours[3] = {{0, 0, 0, 0}, {0, 0, 255, 0}, {255, 255, 255, 0}};
    C_Image hard;
    ASSERT_TRUE(hard.Create(20, 16, 0, colours, 3));
    C_Image soft;
    ASSERT_TRUE(soft.Clone(&hard));
    hard.SetForePalInd(1);
    soft.SetForePalInd(1);
    hard.PaintEllipse(CRect(2, 2, 18, 14), PAINT_COLORS_FORE, 2, 1, 0);
    soft.PaintEllipse(CRect(2, 2, 18, 14), PAINT_COLORS_FORE, 2, 1, 1);
    EXPECT_TRUE(vistrane::test::SamePixels(hard, soft));
}

TEST(SoftShapeWithoutTables, GivesTheHardShape) {
    ASSERT_EQ(glb_LUTsCreatedOK(), 0);
    C_Image hard;
    ASSERT_TRUE(hard.Create(20, 16, 1, nullptr, 0));
    hard.FillWithColorRef(RGB(1, 2, 3));
    C_Image soft;
    ASSERT_TRUE(soft.Clone(&hard));
    hard.SetForeTrueColor(RGB(200, 100, 50));
    soft.SetForeTrueColor(RGB(200, 100, 50));
    hard.PaintRoundRect(CRect(2, 2, 18, 14), PAINT_COLORS_FORE, 1, 1, 0);
    soft.PaintRoundRect(CRect(2, 2, 18, 14), PAINT_COLORS_FORE, 1, 1, 1);
    EXPECT_TRUE(vistrane::test::SamePixels(hard, soft));
}

}  // namespace
