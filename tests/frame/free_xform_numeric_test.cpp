#include <gtest/gtest.h>

#include <array>
#include <cstdlib>

#include <vistrane/frame/free_xform_frame.h>
#include <vistrane/platform/keyboard.h>

#include "support/geometry_print.h"

namespace {

using Corners = std::array<CPoint, 4>;

// Centre (200, 150), half-axes (200, 0) and (0, 150).
const CRect kReference(0, 0, 400, 300);

Corners CornersOf(const C_FreeXFormFrame& frame) {
    CPoint pts[10];
    frame.GetDrawPoints(pts);
    return {pts[FXF_TopLeft], pts[FXF_TopRight], pts[FXF_BottomRight], pts[FXF_BottomLeft]};
}

void ExpectCornersWithinOnePixel(const Corners& actual, const Corners& expected) {
    for (int k = 0; k < 4; ++k) {
        EXPECT_LE(std::abs(actual[k].x - expected[k].x), 1) << "corner " << k;
        EXPECT_LE(std::abs(actual[k].y - expected[k].y), 1) << "corner " << k;
    }
}

FXF_NumericParams AllGroups(LONG dx, LONG dy, double sx, double sy, double skewX, double skewY,
                            double rotation) {
    FXF_NumericParams p;
    p.m_UseTranslation = p.m_UseScale = p.m_UseSkew = p.m_UseRotation = 1;
    p.m_TranslateX = dx;
    p.m_TranslateY = dy;
    p.m_ScaleX = sx;
    p.m_ScaleY = sy;
    p.m_SkewX = skewX;
    p.m_SkewY = skewY;
    p.m_Rotation = rotation;
    return p;
}

class FreeXFormNumeric : public ::testing::Test {
  protected:
    // The modifier state is process-wide: every test starts and ends with all keys up.
    void SetUp() override { ReleaseModifiers(); }
    void TearDown() override { ReleaseModifiers(); }
    static void ReleaseModifiers() {
        SetKeyState(VK_SHIFT, false);
        SetKeyState(VK_CONTROL, false);
        SetKeyState(VK_MENU, false);
    }
    C_FreeXFormFrame m_Frame{kReference};
};

}  // namespace

TEST_F(FreeXFormNumeric, GroupsApplyOnlyWhenEnabled) {
    FXF_NumericParams p = AllGroups(10, -5, 50.0, 50.0, 0.0, 0.0, 0.0);
    m_Frame.SetNumericParams(&p);
    EXPECT_EQ(CornersOf(m_Frame), (Corners{{{110, 70}, {310, 70}, {310, 220}, {110, 220}}}));
    EXPECT_EQ(m_Frame.GetCenterPosition(), FXF_Center);

    p.m_UseTranslation = 0;
    m_Frame.SetNumericParams(&p);
    EXPECT_EQ(CornersOf(m_Frame), (Corners{{{100, 75}, {300, 75}, {300, 225}, {100, 225}}}))
        << "values are measured against the reference, not the current frame";

    p.m_UseScale = 0;
    p.m_UseRotation = 1;
    p.m_Rotation = 90.0;
    m_Frame.SetNumericParams(&p);
    // A quarter turn clockwise on the screen: the top-left corner goes to the top right.
    EXPECT_EQ(CornersOf(m_Frame), (Corners{{{350, -50}, {350, 350}, {50, 350}, {50, -50}}}));

    m_Frame.SetNumericParams(nullptr);
    EXPECT_EQ(m_Frame.CanUndo(), 1);
    int steps = 0;
    while (m_Frame.CanUndo() != 0) {
        m_Frame.Undo();
        ++steps;
    }
    EXPECT_EQ(steps, 3) << "each entry is one undo step; null is none";
    EXPECT_EQ(CornersOf(m_Frame), (Corners{{{0, 0}, {400, 0}, {400, 300}, {0, 300}}}));
}

TEST_F(FreeXFormNumeric, SkewTurnsTheAxesOppositeWays) {
    FXF_NumericParams p;
    p.m_UseSkew = 1;
    p.m_SkewX = 45.0;
    m_Frame.SetNumericParams(&p);
    // The first half-axis (200, 0) turns to (141.4, 141.4): the right edge drops.
    EXPECT_EQ(CornersOf(m_Frame), (Corners{{{59, -141}, {341, 141}, {341, 441}, {59, 159}}}));

    p.m_SkewX = 0.0;
    p.m_SkewY = 45.0;
    m_Frame.SetNumericParams(&p);
    // The second half-axis (0, 150) turns to (106.1, 106.1): the bottom edge moves right.
    EXPECT_EQ(CornersOf(m_Frame), (Corners{{{-106, 44}, {294, 44}, {506, 256}, {106, 256}}}));
}

TEST_F(FreeXFormNumeric, ReadingInvertsTheEntry) {
    const FXF_NumericParams cases[] = {
        AllGroups(0, 0, 100.0, 100.0, 0.0, 0.0, 0.0),
        AllGroups(10, -5, 150.0, 50.0, 0.0, 10.0, 30.0),
        AllGroups(-40, 25, 80.0, 120.0, 0.0, -20.0, -135.0),
        AllGroups(3, 4, 200.0, 200.0, 0.0, 30.0, 170.0),
    };
    for (const FXF_NumericParams& in : cases) {
        SCOPED_TRACE(::testing::Message() << "rotation " << in.m_Rotation);
        m_Frame.Init(kReference);
        m_Frame.SetNumericParams(&in);
        FXF_NumericParams out;
        m_Frame.GetNumericParams(&out);
        EXPECT_TRUE(out.m_UseTranslation && out.m_UseScale && out.m_UseSkew && out.m_UseRotation);
        EXPECT_EQ(out.m_TranslateX, in.m_TranslateX);
        EXPECT_EQ(out.m_TranslateY, in.m_TranslateY);
        EXPECT_NEAR(out.m_ScaleX, in.m_ScaleX, 0.6);
        EXPECT_NEAR(out.m_ScaleY, in.m_ScaleY, 0.6);
        EXPECT_NEAR(out.m_Rotation, in.m_Rotation, 0.3);
        EXPECT_NEAR(out.m_SkewX, 0.0, 1e-12);
        EXPECT_NEAR(out.m_SkewY, in.m_SkewY, 0.3);
    }
}

TEST_F(FreeXFormNumeric, ApplyingAReadingRebuildsTheSameCorners) {
    // A skew on the first axis reads back as rotation plus a skew on the second.
    FXF_NumericParams in = AllGroups(7, 9, 90.0, 110.0, 20.0, 5.0, 10.0);
    m_Frame.SetNumericParams(&in);
    const Corners entered = CornersOf(m_Frame);
    FXF_NumericParams out;
    m_Frame.GetNumericParams(&out);
    EXPECT_NEAR(out.m_Rotation, 30.0, 0.3);
    EXPECT_NEAR(out.m_SkewY, 25.0, 0.3);
    m_Frame.SetNumericParams(&out);
    ExpectCornersWithinOnePixel(CornersOf(m_Frame), entered);

    // A frame turned inside out by dragging one side across the other, then skewed.
    m_Frame.Init(kReference);
    SetKeyState(VK_CONTROL, true);
    m_Frame.MouseButtonDown(CPoint(400, 150), nullptr);
    m_Frame.MouseMove(CPoint(-200, 150), nullptr);
    m_Frame.MouseButtonUp(CPoint(-200, 150));
    SetKeyState(VK_SHIFT, true);
    m_Frame.MouseButtonDown(CPoint(-100, 0), nullptr);
    m_Frame.MouseMove(CPoint(-60, 30), nullptr);
    m_Frame.MouseButtonUp(CPoint(-60, 30));
    const Corners dragged = CornersOf(m_Frame);
    // The top edge slid by (40, 0) along itself; the right side lies left of the left side.
    ASSERT_EQ(dragged[0], CPoint(40, 0));
    ASSERT_EQ(dragged[1], CPoint(-160, 0));
    m_Frame.GetNumericParams(&out);
    EXPECT_LT(out.m_ScaleY, 0.0);
    m_Frame.SetNumericParams(&out);
    ExpectCornersWithinOnePixel(CornersOf(m_Frame), dragged);
}
