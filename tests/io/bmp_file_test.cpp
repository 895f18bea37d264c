#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include <vistrane/companion/helper.h>
#include <vistrane/image/image.h>
#include <vistrane/io/image_file.h>

#include "io/scratch_file.h"
#include "support/image_support.h"

namespace vistrane {
namespace {

using test::SameColorTable;
using test::SamePixels;

// Random indices below nColors in a new 8-bit image with a random colour table.
void MakePaletteImage(C_Image& image, long width, long height, unsigned long nColors,
                      std::uint32_t seed) {
    std::vector<RGBQUAD> colors(nColors);
    for (unsigned long i = 0; i < nColors; ++i) {
        colors[i] = {static_cast<BYTE>(i * 37 + seed), static_cast<BYTE>(i * 11),
                     static_cast<BYTE>(255 - i), 0};
    }
    ASSERT_TRUE(image.Create(width, height, 0, colors.data(), nColors));
    test::FillRandomPixels(image, seed);
    for (long y = 0; y < height; ++y) {
        for (long x = 0; x < width; ++x) {
            *image.PixelPtr(x, y) %= static_cast<BYTE>(nColors);
        }
    }
}

void StoreLE(std::vector<BYTE>& bytes, std::size_t at, std::uint32_t value, int size) {
    for (int i = 0; i < size; ++i) {
        bytes[at + i] = static_cast<BYTE>(value >> (8 * i));
    }
}

// A bitmap file as other programs write it: any header size, table length and gap before
// the pixels. `rows` are the pixel rows in file order, already padded.
struct BmpFile {
    std::int32_t width = {};
    std::int32_t height = {};
    std::uint16_t bits = {};
    std::uint32_t headerSize = 40;
    std::uint32_t colorsUsed = 0;
    std::vector<RGBQUAD> table = {};
    std::uint32_t gap = 0;
    std::vector<BYTE> rows = {};

    std::vector<BYTE> Bytes() const {
        const std::uint32_t offset = 14 + headerSize + 4 * table.size() + gap;
        std::vector<BYTE> bytes(offset + rows.size());
        bytes[0] = 'B';
        bytes[1] = 'M';
        StoreLE(bytes, 2, static_cast<std::uint32_t>(bytes.size()), 4);
        StoreLE(bytes, 10, offset, 4);
        StoreLE(bytes, 14, headerSize, 4);
        StoreLE(bytes, 18, static_cast<std::uint32_t>(width), 4);
        StoreLE(bytes, 22, static_cast<std::uint32_t>(height), 4);
        StoreLE(bytes, 26, 1, 2);
        StoreLE(bytes, 28, bits, 2);
        StoreLE(bytes, 46, colorsUsed, 4);
        std::copy(table.begin(), table.end(),
                  reinterpret_cast<RGBQUAD*>(bytes.data() + 14 + headerSize));
        std::copy(rows.begin(), rows.end(), bytes.begin() + offset);
        return bytes;
    }
};

ImageFileResult LoadBytes(const std::vector<BYTE>& bytes, C_Image& image) {
    return LoadBmpMemory(bytes.data(), bytes.size(), image);
}

class BmpRoundTrip : public ::testing::TestWithParam<long> {};

// Widths 1, 3, 5 and 7 leave 1 to 3 padding bytes in 24-bit rows and 8-bit rows.
TEST_P(BmpRoundTrip, TrueColorThroughFileIsPixelExact) {
    C_Image image;
    ASSERT_TRUE(image.Create(GetParam(), 5, 1, nullptr, 0));
    test::FillRandomPixels(image, static_cast<std::uint32_t>(GetParam()));
    const std::string path = test::ScratchPath("round_trip_24.bmp");
    ASSERT_TRUE(SaveBmp(path, image).ok);
    C_Image loaded;
    const ImageFileResult result = LoadBmp(path, loaded);
    std::remove(path.c_str());
    ASSERT_TRUE(result.ok) << result.error;
    EXPECT_FALSE(result.alphaFlattened);
    EXPECT_TRUE(SamePixels(image, loaded));
    EXPECT_EQ(loaded.NColors(), 0u);
}

TEST_P(BmpRoundTrip, PaletteKeepsColourCountAndTable) {
    C_Image image;
    MakePaletteImage(image, GetParam(), 4, 17, 3);
    std::vector<BYTE> bytes;
    ASSERT_TRUE(SaveBmpMemory(image, bytes).ok);
    C_Image loaded;
    const ImageFileResult result = LoadBytes(bytes, loaded);
    ASSERT_TRUE(result.ok) << result.error;
    EXPECT_TRUE(SamePixels(image, loaded));
    EXPECT_TRUE(SameColorTable(image, loaded));
    EXPECT_FALSE(loaded.IsMask());
}

TEST_P(BmpRoundTrip, GreyMaskStaysAMask) {
    C_Image mask;
    ASSERT_TRUE(mask.CreateMask(GetParam(), 3));
    test::FillRandomPixels(mask, 9);
    std::vector<BYTE> bytes;
    ASSERT_TRUE(SaveBmpMemory(mask, bytes).ok);
    C_Image loaded;
    ASSERT_TRUE(LoadBytes(bytes, loaded).ok);
    EXPECT_TRUE(loaded.IsMask());
    EXPECT_TRUE(SamePixels(mask, loaded));
}

INSTANTIATE_TEST_SUITE_P(OddAndEvenWidths, BmpRoundTrip, ::testing::Values(1L, 3L, 4L, 5L, 7L));

TEST(BmpSave, WritesExactlyTheEngineArchiveForm) {
    C_Image image;
    MakePaletteImage(image, 5, 3, 7, 1);
    std::vector<BYTE> saved;
    ASSERT_TRUE(SaveBmpMemory(image, saved).ok);
    BYTE* block = nullptr;
    ASSERT_TRUE(image.VirtualSerializeSave(&block));
    const std::size_t blockBytes = 54 + 4 * 7 + image.NBytesImage();
    ASSERT_EQ(saved.size(), blockBytes);
    EXPECT_EQ(std::memcmp(saved.data(), block, blockBytes), 0);
    C_Helper().SafeVirtualFree(block);
}

TEST(BmpSave, EmptyImageAndUnwritablePathFail) {
    C_Image empty;
    std::vector<BYTE> bytes;
    EXPECT_FALSE(SaveBmpMemory(empty, bytes).ok);
    C_Image image;
    ASSERT_TRUE(image.Create(2, 2, 1, nullptr, 0));
    const ImageFileResult result = SaveBmp("/nonexistent-dir/x.bmp", image);
    EXPECT_FALSE(result.ok);
    EXPECT_EQ(result.error, "cannot create '/nonexistent-dir/x.bmp': No such file or directory");
}

// The archive reader takes an 8-bit colour count of 0 as "no table"; a file in that exact form
// must keep it rather than be read with the 256 colours the file format would imply.
TEST(BmpLoad, ArchiveFormWithoutColoursKeepsNone) {
    C_Image image;
    ASSERT_TRUE(image.Create(6, 2, 0, nullptr, 0));
    test::FillRandomPixels(image, 5);
    std::vector<BYTE> bytes;
    ASSERT_TRUE(SaveBmpMemory(image, bytes).ok);
    C_Image loaded;
    ASSERT_TRUE(LoadBytes(bytes, loaded).ok);
    EXPECT_EQ(loaded.NColors(), 0u);
    EXPECT_TRUE(SamePixels(image, loaded));
}

TEST(BmpLoad, StandardEightBitWithZeroColoursUsedHas256) {
    BmpFile file{.width = 3, .height = 1, .bits = 8};
    file.table.resize(256);
    for (int i = 0; i < 256; ++i) {
        file.table[i] = {static_cast<BYTE>(i), static_cast<BYTE>(255 - i), 7, 0};
    }
    file.rows = {200, 0, 255, 0};
    C_Image loaded;
    const ImageFileResult result = LoadBytes(file.Bytes(), loaded);
    ASSERT_TRUE(result.ok) << result.error;
    EXPECT_EQ(loaded.NColors(), 256u);
    EXPECT_EQ(*loaded.PixelPtr(0, 0), 200);
    EXPECT_EQ(loaded.RGBQs()[200].rgbGreen, 55);
}

TEST(BmpLoad, FourBitWithFewColoursAndAGapBeforeThePixels) {
    BmpFile file{.width = 3, .height = 2, .bits = 4, .colorsUsed = 5, .gap = 6};
    for (BYTE i = 0; i < 5; ++i) {
        file.table.push_back({i, i, i, 0});
    }
    // Bottom row 4 0 1, top row 1 2 3; each row 2 bytes of nibbles padded to 4.
    file.rows = {0x40, 0x10, 0, 0, 0x12, 0x30, 0, 0};
    C_Image loaded;
    const ImageFileResult result = LoadBytes(file.Bytes(), loaded);
    ASSERT_TRUE(result.ok) << result.error;
    EXPECT_EQ(loaded.BitCount(), 8);
    EXPECT_EQ(loaded.NColors(), 5u);
    const BYTE top[] = {1, 2, 3};
    const BYTE bottom[] = {4, 0, 1};
    EXPECT_EQ(std::memcmp(loaded.PixelPtr(0, 0), top, 3), 0);
    EXPECT_EQ(std::memcmp(loaded.PixelPtr(0, 1), bottom, 3), 0);
}

TEST(BmpLoad, OneBitExpandsToTwoColours) {
    BmpFile file{.width = 10, .height = 1, .bits = 1};
    file.table = {{0, 0, 0, 0}, {255, 255, 255, 0}};
    file.rows = {0xAC, 0xC0, 0, 0};  // 1010 1100 11
    C_Image loaded;
    ASSERT_TRUE(LoadBytes(file.Bytes(), loaded).ok);
    EXPECT_EQ(loaded.NColors(), 2u);
    const BYTE expected[] = {1, 0, 1, 0, 1, 1, 0, 0, 1, 1};
    EXPECT_EQ(std::memcmp(loaded.PixelPtr(0, 0), expected, 10), 0);
}

TEST(BmpLoad, TopDownRowsAndLargerHeadersAreAccepted) {
    for (const std::uint32_t headerSize : {40u, 108u, 124u}) {
        BmpFile file{.width = 1, .height = -2, .bits = 24, .headerSize = headerSize};
        file.rows = {1, 2, 3, 0, 4, 5, 6, 0};  // top row first
        C_Image loaded;
        const ImageFileResult result = LoadBytes(file.Bytes(), loaded);
        ASSERT_TRUE(result.ok) << headerSize << ": " << result.error;
        EXPECT_EQ(loaded.Height(), 2);
        EXPECT_EQ(loaded.PixelPtr(0, 0)[0], 1) << headerSize;
        EXPECT_EQ(loaded.PixelPtr(0, 1)[2], 6) << headerSize;
    }
}

TEST(BmpLoad, MissingFileNamesThePathAndTheReason) {
    C_Image image;
    const ImageFileResult result = LoadBmp("/nonexistent-dir/in.bmp", image);
    EXPECT_FALSE(result.ok);
    EXPECT_EQ(result.error, "cannot open '/nonexistent-dir/in.bmp': No such file or directory");
}

struct Corruption {
    const char* name;
    std::function<void(std::vector<BYTE>&)> apply;
    const char* expected;  // the whole message, or its start when it ends in "..."
};

void PrintTo(const Corruption& corruption, std::ostream* out) {
    *out << corruption.name;
}

// A 3 x 3 24-bit file: 54 bytes of header, then 3 rows of 12 bytes.
std::vector<BYTE> SmallTrueColorFile() {
    BmpFile file{.width = 3, .height = 3, .bits = 24};
    file.rows.assign(36, 0x5A);
    return file.Bytes();
}

class BmpCorruption : public ::testing::TestWithParam<Corruption> {};

TEST_P(BmpCorruption, FailsWithAReasonAndLeavesTheImageEmpty) {
    std::vector<BYTE> bytes = SmallTrueColorFile();
    GetParam().apply(bytes);
    C_Image image;
    ASSERT_TRUE(image.Create(2, 2, 1, nullptr, 0));
    const ImageFileResult result = LoadBytes(bytes, image);
    EXPECT_FALSE(result.ok);
    const std::string expected = GetParam().expected;
    if (expected.ends_with("...")) {
        EXPECT_EQ(result.error.substr(0, expected.size() - 3),
                  expected.substr(0, expected.size() - 3));
    } else {
        EXPECT_EQ(result.error, expected);
    }
    EXPECT_FALSE(image.HasImage());
}

INSTANTIATE_TEST_SUITE_P(
    Headers, BmpCorruption,
    ::testing::Values(
        Corruption{"Empty", [](auto& b) { b.clear(); }, "not a BMP file"},
        Corruption{"BadMagic", [](auto& b) { b[1] = 'X'; }, "not a BMP file"},
        Corruption{"CutInFileHeader", [](auto& b) { b.resize(10); },
                   "truncated BMP: the file is 10 bytes, shorter than the 54-byte header"},
        Corruption{"CutInInfoHeader", [](auto& b) { b.resize(40); }, "truncated BMP..."},
        Corruption{"CutInPixels", [](auto& b) { b.resize(54 + 12); },
                   "truncated BMP: expected 36 bytes of pixels, found 12"},
        Corruption{"CutBeforeLastByte", [](auto& b) { b.pop_back(); },
                   "truncated BMP: expected 36 bytes of pixels, found 35"},
        Corruption{"HugeWidth", [](auto& b) { StoreLE(b, 18, 0x7FFFFFFF, 4); },
                   "truncated BMP: expected 19327352832 bytes of pixels, found 36"},
        Corruption{"HugeWidthAndHeight",
                   [](auto& b) {
                       StoreLE(b, 18, 70000, 4);
                       StoreLE(b, 22, 70000, 4);
                   },
                   "truncated BMP..."},
        Corruption{"ZeroWidth", [](auto& b) { StoreLE(b, 18, 0, 4); }, "corrupt BMP: width 0"},
        Corruption{"ZeroHeight", [](auto& b) { StoreLE(b, 22, 0, 4); }, "corrupt BMP: height 0"},
        Corruption{"SixtyFourBits", [](auto& b) { StoreLE(b, 28, 64, 2); },
                   "unsupported BMP: 64 bits per pixel"},
        Corruption{"RunLengthOnTrueColour", [](auto& b) { StoreLE(b, 30, 1, 4); },
                   "unsupported BMP: compression 1 with 24 bits per pixel"},
        Corruption{"JpegPayload", [](auto& b) { StoreLE(b, 30, 4, 4); },
                   "BMP holds a JPEG stream..."},
        Corruption{"PngPayload", [](auto& b) { StoreLE(b, 30, 5, 4); },
                   "BMP holds a PNG stream..."},
        Corruption{"TwoPlanes", [](auto& b) { StoreLE(b, 26, 2, 2); },
                   "corrupt BMP: 2 planes (must be 1)"},
        Corruption{"OddHeaderSize", [](auto& b) { StoreLE(b, 14, 20, 4); },
                   "unsupported BMP: 20-byte info header..."},
        Corruption{"TooManyColours",
                   [](auto& b) {
                       StoreLE(b, 28, 8, 2);
                       StoreLE(b, 46, 300, 4);
                   },
                   "corrupt BMP: 300 colours for 8 bits per pixel (at most 256)"},
        Corruption{"PixelsInsideTable",
                   [](auto& b) {
                       StoreLE(b, 28, 8, 2);
                       StoreLE(b, 46, 16, 4);
                       StoreLE(b, 10, 60, 4);
                   },
                   "corrupt BMP: pixels start at byte 60..."},
        Corruption{"CutInColourTable",
                   [](auto& b) {
                       StoreLE(b, 28, 8, 2);
                       StoreLE(b, 10, 54 + 1024, 4);
                   },
                   "truncated BMP: expected 1024 bytes of colour table, found 36"}),
    [](const auto& info) { return std::string(info.param.name); });

// Every prefix of a valid file must fail cleanly, in both the archive form and the packed form.
TEST(BmpTruncation, EveryPrefixFails) {
    C_Image none;
    EXPECT_EQ(LoadBmpMemory(nullptr, 0, none).error, "not a BMP file");
    C_Image palette;
    MakePaletteImage(palette, 5, 3, 7, 11);
    std::vector<BYTE> archiveForm;
    ASSERT_TRUE(SaveBmpMemory(palette, archiveForm).ok);
    BmpFile fourBit{.width = 5, .height = 2, .bits = 4};
    fourBit.table.resize(16);
    fourBit.rows.assign(8, 0x21);
    for (const std::vector<BYTE>& bytes : {archiveForm, fourBit.Bytes()}) {
        for (std::size_t size = 0; size < bytes.size(); ++size) {
            C_Image image;
            const ImageFileResult result = LoadBmpMemory(bytes.data(), size, image);
            EXPECT_FALSE(result.ok) << "cut at " << size;
            EXPECT_FALSE(result.error.empty()) << "cut at " << size;
            EXPECT_FALSE(image.HasImage()) << "cut at " << size;
        }
    }
}

}  // namespace
}  // namespace vistrane
