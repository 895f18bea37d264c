#pragma once

// CArchive: a buffered, one-directional byte stream over a CFile, for storing or loading
// serialisable objects. Numbers are written little-endian. Read throws CArchiveException
// (endOfFile) when fewer bytes than asked remain, so a truncated stream cannot be mistaken for
// a whole one.

#include <vistrane/export.h>
#include <vistrane/platform/file.h>

class VISTRANE_API CArchiveException : public CException {
  public:
    enum {
        none = 0,
        genericException = 1,
        readOnly = 2,
        endOfFile = 3,
        writeOnly = 4,
        badIndex = 5,
        badClass = 6,
        badSchema = 7,
    };

    explicit CArchiveException(int cause = none, const char* fileName = nullptr);
    ~CArchiveException() override;

    int m_cause;
    CString m_strFileName;
};

class VISTRANE_API CArchive {
  public:
    enum Mode : UINT { store = 0, load = 1, bNoFlushOnDelete = 2 };

    CArchive(CFile* file, UINT mode, int bufferSize = 4096, void* buffer = nullptr);
    // Flushes a storing archive unless bNoFlushOnDelete was given.
    ~CArchive();
    CArchive(const CArchive&) = delete;
    CArchive& operator=(const CArchive&) = delete;

    BOOL IsLoading() const { return m_Loading; }
    BOOL IsStoring() const { return !m_Loading; }
    CFile* GetFile() const { return m_File; }

    // Reads exactly count bytes or throws CArchiveException(endOfFile); a storing archive
    // throws writeOnly.
    UINT Read(void* buffer, UINT count);
    // A loading archive throws readOnly.
    void Write(const void* buffer, UINT count);
    // Writes out what is buffered (storing) or forgets the read-ahead (loading).
    void Flush();
    // Flushes and detaches from the file.
    void Close();
    // Detaches without flushing.
    void Abort();

    CArchive& operator<<(BYTE v);
    CArchive& operator<<(WORD v);
    CArchive& operator<<(SHORT v);
    CArchive& operator<<(LONG v);
    CArchive& operator<<(DWORD v);
    CArchive& operator<<(float v);
    CArchive& operator<<(double v);
    CArchive& operator>>(BYTE& v);
    CArchive& operator>>(WORD& v);
    CArchive& operator>>(SHORT& v);
    CArchive& operator>>(LONG& v);
    CArchive& operator>>(DWORD& v);
    CArchive& operator>>(float& v);
    CArchive& operator>>(double& v);

    CString m_strFileName;

  private:
    void FillBuffer();

    CFile* m_File;
    bool m_Loading;
    bool m_FlushOnDelete;
    bool m_OwnsBuffer;
    BYTE* m_Buffer;
    UINT m_BufferSize;
    UINT m_Cursor = 0;  // next byte to read or write in the buffer
    UINT m_Filled = 0;  // bytes of read-ahead in the buffer
};
