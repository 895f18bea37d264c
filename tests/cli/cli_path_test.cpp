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

#include "io/scratch_file.h"

namespace vistrane {
namespace {

struct ToolRun {
    int exitCode;
    std::string out;
    std::string err;
};

std::string ReadText(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

ToolRun Vistrane(const std::string& arguments) {
    const std::string out = test::ScratchPath("cli_path_stdout.txt");
    const std::string err = test::ScratchPath("cli_path_stderr.txt");
    // The tool's path is a string object, not a literal: GCC 12 misjudges the bounds of a
    // literal of some lengths pasted into a temporary string.
    const std::string tool = VISTRANE_CLI_PATH;
    const std::string command = "'" + tool + "' " + arguments + " >'" + out + "' 2>'" + err + "'";
    const int status = std::system(command.c_str());
    ToolRun run{WIFEXITED(status) ? WEXITSTATUS(status) : -1, ReadText(out), ReadText(err)};
    std::remove(out.c_str());
    std::remove(err.c_str());
    return run;
}

bool Contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

int CountOf(const std::string& text, const std::string& part) {
    int n = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
        ++n;
    }
    return n;
}

class CliPathTest : public ::testing::Test {
  protected:
    void SetUp() override {
        m_Directory =
            test::ScratchPath(::testing::UnitTest::GetInstance()->current_test_info()->name());
        std::filesystem::create_directories(m_Directory);
    }
    void TearDown() override { std::filesystem::remove_all(m_Directory); }
    std::string Path(const std::string& name) const { return "'" + m_Directory + "/" + name + "'"; }
    std::string File(const std::string& name) const { return m_Directory + "/" + name; }

    std::string m_Directory;
};

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
    ASSERT_TRUE(SaveImageFile(File("ring.png"), mask).ok);
    const ToolRun run = Vistrane("trace " + Path("ring.png") + " --tolerance 1 --out " +
                                 Path("ring.path") + " --svg " + Path("ring.svg"));
    ASSERT_EQ(run.exitCode, 0) << run.err;
    // The hole's 20-pixel outline fits within a pixel as a single looping cubic between two
    // neighbouring anchors, and a sub-path of two anchors is left open.
    EXPECT_TRUE(Contains(run.out, "sub-paths: 2 (1 closed)\n")) << run.out;
    // Outlines run through the centres of the edge pixels: the outer one spans columns 10..29
    // and rows 6..21; a fitted curve may bulge past the corner pixels but not by a pixel.
    EXPECT_TRUE(Contains(run.out, "bounds:    10, 6 to 29, 21 (20 x 16)\n")) << run.out;

    C_PointPath path;
    ASSERT_EQ(path.LoadFromFile(File("ring.path").c_str(), 0), 1);
    EXPECT_EQ(path.GetNSubPaths(), 2);
    const std::string svg = ReadText(File("ring.svg"));
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
    ASSERT_TRUE(SaveImageFile(File("paper.bmp"), paper).ok);
    const ToolRun inverted =
        Vistrane("trace --invert " + Path("paper.bmp") + " --out " + Path("paper.path"));
    ASSERT_EQ(inverted.exitCode, 0) << inverted.err;
    EXPECT_EQ(ReadText(File("paper.path")), ReadText(File("ring.path")));

    // Without --invert the white paper is the selection: its outer edge and the square's.
    const ToolRun paperRun = Vistrane("trace " + Path("paper.bmp") + " --out " + Path("w.path"));
    ASSERT_EQ(paperRun.exitCode, 0) << paperRun.err;
    EXPECT_TRUE(Contains(paperRun.out, "bounds:    0, 0 to 39, 29 (40 x 30)\n")) << paperRun.out;
}

TEST_F(CliPathTest, TraceRefusesBadArgumentsAndEmptyMasks) {
    C_Image empty;
    ASSERT_TRUE(empty.CreateMask(8, 8));
    ASSERT_TRUE(SaveImageFile(File("empty.png"), empty).ok);

    const ToolRun noOut = Vistrane("trace " + Path("empty.png"));
    EXPECT_EQ(noOut.exitCode, 2);
    EXPECT_TRUE(Contains(noOut.err, "--out FILE.path")) << noOut.err;

    const ToolRun badTolerance =
        Vistrane("trace " + Path("empty.png") + " --tolerance 1px --out " + Path("e.path"));
    EXPECT_EQ(badTolerance.exitCode, 2);
    EXPECT_TRUE(Contains(badTolerance.err, "'1px' is not a number")) << badTolerance.err;

    const ToolRun nothing = Vistrane("trace " + Path("empty.png") + " --out " + Path("e.path"));
    EXPECT_EQ(nothing.exitCode, 1);
    EXPECT_TRUE(Contains(nothing.err, "selects no pixel")) << nothing.err;
    EXPECT_FALSE(std::filesystem::exists(File("e.path")));

    const ToolRun missing = Vistrane("trace " + Path("absent.png") + " --out " + Path("e.path"));
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_TRUE(Contains(missing.err, "absent.png")) << missing.err;

    C_Image mask;
    MakeRingMask(mask);
    ASSERT_TRUE(SaveImageFile(File("ring.png"), mask).ok);
    const ToolRun unwritable =
        Vistrane("trace " + Path("ring.png") + " --out " + Path("no-such-dir/ring.path"));
    EXPECT_EQ(unwritable.exitCode, 1);
    EXPECT_TRUE(Contains(unwritable.err, "cannot write the path file")) << unwritable.err;

    // Out-of-range tolerances are used clamped, as the engine clamps them, with a warning.
    const ToolRun loose =
        Vistrane("trace " + Path("ring.png") + " --tolerance 25 --out " + Path("loose.path"));
    EXPECT_EQ(loose.exitCode, 0) << loose.err;
    EXPECT_TRUE(Contains(loose.err, "using 10")) << loose.err;
}

TEST_F(CliPathTest, TextOutlinesTheLetterO) {
    CFont probe;
    if (probe.CreateFont("DejaVu Sans", 100) == 0) {
        GTEST_SKIP() << "no DejaVu Sans installed";
    }
    const ToolRun run = Vistrane("text O --font 'DejaVu Sans' --size 100 --out " + Path("o.path") +
                                 " --svg " + Path("o.svg"));
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_TRUE(Contains(run.out, "sub-paths: 2 (2 closed)\n")) << run.out;
    EXPECT_EQ(CountOf(ReadText(File("o.svg")), "<path "), 2);
    C_PointPath path;
    ASSERT_EQ(path.LoadFromFile(File("o.path").c_str(), 0), 1);
    EXPECT_EQ(path.GetNSubPaths(), 2);

    const ToolRun size = Vistrane("text O --font 'DejaVu Sans' --size 0 --out " + Path("x.path"));
    EXPECT_EQ(size.exitCode, 2);
    EXPECT_TRUE(Contains(size.err, "'0' is not a pixel size")) << size.err;
    const ToolRun font = Vistrane("text O --out " + Path("x.path"));
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
    ASSERT_EQ(path.SaveToFile(File("two.path").c_str()), 1);

    const ToolRun run = Vistrane("path " + Path("two.path") + " --svg " + Path("two.svg"));
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.out,
              "sub-paths: 2 (1 closed)\n"
              "anchors:   5\n"
              "segments:  4\n"  // three sides and one line
              "bounds:    -5, 0 to 15, 20 (21 x 21)\n");
    EXPECT_EQ(CountOf(ReadText(File("two.svg")), "<path "), 2);

    std::ofstream(File("bad.path"), std::ios::binary) << "Vistrane Path 1.0";
    const ToolRun damaged = Vistrane("path " + Path("bad.path"));
    EXPECT_EQ(damaged.exitCode, 1);
    EXPECT_TRUE(Contains(damaged.err, "is not a path file")) << damaged.err;
    const ToolRun missing = Vistrane("path " + Path("absent.path"));
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_TRUE(Contains(missing.err, "cannot open")) << missing.err;
}

TEST_F(CliPathTest, DemoWritesTracedAndTextPaths) {
    const ToolRun run = Vistrane("demo " + Path("demo"));
    ASSERT_EQ(run.exitCode, 0) << run.err;
    for (const char* name : {"sky", "text"}) {
        C_PointPath path;
        ASSERT_EQ(path.LoadFromFile(File(std::string("demo/") + name + ".path").c_str(), 0), 1)
            << name;
        EXPECT_GT(path.GetNSubPaths(), 0) << name;
        EXPECT_TRUE(Contains(ReadText(File(std::string("demo/") + name + ".svg")), "<path "))
            << name;
    }
}

}  // namespace
}  // namespace vistrane
