// The owned, zero-terminated copy of caller text: what Init copies, what it refuses, what Copy and
// Pointer hand back, and the reuse of its storage in place.
#include "utils/Utils.StringBuffer.h"

#include "AllocationCount.h"
#include "ThrownText.h"

#include <gtest/gtest.h>

#include <ostream>

#include <utility>

using TestSupport::LineOf;
using TestSupport::ThrownText;
using Utils::_STRINGBUF;

namespace {

const unsigned __int64 kAll = static_cast<unsigned __int64>(-1);

std::wstring Checker(const std::wstring& text) {
    return L"Обнаружена ошибка функцией \"unsigned __int64 __cdecl Utils::Checking::CountDirect<unsigned "
           L"__int64,unsigned __int64,unsigned __int64>(const class std::basic_string<wchar_t,struct "
           L"std::char_traits<wchar_t>,class std::allocator<wchar_t> > &,const unsigned __int64,const "
           L"unsigned "
           L"__int64,const unsigned __int64)\"!\r\nFile: \"Utils.Checking.cpp\"\r\nLine: " +
           std::to_wstring(LineOf(text, L"Utils.Checking.cpp")) + L"\r\n\n";
}

std::wstring BufferLine(const std::wstring& text) {
    return std::to_wstring(LineOf(text, L"Utils.StringBuffer.h"));
}

struct PointerInitCase {
    const char* name;
    const wchar_t* text;
    unsigned __int64 size;
    std::wstring expected; // the buffer's elements, terminator included
};

void PrintTo(const PointerInitCase& c, std::ostream* os) {
    *os << c.name;
}

class StringBufferInitFromPointer : public testing::TestWithParam<PointerInitCase> {};

TEST_P(StringBufferInitFromPointer, CopiesAndTerminates) {
    const PointerInitCase& c = GetParam();
    _STRINGBUF<wchar_t> buffer;
    buffer.Init(c.text, c.size, kAll);
    EXPECT_EQ(buffer.Size(), c.expected.size());
    EXPECT_EQ(buffer.Copy(0, kAll), c.expected);
    EXPECT_EQ(std::wstring(buffer.Pointer<wchar_t>(0), c.expected.size()), c.expected);
}

const PointerInitCase kPointerInits[] = {
    {"SizeZeroFindsTheTerminator", L"abc", 0, std::wstring(L"abc\0", 4)},
    {"SizeAllFindsTheTerminator", L"abc", kAll, std::wstring(L"abc\0", 4)},
    {"ExplicitSizeCutsTheText", L"abc", 2, std::wstring(L"ab\0", 3)},
    // The caller vouches for the memory: an explicit size is copied past an embedded zero.
    {"ExplicitSizeLargerThanTheText", L"ab\0cd", 5, std::wstring(L"ab\0cd\0", 6)},
    {"SingleCharacter", L"x", 0, std::wstring(L"x\0", 2)},
};

INSTANTIATE_TEST_SUITE_P(Table, StringBufferInitFromPointer, testing::ValuesIn(kPointerInits),
                         [](const testing::TestParamInfo<PointerInitCase>& info) { return info.param.name; });

TEST(StringBuffer, InitFromStringCopiesTheWholeStringWhateverTheRange) {
    _STRINGBUF<wchar_t> buffer;
    buffer.Init(std::wstring(L"hello"), 2, 1);
    EXPECT_EQ(buffer.Copy(0, kAll), std::wstring(L"hello\0", 6));
    buffer.Init(std::wstring(L"a\0b", 3), 0, kAll);
    EXPECT_EQ(buffer.Copy(0, kAll), std::wstring(L"a\0b\0", 4));
}

TEST(StringBuffer, CopyTakesARangeOfElements) {
    _STRINGBUF<wchar_t> buffer;
    buffer.Init(L"abcd", 0, kAll);
    EXPECT_EQ(buffer.Copy(1, 2), L"bc");
    EXPECT_EQ(buffer.Copy(3, kAll), std::wstring(L"d\0", 2));
    EXPECT_EQ(buffer.Copy(4, 1), std::wstring(1, L'\0'));
    EXPECT_THROW(buffer.Copy(5, 1), std::wstring);
}

TEST(StringBuffer, PointerFormRefusesAnEmptyText) {
    const std::wstring method =
        L"void __cdecl Utils::_STRINGBUF<wchar_t>::Init(const wchar_t *,const unsigned "
        L"__int64,unsigned __int64)[f]\r\nFile: \"Utils.StringBuffer.h\"\r\nLine: ";
    for (const unsigned __int64 size : {0ull, kAll}) {
        SCOPED_TRACE(size);
        _STRINGBUF<wchar_t> buffer;
        const std::wstring text = ThrownText([&] { buffer.Init(L"", size, kAll); });
        EXPECT_EQ(text, Checker(text) + L"В методе\n" + method + BufferLine(text) +
                            L"\r\n\r\n"
                            L"Отсутствует количество элементов.\n");
        EXPECT_EQ(buffer.Size(), 0u);
    }
    _STRINGBUF<wchar_t> buffer;
    EXPECT_THROW(buffer.Init(nullptr, 0, kAll), std::wstring);
}

TEST(StringBuffer, StringFormRefusesAnEmptyStringWithTheRangeMessage) {
    _STRINGBUF<wchar_t> buffer;
    const std::wstring text = ThrownText([&] { buffer.Init(std::wstring(), 0, kAll); });
    EXPECT_EQ(
        text,
        Checker(text) +
            L"В методе\n"
            L"void __cdecl Utils::_STRINGBUF<wchar_t>::Init(const class std::basic_string<wchar_t,struct "
            L"std::char_traits<wchar_t>,class std::allocator<wchar_t> >,const unsigned __int64,unsigned "
            L"__int64)[f]\r\nFile: \"Utils.StringBuffer.h\"\r\nLine: " +
            BufferLine(text) +
            L"\r\n\n"
            L"Количество всех элементов равно нулю.\n"
            L"Номер стартового элемента больше или равен количеству всех элементов.\n"
            L"\n"
            L"Количество всех элементов: 0\n"
            L"Стартовый элемент: 0\n"
            L"Количество элементов: 18446744073709551615\n");
}

TEST(StringBuffer, FailedInitKeepsThePreviousText) {
    _STRINGBUF<wchar_t> buffer;
    buffer.Init(L"keep", 0, kAll);
    EXPECT_THROW(buffer.Init(L"", 0, kAll), std::wstring);
    EXPECT_THROW(buffer.Init(std::wstring(), 0, kAll), std::wstring);
    EXPECT_EQ(buffer.Copy(0, kAll), std::wstring(L"keep\0", 5));
}

TEST(StringBuffer, NeverInitialisedBufferIsEmpty) {
    _STRINGBUF<wchar_t> buffer;
    EXPECT_EQ(buffer.Size(), 0u);
    const std::wstring text = ThrownText([&] { buffer.Pointer<wchar_t>(0); });
    EXPECT_EQ(
        text,
        L"Ошибка в функции \"wchar_t *__cdecl Utils::_STRINGBUF<wchar_t>::Pointer<wchar_t>(const unsigned "
        L"__int64)\"!\r\nFile: \"Utils.StringBuffer.h\"\r\nLine: " +
            BufferLine(text) + L"\r\n\nБуфер пуст.\n");
    const std::wstring asVoid = ThrownText([&] { buffer.Pointer<void>(0); });
    EXPECT_EQ(asVoid.find(L"Ошибка в функции \"void *__cdecl Utils::_STRINGBUF<wchar_t>::Pointer<void>(const "
                          L"unsigned __int64)\"!\r\n"),
              0u);
    EXPECT_NE(asVoid.find(L"\nБуфер пуст.\n"), std::wstring::npos);
    // Copy counts against zero elements.
    const std::wstring copy = ThrownText([&] { buffer.Copy(0, kAll); });
    EXPECT_NE(copy.find(L"::Copy(const unsigned __int64,unsigned __int64)[f]\r\n"), std::wstring::npos);
    EXPECT_NE(copy.find(L"Количество всех элементов равно нулю.\n"), std::wstring::npos);
}

TEST(StringBuffer, ShorterTextReusesTheStorageInPlace) {
    _STRINGBUF<wchar_t> buffer;
    buffer.Init(L"a longer first text", 0, kAll);
    const wchar_t* first = buffer.Pointer<wchar_t>(0);
    const void* firstVoid = buffer.Pointer<void>(0);
    EXPECT_EQ(firstVoid, static_cast<const void*>(first));

    const std::size_t before = TestSupport::Allocations();
    buffer.Init(L"short", 0, kAll);
    EXPECT_EQ(TestSupport::Allocations(), before);
    EXPECT_EQ(buffer.Pointer<wchar_t>(0), first);
    EXPECT_STREQ(first, L"short"); // the pointer handed out before shows the new text
    EXPECT_EQ(buffer.Size(), 6u);

    std::wstring same(L"a longer first text"); // as long as the first: still fits
    const std::size_t beforeString = TestSupport::Allocations();
    buffer.Init(std::move(same), 0, kAll);
    EXPECT_EQ(TestSupport::Allocations(), beforeString);
    EXPECT_EQ(buffer.Pointer<wchar_t>(0), first);
    EXPECT_STREQ(first, L"a longer first text");
}

TEST(StringBuffer, LongerTextGrowsTheStorage) {
    _STRINGBUF<wchar_t> buffer;
    buffer.Init(L"ab", 0, kAll);
    const std::wstring longer(200, L'z');
    buffer.Init(longer.c_str(), 0, kAll);
    EXPECT_EQ(buffer.Size(), 201u);
    EXPECT_EQ(std::wstring(buffer.Pointer<wchar_t>(0)), longer);
}

TEST(StringBuffer, EmptyHoldsOneZeroElementInPlace) {
    _STRINGBUF<wchar_t> buffer;
    buffer.Empty();
    EXPECT_EQ(buffer.Size(), 1u);
    EXPECT_EQ(*buffer.Pointer<wchar_t>(0), L'\0');

    buffer.Init(L"text", 0, kAll);
    const wchar_t* before = buffer.Pointer<wchar_t>(0);
    const std::size_t allocations = TestSupport::Allocations();
    buffer.Empty();
    EXPECT_EQ(TestSupport::Allocations(), allocations);
    EXPECT_EQ(buffer.Size(), 1u);
    EXPECT_EQ(buffer.Pointer<wchar_t>(0), before);
    EXPECT_STREQ(before, L"");
    EXPECT_EQ(buffer.Copy(0, kAll), std::wstring(1, L'\0'));
}

TEST(StringBuffer, NarrowBufferBehavesTheSame) {
    _STRINGBUF<char> buffer;
    buffer.Init("abc", 2, kAll);
    EXPECT_EQ(buffer.Copy(0, kAll), std::string("ab\0", 3));
    buffer.Init(std::string("xyz"), 0, kAll);
    EXPECT_STREQ(buffer.Pointer<char>(0), "xyz");
    EXPECT_EQ(buffer.Pointer<void>(0), static_cast<void*>(buffer.Pointer<char>(0)));

    const std::wstring text = ThrownText([&] { buffer.Init("", 0, kAll); });
    EXPECT_NE(text.find(L"В методе\nvoid __cdecl Utils::_STRINGBUF<char>::Init(const char *,const unsigned "
                        L"__int64,unsigned __int64)[f]\r\n"),
              std::wstring::npos);
    EXPECT_NE(text.find(L"\r\nОтсутствует количество элементов.\n"), std::wstring::npos);

    _STRINGBUF<char> empty;
    EXPECT_EQ(
        ThrownText([&] { empty.Pointer<char>(0); })
            .find(L"Ошибка в функции \"char *__cdecl Utils::_STRINGBUF<char>::Pointer<char>(const unsigned "
                  L"__int64)\"!\r\n"),
        0u);
}

} // namespace
