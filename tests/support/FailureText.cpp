#include "FailureText.h"

#include <windows.h>

#include <cwctype>

namespace TestSupport {

int ReportedLine(const std::wstring& text) {
    const std::wstring label = L"\r\nLine: ";
    const size_t at = text.find(label);
    if (at == std::wstring::npos)
        return -1;
    size_t end = at + label.size();
    int line = 0;
    bool any = false;
    for (; end < text.size() && std::iswdigit(text[end]); ++end, any = true)
        line = line * 10 + (text[end] - L'0');
    return any ? line : -1;
}

std::wstring ExpectedFailure(const std::string& signature, const std::string& file, int line,
                             const std::wstring& message, int lastError) {
    std::wstring text = L"Ошибка в функции \"" + std::wstring(signature.begin(), signature.end()) +
                        L"\"!\r\nFile: \"" + std::wstring(file.begin(), file.end()) + L"\"\r\nLine: " +
                        std::to_wstring(line) + L"\r\n";
    if (lastError < 0)
        return text + L"\n" + message + L"\n";
    wchar_t buffer[2048] = {};
    ::FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM, nullptr, static_cast<DWORD>(lastError), 0, buffer, 2048,
                     nullptr);
    return text + L"\nLast Error: " + std::to_wstring(lastError) + L".\n" + buffer + L"\n" + message + L"\n";
}

} // namespace TestSupport
