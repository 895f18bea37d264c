#pragma once

// Readable GoogleTest messages for the platform's points and rectangles.

#include <ostream>

#include <vistrane/platform/geometry.h>

inline void PrintTo(const CPoint& p, std::ostream* os) {
    *os << "(" << p.x << ", " << p.y << ")";
}

inline void PrintTo(const CRect& r, std::ostream* os) {
    *os << "{" << r.left << ", " << r.top << ", " << r.right << ", " << r.bottom << "}";
}
