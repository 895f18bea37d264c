#include <vistrane/platform/file.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>

namespace {

int CauseFromErrno(int error) {
    switch (error) {
        case ENOENT:
            return CFileException::fileNotFound;
        case ENOTDIR:
        case ENAMETOOLONG:
        case ELOOP:
            return CFileException::badPath;
        case EMFILE:
        case ENFILE:
            return CFileException::tooManyOpenFiles;
        case EACCES:
        case EPERM:
        case EROFS:
        case EISDIR:
            return CFileException::accessDenied;
        case EBADF:
            return CFileException::invalidFile;
        case EBUSY:
        case ETXTBSY:
            return CFileException::sharingViolation;
        case ENOSPC:
        case EDQUOT:
        case EFBIG:
            return CFileException::diskFull;
        case EIO:
            return CFileException::hardIO;
        case ESPIPE:
            return CFileException::badSeek;
        default:
            return CFileException::genericException;
    }
}

[[noreturn]] void ThrowErrno(int error, const CString& fileName) {
    throw CFileException(CauseFromErrno(error), error, fileName);
}

int OpenFlagsFor(UINT openFlags) {
    int flags = O_CLOEXEC;
    if ((openFlags & CFile::modeReadWrite) != 0) {
        flags |= O_RDWR;
    } else if ((openFlags & CFile::modeWrite) != 0) {
        flags |= O_WRONLY;
    } else {
        flags |= O_RDONLY;
    }
    if ((openFlags & CFile::modeCreate) != 0) {
        flags |= O_CREAT;
        if ((openFlags & CFile::modeNoTruncate) == 0) {
            flags |= O_TRUNC;
        }
    }
    return flags;
}

}  // namespace

CException::~CException() = default;

CFileException::CFileException(int cause, LONG osError, const char* fileName)
    : m_cause(cause), m_lOsError(osError), m_strFileName(fileName) {}

CFileException::~CFileException() = default;

CFile::CFile() = default;

CFile::CFile(const char* fileName, UINT openFlags) {
    CFileException error;
    if (!CFile::Open(fileName, openFlags, &error)) {
        throw error;
    }
}

CFile::~CFile() {
    if (m_Fd >= 0) {
        close(m_Fd);
    }
}

BOOL CFile::Open(const char* fileName, UINT openFlags, CFileException* error) {
    int cause = CFileException::none;
    int osError = 0;
    if (fileName == nullptr || *fileName == '\0') {
        cause = CFileException::badPath;
    } else if (m_Fd >= 0) {
        cause = CFileException::genericException;
    } else {
        const int fd = open(fileName, OpenFlagsFor(openFlags), 0666);
        if (fd >= 0) {
            m_Fd = fd;
            m_FilePath = fileName;
            return 1;
        }
        osError = errno;
        cause = CauseFromErrno(osError);
    }
    if (error != nullptr) {
        error->m_cause = cause;
        error->m_lOsError = osError;
        error->m_strFileName = fileName;
    }
    return 0;
}

UINT CFile::Read(void* buffer, UINT count) {
    // A regular file returns short reads only at its end, but a pipe or a signal may cut a read
    // short anywhere; keep reading so that a short result always means the end of the data.
    auto* bytes = static_cast<std::byte*>(buffer);
    std::size_t done = 0;
    while (done < count) {
        const ssize_t got = read(m_Fd, bytes + done, count - done);
        if (got == 0) {
            break;
        }
        if (got < 0) {
            if (errno == EINTR) {
                continue;
            }
            ThrowErrno(errno, m_FilePath);
        }
        done += static_cast<std::size_t>(got);
    }
    return static_cast<UINT>(done);
}

void CFile::Write(const void* buffer, UINT count) {
    const auto* bytes = static_cast<const std::byte*>(buffer);
    std::size_t done = 0;
    while (done < count) {
        const ssize_t put = write(m_Fd, bytes + done, count - done);
        if (put < 0) {
            if (errno == EINTR) {
                continue;
            }
            ThrowErrno(errno, m_FilePath);
        }
        if (put == 0) {
            throw CFileException(CFileException::diskFull, 0, m_FilePath);
        }
        done += static_cast<std::size_t>(put);
    }
}

ULONGLONG CFile::Seek(LONGLONG offset, UINT from) {
    int whence = SEEK_SET;
    switch (from) {
        case begin:
            whence = SEEK_SET;
            break;
        case current:
            whence = SEEK_CUR;
            break;
        case end:
            whence = SEEK_END;
            break;
        default:
            throw CFileException(CFileException::badSeek, EINVAL, m_FilePath);
    }
    const off_t position = lseek(m_Fd, static_cast<off_t>(offset), whence);
    if (position < 0) {
        // lseek reports a target before the start as EINVAL; either way it is a bad seek.
        throw CFileException(CFileException::badSeek, errno, m_FilePath);
    }
    return static_cast<ULONGLONG>(position);
}

ULONGLONG CFile::GetLength() const {
    struct stat status {};
    if (fstat(m_Fd, &status) != 0) {
        ThrowErrno(errno, m_FilePath);
    }
    return static_cast<ULONGLONG>(status.st_size);
}

void CFile::SetLength(ULONGLONG newLength) {
    if (ftruncate(m_Fd, static_cast<off_t>(newLength)) != 0) {
        ThrowErrno(errno, m_FilePath);
    }
}

ULONGLONG CFile::GetPosition() const {
    const off_t position = lseek(m_Fd, 0, SEEK_CUR);
    if (position < 0) {
        ThrowErrno(errno, m_FilePath);
    }
    return static_cast<ULONGLONG>(position);
}

void CFile::Flush() {
    // EINVAL: the descriptor (a pipe, a character device) has nothing to synchronise.
    if (m_Fd >= 0 && fsync(m_Fd) != 0 && errno != EINVAL) {
        ThrowErrno(errno, m_FilePath);
    }
}

void CFile::Close() {
    if (m_Fd < 0) {
        return;
    }
    const int fd = m_Fd;
    const CString path = m_FilePath;
    m_Fd = -1;
    m_FilePath.Empty();
    // The descriptor is gone even when close fails, so it is never closed twice.
    if (close(fd) != 0) {
        ThrowErrno(errno, path);
    }
}

void CFile::Abort() {
    if (m_Fd >= 0) {
        close(m_Fd);
        m_Fd = -1;
    }
    m_FilePath.Empty();
}

void CFile::Remove(const char* fileName) {
    if (fileName == nullptr) {
        throw CFileException(CFileException::badPath);
    }
    if (unlink(fileName) != 0) {
        throw CFileException(CauseFromErrno(errno), errno, fileName);
    }
}
