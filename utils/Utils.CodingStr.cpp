#include "Utils.CodingStr.h"

#include "Utils.Error.h"

#include <windows.h>

namespace Utils {
namespace CodingStr {

namespace {
const char kAnsiToUnicode[] =
    "class std::basic_string<wchar_t,struct std::char_traits<wchar_t>,class std::allocator<wchar_t> > "
    "__cdecl Utils::CodingStr::AnsiToUnicode(const class std::basic_string<char,struct "
    "std::char_traits<char>,class std::allocator<char> > &,const int)";
const char kUnicodeToAnsi[] =
    "class std::basic_string<char,struct std::char_traits<char>,class std::allocator<char> > __cdecl "
    "Utils::CodingStr::UnicodeToAnsi(const class std::basic_string<wchar_t,struct "
    "std::char_traits<wchar_t>,class std::allocator<wchar_t> > &,const int)";
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
