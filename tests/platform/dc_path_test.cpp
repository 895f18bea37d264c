#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include <vistrane/platform/dc.h>
#include <vistrane/platform/font.h>

namespace {

struct RecordedPath {
    std::vector<POINT> points;
    std::vector<BYTE> types;
};

RecordedPath Fetch(const CDC& dc) {
    RecordedPath out;
    const int n = dc.GetPath(nullptr, nullptr, 0);
    EXPECT_GE(n, 0);
    out.points.resize(static_cast<size_t>(n));
    out.types.resize(static_cast<size_t>(n));
    if (n > 0) {
        EXPECT_EQ(dc.GetPath(out.points.data(), out.types.data(), n), n);
    }
    return out;
}

}  // namespace

TEST(CDCPath, RecordsFiguresWithTheirTypes) {
    CDC dc;
    ASSERT_EQ(dc.CreateCompatibleDC(nullptr), 1);
    EXPECT_EQ(dc.GetPath(nullptr, nullptr, 0), -1);  // no path yet
    dc.LineTo(50, 50);                               // outside a bracket: not recorded
    ASSERT_EQ(dc.BeginPath(), 1);
    dc.MoveTo(0, 0);
    dc.LineTo(10, 0);
    const POINT curve[3] = {{15, 0}, {20, 5}, {20, 10}};
    ASSERT_EQ(dc.PolyBezierTo(curve, 3), 1);
    ASSERT_EQ(dc.CloseFigure(), 1);
    EXPECT_EQ(dc.CloseFigure(), 0);  // nothing open any more
    dc.LineTo(30, 30);               // a new figure from the current position
    dc.MoveTo(40, 40);
    dc.MoveTo(41, 41);  // only the last move before drawing counts
    dc.LineTo(42, 42);
    EXPECT_EQ(dc.GetPath(nullptr, nullptr, 0), -1);  // the bracket is still open
    ASSERT_EQ(dc.EndPath(), 1);

    const RecordedPath path = Fetch(dc);
    const std::vector<BYTE> types = {
        PT_MOVETO, PT_LINETO, PT_BEZIERTO, PT_BEZIERTO, PT_BEZIERTO | PT_CLOSEFIGURE,
        PT_MOVETO, PT_LINETO, PT_MOVETO,   PT_LINETO};
    EXPECT_EQ(path.types, types);
    ASSERT_EQ(path.points.size(), 9u);
    EXPECT_EQ(path.points[5].x, 20);  // the figure after the close starts where it ended
    EXPECT_EQ(path.points[5].y, 10);
    EXPECT_EQ(path.points[7].x, 41);

    POINT small[4];
    BYTE smallTypes[4];
    EXPECT_EQ(dc.GetPath(small, smallTypes, 4), -1);
    EXPECT_EQ(dc.PolyBezierTo(curve, 2), 0);

    ASSERT_EQ(dc.BeginPath(), 1);  // discards the previous path
    ASSERT_EQ(dc.EndPath(), 1);
    EXPECT_EQ(dc.GetPath(nullptr, nullptr, 0), 0);
}

TEST(CDCPath, SelectObjectAndBackgroundModeReturnThePreviousValues) {
    CDC dc;
    ASSERT_EQ(dc.CreateCompatibleDC(nullptr), 1);
    EXPECT_EQ(dc.CreateCompatibleDC(nullptr), 0);
    CFont a;
    CFont b;
    EXPECT_EQ(dc.SelectObject(&a), nullptr);
    EXPECT_EQ(dc.SelectObject(&b), &a);
    EXPECT_EQ(dc.SetBkMode(TRANSPARENT), OPAQUE);
    EXPECT_EQ(dc.SetBkMode(7), 0);
    EXPECT_EQ(dc.SetBkMode(OPAQUE), TRANSPARENT);
    // A font without a face cannot draw text.
    ASSERT_EQ(dc.BeginPath(), 1);
    EXPECT_EQ(dc.TextOut(0, 0, "A", 1), 0);
}

TEST(CFontText, FacesLoadByFamilyOrFileAndNotFromGarbage) {
    CFont byFamily;
    if (byFamily.CreateFont("DejaVu Sans", 40) == 0) {
        GTEST_SKIP() << "no DejaVu Sans installed";
    }
    EXPECT_EQ(byFamily.GetPixelSize(), 40);
    EXPECT_EQ(byFamily.CreateFont("DejaVu Sans", 40), 0);  // one face per font
    EXPECT_EQ(byFamily.DeleteObject(), 1);
    EXPECT_EQ(byFamily.DeleteObject(), 0);
    const char* dejaVuFile = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";
    if (FILE* probe = std::fopen(dejaVuFile, "rb")) {
        std::fclose(probe);
        CFont byFile;
        EXPECT_EQ(byFile.CreateFont(dejaVuFile, 12), 1);
    }
    CFont bad;
    EXPECT_EQ(bad.CreateFromFile("/nonexistent/font.ttf", 40), 0);
    EXPECT_EQ(bad.CreateFont("DejaVu Sans", 0), 0);
    const std::string notAFont = ::testing::TempDir() + "not_a_font.ttf";
    FILE* f = std::fopen(notAFont.c_str(), "wb");
    ASSERT_NE(f, nullptr);
    std::fputs("this is not a font", f);
    std::fclose(f);
    EXPECT_EQ(bad.CreateFont(notAFont.c_str(), 40), 0);
    std::remove(notAFont.c_str());
}

TEST(CFontText, GlyphOutlinesAreClosedCubicFiguresInTheTextCell) {
    CFont font;
    if (font.CreateFont("DejaVu Sans", 100) == 0) {
        GTEST_SKIP() << "no DejaVu Sans installed";
    }
    CDC dc;
    ASSERT_EQ(dc.CreateCompatibleDC(nullptr), 1);
    dc.SelectObject(&font);
    dc.MoveTo(7, 7);
    ASSERT_EQ(dc.BeginPath(), 1);
    ASSERT_EQ(dc.TextOut(10, 20, "Os", 2), 1);
    ASSERT_EQ(dc.EndPath(), 1);
    const RecordedPath path = Fetch(dc);
    ASSERT_GT(path.points.size(), 20u);

    int figures = 0;
    int closes = 0;
    for (size_t i = 0; i < path.types.size(); ++i) {
        const BYTE t = path.types[i] & static_cast<BYTE>(~PT_CLOSEFIGURE);
        figures += t == PT_MOVETO ? 1 : 0;
        closes += (path.types[i] & PT_CLOSEFIGURE) != 0 ? 1 : 0;
        EXPECT_TRUE(t == PT_MOVETO || t == PT_LINETO || t == PT_BEZIERTO) << int(t);
        // Inside the cell: right of the origin, between the top and the descent.
        EXPECT_GE(path.points[i].x, 10);
        EXPECT_GE(path.points[i].y, 20);
        EXPECT_LE(path.points[i].y, 20 + 120);
    }
    EXPECT_EQ(figures, 3);  // O: outer and inner contour; s: one
    EXPECT_EQ(closes, 3);

    // A raised quadratic keeps its one control point: from either end, 3/2 of the way to the
    // near cubic control lands on it. Rounding to pixels allows a little slack.
    int cubics = 0;
    for (size_t i = 1; i + 2 < path.types.size(); ++i) {
        if ((path.types[i] & ~PT_CLOSEFIGURE) != PT_BEZIERTO ||
            (path.types[i - 1] & ~PT_CLOSEFIGURE) == PT_BEZIERTO) {
            continue;
        }
        for (size_t s = i;
             s + 2 < path.types.size() && (path.types[s] & ~PT_CLOSEFIGURE) == PT_BEZIERTO;
             s += 3) {
            const POINT& p0 = path.points[s - 1];
            const POINT& c1 = path.points[s];
            const POINT& c2 = path.points[s + 1];
            const POINT& p3 = path.points[s + 2];
            const double q1x = p0.x + 1.5 * (c1.x - p0.x);
            const double q1y = p0.y + 1.5 * (c1.y - p0.y);
            const double q2x = p3.x + 1.5 * (c2.x - p3.x);
            const double q2y = p3.y + 1.5 * (c2.y - p3.y);
            EXPECT_LE(std::hypot(q1x - q2x, q1y - q2y), 2.2) << "segment at " << s;
            ++cubics;
        }
    }
    EXPECT_GT(cubics, 8);

    // Text does not move the current position.
    EXPECT_EQ(dc.MoveTo(0, 0), CPoint(7, 7));
}
