// What the shared layer accepts (colours with '#', a palette picture made 24-bit for the filters)
// and the two geometry commands, resize and rotate. Refusals are one table in
// cli_refusal_test.cpp.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <vistrane/blend/gray_palette.h>
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

class CliLayer : public CliTest {
  protected:
    void SetUp() override {
        CliTest::SetUp();
        C_Image picture;
        ASSERT_EQ(picture.Create(6, 4, 1, nullptr, 0), 1);
        test::FillRandomPixels(picture, 9);
        ASSERT_TRUE(SaveImageFile(Path("in.bmp"), picture).ok);
        const RGBQUAD four[4] = {{0, 0, 0, 0}, {255, 0, 0, 0}, {0, 255, 0, 0}, {0, 0, 255, 0}};
        C_Image palette;
        ASSERT_EQ(palette.Create(6, 4, 0, four, 4), 1);
        *palette.PixelPtr(1, 1) = 3;
        ASSERT_TRUE(SaveImageFile(Path("four.bmp"), palette).ok);
        C_Image small;
        ASSERT_EQ(small.CreateMask(2, 2), 1);
        ASSERT_TRUE(SaveImageFile(Path("small.png"), small).ok);
    }

    void Load(const std::string& name, C_Image& image) {
        ASSERT_TRUE(LoadImageFile(Path(name), image).ok) << name;
    }
};

TEST_F(CliLayer, HashColoursPaintAndPalettePicturesConvertToTrueColour) {
    ASSERT_EQ(
        Vistrane("paint --color '#ff8000' " + Quoted("in.bmp") + " " + Quoted("p.bmp")).exitCode,
        0);
    C_Image painted;
    Load("p.bmp", painted);
    EXPECT_EQ(painted.GetPixelColorRef(5, 3), RGB(255, 128, 0));

    ASSERT_EQ(
        Vistrane("convert --truecolor " + Quoted("four.bmp") + " " + Quoted("t.bmp")).exitCode, 0);
    C_Image colour;
    Load("t.bmp", colour);
    ASSERT_TRUE(colour.IsTrueColor());
    EXPECT_EQ(colour.GetPixelColorRef(1, 1), RGB(255, 0, 0));
    EXPECT_EQ(colour.GetPixelColorRef(0, 0), RGB(0, 0, 0));
    EXPECT_EQ(Vistrane("filter --preset blur " + Quoted("t.bmp") + " " + Quoted("f.bmp")).exitCode,
              0);
}

TEST_F(CliLayer, ResizeGivesTheAskedSizeAndFitKeepsTheProportions) {
    ASSERT_EQ(Vistrane("resize --size 12x8 --nearest " + Quoted("in.bmp") + " " + Quoted("big.bmp"))
                  .exitCode,
              0);
    C_Image in;
    Load("in.bmp", in);
    C_Image big;
    Load("big.bmp", big);
    ASSERT_EQ(big.Width(), 12);
    ASSERT_EQ(big.Height(), 8);
    // Nearest neighbour at twice the size copies each pixel into a 2 x 2 block.
    for (int y = 0; y < 8; ++y) {
        for (int x = 0; x < 12; ++x) {
            ASSERT_EQ(big.GetPixelColorRef(x, y), in.GetPixelColorRef(x / 2, y / 2))
                << x << "," << y;
        }
    }
    ASSERT_EQ(Vistrane("resize --fit 3x3 " + Quoted("in.bmp") + " " + Quoted("fit.png")).exitCode,
              0);
    C_Image fit;
    Load("fit.png", fit);
    EXPECT_EQ(fit.Width(), 3);
    EXPECT_EQ(fit.Height(), 2);
}

TEST_F(CliLayer, RotateTurnsQuartersExactlyAndGrowsForOtherAngles) {
    C_Image in;
    Load("in.bmp", in);
    ASSERT_EQ(Vistrane("rotate --right " + Quoted("in.bmp") + " " + Quoted("r.bmp")).exitCode, 0);
    C_Image right;
    Load("r.bmp", right);
    ASSERT_EQ(right.Width(), 4);
    ASSERT_EQ(right.Height(), 6);
    // Clockwise: the top-left pixel goes to the top-right corner.
    EXPECT_EQ(right.GetPixelColorRef(3, 0), in.GetPixelColorRef(0, 0));
    EXPECT_EQ(right.GetPixelColorRef(0, 5), in.GetPixelColorRef(5, 3));
    ASSERT_EQ(Vistrane("rotate --flip h " + Quoted("in.bmp") + " " + Quoted("h.bmp")).exitCode, 0);
    C_Image flipped;
    Load("h.bmp", flipped);
    EXPECT_EQ(flipped.GetPixelColorRef(0, 2), in.GetPixelColorRef(5, 2));
    ASSERT_EQ(Vistrane("rotate --degrees 30 " + Quoted("in.bmp") + " " + Quoted("d.bmp")).exitCode,
              0);
    C_Image turned;
    Load("d.bmp", turned);
    EXPECT_GT(turned.Width(), 6);
    EXPECT_GT(turned.Height(), 4);
}

}  // namespace
}  // namespace vistrane
