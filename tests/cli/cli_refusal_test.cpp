// One table of command lines and what the tool must answer: the exit code and a fragment of
// its message, on stdout for work done and on stderr for work refused.

#include <gtest/gtest.h>

#include <string>

#include <vistrane/image/image.h>
#include <vistrane/io/image_file.h>

#include "cli/cli_support.h"
#include "support/image_support.h"

namespace vistrane {
namespace {

using test::CliTest;
using test::Contains;
using test::ToolRun;
using test::Vistrane;

class CliAnswers : public CliTest {
  protected:
    void SetUp() override {
        CliTest::SetUp();
        C_Image colour;
        ASSERT_TRUE(colour.Create(6, 4, 1, nullptr, 0));
        test::FillRandomPixels(colour, 3);
        ASSERT_TRUE(SaveImageFile(Path("c.bmp"), colour).ok);
        // Left half selected: its three colours are counted, the right half's are not.
        C_Image half;
        ASSERT_TRUE(half.CreateMask(6, 4));
        C_Image striped;
        ASSERT_TRUE(striped.Create(6, 4, 1, nullptr, 0));
        for (long y = 0; y < 4; ++y) {
            for (long x = 0; x < 6; ++x) {
                *half.PixelPtr(x, y) = x < 3 ? 255 : 0;
                striped.PixelPtr(x, y)[0] = static_cast<BYTE>(x * 40 + (x < 3 ? 0 : y));
            }
        }
        ASSERT_TRUE(SaveImageFile(Path("half.png"), half).ok);
        ASSERT_TRUE(SaveImageFile(Path("striped.bmp"), striped).ok);
        C_Image small;
        ASSERT_TRUE(small.CreateMask(2, 2));
        ASSERT_TRUE(SaveImageFile(Path("small.png"), small).ok);
        const RGBQUAD four[4] = {{0, 0, 0, 0}, {0, 0, 255, 0}, {0, 255, 0, 0}, {255, 0, 0, 0}};
        C_Image palette;
        ASSERT_TRUE(palette.Create(6, 4, 0, four, 4));
        ASSERT_TRUE(SaveImageFile(Path("p.bmp"), palette).ok);
    }
    // "{x}" in `line` becomes Quoted("x").
    std::string Expand(std::string line) const {
        for (std::size_t at = line.find('{'); at != std::string::npos; at = line.find('{')) {
            const std::size_t end = line.find('}', at);
            line.replace(at, end - at + 1, Quoted(line.substr(at + 1, end - at - 1)));
        }
        return line;
    }
};

TEST_F(CliAnswers, EachCommandLineGetsItsAnswer) {
    const struct {
        const char* line;
        int exitCode;
        const char* message;
    } cases[] = {
        {"frobnicate", 2, "unknown command 'frobnicate'"},
        {"convert --frobnicate {c.bmp} {o.png}", 2, "unknown option '--frobnicate'"},
        {"convert --grey=yes {c.bmp} {o.png}", 2, "'--grey' takes no value"},
        {"convert only-one.bmp", 2, "missing arguments"},
        {"info {absent.png}", 1, "absent.png': No such file or directory"},
        {"info {c.bmp}", 0, "colours:   24 distinct"},
        {"info {half.png}", 0, "colours:   256 table entries"},
        // The output name is checked before the input is read, in every command.
        {"convert {absent.png} {o.jpg}", 2, "cannot tell the format of"},
        {"paint {c.bmp} {o.gif}", 2, "name it .bmp or .png, or - for standard output"},
        {"rotate --left {c.bmp} {o.tif}", 2, "cannot tell the format"},
        {"resize --size 3x2 {c.bmp} {o}", 2, "cannot tell the format"},
        {"paint {absent.png} {o.png}", 1, "cannot read"},
        {"paint --format jpg {c.bmp} -", 2, "--format is png or bmp"},
        {"paint --format bmp {c.bmp} {o.png}", 2, "--format applies only to -"},
        // One colour parser: with or without '#', and the same words everywhere.
        {"paint --color '#ff0000' {c.bmp} {o.png}", 0, "wrote"},
        {"paint --color ff0000 {c.bmp} {o.png}", 0, "(6 x 4, 24-bit)"},
        {"paint --color red {c.bmp} {o.png}", 2, "'red' is not a colour: give six hex digits"},
        {"border --margins 1 --color '#12345' {c.bmp} {o.png}", 2, "'#12345' is not a colour"},
        {"shape --kind rect --rect 0,0,2,2 --color 0x1234 {c.bmp} {o.png}", 2,
         "'0x1234' is not a colour"},
        {"crop --rect 20,0,5,5 {c.bmp} {o.png}", 1, "outside the 6 x 4 image"},
        {"crop --rect 1,2,0,5 {c.bmp} {o.png}", 2, "is not a rectangle"},
        {"border --margins -2 {c.bmp} {o.bmp}", 1, "leave nothing"},
        {"warp --corners 0,0,5,0,0,0,0,5 {c.bmp} {o.bmp}", 1, "are degenerate"},
        {"warp --corners 1,2,3,4,5,6,7 {c.bmp} {o.bmp}", 2, "is not eight whole numbers"},
        {"shape --rect 0,0,2,2 {c.bmp} {o.png}", 2, "give the shape with --kind"},
        {"shape --kind star --rect 0,0,2,2 {c.bmp} {o.png}", 2, "not 'star'"},
        {"shape --kind rect --rect 0,0,2 {c.bmp} {o.png}", 2, "is not a rectangle L,T,R,B"},
        {"shape --kind rect --rect 0,0,2,2 --pen 0 {c.bmp} {o.png}", 2, "pen width from 1"},
        // Modes that would silently act as normal are refused.
        {"paint --mode smudge {c.bmp} {o.png}", 2, "has no meaning for paint"},
        {"paint --mode filter3 {c.bmp} {o.png}", 2, "has no meaning for paint"},
        {"paint --mode desaturate {half.png} {o.png}", 2, "needs a 24-bit picture"},
        {"paint --mode desaturate {c.bmp} {o.png}", 0, "wrote"},
        {"paint --mode sparkle {c.bmp} {o.png}", 2, "unknown mode 'sparkle'"},
        {"filter {p.bmp} {o.png}", 1, "cannot be filtered: convert it to 24-bit first"},
        // Masks: one rule for size and depth.
        {"paint --mask {small.png} {c.bmp} {o.png}", 1, "the mask is 2 x 2, the image 6 x 4"},
        {"filter --mask {c.bmp} {c.bmp} {o.png}", 1, "is not a selection mask"},
        {"stats --mask {half.png} {striped.bmp}", 0, "distinct colours 3\n"},
        {"stats {striped.bmp}", 0, "distinct colours 15\n"},
        {"select --at 1,1 --color 000000 {c.bmp} {o.png}", 2, "give exactly one of"},
        {"select --at 6,0 {c.bmp} {o.png}", 1, "the point 6,0 lies outside the 6 x 4 image"},
        {"select --at 0,0 --tolerance 256 {c.bmp} {o.png}", 2, "'256' is not a tolerance"},
        {"select --at 0,0 --match lab {c.bmp} {o.png}", 2, "--match takes rgb, hue"},
        {"select --grow 4 {c.bmp} {o.png}", 2, "--grow needs the selection to grow (--mask)"},
        {"select --grow 4 --mask {small.png} {c.bmp} {o.png}", 1, "the mask is 2 x 2"},
        {"mask blur {half.png} {o.png}", 2, "unknown operation 'blur'"},
        {"mask and {half.png} {o.png}", 2, "'and' takes 2 mask file(s)"},
        {"mask invert --level 3 {half.png} {o.png}", 2, "'--level' does not apply to 'invert'"},
        {"mask and {half.png} {small.png} {o.png}", 1, "the masks differ in size"},
        {"mask invert {c.bmp} {o.png}", 1, "is not a selection mask"},
        {"trace {half.png}", 2, "--out FILE.path"},
        {"trace {half.png} --tolerance 1px --out {o.path}", 2, "'1px' is not a number"},
        {"trace {half.png} --tolerance 0.1 --out {o.path}", 2, "outside 0.5 to 10"},
        {"trace {half.png} --tolerance 25 --out {o.path}", 2, "outside 0.5 to 10"},
        {"trace {small.png} --out {o.path}", 1, "selects no pixel"},
        {"trace {half.png} --out {no-dir/o.path}", 1, "cannot write the path file"},
        {"text --font 'DejaVu Sanz' --out {o.path} O", 1, "close: 'DejaVu Sans'"},
        {"tile --percent 0 {c.bmp} {o.bmp}", 2, "--percent"},
        {"tile {c.bmp} {o.bmp}", 2, "--percent P"},
        {"resize --size 3x2 --fit 3x2 {c.bmp} {o.png}", 2, "give exactly one of --size and --fit"},
        {"resize --size 0x2 {c.bmp} {o.png}", 2, "'0x2' is not a size WxH"},
        {"resize --fit 3x3 {c.bmp} {o.png}", 0, "(3 x 2, 24-bit)"},
        {"rotate {c.bmp} {o.png}", 2, "give exactly one of --degrees"},
        {"rotate --degrees ten {c.bmp} {o.png}", 2, "'ten' is not an angle"},
        {"rotate --flip d {c.bmp} {o.png}", 2, "--flip takes h or v, not 'd'"},
        {"rotate --right {c.bmp} {o.bmp}", 0, "(4 x 6, 24-bit)"},
        {"rotate -q --right {c.bmp} {o.bmp}", 0, ""},
        {"xform --drag '10,10 banana' {c.bmp} {o.png}", 2, "is neither a point"},
        {"xform --numeric 'spin=3' {c.bmp} {o.png}", 2, "'spin=3' in --numeric is not one of"},
        // On so small a selection the frame reads a drag from its centre as no handle's.
        {"xform --drag '3,2 4,3' {c.bmp} {o.png}", 0, "drag 1: changed nothing"},
    };
    for (const auto& c : cases) {
        const ToolRun run = Vistrane(Expand(c.line));
        EXPECT_EQ(run.exitCode, c.exitCode) << c.line << "\n" << run.err;
        EXPECT_TRUE(Contains(c.exitCode == 0 ? run.out : run.err, c.message))
            << c.line << "\nout: " << run.out << "err: " << run.err;
        if (*c.message == '\0') {
            EXPECT_EQ(run.out, "") << c.line;
        }
    }
}

TEST_F(CliAnswers, DashReadsStandardInputAndWritesStandardOutput) {
    const ToolRun bmp = Vistrane("rotate --left --format bmp - - < " + Quoted("c.bmp"));
    ASSERT_EQ(bmp.exitCode, 0) << bmp.err;
    EXPECT_TRUE(Contains(bmp.err, "wrote standard output (4 x 6, 24-bit)")) << bmp.err;
    C_Image turned;
    ASSERT_TRUE(
        LoadBmpMemory(reinterpret_cast<const BYTE*>(bmp.out.data()), bmp.out.size(), turned).ok);
    ASSERT_TRUE(SaveImageFile(Path("turned.bmp"), turned).ok);
    ASSERT_EQ(
        Vistrane("rotate --right " + Quoted("turned.bmp") + " " + Quoted("back.png")).exitCode, 0);
    C_Image original;
    C_Image back;
    ASSERT_TRUE(LoadImageFile(Path("c.bmp"), original).ok);
    ASSERT_TRUE(LoadImageFile(Path("back.png"), back).ok);
    EXPECT_TRUE(test::SamePixels(original, back));

    const ToolRun png = Vistrane("convert -q " + Quoted("c.bmp") + " -");
    EXPECT_EQ(png.err, "");
    C_Image fromPng;
    EXPECT_TRUE(
        LoadPngMemory(reinterpret_cast<const BYTE*>(png.out.data()), png.out.size(), fromPng).ok);
    EXPECT_TRUE(test::SamePixels(original, fromPng));
}

TEST_F(CliAnswers, EveryHelpTextEndsItsSentencesAndFitsTheTerminal) {
    const ToolRun help = Vistrane("--help");
    std::size_t start = help.out.find("Commands:\n");
    ASSERT_NE(start, std::string::npos);
    for (std::size_t at = help.out.find("\n  ", start); at != std::string::npos;
         at = help.out.find("\n  ", at + 1)) {
        const std::string name = help.out.substr(at + 3, help.out.find(' ', at + 3) - at - 3);
        const ToolRun command = Vistrane(name + " --help");
        EXPECT_EQ(command.exitCode, 0) << name;
        std::size_t lineStart = 0;
        for (std::size_t end = command.out.find('\n'); end != std::string::npos;
             lineStart = end + 1, end = command.out.find('\n', lineStart)) {
            const std::string line = command.out.substr(lineStart, end - lineStart);
            EXPECT_LE(line.size(), 100U) << name << ": " << line;
            // An option's help that runs on must not stop at a word that asks for more.
            for (const char* dangling : {" how", " that", " the", " a", " and", " of"}) {
                EXPECT_FALSE(line.starts_with("  --") && line.ends_with(dangling))
                    << name << ": " << line;
            }
        }
    }
}

}  // namespace
}  // namespace vistrane
