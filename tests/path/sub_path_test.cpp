#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include <vistrane/path/sub_path.h>

#include "support/path_support.h"

using vistrane::test::FillSubPath;

namespace {

std::vector<CPoint> Anchors(const C_SubPath& sub) {
    std::vector<CPoint> out;
    for (int i = 0; i < sub.GetCount(); ++i) {
        out.push_back(sub.GetPoints()[i].m_Anchor);
    }
    return out;
}

}  // namespace

TEST(C_SubPath, AddPointInsertsBeforeIndexWithTheDefaultRecord) {
    C_SubPath sub;
    ASSERT_EQ(sub.AddPoint(0, CPoint(1, 1)), 1);
    ASSERT_EQ(sub.AddPoint(1, CPoint(3, 3)), 1);
    ASSERT_EQ(sub.AddPoint(1, CPoint(2, 2)), 1);
    ASSERT_EQ(sub.AddPoint(0, CPoint(0, 0)), 1);
    EXPECT_EQ(Anchors(sub), (std::vector<CPoint>{{0, 0}, {1, 1}, {2, 2}, {3, 3}}));
    const S_PathPoint& p = sub.GetPoints()[2];
    EXPECT_EQ(p.m_Flags, 0x07);
    EXPECT_EQ(p.m_Attributes, 0x80);
    EXPECT_EQ(p.m_PrevDirection, CPoint(0, 0));
    EXPECT_EQ(p.m_NextDirection, CPoint(0, 0));

    S_PathPoint custom{};
    custom.m_Anchor = CPoint(9, 9);
    custom.m_Attributes = PPA_SERIAL;
    ASSERT_EQ(sub.AppendPoint(&custom), 1);
    EXPECT_EQ(sub.GetCount(), 5);
    EXPECT_EQ(sub.GetPoints()[4].m_Attributes, PPA_SERIAL);
}

TEST(C_SubPath, BlankPointsAppendOrReplaceAndSubPathsConcatenate) {
    C_SubPath sub;
    FillSubPath(&sub, {{1, 2}, {3, 4}});
    sub.Close(1);
    ASSERT_EQ(sub.AddBlankPoints(2, 0), 1);
    EXPECT_EQ(Anchors(sub), (std::vector<CPoint>{{1, 2}, {3, 4}, {0, 0}, {0, 0}}));
    EXPECT_EQ(sub.GetPoints()[3].m_Flags, 0);
    EXPECT_EQ(sub.IsClosed(), 1);

    C_SubPath other;
    FillSubPath(&other, {{7, 7}});
    C_SubPath empty;
    ASSERT_EQ(sub.AppendSubPath(&empty), 1);
    ASSERT_EQ(sub.AppendSubPath(&other), 1);
    EXPECT_EQ(sub.GetCount(), 5);
    EXPECT_EQ(sub.GetPoints()[4].m_Anchor, CPoint(7, 7));
    EXPECT_EQ(sub.IsClosed(), 1);

    ASSERT_EQ(sub.AddBlankPoints(3, 1), 1);
    EXPECT_EQ(sub.GetCount(), 3);
    EXPECT_EQ(sub.IsClosed(), 0);
    EXPECT_EQ(sub.AddBlankPoints(-1, 0), 0);
    EXPECT_EQ(sub.GetCount(), 3);
}

TEST(C_SubPath, DeletingSelectedPointsOpensOrEmpties) {
    C_SubPath sub;
    FillSubPath(&sub, {{0, 0}, {1, 0}, {2, 0}, {3, 0}});
    sub.Close(1);
    sub.SelectAll(0);
    const S_PathPoint* before = sub.GetPoints();
    ASSERT_EQ(sub.DelSelectedPoints(), 1);
    EXPECT_EQ(sub.GetPoints(), before);  // nothing selected: the array is kept
    EXPECT_EQ(sub.GetCount(), 4);

    sub.GetPoints()[1].m_Flags = PPF_SELECTED;
    ASSERT_EQ(sub.DelSelectedPoints(), 1);
    EXPECT_EQ(Anchors(sub), (std::vector<CPoint>{{0, 0}, {2, 0}, {3, 0}}));
    EXPECT_EQ(sub.IsClosed(), 1);  // three remain: still closed

    sub.GetPoints()[0].m_Flags = PPF_SELECTED;
    ASSERT_EQ(sub.DelSelectedPoints(), 1);
    EXPECT_EQ(sub.GetCount(), 2);
    EXPECT_EQ(sub.IsClosed(), 0);

    sub.Close(1);
    sub.SelectAll(1);
    ASSERT_EQ(sub.DelSelectedPoints(), 1);
    EXPECT_EQ(sub.GetCount(), 0);
    EXPECT_EQ(sub.GetPoints(), nullptr);
    EXPECT_EQ(sub.IsClosed(), 0);

    FillSubPath(&sub, {{0, 0}, {1, 0}, {2, 0}, {3, 0}, {4, 0}});
    sub.DelPoints(1, 2);
    EXPECT_EQ(Anchors(sub), (std::vector<CPoint>{{0, 0}, {3, 0}, {4, 0}}));
}

TEST(C_SubPath, TryToCloseNeedsThreePoints) {
    C_SubPath sub;
    FillSubPath(&sub, {{0, 0}, {5, 0}});
    sub.Close(1);
    EXPECT_EQ(sub.TryToClose(), 0);
    EXPECT_EQ(sub.IsClosed(), 0);
    ASSERT_EQ(sub.AddPoint(2, CPoint(5, 5)), 1);
    EXPECT_EQ(sub.TryToClose(), 1);
}

TEST(C_SubPath, ReverseExchangesDirectionsButNotTheirVisibleBits) {
    C_SubPath sub;
    FillSubPath(&sub, {{0, 0}, {10, 0}, {10, 10}});
    sub.Close(1);
    S_PathPoint* p = sub.GetPoints();
    p[0].m_PrevDirection = CPoint(-1, -2);
    p[0].m_NextDirection = CPoint(3, 4);
    p[0].m_Flags = PPF_NEXT_DIRECTION_VISIBLE;
    p[0].m_Attributes = PPA_SERIAL;
    sub.Reverse();
    EXPECT_EQ(Anchors(sub), (std::vector<CPoint>{{10, 10}, {10, 0}, {0, 0}}));
    const S_PathPoint& moved = sub.GetPoints()[2];
    EXPECT_EQ(moved.m_PrevDirection, CPoint(3, 4));
    EXPECT_EQ(moved.m_NextDirection, CPoint(-1, -2));
    EXPECT_EQ(moved.m_Flags, PPF_NEXT_DIRECTION_VISIBLE);
    EXPECT_EQ(moved.m_Attributes, PPA_SERIAL);
    EXPECT_EQ(sub.IsClosed(), 1);

    FillSubPath(&sub, {{0, 0}, {1, 0}, {2, 0}, {3, 0}});
    sub.Reverse();  // even count: the middle pair swaps too
    EXPECT_EQ(Anchors(sub), (std::vector<CPoint>{{3, 0}, {2, 0}, {1, 0}, {0, 0}}));
}

TEST(C_SubPath, FlagOperations) {
    C_SubPath sub;
    FillSubPath(&sub, {{0, 0}, {1, 0}, {2, 0}, {3, 0}});
    sub.FlagsAll(0);
    sub.GetPoints()[1].m_Flags = PPF_NEXT_DIRECTION_VISIBLE;
    sub.GetPoints()[2].m_Flags = PPF_NEXT_DIRECTION_VISIBLE | PPF_SELECTED;
    // The value is a raw pattern: 1 never equals flags & 0x04.
    EXPECT_EQ(sub.FlagAIfBIsSetToVal(PPF_PREV_DIRECTION_VISIBLE, 1, PPF_NEXT_DIRECTION_VISIBLE, 1),
              0);
    EXPECT_EQ(
        sub.FlagAIfBIsSetToVal(PPF_PREV_DIRECTION_VISIBLE, 1, PPF_NEXT_DIRECTION_VISIBLE, 0x04), 2);
    EXPECT_EQ(sub.GetPoints()[1].m_Flags, 0x06);
    EXPECT_EQ(sub.GetPoints()[0].m_Flags, 0x00);

    sub.InvertSelection();
    EXPECT_EQ(sub.GetPoints()[0].m_Flags, 0x01);
    EXPECT_EQ(sub.GetPoints()[2].m_Flags, 0x06);
    sub.FlagAll(PPF_NEXT_DIRECTION_VISIBLE, 0);
    EXPECT_EQ(sub.GetPoints()[1].m_Flags, 0x03);

    sub.SetAllSerial(1);
    EXPECT_EQ(sub.GetPoints()[3].m_Attributes, PPA_LINKED_DIRECTIONS | PPA_SERIAL);
    sub.SetAllSerial(0);
    EXPECT_EQ(sub.GetPoints()[3].m_Attributes, PPA_LINKED_DIRECTIONS);

    sub.SetAnchorsVisible(1);
    sub.ReduceToSegments();
    EXPECT_EQ(sub.HasSelectedAnchors(), 0);
    EXPECT_EQ(sub.AreAnchorsVisible(), 0);
    EXPECT_EQ(sub.GetPoints()[3].m_Attributes, PPA_LINKED_DIRECTIONS);
}

TEST(C_SubPath, SelectPointsInRectExcludesRightAndBottomEdges) {
    C_SubPath sub;
    FillSubPath(&sub, {{0, 0}, {10, 5}, {5, 10}, {5, 5}});
    sub.FlagsAll(0);
    sub.GetPoints()[0].m_Flags = PPF_SELECTED;
    sub.SelectPointsInRect(CRect(0, 0, 10, 10), PTSEL_ADD);
    EXPECT_EQ(sub.GetPoints()[0].m_Flags, PPF_SELECTED);
    EXPECT_EQ(sub.GetPoints()[1].m_Flags, 0);  // x on the right edge
    EXPECT_EQ(sub.GetPoints()[2].m_Flags, 0);  // y on the bottom edge
    EXPECT_EQ(sub.GetPoints()[3].m_Flags, PPF_SELECTED);
    sub.GetPoints()[1].m_Flags = PPF_SELECTED;
    sub.SelectPointsInRect(CRect(4, 4, 6, 6), PTSEL_SUBTRACT);
    EXPECT_EQ(sub.GetPoints()[3].m_Flags, 0);
    EXPECT_EQ(sub.GetPoints()[1].m_Flags, PPF_SELECTED);  // outside: left alone
    sub.SelectPointsInRect(CRect(4, 4, 6, 6), PTSEL_REPLACE);
    EXPECT_EQ(sub.GetPoints()[1].m_Flags, 0);
    EXPECT_EQ(sub.GetPoints()[0].m_Flags, 0);
    EXPECT_EQ(sub.GetPoints()[3].m_Flags, PPF_SELECTED);
}

TEST(C_SubPath, DirectionDisplayWrapsOnlyWhenClosed) {
    C_SubPath sub;
    FillSubPath(&sub, {{0, 0}, {1, 0}, {2, 0}, {3, 0}});
    sub.SetSegmentDirectionsVisible(1, 2, 1);
    EXPECT_EQ(sub.GetPoints()[0].m_Flags, 0);
    EXPECT_EQ(sub.GetPoints()[1].m_Flags, PPF_NEXT_DIRECTION_VISIBLE);
    EXPECT_EQ(sub.GetPoints()[2].m_Flags, PPF_PREV_DIRECTION_VISIBLE);

    sub.SetAnchorAdjacentSegmentsDirectionsVisible(0, 1, 0);
    EXPECT_EQ(sub.GetPoints()[0].m_Flags, 0x06);
    EXPECT_EQ(sub.GetPoints()[1].m_Flags, PPF_PREV_DIRECTION_VISIBLE);
    EXPECT_EQ(sub.GetPoints()[3].m_Flags, 0);  // open: no point before 0
    sub.Close(1);
    sub.SetAnchorAdjacentSegmentsDirectionsVisible(3, 1, 1);
    EXPECT_EQ(sub.GetPoints()[3].m_Flags, 0x07);
    EXPECT_EQ(sub.GetPoints()[2].m_Flags, PPF_NEXT_DIRECTION_VISIBLE);
    EXPECT_EQ(sub.GetPoints()[0].m_Flags, PPF_PREV_DIRECTION_VISIBLE);
}

TEST(C_SubPath, ComparisonOffsetsAndTangents) {
    C_SubPath a;
    C_SubPath b;
    EXPECT_EQ(a.SameAnchorsAndDirections(&b), 1);
    FillSubPath(&a, {{0, 0}, {4, 0}, {4, 4}});
    FillSubPath(&b, {{0, 0}, {4, 0}, {4, 4}});
    b.FlagsAll(0);
    b.Close(1);
    EXPECT_EQ(a.SameAnchorsAndDirections(&b), 1);
    b.GetPoints()[1].m_NextDirection = CPoint(0, 1);
    EXPECT_EQ(a.SameAnchorsAndDirections(&b), 0);

    a.SelectAll(0);
    a.GetPoints()[2].m_Flags = PPF_SELECTED;
    a.OffSetSelectedAnchors(CSize(1, 2));
    EXPECT_EQ(Anchors(a), (std::vector<CPoint>{{0, 0}, {4, 0}, {5, 6}}));
    a.OffSetAnchors(CSize(-1, -1));
    EXPECT_EQ(Anchors(a), (std::vector<CPoint>{{-1, -1}, {3, -1}, {4, 5}}));

    // 0.5 * ((A[2] - A[0]) + (A[0] - A[1])) = 0.5 * ((5, 6) + (-4, 0)).
    EXPECT_EQ(a.GetCenterTangent(0), C_2DVector(0.5, 3.0));
    EXPECT_EQ(a.GetCenterTangent(3), C_2DVector(1e-05, 1e-05));
    C_SubPath same;
    FillSubPath(&same, {{2, 2}, {2, 2}, {2, 2}});
    EXPECT_EQ(same.GetCenterTangent(1), C_2DVector(1e-05, 1e-05));
}

TEST(C_SubPath, BezierPointsAndBoundingRectangle) {
    C_SubPath sub;
    CRect box;
    sub.GetBoundingRect(&box);
    EXPECT_EQ(box, CRect(1073741824, 1073741824, -1073741824, -1073741824));

    FillSubPath(&sub, {{7, -3}});
    sub.GetBoundingRect(&box);
    EXPECT_EQ(box, CRect(7, -3, 7, -3));

    // An arch from (0, 0) to (40, 0) with both controls 40 above: its top at t = 0.5 is
    // y = -30, and the samples reach y = -30 at t = 0.5 (0.05 steps land on 0.45 and 0.55 too).
    FillSubPath(&sub, {{0, 0}, {40, 0}});
    sub.GetPoints()[0].m_NextDirection = CPoint(0, -40);
    sub.GetPoints()[1].m_PrevDirection = CPoint(0, -40);
    const C_2DVector mid = sub.BezierCurvePoint(0, 1, 0.5);
    EXPECT_DOUBLE_EQ(mid.m_X, 20.0);
    EXPECT_DOUBLE_EQ(mid.m_Y, -30.0);
    sub.GetBoundingRect(&box);
    EXPECT_EQ(box, CRect(0, -30, 40, 0));
    // Direction points are not part of the box, and t is not clamped.
    EXPECT_DOUBLE_EQ(sub.BezierCurvePoint(0, 1, 2.0).m_Y, 240.0);

    // Closing adds the segment back to point 0.
    FillSubPath(&sub, {{0, 0}, {10, 0}, {10, 10}});
    sub.GetPoints()[2].m_NextDirection = CPoint(-30, 0);
    sub.GetBoundingRect(&box);
    EXPECT_EQ(box, CRect(0, 0, 10, 10));
    sub.Close(1);
    sub.GetBoundingRect(&box);
    EXPECT_LT(box.left, -5);
}

TEST(C_SubPath, CloneDuplicatesAndAssignmentShares) {
    C_SubPath sub;
    FillSubPath(&sub, {{1, 1}, {2, 2}, {3, 3}});
    sub.Close(1);
    sub.SetAnchorsVisible(1);
    std::unique_ptr<C_SubPath> copy(sub.Clone());
    ASSERT_NE(copy, nullptr);
    EXPECT_NE(copy->GetPoints(), sub.GetPoints());
    EXPECT_EQ(copy->SameAnchorsAndDirections(&sub), 1);
    EXPECT_EQ(copy->GetPoints()[1].m_Flags, 0x07);
    EXPECT_EQ(copy->IsClosed(), 1);
    EXPECT_EQ(copy->AreAnchorsVisible(), 0);
    EXPECT_EQ(copy->GetNext(), nullptr);

    C_SubPath shared;
    shared = sub;
    EXPECT_EQ(shared.GetPoints(), sub.GetPoints());
    shared.GetPoints()[0].m_Anchor = CPoint(99, 99);
    EXPECT_EQ(sub.GetPoints()[0].m_Anchor, CPoint(99, 99));
    // Let go of the shared array without freeing it: assignment never frees.
    const C_SubPath empty;
    shared = empty;
    EXPECT_EQ(shared.GetPoints(), nullptr);
    EXPECT_EQ(sub.GetCount(), 3);

    C_SubPath linked;
    EXPECT_EQ(linked.SetNext(&sub), nullptr);
    EXPECT_EQ(linked.SetNext(nullptr), &sub);
    EXPECT_EQ(linked.SetPrev(&sub), nullptr);
    EXPECT_EQ(linked.SetPrev(nullptr), &sub);
}
