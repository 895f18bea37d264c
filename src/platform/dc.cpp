#include <vistrane/platform/dc.h>

#include <array>
#include <new>

#include "platform/device_context.h"
#include "platform/gdi_objects.h"

using vistrane::platform::AsBrush;
using vistrane::platform::AsDibSection;
using vistrane::platform::AsPalette;
using vistrane::platform::AsPen;
using vistrane::platform::Brush;
using vistrane::platform::DeviceContext;
using vistrane::platform::Palette;
using vistrane::platform::Pen;

namespace {

// The stock objects, made once and never deleted.
struct StockObjects {
    std::array<Brush, 6> brushes;
    std::array<Pen, 3> pens;
    Palette defaultPalette;

    StockObjects() {
        const BYTE greys[] = {255, 192, 128, 64, 0};
        for (std::size_t i = 0; i < brushes.size(); ++i) {
            brushes[i].stock = true;
            if (i < 5) {
                brushes[i].color = RGB(greys[i], greys[i], greys[i]);
            } else {
                brushes[i].hollow = true;
            }
        }
        pens[0].color = RGB(255, 255, 255);
        pens[1].color = 0;
        pens[2].null = true;
        for (Pen& pen : pens) {
            pen.stock = true;
        }
        // The sixteen colours every display can show: black, the dark and bright primaries and
        // mixtures, and the greys.
        const COLORREF vga[16] = {0x000000, 0x000080, 0x008000, 0x008080, 0x800000, 0x800080,
                                  0x808000, 0xC0C0C0, 0x808080, 0x0000FF, 0x00FF00, 0x00FFFF,
                                  0xFF0000, 0xFF00FF, 0xFFFF00, 0xFFFFFF};
        for (COLORREF c : vga) {
            defaultPalette.entries.push_back({GetRValue(c), GetGValue(c), GetBValue(c), 0});
        }
        defaultPalette.stock = true;
    }
};

StockObjects& Stock() {
    static StockObjects objects;
    return objects;
}

}  // namespace

HGDIOBJ GetStockObject(int object) {
    StockObjects& stock = Stock();
    if (object >= WHITE_BRUSH && object <= NULL_BRUSH) {
        return &stock.brushes[static_cast<std::size_t>(object)];
    }
    if (object >= WHITE_PEN && object <= NULL_PEN) {
        return &stock.pens[static_cast<std::size_t>(object - WHITE_PEN)];
    }
    if (object == DEFAULT_PALETTE) {
        return &stock.defaultPalette;
    }
    return nullptr;
}

UINT SetDIBColorTable(HDC dc, UINT start, UINT count, const RGBQUAD* colors) {
    return dc == nullptr ? 0 : dc->bitmap->SetDIBColorTable(start, count, colors);
}

BOOL CPen::CreatePen(int style, int width, COLORREF color) {
    if (m_hObject != nullptr || (style != PS_SOLID && style != PS_NULL)) {
        return 0;
    }
    auto* pen = new (std::nothrow) Pen;
    if (pen == nullptr) {
        return 0;
    }
    pen->null = style == PS_NULL;
    pen->width = width < 1 ? 1 : width;
    pen->color = color;
    m_hObject = pen;
    return 1;
}

BOOL CBrush::CreateSolidBrush(COLORREF color) {
    if (m_hObject != nullptr) {
        return 0;
    }
    auto* brush = new (std::nothrow) Brush;
    if (brush == nullptr) {
        return 0;
    }
    brush->color = color;
    m_hObject = brush;
    return 1;
}

CDC::~CDC() {
    DeleteDC();
}

BOOL CDC::CreateCompatibleDC(CDC* /*other*/) {
    if (m_hDC != nullptr) {
        return 0;
    }
    m_hDC = new (std::nothrow) DeviceContext;
    if (m_hDC == nullptr) {
        return 0;
    }
    m_hDC->defaultPen.Attach(GetStockObject(BLACK_PEN));
    m_hDC->defaultBrush.Attach(GetStockObject(WHITE_BRUSH));
    m_hDC->defaultPalette.Attach(GetStockObject(DEFAULT_PALETTE));
    return 1;
}

BOOL CDC::DeleteDC() {
    if (m_hDC == nullptr) {
        return 0;
    }
    delete m_hDC;
    m_hDC = nullptr;
    return 1;
}

CBitmap* CDC::SelectObject(CBitmap* bitmap) {
    if (m_hDC == nullptr || bitmap == nullptr ||
        (bitmap != &m_hDC->defaultBitmap && AsDibSection(bitmap->GetSafeHandle()) == nullptr)) {
        return nullptr;
    }
    CBitmap* previous = m_hDC->bitmap;
    m_hDC->bitmap = bitmap;
    return previous;
}

CPen* CDC::SelectObject(CPen* pen) {
    if (m_hDC == nullptr || pen == nullptr || AsPen(pen->GetSafeHandle()) == nullptr) {
        return nullptr;
    }
    CPen* previous = m_hDC->pen;
    m_hDC->pen = pen;
    return previous;
}

CBrush* CDC::SelectObject(CBrush* brush) {
    if (m_hDC == nullptr || brush == nullptr || AsBrush(brush->GetSafeHandle()) == nullptr) {
        return nullptr;
    }
    CBrush* previous = m_hDC->brush;
    m_hDC->brush = brush;
    return previous;
}

CGdiObject* CDC::SelectStockObject(int object) {
    HGDIOBJ stock = GetStockObject(object);
    if (m_hDC == nullptr || stock == nullptr) {
        return nullptr;
    }
    // A stock object has no wrapper of its own; the device lends it one.
    if (AsPen(stock) != nullptr) {
        m_hDC->stockPen.Detach();
        m_hDC->stockPen.Attach(stock);
        return SelectObject(&m_hDC->stockPen);
    }
    if (AsBrush(stock) != nullptr) {
        m_hDC->stockBrush.Detach();
        m_hDC->stockBrush.Attach(stock);
        return SelectObject(&m_hDC->stockBrush);
    }
    return nullptr;
}

CPalette* CDC::SelectPalette(CPalette* palette, BOOL /*forceBackground*/) {
    if (m_hDC == nullptr || palette == nullptr || AsPalette(palette->GetSafeHandle()) == nullptr) {
        return nullptr;
    }
    CPalette* previous = m_hDC->palette;
    m_hDC->palette = palette;
    return previous;
}

UINT CDC::RealizePalette() {
    return m_hDC == nullptr ? 0 : static_cast<UINT>(m_hDC->palette->GetEntryCount());
}

int CDC::SetROP2(int mode) {
    if (m_hDC == nullptr || mode < R2_BLACK || mode > R2_WHITE) {
        return 0;
    }
    const int previous = m_hDC->rop2;
    m_hDC->rop2 = mode;
    return previous;
}

int CDC::SetStretchBltMode(int mode) {
    if (m_hDC == nullptr || mode < BLACKONWHITE || mode > HALFTONE) {
        return 0;
    }
    const int previous = m_hDC->stretchMode;
    m_hDC->stretchMode = mode;
    return previous;
}

int CDC::SetBkMode(int mode) {
    if (m_hDC == nullptr || (mode != TRANSPARENT && mode != OPAQUE)) {
        return 0;
    }
    const int previous = m_hDC->bkMode;
    m_hDC->bkMode = mode;
    return previous;
}

CPoint CDC::SetViewportOrg(int x, int y) {
    if (m_hDC == nullptr) {
        return {};
    }
    const CPoint previous = m_hDC->viewportOrg;
    m_hDC->viewportOrg = CPoint(x, y);
    return previous;
}

CPoint CDC::OffsetViewportOrg(int dx, int dy) {
    if (m_hDC == nullptr) {
        return {};
    }
    const CPoint previous = m_hDC->viewportOrg;
    m_hDC->viewportOrg.Offset(dx, dy);
    return previous;
}

CPoint CDC::GetViewportOrg() const {
    return m_hDC == nullptr ? CPoint() : m_hDC->viewportOrg;
}
