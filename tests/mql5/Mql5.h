#pragma once
// MQL5's types and built-in functions, as far as the kit uses them, for the kit's MQL5 that
// translate.py turns into C++. Where MQL5 and C++ differ, this follows MQL5: strings are values,
// arrays know their size and whether they are static, an index out of range is a critical error
// that stops the program (here: throws Stop, which fails the test), ArrayResize returns -1 rather
// than throwing, and new elements are not initialised (here: filled with 0xA5 bytes, so that code
// which reads them before writing them shows it).
#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

namespace mql {

typedef std::int8_t mchar; // MQL5's char and long; the translator renames them
typedef std::int64_t mlong;
typedef std::uint8_t uchar;
typedef std::uint16_t ushort;
typedef std::uint32_t uint;
typedef std::uint64_t ulong;
typedef std::int64_t datetime;

const int WHOLE_ARRAY = -1, INVALID_HANDLE = -1;
// INT_MAX and UINT_MAX are C's, with MQL5's values; C's ULONG_MAX has 32 bits on Windows, MQL5's 64.
const ulong ULONG_MAX_ = ~0ull;
const uint CP_ACP = 0, CP_UTF8 = 65001;

// A critical error: MQL5 stops the program at once.
struct Stop : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// UTF-16 text with value semantics; `+` with a number appends its decimal digits.
struct string {
    std::u16string text;
    string() = default;
    string(std::u16string s) : text(std::move(s)) {}
    string& operator+=(const string& s) { return text += s.text, *this; }
    friend string operator+(string a, const string& b) { return a += b; }
    template <class T, class = std::enable_if_t<std::is_integral_v<T>>> friend string operator+(string a, T n) {
        const std::string digits = std::is_signed_v<T> ? std::to_string(static_cast<long long>(n))
                                                       : std::to_string(static_cast<unsigned long long>(n));
        return a.text.append(digits.begin(), digits.end()), a;
    }
    friend bool operator==(const string& a, const string& b) { return a.text == b.text; }
    friend bool operator!=(const string& a, const string& b) { return a.text != b.text; }
};
inline string operator""_s(const char16_t* s, std::size_t n) { return std::u16string(s, n); }

// The next ArrayResize calls succeed `n` times, then one fails as if memory were short (-1: never).
inline int& ResizesBeforeFailure() {
    static int n = -1;
    return n;
}

template <class T> T Unset() {
    T value;
    if constexpr (std::is_arithmetic_v<T> && !std::is_same_v<T, bool>)
        std::memset(&value, 0xA5, sizeof value);
    else
        value = T();
    return value;
}

// std::vector<bool> packs bits; an MQL5 bool array holds a byte per element, as the DLL reads it.
struct Bool {
    bool value;
    Bool(bool v = false) : value(v) {}
};
template <class T> using Stored = std::conditional_t<std::is_same_v<T, bool>, Bool, T>;

// A dynamic array (T a[]) or a static one (T a[N]) and a `T &a[]` parameter bound to either.
template <class T> struct Array {
    std::vector<Stored<T>> items;
    bool fixed = false;
    static Array Static(int size, std::initializer_list<T> init) {
        Array a;
        a.items.assign(init.begin(), init.end());
        a.items.resize(std::max<std::size_t>(size, init.size()), Unset<T>());
        a.fixed = true;
        return a;
    }
    int Size() const { return static_cast<int>(items.size()); }
    T* Data() { return reinterpret_cast<T*>(items.data()); }
    const T* Data() const { return reinterpret_cast<const T*>(items.data()); }
    T& operator[](long long i) { return Data()[Checked(i)]; }
    const T& operator[](long long i) const { return Data()[Checked(i)]; }
    std::size_t Checked(long long i) const {
        if (i < 0 || i >= Size())
            throw Stop("array out of range: index " + std::to_string(i) + " of " + std::to_string(Size()));
        return static_cast<std::size_t>(i);
    }
};

template <class T> int ArraySize(const Array<T>& a) { return a.Size(); }
template <class T> void ArrayFree(Array<T>& a) {
    if (!a.fixed)
        decltype(a.items)().swap(a.items);
}
template <class T> int ArrayResize(Array<T>& a, int size, int reserve = 0) {
    if (a.fixed || size < 0 || ResizesBeforeFailure()-- == 0)
        return -1;
    try {
        if (a.items.capacity() < static_cast<std::size_t>(size))
            a.items.reserve(static_cast<std::size_t>(size) + std::max(reserve, 0));
        a.items.resize(size, Unset<T>());
    } catch (const std::bad_alloc&) {
        return -1;
    }
    return size;
}

int StringLen(const string& s);
int StringFind(const string& s, const string& what, int start = 0);
string StringSubstr(const string& s, int start, int length = -1);
int StringSplit(const string& s, ushort separator, Array<string>& parts);
int StringToShortArray(const string& s, Array<ushort>& a, int start = 0, int count = -1);
int StringToCharArray(const string& s, Array<uchar>& a, int start = 0, int count = -1, uint cp = CP_ACP);
string CharArrayToString(const Array<uchar>& a, int start = 0, int count = -1, uint cp = CP_ACP);
string ShortArrayToString(const Array<ushort>& a, int start = 0, int count = -1);
ushort StringGetCharacter(const string& s, int pos);
bool StringSetCharacter(string& s, int pos, ushort c);
int StringReplace(string& s, const string& find, const string& replacement);

// Print and PrintFormat write to the journal, which the tests read.
std::vector<std::u16string>& Journal();
template <class... A> void Print(const A&... parts) { Journal().push_back((u""_s + ... + parts).text); }
struct FormatArg {
    string text;
    long long number;
    FormatArg(const string& s) : text(s), number(0) {}
    template <class T, class = std::enable_if_t<std::is_integral_v<T>>> FormatArg(T n) : number(n) {}
};
void PrintFormatArgs(const string& format, std::initializer_list<FormatArg> args);
template <class... A> void PrintFormat(const string& format, const A&... args) { PrintFormatArgs(format, {args...}); }

// #import "Tovarin.dll": each prototype becomes a function that calls the export of that name
// in the built DLL, passing what MQL5 passes: a string as the address of its copy's characters,
// an array as the address of its first element.
void* Bind(const char* name);
inline const wchar_t* Abi(const string& s) { return reinterpret_cast<const wchar_t*>(s.text.c_str()); }
template <class T> T* Abi(Array<T>& a) { return a.Data(); }
template <class T> const T* Abi(const Array<T>& a) { return a.Data(); }
template <class T, class = std::enable_if_t<std::is_arithmetic_v<T>>> T Abi(T value) { return value; }
inline long long& DllCalls() { // every call of an import, for tests that count them
    static long long n = 0;
    return n;
}
template <class R, class... A> R CallExport(void* proc, A... args) {
    if constexpr (std::is_same_v<R, string>) {
        const auto* text = reinterpret_cast<const char16_t*>(CallExport<const wchar_t*>(proc, args...));
        return text == nullptr ? string() : string(text);
    } else {
        ++DllCalls();
        return reinterpret_cast<R (*)(A...)>(proc)(args...);
    }
}

// Stand-ins for the terminal, the same on every run: the chart is EUR/USD H1 with 5000 bars of
// made-up prices, DLL imports are allowed, and the common data folder is whatever a test sets.
enum ENUM_TIMEFRAMES { PERIOD_H1 };
enum ENUM_TERMINAL_INFO_STRING { TERMINAL_COMMONDATA_PATH };
enum ENUM_MQL_INFO_INTEGER { MQL_DLLS_ALLOWED };
extern const string _Symbol;
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
enum ENUM_FILE_POSITION { SEEK_SET_ = 7, SEEK_CUR_, SEEK_END_ }; // values unknown to MQL5's reference
int CopyRates(const string& symbol, ENUM_TIMEFRAMES period, int start, int count, Array<MqlRates>& rates);
string& CommonDataPath();
inline string TerminalInfoString(ENUM_TERMINAL_INFO_STRING) { return CommonDataPath(); }
inline int MQLInfoInteger(ENUM_MQL_INFO_INTEGER) { return 1; }
inline int GetLastError() { return 0; }
inline string EnumToString(ENUM_TIMEFRAMES) { return u"PERIOD_H1"_s; }

} // namespace mql
