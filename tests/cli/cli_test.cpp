#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <string>

#include <vistrane/image/image.h>
#include <vistrane/io/image_file.h>
#include <vistrane/version.h>

#include "cli/cli_support.h"
#include "support/image_support.h"

namespace vistrane {
namespace {

using test::CliTest;
using test::Contains;
using test::ReadText;
using test::ToolRun;
using test::Vistrane;

TEST_F(CliTest, VersionAndHelp) {
    const ToolRun version = Vistrane("--version");
    EXPECT_EQ(version.exitCode, 0);
    EXPECT_EQ(version.out, std::string("vistrane ") + VISTRANE_VERSION_STRING + "\n");

    const ToolRun help = Vistrane("--help");
    EXPECT_EQ(help.exitCode, 0);
    for (const char* command : {"info", "convert", "select", "mask", "shape", "blit", "demo"}) {
        EXPECT_TRUE(Contains(help.out, command)) << command;
        const ToolRun commandHelp = Vistrane(std::string(command) + " --help");
        EXPECT_EQ(commandHelp.exitCode, 0) << command;
        EXPECT_TRUE(Contains(commandHelp.out, std::string("Usage: vistrane ") + command))
            << commandHelp.out;
    }
}

TEST_F(CliTest, InfoDescribesTheImage) {
    C_Image image;
    ASSERT_TRUE(image.Create(5, 3, 1, nullptr, 0));
    ASSERT_TRUE(SaveImageFile(Path("five.bmp"), image).ok);
    const ToolRun run = Vistrane("info '" + Path("five.bmp") + "'");
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_TRUE(Contains(run.out, "size:      5 x 3\n")) << run.out;
    EXPECT_TRUE(Contains(run.out, "depth:     24 bits")) << run.out;
    EXPECT_TRUE(Contains(run.out, "grey mask: no\n")) << run.out;
    EXPECT_TRUE(Contains(run.out, "bytes:     48\n")) << run.out;  // rows of 15 padded to 16

    C_Image mask;
    ASSERT_TRUE(mask.CreateMask(2, 2));
    ASSERT_TRUE(SaveImageFile(Path("mask.png"), mask).ok);
    const ToolRun maskRun = Vistrane("info '" + Path("mask.png") + "'");
    EXPECT_TRUE(Contains(maskRun.out, "colours:   256\n")) << maskRun.out;
    EXPECT_TRUE(Contains(maskRun.out, "grey mask: yes\n")) << maskRun.out;
}

TEST_F(CliTest, ConvertBmpToPngAndBackIsByteExact) {
    C_Image image;
    ASSERT_TRUE(image.Create(7, 5, 1, nullptr, 0));
    test::FillRandomPixels(image, 12);
    ASSERT_TRUE(SaveImageFile(Path("in.bmp"), image).ok);
    ASSERT_EQ(Vistrane("convert '" + Path("in.bmp") + "' '" + Path("mid.png") + "'").exitCode, 0);
    ASSERT_EQ(Vistrane("convert '" + Path("mid.png") + "' '" + Path("out.bmp") + "'").exitCode, 0);
    const std::string original = ReadText(Path("in.bmp"));
    EXPECT_FALSE(original.empty());
    EXPECT_EQ(ReadText(Path("out.bmp")), original);
}

TEST_F(CliTest, ConvertGreyAveragesTruecolourAndColourTables) {
    C_Image image;
    ASSERT_TRUE(image.Create(2, 1, 1, nullptr, 0));
    const BYTE pixels[] = {10, 20, 31, 255, 255, 254};  // means 61 / 3 = 20 and 764 / 3 = 254
    std::copy(std::begin(pixels), std::end(pixels), image.PixelPtr(0, 0));
    ASSERT_TRUE(SaveImageFile(Path("colour.bmp"), image).ok);
    const ToolRun run =
        Vistrane("convert --grey '" + Path("colour.bmp") + "' '" + Path("grey.png") + "'");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    C_Image grey;
    ASSERT_TRUE(LoadImageFile(Path("grey.png"), grey).ok);
    EXPECT_TRUE(grey.IsMask());
    EXPECT_EQ(grey.PixelPtr(0, 0)[0], 20);
    EXPECT_EQ(grey.PixelPtr(0, 0)[1], 254);

    const RGBQUAD colors[2] = {{0, 0, 0, 0}, {30, 60, 91, 0}};  // 181 / 3 = 60
    C_Image palette;
    ASSERT_TRUE(palette.Create(1, 1, 0, colors, 2));
    *palette.PixelPtr(0, 0) = 1;
    ASSERT_TRUE(SaveImageFile(Path("palette.png"), palette).ok);
    ASSERT_EQ(Vistrane("convert '" + Path("palette.png") + "' '" + Path("pgrey.bmp") + "' --grey")
                  .exitCode,
              0);
    ASSERT_TRUE(LoadImageFile(Path("pgrey.bmp"), grey).ok);
    EXPECT_TRUE(grey.IsMask());
    EXPECT_EQ(*grey.PixelPtr(0, 0), 60);
}

TEST_F(CliTest, FailuresExitNonZeroWithAMessage) {
    const ToolRun missing = Vistrane("info '" + Path("absent.png") + "'");
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_TRUE(Contains(missing.err, "absent.png': No such file or directory")) << missing.err;

    const ToolRun option = Vistrane("convert --frobnicate a.bmp b.png");
    EXPECT_EQ(option.exitCode, 2);
    EXPECT_TRUE(Contains(option.err, "unknown option '--frobnicate'")) << option.err;

    const ToolRun flagValue = Vistrane("convert --grey=yes a.bmp b.png");
    EXPECT_EQ(flagValue.exitCode, 2);
    EXPECT_TRUE(Contains(flagValue.err, "'--grey' takes no value")) << flagValue.err;

    const ToolRun arguments = Vistrane("convert only-one.bmp");
    EXPECT_EQ(arguments.exitCode, 2);
    EXPECT_TRUE(Contains(arguments.err, "missing arguments")) << arguments.err;

    const ToolRun format = Vistrane("convert a.bmp b.jpg");
    EXPECT_EQ(format.exitCode, 2);
    EXPECT_TRUE(Contains(format.err, "cannot tell the format of 'b.jpg'")) << format.err;

    const ToolRun command = Vistrane("frobnicate");
    EXPECT_EQ(command.exitCode, 2);
    EXPECT_TRUE(Contains(command.err, "unknown command 'frobnicate'")) << command.err;
}

TEST_F(CliTest, DemoWritesThePictureInBothFormats) {
    const ToolRun run = Vistrane("demo '" + Path("demo") + "'");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_TRUE(Contains(run.out, "render picture")) << run.out;
    C_Image bmp;
    C_Image png;
    ASSERT_TRUE(LoadImageFile(Path("demo/picture.bmp"), bmp).ok);
    ASSERT_TRUE(LoadImageFile(Path("demo/picture.png"), png).ok);
    EXPECT_EQ(bmp.Width(), 1600);
    EXPECT_EQ(bmp.Height(), 1200);
    EXPECT_TRUE(bmp.IsTrueColor());
    EXPECT_TRUE(test::SamePixels(bmp, png));
}

}  // namespace
}  // namespace vistrane
