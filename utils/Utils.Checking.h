#pragma once
// Range checks of caller arrays: a host passes an array as (total, start, count), where a count with
// all bits set means "to the end". The checks turn that into the number of elements to process, or
// throw a composed failure text (std::wstring) that quotes all three numbers.
//
// The array exports call these on every call, so the success paths do no text work and allocate
// nothing: every failure is handed to a cold function in Utils.Checking.cpp, which builds the text.
#include "Utils.Error.h"

#include <string>
#include <type_traits>

namespace Utils {
namespace Checking {

namespace detail {

// The checker instances; each failure heading names the one that refused.
enum class Instance { Direct64, Direct32, Reverse64, Other };

template <class Total, class Start, class Count> constexpr Instance DirectInstance() {
    return std::is_same<Total, unsigned __int64>::value && std::is_same<Start, unsigned __int64>::value &&
                   std::is_same<Count, unsigned __int64>::value
               ? Instance::Direct64
           : std::is_same<Total, unsigned __int64>::value && std::is_same<Start, unsigned long>::value &&
                   std::is_same<Count, unsigned long>::value
               ? Instance::Direct32
               : Instance::Other;
}

// Throw the count or range message of a forward check; `method` describes the caller.
[[noreturn]] void DirectRefused(Instance instance, const std::wstring& method, unsigned __int64 total,
                                unsigned __int64 start, unsigned __int64 count);
[[noreturn]] void DirectRefused(Instance instance, const Error::Site& method, unsigned __int64 total,
                                unsigned __int64 start, unsigned __int64 count);
// Throw the zero-total message of a backward check.
[[noreturn]] void ReverseRefused(const std::wstring& method, unsigned __int64 start);
[[noreturn]] void ReverseRefused(const Error::Site& method, unsigned __int64 start);

// The forward rule. False when the request is refused; otherwise `count` becomes the number of
// elements to process: a count that runs past the end (or all bits set) is clipped to the rest.
template <class Total, class Start, class Count>
bool Clip(const Total total, const Start start, Count& count) noexcept {
    const unsigned __int64 t = static_cast<unsigned __int64>(total);
    const unsigned __int64 s = static_cast<unsigned __int64>(start);
    const unsigned __int64 c = static_cast<unsigned __int64>(count);
    if (c == 0 || t == 0 || s >= t)
        return false;
    if (count == static_cast<Count>(-1) || c > t - s)
        count = static_cast<Count>(t - s);
    return true;
}

template <class Method, class Total, class Start, class Count>
Count Direct(const Method& method, const Total total, const Start start, const Count count) {
    Count n = count;
    if (!Clip(total, start, n))
        DirectRefused(DirectInstance<Total, Start, Count>(), method, static_cast<unsigned __int64>(total),
                      static_cast<unsigned __int64>(start), static_cast<unsigned __int64>(count));
    return n;
}

template <class Method>
unsigned __int64 Reverse(const Method& method, const unsigned __int64 total, unsigned __int64& start) {
    if (total == 0)
        ReverseRefused(method, start);
    if (start < total)
        return start + 1;
    start = total - 1;
    return total;
}

} // namespace detail

// The number of elements to process from `start` towards the end of an array of `total` elements.
// Throws when `count` is 0, when `total` is 0 and when `start` is at or beyond the end.
template <class Total, class Start, class Count>
Count CountDirect(const std::wstring& method, const Total total, const Start start, const Count count) {
    return detail::Direct(method, total, start, count);
}

// The same with the caller given as a site; its where-text is built only when the check fails.
template <class Total, class Start, class Count>
Count CountDirect(const Error::Site& method, const Total total, const Start start, const Count count) {
    return detail::Direct(method, total, start, count);
}

// The number of elements from `start` down to index 0. A start with all bits set or beyond the end
// is moved to the last element (only on success). `count` does not limit the walk: it always runs
// to index 0. Throws when `total` is 0.
inline unsigned __int64 CountReverse(const std::wstring& method, const unsigned __int64 total,
                                     unsigned __int64& start, const unsigned __int64 /*count*/) {
    return detail::Reverse(method, total, start);
}

inline unsigned __int64 CountReverse(const Error::Site& method, const unsigned __int64 total,
                                     unsigned __int64& start, const unsigned __int64 /*count*/) {
    return detail::Reverse(method, total, start);
}

} // namespace Checking
} // namespace Utils
