#include "Mql5.h"

#include <windows.h>

namespace mql {

// count -1 takes the whole text and its terminating 0; a dynamic array grows to hold them, a static
// one takes what fits.
int StringToCharArray(const string& s, Array<uchar>& a, int start, int count, uint cp) {
    const int chars = count < 0 || count > StringLen(s) ? StringLen(s) : count;
    static thread_local std::vector<char> bytes; // one conversion into room enough for any code page
    bytes.resize(std::max(bytes.size(), 3 * static_cast<std::size_t>(chars) + 1));
    int n = ::WideCharToMultiByte(cp, 0, reinterpret_cast<const wchar_t*>(s.c_str()), chars, bytes.data(),
                                  3 * chars, nullptr, nullptr); // 0 for no characters
    if (count < 0)
        bytes[n++] = 0;
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
    ::MultiByteToWideChar(cp, 0, narrow, size, reinterpret_cast<wchar_t*>(&text[0]),
                          static_cast<int>(text.size()));
    return text;
}

} // namespace mql
