#include <vistrane/companion/helper.h>
#include <vistrane/companion/user_curve.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace {

using Table = std::array<BYTE, 256>;

bool IsIdentity(const Table& t) {
    for (int i = 0; i < 256; ++i) {
        if (t[i] != i) {
            return false;
        }
    }
    return true;
}

bool IsNonDecreasing(const Table& t) {
    return std::is_sorted(t.begin(), t.end());
}

TEST(ToneTable, OffsetAddsAndClamps) {
    C_Helper helper;
    for (int offset : {-255, -100, -1, 0, 1, 77, 255}) {
        Table t;
        helper.FillRGBOffTable(t.data(), offset);
        for (int i = 0; i < 256; ++i) {
            ASSERT_EQ(t[i], std::clamp(i + offset, 0, 255)) << offset << " " << i;
        }
    }
}

TEST(ToneTable, GammaOneIsIdentityAndOtherGammasBendTheMiddle) {
    C_Helper helper;
    Table t;
    helper.FillGammaTable(t.data(), 1.0);
    EXPECT_TRUE(IsIdentity(t));
    helper.FillGammaTable(t.data(), 2.0);
    EXPECT_EQ(t[0], 0);
    EXPECT_EQ(t[255], 255);
    EXPECT_EQ(t[64], 128);  // 255 * sqrt(64 / 255) = 127.75
    EXPECT_TRUE(IsNonDecreasing(t));
    helper.FillGammaTable(t.data(), 0.01);  // the darkest the colour operations ask for
    EXPECT_EQ(t[200], 0);                   // (200 / 255)^100 is about 3e-11
    EXPECT_EQ(t[254], 172);                 // (254 / 255)^100 = 0.675
    EXPECT_EQ(t[255], 255);
    Table clamped;
    helper.FillGammaTable(clamped.data(), -3.0);
    EXPECT_EQ(clamped, t);
}

TEST(ToneTable, GammaFromRatioPutsMidGreyAtOneMinusRatio) {
    C_Helper helper;
    EXPECT_DOUBLE_EQ(helper.GetGammaFromRatio(0.5), 1.0);
    for (double ratio : {0.1, 0.25, 0.4, 0.6, 0.75, 0.9}) {
        const double gamma = helper.GetGammaFromRatio(ratio);
        EXPECT_NEAR(std::pow(0.5, 1.0 / gamma), 1.0 - ratio, 1e-12) << ratio;
    }
    EXPECT_GT(helper.GetGammaFromRatio(0.25), 1.0);
    EXPECT_LT(helper.GetGammaFromRatio(0.75), 1.0);
    EXPECT_TRUE(std::isfinite(helper.GetGammaFromRatio(0.0)));
    EXPECT_TRUE(std::isfinite(helper.GetGammaFromRatio(1.0)));
}

TEST(ToneTable, ContrastTablesAreIdentityAtZeroAndStretchAboutMidGrey) {
    C_Helper helper;
    using Fill = void (C_Helper::*)(BYTE*, int) const;
    const struct {
        Fill fill;
        int strongest;
    } families[] = {
        {&C_Helper::FillContrastTable, 40},
        {&C_Helper::FillLogContrastTable, 200},
        {&C_Helper::FillSineHContrastTable, 99},
        {&C_Helper::FillExpContrastTable, 5},
    };
    for (const auto& family : families) {
        Table t;
        (helper.*family.fill)(t.data(), 0);
        EXPECT_TRUE(IsIdentity(t));
        (helper.*family.fill)(t.data(), family.strongest);
        EXPECT_TRUE(IsNonDecreasing(t));
        EXPECT_EQ(t[0], 0);
        EXPECT_EQ(t[255], 255);
        // Stretching: darks get darker, lights lighter, and the curve is point-symmetric about
        // mid-grey within the half-up rounding.
        EXPECT_LT(t[64], 64);
        EXPECT_GT(t[191], 191);
        for (int i = 0; i < 256; ++i) {
            const int sum = t[i] + t[255 - i];
            ASSERT_TRUE(sum == 255 || sum == 256) << family.strongest << " " << i;
        }
    }
}

TEST(ToneTable, LinearContrastEndsAreFlatGreyAndThreshold) {
    C_Helper helper;
    Table t;
    helper.FillContrastTable(t.data(), -64);
    EXPECT_TRUE(std::all_of(t.begin(), t.end(), [](BYTE b) { return b == 128; }));
    helper.FillContrastTable(t.data(), 64);
    EXPECT_EQ(t[127], 0);
    EXPECT_EQ(t[128], 255);
    helper.FillContrastTable(t.data(), -32);  // slope 1/2 about 127.5: 63.75 and 191.25
    EXPECT_EQ(t[0], 64);
    EXPECT_EQ(t[255], 191);
    Table beyond;
    helper.FillContrastTable(beyond.data(), -1000);
    helper.FillContrastTable(t.data(), -64);
    EXPECT_EQ(beyond, t);
}

S_UserCurve Curve(std::initializer_list<std::pair<int, int>> points) {
    S_UserCurve c{};
    for (auto [in, out] : points) {
        c.input[c.nPoints] = static_cast<BYTE>(in);
        c.output[c.nPoints] = static_cast<BYTE>(out);
        ++c.nPoints;
    }
    return c;
}

TEST(UserCurve, EmptyCurvesGiveIdentityTables) {
    C_Helper helper;
    S_OneUserColorOper oper{};
    S_CalcColorError error{-1, -1, -1};
    Table r, g, b;
    ASSERT_EQ(helper.FillUserColorOperLUTs(&oper, &error, r.data(), g.data(), b.data()), 1);
    EXPECT_EQ(error.code, USERCURVE_ERROR_NONE);
    EXPECT_TRUE(IsIdentity(r));
    EXPECT_TRUE(IsIdentity(g));
    EXPECT_TRUE(IsIdentity(b));
}

TEST(UserCurve, PassesThroughPointsWithoutOvershootAndIsFlatOutside) {
    C_Helper helper;
    S_OneUserColorOper oper{};
    // A steep rise followed by a plateau: a natural spline would overshoot past 200 here.
    oper.red = Curve({{20, 10}, {60, 190}, {70, 200}, {200, 200}, {230, 40}});
    oper.green = Curve({{0, 0}, {255, 255}});
    oper.blue = Curve({{100, 77}});
    S_CalcColorError error{};
    Table r, g, b;
    ASSERT_EQ(helper.FillUserColorOperLUTs(&oper, &error, r.data(), g.data(), b.data()), 1);
    const S_UserCurve& c = oper.red;
    for (int p = 0; p < c.nPoints; ++p) {
        EXPECT_EQ(r[c.input[p]], c.output[p]) << p;
    }
    for (int p = 0; p + 1 < c.nPoints; ++p) {
        const int lo = std::min(c.output[p], c.output[p + 1]);
        const int hi = std::max(c.output[p], c.output[p + 1]);
        for (int i = c.input[p]; i <= c.input[p + 1]; ++i) {
            ASSERT_GE(r[i], lo) << i;
            ASSERT_LE(r[i], hi) << i;
        }
    }
    for (int i = 0; i <= 20; ++i) {
        EXPECT_EQ(r[i], 10);
    }
    for (int i = 230; i < 256; ++i) {
        EXPECT_EQ(r[i], 40);
    }
    for (int i = 70; i <= 200; ++i) {
        EXPECT_EQ(r[i], 200) << "a flat stretch stays flat";
    }
    EXPECT_TRUE(IsIdentity(g));
    EXPECT_TRUE(std::all_of(b.begin(), b.end(), [](BYTE v) { return v == 77; }));
}

TEST(UserCurve, MasterCurveIsAppliedAfterTheChannelCurve) {
    C_Helper helper;
    S_OneUserColorOper oper{};
    oper.master = Curve({{0, 255}, {255, 0}});
    oper.red = Curve({{0, 0}, {255, 128}});
    S_CalcColorError error{};
    Table r, g, b;
    ASSERT_EQ(helper.FillUserColorOperLUTs(&oper, &error, r.data(), g.data(), b.data()), 1);
    for (int i = 0; i < 256; ++i) {
        ASSERT_EQ(g[i], 255 - i);
    }
    EXPECT_EQ(r[0], 255);
    EXPECT_EQ(r[255], 255 - 128);
}

TEST(UserCurve, BadPointsAreReportedAndLeaveTheTablesAlone) {
    C_Helper helper;
    Table r, g, b;
    r.fill(9);
    g.fill(9);
    b.fill(9);
    S_OneUserColorOper oper{};
    oper.green = Curve({{10, 0}, {50, 10}, {50, 20}});
    S_CalcColorError error{};
    EXPECT_EQ(helper.FillUserColorOperLUTs(&oper, &error, r.data(), g.data(), b.data()), 0);
    EXPECT_EQ(error.code, USERCURVE_ERROR_NOT_INCREASING);
    EXPECT_EQ(error.channel, 2);
    EXPECT_EQ(error.point, 2);

    oper = S_OneUserColorOper{};
    oper.master.nPoints = kUserCurveMaxPoints + 1;
    EXPECT_EQ(helper.FillUserColorOperLUTs(&oper, &error, r.data(), g.data(), b.data()), 0);
    EXPECT_EQ(error.code, USERCURVE_ERROR_POINT_COUNT);
    EXPECT_EQ(error.channel, 0);
    EXPECT_EQ(error.point, -1);
    EXPECT_EQ(helper.FillUserColorOperLUTs(nullptr, &error, r.data(), g.data(), b.data()), 0);
    EXPECT_EQ(error.code, USERCURVE_ERROR_NULL_ARGUMENT);
    EXPECT_TRUE(std::all_of(r.begin(), r.end(), [](BYTE v) { return v == 9; }));
    EXPECT_TRUE(std::all_of(g.begin(), g.end(), [](BYTE v) { return v == 9; }));
    EXPECT_TRUE(std::all_of(b.begin(), b.end(), [](BYTE v) { return v == 9; }));
}

TEST(Statistics, MedianMeanAndDeviation) {
    C_Helper helper;
    std::array<LONG, 256> counts{};
    LONG median = -1;
    double mean = -1, deviation = -1;
    helper.ComputeStatistics(256, counts.data(), &median, &mean, &deviation);
    EXPECT_EQ(median, 0);
    EXPECT_EQ(mean, 0.0);
    EXPECT_EQ(deviation, 0.0);

    counts[10] = 1;
    counts[20] = 2;
    counts[40] = 1;  // values 10, 20, 20, 40: mean 22.5, variance (156.25 + 6.25 * 2 + 306.25) / 4
    helper.ComputeStatistics(256, counts.data(), &median, &mean, &deviation);
    EXPECT_EQ(median, 20);
    EXPECT_DOUBLE_EQ(mean, 22.5);
    EXPECT_DOUBLE_EQ(deviation, std::sqrt(118.75));

    counts.fill(0);
    counts[0] = 3;
    counts[255] = 3;  // half of 6 is reached at bin 0
    helper.ComputeStatistics(256, counts.data(), &median, &mean, &deviation);
    EXPECT_EQ(median, 0);
    EXPECT_DOUBLE_EQ(mean, 127.5);
    EXPECT_DOUBLE_EQ(deviation, 127.5);
    counts[255] = 4;
    helper.ComputeStatistics(256, counts.data(), &median, &mean, &deviation);
    EXPECT_EQ(median, 255);
}

}  // namespace
