// The composer, the description tables, the pinned sites, the path rules, a path's key and its event.
#include "support/BoxRecorder.h"
#include "support/TempDir.h"

#include "utils/Utils.CodingStr.h"
#include "utils/Utils.FileHdd.h"
#include "utils/Utils.Hash.h"
#include "utils/Utils.StringBuffer.h"
#include "utils/Utils.Strings.h"

#include <gtest/gtest.h>

#include <cwchar>

using namespace TestSupport;

namespace {

std::wstring SystemText(unsigned long code) {
    wchar_t text[2048] = {};
    ::FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM, nullptr, code, 0, text, 2048, nullptr);
    return text;
}

// The heading by marker; the last-error block (any error shows as 1; -1: none) in the system's layout.
TEST(Composer, HeadingsMessageAndLastErrorBlock) {
    const std::wstring f = L"Ошибка в функции \"f(int)\"!\r\nL\r\n\nLast Error: ";
    // clang-format off
    const struct { const wchar_t *where, *text; long lastError; std::wstring composed; } cases[] = {
        {L"g(long)[f][d]\r\nL", L"", -1, L"Обнаружена ошибка функцией \"g(long)\"!\r\nL"},
        {L"g(long)[f][w]\r\nL", L"", -1, L"Предупреждение функции \"g(long)\"!\r\nL"},
        {L"C::m(long)[x]\r\nL", L"", -1, L"Ошибка в методе \"C::m(long)\"!\r\nL"},
        {L"o(long)[o]\r\nL", L"", -1, L"Ошибка в операторе \"o(long)\"!\r\nL"},
        {L"o(long)[O][D]\r\nL", L"", -1, L"Обнаружена ошибка оператором \"o(long)\"!\r\nL"},
        {L"a[][f]\r\nL", L"", -1, L"Ошибка в функции \"a[]()\"!\r\nL"},
        {L"f(int)", L"", -1, L"Ошибка в методе \"f(int)\"!"},
        {L"f(int)\r\n[f]File", L"", -1, L"Ошибка в функции \"f(int)\"!\r\nFile"},
        {L"f(int)[f]\r\nL\r\n", L"Сообщение.", 5, f + L"1.\n" + SystemText(1) + L"\nСообщение.\n"},
        {L"f(int)[f]\r\nL\r\n", L"", 0, f + L"0.\n" + SystemText(0) + L"\n"}};
    // clang-format on
    for (const auto& c : cases) {
        ::SetLastError(static_cast<DWORD>(c.lastError));
        EXPECT_EQ(ComposeFailureTextW(c.where, c.text, c.lastError >= 0), c.composed) << Narrow(c.where);
    }
}

// The first and last code of each run have entries (the first's English text begins so), the same
// in code page 1251; the codes beside a run get the system's text; code 0 has one shared entry.
TEST(DescriptionTables, EntriesAtTheEdgesOfEachRunAndCodesBesideThem) {
    using namespace Utils;
    // clang-format off
    struct Run { long first, last; const wchar_t* text; };
    struct Table { std::function<std::wstring(long)> wide; std::function<std::string(long)> narrow;
                   const wchar_t* header; std::vector<Run> runs; };
    const Table tables[] = {
        {Error::InternetW, Error::InternetA, L"\r\nLast Error: %ld.\r\n\r\n",
         {{12001, 12034, L"No more"}, {12036, 12050, L"The request failed"}, {12052, 12057, L"The data"},
          {12110, 12112, L"The requested operation"}, {12130, 12138, L"An error was detected while parsing"},
          {12150, 12175, L"The requested header"}}},
        {CommonDialogDescriptionW, CommonDialogDescriptionA, L"\r\nLast Error: 0x%04lX.\r\n\r\n",
         {{0x0001, 0x000C, L"The lStructSize"}, {0x1001, 0x100C, L"The PrintDlg function failed to load"},
          {0x2001, 0x2002, L"No fonts"}, {0x3001, 0x3003, L"An attempt"}, {0x4001, 0x4001, L"A member"},
          {0xFFFF, 0xFFFF, L"The dialog box"}}},
        {ShellOperationDescriptionW, nullptr, L"\r\nLast Error: 0x%05lX.\r\n\r\n",
         {{0x71, 0x76, L"The source and"}, {0x78, 0x7A, L"Security"}, {0x7C, 0x7E, L"The path"},
          {0x80, 0x88, L"The destination path is an existing folder"}, {0xB7, 0xB7, L"MAX_PATH was"},
          {0x402, 0x402, L"An unknown"}, {0x10000, 0x10000, L"An unspecified"},
          {0x10074, 0x10074, L"Destination"}}}};
    // clang-format on
    for (const Table& t : tables) {
        EXPECT_EQ(t.wide(0), L"\r\nLast Error: 0.\r\n\r\nThe operation completed successfully.\r\n\r\n"
                             L"Операция успешно завершена.\r\n\r\n");
        for (const Run& run : t.runs) {
            for (const long code : {run.first, run.last}) {
                wchar_t header[40] = {};
                std::swprintf(header, 40, t.header, code);
                const std::wstring block = t.wide(code);
                EXPECT_EQ(block.find(header + std::wstring(code == run.first ? run.text : L"")), 0u) << code;
                EXPECT_TRUE(!t.narrow || CodingStr::AnsiToUnicode(t.narrow(code), 1251) == block) << code;
            }
            for (const long code : {run.first - 1, run.last + 1})
                EXPECT_TRUE(code == 0 || t.wide(code) == Error::SystemDescriptionW(code)) << code;
        }
    }
}

struct PlantedEvent : Utils::Sync::Event { // an event holding a handle that is no handle
    PlantedEvent() { handle_ = reinterpret_cast<HANDLE>(intptr_t(0x7FFF0)); }
    ~PlantedEvent() override { handle_ = nullptr; }
};

TEST(PinnedSites, TextsShowTheirFileAndLine) {
    using namespace Utils;
    unsigned __int64 n = 1; // the occurrence asked for, taken by reference
    // clang-format off
    const struct { const wchar_t* file; int line; std::function<void()> call; } sites[] = { // line 0: any
        {L"Utils.Smart.cpp", 350, [] { Smart::Base().Release(); }},
        {L"Utils.Smart.cpp", 249, [] { Smart::WeakFactory::Instance().DropId(-77); }},
        {L"Utils.Smart.cpp", 376, [] { Smart::Base a; a.Equals(&a); }},
        {L"Utils.Smart.cpp", 401, [] { Smart::Base a; a.Less(&a); }},
        {L"Utils.Type.h", 342, [] { Type::IsWide<int>(L"caller"); }},
        {L"Utils.StringBuffer.h", 73, [] { _STRINGBUF<wchar_t>().Init(L"", 0, 0); }},
        {L"Utils.StringBuffer.h", 97, [] { _STRINGBUF<wchar_t>().Init(std::wstring(), 0, ~0ull); }},
        {L"Utils.StringBuffer.h", 286, [] { _STRINGBUF<wchar_t> b; b.Init(L"ab", 0, 0); b.Copy(5, 1); }},
        {L"Utils.StringBuffer.h", 142, [] { _STRINGBUF<char>().Pointer<char>(0); }},
        {L"Utils.Strings.cpp", 3793, [] { std::wstring s; String::ReplaceW(s, 0, 1, L'a', L'b'); }},
        {L"Utils.Strings.cpp", 3981, [] { std::wstring s; String::UpperW(s, 0, 4294967295ul); }},
        {L"Utils.Strings.cpp", 2976, [&] { String::PosByReverseNumberSubStringsW(L"a", L"", n, ~0ull, 0); }},
        {L"Utils.Strings.cpp", 0, [] { String::Path::TrimNameFileCW(L"", 0); }},
        {L"Utils.Synchronize.cpp", 509, [] { Sync::Mutex().Create(L"NoSuchNamespace\\x"); }},
        {L"Utils.Synchronize.cpp", 560, [] { Sync::Mutex m; m.Create(L""); m.Release(); }},
        {L"Utils.Synchronize.cpp", 341, [] { PlantedEvent().Close(); }},
        {L"Utils.Synchronize.cpp", 356, [] { Sync::Event().Create(L"NoSuchNamespace\\x"); }},
        {L"Utils.Error.cpp", 522, [] { ::SetLastError(0x71), Error::DescriptionW<int>(0); }}};
    // clang-format on
    BoxRecorder boxes; // the describer's notice for a shell code is a box, not a throw
    for (const auto& [file, line, call] : sites) {
        std::wstring text = Thrown(call); // then the box, if one was shown
        text += boxes.Boxes().empty() ? L"" : boxes.Boxes()[0].text;
        const std::wstring where = L"File: \"" + std::wstring(file) + L"\"\r\nLine: ";
        EXPECT_HAS(text, line == 0 ? where : where + std::to_wstring(line) + L"\r\n") << line;
    }
    EXPECT_TRUE(boxes.Boxes().size() == 1 && boxes.Boxes()[0].icon == MB_ICONINFORMATION);
}

// A path and its refusal, which ends " в пути" but for a trailing space or dot. Reserved names are
// whole names as spelled; the entry shown is the one at the name's position, deliberately.
TEST(PathRules, EachRuleAtItsEdge) {
    const auto check = [](const std::wstring& p) { return Thrown([&] { Utils::String::Path::Has(p); }); };
    const std::wstring longest = L"C:\\" + std::wstring(252, L'n'), end = L"Пробел в конце пути";
    // clang-format off
    const std::pair<std::wstring, std::wstring> cases[] = {
        {longest, L""}, {longest + L"n", L"Боле 255 символов"}, {L"\\\\?\\" + longest + L"n", L""},
        {L"C:\\a b.c\\d", L""}, {L"C:\\d ", end}, {L"C:\\d.", end}, {L"C:\\a*b:c", L""},
        {L"C:\\a*", L"Обнаружен запрещённый символ '*' в позиции 4"}, {L"\\\\?\\x", L"'?' в позиции 2"},
        {L"C:\\?", L"'?' в позиции 3"}, {L"C:\\a\"", L"'\"' в позиции 4"}, {L"C:\\<", L"'<' в позиции 3"},
        {L"C:\\>", L"'>' в позиции 3"}, {L"C:\\ab|", L"'|' в позиции 5"}, {L"C:/a", L"'/' в позиции 2"},
        {L"Http://h/a?b", L"'?' в позиции 10"}, {L"C:\\con.txt\\CON\\aux\\COM0\\LPT10", L""},
        {L"con", L"Использовано зарезервированное в Windows имя \"con\" с порядковым номером 1"},
        {L"C:\\a\\b\\LPT9\\c", L"\"AUX\" с порядковым номером 4"}, {L"ftp://host/a", L""}};
    // clang-format on
    for (const auto& [path, refusal] : cases) {
        const std::wstring tail = (refusal == end ? L":\n\"" : L" в пути:\n\"") + path + L"\"";
        EXPECT_HAS(check(path), refusal.empty() ? L"(nothing thrown)" : refusal + tail) << Narrow(path);
    }
    for (std::wstring name : {L"con",  L"nul",  L"prn",  L"AUX",  L"COM1", L"COM2", L"COM3", L"COM4",
                              L"COM5", L"COM6", L"COM7", L"COM8", L"COM9", L"LPT1", L"LPT2", L"LPT3",
                              L"LPT4", L"LPT5", L"LPT6", L"LPT7", L"LPT8", L"LPT9"}) {
        EXPECT_HAS(check(L"C:\\" + name), L"имя \"nul\" с порядковым номером 2 в пути:\n\"C:\\" + name);
        name[0] ^= 0x20; // the other case passes
        EXPECT_EQ(check(L"C:\\" + name), L"(nothing thrown)");
    }
}

// CRC-64/XZ's check value; keys of UTF-16LE text in upper-case hexadecimal without leading zeros; the
// auto-reset event, made signalled, of a file object's path (backslashes as underscores).
TEST(PathKeys, CheckValueKeysAndTheEventOfAPath) {
    EXPECT_EQ(Utils::Hash::CRC64_ECMA().Evaluate(std::string("123456789")), 0x995DC9BBDF1939FAull);
    EXPECT_EQ(Utils::Hash::PathKey(L"k6"), L"FF9ED9AFE0CA62D");
    EXPECT_EQ(Utils::Hash::PathKey(L""), L"0");
    Utils::FileHdd file;
    file.Init(L"C:\\Tovarin\\a.bin", nullptr, true); // the key of C:_Tovarin_a.bin
    HANDLE event = ::OpenEventW(SYNCHRONIZE, FALSE, L"Utils::FileHdd_Event_1D19A5C1E218B1C5");
    EXPECT_EQ(::WaitForSingleObject(event, 0), WAIT_OBJECT_0);
    EXPECT_EQ(::WaitForSingleObject(event, 0), WAIT_TIMEOUT);
    ::CloseHandle(event);
}

} // namespace
