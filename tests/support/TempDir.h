#pragma once
// Temporary folders for tests, as Windows paths, removed with everything in them; whole-file helpers.
#include <functional>
#include <string>

namespace TestSupport {

class TempDir {
public:
    // A new folder under `parent`, by default the system's temporary folder (drive C: under Wine), by
    // its short name when the system code page cannot spell it.
    explicit TempDir(std::wstring parent = std::wstring());
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::wstring& Path() const { return path_; }
    std::wstring operator/(const std::wstring& name) const { return path_ + L"\\" + name; }

private:
    std::wstring path_;
};

std::string ReadFileBytes(const std::wstring& path);
bool WriteFileBytes(const std::wstring& path, const std::string& bytes);
bool FileExists(const std::wstring& path);
// UTF-8, or with CP_ACP the text as the A exports read it ("" when the code page cannot spell it).
std::string Narrow(const std::wstring& text, unsigned codePage = 65001);

// The failure text that a call throws, or "(nothing thrown)".
inline std::wstring Thrown(const std::function<void()>& call) {
    try {
        call();
    } catch (const std::wstring& text) {
        return text;
    }
    return L"(nothing thrown)";
}

} // namespace TestSupport

// The text holds the piece; the text is shown when it does not.
#define EXPECT_HAS(text, piece)                                                                              \
    EXPECT_NE((text).find(piece), std::wstring::npos) << ::TestSupport::Narrow(text)
