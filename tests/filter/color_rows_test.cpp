#include "filter/color_rows.h"
#include "filter/hsv_shift.h"
#include "support/random_bytes.h"

#include <vistrane/blend/image_luts.h>

#include <gtest/gtest.h>

#include <array>
#include <numeric>
#include <vector>

namespace vistrane::filter {
namespace {

class ColorRows : public ::testing::Test {
  protected:
    static void SetUpTestSuite() { glb_CreateImageLUTs(); }
    static void TearDownTestSuite() { glb_ReleaseImageLUTs(); }
};

// The mask rule written out: 0 keeps, 255 replaces, else mul[255 - m][old] + mul[m][new].
int MaskRule(int old, int fresh, int m) {
    if (m == 0) {
        return old;
    }
    if (m >= 255) {
        return fresh;
    }
    return (255 - m) * old / 255 + m * fresh / 255;
}

TEST_F(ColorRows, LutRowsApplyTheTablesUnderTheMaskRuleOnAwkwardWidths) {
    test::RandomBytes random(1234);
    std::array<BYTE, 256> red, green, blue;
    for (int i = 0; i < 256; ++i) {
        red[i] = BYTE(255 - i);
        green[i] = BYTE(i / 2);
        blue[i] = BYTE(i * 7);
    }
    for (int width = 1; width <= 67; ++width) {
        for (bool masked : {false, true}) {
            const std::vector<BYTE> mask = random.Fill(width);
            const std::vector<BYTE> before = random.Fill(3 * width + 8);
            std::vector<BYTE> row = before;
            std::vector<BYTE> scratch(3 * width);
            LutRowTrueColor(row.data(), width, {red.data(), green.data(), blue.data()},
                            masked ? mask.data() : nullptr, scratch.data());
            for (int x = 0; x < width; ++x) {
                const int m = masked ? mask[x] : 255;
                ASSERT_EQ(row[3 * x], MaskRule(before[3 * x], blue[before[3 * x]], m));
                ASSERT_EQ(row[3 * x + 1], MaskRule(before[3 * x + 1], green[before[3 * x + 1]], m));
                ASSERT_EQ(row[3 * x + 2], MaskRule(before[3 * x + 2], red[before[3 * x + 2]], m));
            }
            ASSERT_TRUE(std::equal(row.end() - 8, row.end(), before.end() - 8)) << width;

            std::vector<BYTE> grey(before.begin(), before.begin() + width + 8);
            LutRowGrey(grey.data(), width, red.data(), masked ? mask.data() : nullptr,
                       scratch.data());
            for (int x = 0; x < width; ++x) {
                ASSERT_EQ(grey[x], MaskRule(before[x], red[before[x]], masked ? mask[x] : 255));
            }
            ASSERT_TRUE(std::equal(grey.end() - 8, grey.end(), before.begin() + width));
        }
    }
}

TEST_F(ColorRows, GreyAndNegativeRows) {
    BYTE row[6] = {10, 20, 31, 100, 100, 100};
    BYTE scratch[6];
    const BYTE mask[2] = {255, 128};
    GrayRowTrueColor(row, 2, mask, scratch);
    EXPECT_EQ(row[0], 20);  // 61 / 3
    EXPECT_EQ(row[2], 20);
    EXPECT_EQ(row[3], 99);  // the mix 127 * 100 / 255 + 128 * 100 / 255 truncates twice
    NegativeRow(row, 2, 3, nullptr, scratch);
    EXPECT_EQ(row[0], 235);
    EXPECT_EQ(row[5], 156);
    BYTE bytes[2] = {0, 200};
    const BYTE almost[2] = {254, 0};
    NegativeRow(bytes, 2, 1, almost, scratch);
    EXPECT_EQ(bytes[0], 254);  // 1 * 0 / 255 + 254 * 255 / 255
    EXPECT_EQ(bytes[1], 200);
}

TEST_F(ColorRows, ShiftRowsMatchThePixelShiftAndReduceGreysToTheAverage) {
    C_Helper helper;
    const int shifts[3] = {120, 10, -5};
    BYTE row[6] = {0, 0, 255, 50, 60, 70};
    BYTE want[6];
    std::copy(row, row + 6, want);
    helper.OffsetHSV(want, 120, 10, -5);
    helper.OffsetHSV(want + 3, 120, 10, -5);
    BYTE scratch[6];
    ShiftHsvRowTrueColor(row, 2, HsvShifter(shifts[0], shifts[1], shifts[2]), nullptr, scratch);
    EXPECT_TRUE(std::equal(row, row + 6, want));
    // YUV through a mask: the first pixel fully, the second not at all.
    helper.OffsetYUV(want, -30, 20, 5);
    const BYTE half[2] = {255, 0};
    const int yuvShifts[3] = {-30, 20, 5};
    ShiftYuvRowTrueColor(row, 2, yuvShifts, half, scratch, helper);
    EXPECT_TRUE(std::equal(row, row + 6, want));

    RGBQUAD colors[2] = {{0, 0, 255, 0}, {90, 90, 90, 0}};
    BYTE grey[2] = {0, 1};
    ShiftRowGrey(grey, 2, false, std::array<int, 3>{20, 0, 0}.data(), colors, nullptr, scratch,
                 helper);
    BYTE red[3] = {0, 0, 255};
    helper.OffsetYUV(red, 20, 0, 0);
    EXPECT_EQ(grey[0], (red[0] + red[1] + red[2]) / 3);
    EXPECT_EQ(grey[1], 110);
}

TEST(Statistics, HistogramCountsMaskedPixelsAndThePaletteQuirk) {
    std::array<LONG, 256> red{}, green{}, blue{};
    DWORD counted = 0;
    const BYTE pixels[6] = {1, 2, 3, 4, 5, 6};
    const BYTE mask[2] = {0, 9};
    HistogramRow(pixels, 2, 3, nullptr, mask, red.data(), green.data(), blue.data(), &counted);
    EXPECT_EQ(counted, 1u);
    EXPECT_EQ(blue[4], 1);
    EXPECT_EQ(green[5], 1);
    EXPECT_EQ(red[6], 1);
    EXPECT_EQ(blue[1], 0);
    // A pure blue palette entry counts in blue[0]: the red component goes to the blue table.
    const RGBQUAD colors[1] = {{255, 0, 0, 0}};
    const BYTE index = 0;
    HistogramRow(&index, 1, 1, colors, nullptr, red.data(), green.data(), blue.data(), &counted);
    EXPECT_EQ(blue[0], 1);
    EXPECT_EQ(blue[255], 0);
    EXPECT_EQ(red[0], 1);
    EXPECT_EQ(counted, 2u);
}

TEST(Statistics, ColourSetCountsEachColourOnceAndSumsFollowTheMask) {
    std::vector<BYTE> bits(1 << 21, 0);
    const BYTE row[12] = {1, 2, 3, 1, 2, 3, 3, 2, 1, 255, 255, 255};
    EXPECT_EQ(MarkColorsRow(row, 4, bits.data()), 3u);
    EXPECT_EQ(MarkColorsRow(row, 4, bits.data()), 0u);
    // (R * 256 + G) * 32 + B / 8 for (R 3, G 2, B 1): byte 24640, bit 1.
    EXPECT_EQ(bits[(3 * 256 + 2) * 32], 1 << 1);
    const BYTE mask[4] = {0, 1, 1, 0};
    ColorSums sums;
    SumRow(row, 4, 3, nullptr, mask, sums);
    EXPECT_EQ(sums.pixels, 2u);
    EXPECT_EQ(sums.red, 3u + 1u);
    std::array<unsigned long, 256> usage{};
    CountIndicesRow(row, 12, usage.data());
    EXPECT_EQ(usage[255], 3u);
    EXPECT_EQ(usage[2], 3u);
    EXPECT_EQ(std::accumulate(usage.begin(), usage.end(), 0ul), 12ul);
}

}  // namespace
}  // namespace vistrane::filter
