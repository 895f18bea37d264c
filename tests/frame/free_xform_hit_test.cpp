// Where the frame's handles are and which operation a press there starts.

#include <gtest/gtest.h>

#include "frame/free_xform_frame_support.h"

namespace vistrane::test {

TEST_F(FreeXFormFrame, InitPlacesCornersMidPointsAndCentre) {
    CPoint p[10];
    m_Frame.GetDrawPoints(p);
    const CPoint expected[10] = {{100, 100}, {200, 100}, {300, 100}, {300, 160}, {300, 220},
                                 {200, 220}, {100, 220}, {100, 160}, {100, 100}, {200, 160}};
    for (int k = 0; k < 10; ++k) {
        EXPECT_EQ(p[k], expected[k]) << "point " << k;
    }
    EXPECT_EQ(m_Frame.GetCenterPosition(), FXF_Center);
    EXPECT_EQ(m_Frame.CanUndo(), 0);
    EXPECT_EQ(m_Frame.CanRedo(), 0);
}

TEST_F(FreeXFormFrame, HandleHitThresholdIsASquaredDistanceBelow51) {
    EXPECT_EQ(Hit({307, 100}).m_PointCode, FXF_TopRight) << "7 px right: 49";
    EXPECT_EQ(Hit({305, 105}).m_PointCode, FXF_TopRight) << "(5, 5) away: 50";
    const S_FXFHitTestDescription missed = Hit({306, 105});  // 61
    EXPECT_EQ(missed.m_PointCode, FXF_NoPoint);
    EXPECT_EQ(missed.m_EditingCode, FXF_EditFrameRotate) << "(306, 105) is outside the frame";
    EXPECT_EQ(Hit({200, 93}).m_PointCode, FXF_TopMid);
    EXPECT_EQ(Hit({200, 93}).m_EditingCode, FXF_EditMidPoint);
    EXPECT_EQ(Hit({205, 95}).m_PointCode, FXF_TopMid);
    EXPECT_EQ(Hit({206, 95}).m_PointCode, FXF_NoPoint);
}

TEST_F(FreeXFormFrame, CentreWinsOverACornerAndCornersOverMidPoints) {
    C_FreeXFormFrame small(CRect(0, 0, 20, 20));
    S_FXFHitTestDescription d;
    small.HitTestPointer(CPoint(20, 20), &d);
    EXPECT_EQ(d.m_EditingCode, FXF_EditCenter)
        << "the pointer is on corner 4 and 14 px from the centre";
    EXPECT_EQ(d.m_PointCode, FXF_Center);
    EXPECT_EQ(d.m_Operation, FXF_OP_CenterMove);

    // A narrow frame with its centre moved away: (5, 0) is as near to corners 0 and 2 as can be
    // and on mid-point 1. The corners are tried first and the earlier corner keeps a tie.
    C_FreeXFormFrame narrow(CRect(0, 0, 10, 200));
    narrow.CenterPoint() = CPoint(500, 500);
    narrow.HitTestPointer(CPoint(5, 0), &d);
    EXPECT_EQ(d.m_PointCode, FXF_TopLeft);
    narrow.HitTestPointer(CPoint(6, 0), &d);
    EXPECT_EQ(d.m_PointCode, FXF_TopRight);
}

TEST_F(FreeXFormFrame, CentreHitReachesFiftyPixels) {
    EXPECT_EQ(Hit({250, 160}).m_EditingCode, FXF_EditCenter);
    EXPECT_EQ(Hit({230, 200}).m_EditingCode, FXF_EditCenter);
    EXPECT_EQ(Hit({251, 160}).m_EditingCode, FXF_EditFrameMove);
    SetKeys(true, false, false);
    EXPECT_EQ(Hit({200, 160}).m_Operation, FXF_OP_CenterMove45);
}

TEST_F(FreeXFormFrame, OperationTableFollowsTheModifiers) {
    struct Row {
        bool shift, ctrl, alt;
        FXF_OperationCodes corner, mid;
    };
    const Row rows[] = {
        {false, false, false, FXF_OP_Vertex, FXF_OP_MidPoint},
        {true, false, false, FXF_OP_VertexAspect, FXF_OP_MidPoint},
        {false, true, false, FXF_OP_VertexFree, FXF_OP_MidPointFree},
        {false, false, true, FXF_OP_VertexSymmetric, FXF_OP_MidPointSymmetric},
        {true, true, false, FXF_OP_VertexSnapEdge, FXF_OP_MidPointAlong},
        {true, false, true, FXF_OP_VertexAspectSymmetric, FXF_OP_MidPointSymmetric},
        {false, true, true, FXF_OP_VertexFreeSymmetric, FXF_OP_MidPointSymmetric},
        {true, true, true, FXF_OP_VertexSnapEdgeSymmetric, FXF_OP_MidPointAlongSymmetric},
    };
    for (const Row& row : rows) {
        SetKeys(row.shift, row.ctrl, row.alt);
        SCOPED_TRACE(::testing::Message()
                     << "shift " << row.shift << " ctrl " << row.ctrl << " alt " << row.alt);
        EXPECT_EQ(Hit({300, 220}).m_Operation, row.corner);
        EXPECT_EQ(Hit({300, 220}).m_EditingCode, FXF_EditVertex);
        EXPECT_EQ(Hit({200, 220}).m_Operation, row.mid);
        EXPECT_EQ(Hit({200, 220}).m_EditingCode, FXF_EditMidPoint);
    }
}

TEST_F(FreeXFormFrame, InsideMovesOutsideRotatesAndAltSwapsThem) {
    const CPoint inside(130, 120);
    const CPoint outside(50, 50);
    EXPECT_EQ(Hit(inside).m_Operation, FXF_OP_FrameMove);
    EXPECT_EQ(Hit(outside).m_Operation, FXF_OP_FrameRotate);
    EXPECT_EQ(Hit(outside).m_RotateOctant, FXF_RO_UpLeft);
    SetKeys(false, false, true);
    EXPECT_EQ(Hit(inside).m_Operation, FXF_OP_FrameRotate);
    EXPECT_EQ(Hit(inside).m_EditingCode, FXF_EditFrameRotate);
    EXPECT_EQ(Hit(outside).m_Operation, FXF_OP_FrameMove);
    SetKeys(true, false, false);
    EXPECT_EQ(Hit(inside).m_Operation, FXF_OP_FrameMove45);
    EXPECT_EQ(Hit(outside).m_Operation, FXF_OP_FrameRotate15);
}

TEST_F(FreeXFormFrame, HandleOrientationNamesTheCursor) {
    EXPECT_EQ(Hit({100, 100}).m_Orientation, FXF_MO_Diagonal1);
    EXPECT_EQ(Hit({300, 220}).m_Orientation, FXF_MO_Diagonal1);
    EXPECT_EQ(Hit({300, 100}).m_Orientation, FXF_MO_Diagonal3);
    EXPECT_EQ(Hit({200, 100}).m_Orientation, FXF_MO_Vertical);
    EXPECT_EQ(Hit({300, 160}).m_Orientation, FXF_MO_Horizontal);
    SetKeys(false, true, false);
    EXPECT_EQ(Hit({300, 100}).m_Orientation, FXF_MO_None) << "a free corner";
    EXPECT_EQ(Hit({200, 100}).m_Orientation, FXF_MO_None) << "a free edge";
    SetKeys(true, true, false);
    EXPECT_EQ(Hit({200, 100}).m_Orientation, FXF_MO_Horizontal) << "skew runs along the edge";
}

}  // namespace vistrane::test
