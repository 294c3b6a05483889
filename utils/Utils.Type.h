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
    TOVARIN_THROW(
        "bool __cdecl Utils::Type::IsWide<T>(const class std::basic_string<wchar_t,struct "
        "std::char_traits<wchar_t>,class std::allocator<wchar_t> > &)",
        false,
        L"Ошибка в\r\n" + (name.empty() ? std::wstring(L"Unknown") : name) +
            L"\r\n\r\nПрименён неправильный тип данных.\r\nВозможны только типы: CHAR, WCHAR, TCHAR, "
            L"std::string, std::wstring.");
}

} // namespace Type
} // namespace Utils
