#pragma once

// The cubic segment evaluator shared by C_SubPath::BezierCurvePoint and the fitter's inner
// loops, and the fitter's Newton step, inline so that the loops build the control points and
// derivative curves once per pass instead of once per anchor. One definition each, so the
// fitter measures exactly the curve that BezierCurvePoint returns and the public derivative
// evaluators (C_SubPath::BezierCurveVelocity, BezierCurveAcceleration) compute the same bits
// as the loops.

#include <vistrane/companion/2dvector.h>
#include <vistrane/path/path_point.h>

namespace vistrane::path {

struct CubicControls {
    C_2DVector p[4];
};

// P0..P3 of the segment from point a to point b.
inline CubicControls SegmentControls(const S_PathPoint& a, const S_PathPoint& b) {
    return {{C_2DVector(a.m_Anchor), C_2DVector(a.m_Anchor + a.m_NextDirection),
             C_2DVector(b.m_Anchor + b.m_PrevDirection), C_2DVector(b.m_Anchor)}};
}

// de Casteljau with weights (1 - t) and t at every level; t is not clamped.
inline C_2DVector EvalCubic(const CubicControls& c, double t) {
    const double s = 1.0 - t;
    C_2DVector p0 = c.p[0];
    C_2DVector p1 = c.p[1];
    C_2DVector p2 = c.p[2];
    const C_2DVector p3 = c.p[3];
    p0 = p0 * s + p1 * t;
    p1 = p1 * s + p2 * t;
    p2 = p2 * s + p3 * t;
    p0 = p0 * s + p1 * t;
    p1 = p1 * s + p2 * t;
    return p0 * s + p1 * t;
}

// The quadratic with control points v[0..2] at t, by de Casteljau; t is not clamped.
inline C_2DVector EvalQuadratic(const C_2DVector* v, double t) {
    const double s = 1.0 - t;
    const C_2DVector a = v[0] * s + v[1] * t;
    const C_2DVector b = v[1] * s + v[2] * t;
    return a * s + b * t;
}

// The line from v[0] to v[1] at t.
inline C_2DVector EvalLinear(const C_2DVector* v, double t) {
    return v[0] * (1.0 - t) + v[1] * t;
}

// The first and second derivative curves of a cubic: control points 3 (P[k+1] - P[k]) for
// k = 0..2, and 2 (Q'[k+1] - Q'[k]) for k = 0..1.
struct CubicDerivatives {
    C_2DVector q1[3];
    C_2DVector q2[2];
};

inline CubicDerivatives Derivatives(const CubicControls& c) {
    CubicDerivatives d;
    d.q1[0] = (c.p[1] - c.p[0]) * 3.0;
    d.q1[1] = (c.p[2] - c.p[1]) * 3.0;
    d.q1[2] = (c.p[3] - c.p[2]) * 3.0;
    d.q2[0] = (d.q1[1] - d.q1[0]) * 2.0;
    d.q2[1] = (d.q1[2] - d.q1[1]) * 2.0;
    return d;
}

// One Newton-Raphson step towards the parameter of the point of the cubic nearest `anchor`:
// u -= (Q(u) - A).Q'(u) / (Q'(u).Q'(u) + (Q(u) - A).Q''(u)). A zero denominator leaves u;
// u is not clamped.
inline void NewtonStep(const CubicControls& c, const CubicDerivatives& d, C_2DVector anchor,
                       double& u) {
    const C_2DVector qu = EvalCubic(c, u) - anchor;
    const C_2DVector q1u = EvalQuadratic(d.q1, u);
    const C_2DVector q2u = EvalLinear(d.q2, u);
    const double numerator = qu.DotProduct(q1u);
    const double denominator = q1u.DotProduct(q1u) + qu.DotProduct(q2u);
    if (denominator != 0.0) {
        u -= numerator / denominator;
    }
}

}  // namespace vistrane::path
