#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include <vistrane/blend/gray_palette.h>
#include <vistrane/image/image.h>
#include <vistrane/platform/archive.h>
#include <vistrane/platform/file.h>
#include <vistrane/platform/memory.h>

#include "support/image_support.h"

using vistrane::test::FillRandomPixels;
using vistrane::test::SameColorTable;
using vistrane::test::SamePixels;

namespace {

std::vector<BYTE> Store(C_Image& image) {
    CMemFile file;
    {
        CArchive ar(&file, CArchive::store);
        image.Serialize(ar);
    }
    return std::vector<BYTE>(file.Data(), file.Data() + file.GetLength());
}

int LoadFromBytes(C_Image& image, std::vector<BYTE> bytes) {
    CMemFile file(bytes.data(), static_cast<UINT>(bytes.size()));
    CArchive ar(&file, CArchive::load);
    return image.ReadFromArchive(ar);
}

template <typename T>
void Put(std::vector<BYTE>& bytes, size_t offset, T value) {
    std::memcpy(bytes.data() + offset, &value, sizeof(T));
}

}  // namespace

class ArchiveRoundTrip : public ::testing::TestWithParam<std::tuple<int, int, int>> {};

TEST_P(ArchiveRoundTrip, GivesBackSizeDepthColoursAndPixels) {
    const auto [width, height, nColors] = GetParam();
    C_Image image;
    if (nColors < 0) {
        ASSERT_EQ(image.Create(width, height, 1, nullptr, 0), 1);
    } else {
        ASSERT_EQ(image.Create(width, height, 0, glb_GrayPalette, nColors), 1);
        image.RGBQs()[0] = RGBQUAD{9, 99, 199, 0};
    }
    FillRandomPixels(image, static_cast<std::uint32_t>(width * 131 + height));
    const std::vector<BYTE> bytes = Store(image);
    const size_t colorBytes = nColors < 0 ? 0 : 4 * static_cast<size_t>(nColors);
    ASSERT_EQ(bytes.size(), 54 + colorBytes + image.NBytesImage());
    EXPECT_EQ(bytes[0], 'B');
    EXPECT_EQ(bytes[1], 'M');

    C_Image loaded;
    CMemFile file(const_cast<BYTE*>(bytes.data()), static_cast<UINT>(bytes.size()));
    CArchive ar(&file, CArchive::load);
    loaded.Serialize(ar);
    EXPECT_TRUE(SamePixels(image, loaded));
    EXPECT_TRUE(SameColorTable(image, loaded));
}

INSTANTIATE_TEST_SUITE_P(Shapes, ArchiveRoundTrip,
                         ::testing::Values(std::make_tuple(1, 1, -1), std::make_tuple(7, 3, -1),
                                           std::make_tuple(5, 4, 256), std::make_tuple(3, 9, 17),
                                           std::make_tuple(2, 2, 0)));

TEST(ArchiveReader, HeaderFieldsMatchTheBitmapFileLayout) {
    C_Image image;
    ASSERT_EQ(image.Create(3, 2, 0, glb_GrayPalette, 2), 1);
    const std::vector<BYTE> bytes = Store(image);
    DWORD fileSize;
    DWORD offset;
    std::memcpy(&fileSize, &bytes[2], 4);
    std::memcpy(&offset, &bytes[10], 4);
    EXPECT_EQ(offset, 54u + 8u);
    EXPECT_EQ(fileSize, offset + 8u);
    BITMAPFILEHEADER header;
    image.MakeOwnBitmapFileHeader(&header, 0);
    EXPECT_EQ(DWORD{header.bfOffBits}, 26u + 6u);  // core header and 3-byte colours
}

TEST(ArchiveReader, ZeroColoursUsedLoadsWithAnEmptyColourTable) {
    C_Image image;
    ASSERT_EQ(image.Create(4, 2, 0, nullptr, 0), 1);
    image.FillWithColorPalette(3);
    C_Image loaded;
    ASSERT_EQ(LoadFromBytes(loaded, Store(image)), 1);
    EXPECT_EQ(loaded.NColors(), 0u);
    EXPECT_EQ(loaded.GetPixelPalInd(3, 1), 3);
}

TEST(ArchiveReader, MalformedStreamsGiveZero) {
    C_Image image;
    ASSERT_EQ(image.Create(6, 5, 0, glb_GrayPalette, 256), 1);
    FillRandomPixels(image, 1);
    const std::vector<BYTE> good = Store(image);
    // A refused stream leaves the image that was there before.
    C_Image loaded, held;
    ASSERT_EQ(loaded.Create(3, 2, 1, nullptr, 0), 1);
    FillRandomPixels(loaded, 5);
    ASSERT_EQ(held.Clone(&loaded), 1);
    // Every truncation, including the middle of the pixels, is refused.
    for (size_t cut : {size_t{0}, size_t{10}, size_t{14}, size_t{53}, size_t{54}, size_t{600},
                       good.size() - 1}) {
        EXPECT_EQ(LoadFromBytes(loaded, std::vector<BYTE>(good.begin(), good.begin() + cut)), 0)
            << cut;
        EXPECT_TRUE(SamePixels(held, loaded)) << cut;
    }
    auto bad = good;
    bad[0] = 'X';
    EXPECT_EQ(LoadFromBytes(loaded, bad), 0);
    bad = good;
    Put<DWORD>(bad, 14, 12);  // header size
    EXPECT_EQ(LoadFromBytes(loaded, bad), 0);
    bad = good;
    Put<WORD>(bad, 28, 32);  // bit count
    EXPECT_EQ(LoadFromBytes(loaded, bad), 0);
    bad = good;
    Put<DWORD>(bad, 30, 1);  // compression
    EXPECT_EQ(LoadFromBytes(loaded, bad), 0);
    bad = good;
    Put<DWORD>(bad, 46, 100000);  // colours used beyond the table
    EXPECT_EQ(LoadFromBytes(loaded, bad), 0);
    bad = good;
    Put<LONG>(bad, 18, 30000);  // lying size: 2.7 GB claimed by a stream of a few hundred bytes
    Put<LONG>(bad, 22, 30000);
    EXPECT_EQ(LoadFromBytes(loaded, bad), 0);
    EXPECT_TRUE(SamePixels(held, loaded));
    bad = good;
    Put<LONG>(bad, 22, -5);  // top-down rows are not this library's layout
    EXPECT_EQ(LoadFromBytes(loaded, bad), 0);
}

TEST(ArchiveReader, SerializeRaisesCauseFiveOnAFailedRead) {
    std::vector<BYTE> junk(20, 0);
    CMemFile file(junk.data(), static_cast<UINT>(junk.size()));
    CArchive ar(&file, CArchive::load);
    C_Image image;
    try {
        image.Serialize(ar);
        FAIL() << "no exception";
    } catch (const CArchiveException& e) {
        EXPECT_EQ(e.m_cause, 5);
    }
}

TEST(MemoryBlock, SaveAndLoadRoundTrip) {
    const RGBQUAD colors[3] = {{1, 2, 3, 0}, {4, 5, 6, 0}, {7, 8, 9, 0}};
    C_Image image;
    ASSERT_EQ(image.Create(5, 3, 0, colors, 3), 1);
    FillRandomPixels(image, 7);
    BYTE* block = nullptr;
    ASSERT_EQ(image.VirtualSerializeSave(&block), 1);
    const unsigned long blockBytes = 54 + 12 + image.NBytesImage();
    C_Image loaded;
    EXPECT_EQ(loaded.VirtualSerializeLoad(block, blockBytes), 1);
    EXPECT_TRUE(SamePixels(image, loaded));
    EXPECT_TRUE(SameColorTable(image, loaded));
    C_Image trusted;
    EXPECT_EQ(trusted.VirtualSerializeLoad(block), 1);
    EXPECT_TRUE(SamePixels(image, trusted));
    EXPECT_EQ(loaded.VirtualSerializeLoad(block, blockBytes - 1), 0);
    EXPECT_EQ(loaded.VirtualSerializeLoad(block, 53), 0);
    C_Helper().SafeVirtualFree(block);
}

TEST(MemoryBlock, LoadIntoAnImageOfTheSameShapeKeepsItsStorageAndHeader) {
    C_Image image;
    ASSERT_EQ(image.Create(4, 4, 0, glb_GrayPalette, 256), 1);
    FillRandomPixels(image, 2);
    BYTE* block = nullptr;
    ASSERT_EQ(image.VirtualSerializeSave(&block), 1);
    C_Image target;
    ASSERT_EQ(target.Create(4, 4, 0, glb_GrayPalette, 100), 1);
    BYTE* bits = target.BitmapBytes();
    ASSERT_EQ(target.VirtualSerializeLoad(block), 1);
    EXPECT_EQ(target.BitmapBytes(), bits);
    EXPECT_EQ(target.NColors(), 100u);  // its own header stays
    EXPECT_TRUE(SamePixels(image, target));
    C_Helper().SafeVirtualFree(block);
}

class HandleRoundTrip : public ::testing::TestWithParam<std::tuple<int, int>> {};

TEST_P(HandleRoundTrip, KeepsPixelsThroughThePackedDepth) {
    const auto [nColors, expectedBits] = GetParam();
    C_Image image;
    ASSERT_EQ(image.Create(13, 5, nColors < 0, glb_GrayPalette, nColors < 0 ? 0 : nColors), 1);
    FillRandomPixels(image, 13);
    if (nColors > 0 && nColors < 256) {
        for (long y = 0; y < 5; ++y) {
            for (long x = 0; x < 13; ++x) {
                *image.PixelPtr(x, y) %= static_cast<BYTE>(nColors);
            }
        }
    }
    HGLOBAL handle = image.MakehDib(nullptr);
    ASSERT_NE(handle, nullptr);
    const auto* header = static_cast<const BITMAPINFOHEADER*>(GlobalLock(handle));
    EXPECT_EQ(header->biBitCount, expectedBits);
    GlobalUnlock(handle);

    C_Image loaded;
    ASSERT_NE(loaded.CreateFromhDib(handle), 0);
    EXPECT_TRUE(SamePixels(image, loaded));
    const int tableEntries =
        expectedBits == 24 ? 0 : (expectedBits == 1 ? 2 : (expectedBits == 4 ? 16 : 256));
    EXPECT_EQ(loaded.NColors(), static_cast<unsigned long>(tableEntries));
    if (nColors > 0) {
        EXPECT_EQ(std::memcmp(loaded.RGBQs(), image.RGBQs(), 4 * static_cast<size_t>(nColors)), 0);
    }
    GlobalFree(handle);
}

INSTANTIATE_TEST_SUITE_P(Depths, HandleRoundTrip,
                         ::testing::Values(std::make_tuple(-1, 24), std::make_tuple(2, 1),
                                           std::make_tuple(16, 4), std::make_tuple(3, 4),
                                           std::make_tuple(17, 8), std::make_tuple(256, 8)));

TEST(PackedHandle, RectangleSelectsTheAreaAndBadRectanglesGiveNull) {
    C_Image image;
    ASSERT_EQ(image.Create(6, 6, 1, nullptr, 0), 1);
    FillRandomPixels(image, 4);
    CRect area(1, 2, 4, 5);
    HGLOBAL handle = image.MakehDib(&area);
    ASSERT_NE(handle, nullptr);
    C_Image loaded;
    ASSERT_NE(loaded.CreateFromhDib(handle), 0);
    EXPECT_EQ(loaded.Width(), 3);
    EXPECT_EQ(loaded.Height(), 3);
    EXPECT_EQ(loaded.GetPixelColorRef(0, 0), image.GetPixelColorRef(1, 2));
    EXPECT_EQ(loaded.GetPixelColorRef(2, 2), image.GetPixelColorRef(3, 4));
    GlobalFree(handle);
    CRect empty(2, 2, 2, 5);
    EXPECT_EQ(image.MakehDib(&empty), nullptr);
    CRect outside(4, 4, 8, 8);
    EXPECT_EQ(image.MakehDib(&outside), nullptr);
    C_Image none;
    EXPECT_EQ(none.MakehDib(nullptr), nullptr);
}

TEST(PackedHandle, MalformedHandlesGiveZeroAndAnEmptyImage) {
    C_Image source;
    ASSERT_EQ(source.Create(8, 8, 0, glb_GrayPalette, 256), 1);
    HGLOBAL good = source.MakehDib(nullptr);
    ASSERT_NE(good, nullptr);
    const size_t size = GlobalSize(good);
    std::vector<BYTE> bytes(size);
    std::memcpy(bytes.data(), GlobalLock(good), size);
    GlobalUnlock(good);
    GlobalFree(good);

    auto tryLoad = [](std::vector<BYTE> data) {
        HGLOBAL h = GlobalAlloc(GMEM_MOVEABLE, data.size());
        std::memcpy(GlobalLock(h), data.data(), data.size());
        GlobalUnlock(h);
        C_Image image;
        EXPECT_EQ(image.Create(2, 2, 1, nullptr, 0), 1);
        const int result = image.CreateFromhDib(h);
        EXPECT_EQ(image.HasImage(), 0);
        GlobalFree(h);
        return result;
    };
    EXPECT_EQ(tryLoad(std::vector<BYTE>(bytes.begin(), bytes.begin() + 40)), 0);
    EXPECT_EQ(tryLoad(std::vector<BYTE>(bytes.begin(), bytes.end() - 1)), 0);
    auto bad = bytes;
    Put<WORD>(bad, 14, 16);  // bit count
    EXPECT_EQ(tryLoad(bad), 0);
    bad = bytes;
    Put<DWORD>(bad, 16, 2);  // compression
    EXPECT_EQ(tryLoad(bad), 0);
    bad = bytes;
    Put<LONG>(bad, 4, 1 << 20);  // width larger than the handle
    EXPECT_EQ(tryLoad(bad), 0);
    bad = bytes;
    Put<DWORD>(bad, 0, 108);  // header size
    EXPECT_EQ(tryLoad(bad), 0);
    C_Image image;
    EXPECT_EQ(image.CreateFromhDib(nullptr), 0);
}
