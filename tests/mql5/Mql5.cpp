#include "Mql5.h"

#include "support/Exports.h"

namespace mql {

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
    ::MultiByteToWideChar(cp, 0, narrow, size, reinterpret_cast<wchar_t*>(&text[0]),
                          static_cast<int>(text.size()));
    return text;
}

void* Bind(const char* name) {
    return TestSupport::FromModule<void*>(TestSupport::TovarinModule(), name);
}

} // namespace mql
