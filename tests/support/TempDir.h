#pragma once
// Temporary folders for tests, as Windows paths, removed with everything in them; whole-file helpers.
#include <string>

namespace TestSupport {

class TempDir {
public:
    // A new folder under `parent`, by default the system's temporary folder (drive C: under Wine).
    explicit TempDir(std::wstring parent = std::wstring());
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::wstring& Path() const { return path_; }
    std::wstring operator/(const std::wstring& name) const { return path_ + L"\\" + name; }

private:
    std::wstring path_;
};

// A folder on another drive than the temporary folder (Z: under Wine), or empty when there is none.
std::wstring SecondDriveRoot();

std::string ReadFileBytes(const std::wstring& path);
bool WriteFileBytes(const std::wstring& path, const std::string& bytes);
bool FileExists(const std::wstring& path);
std::string Narrow(const std::wstring& text); // UTF-8, for test messages

} // namespace TestSupport
