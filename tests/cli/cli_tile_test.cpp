// vistrane tile: the file it writes is the engine's tile of the file it read, palette pictures
// are widened first, and bad band sizes fail with a message.

#include <gtest/gtest.h>

#include <string>

#include <vistrane/blend/image_luts.h>
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

// The tile the engine makes in this process, with the tables built around the call as the tool
// does.
void TileHere(C_Image& image, int percent) {
    glb_CreateImageLUTs();
    ASSERT_EQ(image.SeamlessPattern(percent), 1);
    glb_ReleaseImageLUTs();
}

TEST_F(CliTest, TileWritesTheEngineTileOfTrueColourAndGreyPictures) {
    C_Image colour, grey;
    ASSERT_TRUE(colour.Create(31, 22, 1, nullptr, 0));
    ASSERT_TRUE(grey.CreateMask(19, 40));
    test::FillRandomPixels(colour, 11);
    test::FillRandomPixels(grey, 12);
    ASSERT_TRUE(SaveImageFile(Path("colour.bmp"), colour).ok);
    ASSERT_TRUE(SaveImageFile(Path("grey.png"), grey).ok);

    const ToolRun run =
        Vistrane("tile --percent 20 " + Quoted("colour.bmp") + " " + Quoted("colour-tile.png"));
    ASSERT_EQ(run.exitCode, 0) << run.err;
    C_Image written;
    ASSERT_TRUE(LoadImageFile(Path("colour-tile.png"), written).ok);
    TileHere(colour, 20);
    ASSERT_EQ(colour.Width(), 25);   // 31 - (620 + 50) / 100
    ASSERT_EQ(colour.Height(), 18);  // 22 - (440 + 50) / 100
    EXPECT_TRUE(test::SamePixels(colour, written));

    const ToolRun greyRun =
        Vistrane("tile --percent 35 " + Quoted("grey.png") + " " + Quoted("grey-tile.bmp"));
    ASSERT_EQ(greyRun.exitCode, 0) << greyRun.err;
    ASSERT_TRUE(LoadImageFile(Path("grey-tile.bmp"), written).ok);
    TileHere(grey, 35);
    EXPECT_TRUE(written.IsMask());
    EXPECT_TRUE(test::SamePixels(grey, written));
}

TEST_F(CliTest, TileWidensAPalettePictureThroughItsColours) {
    RGBQUAD colors[3] = {{200, 10, 10, 0}, {10, 200, 10, 0}, {10, 10, 200, 0}};
    C_Image palette;
    ASSERT_TRUE(palette.Create(12, 12, 0, colors, 3));
    for (long y = 0; y < 12; ++y) {
        for (long x = 0; x < 12; ++x) {
            *palette.PixelPtr(x, y) = static_cast<BYTE>((x + 2 * y) % 3);
        }
    }
    ASSERT_TRUE(SaveImageFile(Path("palette.bmp"), palette).ok);
    const ToolRun run =
        Vistrane("tile --percent 25 " + Quoted("palette.bmp") + " " + Quoted("tile.bmp"));
    ASSERT_EQ(run.exitCode, 0) << run.err;
    C_Image written;
    ASSERT_TRUE(LoadImageFile(Path("tile.bmp"), written).ok);

    C_Image wide;
    ASSERT_TRUE(wide.Create(12, 12, 1, nullptr, 0));
    wide.DibBlt(0, 0, 12, 12, &palette, 0, 0, 0);
    TileHere(wide, 25);
    EXPECT_TRUE(written.IsTrueColor());
    EXPECT_TRUE(test::SamePixels(wide, written));
}

TEST_F(CliTest, TileRefusesABandThatRoundsToNoRows) {
    C_Image image;
    ASSERT_TRUE(image.Create(30, 8, 1, nullptr, 0));
    test::FillRandomPixels(image, 5);
    ASSERT_TRUE(SaveImageFile(Path("in.bmp"), image).ok);
    // 8 * 5 + 50 < 100: the height's band rounds to no rows.
    const ToolRun empty =
        Vistrane("tile --percent 5 " + Quoted("in.bmp") + " " + Quoted("out.bmp"));
    EXPECT_EQ(empty.exitCode, 1);
    EXPECT_TRUE(Contains(empty.err, "5 % of the 30 x 8 image gives an empty band")) << empty.err;
    EXPECT_TRUE(test::ReadText(Path("out.bmp")).empty());
}

}  // namespace
}  // namespace vistrane
