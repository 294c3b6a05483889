// The built DLL imports Windows system DLLs only and exports exactly the names of its
// module-definition file.
#include "support/PeImage.h"
#include "support/TempDir.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <sstream>
#include <string>
#include <vector>

using namespace TestSupport;

namespace {

std::string Lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

bool IsSystemDll(const std::string& name) {
    static const char* const kSystem[] = {"kernel32.dll", "user32.dll",   "shell32.dll",  "msvcrt.dll",
                                          "wininet.dll",  "advapi32.dll", "ntdll.dll",    "ole32.dll",
                                          "shlwapi.dll",  "ucrtbase.dll", "comdlg32.dll", "version.dll"};
    const std::string lower = Lower(name);
    if (lower.rfind("api-ms-win-", 0) == 0)
        return true;
    return std::find_if(std::begin(kSystem), std::end(kSystem), [&](const char* s) { return lower == s; }) !=
           std::end(kSystem);
}

} // namespace

TEST(ModuleTables, ImportsOnlyWindowsSystemDlls) {
    const PeTables tables = ReadPeTables(ExecutableFolder() + L"Tovarin.dll");
    ASSERT_TRUE(tables.ok);
    ASSERT_FALSE(tables.imports.empty());
    for (const std::string& name : tables.imports)
        EXPECT_TRUE(IsSystemDll(name)) << "Tovarin.dll imports " << name;
}

TEST(ModuleTables, ExportsExactlyTheModuleDefinition) {
    const PeTables tables = ReadPeTables(ExecutableFolder() + L"Tovarin.dll");
    ASSERT_TRUE(tables.ok);
    std::vector<std::string> defined =
        ReadDefExports(std::wstring(TOVARIN_SOURCE_DIR) + L"\\exports\\Tovarin.def");
    std::vector<std::string> exported = tables.exports;
    std::sort(defined.begin(), defined.end());
    std::sort(exported.begin(), exported.end());
    EXPECT_EQ(exported, defined);
    for (const std::string& name : exported)
        EXPECT_EQ(name.rfind("File", 0), 0u) << name;
}

// The names that the public C header declares are the DLL's exports, all 100 of them.
TEST(ModuleTables, PublicHeaderDeclaresExactlyTheExports) {
    const PeTables tables = ReadPeTables(ExecutableFolder() + L"Tovarin.dll");
    ASSERT_TRUE(tables.ok);
    std::istringstream header(ReadFileBytes(std::wstring(TOVARIN_SOURCE_DIR) + L"\\include\\Tovarin.h"));
    std::vector<std::string> declared;
    std::string line;
    const std::string marker = "__cdecl ";
    while (std::getline(header, line)) {
        if (line.rfind("TOVARIN_API ", 0) != 0)
            continue;
        const size_t at = line.find(marker);
        ASSERT_NE(at, std::string::npos) << line;
        const size_t begin = at + marker.size();
        declared.push_back(line.substr(begin, line.find('(', begin) - begin));
    }
    std::vector<std::string> exported = tables.exports;
    std::sort(declared.begin(), declared.end());
    std::sort(exported.begin(), exported.end());
    EXPECT_EQ(declared.size(), 100u);
    EXPECT_EQ(exported, declared);
}

// Windows shows the version resource in the file's properties: description, product and version.
TEST(ModuleTables, VersionResourceNamesTheProduct) {
    const std::wstring path = ExecutableFolder() + L"Tovarin.dll";
    DWORD ignored = 0;
    const DWORD size = ::GetFileVersionInfoSizeW(path.c_str(), &ignored);
    ASSERT_NE(size, 0u);
    std::vector<char> block(size);
    ASSERT_TRUE(::GetFileVersionInfoW(path.c_str(), 0, size, block.data()));
    VS_FIXEDFILEINFO* fixed = nullptr;
    UINT length = 0;
    ASSERT_TRUE(::VerQueryValueW(block.data(), L"\\", reinterpret_cast<void**>(&fixed), &length));
    EXPECT_EQ(fixed->dwSignature, 0xFEEF04BDu);
    EXPECT_EQ(fixed->dwFileType, static_cast<DWORD>(VFT_DLL));
    const auto value = [&](const wchar_t* name) {
        wchar_t* text = nullptr;
        UINT chars = 0;
        const std::wstring query = std::wstring(L"\\StringFileInfo\\040904B0\\") + name;
        if (!::VerQueryValueW(block.data(), query.c_str(), reinterpret_cast<void**>(&text), &chars) ||
            text == nullptr)
            return std::string("(missing)");
        return Narrow(std::wstring(text));
    };
    EXPECT_EQ(value(L"ProductName"), "Tovarin");
    EXPECT_EQ(value(L"OriginalFilename"), "Tovarin.dll");
    EXPECT_EQ(value(L"FileVersion"), TOVARIN_VERSION_TEXT);
    EXPECT_EQ(value(L"ProductVersion"), TOVARIN_VERSION_TEXT);
    EXPECT_NE(value(L"FileDescription").find("MQL5"), std::string::npos);
    const std::string binary = std::to_string(HIWORD(fixed->dwFileVersionMS)) + "." +
                               std::to_string(LOWORD(fixed->dwFileVersionMS)) + "." +
                               std::to_string(HIWORD(fixed->dwFileVersionLS)) + "." +
                               std::to_string(LOWORD(fixed->dwFileVersionLS));
    EXPECT_EQ(binary, TOVARIN_VERSION_TEXT);
}
