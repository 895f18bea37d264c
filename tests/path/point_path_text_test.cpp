#include <gtest/gtest.h>

#include <vector>

#include <vistrane/path/point_path.h>
#include <vistrane/platform/dc.h>
#include <vistrane/platform/font.h>
#include <vistrane/platform/text.h>

TEST(C_PointPathGDICurves, FiguresBecomeSubPathsWithDirectionOffsets) {
    // A closed figure: a line then a cubic back towards the start; then an open two-point
    // figure; then a closed figure of two anchors, which cannot close.
    POINT points[] = {{0, 0},   {10, 0},  {14, 2}, {16, 6}, {10, 10},  // figure 1
                      {50, 50}, {60, 50},                              // figure 2
                      {70, 70}, {80, 70}};                             // figure 3
    unsigned char types[] = {PT_MOVETO,
                             PT_LINETO,
                             PT_BEZIERTO,
                             PT_BEZIERTO,
                             PT_BEZIERTO | PT_CLOSEFIGURE,
                             PT_MOVETO,
                             PT_LINETO,
                             PT_MOVETO,
                             PT_LINETO | PT_CLOSEFIGURE};
    C_PointPath path;
    ASSERT_EQ(path.CreateNewSubPath(), 1);  // replaced: append is 0
    ASSERT_EQ(path.AddSubPathsFromGDICurves(points, types, 9, 0), 1);
    ASSERT_EQ(path.GetNSubPaths(), 3);

    // Reverse order: the last figure is the head.
    const C_SubPath* third = path.GetFirstSubPath();
    const C_SubPath* second = third->GetNext();
    const C_SubPath* first = second->GetNext();
    EXPECT_EQ(third->GetCount(), 2);
    EXPECT_EQ(third->IsClosed(), 0);
    EXPECT_EQ(second->GetCount(), 2);
    EXPECT_EQ(second->GetPoints()[1].m_Anchor, CPoint(60, 50));

    ASSERT_EQ(first->GetCount(), 3);
    EXPECT_EQ(first->IsClosed(), 1);
    const S_PathPoint* p = first->GetPoints();
    EXPECT_EQ(p[1].m_Anchor, CPoint(10, 0));
    EXPECT_EQ(p[1].m_NextDirection, CPoint(4, 2));  // first control minus the anchor
    EXPECT_EQ(p[2].m_Anchor, CPoint(10, 10));
    EXPECT_EQ(p[2].m_PrevDirection, CPoint(6, -4));  // second control minus the end
    EXPECT_EQ(p[2].m_NextDirection, CPoint(0, 0));
    EXPECT_EQ(p[0].m_PrevDirection, CPoint(0, 0));
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(p[i].m_Flags, 0x07);
        EXPECT_EQ(p[i].m_Attributes, PPA_LINKED_DIRECTIONS);
    }

    // Appending keeps what is there, behind the new figures.
    POINT more[] = {{1, 1}, {2, 2}};
    unsigned char moreTypes[] = {PT_MOVETO, PT_LINETO};
    ASSERT_EQ(path.AddSubPathsFromGDICurves(more, moreTypes, 2, 1), 1);
    EXPECT_EQ(path.GetNSubPaths(), 4);
    EXPECT_EQ(path.GetFirstSubPath()->GetNext(), third);
}

TEST(C_PointPathGDICurves, TheLetterOGivesTwoClosedSubPaths) {
    CFont font;
    if (font.CreateFont("DejaVu Sans", 120) == 0) {
        GTEST_SKIP() << "no DejaVu Sans installed";
    }
    CDC dc;
    ASSERT_EQ(dc.CreateCompatibleDC(nullptr), 1);
    dc.SelectObject(&font);
    ASSERT_EQ(dc.BeginPath(), 1);
    ASSERT_EQ(dc.TextOut(0, 0, "O", 1), 1);
    ASSERT_EQ(dc.EndPath(), 1);
    const int n = dc.GetPath(nullptr, nullptr, 0);
    ASSERT_GT(n, 0);
    std::vector<POINT> points(static_cast<size_t>(n));
    std::vector<BYTE> types(static_cast<size_t>(n));
    ASSERT_EQ(dc.GetPath(points.data(), types.data(), n), n);

    C_PointPath path;
    ASSERT_EQ(path.AddSubPathsFromGDICurves(points.data(), types.data(), n, 0), 1);
    ASSERT_EQ(path.GetNSubPaths(), 2);
    const C_SubPath* a = path.GetFirstSubPath();
    const C_SubPath* b = a->GetNext();
    EXPECT_EQ(a->IsClosed(), 1);
    EXPECT_EQ(b->IsClosed(), 1);
    // One ring inside the other.
    CRect ra;
    CRect rb;
    a->GetBoundingRect(&ra);
    b->GetBoundingRect(&rb);
    const CRect& outer = ra.Width() > rb.Width() ? ra : rb;
    const CRect& inner = ra.Width() > rb.Width() ? rb : ra;
    EXPECT_LT(outer.left, inner.left);
    EXPECT_LT(outer.top, inner.top);
    EXPECT_GT(outer.right, inner.right);
    EXPECT_GT(outer.bottom, inner.bottom);
    EXPECT_GT(inner.Width(), 20);
}

TEST(C_PointPathText, CreateFromTextOutlinesLettersAndSkipsSpaces) {
    CFont font;
    if (font.CreateFont("DejaVu Sans", 80) == 0) {
        GTEST_SKIP() << "no DejaVu Sans installed";
    }
    C_PointPath path;
    CString o("O");
    ASSERT_EQ(path.CreateFromText(o, &font, CPoint(5, 5), 0), 1);
    ASSERT_EQ(path.GetNSubPaths(), 2);
    EXPECT_EQ(path.GetFirstSubPath()->IsClosed(), 1);
    EXPECT_EQ(path.GetFirstSubPath()->GetNext()->IsClosed(), 1);

    CString spaces("   ");
    ASSERT_EQ(path.CreateFromText(spaces, &font, CPoint(5, 5), 1), 1);
    EXPECT_EQ(path.GetNSubPaths(), 2);
    CString hi("Hi");  // H: one contour; i: stem and dot
    ASSERT_EQ(path.CreateFromText(hi, &font, CPoint(0, 0), 1), 1);
    EXPECT_EQ(path.GetNSubPaths(), 5);
    CFont none;
    EXPECT_EQ(path.CreateFromText(hi, &none, CPoint(0, 0), 1), 0);
}
