#include "TempDir.h"

#include <windows.h>
#include <shellapi.h>

#include <atomic>

namespace TestSupport {

namespace {

std::wstring UniqueName() {
    static std::atomic<unsigned> counter{0};
    return L"tovarin-" + std::to_wstring(::GetCurrentProcessId()) + L"-" + std::to_wstring(::GetTickCount()) +
           L"-" + std::to_wstring(counter++);
}

std::wstring MakeUnder(std::wstring parent) {
    if (!parent.empty() && parent.back() == L'\\')
        parent.pop_back();
    std::wstring path = parent + L"\\" + UniqueName();
    ::CreateDirectoryW(path.c_str(), nullptr);
    return path;
}

std::wstring SystemTemp() {
    wchar_t buffer[MAX_PATH + 1] = {};
    ::GetTempPathW(MAX_PATH, buffer);
    return buffer;
}

} // namespace

TempDir::TempDir() : path_(MakeUnder(SystemTemp())) {}

TempDir::TempDir(const std::wstring& parent) : path_(MakeUnder(parent)) {}

TempDir::~TempDir() {
    std::wstring list = path_;
    list.push_back(L'\0');
    list.push_back(L'\0');
    SHFILEOPSTRUCTW op = {};
    op.wFunc = FO_DELETE;
    op.pFrom = list.c_str();
    op.fFlags = FOF_SILENT | FOF_NOCONFIRMATION | FOF_NOERRORUI;
    ::SHFileOperationW(&op);
}

bool UnderWine() {
    HMODULE ntdll = ::GetModuleHandleW(L"ntdll.dll");
    return ntdll != nullptr && ::GetProcAddress(ntdll, "wine_get_version") != nullptr;
}

std::wstring SecondDriveRoot() {
    if (!UnderWine())
        return std::wstring();
    const std::wstring root = L"Z:\\tmp";
    ::CreateDirectoryW(root.c_str(), nullptr);
    return root;
}

std::string ReadFileBytes(const std::wstring& path) {
    HANDLE file =
        ::CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                      nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return std::string();
    std::string bytes;
    char buffer[65536];
    DWORD got = 0;
    while (::ReadFile(file, buffer, sizeof(buffer), &got, nullptr) && got > 0)
        bytes.append(buffer, got);
    ::CloseHandle(file);
    return bytes;
}

bool WriteFileBytes(const std::wstring& path, const std::string& bytes) {
    HANDLE file = ::CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return false;
    DWORD written = 0;
    const bool ok = bytes.empty() ||
                    (::WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) &&
                     written == bytes.size());
    ::CloseHandle(file);
    return ok;
}

bool FileExists(const std::wstring& path) {
    return ::GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

std::string Narrow(const std::wstring& text) {
    if (text.empty())
        return std::string();
    const int n = ::WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), nullptr, 0,
                                        nullptr, nullptr);
    std::string out(static_cast<size_t>(n), '\0');
    ::WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), &out[0], n, nullptr,
                          nullptr);
    return out;
}

} // namespace TestSupport
