#include <vistrane/blend/image_luts.h>
#include <vistrane/companion/helper.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <functional>

namespace {

class ImageLuts : public ::testing::Test {
  protected:
    void SetUp() override { glb_CreateImageLUTs(); }
    void TearDown() override { glb_ReleaseImageLUTs(); }
};

// Checks all 65,536 entries against a rule written in floating point with explicit floors, an
// independent form of the integer rules in the builder.
void ExpectEveryEntry(BYTE (*table)[256][256], const char* name,
                      const std::function<int(int, int)>& rule) {
    ASSERT_NE(table, nullptr) << name;
    for (int a = 0; a < 256; ++a) {
        for (int b = 0; b < 256; ++b) {
            ASSERT_EQ((*table)[a][b], rule(a, b)) << name << "[" << a << "][" << b << "]";
        }
    }
}

int FloorDiv(double n, double d) {
    return static_cast<int>(std::floor(n / d));
}

TEST_F(ImageLuts, EveryEntryFollowsItsRule) {
    ExpectEveryEntry(glb_DistancesLUT, "distances", [](int a, int b) {
        const double d = std::floor(std::hypot(a, b));
        return d > 255 ? 255 : static_cast<int>(d);
    });
    ExpectEveryEntry(glb_MultiplyLUT, "multiply",
                     [](int a, int b) { return FloorDiv(a * b, 255); });
    ExpectEveryEntry(glb_ScreenLUT, "screen",
                     [](int a, int b) { return 255 - FloorDiv((255.0 - a) * (255 - b), 255); });
    auto overlay = [](int a, int b) {
        return b < 129 ? FloorDiv(a * b, 128) : 255 - FloorDiv((255.0 - a) * (255 - b), 128);
    };
    ExpectEveryEntry(glb_OverlayLUT, "overlay", overlay);
    ExpectEveryEntry(glb_HardLightLUT, "hard light", overlay);
    ExpectEveryEntry(glb_ColorDodgeLUT, "colour dodge", [](int a, int b) {
        if (a == 255) {
            return 255;
        }
        const int q = FloorDiv(255.0 * b, 255 - a);
        return q > 255 ? 255 : q;
    });
    ExpectEveryEntry(glb_ColorBurnLUT, "colour burn", [](int a, int b) {
        if (a == 0) {
            return 0;
        }
        const int r = 255 - FloorDiv(255.0 * (255 - b), a);
        return r < 0 ? 0 : r;
    });
    ExpectEveryEntry(glb_ExclusionLUT, "exclusion",
                     [](int a, int b) { return a + b - FloorDiv(2.0 * a * b, 255); });
}

TEST_F(ImageLuts, GammaRowsAreTheHelpersGammaCurves) {
    ASSERT_NE(glb_GammaTableLUT, nullptr);
    C_Helper helper;
    for (int a = 0; a < 256; ++a) {
        BYTE row[256];
        helper.FillGammaTable(row, helper.GetGammaFromRatio(1.0 - (a + 0.5) / 256.0));
        ASSERT_EQ(std::memcmp(row, (*glb_GammaTableLUT)[a], 256), 0) << "row " << a;
    }
    // Row 128 is nearly the identity; the soft-light rows darken below and lighten above it.
    EXPECT_EQ((*glb_GammaTableLUT)[128][128], 128);
    EXPECT_LT((*glb_GammaTableLUT)[64][128], 128);
    EXPECT_GT((*glb_GammaTableLUT)[191][128], 128);
}

TEST_F(ImageLuts, DocumentedCorners) {
    EXPECT_EQ((*glb_MultiplyLUT)[255][255], 255);
    EXPECT_EQ((*glb_MultiplyLUT)[128][128], 64);
    EXPECT_EQ((*glb_ScreenLUT)[0][0], 0);
    EXPECT_EQ((*glb_ScreenLUT)[128][128], 192);
    EXPECT_EQ((*glb_OverlayLUT)[100][128], 100);
    EXPECT_EQ((*glb_OverlayLUT)[100][129], 103);  // 155 * 126 / 128 = 152
    EXPECT_EQ((*glb_ColorDodgeLUT)[255][0], 255);
    EXPECT_EQ((*glb_ColorDodgeLUT)[128][100], 200);  // 25,500 / 127
    EXPECT_EQ((*glb_ColorBurnLUT)[0][255], 0);
    EXPECT_EQ((*glb_ColorBurnLUT)[255][255], 255);
    EXPECT_EQ((*glb_ColorBurnLUT)[128][0], 0);
    EXPECT_EQ((*glb_ExclusionLUT)[255][0], 255);
    EXPECT_EQ((*glb_ExclusionLUT)[255][255], 0);
    EXPECT_EQ((*glb_DistancesLUT)[3][4], 5);
    EXPECT_EQ((*glb_DistancesLUT)[200][200], 255);
}

TEST(ImageLutsLifecycle, CreateReleaseAndReleaseAgain) {
    glb_ReleaseImageLUTs();
    EXPECT_EQ(glb_LUTsCreatedOK(), 0);
    EXPECT_EQ(glb_MultiplyLUT, nullptr);
    glb_CreateImageLUTs();
    EXPECT_EQ(glb_LUTsCreatedOK(), 1);
    glb_ReleaseImageLUTs();
    EXPECT_EQ(glb_LUTsCreatedOK(), 0);
    EXPECT_EQ(glb_DistancesLUT, nullptr);
    EXPECT_EQ(glb_GammaTableLUT, nullptr);
    glb_ReleaseImageLUTs();
    EXPECT_EQ(glb_LUTsCreatedOK(), 0);
}

TEST(ConstantTables, GrayPaletteIsTheIdentityGreyRamp) {
    for (int i = 0; i < 256; ++i) {
        EXPECT_EQ(glb_GrayPalette[i].rgbBlue, i);
        EXPECT_EQ(glb_GrayPalette[i].rgbGreen, i);
        EXPECT_EQ(glb_GrayPalette[i].rgbRed, i);
        EXPECT_EQ(glb_GrayPalette[i].rgbReserved, 0);
    }
}

TEST(ConstantTables, BrushOpacitiesDipThenRiseToFull) {
    EXPECT_EQ(glb_BrushOpacities[0], 8);
    EXPECT_EQ(glb_BrushOpacities[30], 3);
    EXPECT_EQ(glb_BrushOpacities[32], 3);
    EXPECT_EQ(glb_BrushOpacities[33], 4);
    EXPECT_EQ(glb_BrushOpacities[127], 41);
    EXPECT_EQ(glb_BrushOpacities[160], 128);
    EXPECT_EQ(glb_BrushOpacities[246], 253);
    EXPECT_EQ(glb_BrushOpacities[251], 255);
    for (int i = 1; i <= 30; ++i) {
        EXPECT_LE(glb_BrushOpacities[i], glb_BrushOpacities[i - 1]) << i;
    }
    for (int i = 33; i < 256; ++i) {
        EXPECT_GE(glb_BrushOpacities[i], glb_BrushOpacities[i - 1]) << i;
    }
    long sum = 0;
    for (BYTE b : glb_BrushOpacities) {
        sum += b;
    }
    EXPECT_EQ(sum, 25687);
}

}  // namespace
