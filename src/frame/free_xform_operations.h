#pragma once

// The geometry of the free transform frame as free functions over its ten points, so that every
// drag is a pure function of the points at mouse-down, the handle, the operation and the
// pointer. Points are indexed by FXF_PointCodes: corners 0, 2, 4, 6, mid-points 1, 3, 5, 7, the
// clone of corner 0 at 8 and the centre at 9. Results are rounded to whole pixels by C_Geom.

#include <array>

#include <vistrane/frame/free_xform_codes.h>
#include <vistrane/platform/geometry.h>

namespace vistrane::frame {

using FramePoints = std::array<CPoint, 10>;

// The centre of the frame: half-way between the left and right mid-points in x and between the
// top and bottom mid-points in y, truncating.
CPoint CentralPosition(const FramePoints& pts);
// FXF_Center, else the first point 0..8 equal to the centre, else FXF_NoPoint.
FXF_PointCodes CenterPositionCode(const FramePoints& pts);
// Puts the centre where `code` says; FXF_NoPoint (and anything out of range) leaves it.
void RepositionCenter(FramePoints& pts, FXF_PointCodes code);
// The clone vertex and the four mid-points from the corners; the centre is not touched.
void UpdateDerivedPoints(FramePoints& pts);

// p moved onto the nearest of every `step`-th of 24 directions 15 degrees apart through
// `origin` (step 1: 15 degrees, step 3: 45 degrees). The directions are integer vectors with
// (+-100, +-100) at the diagonals; ties keep the earlier direction.
CPoint SnapToDegree(CPoint p, int step, CPoint origin);

// The operation that a drag of the kind `editing` carries out with the given modifiers.
FXF_OperationCodes OperationFor(FXF_EditingCodes editing, bool shift, bool ctrl, bool alt);
// The cursor orientation of a handle from the outward direction at it; FXF_MO_None for the
// centre, for no handle, and when the handle's two neighbours coincide.
FXF_MovementOrientation HandleOrientation(const FramePoints& pts, int pointCode);
// The table from a direction octant (0..7) to a cursor orientation; FXF_MO_None otherwise.
FXF_MovementOrientation OrientationFromOctant(int octant);
// Vertical with horizontal, one diagonal with the other; FXF_MO_None stays.
FXF_MovementOrientation InvertOrientation(FXF_MovementOrientation o);

// Each sets `pts` (already a copy of `start`) for the pointer at p; derived points and the
// centre are the caller's. `d` is p minus the start point.
void MoveFrame(FramePoints& pts, const FramePoints& start, CPoint d);
// Turns the corners about the start centre by the angle from `from` to `to` seen from it.
void RotateFrame(FramePoints& pts, const FramePoints& start, CPoint from, CPoint to);
// Where a dragged centre lands: the central position or a frame point 0..7 within 50 pixels
// (in that order of preference), else p.
CPoint CatchCenter(const FramePoints& pts, CPoint p);
// Corner operations 0..7 on corner v. Returns the corner along whose edge an edge-snapping
// operation slides (its neighbour), or -1.
int DragVertex(FramePoints& pts, const FramePoints& start, int v, FXF_OperationCodes op, CPoint p);
// Mid-point operations 8..12 on mid-point m.
void DragMidPoint(FramePoints& pts, const FramePoints& start, int m, FXF_OperationCodes op,
                  CPoint p);

}  // namespace vistrane::frame
