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

bool IsDriveFolder(const std::wstring& folder) {
    const size_t at = folder.rfind(L"\\\\?\\", 0) == 0 ? 4 : 0;
    if (folder.size() < at + 3 || folder[at + 1] != L':' || folder[at + 2] != L'\\')
        return false;
    const wchar_t drive = folder[at];
    return (drive >= L'A' && drive <= L'Z') || (drive >= L'a' && drive <= L'z');
}

bool CreateFolder(const std::wstring& folder) {
    // The shell would find an existing absolute folder on a drive and report it as existing; every
    // other folder goes to the shell, which refuses a relative one (".", "..", "name") with 161,
    // whether or not it happens to exist under the current folder.
    if (IsDriveFolder(folder)) {
        const DWORD attributes = ::GetFileAttributesW(folder.c_str());
        if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
            return true;
    }
    const int result = ::SHCreateDirectoryExW(nullptr, folder.c_str(), nullptr);
    return result == ERROR_SUCCESS || result == ERROR_FILE_EXISTS || result == ERROR_ALREADY_EXISTS;
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
    return Sys().fileOperation(&operation) == 0 && !operation.fAnyOperationsAborted;
}

bool DeletePath(const std::wstring& path) {
    return FileOperation(path, std::wstring(), FO_DELETE);
}

bool SymbolicLink(const std::wstring& link, const std::wstring& target, const bool) {
    String::Path::Has(link);
    const std::wstring folder = String::Path::TrimNameFileCW(link, 0);
    if (!CreateFolder(folder))
        TOVARIN_THROW(kSymbolicLink, false, L"Не создан для символьной ссылки каталог:\n\"" + folder + L"\"");
    return Sys().createSymbolicLink(link.c_str(), target.c_str(), 0) != 0;
}

} // namespace MainFile

namespace File {

void HardLink(const std::wstring& source, const std::wstring& link) {
    String::Path::Has(source);
    String::Path::Has(link);
    // One drive, told by the first characters, compared exactly: "c:\a" and "C:\b" differ.
    if (source.empty() || link.empty() || source[0] != link[0]) {
        const std::wstring text = L"Жёсткая ссылка на файл может создаваться только в пределах одного "
                                  L"логического диска.\r\nИсходный файл:\r\n\"" +
                                  source + L"\"\r\nЖёсткая ссылка на файл:\r\n\"" + link + L"\"";
        TOVARIN_THROW(kHardLink, false, text);
    }
    const std::wstring folder = String::Path::TrimNameFileCW(link, 0);
    if (!CreateFolder(folder))
        TOVARIN_THROW(kHardLink, false, L"Для жёсткой ссылки не создан каталог:\r\n\"" + folder + L"\"");
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
