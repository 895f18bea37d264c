#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include <vistrane/image/image.h>
#include <vistrane/io/image_file.h>

#include "io/scratch_file.h"
#include "support/image_support.h"

namespace vistrane {
namespace {

TEST(ImageFileFormat, ExtensionDecidesInAnyCase) {
    EXPECT_EQ(ImageFileFormatFromPath("a.bmp"), ImageFileFormat::Bmp);
    EXPECT_EQ(ImageFileFormatFromPath("dir/A.BMP"), ImageFileFormat::Bmp);
    EXPECT_EQ(ImageFileFormatFromPath("x.y.PnG"), ImageFileFormat::Png);
    EXPECT_EQ(ImageFileFormatFromPath("picture.jpg"), ImageFileFormat::Unknown);
    EXPECT_EQ(ImageFileFormatFromPath("png"), ImageFileFormat::Unknown);
    EXPECT_EQ(ImageFileFormatFromPath("old.png/picture"), ImageFileFormat::Unknown);
}

TEST(ImageFileFormat, SignatureDecidesForBytes) {
    const BYTE png[] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    const BYTE bmp[] = {'B', 'M'};
    EXPECT_EQ(ImageFileFormatFromBytes(png, sizeof png), ImageFileFormat::Png);
    EXPECT_EQ(ImageFileFormatFromBytes(png, sizeof png - 1), ImageFileFormat::Unknown);
    EXPECT_EQ(ImageFileFormatFromBytes(bmp, sizeof bmp), ImageFileFormat::Bmp);
    EXPECT_EQ(ImageFileFormatFromBytes(bmp, 1), ImageFileFormat::Unknown);
    EXPECT_EQ(ImageFileFormatFromBytes(nullptr, 0), ImageFileFormat::Unknown);
}

// A file named .png that holds a BMP still loads: loading goes by the contents.
TEST(ImageFile, LoadsByContentsAndSavesByExtension) {
    C_Image image;
    ASSERT_TRUE(image.Create(3, 2, 1, nullptr, 0));
    test::FillRandomPixels(image, 4);
    const std::string bmpPath = test::ScratchPath("really_a_bmp.png");
    ASSERT_TRUE(SaveBmp(bmpPath, image).ok);
    C_Image loaded;
    const ImageFileResult result = LoadImageFile(bmpPath, loaded);
    std::remove(bmpPath.c_str());
    ASSERT_TRUE(result.ok) << result.error;
    EXPECT_TRUE(test::SamePixels(image, loaded));

    const std::string pngPath = test::ScratchPath("saved.PNG");
    ASSERT_TRUE(SaveImageFile(pngPath, image).ok);
    std::FILE* file = std::fopen(pngPath.c_str(), "rb");
    ASSERT_NE(file, nullptr);
    BYTE signature[8] = {};
    EXPECT_EQ(std::fread(signature, 1, sizeof signature, file), sizeof signature);
    std::fclose(file);
    std::remove(pngPath.c_str());
    EXPECT_EQ(ImageFileFormatFromBytes(signature, sizeof signature), ImageFileFormat::Png);
}

TEST(ImageFile, UnknownFormatsAreRefusedWithAReason) {
    C_Image image;
    ASSERT_TRUE(image.Create(1, 1, 1, nullptr, 0));
    const ImageFileResult saved = SaveImageFile("out.jpg", image);
    EXPECT_FALSE(saved.ok);
    EXPECT_EQ(saved.error, "cannot tell the format of 'out.jpg': name it .bmp or .png");

    const std::string textPath = test::ScratchPath("notes.txt");
    std::FILE* file = std::fopen(textPath.c_str(), "wb");
    ASSERT_NE(file, nullptr);
    std::fputs("hello", file);
    std::fclose(file);
    const ImageFileResult loaded = LoadImageFile(textPath, image);
    std::remove(textPath.c_str());
    EXPECT_FALSE(loaded.ok);
    EXPECT_EQ(loaded.error, "'" + textPath + "' is neither a BMP nor a PNG file");
    EXPECT_FALSE(image.HasImage());
}

TEST(ImageFile, DirectoryIsNotAnImage) {
    C_Image image;
    const ImageFileResult result = LoadImageFile(::testing::TempDir(), image);
    EXPECT_FALSE(result.ok);
    EXPECT_NE(result.error.find("Is a directory"), std::string::npos) << result.error;
}

}  // namespace
}  // namespace vistrane
