#include "TempDir.h"

#include <windows.h>

#include <atomic>
#include <filesystem>

namespace TestSupport {

TempDir::TempDir(std::wstring parent) {
    static std::atomic<unsigned> counter{0};
    if (parent.empty()) {
        parent.assign(MAX_PATH + 1, L'\0');
        parent.resize(::GetTempPathW(MAX_PATH, &parent[0]) - 1); // without the trailing backslash
        wchar_t brief[MAX_PATH] = {};
        const DWORD size =
            Narrow(parent, CP_ACP).empty() ? ::GetShortPathNameW(parent.c_str(), brief, MAX_PATH) : 0;
        parent = size > 0 && size < MAX_PATH ? std::wstring(brief, size) : parent;
    }
    path_ = parent + L"\\tovarin-" + std::to_wstring(::GetCurrentProcessId()) + L"-" +
            std::to_wstring(::GetTickCount()) + L"-" + std::to_wstring(counter++);
    ::CreateDirectoryW(path_.c_str(), nullptr);
}

TempDir::~TempDir() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::string ReadFileBytes(const std::wstring& path) {
    HANDLE file =
        ::CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                      nullptr, OPEN_EXISTING, 0, nullptr);
    std::string bytes;
    char buffer[65536];
    DWORD got = 0;
    while (file != INVALID_HANDLE_VALUE && ::ReadFile(file, buffer, sizeof(buffer), &got, nullptr) && got > 0)
        bytes.append(buffer, got);
    ::CloseHandle(file);
    return bytes;
}

bool WriteFileBytes(const std::wstring& path, const std::string& bytes) {
    HANDLE file =
        ::CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS, 0, nullptr);
    DWORD written = 0;
    const bool ok = file != INVALID_HANDLE_VALUE &&
                    ::WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
    ::CloseHandle(file);
    return ok && written == bytes.size();
}

bool FileExists(const std::wstring& path) {
    return ::GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

std::string Narrow(const std::wstring& text, unsigned codePage) {
    BOOL lossy = FALSE;
    std::string out(text.size() * 3, '\0');
    out.resize(static_cast<size_t>(::WideCharToMultiByte(
        codePage, codePage == CP_UTF8 ? 0 : WC_NO_BEST_FIT_CHARS, text.data(), static_cast<int>(text.size()),
        &out[0], static_cast<int>(out.size()), nullptr, codePage == CP_UTF8 ? nullptr : &lossy)));
    return lossy ? std::string() : out;
}

} // namespace TestSupport
