// The fitter's per-anchor passes with four anchors per AVX2 register. Every lane performs the
// reference's operations in the reference's order, so the bits match; see fit_kernels.h. Only
// this file is compiled for AVX2 (without FMA, so nothing is contracted), and fit_kernels.cpp
// picks it only after asking the processor.

#include <immintrin.h>

#include "path/fit_kernels.h"

namespace vistrane::path {

namespace {

// a * s + b * t, two products then one sum, as C_2DVector's operators round them.
inline __m256d Lerp(__m256d a, __m256d b, __m256d s, __m256d t) {
    return _mm256_add_pd(_mm256_mul_pd(a, s), _mm256_mul_pd(b, t));
}

inline __m256d Splat(double v) {
    return _mm256_set1_pd(v);
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

// The cubic's x or y at t (s = 1 - t), by de Casteljau as EvalCubic.
inline __m256d Cubic(const double p[4], __m256d s, __m256d t) {
    const __m256d c0 = Splat(p[0]);
    const __m256d c1 = Splat(p[1]);
    const __m256d c2 = Splat(p[2]);
    const __m256d c3 = Splat(p[3]);
    __m256d p0 = Lerp(c0, c1, s, t);
    __m256d p1 = Lerp(c1, c2, s, t);
    const __m256d p2 = Lerp(c2, c3, s, t);
    p0 = Lerp(p0, p1, s, t);
    p1 = Lerp(p1, p2, s, t);
    return Lerp(p0, p1, s, t);
}

}  // namespace

void NewtonPassAvx2(const CubicControls& c, const CubicDerivatives& d, const double* x,
                    const double* y, double* u, int n) {
    const Axes p = Split(c.p, 4);
    const Axes q1 = Split(d.q1, 3);
    const Axes q2 = Split(d.q2, 2);
    const __m256d one = Splat(1.0);
    int i = 0;
    for (; i + 4 <= n; i += 4) {
        const __m256d t = _mm256_loadu_pd(u + i);
        const __m256d s = _mm256_sub_pd(one, t);
        const __m256d qx = _mm256_sub_pd(Cubic(p.x, s, t), _mm256_loadu_pd(x + i));
        const __m256d qy = _mm256_sub_pd(Cubic(p.y, s, t), _mm256_loadu_pd(y + i));
        // EvalQuadratic and EvalLinear, each with its own 1 - t (the same value).
        const __m256d ax = Lerp(Splat(q1.x[0]), Splat(q1.x[1]), s, t);
        const __m256d bx = Lerp(Splat(q1.x[1]), Splat(q1.x[2]), s, t);
        const __m256d ay = Lerp(Splat(q1.y[0]), Splat(q1.y[1]), s, t);
        const __m256d by = Lerp(Splat(q1.y[1]), Splat(q1.y[2]), s, t);
        const __m256d v1x = Lerp(ax, bx, s, t);
        const __m256d v1y = Lerp(ay, by, s, t);
        const __m256d v2x = Lerp(Splat(q2.x[0]), Splat(q2.x[1]), s, t);
        const __m256d v2y = Lerp(Splat(q2.y[0]), Splat(q2.y[1]), s, t);
        const __m256d numerator = _mm256_add_pd(_mm256_mul_pd(qx, v1x), _mm256_mul_pd(qy, v1y));
        const __m256d denominator =
            _mm256_add_pd(_mm256_add_pd(_mm256_mul_pd(v1x, v1x), _mm256_mul_pd(v1y, v1y)),
                          _mm256_add_pd(_mm256_mul_pd(qx, v2x), _mm256_mul_pd(qy, v2y)));
        // Unordered "not equal": a NaN denominator steps, as "!= 0.0" does; the quotient of a
        // zero denominator is computed but not taken (exceptions are masked).
        const __m256d step = _mm256_cmp_pd(denominator, _mm256_setzero_pd(), _CMP_NEQ_UQ);
        const __m256d moved = _mm256_sub_pd(t, _mm256_div_pd(numerator, denominator));
        _mm256_storeu_pd(u + i, _mm256_blendv_pd(t, moved, step));
    }
    NewtonPassRef(c, d, x + i, y + i, u + i, n - i);
}

void LeastSquaresPassAvx2(const LeastSquaresEnds& e, const double* x, const double* y,
                          const double* u, int n, LeastSquaresSums& sums) {
    const __m256d one = Splat(1.0);
    const __m256d three = Splat(3.0);
    LeastSquaresSums acc = sums;
    int i = 0;
    for (; i + 4 <= n; i += 4) {
        const __m256d b = _mm256_loadu_pd(u + i);
        const __m256d s = _mm256_sub_pd(one, b);
        const __m256d b0 = _mm256_mul_pd(_mm256_mul_pd(s, s), s);
        const __m256d b3b = _mm256_mul_pd(three, b);
        const __m256d b1 = _mm256_mul_pd(_mm256_mul_pd(b3b, s), s);
        const __m256d b2 = _mm256_mul_pd(_mm256_mul_pd(b3b, b), s);
        const __m256d b3 = _mm256_mul_pd(_mm256_mul_pd(b, b), b);
        const __m256d v1x = _mm256_mul_pd(Splat(e.t1x), b1);
        const __m256d v1y = _mm256_mul_pd(Splat(e.t1y), b1);
        const __m256d v2x = _mm256_mul_pd(Splat(e.t2x), b2);
        const __m256d v2y = _mm256_mul_pd(Splat(e.t2y), b2);
        const __m256d w0 = _mm256_add_pd(b0, b1);
        const __m256d w3 = _mm256_add_pd(b2, b3);
        const __m256d tx = _mm256_sub_pd(
            _mm256_loadu_pd(x + i),
            _mm256_add_pd(_mm256_mul_pd(Splat(e.a0x), w0), _mm256_mul_pd(Splat(e.a3x), w3)));
        const __m256d ty = _mm256_sub_pd(
            _mm256_loadu_pd(y + i),
            _mm256_add_pd(_mm256_mul_pd(Splat(e.a0y), w0), _mm256_mul_pd(Splat(e.a3y), w3)));
        alignas(32) double c00[4];
        alignas(32) double c01[4];
        alignas(32) double c11[4];
        alignas(32) double x0[4];
        alignas(32) double x1[4];
        _mm256_store_pd(c00, _mm256_add_pd(_mm256_mul_pd(v1x, v1x), _mm256_mul_pd(v1y, v1y)));
        _mm256_store_pd(c01, _mm256_add_pd(_mm256_mul_pd(v1x, v2x), _mm256_mul_pd(v1y, v2y)));
        _mm256_store_pd(c11, _mm256_add_pd(_mm256_mul_pd(v2x, v2x), _mm256_mul_pd(v2y, v2y)));
        _mm256_store_pd(x0, _mm256_add_pd(_mm256_mul_pd(v1x, tx), _mm256_mul_pd(v1y, ty)));
        _mm256_store_pd(x1, _mm256_add_pd(_mm256_mul_pd(v2x, tx), _mm256_mul_pd(v2y, ty)));
        // One anchor after the other, as the reference adds them.
        for (int k = 0; k < 4; ++k) {
            acc.c00 += c00[k];
            acc.c01 += c01[k];
            acc.c11 += c11[k];
            acc.x0 += x0[k];
            acc.x1 += x1[k];
        }
    }
    LeastSquaresPassRef(e, x + i, y + i, u + i, n - i, acc);
    sums = acc;
}

bool MaxErrorPassAvx2(const CubicControls& c, const double* x, const double* y, const double* u,
                      int n, double stopAt, double& maxDist, int& at) {
    const Axes p = Split(c.p, 4);
    const __m256d one = Splat(1.0);
    const __m256d zero = _mm256_setzero_pd();
    int i = 0;
    for (; i + 4 <= n; i += 4) {
        const __m256d v = _mm256_loadu_pd(u + i);
        // u > 1 ? 1 : (u >= 0 ? u : 0); both ordered compares are false for NaN, giving 0.
        const __m256d inside = _mm256_and_pd(_mm256_cmp_pd(v, zero, _CMP_GE_OQ), v);
        const __m256d t = _mm256_blendv_pd(inside, one, _mm256_cmp_pd(v, one, _CMP_GT_OQ));
        const __m256d s = _mm256_sub_pd(one, t);
        const __m256d dx = _mm256_sub_pd(Cubic(p.x, s, t), _mm256_loadu_pd(x + i));
        const __m256d dy = _mm256_sub_pd(Cubic(p.y, s, t), _mm256_loadu_pd(y + i));
        alignas(32) double d[4];
        _mm256_store_pd(d, _mm256_add_pd(_mm256_mul_pd(dx, dx), _mm256_mul_pd(dy, dy)));
        for (int k = 0; k < 4; ++k) {
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

}  // namespace vistrane::path
