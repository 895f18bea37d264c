#pragma once

// C_2DVector: a plane vector of two doubles, used by the path, fitting and frame code for all
// of its real-valued geometry. A plain value type: copying copies both components.

#include <vistrane/export.h>
#include <vistrane/platform/geometry.h>

class VISTRANE_API C_2DVector {
  public:
    // The default vector is (0, 0).
    C_2DVector() = default;
    C_2DVector(double x, double y) : m_X(x), m_Y(y) {}
    explicit C_2DVector(const CPoint& p) : m_X(p.x), m_Y(p.y) {}
    explicit C_2DVector(const CSize& s) : m_X(s.cx), m_Y(s.cy) {}
    // The vector from `from` to `to` (to - from).
    C_2DVector(const CPoint& from, const CPoint& to) : m_X(to.x - from.x), m_Y(to.y - from.y) {}
    C_2DVector(const C_2DVector&) = default;

    C_2DVector& operator=(const CPoint& p);
    C_2DVector& operator=(const C_2DVector&) = default;

    C_2DVector operator+(const C_2DVector& v) const { return {m_X + v.m_X, m_Y + v.m_Y}; }
    C_2DVector operator-(const C_2DVector& v) const { return {m_X - v.m_X, m_Y - v.m_Y}; }
    C_2DVector operator-() const { return {-m_X, -m_Y}; }
    C_2DVector operator*(double s) const { return {m_X * s, m_Y * s}; }
    C_2DVector& operator+=(const C_2DVector& v);
    C_2DVector& operator-=(const C_2DVector& v);
    bool operator==(const C_2DVector& v) const { return m_X == v.m_X && m_Y == v.m_Y; }

    // In place; each returns the vector itself. MultByVector multiplies component by component.
    C_2DVector& MultByScalar(double s);
    C_2DVector& MultByVector(const C_2DVector& v);
    C_2DVector CopyMultByScalar(double s) const { return *this * s; }
    // To length 1; a null vector stays null rather than becoming NaN.
    C_2DVector& Normalize();
    // Same direction, length `len`; a null vector stays null.
    C_2DVector& ScaleToLen(double len);
    // Rotation by `angle` radians, counter-clockwise in a y-up frame.
    C_2DVector& RotateByRadAngle(double angle);

    double Magnitude() const;
    double SelfDotProduct() const { return m_X * m_X + m_Y * m_Y; }
    double DotProduct(const C_2DVector& v) const { return m_X * v.m_X + m_Y * v.m_Y; }
    // Euclidean distance between this and `v`, both taken as points.
    double PointDistance(const C_2DVector& v) const;
    // The unsigned angle between the two vectors, 0..pi; 0 when either is null.
    double RadAngleWithVector(const C_2DVector& v) const;
    // A perpendicular of the same length: (-y, x) for a non-zero `side`, (y, -x) for 0.
    C_2DVector NormalVector(int side) const;
    // The projection of this vector on the direction of `v`; null when `v` is null.
    C_2DVector ProjectOn(const C_2DVector& v) const;
    // This point minus the nearest point of the segment a..b: the offset of the point from the
    // segment, whose length is the distance.
    C_2DVector DistanceFromSegToPoint(const C_2DVector& a, const C_2DVector& b) const;
    bool IsNull() const { return m_X == 0.0 && m_Y == 0.0; }
    // Parallel and pointing the same way (positive dot product); false when either is null.
    bool HasSameDirectionAs(const C_2DVector& v) const;

    static double DegToRad(double degrees);
    static double RadToDeg(double radians);

    // Each component rounded to the nearest integer, halves away from zero, so that a fitted
    // curve and its mirror image get mirrored offsets. Values beyond the 32-bit range saturate
    // and NaN becomes 0: coincident points can make the fitter produce them.
    operator CPoint() const;  // NOLINT(google-explicit-constructor)

    double m_X = 0.0;
    double m_Y = 0.0;
};
