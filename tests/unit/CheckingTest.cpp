// Range checks of caller arrays: clipping, every refusal text, the site form and the cost of success.
#include "utils/Utils.Checking.h"

#include "AllocationCount.h"
#include "ThrownText.h"

#include <gtest/gtest.h>

#include <ostream>

#include <iostream>
#include <type_traits>

using TestSupport::LineOf;
using TestSupport::ThrownText;
using Utils::Checking::CountDirect;
using Utils::Checking::CountReverse;

namespace {

const unsigned __int64 kAll = static_cast<unsigned __int64>(-1);
const unsigned long kAll32 = static_cast<unsigned long>(-1);

// A caller's description as the array exports build it.
const wchar_t kMethod[] =
    L"unsigned __int64 __cdecl FileWriteIntArray(void *const ,int *const ,const unsigned "
    L"__int64,const unsigned __int64,unsigned __int64)[f]\r\nFile: \"Tovarin.cpp\"\r\nLine: "
    L"1001\r\n";
const char kMethodSignature[] =
    "unsigned __int64 __cdecl FileWriteIntArray(void *const ,int *const ,const unsigned "
    "__int64,const unsigned __int64,unsigned __int64)";

const wchar_t kDirect64[] =
    L"unsigned __int64 __cdecl Utils::Checking::CountDirect<unsigned __int64,unsigned __int64,unsigned "
    L"__int64>(const class std::basic_string<wchar_t,struct std::char_traits<wchar_t>,class "
    L"std::allocator<wchar_t> > &,const unsigned __int64,const unsigned __int64,const unsigned __int64)";
const wchar_t kDirect32[] =
    L"unsigned long __cdecl Utils::Checking::CountDirect<unsigned __int64,unsigned long,unsigned long>(const "
    L"class std::basic_string<wchar_t,struct std::char_traits<wchar_t>,class std::allocator<wchar_t> > "
    L"&,const "
    L"unsigned __int64,const unsigned long,const unsigned long)";
const wchar_t kReverse64[] =
    L"unsigned __int64 __cdecl Utils::Checking::CountReverse<unsigned __int64,unsigned __int64,unsigned "
    L"__int64>(const class std::basic_string<wchar_t,struct std::char_traits<wchar_t>,class "
    L"std::allocator<wchar_t> > &,const unsigned __int64,unsigned __int64 &,const unsigned __int64)";

// The heading the composer gives a checker's refusal; the line is read back from the text itself.
std::wstring Heading(const std::wstring& signature, const std::wstring& text) {
    return L"Обнаружена ошибка функцией \"" + signature + L"\"!\r\nFile: \"Utils.Checking.cpp\"\r\nLine: " +
           std::to_wstring(LineOf(text, L"Utils.Checking.cpp")) + L"\r\n\n";
}

struct DirectCase {
    const char* name;
    unsigned __int64 total;
    unsigned __int64 start;
    unsigned __int64 count;
    unsigned __int64 expected;
};

void PrintTo(const DirectCase& c, std::ostream* os) {
    *os << c.name;
}

class CountDirectClips : public testing::TestWithParam<DirectCase> {};

TEST_P(CountDirectClips, GivesTheElementsToProcess) {
    const DirectCase& c = GetParam();
    EXPECT_EQ(CountDirect(std::wstring(kMethod), c.total, c.start, c.count), c.expected);
    EXPECT_EQ(CountDirect(TOVARIN_SITE(kMethodSignature), c.total, c.start, c.count), c.expected);
}

const DirectCase kDirectCases[] = {
    {"CountFits", 10, 2, 5, 5},
    {"CountUpToTheEnd", 10, 2, 8, 8},
    {"CountPastTheEndIsClipped", 10, 2, 9, 8},
    {"AllMeansTheRest", 10, 2, kAll, 8},
    {"LastElement", 10, 9, kAll, 1},
    {"WholeArray", 10, 0, 10, 10},
    {"SingleElementArray", 1, 0, 1, 1},
    // start + count would wrap around: still clipped, not taken as fitting.
    {"CountThatWouldOverflow", 10, 2, kAll - 1, 8},
    {"HugeTotal", kAll, kAll - 1, kAll, 1},
};

INSTANTIATE_TEST_SUITE_P(Table, CountDirectClips, testing::ValuesIn(kDirectCases),
                         [](const testing::TestParamInfo<DirectCase>& info) { return info.param.name; });

TEST(CountDirect, ThirtyTwoBitInstanceTakesItsOwnAllValue) {
    static_assert(std::is_same<decltype(CountDirect(std::wstring(), 0ull, 0ul, 0ul)), unsigned long>::value,
                  "the count's type is the result's type");
    const std::wstring method(kMethod);
    EXPECT_EQ(CountDirect(method, 10ull, 2ul, kAll32), 8ul);
    EXPECT_EQ(CountDirect(method, 10ull, 2ul, 3ul), 3ul);
    EXPECT_EQ(CountDirect(method, 10ull, 2ul, 100ul), 8ul);
}

TEST(CountDirect, StartAtTheEndNamesTheStartOnly) {
    const std::wstring text = ThrownText([] { CountDirect(std::wstring(kMethod), 10ull, 10ull, 1ull); });
    EXPECT_EQ(text, Heading(kDirect64, text) + L"В методе\n" + kMethod +
                        L"\n"
                        L"Номер стартового элемента больше или равен количеству всех элементов.\n"
                        L"\n"
                        L"Количество всех элементов: 10\n"
                        L"Стартовый элемент: 10\n"
                        L"Количество элементов: 1\n");
}

TEST(CountDirect, ZeroTotalKeepsBothLines) {
    const std::wstring text = ThrownText([] { CountDirect(std::wstring(kMethod), 0ull, 0ull, 1ull); });
    EXPECT_EQ(text, Heading(kDirect64, text) + L"В методе\n" + kMethod +
                        L"\n"
                        L"Количество всех элементов равно нулю.\n"
                        L"Номер стартового элемента больше или равен количеству всех элементов.\n"
                        L"\n"
                        L"Количество всех элементов: 0\n"
                        L"Стартовый элемент: 0\n"
                        L"Количество элементов: 1\n");
}

TEST(CountDirect, NumbersAreTheCallersInUnsignedDecimal) {
    const std::wstring text = ThrownText([] { CountDirect(std::wstring(kMethod), 3ull, kAll, kAll); });
    EXPECT_EQ(text, Heading(kDirect64, text) + L"В методе\n" + kMethod +
                        L"\n"
                        L"Номер стартового элемента больше или равен количеству всех элементов.\n"
                        L"\n"
                        L"Количество всех элементов: 3\n"
                        L"Стартовый элемент: 18446744073709551615\n"
                        L"Количество элементов: 18446744073709551615\n");
}

TEST(CountDirect, ThirtyTwoBitInstanceNamesItselfAndPrintsItsAllValue) {
    const std::wstring text = ThrownText([] { CountDirect(std::wstring(kMethod), 0ull, 0ul, kAll32); });
    EXPECT_EQ(text, Heading(kDirect32, text) + L"В методе\n" + kMethod +
                        L"\n"
                        L"Количество всех элементов равно нулю.\n"
                        L"Номер стартового элемента больше или равен количеству всех элементов.\n"
                        L"\n"
                        L"Количество всех элементов: 0\n"
                        L"Стартовый элемент: 0\n"
                        L"Количество элементов: 4294967295\n");
}

TEST(CountDirect, CountZeroIsRefusedWhateverTheTotal) {
    for (const unsigned __int64 total : {0ull, 1ull, 10ull}) {
        SCOPED_TRACE(total);
        const std::wstring text =
            ThrownText([total] { CountDirect(std::wstring(kMethod), total, 0ull, 0ull); });
        EXPECT_EQ(text, Heading(kDirect64, text) + L"В методе\n" + kMethod +
                            L"\r\n"
                            L"Отсутствует количество элементов.\n");
    }
}

TEST(CountDirect, SiteFormGivesTheSameTextAsTheStringForm) {
    // The site's file is reduced to its base name, as in every where-text.
    const Utils::Error::Site site{kMethodSignature, "C:\\build\\exports\\Tovarin.cpp", 1001};
    struct Case {
        unsigned __int64 total, start, count;
    };
    for (const Case& c : {Case{10, 10, 1}, Case{0, 0, 1}, Case{10, 0, 0}}) {
        SCOPED_TRACE(c.total);
        const std::wstring bySite = ThrownText([&] { CountDirect(site, c.total, c.start, c.count); });
        const std::wstring byText =
            ThrownText([&] { CountDirect(std::wstring(kMethod), c.total, c.start, c.count); });
        EXPECT_EQ(bySite, byText);
        EXPECT_NE(bySite.find(kMethod), std::wstring::npos);
    }
    const std::wstring bySite32 = ThrownText([&] { CountDirect(site, 0ull, 0ul, kAll32); });
    EXPECT_EQ(bySite32, ThrownText([] { CountDirect(std::wstring(kMethod), 0ull, 0ul, kAll32); }));
}

TEST(CountDirect, RefusalLeavesTheDiagnosticStreamUsable) {
    ThrownText([] { CountDirect(std::wstring(kMethod), 0ull, 0ull, 1ull); });
    EXPECT_TRUE(std::wclog.good());
}

TEST(CountDirect, SuccessAllocatesNothing) {
    const std::wstring method(kMethod);
    const Utils::Error::Site site = TOVARIN_SITE(kMethodSignature);
    unsigned __int64 sum = 0;
    const std::size_t before = TestSupport::Allocations();
    for (unsigned __int64 i = 0; i < 100; ++i) {
        sum += CountDirect(method, 100ull, i, kAll);
        sum += CountDirect(site, 100ull, i, 1ull);
        sum += CountDirect(site, 100ull, static_cast<unsigned long>(i), kAll32);
    }
    EXPECT_EQ(TestSupport::Allocations(), before);
    EXPECT_EQ(sum, 5050u + 100u + 5050u);
}

struct ReverseCase {
    const char* name;
    unsigned __int64 total;
    unsigned __int64 start;
    unsigned __int64 expected;
    unsigned __int64 startAfter;
};

void PrintTo(const ReverseCase& c, std::ostream* os) {
    *os << c.name;
}

class CountReverseWalks : public testing::TestWithParam<ReverseCase> {};

TEST_P(CountReverseWalks, GivesTheElementsDownToZeroAndCorrectsTheStart) {
    const ReverseCase& c = GetParam();
    unsigned __int64 start = c.start;
    EXPECT_EQ(CountReverse(std::wstring(kMethod), c.total, start, kAll), c.expected);
    EXPECT_EQ(start, c.startAfter);
    start = c.start;
    EXPECT_EQ(CountReverse(TOVARIN_SITE(kMethodSignature), c.total, start, kAll), c.expected);
    EXPECT_EQ(start, c.startAfter);
}

const ReverseCase kReverseCases[] = {
    {"InsideTheArray", 10, 3, 4, 3},
    {"FirstElement", 10, 0, 1, 0},
    {"LastElement", 10, 9, 10, 9},
    {"AllMovesToTheLast", 10, kAll, 10, 9},
    {"PastTheEndMovesToTheLast", 10, 25, 10, 9},
    {"AtTheEndMovesToTheLast", 10, 10, 10, 9},
};

INSTANTIATE_TEST_SUITE_P(Table, CountReverseWalks, testing::ValuesIn(kReverseCases),
                         [](const testing::TestParamInfo<ReverseCase>& info) { return info.param.name; });

TEST(CountReverse, CountDoesNotLimitTheWalk) {
    unsigned __int64 start = 7;
    EXPECT_EQ(CountReverse(std::wstring(kMethod), 10, start, 2), 8u);
}

TEST(CountReverse, ZeroTotalIsRefusedWithoutTheStartLineAndKeepsTheStart) {
    unsigned __int64 start = 5;
    const std::wstring text = ThrownText([&] { CountReverse(std::wstring(kMethod), 0, start, kAll); });
    EXPECT_EQ(start, 5u);
    EXPECT_EQ(text, Heading(kReverse64, text) + L"В методе\n" + kMethod +
                        L"\n"
                        L"Количество всех элементов равно нулю.\n"
                        L"\n"
                        L"Количество всех элементов: 0\n"
                        L"Стартовый элемент: 5\n"
                        L"Количество элементов: 18446744073709551615\n");
    const Utils::Error::Site site{kMethodSignature, "Tovarin.cpp", 1001};
    EXPECT_EQ(ThrownText([&] { CountReverse(site, 0, start, kAll); }), text);
}

} // namespace
