#include <vistrane/companion/helper.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

namespace {

int MaxChannelError(int r0, int g0, int b0, int r1, int g1, int b1) {
    return std::max({std::abs(r0 - r1), std::abs(g0 - g1), std::abs(b0 - b1)});
}

// Walks the whole 24-bit cube; callers keep the per-colour work to a few conversions.
template <typename Visit>
void ForEveryColor(Visit visit) {
    for (int r = 0; r < 256; ++r) {
        for (int g = 0; g < 256; ++g) {
            for (int b = 0; b < 256; ++b) {
                visit(r, g, b);
            }
        }
    }
}

TEST(YUV, RoundTripIsWithinOneLevelForEveryColor) {
    C_Helper helper;
    int worst = 0;
    ForEveryColor([&](int r, int g, int b) {
        BYTE y, u, v, r1, g1, b1;
        helper.YUVFromRGB(r, g, b, &y, &u, &v);
        helper.RGBFromYUV(y, u, v, &r1, &g1, &b1);
        const int e = MaxChannelError(r, g, b, r1, g1, b1);
        if (e > worst) {
            worst = e;
            ASSERT_LE(e, 1) << "rgb " << r << "," << g << "," << b;
        }
    });
}

TEST(YUV, GreysHaveNeutralChromaAndLumaEqualToTheirLevel) {
    C_Helper helper;
    for (int level = 0; level < 256; ++level) {
        BYTE y, u, v, r, g, b;
        helper.YUVFromRGB(level, level, level, &y, &u, &v);
        EXPECT_EQ(y, level);
        EXPECT_EQ(u, 128);
        EXPECT_EQ(v, 128);
        EXPECT_EQ(helper.YFromRGB(level, level, level), level);
        helper.RGBFromYUV(y, u, v, &r, &g, &b);
        EXPECT_EQ(MaxChannelError(level, level, level, r, g, b), 0);
    }
}

TEST(YUV, PrimariesFollowTheLumaWeightsAndClampAtTheEdges) {
    C_Helper helper;
    // 0.299 * 255 = 76.2, 0.587 * 255 = 149.7, 0.114 * 255 = 29.1.
    EXPECT_EQ(helper.YFromRGB(255, 0, 0), 76);
    EXPECT_EQ(helper.YFromRGB(0, 255, 0), 150);
    EXPECT_EQ(helper.YFromRGB(0, 0, 255), 29);
    BYTE y, u, v;
    helper.YUVFromRGB(0, 0, 255, &y, &u, &v);
    EXPECT_EQ(u, 255);  // 128 + 127.5 clamps
    helper.YUVFromRGB(255, 255, 0, &y, &u, &v);
    EXPECT_EQ(u, 1);  // 128 - 127.5 rounds half up
    BYTE r, g, b;
    helper.RGBFromYUV(255, 255, 255, &r, &g, &b);
    EXPECT_EQ(r, 255);
    EXPECT_EQ(b, 255);
    helper.RGBFromYUV(0, 0, 0, &r, &g, &b);
    EXPECT_EQ(r, 0);
    EXPECT_EQ(b, 0);
}

TEST(HSV, PrimariesAndGreys) {
    C_Helper helper;
    struct Case {
        BYTE r, g, b;
        int hue;
        BYTE s, v;
    } cases[] = {
        {255, 0, 0, 0, 255, 255},     {255, 255, 0, 60, 255, 255}, {0, 255, 0, 120, 255, 255},
        {0, 255, 255, 180, 255, 255}, {0, 0, 255, 240, 255, 255},  {255, 0, 255, 300, 255, 255},
        {255, 0, 1, 0, 255, 255},  // 359.76 rounds to 360, which wraps to 0
        {128, 64, 64, 0, 128, 128},   {0, 0, 0, 0, 0, 0},          {77, 77, 77, 0, 0, 77},
        {200, 100, 0, 30, 255, 200},
    };
    for (const Case& c : cases) {
        int hue;
        BYTE s, v;
        helper.HSVFromRGB(c.r, c.g, c.b, &hue, &s, &v);
        EXPECT_EQ(hue, c.hue % 360) << int(c.r) << "," << int(c.g) << "," << int(c.b);
        EXPECT_EQ(s, c.s);
        EXPECT_EQ(v, c.v);
    }
}

TEST(HSV, RoundTripErrorIsBoundedByTheWholeDegreeHue) {
    C_Helper helper;
    // A whole degree is up to 255 / 120 levels of the middle channel, so saturated colours
    // may come back 2 levels off; colours of low chroma come back within one level.
    int worstLowChroma = 0;
    int worst = 0;
    ForEveryColor([&](int r, int g, int b) {
        int hue;
        BYTE s, v, r1, g1, b1;
        helper.HSVFromRGB(r, g, b, &hue, &s, &v);
        ASSERT_GE(hue, 0);
        ASSERT_LE(hue, 359);
        helper.RGBFromHSV(hue, s, v, &r1, &g1, &b1);
        const int e = MaxChannelError(r, g, b, r1, g1, b1);
        worst = std::max(worst, e);
        if (std::max({r, g, b}) - std::min({r, g, b}) <= 60) {
            worstLowChroma = std::max(worstLowChroma, e);
        }
    });
    EXPECT_LE(worstLowChroma, 1);
    EXPECT_LE(worst, 2);
}

TEST(HSV, HueIsTakenModulo360) {
    C_Helper helper;
    BYTE r0, g0, b0, r1, g1, b1;
    helper.RGBFromHSV(100, 200, 150, &r0, &g0, &b0);
    helper.RGBFromHSV(100 - 720, 200, 150, &r1, &g1, &b1);
    EXPECT_EQ(MaxChannelError(r0, g0, b0, r1, g1, b1), 0);
    helper.RGBFromHSV(100 + 360, 200, 150, &r1, &g1, &b1);
    EXPECT_EQ(MaxChannelError(r0, g0, b0, r1, g1, b1), 0);
}

TEST(HSL, ScalesGreysAndPrimaries) {
    C_Helper helper;
    BYTE h, s, l;
    helper.HSLFromRGB(0, 0, 0, &h, &s, &l);
    EXPECT_EQ(h, 255);
    EXPECT_EQ(s, 0);
    EXPECT_EQ(l, 0);
    helper.HSLFromRGB(255, 255, 255, &h, &s, &l);
    EXPECT_EQ(h, 255);
    EXPECT_EQ(l, 240);
    helper.HSLFromRGB(255, 0, 0, &h, &s, &l);
    EXPECT_EQ(h, 0);
    EXPECT_EQ(s, 240);
    EXPECT_EQ(l, 120);
    helper.HSLFromRGB(0, 255, 0, &h, &s, &l);
    EXPECT_EQ(h, 80);
    helper.HSLFromRGB(0, 0, 255, &h, &s, &l);
    EXPECT_EQ(h, 160);
    // Inputs above a byte are clamped.
    helper.HSLFromRGB(1000, 0, 0, &h, &s, &l);
    EXPECT_EQ(h, 0);
    EXPECT_EQ(l, 120);

    BYTE r, g, b;
    helper.RGBFromHSL(0, 240, 120, &r, &g, &b);
    EXPECT_EQ(MaxChannelError(r, g, b, 255, 0, 0), 0);
    helper.RGBFromHSL(80, 240, 120, &r, &g, &b);
    EXPECT_EQ(MaxChannelError(r, g, b, 0, 255, 0), 0);
    helper.RGBFromHSL(255, 200, 120, &r, &g, &b);  // hue 255: grey of the lightness
    EXPECT_EQ(MaxChannelError(r, g, b, 128, 128, 128), 0);
    helper.RGBFromHSL(37, 0, 240, &r, &g, &b);
    EXPECT_EQ(MaxChannelError(r, g, b, 255, 255, 255), 0);
}

TEST(HSL, LightnessRampReachesBothEnds) {
    C_Helper helper;
    for (int hue : {0, 40, 200, 255}) {
        BYTE r, g, b;
        helper.RGBFromHSL(hue, 240, 0, &r, &g, &b);
        EXPECT_EQ(MaxChannelError(r, g, b, 0, 0, 0), 0) << hue;
        helper.RGBFromHSL(hue, 240, 240, &r, &g, &b);
        EXPECT_EQ(MaxChannelError(r, g, b, 255, 255, 255), 0) << hue;
    }
}

TEST(HSL, RoundTripErrorIsBoundedByTheHueScale) {
    C_Helper helper;
    // One of the 240 hue steps is up to 255 / 40 levels of the middle channel.
    int worstLowChroma = 0;
    int worst = 0;
    ForEveryColor([&](int r, int g, int b) {
        BYTE h, s, l, r1, g1, b1;
        helper.HSLFromRGB(r, g, b, &h, &s, &l);
        ASSERT_LE(s, 240);
        ASSERT_LE(l, 240);
        ASSERT_TRUE(h < 240 || (h == 255 && r == g && g == b));
        helper.RGBFromHSL(h, s, l, &r1, &g1, &b1);
        const int e = MaxChannelError(r, g, b, r1, g1, b1);
        worst = std::max(worst, e);
        if (std::max({r, g, b}) - std::min({r, g, b}) <= 40) {
            worstLowChroma = std::max(worstLowChroma, e);
        }
    });
    EXPECT_LE(worstLowChroma, 1);
    EXPECT_LE(worst, 4);
}

TEST(ColorShift, HueShiftTurnsPrimariesAndWraps) {
    C_Helper helper;
    BYTE red[3] = {0, 0, 255};  // blue, green, red
    helper.OffsetHSV(red, 120, 0, 0);
    EXPECT_EQ(MaxChannelError(red[0], red[1], red[2], 0, 255, 0), 0);
    helper.OffsetHSV(red, 240, 0, 0);  // 120 + 240 = 360 wraps to red
    EXPECT_EQ(MaxChannelError(red[0], red[1], red[2], 0, 0, 255), 0);
    helper.OffsetHSV(red, -120, 0, 0);
    EXPECT_EQ(MaxChannelError(red[0], red[1], red[2], 255, 0, 0), 0);
}

TEST(ColorShift, SaturationAndValueClamp) {
    C_Helper helper;
    BYTE pixel[3] = {40, 80, 200};
    helper.OffsetHSV(pixel, 0, -255, 0);
    EXPECT_EQ(pixel[0], 200);
    EXPECT_EQ(pixel[1], 200);
    EXPECT_EQ(pixel[2], 200);
    helper.OffsetHSV(pixel, 0, 255, 255);  // a grey has hue 0: full red at full value
    EXPECT_EQ(MaxChannelError(pixel[0], pixel[1], pixel[2], 0, 0, 255), 0);
    BYTE grey[3] = {90, 90, 90};
    helper.OffsetHSV(grey, 77, 0, -255);
    EXPECT_EQ(MaxChannelError(grey[0], grey[1], grey[2], 0, 0, 0), 0);
}

TEST(ColorShift, YuvOffsetsMoveLumaAndClamp) {
    C_Helper helper;
    BYTE grey[3] = {100, 100, 100};
    helper.OffsetYUV(grey, 50, 0, 0);
    EXPECT_EQ(MaxChannelError(grey[0], grey[1], grey[2], 150, 150, 150), 0);
    helper.OffsetYUV(grey, 255, 0, 0);
    EXPECT_EQ(MaxChannelError(grey[0], grey[1], grey[2], 255, 255, 255), 0);
    helper.OffsetYUV(grey, -255, 0, 0);
    EXPECT_EQ(MaxChannelError(grey[0], grey[1], grey[2], 0, 0, 0), 0);
    BYTE tinted[3] = {128, 128, 128};
    helper.OffsetYUV(tinted, 0, 40, 0);  // more blue-difference: bluer, a little less green
    EXPECT_GT(tinted[0], 128);
    EXPECT_LT(tinted[1], 128);
    EXPECT_EQ(tinted[2], 128);
}

TEST(ColorShift, ColorTableFormsMatchThePixelFormsAndKeepTheReservedByte) {
    C_Helper helper;
    RGBQUAD table[64];
    for (int i = 0; i < 64; ++i) {
        table[i] = RGBQUAD{BYTE(i * 4), BYTE(255 - i * 3), BYTE(i * 7 % 256), BYTE(i)};
    }
    RGBQUAD hsv[64];
    RGBQUAD yuv[64];
    std::copy(table, table + 64, hsv);
    std::copy(table, table + 64, yuv);
    helper.ChangeRGBQHSV(hsv, 64, -100, 30, -20);
    helper.ChangeRGBQYUV(yuv, 64, 10, -20, 30);
    for (int i = 0; i < 64; ++i) {
        BYTE a[3] = {table[i].rgbBlue, table[i].rgbGreen, table[i].rgbRed};
        BYTE b[3] = {a[0], a[1], a[2]};
        helper.OffsetHSV(a, -100, 30, -20);
        helper.OffsetYUV(b, 10, -20, 30);
        EXPECT_EQ(MaxChannelError(a[0], a[1], a[2], hsv[i].rgbBlue, hsv[i].rgbGreen, hsv[i].rgbRed),
                  0);
        EXPECT_EQ(MaxChannelError(b[0], b[1], b[2], yuv[i].rgbBlue, yuv[i].rgbGreen, yuv[i].rgbRed),
                  0);
        EXPECT_EQ(hsv[i].rgbReserved, i);
        EXPECT_EQ(yuv[i].rgbReserved, i);
    }
}

}  // namespace
