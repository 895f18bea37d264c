#include "image/image_size.h"

#include <limits>

namespace vistrane::image {

namespace {

constexpr long long kMaxSizeField = std::numeric_limits<LONG>::max();

std::optional<DWORD> Fitting(long long bytes) {
    if (bytes < 0 || bytes > kMaxSizeField) {
        return std::nullopt;
    }
    return static_cast<DWORD>(bytes);
}

}  // namespace

std::optional<long long> PaddedRowBytes(long width, int bits) {
    if (width < 1 || width > kMaxSizeField || bits < 1) {
        return std::nullopt;
    }
    return (static_cast<long long>(width) * bits + 31) / 32 * 4;
}

std::optional<DWORD> BitmapBytes(long width, long height, int bits, long long extraBytes) {
    const auto row = PaddedRowBytes(width, bits);
    // A header may claim any bit count, so the row itself can exceed a size field.
    if (!row || *row > kMaxSizeField || height < 1 || height > kMaxSizeField) {
        return std::nullopt;
    }
    // Both factors are below 2^31, so the product cannot overflow 64 bits.
    return Fitting(*row * height + extraBytes);
}

std::optional<DWORD> PackedBytes(long width, long height, int pixSize) {
    if (width < 1 || height < 1 || pixSize < 1 || width > kMaxSizeField || height > kMaxSizeField) {
        return std::nullopt;
    }
    const long long row = static_cast<long long>(width) * pixSize;
    if (row > kMaxSizeField) {
        return std::nullopt;
    }
    return Fitting(row * height);
}

}  // namespace vistrane::image
