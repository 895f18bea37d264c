#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <numbers>
#include <random>
#include <vector>

#include <vistrane/path/sub_path.h>

#include "support/path_support.h"

using vistrane::test::DistanceToSamples;
using vistrane::test::FillSubPath;
using vistrane::test::SampleSegments;

namespace {

// A wobbly freehand-like stroke: a spiral with seeded jitter of +-`jitter` pixels.
std::vector<CPoint> NoisyStroke(int n, int jitter, unsigned seed) {
    std::mt19937 rng(seed);
    std::uniform_int_distribution<int> noise(-jitter, jitter);
    std::vector<CPoint> out;
    for (int i = 0; i < n; ++i) {
        const double a = i * 0.02;
        const double r = 40.0 + i * 0.15;
        out.emplace_back(static_cast<LONG>(std::lround(200 + r * std::cos(a))) + noise(rng),
                         static_cast<LONG>(std::lround(200 + r * std::sin(a))) + noise(rng));
    }
    return out;
}

// The largest distance of any original anchor from the fitted curves.
double WorstDeviation(const C_SubPath& fitted, const std::vector<CPoint>& original) {
    const auto samples = SampleSegments(fitted, 40);
    double worst = 0.0;
    for (const CPoint& p : original) {
        worst = std::max(worst, DistanceToSamples(samples, C_2DVector(p)));
    }
    return worst;
}

}  // namespace

TEST(C_SubPathSimplify, EveryAnchorStaysWithinTheToleranceOfTheFit) {
    for (const double tolerance : {0.5, 1.0, 2.0, 4.0, 10.0}) {
        for (unsigned seed = 1; seed <= 3; ++seed) {
            const std::vector<CPoint> stroke = NoisyStroke(600, 2, seed);
            C_SubPath sub;
            FillSubPath(&sub, stroke);
            sub.Simplify(tolerance, 0, -1);
            ASSERT_GE(sub.GetCount(), 2);
            ASSERT_LT(sub.GetCount(), static_cast<int>(stroke.size()));
            // The kept anchors are original ones, in order, from the first to the last.
            EXPECT_EQ(sub.GetPoints()[0].m_Anchor, stroke.front());
            EXPECT_EQ(sub.GetPoints()[sub.GetCount() - 1].m_Anchor, stroke.back());
            // Offsets are rounded to whole pixels, hence the extra pixel.
            EXPECT_LE(WorstDeviation(sub, stroke), tolerance + 1.0)
                << "tolerance " << tolerance << " seed " << seed;
        }
    }
}

TEST(C_SubPathSimplify, AnOutlineFoldingBackOnItselfStaysWithinTheTolerance) {
    // Part of a traced outline that runs out along a one-pixel spur and back. Newton's step
    // carries the parameter of (550, 239) to about -0.25, where the extension of a single
    // cubic from (553, 239) to (551, 238) passes within 0.75 pixels of it while the segment
    // itself stays 1.41 pixels away; measured at the extension, that one segment was accepted.
    const std::vector<CPoint> spur = {{553, 239}, {553, 240}, {552, 241}, {553, 240}, {553, 239},
                                      {553, 238}, {552, 237}, {551, 238}, {550, 239}, {551, 238}};
    C_SubPath sub;
    FillSubPath(&sub, spur);
    sub.Simplify(1.0, 0, -1);
    EXPECT_GT(sub.GetCount(), 2);
    EXPECT_LE(WorstDeviation(sub, spur), 1.0 + 1e-3);
}

TEST(C_SubPathSimplify, SmallerToleranceKeepsMoreAnchors) {
    const std::vector<CPoint> stroke = NoisyStroke(800, 3, 7);
    C_SubPath fine;
    C_SubPath coarse;
    FillSubPath(&fine, stroke);
    FillSubPath(&coarse, stroke);
    fine.Simplify(0.5, 0, -1);
    coarse.Simplify(10.0, 0, -1);
    EXPECT_GT(fine.GetCount(), coarse.GetCount());
    EXPECT_GT(coarse.GetCount(), 2);
}

TEST(C_SubPathSimplify, SmoothArcNeedsFewSegments) {
    // Three quarters of a circle of radius 100, anchors rounded to pixels. End and split
    // tangents come from neighbouring pixels, so they are quantised to 45 degrees and the fit
    // needs more cubics than the ideal four, but a fit that only ever splits would keep
    // hundreds of anchors.
    std::vector<CPoint> arc;
    for (int i = 0; i <= 470; ++i) {
        const double a = i * 0.01;
        arc.emplace_back(static_cast<LONG>(std::lround(100 * std::cos(a))),
                         static_cast<LONG>(std::lround(100 * std::sin(a))));
    }
    C_SubPath sub;
    FillSubPath(&sub, arc);
    sub.Simplify(1.0, 0, -1);
    EXPECT_LT(sub.GetCount(), static_cast<int>(arc.size()) / 10);
    EXPECT_LE(WorstDeviation(sub, arc), 2.0);
}

TEST(C_SubPathSimplify, CollinearAnchorsCollapseToTwo) {
    std::vector<CPoint> line;
    for (int i = 0; i < 50; ++i) {
        line.emplace_back(3 * i, 2 * i);
    }
    C_SubPath sub;
    FillSubPath(&sub, line);
    sub.SetAnchorsVisible(1);
    sub.Simplify(1.0, 0, -1);
    ASSERT_EQ(sub.GetCount(), 2);
    EXPECT_EQ(sub.GetPoints()[0].m_Anchor, CPoint(0, 0));
    EXPECT_EQ(sub.GetPoints()[1].m_Anchor, CPoint(147, 98));
    // Control points on the chord: the segment is straight.
    const CPoint next = sub.GetPoints()[0].m_NextDirection;
    const CPoint prev = sub.GetPoints()[1].m_PrevDirection;
    // Each offset rounded by at most half a pixel per axis from the chord direction (3, 2).
    EXPECT_LE(std::abs(next.x * 2 - next.y * 3), 2);
    EXPECT_LE(std::abs(prev.x * 2 - prev.y * 3), 2);
    EXPECT_GT(next.x, 0);
    EXPECT_LT(prev.x, 0);
    EXPECT_EQ(sub.AreAnchorsVisible(), 0);
    EXPECT_EQ(sub.HasSelectedAnchors(), 0);
}

TEST(C_SubPathSimplify, OnlyTheLastKeptPointKeepsItsLink) {
    C_SubPath sub;
    const std::vector<CPoint> stroke = NoisyStroke(400, 2, 3);
    FillSubPath(&sub, stroke);
    sub.Simplify(0.5, 0, -1);
    ASSERT_GT(sub.GetCount(), 3);
    for (int i = 0; i < sub.GetCount() - 1; ++i) {
        EXPECT_EQ(sub.GetPoints()[i].m_Attributes & PPA_LINKED_DIRECTIONS, 0) << i;
        EXPECT_EQ(sub.GetPoints()[i].m_Flags, 0) << i;
    }
    EXPECT_NE(sub.GetPoints()[sub.GetCount() - 1].m_Attributes & PPA_LINKED_DIRECTIONS, 0);
}

TEST(C_SubPathSimplify, TwoPointRangesBecomeStraightCorners) {
    C_SubPath sub;
    FillSubPath(&sub, {{0, 0}, {5, 5}, {9, 1}});
    sub.GetPoints()[1].m_NextDirection = CPoint(3, 3);
    sub.GetPoints()[2].m_PrevDirection = CPoint(-2, 0);
    sub.GetPoints()[1].m_Attributes = 0;
    sub.SetAnchorsVisible(1);
    sub.Simplify(1.0, 1, 2);
    ASSERT_EQ(sub.GetCount(), 3);
    EXPECT_EQ(sub.GetPoints()[1].m_NextDirection, CPoint(0, 0));
    EXPECT_EQ(sub.GetPoints()[2].m_PrevDirection, CPoint(0, 0));
    EXPECT_EQ(sub.GetPoints()[1].m_Attributes, PPA_LINKED_DIRECTIONS);
    EXPECT_EQ(sub.AreAnchorsVisible(), 0);
}

TEST(C_SubPathSimplify, PartialRangeLeavesTheOtherPointsAndDeselectsThem) {
    std::vector<CPoint> stroke{{-10, -10}, {-5, -5}};
    for (int i = 0; i < 30; ++i) {
        stroke.emplace_back(i, 0);
    }
    stroke.emplace_back(40, 40);
    C_SubPath sub;
    FillSubPath(&sub, stroke);
    sub.Simplify(1.0, 2, 31);
    ASSERT_EQ(sub.GetCount(), 5);
    EXPECT_EQ(sub.GetPoints()[0].m_Anchor, CPoint(-10, -10));
    EXPECT_EQ(sub.GetPoints()[1].m_Anchor, CPoint(-5, -5));
    EXPECT_EQ(sub.GetPoints()[2].m_Anchor, CPoint(0, 0));
    EXPECT_EQ(sub.GetPoints()[3].m_Anchor, CPoint(29, 0));
    EXPECT_EQ(sub.GetPoints()[4].m_Anchor, CPoint(40, 40));
    EXPECT_EQ(sub.GetPoints()[0].m_Flags & PPF_SELECTED, 0);
    EXPECT_EQ(sub.GetPoints()[0].m_Attributes & PPA_LINKED_DIRECTIONS, PPA_LINKED_DIRECTIONS);
    // A last beyond the end is lowered to the last point; a first beyond it does nothing.
    C_SubPath toEnd;
    FillSubPath(&toEnd, stroke);
    toEnd.Simplify(1.0, 2, 32);
    C_SubPath same;
    FillSubPath(&same, stroke);
    same.Simplify(1.0, 2, 1000);
    EXPECT_EQ(same.SameAnchorsAndDirections(&toEnd), 1);
    same.SetAnchorsVisible(1);
    same.Simplify(1.0, same.GetCount(), -1);
    EXPECT_EQ(same.SameAnchorsAndDirections(&toEnd), 1);
    EXPECT_EQ(same.AreAnchorsVisible(), 0);
}

TEST(C_SubPathSimplify, CoincidentAnchorsNeitherCrashNorLoop) {
    C_SubPath sub;
    FillSubPath(&sub, std::vector<CPoint>(20, CPoint(5, 5)));
    sub.Simplify(1.0, 0, -1);
    ASSERT_EQ(sub.GetCount(), 2);
    EXPECT_EQ(sub.GetPoints()[0].m_Anchor, CPoint(5, 5));
    EXPECT_EQ(sub.GetPoints()[0].m_NextDirection, CPoint(0, 0));
    EXPECT_EQ(sub.GetPoints()[1].m_PrevDirection, CPoint(0, 0));

    // Runs of repeated anchors inside a real stroke.
    std::vector<CPoint> stutter;
    for (int i = 0; i < 40; ++i) {
        stutter.insert(stutter.end(), 3, CPoint(i, (i * i) / 20));
    }
    FillSubPath(&sub, stutter);
    sub.Simplify(0.5, 0, -1);
    EXPECT_GE(sub.GetCount(), 2);
    EXPECT_LE(WorstDeviation(sub, stutter), 1.5);
}

TEST(C_SubPathSimplify, LongStrokeFitsWithoutDeepRecursion) {
    // A zigzag whose every corner must be kept: the fit splits about 20,000 times.
    std::vector<CPoint> zigzag;
    for (int i = 0; i < 100000; ++i) {
        zigzag.emplace_back(i, (i / 5) % 2 == 0 ? (i % 5) * 4 : 20 - (i % 5) * 4);
    }
    C_SubPath sub;
    FillSubPath(&sub, zigzag);
    sub.Simplify(0.5, 0, -1);
    EXPECT_GT(sub.GetCount(), 15000);
    EXPECT_LT(sub.GetCount(), 100000);
}

TEST(C_SubPathSimplify, DerivativeEvaluatorsMatchTheCurve) {
    // Finite differences of a cubic against its velocity and acceleration curves.
    C_SubPath sub;
    FillSubPath(&sub, {{0, 0}, {30, 10}});
    sub.GetPoints()[0].m_NextDirection = CPoint(5, 20);
    sub.GetPoints()[1].m_PrevDirection = CPoint(-10, -25);
    const C_2DVector p[4] = {C_2DVector(0, 0), C_2DVector(5, 20), C_2DVector(20, -15),
                             C_2DVector(30, 10)};
    const C_2DVector v[3] = {(p[1] - p[0]) * 3.0, (p[2] - p[1]) * 3.0, (p[3] - p[2]) * 3.0};
    const C_2DVector a[2] = {(v[1] - v[0]) * 2.0, (v[2] - v[1]) * 2.0};
    const double h = 1e-5;
    for (const double t : {0.1, 0.5, 0.8}) {
        const C_2DVector fd =
            (sub.BezierCurvePoint(0, 1, t + h) - sub.BezierCurvePoint(0, 1, t - h)) * (0.5 / h);
        const C_2DVector vel = C_SubPath::BezierCurveVelocity(v, t);
        EXPECT_NEAR(fd.m_X, vel.m_X, 1e-4);
        EXPECT_NEAR(fd.m_Y, vel.m_Y, 1e-4);
        const C_2DVector fdd =
            (C_SubPath::BezierCurveVelocity(v, t + h) - C_SubPath::BezierCurveVelocity(v, t - h)) *
            (0.5 / h);
        const C_2DVector acc = C_SubPath::BezierCurveAcceleration(a, t);
        EXPECT_NEAR(fdd.m_X, acc.m_X, 1e-4);
        EXPECT_NEAR(fdd.m_Y, acc.m_Y, 1e-4);
    }
}
