#include <vistrane/platform/text.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <utility>

CString::CString(const char* text) : m_Text(text != nullptr ? text : "") {}

CString::CString(const std::string& text) : m_Text(text) {}

CString& CString::operator=(const char* text) {
    m_Text = text != nullptr ? text : "";
    return *this;
}

CString& CString::operator+=(const CString& other) {
    m_Text += other.m_Text;
    return *this;
}

CString& CString::operator+=(const char* text) {
    if (text != nullptr) {
        m_Text += text;
    }
    return *this;
}

void CString::Format(const char* format, ...) {
    va_list args;
    va_start(args, format);
    va_list measureArgs;
    va_copy(measureArgs, args);
    const int length = std::vsnprintf(nullptr, 0, format, measureArgs);
    va_end(measureArgs);
    if (length < 0) {
        m_Text.clear();
    } else {
        // vsnprintf writes a terminator, so format into one byte more than the text needs.
        std::string text(static_cast<size_t>(length) + 1, '\0');
        std::vsnprintf(text.data(), text.size(), format, args);
        text.resize(static_cast<size_t>(length));
        m_Text = std::move(text);
    }
    va_end(args);
}

int CString::Find(char c, int start) const {
    if (start < 0 || start >= GetLength()) {
        return -1;
    }
    const size_t found = m_Text.find(c, static_cast<size_t>(start));
    return found == std::string::npos ? -1 : static_cast<int>(found);
}

CString CString::Left(int n) const {
    return CString(m_Text.substr(0, static_cast<size_t>(std::clamp(n, 0, GetLength()))));
}

CString CString::Mid(int first, int n) const {
    const int begin = std::clamp(first, 0, GetLength());
    const int available = GetLength() - begin;
    const int count = n < 0 ? available : std::min(n, available);
    return CString(m_Text.substr(static_cast<size_t>(begin), static_cast<size_t>(count)));
}
