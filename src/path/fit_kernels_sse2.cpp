// The fitter's per-anchor passes with two anchors per SSE2 register. Every lane performs the
// reference's operations in the reference's order, so the bits match; see fit_kernels.h.
// SSE2 is part of every x86-64 processor, so this file needs no extra compiler flags.

#include "path/fit_kernels.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace vistrane::path {

#if defined(__SSE2__)

namespace {

// a * s + b * t, two products then one sum, as C_2DVector's operators round them.
inline __m128d Lerp(__m128d a, __m128d b, __m128d s, __m128d t) {
    return _mm_add_pd(_mm_mul_pd(a, s), _mm_mul_pd(b, t));
}

inline __m128d Splat(double v) {
    return _mm_set1_pd(v);
}

// The cubic's x or y at t (s = 1 - t), by de Casteljau as EvalCubic.
inline __m128d Cubic(const double p[4], __m128d s, __m128d t) {
    const __m128d c0 = Splat(p[0]);
    const __m128d c1 = Splat(p[1]);
    const __m128d c2 = Splat(p[2]);
    const __m128d c3 = Splat(p[3]);
    __m128d p0 = Lerp(c0, c1, s, t);
    __m128d p1 = Lerp(c1, c2, s, t);
    const __m128d p2 = Lerp(c2, c3, s, t);
    p0 = Lerp(p0, p1, s, t);
    p1 = Lerp(p1, p2, s, t);
    return Lerp(p0, p1, s, t);
}

struct Axes {
    double x[4];
    double y[4];
};

Axes Split(const C_2DVector* p, int n) {
    Axes a{};
    for (int k = 0; k < n; ++k) {
        a.x[k] = p[k].m_X;
        a.y[k] = p[k].m_Y;
    }
    return a;
}

}  // namespace

void NewtonPassSse2(const CubicControls& c, const CubicDerivatives& d, const double* x,
                    const double* y, double* u, int n) {
    const Axes p = Split(c.p, 4);
    const Axes q1 = Split(d.q1, 3);
    const Axes q2 = Split(d.q2, 2);
    const __m128d one = Splat(1.0);
    const __m128d zero = _mm_setzero_pd();
    int i = 0;
    for (; i + 2 <= n; i += 2) {
        const __m128d t = _mm_loadu_pd(u + i);
        const __m128d s = _mm_sub_pd(one, t);
        const __m128d qx = _mm_sub_pd(Cubic(p.x, s, t), _mm_loadu_pd(x + i));
        const __m128d qy = _mm_sub_pd(Cubic(p.y, s, t), _mm_loadu_pd(y + i));
        // EvalQuadratic and EvalLinear, each with its own 1 - t (the same value).
        const __m128d ax = Lerp(Splat(q1.x[0]), Splat(q1.x[1]), s, t);
        const __m128d bx = Lerp(Splat(q1.x[1]), Splat(q1.x[2]), s, t);
        const __m128d ay = Lerp(Splat(q1.y[0]), Splat(q1.y[1]), s, t);
        const __m128d by = Lerp(Splat(q1.y[1]), Splat(q1.y[2]), s, t);
        const __m128d v1x = Lerp(ax, bx, s, t);
        const __m128d v1y = Lerp(ay, by, s, t);
        const __m128d v2x = Lerp(Splat(q2.x[0]), Splat(q2.x[1]), s, t);
        const __m128d v2y = Lerp(Splat(q2.y[0]), Splat(q2.y[1]), s, t);
        const __m128d numerator = _mm_add_pd(_mm_mul_pd(qx, v1x), _mm_mul_pd(qy, v1y));
        const __m128d denominator =
            _mm_add_pd(_mm_add_pd(_mm_mul_pd(v1x, v1x), _mm_mul_pd(v1y, v1y)),
                       _mm_add_pd(_mm_mul_pd(qx, v2x), _mm_mul_pd(qy, v2y)));
        // Unordered compare: a NaN denominator steps, as "!= 0.0" does; the quotient of a
        // zero denominator is computed but not taken (exceptions are masked).
        const __m128d step = _mm_cmpneq_pd(denominator, zero);
        const __m128d moved = _mm_sub_pd(t, _mm_div_pd(numerator, denominator));
        _mm_storeu_pd(u + i, _mm_or_pd(_mm_and_pd(step, moved), _mm_andnot_pd(step, t)));
    }
    NewtonPassRef(c, d, x + i, y + i, u + i, n - i);
}

void LeastSquaresPassSse2(const LeastSquaresEnds& e, const double* x, const double* y,
                          const double* u, int n, LeastSquaresSums& sums) {
    const __m128d one = Splat(1.0);
    const __m128d three = Splat(3.0);
    int i = 0;
    for (; i + 2 <= n; i += 2) {
        const __m128d b = _mm_loadu_pd(u + i);
        const __m128d s = _mm_sub_pd(one, b);
        const __m128d b0 = _mm_mul_pd(_mm_mul_pd(s, s), s);
        const __m128d b3b = _mm_mul_pd(three, b);
        const __m128d b1 = _mm_mul_pd(_mm_mul_pd(b3b, s), s);
        const __m128d b2 = _mm_mul_pd(_mm_mul_pd(b3b, b), s);
        const __m128d b3 = _mm_mul_pd(_mm_mul_pd(b, b), b);
        const __m128d v1x = _mm_mul_pd(Splat(e.t1x), b1);
        const __m128d v1y = _mm_mul_pd(Splat(e.t1y), b1);
        const __m128d v2x = _mm_mul_pd(Splat(e.t2x), b2);
        const __m128d v2y = _mm_mul_pd(Splat(e.t2y), b2);
        const __m128d w0 = _mm_add_pd(b0, b1);
        const __m128d w3 = _mm_add_pd(b2, b3);
        const __m128d tx =
            _mm_sub_pd(_mm_loadu_pd(x + i),
                       _mm_add_pd(_mm_mul_pd(Splat(e.a0x), w0), _mm_mul_pd(Splat(e.a3x), w3)));
        const __m128d ty =
            _mm_sub_pd(_mm_loadu_pd(y + i),
                       _mm_add_pd(_mm_mul_pd(Splat(e.a0y), w0), _mm_mul_pd(Splat(e.a3y), w3)));
        alignas(16) double c00[2];
        alignas(16) double c01[2];
        alignas(16) double c11[2];
        alignas(16) double x0[2];
        alignas(16) double x1[2];
        _mm_store_pd(c00, _mm_add_pd(_mm_mul_pd(v1x, v1x), _mm_mul_pd(v1y, v1y)));
        _mm_store_pd(c01, _mm_add_pd(_mm_mul_pd(v1x, v2x), _mm_mul_pd(v1y, v2y)));
        _mm_store_pd(c11, _mm_add_pd(_mm_mul_pd(v2x, v2x), _mm_mul_pd(v2y, v2y)));
        _mm_store_pd(x0, _mm_add_pd(_mm_mul_pd(v1x, tx), _mm_mul_pd(v1y, ty)));
        _mm_store_pd(x1, _mm_add_pd(_mm_mul_pd(v2x, tx), _mm_mul_pd(v2y, ty)));
        // One anchor after the other, as the reference adds them.
        sums.c00 = (sums.c00 + c00[0]) + c00[1];
        sums.c01 = (sums.c01 + c01[0]) + c01[1];
        sums.c11 = (sums.c11 + c11[0]) + c11[1];
        sums.x0 = (sums.x0 + x0[0]) + x0[1];
        sums.x1 = (sums.x1 + x1[0]) + x1[1];
    }
    LeastSquaresPassRef(e, x + i, y + i, u + i, n - i, sums);
}

bool MaxErrorPassSse2(const CubicControls& c, const double* x, const double* y, const double* u,
                      int n, double stopAt, double& maxDist, int& at) {
    const Axes p = Split(c.p, 4);
    const __m128d one = Splat(1.0);
    const __m128d zero = _mm_setzero_pd();
    int i = 0;
    for (; i + 2 <= n; i += 2) {
        const __m128d v = _mm_loadu_pd(u + i);
        // u > 1 ? 1 : (u >= 0 ? u : 0); both compares are false for NaN, which gives 0.
        const __m128d inside = _mm_and_pd(_mm_cmpge_pd(v, zero), v);
        const __m128d above = _mm_cmpgt_pd(v, one);
        const __m128d t = _mm_or_pd(_mm_and_pd(above, one), _mm_andnot_pd(above, inside));
        const __m128d s = _mm_sub_pd(one, t);
        const __m128d dx = _mm_sub_pd(Cubic(p.x, s, t), _mm_loadu_pd(x + i));
        const __m128d dy = _mm_sub_pd(Cubic(p.y, s, t), _mm_loadu_pd(y + i));
        alignas(16) double d[2];
        _mm_store_pd(d, _mm_add_pd(_mm_mul_pd(dx, dx), _mm_mul_pd(dy, dy)));
        for (int k = 0; k < 2; ++k) {
            if (d[k] >= maxDist) {
                maxDist = d[k];
                at = i + k;
                if (d[k] >= stopAt) {
                    return true;
                }
            }
        }
    }
    int tailAt = -1;
    const bool stopped = MaxErrorPassRef(c, x + i, y + i, u + i, n - i, stopAt, maxDist, tailAt);
    if (tailAt >= 0) {
        at = i + tailAt;
    }
    return stopped;
}

#else

void NewtonPassSse2(const CubicControls& c, const CubicDerivatives& d, const double* x,
                    const double* y, double* u, int n) {
    NewtonPassRef(c, d, x, y, u, n);
}

void LeastSquaresPassSse2(const LeastSquaresEnds& e, const double* x, const double* y,
                          const double* u, int n, LeastSquaresSums& sums) {
    LeastSquaresPassRef(e, x, y, u, n, sums);
}

bool MaxErrorPassSse2(const CubicControls& c, const double* x, const double* y, const double* u,
                      int n, double stopAt, double& maxDist, int& at) {
    return MaxErrorPassRef(c, x, y, u, n, stopAt, maxDist, at);
}

#endif

}  // namespace vistrane::path
