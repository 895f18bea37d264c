// The seamless pattern: hand-worked bands, the fade against the arithmetic of its rule, the seam
// property of the tile, and the refusals that must leave the image alone.

#include <gtest/gtest.h>

#include <vector>

#include <vistrane/blend/image_luts.h>
#include <vistrane/image/image.h>

#include "image/pixel_view.h"
#include "support/image_support.h"
#include "xform/seamless.h"

namespace vistrane {
namespace {

using image::PixelView;
using image::ViewOf;

class SeamlessPattern : public ::testing::Test {
  protected:
    static void SetUpTestSuite() { glb_CreateImageLUTs(); }
    static void TearDownTestSuite() { glb_ReleaseImageLUTs(); }
};

void SetGreyRow(C_Image& image, int y, std::initializer_list<int> bytes) {
    BYTE* row = ViewOf(image).Row(y);
    for (int v : bytes) {
        *row++ = static_cast<BYTE>(v);
    }
}

TEST(SeamlessAlpha, RunsFrom255DownTo0Truncating) {
    EXPECT_EQ(xform::SeamlessAlpha(0, 1), 255);
    EXPECT_EQ(xform::SeamlessAlpha(1, 1), 0);
    EXPECT_EQ(xform::SeamlessAlpha(1, 2), 127);  // 127.5 truncated
    EXPECT_EQ(xform::SeamlessAlpha(1, 4), 191);  // 191.25
    EXPECT_EQ(xform::SeamlessAlpha(3, 4), 63);   // 63.75
    EXPECT_EQ(xform::SeamlessAlpha(5, 10), 127);
}

TEST(SeamlessBands, RoundToNearestAndRefuseEmptyOrWholeBands) {
    int bw = -1, bh = -1;
    ASSERT_TRUE(xform::SeamlessBands(100, 60, 50, bw, bh));
    EXPECT_EQ(bw, 50);
    EXPECT_EQ(bh, 30);
    ASSERT_TRUE(xform::SeamlessBands(64, 64, 10, bw, bh));
    EXPECT_EQ(bw, 6);  // (640 + 50) / 100
    EXPECT_EQ(bh, 6);
    ASSERT_TRUE(xform::SeamlessBands(10, 30, 5, bw, bh));
    EXPECT_EQ(bw, 1);                                       // (50 + 50) / 100: a half rounds up
    EXPECT_EQ(bh, 2);                                       // (150 + 50) / 100
    EXPECT_FALSE(xform::SeamlessBands(10, 30, 4, bw, bh));  // (40 + 50) / 100 = 0
    EXPECT_FALSE(xform::SeamlessBands(30, 10, 4, bw, bh));  // the height's band is 0
    EXPECT_FALSE(xform::SeamlessBands(10, 30, 0, bw, bh));
    EXPECT_FALSE(xform::SeamlessBands(10, 30, -20, bw, bh));
    EXPECT_FALSE(xform::SeamlessBands(10, 30, 100, bw, bh));  // the band is the whole width
    EXPECT_TRUE(xform::SeamlessBands(10, 30, 90, bw, bh));
    EXPECT_EQ(bw, 9);
    EXPECT_EQ(bh, 27);
    EXPECT_FALSE(xform::SeamlessBands(4096, 3072, 2000000000, bw, bh));
}

// 6 x 3 grey, 34 %: bw = (204 + 50) / 100 = 2, bh = (102 + 50) / 100 = 1.
// Vertical, source row h - bh - 1 = 1: k = 0 (alpha 255) makes row 0 a copy of row 1; k = 1
// (alpha 0) keeps row 1.
// Horizontal, source column w - bw - 1 = 3: k = 0 copies column 3 into column 0; k = 1 (alpha
// 127) makes column 1 200 * 128 / 255 + 100 * 127 / 255 = 100 + 49 = 149; k = 2 keeps column 2.
// The tile is the top-left 4 x 2.
TEST_F(SeamlessPattern, HandWorkedGreyBands) {
    C_Image image;
    ASSERT_EQ(image.CreateMask(6, 3), 1);
    SetGreyRow(image, 0, {1, 2, 3, 4, 5, 6});
    SetGreyRow(image, 1, {10, 200, 30, 40, 100, 250});
    SetGreyRow(image, 2, {7, 8, 9, 11, 12, 13});
    ASSERT_EQ(image.SeamlessPattern(34), 1);
    ASSERT_EQ(image.Width(), 4);
    ASSERT_EQ(image.Height(), 2);
    const BYTE expected[4] = {40, 149, 30, 40};
    for (int y = 0; y < 2; ++y) {
        for (int x = 0; x < 4; ++x) {
            EXPECT_EQ(ViewOf(image).Pixel(x, y)[0], expected[x]) << "(" << x << ", " << y << ")";
        }
    }
}

// 4 x 3 24-bit, 50 %: bw = (200 + 50) / 100 = 2, bh = (150 + 50) / 100 = 2; source row 0 and
// column 1. Rows fade with themselves (alpha 255 and 0 keep a byte), and only row 0 is kept.
// Across row 0: k = 0 copies column 1 into column 0; k = 1 fades column 1 with column 2 at
// alpha 127, 128 p / 255 + 127 q / 255, channel by channel:
//   blue  p = 255, q = 0:   128 + 0  = 128
//   green p = 100, q = 200: 50 + 99  = 149
//   red   p = 1,   q = 255: 0 + 127  = 127
// The tile is the top-left 2 x 1.
TEST_F(SeamlessPattern, HandWorkedTrueColourFadesEachChannelOnItsOwn) {
    C_Image image;
    ASSERT_EQ(image.Create(4, 3, 1, nullptr, 0), 1);
    const PixelView v = ViewOf(image);
    for (int y = 0; y < 3; ++y) {
        std::fill(v.Row(y), v.Row(y) + v.RowBytes(), BYTE{7});
    }
    const BYTE p[3] = {255, 100, 1};
    const BYTE q[3] = {0, 200, 255};
    std::copy(p, p + 3, v.Pixel(1, 0));
    std::copy(q, q + 3, v.Pixel(2, 0));
    ASSERT_EQ(image.SeamlessPattern(50), 1);
    ASSERT_EQ(image.Width(), 2);
    ASSERT_EQ(image.Height(), 1);
    const BYTE expected[2][3] = {{255, 100, 1}, {128, 149, 127}};
    for (int x = 0; x < 2; ++x) {
        for (int ch = 0; ch < 3; ++ch) {
            EXPECT_EQ(ViewOf(image).Pixel(x, 0)[ch], expected[x][ch]) << "x " << x << " ch " << ch;
        }
    }
}

// The rule written out with the arithmetic of the table, (a * b) / 255, on a copy.
std::vector<BYTE> FadeByRule(const PixelView& v, int bw, int bh) {
    const int bpp = v.bytesPerPixel;
    const int rowBytes = v.RowBytes();
    std::vector<BYTE> px(static_cast<std::size_t>(rowBytes) * v.height);
    for (int y = 0; y < v.height; ++y) {
        std::copy(v.Row(y), v.Row(y) + rowBytes, px.begin() + y * rowBytes);
    }
    auto at = [&](int x, int y, int ch) -> BYTE& { return px[y * rowBytes + x * bpp + ch]; };
    auto fade = [](int p, int q, int k, int b) {
        const int alpha = static_cast<int>((1.0 - static_cast<double>(k) / b) * 255.0);
        return static_cast<BYTE>((255 - alpha) * p / 255 + alpha * q / 255);
    };
    for (int k = 0; k <= bh; ++k) {
        for (int x = 0; x < v.width; ++x) {
            for (int ch = 0; ch < bpp; ++ch) {
                at(x, k, ch) = fade(at(x, k, ch), at(x, v.height - bh - 1 + k, ch), k, bh);
            }
        }
    }
    for (int y = 0; y < v.height; ++y) {
        for (int k = 0; k <= bw; ++k) {
            for (int ch = 0; ch < bpp; ++ch) {
                at(k, y, ch) = fade(at(k, y, ch), at(v.width - bw - 1 + k, y, ch), k, bw);
            }
        }
    }
    return px;
}

struct Case {
    int width;
    int height;
    int percent;
};

const Case kCases[] = {{100, 60, 50}, {64, 64, 10}, {37, 23, 13}, {9, 41, 33},
                       {2, 2, 50},    {55, 3, 66},  {17, 17, 90}, {5, 200, 25}};

TEST_F(SeamlessPattern, MatchesTheRuleOnRandomPicturesOfBothKinds) {
    for (const bool trueColor : {false, true}) {
        for (const Case& c : kCases) {
            C_Image image;
            ASSERT_EQ(trueColor ? image.Create(c.width, c.height, 1, nullptr, 0)
                                : image.CreateMask(c.width, c.height),
                      1);
            test::FillRandomPixels(image, 40u + c.width * 7 + c.height);
            int bw = 0, bh = 0;
            ASSERT_TRUE(xform::SeamlessBands(c.width, c.height, c.percent, bw, bh));
            const PixelView before = ViewOf(image);
            const std::vector<BYTE> faded = FadeByRule(before, bw, bh);
            const int bpp = before.bytesPerPixel;
            const int rowBytes = before.RowBytes();
            ASSERT_EQ(image.SeamlessPattern(c.percent), 1);
            ASSERT_EQ(image.Width(), c.width - bw);
            ASSERT_EQ(image.Height(), c.height - bh);
            const PixelView after = ViewOf(image);
            for (int y = 0; y < after.height; ++y) {
                for (int i = 0; i < after.RowBytes(); ++i) {
                    ASSERT_EQ(after.Row(y)[i], faded[y * rowBytes + i])
                        << c.width << " x " << c.height << " at " << c.percent << " %, bpp " << bpp
                        << ": x " << i / bpp << ", y " << y << ", channel " << i % bpp;
                }
            }
        }
    }
}

// The tile's first row is the last kept row faded in at full weight, and its first column the
// last kept column: laid side by side, copies of the tile meet on the same line. That holds
// while the bands stop short of the last kept line; wider bands fade that line too.
TEST_F(SeamlessPattern, OppositeEdgesOfTheTileMeet) {
    int checked = 0;
    for (const bool trueColor : {false, true}) {
        for (const Case& c : kCases) {
            int bw = 0, bh = 0;
            ASSERT_TRUE(xform::SeamlessBands(c.width, c.height, c.percent, bw, bh));
            if (c.width - bw - 1 <= bw || c.height - bh - 1 <= bh) {
                continue;
            }
            ++checked;
            C_Image image;
            ASSERT_EQ(trueColor ? image.Create(c.width, c.height, 1, nullptr, 0)
                                : image.CreateMask(c.width, c.height),
                      1);
            test::FillRandomPixels(image, 90u + c.percent);
            ASSERT_EQ(image.SeamlessPattern(c.percent), 1);
            const PixelView v = ViewOf(image);
            const int bpp = v.bytesPerPixel;
            for (int y = 0; y < v.height; ++y) {
                for (int ch = 0; ch < bpp; ++ch) {
                    ASSERT_EQ(v.Pixel(0, y)[ch], v.Pixel(v.width - 1, y)[ch])
                        << c.width << " x " << c.height << ", row " << y;
                }
            }
            for (int x = 0; x < v.width; ++x) {
                for (int ch = 0; ch < bpp; ++ch) {
                    ASSERT_EQ(v.Pixel(x, 0)[ch], v.Pixel(x, v.height - 1)[ch])
                        << c.width << " x " << c.height << ", column " << x;
                }
            }
        }
    }
    EXPECT_EQ(checked, 8);
}

TEST_F(SeamlessPattern, RefusesAndLeavesTheImageAlone) {
    C_Image grey;
    ASSERT_EQ(grey.CreateMask(40, 10), 1);
    test::FillRandomPixels(grey, 3);
    C_Image before;
    ASSERT_EQ(before.Clone(&grey), 1);
    // At 2 and 3 % only the height's band rounds to 0 ((10 * 3 + 50) / 100); at 100 % and
    // above a band reaches the opposite edge.
    for (const int percent : {0, 1, 2, 3, -10, 100, 250}) {
        EXPECT_EQ(grey.SeamlessPattern(percent), 0) << percent << " %";
        EXPECT_TRUE(test::SamePixels(before, grey)) << percent << " %";
    }

    RGBQUAD colors[4] = {{0, 0, 255, 0}, {0, 255, 0, 0}, {255, 0, 0, 0}, {9, 9, 9, 0}};
    C_Image palette;
    ASSERT_EQ(palette.Create(20, 20, 0, colors, 4), 1);
    ASSERT_EQ(palette.CanEditTrueColor(), 0);
    test::FillRandomPixels(palette, 4);
    ASSERT_EQ(before.Clone(&palette), 1);
    EXPECT_EQ(palette.SeamlessPattern(10), 0);
    EXPECT_TRUE(test::SamePixels(before, palette));

    glb_ReleaseImageLUTs();
    ASSERT_EQ(before.Clone(&grey), 1);
    EXPECT_EQ(grey.SeamlessPattern(10), 0);
    EXPECT_TRUE(test::SamePixels(before, grey));
    glb_CreateImageLUTs();
    EXPECT_EQ(grey.SeamlessPattern(10), 1);
}

}  // namespace
}  // namespace vistrane
