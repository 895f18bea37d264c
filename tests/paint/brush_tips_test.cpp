#include <vistrane/blend/image_luts.h>
#include <vistrane/image/image.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace {

// The tip as rows of '#' (255), '.' (0) and '?' (anything else), top row first.
std::string Picture(const C_Image& tip) {
    std::string out;
    for (long y = 0; y < tip.Height(); ++y) {
        for (long x = 0; x < tip.Width(); ++x) {
            const BYTE b = *tip.PixelPtr(x, y);
            out += b == 255 ? '#' : (b == 0 ? '.' : '?');
        }
        out += '\n';
    }
    return out;
}

void MakeTip(C_Image& tip, int n) {
    ASSERT_EQ(tip.CreateMask(n, n), 1);
    tip.FillBitmapBytes(7);
}

TEST(BrushTips, BarsHaveThicknessTwiceAQuarterPlusOne) {
    for (int n : {1, 2, 3}) {
        C_Image tip;
        MakeTip(tip, n);
        tip.PaintHorizontalBrushMask(n);
        const std::string picture = Picture(tip);
        EXPECT_EQ(std::count(picture.begin(), picture.end(), '#'), n) << n;
        EXPECT_EQ(picture.find('?'), std::string::npos);
    }
    C_Image four;
    MakeTip(four, 4);
    four.PaintHorizontalBrushMask(4);
    EXPECT_EQ(Picture(four), "####\n####\n####\n....\n");
    C_Image five;
    MakeTip(five, 5);
    five.PaintVerticalBrushMask(5);
    EXPECT_EQ(Picture(five), ".###.\n.###.\n.###.\n.###.\n.###.\n");
    C_Image square;
    MakeTip(square, 3);
    square.PaintSquareBrushMask(3);
    EXPECT_EQ(Picture(square), "###\n###\n###\n");
}

TEST(BrushTips, SlashBandsClampAtTheEdges) {
    C_Image back;
    MakeTip(back, 8);
    back.PaintBackSlashBrushMask(8);
    EXPECT_EQ(Picture(back),
              "###.....\n####....\n#####...\n.#####..\n..#####.\n...#####\n....####\n.....###\n");
    C_Image fore;
    MakeTip(fore, 8);
    fore.PaintForeSlashBrushMask(8);
    EXPECT_EQ(Picture(fore).substr(0, 9), ".....###\n");
    C_Image rect;
    MakeTip(rect, 4);
    rect.PaintMaskRect(1, 2, 2, 1, 0x1FF);
    EXPECT_EQ(Picture(rect), "????\n????\n?##?\n????\n");
}

TEST(BrushTips, RandomDimmingLeavesZerosAndUsesTheFirstMatchingPair) {
    C_Image tip;
    MakeTip(tip, 9);
    tip.PaintBackSlashBrushMask(9);
    const std::string before = Picture(tip);
    // Thresholds 100 catch every draw: all set bytes become the first pair's value.
    const unsigned char all[8] = {100, 40, 100, 80, 100, 120, 100, 160};
    tip.RandomBrushMaskDim(9, all);
    for (long y = 0; y < 9; ++y) {
        for (long x = 0; x < 9; ++x) {
            EXPECT_EQ(*tip.PixelPtr(x, y), before[y * 10 + x] == '#' ? 40 : 0);
        }
    }
    C_Image small;
    MakeTip(small, 3);
    small.PaintMaskRect(0, 0, 3, 3, 0);
    const unsigned char pairs[8] = {0, 9, 0, 9, 0, 9, 0, 9};
    int centres = 0;
    for (int i = 0; i < 50; ++i) {
        *small.PixelPtr(1, 1) = 0;
        small.RandomBrushMaskDim(3, pairs);
        centres += *small.PixelPtr(1, 1) == 9;
        EXPECT_EQ(*small.PixelPtr(0, 0), 0);
    }
    EXPECT_GT(centres, 0);
    EXPECT_LT(centres, 50);
}

TEST(BrushTips, CurvesStartFromTheirTablesAndCanBeReplaced) {
    unsigned char brush[256];
    C_Image::GetBrushLUT(brush);
    for (int i = 0; i < 247; ++i) {
        EXPECT_EQ(brush[i], glb_BrushOpacities[i]) << i;
    }
    const unsigned char top[9] = {253, 253, 253, 254, 254, 254, 254, 254, 255};
    for (int i = 0; i < 9; ++i) {
        EXPECT_EQ(brush[247 + i], top[i]);
    }
    unsigned char wet[256];
    C_Image::GetWetLUT(wet);
    EXPECT_EQ(wet[0], 15);
    EXPECT_EQ(wet[42], 4);
    EXPECT_EQ(wet[183], 255);
    EXPECT_EQ(wet[192], 254);
    EXPECT_EQ(wet[255], 160);
    unsigned char ramp[256];
    for (int i = 0; i < 256; ++i) {
        ramp[i] = static_cast<unsigned char>(i);
    }
    C_Image::SetWetLUT(ramp);
    unsigned char back[256];
    C_Image::GetWetLUT(back);
    EXPECT_EQ(back[200], 200);
    C_Image::SetWetLUT(wet);
}

}  // namespace
