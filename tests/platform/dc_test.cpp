#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <vector>

#include <vistrane/platform/dc.h>
#include <vistrane/platform/section.h>

namespace {

// A bitmap section of any depth over its own shared section, with pixel access from the top.
class Surface {
  public:
    Surface(LONG width, LONG height, WORD bits, const std::vector<RGBQUAD>& colors = {})
        : m_Width(width),
          m_Height(height),
          m_Bytes(bits / 8),
          m_Stride((width * bits + 31) / 32 * 4) {
        struct {
            BITMAPINFOHEADER header;
            RGBQUAD colors[256];
        } info{};
        info.header = {sizeof(BITMAPINFOHEADER),          width, height, 1, bits, BI_RGB, 0, 0, 0,
                       static_cast<DWORD>(colors.size()), 0};
        std::copy(colors.begin(), colors.end(), info.colors);
        void* view = nullptr;
        m_Section = CreateSharedSection(static_cast<DWORD>(m_Stride * height), &view);
        m_Bits = static_cast<BYTE*>(view);
        m_Bitmap.Attach(CreateDIBSection(nullptr, reinterpret_cast<const BITMAPINFO*>(&info),
                                         DIB_RGB_COLORS, nullptr, m_Section, 0));
        m_Dc.CreateCompatibleDC(nullptr);
        m_Old = m_Dc.SelectObject(&m_Bitmap);
    }
    ~Surface() {
        m_Dc.SelectObject(m_Old);
        m_Dc.DeleteDC();
        m_Bitmap.DeleteObject();
        CloseSharedSection(m_Section);
    }
    CDC& Dc() { return m_Dc; }
    BYTE* Pixel(int x, int y) { return m_Bits + (m_Height - 1 - y) * m_Stride + x * m_Bytes; }
    BYTE At(int x, int y) { return *Pixel(x, y); }
    void Fill(BYTE b) { std::memset(m_Bits, b, static_cast<std::size_t>(m_Stride * m_Height)); }
    std::vector<BYTE> Bytes() const {
        return {m_Bits, m_Bits + static_cast<std::ptrdiff_t>(m_Stride) * m_Height};
    }
    // The rows as strings of '#' (non-zero first byte) and '.', for shape pictures.
    std::vector<std::string> Picture() {
        std::vector<std::string> rows;
        for (int y = 0; y < m_Height; ++y) {
            std::string row;
            for (int x = 0; x < m_Width; ++x) {
                row += At(x, y) != 0 ? '#' : '.';
            }
            rows.push_back(row);
        }
        return rows;
    }

  private:
    LONG m_Width;
    LONG m_Height;
    int m_Bytes;
    LONG m_Stride;
    HANDLE m_Section = 0;
    BYTE* m_Bits = nullptr;
    CBitmap m_Bitmap;
    CBitmap* m_Old = nullptr;
    CDC m_Dc;
};

std::vector<RGBQUAD> GreyTable() {
    std::vector<RGBQUAD> table(256);
    for (int i = 0; i < 256; ++i) {
        const auto v = static_cast<BYTE>(i);
        table[static_cast<std::size_t>(i)] = {v, v, v, 0};
    }
    return table;
}

// Selects a pen and brush for the scope of a test and restores the device's own.
struct Tools {
    Tools(CDC& dc, int penWidth, COLORREF penColor, bool hollow, COLORREF brushColor = 0)
        : dc(dc), pen(PS_SOLID, penWidth, penColor), brush(brushColor) {
        oldPen = dc.SelectObject(&pen);
        oldBrush = hollow ? static_cast<CBrush*>(dc.SelectStockObject(HOLLOW_BRUSH))
                          : dc.SelectObject(&brush);
    }
    ~Tools() {
        dc.SelectObject(oldPen);
        dc.SelectObject(oldBrush);
    }
    CDC& dc;
    CPen pen;
    CBrush brush;
    CPen* oldPen;
    CBrush* oldBrush;
};

TEST(DeviceShapes, RectangleRightAndBottomAreExclusive) {
    Surface s(8, 6, 8, GreyTable());
    Tools tools(s.Dc(), 1, RGB(255, 255, 255), false, RGB(100, 100, 100));
    ASSERT_TRUE(s.Dc().Rectangle(1, 1, 5, 4));
    const std::vector<std::string> expected = {"........", ".####...", ".####...",
                                               ".####...", "........", "........"};
    EXPECT_EQ(s.Picture(), expected);
    EXPECT_EQ(s.At(1, 1), 255);  // pen
    EXPECT_EQ(s.At(2, 2), 100);  // brush, grey table maps 100 to index 100
    EXPECT_EQ(s.At(3, 2), 100);
}

TEST(DeviceShapes, WidePenIsCentredOnTheOutline) {
    Surface s(20, 20, 8, GreyTable());
    Tools tools(s.Dc(), 3, RGB(255, 255, 255), true);
    ASSERT_TRUE(s.Dc().Rectangle(5, 5, 15, 15));
    // Outline columns 5 and 14; a width-3 pen covers one pixel either side of each.
    const int row = 10;
    for (int x = 0; x < 20; ++x) {
        const bool pen = (x >= 4 && x <= 6) || (x >= 13 && x <= 15);
        EXPECT_EQ(s.At(x, row) != 0, pen) << "x " << x;
    }
    EXPECT_EQ(s.At(10, 3), 0);
    EXPECT_EQ(s.At(10, 4), 255);
    EXPECT_EQ(s.At(10, 15), 255);
    EXPECT_EQ(s.At(10, 16), 0);
}

TEST(DeviceShapes, HollowBrushLeavesTheInsideAlone) {
    Surface s(12, 12, 8, GreyTable());
    s.Fill(7);
    Tools tools(s.Dc(), 1, RGB(200, 200, 200), true);
    ASSERT_TRUE(s.Dc().Ellipse(0, 0, 12, 12));
    ASSERT_TRUE(s.Dc().RoundRect(2, 2, 10, 10, 4, 4));
    EXPECT_EQ(s.At(6, 6), 7);
    EXPECT_EQ(s.At(6, 0), 200);  // the ellipse touches the top edge
    EXPECT_EQ(s.At(0, 6), 200);  // and the left edge
    EXPECT_EQ(s.At(11, 6), 200);
    EXPECT_EQ(s.At(6, 11), 200);
    EXPECT_EQ(s.At(0, 0), 7);  // but not the corners
}

TEST(DeviceShapes, EllipseIsSymmetricAndInsideItsBox) {
    for (int w = 1; w <= 14; ++w) {
        for (int h = 1; h <= 9; ++h) {
            Surface s(16, 12, 8, GreyTable());
            Tools tools(s.Dc(), 1, RGB(255, 255, 255), false, RGB(255, 255, 255));
            s.Dc().Ellipse(1, 1, 1 + w, 1 + h);
            for (int y = 0; y < 12; ++y) {
                for (int x = 0; x < 16; ++x) {
                    const bool inside = x >= 1 && x < 1 + w && y >= 1 && y < 1 + h;
                    if (!inside) {
                        ASSERT_EQ(s.At(x, y), 0) << w << "x" << h << " at " << x << "," << y;
                    } else {
                        ASSERT_EQ(s.At(x, y), s.At(w - x + 1, y)) << w << "x" << h;
                        ASSERT_EQ(s.At(x, y), s.At(x, h - y + 1)) << w << "x" << h;
                    }
                }
            }
            // Every edge of the box is touched (two-pixel-thin ellipses lose their tips).
            if (w < 3 || h < 3) {
                continue;
            }
            EXPECT_EQ(s.At(1 + (w - 1) / 2, 1), 255) << w << "x" << h;
            EXPECT_EQ(s.At(1, 1 + (h - 1) / 2), 255) << w << "x" << h;
        }
    }
}

TEST(DeviceShapes, NullPenFillsOneLessRightAndBelow) {
    Surface s(8, 8, 8, GreyTable());
    CBrush brush(RGB(9, 9, 9));
    CBrush* oldBrush = s.Dc().SelectObject(&brush);
    CGdiObject* oldPen = s.Dc().SelectStockObject(NULL_PEN);
    ASSERT_NE(oldPen, nullptr);
    s.Dc().Rectangle(1, 1, 5, 5);
    const std::vector<std::string> expected = {"........", ".###....", ".###....", ".###....",
                                               "........", "........", "........", "........"};
    EXPECT_EQ(s.Picture(), expected);
    s.Dc().SelectObject(static_cast<CPen*>(oldPen));
    s.Dc().SelectObject(oldBrush);
}

TEST(DeviceRaster, XorTwiceRestoresShapesAndLines) {
    for (WORD bits : {8, 24, 32}) {
        Surface s(40, 30, bits, GreyTable());
        for (int y = 0; y < 30; ++y) {
            for (int x = 0; x < 40; ++x) {
                *s.Pixel(x, y) = static_cast<BYTE>(x * 7 + y * 13);
            }
        }
        const std::vector<BYTE> before = s.Bytes();
        Tools tools(s.Dc(), 1, RGB(90, 160, 33), false, RGB(17, 250, 128));
        s.Dc().SetROP2(R2_XORPEN);
        const POINT zigzag[] = {{0, 0}, {39, 29}, {0, 29}, {39, 0}, {20, 15}};
        for (int pass = 0; pass < 2; ++pass) {
            s.Dc().Ellipse(-5, 3, 30, 40);
            s.Dc().RoundRect(10, 2, 38, 20, 9, 7);
            s.Dc().Rectangle(3, 3, 20, 12);
            s.Dc().Polyline(zigzag, 5);
            CPen wide(PS_SOLID, 4, RGB(1, 2, 3));
            CPen* thin = s.Dc().SelectObject(&wide);
            s.Dc().Polyline(zigzag, 5);
            s.Dc().SelectObject(thin);
            if (pass == 0) {
                EXPECT_NE(s.Bytes(), before) << bits;
            }
        }
        EXPECT_EQ(s.Bytes(), before) << bits << " bits";
    }
}

TEST(DeviceRaster, NotInvertsAndCopyPenOverwrites) {
    Surface s(4, 1, 24);
    for (int x = 0; x < 4; ++x) {
        s.Pixel(x, 0)[0] = 0x0F;
    }
    Tools tools(s.Dc(), 1, RGB(1, 2, 3), true);
    s.Dc().SetROP2(R2_NOT);
    s.Dc().MoveTo(0, 0);
    s.Dc().LineTo(2, 0);  // the last point is left out
    EXPECT_EQ(s.Pixel(0, 0)[0], 0xF0);
    EXPECT_EQ(s.Pixel(1, 0)[0], 0xF0);
    EXPECT_EQ(s.Pixel(2, 0)[0], 0x0F);
    s.Dc().SetROP2(R2_COPYPEN);
    s.Dc().LineTo(4, 0);
    EXPECT_EQ(s.Pixel(2, 0)[0], 3);  // blue, green, red in memory
    EXPECT_EQ(s.Pixel(2, 0)[2], 1);
}

TEST(DeviceColors, EightBitTargetTakesNearestEntryOrTheIndexGiven) {
    const std::vector<RGBQUAD> table = {
        {0, 0, 0, 0}, {0, 0, 250, 0}, {0, 240, 0, 0}, {255, 255, 255, 0}, {0, 0, 250, 0}};
    Surface s(6, 1, 8, table);
    s.Dc().FillSolidRect(0, 0, 1, 1, RGB(200, 30, 10));  // nearest: red entry 1, not 4 (tie)
    s.Dc().FillSolidRect(1, 0, 1, 1, RGB(20, 200, 20));
    s.Dc().FillSolidRect(2, 0, 1, 1, RGB(60, 60, 60));  // nearest black
    s.Dc().FillSolidRect(3, 0, 1, 1, PALETTEINDEX(4));
    s.Dc().FillSolidRect(4, 0, 1, 1, PALETTEINDEX(200));
    EXPECT_EQ(s.At(0, 0), 1);
    EXPECT_EQ(s.At(1, 0), 2);
    EXPECT_EQ(s.At(2, 0), 0);
    EXPECT_EQ(s.At(3, 0), 4);
    EXPECT_EQ(s.At(4, 0), 200);
}

TEST(DeviceColors, PaletteIndexOnDeepTargetUsesTheSelectedPalette) {
    Surface s(2, 1, 24);
    std::vector<BYTE> record(sizeof(LOGPALETTE) + 3 * sizeof(PALETTEENTRY));
    auto* log = reinterpret_cast<LOGPALETTE*>(record.data());
    log->palVersion = 0x300;
    log->palNumEntries = 3;
    PALETTEENTRY* entries = log->palPalEntry;
    entries[2] = {10, 20, 30, 0};
    CPalette palette;
    ASSERT_TRUE(palette.CreatePalette(log));
    CPalette* old = s.Dc().SelectPalette(&palette, 1);
    ASSERT_NE(old, nullptr);
    EXPECT_EQ(s.Dc().RealizePalette(), 3u);
    s.Dc().FillSolidRect(0, 0, 1, 1, PALETTEINDEX(2));
    EXPECT_EQ(s.Pixel(0, 0)[0], 30);
    EXPECT_EQ(s.Pixel(0, 0)[1], 20);
    EXPECT_EQ(s.Pixel(0, 0)[2], 10);
    s.Dc().SelectPalette(old, 1);
}

TEST(DeviceColors, HostBgrxSurfaceKeepsItsFourthByte) {
    Surface s(3, 2, 32);
    s.Fill(0xAA);
    s.Dc().FillSolidRect(0, 0, 3, 2, RGB(1, 2, 3));
    for (int x = 0; x < 3; ++x) {
        EXPECT_EQ(s.Pixel(x, 1)[0], 3);
        EXPECT_EQ(s.Pixel(x, 1)[2], 1);
        EXPECT_EQ(s.Pixel(x, 1)[3], 0xAA);
    }
}

TEST(DeviceColors, SetDIBColorTableChangesTheNearestEntry) {
    Surface s(1, 1, 8, {{0, 0, 0, 0}, {255, 255, 255, 0}});
    const RGBQUAD swapped[2] = {{255, 255, 255, 0}, {0, 0, 0, 0}};
    EXPECT_EQ(SetDIBColorTable(s.Dc().GetSafeHdc(), 0, 2, swapped), 2u);
    s.Dc().FillSolidRect(0, 0, 1, 1, RGB(250, 250, 250));
    EXPECT_EQ(s.At(0, 0), 0);
}

TEST(DeviceSetup, ViewportOriginMovesDrawingAndSelectionsRoundTrip) {
    Surface s(6, 6, 8, GreyTable());
    EXPECT_EQ(s.Dc().SetViewportOrg(2, 3), CPoint(0, 0));
    s.Dc().FillSolidRect(0, 0, 1, 1, RGB(50, 50, 50));
    EXPECT_EQ(s.At(2, 3), 50);
    EXPECT_EQ(s.Dc().SetViewportOrg(0, 0), CPoint(2, 3));
    EXPECT_EQ(s.Dc().SetROP2(R2_XORPEN), R2_COPYPEN);
    EXPECT_EQ(s.Dc().SetROP2(99), 0);
    EXPECT_EQ(s.Dc().SetStretchBltMode(COLORONCOLOR), BLACKONWHITE);
    EXPECT_EQ(s.Dc().SetBkMode(TRANSPARENT), OPAQUE);
    CPen pen(PS_SOLID, 1, 0);
    CBrush brush(0);
    EXPECT_EQ(s.Dc().SelectObject(reinterpret_cast<CBrush*>(&pen)), nullptr);
    CDC none;
    EXPECT_EQ(none.SelectObject(&pen), nullptr);
    EXPECT_FALSE(none.Rectangle(0, 0, 2, 2));
}

TEST(DeviceBlit, RasterOperationsOnBytes) {
    struct Case {
        DWORD rop;
        BYTE expected;
    };
    const BYTE d = 0xC5;
    const BYTE src = 0x3C;
    const Case cases[] = {{SRCCOPY, src},       {SRCPAINT, d | src}, {SRCAND, d & src},
                          {SRCINVERT, d ^ src}, {NOTSRCCOPY, 0xC3},  {DSTINVERT, 0x3A},
                          {BLACKNESS, 0x00},    {WHITENESS, 0xFF}};
    for (const Case& c : cases) {
        Surface source(3, 2, 8, GreyTable());
        Surface target(3, 2, 8, GreyTable());
        source.Fill(src);
        target.Fill(d);
        ASSERT_TRUE(target.Dc().BitBlt(0, 0, 3, 2, &source.Dc(), 0, 0, c.rop)) << c.rop;
        EXPECT_EQ(target.At(2, 1), c.expected) << std::hex << c.rop;
    }
    Surface target(1, 1, 8, GreyTable());
    EXPECT_FALSE(target.Dc().BitBlt(0, 0, 1, 1, nullptr, 0, 0, 0x00AA0029));
}

TEST(DeviceBlit, ClipsAgainstBothBitmapsAndConvertsFormats) {
    const std::vector<RGBQUAD> table = {{0, 0, 0, 0}, {10, 20, 30, 0}, {200, 100, 50, 0}};
    Surface source(4, 4, 8, table);
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 4; ++x) {
            *source.Pixel(x, y) = static_cast<BYTE>((x + y) % 3);
        }
    }
    Surface target(5, 5, 24);
    target.Fill(0xEE);
    ASSERT_TRUE(target.Dc().BitBlt(-1, 2, 4, 4, &source.Dc(), 0, 1, SRCCOPY));
    // Destination (0, 2) is source (1, 1): index 2, blue 200, green 100, red 50.
    EXPECT_EQ(target.Pixel(0, 2)[0], 200);
    EXPECT_EQ(target.Pixel(0, 2)[2], 50);
    EXPECT_EQ(target.Pixel(1, 2)[0], 0);     // source (2, 1): index 0, black
    EXPECT_EQ(target.Pixel(2, 4)[0], 0);     // source (3, 3): index 0
    EXPECT_EQ(target.Pixel(1, 3)[0], 10);    // source (2, 2): index 1
    EXPECT_EQ(target.Pixel(3, 2)[0], 0xEE);  // beyond the blit's width
    EXPECT_EQ(target.Pixel(0, 1)[0], 0xEE);  // above it
}

TEST(DeviceBlit, StretchModesTreatEliminatedPixelsDifferently) {
    Surface source(4, 4, 8, GreyTable());
    // Column pairs: (0xF0, 0x3C) then (0xFF, 0x0F); rows repeat.
    const BYTE columns[4] = {0xF0, 0x3C, 0xFF, 0x0F};
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 4; ++x) {
            *source.Pixel(x, y) = static_cast<BYTE>(y == 1 ? columns[x] & 0x77 : columns[x]);
        }
    }
    Surface anded(2, 2, 8, GreyTable());
    anded.Dc().SetStretchBltMode(STRETCH_ANDSCANS);
    ASSERT_TRUE(anded.Dc().StretchBlt(0, 0, 2, 2, &source.Dc(), 0, 0, 4, 4, SRCCOPY));
    EXPECT_EQ(anded.At(0, 0), 0xF0 & 0x3C & 0x77);
    EXPECT_EQ(anded.At(1, 0), 0x0F & 0x77);
    EXPECT_EQ(anded.At(1, 1), 0x0F);
    Surface deleted(2, 2, 8, GreyTable());
    deleted.Dc().SetStretchBltMode(STRETCH_DELETESCANS);
    ASSERT_TRUE(deleted.Dc().StretchBlt(0, 0, 2, 2, &source.Dc(), 0, 0, 4, 4, SRCCOPY));
    EXPECT_EQ(deleted.At(0, 0), 0xF0);
    EXPECT_EQ(deleted.At(1, 0), 0xFF);
    EXPECT_EQ(deleted.At(0, 1), 0xF0);
    Surface doubled(8, 2, 8, GreyTable());
    ASSERT_TRUE(doubled.Dc().StretchBlt(0, 0, 8, 2, &source.Dc(), 0, 0, 4, 2, SRCCOPY));
    EXPECT_EQ(doubled.At(4, 0), 0xFF);
    EXPECT_EQ(doubled.At(5, 0), 0xFF);
    EXPECT_EQ(doubled.At(6, 0), 0x0F);
    EXPECT_EQ(doubled.At(7, 1), 0x0F & 0x77);
}

TEST(DeviceBlit, OverlappingBlitWithinOneBitmapReadsTheOriginal) {
    Surface s(6, 1, 8, GreyTable());
    for (int x = 0; x < 6; ++x) {
        *s.Pixel(x, 0) = static_cast<BYTE>(x + 1);
    }
    ASSERT_TRUE(s.Dc().BitBlt(1, 0, 5, 1, &s.Dc(), 0, 0, SRCCOPY));
    for (int x = 1; x < 6; ++x) {
        EXPECT_EQ(s.At(x, 0), x);
    }
}

}  // namespace
