// The string algorithms of the file layer: replace, upper-case, the backward N-th occurrence and the
// separator-ended split, with their failures.
#include "utils/Utils.Strings.h"

#include "ThrownText.h"

#include <gtest/gtest.h>

#include <ostream>

#include <vector>

using TestSupport::EndsWith;
using TestSupport::ThrownText;
namespace String = Utils::String;

namespace {

const unsigned __int64 kAll = static_cast<unsigned __int64>(-1);
const unsigned long kAll32 = static_cast<unsigned long>(-1);

struct ReplaceCase {
    const char* name;
    const wchar_t* text;
    unsigned __int64 start;
    unsigned __int64 count;
    const wchar_t* expected;
};

void PrintTo(const ReplaceCase& c, std::ostream* os) {
    *os << c.name;
}

class ReplaceW : public testing::TestWithParam<ReplaceCase> {};

TEST_P(ReplaceW, ReplacesInsideTheRangeInPlace) {
    const ReplaceCase& c = GetParam();
    std::wstring text(c.text);
    std::wstring& result = String::ReplaceW(text, c.start, c.count, L'\\', L'_');
    EXPECT_EQ(&result, &text);
    EXPECT_EQ(text, c.expected);
}

const ReplaceCase kReplaceCases[] = {
    {"WholePath", L"C:\\a\\b.txt", 0, kAll, L"C:_a_b.txt"},
    {"FromTheMiddle", L"C:\\a\\b.txt", 3, kAll, L"C:\\a_b.txt"},
    {"RangeEndsBeforeTheSecond", L"C:\\a\\b.txt", 0, 3, L"C:_a\\b.txt"},
    {"CountPastTheEndIsClipped", L"\\\\", 1, 50, L"\\_"},
    {"NothingToReplace", L"abc", 0, kAll, L"abc"},
};

INSTANTIATE_TEST_SUITE_P(Table, ReplaceW, testing::ValuesIn(kReplaceCases),
                         [](const testing::TestParamInfo<ReplaceCase>& info) { return info.param.name; });

TEST(ReplaceW, EmptyOrOutOfRangeIsRefusedAndChangesNothing) {
    std::wstring empty;
    const std::wstring text = ThrownText([&] { String::ReplaceW(empty, 0, kAll, L'\\', L'_'); });
    EXPECT_NE(
        text.find(
            L"В методе\nclass std::basic_string<wchar_t,struct std::char_traits<wchar_t>,class "
            L"std::allocator<wchar_t> > &__cdecl Utils::String::ReplaceW(class "
            L"std::basic_string<wchar_t,struct std::char_traits<wchar_t>,class std::allocator<wchar_t> "
            L"> &,const unsigned __int64,const unsigned __int64,const wchar_t,const wchar_t)[f]\r\nFile: "
            L"\"Utils.Strings.cpp\"\r\nLine: "),
        std::wstring::npos)
        << text;
    EXPECT_NE(text.find(L"\nКоличество всех элементов равно нулю.\n"), std::wstring::npos);

    std::wstring path(L"\\a\\");
    EXPECT_THROW(String::ReplaceW(path, 3, 1, L'\\', L'_'), std::wstring);
    EXPECT_THROW(String::ReplaceW(path, 0, 0, L'\\', L'_'), std::wstring);
    EXPECT_EQ(path, L"\\a\\");
}

TEST(UpperW, UpperCasesTheRangeInPlace) {
    struct Case {
        const wchar_t* text;
        unsigned long start, count;
        const wchar_t* expected;
    };
    const Case cases[] = {
        {L"abc", 0, kAll32, L"ABC"},
        {L"abc", 1, 1, L"aBc"},
        {L"abc", 2, 100, L"abC"},
        {L"c:\\путь\\файл.txt", 0, kAll32, L"C:\\ПУТЬ\\ФАЙЛ.TXT"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(c.text)));
        std::wstring text(c.text);
        EXPECT_EQ(&String::UpperW(text, c.start, c.count), &text);
        EXPECT_EQ(text, c.expected);
    }
}

TEST(UpperW, EmptyTextIsRefusedByTheThirtyTwoBitCheck) {
    std::wstring empty;
    const std::wstring text = ThrownText([&] { String::UpperW(empty, 0, kAll32); });
    EXPECT_EQ(
        text.find(L"Обнаружена ошибка функцией \"unsigned long __cdecl Utils::Checking::CountDirect<unsigned "
                  L"__int64,unsigned long,unsigned long>("),
        0u);
    EXPECT_NE(
        text.find(L"&__cdecl Utils::String::UpperW(class std::basic_string<wchar_t,struct "
                  L"std::char_traits<wchar_t>,class std::allocator<wchar_t> > &,const unsigned long,const "
                  L"unsigned long)[f]\r\n"),
        std::wstring::npos);
    EXPECT_NE(text.find(L"\nКоличество элементов: 4294967295\n"), std::wstring::npos);

    std::wstring abc(L"abc");
    EXPECT_THROW(String::UpperW(abc, 3, kAll32), std::wstring);
    EXPECT_EQ(abc, L"abc");
}

struct PosCase {
    const char* name;
    const wchar_t* text;
    const wchar_t* sub;
    unsigned __int64 number;
    unsigned __int64 start;
    unsigned __int64 expected;
    unsigned __int64 numberAfter;
};

void PrintTo(const PosCase& c, std::ostream* os) {
    *os << c.name;
}

class PosByReverse : public testing::TestWithParam<PosCase> {};

TEST_P(PosByReverse, FindsTheNthOccurrenceBackwards) {
    const PosCase& c = GetParam();
    unsigned __int64 number = c.number;
    EXPECT_EQ(String::PosByReverseNumberSubStringsW(c.text, c.sub, number, c.start, kAll), c.expected);
    EXPECT_EQ(number, c.numberAfter);
}

const wchar_t kPath[] = L"C:\\a\\b\\c.txt"; // backslashes at 2, 4 and 6; 12 characters

const PosCase kPosCases[] = {
    {"LastSeparator", kPath, L"\\", 1, kAll, 6, 1},
    {"SecondFromTheEnd", kPath, L"\\", 2, kAll, 4, 2},
    {"ThirdFromTheEnd", kPath, L"\\", 3, kAll, 2, 3},
    {"TooFewStoresTheCount", kPath, L"\\", 4, kAll, kAll, 3},
    {"NumberZeroGivesTheCorrectedStart", kPath, L"\\", 0, kAll, 11, 0},
    {"StartPastTheEndIsCorrected", kPath, L"\\", 0, 25, 11, 0},
    {"StartInsideTheText", kPath, L"\\", 0, 5, 5, 0},
    {"SearchFromAGivenStart", kPath, L"\\", 1, 5, 4, 1},
    {"OccurrenceAtTheStart", kPath, L"\\", 1, 4, 4, 1},
    {"MultiCharacterSub", kPath, L"\\b", 1, kAll, 4, 1},
    {"SubReachingPastTheStartIsFound", kPath, L"\\b", 1, 4, 4, 1},
    {"NoOccurrence", kPath, L"/", 1, kAll, kAll, 0},
    {"OverlappingLast", L"aaa", L"aa", 1, kAll, 1, 1},
    {"OverlappingFirst", L"aaa", L"aa", 2, kAll, 0, 2},
    {"OverlappingTooFew", L"aaa", L"aa", 3, kAll, kAll, 2},
    {"OverlappingStepsOneBack", L"aaaa", L"aa", 2, kAll, 1, 2},
    {"OverlappingCountsEveryHit", L"aaaa", L"aa", 4, kAll, kAll, 3},
    {"SubLongerThanText", L"ab", L"abc", 1, kAll, kAll, 0},
};

INSTANTIATE_TEST_SUITE_P(Table, PosByReverse, testing::ValuesIn(kPosCases),
                         [](const testing::TestParamInfo<PosCase>& info) { return info.param.name; });

TEST(PosByReverseFailures, EmptySubIsRefusedWithItsOwnSpelling) {
    unsigned __int64 number = 1;
    const std::wstring text =
        ThrownText([&] { String::PosByReverseNumberSubStringsW(kPath, std::wstring(), number, kAll, kAll); });
    EXPECT_EQ(
        text.find(L"Ошибка в функции \"unsigned __int64 __cdecl Utils::String::PosByReverseNumberSubStringsW("
                  L"const class std::basic_string<wchar_t,struct std::char_traits<wchar_t>,class "
                  L"std::allocator<wchar_t> > &,const class std::basic_string<wchar_t,struct "
                  L"std::char_traits<wchar_t>,class std::allocator<wchar_t> > &,unsigned __int64 &,unsigned "
                  L"__int64,const unsigned __int64)\"!\r\nFile: \"Utils.Strings.cpp\"\r\nLine: "),
        0u)
        << text;
    EXPECT_TRUE(EndsWith(text, L"\r\n\nОтсутсвует искомая подстрока.\n")) << text;
    EXPECT_EQ(number, 1u);
}

TEST(PosByReverseFailures, EmptyTextIsRefusedByTheBackwardCheckFirst) {
    unsigned __int64 number = 1;
    const std::wstring text =
        ThrownText([&] { String::PosByReverseNumberSubStringsW(L"", L"", number, 3, kAll); });
    EXPECT_EQ(
        text.find(L"Обнаружена ошибка функцией \"unsigned __int64 __cdecl Utils::Checking::CountReverse<"),
        0u);
    EXPECT_NE(text.find(L"Utils::String::PosByReverseNumberSubStringsW("), std::wstring::npos);
    EXPECT_NE(text.find(L"\nСтартовый элемент: 3\n"), std::wstring::npos);
}

struct SplitCase {
    const char* name;
    const char* text; // ASCII: the same case runs through the wide and the 8-bit splitter
    const char* separator;
    unsigned __int64 maxPieces;
    std::vector<const char*> pieces;
    unsigned __int64 position;
};

void PrintTo(const SplitCase& c, std::ostream* os) {
    *os << c.name;
}

class ExtractThruSubstring : public testing::TestWithParam<SplitCase> {};

std::wstring Wide(const char* text) {
    return std::wstring(text, text + std::char_traits<char>::length(text));
}

TEST_P(ExtractThruSubstring, SplitsIntoSeparatorEndedPieces) {
    const SplitCase& c = GetParam();
    std::vector<std::wstring> expectedW;
    std::vector<std::string> expectedA;
    for (const char* piece : c.pieces) {
        expectedW.push_back(Wide(piece));
        expectedA.push_back(piece);
    }
    // Earlier contents are replaced, not appended to.
    std::vector<std::wstring> piecesW{L"stale"};
    EXPECT_EQ(String::ExtractThruSubstringW<int>(Wide(c.text), Wide(c.separator), 0, piecesW, c.maxPieces),
              c.position);
    EXPECT_EQ(piecesW, expectedW);
    std::vector<std::string> piecesA{"stale"};
    EXPECT_EQ(String::ExtractThruSubstringA<int>(c.text, c.separator, 0, piecesA, c.maxPieces), c.position);
    EXPECT_EQ(piecesA, expectedA);
}

// The visitor walks the same pieces in place: each one is a range of the text itself.
TEST_P(ExtractThruSubstring, VisitsTheSamePiecesInPlace) {
    const SplitCase& c = GetParam();
    const std::wstring text = Wide(c.text);
    const std::wstring separator = Wide(c.separator);
    std::vector<std::wstring> visited;
    const unsigned __int64 position = String::VisitThruSubstring(
        text.data(), text.size(), std::wstring_view(separator), c.maxPieces,
        [&](const wchar_t* first, const size_t length) {
            EXPECT_TRUE(first >= text.data() && first + length <= text.data() + text.size());
            visited.emplace_back(first, length);
        });
    EXPECT_EQ(position, c.position);
    std::vector<std::wstring> expected;
    for (const char* piece : c.pieces)
        expected.push_back(Wide(piece));
    EXPECT_EQ(visited, expected);
}

const SplitCase kSplitCases[] = {
    {"TailIsNoPiece", "a;b;;c", ";", kAll, {"a", "b", ""}, 5},
    {"MaxPiecesStops", "a;b;;c", ";", 1, {"a"}, 2},
    {"MaxPiecesZeroConsumesNothing", "a;b;", ";", 0, {}, kAll},
    {"NoSeparator", "abc", ";", kAll, {}, kAll},
    {"EmptyText", "", ";", kAll, {}, kAll},
    {"TrailingSeparatorEndsTheText", "a;", ";", kAll, {"a"}, 2},
    {"SeparatorOnly", ";", ";", kAll, {""}, 1},
    {"LineEnds", "x\r\ny\r\nz\r\n", "\r\n", kAll, {"x", "y", "z"}, 9},
    {"LineEndsLimited", "x\r\ny\r\nz\r\n", "\r\n", 2, {"x", "y"}, 6},
    {"UnfinishedLastLine", "x\r\ny", "\r\n", kAll, {"x"}, 3},
    {"SeparatorLongerThanText", "a", "abc", kAll, {}, kAll},
};

INSTANTIATE_TEST_SUITE_P(Table, ExtractThruSubstring, testing::ValuesIn(kSplitCases),
                         [](const testing::TestParamInfo<SplitCase>& info) { return info.param.name; });

TEST(ExtractThruSubstringTail, ReturnedPositionIsWhereTheUnreadTextBegins) {
    const std::wstring text(L"one;two;rest");
    std::vector<std::wstring> pieces;
    const unsigned __int64 position = String::ExtractThruSubstringW<int>(text, L";", 0, pieces, kAll);
    ASSERT_EQ(position, 8u);
    EXPECT_EQ(text.substr(static_cast<size_t>(position)), L"rest");
}

TEST(ExtractThruSubstringTail, EmptySeparatorIsRefusedAndLeavesThePieces) {
    std::vector<std::wstring> piecesW{L"kept"};
    const std::wstring text =
        ThrownText([&] { String::ExtractThruSubstringW<int>(L"a;b", L"", 0, piecesW, kAll); });
    EXPECT_EQ(
        text.find(
            L"Ошибка в функции \"unsigned __int64 __cdecl Utils::String::ExtractThruSubstringW<int>(const "
            L"class std::basic_string<wchar_t,struct std::char_traits<wchar_t>,class "
            L"std::allocator<wchar_t> > &,const class std::basic_string<wchar_t,struct "
            L"std::char_traits<wchar_t>,class std::allocator<wchar_t> > &,const int,class "
            L"std::vector<class std::basic_string<wchar_t,struct std::char_traits<wchar_t>,class "
            L"std::allocator<wchar_t> >,class std::allocator<class std::basic_string<wchar_t,struct "
            L"std::char_traits<wchar_t>,class std::allocator<wchar_t> > > > &,const unsigned "
            L"__int64)\"!\r\nFile: \"Utils.Strings.cpp\"\r\n"),
        0u)
        << text;
    EXPECT_TRUE(EndsWith(text, L"\r\n\nРазделитель не установлен.\n")) << text;
    EXPECT_EQ(piecesW, std::vector<std::wstring>{L"kept"});

    std::vector<std::string> piecesA{"kept"};
    const std::wstring textA =
        ThrownText([&] { String::ExtractThruSubstringA<int>("a;b", "", 0, piecesA, kAll); });
    EXPECT_NE(
        textA.find(L"Utils::String::ExtractThruSubstringA<int>(const class std::basic_string<char,struct "
                   L"std::char_traits<char>,class std::allocator<char> > &"),
        std::wstring::npos);
    EXPECT_TRUE(EndsWith(textA, L"\r\n\nРазделитель не установлен.\n")) << textA;
    EXPECT_EQ(piecesA, std::vector<std::string>{"kept"});
}

} // namespace
