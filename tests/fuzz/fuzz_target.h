#pragma once

// A fuzz target is a function over untrusted bytes. Built for libFuzzer, each target file
// becomes a fuzzer of its own; built plainly, all of them link into one replay program that
// runs the committed corpus as an ordinary test, so a fixed bug stays fixed.
//
// A target loads what it was given; after a successful load it checks the result against
// itself and round-trips it, and it traps on any inconsistency so the fuzzer reports it.

#include <cstddef>
#include <cstdint>

#include <vistrane/image/image.h>

namespace vistrane::fuzz {

using Target = int (*)(const std::uint8_t* data, std::size_t size);

// Size, depth, row length and colour count agree with each other and with the pixel bytes.
void CheckImage(const C_Image& image);
// The pixel bytes and the colour table of two images are the same.
void CheckSameImage(const C_Image& expected, const C_Image& actual);

int FuzzBmpMemory(const std::uint8_t* data, std::size_t size);
int FuzzBmpFile(const std::uint8_t* data, std::size_t size);
int FuzzPngMemory(const std::uint8_t* data, std::size_t size);
int FuzzPackedDib(const std::uint8_t* data, std::size_t size);
int FuzzMemoryBlock(const std::uint8_t* data, std::size_t size);
int FuzzArchive(const std::uint8_t* data, std::size_t size);
int FuzzPathFile(const std::uint8_t* data, std::size_t size);
int FuzzCliValues(const std::uint8_t* data, std::size_t size);

}  // namespace vistrane::fuzz
