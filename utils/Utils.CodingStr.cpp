#include "Utils.CodingStr.h"

#include "Utils.Error.h"

#include <windows.h>

namespace Utils {
namespace CodingStr {

namespace {
const char kAnsiToUnicode[] =
    TOVARIN_WSTRING " __cdecl Utils::CodingStr::AnsiToUnicode(const " TOVARIN_STRING " &,const int)";
const char kUnicodeToAnsi[] =
    TOVARIN_STRING " __cdecl Utils::CodingStr::UnicodeToAnsi(const " TOVARIN_WSTRING " &,const int)";
} // namespace

std::wstring AnsiToUnicode(const std::string& text, const int codePage) {
    std::wstring result;
    ::SetLastError(0);
    if (text.empty())
        return result;
    const int n = ::MultiByteToWideChar(codePage, 0, text.c_str(), -1, nullptr, 0);
    if (n == 0)
        TOVARIN_THROW(kAnsiToUnicode, true, L"В строке отсутствуют символы.");
    result.resize(static_cast<size_t>(n) - 1);
    if (::MultiByteToWideChar(codePage, 0, text.c_str(), -1, &result[0], n) == 0)
        TOVARIN_THROW(kAnsiToUnicode, true, L"Строка не преобразована.");
    return result;
}

std::string UnicodeToAnsi(const std::wstring& text, const int codePage) {
    std::string result;
    ::SetLastError(0);
    if (text.empty())
        return result;
    const int n = ::WideCharToMultiByte(codePage, 0, text.c_str(), -1, nullptr, 0, nullptr, nullptr);
    if (n == 0)
        TOVARIN_THROW(kUnicodeToAnsi, true, L"В строке отсутствуют символы.");
    result.resize(static_cast<size_t>(n) - 1);
    if (::WideCharToMultiByte(codePage, 0, text.c_str(), -1, &result[0], n, nullptr, nullptr) == 0)
        TOVARIN_THROW(kUnicodeToAnsi, true, L"Строка не преобразована.");
    return result;
}

} // namespace CodingStr
} // namespace Utils
