#include <gtest/gtest.h>
#include <png.h>

#include <csetjmp>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include <vistrane/image/image.h>
#include <vistrane/io/image_file.h>

#include "io/scratch_file.h"
#include "support/image_support.h"

namespace vistrane {
namespace {

using test::SameColorTable;
using test::SamePixels;

// A PNG written with libpng directly, for the colour types and depths the library never writes.
// `rows` hold each row as PNG stores it (packed samples, big-endian 16-bit).
struct PngFile {
    png_uint_32 width = {};
    png_uint_32 height = {};
    int colorType = {};
    int bitDepth = 8;
    bool interlaced = false;
    std::vector<png_color> palette = {};
    std::vector<png_byte> paletteAlpha = {};
    std::vector<std::vector<png_byte>> rows = {};
};

void AppendBytes(png_structp png, png_bytep data, std::size_t count) {
    auto* out = static_cast<std::vector<BYTE>*>(png_get_io_ptr(png));
    out->insert(out->end(), data, data + count);
}

// Nothing here allocates in C++ after setjmp, so libpng's longjmp skips no destructor.
bool WritePng(png_structp png, png_infop info, const PngFile& file) {
    if (setjmp(png_jmpbuf(png))) {
        return false;
    }
    png_set_IHDR(png, info, file.width, file.height, file.bitDepth, file.colorType,
                 file.interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    if (!file.palette.empty()) {
        png_set_PLTE(png, info, file.palette.data(), static_cast<int>(file.palette.size()));
    }
    if (!file.paletteAlpha.empty()) {
        png_set_tRNS(png, info, file.paletteAlpha.data(),
                     static_cast<int>(file.paletteAlpha.size()), nullptr);
    }
    png_write_info(png, info);
    const int passes = png_set_interlace_handling(png);
    for (int pass = 0; pass < passes; ++pass) {
        for (const std::vector<png_byte>& row : file.rows) {
            png_write_row(png, row.data());
        }
    }
    png_write_end(png, nullptr);
    return true;
}

std::vector<BYTE> Encode(const PngFile& file) {
    std::vector<BYTE> out;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_set_write_fn(png, &out, AppendBytes, nullptr);
    const bool written = WritePng(png, info, file);
    png_destroy_write_struct(&png, &info);
    EXPECT_TRUE(written);
    return out;
}

ImageFileResult Decode(const std::vector<BYTE>& bytes, C_Image& image) {
    return LoadPngMemory(bytes.data(), bytes.size(), image);
}

std::uint32_t Crc32(const BYTE* data, std::size_t size) {
    std::uint32_t crc = 0xFFFFFFFFu;
    for (std::size_t i = 0; i < size; ++i) {
        crc ^= data[i];
        for (int bit = 0; bit < 8; ++bit) {
            crc = (crc >> 1) ^ (0xEDB88320u & (0u - (crc & 1)));
        }
    }
    return ~crc;
}

std::uint32_t LoadBE(const std::vector<BYTE>& bytes, std::size_t at) {
    return std::uint32_t{bytes[at]} << 24 | std::uint32_t{bytes[at + 1]} << 16 |
           std::uint32_t{bytes[at + 2]} << 8 | bytes[at + 3];
}

void StoreBE(std::vector<BYTE>& bytes, std::size_t at, std::uint32_t value) {
    for (int i = 0; i < 4; ++i) {
        bytes[at + i] = static_cast<BYTE>(value >> (24 - 8 * i));
    }
}

// The offset of a chunk's length field; chunks start after the 8-byte signature.
std::size_t FindChunk(const std::vector<BYTE>& bytes, const char* type) {
    for (std::size_t at = 8; at + 12 <= bytes.size(); at += 12 + LoadBE(bytes, at)) {
        if (std::memcmp(bytes.data() + at + 4, type, 4) == 0) {
            return at;
        }
    }
    ADD_FAILURE() << "no " << type << " chunk";
    return 8;
}

// Makes the chunk's CRC right again after its data was edited, so that libpng reaches the data.
void FixCrc(std::vector<BYTE>& bytes, std::size_t chunk) {
    const std::uint32_t length = LoadBE(bytes, chunk);
    StoreBE(bytes, chunk + 8 + length, Crc32(bytes.data() + chunk + 4, length + 4));
}

BYTE ColorType(const std::vector<BYTE>& bytes) {
    return bytes[25];
}

class PngRoundTrip : public ::testing::TestWithParam<long> {};

TEST_P(PngRoundTrip, TrueColorIsPixelExactAndWrittenAsRgb) {
    C_Image image;
    ASSERT_TRUE(image.Create(GetParam(), 6, 1, nullptr, 0));
    test::FillRandomPixels(image, static_cast<std::uint32_t>(GetParam()) + 20);
    std::vector<BYTE> bytes;
    ASSERT_TRUE(SavePngMemory(image, bytes).ok);
    EXPECT_EQ(ColorType(bytes), PNG_COLOR_TYPE_RGB);
    C_Image loaded;
    const ImageFileResult result = Decode(bytes, loaded);
    ASSERT_TRUE(result.ok) << result.error;
    EXPECT_FALSE(result.alphaFlattened);
    EXPECT_TRUE(SamePixels(image, loaded));
}

TEST_P(PngRoundTrip, PaletteKeepsItsColours) {
    C_Image image;
    RGBQUAD colors[17];
    for (BYTE i = 0; i < 17; ++i) {
        colors[i] = {static_cast<BYTE>(i * 15), static_cast<BYTE>(200 - i), static_cast<BYTE>(i),
                     0};
    }
    ASSERT_TRUE(image.Create(GetParam(), 3, 0, colors, 17));
    for (long y = 0; y < 3; ++y) {
        for (long x = 0; x < GetParam(); ++x) {
            *image.PixelPtr(x, y) = static_cast<BYTE>((x * 5 + y * 3) % 17);
        }
    }
    std::vector<BYTE> bytes;
    ASSERT_TRUE(SavePngMemory(image, bytes).ok);
    EXPECT_EQ(ColorType(bytes), PNG_COLOR_TYPE_PALETTE);
    C_Image loaded;
    ASSERT_TRUE(Decode(bytes, loaded).ok);
    EXPECT_TRUE(SamePixels(image, loaded));
    EXPECT_TRUE(SameColorTable(image, loaded));
}

TEST_P(PngRoundTrip, GreyMaskIsWrittenAsGreyAndComesBackAMask) {
    C_Image mask;
    ASSERT_TRUE(mask.CreateMask(GetParam(), 4));
    test::FillRandomPixels(mask, 77);
    std::vector<BYTE> bytes;
    ASSERT_TRUE(SavePngMemory(mask, bytes).ok);
    EXPECT_EQ(ColorType(bytes), PNG_COLOR_TYPE_GRAY);
    C_Image loaded;
    ASSERT_TRUE(Decode(bytes, loaded).ok);
    EXPECT_TRUE(loaded.IsMask());
    EXPECT_TRUE(SamePixels(mask, loaded));
}

INSTANTIATE_TEST_SUITE_P(OddAndEvenWidths, PngRoundTrip, ::testing::Values(1L, 2L, 3L, 5L, 33L));

TEST(PngSave, ThroughAFileAndIntoAMissingDirectory) {
    C_Image image;
    ASSERT_TRUE(image.Create(7, 3, 1, nullptr, 0));
    test::FillRandomPixels(image, 8);
    const std::string path = test::ScratchPath("round_trip.png");
    ASSERT_TRUE(SavePng(path, image).ok);
    C_Image loaded;
    const ImageFileResult result = LoadPng(path, loaded);
    std::remove(path.c_str());
    ASSERT_TRUE(result.ok) << result.error;
    EXPECT_TRUE(SamePixels(image, loaded));
    EXPECT_EQ(SavePng("/nonexistent-dir/x.png", image).error,
              "cannot create '/nonexistent-dir/x.png': No such file or directory");
}

// Index 9 in a 3-colour image still needs a colour in the file: entries up to 9 are written
// from the image's (always 256-entry) table, and the loaded image has 10 colours.
TEST(PngSave, PaletteCoversEveryIndexUsed) {
    const RGBQUAD colors[3] = {{1, 2, 3, 0}, {4, 5, 6, 0}, {7, 8, 9, 0}};
    C_Image image;
    ASSERT_TRUE(image.Create(4, 2, 0, colors, 3));
    *image.PixelPtr(3, 1) = 9;
    *image.PixelPtr(1, 0) = 2;
    std::vector<BYTE> bytes;
    ASSERT_TRUE(SavePngMemory(image, bytes).ok);
    C_Image loaded;
    const ImageFileResult result = Decode(bytes, loaded);
    ASSERT_TRUE(result.ok) << result.error;
    EXPECT_EQ(loaded.NColors(), 10u);
    EXPECT_EQ(std::memcmp(loaded.RGBQs(), colors, sizeof colors), 0);
    EXPECT_TRUE(SamePixels(image, loaded));
}

TEST(PngLoad, RgbaIsFlattenedOntoWhite) {
    PngFile file{.width = 3, .height = 1, .colorType = PNG_COLOR_TYPE_RGBA};
    file.rows = {{200, 100, 0, 128, 10, 20, 30, 0, 1, 2, 3, 255}};
    C_Image loaded;
    const ImageFileResult result = Decode(Encode(file), loaded);
    ASSERT_TRUE(result.ok) << result.error;
    EXPECT_TRUE(result.alphaFlattened);
    ASSERT_TRUE(loaded.IsTrueColor());
    // (c * a + 255 * (255 - a) + 127) / 255 with a = 128: red (25600 + 32385 + 127) / 255 = 227,
    // green (12800 + 32512) / 255 = 177, blue 32512 / 255 = 127. Alpha 0 is white, 255 is c.
    const BYTE expected[] = {127, 177, 227, 255, 255, 255, 3, 2, 1};
    EXPECT_EQ(std::memcmp(loaded.PixelPtr(0, 0), expected, sizeof expected), 0);
}

TEST(PngLoad, OpaqueAlphaIsNotReportedAsFlattened) {
    PngFile file{.width = 1, .height = 1, .colorType = PNG_COLOR_TYPE_RGBA};
    file.rows = {{9, 8, 7, 255}};
    C_Image loaded;
    const ImageFileResult result = Decode(Encode(file), loaded);
    ASSERT_TRUE(result.ok) << result.error;
    EXPECT_FALSE(result.alphaFlattened);
    EXPECT_EQ(loaded.PixelPtr(0, 0)[0], 7);
}

TEST(PngLoad, GreyWithAlphaBecomesTrueColour) {
    PngFile file{.width = 1, .height = 1, .colorType = PNG_COLOR_TYPE_GRAY_ALPHA};
    file.rows = {{100, 51}};  // (5100 + 255 * 204 + 127) / 255 = 224
    C_Image loaded;
    ASSERT_TRUE(Decode(Encode(file), loaded).ok);
    ASSERT_TRUE(loaded.IsTrueColor());
    const BYTE expected[] = {224, 224, 224};
    EXPECT_EQ(std::memcmp(loaded.PixelPtr(0, 0), expected, 3), 0);
}

TEST(PngLoad, PaletteTransparencyIsFlattenedInTheTable) {
    PngFile file{.width = 2, .height = 1, .colorType = PNG_COLOR_TYPE_PALETTE};
    file.palette = {{255, 0, 0}, {0, 0, 255}};
    file.paletteAlpha = {128};
    file.rows = {{1, 0}};
    C_Image loaded;
    const ImageFileResult result = Decode(Encode(file), loaded);
    ASSERT_TRUE(result.ok) << result.error;
    EXPECT_TRUE(result.alphaFlattened);
    ASSERT_EQ(loaded.NColors(), 2u);
    // Entry 0, red at alpha 128: red (32640 + 32512) / 255 = 255, green and blue 127.
    const RGBQUAD expected[] = {{127, 127, 255, 0}, {255, 0, 0, 0}};
    EXPECT_EQ(std::memcmp(loaded.RGBQs(), expected, sizeof expected), 0);
    EXPECT_EQ(*loaded.PixelPtr(0, 0), 1);
}

TEST(PngLoad, SixteenBitSamplesAreScaledToEight) {
    PngFile file{.width = 1, .height = 1, .colorType = PNG_COLOR_TYPE_RGB, .bitDepth = 16};
    file.rows = {{0x80, 0x80, 0xFF, 0xFF, 0x00, 0x00}};  // 128 * 257, 65535, 0
    C_Image loaded;
    ASSERT_TRUE(Decode(Encode(file), loaded).ok);
    const BYTE expected[] = {0, 255, 128};
    EXPECT_EQ(std::memcmp(loaded.PixelPtr(0, 0), expected, 3), 0);
}

TEST(PngLoad, LowBitDepthsAreExpanded) {
    PngFile grey{.width = 10, .height = 1, .colorType = PNG_COLOR_TYPE_GRAY, .bitDepth = 1};
    grey.rows = {{0xAC, 0xC0}};  // 1010 1100 11
    C_Image mask;
    ASSERT_TRUE(Decode(Encode(grey), mask).ok);
    EXPECT_TRUE(mask.IsMask());
    const BYTE levels[] = {255, 0, 255, 0, 255, 255, 0, 0, 255, 255};
    EXPECT_EQ(std::memcmp(mask.PixelPtr(0, 0), levels, sizeof levels), 0);

    PngFile palette{.width = 5, .height = 1, .colorType = PNG_COLOR_TYPE_PALETTE, .bitDepth = 2};
    palette.palette = {{0, 0, 0}, {1, 1, 1}, {2, 2, 2}, {3, 3, 3}};
    palette.rows = {{0x1B, 0x80}};  // 00 01 10 11 10
    C_Image indexed;
    ASSERT_TRUE(Decode(Encode(palette), indexed).ok);
    EXPECT_EQ(indexed.NColors(), 4u);
    const BYTE indices[] = {0, 1, 2, 3, 2};
    EXPECT_EQ(std::memcmp(indexed.PixelPtr(0, 0), indices, sizeof indices), 0);
}

TEST(PngLoad, InterlacedEqualsProgressive) {
    PngFile file{.width = 9, .height = 7, .colorType = PNG_COLOR_TYPE_RGB};
    for (png_uint_32 y = 0; y < file.height; ++y) {
        std::vector<png_byte> row(27);
        for (std::size_t i = 0; i < row.size(); ++i) {
            row[i] = static_cast<png_byte>(i * 31 + y * 17);
        }
        file.rows.push_back(row);
    }
    C_Image progressive;
    ASSERT_TRUE(Decode(Encode(file), progressive).ok);
    file.interlaced = true;
    C_Image interlaced;
    ASSERT_TRUE(Decode(Encode(file), interlaced).ok);
    EXPECT_TRUE(SamePixels(progressive, interlaced));
}

std::vector<BYTE> SmallRgbPng() {
    PngFile file{.width = 5, .height = 3, .colorType = PNG_COLOR_TYPE_RGB};
    file.rows.assign(3, std::vector<png_byte>(15, 0x33));
    file.rows[1][4] = 0xF0;
    return Encode(file);
}

void ExpectRefused(const std::vector<BYTE>& bytes, const std::string& messageStart) {
    C_Image image;
    ASSERT_TRUE(image.Create(2, 2, 1, nullptr, 0));
    const ImageFileResult result = Decode(bytes, image);
    EXPECT_FALSE(result.ok);
    EXPECT_EQ(result.error.substr(0, messageStart.size()), messageStart) << result.error;
    EXPECT_FALSE(image.HasImage());
}

TEST(PngCorruption, NotAPng) {
    ExpectRefused({}, "not a PNG file");
    ExpectRefused({'B', 'M', 0, 0, 0, 0, 0, 0, 0, 0}, "not a PNG file");
}

TEST(PngCorruption, EveryPrefixFails) {
    const std::vector<BYTE> bytes = SmallRgbPng();
    for (std::size_t size = 0; size < bytes.size(); ++size) {
        SCOPED_TRACE("cut at " + std::to_string(size));
        ExpectRefused(std::vector<BYTE>(bytes.begin(), bytes.begin() + static_cast<long>(size)),
                      size < 8 ? "not a PNG file" : "truncated PNG: the data ends after");
    }
}

TEST(PngCorruption, BadHeaderChecksum) {
    std::vector<BYTE> bytes = SmallRgbPng();
    bytes[FindChunk(bytes, "IHDR") + 8] ^= 0x01;
    ExpectRefused(bytes, "corrupt PNG: IHDR: CRC error");
}

// A header that claims more pixels than the compressed data can hold is refused before the
// image is allocated.
TEST(PngCorruption, HugeSizes) {
    std::vector<BYTE> bytes = SmallRgbPng();
    const std::size_t header = FindChunk(bytes, "IHDR");
    StoreBE(bytes, header + 8, 70000);
    StoreBE(bytes, header + 12, 70000);
    FixCrc(bytes, header);
    ExpectRefused(bytes, "corrupt PNG: 70000 x 70000 pixels cannot come from");

    StoreBE(bytes, header + 8, 0x7FFFFFFF);
    FixCrc(bytes, header);
    ExpectRefused(bytes, "corrupt PNG: ");
}

TEST(PngCorruption, DamagedCompressedData) {
    for (const std::size_t offset : {0u, 2u, 5u}) {
        std::vector<BYTE> bytes = SmallRgbPng();
        const std::size_t data = FindChunk(bytes, "IDAT");
        bytes[data + 8 + offset] ^= 0x5A;
        FixCrc(bytes, data);
        SCOPED_TRACE("byte " + std::to_string(offset));
        ExpectRefused(bytes, "corrupt PNG: ");
    }
}

TEST(PngLoad, MissingFileNamesThePathAndTheReason) {
    C_Image image;
    EXPECT_EQ(LoadPng("/nonexistent-dir/in.png", image).error,
              "cannot open '/nonexistent-dir/in.png': No such file or directory");
}

}  // namespace
}  // namespace vistrane
