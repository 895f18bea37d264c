#include "support/image_support.h"

#include <vistrane/blend/image_luts.h>
#include <vistrane/image/image.h>

#include <gtest/gtest.h>

#include <functional>
#include <utility>
#include <vector>

namespace {

class ImageColor : public ::testing::Test {
  protected:
    static void SetUpTestSuite() { glb_CreateImageLUTs(); }
    static void TearDownTestSuite() { glb_ReleaseImageLUTs(); }
};

void SetPixel(C_Image& image, long x, long y, BYTE b, BYTE g, BYTE r) {
    BYTE* p = image.PixelPtr(x, y);
    p[0] = b, p[1] = g, p[2] = r;
}

TEST_F(ImageColor, ParameterRangesComeFromTheTables) {
    int min[3], max[3], def[3] = {9, 9, 9};
    C_Image::GetColorOperParams(COLOROPER_HSV, min, max, def);
    EXPECT_EQ(min[0], -359);
    EXPECT_EQ(min[2], -255);
    EXPECT_EQ(max[0], 359);
    EXPECT_EQ(max[1], 255);
    EXPECT_EQ(def[0] + def[1] + def[2], 0);
    C_Image::GetColorOperParams(COLOROPER_EXP_CONTRAST, min, max, def);
    EXPECT_EQ(max[0], 5);
    EXPECT_EQ(max[1], 0);
}

TEST_F(ImageColor, PaletteImagesChangeTheirColourTableOnly) {
    const RGBQUAD colours[2] = {{10, 20, 30, 0}, {200, 100, 0, 0}};
    C_Image image;
    ASSERT_EQ(image.Create(3, 1, 0, colours, 2), 1);
    *image.PixelPtr(1, 0) = 1;
    C_Image mask;
    ASSERT_EQ(mask.CreateMask(3, 1), 1);
    image.TurnNegative(&mask);  // the mask is ignored
    EXPECT_EQ(image.RGBQs()[0].rgbBlue, 245);
    EXPECT_EQ(image.RGBQs()[1].rgbRed, 255);
    EXPECT_EQ(*image.PixelPtr(1, 0), 1);
    int offsets[3] = {5, 0, -100};  // red, green, blue
    image.ColorOperation(COLOROPER_RGB_OFFSET, offsets, nullptr);
    EXPECT_EQ(image.RGBQs()[0].rgbRed, 230);
    EXPECT_EQ(image.RGBQs()[0].rgbBlue, 145);
    image.TurnGrayScale(nullptr);
    // (145 + 235 + 230) / 3
    EXPECT_EQ(image.RGBQs()[0].rgbGreen, 203);
}

TEST_F(ImageColor, NegativesFollowTheirMaskRules) {
    C_Image image, mask;
    ASSERT_EQ(image.Create(2, 1, 1, nullptr, 0), 1);
    ASSERT_EQ(mask.CreateMask(2, 1), 1);
    SetPixel(image, 0, 0, 0, 100, 255);
    SetPixel(image, 1, 0, 0, 100, 255);
    *mask.PixelPtr(0, 0) = 254;
    *mask.PixelPtr(1, 0) = 255;
    image.TurnRGBNeg(&mask);
    EXPECT_EQ(image.PixelPtr(0, 0)[1], 100);  // partly selected: left alone
    EXPECT_EQ(image.PixelPtr(1, 0)[1], 155);
    image.TurnNegative(&mask);
    // MultiplyLUT[1][100] + MultiplyLUT[254][155] = 0 + 154.
    EXPECT_EQ(image.PixelPtr(0, 0)[1], 154);
    EXPECT_EQ(image.PixelPtr(1, 0)[1], 100);

    C_Image grey;
    ASSERT_EQ(grey.CreateMask(3, 2), 1);
    vistrane::test::FillRandomPixels(grey, 1);
    C_Image before;
    ASSERT_EQ(before.Clone(&grey), 1);
    EXPECT_EQ(grey.TurnGrayScale(nullptr), 1);
    EXPECT_TRUE(vistrane::test::SamePixels(before, grey));
}

TEST_F(ImageColor, LutOperationMixesByTheMaskOnTrueColourAndGrey) {
    BYTE red[256], green[256], blue[256];
    for (int i = 0; i < 256; ++i) {
        red[i] = static_cast<BYTE>(255 - i);
        green[i] = static_cast<BYTE>(i / 2);
        blue[i] = 7;
    }
    C_Image image, mask;
    ASSERT_EQ(image.Create(13, 3, 1, nullptr, 0), 1);
    ASSERT_EQ(mask.CreateMask(13, 3), 1);
    vistrane::test::FillRandomPixels(image, 2);
    vistrane::test::FillRandomPixels(mask, 3);
    C_Image expected;
    ASSERT_EQ(expected.Clone(&image), 1);
    for (long y = 0; y < 3; ++y) {
        for (long x = 0; x < 13; ++x) {
            const int m = *mask.PixelPtr(x, y);
            BYTE* p = expected.PixelPtr(x, y);
            const BYTE fresh[3] = {blue[p[0]], green[p[1]], red[p[2]]};
            for (int c = 0; c < 3; ++c) {
                p[c] = static_cast<BYTE>((*glb_MultiplyLUT)[255 - m][p[c]] +
                                         (*glb_MultiplyLUT)[m][fresh[c]]);
            }
        }
    }
    image.LUTColorOperation(red, green, blue, &mask);
    EXPECT_TRUE(vistrane::test::SamePixels(expected, image));

    C_Image grey;
    ASSERT_EQ(grey.CreateMask(5, 1), 1);
    *grey.PixelPtr(2, 0) = 40;
    grey.LUTColorOperation(red, green, blue, nullptr);
    EXPECT_EQ(*grey.PixelPtr(2, 0), 215);
    EXPECT_EQ(*grey.PixelPtr(0, 0), 255);
}

// A one-table operation without a mask takes the whole-row byte path; a mask of 255 everywhere
// takes the per-channel rows and must give the same bytes.
TEST_F(ImageColor, OneTableOperationsGiveTheSameBytesWithAndWithoutAFullMask) {
    for (const long width : {1L, 11L, 67L}) {
        C_Image plain, masked, mask;
        ASSERT_EQ(plain.Create(width, 3, 1, nullptr, 0), 1);
        vistrane::test::FillRandomPixels(plain, static_cast<std::uint32_t>(width));
        ASSERT_EQ(masked.Clone(&plain), 1);
        ASSERT_EQ(mask.CreateMask(width, 3), 1);
        mask.FillBitmapBytes(255);
        int params[3] = {40, 0, 0};
        plain.ColorOperation(COLOROPER_GAMMA, params, nullptr);
        masked.ColorOperation(COLOROPER_GAMMA, params, &mask);
        EXPECT_TRUE(vistrane::test::SamePixels(masked, plain)) << width;
    }
}

TEST_F(ImageColor, GradientsColorizeAndGreyConversion) {
    C_Image row;
    ASSERT_EQ(row.Create(4, 1, 1, nullptr, 0), 1);
    row.FillWithColorRef(RGB(9, 9, 9));
    row.VerticalYUVGradient(128, 128);
    EXPECT_EQ(row.PixelPtr(3, 0)[0], 0);  // d = 1, Y = 0

    C_Image tall;
    ASSERT_EQ(tall.Create(1, 3, 1, nullptr, 0), 1);
    tall.VerticalHSLGradient(0, 0);
    EXPECT_EQ(tall.PixelPtr(0, 2)[0], 0);    // storage row 0, the bottom: L = 0
    EXPECT_EQ(tall.PixelPtr(0, 0)[0], 255);  // the top: L = 240

    C_Image image;
    ASSERT_EQ(image.Create(2, 1, 1, nullptr, 0), 1);
    SetPixel(image, 0, 0, 90, 90, 90);
    SetPixel(image, 1, 0, 0, 0, 200);
    image.ColorizeMasked(COLORIZE_HSL, 80, 240, nullptr);
    EXPECT_EQ(image.PixelPtr(0, 0)[0], 90);
    EXPECT_EQ(image.PixelPtr(0, 0)[2], 90);
    EXPECT_NE(image.PixelPtr(1, 0)[1], 0);  // hue 80 of 240 is green

    SetPixel(image, 0, 0, 10, 20, 31);
    ASSERT_EQ(image.TurnGrayPalette(), 1);
    EXPECT_EQ(image.BitCount(), 8);
    EXPECT_EQ(*image.PixelPtr(0, 0), 20);  // 61 / 3
    EXPECT_EQ(image.HasGrayPalette(), 1);
}

TEST_F(ImageColor, ChannelsSeparateCombineAndSwap) {
    C_Image image;
    ASSERT_EQ(image.Create(3, 2, 1, nullptr, 0), 1);
    vistrane::test::FillRandomPixels(image, 11);
    C_Image planes[3];
    for (C_Image& p : planes) {
        ASSERT_EQ(p.CreateMask(3, 2), 1);
    }
    image.SeparateChannels(&planes[0], &planes[1], &planes[2], CHANNELS_RGB);
    EXPECT_EQ(*planes[0].PixelPtr(2, 1), image.PixelPtr(2, 1)[2]);
    EXPECT_EQ(*planes[2].PixelPtr(2, 1), image.PixelPtr(2, 1)[0]);
    C_Image rebuilt;
    ASSERT_EQ(rebuilt.Create(3, 2, 1, nullptr, 0), 1);
    rebuilt.CombineChannels(&planes[0], &planes[1], &planes[2], CHANNELS_RGB);
    EXPECT_TRUE(vistrane::test::SamePixels(image, rebuilt));
    const BYTE blue = image.PixelPtr(1, 0)[0];
    image.RGB2BRG();
    EXPECT_EQ(image.PixelPtr(1, 0)[2], blue);
}

}  // namespace

namespace {

// Every member that takes a selection mask refuses one that does not fit: a mask of another
// size, a 24-bit image or an empty image changes nothing, and a member with a result says 0.
TEST_F(ImageColor, EveryMaskedMemberRefusesAMaskThatDoesNotFit) {
    using Operation = std::function<int(C_Image&, C_Image*)>;
    const std::vector<std::pair<const char*, Operation>> operations = {
        {"TurnGrayScale", [](C_Image& i, C_Image* m) { return i.TurnGrayScale(m); }},
        {"TurnNegative", [](C_Image& i, C_Image* m) { return i.TurnNegative(m); }},
        {"TurnRGBNeg", [](C_Image& i, C_Image* m) { return i.TurnRGBNeg(m); }},
        {"ColorOperation",
         [](C_Image& i, C_Image* m) {
             int params[3] = {40, 40, 40};
             i.ColorOperation(COLOROPER_RGB_OFFSET, params, m);
             return 0;
         }},
        {"PixelColorOperation",
         [](C_Image& i, C_Image* m) {
             int params[3] = {90, 10, 10};
             i.PixelColorOperation(COLOROPER_HSV, params, m);
             return 0;
         }},
        {"ColorizeMasked",
         [](C_Image& i, C_Image* m) {
             i.ColorizeMasked(COLORIZE_HSL, 100, 200, m);
             return 0;
         }},
        {"CalcAverageColor",
         [](C_Image& i, C_Image* m) { return static_cast<int>(i.CalcAverageColor(m)); }},
        {"PaintMasked",
         [](C_Image& i, C_Image* m) {
             return i.PaintMasked(PAINT_COLORS_FORE, BLENDMODE_NORMAL, 0, 255, m, nullptr);
         }},
        {"FilterImage",
         [](C_Image& i, C_Image* m) {
             int kernel[49] = {};
             kernel[24] = 2;
             return i.FilterImage(BLENDMODE_NORMAL, 255, 0, 0, 0, i.Width(), i.Height(), m, kernel,
                                  0, 1, FILTER_PER_CHANNEL, nullptr, 0, 0);
         }},
    };
    C_Image wrongSize, trueColor, empty;
    ASSERT_EQ(wrongSize.CreateMask(5, 4), 1);
    ASSERT_EQ(trueColor.Create(6, 4, 1, nullptr, 0), 1);
    for (C_Image* mask : {&wrongSize, &trueColor, &empty}) {
        if (mask->HasImage()) {
            vistrane::test::FillRandomPixels(*mask, 7);
        }
        for (const auto& [name, operation] : operations) {
            C_Image image, before;
            ASSERT_EQ(image.Create(6, 4, 1, nullptr, 0), 1);
            vistrane::test::FillRandomPixels(image, 3);
            image.SetForeTrueColor(RGB(250, 0, 0));
            ASSERT_EQ(before.Clone(&image), 1);
            EXPECT_EQ(operation(image, mask), 0) << name;
            EXPECT_TRUE(vistrane::test::SamePixels(before, image)) << name;
        }
    }
    S_Histogram histogram{};
    histogram.red[0] = 77;
    C_Image image;
    ASSERT_EQ(image.Create(6, 4, 1, nullptr, 0), 1);
    image.ComputeHistogram(&histogram, &wrongSize);
    EXPECT_EQ(histogram.red[0], 77);
}

}  // namespace
