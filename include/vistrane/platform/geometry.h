#pragma once

// CPoint, CSize and CRect: signed 32-bit value types over POINT, SIZE and RECT. Rectangles are
// left, top, right, bottom with right and bottom exclusive; y grows downwards.

#include <vistrane/platform/types.h>

class CSize;
class CRect;

class CPoint : public tagPOINT {
  public:
    constexpr CPoint() : tagPOINT{0, 0} {}
    constexpr CPoint(LONG initX, LONG initY) : tagPOINT{initX, initY} {}
    constexpr CPoint(POINT p) : tagPOINT(p) {}  // NOLINT(google-explicit-constructor)
    constexpr explicit CPoint(SIZE s) : tagPOINT{s.cx, s.cy} {}

    constexpr void SetPoint(LONG newX, LONG newY) {
        x = newX;
        y = newY;
    }
    constexpr void Offset(LONG dx, LONG dy) {
        x += dx;
        y += dy;
    }
    constexpr void Offset(POINT p) { Offset(p.x, p.y); }

    constexpr bool operator==(const CPoint& o) const { return x == o.x && y == o.y; }
    constexpr bool operator!=(const CPoint& o) const { return !(*this == o); }
    constexpr CPoint& operator+=(POINT p) {
        Offset(p.x, p.y);
        return *this;
    }
    constexpr CPoint& operator-=(POINT p) {
        Offset(-p.x, -p.y);
        return *this;
    }
    constexpr CPoint operator+(POINT p) const { return {x + p.x, y + p.y}; }
    constexpr CPoint operator-(POINT p) const { return {x - p.x, y - p.y}; }
    constexpr CPoint operator-() const { return {-x, -y}; }
};

class CSize : public tagSIZE {
  public:
    constexpr CSize() : tagSIZE{0, 0} {}
    constexpr CSize(LONG initCX, LONG initCY) : tagSIZE{initCX, initCY} {}
    constexpr CSize(SIZE s) : tagSIZE(s) {}  // NOLINT(google-explicit-constructor)
    constexpr explicit CSize(POINT p) : tagSIZE{p.x, p.y} {}

    constexpr bool operator==(const CSize& o) const { return cx == o.cx && cy == o.cy; }
    constexpr bool operator!=(const CSize& o) const { return !(*this == o); }
    constexpr CSize operator+(SIZE s) const { return {cx + s.cx, cy + s.cy}; }
    constexpr CSize operator-(SIZE s) const { return {cx - s.cx, cy - s.cy}; }
};

class CRect : public tagRECT {
  public:
    constexpr CRect() : tagRECT{0, 0, 0, 0} {}
    constexpr CRect(LONG l, LONG t, LONG r, LONG b) : tagRECT{l, t, r, b} {}
    constexpr CRect(const RECT& r) : tagRECT(r) {}  // NOLINT(google-explicit-constructor)
    constexpr CRect(POINT topLeft, SIZE size)
        : tagRECT{topLeft.x, topLeft.y, topLeft.x + size.cx, topLeft.y + size.cy} {}
    constexpr CRect(POINT topLeft, POINT bottomRight)
        : tagRECT{topLeft.x, topLeft.y, bottomRight.x, bottomRight.y} {}

    constexpr LONG Width() const { return right - left; }
    constexpr LONG Height() const { return bottom - top; }
    constexpr CSize Size() const { return {Width(), Height()}; }
    constexpr CPoint TopLeft() const { return {left, top}; }
    constexpr CPoint BottomRight() const { return {right, bottom}; }
    constexpr CPoint CenterPoint() const { return {(left + right) / 2, (top + bottom) / 2}; }

    // Empty means no area: width or height zero or negative.
    constexpr bool IsRectEmpty() const { return right <= left || bottom <= top; }
    constexpr bool IsRectNull() const { return left == 0 && top == 0 && right == 0 && bottom == 0; }
    constexpr bool PtInRect(POINT p) const {
        return p.x >= left && p.x < right && p.y >= top && p.y < bottom;
    }

    constexpr void SetRect(LONG l, LONG t, LONG r, LONG b) {
        left = l;
        top = t;
        right = r;
        bottom = b;
    }
    constexpr void SetRectEmpty() { SetRect(0, 0, 0, 0); }
    constexpr void OffsetRect(LONG dx, LONG dy) {
        left += dx;
        right += dx;
        top += dy;
        bottom += dy;
    }
    constexpr void OffsetRect(POINT p) { OffsetRect(p.x, p.y); }
    constexpr void InflateRect(LONG dx, LONG dy) {
        left -= dx;
        right += dx;
        top -= dy;
        bottom += dy;
    }
    constexpr void DeflateRect(LONG dx, LONG dy) { InflateRect(-dx, -dy); }
    // Swaps the coordinates where right < left or bottom < top.
    constexpr void NormalizeRect() {
        if (left > right) {
            const LONG t = left;
            left = right;
            right = t;
        }
        if (top > bottom) {
            const LONG t = top;
            top = bottom;
            bottom = t;
        }
    }
    // The overlap of a and b; an empty overlap leaves the rectangle all zero and returns false.
    constexpr bool IntersectRect(const RECT& a, const RECT& b) {
        left = a.left > b.left ? a.left : b.left;
        top = a.top > b.top ? a.top : b.top;
        right = a.right < b.right ? a.right : b.right;
        bottom = a.bottom < b.bottom ? a.bottom : b.bottom;
        if (IsRectEmpty()) {
            SetRectEmpty();
            return false;
        }
        return true;
    }
    // The smallest rectangle holding both; an empty operand is ignored.
    constexpr bool UnionRect(const RECT& a, const RECT& b) {
        const CRect ra(a);
        const CRect rb(b);
        if (ra.IsRectEmpty()) {
            *this = rb;
        } else if (rb.IsRectEmpty()) {
            *this = ra;
        } else {
            SetRect(ra.left < rb.left ? ra.left : rb.left, ra.top < rb.top ? ra.top : rb.top,
                    ra.right > rb.right ? ra.right : rb.right,
                    ra.bottom > rb.bottom ? ra.bottom : rb.bottom);
        }
        return !IsRectEmpty();
    }

    constexpr bool operator==(const CRect& o) const {
        return left == o.left && top == o.top && right == o.right && bottom == o.bottom;
    }
    constexpr bool operator!=(const CRect& o) const { return !(*this == o); }
    constexpr CRect& operator&=(const RECT& o) {
        IntersectRect(*this, o);
        return *this;
    }
    constexpr CRect& operator|=(const RECT& o) {
        UnionRect(*this, o);
        return *this;
    }
};

// The free rectangle utilities of the platform, on plain RECTs.
constexpr BOOL SetRect(RECT* r, LONG l, LONG t, LONG rt, LONG b) {
    *r = RECT{l, t, rt, b};
    return 1;
}
constexpr BOOL IntersectRect(RECT* dst, const RECT* a, const RECT* b) {
    CRect r;
    const bool any = r.IntersectRect(*a, *b);
    *dst = r;
    return any ? 1 : 0;
}
constexpr BOOL OffsetRect(RECT* r, LONG dx, LONG dy) {
    r->left += dx;
    r->right += dx;
    r->top += dy;
    r->bottom += dy;
    return 1;
}
constexpr BOOL PtInRect(const RECT* r, POINT p) {
    return CRect(*r).PtInRect(p) ? 1 : 0;
}
