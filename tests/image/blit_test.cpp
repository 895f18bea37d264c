#include <gtest/gtest.h>

#include <vistrane/image/image.h>
#include <vistrane/platform/dc.h>

#include "support/image_support.h"

namespace {

class BlitTest : public ::testing::Test {
  protected:
    void SetUp() override { C_Image::CheckBitmapHeaderType(); }
};

void SetGrey(C_Image& image, long x, long y, BYTE v) {
    *image.PixelPtr(x, y) = v;
}

TEST_F(BlitTest, DibBltWithNegativeOffsetStartsFromTheMatchingSourcePixel) {
    C_Image source;
    C_Image target;
    ASSERT_TRUE(source.CreateMask(4, 4));
    ASSERT_TRUE(target.CreateMask(4, 4));
    for (long y = 0; y < 4; ++y) {
        for (long x = 0; x < 4; ++x) {
            SetGrey(source, x, y, static_cast<BYTE>(10 * y + x + 1));
        }
    }
    target.DibBlt(-1, -2, 4, 4, &source, 0, 0, 0);
    // Target (0, 0) shows source (1, 2); the blit reaches target (2, 1) = source (3, 3).
    EXPECT_EQ(target.GetPixelPalInd(0, 0), 22);
    EXPECT_EQ(target.GetPixelPalInd(2, 1), 34);
    EXPECT_EQ(target.GetPixelPalInd(3, 0), 0);
    EXPECT_EQ(target.GetPixelPalInd(0, 2), 0);

    C_Image shifted;
    ASSERT_TRUE(shifted.CreateMask(4, 4));
    shifted.DibBlt(2, 1, 10, 10, &source, -1, 1, 0);
    // A source origin outside the source starts at its first pixel column, still placed so
    // that source (-1, 1) would land on (2, 1): source (0, 1) lands on (3, 1).
    EXPECT_EQ(shifted.GetPixelPalInd(3, 1), 11);
    EXPECT_EQ(shifted.GetPixelPalInd(2, 1), 0);
}

TEST_F(BlitTest, DibBltPaletteIntoTrueColourThroughTheTableAndTransparency) {
    RGBQUAD table[3] = {{1, 2, 3, 0}, {40, 50, 60, 0}, {70, 80, 90, 0}};
    C_Image source;
    ASSERT_TRUE(source.Create(3, 1, 0, table, 3));
    SetGrey(source, 0, 0, 0);
    SetGrey(source, 1, 0, 1);
    SetGrey(source, 2, 0, 2);
    source.SetTransPalInd(1);
    C_Image target;
    ASSERT_TRUE(target.Create(3, 1, 1, nullptr, 0));
    target.FillWithColorRef(RGB(200, 200, 200));
    target.DibBlt(0, 0, 3, 1, &source, 0, 0, 1);
    EXPECT_EQ(target.GetPixelColorRef(0, 0), RGB(3, 2, 1));
    EXPECT_EQ(target.GetPixelColorRef(1, 0), RGB(200, 200, 200));  // transparent index kept
    EXPECT_EQ(target.GetPixelColorRef(2, 0), RGB(90, 80, 70));
    target.DibBlt(0, 0, 3, 1, &source, 0, 0, 0);
    EXPECT_EQ(target.GetPixelColorRef(1, 0), RGB(60, 50, 40));
}

TEST_F(BlitTest, DibBltTrueColourTransparencyAndRefusedDirection) {
    C_Image source;
    ASSERT_TRUE(source.Create(2, 1, 1, nullptr, 0));
    *reinterpret_cast<RGBTRIPLE*>(source.PixelPtr(0, 0)) = {5, 6, 7};
    *reinterpret_cast<RGBTRIPLE*>(source.PixelPtr(1, 0)) = {8, 9, 10};
    source.SetTranspTrueColor(RGB(7, 6, 5));
    C_Image target;
    ASSERT_TRUE(target.Create(2, 1, 1, nullptr, 0));
    target.DibBlt(0, 0, 2, 1, &source, 0, 0, 1);
    EXPECT_EQ(target.GetPixelColorRef(0, 0), 0u);
    EXPECT_EQ(target.GetPixelColorRef(1, 0), RGB(10, 9, 8));

    C_Image grey;
    ASSERT_TRUE(grey.CreateMask(2, 1));
    grey.FillBitmapBytes(77);
    grey.DibBlt(0, 0, 2, 1, &source, 0, 0, 0);
    EXPECT_EQ(grey.GetPixelPalInd(0, 0), 77);
    EXPECT_EQ(grey.GetPixelPalInd(1, 0), 77);
}

TEST_F(BlitTest, DibBltIndicesWithTransparentIndexAndRowPadding) {
    C_Image source;
    C_Image target;
    ASSERT_TRUE(source.CreateMask(5, 3));
    ASSERT_TRUE(target.CreateMask(5, 3));
    vistrane::test::FillRandomPixels(source, 42);
    target.FillBitmapBytes(0xEE);
    source.SetTransPalInd(source.GetPixelPalInd(2, 1));
    target.DibBlt(0, 0, 5, 3, &source, 0, 0, 1);
    for (long y = 0; y < 3; ++y) {
        for (long x = 0; x < 5; ++x) {
            const BYTE s = source.GetPixelPalInd(x, y);
            EXPECT_EQ(target.GetPixelPalInd(x, y), s == source.GetTransPalInd() ? 0xEE : s);
        }
    }
    // The padding of each 8-byte row is never written.
    EXPECT_EQ(target.BitmapBytes()[5], 0xEE);
    EXPECT_EQ(target.BitmapBytes()[7], 0xEE);
}

TEST_F(BlitTest, BitBltBetweenPaletteImagesCopiesIndicesUnchanged) {
    RGBQUAD sourceColors[2] = {{0, 0, 0, 0}, {255, 255, 255, 0}};
    RGBQUAD targetColors[4] = {{255, 255, 255, 0}, {0, 0, 0, 0}, {9, 9, 9, 0}, {1, 1, 1, 0}};
    C_Image source;
    C_Image target;
    ASSERT_TRUE(source.Create(4, 2, 0, sourceColors, 2));
    ASSERT_TRUE(target.Create(4, 2, 0, targetColors, 4));
    SetGrey(source, 1, 0, 1);
    SetGrey(source, 2, 1, 3);
    ASSERT_TRUE(target.BitBlt(0, 0, 4, 2, &source, 0, 0, SRCCOPY));
    EXPECT_EQ(target.GetPixelPalInd(1, 0), 1);
    EXPECT_EQ(target.GetPixelPalInd(2, 1), 3);
    EXPECT_EQ(target.GetPixelPalInd(0, 0), 0);
    C_Image empty;
    EXPECT_EQ(target.BitBlt(0, 0, 4, 2, &empty, 0, 0, SRCCOPY), 0);
    EXPECT_EQ(target.BitBlt(0, 0, 4, 2, &source, 0, 0, 0x12345678), 0);
}

TEST_F(BlitTest, ReducedMaskAndReducedColourTreatEliminatedRowsDifferently) {
    C_Image mask;
    ASSERT_TRUE(mask.CreateMask(4, 4));
    for (long y = 0; y < 4; ++y) {
        for (long x = 0; x < 4; ++x) {
            SetGrey(mask, x, y, (y % 2 == 0) ? 0xFF : 0x0F);
        }
    }
    C_Image small;
    ASSERT_TRUE(small.CreateMask(2, 2));
    ASSERT_TRUE(small.StretchMask(0, 0, 2, 2, &mask, 0, 0, -1, -1, SRCCOPY));
    EXPECT_EQ(small.GetPixelPalInd(0, 0), 0x0F);  // 0xFF AND 0x0F
    ASSERT_TRUE(small.StretchBlt(0, 0, 2, 2, &mask, 0, 0, 4, 4, SRCCOPY));
    EXPECT_EQ(small.GetPixelPalInd(0, 0), 0xFF);  // the second row is deleted
    EXPECT_EQ(small.GetPixelPalInd(1, 1), 0xFF);
    ASSERT_TRUE(small.BltMask(0, 0, 2, 2, &mask, 0, 1, SRCCOPY));
    EXPECT_EQ(small.GetPixelPalInd(0, 0), 0x0F);
    EXPECT_EQ(small.GetPixelPalInd(0, 1), 0xFF);
}

}  // namespace
