#include <vistrane/companion/helper.h>
#include <vistrane/companion/palette_sort.h>

#include <gtest/gtest.h>

#include <array>

namespace {

TEST(SortRGBQs, SortsStablyByEachKeyAndReportsTheReindexTable) {
    C_Helper helper;
    // blue, green, red, reserved
    const std::array<RGBQUAD, 5> original = {{
        {0, 0, 255, 0},      // red: luma 76, hue 0, saturation 255
        {128, 128, 128, 0},  // grey: luma 128, hue 0, saturation 0
        {255, 0, 0, 0},      // blue: luma 29, hue 240
        {0, 255, 0, 0},      // green: luma 150, hue 120
        {0, 0, 255, 7},      // red again, distinguishable by its reserved byte
    }};
    const unsigned long usage[5] = {5, 1, 9, 0, 5};
    struct Case {
        S_SortPalData criteria;
        std::array<int, 5> order;  // old index of each new entry
    } cases[] = {
        {{SORTPAL_LUMINANCE, 0}, {2, 0, 4, 1, 3}}, {{SORTPAL_LUMINANCE, 1}, {3, 1, 0, 4, 2}},
        {{SORTPAL_HUE, 0}, {0, 1, 4, 3, 2}},       {{SORTPAL_SATURATION, 1}, {0, 2, 3, 4, 1}},
        {{SORTPAL_USAGE, 1}, {2, 0, 4, 1, 3}},     {{SORTPAL_USAGE, 0}, {3, 1, 0, 4, 2}},
    };
    for (const Case& c : cases) {
        std::array<RGBQUAD, 5> colors = original;
        std::array<BYTE, 256> reindex{};
        S_CalcSortError error{-1};
        ASSERT_EQ(helper.SortRGBQs(colors.data(), 5, &c.criteria, usage, reindex.data(), &error),
                  1);
        EXPECT_EQ(error.code, SORTPAL_ERROR_NONE);
        for (int n = 0; n < 5; ++n) {
            const RGBQUAD& want = original[c.order[n]];
            EXPECT_EQ(colors[n].rgbRed, want.rgbRed) << c.criteria.key << " " << n;
            EXPECT_EQ(colors[n].rgbGreen, want.rgbGreen);
            EXPECT_EQ(colors[n].rgbBlue, want.rgbBlue);
            EXPECT_EQ(colors[n].rgbReserved, want.rgbReserved);
            EXPECT_EQ(reindex[c.order[n]], n);
        }
        for (int i = 5; i < 256; ++i) {
            ASSERT_EQ(reindex[i], i);
        }
    }
}

TEST(SortRGBQs, RejectsBadArgumentsWithoutChangingTheColors) {
    C_Helper helper;
    std::array<RGBQUAD, 3> colors = {{{1, 2, 3, 0}, {9, 9, 9, 0}, {0, 0, 0, 0}}};
    const std::array<RGBQUAD, 3> before = colors;
    std::array<BYTE, 256> reindex{};
    S_CalcSortError error{};
    S_SortPalData bad{42, 0};
    EXPECT_EQ(helper.SortRGBQs(colors.data(), 3, &bad, nullptr, reindex.data(), &error), 0);
    EXPECT_EQ(error.code, SORTPAL_ERROR_BAD_KEY);
    S_SortPalData byUsage{SORTPAL_USAGE, 0};
    EXPECT_EQ(helper.SortRGBQs(colors.data(), 3, &byUsage, nullptr, reindex.data(), &error), 0);
    EXPECT_EQ(error.code, SORTPAL_ERROR_NO_USAGE);
    S_SortPalData byHue{SORTPAL_HUE, 0};
    EXPECT_EQ(helper.SortRGBQs(colors.data(), 0, &byHue, nullptr, reindex.data(), &error), 0);
    EXPECT_EQ(error.code, SORTPAL_ERROR_BAD_COUNT);
    EXPECT_EQ(helper.SortRGBQs(colors.data(), 257, &byHue, nullptr, reindex.data(), &error), 0);
    EXPECT_EQ(helper.SortRGBQs(colors.data(), 3, &byHue, nullptr, nullptr, &error), 0);
    EXPECT_EQ(error.code, SORTPAL_ERROR_NULL_ARGUMENT);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(colors[i].rgbBlue, before[i].rgbBlue);
        EXPECT_EQ(colors[i].rgbRed, before[i].rgbRed);
    }
}

}  // namespace
