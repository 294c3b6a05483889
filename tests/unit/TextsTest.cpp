// The failure-text composer's headings and last-error block, the bilingual description tables at
// their edges, and the source file and line that the texts of the pinned sites show, each reached
// through the internal function (the export-reachable ones are tested through the DLL).
#include "support/BoxRecorder.h"
#include "support/TempDir.h"

#include "utils/Utils.CodingStr.h"
#include "utils/Utils.Error.h"
#include "utils/Utils.Smart.h"
#include "utils/Utils.StringBuffer.h"
#include "utils/Utils.Strings.h"
#include "utils/Utils.Synchronize.h"
#include "utils/Utils.Type.h"

#include <gtest/gtest.h>

#include <cwchar>
#include <tuple>

using namespace TestSupport;

namespace {

std::wstring SystemText(unsigned long code) {
    wchar_t buffer[2048] = {};
    ::FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM, nullptr, code, 0, buffer, 2048, nullptr);
    return buffer;
}

// Headings by marker; the message, and the last-error block (any error shows as 1) in the system's
// layout with single line feeds. `lastError` -1: the block is not asked for.
TEST(Composer, HeadingsMessageAndLastErrorBlock) {
    const std::wstring f = L"Ошибка в функции \"void f(int)\"!\r\nL\r\n\n";
    // clang-format off
    const struct { const wchar_t* where; const wchar_t* text; long lastError; std::wstring composed; } cases[] = {
        {L"int g(long)[f][d]\r\nL", L"", -1, L"Обнаружена ошибка функцией \"int g(long)\"!\r\nL"},
        {L"int g(long)[f][w]\r\nL", L"", -1, L"Предупреждение функции \"int g(long)\"!\r\nL"},
        {L"int C::m(long)[x]\r\nL", L"", -1, L"Ошибка в методе \"int C::m(long)\"!\r\nL"},
        {L"C::operator+(long)[o]\r\nL", L"", -1, L"Ошибка в операторе \"C::operator+(long)\"!\r\nL"},
        {L"C::operator+(long)[O][D]\r\nL", L"", -1,
         L"Обнаружена ошибка оператором \"C::operator+(long)\"!\r\nL"},
        {L"Name[f]\r\nL", L"", -1, L"Ошибка в функции \"Name()\"!\r\nL"},
        {L"void f(int)", L"", -1, L"Ошибка в методе \"void f(int)\"!"},
        {L"void f(int)\r\n[f]File", L"", -1, L"Ошибка в функции \"void f(int)\"!\r\nFile"},
        {L"int a[](int)[f]\r\nL", L"", -1, L"Ошибка в функции \"int a[](int)\"!\r\nL"},
        {L"void f(int)[f]\r\nL\r\n", L"Сообщение.", 5,
         f + L"Last Error: 1.\n" + SystemText(1) + L"\nСообщение.\n"},
        {L"void f(int)[f]\r\nL\r\n", L"", 0, f + L"Last Error: 0.\n" + SystemText(0) + L"\n"}};
    // clang-format on
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(c.where)));
        ::SetLastError(static_cast<DWORD>(c.lastError));
        EXPECT_EQ(ComposeFailureTextW(c.where, c.text, c.lastError >= 0), c.composed);
    }
}

// Each table at its edges: the first and last code of each run has its entry (its English text
// begins so), and the 8-bit copy is the same text in code page 1251; a code beside a run has none
// and gets the system's text; code 0 has one shared entry.
TEST(DescriptionTables, EntriesAtTheEdgesAndCodesBesideThemFallBackToTheSystem) {
    using namespace Utils::Error;
    // The describers (wide; 8-bit or null), how a block shows its code, codes with and without entries.
    // clang-format off
    struct Table { std::wstring (*wide)(long); std::string (*narrow)(long); const wchar_t* code;
        std::vector<std::pair<long, const wchar_t*>> entries; std::vector<long> beside; };
    const Table tables[] = {
        {[](long c) { return InternetW(c); }, [](long c) { return InternetA(c); }, L"%ld",
         {{12001, L"No more handles"}, {12034, L"A user interface"}, {12036, L"The request failed"},
          {12050, L"The dialog box should"}, {12052, L"The data being"}, {12057, L"Revocation"},
          {12110, L"The requested operation cannot be made on the FTP"}, {12112, L"Passive mode"},
          {12130, L"An error was detected while parsing"}, {12138, L"The locator DWORD"},
          {12150, L"The requested header"}, {12175, L"WinINet failed"}},
         {5, 12000, 12035, 12051, 12058, 12109, 12113, 12129, 12139, 12149, 12176}},
        {[](long c) { return CommonDialogDescriptionW(c); },
         [](long c) { return CommonDialogDescriptionA(c); }, L"0x%04lX",
         {{0x0001, L"The lStructSize"}, {0x000C, L"The RegisterWindowMessage"},
          {0x1001, L"The PrintDlg function failed to load the"}, {0x100C, L"You called"},
          {0x2001, L"No fonts"}, {0x2002, L"The size specified"}, {0x3001, L"An attempt to"},
          {0x3003, L"The buffer pointed"}, {0x4001, L"A member of the"},
          {0xFFFF, L"The dialog box could not"}},
         {0x000D, 0x1000, 0x100D, 0x2003, 0x3000, 0x3004, 0x4002, 0xFFFE}},
        {[](long c) { return ShellOperationDescriptionW(c); }, nullptr, L"0x%05lX",
         {{0x71, L"The source and destination files"}, {0x76, L"The destination is a subtree"},
          {0x78, L"Security"}, {0x7A, L"The operation involved"}, {0x7C, L"The path in the source"},
          {0x7E, L"The destination path is an existing file"},
          {0x80, L"The destination path is an existing folder"}, {0x88, L"The source is a writable"},
          {0xB7, L"MAX_PATH was"}, {0x402, L"An unknown error"}, {0x10000, L"An unspecified"},
          {0x10074, L"Destination is a root"}},
         {0x70, 0x77, 0x7B, 0x7F, 0x89, 0xB6, 0x401, 0xFFFF, 0x10075}}};
    // clang-format on
    for (const Table& t : tables) {
        EXPECT_EQ(t.wide(0),
                  L"\r\nLast Error: 0.\r\n\r\nThe operation completed successfully.\r\n\r\nОперация "
                  L"успешно завершена.\r\n\r\n");
        for (const auto& [code, english] : t.entries) {
            wchar_t text[16] = {};
            std::swprintf(text, 16, t.code, code);
            const std::wstring block = t.wide(code);
            EXPECT_EQ(block.find(L"\r\nLast Error: " + std::wstring(text) + L".\r\n\r\n" + english), 0u)
                << code;
            EXPECT_TRUE(t.narrow == nullptr ||
                        Utils::CodingStr::AnsiToUnicode(t.narrow(code), 1251) == block);
        }
        for (const long code : t.beside)
            EXPECT_EQ(t.wide(code), SystemDescriptionW(static_cast<unsigned long>(code))) << code;
    }
}

struct Plain : Utils::Smart::Base {};

// An event holding a handle of the test's making.
struct PlantedEvent : Utils::Sync::Event {
    explicit PlantedEvent(HANDLE handle) { handle_ = handle; }
    ~PlantedEvent() override { handle_ = nullptr; }
};

std::wstring g_text; // empty: the string algorithms take their text by reference
Plain g_left, g_right;
Utils::_STRINGBUF<wchar_t> g_ab;
unsigned __int64 g_number = 1;

TEST(PinnedSites, TextsShowTheirFileAndLine) {
    g_ab.Init(L"ab", 0, 0);
    Utils::Sync::Mutex mutex; // nobody owns it
    mutex.Create(L"Tovarin-pinned-" + std::to_wstring(::GetCurrentProcessId()));
    const std::tuple<const wchar_t*, int, std::function<void()>> sites[] = {
        // the file, the line or 0
        {L"Utils.Smart.cpp", 350, [] { Plain().Release(); }},
        {L"Utils.Smart.cpp", 249, [] { Utils::Smart::WeakFactory::Instance().DropId(-77); }},
        {L"Utils.Smart.cpp", 376, [] { g_left.Equals(&g_right); }},
        {L"Utils.Smart.cpp", 401, [] { g_left.Less(&g_right); }},
        {L"Utils.Type.h", 342, [] { Utils::Type::IsWide<int>(L"caller"); }},
        {L"Utils.StringBuffer.h", 73, [] { Utils::_STRINGBUF<wchar_t>().Init(L"", 0, 0); }},
        {L"Utils.StringBuffer.h", 97, [] { Utils::_STRINGBUF<wchar_t>().Init(std::wstring(), 0, ~0ull); }},
        {L"Utils.StringBuffer.h", 286, [] { g_ab.Copy(5, 1); }},
        {L"Utils.StringBuffer.h", 142, [] { Utils::_STRINGBUF<char>().Pointer<char>(0); }},
        {L"Utils.Strings.cpp", 3793, [] { Utils::String::ReplaceW(g_text, 0, 1, L'a', L'b'); }},
        {L"Utils.Strings.cpp", 3981, [] { Utils::String::UpperW(g_text, 0, 4294967295ul); }},
        {L"Utils.Strings.cpp", 2976,
         [] { Utils::String::PosByReverseNumberSubStringsW(L"a", L"", g_number, ~0ull, 0); }},
        {L"Utils.Strings.cpp", 0, [] { Utils::String::Path::TrimNameFileCW(L"", 0); }},
        {L"Utils.Synchronize.cpp", 509, [] { Utils::Sync::Mutex().Create(L"NoSuchNamespace\\x"); }},
        {L"Utils.Synchronize.cpp", 560, [&] { mutex.Release(); }},
        {L"Utils.Synchronize.cpp", 341,
         [] { PlantedEvent(reinterpret_cast<HANDLE>(intptr_t(0x7FFF0))).Close(); }},
        {L"Utils.Synchronize.cpp", 356, [] { Utils::Sync::Event().Create(L"NoSuchNamespace\\x"); }},
        {L"Utils.Error.cpp", 522, [] { ::SetLastError(0x71), Utils::Error::DescriptionW<int>(0); }},
    };
    BoxRecorder boxes;
    for (const auto& [file, line, call] : sites) {
        SCOPED_TRACE(line);
        std::wstring text = Thrown(call);
        if (!boxes.Boxes().empty()) { // the describer's notice for a shell code: a box, not a throw
            EXPECT_EQ(boxes.Boxes()[0].icon, MB_ICONINFORMATION);
            text = boxes.Boxes()[0].text;
            boxes.Clear();
        }
        const std::wstring where = std::wstring(L"File: \"") + file + L"\"\r\nLine: ";
        EXPECT_HAS(text, line == 0 ? where : where + std::to_wstring(line) + L"\r\n");
    }
}

} // namespace
