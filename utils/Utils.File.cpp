#include "Utils.File.h"

#include "Utils.Error.h"
#include "Utils.Strings.h"

#include <windows.h>
#include <shellapi.h>
#include <shlobj.h>

namespace Utils {

namespace {
const char kFileOperation[] = "bool __cdecl Utils::MainFile::FileOperation(const " TOVARIN_WSTRING
                              " &,const " TOVARIN_WSTRING " &,const unsigned short)";
const char kSymbolicLink[] = "bool __cdecl Utils::MainFile::SymbolicLink(const " TOVARIN_WSTRING
                             " &,const " TOVARIN_WSTRING " &,const bool)";
const char kHardLink[] =
    "void __cdecl Utils::File::HardLink(const " TOVARIN_WSTRING " &,const " TOVARIN_WSTRING " &)";
} // namespace

SystemCalls& Sys() {
    static SystemCalls calls = {&::CreateFileW,     &::ReadFile,        &::WriteFile,
                                &::SetEndOfFile,    &::CloseHandle,     &::CreateSymbolicLinkW,
                                &::CreateHardLinkW, &::SHFileOperationW};
    return calls;
}

namespace {

// "X:\" at `at`.
bool IsDriveRoot(const std::wstring& path, const size_t at) {
    if (path.size() < at + 3 || path[at + 1] != L':' || path[at + 2] != L'\\')
        return false;
    const wchar_t drive = path[at];
    return (drive >= L'A' && drive <= L'Z') || (drive >= L'a' && drive <= L'z');
}

// The path rules, then an absolute path, for the paths that have no folder step: those of copy,
// move and delete, and the source of a hard link. Refused in the caller's name, before any system call.
void CheckAbsolutePath(const Error::Site& site, const std::wstring& path) {
    String::Path::Has(path);
    if (!IsAbsolutePath(path))
        TOVARIN_THROW_AT(site, "[f]", false, L"Путь не абсолютный:\r\n\"" + path + L"\"");
}

} // namespace

bool IsAbsolutePath(const std::wstring& path) {
    return path.rfind(L"\\\\", 0) == 0 || IsDriveRoot(path, 0);
}

bool IsDriveFolder(const std::wstring& folder) {
    return IsDriveRoot(folder, folder.rfind(L"\\\\?\\", 0) == 0 ? 4 : 0);
}

FolderStep CreateFolder(const std::wstring& path) {
    FolderStep step = {String::Path::TrimNameFileCW(path, 0), false};
    // No path that is not absolute reaches the shell: it refuses a plain relative folder (".",
    // "..", "name") with 161, but takes a drive-relative ("X:name") or root-relative ("\name") one
    // and makes it against the current folder.
    if (!IsAbsolutePath(path))
        return step;
    // The shell would find an existing absolute folder on a drive and report it as existing.
    if (IsDriveFolder(step.folder)) {
        const DWORD attributes = ::GetFileAttributesW(step.folder.c_str());
        step.made = attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        if (step.made)
            return step;
    }
    const int result = ::SHCreateDirectoryExW(nullptr, step.folder.c_str(), nullptr);
    step.made = result == ERROR_SUCCESS || result == ERROR_FILE_EXISTS || result == ERROR_ALREADY_EXISTS;
    return step;
}

namespace MainFile {

bool FileOperation(const std::wstring& from, const std::wstring& to, const unsigned short wFunc) {
    // Shell name lists: one name followed by two terminating zeros.
    std::wstring source = from;
    source.append(2, L'\0');
    std::wstring target = to;
    target.append(2, L'\0');
    SHFILEOPSTRUCTW operation = {};
    operation.hwnd = nullptr;
    operation.wFunc = wFunc;
    operation.pFrom = source.c_str();
    operation.pTo = wFunc == FO_DELETE ? nullptr : target.c_str();
    operation.fFlags =
        FOF_MULTIDESTFILES | FOF_SILENT | FOF_NOCONFIRMATION | FOF_NOCONFIRMMKDIR | FOF_NOERRORUI;
    operation.fAnyOperationsAborted = TRUE;
    ::SetLastError(0);
    if (wFunc < FO_MOVE || wFunc > FO_RENAME) {
        const std::wstring text =
            L"Неверно выбран параметр выбора операции.\r\nwFunc = " + std::to_wstring(wFunc);
        TOVARIN_THROW(kFileOperation, false, text);
    }
    CheckAbsolutePath(TOVARIN_SITE(kFileOperation), from);
    if (wFunc != FO_DELETE)
        CheckAbsolutePath(TOVARIN_SITE(kFileOperation), to);
    return Sys().fileOperation(&operation) == 0 && !operation.fAnyOperationsAborted;
}

bool DeletePath(const std::wstring& path) {
    return FileOperation(path, std::wstring(), FO_DELETE);
}

bool SymbolicLink(const std::wstring& link, const std::wstring& target, const bool) {
    String::Path::Has(link);
    // The target is not resolved here: a relative target is the system's to resolve, from the
    // link's folder, whenever the link is followed.
    const FolderStep step = CreateFolder(link);
    if (!step.made) {
        const std::wstring text = L"Не создан для символьной ссылки каталог:\n\"" + step.folder + L"\"";
        TOVARIN_THROW(kSymbolicLink, false, text);
    }
    return Sys().createSymbolicLink(link.c_str(), target.c_str(), 0) != 0;
}

} // namespace MainFile

namespace File {

void HardLink(const std::wstring& source, const std::wstring& link) {
    CheckAbsolutePath(TOVARIN_SITE(kHardLink), source);
    String::Path::Has(link);
    // One drive, told by the first characters, compared exactly: "c:\a" and "C:\b" differ. A link
    // that is not absolute names no drive: the folder step refuses it.
    if (IsAbsolutePath(link) && source[0] != link[0]) {
        const std::wstring text = L"Жёсткая ссылка на файл может создаваться только в пределах одного "
                                  L"логического диска.\r\nИсходный файл:\r\n\"" +
                                  source + L"\"\r\nЖёсткая ссылка на файл:\r\n\"" + link + L"\"";
        TOVARIN_THROW(kHardLink, false, text);
    }
    const FolderStep step = CreateFolder(link);
    if (!step.made)
        TOVARIN_THROW(kHardLink, false, L"Для жёсткой ссылки не создан каталог:\r\n\"" + step.folder + L"\"");
    ::SetLastError(0);
    if (Sys().createHardLink(link.c_str(), source.c_str(), nullptr))
        return;
    if (::GetLastError() == 0) {
        const std::wstring text = L"Не создана жёсткая ссылка на файл:\r\n\"" + source +
                                  L"\"\r\nВозможной причиной может быть попытка создания жёсткой ссылки на "
                                  L"путь, который уже является ссылкой с другого диска.";
        TOVARIN_THROW(kHardLink, false, text);
    }
    TOVARIN_THROW(kHardLink, true, L"Не создана жёсткая ссылка на файл:\r\n\"" + source + L"\"");
}

} // namespace File
} // namespace Utils
