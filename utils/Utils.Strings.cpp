#include "Utils.Strings.h"

#include "Utils.Checking.h"
#include "Utils.Error.h"

#include <windows.h>

namespace Utils {
namespace String {

namespace {

#define TOVARIN_WSTRING                                                                                      \
    "class std::basic_string<wchar_t,struct std::char_traits<wchar_t>,class std::allocator<wchar_t> >"
#define TOVARIN_STRING                                                                                       \
    "class std::basic_string<char,struct std::char_traits<char>,class std::allocator<char> >"

const char kReplaceW[] =
    TOVARIN_WSTRING " &__cdecl Utils::String::ReplaceW(" TOVARIN_WSTRING
                    " &,const unsigned __int64,const unsigned __int64,const wchar_t,const "
                    "wchar_t)";
const char kUpperW[] = TOVARIN_WSTRING " &__cdecl Utils::String::UpperW(" TOVARIN_WSTRING
                                       " &,const unsigned long,const unsigned long)";
const char kPosByReverse[] =
    "unsigned __int64 __cdecl Utils::String::PosByReverseNumberSubStringsW(const " TOVARIN_WSTRING
    " &,const " TOVARIN_WSTRING " &,unsigned __int64 &,unsigned __int64,const unsigned __int64)";
// The library instantiates the splitters with int only.
const char kExtractW[] =
    "unsigned __int64 __cdecl Utils::String::ExtractThruSubstringW<int>(const " TOVARIN_WSTRING
    " &,const " TOVARIN_WSTRING " &,const int,class std::vector<" TOVARIN_WSTRING
    ",class std::allocator<" TOVARIN_WSTRING " > > &,const unsigned __int64)";
const char kExtractA[] =
    "unsigned __int64 __cdecl Utils::String::ExtractThruSubstringA<int>(const " TOVARIN_STRING
    " &,const " TOVARIN_STRING " &,const int,class std::vector<" TOVARIN_STRING
    ",class std::allocator<" TOVARIN_STRING " > > &,const unsigned __int64)";

#undef TOVARIN_STRING
#undef TOVARIN_WSTRING

const unsigned __int64 kAll = static_cast<unsigned __int64>(-1);

template <class Char>
unsigned __int64 Extract(const char* signature, const std::basic_string<Char>& text,
                         const std::basic_string<Char>& separator,
                         std::vector<std::basic_string<Char>>& pieces, const unsigned __int64 maxPieces) {
    if (separator.empty())
        TOVARIN_THROW(signature, false, L"Разделитель не установлен.");
    pieces.clear();
    return VisitThruSubstring(
        text.data(), text.length(), std::basic_string_view<Char>(separator), maxPieces,
        [&pieces](const Char* first, const size_t length) { pieces.emplace_back(first, length); });
}

} // namespace

std::wstring& ReplaceW(std::wstring& text, const unsigned __int64 start, const unsigned __int64 count,
                       const wchar_t from, const wchar_t to) {
    const unsigned __int64 n = Checking::CountDirect(
        TOVARIN_SITE(kReplaceW), static_cast<unsigned __int64>(text.length()), start, count);
    for (unsigned __int64 i = start; i < start + n; ++i)
        if (text[static_cast<size_t>(i)] == from)
            text[static_cast<size_t>(i)] = to;
    return text;
}

std::wstring& UpperW(std::wstring& text, const unsigned long start, const unsigned long count) {
    const unsigned long n = Checking::CountDirect(TOVARIN_SITE(kUpperW),
                                                  static_cast<unsigned __int64>(text.length()), start, count);
    ::CharUpperBuffW(&text[start], n);
    return text;
}

unsigned __int64 PosByReverseNumberSubStringsW(const std::wstring& text, const std::wstring& sub,
                                               unsigned __int64& number, unsigned __int64 start,
                                               const unsigned __int64 count) {
    const unsigned __int64 n = Checking::CountReverse(
        TOVARIN_SITE(kPosByReverse), static_cast<unsigned __int64>(text.length()), start, count);
    if (sub.empty())
        TOVARIN_THROW(kPosByReverse, false,
                      L"Отсутсвует искомая подстрока."); // the spelling is the message's own
    if (number == 0)
        return start;
    const unsigned __int64 low = start + 1 - n;
    if (start < low)
        return kAll;
    unsigned __int64 found = 0;
    unsigned __int64 position = start;
    for (;;) {
        const size_t at = text.rfind(sub, static_cast<size_t>(position));
        if (at == std::wstring::npos || at < low)
            break;
        if (++found == number)
            return at;
        // The next search starts one before the hit, so occurrences may overlap.
        if (at == 0 || at - 1 < low)
            break;
        position = at - 1;
    }
    number = found;
    return kAll;
}

namespace detail {

unsigned __int64 ExtractThruSubstringW(const std::wstring& text, const std::wstring& separator,
                                       std::vector<std::wstring>& pieces, const unsigned __int64 maxPieces) {
    return Extract(kExtractW, text, separator, pieces, maxPieces);
}

unsigned __int64 ExtractThruSubstringA(const std::string& text, const std::string& separator,
                                       std::vector<std::string>& pieces, const unsigned __int64 maxPieces) {
    return Extract(kExtractA, text, separator, pieces, maxPieces);
}

} // namespace detail

} // namespace String
} // namespace Utils
