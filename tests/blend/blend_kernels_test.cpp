#include "blend/blend_kernels.h"
#include "blend/blend_dispatch.h"
#include "support/awkward_widths.h"
#include "support/random_bytes.h"

#include <vistrane/blend/blend_modes.h>
#include <vistrane/blend/image_luts.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <functional>

namespace vistrane::blend {
namespace {

class BlendRules : public ::testing::Test {
  protected:
    static void SetUpTestSuite() { glb_CreateImageLUTs(); }
    static void TearDownTestSuite() { glb_ReleaseImageLUTs(); }
    C_Helper helper;
    BlendContext context{0, &helper};
};

// Each per-channel mode checked for every (s, d) pair in every channel: the pair goes into one
// channel while the other two carry unrelated bytes that must not leak into it.
TEST_F(BlendRules, PerChannelModesFollowTheirRuleInEveryChannel) {
    using Lut = BYTE[256][256];
    const Lut& mul = *glb_MultiplyLUT;
    const struct {
        int mode;
        std::function<int(int, int)> rule;
    } modes[] = {
        {BLENDMODE_NORMAL, [](int s, int) { return s; }},
        {BLENDMODE_MULTIPLY, [&](int s, int d) { return mul[s][d]; }},
        {BLENDMODE_SCREEN, [](int s, int d) { return 255 - (255 - s) * (255 - d) / 255; }},
        {BLENDMODE_OVERLAY, [](int s, int d) { return (*glb_OverlayLUT)[s][d]; }},
        {BLENDMODE_HARDLIGHT, [](int s, int d) { return (*glb_OverlayLUT)[s][d]; }},
        {BLENDMODE_SOFTLIGHT, [](int s, int d) { return (*glb_GammaTableLUT)[(s >> 1) + 64][d]; }},
        {BLENDMODE_COLORDODGE, [](int s, int d) { return (*glb_ColorDodgeLUT)[s][d]; }},
        {BLENDMODE_COLORBURN, [](int s, int d) { return (*glb_ColorBurnLUT)[s][d]; }},
        {BLENDMODE_EXCLUSION, [](int s, int d) { return (*glb_ExclusionLUT)[s][d]; }},
        {BLENDMODE_DARKEN, [](int s, int d) { return s < d ? s : d; }},
        {BLENDMODE_LIGHTEN, [](int s, int d) { return s > d ? s : d; }},
        {BLENDMODE_RGBDARKEN, [](int, int d) { return d < 8 ? 0 : d - 8; }},
        {BLENDMODE_RGBLIGHTEN, [](int, int d) { return d > 247 ? 255 : d + 8; }},
        {BLENDMODE_DIFFERENCE, [](int s, int d) { return s > d ? s - d : d - s; }},
        {99, [](int s, int) { return s; }},
    };
    for (const auto& m : modes) {
        const PixelBlendFn trueColor = TrueColorPixelRule(m.mode);
        const PixelBlendFn grey = GreyPixelRule(m.mode);
        for (int s = 0; s < 256; ++s) {
            for (int d = 0; d < 256; ++d) {
                const int want = m.rule(s, d);
                const int channel = (s + d) % 3;
                BYTE src[3] = {BYTE(s * 7), BYTE(d + 1), BYTE(255 - s)};
                BYTE dst[3] = {BYTE(d * 3), BYTE(s), BYTE(d ^ 0x5A)};
                src[channel] = BYTE(s);
                dst[channel] = BYTE(d);
                BYTE out[3];
                trueColor(src, dst, out, context);
                ASSERT_EQ(out[channel], want) << "mode " << m.mode << " s " << s << " d " << d;
                BYTE one;
                const BYTE gs = BYTE(s), gd = BYTE(d);
                grey(&gs, &gd, &one, context);
                ASSERT_EQ(one, want) << "grey mode " << m.mode << " s " << s << " d " << d;
            }
        }
    }
}

TEST_F(BlendRules, RgbDarkenIgnoresThePaintColour) {
    const BYTE dst[3] = {3, 100, 255};
    for (BYTE paint : {0, 77, 255}) {
        const BYTE src[3] = {paint, paint, paint};
        BYTE out[3];
        TrueColorPixelRule(BLENDMODE_RGBDARKEN)(src, dst, out, context);
        EXPECT_EQ(out[0], 0);
        EXPECT_EQ(out[1], 92);
        EXPECT_EQ(out[2], 247);
    }
}

TEST_F(BlendRules, HslModesCombineTheComponentsTheyName) {
    C_Helper h;
    const BYTE src[3] = {30, 200, 90};  // blue, green, red
    const BYTE dst[3] = {200, 60, 120};
    BYTE sh, ss, sl, dh, ds, dl;
    h.HSLFromRGB(src[2], src[1], src[0], &sh, &ss, &sl);
    h.HSLFromRGB(dst[2], dst[1], dst[0], &dh, &ds, &dl);
    const struct {
        int mode;
        int hue, saturation, lightness;
    } cases[] = {
        {BLENDMODE_HUE, sh, ds, dl},
        {BLENDMODE_SATURATION, dh, ss, dl},
        {BLENDMODE_COLOR, sh, ss, dl},
        {BLENDMODE_LUMINOSITY, dh, ds, sl},
        {BLENDMODE_SATURATE, dh, std::min(ds + 24, 240), dl},
        {BLENDMODE_DESATURATE, dh, std::max(ds - 24, 0), dl},
    };
    for (const auto& c : cases) {
        BYTE want[3];
        h.RGBFromHSL(c.hue, c.saturation, c.lightness, &want[2], &want[1], &want[0]);
        BYTE out[3];
        TrueColorPixelRule(c.mode)(src, dst, out, context);
        EXPECT_EQ(out[0], want[0]) << c.mode;
        EXPECT_EQ(out[1], want[1]) << c.mode;
        EXPECT_EQ(out[2], want[2]) << c.mode;
    }
}

TEST_F(BlendRules, HslModesOverGreysAndWithGreySources) {
    const BYTE grey[3] = {90, 90, 90};
    const BYTE colour[3] = {10, 20, 250};
    BYTE out[3];
    TrueColorPixelRule(BLENDMODE_SATURATE)(colour, grey, out, context);
    EXPECT_EQ(out[0], 90);
    EXPECT_EQ(out[1], 90);
    EXPECT_EQ(out[2], 90);
    // Luminosity over a grey: the source lightness as a level, l * 255 / 240 truncated.
    BYTE h, s, l;
    helper.HSLFromRGB(250, 20, 10, &h, &s, &l);
    TrueColorPixelRule(BLENDMODE_LUMINOSITY)(colour, grey, out, context);
    EXPECT_EQ(out[0], l * 255 / 240);
    EXPECT_EQ(out[2], l * 255 / 240);
    // Hue with a grey source: a grey of the destination's lightness.
    TrueColorPixelRule(BLENDMODE_HUE)(grey, colour, out, context);
    EXPECT_EQ(out[0], out[1]);
    EXPECT_EQ(out[1], out[2]);
    // HSL modes have no grey-byte rule: a grey image paints them normally.
    const BYTE sb = 200, db = 10;
    BYTE ob;
    GreyPixelRule(BLENDMODE_HUE)(&sb, &db, &ob, context);
    EXPECT_EQ(ob, 200);
}

TEST_F(BlendRules, DissolveDrawsOncePerPixelAgainstTheOption) {
    const BYTE src[3] = {255, 255, 255};
    const BYTE dst[3] = {0, 0, 0};
    auto paintedOutOf = [&](int option, int n) {
        context.option = option;
        int painted = 0;
        for (int i = 0; i < n; ++i) {
            BYTE out[3];
            TrueColorPixelRule(BLENDMODE_DISSOLVE)(src, dst, out, context);
            EXPECT_TRUE((out[0] == 0 && out[1] == 0 && out[2] == 0) ||
                        (out[0] == 255 && out[1] == 255 && out[2] == 255));
            painted += out[0] == 255;
        }
        return painted;
    };
    C_Helper::SeedRandom(7);
    EXPECT_EQ(paintedOutOf(0, 2000), 0);
    const int half = paintedOutOf(50, 10000);
    EXPECT_GT(half, 4500);
    EXPECT_LT(half, 5500);
    const int nearlyAll = paintedOutOf(100, 10000);  // 100 itself can be drawn
    EXPECT_GT(nearlyAll, 9800);
}

TEST(SmudgeRule, CarriesAndFadesTheColour) {
    BYTE carried[3] = {200, 100, 0};
    const BYTE under[3] = {0, 100, 200};
    BYTE result[3] = {1, 2, 3};
    SmudgePixel(under, carried, result, 0, 3);
    EXPECT_EQ(result[0], 1);  // strength 0 writes nothing
    SmudgePixel(under, carried, result, 128, 3);
    // (128 * 0 + 128 * 200 + 128) >> 8 = 100; (128 * 200 + 128) >> 8 = 100
    EXPECT_EQ(result[0], 100);
    EXPECT_EQ(result[1], 100);
    EXPECT_EQ(result[2], 100);
    EXPECT_EQ(carried[0], 100);
    SmudgePixel(under, carried, result, 255, 3);
    EXPECT_EQ(result[2], carried[2]);
}

TEST(FilterRule, SumsDividesOffsetsAndClamps) {
    C_Helper helper;
    const BYTE row0[6] = {10, 20, 30, 40, 50, 60};
    const BYTE row1[6] = {1, 2, 3, 4, 5, 6};
    const FilterTap taps[2] = {{row0, 2}, {row1, -7}};
    BYTE out[3];
    FilterPixel(taps, 2, 3, 1, 2, 5, out, 3, helper);
    // blue 2 * 40 - 7 * 4 = 52 -> 26 + 5; green 100 - 35 = 65 -> 32 + 5; red 120 - 42 -> 39 + 5
    EXPECT_EQ(out[0], 31);
    EXPECT_EQ(out[1], 37);
    EXPECT_EQ(out[2], 44);
    FilterPixel(taps, 2, 0, 0, 1, 0, out, 3, helper);
    const int luma = 2 * helper.YFromRGB(30, 20, 10) - 7 * helper.YFromRGB(3, 2, 1);
    EXPECT_EQ(out[0], std::clamp(luma, 0, 255));
    EXPECT_EQ(out[2], out[0]);
    const FilterTap negative[1] = {{row1, -7}};
    FilterPixel(negative, 1, 0, 1, 2, 0, out, 1, helper);  // -7 / 2 = -3, clamped to 0
    EXPECT_EQ(out[0], 0);
    FilterPixel(negative, 1, 0, 1, 2, 10, out, 1, helper);
    EXPECT_EQ(out[0], 7);
}

class FastRows : public ::testing::Test {
  protected:
    static void SetUpTestSuite() { glb_CreateImageLUTs(); }
    static void TearDownTestSuite() { glb_ReleaseImageLUTs(); }
};

constexpr int kGuard = 16;

TEST_F(FastRows, ByteRowsOfEverySetMatchTheRulesOnAwkwardWidths) {
    C_Helper helper;
    BlendContext context{0, &helper};
    test::RandomBytes random(20260101);
    const int modes[] = {BLENDMODE_MULTIPLY,  BLENDMODE_SCREEN, BLENDMODE_OVERLAY,
                         BLENDMODE_HARDLIGHT, BLENDMODE_DARKEN, BLENDMODE_LIGHTEN,
                         BLENDMODE_DIFFERENCE};
    const std::vector<int> widths = vistrane::test::AwkwardWidths();
    for (const cpu::InstructionSet set : cpu::Available()) {
        for (int mode : modes) {
            for (int bpp : {1, 3}) {
                const RowBlender reference = ReferenceRowBlender(mode, bpp);
                RowBlender fast = reference;
                fast.fast = ByteRowFor(mode, set);
                for (int width : widths) {
                    SCOPED_TRACE(::testing::Message() << cpu::Name(set) << " mode " << mode
                                                      << " bpp " << bpp << " width " << width);
                    const int bytes = width * bpp;
                    const std::vector<BYTE> src = random.Fill(bytes);
                    const std::vector<BYTE> dst = random.Fill(bytes);
                    std::vector<BYTE> want(bytes + kGuard, 0xA5);
                    std::vector<BYTE> got(bytes + kGuard, 0xA5);
                    reference.Run(src.data(), dst.data(), want.data(), width, context);
                    fast.Run(src.data(), dst.data(), got.data(), width, context);
                    ASSERT_EQ(want, got);
                    // In place, as the bulk operations run it.
                    std::vector<BYTE> inPlace = dst;
                    inPlace.resize(bytes + kGuard, 0x5A);
                    fast.Run(src.data(), inPlace.data(), inPlace.data(), width, context);
                    ASSERT_TRUE(std::equal(want.begin(), want.begin() + bytes, inPlace.begin()));
                    ASSERT_TRUE(std::all_of(inPlace.begin() + bytes, inPlace.end(),
                                            [](BYTE b) { return b == 0x5A; }));
                }
            }
        }
    }
}

TEST_F(FastRows, MergeOfEverySetMatchesThePlainMergeOnAwkwardWidths) {
    test::RandomBytes random(424242);
    for (const cpu::InstructionSet set : cpu::Available()) {
        for (int bpp : {1, 3}) {
            const MergeRowFn plain = MergeRowFor(bpp, cpu::InstructionSet::kReference);
            const MergeRowFn fast = MergeRowFor(bpp, set);
            for (int width = 1; width <= 200; width += (width < 67 ? 1 : 37)) {
                const std::vector<BYTE> result = random.Fill(width * bpp);
                const std::vector<BYTE> opacity = random.Fill(width);
                std::vector<BYTE> want = random.Fill(width * bpp + kGuard);
                std::vector<BYTE> got = want;
                plain(want.data(), result.data(), opacity.data(), width);
                fast(got.data(), result.data(), opacity.data(), width);
                ASSERT_EQ(want, got) << cpu::Name(set) << " bpp " << bpp << " width " << width;
            }
        }
    }
}

TEST_F(FastRows, PlainMergeFollowsTheMultiplyTableAndSkipsZeroOpacity) {
    const BYTE opacity[3] = {0, 255, 100};
    BYTE pixels[9] = {10, 20, 30, 10, 20, 30, 10, 20, 30};
    const BYTE result[9] = {200, 200, 200, 200, 200, 200, 200, 200, 200};
    MergeTrueColorRow(pixels, result, opacity, 3);
    EXPECT_EQ(pixels[0], 10);
    EXPECT_EQ(pixels[3], 200);
    // 155 * 10 / 255 = 6, 100 * 200 / 255 = 78
    EXPECT_EQ(pixels[6], 84);
    BYTE indices[3] = {1, 1, 1};
    const BYTE newIndex[3] = {9, 9, 9};
    const BYTE halfway[3] = {127, 128, 255};
    MergePaletteRow(indices, newIndex, halfway, 3);
    EXPECT_EQ(indices[0], 1);
    EXPECT_EQ(indices[1], 9);
    EXPECT_EQ(indices[2], 9);
    BYTE out[4];
    const BYTE mask[4] = {0, 1, 128, 255};
    EffectiveOpacityRow(out, mask, 254, 4);
    EXPECT_EQ(out[0], 0);
    EXPECT_EQ(out[1], 0);  // 254 / 255 truncates
    EXPECT_EQ(out[2], 127);
    EXPECT_EQ(out[3], 254);
}

}  // namespace
}  // namespace vistrane::blend
