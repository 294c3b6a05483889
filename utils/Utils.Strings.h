#pragma once
// Small text algorithms of the file layer. Every range goes through Utils::Checking, so the
// functions share its defaults (all bits set: to the end), its clipping and its failure texts.
// Failures are thrown as composed wide texts (std::wstring); a failed check changes nothing.
#include <string>
#include <string_view>
#include <vector>

namespace Utils {
namespace String {

namespace detail {
unsigned __int64 ExtractThruSubstringW(const std::wstring& text, const std::wstring& separator,
                                       std::vector<std::wstring>& pieces, const unsigned __int64 maxPieces);
unsigned __int64 ExtractThruSubstringA(const std::string& text, const std::string& separator,
                                       std::vector<std::string>& pieces, const unsigned __int64 maxPieces);
} // namespace detail

// Replaces `from` by `to` in the range; returns `text`. Throws on an empty text or a bad range.
std::wstring& ReplaceW(std::wstring& text, const unsigned __int64 start, const unsigned __int64 count,
                       const wchar_t from, const wchar_t to);

// Upper-cases the range with the system's locale-independent mapping; returns `text`. The range is
// 32-bit: 4294967295 means to the end. Throws on an empty text or a bad range.
std::wstring& UpperW(std::wstring& text, const unsigned long start, const unsigned long count);

// The position of the `number`-th occurrence of `sub`, counted backwards from `start` (all bits set
// or beyond the end: the last character); occurrences may overlap. `number` 0 gives the corrected
// start. When there are fewer occurrences, stores how many there were into `number` and returns
// all bits set. Throws on an empty text or an empty `sub`.
unsigned __int64 PosByReverseNumberSubStringsW(const std::wstring& text, const std::wstring& sub,
                                               unsigned __int64& number, unsigned __int64 start,
                                               const unsigned __int64 count);

// Splits `text` into the pieces that `separator` ends (at most `maxPieces`); text after the last
// separator is no piece. Returns the index just past the last separator consumed, or all bits set
// when none was. Throws on an empty separator, leaving `pieces` as it was. The I argument is unused.
template <class I>
unsigned __int64 ExtractThruSubstringW(const std::wstring& text, const std::wstring& separator, const I,
                                       std::vector<std::wstring>& pieces, const unsigned __int64 maxPieces) {
    return detail::ExtractThruSubstringW(text, separator, pieces, maxPieces);
}

// The splitting rule of ExtractThruSubstringW without building the pieces: calls
// visit(first, length) for each piece of the `length` characters at `text` that `separator` ends,
// at most `maxPieces`, in order, and returns what ExtractThruSubstringW returns. Nothing is copied
// and nothing is allocated. An empty separator ends no piece.
template <class Char, class Visit>
unsigned __int64 VisitThruSubstring(const Char* text, const size_t length,
                                    const std::basic_string_view<Char> separator,
                                    const unsigned __int64 maxPieces, Visit&& visit) {
    // A plain scan: a search call per piece would cost more than the short lines it finds.
    const size_t width = separator.length();
    if (width == 0)
        return static_cast<unsigned __int64>(-1);
    const Char first = separator[0];
    auto endsHere = [&](const size_t at) {
        if (text[at] != first)
            return false;
        for (size_t i = 1; i < width; ++i)
            if (text[at + i] != separator[i])
                return false;
        return true;
    };
    size_t position = 0;
    unsigned __int64 pieces = 0;
    for (size_t at = 0; position < length && pieces < maxPieces; at = position) {
        while (at + width <= length && !endsHere(at))
            ++at;
        if (at + width > length)
            break;
        visit(text + position, at - position);
        ++pieces;
        position = at + width;
    }
    // Only a piece that its separator ends is taken; the tail starts at the returned position.
    return position == 0 ? static_cast<unsigned __int64>(-1) : static_cast<unsigned __int64>(position);
}

// The 8-bit twin of ExtractThruSubstringW.
template <class I>
unsigned __int64 ExtractThruSubstringA(const std::string& text, const std::string& separator, const I,
                                       std::vector<std::string>& pieces, const unsigned __int64 maxPieces) {
    return detail::ExtractThruSubstringA(text, separator, pieces, maxPieces);
}

namespace Path {

// False for an empty path, true for one that passes every rule; throws the rule's text otherwise.
// The bool argument has no effect.
bool Has(const std::wstring& path, const bool = false);

// The path without its last count + 1 names (count 0: the folder of a file path); a path without
// a backslash comes back unchanged. Throws for an empty path.
std::wstring TrimNameFileCW(const std::wstring& path, const unsigned __int64 count = 0);

} // namespace Path

} // namespace String
} // namespace Utils
