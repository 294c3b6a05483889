// The built DLL imports Windows system DLLs only and exports exactly the names of its
// module-definition file.
#include "support/PeImage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>

using namespace TestSupport;

namespace {

std::string Lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

bool IsSystemDll(const std::string& name) {
    static const char* const kSystem[] = {"kernel32.dll", "user32.dll", "shell32.dll", "msvcrt.dll", "wininet.dll",
                                          "advapi32.dll", "ntdll.dll",  "ole32.dll",   "shlwapi.dll", "ucrtbase.dll",
                                          "comdlg32.dll", "version.dll"};
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
    std::vector<std::string> defined = ReadDefExports(std::wstring(TOVARIN_SOURCE_DIR) + L"\\exports\\Tovarin.def");
    std::vector<std::string> exported = tables.exports;
    std::sort(defined.begin(), defined.end());
    std::sort(exported.begin(), exported.end());
    EXPECT_EQ(exported, defined);
    for (const std::string& name : exported)
        EXPECT_EQ(name.rfind("File", 0), 0u) << name;
}
