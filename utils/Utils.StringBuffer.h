#pragma once
// An owned, always zero-terminated copy of a caller's characters, from which the library hands a
// string copy or a raw pointer back to the host.
//
// The storage is reused in place: a later Init with a text no longer than the capacity neither
// allocates nor moves, so a pointer handed out earlier shows the new text. The string-result
// exports rely on that (their pointer stays valid until the next call).
#include "Utils.Checking.h"
#include "Utils.Error.h"

#include <algorithm>
#include <string>
#include <type_traits>
#include <vector>

namespace Utils {

namespace detail {

#define TOVARIN_BUFFER_TEXTS(C, STRING)                                                                      \
    static constexpr const char* initPointer = "void __cdecl Utils::_STRINGBUF<" C ">::Init(const " C        \
                                               " *,const unsigned __int64,unsigned __int64)";                \
    static constexpr const char* initString = "void __cdecl Utils::_STRINGBUF<" C ">::Init(const " STRING    \
                                              ",const unsigned __int64,unsigned __int64)";                   \
    static constexpr const char* copy =                                                                      \
        STRING " __cdecl Utils::_STRINGBUF<" C ">::Copy(const unsigned __int64,unsigned __int64)";           \
    static constexpr const char* pointerChar =                                                               \
        C " *__cdecl Utils::_STRINGBUF<" C ">::Pointer<" C ">(const unsigned __int64)";                      \
    static constexpr const char* pointerVoid =                                                               \
        "void *__cdecl Utils::_STRINGBUF<" C ">::Pointer<void>(const unsigned __int64)";

// Signature texts of the buffer's members, as the failure headings show them.
template <class C> struct StringBufTexts;
template <> struct StringBufTexts<char> { TOVARIN_BUFFER_TEXTS("char", TOVARIN_STRING) };
template <> struct StringBufTexts<wchar_t> { TOVARIN_BUFFER_TEXTS("wchar_t", TOVARIN_WSTRING) };

#undef TOVARIN_BUFFER_TEXTS

// The lines the buffer's failure texts show, fixed on purpose (see TOVARIN_FIXED_SITE).
const int kInitPointerLine = 73;
const int kInitStringLine = 97;
const int kCopyLine = 286;
const int kPointerLine = 142;

} // namespace detail

template <class C> class _STRINGBUF {
public:
    _STRINGBUF() {}
    virtual ~_STRINGBUF() {}

    // Copies `size` characters of `text` and a terminating zero; `size` 0 or all bits set means up
    // to the text's terminating zero. An explicit size is trusted: no terminator is searched for.
    // `count` is carried for symmetry with the string form and not used.
    // Throws "Отсутствует количество элементов." for an empty text.
    void Init(const C* text, const unsigned __int64 size, unsigned __int64 /*count*/) {
        const unsigned __int64 all = static_cast<unsigned __int64>(-1);
        const unsigned __int64 length =
            size == 0 || size == all ? (text == nullptr ? 0 : std::char_traits<C>::length(text)) : size;
        const unsigned __int64 n = Checking::CountDirect(
            TOVARIN_FIXED_SITE(detail::StringBufTexts<C>::initPointer, __FILE__, detail::kInitPointerLine),
            length, static_cast<unsigned __int64>(0), length);
        Load(text, n);
    }

    // Copies the whole of `text` and a terminating zero; `start` and `count` are carried for symmetry
    // and not used. Throws the range message for an empty text.
    void Init(const std::basic_string<C> text, const unsigned __int64 /*start*/, unsigned __int64 /*count*/) {
        const unsigned __int64 n = Checking::CountDirect(
            TOVARIN_FIXED_SITE(detail::StringBufTexts<C>::initString, __FILE__, detail::kInitStringLine),
            static_cast<unsigned __int64>(text.length()), static_cast<unsigned __int64>(0),
            static_cast<unsigned __int64>(-1));
        Load(text.data(), n);
    }

    // `count` elements from `start`, clipped to the buffer. The terminator is an element like any
    // other: the whole buffer's copy ends with the zero, deliberately.
    std::basic_string<C> Copy(const unsigned __int64 start, unsigned __int64 count) {
        const unsigned __int64 n = Checking::CountDirect(
            TOVARIN_FIXED_SITE(detail::StringBufTexts<C>::copy, __FILE__, detail::kCopyLine),
            static_cast<unsigned __int64>(m_buffer.size()), start, count);
        return std::basic_string<C>(m_buffer.data() + start, static_cast<size_t>(n));
    }

    // The address of the first element (T is C or void), valid until the next Init, Empty or the
    // buffer's end. Throws "Буфер пуст." when the buffer holds nothing.
    template <class T> T* Pointer(const unsigned __int64 /*index*/) {
        static_assert(std::is_same<T, C>::value || std::is_void<T>::value,
                      "Pointer<T>: T is the character or void");
        if (m_buffer.empty())
            TOVARIN_THROW_AT(TOVARIN_FIXED_SITE(std::is_void<T>::value
                                                    ? detail::StringBufTexts<C>::pointerVoid
                                                    : detail::StringBufTexts<C>::pointerChar,
                                                __FILE__, detail::kPointerLine),
                             "[f]", false, L"Буфер пуст.");
        return static_cast<T*>(static_cast<void*>(m_buffer.data()));
    }

    // Element count, terminator included (0 before the first Init).
    unsigned __int64 Size() const { return static_cast<unsigned __int64>(m_buffer.size()); }

    // One zero element: a valid empty text (Init refuses an empty text by design).
    void Empty() { m_buffer.assign(1, C()); }

private:
    // Resizing keeps the capacity: no allocation, and the address stays, while the text fits.
    void Load(const C* text, const unsigned __int64 n) {
        const size_t length = static_cast<size_t>(n);
        m_buffer.resize(length + 1);
        std::copy(text, text + length, m_buffer.begin());
        m_buffer[length] = C();
    }

    std::vector<C> m_buffer;
};

} // namespace Utils
