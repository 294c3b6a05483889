#include "Utils.Strings.h"

#include "Utils.Checking.h"
#include "Utils.Error.h"

#include <windows.h>

namespace Utils {
namespace String {

namespace {

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

const unsigned __int64 kAll = static_cast<unsigned __int64>(-1);

// The lines these functions' failure texts show, fixed on purpose (see TOVARIN_FIXED_SITE).
const int kReplaceWLine = 3793;
const int kUpperWLine = 3981;
const int kPosByReverseLine = 2976;

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
    const unsigned __int64 n =
        Checking::CountDirect(TOVARIN_FIXED_SITE(kReplaceW, __FILE__, kReplaceWLine),
                              static_cast<unsigned __int64>(text.length()), start, count);
    for (unsigned __int64 i = start; i < start + n; ++i)
        if (text[static_cast<size_t>(i)] == from)
            text[static_cast<size_t>(i)] = to;
    return text;
}

std::wstring& UpperW(std::wstring& text, const unsigned long start, const unsigned long count) {
    const unsigned long n = Checking::CountDirect(TOVARIN_FIXED_SITE(kUpperW, __FILE__, kUpperWLine),
                                                  static_cast<unsigned __int64>(text.length()), start, count);
    ::CharUpperBuffW(&text[start], n);
    return text;
}

unsigned __int64 PosByReverseNumberSubStringsW(const std::wstring& text, const std::wstring& sub,
                                               unsigned __int64& number, unsigned __int64 start,
                                               const unsigned __int64 count) {
    const unsigned __int64 n =
        Checking::CountReverse(TOVARIN_FIXED_SITE(kPosByReverse, __FILE__, kPosByReverseLine),
                               static_cast<unsigned __int64>(text.length()), start, count);
    if (sub.empty())
        TOVARIN_THROW_AT(TOVARIN_FIXED_SITE(kPosByReverse, __FILE__, kPosByReverseLine), "[f]", false,
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

// ---- Path rules: the check every path passes before it reaches the system, and folder trimming.

namespace Path {

namespace {

const char kHas[] = "bool __cdecl Utils::String::Path::Has(const " TOVARIN_WSTRING " &,const bool)";
const char kTrim[] = TOVARIN_WSTRING " __cdecl Utils::String::Path::TrimNameFileCW(const " TOVARIN_WSTRING
                                     " &,const unsigned __int64)";

// Reserved device names, compared whole and case-sensitively, in this row order.
const wchar_t* const kReserved[] = {L"con",  L"nul",  L"prn",  L"AUX",  L"COM1", L"COM2", L"COM3", L"COM4",
                                    L"COM5", L"COM6", L"COM7", L"COM8", L"COM9", L"LPT1", L"LPT2", L"LPT3",
                                    L"LPT4", L"LPT5", L"LPT6", L"LPT7", L"LPT8", L"LPT9"};
const size_t kReservedCount = sizeof(kReserved) / sizeof(kReserved[0]);

bool StartsWith(const std::wstring& text, const wchar_t* prefix) {
    return text.rfind(prefix, 0) == 0;
}

bool IsReserved(const std::wstring& name) {
    for (const wchar_t* entry : kReserved)
        if (name == entry)
            return true;
    return false;
}

} // namespace

bool Has(const std::wstring& path, const bool) {
    if (path.empty())
        return false;
    std::wstring upper = path;
    UpperW(upper, 0, 0xFFFFFFFFul);
    const bool network = StartsWith(upper, L"FTP") || StartsWith(upper, L"HTTP");
    const bool isLong = path.size() >= 4 && StartsWith(path, L"\\\\?\\");

    // The colon rule joins its conditions by "and", so it never fails in practice; kept as it is.
    const size_t colon = path.rfind(L':');
    if (colon != std::wstring::npos && colon != (isLong ? 5u : 1u) && StartsWith(upper, L"FTP") &&
        colon != 3 && StartsWith(upper, L"HTTP") && colon != 4 && StartsWith(upper, L"HTTPS") && colon != 5) {
        const std::wstring text = L"Двоеточие \":\" не в начале пути:\n\"" + path +
                                  L"\".\nПозиции двоеточия: " + std::to_wstring(colon) + L".";
        TOVARIN_THROW(kHas, false, text);
    }

    // Forbidden characters are searched after the last colon only: the "?" of a long path's
    // prefix is therefore seen only when the path has no drive colon.
    const size_t from = colon == std::wstring::npos ? 0 : colon + 1;
    const size_t bad = path.find_first_of(network ? L":*?\"<>|" : L":/*?\"<>|", from);
    if (bad != std::wstring::npos) {
        const std::wstring text = L"Обнаружен запрещённый символ '" + std::wstring(1, path[bad]) +
                                  L"' в позиции " + std::to_wstring(bad) + L" в пути:\n\"" + path + L"\"";
        TOVARIN_THROW(kHas, false, text);
    }

    // A trailing dot is reported with the text about a space, deliberately.
    if (path.back() == L'.' || path.back() == L' ')
        TOVARIN_THROW(kHas, false, L"Пробел в конце пути:\n\"" + path + L"\"");

    if (!isLong && path.size() >= 256)
        TOVARIN_THROW(kHas, false, L"Боле 255 символов в пути:\n\"" + path + L"\"");

    // The entry shown is the one at the name's own position, not the one that matched: kept so.
    size_t number = 0;
    for (size_t begin = 0;; ++number) {
        const size_t end = path.find(L'\\', begin);
        const std::wstring name =
            path.substr(begin, end == std::wstring::npos ? std::wstring::npos : end - begin);
        if (IsReserved(name)) {
            const std::wstring text =
                L"Использовано зарезервированное в Windows имя \"" +
                std::wstring(number < kReservedCount ? kReserved[number] : name.c_str()) +
                L"\" с порядковым номером " + std::to_wstring(number + 1) + L" в пути:\n\"" + path + L"\"";
            TOVARIN_THROW(kHas, false, text);
        }
        if (end == std::wstring::npos)
            break;
        begin = end + 1;
    }
    return true;
}

std::wstring TrimNameFileCW(const std::wstring& path, const unsigned __int64 count) {
    if (path.empty())
        TOVARIN_THROW(kTrim, false, L"Отсутствует путь.");
    unsigned __int64 number = count + 1;
    const unsigned __int64 position = PosByReverseNumberSubStringsW(
        path, L"\\", number, static_cast<unsigned __int64>(-1), static_cast<unsigned __int64>(-1));
    if (position == static_cast<unsigned __int64>(-1))
        return path;
    return path.substr(0, static_cast<size_t>(position));
}

} // namespace Path
} // namespace String
} // namespace Utils
