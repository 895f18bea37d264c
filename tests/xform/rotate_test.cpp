// Quarter turns, flips and the three-shear rotation: index mappings, the sizes of the rule,
// and a literal column-by-column reading of the shears.

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <vector>

#include <vistrane/image/image.h>

#include "image/pixel_view.h"
#include "support/image_support.h"
#include "xform/rotate.h"

namespace vistrane {
namespace {

using image::ViewOf;

struct Format {
    const char* name;
    int kind;  // 0 palette, 1 grey mask, 2 true colour
};
const Format kFormats[] = {{"palette", 0}, {"grey", 1}, {"24-bit", 2}};

void Make(C_Image& image, int kind, int w, int h, std::uint32_t seed) {
    RGBQUAD colors[256] = {};
    for (int i = 0; i < 256; ++i) {
        colors[i] = {BYTE(i * 7), BYTE(i * 13), BYTE(255 - i), 0};
    }
    switch (kind) {
        case 0:
            ASSERT_EQ(image.Create(w, h, 0, colors, 256), 1);
            break;
        case 1:
            ASSERT_EQ(image.CreateMask(w, h), 1);
            break;
        default:
            ASSERT_EQ(image.Create(w, h, 1, nullptr, 0), 1);
    }
    test::FillRandomPixels(image, seed);
}

// The bytes of pixel (x, y) as one number, for index-mapping comparisons.
unsigned Pixel(const C_Image& image, int x, int y) {
    const image::PixelView v = ViewOf(image);
    const BYTE* p = v.Pixel(x, y);
    return v.bytesPerPixel == 3 ? p[0] | p[1] << 8 | p[2] << 16 : p[0];
}

TEST(QuarterTurn, FollowsTheIndexMappingsForEveryFormatAndOddSizes) {
    for (const Format& f : kFormats) {
        for (const auto& [w, h] : {std::pair{1, 1},
                                   {1, 7},
                                   {7, 1},
                                   {5, 3},
                                   {33, 70},
                                   {67, 41},
                                   {4, 68},
                                   {132, 65},
                                   {65, 130}}) {
            C_Image image, right, left;
            Make(image, f.kind, w, h, 17u + w * h);
            ASSERT_EQ(right.Clone(&image), 1);
            ASSERT_EQ(left.Clone(&image), 1);
            ASSERT_EQ(right.RotateRight(), 1);
            ASSERT_EQ(left.RotateLeft(), 1);
            ASSERT_EQ(right.Width(), h);
            ASSERT_EQ(right.Height(), w);
            ASSERT_EQ(left.Width(), h);
            for (int y = 0; y < w; ++y) {
                for (int x = 0; x < h; ++x) {
                    ASSERT_EQ(Pixel(right, x, y), Pixel(image, y, h - 1 - x))
                        << f.name << " " << w << "x" << h << " right (" << x << ", " << y << ")";
                    ASSERT_EQ(Pixel(left, x, y), Pixel(image, w - 1 - y, x))
                        << f.name << " " << w << "x" << h << " left (" << x << ", " << y << ")";
                }
            }
            EXPECT_TRUE(test::SameColorTable(image, right));
        }
    }
}

// Unpadded top-down buffers with guard bytes on both sides: the turn moves 3-byte pixels four
// bytes at a time where it can, and must neither read nor leave a byte outside the pictures.
TEST(QuarterTurn, TouchesNothingOutsideUnpaddedBuffers) {
    constexpr int kGuard = 16;
    for (const int bpp : {1, 3}) {
        for (const auto& [w, h] : {std::pair{1, 1}, {4, 3}, {65, 2}, {3, 130}, {70, 67}}) {
            const std::size_t bytes = static_cast<std::size_t>(w) * h * bpp;
            std::vector<BYTE> in(bytes + 2 * kGuard), out(bytes + 2 * kGuard, 0xA5);
            for (std::size_t i = 0; i < in.size(); ++i) {
                in[i] = static_cast<BYTE>(i * 37 + 11);
            }
            for (const bool clockwise : {true, false}) {
                std::fill(out.begin(), out.end(), BYTE{0xA5});
                const image::ConstPixelView src{in.data() + kGuard, w * bpp, w, h, bpp, nullptr, 0};
                const image::PixelView dst{out.data() + kGuard, h * bpp, h, w, bpp, nullptr, 0};
                xform::QuarterTurn(src, dst, clockwise);
                for (int i = 0; i < kGuard; ++i) {
                    ASSERT_EQ(out[i], 0xA5) << w << "x" << h << " guard before, byte " << i;
                    ASSERT_EQ(out[kGuard + bytes + i], 0xA5) << w << "x" << h << " guard after";
                }
                for (int y = 0; y < w; ++y) {
                    for (int x = 0; x < h; ++x) {
                        const BYTE* got = dst.Pixel(x, y);
                        const BYTE* want =
                            clockwise ? src.Pixel(y, h - 1 - x) : src.Pixel(w - 1 - y, x);
                        ASSERT_EQ(std::memcmp(got, want, bpp), 0)
                            << bpp << " bytes, " << w << "x" << h
                            << (clockwise ? " right" : " left") << " at (" << x << ", " << y << ")";
                    }
                }
            }
        }
    }
}

TEST(QuarterTurn, FourTurnsEitherWayAreTheIdentity) {
    for (const Format& f : kFormats) {
        C_Image image, turned;
        Make(image, f.kind, 13, 6, 3);
        ASSERT_EQ(turned.Clone(&image), 1);
        for (int i = 0; i < 4; ++i) {
            ASSERT_EQ(turned.RotateRight(), 1);
        }
        EXPECT_TRUE(test::SamePixels(image, turned)) << f.name;
        for (int i = 0; i < 4; ++i) {
            ASSERT_EQ(turned.RotateLeft(), 1);
        }
        EXPECT_TRUE(test::SamePixels(image, turned)) << f.name;
    }
}

TEST(Flip, MirrorsByIndexAndKeepsTheMiddle) {
    for (const Format& f : kFormats) {
        for (const auto& [w, h] : {std::pair{1, 1}, {1, 5}, {6, 1}, {7, 3}, {67, 10}, {64, 9}}) {
            C_Image image, horizontal, vertical;
            Make(image, f.kind, w, h, 99u + w);
            ASSERT_EQ(horizontal.Clone(&image), 1);
            ASSERT_EQ(vertical.Clone(&image), 1);
            horizontal.FlipHorizontal();
            vertical.FlipVertical();
            for (int y = 0; y < h; ++y) {
                for (int x = 0; x < w; ++x) {
                    ASSERT_EQ(Pixel(horizontal, x, y), Pixel(image, w - 1 - x, y))
                        << f.name << " " << w << "x" << h;
                    ASSERT_EQ(Pixel(vertical, x, y), Pixel(image, x, h - 1 - y))
                        << f.name << " " << w << "x" << h;
                }
            }
        }
    }
}

TEST(Flip, RowKernelTouchesNothingPastTheRow) {
    for (const int bpp : {1, 3}) {
        for (int count = 0; count <= 67; ++count) {
            std::vector<BYTE> row(static_cast<size_t>(count) * bpp + 8, 0xFF);
            for (int i = 0; i < count * bpp; ++i) {
                row[i] = static_cast<BYTE>(i);
            }
            xform::FlipRowRef(row.data(), count, bpp);
            for (int x = 0; x < count; ++x) {
                for (int ch = 0; ch < bpp; ++ch) {
                    ASSERT_EQ(row[x * bpp + ch], BYTE((count - 1 - x) * bpp + ch));
                }
            }
            for (size_t i = size_t(count) * bpp; i < row.size(); ++i) {
                ASSERT_EQ(row[i], 0xFF) << "guard byte " << i << " of count " << count;
            }
        }
    }
}

TEST(ShearSizes, FollowTheShearExtents) {
    xform::ShearSizes z{};
    ASSERT_TRUE(xform::ComputeShearSizes(100, 100, 0.1, z));
    EXPECT_EQ(z.firstWidth, 106);
    EXPECT_EQ(z.trim, 0);
    EXPECT_EQ(z.tallHeight, 111);
    EXPECT_EQ(z.height, 111);
    EXPECT_EQ(z.shift, 0);
    EXPECT_EQ(z.width, 112);
    ASSERT_TRUE(xform::ComputeShearSizes(100, 100, -30 * 3.141592653589793 / 180, z));
    EXPECT_EQ(z.firstWidth, 127);
    EXPECT_EQ(z.trim, 13);
    EXPECT_EQ(z.tallHeight, 164);
    EXPECT_EQ(z.height, 138);
    EXPECT_EQ(z.shift, 13);
    EXPECT_EQ(z.width, 138);
    ASSERT_TRUE(xform::ComputeShearSizes(9, 4, 0.0, z));
    EXPECT_EQ(z.width, 9);
    EXPECT_EQ(z.height, 4);
}

// ---- A literal reading of the three shears ------------------------------------------------

struct Buffer {
    int w = 0;
    int h = 0;
    int bpp = 1;
    std::vector<int> v;
    int* At(int x, int y) { return &v[(size_t(y) * w + x) * bpp]; }
};

Buffer Filled(int w, int h, int bpp, const int* bg) {
    Buffer b{w, h, bpp, std::vector<int>(size_t(w) * h * bpp)};
    for (size_t i = 0; i < b.v.size(); ++i) {
        b.v[i] = bg[i % bpp];
    }
    return b;
}

// Moves a line of pixels get(i) to positions k + i + disp of put(pos), a line of `length`.
template <typename Get, typename Put>
void RefShear(int n, int length, double o, int disp, int bpp, const int* bg, bool blend, Get get,
              Put put) {
    const int k = static_cast<int>(o);
    const int f = static_cast<int>((o - k) * 4096);
    std::vector<int> prev(bg, bg + bpp);
    for (int i = 0; i < n; ++i) {
        const int pos = k + i + disp;
        if (pos < 0 || pos >= length) {
            continue;
        }
        const int* p = get(i);
        int* out = put(pos);
        for (int ch = 0; ch < bpp; ++ch) {
            out[ch] = blend ? (p[ch] * (4096 - f) + prev[ch] * f + 2048) >> 12 : p[ch];
            prev[ch] = p[ch];
        }
    }
    const int pos = k + n + disp;
    if (f > 0 && pos >= 0 && pos < length) {
        int* out = put(pos);
        for (int ch = 0; ch < bpp; ++ch) {
            out[ch] = blend ? (prev[ch] * f + bg[ch] * (4096 - f) + 2048) >> 12 : bg[ch];
        }
    }
}

Buffer RefRotate(const C_Image& image, double a, const int* bg, bool blend) {
    const image::PixelView view = ViewOf(image);
    const int w = view.width, h = view.height, bpp = view.bytesPerPixel;
    const double t = std::fabs(std::tan(a / 2)), s = std::fabs(std::sin(a));
    const int W1 = int(w + h * t + 0.999999);
    const int D1 = int((W1 - w) * s);
    const int H2 = int(W1 * s + h + 0.999999);
    const int H = H2 - 2 * D1;
    const int E = int((H2 - D1 - h) * t);
    const int W = int(W1 + (H2 - 2 * D1) * t + 0.999999 - 2 * E);
    std::vector<int> pixel(bpp);
    Buffer first = Filled(W1, h, bpp, bg);
    for (int i = 0; i < h; ++i) {
        RefShear(
            w, W1, a > 0 ? i * t : (h - i) * t, 0, bpp, bg, blend,
            [&](int x) {
                for (int ch = 0; ch < bpp; ++ch) {
                    pixel[ch] = view.Pixel(x, i)[ch];
                }
                return pixel.data();
            },
            [&](int pos) { return first.At(pos, i); });
    }
    Buffer second = Filled(W1, H, bpp, bg);
    for (int j = 0; j < W1; ++j) {
        RefShear(
            h, H, a > 0 ? (W1 - j) * s : j * s, -D1, bpp, bg, blend,
            [&](int y) { return first.At(j, y); }, [&](int pos) { return second.At(j, pos); });
    }
    Buffer out = Filled(W, H, bpp, bg);
    for (int i = 0; i < H; ++i) {
        RefShear(
            W1, W, a > 0 ? i * t : (H - i) * t, -E, bpp, bg, blend,
            [&](int x) { return second.At(x, i); }, [&](int pos) { return out.At(pos, i); });
    }
    return out;
}

::testing::AssertionResult SameAsBuffer(Buffer& expected, const C_Image& actual) {
    if (actual.Width() != expected.w || actual.Height() != expected.h) {
        return ::testing::AssertionFailure() << "size " << actual.Width() << "x" << actual.Height()
                                             << ", expected " << expected.w << "x" << expected.h;
    }
    const image::PixelView v = ViewOf(actual);
    for (int y = 0; y < expected.h; ++y) {
        for (int x = 0; x < expected.w; ++x) {
            for (int ch = 0; ch < expected.bpp; ++ch) {
                if (v.Pixel(x, y)[ch] != expected.At(x, y)[ch]) {
                    return ::testing::AssertionFailure()
                           << "pixel (" << x << ", " << y << ") channel " << ch << ": expected "
                           << expected.At(x, y)[ch] << ", got " << int{v.Pixel(x, y)[ch]};
                }
            }
        }
    }
    return ::testing::AssertionSuccess();
}

TEST(ShearRotation, MatchesTheLiteralShearsForEveryFormatAngleAndSize) {
    for (const Format& f : kFormats) {
        for (const double degrees : {0.0, 1.0, -1.0, 17.5, -30.0, 30.0, 44.9, -45.0, 45.0}) {
            for (const auto& [w, h] :
                 {std::pair{1, 1}, {1, 9}, {9, 1}, {23, 17}, {40, 61}, {150, 37}, {67, 130}}) {
                C_Image image;
                Make(image, f.kind, w, h, 5u + w * 3u + h);
                image.SetBackTrueColor(RGB(200, 100, 50));
                image.SetBackPalInd(9);
                const int bg24[3] = {50, 100, 200};
                const int bg8[1] = {9};
                const double a = degrees * 3.141592653589793 / 180;
                Buffer expected = RefRotate(image, a, f.kind == 2 ? bg24 : bg8, f.kind != 0);
                ASSERT_EQ(image.InternalRotateDouble(a), 1);
                ASSERT_TRUE(SameAsBuffer(expected, image))
                    << f.name << " " << w << "x" << h << " by " << degrees;
                EXPECT_EQ(image.GetBackTrueColor(), RGB(200, 100, 50));
            }
        }
    }
}

TEST(ShearRotation, ZeroAngleKeepsSizeAndPixels) {
    for (const Format& f : kFormats) {
        C_Image image, rotated;
        Make(image, f.kind, 31, 12, 8);
        ASSERT_EQ(rotated.Clone(&image), 1);
        ASSERT_EQ(rotated.InternalRotate(0), 1);
        EXPECT_TRUE(test::SamePixels(image, rotated)) << f.name;
        EXPECT_TRUE(test::SameColorTable(image, rotated)) << f.name;
    }
}

TEST(ShearRotation, UncoveredCornersTakeTheBackgroundColour) {
    C_Image image;
    ASSERT_EQ(image.Create(50, 50, 1, nullptr, 0), 1);
    image.FillWithColorRef(RGB(255, 255, 255));
    image.SetBackTrueColor(RGB(1, 2, 3));
    ASSERT_EQ(image.Rotate1To359(30), 1);
    EXPECT_EQ(image.GetPixelColorRef(0, 0), RGB(1, 2, 3));
    EXPECT_EQ(image.GetPixelColorRef(image.Width() - 1, image.Height() - 1), RGB(1, 2, 3));
    EXPECT_EQ(image.GetPixelColorRef(image.Width() / 2, image.Height() / 2), RGB(255, 255, 255));
}

// ---- Rotate1To359: the decomposition into turns, flips and a shear -------------------------

TEST(Rotate1To359, DecomposesIntoQuarterTurnsHalfTurnsAndAShearWithin45Degrees) {
    struct Step {
        int degrees;
        int rightTurns;  // quarter turns clockwise before the shear
        bool halfTurn;
        int shear;  // InternalRotate argument, or 999 for none
        bool left;
    };
    const Step steps[] = {
        {90, 1, false, 999, false}, {-90, 0, false, 999, true}, {270, 0, false, 999, true},
        {180, 0, true, 999, false}, {30, 0, false, 30, false},  {60, 1, false, -30, false},
        {135, 1, false, 45, false}, {-30, 2, true, -30, false}, {0, 0, false, 0, false},
        {360, 2, true, 0, false},
    };
    for (const Format& f : kFormats) {
        for (const Step& s : steps) {
            C_Image image, expected;
            Make(image, f.kind, 21, 14, 44);
            image.SetBackPalInd(3);
            ASSERT_EQ(expected.Clone(&image), 1);
            if (s.left) {
                ASSERT_EQ(expected.RotateLeft(), 1);
            }
            if (s.halfTurn) {
                expected.FlipHorizontal();
                expected.FlipVertical();
            }
            for (int i = 0; i < s.rightTurns; ++i) {
                ASSERT_EQ(expected.RotateRight(), 1);
            }
            if (s.shear != 999) {
                ASSERT_EQ(expected.InternalRotate(s.shear), 1);
            }
            ASSERT_EQ(image.Rotate1To359(s.degrees), 1);
            EXPECT_TRUE(test::SamePixels(expected, image)) << f.name << " " << s.degrees;
            C_Image doubled;
            Make(doubled, f.kind, 21, 14, 44);
            doubled.SetBackPalInd(3);
            ASSERT_EQ(doubled.Rotate1To359Double(s.degrees), 1);
            EXPECT_TRUE(test::SamePixels(expected, doubled)) << f.name << " " << s.degrees;
        }
    }
}

TEST(Rotate1To359, ThirtyDegreesOnAHundredSquareHasTheRuleSizes) {
    C_Image image;
    ASSERT_EQ(image.Create(100, 100, 1, nullptr, 0), 1);
    ASSERT_EQ(image.Rotate1To359(30), 1);
    EXPECT_EQ(image.Width(), 138);
    EXPECT_EQ(image.Height(), 138);
}

}  // namespace
}  // namespace vistrane
