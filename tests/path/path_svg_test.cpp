#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

#include <vistrane/path/path_svg.h>

#include "support/path_support.h"

using vistrane::test::FillSubPath;

namespace {

int CountOf(const std::string& text, const std::string& what) {
    int n = 0;
    for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) {
        ++n;
    }
    return n;
}

}  // namespace

TEST(PointPathSvg, OnePathElementPerSubPathWithAbsoluteControlPoints) {
    C_PointPath path;
    ASSERT_EQ(path.CreateNewSubPath(), 1);
    FillSubPath(path.GetFirstSubPath(), {{0, 0}, {10, 0}, {10, 10}});
    path.GetFirstSubPath()->GetPoints()[0].m_NextDirection = CPoint(3, -2);
    path.GetFirstSubPath()->GetPoints()[1].m_PrevDirection = CPoint(-1, 4);
    path.GetFirstSubPath()->Close(1);
    ASSERT_EQ(path.CreateNewSubPath(), 1);
    FillSubPath(path.GetFirstSubPath(), {{20, 20}, {30, 25}});

    const std::string svg = PointPathToSvg(path, CRect(0, 0, 40, 30));
    EXPECT_EQ(CountOf(svg, "<path "), 2);
    EXPECT_NE(svg.find("viewBox=\"0 0 40 30\""), std::string::npos);
    EXPECT_NE(svg.find("d=\"M 20 20 C 20 20 30 25 30 25\""), std::string::npos);
    // Closed: three segments, the last back to the start, then Z.
    EXPECT_NE(svg.find("d=\"M 0 0 C 3 -2 9 4 10 0 C 10 0 10 10 10 10 C 10 10 0 0 0 0 Z\""),
              std::string::npos)
        << svg;
    EXPECT_EQ(CountOf(svg, " Z\""), 1);
}

TEST(PointPathSvg, EmptyViewBoxUsesThePathBoundsAndFilesAreWritten) {
    C_PointPath path;
    ASSERT_EQ(path.CreateNewSubPath(), 1);
    FillSubPath(path.GetFirstSubPath(), {{5, 6}, {15, 26}});
    const std::string svg = PointPathToSvg(path, CRect());
    EXPECT_NE(svg.find("viewBox=\"4 5 13 23\""), std::string::npos) << svg;

    const std::string name = ::testing::TempDir() + "path_svg_test.svg";
    ASSERT_EQ(SavePointPathAsSvg(path, CRect(), name.c_str()), 1);
    std::ifstream in(name, std::ios::binary);
    std::stringstream read;
    read << in.rdbuf();
    EXPECT_EQ(read.str(), svg);
    std::remove(name.c_str());
    EXPECT_EQ(SavePointPathAsSvg(path, CRect(), "/nonexistent-dir/x.svg"), 0);
}
