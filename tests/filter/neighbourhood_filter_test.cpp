#include "filter/neighbourhood_filter.h"
#include "blend/blend_dispatch.h"
#include "support/random_bytes.h"

#include <vistrane/blend/blend_modes.h>
#include <vistrane/blend/image_luts.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace vistrane::filter {
namespace {

// A picture of width x height pixels in a block with padded rows, stored bottom-up (negative
// stride) or top-down, with guard bytes before and after.
struct TestImage {
    int width, height, bpp;
    std::ptrdiff_t rowBytes;
    bool bottomUp;
    std::vector<BYTE> block;
    static constexpr int kGuard = 32;

    TestImage(int w, int h, int bytesPerPixel, int padding, bool upsideDown,
              test::RandomBytes& random)
        : width(w),
          height(h),
          bpp(bytesPerPixel),
          rowBytes(w * bytesPerPixel + padding),
          bottomUp(upsideDown) {
        block = random.Fill(static_cast<std::size_t>(rowBytes) * h + 2 * kGuard);
    }
    Plane View() {
        BYTE* start = block.data() + kGuard;
        return bottomUp ? Plane{start + rowBytes * (height - 1), -rowBytes}
                        : Plane{start, rowBytes};
    }
    BYTE* At(int x, int y) { return View().Row(y) + x * bpp; }
};

// The straightforward rule: clamp the sample position into the rectangle, sum, divide, offset,
// clamp; blend through the pixel rule; lay over by opacity * mask / 255.
void ReferenceFilter(TestImage& image, TestImage* mask, int rx, int ry, int rw, int rh,
                     const int* kernel, int divisor, int offset, int type, BYTE opacity, int mode,
                     BYTE* filterColour) {
    C_Helper helper;
    blend::BlendContext context{0, &helper};
    const TestImage original = image;
    TestImage& src = const_cast<TestImage&>(original);
    const blend::PixelBlendFn rule =
        image.bpp == 3 ? blend::TrueColorPixelRule(mode) : blend::GreyPixelRule(mode);
    const auto& mul = *glb_MultiplyLUT;
    for (int y = ry; y < ry + rh; ++y) {
        for (int x = rx; x < rx + rw; ++x) {
            int sums[3] = {0, 0, 0};
            for (int r = 0; r < 7; ++r) {
                for (int c = 0; c < 7; ++c) {
                    const int w = kernel[r * 7 + c];
                    const int sx = std::clamp(x + c - 3, rx, rx + rw - 1);
                    const int sy = std::clamp(y + r - 3, ry, ry + rh - 1);
                    const BYTE* p = src.At(sx, sy);
                    if (image.bpp == 1) {
                        sums[0] += w * p[0];
                    } else if (type == kFilterPerChannel) {
                        for (int k = 0; k < 3; ++k) {
                            sums[k] += w * p[k];
                        }
                    } else if (type == kFilterGray) {
                        sums[0] += w * ((p[0] + p[1] + p[2]) / 3);
                    } else {
                        int h;
                        BYTE s, v;
                        helper.HSVFromRGB(p[2], p[1], p[0], &h, &s, &v);
                        sums[0] += w * v;
                    }
                }
            }
            auto finish = [&](int sum) { return BYTE(std::clamp(sum / divisor + offset, 0, 255)); };
            if (image.bpp == 1 || type == kFilterGray) {
                filterColour[0] = filterColour[1] = filterColour[2] = finish(sums[0]);
            } else if (type == kFilterPerChannel) {
                for (int k = 0; k < 3; ++k) {
                    filterColour[k] = finish(sums[k]);
                }
            } else {
                int h;
                BYTE s, v;
                helper.HSVFromRGB(filterColour[2], filterColour[1], filterColour[0], &h, &s, &v);
                helper.RGBFromHSV(h, s, finish(sums[0]), &filterColour[2], &filterColour[1],
                                  &filterColour[0]);
            }
            const int a = mask ? opacity * *mask->At(x, y) / 255 : opacity;
            if (a == 0) {
                continue;
            }
            BYTE* d = image.At(x, y);
            BYTE blended[3];
            rule(filterColour, d, blended, context);
            for (int k = 0; k < image.bpp; ++k) {
                d[k] = BYTE(mul[255 - a][d[k]] + mul[a][blended[k]]);
            }
        }
    }
}

void RunFilterRect(TestImage& image, TestImage* mask, int rx, int ry, int rw, int rh,
                   const int* kernel, int divisor, int offset, int type, BYTE opacity, int mode,
                   BYTE* filterColour, cpu::InstructionSet set) {
    C_Helper helper;
    blend::BlendContext context{0, &helper};
    std::vector<BYTE> bufferBlock(static_cast<std::size_t>(rw + 6) * (rh + 6) * image.bpp);
    const Plane buffer{bufferBlock.data(), static_cast<std::ptrdiff_t>(rw + 6) * image.bpp};
    RefreshBorderedCopy(buffer, image.View(), 3, 3, rx, ry, rw, rh, image.bpp);
    FilterSettings settings{kernel, divisor, offset, type, opacity, image.bpp};
    blend::RowBlender blender = set == cpu::InstructionSet::kReference
                                    ? blend::ReferenceRowBlender(mode, image.bpp)
                                    : blend::FastRowBlender(mode, image.bpp);
    Plane target = image.View();
    target.first += target.stride * ry + rx * image.bpp;
    Plane maskPlane;
    if (mask != nullptr) {
        maskPlane = mask->View();
        maskPlane.first += maskPlane.stride * ry + rx;
    }
    Plane start{buffer.first + buffer.stride * 3 + 3 * image.bpp, buffer.stride};
    FilterRect(target, start, maskPlane, rw, rh, settings, blender,
               blend::MergeRowFor(image.bpp, set), context, filterColour);
}

class NeighbourhoodFilter : public ::testing::Test {
  protected:
    static void SetUpTestSuite() { glb_CreateImageLUTs(); }
    static void TearDownTestSuite() { glb_ReleaseImageLUTs(); }
};

TEST_F(NeighbourhoodFilter, MatchesAStraightforwardConvolutionWithEdgeReplication) {
    test::RandomBytes random(99);
    const int modes[] = {BLENDMODE_NORMAL, BLENDMODE_MULTIPLY, BLENDMODE_OVERLAY,
                         BLENDMODE_DIFFERENCE, BLENDMODE_HUE};
    for (int round = 0; round < 60; ++round) {
        const int bpp = round % 2 ? 3 : 1;
        const int w = 1 + random.Below(23), h = 1 + random.Below(13);
        TestImage image(w, h, bpp, random.Below(4), round % 3 == 0, random);
        TestImage mask(w, h, 1, random.Below(4), round % 5 == 0, random);
        const int rx = random.Below(w), ry = random.Below(h);
        const int rw = 1 + random.Below(w - rx), rh = 1 + random.Below(h - ry);
        int kernel[49] = {};
        const int size = 3 + 2 * random.Below(3);  // 3, 5 or 7
        for (int r = 0; r < size; ++r) {
            for (int c = 0; c < size; ++c) {
                kernel[(r + (7 - size) / 2) * 7 + c + (7 - size) / 2] = random.Below(11) - 4;
            }
        }
        const int divisor = random.Below(2) ? 1 + random.Below(20) : -1 - random.Below(5);
        const int offset = random.Below(100) - 20;
        const int type = random.Below(3);
        const BYTE opacity = random.Below(3) ? 255 : BYTE(random.Below(256));
        const int mode = bpp == 3 ? modes[random.Below(5)] : modes[random.Below(4)];
        TestImage* maskOrNull = random.Below(2) ? &mask : nullptr;
        TestImage want = image;
        BYTE wantColour[3] = {40, 90, 200};
        ReferenceFilter(want, maskOrNull, rx, ry, rw, rh, kernel, divisor, offset, type, opacity,
                        mode, wantColour);
        for (const cpu::InstructionSet set : cpu::Available()) {
            TestImage got = image;
            BYTE colour[3] = {40, 90, 200};
            RunFilterRect(got, maskOrNull, rx, ry, rw, rh, kernel, divisor, offset, type, opacity,
                          mode, colour, set);
            ASSERT_EQ(want.block, got.block)
                << "round " << round << " bpp " << bpp << " " << w << "x" << h << " rect " << rx
                << "," << ry << " " << rw << "x" << rh << " type " << type << " mode " << mode;
            if (bpp == 3) {
                ASSERT_TRUE(std::equal(colour, colour + 3, wantColour)) << "round " << round;
            }
        }
    }
}

TEST_F(NeighbourhoodFilter, IdentityKernelLeavesTheImageAndInversionClampsAfterTheOffset) {
    test::RandomBytes random(5);
    TestImage image(9, 4, 3, 3, true, random);
    const TestImage before = image;
    int identity[49] = {};
    identity[24] = 1;
    BYTE colour[3] = {};
    RunFilterRect(image, nullptr, 0, 0, 9, 4, identity, 1, 0, kFilterPerChannel, 255,
                  BLENDMODE_NORMAL, colour, cpu::Best());
    EXPECT_EQ(image.block, before.block);
    RunFilterRect(image, nullptr, 2, 1, 5, 2, identity, -1, 255, kFilterPerChannel, 255,
                  BLENDMODE_NORMAL, colour, cpu::Best());
    TestImage& original = const_cast<TestImage&>(before);
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 9; ++x) {
            const bool inside = x >= 2 && x < 7 && y >= 1 && y < 3;
            for (int k = 0; k < 3; ++k) {
                const int want = inside ? 255 - original.At(x, y)[k] : original.At(x, y)[k];
                ASSERT_EQ(image.At(x, y)[k], want) << x << "," << y;
            }
        }
    }
}

TEST_F(NeighbourhoodFilter, BrightnessCarriesHueAndSaturationOfTheStartingColour) {
    test::RandomBytes random(11);
    TestImage image(6, 5, 3, 2, true, random);
    int box[49] = {};
    box[24] = 1;
    BYTE colour[3] = {0, 0, 255};  // pure red: hue 0, saturation 255
    RunFilterRect(image, nullptr, 0, 0, 6, 5, box, 1, 0, kFilterBrightness, 255, BLENDMODE_NORMAL,
                  colour, cpu::Best());
    for (int y = 0; y < 5; ++y) {
        for (int x = 0; x < 6; ++x) {
            const BYTE* p = image.At(x, y);
            EXPECT_EQ(p[0], 0);
            EXPECT_EQ(p[1], 0);
        }
    }
}

TEST_F(NeighbourhoodFilter, MaskByteOneWithOpacity254LeavesThePixel) {
    test::RandomBytes random(3);
    TestImage image(4, 1, 1, 0, false, random);
    TestImage mask(4, 1, 1, 0, false, random);
    std::fill(mask.block.begin(), mask.block.end(), 1);
    const TestImage before = image;
    int kernel[49] = {};
    kernel[24] = 0;
    kernel[25] = 3;
    BYTE colour[3] = {};
    RunFilterRect(image, &mask, 0, 0, 4, 1, kernel, 1, 7, kFilterPerChannel, 254, BLENDMODE_NORMAL,
                  colour, cpu::Best());
    EXPECT_EQ(image.block, before.block);
}

}  // namespace
}  // namespace vistrane::filter
