// The failure-text composer's headings and last-error block, and spot checks of the bilingual
// description tables: an entry, a code without an entry, code 0, the 8-bit copy.
#include "utils/Utils.CodingStr.h"
#include "utils/Utils.Error.h"

#include <windows.h>

#include <gtest/gtest.h>

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

const wchar_t kSuccess[] = L"\r\nLast Error: 0.\r\n\r\nThe operation completed successfully.\r\n\r\nОперация "
                           L"успешно завершена.\r\n\r\n";

std::wstring Block(const std::wstring& code, const std::wstring& english, const std::wstring& russian) {
    return L"\r\nLast Error: " + code + L".\r\n\r\n" + english + L"\r\n\r\n" + russian + L"\r\n\r\n";
}

TEST(DescriptionTables, SpotChecks) {
    using namespace Utils::Error;
    const auto cp1251 = [](const std::string& text) { return Utils::CodingStr::AnsiToUnicode(text, 1251); };
    const std::wstring internet = Block(L"12001", L"No more handles could be generated at this time.",
                                        L"Невозможно сгенерировать дополнительные дескрипторы.");
    EXPECT_EQ(InternetW(12001), internet);
    EXPECT_EQ(cp1251(InternetA(12001)), internet);
    EXPECT_EQ(InternetW(12035), SystemDescriptionW(12035)); // no entry
    EXPECT_EQ(InternetW(0), kSuccess);
    const std::wstring dialog = Block(L"0x0001",
                                      L"The lStructSize member of the initialization structure for the "
                                      L"corresponding common dialog box is invalid.",
                                      L"Член \"lStructSize\" из структуры инициализации для соответствующего "
                                      L"стандартного диалогового окна недопустим.");
    EXPECT_EQ(CommonDialogDescriptionW(0x0001), dialog);
    EXPECT_EQ(cp1251(CommonDialogDescriptionA(0x0001)), dialog);
    EXPECT_EQ(CommonDialogDescriptionW(0x2003), SystemDescriptionW(0x2003));
    EXPECT_EQ(CommonDialogDescriptionW(0), kSuccess);
    EXPECT_EQ(ShellOperationDescriptionW(0x00071),
              Block(L"0x00071", L"The source and destination files are the same file.",
                    L"Пути исходного и конечного файлов одинаковы."));
    EXPECT_EQ(ShellOperationDescriptionW(0x77), SystemDescriptionW(0x77));
    EXPECT_EQ(ShellOperationDescriptionW(0), kSuccess);
}

} // namespace
