#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

#include <vistrane/companion/2dvector.h>
#include <vistrane/companion/line.h>

TEST(C_2DVector, RoundsToNearestWithHalvesAwayFromZero) {
    const struct {
        double in;
        LONG out;
    } cases[] = {{0.5, 1},   {-0.5, -1},  {1.49, 1},    {-1.49, -1}, {2.5, 3},
                 {-2.5, -3}, {0.4999, 0}, {-0.4999, 0}, {7.0, 7},    {-7.6, -8}};
    for (const auto& c : cases) {
        const CPoint p = C_2DVector(c.in, -c.in);
        EXPECT_EQ(p.x, c.out) << c.in;
        EXPECT_EQ(p.y, -c.out) << c.in;
    }
}

TEST(C_2DVector, NonFiniteAndHugeValuesSaturateInsteadOfOverflowing) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    CPoint p = C_2DVector(nan, inf);
    EXPECT_EQ(p.x, 0);
    EXPECT_EQ(p.y, INT32_MAX);
    p = C_2DVector(-1e300, 3e9);
    EXPECT_EQ(p.x, INT32_MIN);
    EXPECT_EQ(p.y, INT32_MAX);
}

TEST(C_2DVector, ArithmeticAndProducts) {
    const C_2DVector a(3.0, 4.0);
    const C_2DVector b(CPoint(1, 1), CPoint(4, -1));  // to minus from
    EXPECT_EQ(b, C_2DVector(3.0, -2.0));
    EXPECT_EQ(a - b, C_2DVector(0.0, 6.0));
    EXPECT_EQ(-a + b * 2.0, C_2DVector(3.0, -8.0));
    EXPECT_DOUBLE_EQ(a.Magnitude(), 5.0);
    EXPECT_DOUBLE_EQ(a.SelfDotProduct(), 25.0);
    EXPECT_DOUBLE_EQ(a.DotProduct(b), 1.0);
    EXPECT_DOUBLE_EQ(a.PointDistance(b), 6.0);
    C_2DVector c = a;
    EXPECT_EQ(c.MultByVector(b), C_2DVector(9.0, -8.0));
    EXPECT_EQ(a.CopyMultByScalar(-2.0), C_2DVector(-6.0, -8.0));
    C_2DVector d = a;
    d.ScaleToLen(1.0 / 3.0);
    EXPECT_DOUBLE_EQ(d.Magnitude(), 1.0 / 3.0);
    EXPECT_TRUE(d.HasSameDirectionAs(a));
    EXPECT_FALSE((-d).HasSameDirectionAs(a));
    EXPECT_FALSE(C_2DVector(4.0, 3.0).HasSameDirectionAs(a));
    C_2DVector null;
    EXPECT_TRUE(null.Normalize().IsNull());
}

TEST(C_2DVector, AnglesProjectionsAndSegmentDistance) {
    const C_2DVector x(2.0, 0.0);
    const C_2DVector diag(1.0, 1.0);
    EXPECT_NEAR(x.RadAngleWithVector(diag), std::numbers::pi / 4.0, 1e-15);
    EXPECT_DOUBLE_EQ(C_2DVector(1.0, 0.0).RadAngleWithVector(C_2DVector(-1.0, 0.0)),
                     std::numbers::pi);
    EXPECT_EQ(diag.ProjectOn(x), C_2DVector(1.0, 0.0));
    EXPECT_DOUBLE_EQ(x.NormalVector(1).DotProduct(x), 0.0);
    EXPECT_EQ(x.NormalVector(1), -x.NormalVector(0));
    C_2DVector r(1.0, 0.0);
    r.RotateByRadAngle(C_2DVector::DegToRad(90.0));
    EXPECT_NEAR(r.m_X, 0.0, 1e-15);
    EXPECT_NEAR(r.m_Y, 1.0, 1e-15);
    EXPECT_DOUBLE_EQ(C_2DVector::RadToDeg(std::numbers::pi), 180.0);
    // Beside the segment, then past each end: the offset goes to the nearest end point.
    const C_2DVector a(0.0, 0.0);
    const C_2DVector b(10.0, 0.0);
    EXPECT_EQ(C_2DVector(4.0, 3.0).DistanceFromSegToPoint(a, b), C_2DVector(0.0, 3.0));
    EXPECT_EQ(C_2DVector(13.0, 4.0).DistanceFromSegToPoint(a, b), C_2DVector(3.0, 4.0));
    EXPECT_EQ(C_2DVector(-1.0, -1.0).DistanceFromSegToPoint(a, b), C_2DVector(-1.0, -1.0));
}

TEST(C_Line, IntersectionParametersAndParallelLines) {
    const C_Line a(CPoint(0, 0), CPoint(10, 0));
    C_Line b;
    b.Init(CPoint(5, -5), CPoint(5, 15));
    double t = -1.0;
    double u = -1.0;
    ASSERT_NE(a.IntersectWith(b, t, u), 0);
    EXPECT_DOUBLE_EQ(t, 0.5);
    EXPECT_DOUBLE_EQ(u, 0.25);
    t = u = 42.0;
    EXPECT_EQ(a.IntersectWith(C_Line(CPoint(0, 3), CPoint(-4, 3)), t, u), 0);
    EXPECT_EQ(t, 42.0);
    EXPECT_EQ(a.IntersectWith(C_Line(CPoint(2, 2), CPoint(2, 2)), t, u), 0);
}
