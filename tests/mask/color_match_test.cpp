#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <random>
#include <vector>

#include <vistrane/companion/helper.h>
#include <vistrane/image/image.h>
#include <vistrane/image/simple_image.h>

namespace {

class ColorMatchTest : public ::testing::Test {
  protected:
    void SetUp() override { C_Image::CheckBitmapHeaderType(); }
};

void SetColor(C_Image& image, long x, long y, BYTE r, BYTE g, BYTE b) {
    BYTE* p = image.PixelPtr(x, y);
    p[0] = b;
    p[1] = g;
    p[2] = r;
}

// A picture of few colours in small blobs, so that fills make regions of every shape.
void RandomPicture(C_Image& image, long w, long h, std::uint32_t seed) {
    ASSERT_TRUE(image.Create(w, h, 1, nullptr, 0));
    std::mt19937 rng(seed);
    const BYTE levels[] = {0, 12, 30, 200, 240};
    for (long y = 0; y < h; ++y) {
        for (long x = 0; x < w; ++x) {
            if (x > 0 && rng() % 3 != 0) {
                const BYTE* left = image.PixelPtr(x - 1, y);
                SetColor(image, x, y, left[2], left[1], left[0]);
                continue;
            }
            SetColor(image, x, y, levels[rng() % 5], levels[rng() % 5], levels[rng() % 5]);
        }
    }
}

std::vector<BYTE> MaskBytes(const C_Image& mask) {
    std::vector<BYTE> out;
    for (long y = 0; y < mask.Height(); ++y) {
        for (long x = 0; x < mask.Width(); ++x) {
            out.push_back(*mask.PixelPtr(x, y));
        }
    }
    return out;
}

// The straightforward flood: breadth first from the seeds through candidates, 4-connected.
std::vector<BYTE> ReferenceFlood(C_Image& source, std::vector<BYTE> mask, long w, long h,
                                 const std::vector<CPoint>& seeds, S_ColorMatchData& data,
                                 BYTE value) {
    auto candidate = [&](long x, long y) {
        return mask[static_cast<std::size_t>(y * w + x)] == 0 &&
               source.MatchTrueColor(source.PixelPtr(x, y), &data);
    };
    std::deque<CPoint> queue(seeds.begin(), seeds.end());
    while (!queue.empty()) {
        const CPoint p = queue.front();
        queue.pop_front();
        const CPoint next[4] = {{p.x, p.y - 1}, {p.x - 1, p.y}, {p.x + 1, p.y}, {p.x, p.y + 1}};
        for (const CPoint& n : next) {
            if (n.x >= 0 && n.y >= 0 && n.x < w && n.y < h && candidate(n.x, n.y)) {
                mask[static_cast<std::size_t>(n.y * w + n.x)] = value;
                queue.push_back(n);
            }
        }
    }
    return mask;
}

// The generational flood driven as MaskFill drives it, through a caller's queue and work map.
std::vector<BYTE> GenerationalFill(C_Image& source, long w, long h, CPoint seed,
                                   COLOR_MATCH_MODE mode, int tolerance, BYTE value) {
    C_Image mask;
    EXPECT_TRUE(mask.CreateMask(w, h));
    C_SimpleImage work;
    EXPECT_TRUE(work.CreateMask(w + 2, h + 2, 1));
    work.ZeroBitmapBytes();
    std::vector<S_TwoPointers> queue(static_cast<std::size_t>(w * h));
    *mask.PixelPtr(seed.x, seed.y) = value;
    queue[0] = {work.PixelPtr(seed.x + 1, seed.y + 1), mask.PixelPtr(seed.x, seed.y)};
    S_ColorMatchData data;
    mask.PrepareColorMatch(&data, source.PixelPtr(seed.x, seed.y), mode, tolerance);
    mask.MaskExpandColorMatching(queue.data(), 1, w * h, &source, &work, &data, value);
    return MaskBytes(mask);
}

TEST_F(ColorMatchTest, FillMatchesTheReferenceFloodOnRandomPictures) {
    const COLOR_MATCH_MODE modes[] = {COLOR_MATCH_RGB, COLOR_MATCH_HUE, COLOR_MATCH_INTENSITY};
    for (std::uint32_t seed = 1; seed <= 24; ++seed) {
        const long w = 1 + static_cast<long>(seed * 7 % 41);
        const long h = 1 + static_cast<long>(seed * 5 % 29);
        C_Image source;
        RandomPicture(source, w, h, seed);
        C_Image mask;
        ASSERT_TRUE(mask.CreateMask(w, h));
        for (COLOR_MATCH_MODE mode : modes) {
            for (int tolerance : {-1, 0, 15, 40}) {
                const CPoint at(static_cast<LONG>(seed * 13 % w), static_cast<LONG>(seed * 3 % h));
                mask.FillBitmapBytes(99);
                ASSERT_EQ(mask.MaskFill(&source, at, mode, tolerance, 180), 1);
                S_ColorMatchData data;
                mask.PrepareColorMatch(&data, source.PixelPtr(at.x, at.y), mode, tolerance);
                std::vector<BYTE> start(static_cast<std::size_t>(w * h), 0);
                start[static_cast<std::size_t>(at.y * w + at.x)] = 180;
                const std::vector<BYTE> expected =
                    ReferenceFlood(source, start, w, h, {at}, data, 180);
                ASSERT_EQ(MaskBytes(mask), expected)
                    << "seed " << seed << " mode " << mode << " tolerance " << tolerance;
                ASSERT_EQ(GenerationalFill(source, w, h, at, mode, tolerance, 180), expected)
                    << "seed " << seed << " mode " << mode << " tolerance " << tolerance;
            }
        }
    }
}

TEST_F(ColorMatchTest, ToleranceZeroNegativeAndAnyMode) {
    C_Image source;
    ASSERT_TRUE(source.Create(3, 1, 1, nullptr, 0));
    SetColor(source, 0, 0, 10, 10, 10);
    SetColor(source, 1, 0, 10, 10, 10);
    SetColor(source, 2, 0, 10, 10, 11);
    C_Image mask;
    ASSERT_TRUE(mask.CreateMask(3, 1));
    ASSERT_TRUE(mask.MaskFill(&source, CPoint(0, 0), COLOR_MATCH_RGB, 0, 255));
    EXPECT_EQ(MaskBytes(mask), (std::vector<BYTE>{255, 255, 0}));
    ASSERT_TRUE(mask.MaskFill(&source, CPoint(0, 0), COLOR_MATCH_RGB, -1, 255));
    EXPECT_EQ(MaskBytes(mask), (std::vector<BYTE>{255, 0, 0}));  // only the seed
    ASSERT_TRUE(mask.MaskFill(&source, CPoint(1, 0), static_cast<COLOR_MATCH_MODE>(7), 0, 9));
    EXPECT_EQ(MaskBytes(mask), (std::vector<BYTE>{9, 9, 9}));
    S_ColorMatchData data;
    mask.PrepareColorMatch(&data, source.PixelPtr(0, 0), static_cast<COLOR_MATCH_MODE>(7), 0);
    EXPECT_EQ(data.m_Mode, COLOR_MATCH_ANY);
}

TEST_F(ColorMatchTest, HueRangeWrapsRoundTheCircle) {
    C_Image any;
    S_ColorMatchData data;
    // Hue 350: red with a little blue. (255, 0, 43): 360 - 60 * 43 / 255 = 349.9, rounds to 350.
    BYTE reference[3] = {43, 0, 255};
    any.PrepareColorMatch(&data, reference, COLOR_MATCH_HUE, 20);
    for (int hue = 0; hue < 360; ++hue) {
        const bool inside = hue >= 330 || hue <= 10;
        EXPECT_EQ(data.m_Accept[hue] != 0, inside) << hue;
    }
    for (int i = 360; i < 768; ++i) {
        ASSERT_EQ(data.m_Accept[i], 0);
    }
    BYTE yellowish[3] = {0, 40, 255};  // hue 9: accepted
    BYTE orange[3] = {0, 60, 255};     // hue 14: refused
    BYTE grey[3] = {90, 90, 90};       // hue 0: accepted
    EXPECT_EQ(any.MatchTrueColor(yellowish, &data), 1);
    EXPECT_EQ(any.MatchTrueColor(orange, &data), 0);
    EXPECT_EQ(any.MatchTrueColor(grey, &data), 1);
}

TEST_F(ColorMatchTest, HueModeUsesTheCompanionHue) {
    C_Image any;
    C_Helper helper;
    std::mt19937 rng(2024);
    S_ColorMatchData data;
    for (int trial = 0; trial < 2000; ++trial) {
        BYTE reference[3];
        BYTE other[3];
        for (int c = 0; c < 3; ++c) {
            reference[c] = static_cast<BYTE>(rng());
            other[c] = static_cast<BYTE>(rng());
        }
        if (trial % 4 == 0) {  // greys too
            reference[1] = reference[2] = reference[0];
        }
        int hue = 0;
        int otherHue = 0;
        BYTE s = 0;
        BYTE v = 0;
        helper.HSVFromRGB(reference[2], reference[1], reference[0], &hue, &s, &v);
        helper.HSVFromRGB(other[2], other[1], other[0], &otherHue, &s, &v);
        // Tolerance 0 marks exactly the reference's hue entry.
        any.PrepareColorMatch(&data, reference, COLOR_MATCH_HUE, 0);
        for (int i = 0; i < 768; ++i) {
            ASSERT_EQ(data.m_Accept[i] != 0, i == hue) << "entry " << i << ", trial " << trial;
        }
        ASSERT_EQ(any.MatchTrueColor(other, &data), otherHue == hue ? 1 : 0) << "trial " << trial;
        // Tolerance 3: the circular distance decides.
        any.PrepareColorMatch(&data, reference, COLOR_MATCH_HUE, 3);
        const int distance = std::min((otherHue - hue + 360) % 360, (hue - otherHue + 360) % 360);
        ASSERT_EQ(any.MatchTrueColor(other, &data), distance <= 3 ? 1 : 0) << "trial " << trial;
    }
}

TEST_F(ColorMatchTest, IntensityAndRgbTables) {
    C_Image any;
    S_ColorMatchData data;
    BYTE darkRed[3] = {0, 0, 30};
    BYTE grey[3] = {10, 10, 10};
    any.PrepareColorMatch(&data, darkRed, COLOR_MATCH_INTENSITY, 0);
    EXPECT_EQ(any.MatchTrueColor(grey, &data), 1);
    BYTE brighter[3] = {11, 11, 11};
    EXPECT_EQ(any.MatchTrueColor(brighter, &data), 0);

    BYTE reference[3] = {250, 100, 3};  // blue 250, green 100, red 3
    any.PrepareColorMatch(&data, reference, COLOR_MATCH_RGB, 5);
    EXPECT_EQ(data.m_Accept[0], 1);  // red 3 - 5 clamps to 0
    EXPECT_EQ(data.m_Accept[8], 1);
    EXPECT_EQ(data.m_Accept[9], 0);
    EXPECT_EQ(data.m_Accept[256 + 95], 1);
    EXPECT_EQ(data.m_Accept[256 + 94], 0);
    EXPECT_EQ(data.m_Accept[512 + 255], 1);  // blue 255 clamps
    EXPECT_EQ(data.m_Accept[512 + 244], 0);
}

TEST_F(ColorMatchTest, DiagonalContactDoesNotConnect) {
    C_Image source;
    ASSERT_TRUE(source.Create(3, 3, 1, nullptr, 0));
    for (long y = 0; y < 3; ++y) {
        for (long x = 0; x < 3; ++x) {
            SetColor(source, x, y, 255, 255, 255);
        }
    }
    SetColor(source, 0, 0, 0, 0, 0);
    SetColor(source, 1, 1, 0, 0, 0);
    SetColor(source, 2, 2, 0, 0, 0);
    C_Image mask;
    ASSERT_TRUE(mask.CreateMask(3, 3));
    ASSERT_TRUE(mask.MaskFill(&source, CPoint(1, 1), COLOR_MATCH_RGB, 0, 1));
    EXPECT_EQ(MaskBytes(mask), (std::vector<BYTE>{0, 0, 0, 0, 1, 0, 0, 0, 0}));
}

TEST_F(ColorMatchTest, PaletteSourceIsTestedThroughItsColours) {
    RGBQUAD table[3] = {{0, 0, 200, 0}, {0, 0, 201, 0}, {200, 0, 0, 0}};
    C_Image source;
    ASSERT_TRUE(source.Create(3, 1, 0, table, 3));
    *source.PixelPtr(0, 0) = 0;
    *source.PixelPtr(1, 0) = 1;
    *source.PixelPtr(2, 0) = 2;
    C_Image mask;
    ASSERT_TRUE(mask.CreateMask(3, 1));
    ASSERT_TRUE(mask.MaskFill(&source, CPoint(0, 0), COLOR_MATCH_RGB, 1, 255));
    EXPECT_EQ(MaskBytes(mask), (std::vector<BYTE>{255, 255, 0}));
}

TEST_F(ColorMatchTest, FillRefusesOutsideSeedsAndSizeMismatches) {
    C_Image source;
    RandomPicture(source, 4, 3, 5);
    C_Image mask;
    ASSERT_TRUE(mask.CreateMask(4, 3));
    mask.FillBitmapBytes(7);
    EXPECT_EQ(mask.MaskFill(&source, CPoint(4, 0), COLOR_MATCH_RGB, 10, 1), 0);
    EXPECT_EQ(mask.MaskFill(&source, CPoint(0, -1), COLOR_MATCH_RGB, 10, 1), 0);
    C_Image other;
    ASSERT_TRUE(other.CreateMask(4, 4));
    EXPECT_EQ(other.MaskFill(&source, CPoint(0, 0), COLOR_MATCH_RGB, 10, 1), 0);
    EXPECT_EQ(other.MaskGrowMasked(&source, COLOR_MATCH_RGB, 10), 0);
    EXPECT_EQ(mask.MaskFill(nullptr, CPoint(0, 0), COLOR_MATCH_RGB, 10, 1), 0);
    EXPECT_EQ(MaskBytes(mask), std::vector<BYTE>(12, 7));
    other.FillBitmapBytes(3);
    source.MaskAlikePixelsOnMask(&other, 0, 1, 2, 1, 255, COLOR_MATCH_RGB);
    EXPECT_EQ(MaskBytes(other), std::vector<BYTE>(16, 3));
}

TEST_F(ColorMatchTest, GrowMatchesTheReferenceAndUsesTheEdgeOpacity) {
    for (std::uint32_t seed = 1; seed <= 12; ++seed) {
        const long w = 3 + static_cast<long>(seed * 7 % 30);
        const long h = 3 + static_cast<long>(seed * 5 % 20);
        C_Image source;
        RandomPicture(source, w, h, seed + 100);
        C_Image mask;
        ASSERT_TRUE(mask.CreateMask(w, h));
        std::mt19937 rng(seed);
        // A selected block with varied opacities.
        for (long y = h / 3; y < 2 * h / 3 + 1; ++y) {
            for (long x = w / 3; x < 2 * w / 3 + 1; ++x) {
                *mask.PixelPtr(x, y) = static_cast<BYTE>(1 + rng() % 255);
            }
        }
        std::vector<BYTE> before = MaskBytes(mask);
        // Reference: edge pixels, their mean opacity, the mean colour of the selection.
        std::vector<CPoint> edge;
        long long opacity = 0;
        long long sums[3] = {0, 0, 0};
        long long count = 0;
        auto at = [&](long x, long y) {
            return x < 0 || y < 0 || x >= w || y >= h ? 0
                                                      : before[static_cast<std::size_t>(y * w + x)];
        };
        for (long y = 0; y < h; ++y) {
            for (long x = 0; x < w; ++x) {
                if (at(x, y) == 0) {
                    continue;
                }
                if (at(x - 1, y) == 0 || at(x + 1, y) == 0 || at(x, y - 1) == 0 ||
                    at(x, y + 1) == 0) {
                    edge.emplace_back(x, y);
                    opacity += at(x, y);
                }
                for (int c = 0; c < 3; ++c) {
                    sums[c] += source.PixelPtr(x, y)[c];
                }
                ++count;
            }
        }
        const BYTE fill = static_cast<BYTE>(
            std::max<long long>(opacity / static_cast<long long>(edge.size()), 1));
        BYTE reference[3];
        for (int c = 0; c < 3; ++c) {
            reference[c] = static_cast<BYTE>(sums[c] / count);
        }
        S_ColorMatchData data;
        mask.PrepareColorMatch(&data, reference, COLOR_MATCH_RGB, 60);
        const std::vector<BYTE> expected = ReferenceFlood(source, before, w, h, edge, data, fill);
        ASSERT_EQ(mask.MaskGrowMasked(&source, COLOR_MATCH_RGB, 60), 1);
        ASSERT_EQ(MaskBytes(mask), expected) << "seed " << seed;
    }
}

TEST_F(ColorMatchTest, GrowOnEmptyAndFullMasksChangesNothing) {
    C_Image source;
    RandomPicture(source, 6, 4, 9);
    C_Image mask;
    ASSERT_TRUE(mask.CreateMask(6, 4));
    ASSERT_EQ(mask.MaskGrowMasked(&source, static_cast<COLOR_MATCH_MODE>(3), 0), 1);
    EXPECT_EQ(MaskBytes(mask), std::vector<BYTE>(24, 0));
    mask.FillBitmapBytes(40);
    ASSERT_EQ(mask.MaskGrowMasked(&source, static_cast<COLOR_MATCH_MODE>(3), 0), 1);
    EXPECT_EQ(MaskBytes(mask), std::vector<BYTE>(24, 40));
}

TEST_F(ColorMatchTest, AlikePixelsMarksEveryMatchConnectedOrNot) {
    C_Image source;
    ASSERT_TRUE(source.Create(4, 1, 1, nullptr, 0));
    SetColor(source, 0, 0, 10, 20, 30);
    SetColor(source, 1, 0, 0, 0, 0);
    SetColor(source, 2, 0, 12, 18, 30);
    SetColor(source, 3, 0, 90, 20, 30);
    C_Image mask;
    ASSERT_TRUE(mask.CreateMask(4, 1));
    mask.FillBitmapBytes(5);
    source.MaskAlikePixelsOnMask(&mask, RGB(10, 20, 30), 200, 0, 0, 2, COLOR_MATCH_RGB);
    EXPECT_EQ(MaskBytes(mask), (std::vector<BYTE>{200, 5, 200, 5}));
    source.MaskAlikePixelsOnMask(&mask, RGB(10, 20, 30), 200, 1, 1, 2, COLOR_MATCH_RGB);
    EXPECT_EQ(MaskBytes(mask), (std::vector<BYTE>{200, 1, 200, 1}));
}

}  // namespace
