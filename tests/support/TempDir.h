#pragma once
// Temporary folders for tests, as Windows paths, removed with everything in them.
#include <string>

namespace TestSupport {

class TempDir {
public:
    // A new folder under the system's temporary folder (drive C: under Wine).
    TempDir();
    // A new folder under `parent`, which must exist.
    explicit TempDir(const std::wstring& parent);
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::wstring& Path() const { return path_; }
    // Path() + "\\" + name.
    std::wstring operator/(const std::wstring& name) const { return path_ + L"\\" + name; }

private:
    std::wstring path_;
};

// A folder on a second drive for cross-drive cases (Z: under Wine), or empty when there is none.
std::wstring SecondDriveRoot();

// True when running under Wine.
bool UnderWine();

// Whole-file helpers with plain Win32 calls, for checking what the library wrote.
std::string ReadFileBytes(const std::wstring& path);
bool WriteFileBytes(const std::wstring& path, const std::string& bytes);
bool FileExists(const std::wstring& path);
std::string Narrow(const std::wstring& text); // UTF-8, for test messages

} // namespace TestSupport
