// The failure-text composer's headings and last-error block, the bilingual description tables at
// their edges, and the failure box.
#include "support/BoxRecorder.h"
#include "support/TempDir.h"

#include "exports/Frame.h"
#include "utils/Utils.CodingStr.h"
#include "utils/Utils.Error.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <cwchar>

namespace {

std::wstring SystemText(unsigned long code) {
    wchar_t buffer[2048] = {};
    ::FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM, nullptr, code, 0, buffer, 2048, nullptr);
    return buffer;
}

TEST(Composer, HeadingsByMarker) {
    const std::pair<const wchar_t*, const wchar_t*> cases[] = {
        {L"void f(int)[f]\r\nL", L"Ошибка в функции \"void f(int)\"!\r\nL"},
        {L"int g(long)[f][d]\r\nL", L"Обнаружена ошибка функцией \"int g(long)\"!\r\nL"},
        {L"int g(long)[f][w]\r\nL", L"Предупреждение функции \"int g(long)\"!\r\nL"},
        {L"int C::m(long)[x]\r\nL", L"Ошибка в методе \"int C::m(long)\"!\r\nL"},
        {L"C::operator+(long)[o]\r\nL", L"Ошибка в операторе \"C::operator+(long)\"!\r\nL"},
        {L"C::operator+(long)[O][D]\r\nL", L"Обнаружена ошибка оператором \"C::operator+(long)\"!\r\nL"},
        {L"Name[f]\r\nL", L"Ошибка в функции \"Name()\"!\r\nL"},
        {L"void f(int)", L"Ошибка в методе \"void f(int)\"!"},
        {L"void f(int)\r\n[f]File", L"Ошибка в функции \"void f(int)\"!\r\nFile"},
        {L"int a[](int)[f]\r\nL", L"Ошибка в функции \"int a[](int)\"!\r\nL"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(c.first)));
        EXPECT_EQ(ComposeFailureTextW(c.first, L"", false), c.second);
    }
}

TEST(Composer, MessageAndLastErrorBlock) {
    EXPECT_EQ(ComposeFailureTextW(L"void f(int)[f]\r\nL\r\n", L"Сообщение.", false),
              L"Ошибка в функции \"void f(int)\"!\r\nL\r\n\nСообщение.\n");
    ::SetLastError(5); // any error shows as 1
    EXPECT_EQ(ComposeFailureTextW(L"void f(int)[f]\r\nL\r\n", L"Сообщение.", true),
              L"Ошибка в функции \"void f(int)\"!\r\nL\r\n\nLast Error: 1.\n" + SystemText(1) +
                  L"\nСообщение.\n");
    ::SetLastError(0);
    EXPECT_EQ(ComposeFailureTextW(L"void f(int)[f]\r\nL\r\n", L"", true),
              L"Ошибка в функции \"void f(int)\"!\r\nL\r\n\nLast Error: 0.\n" + SystemText(0) + L"\n");
    ::SetLastError(5);
    const std::string narrow = ComposeFailureTextA("void f(int)[f]\r\nL\r\n", "message", true);
    EXPECT_EQ(Utils::CodingStr::AnsiToUnicode(narrow, 1251)
                  .find(L"Ошибка в функции \"void f(int)\"!\r\nL\r\n\nLast Error: 1.\n"),
              0u);
    EXPECT_EQ(narrow.substr(narrow.size() - 9), "\nmessage\n");
}

// Each table at its edges: the first and last code of each run has its entry (an English text
// begins it), a code beside a run has none and gets the system's text; code 0 has one shared entry;
// the 8-bit copies are the same texts in code page 1251.
TEST(DescriptionTables, EntriesAtTheEdgesAndCodesBesideThemFallBackToTheSystem) {
    using namespace Utils::Error;
    struct Table {
        std::wstring (*wide)(long);
        std::string (*narrow)(long); // null: no 8-bit copy
        const wchar_t* code;         // how the block shows a code
        std::vector<std::pair<long, const wchar_t*>> entries;
        std::vector<long> beside;
    } const tables[] = {
        {[](long c) { return InternetW(c); },
         [](long c) { return InternetA(c); },
         L"%ld",
         {{12001, L"No more handles"},
          {12002, L"The request has timed out."},
          {12034, L"A user interface"},
          {12036, L"The request failed because"},
          {12050, L"The dialog box should"},
          {12052, L"The data being"},
          {12057, L"Revocation of"},
          {12110, L"The requested operation cannot be made on the FTP"},
          {12112, L"Passive mode"},
          {12130, L"An error was detected while parsing"},
          {12138, L"The locator DWORD"},
          {12150, L"The requested header"},
          {12175, L"WinINet failed to perform content decoding"}},
         {5, 12000, 12035, 12051, 12058, 12109, 12113, 12129, 12139, 12149, 12176}},
        {[](long c) { return CommonDialogDescriptionW(static_cast<unsigned long>(c)); },
         [](long c) { return CommonDialogDescriptionA(static_cast<unsigned long>(c)); },
         L"0x%04lX",
         {{0x0001, L"The lStructSize member"},
          {0x000C, L"The RegisterWindowMessage function"},
          {0x1001, L"The PrintDlg function failed to load the required"},
          {0x100C, L"You called the PrintDlg"},
          {0x2001, L"No fonts exist."},
          {0x2002, L"The size specified in the nSizeMax"},
          {0x3001, L"An attempt to subclass a list box"},
          {0x3003, L"The buffer pointed to by the lpstrFile"},
          {0x4001, L"A member of the FINDREPLACE"},
          {0xFFFF, L"The dialog box could not be created."}},
         {0x000D, 0x1000, 0x100D, 0x2003, 0x3000, 0x3004, 0x4002, 0xFFFE}},
        {[](long c) { return ShellOperationDescriptionW(static_cast<int>(c)); },
         nullptr,
         L"0x%05lX",
         {{0x71, L"The source and destination files are the same"},
          {0x76, L"The destination is a subtree"},
          {0x78, L"Security settings denied"},
          {0x7A, L"The operation involved multiple destination"},
          {0x7C, L"The path in the source or destination"},
          {0x7E, L"The destination path is an existing file."},
          {0x80, L"The destination path is an existing folder."},
          {0x88, L"The source is a writable CD-ROM"},
          {0xB7, L"MAX_PATH was exceeded"},
          {0x402, L"An unknown error occurred."},
          {0x10000, L"An unspecified error"},
          {0x10074, L"Destination is a root directory"}},
         {0x70, 0x77, 0x7B, 0x7F, 0x89, 0xB6, 0x401, 0xFFFF, 0x10075}},
    };
    const std::wstring success =
        L"\r\nLast Error: 0.\r\n\r\nThe operation completed successfully.\r\n\r\nОперация "
        L"успешно завершена.\r\n\r\n";
    const auto cp1251 = [](const std::string& text) { return Utils::CodingStr::AnsiToUnicode(text, 1251); };
    for (const Table& t : tables) {
        EXPECT_EQ(t.wide(0), success);
        for (const auto& [code, english] : t.entries) {
            SCOPED_TRACE(code);
            wchar_t text[16] = {};
            std::swprintf(text, 16, t.code, code);
            const std::wstring block = t.wide(code);
            EXPECT_EQ(block.find(L"\r\nLast Error: " + std::wstring(text) + L".\r\n\r\n" + english), 0u);
            EXPECT_EQ(block.rfind(L"\r\n\r\n"), block.size() - 4);
            EXPECT_NE(block.find(L"\r\n\r\n", block.find(english)), block.size() - 4); // and a Russian text
            EXPECT_TRUE(t.narrow == nullptr || cp1251(t.narrow(code)) == block);
        }
        for (const long code : t.beside) {
            SCOPED_TRACE(code);
            EXPECT_EQ(t.wide(code), SystemDescriptionW(static_cast<unsigned long>(code)));
            EXPECT_TRUE(t.narrow == nullptr ||
                        t.narrow(code) == SystemDescriptionA(static_cast<unsigned long>(code)));
        }
    }
    // The long-typed describer sends 12001 to 12175 to the network table.
    for (const long code : {12000, 12001, 12175, 12176}) {
        ::SetLastError(static_cast<DWORD>(code));
        EXPECT_EQ(DescriptionW<long>(0).find(L"\r\nLast Error: " + std::to_wstring(code) + L".\r\n\r\n"),
                  code == 12000 || code == 12176 ? std::wstring::npos : 0u);
    }
}

// The failure box: error and notice by their icon, the caption first in the short forms; the 8-bit
// clause of the export frame shows an error box with the module's name. A missing module is a
// three-line text with the last error; a missing box function shows nothing.
TEST(FailureBox, IconCaptionAndMissingPieces) {
    using namespace Utils::Error::detail;
    TestSupport::BoxRecorder boxes;
    ShowErrorW(L"E", L"error");
    ShowNoticeW(L"N", L"notice");
    ShowErrorA("A", "narrow");
    ShowMessageVia(L"User32.dll", "NoSuchBox", L"x", L"y", 0, 0);
    Project::ReportNarrow(TOVARIN_FIXED_SITE("void f(void)", "src/f.cpp", 7), "thrown");
    const std::vector<TestSupport::Box> shown = boxes.Boxes();
    ASSERT_EQ(shown.size(), 4u);
    const std::pair<std::wstring, UINT> expected[] = {
        {L"E error", MB_ICONERROR}, {L"N notice", MB_ICONINFORMATION}, {L"A narrow", MB_ICONERROR}};
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(shown[i].caption + L" " + shown[i].text, expected[i].first);
        EXPECT_EQ(shown[i].icon, expected[i].second);
    }
    EXPECT_EQ(shown[3].caption, Project::ModuleName());
    EXPECT_EQ(shown[3].icon, MB_ICONERROR);
    EXPECT_EQ(shown[3].text.substr(shown[3].text.find(L"void f")),
              L"void f(void)\"!\r\nFile: \"f.cpp\"\r\nLine: 7\r\n\nthrown\n");
    for (const bool wide : {true, false})
        EXPECT_EQ(
            TestSupport::Thrown([&] {
                wide ? ShowMessageVia(L"NoSuch.dll", "MessageBoxTimeoutW", L"", L"", 0, 0)
                     : ShowMessageViaA(L"NoSuch.dll", "MessageBoxTimeoutA", "", "");
            }),
            std::wstring(L"Ошибка в функции \"MessageBoxTimeout") + (wide ? L"W" : L"A") +
                L"()\".\nНе получен системный дескриптор модуля \"User32.dll\".\nПоследняя ошибка: 126\n");
}

} // namespace
