// Least-squares fitting of digitized curves with cubic Beziers: Schneider's algorithm
// ("An Algorithm for Automatically Fitting Digitized Curves", Graphics Gems, 1990), run in
// place on the sub-path's point array. Kept anchors become segment ends, their direction
// offsets receive the fitted control points (rounded to pixels), and the anchors in between
// are removed in one pass at the end.
//
// Deviations from the published algorithm that this system keeps:
//  - no looser "worth reparametrising" threshold: up to 3 Newton rounds whenever the fit is
//    not yet within the error;
//  - the split uses one-sided chord tangents at the split point, not the centre tangent;
//  - no recursion limit: ranges of 2 points always succeed;
//  - a singular system is nudged (det = C00 * C11 * 1e-11) instead of falling back at once,
//    and the alpha thresholds are absolute (1e-06), not scaled by the segment length;
//  - control points are rounded to integer offsets, so the error is measured on the rounded
//    curve;
//  - the error of an anchor is measured at its parameter clamped to [0, 1] (the parameters
//    themselves stay unclamped), so that an accepted segment, not its extension, passes
//    within the error of every anchor;
//  - a zero chord total is not guarded: coincident anchors give non-finite parameters, which
//    make every comparison false, so the range is accepted with zero offsets.
//
// Cost: one work array per call; each range costs O(n) per round (at most 4 rounds), and
// splitting makes the whole fit O(n log n) for typical strokes. The work array holds, beside
// the parameters, the anchors as doubles and the chord lengths, each computed once per call
// instead of once per round and range, so that the per-anchor passes (fit_kernels.h) read
// packed doubles.

#include <cmath>
#include <cstdlib>
#include <limits>

#include <vistrane/path/sub_path.h>

#include "path/bezier_eval.h"
#include "path/fit_kernels.h"

namespace {

constexpr double kOneThird = 0.3333333333333333;  // 0x3FD5555555555555
const C_2DVector kNullTangent(1e-05, 1e-05);

C_2DVector Anchor(const S_PathPoint* points, int i) {
    return C_2DVector(points[i].m_Anchor);
}

C_2DVector UnitOrDefault(C_2DVector v) {
    v.Normalize();
    return v.IsNull() ? kNullTangent : v;
}

// m_FitParams holds four arrays of m_Count doubles, all indexed by point: the parameters, the
// anchors' x and y, and the chord length from the previous anchor.
constexpr size_t kFitArrays = 4;

struct FitArrays {
    double* u;
    double* x;
    double* y;
    double* chord;
};

FitArrays Arrays(double* work, int count) {
    const size_t n = static_cast<size_t>(count);
    return {work, work + n, work + 2 * n, work + 3 * n};
}

void ClearBits(unsigned char& bits, unsigned char mask) {
    bits &= static_cast<unsigned char>(~mask);
}

}  // namespace

void C_SubPath::Simplify(double error, int first, int last) {
    if (last == -1 || last > m_Count - 1) {
        last = m_Count - 1;
    }
    if (first >= 0 && first < m_Count) {
        if (last - first + 1 < 3) {
            // One or two anchors stay a polyline.
            for (int i = first; i <= last; ++i) {
                m_Points[i].m_PrevDirection = CPoint();
                m_Points[i].m_NextDirection = CPoint();
                m_Points[i].m_Attributes |= PPA_LINKED_DIRECTIONS;
            }
        } else {
            m_FitParams = static_cast<double*>(
                std::malloc(static_cast<size_t>(m_Count) * kFitArrays * sizeof(double)));
            if (m_FitParams != nullptr) {
                const FitArrays a = Arrays(m_FitParams, m_Count);
                for (int i = first; i <= last; ++i) {
                    a.x[i] = m_Points[i].m_Anchor.x;
                    a.y[i] = m_Points[i].m_Anchor.y;
                }
                // The same operations as (A[i] - A[i-1]).Magnitude().
                for (int i = first + 1; i <= last; ++i) {
                    const double dx = a.x[i] - a.x[i - 1];
                    const double dy = a.y[i] - a.y[i - 1];
                    a.chord[i] = std::sqrt(dx * dx + dy * dy);
                }
                SelectAll(0);
                for (int i = first; i <= last; ++i) {
                    m_Points[i].m_Flags = PPF_SELECTED;
                    m_Points[i].m_Attributes |= PPA_LINKED_DIRECTIONS;
                }
                m_FitSqError = error * error;
                FitCurve(first, last);
                std::free(m_FitParams);
                m_FitParams = nullptr;
            }
        }
    }
    SetAnchorsVisible(0);
}

void C_SubPath::FitCurve(int first, int last) {
    const C_2DVector tHat1 = ComputeLeftTangent(first);
    const C_2DVector tHat2 = ComputeRightTangent(last);
    FitCubic(first, last, tHat1, tHat2, 1);
    DelSelectedPoints();
}

void C_SubPath::FitCubic(int first, int last, C_2DVector tHat1, C_2DVector tHat2, int depth) {
    // The two halves of a split touch disjoint records and parameters, so their order does not
    // matter: the smaller half recurses and the larger one continues in this loop, which keeps
    // the stack depth logarithmic on 100,000-anchor strokes.
    for (;; ++depth) {
        // The selection marks points to delete; kept ends are deselected. Only the range's first
        // point loses its link, so the last point of the whole fit keeps it.
        ClearBits(m_Points[first].m_Flags, PPF_SELECTED);
        ClearBits(m_Points[last].m_Flags, PPF_SELECTED);
        ClearBits(m_Points[first].m_Attributes, PPA_LINKED_DIRECTIONS);

        if (last - first + 1 == 2) {
            const double dist =
                (Anchor(m_Points, last) - Anchor(m_Points, first)).Magnitude() * kOneThird;
            m_Points[first].m_NextDirection = C_2DVector(tHat1).ScaleToLen(dist);
            m_Points[last].m_PrevDirection = C_2DVector(tHat2).ScaleToLen(dist);
            return;
        }

        Parametrize(first, last);
        GenerateBezier(first, last, tHat1, tHat2);
        // Before the last round only "is the error reached?" matters: the split and the exact
        // error are overwritten by the next round, so those measurements stop at the first
        // point that reaches the error.
        int split = 0;
        double e = ComputeMaxError(first, last, &split, m_FitSqError);
        for (int round = 0; e >= m_FitSqError && round < 3; ++round) {
            ReParametrize(first, last);
            GenerateBezier(first, last, tHat1, tHat2);
            e = round < 2 ? ComputeMaxError(first, last, &split, m_FitSqError)
                          : ComputeMaxError(first, last, &split);
        }
        if (e <= m_FitSqError) {
            return;
        }

        const C_2DVector left = ComputeLeftTangent(split);
        const C_2DVector right = ComputeRightTangent(split);
        if (split - first <= last - split) {
            FitCubic(first, split, tHat1, right, depth + 1);
            first = split;
            tHat1 = left;
        } else {
            FitCubic(split, last, left, tHat2, depth + 1);
            last = split;
            tHat2 = right;
        }
    }
}

void C_SubPath::GenerateBezier(int first, int last, C_2DVector tHat1, C_2DVector tHat2) {
    const FitArrays a = Arrays(m_FitParams, m_Count);
    const C_2DVector a0 = Anchor(m_Points, first);
    const C_2DVector a3 = Anchor(m_Points, last);
    const vistrane::path::LeastSquaresEnds ends{tHat1.m_X, tHat1.m_Y, tHat2.m_X, tHat2.m_Y,
                                                a0.m_X,    a0.m_Y,    a3.m_X,    a3.m_Y};
    vistrane::path::LeastSquaresSums sums;
    vistrane::path::FitKernelsFor(vistrane::cpu::Best())
        .leastSquares(ends, a.x + first, a.y + first, a.u + first, last - first + 1, sums);
    const double c00 = sums.c00;
    const double c01 = sums.c01;
    const double c11 = sums.c11;
    const double x0 = sums.x0;
    const double x1 = sums.x1;
    double detC0C1 = c00 * c11 - c01 * c01;
    const double detC0X = c00 * x1 - c01 * x0;
    const double detXC1 = x0 * c11 - x1 * c01;
    if (detC0C1 == 0.0) {
        detC0C1 = c00 * c11 * 1e-11;
    }
    const double alphaL = detXC1 / detC0C1;
    const double alphaR = detC0X / detC0C1;
    if (alphaL < 1e-06 || alphaR < 1e-06) {
        const double dist = (a3 - a0).Magnitude() * kOneThird;
        m_Points[first].m_NextDirection = C_2DVector(tHat1).ScaleToLen(dist);
        m_Points[last].m_PrevDirection = C_2DVector(tHat2).ScaleToLen(dist);
    } else {
        m_Points[first].m_NextDirection = tHat1 * alphaL;
        m_Points[last].m_PrevDirection = tHat2 * alphaR;
    }
}

void C_SubPath::Parametrize(int first, int last) {
    const FitArrays a = Arrays(m_FitParams, m_Count);
    double* u = a.u;
    u[first] = 0.0;
    for (int i = first + 1; i <= last; ++i) {
        u[i] = u[i - 1] + a.chord[i];
    }
    const double total = u[last];
    u[last] = 1.0;
    for (int i = first + 1; i < last; ++i) {
        u[i] /= total;
    }
}

void C_SubPath::ReParametrize(int first, int last) {
    // The segment does not change during the pass, so its curves are built once.
    const vistrane::path::CubicControls c =
        vistrane::path::SegmentControls(m_Points[first], m_Points[last]);
    const vistrane::path::CubicDerivatives d = vistrane::path::Derivatives(c);
    const FitArrays a = Arrays(m_FitParams, m_Count);
    vistrane::path::FitKernelsFor(vistrane::cpu::Best())
        .newton(c, d, a.x + first, a.y + first, a.u + first, last - first + 1);
}

void C_SubPath::NewtonRaphsonRootFind(int first, int last, double* u, const S_PathPoint* p) const {
    const vistrane::path::CubicControls c =
        vistrane::path::SegmentControls(m_Points[first], m_Points[last]);
    vistrane::path::NewtonStep(c, vistrane::path::Derivatives(c), C_2DVector(p->m_Anchor), *u);
}

double C_SubPath::ComputeMaxError(int first, int last, int* split) const {
    return ComputeMaxError(first, last, split, std::numeric_limits<double>::infinity());
}

double C_SubPath::ComputeMaxError(int first, int last, int* split, double stopAt) const {
    *split = (first + 1 + last) / 2;
    const vistrane::path::CubicControls c =
        vistrane::path::SegmentControls(m_Points[first], m_Points[last]);
    const FitArrays a = Arrays(m_FitParams, m_Count);
    double maxDist = 0.0;
    int at = -1;
    // Newton leaves parameters unclamped, and on outlines that fold back on themselves (a
    // one-pixel spur traced out and back) it can carry one outside [0, 1], where the cubic's
    // extension passes near an anchor that the segment itself misses. Measuring at the
    // clamped parameter bounds the distance to the segment from above, so an accepted fit
    // keeps every anchor within the error.
    if (last - first > 1) {
        vistrane::path::FitKernelsFor(vistrane::cpu::Best())
            .maxError(c, a.x + first + 1, a.y + first + 1, a.u + first + 1, last - first - 1,
                      stopAt, maxDist, at);
    }
    if (at >= 0) {
        *split = first + 1 + at;
    }
    return maxDist;
}

C_2DVector C_SubPath::ComputeLeftTangent(int i) const {
    return UnitOrDefault(Anchor(m_Points, i + 1) - Anchor(m_Points, i));
}

C_2DVector C_SubPath::ComputeRightTangent(int i) const {
    return UnitOrDefault(Anchor(m_Points, i - 1) - Anchor(m_Points, i));
}

C_2DVector C_SubPath::BezierCurveVelocity(const C_2DVector* v, double t) {
    return vistrane::path::EvalQuadratic(v, t);
}

C_2DVector C_SubPath::BezierCurveAcceleration(const C_2DVector* v, double t) {
    return vistrane::path::EvalLinear(v, t);
}
