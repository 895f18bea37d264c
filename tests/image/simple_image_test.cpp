#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include <vistrane/image/image.h>
#include <vistrane/image/simple_image.h>

#include "support/image_support.h"

namespace {

std::vector<BYTE> Bytes(const C_SimpleImage& s) {
    return std::vector<BYTE>(s.Bits(), s.Bits() + s.NBytesImage());
}

}  // namespace

TEST(CSimpleImage, KeepsALargeEnoughBlockAndReallocatesOnlyWhenItGrows) {
    C_SimpleImage s;
    ASSERT_EQ(s.CreateWithPixSize(20, 20, 1), 1);
    BYTE* first = s.Bits();
    s.FillWithByte(7);
    ASSERT_EQ(s.CreateWithPixSize(10, 10, 3), 1);
    EXPECT_EQ(s.Bits(), first);
    EXPECT_EQ(s.Width(), 10);
    EXPECT_EQ(s.Height(), 10);
    EXPECT_EQ(s.PixSize(), 3);
    EXPECT_EQ(s.Bits()[299], 7);  // contents are not cleared
    ASSERT_EQ(s.CreateWithPixSize(30, 30, 1), 1);
    EXPECT_EQ(s.NBytesImage(), 900);
    s.FillWithByte(1);  // the new block really holds 900 bytes (ASan checks)
}

TEST(CSimpleImage, PixelSizeBelowOneIsStoredAsOne) {
    C_SimpleImage s;
    ASSERT_EQ(s.CreateWithPixSize(2, 2, 0), 1);
    EXPECT_EQ(s.PixSize(), 1);
    ASSERT_EQ(s.CreateWithPixSize(2, 2, -5), 1);
    EXPECT_EQ(s.PixSize(), 1);
}

TEST(CSimpleImage, UnaddressableSizesFailAndLeaveItEmptyWithItsDimensions) {
    C_SimpleImage s;
    ASSERT_EQ(s.Create(4, 5, 1), 1);
    EXPECT_EQ(s.CreateWithPixSize(70000, 70000, 3), 0);
    EXPECT_EQ(s.HasImage(), 0);
    EXPECT_EQ(s.Width(), 4);
    EXPECT_EQ(s.Height(), 5);
    EXPECT_EQ(s.Create(0, 5, 0), 0);
    EXPECT_EQ(s.Create(-3, 5, 0), 0);
}

TEST(CSimpleImage, RowsAreStoredBottomUpWithoutPadding) {
    C_SimpleImage s;
    ASSERT_EQ(s.Create(3, 4, 1), 1);
    EXPECT_EQ(s.NBytesScan(), 9);
    EXPECT_EQ(s.PixelPtr(0, 0), s.Bits() + 27);  // the top row is last in memory
    EXPECT_EQ(s.PixelPtr(0, 3), s.Bits());
    EXPECT_EQ(s.PixelOffset(2, 1), 2 * 9 + 6);
}

TEST(CSimpleImage, FillWithDataWritesOnlyTheGivenBytesOfEachPixel) {
    C_SimpleImage s;
    ASSERT_EQ(s.Create(2, 2, 1), 1);
    s.FillWithByte(9);
    const BYTE two[2] = {1, 2};
    s.FillWithData(two, 2);
    EXPECT_EQ(Bytes(s), std::vector<BYTE>({1, 2, 9, 1, 2, 9, 1, 2, 9, 1, 2, 9}));
    const RGBTRIPLE c{10, 20, 30};
    s.FillWithRGBTRIPLE(&c);
    EXPECT_EQ(Bytes(s), std::vector<BYTE>({10, 20, 30, 10, 20, 30, 10, 20, 30, 10, 20, 30}));
}

TEST(CSimpleImage, TrustFillRectReadsTheRectangleAsOriginAndExtent) {
    C_SimpleImage s;
    ASSERT_EQ(s.Create(4, 3, 0), 1);
    s.ZeroBitmapBytes();
    s.TrustFillRectWithByte(CRect(1, 1, 2, 2), 5);  // 2 x 2 at (1, 1)
    EXPECT_EQ(*s.PixelPtr(0, 1), 0);
    EXPECT_EQ(*s.PixelPtr(1, 1), 5);
    EXPECT_EQ(*s.PixelPtr(2, 2), 5);
    EXPECT_EQ(*s.PixelPtr(3, 2), 0);
    EXPECT_EQ(*s.PixelPtr(1, 0), 0);
}

TEST(CSimpleImage, MaskEditsReplaceAndZeroValues) {
    C_SimpleImage s;
    ASSERT_EQ(s.Create(4, 1, 0), 1);
    const BYTE values[4] = {3, 5, 3, 8};
    std::copy(values, values + 4, s.Bits());
    s.MaskReplace(3, 4);
    EXPECT_EQ(Bytes(s), std::vector<BYTE>({4, 5, 4, 8}));
    s.MaskZeroDifferent(4);
    EXPECT_EQ(Bytes(s), std::vector<BYTE>({4, 0, 4, 0}));
}

TEST(CSimpleImage, BordersAreZeroedOrRepeatedFromTheInterior) {
    C_SimpleImage s;
    ASSERT_EQ(s.Create(5, 4, 0), 1);
    s.FillWithByte(9);
    for (long y = 1; y <= 2; ++y) {
        for (long x = 1; x <= 3; ++x) {
            *s.PixelPtr(x, y) = static_cast<BYTE>(10 * y + x);
        }
    }
    C_SimpleImage zeroed;
    zeroed.Clone(&s);
    zeroed.TrustZeroBorders(1);
    EXPECT_EQ(*zeroed.PixelPtr(0, 1), 0);
    EXPECT_EQ(*zeroed.PixelPtr(4, 2), 0);
    EXPECT_EQ(*zeroed.PixelPtr(2, 0), 0);
    EXPECT_EQ(*zeroed.PixelPtr(2, 3), 0);
    EXPECT_EQ(*zeroed.PixelPtr(2, 1), 12);

    s.TrustReplicateBorders(1);
    // Row by row, top first: corners from the interior's corners, edges from its edges.
    const BYTE expected[4][5] = {{11, 11, 12, 13, 13},
                                 {11, 11, 12, 13, 13},
                                 {21, 21, 22, 23, 23},
                                 {21, 21, 22, 23, 23}};
    for (long y = 0; y < 4; ++y) {
        for (long x = 0; x < 5; ++x) {
            EXPECT_EQ(*s.PixelPtr(x, y), expected[y][x]) << x << ", " << y;
        }
    }
}

TEST(CSimpleImage, CloneUnpadsImageRowsAndTwoByteSourcesKeepTheFirstBytes) {
    C_Image image;
    ASSERT_EQ(image.Create(3, 2, 1, nullptr, 0), 1);
    vistrane::test::FillRandomPixels(image, 5);
    C_SimpleImage s;
    ASSERT_EQ(s.Clone(&image), 1);
    EXPECT_EQ(s.PixSize(), 3);
    for (long y = 0; y < 2; ++y) {
        EXPECT_EQ(0, std::memcmp(s.PixelPtr(0, y), image.PixelPtr(0, y), 9));
    }

    C_SimpleImage words;
    ASSERT_EQ(words.CreateWithPixSize(3, 2, 2), 1);
    for (long i = 0; i < 12; ++i) {
        words.Bits()[i] = static_cast<BYTE>(i);
    }
    C_SimpleImage narrowed;
    ASSERT_EQ(narrowed.Clone(&words), 1);
    EXPECT_EQ(narrowed.PixSize(), 1);
    EXPECT_EQ(*narrowed.PixelPtr(0, 0), *words.PixelPtr(0, 0));
    EXPECT_EQ(*narrowed.PixelPtr(2, 0), words.PixelPtr(0, 0)[2]);
}

TEST(CSimpleImage, CloneToImageMakesMasksAndTrueColourImages) {
    C_SimpleImage words;
    ASSERT_EQ(words.CreateWithPixSize(2, 1, 2), 1);
    const BYTE data[4] = {1, 2, 3, 4};
    std::copy(data, data + 4, words.Bits());
    C_Image image;
    ASSERT_EQ(words.CloneToImage(&image), 1);
    EXPECT_EQ(image.IsTrueColor(), 1);
    EXPECT_EQ(image.GetPixelColorRef(1, 0), RGB(0, 4, 3));

    C_SimpleImage mask;
    ASSERT_EQ(mask.Create(2, 2, 0), 1);
    mask.FillWithByte(200);
    ASSERT_EQ(mask.CloneToImage(&image), 1);
    EXPECT_EQ(image.IsMask(), 1);
    EXPECT_EQ(image.GetPixelPalInd(1, 1), 200);

    C_SimpleImage quads;
    ASSERT_EQ(quads.CreateWithPixSize(2, 2, 4), 1);
    EXPECT_EQ(quads.CloneToImage(&image), 0);
}

TEST(CSimpleImage, CopyClipsNegativeOriginsAndConvertsByKind) {
    C_Image source;
    ASSERT_EQ(source.Create(6, 2, 1, nullptr, 0), 1);
    source.FillWithColorRef(RGB(31, 20, 10));  // blue 10, green 20, red 31
    C_SimpleImage s;
    ASSERT_EQ(s.Create(6, 2, 0), 1);
    s.ZeroBitmapBytes();
    ASSERT_EQ(s.Copy(&source, 0, 0, -3, 0), 1);
    EXPECT_EQ(*s.PixelPtr(2, 0), 0);
    EXPECT_EQ(*s.PixelPtr(3, 0), 20);  // (10 + 20 + 31) / 3
    EXPECT_EQ(*s.PixelPtr(5, 1), 20);

    EXPECT_EQ(s.Copy(&source, 0, 0, 6, 0), 0);  // origin right of the source

    const RGBQUAD colors[2] = {{1, 2, 3, 0}, {70, 80, 90, 0}};
    C_Image palette;
    ASSERT_EQ(palette.Create(2, 2, 0, colors, 2), 1);
    palette.FillWithColorPalette(1);
    C_SimpleImage trueColor;
    ASSERT_EQ(trueColor.Create(3, 3, 1), 1);
    trueColor.ZeroBitmapBytes();
    ASSERT_EQ(trueColor.Copy(&palette, 1, 1, 0, 0), 1);
    const BYTE* p = trueColor.PixelPtr(2, 2);
    EXPECT_EQ(p[0], 70);
    EXPECT_EQ(p[1], 80);
    EXPECT_EQ(p[2], 90);
    EXPECT_EQ(trueColor.PixelPtr(0, 0)[0], 0);
}

TEST(CSimpleImage, TrustCopyMaskTakesWholeSourceForMinusOne) {
    C_Image mask;
    ASSERT_EQ(mask.CreateMask(3, 2), 1);
    vistrane::test::FillRandomPixels(mask, 9);
    C_SimpleImage s;
    ASSERT_EQ(s.Create(5, 4, 0), 1);
    s.ZeroBitmapBytes();
    s.TrustCopyMask(&mask, 1, 2, -1, -1, -1, -1);
    EXPECT_EQ(*s.PixelPtr(1, 2), *mask.PixelPtr(0, 0));
    EXPECT_EQ(*s.PixelPtr(3, 3), *mask.PixelPtr(2, 1));
    EXPECT_EQ(*s.PixelPtr(4, 3), 0);
}
