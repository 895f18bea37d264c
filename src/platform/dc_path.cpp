// CDC: recording device paths and text outlines.

#include <vistrane/platform/dc.h>
#include <vistrane/platform/font.h>

#include "platform/device_context.h"
#include "platform/font_face.h"

CFont* CDC::SelectObject(CFont* font) {
    if (m_hDC == nullptr) {
        return nullptr;
    }
    CFont* previous = m_hDC->font;
    m_hDC->font = font;
    return previous;
}

BOOL CDC::PolyBezierTo(const POINT* points, int count) {
    if (m_hDC == nullptr || count < 0 || count % 3 != 0 || (count > 0 && points == nullptr)) {
        return 0;
    }
    for (int k = 0; k < count; k += 3) {
        if (m_hDC->path.IsRecording()) {
            m_hDC->path.AddBezier(m_hDC->position, points + k);
        }
        m_hDC->position = CPoint(points[k + 2]);
    }
    return 1;
}

BOOL CDC::TextOut(int x, int y, const char* text, int length) {
    if (m_hDC == nullptr || text == nullptr || length < 0) {
        return 0;
    }
    CFont* font = m_hDC->font;
    if (font == nullptr || font->GetFontFace() == nullptr) {
        return 0;
    }
    if (!m_hDC->path.IsRecording()) {
        return 1;
    }
    return vistrane::platform::AddTextOutlines(&m_hDC->path, *font->GetFontFace(), POINT{x, y},
                                               text, length)
               ? 1
               : 0;
}

BOOL CDC::BeginPath() {
    if (m_hDC == nullptr) {
        return 0;
    }
    m_hDC->path.Begin();
    return 1;
}

BOOL CDC::EndPath() {
    return m_hDC != nullptr && m_hDC->path.End() ? 1 : 0;
}

BOOL CDC::AbortPath() {
    if (m_hDC == nullptr) {
        return 0;
    }
    m_hDC->path.Abort();
    return 1;
}

BOOL CDC::CloseFigure() {
    return m_hDC != nullptr && m_hDC->path.IsRecording() && m_hDC->path.CloseFigure() ? 1 : 0;
}

int CDC::GetPath(POINT* points, BYTE* types, int count) const {
    if (m_hDC == nullptr || !m_hDC->path.IsFinished()) {
        return -1;
    }
    const vistrane::platform::DevicePath& path = m_hDC->path;
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
