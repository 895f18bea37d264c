#pragma once

// CDC: the software drawing device. This part of it records device paths: between BeginPath
// and EndPath, MoveTo, LineTo, PolyBezierTo, CloseFigure and TextOut add figures to the path
// instead of drawing, and GetPath hands the points back with their types. Text outlines come
// from the selected CFont's glyphs; their quadratic segments are raised exactly to cubics, so
// the path holds only lines and cubic Beziers.
//
// Coordinates are device pixels, y growing downwards. Text is placed GDI-style: the origin is
// the top-left of the text cell, the baseline lies the font's ascent below it, and text output
// does not move the current position.

#include <vistrane/export.h>
#include <vistrane/platform/gdi.h>
#include <vistrane/platform/geometry.h>
#include <vistrane/platform/text.h>
#include <vistrane/platform/types.h>

class CFont;

// Point types of a device path. PT_CLOSEFIGURE is or-ed into the type of a figure's last point.
constexpr BYTE PT_CLOSEFIGURE = 0x01;
constexpr BYTE PT_LINETO = 0x02;
constexpr BYTE PT_BEZIERTO = 0x04;
constexpr BYTE PT_MOVETO = 0x06;

// Background modes of text output.
constexpr int TRANSPARENT = 1;
constexpr int OPAQUE = 2;

class VISTRANE_API CDC {
  public:
    CDC() = default;
    ~CDC();
    CDC(const CDC&) = delete;
    CDC& operator=(const CDC&) = delete;

    // Makes a memory device; `other` (may be null, meaning the screen) is not needed by a
    // software device. 0 when a device is made already or memory runs out.
    BOOL CreateCompatibleDC(CDC* other);
    BOOL DeleteDC();
    HDC GetSafeHdc() const { return m_hDC; }

    // Selects the font for text output; returns the font selected before (null at first).
    CFont* SelectObject(CFont* font);
    // Returns the previous mode; 0 for a value that is neither TRANSPARENT nor OPAQUE.
    int SetBkMode(int mode);

    // Current position and drawing; inside a path bracket they add to the path.
    CPoint MoveTo(int x, int y);
    CPoint MoveTo(POINT p) { return MoveTo(p.x, p.y); }
    BOOL LineTo(int x, int y);
    BOOL LineTo(POINT p) { return LineTo(p.x, p.y); }
    // count points, three per cubic segment: two control points and the end.
    BOOL PolyBezierTo(const POINT* points, int count);
    BOOL TextOut(int x, int y, const char* text, int length);
    BOOL TextOut(int x, int y, const CString& text) {
        return TextOut(x, y, static_cast<const char*>(text), text.GetLength());
    }

    // BeginPath discards any path and opens a new one; EndPath closes the bracket; CloseFigure
    // closes the open figure with a line to its start; AbortPath discards the path.
    BOOL BeginPath();
    BOOL EndPath();
    BOOL AbortPath();
    BOOL CloseFigure();
    // With count 0: the number of points of the closed path. Otherwise copies up to `count`
    // points and types and returns how many, or -1 when the buffers are too small. -1 without
    // a device or outside a finished path.
    int GetPath(POINT* points, BYTE* types, int count) const;

  protected:
    HDC m_hDC = nullptr;
};
