#pragma once

// The cubic segment evaluator shared by C_SubPath::BezierCurvePoint and the fitter's inner
// loops, inline so that the loops do not rebuild the control points per sample. One function,
// so the fitter measures exactly the curve that BezierCurvePoint returns.

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

}  // namespace vistrane::path
