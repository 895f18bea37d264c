// Text into a device path: each character's glyph outline, decomposed by FreeType into lines,
// quadratic and cubic arcs, becomes closed figures of lines and cubic Beziers in device
// pixels.

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H

#include <cmath>
#include <cstdint>

#include "platform/font_face.h"

namespace vistrane::platform {

namespace {

// A point in 26.6 fixed point, already in device orientation (y down), as doubles so that the
// quadratic-to-cubic control points are computed before any rounding.
struct Vec {
    double x;
    double y;
};

LONG ToPixel(double v26) {
    return static_cast<LONG>(std::round(v26 / 64.0));
}

POINT ToPoint(Vec v) {
    return POINT{ToPixel(v.x), ToPixel(v.y)};
}

// Collects one glyph's contours into the path. FreeType ends every contour with a segment back
// to its start; a closing straight line is left to CloseFigure, as a device path does.
struct OutlineSink {
    DevicePath* path;
    double penX;      // 26.6, device x of the glyph origin
    double baseline;  // 26.6, device y of the baseline
    Vec start{};
    Vec current{};
    bool inContour = false;

    Vec Map(const FT_Vector* v) const {
        return Vec{penX + static_cast<double>(v->x), baseline - static_cast<double>(v->y)};
    }

    void FinishContour() {
        if (!inContour) {
            return;
        }
        inContour = false;
        path->CloseFigure();
    }

    void Line(Vec to) {
        path->AddLine(ToPoint(current), ToPoint(to));
        current = to;
    }

    void Cubic(Vec c1, Vec c2, Vec to) {
        const POINT points[3] = {ToPoint(c1), ToPoint(c2), ToPoint(to)};
        path->AddBezier(ToPoint(current), points);
        current = to;
    }
};

int MoveTo(const FT_Vector* to, void* user) {
    auto* sink = static_cast<OutlineSink*>(user);
    sink->FinishContour();
    sink->path->BreakFigure();
    sink->start = sink->current = sink->Map(to);
    sink->inContour = true;
    return 0;
}

int LineTo(const FT_Vector* to, void* user) {
    auto* sink = static_cast<OutlineSink*>(user);
    const Vec v = sink->Map(to);
    // The closing line is implied by the figure's close.
    if (v.x == sink->start.x && v.y == sink->start.y) {
        sink->current = v;
        return 0;
    }
    sink->Line(v);
    return 0;
}

int ConicTo(const FT_Vector* control, const FT_Vector* to, void* user) {
    auto* sink = static_cast<OutlineSink*>(user);
    const Vec p0 = sink->current;
    const Vec q = sink->Map(control);
    const Vec p2 = sink->Map(to);
    // Degree elevation: the cubic with these control points is the same curve.
    const Vec c1{p0.x + (q.x - p0.x) * 2.0 / 3.0, p0.y + (q.y - p0.y) * 2.0 / 3.0};
    const Vec c2{p2.x + (q.x - p2.x) * 2.0 / 3.0, p2.y + (q.y - p2.y) * 2.0 / 3.0};
    sink->Cubic(c1, c2, p2);
    return 0;
}

int CubicTo(const FT_Vector* c1, const FT_Vector* c2, const FT_Vector* to, void* user) {
    auto* sink = static_cast<OutlineSink*>(user);
    sink->Cubic(sink->Map(c1), sink->Map(c2), sink->Map(to));
    return 0;
}

// The next code point of UTF-8 text; malformed bytes give U+FFFD and advance by one.
char32_t NextCodePoint(const unsigned char* s, int length, int* i) {
    const unsigned char b = s[*i];
    int extra = 0;
    char32_t cp = 0;
    if (b < 0x80) {
        ++*i;
        return b;
    }
    if ((b & 0xE0) == 0xC0) {
        extra = 1;
        cp = b & 0x1F;
    } else if ((b & 0xF0) == 0xE0) {
        extra = 2;
        cp = b & 0x0F;
    } else if ((b & 0xF8) == 0xF0) {
        extra = 3;
        cp = b & 0x07;
    } else {
        ++*i;
        return 0xFFFD;
    }
    if (*i + extra >= length) {
        ++*i;
        return 0xFFFD;
    }
    for (int k = 1; k <= extra; ++k) {
        if ((s[*i + k] & 0xC0) != 0x80) {
            ++*i;
            return 0xFFFD;
        }
        cp = (cp << 6) | (s[*i + k] & 0x3F);
    }
    *i += extra + 1;
    return cp;
}

}  // namespace

bool AddTextOutlines(DevicePath* path, const FontFace& font, POINT origin, const char* text,
                     int length) {
    FT_Face face = font.m_Face;
    FT_Outline_Funcs funcs{};
    funcs.move_to = MoveTo;
    funcs.line_to = LineTo;
    funcs.conic_to = ConicTo;
    funcs.cubic_to = CubicTo;

    const auto* bytes = reinterpret_cast<const unsigned char*>(text);
    double penX = static_cast<double>(origin.x) * 64.0;
    const double baseline =
        static_cast<double>(origin.y) * 64.0 + static_cast<double>(face->size->metrics.ascender);
    FT_UInt previous = 0;
    for (int i = 0; i < length;) {
        const char32_t cp = NextCodePoint(bytes, length, &i);
        const FT_UInt glyph = FT_Get_Char_Index(face, cp);
        if (previous != 0 && FT_HAS_KERNING(face)) {
            FT_Vector kern{};
            if (FT_Get_Kerning(face, previous, glyph, FT_KERNING_UNFITTED, &kern) == 0) {
                penX += static_cast<double>(kern.x);
            }
        }
        if (FT_Load_Glyph(face, glyph, FT_LOAD_NO_BITMAP | FT_LOAD_NO_HINTING) != 0 ||
            face->glyph->format != FT_GLYPH_FORMAT_OUTLINE) {
            return false;
        }
        OutlineSink sink{path, penX, baseline};
        if (FT_Outline_Decompose(&face->glyph->outline, &funcs, &sink) != 0) {
            return false;
        }
        sink.FinishContour();
        penX += static_cast<double>(face->glyph->advance.x);
        previous = glyph;
    }
    path->BreakFigure();
    return true;
}

}  // namespace vistrane::platform
