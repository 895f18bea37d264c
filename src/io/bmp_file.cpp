// BMP files. Writing is the engine's archive form and nothing else. Reading takes the file's
// bytes whole: the archive form goes to the engine's own archive reader, every other layout to
// bmp_decode.cpp, which checks each header field against the bytes before it allocates.

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>

#include <vistrane/image/image.h>
#include <vistrane/io/image_file.h>
#include <vistrane/platform/archive.h>
#include <vistrane/platform/file.h>

#include "io/bmp_decode.h"
#include "io/image_file_p.h"

namespace vistrane {
namespace io {
namespace {

constexpr std::uint64_t kFileHeaderBytes = sizeof(BITMAPFILEHEADER);
constexpr std::uint64_t kInfoHeaderBytes = sizeof(BITMAPINFOHEADER);
// The archive form: file header, 40-byte info header, colour table, pixels.
constexpr std::uint64_t kArchiveHeaderBytes = kFileHeaderBytes + kInfoHeaderBytes;

// Whether the bytes are exactly what WriteToArchive makes, all of them there: such files go
// through the engine's own archive reader, which keeps an 8-bit colour count of 0 as "no table"
// where the file format would imply 256.
bool IsArchiveForm(const BYTE* data, std::size_t size) {
    if (size < kArchiveHeaderBytes || data[0] != 'B' || data[1] != 'M') {
        return false;
    }
    BITMAPFILEHEADER file;
    BITMAPINFOHEADER info;
    std::memcpy(&file, data, kFileHeaderBytes);
    std::memcpy(&info, data + kFileHeaderBytes, kInfoHeaderBytes);
    const std::uint64_t used = info.biClrUsed;
    const bool layout =
        info.biSize == kInfoHeaderBytes && info.biPlanes == 1 && info.biCompression == BI_RGB &&
        info.biWidth > 0 && info.biHeight > 0 &&
        ((info.biBitCount == 8 && used <= 256 &&
          file.bfOffBits == kArchiveHeaderBytes + 4 * used) ||
         (info.biBitCount == 24 && used == 0 && file.bfOffBits == kArchiveHeaderBytes));
    if (!layout) {
        return false;
    }
    const std::uint64_t rowBytes =
        (static_cast<std::uint64_t>(info.biWidth) * info.biBitCount + 31) / 32 * 4;
    return size - file.bfOffBits >= rowBytes * static_cast<std::uint64_t>(info.biHeight);
}

ImageFileResult LoadBmpBytes(const BYTE* data, std::size_t size, C_Image& image) {
    if (!IsArchiveForm(data, size)) {
        return DecodeBmp(data, size, image);
    }
    try {
        // A memory file over the caller's bytes with no growth only ever reads them.
        CMemFile file(const_cast<BYTE*>(data), static_cast<UINT>(size));
        CArchive archive(&file, CArchive::load);
        if (image.ReadFromArchive(archive)) {
            const std::string problem = IndexBeyondTable(image);
            if (problem.empty()) {
                return Success();
            }
            image.SelfDestruct();
            return Failure(problem);
        }
    } catch (...) {
    }
    image.SelfDestruct();
    return Failure("cannot make the image of this BMP: too large or out of memory");
}

void SaveBmpToFile(CFile& file, C_Image& image) {
    CArchive archive(&file, CArchive::store);
    image.WriteToArchive(archive);
    archive.Close();
}

ImageFileResult EmptyImage() {
    return Failure("the image is empty");
}

}  // namespace
}  // namespace io

ImageFileResult LoadBmp(const std::string& path, C_Image& image) {
    std::vector<BYTE> bytes;
    ImageFileResult read = io::ReadWholeFile(path, bytes);
    if (!read.ok) {
        image.SelfDestruct();
        return read;
    }
    return LoadBmpMemory(bytes.data(), bytes.size(), image);
}

ImageFileResult LoadBmpMemory(const BYTE* data, std::size_t size, C_Image& image) {
    if (size > UINT32_MAX) {
        image.SelfDestruct();
        return io::Failure("BMP data larger than 4 GiB");
    }
    return io::LoadBmpBytes(data, size, image);
}

ImageFileResult SaveBmp(const std::string& path, C_Image& image) {
    if (!image.HasImage()) {
        return io::EmptyImage();
    }
    try {
        CFile file;
        CFileException error;
        if (!file.Open(path.c_str(), CFile::modeCreate | CFile::modeWrite | CFile::typeBinary,
                       &error)) {
            return io::Failure(io::OsErrorMessage("create", path, error.m_lOsError));
        }
        io::SaveBmpToFile(file, image);
        file.Close();
        return io::Success();
    } catch (...) {
        return io::Failure(io::DescribeCurrentException("write", path));
    }
}

ImageFileResult SaveBmpMemory(C_Image& image, std::vector<BYTE>& out) {
    if (!image.HasImage()) {
        return io::EmptyImage();
    }
    try {
        // One growth step that holds the whole archive form.
        const std::uint64_t bytes =
            io::kArchiveHeaderBytes + 4 * std::uint64_t{image.NColors()} + image.NBytesImage();
        CMemFile file(static_cast<UINT>(std::min<std::uint64_t>(bytes, UINT32_MAX)));
        io::SaveBmpToFile(file, image);
        const BYTE* data = file.Data();
        out.assign(data, data + file.GetLength());
        return io::Success();
    } catch (...) {
        return io::Failure(io::DescribeCurrentException("write", "BMP data"));
    }
}

}  // namespace vistrane
