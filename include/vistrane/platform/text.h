#pragma once

// CString: a small owned character string with the members the engine and its tools use.

#include <string>

#include <vistrane/export.h>
#include <vistrane/platform/types.h>

class VISTRANE_API CString {
  public:
    CString() = default;
    CString(const char* text);         // NOLINT(google-explicit-constructor)
    CString(const std::string& text);  // NOLINT(google-explicit-constructor)

    int GetLength() const { return static_cast<int>(m_Text.size()); }
    bool IsEmpty() const { return m_Text.empty(); }
    void Empty() { m_Text.clear(); }
    operator const char*() const { return m_Text.c_str(); }  // NOLINT
    const std::string& Str() const { return m_Text; }
    char GetAt(int i) const { return m_Text[static_cast<size_t>(i)]; }

    CString& operator=(const char* text);
    CString& operator+=(const CString& other);
    CString& operator+=(const char* text);
    bool operator==(const CString& other) const { return m_Text == other.m_Text; }
    bool operator!=(const CString& other) const { return m_Text != other.m_Text; }

    // printf-style formatting; replaces the contents.
    void Format(const char* format, ...) __attribute__((format(printf, 2, 3)));
    int Find(char c, int start = 0) const;  // -1 when absent
    CString Left(int n) const;
    CString Mid(int first, int n = -1) const;

  private:
    std::string m_Text;
};

inline CString operator+(CString a, const CString& b) {
    return a += b;
}
