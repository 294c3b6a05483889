#pragma once
// File-system operations on plain paths: shell copy, move and delete, hard and symbolic links; and
// the table through which the file layer makes the system calls that tests need to make fail.
#include <windows.h>
#include <shellapi.h>

#include <string>

namespace Utils {

// The system calls that tests make fail, reached through one table so that a fault test needs no
// special disk. Defaults are the real calls.
struct SystemCalls {
    decltype(&::CreateFileW) createFile;
    decltype(&::ReadFile) readFile;
    decltype(&::WriteFile) writeFile;
    decltype(&::SetEndOfFile) setEndOfFile;
    decltype(&::CloseHandle) closeHandle;
    decltype(&::CreateSymbolicLinkW) createSymbolicLink;
    decltype(&::CreateHardLinkW) createHardLink;
    decltype(&::SHFileOperationW) fileOperation;
};
SystemCalls& Sys();

// Puts back the calls it found when it ends, also when a test's assertion leaves early.
class [[nodiscard]] ScopedSystemCalls {
public:
    ScopedSystemCalls() : saved_(Sys()) {}
    ~ScopedSystemCalls() { Sys() = saved_; }
    ScopedSystemCalls(const ScopedSystemCalls&) = delete;
    ScopedSystemCalls& operator=(const ScopedSystemCalls&) = delete;

    SystemCalls* operator->() { return &Sys(); }

private:
    const SystemCalls saved_;
};

namespace MainFile {
// One silent shell operation (1 move, 2 copy, 3 delete, 4 rename); true when it succeeded and
// nothing was aborted. Any other wFunc throws, and so does a source or target (no target for a
// delete) that breaks the path rules or is not absolute: the shell would take wildcards and the
// current folder. A folder is copied, moved or deleted whole.
bool FileOperation(const std::wstring& from, const std::wstring& to, const unsigned short wFunc);
bool DeletePath(const std::wstring& path);
// Makes `link` a symbolic link to the file `target`, creating the link's folder first. The bool
// argument has no effect: the link is always a file link.
bool SymbolicLink(const std::wstring& link, const std::wstring& target, const bool = false);
} // namespace MainFile

namespace File {
// Makes `link` a hard link to `source` (one drive only, by the paths' first characters); throws on
// every failure, a source that is not absolute included.
void HardLink(const std::wstring& source, const std::wstring& link);
} // namespace File

// "X:\..." or "\\...": a path that the system does not resolve against a current folder, as it
// would a plain ("name"), drive-relative ("X:name") or root-relative ("\name") one.
bool IsAbsolutePath(const std::wstring& path);

// "X:\..." or "\\?\X:\...": an absolute folder on a drive letter.
bool IsDriveFolder(const std::wstring& folder);

// The folder step of every open, create and link: the folder of `path` (its text before the last
// backslash), made with every missing parent through the shell; `made` tells whether it is there
// afterwards. A path that is not absolute is refused before any system call. An absolute folder
// on a drive that is already there costs one attribute query.
struct FolderStep {
    std::wstring folder;
    bool made;
};
FolderStep CreateFolder(const std::wstring& path);

} // namespace Utils
