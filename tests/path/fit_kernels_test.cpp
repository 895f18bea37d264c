#include <gtest/gtest.h>

#include "support/instruction_sets.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include "path/fit_kernels.h"

using vistrane::path::CubicControls;
using vistrane::path::CubicDerivatives;
using vistrane::path::FitKernels;
using vistrane::path::LeastSquaresEnds;
using vistrane::path::LeastSquaresSums;

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kGuard = -12345.678;
constexpr int kGuards = 3;

// The bits of a number; every NaN reads the same, since the sign and payload of a NaN depend
// on the order in which the compiler hands operands to an instruction, and no result of the
// fit looks at them (comparisons with NaN are false, and NaN offsets round to 0).
std::uint64_t Bits(double v) {
    if (std::isnan(v)) {
        return 0x7ff8000000000000u;
    }
    std::uint64_t b = 0;
    std::memcpy(&b, &v, sizeof b);
    return b;
}

// One pass's input: anchors near the segment, as a traced outline gives them, and parameters
// that include the values Newton can produce from coincident or folding anchors.
struct PassInput {
    CubicControls c;
    std::vector<double> x, y, u;
};

PassInput RandomInput(std::mt19937& rng, int n) {
    std::uniform_int_distribution<int> coord(0, 400);
    std::uniform_int_distribution<int> offset(-60, 60);
    std::uniform_real_distribution<double> param(-0.4, 1.4);
    std::uniform_int_distribution<int> pick(0, 15);
    PassInput in;
    const C_2DVector p0(coord(rng), coord(rng));
    const C_2DVector p3(coord(rng), coord(rng));
    in.c = {{p0, p0 + C_2DVector(offset(rng), offset(rng)),
             p3 + C_2DVector(offset(rng), offset(rng)), p3}};
    for (int i = 0; i < n; ++i) {
        in.x.push_back(coord(rng));
        in.y.push_back(coord(rng));
        const int k = pick(rng);
        const double special[] = {0.0, 1.0, -0.0, kNaN, kInf, -kInf};
        in.u.push_back(k < 6 ? special[k] : param(rng));
    }
    return in;
}

struct NamedKernels {
    const char* name;
    FitKernels kernels;
};

// Every fast set that this build and processor can run.
std::vector<NamedKernels> FastKernelSets() {
    std::vector<NamedKernels> sets;
    for (const vistrane::cpu::InstructionSet set : vistrane::test::FastSets()) {
        sets.push_back({vistrane::cpu::Name(set), vistrane::path::FitKernelsFor(set)});
    }
    return sets;
}

}  // namespace

TEST(FitKernels, FastNewtonMatchesReferenceBits) {
    for (const NamedKernels& set : FastKernelSets()) {
        for (unsigned seed = 1; seed <= 40; ++seed) {
            std::mt19937 rng(seed);
            for (int n = 0; n <= 67; ++n) {
                const PassInput in = RandomInput(rng, n);
                const CubicDerivatives d = vistrane::path::Derivatives(in.c);
                std::vector<double> ref = in.u;
                std::vector<double> fast = in.u;
                fast.insert(fast.end(), kGuards, kGuard);
                vistrane::path::NewtonPassRef(in.c, d, in.x.data(), in.y.data(), ref.data(), n);
                set.kernels.newton(in.c, d, in.x.data(), in.y.data(), fast.data(), n);
                for (int i = 0; i < n; ++i) {
                    ASSERT_EQ(Bits(ref[i]), Bits(fast[i]))
                        << set.name << " seed " << seed << " n " << n << " i " << i << ": "
                        << ref[i] << " vs " << fast[i];
                }
                for (int g = 0; g < kGuards; ++g) {
                    ASSERT_EQ(fast[static_cast<size_t>(n + g)], kGuard)
                        << set.name << " seed " << seed;
                }
            }
        }
    }
}

TEST(FitKernels, FastNewtonLeavesParametersOnAZeroDenominator) {
    for (const NamedKernels& set : FastKernelSets()) {
        // A segment collapsed to one point at the anchor: Q, Q' and Q'' are all zero there.
        const C_2DVector p(5.0, 7.0);
        const CubicControls c{{p, p, p, p}};
        const CubicDerivatives d = vistrane::path::Derivatives(c);
        const std::vector<double> x(5, 5.0);
        const std::vector<double> y(5, 7.0);
        std::vector<double> u = {0.25, -0.5, 1.75, 0.0, 1.0};
        const std::vector<double> before = u;
        set.kernels.newton(c, d, x.data(), y.data(), u.data(), 5);
        EXPECT_EQ(u, before);
    }
}

TEST(FitKernels, FastLeastSquaresSumsMatchReferenceBits) {
    for (const NamedKernels& set : FastKernelSets()) {
        for (unsigned seed = 1; seed <= 40; ++seed) {
            std::mt19937 rng(seed);
            std::uniform_real_distribution<double> unit(-1.0, 1.0);
            for (int n = 0; n <= 67; ++n) {
                const PassInput in = RandomInput(rng, n);
                const LeastSquaresEnds e{unit(rng),     unit(rng),     unit(rng),
                                         unit(rng),     in.c.p[0].m_X, in.c.p[0].m_Y,
                                         in.c.p[3].m_X, in.c.p[3].m_Y};
                // Start from non-zero sums, as a pass continued after a tail would.
                LeastSquaresSums ref{0.5, -0.25, 3.0, 1e-3, -7.0};
                LeastSquaresSums fast = ref;
                vistrane::path::LeastSquaresPassRef(e, in.x.data(), in.y.data(), in.u.data(), n,
                                                    ref);
                set.kernels.leastSquares(e, in.x.data(), in.y.data(), in.u.data(), n, fast);
                ASSERT_EQ(Bits(ref.c00), Bits(fast.c00))
                    << set.name << " seed " << seed << " n " << n;
                ASSERT_EQ(Bits(ref.c01), Bits(fast.c01))
                    << set.name << " seed " << seed << " n " << n;
                ASSERT_EQ(Bits(ref.c11), Bits(fast.c11))
                    << set.name << " seed " << seed << " n " << n;
                ASSERT_EQ(Bits(ref.x0), Bits(fast.x0))
                    << set.name << " seed " << seed << " n " << n;
                ASSERT_EQ(Bits(ref.x1), Bits(fast.x1))
                    << set.name << " seed " << seed << " n " << n;
            }
        }
    }
}

TEST(FitKernels, FastMaxErrorMatchesReferenceIncludingTiesAndEarlyStop) {
    for (const NamedKernels& set : FastKernelSets()) {
        for (unsigned seed = 1; seed <= 40; ++seed) {
            std::mt19937 rng(seed);
            for (int n = 0; n <= 67; ++n) {
                PassInput in = RandomInput(rng, n);
                // Repeat an anchor and its parameter so that equal distances compete.
                if (n >= 4) {
                    in.x[static_cast<size_t>(n - 1)] = in.x[1];
                    in.y[static_cast<size_t>(n - 1)] = in.y[1];
                    in.u[static_cast<size_t>(n - 1)] = in.u[1];
                }
                for (const double stopAt : {kInf, 1.0, 2500.0}) {
                    double refMax = 0.0;
                    double fastMax = 0.0;
                    int refAt = -1;
                    int fastAt = -1;
                    const bool refStopped = vistrane::path::MaxErrorPassRef(
                        in.c, in.x.data(), in.y.data(), in.u.data(), n, stopAt, refMax, refAt);
                    const bool fastStopped = set.kernels.maxError(
                        in.c, in.x.data(), in.y.data(), in.u.data(), n, stopAt, fastMax, fastAt);
                    ASSERT_EQ(refStopped, fastStopped)
                        << set.name << " seed " << seed << " n " << n;
                    ASSERT_EQ(refAt, fastAt)
                        << set.name << " seed " << seed << " n " << n << " stop " << stopAt;
                    ASSERT_EQ(Bits(refMax), Bits(fastMax))
                        << set.name << " seed " << seed << " n " << n;
                }
            }
        }
    }
}
