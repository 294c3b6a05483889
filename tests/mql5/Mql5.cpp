#include "Mql5.h"

#include "support/Exports.h"

namespace mql {
namespace {

// The characters of a[start .. start + count) up to the first 0 (count -1: to the end).
template <class T> std::vector<T> Slice(const Array<T>& a, int start, int count) {
    const int end = count < 0 || count > a.Size() - start ? a.Size() : start + count;
    std::vector<T> slice;
    for (int i = std::max(start, 0); i < end && a.items[i] != 0; ++i)
        slice.push_back(a.items[i]);
    return slice;
}

} // namespace

int StringLen(const string& s) { return static_cast<int>(s.text.size()); }

int StringFind(const string& s, const string& what, int start) {
    const std::size_t at = start < 0 ? std::u16string::npos : s.text.find(what.text, start);
    return at == std::u16string::npos ? -1 : static_cast<int>(at);
}

string StringSubstr(const string& s, int start, int length) {
    if (start < 0 || start >= StringLen(s))
        return string();
    return s.text.substr(start, length < 0 ? std::u16string::npos : static_cast<std::size_t>(length));
}

int StringSplit(const string& s, ushort separator, Array<string>& parts) {
    std::vector<string> found;
    for (std::size_t from = 0, at;; from = at + 1) {
        at = s.text.find(char16_t(separator), from);
        found.push_back(s.text.substr(from, at == std::u16string::npos ? at : at - from));
        if (at == std::u16string::npos)
            break;
    }
    if (s.text.empty() || ArrayResize(parts, static_cast<int>(found.size())) < 0)
        return s.text.empty() ? 0 : -1;
    std::copy(found.begin(), found.end(), parts.items.begin());
    return parts.Size();
}

// As StringToCharArray, UTF-16 units unconverted.
int StringToShortArray(const string& s, Array<ushort>& a, int start, int count) {
    std::vector<ushort> units(s.text.begin(), s.text.begin() + (count < 0 || count > StringLen(s) ? StringLen(s) : count));
    if (count < 0)
        units.push_back(0);
    const int n = static_cast<int>(units.size());
    if (start < 0)
        return 0;
    if (start + n > a.Size() && !a.fixed)
        ArrayResize(a, start + n);
    const int copied = std::max(0, std::min(n, a.Size() - start));
    std::copy(units.begin(), units.begin() + copied, a.items.begin() + start);
    return copied;
}

// count -1 takes the whole text and its terminating 0; a dynamic array grows to hold them, a static
// one takes what fits.
int StringToCharArray(const string& s, Array<uchar>& a, int start, int count, uint cp) {
    const int chars = count < 0 || count > StringLen(s) ? StringLen(s) : count;
    const auto* wide = reinterpret_cast<const wchar_t*>(s.text.c_str());
    std::vector<char> bytes(::WideCharToMultiByte(cp, 0, wide, chars, nullptr, 0, nullptr, nullptr));
    ::WideCharToMultiByte(cp, 0, wide, chars, bytes.data(), static_cast<int>(bytes.size()), nullptr, nullptr);
    if (count < 0)
        bytes.push_back(0);
    const int n = static_cast<int>(bytes.size());
    if (start < 0)
        return 0;
    if (start + n > a.Size() && !a.fixed)
        ArrayResize(a, start + n); // a failure leaves the array as it was: it takes what fits
    const int copied = std::max(0, std::min(n, a.Size() - start));
    std::memcpy(a.items.data() + start, bytes.data(), copied);
    return copied;
}

string CharArrayToString(const Array<uchar>& a, int start, int count, uint cp) {
    const std::vector<uchar> bytes = Slice(a, start, count);
    const auto* narrow = reinterpret_cast<const char*>(bytes.data());
    const int size = static_cast<int>(bytes.size());
    std::u16string text(::MultiByteToWideChar(cp, 0, narrow, size, nullptr, 0), u'\0');
    ::MultiByteToWideChar(cp, 0, narrow, size, reinterpret_cast<wchar_t*>(&text[0]), static_cast<int>(text.size()));
    return text;
}

string ShortArrayToString(const Array<ushort>& a, int start, int count) {
    const std::vector<ushort> units = Slice(a, start, count);
    return std::u16string(units.begin(), units.end());
}

ushort StringGetCharacter(const string& s, int pos) {
    return pos >= 0 && pos < StringLen(s) ? s.text[pos] : 0;
}

bool StringSetCharacter(string& s, int pos, ushort c) {
    if (pos < 0 || pos >= StringLen(s))
        return false;
    s.text[pos] = c;
    return true;
}

int StringReplace(string& s, const string& find, const string& replacement) {
    int n = 0;
    for (std::size_t at = s.text.find(find.text); !find.text.empty() && at != std::u16string::npos;
         at = s.text.find(find.text, at + replacement.text.size()), ++n)
        s.text.replace(at, find.text.size(), replacement.text);
    return n;
}

std::vector<std::u16string>& Journal() {
    static std::vector<std::u16string> lines;
    return lines;
}

// %s takes a string, any other conversion a number; flags and widths as printf has them.
void PrintFormatArgs(const string& format, std::initializer_list<FormatArg> args) {
    std::u16string line;
    const FormatArg* arg = args.begin();
    for (std::size_t i = 0; i < format.text.size(); ++i) {
        const std::size_t end = format.text.find_first_of(u"%diouxXs", i + 1);
        if (format.text[i] != u'%' || end == std::u16string::npos || arg == args.end()) {
            line += format.text[i];
        } else if (format.text[end] == u's' || format.text[end] == u'%') {
            line += format.text[end] == u's' ? (arg++)->text.text : u"%";
            i = end;
        } else {
            const std::string spec(format.text.begin() + i, format.text.begin() + end);
            char digits[64];
            std::snprintf(digits, sizeof digits, (spec + "ll" + char(format.text[end])).c_str(), (arg++)->number);
            line.append(digits, digits + std::strlen(digits));
            i = end;
        }
    }
    Journal().push_back(line);
}

void* Bind(const char* name) { return TestSupport::FromModule<void*>(TestSupport::TovarinModule(), name); }

const string _Symbol = u"EUR/USD"_s;

// Hourly bars from 2024-01-01 00:00 on, oldest first.
int CopyRates(const string& symbol, ENUM_TIMEFRAMES, int start, int count, Array<MqlRates>& rates) {
    const int history = 5000;
    count = std::min(count, history - start);
    if (symbol != _Symbol || start < 0 || count <= 0 || ArrayResize(rates, count) != count)
        return -1;
    for (int i = 0; i < count; ++i) {
        const int bar = history - start - count + i;
        const double open = 1.1 + bar % 97 * 1e-4;
        rates[i] = {1704067200 + 3600LL * bar, open, open + 5e-4, open - 4e-4, open + bar % 5 * 1e-4,
                    100 + bar % 37, bar % 7, 1000LL * bar};
    }
    return count;
}

string& CommonDataPath() {
    static string path;
    return path;
}

} // namespace mql
