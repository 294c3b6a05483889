// The handle exports: every one refuses an unknown and a closed handle, after a bad slice of a typed
// array and before a count of 0 of any other; open and create by disposition in both forms; each
// whole-file operation.
#include "support/Exports.h"

#include <gtest/gtest.h>

using namespace TestSupport;

namespace {

const std::wstring kUnknown = L"Неверный системный дескриптор файла.";

class Handles : public testing::Test {
protected:
    void* Create(const std::wstring& name) {
        void* handle = TOVARIN_FN(FileCreateAlwaysW)((dir / name).c_str(), TOVARIN_DEFAULT, TOVARIN_DEFAULT);
        EXPECT_NE(handle, nullptr);
        return handle;
    }
    // Whether a second open of the file gets `access` while it shares `share`.
    static bool Opens(const std::wstring& path, DWORD access,
                      DWORD share = FILE_SHARE_READ | FILE_SHARE_WRITE) {
        HANDLE other = ::CreateFileW(path.c_str(), access, share, nullptr, OPEN_EXISTING, 0, nullptr);
        ::CloseHandle(other);
        return other != INVALID_HANDLE_VALUE;
    }
    TempDir dir;
    BoxRecorder boxes;
    decltype(&::FileCloseHandle) close = TOVARIN_FN(FileCloseHandle);
};

// Every handle export refuses an unknown and a closed handle. The typed arrays check their slice
// first, so a bad slice is reported whatever the handle; the others look the handle up before a
// count of 0. With a known handle a text read of 0 is empty and a raw transfer of 0 moves nothing.
TEST_F(Handles, BadHandlesAgainstBadSlices) {
    void* open = Create(L"open.bin"); // the registry is not empty
    void *closed = Create(L"closed.bin"), *unknown = reinterpret_cast<void*>(0x1234);
    close(closed);
    const std::string pathA = Narrow(dir / L"target.bin", CP_ACP);
    const std::wstring pathW = dir / L"target.bin";
    alignas(8) char buffer[256] = {};
    const struct {
        u64 size, start, count;
        const wchar_t* text;
    } slices[] = {{8, 0, 0, L"\r\nОтсутствует количество элементов."},
                  {8, 8, 1,
                   L"Номер стартового элемента больше или равен количеству всех элементов.\n\nКоличество "
                   L"всех элементов: 8\nСтартовый элемент: 8\nКоличество элементов: 1"},
                  {0, 0, 1, L"\nКоличество всех элементов равно нулю."}};
    for (const ExportRow& row : Exports()) {
        if (!row.byHandle)
            continue;
        const std::string name = row.name;
        const bool array = name.find("Array") != std::string::npos,
                   text = name.rfind("FileReadString", 0) == 0;
        const bool typed = array && name.find("StrArray") == std::string::npos;
        for (void* handle : {unknown, closed, open})
            for (size_t k = 0; k < (typed && handle == unknown ? 3 : 1); ++k) {
                const auto& s = slices[k];
                const char* kind = handle == closed ? " closed " : handle == open ? " open " : " unknown ";
                SCOPED_TRACE(name + kind + Narrow(s.text));
                const CallArgs args{
                    handle, buffer, {pathA.c_str()}, {pathW.c_str()}, {10, s.size, s.start, s.count}};
                const bool slice = typed || (handle == open && array);
                if (slice || handle != open) {
                    EXPECT_EQ(row.Call(args), row.neutral);
                    ExpectOneBox(boxes, name, {slice ? s.text : kUnknown});
                } else if (text || name.find("Void") != std::string::npos) { // nothing moved
                    const u64 result = row.Call(args);
                    EXPECT_TRUE(text ? result != 0 && *reinterpret_cast<const char*>(result) == 0
                                     : result == 0);
                    ExpectNoBox(boxes);
                }
            }
    }
    close(open);
    EXPECT_FALSE(FileExists(pathW));
}

// Hostile arguments with a good handle: each refused with its text and the neutral result; the
// file stays empty. A completed operation, whatever it is asked, is refused.
TEST_F(Handles, HostileArgumentsAreRefused) {
    void* h = Create(L"hostile.bin");
    alignas(8) char buffer[64] = {};
    const u64 all = ~0ull;
    const UINT kError = MB_ICONERROR;
    const std::wstring noArray = L"\nОтсутствует массив: указатель на массив равен нулю.\n",
                       noStrings = L"\nОтсутствует массив строк: указатель на массив равен нулю.\n";
    // clang-format off
    const struct { const char* name; CallArgs args; std::vector<std::wstring> pieces; UINT icon = kError; }
    cases[] = {
        {"FileWriteIntArray", {h, nullptr, {}, {}, {0, 4, 0, 4}}, {noArray}},
        {"FileReadLongArray", {h, buffer, {}, {}, {0, all, 0, all}},
         {L"\nРазмер передаваемых данных превышает адресное пространство.\n"}},
        {"FileWriteStrArrayMW", {h, nullptr, {}, {}, {0, 2, 0, 2}}, {noStrings}},
        {"FileReadStrArrayA", {h, nullptr, {}, {}, {2, 8, 0, 2}}, {noStrings}},
        {"FileWriteVoid", {h, nullptr, {}, {}, {0, 0, 0, 16}}, {L"не записаны данные в файл:"}},
        {"FileSetPointerBegin", {h, nullptr, {}, {}, {0, 0, 0, 1ull << 31}}, {L"Не смещён файловый"}},
        {"FileReadStringW", {h, nullptr, {}, {}, {0, 0, 0, 1ull << 62}}, // a notice, with the last error
         {L"\r\n\nLast Error: ", L"Unknown exception!"}, MB_ICONINFORMATION}};
    // clang-format on
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(ExportOf(c.name).Call(c.args), ExportOf(c.name).neutral);
        ExpectOneBox(boxes, c.name, c.pieces, c.icon);
    }
    EXPECT_EQ(TOVARIN_FN(FileGetSize)(h), 0u);
    close(h);
    EXPECT_EQ(TOVARIN_FN(FileCompletedW)((dir / L"never.bin").c_str(), 2, -1, 0, 0, 0, nullptr, 0), 0u);
    ExpectOneBox(
        boxes, "FileCompletedW",
        {L"\"unsigned __int64 __cdecl Project::CompletedOperation(const class std::basic_string<wchar_t,"
         L"struct std::char_traits<wchar_t>,class std::allocator<wchar_t> > &,const unsigned short,const "
         L"int,const __int64,const unsigned short,const unsigned long,void *,const unsigned __int64)\"!",
         L"\nДоступ к файлу выбран неправильно.\n"});
}

// Both forms of every open and create, on a missing file, a file of 4 bytes and a folder: the file's
// size and pointer, or the refusal naming the disposition. The access and sharing asked for hold, as
// a second opener finds them.
TEST_F(Handles, OpenAndCreateByDispositionInBothForms) {
    enum { kMissing, kFile, kFolder };
    // clang-format off
    // The size after the open, or the disposition that the refusal names.
    const struct { const char* stem; int before; u64 size; const wchar_t* refusal; } cases[] = {
        {"FileCreateNew", kMissing, 0, nullptr}, {"FileCreateNew", kFile, 0, L"CREATE_NEW"},
        {"FileCreateAlways", kMissing, 0, nullptr}, {"FileCreateAlways", kFile, 0, nullptr},
        {"FileCreateAlways", kFolder, 0, L"CREATE_ALWAYS"}, {"FileOpenAlways", kMissing, 0, nullptr},
        {"FileOpenAlways", kFile, 4, nullptr}, {"FileOpenAlways", kFolder, 0, L"OPEN_ALWAYS"},
        {"FileOpenExisting", kMissing, 0, L"OPEN_EXISTING"}, {"FileOpenExisting", kFile, 4, nullptr},
        {"FileOpenTruncate", kMissing, 0, L"TRUNCATE_EXISTING"}, {"FileOpenTruncate", kFile, 0, nullptr}};
    // clang-format on
    // 8-bit paths are read in the system code page: the name starts with its letter 0xE9, if it has one.
    wchar_t letter = 0;
    const bool single = ::MultiByteToWideChar(CP_ACP, MB_ERR_INVALID_CHARS, "\xE9", 1, &letter, 1) == 1;
    const std::wstring name = (single ? std::wstring(1, letter) : L"") + L"d.bin";
    const std::string nameA = (single ? "\xE9" : "") + std::string("d.bin");
    const std::wstring path = dir / (L"sub\\" + name);
    const std::string pathA = Narrow(dir.Path(), CP_ACP) + "\\sub\\" + nameA; // TempDir: one it can spell
    for (const char* form : {"W", "A"}) {
        // W: writing only, reading shared; A: the defaults, reading and writing, both shared.
        const bool defaults = form[0] == 'A';
        const u64 access = defaults ? TOVARIN_DEFAULT : GENERIC_WRITE;
        const u64 share = defaults ? TOVARIN_DEFAULT : FILE_SHARE_READ;
        const CallArgs args{nullptr, nullptr, {pathA.c_str()}, {path.c_str()}, {0, 0, access, share}};
        for (const auto& c : cases) {
            const std::string export_ = c.stem + std::string(form);
            SCOPED_TRACE(export_ + " " + std::to_string(c.before));
            ::DeleteFileW(path.c_str());
            ::RemoveDirectoryW(path.c_str());
            ASSERT_TRUE(c.before != kFile || WriteFileBytes(path, "1234"));
            ASSERT_TRUE(c.before != kFolder || ::CreateDirectoryW(path.c_str(), nullptr));
            void* h = reinterpret_cast<void*>(ExportOf(export_).Call(args));
            if (c.refusal != nullptr) {
                EXPECT_EQ(h, nullptr);
                ExpectOneBox(boxes, export_, {std::wstring(L"Выполняемые действия с файлом: ") + c.refusal});
                continue;
            }
            EXPECT_EQ(TOVARIN_FN(FileGetSize)(h), c.size);
            EXPECT_EQ(TOVARIN_FN(FileGetPointer)(h), 0);
            EXPECT_EQ(TOVARIN_FN(FileWriteInt)(h, 1), 4);
            EXPECT_EQ(Opens(path, GENERIC_READ, FILE_SHARE_WRITE), !defaults); // unless the handle reads
            EXPECT_EQ(Opens(path, GENERIC_WRITE), defaults);                   // where writing is shared
            close(h);
            ExpectNoBox(boxes);
        }
    }
}

// Each whole-file operation on a file of `before` bytes with the pointer at `at`: its result, and
// the size and pointer that the system reports afterwards. Close and delete forget the handle.
TEST_F(Handles, WholeFileOperationsBySizeAndPointer) {
    const u64 big = 7294967296ull, kClosed = ~0ull, kDeleted = ~1ull;
    // clang-format off
    const struct { const char* name; u64 before; __int64 at, argument; u64 result, size; __int64 pointer; }
    cases[] = {
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
    const std::wstring path = dir / L"ops.bin";
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.name) + " " + std::to_string(c.before) + " " + std::to_string(c.argument));
        void* h = Create(L"ops.bin");
        TOVARIN_FN(FileResize)(h, c.before);
        TOVARIN_FN(FileSetPointerBegin)(h, static_cast<int>(c.at));
        EXPECT_EQ(ExportOf(c.name).Call({h, nullptr, {}, {}, {0, 0, 0, static_cast<u64>(c.argument)}}),
                  c.result);
        ExpectNoBox(boxes);
        if (c.size == kClosed || c.size == kDeleted) {
            EXPECT_EQ(TOVARIN_FN(FileWriteInt)(h, 1), -1);
            ExpectOneBox(boxes, "FileWriteInt", {L"Project::PtrCFile"}); // the registry no longer knows it
            EXPECT_EQ(FileExists(path), c.size == kClosed);
            EXPECT_TRUE(c.size == kDeleted || Opens(path, DELETE)); // nobody holds the file
            continue;
        }
        LARGE_INTEGER size = {}, pointer = {};
        EXPECT_TRUE(::GetFileSizeEx(h, &size) && ::SetFilePointerEx(h, pointer, &pointer, FILE_CURRENT));
        EXPECT_EQ(static_cast<u64>(size.QuadPart), c.size);
        EXPECT_EQ(pointer.QuadPart, c.pointer);
        close(h);
    }
}

} // namespace
