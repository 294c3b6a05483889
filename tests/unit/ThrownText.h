#pragma once
// The composed failure text that a call throws; records a test failure when it throws nothing.
#include <gtest/gtest.h>

#include <cwchar>
#include <string>

namespace TestSupport {

template <class Call> std::wstring ThrownText(Call&& call) {
    try {
        call();
    } catch (const std::wstring& text) {
        return text;
    }
    ADD_FAILURE() << "nothing was thrown";
    return std::wstring();
}

// The line number that follows "File: \"<file>\"\r\nLine: " in a failure text (0 when absent).
inline unsigned long LineOf(const std::wstring& text, const std::wstring& file) {
    const std::wstring key = L"File: \"" + file + L"\"\r\nLine: ";
    const size_t at = text.find(key);
    return at == std::wstring::npos ? 0 : std::wcstoul(text.c_str() + at + key.size(), nullptr, 10);
}

inline bool EndsWith(const std::wstring& text, const std::wstring& tail) {
    return text.size() >= tail.size() && text.compare(text.size() - tail.size(), tail.size(), tail) == 0;
}

} // namespace TestSupport
