// Shell operations and links on plain paths, and the file object's path operations.
#include "utils/Utils.File.h"
#include "utils/Utils.FileHdd.h"

#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <functional>

using TestSupport::TempDir;

namespace {

std::wstring FailureOf(void (*action)(const std::wstring&), const std::wstring& argument) {
    try {
        action(argument);
    } catch (const std::wstring& text) {
        return text;
    }
    return std::wstring();
}

TEST(MainFileOperation, RefusesUnknownOperations) {
    for (unsigned short wFunc : {0, 5}) {
        try {
            Utils::MainFile::FileOperation(L"C:\\a", L"C:\\b", wFunc);
            ADD_FAILURE() << "accepted " << wFunc;
        } catch (const std::wstring& text) {
            EXPECT_NE(text.find(L"\nНеверно выбран параметр выбора операции.\r\nwFunc = " +
                                std::to_wstring(wFunc) + L"\n"),
                      std::wstring::npos);
            EXPECT_EQ(text.find(L"Last Error"), std::wstring::npos);
        }
    }
}

TEST(MainFileOperation, DeleteOfAMissingFileIsFalseWithoutText) {
    TempDir dir;
    EXPECT_FALSE(Utils::MainFile::DeletePath(dir / L"missing.bin"));
}

TEST(FileHardLink, DrivesAreComparedByTheFirstCharacterExactly) {
    const std::wstring text =
        FailureOf([](const std::wstring&) { Utils::File::HardLink(L"c:\\a.bin", L"C:\\b.bin"); }, L"");
    EXPECT_NE(
        text.find(L"Жёсткая ссылка на файл может создаваться только в пределах одного логического диска."),
        std::wstring::npos);
    // Two long paths always pass the drive test: their first characters are equal.
    const std::wstring longPaths = FailureOf(
        [](const std::wstring&) { Utils::File::HardLink(L"\\\\?\\C:\\nope\\a.bin", L"\\\\?\\Z:\\b.bin"); },
        L"");
    EXPECT_EQ(longPaths.find(L"пределах одного логического диска"), std::wstring::npos);
    EXPECT_FALSE(longPaths.empty()); // it fails later, at the folder or at the link itself
}

TEST(FileHddPathOperations, RequireAPath) {
    Utils::FileHdd file;
    const struct {
        const wchar_t* tail;
        std::function<void()> action;
    } cases[] = {
        {L"Для копирования файла необходимо инициализировать класс путём к файлу.",
         [&] { file.Copy(L"C:\\x"); }},
        {L"Для перемещения файла необходимо инициализировать класс путём к файлу.",
         [&] { file.Move(L"C:\\x"); }},
        {L"Для удаления файла необходимо инициализировать класс путём к файлу.", [&] { file.Delete(); }},
        {L"Для создания жёсткой ссылки на файл необходимо инициализировать класс путём к файлу.",
         [&] { file.HardLink(L"C:\\x"); }},
    };
    for (const auto& c : cases) {
        try {
            c.action();
            ADD_FAILURE() << "accepted";
        } catch (const std::wstring& text) {
            EXPECT_NE(text.find(std::wstring(L"\nОтсутствует путь к исходному файлу.\r\n") + c.tail + L"\n"),
                      std::wstring::npos)
                << TestSupport::Narrow(text);
        }
    }
}

TEST(FileHddPathOperations, MoveTakesTheNewPathAndEvent) {
    TempDir dir;
    ASSERT_TRUE(TestSupport::WriteFileBytes(dir / L"a.bin", "a"));
    Utils::FileHdd file;
    file.Init(dir / L"a.bin", nullptr, true);
    const std::wstring before = file.EventName();
    ASSERT_TRUE(file.Move(dir / L"b.bin"));
    EXPECT_EQ(file.Path(), dir / L"b.bin");
    EXPECT_NE(file.EventName(), before);
    Utils::FileHdd twin;
    twin.Init(dir / L"b.bin", nullptr, true);
    EXPECT_EQ(twin.EventName(), file.EventName());
}

TEST(FileHddPathOperations, DeleteClosesTheHandleFirst) {
    TempDir dir;
    Utils::FileHdd file;
    file.Init(dir / L"open.bin", nullptr, true);
    ASSERT_NE(file.Create(CREATE_ALWAYS), nullptr);
    EXPECT_TRUE(file.Delete());
    EXPECT_EQ(file.Handle(), nullptr);
    EXPECT_FALSE(TestSupport::FileExists(dir / L"open.bin"));
}

} // namespace
