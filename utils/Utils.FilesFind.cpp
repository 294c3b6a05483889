#include "Utils.FilesFind.h"

#include "Utils.Error.h"

#include <windows.h>
#include <wininet.h>

namespace Utils {

namespace {
const char kStatus[] = "unsigned short __cdecl Utils::FilesFind::Status(const " TOVARIN_WSTRING " &)";
const wchar_t kNowhere[] = L"Класс не инициализирован для поиска файлов.\nНе определено где искать файлы.";
} // namespace

unsigned short FilesFind::Status(const std::wstring& path) const {
    ::SetLastError(0);
    WIN32_FIND_DATAW found = {};
    HANDLE search = INVALID_HANDLE_VALUE;
    if (place_ == kLocal)
        search = ::FindFirstFileW(path.c_str(), &found);
    else if (place_ == kFtp)
        search = ::FtpFindFirstFileW(static_cast<HINTERNET>(connection_), path.c_str(), &found, 0, 0);
    else
        TOVARIN_THROW(kStatus, false, kNowhere);
    if (search == INVALID_HANDLE_VALUE || search == nullptr)
        return 0;
    if (place_ == kLocal) {
        if (!::FindClose(search))
            TOVARIN_THROW(kStatus, true, L"Системный дескриптор поиска локальных файлов не закрыт.");
    } else if (!::InternetCloseHandle(search)) {
        TOVARIN_THROW(kStatus, true, L"Системный дескриптор поиска файлов в интернете не закрыт.");
    }
    return (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? 1 : 2;
}

} // namespace Utils
