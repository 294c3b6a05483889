// CRC-64/XZ over 8- and 16-bit strings, the path key, the shared engine, concurrent evaluation,
// and the number-to-text routine.
#include "utils/Utils.Hash.h"

#include "support/FailureText.h"
#include "support/TempDir.h" // Narrow

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <cwchar>
#include <future>
#include <string>
#include <vector>

using Utils::Hash::CRC64_ECMA;
using Utils::Hash::PathKey;
using Utils::Hash::SharedCRC64;

namespace {

// CRC-64/XZ one bit at a time, straight from its definition: no table.
std::uint64_t ReferenceCrc64(const void* data, std::size_t size) {
    const unsigned char* bytes = static_cast<const unsigned char*>(data);
    std::uint64_t crc = ~0ull;
    for (std::size_t i = 0; i < size; ++i) {
        crc ^= bytes[i];
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 1) ? (crc >> 1) ^ 0xC96C5795D7870F42ull : crc >> 1;
    }
    return ~crc;
}
std::uint64_t Reference(const std::string& text) {
    return ReferenceCrc64(text.data(), text.size());
}
std::uint64_t Reference(const std::wstring& text) {
    return ReferenceCrc64(text.data(), text.size() * 2);
}

std::wstring ReferenceHex(std::uint64_t value) {
    wchar_t buffer[32];
    std::swprintf(buffer, 32, L"%llX", static_cast<unsigned long long>(value));
    return buffer;
}

// ---------------------------------------------------------------------------------------------
// Check values and the table

TEST(Crc64, PublishedCheckValues) {
    const CRC64_ECMA crc;
    EXPECT_EQ(crc.Evaluate(std::string("123456789")), 0x995DC9BBDF1939FAull);
    EXPECT_EQ(crc.Evaluate(std::wstring(L"123456789")), 0xCC1CBC7DE1A8AA8Dull); // 18 bytes, UTF-16LE
    EXPECT_EQ(crc.Evaluate(std::string()), 0u);
    EXPECT_EQ(crc.Evaluate(std::wstring()), 0u);
}

TEST(Crc64, TableEntries) {
    const CRC64_ECMA crc;
    EXPECT_EQ(crc.TableEntry(0), 0u);
    EXPECT_EQ(crc.TableEntry(1), 0xB32E4CBE03A75F6Full);
    EXPECT_EQ(crc.TableEntry(128), 0xC96C5795D7870F42ull);
}

struct NarrowCase {
    const char* name;
    std::string text;
};
struct WideCase {
    const char* name;
    std::wstring text;
};

const NarrowCase kNarrow[] = {
    {"OneByte", "a"},
    {"EmbeddedZero", std::string("a\0b", 3)}, // the whole size is fed, not up to the zero
    {"HighBytes", "\xFF\x80\x7F\x01"},
    {"Path", "C:\\Program Files\\Terminal\\MQL5\\Files\\data.bin"},
    {"Long", std::string(5000, 'x')},
};
const WideCase kWide[] = {
    {"OneCharacter", L"a"},
    {"Cyrillic", L"C:\\Данные\\файл.txt"},
    {"EmbeddedZero", std::wstring(L"a\0b", 3)},
    {"HighUnits", L"\xFFFF\x8000\x00FF"},
    {"Long", std::wstring(5000, L'\x0416')},
};

class Crc64Narrow : public testing::TestWithParam<NarrowCase> {};
class Crc64Wide : public testing::TestWithParam<WideCase> {};

TEST_P(Crc64Narrow, MatchesTheBitwiseDefinition) {
    EXPECT_EQ(CRC64_ECMA().Evaluate(GetParam().text), Reference(GetParam().text));
}
TEST_P(Crc64Wide, MatchesTheBitwiseDefinitionOverUtf16Le) {
    EXPECT_EQ(CRC64_ECMA().Evaluate(GetParam().text), Reference(GetParam().text));
}

INSTANTIATE_TEST_SUITE_P(Texts, Crc64Narrow, testing::ValuesIn(kNarrow),
                         [](const testing::TestParamInfo<NarrowCase>& info) { return info.param.name; });
INSTANTIATE_TEST_SUITE_P(Texts, Crc64Wide, testing::ValuesIn(kWide),
                         [](const testing::TestParamInfo<WideCase>& info) { return info.param.name; });

TEST(Crc64, OtherTextTypesFailNamingWhereTheCrcWasAskedFor) {
    const CRC64_ECMA crc;
    for (int attempt = 0; attempt < 2; ++attempt) { // a failed first call does not settle the width
        std::wstring text;
        try {
            crc.Evaluate(std::u16string(u"abc"));
        } catch (const std::wstring& thrown) {
            text = thrown;
        }
        EXPECT_NE(
            text.find(
                L"Ошибка в\r\nunsigned __int64 __cdecl Utils::Hash::CRC<unsigned "
                L"__int64,-3932672073523589310,-1,-1>::Evaluate<T>(const T &)\r\nFile: \"Utils.Hash.h\"\r\n"
                L"Line: "),
            std::wstring::npos)
            << TestSupport::Narrow(text);
        EXPECT_NE(text.find(L"Применён неправильный тип данных."), std::wstring::npos);
    }
}

TEST(Crc64, EvaluateNameOfAWideStringShowsTheCompilerSignature) {
    const std::wstring name = Utils::Hash::detail::EvaluateName(
        "unsigned __int64", static_cast<long long>(0xC96C5795D7870F42ull), -1, -1,
        Utils::Hash::detail::TextTypeName<std::wstring>::Get(), "utils/Utils.Hash.h", 338);
    EXPECT_EQ(name,
              L"unsigned __int64 __cdecl Utils::Hash::CRC<unsigned __int64,-3932672073523589310,-1,-1>::"
              L"Evaluate<class std::basic_string<wchar_t,struct std::char_traits<wchar_t>,class "
              L"std::allocator<wchar_t> >>(const class std::basic_string<wchar_t,struct "
              L"std::char_traits<wchar_t>,class std::allocator<wchar_t> > &)\r\nFile: \"Utils.Hash.h\"\r\n"
              L"Line: 338\r\n");
}

// ---------------------------------------------------------------------------------------------
// Path keys

struct KeyCase {
    const char* name;
    const wchar_t* path;
    const wchar_t* key;
};

const KeyCase kKeys[] = {
    {"Digits", L"123456789", L"CC1CBC7DE1A8AA8D"},
    {"Empty", L"", L"0"},
};

class PathKeys : public testing::TestWithParam<KeyCase> {};

TEST_P(PathKeys, AreUpperCaseHexadecimal) {
    EXPECT_EQ(PathKey(GetParam().path), GetParam().key);
}

INSTANTIATE_TEST_SUITE_P(Known, PathKeys, testing::ValuesIn(kKeys),
                         [](const testing::TestParamInfo<KeyCase>& info) { return info.param.name; });

// A path whose CRC lies below `limit`, found by trying numbered names.
std::wstring PathWithCrcBelow(std::uint64_t limit) {
    for (int i = 0; i < 1000000; ++i) {
        const std::wstring path = L"C:\\Data\\file" + std::to_wstring(i) + L".bin";
        if (Reference(path) < limit)
            return path;
    }
    return std::wstring();
}

TEST(PathKey, DropsLeadingZeros) {
    for (const int bits : {60, 56, 52}) {
        SCOPED_TRACE(bits);
        const std::wstring path = PathWithCrcBelow(1ull << bits);
        ASSERT_FALSE(path.empty());
        const std::wstring key = PathKey(path);
        EXPECT_EQ(key, ReferenceHex(Reference(path)));
        EXPECT_LE(key.size(), static_cast<std::size_t>(bits / 4));
        EXPECT_NE(key[0], L'0');
    }
}

// ---------------------------------------------------------------------------------------------
// The shared engine and concurrency

TEST(SharedCrc64, IsOneInstanceWithACountPerCopy) {
    Utils::Smart::Pointer<CRC64_ECMA> first = SharedCRC64();
    ASSERT_TRUE(first);
    const int count = first->Count();
    {
        Utils::Smart::Pointer<CRC64_ECMA> second = SharedCRC64();
        EXPECT_EQ(second.Get(), first.Get());
        EXPECT_EQ(first->Count(), count + 1);
    }
    EXPECT_EQ(first->Count(), count);
}

TEST(SharedCrc64, ConcurrentEvaluationsGiveTheSameResults) {
    std::vector<std::wstring> paths;
    std::vector<std::wstring> keys;
    for (int i = 0; i < 64; ++i) {
        // Long texts keep evaluations overlapping: a shared register would mix them up.
        paths.push_back(L"C:\\" + std::wstring(2000 + i * 37, static_cast<wchar_t>(L'A' + i % 26)) + L"\\" +
                        std::to_wstring(i));
        keys.push_back(ReferenceHex(Reference(paths.back())));
    }
    auto work = [&paths, &keys](int offset) {
        int mismatches = 0;
        for (int round = 0; round < 20; ++round)
            for (std::size_t i = 0; i < paths.size(); ++i) {
                const std::size_t at = (i + static_cast<std::size_t>(offset)) % paths.size();
                if (PathKey(paths[at]) != keys[at])
                    ++mismatches;
            }
        return mismatches;
    };
    std::vector<std::future<int>> threads;
    for (int t = 0; t < 4; ++t)
        threads.push_back(std::async(std::launch::async, work, t * 16));
    for (std::future<int>& thread : threads) {
        ASSERT_EQ(thread.wait_for(std::chrono::seconds(120)), std::future_status::ready);
        EXPECT_EQ(thread.get(), 0);
    }
}

// ---------------------------------------------------------------------------------------------
// Numbers as text

struct NumberCase {
    const char* name;
    unsigned long long value;
    int radix;
    bool prefix;
    const char* text;
};

const NumberCase kNumbers[] = {
    {"OctalZero", 0, 0, false, "0"},
    {"OctalZeroWithPrefix", 0, 0, true, "0"},
    {"Octal", 8, 0, false, "10"},
    {"OctalWithPrefix", 8, 0, true, "010"},
    {"OctalMax", ~0ull, 0, false, "1777777777777777777777"},
    {"DecimalZero", 0, 1, false, "0"},
    {"Decimal", 1234567890, 1, false, "1234567890"},
    {"DecimalPrefixIgnored", 42, 1, true, "42"},
    {"DecimalMax", ~0ull, 1, false, "18446744073709551615"},
    {"HexZero", 0, 2, false, "0"},
    {"HexZeroWithPrefix", 0, 2, true, "0x0"},
    {"HexUpperCase", 0xABCDEF, 2, false, "ABCDEF"},
    {"HexWithPrefix", 255, 2, true, "0xFF"},
    {"HexNoLeadingZeros", 0x00A1000000000000ull, 2, false, "A1000000000000"},
    {"HexMax", ~0ull, 2, false, "FFFFFFFFFFFFFFFF"},
};

class NumToStr : public testing::TestWithParam<NumberCase> {};

TEST_P(NumToStr, GivesTheSameTextInBothWidths) {
    const NumberCase& c = GetParam();
    const std::string narrow = Utils::NumToStrA(c.value, c.radix, c.prefix);
    const std::wstring wide = Utils::NumToStrW(c.value, c.radix, c.prefix);
    EXPECT_EQ(narrow, c.text);
    EXPECT_EQ(wide, std::wstring(narrow.begin(), narrow.end()));
}

INSTANTIATE_TEST_SUITE_P(Radices, NumToStr, testing::ValuesIn(kNumbers),
                         [](const testing::TestParamInfo<NumberCase>& info) { return info.param.name; });

TEST(NumToStrTypes, SignedAndFloatingValues) {
    EXPECT_EQ(Utils::NumToStrW(-5, 1), L"-5");
    EXPECT_EQ(Utils::NumToStrA(-9223372036854775807LL - 1, 1), "-9223372036854775808");
    EXPECT_EQ(Utils::NumToStrW(-1, 2), L"FFFFFFFF"); // two's complement of the value's own type
    EXPECT_EQ(Utils::NumToStrA(static_cast<short>(-1), 0, true), "0177777");
    EXPECT_EQ(Utils::NumToStrW(1.5, 1), L"1.500000");
    EXPECT_EQ(Utils::NumToStrA(-0.25, 1), "-0.250000");
    EXPECT_EQ(Utils::NumToStrA(1e20, 1), "100000000000000000000.000000"); // fixed, never exponent form
}

TEST(NumToStrTypes, WrongRadixThrowsTheSameTextInBothWidths) {
    for (const int radix : {3, -1, 16}) {
        SCOPED_TRACE(radix);
        std::wstring narrow;
        std::wstring wide;
        try {
            Utils::NumToStrA(10ull, radix);
        } catch (const std::wstring& text) {
            narrow = text;
        }
        try {
            Utils::NumToStrW(10ull, radix, true);
        } catch (const std::wstring& text) {
            wide = text;
        }
        const std::wstring message =
            L"Ошибка в функции \"Utils::NumToStrA()\"\n\nНеправильно выбран идентификатор системы счисления.";
        EXPECT_EQ(narrow,
                  TestSupport::ExpectedFailure(
                      "class std::basic_string<char,struct std::char_traits<char>,class std::allocator<char> "
                      "> __cdecl Utils::NumToStrA<unsigned __int64>(unsigned __int64,int,bool)",
                      "Utils.Hash.cpp", TestSupport::ReportedLine(narrow), message));
        EXPECT_EQ(wide, TestSupport::ExpectedFailure(
                            "class std::basic_string<wchar_t,struct std::char_traits<wchar_t>,class "
                            "std::allocator<wchar_t> > __cdecl Utils::NumToStrW<unsigned __int64>(unsigned "
                            "__int64,int,bool)",
                            "Utils.Hash.cpp", TestSupport::ReportedLine(wide), message));
    }
}

} // namespace
