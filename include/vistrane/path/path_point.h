#pragma once

// S_PathPoint: one anchor of a sub-path with its two direction (control) points, and the bits
// that describe its editing state and attributes.
//
// A segment runs from point i to point i + 1 (and, closed, from the last point back to 0).
// Its Bezier control points are P0 = anchor i, P1 = anchor i + m_NextDirection of i,
// P2 = anchor i+1 + m_PrevDirection of i+1, P3 = anchor i+1. Direction points are offsets, so
// moving an anchor moves its directions with it; (0, 0) is a straight segment end.

#include <vistrane/platform/geometry.h>

// Bits of S_PathPoint::m_Flags: editing state, never stored in a path file.
enum PathPointFlags : unsigned char {
    PPF_SELECTED = 0x01,
    PPF_PREV_DIRECTION_VISIBLE = 0x02,
    PPF_NEXT_DIRECTION_VISIBLE = 0x04,
};

// Bits of S_PathPoint::m_Attributes, stored in path files.
enum PathPointAttributes : unsigned char {
    PPA_SHAPE_ANCHOR = 0x20,       // made by the free deform frame's shape builders
    PPA_SERIAL = 0x40,             // made by the magnetic tool in serial mode
    PPA_LINKED_DIRECTIONS = 0x80,  // a smooth anchor: the two directions move together
};

// How SelectPointsInRect combines the rectangle with the current selection.
enum PTSEL_OPERATION {
    PTSEL_REPLACE = 0,
    PTSEL_ADD = 1,
    PTSEL_SUBTRACT = 2,
};

// 28 bytes: six signed 32-bit coordinates, the flags, the attributes and two unused bytes.
// Arrays of it are moved with memory copies.
struct S_PathPoint {
    CPoint m_PrevDirection;      // offset from the anchor
    CPoint m_NextDirection;      // offset from the anchor
    CPoint m_Anchor;             // absolute image pixels
    unsigned char m_Flags;       // PathPointFlags
    unsigned char m_Attributes;  // PathPointAttributes
};
static_assert(sizeof(S_PathPoint) == 28);
