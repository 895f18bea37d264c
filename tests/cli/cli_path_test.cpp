#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <vistrane/image/image.h>
#include <vistrane/io/image_file.h>
#include <vistrane/path/point_path.h>
#include <vistrane/platform/font.h>

#include "cli/cli_support.h"

namespace vistrane {
namespace {

using test::Contains;
using test::ReadText;
using test::ToolRun;
using test::Vistrane;

int CountOf(const std::string& text, const std::string& part) {
    int n = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
        ++n;
    }
    return n;
}

using CliPathTest = test::CliTest;

// A 40 x 30 grey mask: a 20 x 16 square at (10, 6) with a 6 x 4 hole at (17, 12), and one
// lone pixel at (2, 2), too short an outline to become a sub-path.
void MakeRingMask(C_Image& mask) {
    ASSERT_TRUE(mask.CreateMask(40, 30));
    for (long y = 0; y < 30; ++y) {
        for (long x = 0; x < 40; ++x) {
            const bool square = x >= 10 && x < 30 && y >= 6 && y < 22;
            const bool hole = x >= 17 && x < 23 && y >= 12 && y < 16;
            *mask.PixelPtr(x, y) = (square && !hole) || (x == 2 && y == 2) ? 255 : 0;
        }
    }
}

TEST_F(CliPathTest, TraceWritesTheOutlinesAsPathAndSvg) {
    C_Image mask;
    MakeRingMask(mask);
    ASSERT_TRUE(SaveImageFile(Path("ring.png"), mask).ok);
    const ToolRun run = Vistrane("trace " + Quoted("ring.png") + " --tolerance 1 --out " +
                                 Quoted("ring.path") + " --svg " + Quoted("ring.svg"));
    ASSERT_EQ(run.exitCode, 0) << run.err;
    // The hole's 20-pixel outline fits within a pixel as a single looping cubic between two
    // neighbouring anchors, and a sub-path of two anchors is left open.
    EXPECT_TRUE(Contains(run.out, "sub-paths: 2 (1 closed)\n")) << run.out;
    // Outlines run through the centres of the edge pixels: the outer one spans columns 10..29
    // and rows 6..21; a fitted curve may bulge past the corner pixels but not by a pixel.
    EXPECT_TRUE(Contains(run.out, "bounds:    10, 6 to 29, 21 (20 x 16)\n")) << run.out;

    C_PointPath path;
    ASSERT_EQ(path.LoadFromFile(Path("ring.path").c_str(), 0), 1);
    EXPECT_EQ(path.GetNSubPaths(), 2);
    const std::string svg = ReadText(Path("ring.svg"));
    EXPECT_EQ(CountOf(svg, "<path "), 2) << svg;
    EXPECT_EQ(CountOf(svg, " Z\""), 1) << svg;

    // The same pixels as dark ink on white paper, in a 24-bit BMP.
    C_Image paper;
    ASSERT_TRUE(paper.Create(40, 30, 1, nullptr, 0));
    for (long y = 0; y < 30; ++y) {
        for (long x = 0; x < 40; ++x) {
            const BYTE level = *mask.PixelPtr(x, y) != 0 ? 0 : 255;
            for (int c = 0; c < 3; ++c) {
                paper.PixelPtr(x, y)[c] = level;
            }
        }
    }
    ASSERT_TRUE(SaveImageFile(Path("paper.bmp"), paper).ok);
    const ToolRun inverted =
        Vistrane("trace --invert " + Quoted("paper.bmp") + " --out " + Quoted("paper.path"));
    ASSERT_EQ(inverted.exitCode, 0) << inverted.err;
    EXPECT_EQ(ReadText(Path("paper.path")), ReadText(Path("ring.path")));

    // Without --invert the white paper is the selection: its outer edge and the square's.
    const ToolRun paperRun =
        Vistrane("trace " + Quoted("paper.bmp") + " --out " + Quoted("w.path"));
    ASSERT_EQ(paperRun.exitCode, 0) << paperRun.err;
    EXPECT_TRUE(Contains(paperRun.out, "bounds:    0, 0 to 39, 29 (40 x 30)\n")) << paperRun.out;
}

TEST_F(CliPathTest, TextOutlinesTheLetterO) {
    CFont probe;
    if (probe.CreateFont("DejaVu Sans", 100) == 0) {
        GTEST_SKIP() << "no DejaVu Sans installed";
    }
    const ToolRun run = Vistrane("text O --font 'DejaVu Sans' --size 100 --out " +
                                 Quoted("o.path") + " --svg " + Quoted("o.svg"));
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_TRUE(Contains(run.out, "sub-paths: 2 (2 closed)\n")) << run.out;
    EXPECT_EQ(CountOf(ReadText(Path("o.svg")), "<path "), 2);
    C_PointPath path;
    ASSERT_EQ(path.LoadFromFile(Path("o.path").c_str(), 0), 1);
    EXPECT_EQ(path.GetNSubPaths(), 2);

    const ToolRun size = Vistrane("text O --font 'DejaVu Sans' --size 0 --out " + Quoted("x.path"));
    EXPECT_EQ(size.exitCode, 2);
    EXPECT_TRUE(Contains(size.err, "'0' is not a pixel size")) << size.err;
    const ToolRun font = Vistrane("text O --out " + Quoted("x.path"));
    EXPECT_EQ(font.exitCode, 2);
    EXPECT_TRUE(Contains(font.err, "--font")) << font.err;
}

TEST_F(CliPathTest, PathDescribesAFileAndRejectsDamagedOnes) {
    // Two sub-paths: a closed triangle and an open line with one curved end.
    C_PointPath path;
    ASSERT_EQ(path.CreateNewSubPath(), 1);
    C_SubPath* line = path.GetFirstSubPath();
    ASSERT_EQ(line->AddPoint(0, CPoint(-5, 3)), 1);
    ASSERT_EQ(line->AddPoint(1, CPoint(15, 3)), 1);
    ASSERT_EQ(path.CreateNewSubPath(), 1);
    C_SubPath* triangle = path.GetFirstSubPath();
    ASSERT_EQ(triangle->AddPoint(0, CPoint(0, 0)), 1);
    ASSERT_EQ(triangle->AddPoint(1, CPoint(10, 0)), 1);
    ASSERT_EQ(triangle->AddPoint(2, CPoint(0, 20)), 1);
    triangle->Close(1);
    ASSERT_EQ(path.SaveToFile(Path("two.path").c_str()), 1);

    const ToolRun run = Vistrane("path " + Quoted("two.path") + " --svg " + Quoted("two.svg"));
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.out,
              "sub-paths: 2 (1 closed)\n"
              "anchors:   5\n"
              "segments:  4\n"  // three sides and one line
              "bounds:    -5, 0 to 15, 20 (21 x 21)\n");
    EXPECT_EQ(CountOf(ReadText(Path("two.svg")), "<path "), 2);

    std::ofstream(Path("bad.path"), std::ios::binary) << "Vistrane Path 1.0";
    const ToolRun damaged = Vistrane("path " + Quoted("bad.path"));
    EXPECT_EQ(damaged.exitCode, 1);
    EXPECT_TRUE(Contains(damaged.err, "is not a path file")) << damaged.err;
}

}  // namespace
}  // namespace vistrane
