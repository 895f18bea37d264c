#include <gtest/gtest.h>

#include <cstdlib>
#include <set>
#include <utility>
#include <vector>

#include <vistrane/path/contour_bug.h>
#include <vistrane/path/point_path.h>

#include "path/contour_trace.h"

namespace {

// A mask given top row first, stored like a device-independent bitmap: rows bottom-up, padded
// to 4 bytes. The working buffer has a one-pixel border.
struct TraceRun {
    long edges = 0;
    CB_ContourFollowResult result = CB_NO_CONTOUR;
};

TraceRun Trace(const std::vector<std::vector<int>>& rows, C_PointPath* path) {
    const long h = static_cast<long>(rows.size());
    const long w = static_cast<long>(rows[0].size());
    const long scan = (w + 3) / 4 * 4;
    std::vector<unsigned char> mask(static_cast<size_t>(scan * h), 0);
    for (long y = 0; y < h; ++y) {
        for (long x = 0; x < w; ++x) {
            mask[static_cast<size_t>((h - 1 - y) * scan + x)] = rows[y][x] ? 255 : 0;
        }
    }
    const long workScan = (w + 2 + 3) / 4 * 4;
    std::vector<unsigned char> work(static_cast<size_t>(workScan * (h + 2)), 0);
    unsigned char* inner = work.data() + h * workScan + 1;  // row y = 0 is second from the top
    const unsigned char* maskTop = mask.data() + (h - 1) * scan;
    TraceRun run;
    run.edges = vistrane::path::MarkEdgePixels(maskTop, scan, inner, workScan, w, h);
    C_ContourBug bug;
    run.result = vistrane::path::TraceEdgePixels(&bug, inner, workScan, w, h, path);
    return run;
}

std::vector<std::vector<int>> Blank(int w, int h) {
    return std::vector<std::vector<int>>(static_cast<size_t>(h),
                                         std::vector<int>(static_cast<size_t>(w), 0));
}

void FillRect(std::vector<std::vector<int>>* m, int l, int t, int r, int b, int v) {
    for (int y = t; y < b; ++y) {
        for (int x = l; x < r; ++x) {
            (*m)[static_cast<size_t>(y)][static_cast<size_t>(x)] = v;
        }
    }
}

std::set<std::pair<int, int>> AnchorSet(const C_SubPath& sub) {
    std::set<std::pair<int, int>> out;
    for (int i = 0; i < sub.GetCount(); ++i) {
        out.emplace(sub.GetPoints()[i].m_Anchor.x, sub.GetPoints()[i].m_Anchor.y);
    }
    return out;
}

// The pixels of the rectangle's one-pixel frame.
std::set<std::pair<int, int>> Frame(int l, int t, int r, int b) {
    std::set<std::pair<int, int>> out;
    for (int y = t; y < b; ++y) {
        for (int x = l; x < r; ++x) {
            if (x == l || x == r - 1 || y == t || y == b - 1) {
                out.emplace(x, y);
            }
        }
    }
    return out;
}

// Each anchor once, consecutive anchors (and the last and the first) 8-adjacent, no
// directions, no flags.
void ExpectCleanChain(const C_SubPath& sub) {
    const int n = sub.GetCount();
    EXPECT_EQ(static_cast<int>(AnchorSet(sub).size()), n);
    for (int i = 0; i < n; ++i) {
        const S_PathPoint& a = sub.GetPoints()[i];
        const S_PathPoint& b = sub.GetPoints()[(i + 1) % n];
        EXPECT_LE(std::abs(a.m_Anchor.x - b.m_Anchor.x), 1) << i;
        EXPECT_LE(std::abs(a.m_Anchor.y - b.m_Anchor.y), 1) << i;
        EXPECT_EQ(a.m_Flags, 0);
        EXPECT_EQ(a.m_PrevDirection, CPoint(0, 0));
        EXPECT_EQ(a.m_NextDirection, CPoint(0, 0));
    }
}

}  // namespace

TEST(C_ContourBug, SinglePixelsAndTinyShapesGiveNoSubPath) {
    auto m = Blank(7, 5);
    m[1][1] = 1;
    m[3][4] = 1;
    m[3][5] = 1;  // two pixels
    C_PointPath path;
    const TraceRun run = Trace(m, &path);
    EXPECT_EQ(run.result, CB_OK);
    EXPECT_EQ(run.edges, 3);
    EXPECT_EQ(path.GetNSubPaths(), 0);
}

TEST(C_ContourBug, ASquareOfThreeHasOneInteriorPixel) {
    auto m = Blank(5, 5);
    FillRect(&m, 1, 1, 4, 4, 1);
    C_PointPath path;
    const TraceRun run = Trace(m, &path);
    EXPECT_EQ(run.edges, 8);
    ASSERT_EQ(path.GetNSubPaths(), 1);
    EXPECT_EQ(path.GetFirstSubPath()->GetCount(), 8);
    EXPECT_EQ(AnchorSet(*path.GetFirstSubPath()), Frame(1, 1, 4, 4));
    ExpectCleanChain(*path.GetFirstSubPath());
    EXPECT_EQ(path.GetFirstSubPath()->GetPoints()[0].m_Anchor, CPoint(1, 1));
}

TEST(C_ContourBug, RectangleTouchingTheMaskEdgesIsTracedAlongItsFrame) {
    auto m = Blank(9, 6);
    FillRect(&m, 0, 0, 9, 6, 1);
    C_PointPath path;
    Trace(m, &path);
    ASSERT_EQ(path.GetNSubPaths(), 1);
    EXPECT_EQ(AnchorSet(*path.GetFirstSubPath()), Frame(0, 0, 9, 6));
    ExpectCleanChain(*path.GetFirstSubPath());
}

TEST(C_ContourBug, ARingGivesAnOuterAndAHoleContour) {
    auto m = Blank(12, 10);
    FillRect(&m, 1, 1, 11, 9, 1);
    FillRect(&m, 4, 3, 8, 6, 0);
    C_PointPath path;
    Trace(m, &path);
    ASSERT_EQ(path.GetNSubPaths(), 2);
    // The hole's contour starts later in the scan, so it was added last: the head.
    const C_SubPath& hole = *path.GetFirstSubPath();
    const C_SubPath& outer = *hole.GetNext();
    EXPECT_EQ(AnchorSet(outer), Frame(1, 1, 11, 9));
    // The hole is lined by the selected pixels around it, corners excluded (their 4-neighbours
    // are all selected, so they are interior).
    std::set<std::pair<int, int>> lining = Frame(3, 2, 9, 7);
    lining.erase({3, 2});
    lining.erase({8, 2});
    lining.erase({3, 6});
    lining.erase({8, 6});
    EXPECT_EQ(AnchorSet(hole), lining);
    ExpectCleanChain(outer);
    ExpectCleanChain(hole);
}

TEST(C_ContourBug, MoreThan253BlobsReuseLabelsAndEachIsTracedOnce) {
    // 20 x 30 blobs of 2 x 2 pixels (600 contours), then a long bar below all of them whose
    // contour is traced after the labels wrapped twice.
    const int cols = 20;
    const int rows = 30;
    auto m = Blank(cols * 3 + 1, rows * 3 + 4);
    for (int r = 0; r < rows; ++r) {
        for (int c = 0; c < cols; ++c) {
            FillRect(&m, 1 + 3 * c, 1 + 3 * r, 3 + 3 * c, 3 + 3 * r, 1);
        }
    }
    FillRect(&m, 1, rows * 3 + 1, cols * 3, rows * 3 + 3, 1);
    C_PointPath path;
    Trace(m, &path);
    ASSERT_EQ(path.GetNSubPaths(), rows * cols + 1);
    std::set<std::pair<int, int>> seen;
    int blobs = 0;
    for (const C_SubPath* s = path.GetFirstSubPath(); s != nullptr; s = s->GetNext()) {
        if (s->GetCount() == 4) {
            const CPoint a = s->GetPoints()[0].m_Anchor;
            EXPECT_EQ(AnchorSet(*s), Frame(a.x, a.y, a.x + 2, a.y + 2));
            EXPECT_TRUE(seen.emplace(a.x, a.y).second) << a.x << "," << a.y;
            ++blobs;
        } else {
            EXPECT_EQ(AnchorSet(*s), Frame(1, rows * 3 + 1, cols * 3, rows * 3 + 3));
        }
    }
    EXPECT_EQ(blobs, rows * cols);
}

TEST(C_ContourBug, ClearedLabelsDoNotLeakIntoALaterContour) {
    // A ring two pixels thick, then 253 single pixels on its top row: the ring's outer contour
    // takes label 254, the singles 253..1, and the hole's contour, traced next, gets 254 again.
    // Left uncleared, the outer ring's pixels would read as part of the hole's contour.
    const int ringW = 10;
    const int ringH = 8;
    auto m = Blank(ringW + 2 + 2 * 253, ringH);
    FillRect(&m, 0, 0, ringW, ringH, 1);
    FillRect(&m, 2, 2, ringW - 2, ringH - 2, 0);
    for (int i = 0; i < 253; ++i) {
        m[0][static_cast<size_t>(ringW + 1 + 2 * i)] = 1;
    }
    C_PointPath path;
    Trace(m, &path);
    ASSERT_EQ(path.GetNSubPaths(), 2);
    const C_SubPath& hole = *path.GetFirstSubPath();
    std::set<std::pair<int, int>> lining = Frame(1, 1, ringW - 1, ringH - 1);
    lining.erase({1, 1});
    lining.erase({ringW - 2, 1});
    lining.erase({1, ringH - 2});
    lining.erase({ringW - 2, ringH - 2});
    EXPECT_EQ(AnchorSet(hole), lining);
    EXPECT_EQ(AnchorSet(*hole.GetNext()), Frame(0, 0, ringW, ringH));
}

TEST(C_ContourBug, DiagonalNeighboursAreOneContour) {
    // Two 2 x 2 squares touching at a corner: the follower crosses the corner.
    auto m = Blank(6, 6);
    FillRect(&m, 1, 1, 3, 3, 1);
    FillRect(&m, 3, 3, 5, 5, 1);
    C_PointPath path;
    Trace(m, &path);
    ASSERT_EQ(path.GetNSubPaths(), 1);
    EXPECT_EQ(static_cast<int>(AnchorSet(*path.GetFirstSubPath()).size()), 8);
}
