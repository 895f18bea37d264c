#pragma once

// C_Geom: integer point geometry on CPoints for the path and frame code, and the flattening of
// device Bezier runs into polylines. It keeps no state; make one wherever it is needed.
//
// Coordinates are image pixels with y growing downwards. The exact integer tests
// (point-in-polygon) hold for coordinates within +-2^30.

#include <vector>

#include <vistrane/export.h>
#include <vistrane/platform/geometry.h>

// The direction of a point seen from a centre, in eight 45-degree sectors, clockwise on the
// screen starting at the right: sector k covers the angles (k * 45 - 22.5, k * 45 + 22.5].
enum GEOM_DisplacementOctant {
    GEOM_OCTANT_RIGHT = 0,
    GEOM_OCTANT_DOWN_RIGHT = 1,
    GEOM_OCTANT_DOWN = 2,
    GEOM_OCTANT_DOWN_LEFT = 3,
    GEOM_OCTANT_LEFT = 4,
    GEOM_OCTANT_UP_LEFT = 5,
    GEOM_OCTANT_UP = 6,
    GEOM_OCTANT_UP_RIGHT = 7,
};

// One non-horizontal polygon edge, oriented so that m_Y0 < m_Y1; it spans the rows
// m_Y0 <= y < m_Y1 (the half-open rule that makes every crossing count once).
struct S_PointInsidePolyEdge {
    LONG m_X0;
    LONG m_Y0;
    LONG m_Y1;
    long long m_Dx;  // x1 - x0
    long long m_Dy;  // y1 - y0, positive
};

// The precomputed form of one polygon: its bounding box and its non-horizontal edges.
struct S_PointInsidePolyData {
    CRect m_Bounds;  // right and bottom inclusive here: the box of the vertices
    std::vector<S_PointInsidePolyEdge> m_Edges;
};

class VISTRANE_API C_Geom {
  public:
    // Squared distance; saturates at the largest LONG instead of wrapping.
    LONG SqPointDistance(CPoint a, CPoint b);
    // True when |a - b| <= distance.
    BOOL IsPointCloseToPoint(CPoint a, CPoint b, long distance);
    LONG Sq2DPointVectorMagnitude(CPoint v);
    // The projection of v on `direction`, rounded; (0, 0) for a null direction.
    CPoint Get2DPointVectorProjection(CPoint direction, CPoint v);
    // The multiple t * move that lies on the line through `displacement` parallel to
    // `lineDirection`: how far a corner slides along its other edge (`move`) so that it stays on
    // the dragged edge. (0, 0) when `move` is parallel to the line.
    CPoint Get2DPointVectorProjectionThroughDirection(CPoint lineDirection, CPoint move,
                                                      CPoint displacement);
    // The component of v perpendicular to `direction` (v minus its projection), rounded.
    CPoint Get2DPointVectorDistance(CPoint direction, CPoint v);
    // `point` turned about `centre` by the angle from (from - centre) to (to - centre), rounded.
    // Unchanged when from or to coincides with the centre.
    CPoint Rotate2DPoint(CPoint point, CPoint centre, CPoint from, CPoint to);
    // The octant of `point` seen from `centre`; GEOM_OCTANT_RIGHT when they coincide.
    GEOM_DisplacementOctant GetPointDisplacementOctant(CPoint centre, CPoint point);
    // The octant of the outward direction at b of the polyline a, b, c: the bisector pointing
    // away from both neighbours at a corner; at a straight point (a, b, c collinear) the normal
    // to the right of a -> c on the screen. This is how a frame orients the handle at b.
    int Get2DPoint3PointDirectionOctant(CPoint a, CPoint b, CPoint c);

    // Even-odd crossing test. Boundary rule: a horizontal ray to the right from the point; an
    // edge counts when it spans the point's row half-open (lower y inclusive) and crosses
    // strictly to the right. So points on left and top edges are inside, points on right and
    // bottom edges outside, and two polygons sharing an edge never both claim a point on it.
    BOOL IsPointInsidePoly(CPoint point, const CPoint* vertices, int count);
    // The same test split into a per-polygon preparation and a per-point test with identical
    // results; 0 for fewer than 3 vertices (every test then answers 0).
    int PreCalcPointInsidePoly(S_PointInsidePolyData* data, const CPoint* vertices, int count);
    BOOL IsPointInsidePolyPreCalc(const S_PointInsidePolyData* data, CPoint point);

    // Flattens a device Bezier run: points[0] is the start and every following three points
    // are the two control points and the end of a cubic segment. *count gives the number of
    // input points (1 + 3k) and receives the number of output points. Each segment is cut
    // into enough uniform steps that the polyline stays within a quarter pixel of the curve;
    // points are rounded and repeated points dropped. Returns an array allocated with new[]
    // that the caller releases with delete[], or null (with *count = 0) for a count that is
    // not 1 + 3k or a failed allocation.
    POINT* FlattenGDISegments(const POINT* points, long* count);
};
