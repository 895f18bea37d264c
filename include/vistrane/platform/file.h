#pragma once

// CFile (a POSIX file), CMemFile (a file in memory) and the exceptions they throw. Files throw
// CFileException on a failed write, seek or flush; Read returns fewer bytes at the end of the
// file. These exceptions never leave the library: the engine catches them and returns 0.

#include <cstdint>

#include <vistrane/export.h>
#include <vistrane/platform/object.h>
#include <vistrane/platform/text.h>

using ULONGLONG = std::uint64_t;
using LONGLONG = std::int64_t;

class VISTRANE_API CException : public CObject {
  public:
    ~CException() override;
};

class VISTRANE_API CFileException : public CException {
  public:
    enum {
        none = 0,
        genericException = 1,
        fileNotFound = 2,
        badPath = 3,
        tooManyOpenFiles = 4,
        accessDenied = 5,
        invalidFile = 6,
        removeCurrentDir = 7,
        directoryFull = 8,
        badSeek = 9,
        hardIO = 10,
        sharingViolation = 11,
        lockViolation = 12,
        diskFull = 13,
        endOfFile = 14,
    };

    explicit CFileException(int cause = none, LONG osError = 0, const char* fileName = nullptr);
    ~CFileException() override;

    int m_cause;
    LONG m_lOsError;  // errno of the failed call, 0 when none
    CString m_strFileName;
};

class VISTRANE_API CFile : public CObject {
  public:
    enum OpenFlags : UINT {
        modeRead = 0x0000,
        modeWrite = 0x0001,
        modeReadWrite = 0x0002,
        shareDenyNone = 0x0040,
        modeCreate = 0x1000,  // create, or truncate an existing file unless modeNoTruncate
        modeNoTruncate = 0x2000,
        typeBinary = 0x8000,
    };
    enum SeekPosition : UINT { begin = 0, current = 1, end = 2 };

    CFile();
    // Opens the file or throws CFileException.
    CFile(const char* fileName, UINT openFlags);
    ~CFile() override;
    CFile(const CFile&) = delete;
    CFile& operator=(const CFile&) = delete;

    // Opens the file; on failure returns 0 and, when given, fills *error.
    virtual BOOL Open(const char* fileName, UINT openFlags, CFileException* error = nullptr);
    // Reads up to count bytes; returns how many were read (0 at the end of the file).
    virtual UINT Read(void* buffer, UINT count);
    virtual void Write(const void* buffer, UINT count);
    // Moves to offset from `from` and returns the new position; throws badSeek before the start.
    virtual ULONGLONG Seek(LONGLONG offset, UINT from);
    void SeekToBegin() { Seek(0, begin); }
    ULONGLONG SeekToEnd() { return Seek(0, end); }
    virtual ULONGLONG GetLength() const;
    virtual void SetLength(ULONGLONG newLength);
    virtual ULONGLONG GetPosition() const;
    virtual void Flush();
    // Closes the file; throws when closing reports an error.
    virtual void Close();
    // Closes without throwing.
    virtual void Abort();
    const CString& GetFilePath() const { return m_FilePath; }

    // Deletes a named file or throws CFileException.
    static void Remove(const char* fileName);

  protected:
    int m_Fd = -1;
    CString m_FilePath;
};

// A file held in memory. The default form owns a buffer that grows in steps of `growBytes`;
// the attached form works over the caller's buffer, which it never frees, and grows only when
// growBytes is non-zero (a write past a fixed buffer's end throws diskFull).
class VISTRANE_API CMemFile : public CFile {
  public:
    explicit CMemFile(UINT growBytes = 1024);
    CMemFile(BYTE* buffer, UINT bufferSize, UINT growBytes = 0);
    ~CMemFile() override;

    void Attach(BYTE* buffer, UINT bufferSize, UINT growBytes = 0);
    // Hands the buffer to the caller (who frees it with free() when the file owned it) and
    // leaves the file empty.
    BYTE* Detach();

    BOOL Open(const char* fileName, UINT openFlags, CFileException* error = nullptr) override;
    UINT Read(void* buffer, UINT count) override;
    void Write(const void* buffer, UINT count) override;
    ULONGLONG Seek(LONGLONG offset, UINT from) override;
    ULONGLONG GetLength() const override;
    void SetLength(ULONGLONG newLength) override;
    ULONGLONG GetPosition() const override;
    void Flush() override;
    void Close() override;
    void Abort() override;

    // The bytes written so far, valid until the next write.
    const BYTE* Data() const { return m_Buffer; }

  private:
    void GrowTo(std::size_t bytes);
    void FreeOwnedBuffer();

    BYTE* m_Buffer = nullptr;
    std::size_t m_BufferSize = 0;  // capacity
    std::size_t m_FileSize = 0;
    std::size_t m_Position = 0;
    UINT m_GrowBytes = 1024;
    bool m_OwnsBuffer = true;
};
