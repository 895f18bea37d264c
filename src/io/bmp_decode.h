#pragma once

// Reading every BMP layout that other programs write, from the file's bytes in memory.
//
// Headers: the 12-byte core header of OS/2 1.x and old Windows (3-byte colour entries), the
// 16- and 64-byte OS/2 2.x headers, and the 40-, 52-, 56-, 108- and 124-byte Windows headers.
// Pixels: 1, 2, 4 and 8 bits through a colour table, RLE4 and RLE8, 16 bits (5-5-5 by default,
// or any bit fields), 24 bits, and 32 bits (blue, green, red and an unused byte by default, or
// any bit fields, with alpha when a field names it); rows bottom-up or top-down.
//
// What the engine gets: an 8-bit image with the file's colour table for the indexed layouts,
// and a 24-bit image for the others. A bit field of n bits scales to 8 bits as
// (v * 255 + (2^n - 1) / 2) / (2^n - 1). Alpha is flattened onto white as the PNG reader does,
// (c * a + 255 * (255 - a) + 127) / 255, and reported through alphaFlattened.
//
// Refused, with the reason: a pixel that names a colour beyond the table (no guess is made
// about which colour was meant), an RLE stream that runs past its row or its image, a JPEG or
// PNG payload, and a header that claims more pixels than the bytes could hold: uncompressed
// rows must all be there, and an RLE image may claim at most 512 pixels for each byte of its
// stream (plus 65,536), the most its runs and skips can describe without being absurd. Pixels
// an RLE stream skips (by a jump, an early end of line or of the image) are colour 0.

#include <cstddef>
#include <string>

#include <vistrane/image/image.h>
#include <vistrane/io/image_file.h>

namespace vistrane::io {

// Decodes the whole BMP file in `data` into `image`, which is left empty on failure.
ImageFileResult DecodeBmp(const BYTE* data, std::size_t size, C_Image& image);

// Why an 8-bit image read from a file cannot stand: its first pixel, top row first, that names a
// colour beyond its table. Empty when there is none, or when the image has no table at all.
std::string IndexBeyondTable(const C_Image& image);

}  // namespace vistrane::io
