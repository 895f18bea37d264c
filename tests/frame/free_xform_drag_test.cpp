// What dragging each handle does, with and without modifiers, and the centre's own moves.

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "frame/free_xform_frame_support.h"

namespace vistrane::test {

TEST_F(FreeXFormFrame, CornerDragStretchesAndTheCentreFollows) {
    Drag({300, 220}, {340, 250});
    EXPECT_EQ(CornersOf(m_Frame), (Corners{{{100, 100}, {340, 100}, {340, 250}, {100, 250}}}));
    EXPECT_EQ(m_Frame.CenterPoint(), CPoint(220, 175));
    EXPECT_EQ(m_Frame.GetCenterPosition(), FXF_Center);
    ExpectDerivedPointsConsistent(m_Frame);

    // A sheared frame: dragging corner 0 keeps both of its edges' directions at the far ends.
    C_FreeXFormFrame sheared(kRect);
    sheared.MouseButtonDown(CPoint(300, 220), nullptr);
    SetKeys(false, true, false);
    sheared.MouseMove(CPoint(340, 220), nullptr);
    sheared.MouseButtonUp(CPoint(340, 220));
    SetKeys(false, false, false);
    sheared.MouseButtonDown(CPoint(100, 100), nullptr);
    sheared.MouseMove(CPoint(80, 90), nullptr);
    sheared.MouseButtonUp(CPoint(80, 90));
    const Corners c = CornersOf(sheared);
    EXPECT_EQ(c[0], CPoint(80, 90));
    EXPECT_EQ(c[2], CPoint(340, 220)) << "the opposite corner stays";
    // Corner 2 slides along the slanted right edge (-40, -120) until the top edge is level.
    EXPECT_EQ(c[1], CPoint(297, 90));
    EXPECT_EQ(c[3].x, 80) << "left edge stays vertical";
}

TEST_F(FreeXFormFrame, CornerModifiersScaleMirrorFreeOrSlide) {
    struct Case {
        bool shift, ctrl, alt;
        CPoint to;
        Corners expected;
    };
    // Aspect: (40, 0) projected on the diagonal (200, 120) is (29.4, 17.6) -> (29, 18).
    // Snap edge: (40, 5) is nearer the bottom edge than the right one, so it slides along it.
    const Case cases[] = {
        {true, false, false, {340, 220}, {{{100, 100}, {329, 100}, {329, 238}, {100, 238}}}},
        {false, true, false, {340, 250}, {{{100, 100}, {300, 100}, {340, 250}, {100, 220}}}},
        {false, false, true, {340, 250}, {{{60, 70}, {340, 70}, {340, 250}, {60, 250}}}},
        {true, true, false, {340, 225}, {{{100, 100}, {300, 100}, {340, 220}, {100, 220}}}},
        {true, false, true, {340, 220}, {{{71, 82}, {329, 82}, {329, 238}, {71, 238}}}},
        {false, true, true, {340, 250}, {{{60, 70}, {300, 100}, {340, 250}, {100, 220}}}},
        {true, true, true, {340, 225}, {{{100, 100}, {300, 100}, {340, 220}, {60, 220}}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(::testing::Message()
                     << "shift " << c.shift << " ctrl " << c.ctrl << " alt " << c.alt);
        m_Frame.Init(kRect);
        SetKeys(c.shift, c.ctrl, c.alt);
        Drag({300, 220}, c.to);
        EXPECT_EQ(CornersOf(m_Frame), c.expected);
        ExpectDerivedPointsConsistent(m_Frame);
    }
}

TEST_F(FreeXFormFrame, EdgeSnappingReportsTheSlideDirectionAsTheCursor) {
    SetKeys(true, true, false);
    m_Frame.MouseButtonDown(CPoint(300, 220), nullptr);
    S_FXFHitTestDescription d;
    m_Frame.MouseMove(CPoint(340, 225), &d);
    EXPECT_EQ(d.m_Orientation, FXF_MO_Horizontal);
    m_Frame.MouseMove(CPoint(305, 260), &d);
    EXPECT_EQ(d.m_Orientation, FXF_MO_Vertical) << "now along the right edge";
    EXPECT_EQ(PointOf(m_Frame, FXF_BottomRight), CPoint(300, 260));
    m_Frame.MouseButtonUp(CPoint(305, 260));
}

TEST_F(FreeXFormFrame, MidPointModifiersMoveSlideOrSkewTheEdges) {
    struct Case {
        bool shift, ctrl, alt;
        Corners expected;
    };
    // Bottom mid-point (200, 220) dragged by (15, 30).
    const Case cases[] = {
        {false, false, false, {{{100, 100}, {300, 100}, {300, 250}, {100, 250}}}},
        {true, false, false, {{{100, 100}, {300, 100}, {300, 250}, {100, 250}}}},
        {false, true, false, {{{100, 100}, {300, 100}, {315, 250}, {115, 250}}}},
        {false, false, true, {{{100, 70}, {300, 70}, {300, 250}, {100, 250}}}},
        {false, true, true, {{{100, 70}, {300, 70}, {300, 250}, {100, 250}}}},
        {true, false, true, {{{100, 70}, {300, 70}, {300, 250}, {100, 250}}}},
        {true, true, false, {{{100, 100}, {300, 100}, {315, 220}, {115, 220}}}},
        {true, true, true, {{{85, 100}, {285, 100}, {315, 220}, {115, 220}}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(::testing::Message()
                     << "shift " << c.shift << " ctrl " << c.ctrl << " alt " << c.alt);
        m_Frame.Init(kRect);
        SetKeys(c.shift, c.ctrl, c.alt);
        Drag({200, 220}, {215, 250});
        EXPECT_EQ(CornersOf(m_Frame), c.expected);
        ExpectDerivedPointsConsistent(m_Frame);
    }
}

TEST_F(FreeXFormFrame, ModifierPressedMidDragChangesTheOperationNotTheHandle) {
    S_FXFHitTestDescription d;
    m_Frame.MouseButtonDown(CPoint(300, 220), &d);
    m_Frame.MouseMove(CPoint(340, 250), &d);
    EXPECT_EQ(d.m_Operation, FXF_OP_Vertex);
    EXPECT_EQ(CornersOf(m_Frame)[1], CPoint(340, 100));

    SetKeys(false, true, false);
    m_Frame.MouseMove(CPoint(340, 250), &d);
    EXPECT_EQ(d.m_Operation, FXF_OP_VertexFree);
    EXPECT_EQ(d.m_PointCode, FXF_BottomRight);
    EXPECT_EQ(CornersOf(m_Frame), (Corners{{{100, 100}, {300, 100}, {340, 250}, {100, 220}}}))
        << "recomputed from mouse-down, not from the previous move";

    SetKeys(false, false, false);
    m_Frame.MouseMove(CPoint(340, 250), &d);
    m_Frame.MouseButtonUp(CPoint(340, 250));
    EXPECT_EQ(d.m_Operation, FXF_OP_Vertex);
    EXPECT_EQ(CornersOf(m_Frame), (Corners{{{100, 100}, {340, 100}, {340, 250}, {100, 250}}}));

    // ALT pressed while moving the frame keeps it a move: the handle taken at mouse-down stays.
    m_Frame.MouseButtonDown(CPoint(150, 130), &d);
    SetKeys(false, false, true);
    m_Frame.MouseMove(CPoint(160, 130), &d);
    EXPECT_EQ(d.m_Operation, FXF_OP_FrameMove);
    m_Frame.MouseButtonUp(CPoint(160, 130));
    EXPECT_EQ(CornersOf(m_Frame)[0], CPoint(110, 100));
}

TEST_F(FreeXFormFrame, ShiftAndCtrlPressedMidDragTurnAStretchIntoASkewAndBack) {
    S_FXFHitTestDescription d;
    m_Frame.MouseButtonDown(CPoint(200, 220), &d);
    m_Frame.MouseMove(CPoint(215, 250), &d);
    EXPECT_EQ(d.m_Operation, FXF_OP_MidPoint);
    EXPECT_EQ(d.m_Orientation, FXF_MO_Vertical);
    EXPECT_EQ(CornersOf(m_Frame), (Corners{{{100, 100}, {300, 100}, {300, 250}, {100, 250}}}));

    // (15, 30) projected onto the bottom edge is (15, 0): the edge slides along itself.
    SetKeys(true, true, false);
    m_Frame.MouseMove(CPoint(215, 250), &d);
    EXPECT_EQ(d.m_Operation, FXF_OP_MidPointAlong);
    EXPECT_EQ(d.m_Orientation, FXF_MO_Horizontal) << "the cursor runs along the edge";
    EXPECT_EQ(CornersOf(m_Frame), (Corners{{{100, 100}, {300, 100}, {315, 220}, {115, 220}}}));

    SetKeys(false, false, false);
    m_Frame.MouseMove(CPoint(215, 250), &d);
    m_Frame.MouseButtonUp(CPoint(215, 250));
    EXPECT_EQ(CornersOf(m_Frame), (Corners{{{100, 100}, {300, 100}, {300, 250}, {100, 250}}}));
    m_Frame.Undo();
    EXPECT_EQ(CornersOf(m_Frame), (Corners{{{100, 100}, {300, 100}, {300, 220}, {100, 220}}}))
        << "the whole drag is one step";
}

TEST_F(FreeXFormFrame, ShiftPressedMidRotateSnapsAsIfHeldThroughout) {
    C_FreeXFormFrame free(kRect);
    free.MouseButtonDown(CPoint(400, 160), nullptr);
    free.MouseMove(CPoint(400, 195), nullptr);
    free.MouseButtonUp(CPoint(400, 195));
    SetKeys(true, false, false);
    C_FreeXFormFrame snapped(kRect);
    snapped.MouseButtonDown(CPoint(400, 160), nullptr);
    snapped.MouseMove(CPoint(400, 195), nullptr);
    snapped.MouseButtonUp(CPoint(400, 195));
    SetKeys(false, false, false);
    ASSERT_NE(CornersOf(free), CornersOf(snapped));

    S_FXFHitTestDescription d;
    m_Frame.MouseButtonDown(CPoint(400, 160), &d);
    m_Frame.MouseMove(CPoint(400, 195), &d);
    EXPECT_EQ(CornersOf(m_Frame), CornersOf(free));
    SetKeys(true, false, false);
    m_Frame.MouseMove(CPoint(400, 195), &d);
    EXPECT_EQ(d.m_Operation, FXF_OP_FrameRotate15);
    EXPECT_EQ(CornersOf(m_Frame), CornersOf(snapped));
    SetKeys(false, false, false);
    m_Frame.MouseMove(CPoint(400, 195), &d);
    EXPECT_EQ(d.m_Operation, FXF_OP_FrameRotate);
    EXPECT_EQ(CornersOf(m_Frame), CornersOf(free));
    m_Frame.MouseButtonUp(CPoint(400, 195));
}

TEST_F(FreeXFormFrame, MoveFollowsThePointerOrFortyFiveDegreeSteps) {
    Drag({150, 130}, {180, 150});
    EXPECT_EQ(CornersOf(m_Frame), (Corners{{{130, 120}, {330, 120}, {330, 240}, {130, 240}}}));
    EXPECT_EQ(m_Frame.CenterPoint(), CPoint(230, 180));

    m_Frame.Init(kRect);
    SetKeys(true, false, false);
    Drag({150, 130}, {180, 137});
    EXPECT_EQ(CornersOf(m_Frame)[0], CPoint(130, 100)) << "nearly horizontal becomes horizontal";
    m_Frame.Init(kRect);
    Drag({150, 130}, {180, 156});
    EXPECT_EQ(CornersOf(m_Frame)[0], CPoint(128, 128)) << "(30, 26) becomes the diagonal (28, 28)";
    m_Frame.Init(kRect);
    Drag({150, 130}, {147, 100});
    EXPECT_EQ(CornersOf(m_Frame)[0], CPoint(100, 70));

    m_Frame.Init(kRect);
    SetKeys(false, false, true);
    Drag({50, 50}, {60, 55});
    EXPECT_EQ(CornersOf(m_Frame)[0], CPoint(110, 105)) << "ALT outside moves";
}

TEST_F(FreeXFormFrame, RotateTurnsAboutTheCentre) {
    // A quarter turn clockwise on the screen about (200, 160).
    Drag({400, 160}, {200, 360});
    EXPECT_EQ(CornersOf(m_Frame), (Corners{{{260, 60}, {260, 260}, {140, 260}, {140, 60}}}));
    EXPECT_EQ(m_Frame.CenterPoint(), CPoint(200, 160));
    CRect box;
    EXPECT_EQ(m_Frame.GetBoundingRect(&box), 1);
    EXPECT_EQ(box, CRect(140, 60, 120, 200)) << "width and height in right and bottom";

    m_Frame.Init(kRect);
    S_FXFHitTestDescription d;
    m_Frame.MouseButtonDown(CPoint(400, 160), &d);
    m_Frame.MouseMove(CPoint(300, 400), &d);
    EXPECT_NE(CornersOf(m_Frame)[0], CPoint(100, 100));
    m_Frame.MouseMove(CPoint(200, 160), &d);
    EXPECT_EQ(d.m_RotateOctant, FXF_RO_Up) << "on the centre";
    m_Frame.MouseMove(CPoint(400, 160), &d);
    m_Frame.MouseButtonUp(CPoint(400, 160));
    EXPECT_EQ(CornersOf(m_Frame), (Corners{{{100, 100}, {300, 100}, {300, 220}, {100, 220}}}))
        << "ending on the start point leaves the frame unturned";
}

TEST_F(FreeXFormFrame, RotateWithShiftTurnsInFifteenDegreeSteps) {
    // (194, 52) from the centre lies on the 15-degree direction (97, 26) itself.
    Drag({400, 160}, {394, 212});
    const Corners exact = CornersOf(m_Frame);
    const double degrees =
        std::atan2(exact[1].y - exact[0].y, exact[1].x - exact[0].x) * 180.0 / std::numbers::pi;
    EXPECT_NEAR(degrees, 15.0, 0.5);

    // (200, 35) and (200, 60) from the centre are 9.9 and 16.7 degrees: both snap to 15.
    SetKeys(true, false, false);
    for (const CPoint to : {CPoint(400, 195), CPoint(400, 220)}) {
        m_Frame.Init(kRect);
        Drag({400, 160}, to);
        const Corners snapped = CornersOf(m_Frame);
        for (int k = 0; k < 4; ++k) {
            EXPECT_NEAR(snapped[k].x, exact[k].x, 1) << "corner " << k << " to " << to.y;
            EXPECT_NEAR(snapped[k].y, exact[k].y, 1) << "corner " << k << " to " << to.y;
        }
    }

    m_Frame.Init(kRect);
    SetKeys(false, false, false);
    Drag({400, 160}, {400, 195});
    EXPECT_GT(std::abs(CornersOf(m_Frame)[0].y - exact[0].y), 5)
        << "without SHIFT the turn is not snapped";
}

TEST_F(FreeXFormFrame, CentreIsCaughtAndFollowsWhereItWasDropped) {
    // Dropped within 50 px of corner 2 (but not of the central position): it sits on corner 2.
    S_FXFHitTestDescription d = Drag({200, 160}, {290, 105});
    EXPECT_EQ(d.m_EditingCode, FXF_EditCenter);
    EXPECT_EQ(d.m_StartPoint, CPoint(200, 160));
    EXPECT_EQ(m_Frame.CenterPoint(), CPoint(300, 100));
    EXPECT_EQ(m_Frame.GetCenterPosition(), FXF_TopRight);
    Drag({300, 220}, {340, 250});
    EXPECT_EQ(m_Frame.CenterPoint(), CPoint(340, 100)) << "follows corner 2";

    // Dropped near the middle it goes back to the central position.
    m_Frame.Init(kRect);
    m_Frame.CenterPoint() = CPoint(120, 200);
    Drag({120, 200}, {230, 180});
    EXPECT_EQ(m_Frame.CenterPoint(), CPoint(200, 160));

    // Dropped far from everything it is free and stays put when the frame moves.
    m_Frame.Init(kRect);
    Drag({200, 160}, {420, 330});
    EXPECT_EQ(m_Frame.GetCenterPosition(), FXF_NoPoint);
    Drag({150, 130}, {180, 150});
    EXPECT_EQ(m_Frame.CenterPoint(), CPoint(420, 330));

    // With SHIFT the centre moves in 45-degree steps from where it was.
    m_Frame.Init(kRect);
    SetKeys(true, false, false);
    Drag({210, 165}, {400, 170});
    EXPECT_EQ(m_Frame.CenterPoint(), CPoint(400, 160));
}

TEST_F(FreeXFormFrame, CentreDroppedOnAMidPointOrCornerFollowsItThroughEdits) {
    // (290, 150) is 90 px from the central position and 50.9 from corner 2, but 14 from the
    // right mid-point (300, 160): it is caught there.
    Drag({200, 160}, {290, 150});
    EXPECT_EQ(m_Frame.CenterPoint(), CPoint(300, 160));
    EXPECT_EQ(m_Frame.GetCenterPosition(), FXF_RightMid);
    // The bottom edge moved down by 30 takes the right mid-point to (300, 175).
    Drag({200, 220}, {200, 250});
    EXPECT_EQ(m_Frame.CenterPoint(), CPoint(300, 175));
    EXPECT_EQ(m_Frame.GetCenterPosition(), FXF_RightMid);

    // On corner 6, a symmetric drag of corner 0 moves corner 4 the opposite way and corner 6
    // follows both: the centre goes along.
    m_Frame.Init(kRect);
    Drag({200, 160}, {110, 210});
    EXPECT_EQ(m_Frame.GetCenterPosition(), FXF_BottomLeft);
    SetKeys(false, false, true);
    Drag({100, 100}, {90, 80});
    SetKeys(false, false, false);
    EXPECT_EQ(m_Frame.CenterPoint(), PointOf(m_Frame, FXF_BottomLeft));
    EXPECT_EQ(m_Frame.CenterPoint(), CPoint(90, 240));
    m_Frame.Undo();
    EXPECT_EQ(m_Frame.CenterPoint(), CPoint(100, 220)) << "the centre comes back with the step";
}

}  // namespace vistrane::test
