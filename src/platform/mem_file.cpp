#include <vistrane/platform/file.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace {

[[noreturn]] void ThrowNoRoom() {
    throw CFileException(CFileException::diskFull);
}

}  // namespace

CMemFile::CMemFile(UINT growBytes) : m_GrowBytes(growBytes) {}

CMemFile::CMemFile(BYTE* buffer, UINT bufferSize, UINT growBytes) {
    Attach(buffer, bufferSize, growBytes);
}

CMemFile::~CMemFile() {
    FreeOwnedBuffer();
}

void CMemFile::Attach(BYTE* buffer, UINT bufferSize, UINT growBytes) {
    FreeOwnedBuffer();
    m_Buffer = buffer;
    m_BufferSize = buffer != nullptr ? bufferSize : 0;
    // The caller's bytes are the file's contents, so an attached buffer can be read at once.
    m_FileSize = m_BufferSize;
    m_GrowBytes = growBytes;
    m_OwnsBuffer = false;
}

BYTE* CMemFile::Detach() {
    BYTE* buffer = m_Buffer;
    m_Buffer = nullptr;
    m_BufferSize = 0;
    m_FileSize = 0;
    m_Position = 0;
    m_OwnsBuffer = true;
    return buffer;
}

void CMemFile::FreeOwnedBuffer() {
    if (m_OwnsBuffer) {
        std::free(m_Buffer);
    }
    m_Buffer = nullptr;
    m_BufferSize = 0;
    m_FileSize = 0;
    m_Position = 0;
    m_OwnsBuffer = true;
}

void CMemFile::GrowTo(std::size_t bytes) {
    if (bytes <= m_BufferSize) {
        return;
    }
    if (!m_OwnsBuffer && m_GrowBytes == 0) {
        ThrowNoRoom();
    }
    // At least doubling keeps a long run of small writes amortised O(1) per byte; rounding up
    // to the growth step keeps the capacities the caller asked for.
    constexpr std::size_t kMaxBytes = std::numeric_limits<std::size_t>::max();
    std::size_t capacity =
        std::max(bytes, m_BufferSize <= kMaxBytes / 2 ? m_BufferSize * 2 : bytes);
    if (m_GrowBytes != 0) {
        const std::size_t remainder = capacity % m_GrowBytes;
        if (remainder != 0) {
            if (capacity > kMaxBytes - (m_GrowBytes - remainder)) {
                ThrowNoRoom();
            }
            capacity += m_GrowBytes - remainder;
        }
    }
    BYTE* grown = nullptr;
    if (m_OwnsBuffer) {
        grown = static_cast<BYTE*>(std::realloc(m_Buffer, capacity));
    } else {
        // Never realloc the caller's buffer: it is not ours to move or free. Growing turns the
        // file into an owned copy and leaves the caller's bytes as they were.
        grown = static_cast<BYTE*>(std::malloc(capacity));
        if (grown != nullptr && m_FileSize != 0) {
            std::memcpy(grown, m_Buffer, m_FileSize);
        }
    }
    if (grown == nullptr) {
        ThrowNoRoom();
    }
    m_Buffer = grown;
    m_BufferSize = capacity;
    m_OwnsBuffer = true;
}

BOOL CMemFile::Open(const char* fileName, UINT, CFileException* error) {
    if (error != nullptr) {
        error->m_cause = CFileException::genericException;
        error->m_lOsError = 0;
        error->m_strFileName = fileName;
    }
    return 0;
}

UINT CMemFile::Read(void* buffer, UINT count) {
    if (m_Position >= m_FileSize || count == 0) {
        return 0;
    }
    const std::size_t n = std::min<std::size_t>(count, m_FileSize - m_Position);
    std::memcpy(buffer, m_Buffer + m_Position, n);
    m_Position += n;
    return static_cast<UINT>(n);
}

void CMemFile::Write(const void* buffer, UINT count) {
    if (count == 0) {
        return;
    }
    if (m_Position > std::numeric_limits<std::size_t>::max() - count) {
        ThrowNoRoom();
    }
    const std::size_t end = m_Position + count;
    GrowTo(end);
    // A seek past the end leaves a hole, which reads back as zeros.
    if (m_Position > m_FileSize) {
        std::memset(m_Buffer + m_FileSize, 0, m_Position - m_FileSize);
    }
    std::memcpy(m_Buffer + m_Position, buffer, count);
    m_Position = end;
    m_FileSize = std::max(m_FileSize, end);
}

ULONGLONG CMemFile::Seek(LONGLONG offset, UINT from) {
    LONGLONG base = 0;
    switch (from) {
        case begin:
            base = 0;
            break;
        case current:
            base = static_cast<LONGLONG>(m_Position);
            break;
        case end:
            base = static_cast<LONGLONG>(m_FileSize);
            break;
        default:
            throw CFileException(CFileException::badSeek);
    }
    if (offset > 0 && base > std::numeric_limits<LONGLONG>::max() - offset) {
        throw CFileException(CFileException::badSeek);
    }
    const LONGLONG target = base + offset;
    if (target < 0) {
        throw CFileException(CFileException::badSeek);
    }
    m_Position = static_cast<std::size_t>(target);
    return static_cast<ULONGLONG>(target);
}

ULONGLONG CMemFile::GetLength() const {
    return m_FileSize;
}

void CMemFile::SetLength(ULONGLONG newLength) {
    if (newLength > std::numeric_limits<std::size_t>::max()) {
        ThrowNoRoom();
    }
    const auto length = static_cast<std::size_t>(newLength);
    GrowTo(length);
    if (length > m_FileSize) {
        std::memset(m_Buffer + m_FileSize, 0, length - m_FileSize);
    }
    m_FileSize = length;
    m_Position = std::min(m_Position, length);
}

ULONGLONG CMemFile::GetPosition() const {
    return m_Position;
}

void CMemFile::Flush() {}

void CMemFile::Close() {
    FreeOwnedBuffer();
}

void CMemFile::Abort() {
    FreeOwnedBuffer();
}
