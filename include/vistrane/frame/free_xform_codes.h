#pragma once

// The codes of the free transform frame (C_FreeXFormFrame) and the hit description that tells a
// host which operation a mouse press starts or a drag is carrying out, and so which cursor to
// show. All values are 32-bit ints.

#include <vistrane/platform/geometry.h>

// The ten frame points, in the order in which the frame keeps them. Corners have even codes and
// mid-points odd ones; FXF_CloneVertex repeats the top-left corner so that loops over point i
// and point i + 2 wrap without a test. As a centre position, FXF_Center means the centre sits
// at the frame's central position and FXF_NoPoint that it is free.
enum FXF_PointCodes : int {
    FXF_TopLeft = 0,
    FXF_TopMid = 1,
    FXF_TopRight = 2,
    FXF_RightMid = 3,
    FXF_BottomRight = 4,
    FXF_BottomMid = 5,
    FXF_BottomLeft = 6,
    FXF_LeftMid = 7,
    FXF_CloneVertex = 8,
    FXF_Center = 9,
    FXF_NoPoint = 10,
};

// What the mouse press took hold of; kept for the whole drag.
enum FXF_EditingCodes : int {
    FXF_EditVertex = 0,
    FXF_EditMidPoint = 1,
    FXF_EditCenter = 2,
    FXF_EditFrameMove = 3,
    FXF_EditFrameRotate = 4,
};

// What a drag does, chosen from the handle and the modifier keys (SHIFT, CTRL, ALT), which are
// read again at every move.
enum FXF_OperationCodes : int {
    FXF_OP_Vertex = 0,                   // corner
    FXF_OP_VertexAspect = 1,             // corner, SHIFT: along its diagonal
    FXF_OP_VertexFree = 2,               // corner, CTRL: only that corner
    FXF_OP_VertexSymmetric = 3,          // corner, ALT: the opposite corner mirrors it
    FXF_OP_VertexSnapEdge = 4,           // corner, SHIFT + CTRL: along one of its edges
    FXF_OP_VertexAspectSymmetric = 5,    // corner, SHIFT + ALT
    FXF_OP_VertexFreeSymmetric = 6,      // corner, CTRL + ALT
    FXF_OP_VertexSnapEdgeSymmetric = 7,  // corner, SHIFT + CTRL + ALT
    FXF_OP_MidPoint = 8,                 // mid-point, no CTRL and no ALT: the edge moves across
    FXF_OP_MidPointFree = 9,             // mid-point, CTRL alone: the edge moves freely
    FXF_OP_MidPointSymmetric = 10,       // mid-point, ALT without CTRL, or CTRL + ALT
    FXF_OP_MidPointAlong = 11,           // mid-point, SHIFT + CTRL: skew along the edge
    FXF_OP_MidPointAlongSymmetric = 12,  // mid-point, SHIFT + CTRL + ALT
    FXF_OP_CenterMove = 13,              // centre
    FXF_OP_CenterMove45 = 14,            // centre, SHIFT: in steps of 45 degrees
    FXF_OP_FrameMove = 15,               // inside the frame, or outside with ALT
    FXF_OP_FrameMove45 = 16,             // as FXF_OP_FrameMove with SHIFT
    FXF_OP_FrameRotate = 17,             // outside the frame, or inside with ALT
    FXF_OP_FrameRotate15 = 18,           // as FXF_OP_FrameRotate with SHIFT: 15-degree steps
};

// Which double-arrow cursor a handle drag shows.
enum FXF_MovementOrientation : int {
    FXF_MO_Vertical = 0,
    FXF_MO_Horizontal = 1,
    FXF_MO_Diagonal1 = 2,  // top-left to bottom-right on the screen
    FXF_MO_Diagonal3 = 3,  // bottom-left to top-right
    FXF_MO_None = 4,
};

// The sector of the pointer around the centre, for a rotate cursor: 45-degree sectors going
// clockwise on the screen from the right.
enum FXF_RotateOctant : int {
    FXF_RO_Right = 0,
    FXF_RO_DownRight = 1,
    FXF_RO_Down = 2,
    FXF_RO_DownLeft = 3,
    FXF_RO_Left = 4,
    FXF_RO_UpLeft = 5,
    FXF_RO_Up = 6,
    FXF_RO_UpRight = 7,
};

// Eight 32-bit fields. m_StartPoint is the mouse-down point, or for a centre drag the centre's
// position at mouse-down; m_CenterPosition is where the centre sat when the drag began
// (FXF_Center, a frame point, or FXF_NoPoint when free).
struct S_FXFHitTestDescription {
    FXF_OperationCodes m_Operation = FXF_OP_FrameMove;
    FXF_RotateOctant m_RotateOctant = FXF_RO_Right;
    FXF_MovementOrientation m_Orientation = FXF_MO_None;
    FXF_PointCodes m_PointCode = FXF_NoPoint;
    FXF_EditingCodes m_EditingCode = FXF_EditFrameMove;
    CPoint m_StartPoint;
    FXF_PointCodes m_CenterPosition = FXF_Center;
};
static_assert(sizeof(S_FXFHitTestDescription) == 32, "eight 32-bit fields");
