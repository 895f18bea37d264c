// The four-corner free transform: corners that reproduce, scale or mirror the rectangle, where
// the expected bytes follow from the distance ratios by hand; a full mask onto a skewed
// quadrilateral against the plain point-in-polygon test; the degenerate inputs and the two
// forms of result.

#include <gtest/gtest.h>

#include <vistrane/companion/geom.h>
#include <vistrane/image/image.h>

#include "image/pixel_view.h"
#include "support/image_support.h"

namespace vistrane {
namespace {

using image::ViewOf;

unsigned Pixel(const C_Image& image, int x, int y) {
    const image::PixelView v = ViewOf(image);
    const BYTE* p = v.Pixel(x, y);
    return v.bytesPerPixel == 3 ? p[0] | p[1] << 8 | p[2] << 16 : p[0];
}

BYTE Byte(const C_Image& image, int x, int y, int channel) {
    return ViewOf(image).Pixel(x, y)[channel];
}

// A random mask and a random image of the same size (24-bit, or grey when grey is set).
void MakeSources(C_Image& mask, C_Image& picture, int w, int h, bool grey, std::uint32_t seed) {
    ASSERT_EQ(mask.CreateMask(w, h), 1);
    test::FillRandomPixels(mask, seed);
    if (grey) {
        ASSERT_EQ(picture.CreateMask(w, h), 1);
    } else {
        ASSERT_EQ(picture.Create(w, h, 1, nullptr, 0), 1);
    }
    test::FillRandomPixels(picture, seed * 31 + 7);
}

// The rectangle (3, 2, 15, 11) has W = 11, H = 8; its own corners make an 11 x 8 box. Every
// distance is then exact (edges are axis-parallel), so x = left + 11 * x / 11 and fx = fy = 0
// in both modes: each pixel is the source pixel itself.
TEST(MaskFreeXForm, OwnCornersReproduceTheRectangle) {
    for (int nearest : {1, 0}) {
        for (bool grey : {false, true}) {
            C_Image mask, picture, result, resultImage;
            MakeSources(mask, picture, 20, 14, grey, 11);
            CRect rect(3, 2, 15, 11);
            ASSERT_EQ(
                result.MaskFreeXForm(CPoint(3, 2), CPoint(14, 2), CPoint(14, 10), CPoint(3, 10),
                                     &mask, &resultImage, &picture, nearest, &rect),
                FREEXFORM_OK);
            ASSERT_EQ(result.Width(), 11);
            ASSERT_EQ(result.Height(), 8);
            ASSERT_EQ(resultImage.Width(), 11);
            ASSERT_EQ(resultImage.BitCount(), picture.BitCount());
            EXPECT_EQ(result.IsMask(), 1);
            for (int y = 0; y < 8; ++y) {
                for (int x = 0; x < 11; ++x) {
                    ASSERT_EQ(Pixel(result, x, y), Pixel(mask, 3 + x, 2 + y))
                        << "nearest " << nearest << " (" << x << ", " << y << ")";
                    ASSERT_EQ(Pixel(resultImage, x, y), Pixel(picture, 3 + x, 2 + y))
                        << "nearest " << nearest << " (" << x << ", " << y << ")";
                }
            }
        }
    }
}

// Corners k times wider and taller than W x H: the distance ratios give x / k and y / k, so
// the fractions are (x mod k) / k, quantised to whole percent by truncation (33 and 66 for
// thirds), the bilinear mix rounded by +5000, and the last column and row repeated.
TEST(MaskFreeXForm, ScaledCornersFollowThePercentRule) {
    for (int k : {2, 3}) {
        C_Image mask, picture, result, resultImage;
        MakeSources(mask, picture, 9, 7, false, 40u + k);
        CRect rect(1, 1, 8, 6);  // W = 6, H = 4
        const int bw = 6 * k, bh = 4 * k;
        ASSERT_EQ(result.MaskFreeXForm(CPoint(0, 0), CPoint(bw, 0), CPoint(bw, bh), CPoint(0, bh),
                                       &mask, &resultImage, &picture, 0, &rect),
                  FREEXFORM_OK);
        ASSERT_EQ(result.Width(), bw);
        ASSERT_EQ(result.Height(), bh);
        for (int y = 0; y < bh; ++y) {
            for (int x = 0; x < bw; ++x) {
                const int x0 = 1 + x / k, y0 = 1 + y / k;
                const int x1 = std::min(x0 + 1, 7), y1 = std::min(y0 + 1, 5);
                const int fx = x % k * 100 / k, fy = y % k * 100 / k;
                auto mix = [&](const C_Image& from, int ch) {
                    return (Byte(from, x0, y0, ch) * (100 - fx) * (100 - fy) +
                            Byte(from, x1, y0, ch) * fx * (100 - fy) +
                            Byte(from, x0, y1, ch) * (100 - fx) * fy +
                            Byte(from, x1, y1, ch) * fx * fy + 5000) /
                           10000;
                };
                ASSERT_EQ(Byte(result, x, y, 0), mix(mask, 0))
                    << "k " << k << " (" << x << ", " << y << ")";
                for (int ch = 0; ch < 3; ++ch) {
                    ASSERT_EQ(Byte(resultImage, x, y, ch), mix(picture, ch))
                        << "k " << k << " (" << x << ", " << y << ") channel " << ch;
                }
            }
        }
    }
}

// Swapping the corners left for right (or top for bottom) mirrors the picture: the left edge
// now lies at the box's right, so d4 = W - x and the pixel x reads left + W - x.
TEST(MaskFreeXForm, MirroredCornersFlipThePicture) {
    C_Image mask, picture;
    MakeSources(mask, picture, 12, 10, false, 5);
    CRect rect(0, 0, 11, 9);  // W = 10, H = 8
    C_Image across, acrossImage, down, downImage;
    ASSERT_EQ(across.MaskFreeXForm(CPoint(10, 0), CPoint(0, 0), CPoint(0, 8), CPoint(10, 8), &mask,
                                   &acrossImage, &picture, 1, &rect),
              FREEXFORM_OK);
    ASSERT_EQ(down.MaskFreeXForm(CPoint(0, 8), CPoint(10, 8), CPoint(10, 0), CPoint(0, 0), &mask,
                                 &downImage, &picture, 1, &rect),
              FREEXFORM_OK);
    for (int y = 0; y < 8; ++y) {
        for (int x = 0; x < 10; ++x) {
            ASSERT_EQ(Pixel(acrossImage, x, y), Pixel(picture, 10 - x, y)) << x << ", " << y;
            ASSERT_EQ(Pixel(across, x, y), Pixel(mask, 10 - x, y)) << x << ", " << y;
            ASSERT_EQ(Pixel(downImage, x, y), Pixel(picture, x, 8 - y)) << x << ", " << y;
        }
    }
}

// A fully selected rectangle stays fully selected wherever it lands: in both modes the mask is
// 255 exactly at the points the plain point-in-polygon test puts inside the quadrilateral and
// 0 everywhere else, which checks the precomputed test, the box placement and the clearing.
TEST(MaskFreeXForm, FullMaskOntoASkewedQuadrilateralFillsExactlyItsInside) {
    const CPoint quad[4] = {CPoint(14, 6), CPoint(61, 15), CPoint(52, 47), CPoint(5, 38)};
    for (int nearest : {1, 0}) {
        C_Image source;
        ASSERT_EQ(source.CreateMask(70, 55), 1);
        ASSERT_EQ(source.MaskRect(CRect(20, 10, 45, 30), 255), 1);
        C_Image result;
        ASSERT_EQ(result.MaskFreeXForm(quad[0], quad[1], quad[2], quad[3], &source, nullptr,
                                       nullptr, nearest, nullptr),
                  FREEXFORM_OK);
        ASSERT_EQ(result.Width(), 70);
        ASSERT_EQ(result.Height(), 55);
        C_Geom geom;
        long selected = 0;
        for (int y = 0; y < 55; ++y) {
            for (int x = 0; x < 70; ++x) {
                const bool inside = geom.IsPointInsidePoly(CPoint(x, y), quad, 4) != 0;
                selected += inside;
                ASSERT_EQ(Pixel(result, x, y), inside ? 255u : 0u)
                    << "nearest " << nearest << " (" << x << ", " << y << ")";
            }
        }
        EXPECT_GT(selected, 1000);
    }
}

TEST(MaskFreeXForm, MaskOnlyPlacesTheBoxResultInAMaskOfTheSourceSize) {
    C_Image mask, picture;
    MakeSources(mask, picture, 40, 30, false, 9);
    CRect rect(5, 5, 25, 20);
    const CPoint tl(12, 3), tr(35, 8), br(30, 27), bl(9, 22);
    C_Image withImage, image;
    ASSERT_EQ(withImage.MaskFreeXForm(tl, tr, br, bl, &mask, &image, &picture, 0, &rect),
              FREEXFORM_OK);
    // The mask may transform itself.
    C_Image own;
    ASSERT_EQ(own.Clone(&mask), 1);
    ASSERT_EQ(own.MaskFreeXForm(tl, tr, br, bl, &own, nullptr, nullptr, 0, &rect), FREEXFORM_OK);
    ASSERT_EQ(withImage.Width(), 26);
    ASSERT_EQ(withImage.Height(), 24);
    ASSERT_EQ(own.Width(), 40);
    ASSERT_EQ(own.Height(), 30);
    for (int y = 0; y < 30; ++y) {
        for (int x = 0; x < 40; ++x) {
            const bool inBox = x >= 9 && x < 35 && y >= 3 && y < 27;
            ASSERT_EQ(Pixel(own, x, y), inBox ? Pixel(withImage, x - 9, y - 3) : 0u)
                << x << ", " << y;
        }
    }
}

TEST(MaskFreeXForm, APaletteImageKeepsItsColourTableAndIndices) {
    RGBQUAD colors[256] = {};
    for (int i = 0; i < 256; ++i) {
        colors[i] = {BYTE(i), BYTE(255 - i), BYTE(i * 3), 0};
    }
    C_Image mask, picture, result, image;
    ASSERT_EQ(mask.CreateMask(16, 16), 1);
    mask.FillBitmapBytes(255);
    ASSERT_EQ(picture.Create(16, 16, 0, colors, 256), 1);
    test::FillRandomPixels(picture, 3);
    ASSERT_EQ(result.MaskFreeXForm(CPoint(0, 0), CPoint(15, 0), CPoint(15, 15), CPoint(0, 15),
                                   &mask, &image, &picture, 1, nullptr),
              FREEXFORM_OK);
    EXPECT_TRUE(test::SameColorTable(picture, image));
    for (int y = 0; y < 15; ++y) {
        for (int x = 0; x < 15; ++x) {
            ASSERT_EQ(Pixel(image, x, y), Pixel(picture, x, y)) << x << ", " << y;
        }
    }
}

// Degenerate input returns its code and leaves this image and the destination image alone.
TEST(MaskFreeXForm, DegenerateInputChangesNothing) {
    C_Image mask, picture;
    MakeSources(mask, picture, 20, 20, false, 2);
    CRect rect(0, 0, 10, 10);
    struct Case {
        CPoint tl, tr, br, bl;
        CRect* rect;
        FREEXFORM_RESULTS expected;
    };
    const Case cases[] = {
        {{4, 4}, {10, 2}, {4, 4}, {1, 9}, &rect, FREEXFORM_NOTHING},  // top-left on bottom-right
        {{0, 0}, {5, 5}, {9, 9}, {5, 5}, &rect, FREEXFORM_NOTHING},   // top-right on bottom-left
        {{0, 3}, {5, 3}, {9, 3}, {2, 3}, &rect, FREEXFORM_NOTHING},   // a flat box
        {{7, 0}, {7, 4}, {7, 9}, {7, 6}, &rect, FREEXFORM_NOTHING},   // a box without width
    };
    for (const Case& c : cases) {
        C_Image result, image, resultBefore, imageBefore;
        MakeSources(result, image, 6, 5, false, 77);
        ASSERT_EQ(resultBefore.Clone(&result), 1);
        ASSERT_EQ(imageBefore.Clone(&image), 1);
        EXPECT_EQ(result.MaskFreeXForm(c.tl, c.tr, c.br, c.bl, &mask, &image, &picture, 1, c.rect),
                  c.expected);
        EXPECT_TRUE(test::SamePixels(resultBefore, result));
        EXPECT_TRUE(test::SamePixels(imageBefore, image));
    }
    C_Image empty, result, before;
    ASSERT_EQ(empty.CreateMask(20, 20), 1);
    ASSERT_EQ(result.CreateMask(4, 4), 1);
    result.FillBitmapBytes(9);
    ASSERT_EQ(before.Clone(&result), 1);
    EXPECT_EQ(result.MaskFreeXForm(CPoint(0, 0), CPoint(9, 0), CPoint(9, 9), CPoint(0, 9), &empty,
                                   nullptr, nullptr, 1, nullptr),
              FREEXFORM_NOSELECTION);
    EXPECT_TRUE(test::SamePixels(before, result));
}

}  // namespace
}  // namespace vistrane
