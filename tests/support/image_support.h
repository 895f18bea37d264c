#pragma once

// Helpers shared by the tests: deterministic pixel data and pixel-exact comparisons.

#include <gtest/gtest.h>

#include <cstdint>

#include <vistrane/image/image.h>

namespace vistrane::test {

// Fills every pixel byte (padding excluded) with a seeded pseudo-random sequence.
void FillRandomPixels(C_Image& image, std::uint32_t seed);

// Equal size, depth and pixel bytes; on failure names the first differing pixel and channel.
::testing::AssertionResult SamePixels(const C_Image& expected, const C_Image& actual);

// Equal colour counts and the first NColors() table entries, word for word.
::testing::AssertionResult SameColorTable(const C_Image& expected, const C_Image& actual);

}  // namespace vistrane::test
