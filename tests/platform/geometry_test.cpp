#include <gtest/gtest.h>

#include <vistrane/platform/geometry.h>
#include <vistrane/platform/keyboard.h>

TEST(CRect, RightAndBottomAreExclusive) {
    const CRect r(2, 3, 5, 7);
    EXPECT_EQ(r.Width(), 3);
    EXPECT_EQ(r.Height(), 4);
    EXPECT_TRUE(r.PtInRect(CPoint(2, 3)));
    EXPECT_TRUE(r.PtInRect(CPoint(4, 6)));
    EXPECT_FALSE(r.PtInRect(CPoint(5, 6)));
    EXPECT_FALSE(r.PtInRect(CPoint(4, 7)));
    EXPECT_TRUE(CRect(1, 1, 1, 5).IsRectEmpty());
    EXPECT_TRUE(CRect(4, 1, 2, 5).IsRectEmpty());
}

TEST(CRect, IntersectionOfDisjointRectanglesIsAllZero) {
    CRect r(9, 9, 9, 9);
    EXPECT_FALSE(r.IntersectRect(CRect(0, 0, 4, 4), CRect(4, 0, 8, 4)));
    EXPECT_TRUE(r.IsRectNull());
    EXPECT_TRUE(r.IntersectRect(CRect(0, 0, 4, 4), CRect(-2, 2, 3, 9)));
    EXPECT_EQ(r, CRect(0, 2, 3, 4));
    RECT plain{};
    EXPECT_EQ(IntersectRect(&plain, &r, &r), 1);
    EXPECT_EQ(CRect(plain), r);
}

TEST(CRect, UnionIgnoresEmptyOperandsAndOffsetMovesAllEdges) {
    CRect r;
    r.UnionRect(CRect(5, 5, 5, 9), CRect(1, 2, 3, 4));
    EXPECT_EQ(r, CRect(1, 2, 3, 4));
    r.UnionRect(r, CRect(2, -1, 6, 3));
    EXPECT_EQ(r, CRect(1, -1, 6, 4));
    r.OffsetRect(-1, 1);
    EXPECT_EQ(r, CRect(0, 0, 5, 5));
    CRect flipped(5, 6, 1, 2);
    flipped.NormalizeRect();
    EXPECT_EQ(flipped, CRect(1, 2, 5, 6));
}

TEST(KeyState, HighBitReportsWhatTheHostSet) {
    SetKeyState(VK_SHIFT, true);
    SetKeyState(VK_CONTROL, false);
    EXPECT_LT(GetKeyState(VK_SHIFT), 0);
    EXPECT_EQ(GetKeyState(VK_CONTROL), 0);
    SetKeyState(VK_SHIFT, false);
    EXPECT_EQ(GetKeyState(VK_SHIFT), 0);
    SetKeyState(-1, true);
    SetKeyState(300, true);
    EXPECT_EQ(GetKeyState(300), 0);
}
