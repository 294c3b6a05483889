#pragma once
// Conversion between 8-bit text in a Windows code page and UTF-16.
#include <string>

namespace Utils {
namespace CodingStr {

// 8-bit text (codePage 0 = the system ANSI code page) to UTF-16, up to the first zero byte.
// Throws a composed failure text (std::wstring) when the system cannot convert.
std::wstring AnsiToUnicode(const std::string& text, const int codePage);

// UTF-16 to 8-bit text, up to the first zero character; unmappable characters become the
// code page's default character. Throws a composed failure text when the system cannot convert.
std::string UnicodeToAnsi(const std::wstring& text, const int codePage);

} // namespace CodingStr
} // namespace Utils
