// Conversions between 8-bit code-page text and UTF-16, and the character-width check.
#include "utils/Utils.CodingStr.h"
#include "utils/Utils.Type.h"

#include <windows.h>

#include <gtest/gtest.h>

using Utils::CodingStr::AnsiToUnicode;
using Utils::CodingStr::UnicodeToAnsi;

TEST(CodingStr, EmptyInputGivesEmptyOutputAndClearsLastError) {
    ::SetLastError(87);
    EXPECT_EQ(AnsiToUnicode("", 0), L"");
    EXPECT_EQ(::GetLastError(), 0u);
    ::SetLastError(87);
    EXPECT_EQ(UnicodeToAnsi(L"", 0), "");
    EXPECT_EQ(::GetLastError(), 0u);
}

TEST(CodingStr, RoundTripsCodePageText) {
    EXPECT_EQ(AnsiToUnicode("Hello, World", 0), L"Hello, World");
    EXPECT_EQ(UnicodeToAnsi(L"Hello, World", 0), "Hello, World");
    EXPECT_EQ(AnsiToUnicode("\xC0\xFF", 1251), L"Ая");
    EXPECT_EQ(UnicodeToAnsi(L"Аяё", 1251), "\xC0\xFF\xB8");
}

TEST(CodingStr, EmbeddedZeroEndsTheConversion) {
    EXPECT_EQ(AnsiToUnicode(std::string("ab\0cd", 5), 0), L"ab");
    EXPECT_EQ(UnicodeToAnsi(std::wstring(L"ab\0cd", 5), 0), "ab");
}

TEST(CodingStr, CharactersOutsideTheCodePageBecomeTheDefaultCharacter) {
    const std::string narrow = UnicodeToAnsi(L"a\u4E2Db", 1252);
    ASSERT_EQ(narrow.size(), 3u);
    EXPECT_EQ(narrow[0], 'a');
    EXPECT_EQ(narrow[1], '?');
    EXPECT_EQ(narrow[2], 'b');
}

TEST(CodingStr, FailedConversionThrowsWithSignatureAndLastError) {
    try {
        AnsiToUnicode("abc", 77777); // no such code page
        FAIL() << "no throw";
    } catch (const std::wstring& text) {
        EXPECT_NE(text.find(L"Utils::CodingStr::AnsiToUnicode(const class std::basic_string<char"),
                  std::wstring::npos);
        EXPECT_NE(text.find(L"File: \"Utils.CodingStr.cpp\""), std::wstring::npos);
        EXPECT_NE(text.find(L"\nLast Error: 1.\n"), std::wstring::npos);
        EXPECT_NE(text.find(L"В строке отсутствуют символы.\n"), std::wstring::npos);
    }
    EXPECT_THROW(UnicodeToAnsi(L"abc", 77777), std::wstring);
}

TEST(IsWide, AnswersByType) {
    EXPECT_TRUE(Utils::Type::IsWide<std::wstring>(L""));
    EXPECT_FALSE(Utils::Type::IsWide<std::string>(L""));
    EXPECT_TRUE(Utils::Type::IsWide<unsigned short>(L""));
    EXPECT_TRUE(Utils::Type::IsWide<short>(L""));
    EXPECT_TRUE(Utils::Type::IsWide<wchar_t>(L""));
    EXPECT_FALSE(Utils::Type::IsWide<unsigned char>(L""));
    EXPECT_FALSE(Utils::Type::IsWide<const char*>(L""));
}

TEST(IsWide, OtherTypesFailNamingTheCaller) {
    try {
        Utils::Type::IsWide<int>(L"");
        FAIL() << "no throw";
    } catch (const std::wstring& text) {
        EXPECT_NE(
            text.find(
                L"Ошибка в\r\nUnknown\r\n\r\nПрименён неправильный тип данных.\r\nВозможны только типы: "
                L"CHAR, WCHAR, TCHAR, std::string, std::wstring."),
            std::wstring::npos);
    }
    try {
        Utils::Type::IsWide<double>(L"caller");
        FAIL() << "no throw";
    } catch (const std::wstring& text) {
        EXPECT_NE(text.find(L"Ошибка в\r\ncaller\r\n"), std::wstring::npos);
    }
}
