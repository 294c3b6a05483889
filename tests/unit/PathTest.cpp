// Path rules, folder trimming and file status.
#include "utils/Utils.FilesFind.h"
#include "utils/Utils.Strings.h"

#include "support/TempDir.h"

#include <gtest/gtest.h>

using Utils::String::Path::Has;
using Utils::String::Path::TrimNameFileCW;

namespace {

struct RefusedPath {
    const char* name;
    std::wstring path;
    std::wstring message; // the whole message the rule throws
};

class PathRefused : public testing::TestWithParam<RefusedPath> {};

TEST_P(PathRefused, ThrowsTheRuleText) {
    const RefusedPath& c = GetParam();
    try {
        Has(c.path);
        FAIL() << "accepted";
    } catch (const std::wstring& text) {
        EXPECT_EQ(text.find(L"Ошибка в функции \"bool __cdecl Utils::String::Path::Has("), 0u);
        EXPECT_NE(text.find(L"File: \"Utils.Strings.cpp\""), std::wstring::npos);
        ASSERT_GE(text.size(), c.message.size() + 1);
        EXPECT_EQ(text.substr(text.size() - c.message.size() - 2), L"\n" + c.message + L"\n")
            << TestSupport::Narrow(text);
    }
}

const std::wstring k256 = L"C:\\" + std::wstring(253, L'a');

const RefusedPath kRefused[] = {
    {"ForbiddenPipe", L"D:\\a|b.txt",
     L"Обнаружен запрещённый символ '|' в позиции 4 в пути:\n\"D:\\a|b.txt\""},
    {"ForwardSlash", L"D:/a", L"Обнаружен запрещённый символ '/' в позиции 2 в пути:\n\"D:/a\""},
    {"LongPathWithoutColon", L"\\\\?\\UNC\\server\\share\\x",
     L"Обнаружен запрещённый символ '?' в позиции 2 в пути:\n\"\\\\?\\UNC\\server\\share\\x\""},
    {"TrailingDot", L"D:\\dir.", L"Пробел в конце пути:\n\"D:\\dir.\""},
    {"TrailingSpace", L"D:\\dir ", L"Пробел в конце пути:\n\"D:\\dir \""},
    {"TooLong", k256, L"Боле 255 символов в пути:\n\"" + k256 + L"\""},
    // The entry shown is the one at the name's position: "nul" for the second name.
    {"ReservedByPosition", L"D:\\con\\x.txt",
     L"Использовано зарезервированное в Windows имя \"nul\" с порядковым номером 2 в "
     L"пути:\n\"D:\\con\\x.txt\""},
    {"ReservedAux", L"AUX",
     L"Использовано зарезервированное в Windows имя \"con\" с порядковым номером 1 в пути:\n\"AUX\""},
};

INSTANTIATE_TEST_SUITE_P(Rules, PathRefused, testing::ValuesIn(kRefused),
                         [](const testing::TestParamInfo<RefusedPath>& info) { return info.param.name; });

TEST(PathHas, AcceptsPathsThatPassEveryRule) {
    const std::wstring accepted[] = {
        L"C:\\" + std::wstring(252, L'a'), // 255 characters
        L"\\\\?\\C:\\" +
            std::wstring(300, L'a'), // long paths have no length limit; the "?" precedes the colon
        L"D:\\CON\\x.txt",           // reserved names compare case-sensitively
        L"D:\\aux\\con.txt",
        L"ftp://server/dir/file.txt", // network paths may use forward slashes
        L"http://server:8080/x",
        L"C:\\a\\b:c", // the colon rule never fails; nothing forbidden after the last colon
    };
    for (const std::wstring& path : accepted) {
        SCOPED_TRACE(TestSupport::Narrow(path));
        EXPECT_TRUE(Has(path));
    }
    EXPECT_FALSE(Has(L""));
}

TEST(PathTrim, CutsTheLastName) {
    EXPECT_EQ(TrimNameFileCW(L"D:\\a\\b\\c.bin", 0), L"D:\\a\\b");
    EXPECT_EQ(TrimNameFileCW(L"D:\\a\\b\\c.bin", 1), L"D:\\a");
    EXPECT_EQ(TrimNameFileCW(L"c.bin", 0), L"c.bin");
    EXPECT_EQ(TrimNameFileCW(L"C:\\x", 0), L"C:");
    try {
        TrimNameFileCW(L"", 0);
        FAIL() << "accepted";
    } catch (const std::wstring& text) {
        EXPECT_EQ(text.substr(text.size() - 19), L"\nОтсутствует путь.\n");
    }
}

TEST(FilesFindStatus, TellsFolderFileAndNothing) {
    TestSupport::TempDir dir;
    ASSERT_TRUE(TestSupport::WriteFileBytes(dir / L"a.txt", "x"));
    const Utils::FilesFind find;
    EXPECT_EQ(find.Status(dir.Path()), 1);
    EXPECT_EQ(find.Status(dir / L"a.txt"), 2);
    EXPECT_EQ(find.Status(dir / L"missing.txt"), 0);
    EXPECT_EQ(find.Status(dir / L"*.txt"), 2);
    EXPECT_EQ(find.Status(dir / L"*.bin"), 0);
}

TEST(FilesFindStatus, UnknownPlaceRefuses) {
    const Utils::FilesFind find(7);
    try {
        find.Status(L"C:\\x");
        FAIL() << "accepted";
    } catch (const std::wstring& text) {
        EXPECT_NE(text.find(L"Класс не инициализирован для поиска файлов.\nНе определено где искать файлы."),
                  std::wstring::npos);
    }
}

} // namespace
