#include <vistrane/companion/geom.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <new>
#include <numbers>

#include <vistrane/companion/2dvector.h>

namespace {

LONG SaturateToLong(long long v) {
    return v > INT32_MAX ? INT32_MAX : static_cast<LONG>(v);
}

int OctantOfDirection(double dx, double dy) {
    if (dx == 0.0 && dy == 0.0) {
        return GEOM_OCTANT_RIGHT;
    }
    // y grows downwards, so a positive angle turns clockwise on the screen.
    const double degrees = C_2DVector::RadToDeg(std::atan2(dy, dx));
    const int k = static_cast<int>(std::ceil((degrees - 22.5) / 45.0));
    return (k + 8) % 8;
}

// Whether a horizontal ray to the right of `p` crosses the edge. Integer arithmetic, so the
// plain and the precomputed tests cannot disagree by rounding.
bool RayCrossesEdge(const S_PointInsidePolyEdge& e, CPoint p) {
    if (p.y < e.m_Y0 || p.y >= e.m_Y1) {
        return false;
    }
    // The edge's x at row p.y is x0 + dx * (p.y - y0) / dy; it must lie strictly right of p.x.
    return (static_cast<long long>(p.x) - e.m_X0) * e.m_Dy <
           e.m_Dx * (static_cast<long long>(p.y) - e.m_Y0);
}

bool MakeEdge(CPoint a, CPoint b, S_PointInsidePolyEdge* edge) {
    if (a.y == b.y) {
        return false;
    }
    if (a.y > b.y) {
        std::swap(a, b);
    }
    *edge = {a.x, a.y, b.y, static_cast<long long>(b.x) - a.x, static_cast<long long>(b.y) - a.y};
    return true;
}

// Uniform steps for a cubic so that the chords stay within a quarter pixel: the chord error of
// n steps is at most max|B''| / (8 n^2), and max|B''| <= 6 * the largest second difference of
// the control points, so n = ceil(sqrt(3 * that difference)) for a quarter pixel.
int StepsForCubic(const C_2DVector p[4]) {
    const double d1 = (p[0] - p[1] * 2.0 + p[2]).Magnitude();
    const double d2 = (p[1] - p[2] * 2.0 + p[3]).Magnitude();
    const double n = std::ceil(std::sqrt(3.0 * std::max(d1, d2)));
    constexpr double kMaxSteps = 1024.0;
    return n < 1.0 ? 1 : static_cast<int>(std::min(n, kMaxSteps));
}

}  // namespace

LONG C_Geom::SqPointDistance(CPoint a, CPoint b) {
    const long long dx = static_cast<long long>(a.x) - b.x;
    const long long dy = static_cast<long long>(a.y) - b.y;
    const unsigned long long sq =
        static_cast<unsigned long long>(dx * dx) + static_cast<unsigned long long>(dy * dy);
    return sq > INT32_MAX ? INT32_MAX : static_cast<LONG>(sq);
}

BOOL C_Geom::IsPointCloseToPoint(CPoint a, CPoint b, long distance) {
    const double dx = static_cast<double>(a.x) - b.x;
    const double dy = static_cast<double>(a.y) - b.y;
    const double d = static_cast<double>(distance);
    return distance >= 0 && dx * dx + dy * dy <= d * d ? 1 : 0;
}

LONG C_Geom::Sq2DPointVectorMagnitude(CPoint v) {
    const long long x = v.x;
    const long long y = v.y;
    return SaturateToLong(x * x + y * y);
}

CPoint C_Geom::Get2DPointVectorProjection(CPoint direction, CPoint v) {
    return C_2DVector(v).ProjectOn(C_2DVector(direction));
}

CPoint C_Geom::Get2DPointVectorProjectionThroughDirection(CPoint lineDirection, CPoint move,
                                                          CPoint displacement) {
    // t * move - displacement must be parallel to the line: cross(line, t * move - d) = 0.
    const C_2DVector l(lineDirection);
    const C_2DVector m(move);
    const C_2DVector d(displacement);
    const double lm = l.m_X * m.m_Y - l.m_Y * m.m_X;
    if (lm == 0.0) {
        return {};
    }
    const double ld = l.m_X * d.m_Y - l.m_Y * d.m_X;
    return m * (ld / lm);
}

CPoint C_Geom::Get2DPointVectorDistance(CPoint direction, CPoint v) {
    const C_2DVector vv(v);
    return vv - vv.ProjectOn(C_2DVector(direction));
}

CPoint C_Geom::Rotate2DPoint(CPoint point, CPoint centre, CPoint from, CPoint to) {
    const C_2DVector a(centre, from);
    const C_2DVector b(centre, to);
    if (a.IsNull() || b.IsNull()) {
        return point;
    }
    const double angle = std::atan2(a.m_X * b.m_Y - a.m_Y * b.m_X, a.DotProduct(b));
    C_2DVector p(centre, point);
    p.RotateByRadAngle(angle);
    return p + C_2DVector(centre);
}

GEOM_DisplacementOctant C_Geom::GetPointDisplacementOctant(CPoint centre, CPoint point) {
    return static_cast<GEOM_DisplacementOctant>(OctantOfDirection(
        static_cast<double>(point.x) - centre.x, static_cast<double>(point.y) - centre.y));
}

int C_Geom::Get2DPoint3PointDirectionOctant(CPoint a, CPoint b, CPoint c) {
    const C_2DVector fromA = C_2DVector(a, b).Normalize();
    const C_2DVector fromC = C_2DVector(c, b).Normalize();
    const C_2DVector outward = fromA + fromC;
    if (outward.Magnitude() > 1e-9) {
        return OctantOfDirection(outward.m_X, outward.m_Y);
    }
    // Straight through b: the normal turned clockwise on the screen from a -> c.
    const C_2DVector along(a, c);
    return OctantOfDirection(-along.m_Y, along.m_X);
}

BOOL C_Geom::IsPointInsidePoly(CPoint point, const CPoint* vertices, int count) {
    if (count < 3) {
        return 0;
    }
    bool inside = false;
    for (int i = 0, j = count - 1; i < count; j = i++) {
        S_PointInsidePolyEdge edge;
        if (MakeEdge(vertices[j], vertices[i], &edge) && RayCrossesEdge(edge, point)) {
            inside = !inside;
        }
    }
    return inside ? 1 : 0;
}

int C_Geom::PreCalcPointInsidePoly(S_PointInsidePolyData* data, const CPoint* vertices, int count) {
    data->m_Edges.clear();
    data->m_Bounds = CRect(1, 1, 0, 0);
    if (count < 3) {
        return 0;
    }
    CRect box(vertices[0].x, vertices[0].y, vertices[0].x, vertices[0].y);
    for (int i = 0, j = count - 1; i < count; j = i++) {
        box.left = std::min(box.left, vertices[i].x);
        box.top = std::min(box.top, vertices[i].y);
        box.right = std::max(box.right, vertices[i].x);
        box.bottom = std::max(box.bottom, vertices[i].y);
        S_PointInsidePolyEdge edge;
        if (MakeEdge(vertices[j], vertices[i], &edge)) {
            data->m_Edges.push_back(edge);
        }
    }
    data->m_Bounds = box;
    return 1;
}

BOOL C_Geom::IsPointInsidePolyPreCalc(const S_PointInsidePolyData* data, CPoint point) {
    const CRect& box = data->m_Bounds;
    // Only the half-open spans can claim a point, so the bottom row and the right column of the
    // box are outside, as they are for the plain test.
    if (point.x < box.left || point.x >= box.right || point.y < box.top || point.y >= box.bottom) {
        return 0;
    }
    bool inside = false;
    for (const S_PointInsidePolyEdge& edge : data->m_Edges) {
        if (RayCrossesEdge(edge, point)) {
            inside = !inside;
        }
    }
    return inside ? 1 : 0;
}

POINT* C_Geom::FlattenGDISegments(const POINT* points, long* count) {
    const long n = *count;
    *count = 0;
    if (n < 1 || (n - 1) % 3 != 0) {
        return nullptr;
    }
    long total = 1;
    for (long s = 0; s + 3 < n; s += 3) {
        const C_2DVector p[4] = {C_2DVector(CPoint(points[s])), C_2DVector(CPoint(points[s + 1])),
                                 C_2DVector(CPoint(points[s + 2])),
                                 C_2DVector(CPoint(points[s + 3]))};
        total += StepsForCubic(p);
    }
    POINT* out = new (std::nothrow) POINT[static_cast<size_t>(total)];
    if (out == nullptr) {
        return nullptr;
    }
    long written = 0;
    out[written++] = points[0];
    for (long s = 0; s + 3 < n; s += 3) {
        const C_2DVector p[4] = {C_2DVector(CPoint(points[s])), C_2DVector(CPoint(points[s + 1])),
                                 C_2DVector(CPoint(points[s + 2])),
                                 C_2DVector(CPoint(points[s + 3]))};
        const int steps = StepsForCubic(p);
        for (int k = 1; k <= steps; ++k) {
            const double t = static_cast<double>(k) / steps;
            const double u = 1.0 - t;
            // Bernstein form; the last step is the end point exactly.
            const C_2DVector q = k == steps ? p[3]
                                            : p[0] * (u * u * u) + p[1] * (3.0 * u * u * t) +
                                                  p[2] * (3.0 * u * t * t) + p[3] * (t * t * t);
            const CPoint c = q;
            if (c.x != out[written - 1].x || c.y != out[written - 1].y) {
                out[written++] = c;
            }
        }
    }
    *count = written;
    return out;
}
