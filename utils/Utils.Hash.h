#pragma once
// Table-driven CRC, the CRC-64 key of a path, and the general number-to-text routine.
#include "Utils.Smart.h"
#include "Utils.Type.h"

#include <cstddef>
#include <string>
#include <type_traits>

namespace Utils {

namespace detail {
// The cold failure of NumToStrA/NumToStrW: throws the wrong-radix text. `typeName` is the value
// type as the signature shows it.
[[noreturn]] void ThrowBadRadix(bool wide, const char* typeName);

// Digits of an integral value (already as its unsigned magnitude) in base 8, 10 or 16.
template <class Char>
void AppendDigits(std::basic_string<Char>& out, unsigned long long value, unsigned base) {
    Char digits[24];
    std::size_t n = 0;
    do {
        digits[n++] = static_cast<Char>("0123456789ABCDEF"[value % base]);
        value /= base;
    } while (value != 0);
    while (n != 0)
        out += digits[--n];
}

std::string FixedDecimal(double value); // fixed notation, six decimals

template <class T> struct NumberTypeName {
    static const char* Get() { return "T"; }
};
#define TOVARIN_NUMBER_TYPE_NAME(type, text)                                                                 \
    template <> struct NumberTypeName<type> {                                                                \
        static const char* Get() { return text; }                                                            \
    };
TOVARIN_NUMBER_TYPE_NAME(char, "char")
TOVARIN_NUMBER_TYPE_NAME(signed char, "signed char")
TOVARIN_NUMBER_TYPE_NAME(unsigned char, "unsigned char")
TOVARIN_NUMBER_TYPE_NAME(short, "short")
TOVARIN_NUMBER_TYPE_NAME(unsigned short, "unsigned short")
TOVARIN_NUMBER_TYPE_NAME(int, "int")
TOVARIN_NUMBER_TYPE_NAME(unsigned int, "unsigned int")
TOVARIN_NUMBER_TYPE_NAME(long, "long")
TOVARIN_NUMBER_TYPE_NAME(unsigned long, "unsigned long")
TOVARIN_NUMBER_TYPE_NAME(long long, "__int64")
TOVARIN_NUMBER_TYPE_NAME(unsigned long long, "unsigned __int64")
TOVARIN_NUMBER_TYPE_NAME(float, "float")
TOVARIN_NUMBER_TYPE_NAME(double, "double")
#undef TOVARIN_NUMBER_TYPE_NAME

template <class Char, class T> std::basic_string<Char> NumToStr(T value, int radix, bool prefix) {
    static_assert(std::is_arithmetic<T>::value, "NumToStr takes numbers");
    std::basic_string<Char> out;
    if (radix < 0 || radix > 2)
        ThrowBadRadix(sizeof(Char) != 1, NumberTypeName<T>::Get());
    if constexpr (std::is_floating_point<T>::value) {
        // Digits in decimal, fixed notation, whatever the radix: bases apply to integers only.
        for (const char c : FixedDecimal(value))
            out += static_cast<Char>(c);
    } else if constexpr (std::is_same<T, bool>::value) {
        out += static_cast<Char>(value ? '1' : '0');
    } else {
        typedef std::make_unsigned_t<T> U;
        if (radix == 1) {
            const bool negative = std::is_signed<T>::value && value < 0;
            // The magnitude of the most negative value still fits the unsigned type.
            const U magnitude =
                negative ? static_cast<U>(U(0) - static_cast<U>(value)) : static_cast<U>(value);
            if (negative)
                out += Char('-');
            AppendDigits(out, magnitude, 10);
        } else if (radix == 0) {
            // As a stream shows its base: a zero is "0" with or without the prefix.
            if (prefix && value != 0)
                out += Char('0');
            AppendDigits(out, static_cast<U>(value), 8);
        } else {
            if (prefix) {
                out += Char('0');
                out += Char('x');
            }
            AppendDigits(out, static_cast<U>(value), 16);
        }
    }
    return out;
}
} // namespace detail

// A number as text. Radix selector: 0 octal (prefix "0" on request), 1 decimal (floating values in
// fixed notation), 2 hexadecimal in upper case (prefix "0x" on request). Negative integers are
// shown in octal and hexadecimal as their two's complement in T. Any other selector throws
// "Ошибка в функции \"Utils::NumToStrA()\"\n\nНеправильно выбран идентификатор системы счисления."
// (the wide routine names NumToStrA too, deliberately).
template <class T> std::wstring NumToStrW(T value, int radix, bool prefix = false) {
    return detail::NumToStr<wchar_t>(value, radix, prefix);
}
template <class T> std::string NumToStrA(T value, int radix, bool prefix = false) {
    return detail::NumToStr<char>(value, radix, prefix);
}

namespace Hash {

namespace detail {
// The caller description that Evaluate hands to Type::IsWide: its signature and location, so that
// a text type of the wrong width reports where the CRC was asked for.
std::wstring EvaluateName(const char* registerType, long long poly, long long init, long long xorOut,
                          const char* textType, const char* file, int line);

// The line Evaluate's where-text shows, fixed on purpose (see TOVARIN_FIXED_SITE).
const int kEvaluateLine = 338;

template <class S> struct TextTypeName {
    static const char* Get() { return "T"; }
};
template <> struct TextTypeName<std::string> {
    static const char* Get() { return TOVARIN_STRING; }
};
template <> struct TextTypeName<std::wstring> {
    static const char* Get() { return TOVARIN_WSTRING; }
};
} // namespace detail

// A reflected, table-driven CRC over the bytes of a string's storage.
template <class Register, Register Poly, Register Init, Register XorOut> class CRC {
    static_assert(std::is_unsigned<Register>::value, "the register is an unsigned integer");

public:
    CRC() {
        for (unsigned index = 0; index < 256; ++index) {
            Register entry = index;
            for (int bit = 0; bit < 8; ++bit)
                entry = (entry & 1) ? (entry >> 1) ^ Poly : entry >> 1;
            table_[index] = entry;
        }
    }
    virtual ~CRC() {}

    // The CRC of the string's characters, fed in memory order (a UTF-16 string as UTF-16LE); the
    // terminating zero is not fed. The register is local to each call, so concurrent evaluations on
    // one object cannot disturb each other. Throws when S is neither 8- nor 16-bit text.
    template <class S> Register Evaluate(const S& text) const {
        // The width depends on the type only: asked once per type.
        static const bool wide = Type::IsWide<S>(detail::EvaluateName(
            TypeName(), static_cast<long long>(Poly), static_cast<long long>(Init),
            static_cast<long long>(XorOut), detail::TextTypeName<S>::Get(), __FILE__, detail::kEvaluateLine));
        const std::size_t size = text.size() * (wide ? 2 : 1);
        const unsigned char* bytes = reinterpret_cast<const unsigned char*>(text.data());
        Register value = Init;
        for (std::size_t i = 0; i < size; ++i)
            value = table_[static_cast<unsigned char>(value ^ bytes[i])] ^ (value >> 8);
        return value ^ XorOut;
    }

    Register TableEntry(unsigned char index) const { return table_[index]; }

private:
    static const char* TypeName() {
        return sizeof(Register) == 8   ? "unsigned __int64"
               : sizeof(Register) == 4 ? "unsigned long"
                                       : "unsigned short";
    }

    Register table_[256];
};

// CRC-64/XZ: the ECMA-182 polynomial, reflected, register and result complemented.
class CRC64_ECMA : public CRC<unsigned __int64, 0xC96C5795D7870F42ull, ~0ull, ~0ull>,
                   public virtual Smart::Base {
public:
    CRC64_ECMA() {}
    virtual ~CRC64_ECMA() {}
};

// Declared for their holder types; the library never builds or evaluates them.
class CRC32;
class CRC32Q;
typedef Smart::Pointer<CRC64_ECMA> CRC64_ECMAPointer;
typedef Smart::Pointer<CRC32> CRC32Pointer;
typedef Smart::Pointer<CRC32Q> CRC32QPointer;

// The process's CRC-64 engine, its table built once under the smart-pointer lock on first use.
Smart::Pointer<CRC64_ECMA> SharedCRC64();

// The key of a path: its CRC-64 in upper-case hexadecimal, no prefix, no leading zeros ("0" for an
// empty path).
std::wstring PathKey(const std::wstring& path);

} // namespace Hash
} // namespace Utils
