#pragma once
// MQL5's types and built-in functions as far as the kit uses them, for the C++ of translate.py. Where
// MQL5 and C++ differ, this follows MQL5 (CONTRIBUTING.md lists how); new elements are not initialised
// but hold 0xA5 bytes, so that code which reads them first shows it.
#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

namespace mql {

typedef std::int8_t mchar; // MQL5's char and long: the translator renames them
typedef std::int64_t mlong;
typedef std::uint8_t uchar;
typedef std::uint16_t ushort;
typedef std::uint32_t uint;
typedef std::uint64_t ulong;
typedef std::int64_t datetime;
const int WHOLE_ARRAY = -1;
// INT_MAX and UINT_MAX are C's, with MQL5's values; C's ULONG_MAX has 32 bits on Windows, MQL5's 64.
const ulong ULONG_MAX_ = ~0ull;
const uint CP_ACP = 0, CP_UTF8 = 65001;

using Stop = std::out_of_range; // an index out of range stops the program, and fails the test

// UTF-16 text with value semantics; `+` with an integer appends its digits.
struct string : std::u16string {
    string(std::u16string s = u"") : std::u16string(std::move(s)) {}
    string(const std::wstring& s) : std::u16string(s.begin(), s.end()) {} // the tests' paths
    friend string operator+(string a, const string& b) { return a.append(b), a; }
    template <class T, class = std::enable_if_t<std::is_integral_v<T>>>
    friend string operator+(string a, T n) {
        const std::string digits = std::to_string(n);
        return a.append(digits.begin(), digits.end()), a;
    }
};
inline string operator""_s(const char16_t* s, std::size_t n) {
    return std::u16string(s, n);
}

// The next ArrayResize calls succeed this many times, then one fails as if memory were short (-1:
// none); the tests make memory short only so.
inline int resizesBeforeFailure = -1;

template <class T> T Unset() {
    T value{};
    if constexpr (std::is_arithmetic_v<T> && !std::is_same_v<T, bool>)
        std::memset(&value, 0xA5, sizeof value);
    return value;
}

// A dynamic array (T a[]) or a static one (T a[N]), and a `T &a[]` parameter bound to either. A bool
// is a byte, as the DLL reads it (std::vector<bool> packs bits).
template <class T> struct Array {
    std::vector<std::conditional_t<std::is_same_v<T, bool>, uchar, T>> items;
    bool fixed = false;
    static Array Static(int size, std::initializer_list<T> init) {
        Array a{decltype(items)(init.begin(), init.end()), true};
        a.items.resize(std::max<std::size_t>(size, init.size()), Unset<T>());
        return a;
    }
    Array() = default;
    Array(const Array&) = default; // declared: beside the deleted assignment an implicit one is deprecated
    Array& operator=(const Array&) = delete; // MQL5 assigns no arrays: ArrayCopy copies them
    int Size() const { return static_cast<int>(items.size()); }
    T* Data() { return reinterpret_cast<T*>(items.data()); }
    const T* Data() const { return reinterpret_cast<const T*>(items.data()); }
    T& operator[](long long i) { return Data()[Checked(i)]; }
    const T& operator[](long long i) const { return Data()[Checked(i)]; }
    long long Checked(long long i) const {
        if (i < 0 || i >= Size())
            throw Stop("array out of range: index " + std::to_string(i) + " of " + std::to_string(Size()));
        return i;
    }
};

template <class T> int ArraySize(const Array<T>& a) {
    return a.Size();
}
template <class T> void ArrayFree(Array<T>& a) {
    if (!a.fixed)
        decltype(a.items)().swap(a.items);
}
template <class T> int ArrayResize(Array<T>& a, int size) {
    if (a.fixed || size < 0 || resizesBeforeFailure-- == 0)
        return -1;
    a.items.resize(size, Unset<T>());
    return size;
}

// The elements of a[start, start + count) before the first 0 (count -1: to the end).
template <class T> std::vector<T> Slice(const Array<T>& a, int start, int count) {
    const int end = count < 0 || count > a.Size() - start ? a.Size() : start + count;
    const T* first = a.Data() + std::min(std::max(start, 0), end);
    return std::vector<T>(first, std::find(first, a.Data() + end, T(0)));
}
inline int StringLen(const string& s) {
    return static_cast<int>(s.size());
}
inline int StringFind(const string& s, const string& what, int start = 0) {
    const std::size_t at = start < 0 ? s.npos : s.find(what, start);
    return at == s.npos ? -1 : static_cast<int>(at);
}
inline bool StringReserve(string& s, uint capacity) {
    return s.reserve(capacity), true;
}
inline string StringSubstr(const string& s, int start, int length = -1) {
    return start < 0 || start >= StringLen(s) ? string() : s.substr(start, length < 0 ? s.npos : length);
}
int StringToCharArray(const string& s, Array<uchar>& a, int start = 0, int count = -1, uint cp = CP_ACP);
string CharArrayToString(const Array<uchar>& a, int start = 0, int count = -1, uint cp = CP_ACP);
inline string ShortArrayToString(const Array<ushort>& a, int start = 0, int count = -1) {
    const std::vector<ushort> units = Slice(a, start, count);
    return std::u16string(units.begin(), units.end());
}
inline ushort StringGetCharacter(const string& s, int pos) {
    return pos >= 0 && pos < StringLen(s) ? s[pos] : 0;
}
inline bool StringSetCharacter(string& s, int pos, ushort c) {
    return pos >= 0 && pos < StringLen(s) && (s[pos] = c, true);
}
inline int StringReplace(string& s, const string& find, const string& by) {
    int n = 0;
    for (std::size_t at = 0; !find.empty() && (at = s.find(find, at)) != s.npos; ++n)
        s.replace(at, find.size(), by), at += by.size();
    return n;
}

// Print and PrintFormat (%d and %s) write to the journal, which the tests take.
inline std::vector<std::u16string> journal;
inline std::vector<std::u16string> TakeJournal() {
    return std::move(journal);
}
template <class... A> void Print(const A&... parts) {
    journal.push_back((u""_s + ... + parts));
}
template <class... A> void PrintFormat(string format, const A&... args) { // each %d or %s in turn
    (format.replace(format.find(u'%'), 2, u""_s + args), ...);
    journal.push_back(format);
}

// Each prototype of `#import "Tovarin.dll"` calls the export of its name, passing what MQL5 passes:
// a string as the address of its copy's characters, an array as the address of its first element.
void* Bind(const char* name);
template <class T> auto Abi(T& value) {
    if constexpr (std::is_same_v<std::remove_const_t<T>, string>)
        return reinterpret_cast<const wchar_t*>(value.c_str());
    else if constexpr (std::is_arithmetic_v<T>)
        return value;
    else
        return value.Data();
}
inline long long dllCalls = 0; // every call of an import, for the tests that count them
template <class R, class... A> R CallExport(void* proc, A... args) {
    if constexpr (std::is_same_v<R, string>) {
        const auto* text = reinterpret_cast<const char16_t*>(CallExport<const wchar_t*>(proc, args...));
        return text == nullptr ? string() : string(text);
    } else {
        ++dllCalls;
        return reinterpret_cast<R (*)(A...)>(proc)(args...);
    }
}

// Stand-ins for the terminal, the same on every run: the chart is EUR/USD H1 with 5000 bars of
// made-up prices, DLL imports are allowed, no error is pending, the common data folder is a test's.
enum ENUM_TIMEFRAMES { PERIOD_H1 };
enum ENUM_TERMINAL_INFO_STRING { TERMINAL_COMMONDATA_PATH };
enum ENUM_MQL_INFO_INTEGER { MQL_DLLS_ALLOWED };
const string _Symbol = u"EUR/USD"_s;
const ENUM_TIMEFRAMES _Period = PERIOD_H1;
#pragma pack(push, 1)
struct MqlRates {
    datetime time;
    double open, high, low, close;
    mlong tick_volume;
    int spread;
    mlong real_volume;
};
struct MqlTick {
    datetime time;
    double bid, ask, last;
    ulong volume;
    mlong time_msc;
    uint flags;
    double volume_real;
};
#pragma pack(pop)
static_assert(sizeof(MqlRates) == 60 && sizeof(MqlTick) == 60, "MQL5's layouts");
const int FILE_READ = 1, FILE_WRITE = 2, FILE_SHARE_READ = 128, FILE_SHARE_WRITE = 256;
enum ENUM_FILE_POSITION { SEEK_SET_ = 7, SEEK_CUR_, SEEK_END_ }; // their values are not in MQL5's reference
// Hourly bars from 2024-01-01 on, oldest first; a test adds bars to the history.
inline int history = 5000;
inline int CopyRates(const string& symbol, ENUM_TIMEFRAMES, int start, int count, Array<MqlRates>& rates) {
    count = std::min(count, history - start);
    if (symbol != _Symbol || start < 0 || count <= 0 || ArrayResize(rates, count) != count)
        return -1;
    for (int i = 0, bar = history - start - count; i < count; ++i, ++bar) // a value of its own in each field
        rates[i] = {1704067200 + 3600LL * bar, 1.1 + bar % 97 * 1e-4, 1.2,     1.0,
                    1.1 + bar % 5 * 1e-4,      100 + bar % 37,        bar % 7, 1000LL * bar};
    return count;
}
// A tick a second from 2024-01-01 on, the newest last.
enum ENUM_COPY_TICKS { COPY_TICKS_ALL };
inline int CopyTicks(const string&, Array<MqlTick>& ticks, ENUM_COPY_TICKS, ulong, uint count) {
    ArrayResize(ticks, count);
    for (uint i = 0; i < count; ++i)
        ticks[i] = {1704067200 + i, 1.1 + i % 7 * 1e-5, 1.1002, 0, i % 4, 1704067200000LL + 1000 * i, 6, 0.5};
    return count;
}
const int _Digits = 5, INIT_SUCCEEDED = 0, INIT_FAILED = 1, INIT_PARAMETERS_INCORRECT = 32767;
inline string DoubleToString(double value, int digits) {
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", digits, value);
    return std::u16string(text, text + std::strlen(text));
}
inline string CommonDataPath;
inline const auto EventSetTimer = [](int) { return true; };
inline const auto TerminalInfoString = [](ENUM_TERMINAL_INFO_STRING) { return CommonDataPath; };
inline const auto MQLInfoInteger = [](ENUM_MQL_INFO_INTEGER) { return 1; };
inline const auto GetLastError = [] { return 0; };
inline const auto EnumToString = [](ENUM_TIMEFRAMES) { return u"PERIOD_H1"_s; };

} // namespace mql
