#include "TempDir.h"

#include <windows.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <sstream>

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
    std::ostringstream bytes;
    bytes << std::ifstream(std::filesystem::path(path), std::ios::binary).rdbuf();
    return bytes.str();
}

bool WriteFileBytes(const std::wstring& path, const std::string& bytes) {
    return static_cast<bool>(std::ofstream(std::filesystem::path(path), std::ios::binary) << bytes);
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
