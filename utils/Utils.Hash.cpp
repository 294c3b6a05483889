#include "Utils.Hash.h"

#include "Utils.CodingStr.h"
#include "Utils.Error.h"

#include <sstream>

namespace Utils {

namespace detail {

void ThrowBadRadix(bool wide, const char* typeName) {
    const std::string signature = std::string(wide ? TOVARIN_WSTRING " __cdecl Utils::NumToStrW<"
                                                   : TOVARIN_STRING " __cdecl Utils::NumToStrA<") +
                                  typeName + ">(" + typeName + ",int,bool)";
    // The text names NumToStrA in both routines, deliberately.
    const wchar_t* const text =
        L"Ошибка в функции \"Utils::NumToStrA()\"\n\nНеправильно выбран идентификатор системы счисления.";
    TOVARIN_THROW(signature.c_str(), false, text);
}

std::string FixedDecimal(double value) {
    std::ostringstream out;
    out << std::fixed << value;
    return out.str();
}

} // namespace detail

namespace Hash {

namespace detail {

std::wstring EvaluateName(const char* registerType, long long poly, long long init, long long xorOut,
                          const char* textType, const char* file, int line) {
    // The parameters show as signed decimals, as the compiler's signature text shows them.
    std::ostringstream signature;
    signature << registerType << " __cdecl Utils::Hash::CRC<" << registerType << "," << poly << "," << init
              << "," << xorOut << ">::Evaluate<" << textType << ">(const " << textType << " &)";
    const std::string text = signature.str();
    return Error::WhereW(TOVARIN_FIXED_SITE(text.c_str(), file, line), "");
}

} // namespace detail

namespace {
Smart::Global<CRC64_ECMA> g_CRC64;
} // namespace

Smart::Pointer<CRC64_ECMA> SharedCRC64() {
    return g_CRC64.Get();
}

std::wstring PathKey(const std::wstring& path) {
    return NumToStrW(SharedCRC64()->Evaluate(path), 2);
}

} // namespace Hash
} // namespace Utils
