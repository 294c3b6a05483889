// The DLL as a whole: its export and import tables, every export called with all-zero arguments,
// the registry's texts whole, the box caption.
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

// The C++ runtime is linked in: the DLL needs nothing but Windows itself.
TEST(Module, ImportsWindowsSystemDllsOnly) {
    const std::string system = " kernel32.dll user32.dll shell32.dll msvcrt.dll wininet.dll advapi32.dll ";
    for (std::string name : ModuleNames(TovarinDll::Module(), IMAGE_DIRECTORY_ENTRY_IMPORT)) {
        std::transform(name.begin(), name.end(), name.begin(),
                       [](char c) { return static_cast<char>(::tolower(c)); });
        EXPECT_TRUE(name.rfind("api-ms-win-", 0) == 0 || system.find(" " + name + " ") != std::string::npos)
            << name;
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
