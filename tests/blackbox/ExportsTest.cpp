// The DLL as a whole: every export called with all-zero arguments,
// the registry's texts whole, the box caption.
#include "support/Exports.h"

#include <gtest/gtest.h>

#include <set>

using namespace TestSupport;

namespace {

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

// The export table is the list, name for name; every imported DLL is one of the system's own (the C++
// runtime is linked in).
TEST(ModuleTables, ExportTableIsTheListAndImportsAreSystemDlls) {
    const auto base = reinterpret_cast<const char*>(TovarinModule());
    const auto* dirs = reinterpret_cast<const IMAGE_NT_HEADERS64*>(
                           base + reinterpret_cast<const IMAGE_DOS_HEADER*>(base)->e_lfanew)
                           ->OptionalHeader.DataDirectory;
    const auto* table = reinterpret_cast<const IMAGE_EXPORT_DIRECTORY*>(
        base + dirs[IMAGE_DIRECTORY_ENTRY_EXPORT].VirtualAddress);
    std::set<std::string> exported, listed;
    for (DWORD i = 0; i < table->NumberOfNames; ++i)
        exported.insert(base + reinterpret_cast<const DWORD*>(base + table->AddressOfNames)[i]);
    for (const ExportRow& row : Exports())
        listed.insert(row.name);
    EXPECT_EQ(exported, listed);
    wchar_t system[MAX_PATH] = {};
    const std::wstring folder(system, ::GetSystemDirectoryW(system, MAX_PATH));
    for (auto* import = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(
             base + dirs[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress);
         import->Name != 0; ++import) {
        const std::string name = base + import->Name;
        EXPECT_TRUE(FileExists(folder + L"\\" + std::wstring(name.begin(), name.end()))) << name;
    }
}

// A second copy of the DLL has a registry of its own, empty; its boxes carry its own full path.
TEST(Registry, TextsWholeFromEmptyToUnknownAndTheCaptionIsTheModulePath) {
    TempDir dir;
    const std::wstring copy = dir / L"Tovarin Copy.dll";
    ASSERT_TRUE(::CopyFileW((ExecutableFolder() + L"Tovarin.dll").c_str(), copy.c_str(), FALSE));
    HMODULE module = ::LoadLibraryW(copy.c_str());
    ASSERT_NE(module, nullptr);
    const auto writeInt = FromModule<decltype(&::FileWriteInt)>(module, "FileWriteInt");
    const auto create = FromModule<decltype(&::FileCreateAlwaysW)>(module, "FileCreateAlwaysW");
    const auto close = FromModule<decltype(&::FileCloseHandle)>(module, "FileCloseHandle");
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
    }
    EXPECT_TRUE(::FreeLibrary(module));
}

} // namespace
