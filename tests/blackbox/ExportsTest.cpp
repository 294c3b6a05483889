// The DLL as a whole: its export and import tables, its version resource, and every export called
// with all-zero arguments; the registry's texts whole, the box caption.
#include "support/Exports.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace TestSupport;

namespace {

// The names of a loaded module's export table, or of the DLLs its import table names.
std::vector<std::string> ModuleNames(HMODULE module, int directory) {
    const char* base = reinterpret_cast<const char*>(module);
    const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* nt = reinterpret_cast<const IMAGE_NT_HEADERS64*>(base + dos->e_lfanew);
    const DWORD at = nt->OptionalHeader.DataDirectory[directory].VirtualAddress;
    std::vector<std::string> names;
    if (at != 0 && directory == IMAGE_DIRECTORY_ENTRY_EXPORT) {
        const auto* table = reinterpret_cast<const IMAGE_EXPORT_DIRECTORY*>(base + at);
        const auto* rvas = reinterpret_cast<const DWORD*>(base + table->AddressOfNames);
        for (DWORD i = 0; i < table->NumberOfNames; ++i)
            names.push_back(base + rvas[i]);
    }
    for (auto* d = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + at);
         at != 0 && directory == IMAGE_DIRECTORY_ENTRY_IMPORT && d->Name != 0; ++d)
        names.push_back(base + d->Name);
    return names;
}

TEST(Module, ExportsExactlyTheList) {
    std::vector<std::string> listed;
    for (const ExportRow& row : Exports())
        listed.push_back(row.name);
    std::sort(listed.begin(), listed.end());
    EXPECT_EQ(listed.size(), 100u);
    // The export table is sorted by name.
    EXPECT_EQ(ModuleNames(TovarinDll::Module(), IMAGE_DIRECTORY_ENTRY_EXPORT), listed);
}

TEST(Module, ImportsWindowsSystemDllsOnly) {
    const std::vector<std::string> imports = ModuleNames(TovarinDll::Module(), IMAGE_DIRECTORY_ENTRY_IMPORT);
    ASSERT_FALSE(imports.empty());
    for (std::string name : imports) {
        std::transform(name.begin(), name.end(), name.begin(),
                       [](char c) { return static_cast<char>(::tolower(c)); });
        const bool system = name.rfind("api-ms-win-", 0) == 0 || name == "kernel32.dll" ||
                            name == "user32.dll" || name == "shell32.dll" || name == "msvcrt.dll" ||
                            name == "wininet.dll" || name == "advapi32.dll" || name == "ucrtbase.dll";
        EXPECT_TRUE(system) << name;
    }
}

TEST(Module, VersionResourceNamesTheProduct) {
    const std::wstring path = ExecutableFolder() + L"Tovarin.dll";
    DWORD ignored = 0;
    std::vector<char> block(::GetFileVersionInfoSizeW(path.c_str(), &ignored));
    ASSERT_FALSE(block.empty());
    ASSERT_TRUE(::GetFileVersionInfoW(path.c_str(), 0, static_cast<DWORD>(block.size()), block.data()));
    const std::pair<const wchar_t*, const char*> values[] = {{L"ProductName", "Tovarin"},
                                                             {L"FileVersion", TOVARIN_VERSION_TEXT},
                                                             {L"OriginalFilename", "Tovarin.dll"}};
    for (const auto& value : values) {
        wchar_t* text = nullptr;
        UINT chars = 0;
        const std::wstring query = std::wstring(L"\\StringFileInfo\\040904B0\\") + value.first;
        ASSERT_TRUE(::VerQueryValueW(block.data(), query.c_str(), reinterpret_cast<void**>(&text), &chars));
        EXPECT_EQ(Narrow(text), value.second);
    }
}

// All-zero arguments: a null handle, null texts and buffers, zero counts. Every export fails with
// its neutral result and exactly one box that opens with its own signature, and nothing appears in
// the current folder.
TEST(EveryExport, RefusesAllZeroArgumentsWithItsNeutralResultAndOneBox) {
    TempDir dir;
    CurrentFolder current(dir.Path());
    BoxRecorder boxes;
    for (const ExportRow& row : Exports()) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(row.Call(CallArgs()), row.neutral);
        ExpectOneBox(boxes, row.name, {});
    }
    EXPECT_TRUE(current.Empty());
}

// A second copy of the DLL has a registry of its own, empty; its boxes carry its own full path.
TEST(Registry, TextsWholeFromEmptyToUnknownAndTheCaptionIsTheModulePath) {
    TempDir dir;
    const std::wstring copy = dir / L"Tovarin Copy.dll";
    ASSERT_TRUE(::CopyFileW((ExecutableFolder() + L"Tovarin.dll").c_str(), copy.c_str(), FALSE));
    HMODULE module = ::LoadLibraryW(copy.c_str());
    ASSERT_NE(module, nullptr);
    const auto get = [module](const char* name) {
        return reinterpret_cast<void*>(::GetProcAddress(module, name));
    };
    const auto writeInt = reinterpret_cast<decltype(&::FileWriteInt)>(get("FileWriteInt"));
    const auto create = reinterpret_cast<decltype(&::FileCreateAlwaysW)>(get("FileCreateAlwaysW"));
    const auto close = reinterpret_cast<decltype(&::FileCloseHandle)>(get("FileCloseHandle"));
    BoxRecorder boxes;
    EXPECT_EQ(writeInt(reinterpret_cast<void*>(0x1234), 1), -1);
    void* handle = create((dir / L"a.bin").c_str(), TOVARIN_DEFAULT, TOVARIN_DEFAULT);
    EXPECT_EQ(writeInt(reinterpret_cast<void*>(0x1234), 1), -1);
    close(handle);
    EXPECT_EQ(writeInt(handle, 1), -1); // closed, and the registry is empty again
    const std::vector<Box> shown = boxes.Boxes();
    ASSERT_EQ(shown.size(), 3u);
    const std::wstring empty = L"Массив классов не инициализирован.\r\nСначала создайте или откройте файл.";
    const std::wstring messages[] = {empty, L"Неверный системный дескриптор файла.", empty};
    for (int i = 0; i < 3; ++i) {
        const std::vector<int> lines = LinesOf(shown[i].text);
        ASSERT_EQ(lines.size(), 2u);
        EXPECT_EQ(shown[i].text,
                  Heading("FileWriteInt") + std::to_wstring(lines[0]) +
                      L"\r\n\nОшибка в функции \"class Utils::Smart::Pointer<class Utils::FileHdd> "
                      L"__cdecl Project::PtrCFile(void *const )\"!\r\nFile: \"Project.h\"\r\nLine: " +
                      std::to_wstring(lines[1]) + L"\r\n\n" + messages[i] + L"\n\n");
        EXPECT_EQ(shown[i].caption, copy);
        EXPECT_EQ(shown[i].icon, BoxIcon::Error);
    }
    EXPECT_TRUE(::FreeLibrary(module));
}

} // namespace
