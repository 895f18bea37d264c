#include "support/image_support.h"
#include "support/random_bytes.h"

#include <vistrane/blend/image_luts.h>
#include <vistrane/image/image.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <vector>

namespace {

class ImageFilter : public ::testing::Test {
  protected:
    static void SetUpTestSuite() { glb_CreateImageLUTs(); }
    static void TearDownTestSuite() { glb_ReleaseImageLUTs(); }
};

// The straightforward rule for FILTER_PER_CHANNEL in normal mode: clamp-to-rectangle sampling,
// sum / divisor + offset clamped, laid over with opacity * mask / 255.
void ReferenceFilter(C_Image& image, const C_Image& original, const CRect& r, const int* kernel,
                     int divisor, int offset, int opacity, C_Image* mask) {
    const int bpp = image.IsTrueColor() ? 3 : 1;
    for (long y = r.top; y < r.bottom; ++y) {
        for (long x = r.left; x < r.right; ++x) {
            const int m = mask != nullptr ? *mask->PixelPtr(x, y) : 255;
            const int a = opacity * m / 255;
            if (a == 0) {
                continue;
            }
            BYTE* p = image.PixelPtr(x, y);
            for (int c = 0; c < bpp; ++c) {
                int sum = 0;
                for (int ky = 0; ky < 7; ++ky) {
                    for (int kx = 0; kx < 7; ++kx) {
                        const long sx = std::clamp<long>(x + kx - 3, r.left, r.right - 1);
                        const long sy = std::clamp<long>(y + ky - 3, r.top, r.bottom - 1);
                        sum += kernel[ky * 7 + kx] * original.PixelPtr(sx, sy)[c];
                    }
                }
                const int value = std::clamp(sum / divisor + offset, 0, 255);
                p[c] = static_cast<BYTE>((*glb_MultiplyLUT)[255 - a][p[c]] +
                                         (*glb_MultiplyLUT)[a][value]);
            }
        }
    }
}

TEST_F(ImageFilter, MatchesTheReferenceConvolutionOnAwkwardRectangles) {
    vistrane::test::RandomBytes random(3);
    // 100 and 150 rows span several bands of the buffer-less path.
    const long sizes[][2] = {{1, 1}, {2, 7}, {9, 4}, {31, 13}, {70, 5}, {5, 100}, {17, 150}};
    for (const auto& size : sizes) {
        for (int trueColor = 0; trueColor < 2; ++trueColor) {
            C_Image image;
            if (trueColor != 0) {
                ASSERT_EQ(image.Create(size[0] + 3, size[1] + 2, 1, nullptr, 0), 1);
            } else {
                ASSERT_EQ(image.CreateMask(size[0] + 3, size[1] + 2), 1);
            }
            vistrane::test::FillRandomPixels(image, static_cast<std::uint32_t>(size[0]));
            C_Image mask;
            ASSERT_EQ(mask.CreateMask(image.Width(), image.Height()), 1);
            vistrane::test::FillRandomPixels(mask, 77);
            int kernel[49];
            for (int& w : kernel) {
                w = random.Below(3) == 0 ? 0 : random.Below(21) - 10;
            }
            const CRect r(2, 1, 2 + size[0], 1 + size[1]);
            // Opacity 255 without a mask takes the in-place path; the others blend and merge.
            for (const int opacity : {230, 255}) {
                for (C_Image* m : {static_cast<C_Image*>(nullptr), &mask}) {
                    C_Image original, expected;
                    ASSERT_EQ(original.Clone(&image), 1);
                    ASSERT_EQ(expected.Clone(&image), 1);
                    ReferenceFilter(expected, original, r, kernel, 7, 40, opacity, m);
                    ASSERT_EQ(
                        image.FilterImage(BLENDMODE_NORMAL, static_cast<unsigned char>(opacity), 0,
                                          r.left, r.top, r.Width(), r.Height(), m, kernel, 40, 7,
                                          FILTER_PER_CHANNEL, nullptr, 0, 0),
                        1);
                    EXPECT_TRUE(vistrane::test::SamePixels(expected, image))
                        << size[0] << " x " << size[1] << " true colour " << trueColor
                        << " opacity " << opacity;
                    ASSERT_EQ(image.Copy(&original), 1);
                }
            }
        }
    }
}

TEST_F(ImageFilter, APreparedBufferGivesTheSameResult) {
    C_Image image;
    ASSERT_EQ(image.Create(12, 9, 1, nullptr, 0), 1);
    vistrane::test::FillRandomPixels(image, 8);
    C_Image copy;
    ASSERT_EQ(copy.Clone(&image), 1);
    int box[49] = {};
    for (int ky = 2; ky <= 4; ++ky) {
        for (int kx = 2; kx <= 4; ++kx) {
            box[ky * 7 + kx] = 1;
        }
    }
    C_Image buffer;
    ASSERT_EQ(buffer.PrepareFilterBuffer(4, 5, 1, 2, 10, 6, &copy), 1);
    EXPECT_EQ(buffer.Width(), 18);
    EXPECT_EQ(buffer.Height(), 16);
    ASSERT_EQ(copy.FilterImage(BLENDMODE_MULTIPLY, 255, 0, 1, 2, 10, 6, nullptr, box, 0, 9,
                               FILTER_GRAY, &buffer, 4, 5),
              1);
    ASSERT_EQ(image.FilterImage(BLENDMODE_MULTIPLY, 255, 0, 1, 2, 10, 6, nullptr, box, 0, 9,
                                FILTER_GRAY, nullptr, 0, 0),
              1);
    EXPECT_TRUE(vistrane::test::SamePixels(image, copy));
}

// Normal mode at full opacity without a mask writes the filtered colours straight into the
// image. A prepared buffer gives the banded path's bytes, and an image that is its own buffer
// (its rows are read while they are being written) gives the bytes of the blend-and-merge path,
// which an all-selecting mask takes.
TEST_F(ImageFilter, TheDirectWriteMatchesTheBlendPath) {
    C_Image image;
    ASSERT_EQ(image.Create(75, 40, 1, nullptr, 0), 1);
    vistrane::test::FillRandomPixels(image, 21);
    C_Image all;
    ASSERT_EQ(all.CreateMask(75, 40), 1);
    for (long y = 0; y < 40; ++y) {
        std::fill(all.PixelPtr(0, y), all.PixelPtr(0, y) + 75, BYTE{255});
    }
    int kernel[49];
    for (int i = 0; i < 49; ++i) {
        kernel[i] = i % 5 - 2;  // sums near 0, so the offset 128 keeps results off the clamps
    }
    C_Image banded, prepared, buffer;
    ASSERT_EQ(banded.Clone(&image), 1);
    ASSERT_EQ(prepared.Clone(&image), 1);
    ASSERT_EQ(buffer.PrepareFilterBuffer(3, 3, 4, 3, 67, 33, &image), 1);
    ASSERT_EQ(banded.FilterImage(BLENDMODE_NORMAL, 255, 0, 4, 3, 67, 33, nullptr, kernel, 128, 3,
                                 FILTER_PER_CHANNEL, nullptr, 0, 0),
              1);
    ASSERT_EQ(prepared.FilterImage(BLENDMODE_NORMAL, 255, 0, 4, 3, 67, 33, nullptr, kernel, 128, 3,
                                   FILTER_PER_CHANNEL, &buffer, 3, 3),
              1);
    EXPECT_TRUE(vistrane::test::SamePixels(banded, prepared));

    C_Image selfRead, selfReadMasked;
    ASSERT_EQ(selfRead.Clone(&image), 1);
    ASSERT_EQ(selfReadMasked.Clone(&image), 1);
    ASSERT_EQ(selfRead.FilterImage(BLENDMODE_NORMAL, 255, 0, 4, 3, 67, 33, nullptr, kernel, 128, 3,
                                   FILTER_PER_CHANNEL, &selfRead, 4, 3),
              1);
    ASSERT_EQ(selfReadMasked.FilterImage(BLENDMODE_NORMAL, 255, 0, 4, 3, 67, 33, &all, kernel, 128,
                                         3, FILTER_PER_CHANNEL, &selfReadMasked, 4, 3),
              1);
    EXPECT_TRUE(vistrane::test::SamePixels(selfRead, selfReadMasked));
    EXPECT_FALSE(vistrane::test::SamePixels(selfRead, banded));
}

TEST_F(ImageFilter, RefusesPaletteImagesAndAcceptsEmptyRectangles) {
    const RGBQUAD colours[2] = {{0, 0, 0, 0}, {255, 255, 255, 0}};
    C_Image palette;
    ASSERT_EQ(palette.Create(4, 4, 0, colours, 2), 1);
    int identity[49] = {};
    identity[24] = 1;
    EXPECT_EQ(palette.FilterImage(BLENDMODE_NORMAL, 255, 0, 0, 0, 4, 4, nullptr, identity, 0, 1,
                                  FILTER_PER_CHANNEL, nullptr, 0, 0),
              0);
    C_Image image;
    ASSERT_EQ(image.Create(4, 4, 1, nullptr, 0), 1);
    EXPECT_EQ(image.FilterImage(BLENDMODE_NORMAL, 255, 0, 0, 0, 0, 4, nullptr, identity, 0, 1,
                                FILTER_PER_CHANNEL, nullptr, 0, 0),
              1);
    // An inverting kernel: -1 * c / 1 + 255.
    vistrane::test::FillRandomPixels(image, 4);
    C_Image before;
    ASSERT_EQ(before.Clone(&image), 1);
    int invert[49] = {};
    invert[24] = -1;
    ASSERT_EQ(image.FilterImage(BLENDMODE_NORMAL, 255, 0, 0, 0, 4, 4, nullptr, invert, 255, 1,
                                FILTER_PER_CHANNEL, nullptr, 0, 0),
              1);
    EXPECT_EQ(image.PixelPtr(3, 2)[1], 255 - before.PixelPtr(3, 2)[1]);
}

}  // namespace

namespace {

// A host that watches and may stop: it records every report and cancels at `cancelAt` rows.
struct Watcher {
    long cancelAt = -1;
    std::vector<long> done;
    long total = 0;
    static int Report(void* context, long done, long total) {
        auto* self = static_cast<Watcher*>(context);
        EXPECT_GT(total, 0);
        self->done.push_back(done);
        self->total = total;
        return self->cancelAt >= 0 && done >= self->cancelAt ? 0 : 1;
    }
};

// Filters, colour operations, resampling and rotation report rising progress that ends at the
// whole; a cancel part-way returns 0 and leaves the picture (and the carried filter colour) as it
// was.
TEST(Progress, LongOperationsReportAndCancelCleanly) {
    glb_CreateImageLUTs();
    int blur[49] = {};
    for (const int tap : {16, 17, 18, 23, 24, 25, 30, 31, 32}) {
        blur[tap] = 1;
    }
    const std::vector<std::function<int(C_Image&)>> operations = {
        [&](C_Image& i) {
            return i.FilterImage(BLENDMODE_NORMAL, 255, 0, 0, 0, i.Width(), i.Height(), nullptr,
                                 blur, 0, 9, FILTER_PER_CHANNEL, nullptr, 0, 0);
        },
        [](C_Image& i) { return i.TurnNegative(nullptr); },
        [](C_Image& i) {
            int shifts[3] = {90, 10, 10};
            i.PixelColorOperation(COLOROPER_HSV, shifts, nullptr);
            return -1;
        },
        // Reported in rows of the result, here the same count as the picture's.
        [](C_Image& i) { return i.Resample(CSize(20, 200)); },
        [](C_Image& i) { return i.Rotate1To359Double(7.5); },
        // The four-corner transform of a picture through a full mask; its result says 0 for done.
        [](C_Image& i) {
            C_Image full, moved, movedMask;
            if (!full.CreateMask(i.Width(), i.Height())) {
                return 0;
            }
            full.FillBitmapBytes(255);
            movedMask.SetProgressCallback(i.GetProgressCallback(), i.GetProgressContext());
            const FREEXFORM_RESULTS r =
                movedMask.MaskFreeXForm(CPoint(0, 0), CPoint(40, 10), CPoint(30, 190),
                                        CPoint(5, 200), &full, &moved, &i, 0, nullptr);
            if (r == FREEXFORM_OK) {
                i.TransformInto(&moved, 0);
            }
            return r == FREEXFORM_OK ? 1 : 0;
        },
    };
    for (std::size_t k = 0; k < operations.size(); ++k) {
        for (const long cancelAt : {-1L, 64L}) {
            C_Image image, before;
            ASSERT_EQ(image.Create(37, 200, 1, nullptr, 0), 1);
            vistrane::test::FillRandomPixels(image, 5);
            ASSERT_EQ(before.Clone(&image), 1);
            Watcher watcher{cancelAt, {}, 0};
            image.SetProgressCallback(&Watcher::Report, &watcher);
            const int result = operations[k](image);
            ASSERT_FALSE(watcher.done.empty()) << k;
            EXPECT_TRUE(std::is_sorted(watcher.done.begin(), watcher.done.end())) << k;
            if (cancelAt < 0) {
                EXPECT_NE(result, 0) << k;
                EXPECT_EQ(watcher.done.back(), watcher.total) << k;
                EXPECT_FALSE(vistrane::test::SamePixels(before, image)) << k;
            } else {
                EXPECT_LE(result, 0) << k;
                EXPECT_EQ(watcher.done.back(), 64) << k;
                EXPECT_TRUE(vistrane::test::SamePixels(before, image)) << k;
            }
        }
    }
    glb_ReleaseImageLUTs();
}

}  // namespace
