// The handle exports through the built DLL: open and create, position and size, scalars, strings,
// raw blocks, typed arrays and string arrays; the registry's refusals and the neutral results.
#include "support/BoxRecorder.h"
#include "support/TempDir.h"
#include "support/TovarinDll.h"

#include <windows.h>
#include <winioctl.h>

#include <gtest/gtest.h>

#include <cstring>
#include <limits>

using TestSupport::BoxRecorder;
using TestSupport::TempDir;
using TestSupport::TovarinDll;

namespace {

typedef unsigned __int64 u64;
typedef void* (*OpenW)(const wchar_t*, unsigned long, unsigned long);
typedef void* (*OpenA)(const char*, unsigned long, unsigned long);
typedef void (*HandleOnly)(void*);
typedef u64 (*GetSize)(void*);
typedef __int64 (*GetPointer)(void*);
typedef __int64 (*SetPointer)(void*, int);
typedef void (*Resize)(void*, u64);

const u64 kAllBits = std::numeric_limits<u64>::max();

struct Dll {
    OpenW createAlways = TovarinDll::Get<OpenW>("FileCreateAlwaysW");
    OpenW createNew = TovarinDll::Get<OpenW>("FileCreateNewW");
    OpenW openExisting = TovarinDll::Get<OpenW>("FileOpenExistingW");
    OpenW openAlways = TovarinDll::Get<OpenW>("FileOpenAlwaysW");
    OpenW openTruncate = TovarinDll::Get<OpenW>("FileOpenTruncateW");
    OpenA createAlwaysA = TovarinDll::Get<OpenA>("FileCreateAlwaysA");
    HandleOnly close = TovarinDll::Get<HandleOnly>("FileCloseHandle");
    HandleOnly clear = TovarinDll::Get<HandleOnly>("FileClear");
    HandleOnly flush = TovarinDll::Get<HandleOnly>("FileFlushApply");
    GetSize size = TovarinDll::Get<GetSize>("FileGetSize");
    GetPointer pointer = TovarinDll::Get<GetPointer>("FileGetPointer");
    SetPointer begin = TovarinDll::Get<SetPointer>("FileSetPointerBegin");
    SetPointer current = TovarinDll::Get<SetPointer>("FileSetPointerCurrent");
    SetPointer end = TovarinDll::Get<SetPointer>("FileSetPointerEnd");
    Resize resize = TovarinDll::Get<Resize>("FileResize");
};

std::string Bytes(std::initializer_list<int> values) {
    std::string out;
    for (int v : values)
        out.push_back(static_cast<char>(v));
    return out;
}

class HandleExports : public testing::Test {
protected:
    void* Create(const std::wstring& name) {
        void* handle = dll.createAlways((dir / name).c_str(), 0xFFFFFFFF, 0xFFFFFFFF);
        EXPECT_NE(handle, nullptr);
        return handle;
    }
    TempDir dir;
    Dll dll;
    BoxRecorder boxes;
};

template <class T> void ScalarRoundTrip(const char* writer, const char* reader, const T value) {
    TempDir dir;
    Dll dll;
    void* handle = dll.createAlways((dir / L"s.bin").c_str(), 0xFFFFFFFF, 0xFFFFFFFF);
    ASSERT_NE(handle, nullptr);
    typedef int (*Write)(void*, T);
    typedef T (*Read)(void*);
    EXPECT_EQ(TovarinDll::Get<Write>(writer)(handle, value), static_cast<int>(sizeof(T)));
    dll.flush(handle);
    std::string expected(sizeof(T), '\0');
    std::memcpy(&expected[0], &value, sizeof(T));
    EXPECT_EQ(TestSupport::ReadFileBytes(dir / L"s.bin"), expected);
    EXPECT_EQ(dll.begin(handle, 0), 0);
    const T back = TovarinDll::Get<Read>(reader)(handle);
    EXPECT_EQ(std::memcmp(&back, &value, sizeof(T)), 0);
    dll.close(handle);
}

TEST(ScalarExports, RoundTripTheirBytesExactly) {
    BoxRecorder boxes;
    ScalarRoundTrip<bool>("FileWriteBoolean", "FileReadBoolean", true);
    ScalarRoundTrip<char>("FileWriteChar", "FileReadChar", static_cast<char>(-128));
    ScalarRoundTrip<unsigned char>("FileWriteUChar", "FileReadUChar", 255);
    ScalarRoundTrip<short>("FileWriteShort", "FileReadShort", std::numeric_limits<short>::min());
    ScalarRoundTrip<unsigned short>("FileWriteUShort", "FileReadUShort", 0xFEDC);
    ScalarRoundTrip<int>("FileWriteInt", "FileReadInt", std::numeric_limits<int>::min());
    ScalarRoundTrip<unsigned int>("FileWriteUInt", "FileReadUInt", 0xDEADBEEFu);
    ScalarRoundTrip<__int64>("FileWriteInt64", "FileReadInt64", std::numeric_limits<__int64>::min());
    ScalarRoundTrip<u64>("FileWriteUInt64", "FileReadUInt64", kAllBits);
    ScalarRoundTrip<float>("FileWriteFlt", "FileReadFlt", -std::numeric_limits<float>::max());
    ScalarRoundTrip<double>("FileWriteDbl", "FileReadDbl", std::numeric_limits<double>::denorm_min());
    EXPECT_TRUE(boxes.Boxes().empty());
}

TEST_F(HandleExports, WriteIntOneIsLittleEndian) {
    void* handle = Create(L"one.bin");
    EXPECT_EQ(TovarinDll::Get<int (*)(void*, int)>("FileWriteInt")(handle, 1), 4);
    dll.close(handle);
    EXPECT_EQ(TestSupport::ReadFileBytes(dir / L"one.bin"), Bytes({1, 0, 0, 0}));
}

TEST_F(HandleExports, StringsAreRawAndReadsTrimAndShareOneBuffer) {
    void* handle = Create(L"str.bin");
    EXPECT_EQ(TovarinDll::Get<int (*)(void*, const wchar_t*)>("FileWriteStringW")(handle, L"ab"), 4);
    EXPECT_EQ(TovarinDll::Get<int (*)(void*, const char*)>("FileWriteStringA")(handle, ""), 0);
    EXPECT_EQ(TovarinDll::Get<int (*)(void*, const wchar_t*)>("FileWriteStringW")(handle, L"  \n     "), 16);
    EXPECT_EQ(TovarinDll::Get<int (*)(void*, const char*)>("FileWriteStringA")(handle, "xyz \t"), 5);
    dll.flush(handle);
    EXPECT_EQ(TestSupport::ReadFileBytes(dir / L"str.bin").substr(0, 4), Bytes({0x61, 0, 0x62, 0}));
    auto readW = TovarinDll::Get<wchar_t* (*)(void*, u64)>("FileReadStringW");
    auto readA = TovarinDll::Get<char* (*)(void*, u64)>("FileReadStringA");
    dll.begin(handle, 0);
    const wchar_t* first = readW(handle, 5); // a, b, space, space, line feed
    ASSERT_NE(first, nullptr);
    EXPECT_STREQ(first, L"ab");
    const wchar_t* second = readW(handle, 5); // five spaces
    ASSERT_NE(second, nullptr);
    EXPECT_STREQ(second, L"");
    EXPECT_STREQ(first, L""); // the first pointer now shows the second text
    const wchar_t* none = readW(handle, 0);
    ASSERT_NE(none, nullptr);
    EXPECT_STREQ(none, L"");
    const char* narrow = readA(handle, 5);
    ASSERT_NE(narrow, nullptr);
    EXPECT_STREQ(narrow, "xyz");
    dll.close(handle);
    EXPECT_TRUE(boxes.Boxes().empty());
}

TEST_F(HandleExports, ReadAtTheEndShowsTheShortReadAndReturnsZero) {
    void* handle = Create(L"end.bin");
    EXPECT_EQ(TovarinDll::Get<int (*)(void*)>("FileReadInt")(handle), 0);
    ASSERT_EQ(boxes.Boxes().size(), 1u);
    const std::wstring text = boxes.Boxes()[0].text;
    EXPECT_EQ(text.find(L"Ошибка в функции \"int __cdecl FileReadInt(void *const )\"!\r\nFile: "
                        L"\"Tovarin.cpp\"\r\nLine: "),
              0u);
    EXPECT_NE(text.find(L"На итерации 0 не прочитаны данные из файла:"), std::wstring::npos);
    EXPECT_NE(text.find(L"Запрошено: 4\nПрочитано: 0"), std::wstring::npos);
    EXPECT_EQ(text.find(L"[f]"), std::wstring::npos);
    dll.close(handle);
}

TEST_F(HandleExports, PositionSizeClearAndResize) {
    void* handle = Create(L"pos.bin");
    EXPECT_EQ(dll.pointer(handle), 0);
    auto writeVoid = TovarinDll::Get<u64 (*)(void*, const void*, u64)>("FileWriteVoid");
    EXPECT_EQ(writeVoid(handle, "0123456789", 10), 10u);
    EXPECT_EQ(dll.size(handle), 10u);
    EXPECT_EQ(dll.end(handle, 0), 10);
    EXPECT_EQ(dll.current(handle, -3), 7);
    EXPECT_EQ(dll.begin(handle, 2), 2);
    char buffer[3] = {};
    EXPECT_EQ(TovarinDll::Get<u64 (*)(void*, void*, u64)>("FileReadVoid")(handle, buffer, 3), 3u);
    EXPECT_EQ(std::string(buffer, 3), "234");
    dll.resize(handle, 4);
    EXPECT_EQ(dll.size(handle), 4u);
    EXPECT_EQ(dll.pointer(handle), 4);
    dll.clear(handle);
    EXPECT_EQ(dll.size(handle), 0u);
    EXPECT_EQ(dll.pointer(handle), 0);
    dll.clear(handle); // an empty file is left untouched
    EXPECT_EQ(dll.size(handle), 0u);
    EXPECT_TRUE(boxes.Boxes().empty());
    EXPECT_EQ(dll.current(handle, -1), -1); // before the start
    EXPECT_EQ(boxes.Boxes().size(), 1u);
    dll.close(handle);
}

TEST_F(HandleExports, GetSizeTruncatesToThirtyTwoBitsDeliberately) {
    // The big file is made with plain system calls: sparse where the file system allows it.
    const std::wstring path = dir / L"big.bin";
    HANDLE raw =
        ::CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    ASSERT_NE(raw, INVALID_HANDLE_VALUE);
    DWORD ignored = 0;
    ::DeviceIoControl(raw, FSCTL_SET_SPARSE, nullptr, 0, nullptr, 0, &ignored, nullptr);
    LARGE_INTEGER size;
    size.QuadPart = 3000000000ll;
    const bool made = ::SetFilePointerEx(raw, size, nullptr, FILE_BEGIN) && ::SetEndOfFile(raw);
    ::CloseHandle(raw);
    if (!made)
        GTEST_SKIP() << "this file system cannot make a 3,000,000,000-byte file";
    void* handle = dll.openExisting(path.c_str(), 0xFFFFFFFF, 0xFFFFFFFF);
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(dll.size(handle), 18446744072414584320ull);
    // Moving to 3,000,000,000 passes no high half, so the low half counts as negative and the move
    // fails: FileResize to that size is refused with the pointer text and leaves the file alone.
    dll.resize(handle, 3000000000ull);
    ASSERT_EQ(boxes.Boxes().size(), 1u);
    EXPECT_NE(boxes.Boxes()[0].text.find(L"Не смещён файловый указатель в файле:\r\n\"" + path + L"\""),
              std::wstring::npos);
    // Above 4 GiB the high half is passed and the resize works.
    boxes.Clear();
    dll.resize(handle, 5000000000ull);
    EXPECT_TRUE(boxes.Boxes().empty());
    EXPECT_EQ(dll.size(handle), 5000000000ull & 0xFFFFFFFFull);
    dll.resize(handle, 0);
    EXPECT_EQ(dll.size(handle), 0u);
    dll.close(handle);
}

TEST_F(HandleExports, OpenDispositionsAndAccessDefaults) {
    const std::wstring path = dir / L"d.bin";
    EXPECT_EQ(dll.openExisting(path.c_str(), 0xFFFFFFFF, 0xFFFFFFFF), nullptr);
    ASSERT_EQ(boxes.Boxes().size(), 1u);
    EXPECT_NE(boxes.Boxes()[0].text.find(L"Выполняемые действия с файлом: OPEN_EXISTING"),
              std::wstring::npos);
    void* handle = dll.createNew(path.c_str(), 0xFFFFFFFF, 0xFFFFFFFF);
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(dll.createNew(path.c_str(), 0xFFFFFFFF, 0xFFFFFFFF),
              nullptr); // exists; the default share allows the open
    EXPECT_EQ(boxes.Boxes().size(), 2u);
    EXPECT_NE(boxes.Boxes()[1].text.find(L"Выполняемые действия с файлом: CREATE_NEW"), std::wstring::npos);
    TovarinDll::Get<int (*)(void*, int)>("FileWriteInt")(handle, 7);
    dll.close(handle);
    // Explicit access and share: read-only, so a write fails with the file object's text.
    void* readOnly = dll.openExisting(path.c_str(), GENERIC_READ, FILE_SHARE_READ);
    ASSERT_NE(readOnly, nullptr);
    EXPECT_EQ(TovarinDll::Get<int (*)(void*, int)>("FileWriteInt")(readOnly, 8), -1);
    EXPECT_EQ(TovarinDll::Get<int (*)(void*)>("FileReadInt")(readOnly), 7);
    dll.close(readOnly);
    void* always = dll.openAlways(path.c_str(), 0xFFFFFFFF, 0xFFFFFFFF);
    EXPECT_EQ(dll.size(always), 4u);
    dll.close(always);
    void* truncated = dll.openTruncate(path.c_str(), 0xFFFFFFFF, 0xFFFFFFFF);
    EXPECT_EQ(dll.size(truncated), 0u);
    dll.close(truncated);
    void* narrow = dll.createAlwaysA("C:\\windows\\temp\\tovarin-narrow.bin", 0xFFFFFFFF, 0xFFFFFFFF);
    ASSERT_NE(narrow, nullptr);
    TovarinDll::Get<void (*)(void*)>("FileDeleteByHandle")(narrow);
    EXPECT_FALSE(TestSupport::FileExists(L"C:\\windows\\temp\\tovarin-narrow.bin"));
}

TEST_F(HandleExports, RegistryRefusesUnknownAndClosedHandles) {
    auto writeInt = TovarinDll::Get<int (*)(void*, int)>("FileWriteInt");
    void* handle = Create(L"r.bin");
    EXPECT_EQ(writeInt(reinterpret_cast<void*>(0x12345678), 1), -1);
    dll.close(handle);
    EXPECT_EQ(writeInt(handle, 1), -1);
    const std::vector<TestSupport::Box> shown = boxes.Boxes();
    ASSERT_EQ(shown.size(), 2u);
    for (const TestSupport::Box& box : shown) {
        EXPECT_EQ(
            box.text.find(L"Ошибка в функции \"int __cdecl FileWriteInt(void *const ,const int)\"!\r\n"), 0u);
        EXPECT_NE(
            box.text.find(L"Ошибка в функции \"class Utils::Smart::Pointer<class Utils::FileHdd> __cdecl "
                          L"Project::PtrCFile(void *const )\"!\r\nFile: \"Project.h\""),
            std::wstring::npos);
    }
    // Another file stays open in this process only when other tests left one open; the message is
    // one of the registry's two refusals either way.
    EXPECT_NE(shown[0].text.find(L"\nНеверный системный дескриптор файла.\n"), std::wstring::npos);
}

TEST_F(HandleExports, NeutralResultsAfterFailures) {
    void* bad = reinterpret_cast<void*>(0x7777);
    EXPECT_EQ(TovarinDll::Get<bool (*)(void*)>("FileReadBoolean")(bad), false);
    EXPECT_EQ(TovarinDll::Get<float (*)(void*)>("FileReadFlt")(bad), 0.0f);
    EXPECT_EQ(TovarinDll::Get<double (*)(void*)>("FileReadDbl")(bad), 0.0);
    EXPECT_EQ(TovarinDll::Get<wchar_t* (*)(void*, u64)>("FileReadStringW")(bad, 3), nullptr);
    EXPECT_EQ(TovarinDll::Get<char* (*)(void*, u64)>("FileReadStringA")(bad, 3), nullptr);
    EXPECT_EQ(dll.pointer(bad), -1);
    EXPECT_EQ(dll.size(bad), 0u);
    EXPECT_EQ(
        TovarinDll::Get<u64 (*)(void*, int*, u64, u64, u64)>("FileWriteIntArray")(bad, nullptr, 1, 0, 1),
        kAllBits);
    EXPECT_EQ(TovarinDll::Get<u64 (*)(void*, void*, u64)>("FileReadVoid")(bad, nullptr, 1), kAllBits);
    EXPECT_EQ(boxes.Boxes().size(), 9u);
}

TEST_F(HandleExports, ArraySlicesAreClippedAndChecked) {
    auto writeInts = TovarinDll::Get<u64 (*)(void*, int* const, u64, u64, u64)>("FileWriteIntArray");
    auto readDoubles = TovarinDll::Get<u64 (*)(void*, double*, u64, u64, u64)>("FileReadDoubleArray");
    void* handle = Create(L"arr.bin");
    int values[10] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9};
    EXPECT_EQ(writeInts(handle, values, 10, 0, kAllBits), 10u);
    EXPECT_EQ(writeInts(handle, values, 10, 8, 5), 2u);
    EXPECT_EQ(dll.size(handle), 48u);
    EXPECT_TRUE(boxes.Boxes().empty());
    struct Refusal {
        u64 size, start, count;
        const wchar_t* line;
    };
    const Refusal refusals[] = {
        {10, 10, 1, L"Номер стартового элемента больше или равен количеству всех элементов."},
        {10, 0, 0, L"Отсутствует количество элементов."},
        {0, 0, 1, L"Количество всех элементов равно нулю."},
    };
    for (const Refusal& r : refusals) {
        boxes.Clear();
        EXPECT_EQ(writeInts(handle, values, r.size, r.start, r.count), kAllBits);
        ASSERT_EQ(boxes.Boxes().size(), 1u);
        const std::wstring text = boxes.Boxes()[0].text;
        EXPECT_NE(text.find(r.line), std::wstring::npos) << TestSupport::Narrow(text);
        EXPECT_NE(text.find(L"FileWriteIntArray"), std::wstring::npos);
    }
    // Reading 4 doubles 12 bytes before the end: the box, all bits set, and the 12 bytes that
    // arrived stay in the array.
    boxes.Clear();
    double doubles[4] = {-1, -1, -1, -1};
    dll.end(handle, -12);
    EXPECT_EQ(readDoubles(handle, doubles, 4, 0, 4), kAllBits);
    EXPECT_EQ(boxes.Boxes().size(), 1u);
    int arrived[3] = {};
    std::memcpy(arrived, doubles, 12);
    EXPECT_EQ(arrived[0], 9); // ints 0..9 then 8, 9
    EXPECT_EQ(arrived[1], 8);
    EXPECT_EQ(arrived[2], 9);
    dll.close(handle);
}

struct MqlStrW {
    int length;
    wchar_t* pointer;
} __attribute__((packed));
static_assert(sizeof(MqlStrW) == 12, "host record");

TEST_F(HandleExports, StringArraysWriteLinesAndReadThemBack) {
    auto writeW = TovarinDll::Get<u64 (*)(void*, const wchar_t**, u64, u64, u64)>("FileWriteStrArrayW");
    auto readW = TovarinDll::Get<u64 (*)(void*, wchar_t**, u64, u64, u64, u64)>("FileReadStrArrayW");
    auto writeMW = TovarinDll::Get<u64 (*)(void*, MqlStrW* const, u64, u64, u64)>("FileWriteStrArrayMW");
    auto readMW = TovarinDll::Get<u64 (*)(void*, MqlStrW*, u64, u64, u64)>("FileReadStrArrayMW");
    void* handle = Create(L"lines.txt");
    const wchar_t* lines[] = {L"a", L""};
    EXPECT_EQ(writeW(handle, lines, 2, 0, kAllBits), 2u);
    dll.flush(handle);
    EXPECT_EQ(TestSupport::ReadFileBytes(dir / L"lines.txt"), Bytes({0x61, 0, 13, 0, 10, 0, 13, 0, 10, 0}));
    dll.clear(handle);
    wchar_t record[5] = {L'a', L'b', L' ', L' ', L' '};
    MqlStrW records[1] = {{5, record}};
    EXPECT_EQ(writeMW(handle, records, 1, 0, kAllBits), 1u);
    const wchar_t* xyz[] = {L"x", L"y", L"z"};
    EXPECT_EQ(writeW(handle, xyz, 3, 0, kAllBits), 3u);
    dll.flush(handle);
    EXPECT_EQ(TestSupport::ReadFileBytes(dir / L"lines.txt").size(), 2u * (4 + 9));
    dll.begin(handle, 8);
    wchar_t buffers[2][8] = {};
    wchar_t* targets[2] = {buffers[0], buffers[1]};
    EXPECT_EQ(readW(handle, targets, 2, 8, 0, 2), 2u);
    EXPECT_STREQ(buffers[0], L"x");
    EXPECT_STREQ(buffers[1], L"y");
    EXPECT_EQ(dll.pointer(handle), 26); // the reader consumes the rest of the file
    EXPECT_EQ(readW(handle, targets, 2, 8, 0, 2), 0u);
    dll.clear(handle);
    const wchar_t* longLine[] = {L"abcdef"};
    writeW(handle, longLine, 1, 0, 1);
    dll.begin(handle, 0);
    wchar_t small[3] = {L'?', L'?', L'?'};
    MqlStrW into[1] = {{3, small}};
    EXPECT_EQ(readMW(handle, into, 1, 0, 1), 1u);
    EXPECT_STREQ(small, L"ab");
    EXPECT_TRUE(boxes.Boxes().empty());
    dll.close(handle);
}

} // namespace

// A host record without a buffer holds no text: it is written as an empty line, never read from.
TEST_F(HandleExports, StringRecordsWithoutABufferAreEmptyLines) {
    auto writeMW = TovarinDll::Get<u64 (*)(void*, MqlStrW*, u64, u64, u64)>("FileWriteStrArrayMW");
    void* handle = Create(L"records.bin");
    wchar_t text[] = L"ab";
    MqlStrW records[3] = {{2, text}, {64, nullptr}, {2, text}};
    EXPECT_EQ(writeMW(handle, records, 3, 0, 3), 3u);
    dll.close(handle);
    EXPECT_TRUE(boxes.Boxes().empty());
    const std::string expected("a\0b\0\r\0\n\0\r\0\n\0a\0b\0\r\0\n\0", 20);
    EXPECT_EQ(TestSupport::ReadFileBytes(dir / L"records.bin"), expected);
}
