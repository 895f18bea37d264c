#include <vistrane/platform/dc.h>

#include <new>

#include <vistrane/platform/font.h>

#include "platform/device_context.h"
#include "platform/font_face.h"

CDC::~CDC() {
    DeleteDC();
}

BOOL CDC::CreateCompatibleDC(CDC* /*other*/) {
    if (m_hDC != nullptr) {
        return 0;
    }
    m_hDC = new (std::nothrow) vistrane::platform::DeviceContext;
    return m_hDC != nullptr ? 1 : 0;
}

BOOL CDC::DeleteDC() {
    if (m_hDC == nullptr) {
        return 0;
    }
    delete m_hDC;
    m_hDC = nullptr;
    return 1;
}

CFont* CDC::SelectObject(CFont* font) {
    if (m_hDC == nullptr) {
        return nullptr;
    }
    CFont* previous = m_hDC->m_Font;
    m_hDC->m_Font = font;
    return previous;
}

int CDC::SetBkMode(int mode) {
    if (m_hDC == nullptr || (mode != TRANSPARENT && mode != OPAQUE)) {
        return 0;
    }
    const int previous = m_hDC->m_BkMode;
    m_hDC->m_BkMode = mode;
    return previous;
}

CPoint CDC::MoveTo(int x, int y) {
    if (m_hDC == nullptr) {
        return {};
    }
    const CPoint previous = m_hDC->m_Position;
    m_hDC->m_Position = CPoint(x, y);
    if (m_hDC->m_Path.IsRecording()) {
        m_hDC->m_Path.BreakFigure();
    }
    return previous;
}

BOOL CDC::LineTo(int x, int y) {
    if (m_hDC == nullptr) {
        return 0;
    }
    if (m_hDC->m_Path.IsRecording()) {
        m_hDC->m_Path.AddLine(m_hDC->m_Position, POINT{x, y});
    }
    m_hDC->m_Position = CPoint(x, y);
    return 1;
}

BOOL CDC::PolyBezierTo(const POINT* points, int count) {
    if (m_hDC == nullptr || count < 0 || count % 3 != 0) {
        return 0;
    }
    for (int k = 0; k < count; k += 3) {
        if (m_hDC->m_Path.IsRecording()) {
            m_hDC->m_Path.AddBezier(m_hDC->m_Position, points + k);
        }
        m_hDC->m_Position = CPoint(points[k + 2]);
    }
    return 1;
}

BOOL CDC::TextOut(int x, int y, const char* text, int length) {
    if (m_hDC == nullptr || text == nullptr || length < 0) {
        return 0;
    }
    CFont* font = m_hDC->m_Font;
    if (font == nullptr || font->GetFontFace() == nullptr) {
        return 0;
    }
    if (!m_hDC->m_Path.IsRecording()) {
        return 1;
    }
    return vistrane::platform::AddTextOutlines(&m_hDC->m_Path, *font->GetFontFace(), POINT{x, y},
                                               text, length)
               ? 1
               : 0;
}

BOOL CDC::BeginPath() {
    if (m_hDC == nullptr) {
        return 0;
    }
    m_hDC->m_Path.Begin();
    return 1;
}

BOOL CDC::EndPath() {
    return m_hDC != nullptr && m_hDC->m_Path.End() ? 1 : 0;
}

BOOL CDC::AbortPath() {
    if (m_hDC == nullptr) {
        return 0;
    }
    m_hDC->m_Path.Abort();
    return 1;
}

BOOL CDC::CloseFigure() {
    return m_hDC != nullptr && m_hDC->m_Path.IsRecording() && m_hDC->m_Path.CloseFigure() ? 1 : 0;
}

int CDC::GetPath(POINT* points, BYTE* types, int count) const {
    if (m_hDC == nullptr || !m_hDC->m_Path.IsFinished()) {
        return -1;
    }
    const vistrane::platform::DevicePath& path = m_hDC->m_Path;
    const int n = path.Count();
    if (count == 0) {
        return n;
    }
    if (count < n || points == nullptr || types == nullptr) {
        return -1;
    }
    for (int i = 0; i < n; ++i) {
        points[i] = path.Points()[static_cast<size_t>(i)];
        types[i] = path.Types()[static_cast<size_t>(i)];
    }
    return n;
}
