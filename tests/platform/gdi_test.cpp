#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include <vistrane/platform/gdi.h>
#include <vistrane/platform/section.h>

namespace {

// A BITMAPINFO with room for a full colour table, as the engine lays one out.
struct Info {
    BITMAPINFOHEADER header;
    RGBQUAD colors[256];
};

Info MakeInfo(LONG width, LONG height, WORD bitCount) {
    Info info{};
    info.header = {sizeof(BITMAPINFOHEADER), width, height, 1, bitCount, BI_RGB, 0, 0, 0, 0, 0};
    return info;
}

HBITMAP MakeDib(const Info& info, HANDLE section, DWORD offset, void** bits = nullptr) {
    return CreateDIBSection(nullptr, reinterpret_cast<const BITMAPINFO*>(&info), DIB_RGB_COLORS,
                            bits, section, offset);
}

struct Section {
    explicit Section(DWORD bytes) : handle(CreateSharedSection(bytes, &view)) {}
    ~Section() { CloseSharedSection(handle); }
    BYTE* bytes() const { return static_cast<BYTE*>(view); }
    void* view = nullptr;
    HANDLE handle;
};

BOOL MakePalette(CPalette& palette, const std::vector<PALETTEENTRY>& entries) {
    std::vector<BYTE> record(sizeof(LOGPALETTE) + entries.size() * sizeof(PALETTEENTRY));
    auto* log = reinterpret_cast<LOGPALETTE*>(record.data());
    log->palVersion = 0x300;
    log->palNumEntries = static_cast<WORD>(entries.size());
    if (!entries.empty()) {
        std::memcpy(log->palPalEntry, entries.data(), entries.size() * sizeof(PALETTEENTRY));
    }
    return palette.CreatePalette(log);
}

}  // namespace

TEST(CreateDibSection, RefusesABitmapThatOverrunsItsSection) {
    // 10 x 10 at 8 bits: rows of 10 bytes padded to 12, 120 bytes after a 1064-byte header.
    Section section(1064 + 120);
    ASSERT_NE(section.handle, 0);
    void* bits = &bits;
    EXPECT_EQ(MakeDib(MakeInfo(10, 10, 8), section.handle, 1068, &bits), nullptr);
    EXPECT_EQ(bits, nullptr);
    EXPECT_EQ(MakeDib(MakeInfo(10, 11, 8), section.handle, 1064), nullptr);
    EXPECT_EQ(MakeDib(MakeInfo(40, 10, 24), section.handle, 0), nullptr);  // 1200 bytes
    // 97 pixels at 1 bit need 13 bytes, padded to 16: 74 rows fill the section exactly.
    EXPECT_EQ(MakeDib(MakeInfo(97, 75, 1), section.handle, 0), nullptr);
    EXPECT_TRUE(DeleteObject(MakeDib(MakeInfo(97, 74, 1), section.handle, 0)));
    // Sizes whose 32-bit arithmetic would wrap around to something small.
    EXPECT_EQ(MakeDib(MakeInfo(0x40000000, 4, 32), section.handle, 0), nullptr);
    EXPECT_EQ(MakeDib(MakeInfo(10, 10, 8), section.handle, 0xFFFFFFF0u), nullptr);

    HBITMAP exact = MakeDib(MakeInfo(10, 10, 8), section.handle, 1064, &bits);
    ASSERT_NE(exact, nullptr);
    EXPECT_EQ(bits, section.bytes() + 1064);
    EXPECT_TRUE(DeleteObject(exact));
}

TEST(CreateDibSection, RefusesHeadersItCannotDraw) {
    Section section(1 << 16);
    ASSERT_NE(section.handle, 0);
    std::vector<Info> bad(8, MakeInfo(4, 4, 8));
    bad[0].header.biSize = 12;
    bad[1].header.biWidth = 0;
    bad[2].header.biHeight = 0;
    bad[3].header.biHeight = -4;
    bad[4].header.biPlanes = 2;
    bad[5].header.biBitCount = 16;
    bad[6].header.biBitCount = 2;
    bad[7].header.biCompression = 1;
    for (size_t i = 0; i < bad.size(); ++i) {
        EXPECT_EQ(MakeDib(bad[i], section.handle, 0), nullptr) << "case " << i;
    }
    const Info good = MakeInfo(4, 4, 8);
    const auto* goodInfo = reinterpret_cast<const BITMAPINFO*>(&good);
    EXPECT_EQ(CreateDIBSection(nullptr, nullptr, DIB_RGB_COLORS, nullptr, section.handle, 0),
              nullptr);
    EXPECT_EQ(CreateDIBSection(nullptr, goodInfo, DIB_PAL_COLORS, nullptr, section.handle, 0),
              nullptr);
    EXPECT_EQ(MakeDib(good, 0, 0), nullptr);
}

TEST(CreateDibSection, SharesBytesWithTheSectionAndDescribesItself) {
    // 3 x 2 at 24 bits: 9 bytes a row padded to 12.
    Section section(64);
    ASSERT_NE(section.handle, 0);
    void* bits = nullptr;
    CBitmap bitmap;
    ASSERT_TRUE(bitmap.Attach(MakeDib(MakeInfo(3, 2, 24), section.handle, 8, &bits)));
    static_cast<BYTE*>(bits)[12] = 0x77;
    EXPECT_EQ(section.bytes()[8 + 12], 0x77);
    section.bytes()[8 + 23] = 0x11;
    EXPECT_EQ(static_cast<BYTE*>(bits)[23], 0x11);

    DIBSECTION ds{};
    ASSERT_TRUE(bitmap.GetDIBSection(&ds));
    EXPECT_EQ(ds.dsBits, bits);
    EXPECT_EQ(ds.dshSection, section.handle);
    EXPECT_EQ(ds.dsOffset, 8u);
    EXPECT_EQ(ds.dsBmih.biWidth, 3);
    EXPECT_EQ(ds.dsBmih.biSizeImage, 24u);
    const RGBQUAD none[1] = {};
    EXPECT_EQ(bitmap.SetDIBColorTable(0, 1, none), 0u);

    // The CBitmap deletes what it holds; a detached handle is the caller's again.
    HBITMAP raw = bitmap.Detach();
    EXPECT_FALSE(bitmap.DeleteObject());
    EXPECT_FALSE(bitmap.GetDIBSection(&ds));
    EXPECT_TRUE(bitmap.Attach(raw));
    EXPECT_FALSE(bitmap.Attach(raw));
}

TEST(DibSection, ColourTableIsACopyLimitedToTheDepth) {
    Section section(256);
    ASSERT_NE(section.handle, 0);
    Info info = MakeInfo(2, 2, 4);
    info.header.biClrUsed = 3;
    for (int i = 0; i < 256; ++i) {
        info.colors[i] = RGBQUAD{static_cast<BYTE>(i), 1, 2, 0};
    }
    CBitmap bitmap;
    ASSERT_TRUE(bitmap.Attach(MakeDib(info, section.handle, 0)));
    info.colors[0].rgbBlue = 99;

    RGBQUAD table[16];
    std::memset(table, 0xEE, sizeof(table));
    ASSERT_EQ(bitmap.GetDIBColorTable(0, 20, table), 16u);
    EXPECT_EQ(table[0].rgbBlue, 0);
    EXPECT_EQ(table[2].rgbBlue, 2);
    EXPECT_EQ(table[2].rgbRed, 2);
    EXPECT_EQ(table[3].rgbRed, 0);  // beyond biClrUsed: not copied

    const RGBQUAD replacement[2] = {{9, 9, 9, 0}, {8, 8, 8, 0}};
    EXPECT_EQ(bitmap.SetDIBColorTable(14, 5, replacement), 2u);
    EXPECT_EQ(bitmap.SetDIBColorTable(16, 1, replacement), 0u);
    ASSERT_EQ(bitmap.GetDIBColorTable(14, 2, table), 2u);
    EXPECT_EQ(table[0].rgbGreen, 9);
    EXPECT_EQ(table[1].rgbGreen, 8);
}

TEST(CPalette, NearestColourTakesTheLowestIndexOnTiesAndIndicesNameTheirEntry) {
    CPalette palette;
    ASSERT_TRUE(MakePalette(palette, {{0, 0, 0, 0}, {10, 0, 0, 0}, {10, 0, 0, 0}, {0, 0, 20, 0}}));
    EXPECT_EQ(palette.GetNearestPaletteIndex(RGB(10, 0, 0)), 1u);  // 1 and 2 are both exact
    EXPECT_EQ(palette.GetNearestPaletteIndex(RGB(5, 0, 0)), 0u);   // 25 from both 0 and 1
    EXPECT_EQ(palette.GetNearestPaletteIndex(RGB(0, 0, 12)), 3u);  // 64 against 144
    EXPECT_EQ(palette.GetNearestPaletteIndex(PALETTEINDEX(2)), 2u);
    EXPECT_EQ(palette.GetNearestPaletteIndex(PALETTEINDEX(200)), 3u);
    // Only 0x01 in the top byte marks an index; anything else is still a colour.
    EXPECT_EQ(palette.GetNearestPaletteIndex(0x02000000u | RGB(0, 0, 20)), 3u);
}

TEST(CPalette, RefusesUnusableRecords) {
    CPalette palette;
    EXPECT_FALSE(palette.CreatePalette(nullptr));
    EXPECT_FALSE(MakePalette(palette, {}));
    EXPECT_FALSE(MakePalette(palette, std::vector<PALETTEENTRY>(257)));
    EXPECT_EQ(palette.GetNearestPaletteIndex(RGB(1, 2, 3)), 0u);
    ASSERT_TRUE(MakePalette(palette, std::vector<PALETTEENTRY>(256)));
    EXPECT_FALSE(MakePalette(palette, {{1, 2, 3, 0}}));
    EXPECT_EQ(palette.GetEntryCount(), 256);
    PALETTEENTRY tail[4];
    EXPECT_EQ(palette.GetPaletteEntries(254, 4, tail), 2u);
}
