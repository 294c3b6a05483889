// The folder step skips the shell only where the shell's answer is known: an existing absolute
// folder on a drive. Elsewhere it answers as the shell does, whatever exists, except that it never
// hands the shell a drive- or root-relative folder, which the shell would take (see PathsTest).
#include "support/Exports.h"
#include "utils/Utils.File.h"

#include <shlobj.h>

namespace {

TEST(FolderStep, AnswersAsTheShellForAbsoluteRelativeExistingAndMissingFolders) {
    TestSupport::TempDir dir;
    TestSupport::CurrentFolder current(dir.Path());
    ::CreateDirectoryW(L"rel", nullptr);
    struct Case {
        std::wstring step, shell; // the same kind of folder for each side: the shell makes what it accepts
        bool accepted;
    } const cases[] = {{dir.Path(), dir.Path(), true},
                       {dir / L"a\\b", dir / L"c\\d", true},
                       {L"rel", L"rel", false},
                       {L"new", L"new2", false},
                       {L".", L".", false},
                       {L"..", L"..", false}};
    for (const Case& c : cases) {
        SCOPED_TRACE(TestSupport::Narrow(c.step));
        EXPECT_EQ(Utils::CreateFolder(c.step + L"\\x.bin").made, c.accepted);
        const int shell = ::SHCreateDirectoryExW(nullptr, c.shell.c_str(), nullptr);
        EXPECT_EQ(shell == ERROR_SUCCESS || shell == ERROR_ALREADY_EXISTS, c.accepted);
    }
    EXPECT_FALSE(TestSupport::FileExists(dir / L"new"));
}

} // namespace
