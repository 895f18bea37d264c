#include <gtest/gtest.h>

#include <vistrane/image/image.h>
#include <vistrane/platform/dc.h>

#include "support/image_support.h"

namespace {

class ShapeTest : public ::testing::Test {
  protected:
    void SetUp() override { C_Image::CheckBitmapHeaderType(); }
};

TEST_F(ShapeTest, RoundRectCornersAreAQuarterOfTheSmallerSide) {
    C_Image painted;
    C_Image drawn;
    ASSERT_TRUE(painted.CreateMask(48, 28));
    ASSERT_TRUE(drawn.CreateMask(48, 28));
    painted.SetForePalInd(255);
    painted.PaintRoundRect(CRect(4, 4, 44, 24), PAINT_COLORS_FORE, 1, 1, 0);
    // 40 x 20: e = min(10, 5) = 5.
    CDC dc;
    ASSERT_TRUE(dc.CreateCompatibleDC(nullptr));
    CBitmap* old = dc.SelectObject(drawn.GetBitmap());
    CPen pen(PS_SOLID, 1, RGB(255, 255, 255));
    CBrush brush(RGB(255, 255, 255));
    CPen* oldPen = dc.SelectObject(&pen);
    CBrush* oldBrush = dc.SelectObject(&brush);
    dc.RoundRect(4, 4, 44, 24, 5, 5);
    dc.SelectObject(oldPen);
    dc.SelectObject(oldBrush);
    dc.SelectObject(old);
    EXPECT_TRUE(vistrane::test::SamePixels(drawn, painted));
    EXPECT_EQ(painted.GetPixelPalInd(4, 4), 0);  // the corner is rounded off
    EXPECT_EQ(painted.GetPixelPalInd(20, 4), 255);
    EXPECT_EQ(painted.GetPixelPalInd(43, 14), 255);
    EXPECT_EQ(painted.GetPixelPalInd(44, 14), 0);
}

TEST_F(ShapeTest, UnfilledShapesLeaveTheirInsideAndPenWidthCounts) {
    C_Image image;
    ASSERT_TRUE(image.Create(30, 30, 1, nullptr, 0));
    image.FillWithColorRef(RGB(1, 2, 3));
    image.SetBackTrueColor(RGB(200, 100, 50));
    image.PaintEllipse(CRect(2, 2, 28, 28), PAINT_COLORS_BACK, 3, 0, 0);
    image.PaintRectangle(CRect(10, 10, 20, 20), PAINT_COLORS_BACK, 1, 0, 0);
    EXPECT_EQ(image.GetPixelColorRef(15, 15), RGB(1, 2, 3));
    EXPECT_EQ(image.GetPixelColorRef(15, 2), RGB(200, 100, 50));
    EXPECT_EQ(image.GetPixelColorRef(15, 1), RGB(200, 100, 50));  // pen centred: one outside
    EXPECT_EQ(image.GetPixelColorRef(15, 0), RGB(1, 2, 3));
    EXPECT_EQ(image.GetPixelColorRef(10, 15), RGB(200, 100, 50));
    EXPECT_EQ(image.GetPixelColorRef(19, 15), RGB(200, 100, 50));
    EXPECT_EQ(image.GetPixelColorRef(20, 15), RGB(1, 2, 3));
    image.PaintRectangle(CRect(10, 10, 20, 20), PAINT_COLORS_BACK, 1, 1, 0);
    EXPECT_EQ(image.GetPixelColorRef(15, 15), RGB(200, 100, 50));
}

TEST_F(ShapeTest, DirectRectShiftsIntoTheImage) {
    C_Image image;
    ASSERT_TRUE(image.CreateMask(20, 12));
    image.SetForePalInd(9);
    image.PaintRectNoGDI(PAINT_COLORS_FORE, -5, 0, 10, 10);
    for (long x = 0; x < 20; ++x) {
        EXPECT_EQ(image.GetPixelPalInd(x, 0), x <= 9 ? 9 : 0) << x;
    }
    EXPECT_EQ(image.GetPixelPalInd(0, 9), 9);
    EXPECT_EQ(image.GetPixelPalInd(0, 10), 0);
    image.PaintRectNoGDIPal(4, 0, 0, -1, -1);
    EXPECT_EQ(image.GetPixelPalInd(19, 11), 4);
    image.PaintRectNoGDIPal(5, 15, 8, 100, 100);  // cut at the right and bottom edges
    EXPECT_EQ(image.GetPixelPalInd(19, 11), 5);
    EXPECT_EQ(image.GetPixelPalInd(14, 11), 4);

    C_Image colour;
    ASSERT_TRUE(colour.Create(3, 2, 1, nullptr, 0));
    colour.PaintRectNoGDITrue(RGB(10, 20, 30), 1, 1, 5, 5);
    EXPECT_EQ(colour.GetPixelColorRef(1, 1), RGB(10, 20, 30));
    EXPECT_EQ(colour.GetPixelColorRef(2, 1), RGB(10, 20, 30));
    EXPECT_EQ(colour.GetPixelColorRef(0, 1), 0u);
    EXPECT_EQ(colour.GetPixelColorRef(1, 0), 0u);
}

TEST_F(ShapeTest, AntiAliasSoftensOnlyTheEdge) {
    C_Image mask;
    ASSERT_TRUE(mask.CreateMask(10, 10));
    mask.MaskRect(CRect(3, 3, 7, 7), 255);
    ASSERT_EQ(mask.MaskAntiAlias(), 1);
    EXPECT_EQ(mask.GetPixelPalInd(3, 3), (4 * 255 + 4) / 9);  // inside corner: 113
    EXPECT_EQ(mask.GetPixelPalInd(4, 3), (6 * 255 + 4) / 9);  // inside edge: 170
    EXPECT_EQ(mask.GetPixelPalInd(4, 2), (3 * 255 + 4) / 9);  // outside edge: 85
    EXPECT_EQ(mask.GetPixelPalInd(2, 2), (255 + 4) / 9);      // outside corner: 28
    EXPECT_EQ(mask.GetPixelPalInd(5, 5), 255);                // interior stays
    EXPECT_EQ(mask.GetPixelPalInd(0, 0), 0);                  // exterior stays
    EXPECT_EQ(mask.GetPixelPalInd(1, 5), 0);

    // At the image's edge only the pixels inside count.
    ASSERT_TRUE(mask.CreateMask(3, 1));
    *mask.PixelPtr(0, 0) = 255;
    ASSERT_EQ(mask.MaskAntiAlias(), 1);
    EXPECT_EQ(mask.GetPixelPalInd(0, 0), 128);  // (255 + 0 + 1) / 2
    EXPECT_EQ(mask.GetPixelPalInd(1, 0), 85);   // (255 + 1) / 3
    EXPECT_EQ(mask.GetPixelPalInd(2, 0), 0);

    C_Image colour;
    ASSERT_TRUE(colour.Create(2, 2, 1, nullptr, 0));
    EXPECT_EQ(colour.MaskAntiAlias(), 0);
}

}  // namespace
