// The reference forms of the fitter's per-anchor passes, written with the same C_2DVector
// operations as BezierCurvePoint and the Newton step, and the choice of the fastest set.

#include "path/fit_kernels.h"

namespace vistrane::path {

void NewtonPassRef(const CubicControls& c, const CubicDerivatives& d, const double* x,
                   const double* y, double* u, int n) {
    for (int i = 0; i < n; ++i) {
        NewtonStep(c, d, C_2DVector(x[i], y[i]), u[i]);
    }
}

void LeastSquaresPassRef(const LeastSquaresEnds& e, const double* x, const double* y,
                         const double* u, int n, LeastSquaresSums& sums) {
    const C_2DVector tHat1(e.t1x, e.t1y);
    const C_2DVector tHat2(e.t2x, e.t2y);
    const C_2DVector a0(e.a0x, e.a0y);
    const C_2DVector a3(e.a3x, e.a3y);
    for (int i = 0; i < n; ++i) {
        const double b = u[i];
        const double s = 1.0 - b;
        const double b0 = s * s * s;
        const double b1 = 3.0 * b * s * s;
        const double b2 = 3.0 * b * b * s;
        const double b3 = b * b * b;
        const C_2DVector v1 = tHat1 * b1;
        const C_2DVector v2 = tHat2 * b2;
        sums.c00 += v1.DotProduct(v1);
        sums.c01 += v1.DotProduct(v2);
        sums.c11 += v2.DotProduct(v2);
        const C_2DVector tmp = C_2DVector(x[i], y[i]) - (a0 * (b0 + b1) + a3 * (b2 + b3));
        sums.x0 += v1.DotProduct(tmp);
        sums.x1 += v2.DotProduct(tmp);
    }
}

bool MaxErrorPassRef(const CubicControls& c, const double* x, const double* y, const double* u,
                     int n, double stopAt, double& maxDist, int& at) {
    for (int i = 0; i < n; ++i) {
        // A NaN parameter measures at t = 0.
        const double t = u[i] > 1.0 ? 1.0 : (u[i] >= 0.0 ? u[i] : 0.0);
        const double d = (EvalCubic(c, t) - C_2DVector(x[i], y[i])).SelfDotProduct();
        if (d >= maxDist) {
            maxDist = d;
            at = i;
            if (d >= stopAt) {
                return true;
            }
        }
    }
    return false;
}

const FitKernels& FitKernelsFor(cpu::InstructionSet set) {
    static const FitKernels reference{NewtonPassRef, LeastSquaresPassRef, MaxErrorPassRef};
#if VISTRANE_X86_KERNELS
    static const FitKernels sse2{NewtonPassSse2, LeastSquaresPassSse2, MaxErrorPassSse2};
    static const FitKernels avx2{NewtonPassAvx2, LeastSquaresPassAvx2, MaxErrorPassAvx2};
    switch (set) {
        case cpu::InstructionSet::kSse2:
            return sse2;
        case cpu::InstructionSet::kAvx2:
            return avx2;
        default:
            break;
    }
#else
    (void)set;
#endif
    return reference;
}

}  // namespace vistrane::path
