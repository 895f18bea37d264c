#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

#include <vistrane/image/image.h>
#include <vistrane/platform/archive.h>
#include <vistrane/platform/file.h>

#include "io/image_file_p.h"

namespace vistrane {
namespace io {

namespace {

// CFile moves at most a UINT per call; large files go in pieces of this size.
constexpr std::size_t kChunkBytes = std::size_t{1} << 30;

std::string LowerExtension(const std::string& path) {
    const std::size_t slash = path.find_last_of('/');
    const std::size_t dot = path.find_last_of('.');
    if (dot == std::string::npos || (slash != std::string::npos && dot < slash)) {
        return {};
    }
    std::string extension = path.substr(dot);
    for (char& c : extension) {
        if (c >= 'A' && c <= 'Z') {
            c = static_cast<char>(c - 'A' + 'a');
        }
    }
    return extension;
}

}  // namespace

ImageFileResult Success() {
    ImageFileResult result;
    result.ok = true;
    return result;
}

ImageFileResult Failure(std::string reason) {
    ImageFileResult result;
    result.error = std::move(reason);
    return result;
}

std::string OsErrorMessage(const char* verb, const std::string& path, int osError) {
    std::string message = std::string("cannot ") + verb + " '" + path + "'";
    if (osError != 0) {
        message += ": ";
        message += std::strerror(osError);
    }
    return message;
}

std::string DescribeCurrentException(const char* verb, const std::string& path) {
    try {
        throw;
    } catch (const CFileException& e) {
        if (e.m_lOsError != 0) {
            return OsErrorMessage(verb, path, e.m_lOsError);
        }
        if (e.m_cause == CFileException::diskFull) {
            return OsErrorMessage(verb, path, ENOSPC);
        }
        return OsErrorMessage(verb, path, 0) + ": file error " + std::to_string(e.m_cause);
    } catch (const CArchiveException& e) {
        if (e.m_cause == CArchiveException::endOfFile) {
            return OsErrorMessage(verb, path, 0) + ": the file ended early";
        }
        return OsErrorMessage(verb, path, 0) + ": archive error " + std::to_string(e.m_cause);
    } catch (const std::bad_alloc&) {
        return OsErrorMessage(verb, path, 0) + ": out of memory";
    } catch (...) {
        return OsErrorMessage(verb, path, 0) + ": unexpected error";
    }
}

ImageFileResult ReadWholeFile(const std::string& path, std::vector<BYTE>& bytes) {
    try {
        CFile file;
        CFileException error;
        if (!file.Open(path.c_str(), CFile::modeRead | CFile::typeBinary, &error)) {
            return Failure(OsErrorMessage("open", path, error.m_lOsError));
        }
        const ULONGLONG length = file.GetLength();
        if (length > std::numeric_limits<std::size_t>::max() / 2) {
            return Failure(OsErrorMessage("read", path, EFBIG));
        }
        bytes.resize(static_cast<std::size_t>(length));
        std::size_t done = 0;
        while (done < bytes.size()) {
            const std::size_t want = std::min(bytes.size() - done, kChunkBytes);
            const UINT got = file.Read(bytes.data() + done, static_cast<UINT>(want));
            if (got == 0) {
                break;
            }
            done += got;
        }
        // A file that shrank while it was read is taken as it now is.
        bytes.resize(done);
        file.Close();
        return Success();
    } catch (...) {
        return Failure(DescribeCurrentException("read", path));
    }
}

ImageFileResult WriteWholeFile(const std::string& path, const std::vector<BYTE>& bytes) {
    try {
        CFile file;
        CFileException error;
        if (!file.Open(path.c_str(), CFile::modeCreate | CFile::modeWrite | CFile::typeBinary,
                       &error)) {
            return Failure(OsErrorMessage("create", path, error.m_lOsError));
        }
        for (std::size_t done = 0; done < bytes.size();) {
            const std::size_t count = std::min(bytes.size() - done, kChunkBytes);
            file.Write(bytes.data() + done, static_cast<UINT>(count));
            done += count;
        }
        file.Close();
        return Success();
    } catch (...) {
        return Failure(DescribeCurrentException("write", path));
    }
}

}  // namespace io

ImageFileFormat ImageFileFormatFromPath(const std::string& path) {
    const std::string extension = io::LowerExtension(path);
    if (extension == ".bmp") {
        return ImageFileFormat::Bmp;
    }
    if (extension == ".png") {
        return ImageFileFormat::Png;
    }
    return ImageFileFormat::Unknown;
}

ImageFileFormat ImageFileFormatFromBytes(const BYTE* data, std::size_t size) {
    static constexpr BYTE kPngSignature[8] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    if (data != nullptr && size >= sizeof kPngSignature &&
        std::memcmp(data, kPngSignature, sizeof kPngSignature) == 0) {
        return ImageFileFormat::Png;
    }
    if (data != nullptr && size >= 2 && data[0] == 'B' && data[1] == 'M') {
        return ImageFileFormat::Bmp;
    }
    return ImageFileFormat::Unknown;
}

ImageFileResult LoadImageFile(const std::string& path, C_Image& image) {
    BYTE signature[8] = {};
    std::size_t signatureBytes = 0;
    try {
        CFile file;
        CFileException error;
        if (!file.Open(path.c_str(), CFile::modeRead | CFile::typeBinary, &error)) {
            image.SelfDestruct();
            return io::Failure(io::OsErrorMessage("open", path, error.m_lOsError));
        }
        signatureBytes = file.Read(signature, sizeof signature);
        file.Close();
    } catch (...) {
        image.SelfDestruct();
        return io::Failure(io::DescribeCurrentException("read", path));
    }
    switch (ImageFileFormatFromBytes(signature, signatureBytes)) {
        case ImageFileFormat::Bmp:
            return LoadBmp(path, image);
        case ImageFileFormat::Png:
            return LoadPng(path, image);
        case ImageFileFormat::Unknown:
            break;
    }
    image.SelfDestruct();
    return io::Failure("'" + path + "' is neither a BMP nor a PNG file");
}

ImageFileResult SaveImageFile(const std::string& path, C_Image& image) {
    switch (ImageFileFormatFromPath(path)) {
        case ImageFileFormat::Bmp:
            return SaveBmp(path, image);
        case ImageFileFormat::Png:
            return SavePng(path, image);
        case ImageFileFormat::Unknown:
            break;
    }
    return io::Failure("cannot tell the format of '" + path + "': name it .bmp or .png");
}

}  // namespace vistrane
