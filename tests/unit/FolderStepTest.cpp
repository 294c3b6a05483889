// The folder step skips the shell only where the shell's answer is known: an existing absolute
// folder on a drive. Everywhere else it must answer as the shell does, whatever exists.
#include "support/TempDir.h"
#include "utils/Utils.File.h"

#include <gtest/gtest.h>
#include <shlobj.h>

namespace {

using TestSupport::TempDir;

bool ShellAccepts(const std::wstring& folder) {
    const int result = ::SHCreateDirectoryExW(nullptr, folder.c_str(), nullptr);
    return result == ERROR_SUCCESS || result == ERROR_FILE_EXISTS || result == ERROR_ALREADY_EXISTS;
}

TEST(FolderStep, AnswersAsTheShellForAbsoluteRelativeExistingAndMissingFolders) {
    TempDir dir;
    wchar_t saved[MAX_PATH] = {};
    ::GetCurrentDirectoryW(MAX_PATH, saved);
    ASSERT_TRUE(::SetCurrentDirectoryW(dir.Path().c_str()));
    ::CreateDirectoryW(L"rel", nullptr);
    struct Case {
        std::wstring step, shell; // the same kind of folder, one for each side
        bool accepted;
    };
    const Case cases[] = {
        {dir.Path(), dir.Path(), true},
        {dir / L"new\\deeper", dir / L"new2\\deeper", true},
        {L"rel", L"rel", false},
        {L"relnew", L"relnew2", false},
        {L".", L".", false},
        {L"..", L"..", false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(TestSupport::Narrow(c.step));
        EXPECT_EQ(Utils::CreateFolder(c.step), c.accepted);
        EXPECT_EQ(ShellAccepts(c.shell), c.accepted);
    }
    EXPECT_FALSE(TestSupport::FileExists(dir / L"relnew"));
    ::SetCurrentDirectoryW(saved);
}

} // namespace
