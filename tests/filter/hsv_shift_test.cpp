#include "filter/hsv_shift.h"

#include "support/random_bytes.h"

#include <vistrane/companion/helper.h>

#include <gtest/gtest.h>

#include <vector>

namespace vistrane::filter {
namespace {

// The table-driven shift against C_Helper::OffsetHSV, which defines the bytes: greys, the
// colour-cube edges, and random colours, for shifts across their whole ranges.
TEST(HsvShifter, MatchesTheCompanionShiftPixelForPixel) {
    test::RandomBytes random(41);
    std::vector<BYTE> pixels;
    for (int level = 0; level < 256; ++level) {
        const BYTE l = static_cast<BYTE>(level);
        pixels.insert(pixels.end(), {l, l, l, 0, l, 255, l, 0, 0, 255, 255, l});
    }
    const std::vector<BYTE> noise = random.Fill(3 * 40000);
    pixels.insert(pixels.end(), noise.begin(), noise.end());
    const int count = static_cast<int>(pixels.size() / 3);
    const int shifts[][3] = {{0, 0, 0},      {30, 0, 0},       {-359, -255, -255}, {359, 255, 255},
                             {180, 40, -20}, {-90, -100, 100}, {1, 1, 1},          {0, 255, 0}};
    const C_Helper helper;
    for (const auto& shift : shifts) {
        std::vector<BYTE> expected = pixels;
        for (int i = 0; i < count; ++i) {
            helper.OffsetHSV(&expected[3 * i], shift[0], shift[1], shift[2]);
        }
        std::vector<BYTE> actual = pixels;
        HsvShifter(shift[0], shift[1], shift[2]).Apply(actual.data(), count);
        for (int i = 0; i < count; ++i) {
            for (int c = 0; c < 3; ++c) {
                ASSERT_EQ(actual[3 * i + c], expected[3 * i + c])
                    << "pixel " << i << " (" << int(pixels[3 * i]) << ", " << int(pixels[3 * i + 1])
                    << ", " << int(pixels[3 * i + 2]) << ") channel " << c << " shift " << shift[0]
                    << " " << shift[1] << " " << shift[2];
            }
        }
    }
}

}  // namespace
}  // namespace vistrane::filter
