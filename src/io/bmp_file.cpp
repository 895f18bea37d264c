// BMP files. Writing is the engine's archive form and nothing else. Reading checks every header
// field and length against the file's real size before anything is allocated or copied, so a
// lying header gives a reason instead of a short read, and then hands the bytes to the engine
// in the form it already reads: the archive when the file is exactly what WriteToArchive makes,
// a packed bitmap (CreateFromhDib) for the other uncompressed layouts.

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>

#include <vistrane/image/image.h>
#include <vistrane/io/image_file.h>
#include <vistrane/platform/archive.h>
#include <vistrane/platform/file.h>
#include <vistrane/platform/memory.h>

#include "io/image_file_p.h"

namespace vistrane {
namespace io {
namespace {

constexpr std::uint64_t kFileHeaderBytes = sizeof(BITMAPFILEHEADER);
constexpr std::uint64_t kInfoHeaderBytes = sizeof(BITMAPINFOHEADER);
// The archive form: file header, 40-byte info header, colour table, pixels.
constexpr std::uint64_t kArchiveHeaderBytes = kFileHeaderBytes + kInfoHeaderBytes;
// CFile moves at most a UINT per call.
constexpr std::uint64_t kChunkBytes = std::uint64_t{1} << 30;

// What the headers say, once checked against the file's length.
struct BmpLayout {
    BITMAPFILEHEADER file;
    BITMAPINFOHEADER info;  // the first 40 bytes of a 40-, 108- or 124-byte header
    LONG width;
    LONG rows;
    bool topDown;
    DWORD colors;        // colour-table entries the image gets
    DWORD tableEntries;  // entries a packed bitmap of this depth reserves
    std::uint64_t rowBytes;
    std::uint64_t pixelBytes;
    bool archiveForm;
};

std::string Number(std::uint64_t n) {
    return std::to_string(n);
}

const char* CompressionName(DWORD compression) {
    switch (compression) {
        case 1:
            return "RLE8";
        case 2:
            return "RLE4";
        case 3:
            return "bit-field";
        case 4:
            return "JPEG";
        case 5:
            return "PNG";
        case 6:
            return "alpha bit-field";
        default:
            return "unknown";
    }
}

std::string TooLarge(const BmpLayout& layout) {
    return "cannot make a " + Number(static_cast<std::uint64_t>(layout.width)) + " x " +
           Number(static_cast<std::uint64_t>(layout.rows)) + " image of " +
           Number(layout.info.biBitCount) + " bits: too large or out of memory";
}

// A short read after the lengths were checked means the file changed under us.
void ReadFully(CFile& file, BYTE* destination, std::uint64_t count) {
    while (count > 0) {
        const UINT want = static_cast<UINT>(std::min(count, kChunkBytes));
        const UINT got = file.Read(destination, want);
        if (got == 0) {
            throw CArchiveException(CArchiveException::endOfFile);
        }
        destination += got;
        count -= got;
    }
}

ImageFileResult ParseHeaders(CFile& file, std::uint64_t length, BmpLayout& layout) {
    BYTE head[kArchiveHeaderBytes] = {};
    const UINT headBytes = file.Read(head, sizeof head);
    if (headBytes < 2 || head[0] != 'B' || head[1] != 'M') {
        return Failure("not a BMP file");
    }
    if (length < kArchiveHeaderBytes) {
        return Failure("truncated BMP: the file is " + Number(length) +
                       " bytes, shorter than the 54-byte header");
    }
    std::memcpy(&layout.file, head, kFileHeaderBytes);
    std::memcpy(&layout.info, head + kFileHeaderBytes, kInfoHeaderBytes);
    const BITMAPINFOHEADER& info = layout.info;

    const DWORD headerSize = info.biSize;
    if (headerSize != 40 && headerSize != 108 && headerSize != 124) {
        return Failure("unsupported BMP: " + Number(headerSize) +
                       "-byte info header (40, 108 and 124 are read)");
    }
    const std::uint64_t tableOffset = kFileHeaderBytes + headerSize;
    if (length < tableOffset) {
        return Failure("truncated BMP: the file is " + Number(length) +
                       " bytes, shorter than its " + Number(tableOffset) + "-byte header");
    }
    if (info.biPlanes != 1) {
        return Failure("corrupt BMP: " + Number(info.biPlanes) + " planes (must be 1)");
    }
    const WORD bits = info.biBitCount;
    if (bits != 1 && bits != 4 && bits != 8 && bits != 24) {
        return Failure("unsupported BMP: " + Number(bits) + " bits per pixel");
    }
    if (info.biCompression != BI_RGB) {
        return Failure(std::string("unsupported BMP: ") + CompressionName(info.biCompression) +
                       " compression");
    }
    if (info.biWidth <= 0) {
        return Failure("corrupt BMP: width " + std::to_string(info.biWidth));
    }
    if (info.biHeight == 0 || info.biHeight == INT32_MIN) {
        return Failure("corrupt BMP: height " + std::to_string(info.biHeight));
    }
    layout.width = info.biWidth;
    layout.topDown = info.biHeight < 0;
    layout.rows = layout.topDown ? -info.biHeight : info.biHeight;

    const DWORD offset = layout.file.bfOffBits;
    const DWORD used = info.biClrUsed;
    // The archive reader takes an 8-bit colour count as written (0 meaning no table) and looks
    // for the table right after the 40-byte header and the pixels right after the table.
    layout.archiveForm =
        headerSize == kInfoHeaderBytes && !layout.topDown &&
        ((bits == 8 && used <= 256 && offset == kArchiveHeaderBytes + 4 * std::uint64_t{used}) ||
         (bits == 24 && used == 0 && offset == kArchiveHeaderBytes));
    if (bits <= 8) {
        layout.tableEntries = DWORD{1} << bits;
        if (used > layout.tableEntries) {
            return Failure("corrupt BMP: " + Number(used) + " colours for " + Number(bits) +
                           " bits per pixel (at most " + Number(layout.tableEntries) + ")");
        }
        layout.colors = layout.archiveForm || used != 0 ? used : layout.tableEntries;
    } else {
        layout.tableEntries = 0;
        layout.colors = 0;
    }

    const std::uint64_t tableEnd = tableOffset + 4 * std::uint64_t{layout.colors};
    if (!layout.archiveForm) {
        if (offset < tableEnd) {
            return Failure("corrupt BMP: pixels start at byte " + Number(offset) +
                           ", inside the header or colour table that ends at byte " +
                           Number(tableEnd));
        }
        if (length < tableEnd) {
            return Failure("truncated BMP: expected " + Number(tableEnd - tableOffset) +
                           " bytes of colour table, found " + Number(length - tableOffset));
        }
    }

    // 64-bit throughout: a width near 2^31 at 24 bits still fits.
    layout.rowBytes = (static_cast<std::uint64_t>(layout.width) * bits + 31) / 32 * 4;
    layout.pixelBytes = layout.rowBytes * static_cast<std::uint64_t>(layout.rows);
    const std::uint64_t available = length > offset ? length - offset : 0;
    if (layout.pixelBytes > available) {
        return Failure("truncated BMP: expected " + Number(layout.pixelBytes) +
                       " bytes of pixels, found " + Number(available));
    }
    // The engine's header and size fields are 32-bit.
    if (layout.pixelBytes > UINT32_MAX - kInfoHeaderBytes - COLOR_TABLE_BYTES) {
        return Failure(TooLarge(layout));
    }
    return Success();
}

// Frees a global block on every way out.
class OwnedGlobal {
  public:
    explicit OwnedGlobal(HGLOBAL handle) : m_Handle(handle) {}
    ~OwnedGlobal() { GlobalFree(m_Handle); }
    OwnedGlobal(const OwnedGlobal&) = delete;
    OwnedGlobal& operator=(const OwnedGlobal&) = delete;
    HGLOBAL Get() const { return m_Handle; }

  private:
    HGLOBAL m_Handle;
};

ImageFileResult LoadThroughArchive(CFile& file, const BmpLayout& layout, C_Image& image) {
    file.SeekToBegin();
    CArchive archive(&file, CArchive::load);
    if (!image.ReadFromArchive(archive)) {
        image.SelfDestruct();
        return Failure(TooLarge(layout));
    }
    return Success();
}

ImageFileResult LoadThroughPackedBitmap(CFile& file, const BmpLayout& layout, C_Image& image) {
    const std::uint64_t tableBytes = 4 * std::uint64_t{layout.tableEntries};
    OwnedGlobal handle(GlobalAlloc(GHND, kInfoHeaderBytes + tableBytes + layout.pixelBytes));
    if (handle.Get() == nullptr) {
        image.SelfDestruct();
        return Failure(TooLarge(layout));
    }
    auto* block = static_cast<BYTE*>(GlobalLock(handle.Get()));

    BITMAPINFOHEADER header = layout.info;
    header.biSize = kInfoHeaderBytes;
    header.biHeight = layout.rows;
    header.biSizeImage = static_cast<DWORD>(layout.pixelBytes);
    header.biClrUsed = layout.colors;
    header.biClrImportant = 0;
    std::memcpy(block, &header, sizeof header);

    file.Seek(static_cast<LONGLONG>(kFileHeaderBytes + layout.info.biSize), CFile::begin);
    ReadFully(file, block + kInfoHeaderBytes, 4 * std::uint64_t{layout.colors});

    BYTE* pixels = block + kInfoHeaderBytes + tableBytes;
    file.Seek(layout.file.bfOffBits, CFile::begin);
    if (layout.topDown) {
        for (LONG row = layout.rows - 1; row >= 0; --row) {
            ReadFully(file, pixels + static_cast<std::uint64_t>(row) * layout.rowBytes,
                      layout.rowBytes);
        }
    } else {
        ReadFully(file, pixels, layout.pixelBytes);
    }
    GlobalUnlock(handle.Get());

    if (!image.CreateFromhDib(handle.Get())) {
        image.SelfDestruct();
        return Failure(TooLarge(layout));
    }
    // A packed bitmap always brings the full table of its depth; keep only the file's colours.
    // Indices past them are clamped so that every pixel names a colour the image has.
    if (layout.colors < layout.tableEntries) {
        RGBQUAD kept[256];
        std::memcpy(kept, image.RGBQs(), 4 * std::size_t{layout.colors});
        image.SetRGBQs(kept, layout.colors, 1);
    }
    return Success();
}

ImageFileResult LoadBmpFromFile(CFile& file, const std::string& name, C_Image& image) {
    try {
        BmpLayout layout{};
        ImageFileResult parsed = ParseHeaders(file, file.GetLength(), layout);
        if (!parsed.ok) {
            image.SelfDestruct();
            return parsed;
        }
        return layout.archiveForm ? LoadThroughArchive(file, layout, image)
                                  : LoadThroughPackedBitmap(file, layout, image);
    } catch (...) {
        image.SelfDestruct();
        return Failure(DescribeCurrentException("read", name));
    }
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
    CFile file;
    CFileException error;
    if (!file.Open(path.c_str(), CFile::modeRead | CFile::typeBinary, &error)) {
        image.SelfDestruct();
        return io::Failure(io::OsErrorMessage("open", path, error.m_lOsError));
    }
    return io::LoadBmpFromFile(file, path, image);
}

ImageFileResult LoadBmpMemory(const BYTE* data, std::size_t size, C_Image& image) {
    if (size > UINT32_MAX) {
        image.SelfDestruct();
        return io::Failure("BMP data larger than 4 GiB");
    }
    // A memory file over the caller's bytes with no growth only ever reads them.
    CMemFile file(const_cast<BYTE*>(data), static_cast<UINT>(size));
    return io::LoadBmpFromFile(file, "BMP data", image);
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
