// The handle exports: every one refuses an unknown and a closed handle, after a bad slice of a typed
// array and before a count of 0 of any other; open and create by disposition; position, size,
// clear and resize.
#include "support/Exports.h"

#include <gtest/gtest.h>

using namespace TestSupport;

namespace {

const std::wstring kUnknown = L"Неверный системный дескриптор файла.";

class Handles : public testing::Test {
protected:
    void* Create(const std::wstring& name, unsigned long share = TOVARIN_DEFAULT) {
        void* handle = TOVARIN_FN(FileCreateAlwaysW)((dir / name).c_str(), TOVARIN_DEFAULT, share);
        EXPECT_NE(handle, nullptr);
        return handle;
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
                  {8, 8, 1, L"Номер стартового элемента больше или равен количеству всех элементов."},
                  {0, 0, 1, L"\nКоличество всех элементов равно нулю."}};
    for (const ExportRow& row : Exports()) {
        if (!row.byHandle)
            continue;
        const std::string name = row.name;
        const bool typed =
            name.find("Array") != std::string::npos && name.find("StrArray") == std::string::npos;
        const bool text = name.rfind("FileReadString", 0) == 0, raw = name.find("Void") != std::string::npos;
        for (void* handle : {unknown, closed, open})
            for (size_t k = 0; k < (typed && handle == unknown ? 3 : 1); ++k) {
                const auto& s = slices[k];
                const char* kind = handle == closed ? " closed " : handle == open ? " open " : " unknown ";
                SCOPED_TRACE(name + kind + Narrow(s.text));
                const CallArgs args{
                    handle, buffer, {pathA.c_str()}, {pathW.c_str()}, {10, s.size, s.start, s.count}};
                if (typed || (handle == open && name.find("Array") != std::string::npos)) {
                    EXPECT_EQ(row.Call(args), row.neutral);
                    ExpectOneBox(boxes, name, {s.text});
                } else if (handle != open) {
                    EXPECT_EQ(row.Call(args), row.neutral);
                    ExpectOneBox(boxes, name, {L"Project::PtrCFile", kUnknown});
                } else if (text) {
                    const u64 result = row.Call(args);
                    ASSERT_NE(result, 0u);
                    EXPECT_EQ(*reinterpret_cast<const char*>(result), 0);
                    ExpectNoBox(boxes);
                } else if (raw) {
                    EXPECT_EQ(row.Call(args), 0u);
                    ExpectNoBox(boxes);
                }
            }
    }
    close(open);
    EXPECT_FALSE(FileExists(pathW));
}

// Hostile arguments with a good handle: each refused with its text and the neutral result; the
// file stays empty.
TEST_F(Handles, HostileArgumentsAreRefused) {
    void* h = Create(L"hostile.bin");
    alignas(8) char buffer[64] = {};
    const u64 all = ~0ull;
    const struct {
        const char* name;
        CallArgs args;
        const wchar_t* piece;
    } cases[] = {
        {"FileWriteIntArray",
         {h, nullptr, {}, {}, {0, 4, 0, 4}},
         L"\nОтсутствует массив: указатель на массив равен нулю.\n"},
        {"FileReadLongArray",
         {h, buffer, {}, {}, {0, all, 0, all}},
         L"\nРазмер передаваемых данных превышает адресное пространство.\n"},
        {"FileWriteStrArrayMW",
         {h, nullptr, {}, {}, {0, 2, 0, 2}},
         L"\nОтсутствует массив строк: указатель на массив равен нулю.\n"},
        {"FileReadStrArrayA",
         {h, nullptr, {}, {}, {2, 8, 0, 2}},
         L"\nОтсутствует массив строк: указатель на массив равен нулю.\n"},
        {"FileWriteVoid", {h, nullptr, {}, {}, {0, 0, 0, 16}}, L"не записаны данные в файл:"},
        {"FileSetPointerBegin", {h, nullptr, {}, {}, {0, 0, 0, 0x80000000}}, L"Не смещён файловый указатель"},
        {"FileReadStringW", {h, nullptr, {}, {}, {0, 0, 0, 1ull << 62}}, L"Unknown exception!"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(ExportOf(c.name).Call(c.args), ExportOf(c.name).neutral);
        ExpectOneBox(boxes, c.name, {c.piece});
    }
    EXPECT_EQ(TOVARIN_FN(FileGetSize)(h), 0u);
    close(h);
}

TEST_F(Handles, OpenAndCreateByDisposition) {
    struct Case {
        const char* name;
        bool exists;
        u64 size;
        const wchar_t* disposition;
    };
    const Case cases[] = {
        {"FileCreateNewW", false, 0, nullptr},
        {"FileCreateNewW", true, ~0ull, L"CREATE_NEW"},
        {"FileCreateAlwaysW", false, 0, nullptr},
        {"FileCreateAlwaysW", true, 0, nullptr},
        {"FileOpenExistingW", false, ~0ull, L"OPEN_EXISTING"},
        {"FileOpenExistingW", true, 4, nullptr},
        {"FileOpenAlwaysW", false, 0, nullptr},
        {"FileOpenAlwaysW", true, 4, nullptr},
        {"FileOpenTruncateW", false, ~0ull, L"TRUNCATE_EXISTING"},
        {"FileOpenTruncateW", true, 0, nullptr},
    };
    const std::wstring path = dir / L"sub\\d.bin";
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.name) + (c.exists ? " existing" : " missing"));
        ::DeleteFileW(path.c_str());
        ASSERT_TRUE(!c.exists || WriteFileBytes(path, "1234"));
        const CallArgs args{nullptr, nullptr, {}, {path.c_str()}, {0, 0, TOVARIN_DEFAULT, TOVARIN_DEFAULT}};
        void* handle = reinterpret_cast<void*>(ExportOf(c.name).Call(args));
        if (c.disposition != nullptr) {
            EXPECT_EQ(handle, nullptr);
            ExpectOneBox(boxes, c.name, {std::wstring(L"Выполняемые действия с файлом: ") + c.disposition});
        } else {
            EXPECT_EQ(TOVARIN_FN(FileGetSize)(handle), c.size);
            EXPECT_EQ(TOVARIN_FN(FileGetPointer)(handle), 0);
            close(handle);
            ExpectNoBox(boxes);
        }
    }
}

TEST_F(Handles, PositionSizeClearAndResize) {
    void* h = Create(L"pos.bin");
    EXPECT_EQ(TOVARIN_FN(FileWriteVoid)(h, "0123456789", 10), 10u);
    EXPECT_EQ(TOVARIN_FN(FileGetSize)(h), 10u);
    EXPECT_EQ(TOVARIN_FN(FileSetPointerEnd)(h, 0), 10);
    EXPECT_EQ(TOVARIN_FN(FileSetPointerCurrent)(h, -3), 7);
    EXPECT_EQ(TOVARIN_FN(FileSetPointerBegin)(h, 2), 2);
    char three[3] = {};
    EXPECT_EQ(TOVARIN_FN(FileReadVoid)(h, three, 3), 3u);
    EXPECT_EQ(std::string(three, 3), "234");
    EXPECT_EQ(TOVARIN_FN(FileGetPointer)(h), 5);
    TOVARIN_FN(FileResize)(h, 4);
    EXPECT_EQ(TOVARIN_FN(FileGetSize)(h), 4u);
    TOVARIN_FN(FileSetPointerBegin)(h, 1);
    TOVARIN_FN(FileClear)(h);
    EXPECT_EQ(TOVARIN_FN(FileGetSize)(h), 0u);
    EXPECT_EQ(TOVARIN_FN(FileGetPointer)(h), 0);
    ExpectNoBox(boxes);
    EXPECT_EQ(TOVARIN_FN(FileSetPointerCurrent)(h, -1), -1); // before the start
    ExpectOneBox(boxes, "FileSetPointerCurrent", {L"Не смещён файловый указатель в файле:"});
    close(h);
}

} // namespace
