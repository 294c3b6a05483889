// The handle exports: bad handles, slices and arguments refused; open and create by disposition in
// both forms; each whole-file operation; a second copy's registry, its texts and its unload.
#include "support/Exports.h"

#include <algorithm>

using namespace TestSupport;

namespace {

class Handles : public testing::Test {
protected:
    // Whether a second open of the file gets `access` while it shares `share`.
    bool Opens(const std::wstring& name, DWORD access, DWORD share = FILE_SHARE_READ | FILE_SHARE_WRITE) {
        HANDLE other = ::CreateFileW((dir / name).c_str(), access, share, nullptr, OPEN_EXISTING, 0, nullptr);
        ::CloseHandle(other);
        return other != INVALID_HANDLE_VALUE;
    }
    TempDir dir;
    BoxRecorder boxes;
};

// Every handle export refuses an unknown handle; a typed array checks its slice first, the others the
// handle. With a known handle a count of 0 moves nothing (an empty text), and null arrays, absurd
// sizes and distances are refused with their texts, a completed operation whatever it is asked.
TEST_F(Handles, BadHandlesSlicesAndArgumentsAreRefused) {
    void *open = TOVARIN_FN(FileCreateAlwaysW)((dir / L"open.bin").c_str(), TOVARIN_DEFAULT, TOVARIN_DEFAULT),
         *unknown = reinterpret_cast<void*>(0x1234); // while the registry is not empty
    const std::wstring target = dir / L"target.bin";
    const std::string targetA = Narrow(target, CP_ACP);
    alignas(8) char buffer[256] = {};
    // clang-format off
    const struct { u64 size, start, count; const wchar_t* text; } slices[] = {
        {8, 0, 0, L"\r\nОтсутствует количество элементов."}, {0, 0, 1, L"\nКоличество всех элементов равно нулю."},
        {8, 8, 1, L"элементов.\n\nКоличество всех элементов: 8\nСтартовый элемент: 8\nКоличество элементов: 1"}};
    // clang-format on
    for (const ExportRow& row : Exports()) {
        const std::string name = row.name;
        const auto has = [&](const char* part) { return name.find(part) != name.npos; };
        const bool typed = has("Array") && !has("StrArray"), moves = !has("Array");
        for (void* handle : {unknown, open})
            for (const auto& s : slices) {
                const bool none = handle == open && moves; // a count of 0 with a known handle
                if (!row.byHandle || (&s != slices && !(typed && handle == unknown)) ||
                    (none && !has("FileReadString") && !has("Void")))
                    continue;
                const CallArgs args{
                    handle, buffer, {targetA.c_str()}, {target.c_str()}, {10, s.size, s.start, s.count}};
                const u64 result = row.Call(args);
                const char* text = reinterpret_cast<const char*>(result);
                if (none) { // nothing moved, an empty text
                    EXPECT_TRUE(has("Void") ? result == 0 : text != nullptr && *text == 0) << name;
                    ExpectNoBox(boxes);
                    continue;
                }
                EXPECT_EQ(result, row.neutral) << name;
                ExpectOneBox(boxes, name,
                             {typed || handle == open ? s.text : L"Неверный системный дескриптор файла."});
            }
    }
    EXPECT_FALSE(FileExists(target));
    const wchar_t* noStrings = L"\nОтсутствует массив строк: указатель на массив равен нулю.\n";
    // clang-format off
    const struct { const char* name; CallArgs args; const wchar_t *text, *also = L""; UINT icon = MB_ICONERROR; } cases[] = {
        {"FileWriteIntArray", {open, nullptr, {}, {}, {0, 4, 0, 4}}, L"\nОтсутствует массив: указатель на массив равен нулю.\n"},
        {"FileWriteStrArrayMW", {open, nullptr, {}, {}, {0, 2, 0, 2}}, noStrings},
        {"FileReadStrArrayA", {open, nullptr, {}, {}, {2, 8, 0, 2}}, noStrings},
        {"FileReadLongArray", {open, buffer, {}, {}, {0, ~0ull, 0, ~0ull}}, L"\nРазмер передаваемых данных превышает адресное пространство.\n"},
        {"FileWriteVoid", {open, nullptr, {}, {}, {0, 0, 0, 16}}, L"не записаны данные в файл:"},
        {"FileSetPointerBegin", {open, nullptr, {}, {}, {0, 0, 0, 1ull << 31}}, L"Не смещён файловый"},
        {"FileReadStringW", {open, nullptr, {}, {}, {0, 0, 0, 1ull << 62}}, L"Unknown exception!", L"\r\n\nLast Error: ", MB_ICONINFORMATION}};
    // clang-format on
    for (const auto& c : cases) {
        EXPECT_EQ(ExportOf(c.name).Call(c.args), ExportOf(c.name).neutral);
        ExpectOneBox(boxes, c.name, {c.text, c.also}, c.icon);
    }
    EXPECT_EQ(TOVARIN_FN(FileGetSize)(open), 0u);
    TOVARIN_FN(FileCloseHandle)(open);
    EXPECT_EQ(TOVARIN_FN(FileCompletedW)(target.c_str(), 2, -1, 0, 0, 0, nullptr, 0), 0u);
    ExpectOneBox(boxes, "FileCompletedW",
                 {L"Project::CompletedOperation(const class std::basic_string<wchar_t,",
                  L"\nДоступ к файлу выбран неправильно.\n"});
}

// Both forms of every open and create, on a missing file, a file and a folder: the file's size and
// pointer, or the refusal naming the disposition; the access and sharing asked for, as a second
// opener finds them.
TEST_F(Handles, OpenAndCreateByDispositionInBothForms) {
    // clang-format off
    // What is there before (nothing "", a file "1234", a folder null); the size after the open, or
    // the disposition that the refusal names.
    const struct { const char* stem; const char* before; u64 size; const wchar_t* refusal; } cases[] = {
        {"FileCreateNew", "", 0, nullptr}, {"FileCreateNew", "1234", 0, L"CREATE_NEW"},
        {"FileCreateAlways", "", 0, nullptr}, {"FileCreateAlways", "1234", 0, nullptr},
        {"FileCreateAlways", nullptr, 0, L"CREATE_ALWAYS"}, {"FileOpenAlways", "", 0, nullptr},
        {"FileOpenAlways", "1234", 4, nullptr}, {"FileOpenAlways", nullptr, 0, L"OPEN_ALWAYS"},
        {"FileOpenExisting", "", 0, L"OPEN_EXISTING"}, {"FileOpenExisting", "1234", 4, nullptr},
        {"FileOpenTruncate", "", 0, L"TRUNCATE_EXISTING"}, {"FileOpenTruncate", "1234", 0, nullptr}};
    // clang-format on
    // 8-bit paths are read in the system code page: the name has an accented letter where it can spell it.
    const std::wstring name = Narrow(L"\u00e9", CP_ACP).empty() ? L"sub\\d.bin" : L"sub\\\u00e9d.bin",
                       path = dir / name;
    const std::string pathA = Narrow(path, CP_ACP);
    for (const bool a : {false, true}) {
        // W: writing only, reading shared; A: the defaults, reading and writing, both shared.
        const u64 access = a ? TOVARIN_DEFAULT : GENERIC_WRITE, share = a ? TOVARIN_DEFAULT : FILE_SHARE_READ;
        for (const auto& c : cases) {
            const std::string export_ = c.stem + std::string(a ? "A" : "W");
            ::DeleteFileW(path.c_str()) || ::RemoveDirectoryW(path.c_str());
            ASSERT_TRUE(c.before ? !*c.before || WriteFileBytes(path, c.before)
                                 : ::CreateDirectoryW(path.c_str(), nullptr));
            void* h = reinterpret_cast<void*>(ExportOf(export_).Call(
                {nullptr, nullptr, {pathA.c_str()}, {path.c_str()}, {0, 0, access, share}}));
            if (c.refusal != nullptr) {
                EXPECT_EQ(h, nullptr) << export_;
                ExpectOneBox(boxes, export_, {std::wstring(L"Выполняемые действия с файлом: ") + c.refusal});
                continue;
            }
            EXPECT_EQ(TOVARIN_FN(FileGetSize)(h), c.size) << export_;
            EXPECT_EQ(TOVARIN_FN(FileGetPointer)(h), 0);
            EXPECT_EQ(TOVARIN_FN(FileWriteInt)(h, 1), 4);
            EXPECT_EQ(Opens(name, GENERIC_READ, FILE_SHARE_WRITE), !a) << export_; // unless the handle reads
            EXPECT_EQ(Opens(name, GENERIC_WRITE), a) << export_;                   // where writing is shared
            TOVARIN_FN(FileCloseHandle)(h);
            ExpectNoBox(boxes);
        }
    }
}

// Each whole-file operation on a file of `before` bytes with the pointer at `at`: its result, and
// the size and pointer that the system reports afterwards. Close and delete forget the handle.
TEST_F(Handles, WholeFileOperationsBySizeAndPointer) {
    const u64 big = 7294967296ull, kClosed = ~0ull, kDeleted = ~1ull;
    // clang-format off
    const struct { const char* name; u64 before; int at; __int64 argument; u64 result, size; __int64 pointer; } cases[] = {
        {"FileGetSize", big, 3, 0, 18446744072414584320ull, big, 3}, // the low 32 bits, sign-extended
        {"FileGetPointer", 10, 3, 0, 3, 10, 3}, {"FileSetPointerBegin", 10, 3, 2, 2, 10, 2},
        {"FileSetPointerCurrent", 10, 3, -2, 1, 10, 1}, {"FileSetPointerEnd", 10, 3, -2, 8, 10, 8},
        {"FileResize", 10, 3, 20, 0, 20, 3}, {"FileResize", 10, 3, 4, 0, 4, 3},
        {"FileResize", 10, 8, 4, 0, 4, 4}, // to the new end, not past it
        {"FileResize", 10, 3, 5000000000, 0, 5000000000, 3}, {"FileClear", 10, 5, 0, 0, 0, 0},
        {"FileClear", 0, 5, 0, 0, 0, 5}, // an empty file is left as it is, its pointer too
        {"FileFlushApply", 10, 3, 0, 0, 10, 3}, {"FileCloseHandle", 10, 3, 0, 0, kClosed, 0},
        {"FileDeleteByHandle", 10, 3, 0, 0, kDeleted, 0}};
    // clang-format on
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.name) + " " + std::to_string(c.before) + " " + std::to_string(c.argument));
        void* h = TOVARIN_FN(FileCreateAlwaysW)((dir / L"ops.bin").c_str(), TOVARIN_DEFAULT, TOVARIN_DEFAULT);
        TOVARIN_FN(FileResize)(h, c.before);
        TOVARIN_FN(FileSetPointerBegin)(h, c.at);
        EXPECT_EQ(ExportOf(c.name).Call({h, nullptr, {}, {}, {0, 0, 0, static_cast<u64>(c.argument)}}),
                  c.result);
        ExpectNoBox(boxes);
        if (c.size == kClosed || c.size == kDeleted) {
            EXPECT_EQ(TOVARIN_FN(FileWriteInt)(h, 1), -1);
            ExpectOneBox(boxes, "FileWriteInt", {L"Project::PtrCFile"}); // the registry no longer knows it
            EXPECT_EQ(FileExists(dir / L"ops.bin"), c.size == kClosed);
            EXPECT_TRUE(c.size == kDeleted || Opens(L"ops.bin", DELETE)); // nobody holds the file
            continue;
        }
        LARGE_INTEGER size = {}, pointer = {};
        EXPECT_TRUE(::GetFileSizeEx(h, &size) && ::SetFilePointerEx(h, pointer, &pointer, FILE_CURRENT));
        EXPECT_EQ(static_cast<u64>(size.QuadPart), c.size);
        EXPECT_EQ(pointer.QuadPart, c.pointer);
        TOVARIN_FN(FileCloseHandle)(h);
    }
}

// A second copy of the DLL has a registry of its own, empty, and its own full path as the caption;
// unloading it closes the files left open. README.md's sample is its unknown handle's box.
TEST(Registry, TextsWholeAsTheReadmeShowsThemTheCaptionAndTheUnload) {
    TempDir dir;
    const std::wstring copy = dir / L"Tovarin Copy.dll";
    wchar_t built[MAX_PATH] = {};
    ::GetModuleFileNameW(TovarinModule(), built, MAX_PATH);
    ASSERT_TRUE(::CopyFileW(built, copy.c_str(), FALSE));
    HMODULE module = ::LoadLibraryW(copy.c_str());
    ASSERT_NE(module, nullptr);
    const auto writeInt = FromModule<decltype(&::FileWriteInt)>(module, "FileWriteInt");
    const auto create = FromModule<decltype(&::FileCreateAlwaysW)>(module, "FileCreateAlwaysW");
    BoxRecorder boxes;
    EXPECT_EQ(writeInt(reinterpret_cast<void*>(0x1234), 1), -1);
    void* handle = create((dir / L"a.bin").c_str(), TOVARIN_DEFAULT, TOVARIN_DEFAULT);
    EXPECT_EQ(writeInt(reinterpret_cast<void*>(0x1234), 1), -1);
    FromModule<decltype(&::FileCloseHandle)>(module, "FileCloseHandle")(handle);
    EXPECT_EQ(writeInt(handle, 1), -1); // closed, and the registry is empty again
    void* left = create((dir / L"left.bin").c_str(), TOVARIN_GENERIC_READ | TOVARIN_GENERIC_WRITE, 0);
    EXPECT_EQ(writeInt(left, 1234), 4);
    const std::vector<Box> shown = boxes.Boxes();
    ASSERT_EQ(shown.size(), 3u);
    const std::wstring empty =
        L"\r\n\nМассив классов не инициализирован.\r\nСначала создайте или откройте файл.\n\n";
    for (const Box& box : shown) {
        EXPECT_EQ(box.caption, copy);
        EXPECT_EQ(box.text.rfind(empty) == box.text.size() - empty.size(), &box != &shown[1]);
    }
    EXPECT_TRUE(::FreeLibrary(module)); // closes the file left open, which nobody else could share
    EXPECT_EQ(ReadFileBytes(dir / L"left.bin"), std::string("\xD2\x04\0\0", 4));
    // README.md's sample box, as LF whatever the checkout's line ends.
    std::string real = Narrow(shown[1].text),
                readme = ReadFileBytes(std::wstring(TOVARIN_SOURCE_DIR) + L"\\README.md");
    for (std::string* text : {&real, &readme})
        text->erase(std::remove(text->begin(), text->end(), '\r'), text->end());
    real.erase(real.find_last_not_of('\n') + 1);
    EXPECT_NE(readme.find("<!-- sample-box:begin -->\n```\n" + real + "\n```\n<!-- sample-box:end -->"),
              std::string::npos)
        << "Put the real text into README.md between its sample-box marks:\n"
        << real;
}

} // namespace
