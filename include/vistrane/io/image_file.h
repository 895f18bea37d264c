#pragma once

// Image files for hosts and tools: BMP (the engine's own interchange form) and PNG.
//
// Every function fills a C_Image or writes one and returns an ImageFileResult; nothing throws.
// On failure `ok` is false, `error` says why in words a person can act on ("truncated BMP:
// expected 36 bytes of pixels, found 12", "cannot open 'x.png': No such file or directory"), and
// a loaded image is left empty. Paths are passed to the operating system as they are.
//
// What is read:
// - BMP: uncompressed files of 1, 4, 8 or 24 bits per pixel with a 40-, 108- or 124-byte info
//   header, rows bottom-up or top-down. A file in exactly the form the engine writes goes
//   through C_Image::ReadFromArchive; any other is handed over as a packed bitmap
//   (C_Image::CreateFromhDib). 1- and 4-bit files become 8-bit images. An 8-bit file whose
//   colours-used field is 0 has 256 colours, as the file format says, unless its pixels start
//   right after the header (the engine's own form of an image without colours).
// - PNG: any colour type and bit depth. 8-bit grey becomes a grey mask (C_Image::CreateMask),
//   palette files an 8-bit image with that colour table, everything else a 24-bit image.
//   16-bit samples are rounded to 8 bits and 1-, 2- and 4-bit samples expanded. Transparency
//   (an alpha channel or a tRNS chunk) is flattened onto white, each channel becoming
//   (c * a + 255 * (255 - a) + 127) / 255, and `alphaFlattened` reports that some pixel or
//   palette entry was less than opaque. Gamma and colour-space chunks are ignored: samples are
//   taken as they are.
//
// What is written:
// - BMP: C_Image::WriteToArchive, so 8-bit images keep their colour count.
// - PNG: a 24-bit image as RGB, a grey mask (C_Image::IsMask) as 8-bit grey, any other 8-bit
//   image as a palette of NColors() entries (more when a pixel indexes past them, so that every
//   index in the file has a colour). Deflate runs at its fastest level.

#include <cstddef>
#include <string>
#include <vector>

#include <vistrane/export.h>
#include <vistrane/platform/types.h>

class C_Image;

namespace vistrane {

struct ImageFileResult {
    bool ok = false;
    std::string error;            // empty when ok
    bool alphaFlattened = false;  // a loaded PNG had a pixel or colour less than opaque

    explicit operator bool() const { return ok; }
};

enum class ImageFileFormat { Unknown, Bmp, Png };

// The format named by a path's extension, ".bmp" or ".png" in any letter case.
VISTRANE_API ImageFileFormat ImageFileFormatFromPath(const std::string& path);
// The format whose signature starts the bytes ("BM" or the 8-byte PNG signature).
VISTRANE_API ImageFileFormat ImageFileFormatFromBytes(const BYTE* data, std::size_t size);

// Loads by the file's contents, whatever its name; saves by the extension.
VISTRANE_API ImageFileResult LoadImageFile(const std::string& path, C_Image& image);
VISTRANE_API ImageFileResult SaveImageFile(const std::string& path, C_Image& image);

VISTRANE_API ImageFileResult LoadBmp(const std::string& path, C_Image& image);
VISTRANE_API ImageFileResult SaveBmp(const std::string& path, C_Image& image);
VISTRANE_API ImageFileResult LoadPng(const std::string& path, C_Image& image);
VISTRANE_API ImageFileResult SavePng(const std::string& path, C_Image& image);

// The same forms in memory. The loaders only read `data`; the savers replace `out`.
VISTRANE_API ImageFileResult LoadBmpMemory(const BYTE* data, std::size_t size, C_Image& image);
VISTRANE_API ImageFileResult SaveBmpMemory(C_Image& image, std::vector<BYTE>& out);
VISTRANE_API ImageFileResult LoadPngMemory(const BYTE* data, std::size_t size, C_Image& image);
VISTRANE_API ImageFileResult SavePngMemory(C_Image& image, std::vector<BYTE>& out);

}  // namespace vistrane
