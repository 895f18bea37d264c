#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <string>

#include <vistrane/image/image.h>
#include <vistrane/io/image_file.h>
#include <vistrane/mask/mask_features.h>
#include <vistrane/path/point_path.h>
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

TEST_F(CliTest, Version) {
    const ToolRun version = Vistrane("--version");
    EXPECT_EQ(version.exitCode, 0);
    EXPECT_EQ(version.out, std::string("vistrane ") + VISTRANE_VERSION_STRING + "\n");
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
    EXPECT_TRUE(Contains(maskRun.out, "colours:   256 table entries\n")) << maskRun.out;
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

TEST_F(CliTest, EditingCommandsChangeThePixelsTheySay) {
    C_Image image;
    ASSERT_TRUE(image.Create(3, 2, 1, nullptr, 0));
    image.FillWithColorRef(RGB(200, 100, 50));
    ASSERT_TRUE(SaveImageFile(Path("in.bmp"), image).ok);
    const std::string in = "'" + Path("in.bmp") + "' ";

    // A centre weight of -1 with offset 255 inverts every channel.
    ToolRun run = Vistrane("filter " + in + "'" + Path("neg.bmp") +
                           "' --kernel 0,0,0,0,-1,0,0,0,0 --offset 255");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    C_Image out;
    ASSERT_TRUE(LoadImageFile(Path("neg.bmp"), out).ok);
    EXPECT_EQ(out.GetPixelColorRef(2, 1), RGB(55, 155, 205));

    // Multiply by 808080: 200 * 128 / 255 = 100, 100 * 128 / 255 = 50, 50 * 128 / 255 = 25.
    run = Vistrane("paint " + in + "'" + Path("mul.bmp") + "' --color 808080 --mode multiply");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    ASSERT_TRUE(LoadImageFile(Path("mul.bmp"), out).ok);
    EXPECT_EQ(out.GetPixelColorRef(0, 0), RGB(100, 50, 25));

    run = Vistrane("color " + in + "'" + Path("off.bmp") + "' rgb-offset -- -10 20 300");
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_TRUE(Contains(run.err, "-255..255")) << run.err;
    run = Vistrane("color " + in + "'" + Path("off.bmp") + "' rgb-offset -- -10 20 30");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    ASSERT_TRUE(LoadImageFile(Path("off.bmp"), out).ok);
    EXPECT_EQ(out.GetPixelColorRef(1, 1), RGB(190, 120, 80));

    run = Vistrane("stats " + in + "--plot '" + Path("plot.png") + "'");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_TRUE(Contains(run.out, "average colour   #C86432")) << run.out;
    EXPECT_TRUE(Contains(run.out, "distinct colours 1")) << run.out;
    ASSERT_TRUE(LoadImageFile(Path("plot.png"), out).ok);
    EXPECT_EQ(out.Width(), 256);

    run = Vistrane("palette " + in + "'" + Path("p.bmp") + "' sort hue");
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(Contains(run.err, "no colour table")) << run.err;
}

TEST_F(CliTest, PaletteDeleteRemapsToTheNearestColour) {
    const RGBQUAD colors[3] = {{0, 0, 250, 0}, {0, 0, 255, 0}, {255, 0, 0, 0}};
    C_Image palette;
    ASSERT_TRUE(palette.Create(3, 1, 0, colors, 3));
    *palette.PixelPtr(0, 0) = 0;
    *palette.PixelPtr(1, 0) = 1;
    *palette.PixelPtr(2, 0) = 2;
    ASSERT_TRUE(SaveImageFile(Path("p.bmp"), palette).ok);
    const ToolRun run =
        Vistrane("palette '" + Path("p.bmp") + "' '" + Path("q.bmp") + "' delete fore --fore 0");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    C_Image out;
    ASSERT_TRUE(LoadImageFile(Path("q.bmp"), out).ok);
    EXPECT_EQ(out.NColors(), 2u);
    EXPECT_EQ(*out.PixelPtr(0, 0), 0);  // the dark red went to the remaining red
    EXPECT_EQ(*out.PixelPtr(2, 0), 1);
}

// The pixel bytes of (x, y) as one number.
unsigned PixelOf(const C_Image& image, int x, int y) {
    const BYTE* p = image.PixelPtr(x, y);
    return image.IsTrueColor() ? p[0] | p[1] << 8 | p[2] << 16 : p[0];
}

TEST_F(CliTest, CropKeepsTheRectangle) {
    C_Image image;
    ASSERT_TRUE(image.Create(9, 7, 1, nullptr, 0));
    test::FillRandomPixels(image, 4);
    ASSERT_TRUE(SaveImageFile(Path("in.bmp"), image).ok);
    const ToolRun run =
        Vistrane("crop --rect 2,1,5,4 '" + Path("in.bmp") + "' '" + Path("out.png") + "'");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    C_Image cropped;
    ASSERT_TRUE(LoadImageFile(Path("out.png"), cropped).ok);
    ASSERT_EQ(cropped.Width(), 5);
    ASSERT_EQ(cropped.Height(), 4);
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 5; ++x) {
            ASSERT_EQ(PixelOf(cropped, x, y), PixelOf(image, x + 2, y + 1)) << x << ", " << y;
        }
    }
}

TEST_F(CliTest, BorderFramesInTheGivenColour) {
    C_Image image;
    ASSERT_TRUE(image.Create(3, 2, 1, nullptr, 0));
    test::FillRandomPixels(image, 8);
    ASSERT_TRUE(SaveImageFile(Path("in.bmp"), image).ok);
    const ToolRun run = Vistrane("border --margins 1,2,3,0 --color 0a141e '" + Path("in.bmp") +
                                 "' '" + Path("out.bmp") + "'");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    C_Image framed;
    ASSERT_TRUE(LoadImageFile(Path("out.bmp"), framed).ok);
    ASSERT_EQ(framed.Width(), 7);
    ASSERT_EQ(framed.Height(), 4);
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 7; ++x) {
            const bool inside = x >= 1 && x < 4 && y >= 2;
            // 0a141e is red 10, green 20, blue 30: bytes blue, green, red.
            ASSERT_EQ(PixelOf(framed, x, y),
                      inside ? PixelOf(image, x - 1, y - 2) : (10u << 16 | 20u << 8 | 30u))
                << x << ", " << y;
        }
    }
}

TEST_F(CliTest, WarpWithOwnCornersReproduces) {
    C_Image image;
    ASSERT_TRUE(image.Create(12, 10, 1, nullptr, 0));
    test::FillRandomPixels(image, 21);
    ASSERT_TRUE(SaveImageFile(Path("in.bmp"), image).ok);
    C_Image mask;
    ASSERT_TRUE(mask.CreateMask(12, 10));
    ASSERT_TRUE(mask.MaskRect(CRect(2, 3, 9, 8), 255));
    ASSERT_TRUE(SaveImageFile(Path("mask.png"), mask).ok);
    // The selection's bounds (2, 3, 9, 8) onto its own corners: W = 6, H = 4.
    const ToolRun run = Vistrane("warp --nearest --corners 2,3,8,3,8,7,2,7 --mask '" +
                                 Path("mask.png") + "' --mask-out '" + Path("m.png") + "' '" +
                                 Path("in.bmp") + "' '" + Path("out.bmp") + "'");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    C_Image warped, warpedMask;
    ASSERT_TRUE(LoadImageFile(Path("out.bmp"), warped).ok);
    ASSERT_TRUE(LoadImageFile(Path("m.png"), warpedMask).ok);
    ASSERT_EQ(warped.Width(), 6);
    ASSERT_EQ(warped.Height(), 4);
    EXPECT_TRUE(warpedMask.IsMask());
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 6; ++x) {
            ASSERT_EQ(PixelOf(warped, x, y), PixelOf(image, x + 2, y + 3)) << x << ", " << y;
            ASSERT_EQ(PixelOf(warpedMask, x, y), 255u) << x << ", " << y;
        }
    }
}

TEST_F(CliTest, DemoWritesEveryStepOfTheTour) {
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
    C_Image warped;
    ASSERT_TRUE(LoadImageFile(Path("demo/warped.png"), warped).ok);
    EXPECT_GT(warped.Width(), 1200);
    // The tile of 10 % bands is 1440 x 1080; its four copies are laid edge to edge.
    C_Image tiled;
    ASSERT_TRUE(LoadImageFile(Path("demo/tiled-2x2.png"), tiled).ok);
    ASSERT_EQ(tiled.Width(), 2880);
    ASSERT_EQ(tiled.Height(), 2160);
    for (long y = 0; y < 1080; y += 7) {
        for (long x = 0; x < 1440; x += 5) {
            ASSERT_EQ(PixelOf(tiled, x, y), PixelOf(tiled, x + 1440, y + 1080)) << x << ", " << y;
        }
    }
    C_Image picture;
    ASSERT_TRUE(LoadImageFile(Path("demo/picture.png"), picture).ok);
    C_Image mask;
    ASSERT_TRUE(LoadImageFile(Path("demo/wand-mask.png"), mask).ok);
    ASSERT_TRUE(mask.IsMask());
    ASSERT_TRUE(mask.SameDimensionsAs(&picture));
    S_MaskFeatures features{};
    mask.MaskExtractFeatures(&features);
    // The sky: a real part of the picture, reaching its top edge, not all of it.
    EXPECT_GT(features.m_NSelected, picture.Width() * picture.Height() / 20);
    EXPECT_LT(features.m_NSelected, picture.Width() * picture.Height() / 2);
    EXPECT_EQ(features.m_Top, 0);
    EXPECT_EQ(features.m_MinOpacity, 255);

    C_Image shown;
    ASSERT_TRUE(LoadImageFile(Path("demo/wand-selection.png"), shown).ok);
    EXPECT_NE(shown.GetPixelColorRef(700, 350), picture.GetPixelColorRef(700, 350));
    C_Image shapes;
    ASSERT_TRUE(LoadImageFile(Path("demo/shapes.png"), shapes).ok);
    EXPECT_EQ(shapes.GetPixelColorRef(800, 900), RGB(30, 90, 200));  // inside the filled one
    EXPECT_EQ(shapes.GetPixelColorRef(300, 850), picture.GetPixelColorRef(300, 850));
    // The soft filled rectangle (100, 250)-(500, 550) in 240 grey: inside it the hard paint,
    // beside its top edge a third of the paint over the picture, farther out the picture.
    EXPECT_EQ(shapes.GetPixelColorRef(300, 400), RGB(240, 240, 240));
    const unsigned long under = picture.GetPixelColorRef(300, 249);
    auto blend = [](BYTE old) { return static_cast<BYTE>(old * 170 / 255 + 240 * 85 / 255); };
    EXPECT_EQ(shapes.GetPixelColorRef(300, 249),
              RGB(blend(GetRValue(under)), blend(GetGValue(under)), blend(GetBValue(under))));
    EXPECT_EQ(shapes.GetPixelColorRef(300, 248), picture.GetPixelColorRef(300, 248));
    for (const char* name : {"sky", "text"}) {
        C_PointPath path;
        ASSERT_EQ(path.LoadFromFile(Path(std::string("demo/") + name + ".path").c_str(), 0), 1)
            << name;
        EXPECT_GT(path.GetNSubPaths(), 0) << name;
        EXPECT_TRUE(Contains(ReadText(Path(std::string("demo/") + name + ".svg")), "<path "))
            << name;
    }
    // Four panels a row, each with a caption band under it drawn in a light colour.
    C_Image sheet;
    ASSERT_TRUE(LoadImageFile(Path("demo/contact-sheet.png"), sheet).ok);
    EXPECT_EQ(sheet.Width(), 1660);
    int lit = 0;
    for (long x = 12; x < 412; ++x) {
        for (long y = 312; y < 342; ++y) {
            lit += GetRValue(sheet.GetPixelColorRef(x, y)) > 150 ? 1 : 0;
        }
    }
    EXPECT_GT(lit, 40);
}

}  // namespace
}  // namespace vistrane
