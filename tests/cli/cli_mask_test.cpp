// The select and mask subcommands: the masks they write, byte for byte, and their refusals.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <vistrane/image/image.h>
#include <vistrane/io/image_file.h>

#include "cli/cli_support.h"

namespace vistrane {
namespace {

using test::CliTest;
using test::Contains;
using test::ToolRun;
using test::Vistrane;

// Rows from the top, one string of colour letters per row.
struct Legend {
    char letter;
    BYTE red, green, blue;
};

void Paint(C_Image& image, const std::vector<std::string>& rows,
           const std::vector<Legend>& legend) {
    ASSERT_TRUE(image.Create(static_cast<long>(rows[0].size()), static_cast<long>(rows.size()), 1,
                             nullptr, 0));
    for (std::size_t y = 0; y < rows.size(); ++y) {
        BYTE* pixel = image.PixelPtr(0, static_cast<long>(y));
        for (char letter : rows[y]) {
            for (const Legend& entry : legend) {
                if (entry.letter == letter) {
                    pixel[0] = entry.blue;
                    pixel[1] = entry.green;
                    pixel[2] = entry.red;
                }
            }
            pixel += 3;
        }
    }
}

void MakeMask(C_Image& mask, long width, long height, const std::vector<BYTE>& bytes) {
    ASSERT_TRUE(mask.CreateMask(width, height));
    for (long y = 0; y < height; ++y) {
        for (long x = 0; x < width; ++x) {
            mask.PixelPtr(x, y)[0] = bytes[static_cast<std::size_t>(y * width + x)];
        }
    }
}

// The mask's bytes from the top row, or a failure when it is not a grey mask.
::testing::AssertionResult MaskBytes(const std::string& path, std::vector<BYTE>& bytes) {
    C_Image mask;
    const ImageFileResult loaded = LoadImageFile(path, mask);
    if (!loaded.ok) {
        return ::testing::AssertionFailure() << loaded.error;
    }
    if (!mask.IsMask()) {
        return ::testing::AssertionFailure() << path << " is not a grey mask";
    }
    bytes.clear();
    for (long y = 0; y < mask.Height(); ++y) {
        for (long x = 0; x < mask.Width(); ++x) {
            bytes.push_back(mask.PixelPtr(x, y)[0]);
        }
    }
    return ::testing::AssertionSuccess();
}

// A dark field split by a bright wall; the two halves touch only diagonally at the gap.
const std::vector<std::string> kSplitField = {
    "aab.a",
    "abaab",
    "baaab",
};
const std::vector<Legend> kSplitLegend = {
    {'a', 10, 12, 14}, {'.', 14, 10, 12}, {'b', 240, 240, 240}};

TEST_F(CliTest, SelectAtFillsTheConnectedRegionOnly) {
    C_Image image;
    Paint(image, kSplitField, kSplitLegend);
    ASSERT_TRUE(SaveImageFile(Path("field.bmp"), image).ok);

    const ToolRun run = Vistrane("select --at 0,0 --tolerance 4 --value 90 " + Quoted("field.bmp") +
                                 " " + Quoted("wand.png"));
    ASSERT_EQ(run.exitCode, 0) << run.err;
    std::vector<BYTE> bytes;
    ASSERT_TRUE(MaskBytes(Path("wand.png"), bytes));
    // (0, 0) and (1, 0), then (0, 1) only: (2, 1) touches (1, 0) diagonally and (1, 1) is wall.
    EXPECT_EQ(bytes, (std::vector<BYTE>{90, 90, 0, 0, 0, 90, 0, 0, 0, 0, 0, 0, 0, 0, 0}));

    ASSERT_EQ(
        Vistrane("select --at 2,2 --tolerance 4 " + Quoted("field.bmp") + " " + Quoted("wand.bmp"))
            .exitCode,
        0);
    ASSERT_TRUE(MaskBytes(Path("wand.bmp"), bytes));
    EXPECT_EQ(bytes,
              (std::vector<BYTE>{0, 0, 0, 255, 255, 0, 0, 255, 255, 0, 0, 255, 255, 255, 0}));
}

TEST_F(CliTest, SelectColorTakesAlikePixelsAnywhere) {
    C_Image image;
    Paint(image, kSplitField, kSplitLegend);
    ASSERT_TRUE(SaveImageFile(Path("field.png"), image).ok);
    // 0a0c0e is within 4 of every 'a' and '.' channel; the wall is not.
    ASSERT_EQ(Vistrane("select --color 0c0c0e --tolerance 4 " + Quoted("field.png") + " " +
                       Quoted("alike.png"))
                  .exitCode,
              0);
    std::vector<BYTE> bytes;
    ASSERT_TRUE(MaskBytes(Path("alike.png"), bytes));
    EXPECT_EQ(bytes,
              (std::vector<BYTE>{255, 255, 0, 255, 255, 255, 0, 255, 255, 0, 0, 255, 255, 255, 0}));
    // Intensity 12 everywhere but the wall: a tolerance of 0 still takes them all.
    ASSERT_EQ(Vistrane("select --color 0c0c0c --tolerance 0 --match intensity " +
                       Quoted("field.png") + " " + Quoted("grey.png"))
                  .exitCode,
              0);
    std::vector<BYTE> intensity;
    ASSERT_TRUE(MaskBytes(Path("grey.png"), intensity));
    EXPECT_EQ(intensity, bytes);
}

TEST_F(CliTest, SelectMatchModesDiffer) {
    C_Image image;
    // Bright red, dark red (hue 0 both, far apart in RGB) and a red just short of magenta.
    Paint(image, {"RrM"}, {{'R', 250, 0, 0}, {'r', 120, 0, 0}, {'M', 250, 0, 40}});
    ASSERT_TRUE(SaveImageFile(Path("reds.bmp"), image).ok);
    const struct {
        const char* options;
        std::vector<BYTE> expected;
    } cases[] = {
        {"--match rgb --tolerance 10", {255, 0, 0}},
        {"--match hue --tolerance 5", {255, 255, 0}},
        // 250, 0, 40 has hue 360 - 9.6 = 350: ten degrees round the circle from 0.
        {"--match hue --tolerance 10", {255, 255, 255}},
        {"--match any --tolerance 0", {255, 255, 255}},
    };
    for (const auto& c : cases) {
        const ToolRun run = Vistrane(std::string("select --at 0,0 ") + c.options + " " +
                                     Quoted("reds.bmp") + " " + Quoted("out.png"));
        ASSERT_EQ(run.exitCode, 0) << c.options << ": " << run.err;
        std::vector<BYTE> bytes;
        ASSERT_TRUE(MaskBytes(Path("out.png"), bytes));
        EXPECT_EQ(bytes, c.expected) << c.options;
    }
}

TEST_F(CliTest, SelectGrowExtendsAMaskAtItsEdgeOpacity) {
    C_Image image;
    Paint(image, kSplitField, kSplitLegend);
    ASSERT_TRUE(SaveImageFile(Path("field.bmp"), image).ok);
    C_Image mask;
    MakeMask(mask, 5, 3, {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 80, 0, 0});
    ASSERT_TRUE(SaveImageFile(Path("seed.png"), mask).ok);

    const ToolRun run = Vistrane("select --grow 6 --mask " + Quoted("seed.png") + " " +
                                 Quoted("field.bmp") + " " + Quoted("grown.png"));
    ASSERT_EQ(run.exitCode, 0) << run.err;
    std::vector<BYTE> bytes;
    ASSERT_TRUE(MaskBytes(Path("grown.png"), bytes));
    EXPECT_EQ(bytes, (std::vector<BYTE>{0, 0, 0, 80, 80, 0, 0, 80, 80, 0, 0, 80, 80, 80, 0}));
}

class MaskCommandTest : public CliTest {
  protected:
    void SetUp() override {
        CliTest::SetUp();
        C_Image a;
        C_Image b;
        MakeMask(a, 3, 2, {200, 0, 255, 17, 100, 0});
        MakeMask(b, 3, 2, {100, 255, 0, 17, 0, 0});
        ASSERT_TRUE(SaveImageFile(Path("a.png"), a).ok);
        ASSERT_TRUE(SaveImageFile(Path("b.bmp"), b).ok);
    }
    std::vector<BYTE> Run(const std::string& arguments, const std::string& expectOut = {}) {
        const ToolRun run = Vistrane("mask " + arguments);
        EXPECT_EQ(run.exitCode, 0) << arguments << "\n" << run.err;
        EXPECT_TRUE(test::Contains(run.out, expectOut)) << run.out;
        std::vector<BYTE> bytes;
        EXPECT_TRUE(MaskBytes(Path("out.png"), bytes));
        return bytes;
    }
};

TEST_F(MaskCommandTest, LogicIsBitwise) {
    const std::string ab = Quoted("a.png") + " " + Quoted("b.bmp") + " " + Quoted("out.png");
    EXPECT_EQ(Run("and " + ab), (std::vector<BYTE>{64, 0, 0, 17, 0, 0}));
    EXPECT_EQ(Run("or " + ab), (std::vector<BYTE>{236, 255, 255, 17, 100, 0}));
    EXPECT_EQ(Run("xor " + ab), (std::vector<BYTE>{172, 255, 255, 0, 100, 0}));
    EXPECT_EQ(Run("and-not " + ab), (std::vector<BYTE>{136, 0, 255, 0, 100, 0}));
    EXPECT_EQ(Run("invert " + Quoted("a.png") + " " + Quoted("out.png")),
              (std::vector<BYTE>{55, 255, 0, 238, 155, 255}));
}

TEST_F(MaskCommandTest, ThresholdAndScale) {
    const std::string io = Quoted("a.png") + " " + Quoted("out.png");
    // Bytes up to 100 drop out; 200 and 255 pass.
    EXPECT_EQ(Run("threshold --level 100 " + io, "selected:  2\n"),
              (std::vector<BYTE>{255, 0, 255, 0, 0, 0}));
    // Bytes below 100 drop out; the rest keep their opacity.
    EXPECT_EQ(Run("threshold --keep --level 100 " + io, "selected:  3\n"),
              (std::vector<BYTE>{200, 0, 255, 0, 100, 0}));
    // Opacities 17..255 onto 10..20: v = (b - 17) * 11 / 239 + 10.
    EXPECT_EQ(Run("scale --min 10 --max 20 " + io, "selected:  4\n"),
              (std::vector<BYTE>{18, 0, 20, 10, 13, 0}));
}

TEST_F(MaskCommandTest, FeaturesAreReported) {
    const ToolRun run = Vistrane("mask features " + Quoted("a.png"));
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.out,
              "size:      3 x 2\n"
              "selected:  4\n"
              "bounds:    0,0 to 2,1 (3 x 2)\n"
              "opacity:   17 to 255, mean 143\n");  // (200 + 255 + 17 + 100) / 4 = 143
}

}  // namespace
}  // namespace vistrane
