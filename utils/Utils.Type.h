#pragma once
// Character width of the text types the library hashes and converts.
#include "Utils.Error.h"

#include <string>
#include <typeinfo>

namespace Utils {
namespace Type {

// True for 16-bit character types, false for 8-bit ones; any other type throws a composed
// failure text naming `name` (the caller's description of the value, "Unknown" when empty).
template <class T> bool IsWide(const std::wstring& name) {
    const std::type_info& t = typeid(T);
    if (t == typeid(const char*) || t == typeid(char) || t == typeid(unsigned char) ||
        t == typeid(std::string))
        return false;
    if (t == typeid(const wchar_t*) || t == typeid(short) || t == typeid(wchar_t) ||
        t == typeid(unsigned short) || t == typeid(std::wstring))
        return true;
    // The line the text shows is fixed on purpose (see TOVARIN_FIXED_SITE).
    TOVARIN_THROW_AT(
        TOVARIN_FIXED_SITE("bool __cdecl Utils::Type::IsWide<T>(const " TOVARIN_WSTRING " &)", __FILE__, 342),
        "[f]", false,
        L"Ошибка в\r\n" + (name.empty() ? std::wstring(L"Unknown") : name) +
            L"\r\n\r\nПрименён неправильный тип данных.\r\nВозможны только типы: CHAR, WCHAR, TCHAR, "
            L"std::string, std::wstring.");
}

} // namespace Type
} // namespace Utils
