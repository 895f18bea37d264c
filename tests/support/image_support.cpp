#include "support/image_support.h"

#include <cstring>

#include "image/pixel_view.h"

namespace vistrane::test {

namespace {

// Every test binary needs the host's start-up call before the first image is made.
const int kHeaderTypeChecked = C_Image::CheckBitmapHeaderType();

std::uint32_t NextRandom(std::uint32_t& state) {
    state ^= state << 13;
    state ^= state >> 17;
    state ^= state << 5;
    return state;
}

}  // namespace

void FillRandomPixels(C_Image& image, std::uint32_t seed) {
    std::uint32_t state = seed != 0 ? seed : 1;
    const image::PixelView view = image::ViewOf(image);
    for (int y = 0; y < view.height; ++y) {
        BYTE* row = view.Row(y);
        for (int i = 0; i < view.RowBytes(); ++i) {
            row[i] = static_cast<BYTE>(NextRandom(state) >> 24);
        }
    }
}

::testing::AssertionResult SamePixels(const C_Image& expected, const C_Image& actual) {
    if (expected.Width() != actual.Width() || expected.Height() != actual.Height() ||
        expected.BitCount() != actual.BitCount()) {
        return ::testing::AssertionFailure()
               << "expected " << expected.Width() << "x" << expected.Height() << "x"
               << expected.BitCount() << ", got " << actual.Width() << "x" << actual.Height()
               << "x" << actual.BitCount();
    }
    const image::PixelView e = image::ViewOf(expected);
    const image::PixelView a = image::ViewOf(actual);
    for (int y = 0; y < e.height; ++y) {
        for (int i = 0; i < e.RowBytes(); ++i) {
            if (e.Row(y)[i] != a.Row(y)[i]) {
                return ::testing::AssertionFailure()
                       << "pixel (" << i / e.bytesPerPixel << ", " << y << ") channel "
                       << i % e.bytesPerPixel << ": expected " << int{e.Row(y)[i]} << ", got "
                       << int{a.Row(y)[i]};
            }
        }
    }
    return ::testing::AssertionSuccess();
}

::testing::AssertionResult SameColorTable(const C_Image& expected, const C_Image& actual) {
    if (expected.NColors() != actual.NColors()) {
        return ::testing::AssertionFailure() << "expected " << expected.NColors()
                                             << " colours, got " << actual.NColors();
    }
    if (expected.NColors() != 0 &&
        std::memcmp(expected.RGBQs(), actual.RGBQs(), 4 * expected.NColors()) != 0) {
        return ::testing::AssertionFailure() << "colour tables differ";
    }
    return ::testing::AssertionSuccess();
}

}  // namespace vistrane::test
