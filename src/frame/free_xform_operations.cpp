#include "frame/free_xform_operations.h"

#include <vistrane/companion/geom.h>

namespace vistrane::frame {

namespace {

// How near a dragged centre must come to the central position or a frame point to be caught.
constexpr long kCenterCatchPx = 50;

// 24 directions 15 degrees apart, clockwise on the screen from the right. The 45-degree entries
// are (+-100, +-100) rather than (+-71, +-71): exact diagonals on the pixel grid.
constexpr CPoint kSnapDirections[24] = {
    {100, 0},  {97, 26},   {87, 50},   {100, 100},   {50, 87},   {26, 97},
    {0, 100},  {-26, 97},  {-50, 87},  {-100, 100},  {-87, 50},  {-97, 26},
    {-100, 0}, {-97, -26}, {-87, -50}, {-100, -100}, {-50, -87}, {-26, -97},
    {0, -100}, {26, -97},  {50, -87},  {100, -100},  {87, -50},  {97, -26},
};

// Ring neighbours among the corners 0, 2, 4, 6; for a mid-point, the corners of its edge.
int PrevVertex(int k) {
    return k % 2 != 0 ? k - 1 : (k + 6) % 8;
}
int NextVertex(int k) {
    return k % 2 != 0 ? (k + 1) % 8 : (k + 2) % 8;
}
int SymmVertex(int k) {
    return (k + 4) % 8;
}

// How far corner `a` must slide along its other edge (towards or away from the corner beyond
// it) for the edge from a to the moved point m to keep its start direction, when m has moved by
// d. `aBeforeM` says on which side of m the corner a lies, which names the corner beyond it.
CPoint FollowOffset(const FramePoints& start, int a, int m, CPoint d, bool aBeforeM) {
    if (d == CPoint(0, 0)) {
        return {};
    }
    const int beyond = aBeforeM ? (a + 6) % 8 : (a + 2) % 8;
    C_Geom geom;
    return geom.Get2DPointVectorProjectionThroughDirection(start[m] - start[a],
                                                           start[a] - start[beyond], d);
}

// Both neighbours of the moved point m follow it.
void AdjacentVerticesFollowVertex(FramePoints& pts, const FramePoints& start, int m) {
    const CPoint d = pts[m] - start[m];
    const int prev = PrevVertex(m);
    const int next = NextVertex(m);
    pts[prev] = start[prev] + FollowOffset(start, prev, m, d, true);
    pts[next] = start[next] + FollowOffset(start, next, m, d, false);
}

// The corners between the moved corners v and o follow both. Each of them is adjacent to both,
// and the two single followings slide it along different edges, so their sum is the exact
// intersection of the two edges that keep their directions.
void AdjacentVerticesFollow2Vertices(FramePoints& pts, const FramePoints& start, int v, int o) {
    const CPoint dv = pts[v] - start[v];
    const CPoint dO = pts[o] - start[o];
    const int prev = PrevVertex(v);
    const int next = NextVertex(v);
    pts[prev] = start[prev] + FollowOffset(start, prev, v, dv, true) +
                FollowOffset(start, prev, o, dO, false);
    pts[next] = start[next] + FollowOffset(start, next, v, dv, false) +
                FollowOffset(start, next, o, dO, true);
}

// The edge of mid-point m follows it, and the opposite edge follows the mirrored motion.
void AdjacentVerticesFollow2MidPoints(FramePoints& pts, const FramePoints& start, int m) {
    const int opposite = SymmVertex(m);
    pts[opposite] = start[opposite] - (pts[m] - start[m]);
    AdjacentVerticesFollowVertex(pts, start, m);
    AdjacentVerticesFollowVertex(pts, start, opposite);
}

// The corner moves only along its diagonal through the opposite corner.
CPoint FixVertexPositionForAspect(const FramePoints& start, int v, CPoint p) {
    const CPoint d = p - start[v];
    if (d == CPoint(0, 0)) {
        return p;
    }
    C_Geom geom;
    return start[v] + geom.Get2DPointVectorProjection(start[v] - start[SymmVertex(v)], d);
}

// The corner slides along whichever of its two edges the motion is closer to; the edge to the
// previous corner wins a tie. Returns the corner at the other end of that edge.
int FixToSnapVertexToEdge(FramePoints& pts, const FramePoints& start, int v, CPoint p) {
    C_Geom geom;
    const CPoint d = p - start[v];
    const int prev = PrevVertex(v);
    const int next = NextVertex(v);
    const CPoint toPrev = start[prev] - start[v];
    const CPoint toNext = start[next] - start[v];
    const LONG offPrev = geom.Sq2DPointVectorMagnitude(geom.Get2DPointVectorDistance(toPrev, d));
    const LONG offNext = geom.Sq2DPointVectorMagnitude(geom.Get2DPointVectorDistance(toNext, d));
    const bool alongPrev = offPrev <= offNext;
    pts[v] = start[v] + geom.Get2DPointVectorProjection(alongPrev ? toPrev : toNext, d);
    return alongPrev ? prev : next;
}

// p on the line of mid-point m's own edge; p itself when it has not moved.
CPoint SnapPointToEdge(const FramePoints& start, int m, CPoint p) {
    if (p == start[m]) {
        return p;
    }
    C_Geom geom;
    return start[m] + geom.Get2DPointVectorProjection(start[NextVertex(m)] - start[PrevVertex(m)],
                                                      p - start[m]);
}

}  // namespace

CPoint CentralPosition(const FramePoints& pts) {
    return {(pts[FXF_LeftMid].x + pts[FXF_RightMid].x) / 2,
            (pts[FXF_TopMid].y + pts[FXF_BottomMid].y) / 2};
}

FXF_PointCodes CenterPositionCode(const FramePoints& pts) {
    const CPoint centre = pts[FXF_Center];
    if (centre == CentralPosition(pts)) {
        return FXF_Center;
    }
    for (int k = FXF_TopLeft; k <= FXF_CloneVertex; ++k) {
        if (pts[k] == centre) {
            return static_cast<FXF_PointCodes>(k);
        }
    }
    return FXF_NoPoint;
}

void RepositionCenter(FramePoints& pts, FXF_PointCodes code) {
    if (code == FXF_Center) {
        pts[FXF_Center] = CentralPosition(pts);
    } else if (code >= FXF_TopLeft && code <= FXF_CloneVertex) {
        pts[FXF_Center] = pts[code];
    }
}

void UpdateDerivedPoints(FramePoints& pts) {
    pts[FXF_CloneVertex] = pts[FXF_TopLeft];
    for (int m = FXF_TopMid; m < FXF_CloneVertex; m += 2) {
        // Integer division truncates toward zero, as the frame has always rounded mid-points.
        pts[m] = CPoint((pts[m - 1].x + pts[m + 1].x) / 2, (pts[m - 1].y + pts[m + 1].y) / 2);
    }
}

CPoint SnapToDegree(CPoint p, int step, CPoint origin) {
    C_Geom geom;
    const CPoint v = p - origin;
    int best = 0;
    LONG bestOffset = 0;
    for (int i = 0; i < 24; i += step) {
        const LONG offset =
            geom.Sq2DPointVectorMagnitude(geom.Get2DPointVectorDistance(kSnapDirections[i], v));
        if (i == 0 || offset < bestOffset) {
            best = i;
            bestOffset = offset;
        }
    }
    return origin + geom.Get2DPointVectorProjection(kSnapDirections[best], v);
}

FXF_OperationCodes OperationFor(FXF_EditingCodes editing, bool shift, bool ctrl, bool alt) {
    switch (editing) {
        case FXF_EditVertex: {
            // Indexed by SHIFT | CTRL << 1 | ALT << 2.
            constexpr FXF_OperationCodes kVertex[8] = {FXF_OP_Vertex,
                                                       FXF_OP_VertexAspect,
                                                       FXF_OP_VertexFree,
                                                       FXF_OP_VertexSnapEdge,
                                                       FXF_OP_VertexSymmetric,
                                                       FXF_OP_VertexAspectSymmetric,
                                                       FXF_OP_VertexFreeSymmetric,
                                                       FXF_OP_VertexSnapEdgeSymmetric};
            return kVertex[(shift ? 1 : 0) | (ctrl ? 2 : 0) | (alt ? 4 : 0)];
        }
        case FXF_EditMidPoint: {
            // CTRL + ALT without SHIFT is the same as ALT alone: kept as the tool always was.
            constexpr FXF_OperationCodes kMidPoint[8] = {
                FXF_OP_MidPoint,          FXF_OP_MidPoint,
                FXF_OP_MidPointFree,      FXF_OP_MidPointAlong,
                FXF_OP_MidPointSymmetric, FXF_OP_MidPointSymmetric,
                FXF_OP_MidPointSymmetric, FXF_OP_MidPointAlongSymmetric};
            return kMidPoint[(shift ? 1 : 0) | (ctrl ? 2 : 0) | (alt ? 4 : 0)];
        }
        case FXF_EditCenter:
            return shift ? FXF_OP_CenterMove45 : FXF_OP_CenterMove;
        case FXF_EditFrameMove:
            return shift ? FXF_OP_FrameMove45 : FXF_OP_FrameMove;
        case FXF_EditFrameRotate:
            return shift ? FXF_OP_FrameRotate15 : FXF_OP_FrameRotate;
    }
    return FXF_OP_FrameMove;
}

FXF_MovementOrientation OrientationFromOctant(int octant) {
    switch (octant) {
        case 0:
        case 4:
            return FXF_MO_Horizontal;
        case 1:
        case 5:
            return FXF_MO_Diagonal1;
        case 2:
        case 6:
            return FXF_MO_Vertical;
        case 3:
        case 7:
            return FXF_MO_Diagonal3;
        default:
            return FXF_MO_None;
    }
}

FXF_MovementOrientation InvertOrientation(FXF_MovementOrientation o) {
    switch (o) {
        case FXF_MO_Vertical:
            return FXF_MO_Horizontal;
        case FXF_MO_Horizontal:
            return FXF_MO_Vertical;
        case FXF_MO_Diagonal1:
            return FXF_MO_Diagonal3;
        case FXF_MO_Diagonal3:
            return FXF_MO_Diagonal1;
        case FXF_MO_None:
            break;
    }
    return FXF_MO_None;
}

FXF_MovementOrientation HandleOrientation(const FramePoints& pts, int pointCode) {
    if (pointCode < FXF_TopLeft || pointCode > FXF_LeftMid) {
        return FXF_MO_None;
    }
    // The neighbours along the outline; corner 6 is followed by the clone of corner 0.
    const CPoint before = pts[PrevVertex(pointCode)];
    const CPoint after = pts[pointCode % 2 != 0 ? pointCode + 1 : pointCode + 2];
    if (before == after) {
        return FXF_MO_None;
    }
    C_Geom geom;
    return OrientationFromOctant(
        geom.Get2DPoint3PointDirectionOctant(before, pts[pointCode], after));
}

void MoveFrame(FramePoints& pts, const FramePoints& start, CPoint d) {
    for (int k = FXF_TopLeft; k < FXF_CloneVertex; k += 2) {
        pts[k] = start[k] + d;
    }
}

void RotateFrame(FramePoints& pts, const FramePoints& start, CPoint from, CPoint to) {
    const CPoint centre = start[FXF_Center];
    if (to == centre || to == from) {
        return;
    }
    C_Geom geom;
    for (int k = FXF_TopLeft; k < FXF_CloneVertex; k += 2) {
        pts[k] = geom.Rotate2DPoint(start[k], centre, from, to);
    }
}

CPoint CatchCenter(const FramePoints& pts, CPoint p) {
    C_Geom geom;
    const CPoint central = CentralPosition(pts);
    if (geom.IsPointCloseToPoint(central, p, kCenterCatchPx) != 0) {
        return central;
    }
    for (int k = FXF_TopLeft; k <= FXF_LeftMid; ++k) {
        if (geom.IsPointCloseToPoint(pts[k], p, kCenterCatchPx) != 0) {
            return pts[k];
        }
    }
    return p;
}

int DragVertex(FramePoints& pts, const FramePoints& start, int v, FXF_OperationCodes op, CPoint p) {
    const int o = SymmVertex(v);
    switch (op) {
        case FXF_OP_Vertex:
            pts[v] = p;
            AdjacentVerticesFollowVertex(pts, start, v);
            break;
        case FXF_OP_VertexAspect:
            pts[v] = FixVertexPositionForAspect(start, v, p);
            AdjacentVerticesFollowVertex(pts, start, v);
            break;
        case FXF_OP_VertexFree:
            pts[v] = p;
            break;
        case FXF_OP_VertexSymmetric:
        case FXF_OP_VertexAspectSymmetric:
            pts[v] = op == FXF_OP_VertexSymmetric ? p : FixVertexPositionForAspect(start, v, p);
            pts[o] = start[o] - (pts[v] - start[v]);
            AdjacentVerticesFollow2Vertices(pts, start, v, o);
            break;
        case FXF_OP_VertexFreeSymmetric:
            pts[v] = p;
            pts[o] = start[o] - (p - start[v]);
            break;
        case FXF_OP_VertexSnapEdge:
            return FixToSnapVertexToEdge(pts, start, v, p);
        case FXF_OP_VertexSnapEdgeSymmetric: {
            const int neighbour = FixToSnapVertexToEdge(pts, start, v, p);
            pts[neighbour] = start[neighbour] - (pts[v] - start[v]);
            return neighbour;
        }
        default:
            break;
    }
    return -1;
}

void DragMidPoint(FramePoints& pts, const FramePoints& start, int m, FXF_OperationCodes op,
                  CPoint p) {
    const int prev = PrevVertex(m);
    const int next = NextVertex(m);
    switch (op) {
        case FXF_OP_MidPoint:
            pts[m] = p;
            AdjacentVerticesFollowVertex(pts, start, m);
            break;
        case FXF_OP_MidPointFree:
            pts[prev] = start[prev] + (p - start[m]);
            pts[next] = start[next] + (p - start[m]);
            break;
        case FXF_OP_MidPointSymmetric:
            pts[m] = p;
            AdjacentVerticesFollow2MidPoints(pts, start, m);
            break;
        case FXF_OP_MidPointAlong:
        case FXF_OP_MidPointAlongSymmetric: {
            const CPoint d = SnapPointToEdge(start, m, p) - start[m];
            pts[prev] = start[prev] + d;
            pts[next] = start[next] + d;
            if (op == FXF_OP_MidPointAlongSymmetric) {
                pts[SymmVertex(prev)] = start[SymmVertex(prev)] - d;
                pts[SymmVertex(next)] = start[SymmVertex(next)] - d;
            }
            break;
        }
        default:
            break;
    }
}

}  // namespace vistrane::frame
