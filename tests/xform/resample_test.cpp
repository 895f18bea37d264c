// Resampling: each filtered worker against a literal reading of its rule, hand-worked cases, and
// the nearest-neighbour family.

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include <vistrane/blend/gray_palette.h>
#include <vistrane/image/image.h>

#include "image/pixel_view.h"
#include "support/image_support.h"
#include "xform/resample.h"

namespace vistrane {
namespace {

using image::ViewOf;

// A picture as plain bytes, rows top-down, bpp bytes a pixel: what the references read.
struct Plane {
    int w = 0;
    int h = 0;
    int bpp = 1;
    std::vector<int> v;
    int At(int x, int y, int ch) const { return v[(static_cast<size_t>(y) * w + x) * bpp + ch]; }
    int& At(int x, int y, int ch) { return v[(static_cast<size_t>(y) * w + x) * bpp + ch]; }
};

Plane MakePlane(int w, int h, int bpp) {
    return {w, h, bpp, std::vector<int>(size_t(w) * h * bpp)};
}

Plane PlaneOf(const C_Image& image) {
    const image::PixelView view = ViewOf(image);
    Plane p = MakePlane(view.width, view.height, view.bytesPerPixel);
    for (int y = 0; y < p.h; ++y) {
        for (int i = 0; i < view.RowBytes(); ++i) {
            p.v[size_t(y) * view.RowBytes() + i] = view.Row(y)[i];
        }
    }
    return p;
}

::testing::AssertionResult SamePlane(const Plane& expected, const C_Image& actual) {
    const Plane a = PlaneOf(actual);
    if (a.w != expected.w || a.h != expected.h || a.bpp != expected.bpp) {
        return ::testing::AssertionFailure()
               << "size " << a.w << "x" << a.h << ", expected " << expected.w << "x" << expected.h;
    }
    for (size_t i = 0; i < a.v.size(); ++i) {
        if (a.v[i] != expected.v[i]) {
            const size_t pixel = i / a.bpp;
            return ::testing::AssertionFailure()
                   << "pixel (" << pixel % a.w << ", " << pixel / a.w << ") channel " << i % a.bpp
                   << ": expected " << expected.v[i] << ", got " << a.v[i];
        }
    }
    return ::testing::AssertionSuccess();
}

// The reduction map as written: fifteen sixteenths of a destination sample of bias.
int Map(int i, int n, int m) {
    return static_cast<int>((m * 15LL / 16 + i * 1LL * m) / n);
}

// Box average along one axis by walking the map: emit(d, sum, count) for each sample.
template <typename Sample, typename Emit>
void WalkBox(int n, int m, Sample sample, Emit emit) {
    int current = 0;
    long long sum = 0;
    int count = 0;
    for (int i = 0; i <= n; ++i) {
        if (Map(i, n, m) != current) {
            emit(current, sum, count == 0 ? 1 : count);
            current = Map(i, n, m);
            sum = 0;
            count = 0;
        }
        if (i < n) {
            sum += sample(i);
            ++count;
        }
    }
}

// The 1/64 interpolation of n samples onto m at destination index d.
template <typename Sample>
int Interp64(int d, int n, int m, Sample sample) {
    long long p = d * 1LL * n * 64 / m - 32;
    if (p < 0) {
        p = 0;
    }
    const int s = static_cast<int>(p >> 6);
    const int f = static_cast<int>(p % 64);
    const int next = s + 1 < n ? s + 1 : s;
    return (sample(s) * (64 - f) + sample(next) * f) >> 6;
}

Plane RefReduceX(const Plane& src, int W, int H) {
    Plane out = MakePlane(W, H, src.bpp);
    for (int y = 0; y < H; ++y) {
        for (int ch = 0; ch < src.bpp; ++ch) {
            std::vector<int> row(src.w);
            for (int x = 0; x < src.w; ++x) {
                row[x] = Interp64(y, src.h, H, [&](int s) { return src.At(x, s, ch); });
            }
            WalkBox(
                src.w, W, [&](int i) { return row[i]; },
                [&](int d, long long sum, int count) { out.At(d, y, ch) = int(sum / count); });
        }
    }
    return out;
}

Plane RefReduceY(const Plane& src, int W, int H) {
    Plane out = MakePlane(W, H, src.bpp);
    for (int x = 0; x < W; ++x) {
        for (int ch = 0; ch < src.bpp; ++ch) {
            auto interpolated = [&](int row) {
                return Interp64(x, src.w, W, [&](int s) { return src.At(s, row, ch); });
            };
            WalkBox(src.h, H, interpolated,
                    [&](int d, long long sum, int count) { out.At(x, d, ch) = int(sum / count); });
        }
    }
    return out;
}

Plane RefReduceXY(const Plane& src, int W, int H) {
    Plane out = MakePlane(W, H, src.bpp);
    for (int y = 0; y < H; ++y) {
        std::vector<int> rows;
        for (int j = 0; j < src.h; ++j) {
            if (Map(j, src.h, H) == y) {
                rows.push_back(j);
            }
        }
        for (int x = 0; x < W; ++x) {
            std::vector<int> cols;
            for (int i = 0; i < src.w; ++i) {
                if (Map(i, src.w, W) == x) {
                    cols.push_back(i);
                }
            }
            for (int ch = 0; ch < src.bpp; ++ch) {
                long long sum = 0;
                for (int j : rows) {
                    for (int i : cols) {
                        sum += src.At(i, j, ch);
                    }
                }
                out.At(x, y, ch) = int(sum / long(rows.size()) / long(cols.size()));
            }
        }
    }
    return out;
}

Plane RefExpand(const Plane& src, int W, int H) {
    Plane out = MakePlane(W, H, src.bpp);
    auto tap = [](int d, int n, int m, int& c, int& nc, int& a) {
        c = int(d * 1LL * n / m);
        const int f = int(d * 1LL * n * 100 / m - c * 100LL - 50);
        nc = f < 0 ? c - 1 : c + 1;
        nc = nc < 0 ? 0 : (nc > n - 1 ? n - 1 : nc);
        a = f < 0 ? -f : f;
    };
    for (int Y = 0; Y < H; ++Y) {
        int r, nr, ay;
        tap(Y, src.h, H, r, nr, ay);
        for (int X = 0; X < W; ++X) {
            int c, nc, ax;
            tap(X, src.w, W, c, nc, ax);
            const int wD = ay * ax / 100;
            const int wR = (100 - ax) * ay / 100;
            const int wC = (100 - ay) * ax / 100;
            const int wM = 100 - wC - wR - wD;
            for (int ch = 0; ch < src.bpp; ++ch) {
                out.At(X, Y, ch) = src.At(c, r, ch) * wM / 100 + src.At(nc, r, ch) * wC / 100 +
                                   src.At(c, nr, ch) * wR / 100 + src.At(nc, nr, ch) * wD / 100;
            }
        }
    }
    return out;
}

Plane Reference(const Plane& src, int W, int H) {
    if (W >= src.w) {
        return H >= src.h ? RefExpand(src, W, H) : RefReduceY(src, W, H);
    }
    return H >= src.h ? RefReduceX(src, W, H) : RefReduceXY(src, W, H);
}

void MakeImage(C_Image& image, int w, int h, bool trueColor) {
    if (trueColor) {
        ASSERT_EQ(image.Create(w, h, 1, nullptr, 0), 1);
    } else {
        ASSERT_EQ(image.CreateMask(w, h), 1);
    }
}

struct ResampleCase {
    int w, h, W, H;
};

class ResampleAgainstRule : public ::testing::TestWithParam<ResampleCase> {};

TEST_P(ResampleAgainstRule, MatchesTheLiteralRuleOnGreyAndTrueColour) {
    const ResampleCase c = GetParam();
    for (const bool trueColor : {false, true}) {
        C_Image image;
        MakeImage(image, c.w, c.h, trueColor);
        test::FillRandomPixels(image, 7u + c.w * 31u + c.h);
        const Plane expected = Reference(PlaneOf(image), c.W, c.H);
        ASSERT_EQ(image.Resample(CSize(c.W, c.H)), 1);
        EXPECT_TRUE(SamePlane(expected, image)) << (trueColor ? "24-bit " : "grey ") << c.w << "x"
                                                << c.h << " -> " << c.W << "x" << c.H;
    }
}

INSTANTIATE_TEST_SUITE_P(
    AwkwardSizes, ResampleAgainstRule,
    ::testing::Values(
        // ResampleExpand, the same size included.
        ResampleCase{1, 1, 1, 1}, ResampleCase{1, 1, 5, 3}, ResampleCase{7, 5, 7, 5},
        ResampleCase{7, 5, 13, 11}, ResampleCase{3, 2, 100, 9}, ResampleCase{33, 17, 67, 34},
        // ResampleX: narrower, same height or taller.
        ResampleCase{9, 4, 1, 4}, ResampleCase{67, 5, 22, 19}, ResampleCase{5, 1, 2, 7},
        // ResampleY: same width or wider, shorter.
        ResampleCase{4, 9, 4, 1}, ResampleCase{5, 67, 19, 22}, ResampleCase{1, 5, 1, 2},
        // ResampleXY: narrower and shorter, down to one pixel.
        ResampleCase{67, 45, 22, 15}, ResampleCase{13, 11, 1, 1}, ResampleCase{99, 3, 33, 1},
        ResampleCase{2, 2, 1, 1}, ResampleCase{111, 97, 37, 96}, ResampleCase{64, 48, 63, 47}));

// Builds a one-row grey image from `bytes`.
void GreyRow(C_Image& image, std::initializer_list<int> bytes) {
    ASSERT_EQ(image.CreateMask(static_cast<long>(bytes.size()), 1), 1);
    int x = 0;
    for (int b : bytes) {
        *image.PixelPtr(x++, 0) = static_cast<BYTE>(b);
    }
}

TEST(ResampleRule, FifteenSixteenthsBiasGivesTheExtraSampleToTheLastDestination) {
    // 5 onto 2: bias floor(2 * 15 / 16) = 1, map = (1 + 2i) / 5 = 0 0 1 1 1 | 2, so the means
    // are (10 + 20) / 2 = 15 and (30 + 40 + 60) / 3 = 43.
    C_Image image;
    GreyRow(image, {10, 20, 30, 40, 60});
    ASSERT_EQ(image.Resample(CSize(2, 1)), 1);
    EXPECT_EQ(image.GetPixelPalInd(0, 0), 15);
    EXPECT_EQ(image.GetPixelPalInd(1, 0), 43);
}

TEST(ResampleRule, AWidthReducedToOneIsTheTruncatedMeanOfAllColumns) {
    C_Image image;
    GreyRow(image, {255, 0, 1, 2, 3, 4, 5, 6, 7});
    ASSERT_EQ(image.Resample(CSize(1, 1)), 1);
    EXPECT_EQ(image.GetPixelPalInd(0, 0), (255 + 28) / 9);
}

TEST(ResampleRule, SameSizeIsNotTheIdentityButFourTruncatedQuarters) {
    // fx = fy = -50: each byte is four terms of weight 25 (itself, left, above, above-left).
    C_Image image;
    ASSERT_EQ(image.Create(3, 2, 1, nullptr, 0), 1);
    image.FillWithColorRef(RGB(255, 255, 255));
    *image.PixelPtr(1, 1) = 10;
    ASSERT_EQ(image.Resample(CSize(3, 2)), 1);
    EXPECT_EQ(image.GetPixelColorRef(0, 0), RGB(252, 252, 252));
    EXPECT_EQ(image.GetPixelColorRef(0, 1), RGB(252, 252, 252));
    // Blue of (1, 1): 10/4 + 255/4 (left) + 255/4 (above) + 255/4 (above-left) = 2 + 3 * 63.
    EXPECT_EQ(*image.PixelPtr(1, 1), 2 + 3 * 63);
    // (2, 1) reads (1, 1) as its left neighbour: 63 + 2 + 63 + 63.
    EXPECT_EQ(*image.PixelPtr(2, 1), 63 + 2 + 63 + 63);
}

TEST(ResampleFacade, KeepsColourTableAndPaintColours) {
    C_Image image;
    ASSERT_EQ(image.CreateMask(20, 10), 1);
    image.SetBackPalInd(77);
    ASSERT_EQ(image.Resample(CSize(7, 30)), 1);
    EXPECT_EQ(image.Width(), 7);
    EXPECT_EQ(image.Height(), 30);
    EXPECT_TRUE(image.IsMask());
    EXPECT_EQ(image.GetBackPalInd(), 77);
}

TEST(ResampleFacade, RefusesEmptySizesAndLeavesTheImage) {
    C_Image image;
    ASSERT_EQ(image.Create(4, 3, 1, nullptr, 0), 1);
    test::FillRandomPixels(image, 3);
    C_Image before;
    ASSERT_EQ(before.Clone(&image), 1);
    EXPECT_EQ(image.Resample(CSize(0, 3)), 0);
    EXPECT_EQ(image.DIBResize(CSize(4, -1)), 0);
    EXPECT_TRUE(test::SamePixels(before, image));
}

TEST(ResampleFacade, PaletteImagesFallBackToNearestAndMakeNoNewColours) {
    RGBQUAD colors[3] = {{0, 0, 255, 0}, {0, 255, 0, 0}, {255, 0, 0, 0}};
    C_Image image;
    ASSERT_EQ(image.Create(5, 4, 0, colors, 3), 1);
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 5; ++x) {
            *image.PixelPtr(x, y) = static_cast<BYTE>((x + y) % 3);
        }
    }
    C_Image nearest;
    ASSERT_EQ(nearest.Clone(&image), 1);
    ASSERT_EQ(image.Resample(CSize(9, 2)), 1);
    ASSERT_EQ(nearest.DIBResize(CSize(9, 2)), 1);
    EXPECT_TRUE(test::SamePixels(nearest, image));
    for (int y = 0; y < 2; ++y) {
        for (int x = 0; x < 9; ++x) {
            EXPECT_LT(image.GetPixelPalInd(x, y), 3);
        }
    }
}

TEST(DIBResize, NearestCountsRowsFromTheBottom) {
    // 3 x 3 grey picture with value 10 * row + column (rows from the top) to 2 x 2:
    // columns 0 * 3 / 2 = 0 and 1 * 3 / 2 = 1; rows from the bottom 0 -> 0 and 1 -> 1, i.e.
    // top rows 2 and 1. Top-down counting would have picked rows 0 and 1.
    C_Image image;
    ASSERT_EQ(image.CreateMask(3, 3), 1);
    for (int y = 0; y < 3; ++y) {
        for (int x = 0; x < 3; ++x) {
            *image.PixelPtr(x, y) = static_cast<BYTE>(10 * y + x);
        }
    }
    ASSERT_EQ(image.DIBResize(CSize(2, 2)), 1);
    EXPECT_EQ(image.GetPixelPalInd(0, 0), 10);
    EXPECT_EQ(image.GetPixelPalInd(1, 0), 11);
    EXPECT_EQ(image.GetPixelPalInd(0, 1), 20);
    EXPECT_EQ(image.GetPixelPalInd(1, 1), 21);
}

TEST(DIBResize, EnlargingByWholeFactorsRepeatsEveryPixel) {
    C_Image image;
    ASSERT_EQ(image.Create(5, 3, 1, nullptr, 0), 1);
    test::FillRandomPixels(image, 11);
    C_Image big;
    ASSERT_EQ(big.DIBCreateResizing(CSize(15, 6), &image), 1);
    for (int y = 0; y < 6; ++y) {
        for (int x = 0; x < 15; ++x) {
            ASSERT_EQ(big.GetPixelColorRef(x, y), image.GetPixelColorRef(x / 3, y / 2))
                << x << ", " << y;
        }
    }
}

TEST(DIBResizeKeepRatio, AnImageThatFitsIsLeftAlone) {
    C_Image image;
    ASSERT_EQ(image.Create(40, 30, 1, nullptr, 0), 1);
    test::FillRandomPixels(image, 5);
    C_Image before;
    ASSERT_EQ(before.Clone(&image), 1);
    EXPECT_EQ(image.DIBResizeKeepRatio(40, 30), 1);
    EXPECT_TRUE(test::SamePixels(before, image));
}

TEST(DIBResizeKeepRatio, ALargerImageIsResampledToTheFittedSize) {
    C_Image image;
    ASSERT_EQ(image.Create(80, 30, 1, nullptr, 0), 1);
    test::FillRandomPixels(image, 5);
    C_Image expected;
    ASSERT_EQ(expected.Clone(&image), 1);
    ASSERT_EQ(expected.Resample(CSize(40, 15)), 1);
    EXPECT_EQ(image.DIBResizeKeepRatio(40, 40), 1);
    EXPECT_TRUE(test::SamePixels(expected, image));
}

}  // namespace
}  // namespace vistrane
