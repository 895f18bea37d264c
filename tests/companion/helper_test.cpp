#include <gtest/gtest.h>

#include <vector>

#include <vistrane/companion/helper.h>

TEST(CHelper, RowLengthRoundsBitsUpToWholeWords) {
    C_Helper helper;
    EXPECT_EQ(helper.CalcNBytesScan(3, 8), 4);
    EXPECT_EQ(helper.CalcNBytesScan(4, 8), 4);
    EXPECT_EQ(helper.CalcNBytesScan(5, 8), 8);
    EXPECT_EQ(helper.CalcNBytesScan(3, 24), 12);
    EXPECT_EQ(helper.CalcNBytesScan(4, 24), 12);
    EXPECT_EQ(helper.CalcNBytesScan(33, 1), 8);
    EXPECT_EQ(helper.CalcNBytesScan(9, 4), 8);
}

TEST(CHelper, FillBIHWritesAPositiveHeightAndBothColourCounts) {
    C_Helper helper;
    BITMAPINFOHEADER header;
    helper.FillBIH(&header, 5, -7, 8, 16);
    EXPECT_EQ(header.biSize, 40u);
    EXPECT_EQ(header.biWidth, 5);
    EXPECT_EQ(header.biHeight, 7);
    EXPECT_EQ(header.biPlanes, 1);
    EXPECT_EQ(header.biBitCount, 8);
    EXPECT_EQ(header.biCompression, BI_RGB);
    EXPECT_EQ(header.biSizeImage, 56u);
    EXPECT_EQ(header.biClrUsed, 16u);
    EXPECT_EQ(header.biClrImportant, 16u);
}

TEST(CHelper, ScanConvertersPackMostSignificantBitsFirstAndRoundTrip) {
    C_Helper helper;
    const std::vector<BYTE> bits = {1, 0, 1, 1, 0, 0, 0, 1, 1, 0, 1};
    std::vector<BYTE> packed(2, 0xEE);
    helper.Convert8BitTo1BitScan(packed.data(), bits.data(), 11);
    EXPECT_EQ(packed[0], 0xB1);
    EXPECT_EQ(packed[1], 0xA0);  // unused low bits are zero
    std::vector<BYTE> unpacked(11);
    helper.Convert1BitTo8BitScan(unpacked.data(), packed.data(), 11);
    EXPECT_EQ(unpacked, bits);

    const std::vector<BYTE> nibbles = {0x1, 0xF, 0x7, 0x0, 0xC};
    std::vector<BYTE> packed4(3, 0xEE);
    helper.Convert8BitTo4BitScan(packed4.data(), nibbles.data(), 5);
    EXPECT_EQ(packed4[0], 0x1F);
    EXPECT_EQ(packed4[1], 0x70);
    EXPECT_EQ(packed4[2], 0xC0);
    std::vector<BYTE> unpacked4(5);
    helper.Convert4BitTo8BitScan(unpacked4.data(), packed4.data(), 5);
    EXPECT_EQ(unpacked4, nibbles);
}

TEST(CHelper, RandomStaysInItsInclusiveRangeAndRepeatsAfterSeeding) {
    C_Helper helper;
    C_Helper::SeedRandom(1234);
    std::vector<int> first;
    bool sawZero = false;
    bool sawMax = false;
    for (int i = 0; i < 2000; ++i) {
        const int r = helper.Random0Max(100);
        ASSERT_GE(r, 0);
        ASSERT_LE(r, 100);
        sawZero |= r == 0;
        sawMax |= r == 100;
        first.push_back(r);
    }
    EXPECT_TRUE(sawZero);
    EXPECT_TRUE(sawMax);
    C_Helper::SeedRandom(1234);
    for (int expected : first) {
        ASSERT_EQ(helper.Random0Max(100), expected);
    }
    EXPECT_EQ(helper.Random0Max(0), 0);
}

TEST(CHelper, PercentagesMapOntoTheByteRange) {
    C_Helper helper;
    EXPECT_EQ(helper.XLatePercentTo255(0), 0);
    EXPECT_EQ(helper.XLatePercentTo255(100), 255);
    EXPECT_EQ(helper.XLatePercentTo255(50), 128);
    EXPECT_EQ(helper.XLatePercentTo255(-5), 0);
    EXPECT_EQ(helper.XLatePercentTo255(180), 255);
}

TEST(CHelper, FitIfGreaterKeepsProportionsInsideTheBox) {
    C_Helper helper;
    LONG w = 400;
    LONG h = 300;
    EXPECT_EQ(helper.FitIfGreater(&w, &h, 500, 500), 0);
    EXPECT_EQ(w, 400);
    EXPECT_EQ(h, 300);
    EXPECT_EQ(helper.FitIfGreater(&w, &h, 200, 200), 1);
    EXPECT_EQ(w, 200);
    EXPECT_EQ(h, 150);
    w = 300;
    h = 1000;
    EXPECT_EQ(helper.FitIfGreater(&w, &h, 200, 200), 1);
    EXPECT_EQ(w, 60);
    EXPECT_EQ(h, 200);
    w = 10000;
    h = 1;
    EXPECT_EQ(helper.FitIfGreater(&w, &h, 100, 100), 1);
    EXPECT_EQ(w, 100);
    EXPECT_EQ(h, 1);  // never collapses to nothing
}

TEST(CHelper, CreatePaletteCopiesEntriesAndRefusesBadCounts) {
    C_Helper helper;
    const RGBQUAD colors[2] = {{1, 2, 3, 9}, {40, 50, 60, 9}};
    CPalette palette;
    ASSERT_EQ(helper.CreatePalette(&palette, colors, 2), 1);
    PALETTEENTRY entries[2];
    ASSERT_EQ(palette.GetPaletteEntries(0, 2, entries), 2u);
    EXPECT_EQ(entries[1].peRed, 60);
    EXPECT_EQ(entries[1].peGreen, 50);
    EXPECT_EQ(entries[1].peBlue, 40);
    EXPECT_EQ(entries[1].peFlags, 0);
    CPalette empty;
    EXPECT_EQ(helper.CreatePalette(&empty, colors, 0), 0);
    EXPECT_EQ(helper.CreatePalette(&empty, colors, 257), 0);
}
