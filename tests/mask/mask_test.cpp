#include <gtest/gtest.h>

#include <vector>

#include <vistrane/image/image.h>

#include "support/image_support.h"

namespace {

class MaskTest : public ::testing::Test {
  protected:
    void SetUp() override { C_Image::CheckBitmapHeaderType(); }

    // A mask of w x h with the given bytes row by row from the top.
    static void MakeMask(C_Image& mask, long w, long h, const std::vector<BYTE>& bytes) {
        ASSERT_TRUE(mask.CreateMask(w, h));
        for (long y = 0; y < h; ++y) {
            for (long x = 0; x < w; ++x) {
                *mask.PixelPtr(x, y) = bytes[static_cast<std::size_t>(y * w + x)];
            }
        }
    }
    static std::vector<BYTE> Bytes(const C_Image& mask) {
        std::vector<BYTE> out;
        for (long y = 0; y < mask.Height(); ++y) {
            for (long x = 0; x < mask.Width(); ++x) {
                out.push_back(*mask.PixelPtr(x, y));
            }
        }
        return out;
    }
};

TEST_F(MaskTest, LogicalOperationsAreBitwiseOverTheWholeBuffer) {
    C_Image a;
    C_Image b;
    struct Case {
        void (C_Image::*op)(C_Image*);
        BYTE expected;
    };
    const Case cases[] = {{&C_Image::MaskAnd, 200 & 100},
                          {&C_Image::MaskAndNot, 200 & static_cast<BYTE>(~100)},
                          {&C_Image::MaskOr, 200 | 100},
                          {&C_Image::MaskOrNot, static_cast<BYTE>(200 | static_cast<BYTE>(~100))},
                          {&C_Image::MaskXor, 200 ^ 100}};
    EXPECT_EQ(200 & 100, 64);
    for (const Case& c : cases) {
        MakeMask(a, 3, 2, std::vector<BYTE>(6, 200));
        MakeMask(b, 3, 2, std::vector<BYTE>(6, 100));
        a.BitmapBytes()[3] = 200;  // padding takes part as well
        b.BitmapBytes()[3] = 100;
        (a.*c.op)(&b);
        EXPECT_EQ(Bytes(a), std::vector<BYTE>(6, c.expected));
        EXPECT_EQ(a.BitmapBytes()[3], c.expected);
    }
    a.MaskInvert();
    EXPECT_EQ(a.GetPixelPalInd(0, 0), static_cast<BYTE>(~(200 ^ 100)));
    a.MaskCopy(&b);
    EXPECT_EQ(Bytes(a), Bytes(b));
}

TEST_F(MaskTest, AndNotLogicalClearsAsManyLeadingBytesAsOtherSelects) {
    C_Image a;
    C_Image b;
    MakeMask(a, 4, 3, std::vector<BYTE>(12, 9));
    MakeMask(b, 4, 3, {0, 0, 0, 0, 0, 0, 7, 0, 1, 0, 0, 255});
    a.MaskAndNotLogical(&b);
    // Buffer order is bottom row first: the first three bytes are the bottom row's x = 0..2.
    EXPECT_EQ(Bytes(a), (std::vector<BYTE>{9, 9, 9, 9, 9, 9, 9, 9, 0, 0, 0, 9}));
}

TEST_F(MaskTest, ReplaceAndZeroIfDifferent) {
    C_Image a;
    MakeMask(a, 4, 1, {1, 2, 3, 2});
    a.MaskReplace(2, 5);
    EXPECT_EQ(Bytes(a), (std::vector<BYTE>{1, 5, 3, 5}));
    a.MaskReplace(5, 6, 0);
    EXPECT_EQ(Bytes(a), (std::vector<BYTE>{0, 6, 0, 6}));
    MakeMask(a, 4, 1, {1, 2, 3, 2});
    a.MaskZeroIfDifferent(2);
    EXPECT_EQ(Bytes(a), (std::vector<BYTE>{0, 2, 0, 2}));
}

TEST_F(MaskTest, ThresholdsCountAndRefuseNonMasks) {
    C_Image a;
    MakeMask(a, 5, 1, {0, 1, 100, 254, 255});
    a.BitmapBytes()[5] = 77;  // padding: never touched by thresholds
    EXPECT_EQ(a.ThresholdMask(0), 4);
    EXPECT_EQ(Bytes(a), (std::vector<BYTE>{0, 255, 255, 255, 255}));
    EXPECT_EQ(a.BitmapBytes()[5], 77);
    EXPECT_EQ(a.ThresholdMask(255), 0);
    EXPECT_EQ(Bytes(a), std::vector<BYTE>(5, 0));

    MakeMask(a, 5, 1, {0, 1, 100, 254, 255});
    EXPECT_EQ(a.ThresholdMaskGreaterOrEqual(100, 0), 3);
    EXPECT_EQ(Bytes(a), (std::vector<BYTE>{0, 0, 100, 254, 255}));
    EXPECT_EQ(a.ThresholdMaskGreaterOrEqual(200, 1), 2);
    EXPECT_EQ(Bytes(a), (std::vector<BYTE>{0, 0, 0, 255, 255}));

    C_Image colour;
    ASSERT_TRUE(colour.Create(2, 2, 1, nullptr, 0));
    EXPECT_EQ(colour.ThresholdMask(0), 0);
    CPoint pt(-1, -1);
    EXPECT_EQ(colour.FindSelPoint(0, &pt), 0);
}

TEST_F(MaskTest, FindPointsAndBounds) {
    C_Image a;
    MakeMask(a, 4, 3, {0, 0, 5, 0, 0, 5, 0, 0, 0, 0, 0, 5});
    CPoint pt(-1, -1);
    ASSERT_EQ(a.FindSelPoint(5, &pt), 1);
    EXPECT_EQ(pt, CPoint(3, 2));  // the lowest row is searched first
    EXPECT_EQ(a.FindSelPoint(6, &pt), 0);
    EXPECT_EQ(pt, CPoint(3, 2));
    CRect r;
    ASSERT_EQ(a.FindMinMaxSelPoints(0, &r), 1);
    EXPECT_EQ(r, CRect(1, 0, 4, 3));

    MakeMask(a, 4, 3, std::vector<BYTE>(12, 0));
    EXPECT_EQ(a.FindMinMaxSelPoints(0, &r), 0);
    EXPECT_EQ(r, CRect(0, 0, 1, 1));
    *a.PixelPtr(2, 1) = 1;
    EXPECT_EQ(a.FindMinMaxSelPoints(0, &r), 1);
    EXPECT_EQ(r, CRect(2, 1, 3, 2));
}

TEST_F(MaskTest, FeaturesOfSelectedAndEmptyMasks) {
    C_Image a;
    MakeMask(a, 5, 4, {0, 0, 0, 0, 0, 0, 10, 0, 0, 0, 0, 0, 0, 255, 0, 0, 0, 31, 0, 0});
    S_MaskFeatures f{};
    a.MaskExtractFeatures(&f);
    EXPECT_EQ(f.m_ImageWidth, 5);
    EXPECT_EQ(f.m_ImageHeight, 4);
    EXPECT_EQ(f.m_NSelected, 3);
    EXPECT_EQ(f.m_Left, 1);
    EXPECT_EQ(f.m_Right, 3);
    EXPECT_EQ(f.m_Top, 1);
    EXPECT_EQ(f.m_Bottom, 3);
    EXPECT_EQ(f.m_BoundWidth, 3);
    EXPECT_EQ(f.m_BoundHeight, 3);
    EXPECT_EQ(f.m_MaxOpacity, 255);
    EXPECT_EQ(f.m_MinOpacity, 10);
    EXPECT_EQ(f.m_AverageOpacity, (10 + 255 + 31) / 3);

    MakeMask(a, 2, 2, std::vector<BYTE>(4, 0));
    S_MaskFeatures kept = f;
    a.MaskExtractFeatures(&kept);
    EXPECT_EQ(kept.m_NSelected, 0);
    EXPECT_EQ(kept.m_ImageWidth, 2);
    EXPECT_EQ(kept.m_Left, f.m_Left);
    EXPECT_EQ(kept.m_AverageOpacity, f.m_AverageOpacity);
}

TEST_F(MaskTest, OpacityRescalingRules) {
    C_Image a;
    MakeMask(a, 4, 1, {0, 1, 255, 100});
    a.ChangeMaskOpacity(50, 0);
    EXPECT_EQ(Bytes(a), (std::vector<BYTE>{0, 1, 128, 50}));
    a.ChangeMaskOpacity(300, 1);
    EXPECT_EQ(Bytes(a), (std::vector<BYTE>{0, 44, 44, 44}));
    // Values below 1 are raised to 1, so neither form deselects a pixel or wraps its byte.
    for (const int absolute : {0, 1}) {
        for (const int value : {0, -40}) {
            MakeMask(a, 3, 1, {0, 200, 255});
            a.ChangeMaskOpacity(value, absolute);
            const std::vector<BYTE> raised =
                absolute ? std::vector<BYTE>{0, 1, 1} : std::vector<BYTE>{0, 2, 3};
            EXPECT_EQ(Bytes(a), raised) << value << " " << absolute;
        }
    }

    MakeMask(a, 3, 1, {255, 0, 255});
    EXPECT_EQ(a.MaskScaleOpacity(255, 0), 0);
    EXPECT_EQ(Bytes(a), std::vector<BYTE>(3, 0));

    MakeMask(a, 4, 1, {10, 0, 20, 30});
    // in 10..30 (range 21) onto 100..200 (range 101): (b - 10) * 101 / 21 + 100.
    EXPECT_EQ(a.MaskScaleOpacity(200, 100), 3);
    EXPECT_EQ(Bytes(a), (std::vector<BYTE>{100, 0, 148, 196}));
}

TEST_F(MaskTest, CreateMaskKeepsAFittingMaskAndGlobalOpacityIsStored) {
    C_Image source;
    ASSERT_TRUE(source.Create(3, 3, 1, nullptr, 0));
    C_Image mask;
    ASSERT_TRUE(mask.CreateMask(3, 3));
    *mask.PixelPtr(1, 1) = 99;
    ASSERT_TRUE(mask.CreateMask(&source, 0, 0));
    EXPECT_EQ(mask.GetPixelPalInd(1, 1), 99);
    EXPECT_TRUE(mask.IsSelectionMask());
    mask.ChangeGlobalOpacity(17);
    EXPECT_EQ(mask.GetGlobalOpacity(), 17);
}

TEST_F(MaskTest, RectAndOvalThroughTheDevice) {
    C_Image a;
    MakeMask(a, 6, 5, std::vector<BYTE>(30, 0));
    ASSERT_EQ(a.MaskRect(CRect(1, 1, 4, 3), 77), 1);
    EXPECT_EQ(Bytes(a), (std::vector<BYTE>{0, 0,  0,  0,  0, 0,  //
                                           0, 77, 77, 77, 0, 0,  //
                                           0, 77, 77, 77, 0, 0,  //
                                           0, 0,  0,  0,  0, 0,  //
                                           0, 0,  0,  0,  0, 0}));
    MakeMask(a, 7, 7, std::vector<BYTE>(49, 0));
    ASSERT_EQ(a.MaskOval(CRect(0, 0, 7, 7), 200), 1);
    // Outline included, right and bottom exclusive: the ellipse touches all four edges of
    // 0..6 and leaves the corners.
    EXPECT_EQ(a.GetPixelPalInd(3, 0), 200);
    EXPECT_EQ(a.GetPixelPalInd(0, 3), 200);
    EXPECT_EQ(a.GetPixelPalInd(6, 3), 200);
    EXPECT_EQ(a.GetPixelPalInd(3, 6), 200);
    EXPECT_EQ(a.GetPixelPalInd(3, 3), 200);
    EXPECT_EQ(a.GetPixelPalInd(0, 0), 0);
    EXPECT_EQ(a.GetPixelPalInd(6, 6), 0);
    C_Image empty;
    EXPECT_EQ(empty.MaskRect(CRect(0, 0, 1, 1), 1), 0);
    EXPECT_EQ(empty.MaskOval(CRect(0, 0, 1, 1), 1), 0);
}

}  // namespace
