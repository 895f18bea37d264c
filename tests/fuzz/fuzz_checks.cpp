#include "fuzz/fuzz_target.h"

#include <cstring>

namespace vistrane::fuzz {
namespace {

void Require(bool holds) {
    if (!holds) {
        __builtin_trap();
    }
}

}  // namespace

void CheckImage(const C_Image& image) {
    Require(image.HasImage());
    const long width = image.Width();
    const long height = image.Height();
    Require(width > 0 && height > 0);
    const int bits = image.BitCount();
    Require(bits == 8 || bits == 24);
    Require(image.IsTrueColor() == (bits == 24));
    const long rowBytes = (width * bits + 31) / 32 * 4;
    Require(image.NBytesScan() == rowBytes);
    Require(image.NBytesImage() == static_cast<unsigned long>(rowBytes * height));
    Require(image.NColors() <= 256);
    Require(bits == 8 || image.NColors() == 0);
    // Every row is there: the first and last bytes of the buffer can be read and written back.
    BYTE* first = image.PixelPtr(0, height - 1);
    BYTE* last = image.PixelPtr(width - 1, 0) + bits / 8 - 1;
    *first = *first;
    *last = *last;
}

void CheckSameImage(const C_Image& expected, const C_Image& actual) {
    Require(actual.Width() == expected.Width() && actual.Height() == expected.Height());
    Require(actual.BitCount() == expected.BitCount());
    for (long y = 0; y < expected.Height(); ++y) {
        Require(std::memcmp(expected.PixelPtr(0, y), actual.PixelPtr(0, y),
                            static_cast<std::size_t>(expected.Width() * expected.BitCount() / 8)) ==
                0);
    }
}

}  // namespace vistrane::fuzz
