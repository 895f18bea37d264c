#include <vistrane/platform/archive.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace {

constexpr int kDefaultBufferBytes = 4096;

template <typename Unsigned>
void EncodeLittleEndian(Unsigned value, BYTE* out) {
    for (std::size_t i = 0; i < sizeof(Unsigned); ++i) {
        out[i] = static_cast<BYTE>(value >> (8 * i));
    }
}

template <typename Unsigned>
Unsigned DecodeLittleEndian(const BYTE* in) {
    Unsigned value = 0;
    for (std::size_t i = 0; i < sizeof(Unsigned); ++i) {
        value = static_cast<Unsigned>(value | static_cast<Unsigned>(in[i]) << (8 * i));
    }
    return value;
}

// The unsigned integer of the same width, through which every value is written byte by byte so
// that the stream is little-endian whatever the host's own order.
template <typename T>
using BitsOf = std::conditional_t<
    sizeof(T) == 1, std::uint8_t,
    std::conditional_t<sizeof(T) == 2, std::uint16_t,
                       std::conditional_t<sizeof(T) == 4, std::uint32_t, std::uint64_t>>>;

template <typename T>
void Store(CArchive& ar, T value) {
    BYTE bytes[sizeof(T)];
    EncodeLittleEndian(std::bit_cast<BitsOf<T>>(value), bytes);
    ar.Write(bytes, sizeof(T));
}

template <typename T>
void Load(CArchive& ar, T& value) {
    BYTE bytes[sizeof(T)];
    ar.Read(bytes, sizeof(T));
    value = std::bit_cast<T>(DecodeLittleEndian<BitsOf<T>>(bytes));
}

}  // namespace

CArchiveException::CArchiveException(int cause, const char* fileName)
    : m_cause(cause), m_strFileName(fileName) {}

CArchiveException::~CArchiveException() = default;

CArchive::CArchive(CFile* file, UINT mode, int bufferSize, void* buffer)
    : m_File(file),
      m_Loading((mode & load) != 0),
      m_FlushOnDelete((mode & bNoFlushOnDelete) == 0),
      m_OwnsBuffer(buffer == nullptr || bufferSize < 1),
      m_Buffer(nullptr),
      m_BufferSize(static_cast<UINT>(bufferSize >= 1 ? bufferSize : kDefaultBufferBytes)) {
    m_Buffer = m_OwnsBuffer ? new BYTE[m_BufferSize] : static_cast<BYTE*>(buffer);
    if (file != nullptr) {
        m_strFileName = file->GetFilePath();
    }
}

CArchive::~CArchive() {
    // A destructor cannot report a failed write; whoever needs to know calls Close first.
    if (m_File != nullptr && !m_Loading && m_FlushOnDelete) {
        try {
            Flush();
        } catch (...) {
        }
    }
    if (m_OwnsBuffer) {
        delete[] m_Buffer;
    }
}

UINT CArchive::Read(void* buffer, UINT count) {
    if (m_File == nullptr) {
        throw CArchiveException(CArchiveException::genericException, m_strFileName);
    }
    if (!m_Loading) {
        throw CArchiveException(CArchiveException::writeOnly, m_strFileName);
    }
    auto* out = static_cast<BYTE*>(buffer);
    UINT done = std::min(count, m_Filled - m_Cursor);
    if (done != 0) {
        std::memcpy(out, m_Buffer + m_Cursor, done);
        m_Cursor += done;
    }
    if (done < count) {
        const UINT remaining = count - done;
        if (remaining >= m_BufferSize) {
            // Nothing is gained by staging a block this large in the read-ahead buffer.
            done += m_File->Read(out + done, remaining);
        } else {
            FillBuffer();
            const UINT take = std::min(remaining, m_Filled);
            if (take != 0) {
                std::memcpy(out + done, m_Buffer, take);
            }
            m_Cursor = take;
            done += take;
        }
    }
    if (done < count) {
        throw CArchiveException(CArchiveException::endOfFile, m_strFileName);
    }
    return count;
}

void CArchive::Write(const void* buffer, UINT count) {
    if (m_File == nullptr) {
        throw CArchiveException(CArchiveException::genericException, m_strFileName);
    }
    if (m_Loading) {
        throw CArchiveException(CArchiveException::readOnly, m_strFileName);
    }
    const auto* in = static_cast<const BYTE*>(buffer);
    const UINT space = m_BufferSize - m_Cursor;
    if (count <= space) {
        if (count != 0) {
            std::memcpy(m_Buffer + m_Cursor, in, count);
            m_Cursor += count;
        }
        return;
    }
    if (count >= m_BufferSize) {
        // A whole image row block goes to the file in one call instead of being copied
        // through the buffer a buffer-load at a time.
        Flush();
        m_File->Write(in, count);
        return;
    }
    std::memcpy(m_Buffer + m_Cursor, in, space);
    m_Cursor = m_BufferSize;
    Flush();
    std::memcpy(m_Buffer, in + space, count - space);
    m_Cursor = count - space;
}

void CArchive::Flush() {
    if (m_File == nullptr) {
        throw CArchiveException(CArchiveException::genericException, m_strFileName);
    }
    if (m_Loading) {
        // Step the file back over the unread read-ahead, so that whoever reads the file next
        // continues exactly where this archive's reader stopped.
        const UINT unread = m_Filled - m_Cursor;
        if (unread != 0) {
            m_File->Seek(-static_cast<LONGLONG>(unread), CFile::current);
        }
        m_Cursor = 0;
        m_Filled = 0;
        return;
    }
    if (m_Cursor != 0) {
        const UINT pending = m_Cursor;
        m_Cursor = 0;
        m_File->Write(m_Buffer, pending);
    }
}

void CArchive::Close() {
    Flush();
    m_File = nullptr;
}

void CArchive::Abort() {
    m_File = nullptr;
    m_Cursor = 0;
    m_Filled = 0;
}

void CArchive::FillBuffer() {
    m_Cursor = 0;
    m_Filled = 0;
    m_Filled = m_File->Read(m_Buffer, m_BufferSize);
}

CArchive& CArchive::operator<<(BYTE v) {
    Store(*this, v);
    return *this;
}
CArchive& CArchive::operator<<(WORD v) {
    Store(*this, v);
    return *this;
}
CArchive& CArchive::operator<<(SHORT v) {
    Store(*this, v);
    return *this;
}
CArchive& CArchive::operator<<(LONG v) {
    Store(*this, v);
    return *this;
}
CArchive& CArchive::operator<<(DWORD v) {
    Store(*this, v);
    return *this;
}
CArchive& CArchive::operator<<(float v) {
    Store(*this, v);
    return *this;
}
CArchive& CArchive::operator<<(double v) {
    Store(*this, v);
    return *this;
}
CArchive& CArchive::operator>>(BYTE& v) {
    Load(*this, v);
    return *this;
}
CArchive& CArchive::operator>>(WORD& v) {
    Load(*this, v);
    return *this;
}
CArchive& CArchive::operator>>(SHORT& v) {
    Load(*this, v);
    return *this;
}
CArchive& CArchive::operator>>(LONG& v) {
    Load(*this, v);
    return *this;
}
CArchive& CArchive::operator>>(DWORD& v) {
    Load(*this, v);
    return *this;
}
CArchive& CArchive::operator>>(float& v) {
    Load(*this, v);
    return *this;
}
CArchive& CArchive::operator>>(double& v) {
    Load(*this, v);
    return *this;
}
