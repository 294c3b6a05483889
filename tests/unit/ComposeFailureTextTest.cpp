// The failure-text composer: headings, marker removal, suffix placement, last-error block.
#include "utils/Utils.Error.h"

#include <windows.h>

#include <gtest/gtest.h>

namespace {

std::wstring SystemText(unsigned long code) {
    wchar_t buffer[2048] = {};
    ::FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM, nullptr, code, 0, buffer, 2048, nullptr);
    return buffer;
}

struct HeadingCase {
    const char* name;
    const wchar_t* where;
    const wchar_t* expected;
};

class ComposeHeading : public testing::TestWithParam<HeadingCase> {};

TEST_P(ComposeHeading, ChoosesHeadingAndPlacesSuffix) {
    const HeadingCase& c = GetParam();
    EXPECT_EQ(ComposeFailureTextW(c.where, L"", false), c.expected);
}

const HeadingCase kHeadings[] = {
    {"Function", L"void f(int)[f]\r\nFile: \"a.cpp\"\r\nLine: 7\r\n",
     L"Ошибка в функции \"void f(int)\"!\r\nFile: \"a.cpp\"\r\nLine: 7\r\n"},
    {"FunctionUpper", L"void f(int)[F]\r\nL", L"Ошибка в функции \"void f(int)\"!\r\nL"},
    {"FunctionDetected", L"int g(long)[f][d]\r\nL", L"Обнаружена ошибка функцией \"int g(long)\"!\r\nL"},
    {"FunctionWarning", L"int g(long)[f][w]\r\nL", L"Предупреждение функции \"int g(long)\"!\r\nL"},
    {"MethodPlain", L"int C::m(long)[x]\r\nL", L"Ошибка в методе \"int C::m(long)\"!\r\nL"},
    {"MethodDetected", L"int C::m(long)[d]\r\nL", L"Обнаружена ошибка методом \"int C::m(long)\"!\r\nL"},
    {"MethodWarning", L"int C::m(long)[W]\r\nL", L"Предупреждение метода \"int C::m(long)\"!\r\nL"},
    {"Operator", L"C::operator+(long)[o]\r\nL", L"Ошибка в операторе \"C::operator+(long)\"!\r\nL"},
    {"OperatorDetected", L"C::operator+(long)[O][D]\r\nL",
     L"Обнаружена ошибка оператором \"C::operator+(long)\"!\r\nL"},
    {"OperatorWarning", L"C::operator+(long)[o][w]\r\nL",
     L"Предупреждение оператора \"C::operator+(long)\"!\r\nL"},
    // Without parentheses the suffix supplies them.
    {"NoParentheses", L"Name[f]\r\nL", L"Ошибка в функции \"Name()\"!\r\nL"},
    // Without any block the suffix is appended.
    {"NoBlock", L"void f(int)", L"Ошибка в методе \"void f(int)\"!"},
    // A block preceded (not followed) by the line break: the suffix goes before the line break.
    {"BlockAfterLineBreak", L"void f(int)\r\n[f]File", L"Ошибка в функции \"void f(int)\"!\r\nFile"},
    // "[]" hides itself: the block search starts after it.
    {"EmptyPairSkipped", L"int a[](int)[f]\r\nL", L"Ошибка в функции \"int a[](int)\"!\r\nL"},
};

INSTANTIATE_TEST_SUITE_P(Headings, ComposeHeading, testing::ValuesIn(kHeadings),
                         [](const testing::TestParamInfo<HeadingCase>& info) { return info.param.name; });

TEST(ComposeFailureText, MessageOnItsOwnLineWithoutLastError) {
    EXPECT_EQ(ComposeFailureTextW(L"void f(int)[f]\r\nL\r\n", L"Сообщение.", false),
              L"Ошибка в функции \"void f(int)\"!\r\nL\r\n\nСообщение.\n");
}

TEST(ComposeFailureText, LastErrorBlockGivesCodeOneAfterAFailedCall) {
    ::SetLastError(0);
    ASSERT_FALSE(::CloseHandle(reinterpret_cast<HANDLE>(static_cast<intptr_t>(0x7FFF0))));
    ASSERT_NE(::GetLastError(), 0u);
    const std::wstring text = ComposeFailureTextW(L"void f(int)[f]\r\nL\r\n", L"Сообщение.", true);
    EXPECT_EQ(text, L"Ошибка в функции \"void f(int)\"!\r\nL\r\n\nLast Error: 1.\n" + SystemText(1) +
                        L"\nСообщение.\n");
}

TEST(ComposeFailureText, LastErrorBlockGivesCodeZeroWithoutError) {
    ::SetLastError(0);
    const std::wstring text = ComposeFailureTextW(L"void f(int)[f]\r\nL\r\n", L"", true);
    EXPECT_EQ(text, L"Ошибка в функции \"void f(int)\"!\r\nL\r\n\nLast Error: 0.\n" + SystemText(0) + L"\n");
}

TEST(ComposeFailureText, NarrowComposerHasTheSameShape) {
    ::SetLastError(5);
    const std::string text = ComposeFailureTextA("void f(int)[f]\r\nL\r\n", "message", true);
    EXPECT_NE(text.find("\"void f(int)\"!\r\nL\r\n\nLast Error: 1.\n"), std::string::npos) << text;
    EXPECT_EQ(text.substr(text.size() - 8), "message\n");
    // The heading is the 8-bit (code page 1251) form of "Ошибка в функции \"".
    EXPECT_EQ(text.substr(0, 18),
              std::string("\xCE\xF8\xE8\xE1\xEA\xE0 \xE2 \xF4\xF3\xED\xEA\xF6\xE8\xE8 \"", 18));
}

TEST(ComposeFailureText, SystemDescriptionLayout) {
    EXPECT_EQ(Utils::Error::SystemDescriptionW(5), L"\nLast Error: 5.\n" + SystemText(5) + L"\n");
    ::SetLastError(1234);
    EXPECT_EQ(Utils::Error::DescriptionW<bool>(false), L"");
    EXPECT_EQ(Utils::Error::DescriptionW<bool>(true), Utils::Error::SystemDescriptionW(1));
}

TEST(ThrowAt, ComposesSignatureBaseNameAndLine) {
    try {
        ::SetLastError(0);
        TOVARIN_THROW("void __cdecl Sample(int)", false, L"Текст.");
        FAIL() << "no throw";
    } catch (const std::wstring& text) {
        EXPECT_EQ(text.find(L"Ошибка в функции \"void __cdecl Sample(int)\"!\r\nFile: "
                            L"\"ComposeFailureTextTest.cpp\"\r\nLine: "),
                  0u);
        EXPECT_EQ(text.substr(text.size() - 8), L"\nТекст.\n");
    }
}

TEST(ThrowAt, KeepsTheLastErrorAcrossBuildingTheMessage) {
    try {
        ::SetLastError(0);
        ::CloseHandle(reinterpret_cast<HANDLE>(static_cast<intptr_t>(0x7FFF0)));
        // Building this message makes system calls of its own that clear the last error.
        TOVARIN_THROW("void __cdecl Sample(int)", true, std::wstring(L"x") + L"y");
        FAIL() << "no throw";
    } catch (const std::wstring& text) {
        EXPECT_NE(text.find(L"\nLast Error: 1.\n"), std::wstring::npos);
    }
}

} // namespace
