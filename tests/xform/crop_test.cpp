// Crop, borders and the resizes that build an image from a rectangle of another: index
// mappings on random images of every format, and the failures that must leave things alone.

#include <gtest/gtest.h>

#include <vistrane/image/image.h>

#include "image/pixel_view.h"
#include "support/image_support.h"

namespace vistrane {
namespace {

using image::ViewOf;

enum Kind { kPalette, kGrey, kTrueColor };
const Kind kKinds[] = {kPalette, kGrey, kTrueColor};

void Make(C_Image& image, Kind kind, int w, int h, std::uint32_t seed) {
    RGBQUAD colors[256] = {};
    for (int i = 0; i < 256; ++i) {
        colors[i] = {BYTE(i * 7), BYTE(i * 13), BYTE(255 - i), 0};
    }
    switch (kind) {
        case kPalette:
            ASSERT_EQ(image.Create(w, h, 0, colors, 256), 1);
            break;
        case kGrey:
            ASSERT_EQ(image.CreateMask(w, h), 1);
            break;
        case kTrueColor:
            ASSERT_EQ(image.Create(w, h, 1, nullptr, 0), 1);
    }
    test::FillRandomPixels(image, seed);
}

unsigned Pixel(const C_Image& image, int x, int y) {
    const image::PixelView v = ViewOf(image);
    const BYTE* p = v.Pixel(x, y);
    return v.bytesPerPixel == 3 ? p[0] | p[1] << 8 | p[2] << 16 : p[0];
}

TEST(CropTo, KeepsTheIntersectionWithTheImage) {
    const CRect rects[] = {{3, 2, 10, 9}, {-4, -1, 5, 30}, {0, 0, 17, 11}, {16, 10, 40, 40}};
    for (Kind kind : kKinds) {
        for (const CRect& r : rects) {
            C_Image image, cropped;
            Make(image, kind, 17, 11, 5u + kind);
            image.SetBackPalInd(9);
            ASSERT_EQ(cropped.Clone(&image), 1);
            ASSERT_EQ(cropped.CropTo(r), 1);
            CRect whole(0, 0, 17, 11), kept;
            kept.IntersectRect(r, whole);
            ASSERT_EQ(cropped.Width(), kept.Width());
            ASSERT_EQ(cropped.Height(), kept.Height());
            for (int y = 0; y < kept.Height(); ++y) {
                for (int x = 0; x < kept.Width(); ++x) {
                    ASSERT_EQ(Pixel(cropped, x, y), Pixel(image, kept.left + x, kept.top + y))
                        << "kind " << kind << " at (" << x << ", " << y << ")";
                }
            }
            EXPECT_TRUE(test::SameColorTable(image, cropped));
            EXPECT_EQ(cropped.GetBackPalInd(), image.GetBackPalInd());
            EXPECT_EQ(cropped.IsMask(), image.IsMask());
        }
    }
}

TEST(CropTo, RefusesARectangleThatMissesTheImage) {
    for (const CRect& r : {CRect(17, 0, 20, 5), CRect(-5, -5, 0, 3), CRect(4, 4, 4, 9)}) {
        C_Image image, before;
        Make(image, kTrueColor, 17, 11, 8);
        ASSERT_EQ(before.Clone(&image), 1);
        EXPECT_EQ(image.CropTo(r), 0);
        EXPECT_TRUE(test::SamePixels(before, image));
    }
}

TEST(AddBorders, NoMarginsRebuildsAnIdenticalImage) {
    for (Kind kind : kKinds) {
        C_Image image, before;
        Make(image, kind, 9, 4, 21);
        ASSERT_EQ(before.Clone(&image), 1);
        ASSERT_EQ(image.AddBorders(0, 0, 0, 0), 1);
        EXPECT_TRUE(test::SamePixels(before, image));
        EXPECT_TRUE(test::SameColorTable(before, image));
    }
}

TEST(AddBorders, FramesThePictureInTheBackgroundColour) {
    for (Kind kind : kKinds) {
        C_Image image;
        Make(image, kind, 7, 5, 4);
        image.SetBackPalInd(200);
        image.SetBackTrueColor(RGB(10, 20, 30));
        C_Image bordered;
        ASSERT_EQ(bordered.Clone(&image), 1);
        ASSERT_EQ(bordered.AddBorders(2, 1, 3, 4), 1);
        ASSERT_EQ(bordered.Width(), 12);
        ASSERT_EQ(bordered.Height(), 10);
        // Background pixel bytes: blue, green, red of RGB(10, 20, 30), or index 200.
        const unsigned background = kind == kTrueColor ? 10 << 16 | 20 << 8 | 30 : 200;
        for (int y = 0; y < 10; ++y) {
            for (int x = 0; x < 12; ++x) {
                const bool inside = x >= 2 && x < 9 && y >= 1 && y < 6;
                ASSERT_EQ(Pixel(bordered, x, y), inside ? Pixel(image, x - 2, y - 1) : background)
                    << "kind " << kind << " at (" << x << ", " << y << ")";
            }
        }
    }
}

TEST(AddBorders, NegativeMarginsCutAndAnEmptyResultIsRefused) {
    C_Image image, cut, before;
    Make(image, kTrueColor, 10, 8, 6);
    ASSERT_EQ(cut.Clone(&image), 1);
    ASSERT_EQ(cut.AddBorders(-3, 0, 1, -2), 1);
    ASSERT_EQ(cut.Width(), 8);
    ASSERT_EQ(cut.Height(), 6);
    for (int y = 0; y < 6; ++y) {
        for (int x = 0; x < 7; ++x) {
            ASSERT_EQ(Pixel(cut, x, y), Pixel(image, x + 3, y)) << x << ", " << y;
        }
    }
    ASSERT_EQ(before.Clone(&image), 1);
    EXPECT_EQ(image.AddBorders(-5, 0, -5, 0), 0);
    EXPECT_TRUE(test::SamePixels(before, image));
}

TEST(CreateResizing, StretchesTheRectangleByTheDeviceRule) {
    for (Kind kind : kKinds) {
        for (const auto& [cx, cy] : {std::pair{13, 9}, {4, 3}, {1, 1}, {20, 2}}) {
            C_Image source, resized;
            Make(source, kind, 15, 12, 40u + cx);
            source.SetForePalInd(3);
            source.SetForeTrueColor(RGB(4, 5, 6));
            ASSERT_EQ(resized.CreateResizing(2, 3, 7, 6, &source, CSize(cx, cy)), 1);
            ASSERT_EQ(resized.Width(), cx);
            ASSERT_EQ(resized.Height(), cy);
            if (kind == kTrueColor) {
                EXPECT_EQ(resized.GetForeTrueColor(), RGB(4, 5, 6));
            } else {
                EXPECT_EQ(resized.GetForePalInd(), 3);
            }
            // Colour on colour: destination d keeps the first source pixel of its range.
            for (int y = 0; y < cy; ++y) {
                for (int x = 0; x < cx; ++x) {
                    ASSERT_EQ(Pixel(resized, x, y), Pixel(source, 2 + x * 7 / cx, 3 + y * 6 / cy))
                        << "kind " << kind << " " << cx << "x" << cy << " (" << x << ", " << y
                        << ")";
                }
            }
        }
    }
}

TEST(CreateResizing, FailureLeavesTheImageEmpty) {
    C_Image image, source;
    Make(image, kTrueColor, 5, 5, 1);
    EXPECT_EQ(image.CreateResizing(0, 0, 1, 1, &source, CSize(3, 3)), 0);
    EXPECT_EQ(image.HasImage(), 0);
}

// The resampled rectangle must equal resampling a cropped copy of it: the workers read only
// the rectangle, the rule picks the same worker, and the paint colours come from the source.
TEST(CreateResampling, MatchesResamplingTheCroppedRectangle) {
    const CSize sizes[] = {{5, 4}, {14, 3}, {4, 20}, {30, 25}, {9, 7}};
    for (Kind kind : {kGrey, kTrueColor}) {
        for (const CSize& size : sizes) {
            C_Image source, expected, actual;
            Make(source, kind, 23, 17, 70u + size.cx);
            source.SetBackTrueColor(RGB(1, 2, 3));
            ASSERT_EQ(expected.Clone(&source), 1);
            ASSERT_EQ(expected.CropTo(CRect(4, 6, 13, 13)), 1);
            ASSERT_EQ(expected.Resample(size), 1);
            ASSERT_EQ(actual.CreateResampling(4, 6, 9, 7, &source, size), 1);
            EXPECT_TRUE(test::SamePixels(expected, actual)) << size.cx << "x" << size.cy;
            EXPECT_EQ(actual.GetBackTrueColor(), RGB(1, 2, 3));
        }
    }
}

TEST(CreateResampling, ReusesABitmapOfTheRightSizeAndDepthOnly) {
    C_Image source;
    Make(source, kTrueColor, 20, 10, 3);
    C_Image target;
    ASSERT_EQ(target.Create(6, 5, 1, nullptr, 0), 1);
    const HANDLE kept = target.MapHandle();
    ASSERT_EQ(target.CreateResampling(0, 0, 20, 10, &source, CSize(6, 5)), 1);
    EXPECT_EQ(target.MapHandle(), kept);

    C_Image grey;
    ASSERT_EQ(grey.CreateMask(6, 5), 1);
    ASSERT_EQ(grey.CreateResampling(0, 0, 20, 10, &source, CSize(6, 5)), 1);
    EXPECT_EQ(grey.IsTrueColor(), 1);
    C_Image expected;
    ASSERT_EQ(expected.CreateResampling(0, 0, 20, 10, &source, CSize(6, 5)), 1);
    EXPECT_TRUE(test::SamePixels(expected, grey));
}

TEST(CreateResampling, APaletteSourceFallsBackToTheDeviceStretch) {
    C_Image source, stretched, resampled;
    Make(source, kPalette, 16, 16, 12);
    ASSERT_EQ(stretched.CreateResizing(1, 1, 12, 12, &source, CSize(5, 7)), 1);
    ASSERT_EQ(resampled.CreateResampling(1, 1, 12, 12, &source, CSize(5, 7)), 1);
    EXPECT_TRUE(test::SamePixels(stretched, resampled));
    EXPECT_TRUE(test::SameColorTable(source, resampled));
}

TEST(CreateResampling, ARectangleOutsideTheSourceFailsAndEmptiesTheImage) {
    C_Image source, image;
    Make(source, kTrueColor, 8, 8, 2);
    Make(image, kTrueColor, 3, 3, 2);
    EXPECT_EQ(image.CreateResampling(4, 4, 8, 8, &source, CSize(3, 3)), 0);
    EXPECT_EQ(image.HasImage(), 0);
}

}  // namespace
}  // namespace vistrane
