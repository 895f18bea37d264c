#pragma once

// The fitter's three per-anchor passes over packed anchors (x[i], y[i] as doubles) and their
// parameters u[i]: one Newton step for every anchor, the sums of the least-squares system, and
// the largest squared distance. Each has a plain reference, which defines the bits, and an SSE2
// form that carries two anchors per register through exactly the same IEEE operations in the
// same order (no contraction, correctly rounded division and square root), so it gives the
// same bits; the sums are still added one anchor at a time, in order. An AVX2 form does the
// same with four anchors. Both hand the tail to the reference.

#include "path/bezier_eval.h"
#include "platform/cpu_features.h"

namespace vistrane::path {

// The running sums of GenerateBezier's 2 x 2 system.
struct LeastSquaresSums {
    double c00 = 0.0;
    double c01 = 0.0;
    double c11 = 0.0;
    double x0 = 0.0;
    double x1 = 0.0;
};

// The constants of one GenerateBezier pass: the end tangents and the end anchors.
struct LeastSquaresEnds {
    double t1x, t1y, t2x, t2y;
    double a0x, a0y, a3x, a3y;
};

// u[i] -= (Q(u) - A).Q'(u) / (Q'(u).Q'(u) + (Q(u) - A).Q''(u)) for i < n; a zero denominator
// leaves u[i].
using NewtonPassFunction = void (*)(const CubicControls& c, const CubicDerivatives& d,
                                    const double* x, const double* y, double* u, int n);

// Adds the terms of anchors 0..n-1 to `sums`, in index order.
using LeastSquaresPassFunction = void (*)(const LeastSquaresEnds& e, const double* x,
                                          const double* y, const double* u, int n,
                                          LeastSquaresSums& sums);

// Continues a largest-distance scan over anchors 0..n-1, each measured at its parameter
// clamped to [0, 1]: an anchor whose squared distance d satisfies d >= maxDist becomes the
// maximum (ties to the later one, NaN never); the scan ends after a new maximum reaches
// `stopAt`. Returns whether it ended that way.
using MaxErrorPassFunction = bool (*)(const CubicControls& c, const double* x, const double* y,
                                      const double* u, int n, double stopAt, double& maxDist,
                                      int& at);

struct FitKernels {
    NewtonPassFunction newton;
    LeastSquaresPassFunction leastSquares;
    MaxErrorPassFunction maxError;
};

void NewtonPassRef(const CubicControls& c, const CubicDerivatives& d, const double* x,
                   const double* y, double* u, int n);
void LeastSquaresPassRef(const LeastSquaresEnds& e, const double* x, const double* y,
                         const double* u, int n, LeastSquaresSums& sums);
bool MaxErrorPassRef(const CubicControls& c, const double* x, const double* y, const double* u,
                     int n, double stopAt, double& maxDist, int& at);

void NewtonPassSse2(const CubicControls& c, const CubicDerivatives& d, const double* x,
                    const double* y, double* u, int n);
void LeastSquaresPassSse2(const LeastSquaresEnds& e, const double* x, const double* y,
                          const double* u, int n, LeastSquaresSums& sums);
bool MaxErrorPassSse2(const CubicControls& c, const double* x, const double* y, const double* u,
                      int n, double stopAt, double& maxDist, int& at);

void NewtonPassAvx2(const CubicControls& c, const CubicDerivatives& d, const double* x,
                    const double* y, double* u, int n);
void LeastSquaresPassAvx2(const LeastSquaresEnds& e, const double* x, const double* y,
                          const double* u, int n, LeastSquaresSums& sums);
bool MaxErrorPassAvx2(const CubicControls& c, const double* x, const double* y, const double* u,
                      int n, double stopAt, double& maxDist, int& at);

// The passes written for an instruction set; the reference passes for kReference.
const FitKernels& FitKernelsFor(cpu::InstructionSet set);

}  // namespace vistrane::path
