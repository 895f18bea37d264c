#pragma once

// CDC: the software drawing device, with its pens and brushes.
//
// A memory device draws into the bitmap section selected into it: an 8-bit palette or 24-bit
// section of a C_Image, or a host's 32-bit BGRX section (made with CreateDIBSection over a
// section the host owns, so a host draws frames and previews straight into its window buffer;
// the fourth byte of a 32-bit pixel is never written). Without a bitmap nothing is drawn.
//
// The rules are GDI's:
// - Coordinates are device pixels, y growing downwards, moved by the viewport origin. A rectangle
//   (left, top, right, bottom) covers left..right - 1 and top..bottom - 1: right and bottom are
//   exclusive. Rectangles given the wrong way round are normalised.
// - A pen of width w is centred on the shape's outline, the line through the centres of the
//   shape's edge pixels: w = 1 draws exactly the edge pixels, w = 3 one more on each side, an even
//   width the extra pixel outside. With the null pen a Rectangle, RoundRect or Ellipse fills one
//   pixel less to the right and below, as GDI does. The brush fills what lies inside the pen; the
//   hollow brush (stock object 5) leaves it alone.
// - LineTo and Polyline leave out the last point of a width-1 line, so joined segments touch
//   each pixel once; wider lines have round ends and joins and also touch each pixel once.
// - The raster-operation mode (SetROP2) combines the pen and brush with the target bytes: on an
//   8-bit target it works on the index bits, so R2_XORPEN drawn twice restores any target.
// - A colour drawn on an 8-bit target becomes the nearest entry of the section's colour table
//   (squared RGB distance, lowest index on ties); a PALETTEINDEX colour is taken as that index.
//   On a 24- or 32-bit target a PALETTEINDEX colour is the selected palette's entry (black
//   without one).
// - BitBlt between two 8-bit sections copies indices unchanged; an 8-bit source into a deeper
//   target goes through the source's colour table; a deeper source into an 8-bit target through
//   the nearest entry. BLACKNESS writes zero bytes, WHITENESS all-ones bytes (index 255 on an
//   8-bit target).
// - StretchBlt maps destination pixel d to source pixels [d * sw / w, (d + 1) * sw / w) in each
//   direction (at least one); stretch mode 1 (BLACKONWHITE) ANDs the pixels a reduction
//   eliminates, 2 (WHITEONBLACK) ORs them, 3 and 4 keep the first and delete the rest. Mirroring
//   by negative extents is not supported (0).
//
// Between BeginPath and EndPath, MoveTo, LineTo, PolyBezierTo, CloseFigure and TextOut add
// figures to the device path instead of drawing, and GetPath hands the points back with their
// types. Text outlines come from the selected CFont's glyphs; their quadratic segments are
// raised exactly to cubics, so a path holds only lines and cubic Beziers. Text is placed
// GDI-style: the origin is the top-left of the text cell, the baseline lies the font's ascent
// below it, and text output does not move the current position.
//
// Calls return 0 (or null) for a missing device or unusable arguments; nothing throws.

#include <vistrane/export.h>
#include <vistrane/platform/gdi.h>
#include <vistrane/platform/geometry.h>
#include <vistrane/platform/text.h>
#include <vistrane/platform/types.h>

class CFont;

// Raster operations of BitBlt and StretchBlt.
constexpr DWORD SRCCOPY = 0x00CC0020;
constexpr DWORD SRCPAINT = 0x00EE0086;
constexpr DWORD SRCAND = 0x008800C6;
constexpr DWORD SRCINVERT = 0x00660046;
constexpr DWORD NOTSRCCOPY = 0x00330008;
constexpr DWORD DSTINVERT = 0x00550009;
constexpr DWORD BLACKNESS = 0x00000042;
constexpr DWORD WHITENESS = 0x00FF0062;

// Mix modes of pens and brushes (SetROP2).
constexpr int R2_BLACK = 1;
constexpr int R2_NOTCOPYPEN = 4;
constexpr int R2_NOT = 6;
constexpr int R2_XORPEN = 7;
constexpr int R2_MASKPEN = 9;
constexpr int R2_NOP = 11;
constexpr int R2_COPYPEN = 13;
constexpr int R2_MERGEPEN = 15;
constexpr int R2_WHITE = 16;

// Stretch modes.
constexpr int BLACKONWHITE = 1;
constexpr int WHITEONBLACK = 2;
constexpr int COLORONCOLOR = 3;
constexpr int HALFTONE = 4;
constexpr int STRETCH_ANDSCANS = BLACKONWHITE;
constexpr int STRETCH_ORSCANS = WHITEONBLACK;
constexpr int STRETCH_DELETESCANS = COLORONCOLOR;

// Background modes of text output.
constexpr int TRANSPARENT = 1;
constexpr int OPAQUE = 2;

// Point types of a device path. PT_CLOSEFIGURE is or-ed into the type of a figure's last point.
constexpr BYTE PT_CLOSEFIGURE = 0x01;
constexpr BYTE PT_LINETO = 0x02;
constexpr BYTE PT_BEZIERTO = 0x04;
constexpr BYTE PT_MOVETO = 0x06;

// Pen styles: only solid pens draw; PS_NULL draws nothing.
constexpr int PS_SOLID = 0;
constexpr int PS_NULL = 5;

// Stock objects. They are never deleted: DeleteObject on one does nothing.
constexpr int WHITE_BRUSH = 0;
constexpr int LTGRAY_BRUSH = 1;
constexpr int GRAY_BRUSH = 2;
constexpr int DKGRAY_BRUSH = 3;
constexpr int BLACK_BRUSH = 4;
constexpr int NULL_BRUSH = 5;
constexpr int HOLLOW_BRUSH = NULL_BRUSH;
constexpr int WHITE_PEN = 6;
constexpr int BLACK_PEN = 7;
constexpr int NULL_PEN = 8;
constexpr int DEFAULT_PALETTE = 15;

// Null for an unknown number.
VISTRANE_API HGDIOBJ GetStockObject(int object);

// Replaces entries of the colour table of the bitmap selected into the device; the count
// replaced, 0 without an 8-bit bitmap.
VISTRANE_API UINT SetDIBColorTable(HDC dc, UINT start, UINT count, const RGBQUAD* colors);

class VISTRANE_API CPen : public CGdiObject {
  public:
    CPen() = default;
    CPen(int style, int width, COLORREF color) { CreatePen(style, width, color); }
    // PS_SOLID or PS_NULL; a width below 1 draws as 1. 0 when a pen is attached already.
    BOOL CreatePen(int style, int width, COLORREF color);
};

class VISTRANE_API CBrush : public CGdiObject {
  public:
    CBrush() = default;
    explicit CBrush(COLORREF color) { CreateSolidBrush(color); }
    BOOL CreateSolidBrush(COLORREF color);
};

class VISTRANE_API CDC {
  public:
    CDC() = default;
    ~CDC();
    CDC(const CDC&) = delete;
    CDC& operator=(const CDC&) = delete;

    // ---- Device and selection --------------------------------------------------------------

    // Makes a memory device with the stock black pen, white brush and default palette and no
    // bitmap; `other` (null: the screen) is not needed by a software device. 0 when a device is
    // made already or memory runs out.
    BOOL CreateCompatibleDC(CDC* other);
    BOOL DeleteDC();
    HDC GetSafeHdc() const { return m_hDC; }

    // Each returns the object selected before; the first call returns the device's own default
    // object, which can be selected back. Null without a device, or for an object of another
    // kind (nothing is selected then). The device does not own what is selected into it.
    CBitmap* SelectObject(CBitmap* bitmap);
    CPen* SelectObject(CPen* pen);
    CBrush* SelectObject(CBrush* brush);
    // Selects a stock pen or brush; returns the previous pen or brush, null on failure.
    CGdiObject* SelectStockObject(int object);
    // Palettes only colour PALETTEINDEX values on deep targets, so forceBackground changes
    // nothing; RealizePalette returns the selected palette's entry count.
    CPalette* SelectPalette(CPalette* palette, BOOL forceBackground);
    UINT RealizePalette();

    // Each returns the previous value, 0 for a value the device does not know.
    int SetROP2(int mode);
    int SetStretchBltMode(int mode);
    int SetBkMode(int mode);
    CPoint SetViewportOrg(int x, int y);
    CPoint SetViewportOrg(POINT p) { return SetViewportOrg(p.x, p.y); }
    CPoint GetViewportOrg() const;
    // Moves the origin by (dx, dy); returns the previous origin.
    CPoint OffsetViewportOrg(int dx, int dy);

    // ---- Block transfers -------------------------------------------------------------------

    // Clipped to both bitmaps. `source` may be null for DSTINVERT, BLACKNESS and WHITENESS.
    // 0 for an unknown raster operation or a missing bitmap.
    BOOL BitBlt(int x, int y, int width, int height, CDC* source, int sourceX, int sourceY,
                DWORD rop);
    BOOL StretchBlt(int x, int y, int width, int height, CDC* source, int sourceX, int sourceY,
                    int sourceWidth, int sourceHeight, DWORD rop);

    // ---- Shapes and lines ------------------------------------------------------------------

    BOOL Rectangle(int left, int top, int right, int bottom);
    BOOL Rectangle(const RECT* r) { return Rectangle(r->left, r->top, r->right, r->bottom); }
    // Corners are quarters of an ellipseWidth x ellipseHeight ellipse (at most the rectangle).
    BOOL RoundRect(int left, int top, int right, int bottom, int ellipseWidth, int ellipseHeight);
    BOOL Ellipse(int left, int top, int right, int bottom);
    BOOL Ellipse(const RECT* r) { return Ellipse(r->left, r->top, r->right, r->bottom); }
    BOOL Polyline(const POINT* points, int count);
    CPoint MoveTo(int x, int y);
    CPoint MoveTo(POINT p) { return MoveTo(p.x, p.y); }
    BOOL LineTo(int x, int y);
    BOOL LineTo(POINT p) { return LineTo(p.x, p.y); }
    // Fills with the colour regardless of the raster-operation mode and the selected tools.
    void FillSolidRect(const RECT* r, COLORREF color);
    void FillSolidRect(int x, int y, int width, int height, COLORREF color);

    // ---- Device paths and text -------------------------------------------------------------

    // Selects the font for text output; returns the font selected before (null at first).
    CFont* SelectObject(CFont* font);
    // count points, three per cubic segment: two control points and the end. Outside a path
    // bracket it only moves the current position.
    BOOL PolyBezierTo(const POINT* points, int count);
    // Adds the text's outlines to the open path; outside a path bracket it draws nothing.
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
