#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <random>
#include <vector>

#include <vistrane/companion/2dvector.h>
#include <vistrane/companion/geom.h>

TEST(C_Geom, DistancesSaturateInsteadOfWrapping) {
    C_Geom g;
    EXPECT_EQ(g.SqPointDistance(CPoint(1, 2), CPoint(4, 6)), 25);
    EXPECT_EQ(g.SqPointDistance(CPoint(-60000, 0), CPoint(60000, 0)), INT32_MAX);
    EXPECT_EQ(g.Sq2DPointVectorMagnitude(CPoint(-3, 4)), 25);
    EXPECT_TRUE(g.IsPointCloseToPoint(CPoint(0, 0), CPoint(30, 40), 50));
    EXPECT_FALSE(g.IsPointCloseToPoint(CPoint(0, 0), CPoint(30, 41), 50));
}

TEST(C_Geom, ProjectionsAndRotation) {
    C_Geom g;
    EXPECT_EQ(g.Get2DPointVectorProjection(CPoint(10, 0), CPoint(7, 5)), CPoint(7, 0));
    EXPECT_EQ(g.Get2DPointVectorDistance(CPoint(10, 0), CPoint(7, 5)), CPoint(0, 5));
    EXPECT_EQ(g.Get2DPointVectorProjection(CPoint(0, 0), CPoint(7, 5)), CPoint(0, 0));
    // Slide along (0, 1) until on the line through (4, 2) with direction (1, 1): that is at
    // (0, -2), reached with t = -2.
    EXPECT_EQ(
        g.Get2DPointVectorProjectionThroughDirection(CPoint(1, 1), CPoint(0, 1), CPoint(4, 2)),
        CPoint(0, -2));
    EXPECT_EQ(
        g.Get2DPointVectorProjectionThroughDirection(CPoint(1, 1), CPoint(2, 2), CPoint(4, 2)),
        CPoint(0, 0));
    // A quarter turn taking (10, 0) to (0, 10) about (5, 5) carries (8, 5) to (5, 8).
    EXPECT_EQ(g.Rotate2DPoint(CPoint(8, 5), CPoint(5, 5), CPoint(10, 5), CPoint(5, 10)),
              CPoint(5, 8));
    EXPECT_EQ(g.Rotate2DPoint(CPoint(8, 5), CPoint(5, 5), CPoint(5, 5), CPoint(5, 10)),
              CPoint(8, 5));
}

TEST(C_Geom, OctantsGoClockwiseOnTheScreenFromTheRight) {
    C_Geom g;
    const CPoint c(100, 100);
    const CPoint around[8] = {{110, 100}, {110, 110}, {100, 110}, {90, 110},
                              {90, 100},  {90, 90},   {100, 90},  {110, 90}};
    for (int k = 0; k < 8; ++k) {
        EXPECT_EQ(g.GetPointDisplacementOctant(c, around[k]), k);
    }
    // 22 degrees below the horizontal is still right; 23 degrees is down-right.
    EXPECT_EQ(g.GetPointDisplacementOctant(c, CPoint(200, 140)), GEOM_OCTANT_RIGHT);
    EXPECT_EQ(g.GetPointDisplacementOctant(c, CPoint(200, 143)), GEOM_OCTANT_DOWN_RIGHT);
    // The top-left corner of a frame (neighbours right and below) faces up-left; the middle of
    // its top edge, walked left to right, faces up.
    EXPECT_EQ(g.Get2DPoint3PointDirectionOctant(CPoint(10, 0), CPoint(0, 0), CPoint(0, 10)),
              GEOM_OCTANT_UP_LEFT);
    EXPECT_EQ(g.Get2DPoint3PointDirectionOctant(CPoint(0, 0), CPoint(5, 0), CPoint(10, 0)),
              GEOM_OCTANT_DOWN);
    EXPECT_EQ(g.Get2DPoint3PointDirectionOctant(CPoint(10, 0), CPoint(5, 0), CPoint(0, 0)),
              GEOM_OCTANT_UP);
}

TEST(C_Geom, PointInPolygonBoundaryRule) {
    C_Geom g;
    const CPoint square[4] = {{0, 0}, {10, 0}, {10, 10}, {0, 10}};
    EXPECT_TRUE(g.IsPointInsidePoly(CPoint(5, 5), square, 4));
    EXPECT_TRUE(g.IsPointInsidePoly(CPoint(0, 0), square, 4));    // top-left corner
    EXPECT_TRUE(g.IsPointInsidePoly(CPoint(0, 5), square, 4));    // left edge
    EXPECT_TRUE(g.IsPointInsidePoly(CPoint(5, 0), square, 4));    // top edge
    EXPECT_FALSE(g.IsPointInsidePoly(CPoint(10, 5), square, 4));  // right edge
    EXPECT_FALSE(g.IsPointInsidePoly(CPoint(5, 10), square, 4));  // bottom edge
    EXPECT_FALSE(g.IsPointInsidePoly(CPoint(-1, 5), square, 4));
    EXPECT_FALSE(g.IsPointInsidePoly(CPoint(5, 5), square, 2));
    // A point on the shared diagonal of two triangles is claimed by exactly one of them.
    const CPoint upper[3] = {{0, 0}, {10, 0}, {10, 10}};
    const CPoint lower[3] = {{0, 0}, {10, 10}, {0, 10}};
    for (int k = 0; k < 10; ++k) {
        EXPECT_EQ(g.IsPointInsidePoly(CPoint(k, k), upper, 3) +
                      g.IsPointInsidePoly(CPoint(k, k), lower, 3),
                  1)
            << k;
    }
}

TEST(C_Geom, PrecomputedTestAgreesWithThePlainOneOnRandomPolygons) {
    C_Geom g;
    std::mt19937 rng(1234);
    std::uniform_int_distribution<int> coord(-40, 40);
    for (int trial = 0; trial < 200; ++trial) {
        const int n = 3 + trial % 7;
        std::vector<CPoint> poly(static_cast<size_t>(n));
        for (CPoint& p : poly) {
            p = CPoint(coord(rng), coord(rng));
        }
        S_PointInsidePolyData data;
        ASSERT_EQ(g.PreCalcPointInsidePoly(&data, poly.data(), n), 1);
        for (int y = -42; y <= 42; y += 3) {
            for (int x = -42; x <= 42; ++x) {
                ASSERT_EQ(g.IsPointInsidePolyPreCalc(&data, CPoint(x, y)),
                          g.IsPointInsidePoly(CPoint(x, y), poly.data(), n))
                    << "trial " << trial << " at " << x << "," << y;
            }
        }
    }
    S_PointInsidePolyData empty;
    const CPoint two[2] = {{0, 0}, {5, 5}};
    EXPECT_EQ(g.PreCalcPointInsidePoly(&empty, two, 2), 0);
    EXPECT_EQ(g.IsPointInsidePolyPreCalc(&empty, CPoint(1, 1)), 0);
}

TEST(C_Geom, FlattenedBezierStaysNearTheCurve) {
    C_Geom g;
    const POINT run[7] = {{0, 0}, {0, 100}, {200, 100}, {200, 0}, {200, -50}, {300, -50}, {300, 0}};
    long count = 7;
    std::unique_ptr<POINT[]> flat(g.FlattenGDISegments(run, &count));
    ASSERT_NE(flat, nullptr);
    ASSERT_GT(count, 20);
    EXPECT_EQ(flat[0].x, 0);
    EXPECT_EQ(flat[count - 1].x, 300);
    EXPECT_EQ(flat[count - 1].y, 0);
    // Every curve sample lies within a pixel (quarter pixel plus rounding) of the polyline.
    for (int seg = 0; seg < 2; ++seg) {
        const POINT* p = run + 3 * seg;
        for (int k = 0; k <= 200; ++k) {
            const double t = k / 200.0;
            const double u = 1.0 - t;
            const C_2DVector q = C_2DVector(CPoint(p[0])) * (u * u * u) +
                                 C_2DVector(CPoint(p[1])) * (3 * u * u * t) +
                                 C_2DVector(CPoint(p[2])) * (3 * u * t * t) +
                                 C_2DVector(CPoint(p[3])) * (t * t * t);
            double best = 1e9;
            for (long i = 0; i + 1 < count; ++i) {
                const double d = q.DistanceFromSegToPoint(C_2DVector(CPoint(flat[i])),
                                                          C_2DVector(CPoint(flat[i + 1])))
                                     .Magnitude();
                best = std::min(best, d);
            }
            EXPECT_LT(best, 1.0) << "segment " << seg << " t " << t;
        }
    }
    for (long i = 0; i + 1 < count; ++i) {
        EXPECT_FALSE(flat[i].x == flat[i + 1].x && flat[i].y == flat[i + 1].y);
    }
    long bad = 3;
    EXPECT_EQ(g.FlattenGDISegments(run, &bad), nullptr);
    EXPECT_EQ(bad, 0);
}
