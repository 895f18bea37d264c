#include "demo/contact_sheet.h"

#include <filesystem>

#include <vistrane/image/image.h>
#include <vistrane/io/image_file.h>

namespace vistrane::cli {
namespace {

constexpr long kColumns = 4;
constexpr long kCellWidth = 400;
constexpr long kCellHeight = 300;
constexpr long kGutter = 12;
constexpr COLORREF kBackground = RGB(40, 40, 44);

// The tour writes its pictures as PNG; the BMP copy of the picture would only repeat it.
bool IsPicture(const std::string& path) {
    return ImageFileFormatFromPath(path) == ImageFileFormat::Png;
}

}  // namespace

std::string MakeContactSheet(const std::vector<std::string>& paths, C_Image& sheet) {
    std::vector<std::string> pictures;
    for (const std::string& path : paths) {
        if (IsPicture(path)) {
            pictures.push_back(path);
        }
    }
    if (pictures.empty()) {
        return "there are no pictures to show";
    }
    const long count = static_cast<long>(pictures.size());
    const long rows = (count + kColumns - 1) / kColumns;
    const long width = kColumns * (kCellWidth + kGutter) + kGutter;
    const long height = rows * (kCellHeight + kGutter) + kGutter;
    if (!sheet.Create(width, height, 1, nullptr, 0)) {
        return "not enough memory for the sheet";
    }
    sheet.FillWithColorRef(kBackground);
    for (long i = 0; i < count; ++i) {
        C_Image thumbnail;
        const ImageFileResult loaded = LoadImageFile(pictures[static_cast<size_t>(i)], thumbnail);
        if (!loaded.ok) {
            return loaded.error;
        }
        if (!thumbnail.DIBResizeKeepRatio(kCellWidth, kCellHeight)) {
            return "cannot shrink " + std::filesystem::path(pictures[i]).filename().string();
        }
        // Centred in its cell; 8-bit pictures are converted through their colour tables.
        const long cellX = kGutter + (i % kColumns) * (kCellWidth + kGutter);
        const long cellY = kGutter + (i / kColumns) * (kCellHeight + kGutter);
        sheet.DibBlt(cellX + (kCellWidth - thumbnail.Width()) / 2,
                     cellY + (kCellHeight - thumbnail.Height()) / 2, thumbnail.Width(),
                     thumbnail.Height(), &thumbnail, 0, 0, 0);
    }
    return {};
}

}  // namespace vistrane::cli
