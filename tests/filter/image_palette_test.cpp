#include "support/image_support.h"

#include <vistrane/companion/palette_sort.h>
#include <vistrane/image/image.h>

#include <gtest/gtest.h>

namespace {

// A 4 x 2 palette image: top row indices 0 1 2 3, bottom row 0 0 2 2.
const RGBQUAD kColours[5] = {
    {0, 0, 255, 0}, {0, 255, 0, 0}, {255, 0, 0, 0}, {10, 10, 10, 0}, {250, 250, 250, 0}};

void MakePaletteImage(C_Image& image, unsigned long nColors = 5) {
    ASSERT_EQ(image.Create(4, 2, 0, kColours, nColors), 1);
    const BYTE rows[2][4] = {{0, 1, 2, 3}, {0, 0, 2, 2}};
    for (long y = 0; y < 2; ++y) {
        for (long x = 0; x < 4; ++x) {
            *image.PixelPtr(x, y) = rows[y][x];
        }
    }
}

TEST(PaletteOperations, CountColorsOnBothKinds) {
    C_Image one;
    ASSERT_EQ(one.Create(1, 1, 1, nullptr, 0), 1);
    unsigned long count = 99;
    EXPECT_EQ(one.CountColors(&count, nullptr), 1);
    EXPECT_EQ(count, 1u);

    C_Image colour;
    ASSERT_EQ(colour.Create(5, 3, 1, nullptr, 0), 1);
    colour.FillWithColorRef(RGB(1, 2, 3));
    BYTE* p = colour.PixelPtr(4, 2);
    p[0] = 9;  // a second colour, differing in blue only (bit 9 mod 8 of the same byte row)
    colour.PixelPtr(0, 0)[2] = 200;
    EXPECT_EQ(colour.CountColors(&count, nullptr), 1);
    EXPECT_EQ(count, 3u);

    C_Image palette;
    MakePaletteImage(palette);
    unsigned long usage[256];
    EXPECT_EQ(palette.CountColors(&count, nullptr), 0);
    EXPECT_EQ(palette.CountColors(&count, usage), 1);
    EXPECT_EQ(count, 4u);
    EXPECT_EQ(usage[0], 3u);
    EXPECT_EQ(usage[1], 1u);
    EXPECT_EQ(usage[2], 3u);
    EXPECT_EQ(usage[3], 1u);
    EXPECT_EQ(usage[4], 0u);
}

TEST(PaletteOperations, DeletingTheForegroundEntryRemapsItsPixelsAndShiftsTheRest) {
    C_Image image;
    MakePaletteImage(image);
    image.SetForePalInd(0);
    S_DelPalData data{1, 0};
    image.DelPalColors(&data);
    ASSERT_EQ(image.NColors(), 4u);
    // Old entries 1..4 are now 0..3; old 0 (pure red) goes to the nearest left, the dark grey
    // (10, 10, 10) at new index 2, which is closer to red than pure green or blue.
    EXPECT_EQ(image.RGBQs()[0].rgbGreen, 255);
    EXPECT_EQ(image.RGBQs()[3].rgbRed, 250);
    EXPECT_EQ(*image.PixelPtr(1, 0), 0);
    EXPECT_EQ(*image.PixelPtr(2, 0), 1);
    EXPECT_EQ(*image.PixelPtr(3, 0), 2);
    EXPECT_EQ(*image.PixelPtr(0, 0), 2);
    EXPECT_EQ(*image.PixelPtr(0, 1), 2);
}

TEST(PaletteOperations, DeletingUnusedEntriesKeepsAtLeastTwo) {
    C_Image image;
    MakePaletteImage(image);
    S_DelPalData unused{0, 0};
    image.DelPalColors(&unused);
    EXPECT_EQ(image.NColors(), 4u);  // entry 4 was unused

    const RGBQUAD colours[5] = {
        {0, 0, 255, 0}, {0, 255, 0, 0}, {10, 200, 0, 0}, {9, 9, 9, 0}, {0, 0, 200, 0}};
    C_Image sparse;
    ASSERT_EQ(sparse.Create(2, 1, 0, colours, 5), 1);
    *sparse.PixelPtr(0, 0) = 2, *sparse.PixelPtr(1, 0) = 4;
    S_DelPalData rare{4, 100};
    sparse.DelPalColors(&rare);
    // Every entry is below the threshold; scanning from the top, 3 of 5 go and 0 and 1 stay.
    ASSERT_EQ(sparse.NColors(), 2u);
    EXPECT_EQ(sparse.RGBQs()[1].rgbGreen, 255);
    EXPECT_EQ(*sparse.PixelPtr(0, 0), 1);  // the dark green goes to green
    EXPECT_EQ(*sparse.PixelPtr(1, 0), 0);  // the dark red to red
}

TEST(PaletteOperations, SwapExchangesEntriesUnlessTheIndicesAgree) {
    C_Image image;
    MakePaletteImage(image);
    image.SetForePalInd(1);
    image.SetBackPalInd(1);
    S_SwapPalData foreBack{0};
    image.SwapPalColors(&foreBack);
    EXPECT_EQ(image.RGBQs()[1].rgbGreen, 255);
    image.SetBackPalInd(2);
    image.SwapPalColors(&foreBack);
    EXPECT_EQ(image.RGBQs()[1].rgbBlue, 255);
    EXPECT_EQ(image.RGBQs()[2].rgbGreen, 255);
    EXPECT_EQ(*image.PixelPtr(1, 0), 1);  // pixels keep their indices
}

TEST(PaletteOperations, SortKeepsThePicture) {
    C_Image image;
    MakePaletteImage(image);
    unsigned long before[8];
    for (int i = 0; i < 8; ++i) {
        before[i] = image.GetPixelColorRef(i % 4, i / 4);
    }
    S_SortPalData byLuma{SORTPAL_LUMINANCE, 1};
    S_CalcSortError error{};
    EXPECT_NE(image.SortPalColors(&byLuma, &error), 0);
    EXPECT_EQ(image.RGBQs()[0].rgbRed, 250);  // the brightest first
    for (int i = 0; i < 8; ++i) {
        EXPECT_EQ(image.GetPixelColorRef(i % 4, i / 4), before[i]) << i;
    }
    C_Image colour;
    ASSERT_EQ(colour.Create(2, 2, 1, nullptr, 0), 1);
    EXPECT_EQ(colour.SortPalColors(&byLuma, &error), 0);
}

TEST(Statistics, AverageColourFollowsTheMask) {
    C_Image image;
    ASSERT_EQ(image.Create(2, 1, 1, nullptr, 0), 1);
    BYTE* left = image.PixelPtr(0, 0);
    BYTE* right = image.PixelPtr(1, 0);
    left[0] = 10, left[1] = 20, left[2] = 31;
    right[0] = 0, right[1] = 0, right[2] = 0;
    // (10 + 0) / 2 = 5 blue, 10 green, 31 / 2 = 15 red.
    EXPECT_EQ(image.CalcAverageColor(nullptr), RGB(15, 10, 5));
    C_Image mask;
    ASSERT_EQ(mask.CreateMask(2, 1), 1);
    EXPECT_EQ(image.CalcAverageColor(&mask), 0u);
    *mask.PixelPtr(0, 0) = 1;
    EXPECT_EQ(image.CalcAverageColor(&mask), RGB(31, 20, 10));
}

TEST(Statistics, HistogramCountsPaletteRedInTheBlueTable) {
    C_Image image;
    MakePaletteImage(image);
    S_Histogram h;
    image.ComputeHistogram(&h, nullptr);
    EXPECT_EQ(h.counted, 8u);
    // Index 2 is pure blue (three pixels): its red, 0, is counted in blue[0].
    EXPECT_EQ(h.blue[0], 3 + 1);  // and index 1 (pure green) has red 0 too
    EXPECT_EQ(h.blue[255], 3);    // index 0, pure red
    EXPECT_EQ(h.red[255], 3);
    EXPECT_EQ(h.green[255], 1);
    EXPECT_EQ(h.gray[255], (3 + 1 + 3) / 3);
    C_Image mask;
    ASSERT_EQ(mask.CreateMask(4, 2), 1);
    *mask.PixelPtr(3, 0) = 9;
    image.ComputeHistogram(&h, &mask);
    EXPECT_EQ(h.counted, 1u);
    EXPECT_EQ(h.red[10], 1);
    EXPECT_EQ(h.median[1], 10);
    EXPECT_DOUBLE_EQ(h.mean[1], 10.0);
}

}  // namespace
