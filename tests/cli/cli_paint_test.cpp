// The shape and blit subcommands, and the demo's selection and shape steps.

#include <gtest/gtest.h>

#include <string>
#include <vector>

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

constexpr unsigned long kWhite = RGB(255, 255, 255);
constexpr unsigned long kRed = RGB(255, 0, 0);

void SaveWhite(const std::string& path, long width, long height) {
    C_Image image;
    ASSERT_TRUE(image.Create(width, height, 1, nullptr, 0));
    image.FillWithColorRef(kWhite);
    ASSERT_TRUE(SaveImageFile(path, image).ok);
}

::testing::AssertionResult Load(const std::string& path, C_Image& image) {
    const ImageFileResult loaded = LoadImageFile(path, image);
    if (!loaded.ok) {
        return ::testing::AssertionFailure() << loaded.error;
    }
    return ::testing::AssertionSuccess();
}

TEST_F(CliTest, ShapeRectangleKeepsGdiEdges) {
    SaveWhite(Path("white.bmp"), 10, 8);
    ASSERT_EQ(Vistrane("shape --kind rect --rect 1,1,6,5 --color ff0000 " + Quoted("white.bmp") +
                       " " + Quoted("outline.png"))
                  .exitCode,
              0);
    C_Image outline;
    ASSERT_TRUE(Load(Path("outline.png"), outline));
    EXPECT_EQ(outline.GetPixelColorRef(1, 1), kRed);
    EXPECT_EQ(outline.GetPixelColorRef(5, 4), kRed);    // the last column and row inside
    EXPECT_EQ(outline.GetPixelColorRef(6, 4), kWhite);  // right edge exclusive
    EXPECT_EQ(outline.GetPixelColorRef(5, 5), kWhite);  // bottom edge exclusive
    EXPECT_EQ(outline.GetPixelColorRef(3, 2), kWhite);  // hollow inside
    EXPECT_EQ(outline.GetPixelColorRef(0, 0), kWhite);

    ASSERT_EQ(Vistrane("shape --kind rect --rect 1,1,6,5 --color ff0000 --filled " +
                       Quoted("white.bmp") + " " + Quoted("filled.png"))
                  .exitCode,
              0);
    C_Image filled;
    ASSERT_TRUE(Load(Path("filled.png"), filled));
    EXPECT_EQ(filled.GetPixelColorRef(3, 2), kRed);
    EXPECT_EQ(filled.GetPixelColorRef(6, 2), kWhite);
}

TEST_F(CliTest, ShapeKindsAndPenWidth) {
    SaveWhite(Path("white.png"), 40, 20);
    for (const char* kind : {"roundrect", "ellipse"}) {
        const ToolRun run =
            Vistrane(std::string("shape --kind ") + kind + " --rect 0,0,40,20 --color ff0000 " +
                     Quoted("white.png") + " " + Quoted("shape.png"));
        ASSERT_EQ(run.exitCode, 0) << run.err;
        C_Image shape;
        ASSERT_TRUE(Load(Path("shape.png"), shape));
        EXPECT_EQ(shape.GetPixelColorRef(0, 0), kWhite) << kind;  // the corner is cut
        EXPECT_EQ(shape.GetPixelColorRef(20, 0), kRed) << kind;
        EXPECT_EQ(shape.GetPixelColorRef(0, 10), kRed) << kind;
        EXPECT_EQ(shape.GetPixelColorRef(20, 10), kWhite) << kind;
    }
    // A pen of 5 centred on the outline covers two pixels outside it and two inside.
    ASSERT_EQ(Vistrane("shape --kind rect --rect 10,5,30,15 --pen 5 --color ff0000 " +
                       Quoted("white.png") + " " + Quoted("wide.png"))
                  .exitCode,
              0);
    C_Image wide;
    ASSERT_TRUE(Load(Path("wide.png"), wide));
    EXPECT_EQ(wide.GetPixelColorRef(20, 3), kRed);
    EXPECT_EQ(wide.GetPixelColorRef(20, 2), kWhite);
    EXPECT_EQ(wide.GetPixelColorRef(20, 7), kRed);
    EXPECT_EQ(wide.GetPixelColorRef(20, 9), kWhite);
}

TEST_F(CliTest, ShapeSoftEdgeBlendsAOnePixelFringe) {
    SaveWhite(Path("white.png"), 16, 12);
    const std::string files = Quoted("white.png") + " " + Quoted("soft.png");
    const ToolRun run =
        Vistrane("shape --kind rect --rect 4,4,12,9 --filled --soft --color ff0000 " + files);
    ASSERT_EQ(run.exitCode, 0) << run.err;
    C_Image soft;
    ASSERT_TRUE(Load(Path("soft.png"), soft));
    // Beside an edge the fringe covers 3 of 9: a = 85, so green and blue become 255 * 170 / 255
    // + 0 = 170. Off a corner 1 of 9: a = 28, 255 * 227 / 255 = 227.
    EXPECT_EQ(soft.GetPixelColorRef(8, 3), RGB(255, 170, 170));
    EXPECT_EQ(soft.GetPixelColorRef(12, 6), RGB(255, 170, 170));
    EXPECT_EQ(soft.GetPixelColorRef(3, 3), RGB(255, 227, 227));
    EXPECT_EQ(soft.GetPixelColorRef(4, 4), kRed);
    EXPECT_EQ(soft.GetPixelColorRef(11, 8), kRed);
    EXPECT_EQ(soft.GetPixelColorRef(8, 2), kWhite);
    EXPECT_EQ(soft.GetPixelColorRef(13, 6), kWhite);

    ASSERT_EQ(
        Vistrane("shape --kind rect --rect 4,4,12,9 --filled --color ff0000 " + files).exitCode, 0);
    C_Image hard;
    ASSERT_TRUE(Load(Path("soft.png"), hard));
    EXPECT_EQ(hard.GetPixelColorRef(8, 3), kWhite);
    EXPECT_EQ(hard.GetPixelColorRef(4, 4), kRed);
}

TEST_F(CliTest, ShapeOnAPaletteImagePaintsTheNearestEntry) {
    const RGBQUAD colors[3] = {{0, 0, 0, 0}, {255, 255, 255, 0}, {0, 0, 250, 0}};
    C_Image palette;
    ASSERT_TRUE(palette.Create(8, 6, 0, colors, 3));
    ASSERT_TRUE(SaveImageFile(Path("palette.bmp"), palette).ok);
    ASSERT_EQ(Vistrane("shape --kind rect --rect 2,2,5,4 --filled --color ff0000 " +
                       Quoted("palette.bmp") + " " + Quoted("out.bmp"))
                  .exitCode,
              0);
    C_Image out;
    ASSERT_TRUE(Load(Path("out.bmp"), out));
    ASSERT_FALSE(out.IsTrueColor());
    EXPECT_EQ(out.GetPixelPalInd(3, 3), 2);
    EXPECT_EQ(out.GetPixelPalInd(5, 3), 0);

    // Palette indices cannot be blended: a soft edge leaves the hard shape.
    ASSERT_EQ(Vistrane("shape --kind rect --rect 2,2,5,4 --filled --soft --color ff0000 " +
                       Quoted("palette.bmp") + " " + Quoted("soft.bmp"))
                  .exitCode,
              0);
    C_Image soft;
    ASSERT_TRUE(Load(Path("soft.bmp"), soft));
    EXPECT_TRUE(test::SamePixels(out, soft));
}

// A 3 x 2 source: red, green, blue over white, black, red.
void SaveSource(const std::string& path) {
    C_Image source;
    ASSERT_TRUE(source.Create(3, 2, 1, nullptr, 0));
    const unsigned long colours[6] = {kRed, RGB(0, 255, 0), RGB(0, 0, 255), kWhite, 0, kRed};
    for (long i = 0; i < 6; ++i) {
        BYTE* pixel = source.PixelPtr(i % 3, i / 3);
        pixel[0] = GetBValue(colours[i]);
        pixel[1] = GetGValue(colours[i]);
        pixel[2] = GetRValue(colours[i]);
    }
    ASSERT_TRUE(SaveImageFile(path, source).ok);
}

// The destination's colours from the top row, as letters: w white, r red, g green, b blue,
// k black, ? anything else.
std::string Letters(const C_Image& image) {
    std::string letters;
    for (long y = 0; y < image.Height(); ++y) {
        for (long x = 0; x < image.Width(); ++x) {
            switch (image.GetPixelColorRef(x, y)) {
                case kWhite:
                    letters += 'w';
                    break;
                case kRed:
                    letters += 'r';
                    break;
                case RGB(0, 255, 0):
                    letters += 'g';
                    break;
                case RGB(0, 0, 255):
                    letters += 'b';
                    break;
                case 0:
                    letters += 'k';
                    break;
                default:
                    letters += '?';
                    break;
            }
        }
        letters += '/';
    }
    return letters;
}

TEST_F(CliTest, BlitClipsNegativeOffsetsAndSkipsTransparency) {
    SaveWhite(Path("dest.bmp"), 4, 3);
    SaveSource(Path("source.png"));
    const std::string files =
        Quoted("dest.bmp") + " " + Quoted("source.png") + " " + Quoted("out.png");
    const struct {
        std::string options;
        std::string expected;
    } cases[] = {
        {"", "rgbw/wkrw/wwww/"},
        // Landing at (-1, 1): the source's second column onwards, one row down.
        {"--at -1,1", "wwww/gbww/krww/"},
        {"--at 2,2 --from 1,0", "wwww/wwww/wwgb/"},
        {"--at 1,0 --size 2x1", "wrgw/wwww/wwww/"},
        {"--transparent ff0000", "wgbw/wkww/wwww/"},
    };
    for (const auto& c : cases) {
        const ToolRun run = Vistrane("blit " + c.options + " " + files);
        ASSERT_EQ(run.exitCode, 0) << c.options << ": " << run.err;
        C_Image out;
        ASSERT_TRUE(Load(Path("out.png"), out));
        EXPECT_EQ(Letters(out), c.expected) << c.options;
    }
}

TEST_F(CliTest, BlitConvertsPaletteSourcesAndRefusesTrueColourIntoPalette) {
    SaveWhite(Path("dest.bmp"), 3, 1);
    const RGBQUAD colors[3] = {{0, 0, 255, 0}, {255, 0, 0, 0}, {0, 255, 0, 0}};  // r, b, g
    C_Image palette;
    ASSERT_TRUE(palette.Create(3, 1, 0, colors, 3));
    BYTE* pixels = palette.PixelPtr(0, 0);
    pixels[0] = 2;
    pixels[1] = 0;
    pixels[2] = 1;
    ASSERT_TRUE(SaveImageFile(Path("palette.bmp"), palette).ok);
    const std::string files =
        Quoted("dest.bmp") + " " + Quoted("palette.bmp") + " " + Quoted("out.bmp");
    C_Image out;
    ASSERT_EQ(Vistrane("blit " + files).exitCode, 0);
    ASSERT_TRUE(Load(Path("out.bmp"), out));
    EXPECT_EQ(Letters(out), "grb/");
    ASSERT_EQ(Vistrane("blit --transparent ff0000 " + files).exitCode, 0);
    ASSERT_TRUE(Load(Path("out.bmp"), out));
    EXPECT_EQ(Letters(out), "gwb/");

    const ToolRun missing = Vistrane("blit --transparent 123456 " + files);
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_TRUE(Contains(missing.err, "has no entry 123456")) << missing.err;
    const ToolRun into = Vistrane("blit " + Quoted("palette.bmp") + " " + Quoted("dest.bmp") + " " +
                                  Quoted("out.bmp"));
    EXPECT_EQ(into.exitCode, 1);
    EXPECT_TRUE(Contains(into.err, "a 24-bit source cannot be copied into the 8-bit")) << into.err;
    const ToolRun size = Vistrane("blit --size 3 " + files);
    EXPECT_EQ(size.exitCode, 2);
    EXPECT_TRUE(Contains(size.err, "'3' is not a size WxH")) << size.err;
}

}  // namespace
}  // namespace vistrane
