// The file object: initialisation, the named event, creation with each disposition, closing,
// the handle check, positioned I/O, sizes and resizing.
#include "utils/Utils.FileHdd.h"
#include "utils/Utils.Hash.h"

#include "support/TempDir.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <utility>
#include <vector>

using TestSupport::TempDir;
using Utils::FileHdd;

namespace {

// Expects `action` to throw a text that contains every piece of `pieces`.
template <class Action> void ExpectFailure(Action action, std::initializer_list<std::wstring> pieces) {
    try {
        action();
        ADD_FAILURE() << "no throw";
    } catch (const std::wstring& text) {
        for (const std::wstring& piece : pieces)
            EXPECT_NE(text.find(piece), std::wstring::npos) << TestSupport::Narrow(piece) << "\nin\n"
                                                            << TestSupport::Narrow(text);
    }
}

TEST(ChunkPlan, CutsAtTheLargestCount) {
    struct Case {
        unsigned __int64 size, count;
        unsigned long last;
    };
    const Case cases[] = {{0, 0, 0},
                          {1, 1, 1},
                          {0xFFFFFFFFull, 1, 0xFFFFFFFFul},
                          {0x100000000ull, 2, 1},
                          {2 * 0xFFFFFFFFull, 2, 0xFFFFFFFFul},
                          {2 * 0xFFFFFFFFull + 5, 3, 5}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.size);
        const Utils::ChunkPlan plan = Utils::PlanChunks(c.size);
        EXPECT_EQ(plan.count, c.count);
        EXPECT_EQ(plan.last, c.last);
    }
}

TEST(FileHddInit, SplitsThePathAndNamesTheEvent) {
    TempDir dir;
    FileHdd file;
    file.Init(dir / L"data.v1.bin", nullptr, true);
    EXPECT_EQ(file.Path(), dir / L"data.v1.bin");
    EXPECT_EQ(file.Folder(), dir.Path());
    EXPECT_EQ(file.FileName(), L"data.v1.bin");
    EXPECT_EQ(file.BaseName(), L"data.v1");
    EXPECT_EQ(file.Extension(), L"bin");
    std::wstring underscored = dir / L"data.v1.bin";
    for (wchar_t& c : underscored)
        if (c == L'\\')
            c = L'_';
    const std::wstring name = L"Utils::FileHdd_Event_" + Utils::Hash::PathKey(underscored);
    EXPECT_EQ(file.EventName(), name);
    // Reachable by name from outside the object, and shared with an object for the same path.
    HANDLE event = ::OpenEventW(SYNCHRONIZE, FALSE, name.c_str());
    EXPECT_NE(event, nullptr);
    ::CloseHandle(event);
    FileHdd twin;
    twin.Init(underscored, nullptr, true);
    EXPECT_EQ(twin.EventName(), name);
}

TEST(FileHddInit, NothingToDescribeThrows) {
    FileHdd file;
    ExpectFailure(
        [&] { file.Init(L"", nullptr, true); },
        {L"Класс не инициализирован.\r\nДолжены быть указан путь к файлу или системный дескриптор файла."});
    EXPECT_EQ(file.EventName(), L"");
}

TEST(FileHddInit, FromAHandleTakesTheFinalPath) {
    TempDir dir;
    ASSERT_TRUE(TestSupport::WriteFileBytes(dir / L"h.bin", "abc"));
    HANDLE handle = ::CreateFileW((dir / L"h.bin").c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                  OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(handle, INVALID_HANDLE_VALUE);
    {
        FileHdd file;
        file.Init(L"", handle, false);
        EXPECT_EQ(file.Path().rfind(L"\\\\?\\", 0), 0u) << TestSupport::Narrow(file.Path());
        EXPECT_EQ(file.FileName(), L"h.bin");
        // Releasing an object that does not own its handle leaves the handle open.
        file.Close();
        EXPECT_EQ(file.Handle(), nullptr);
        EXPECT_EQ(file.Path(), L"");
    }
    char byte = 0;
    DWORD got = 0;
    EXPECT_TRUE(::ReadFile(handle, &byte, 1, &got, nullptr));
    EXPECT_EQ(byte, 'a');
    ::CloseHandle(handle);
}

struct DispositionCase {
    const char* name;
    unsigned long disposition;
    bool exists;
    bool opens;
    std::string contentAfter;
};

class FileHddCreate : public testing::TestWithParam<DispositionCase> {};

TEST_P(FileHddCreate, OpensOrRefusesByDisposition) {
    const DispositionCase& c = GetParam();
    TempDir dir;
    const std::wstring path = dir / L"f.bin";
    if (c.exists) {
        ASSERT_TRUE(TestSupport::WriteFileBytes(path, "old"));
    }
    FileHdd file;
    file.Init(path, nullptr, true);
    if (c.opens) {
        ASSERT_NE(file.Create(c.disposition), nullptr);
        file.Close();
        EXPECT_EQ(TestSupport::ReadFileBytes(path), c.contentAfter);
    } else {
        ExpectFailure([&] { file.Create(c.disposition); },
                      {L"Не открыт файл:\r\n\"" + path + L"\"\r\nВыполняемые действия с файлом: " +
                           Utils::DispositionName(c.disposition),
                       L"\nLast Error: 1.\n"});
        EXPECT_EQ(file.Handle(), nullptr);
    }
}

const DispositionCase kDispositions[] = {
    {"CreateNewMissing", CREATE_NEW, false, true, ""},
    {"CreateNewExisting", CREATE_NEW, true, false, ""},
    {"CreateAlwaysExisting", CREATE_ALWAYS, true, true, ""},
    {"OpenExistingExisting", OPEN_EXISTING, true, true, "old"},
    {"OpenExistingMissing", OPEN_EXISTING, false, false, ""},
    {"OpenAlwaysExisting", OPEN_ALWAYS, true, true, "old"},
    {"OpenAlwaysMissing", OPEN_ALWAYS, false, true, ""},
    {"TruncateExisting", TRUNCATE_EXISTING, true, true, ""},
    {"TruncateMissing", TRUNCATE_EXISTING, false, false, ""},
};

INSTANTIATE_TEST_SUITE_P(Dispositions, FileHddCreate, testing::ValuesIn(kDispositions),
                         [](const testing::TestParamInfo<DispositionCase>& info) { return info.param.name; });

TEST(FileHddCreate, MakesMissingFolders) {
    TempDir dir;
    const std::wstring path = dir / L"a\\b\\c.bin";
    FileHdd file;
    file.Init(path, nullptr, true);
    ASSERT_NE(file.Create(CREATE_NEW), nullptr);
    file.Close();
    EXPECT_TRUE(TestSupport::FileExists(path));
}

// The folder is made even when the open then fails, as the steps go in their order.
TEST(FileHddCreate, MissingFolderIsMadeBeforeAFailedOpen) {
    TempDir dir;
    const std::wstring path = dir / L"made\\missing.bin";
    FileHdd file;
    file.Init(path, nullptr, true);
    ExpectFailure([&] { file.Create(OPEN_EXISTING); },
                  {L"Не открыт файл:\r\n\"" + path + L"\"\r\nВыполняемые действия с файлом: OPEN_EXISTING"});
    const DWORD attributes = ::GetFileAttributesW((dir / L"made").c_str());
    ASSERT_NE(attributes, INVALID_FILE_ATTRIBUTES);
    EXPECT_NE(attributes & FILE_ATTRIBUTE_DIRECTORY, 0u);
}

// A name without a folder fails the folder step before anything is opened or created.
TEST(FileHddCreate, NameWithoutAFolderIsRefusedBeforeTheOpen) {
    const std::wstring path = L"tovarin-relative-name.bin";
    FileHdd file;
    file.Init(path, nullptr, true);
    ExpectFailure([&] { file.Create(OPEN_ALWAYS); }, {L"Для файла не создан каталог:\r\n\"" + path + L"\""});
    EXPECT_EQ(file.Handle(), nullptr);
    EXPECT_FALSE(TestSupport::FileExists(path));
}

// In a folder on a drive the file is tried first; the folder step follows only a failed attempt.
int g_opens = 0;

TEST(FileHddCreate, OnADriveTheFileIsTriedBeforeTheFolderStep) {
    TempDir dir;
    Utils::SystemCalls saved = Utils::Sys();
    Utils::Sys().createFile = [](LPCWSTR name, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security,
                                 DWORD disposition, DWORD flags, HANDLE model) -> HANDLE {
        ++g_opens;
        return ::CreateFileW(name, access, share, security, disposition, flags, model);
    };
    FileHdd there;
    there.Init(dir / L"there.bin", nullptr, true);
    g_opens = 0;
    ASSERT_NE(there.Create(CREATE_ALWAYS), nullptr);
    EXPECT_EQ(g_opens, 1);
    FileHdd nested;
    nested.Init(dir / L"x\\y\\nested.bin", nullptr, true);
    g_opens = 0;
    ASSERT_NE(nested.Create(CREATE_NEW), nullptr);
    EXPECT_EQ(g_opens, 2); // refused for the missing folder, then made after it
    Utils::Sys() = saved;
    there.Close();
    nested.Close();
    EXPECT_TRUE(TestSupport::FileExists(dir / L"x\\y\\nested.bin"));
}

TEST(FileHddCreate, DispositionNames) {
    EXPECT_STREQ(Utils::DispositionName(0), L"EMPTY");
    EXPECT_STREQ(Utils::DispositionName(1), L"CREATE_NEW");
    EXPECT_STREQ(Utils::DispositionName(5), L"TRUNCATE_EXISTING");
    EXPECT_STREQ(Utils::DispositionName(9), L"EMPTY");
}

class OpenFile : public testing::Test {
protected:
    void SetUp() override {
        file.Init(dir / L"io.bin", nullptr, true);
        handle = file.Create(CREATE_ALWAYS);
        ASSERT_NE(handle, nullptr);
    }
    TempDir dir;
    FileHdd file;
    void* handle = nullptr;
};

TEST_F(OpenFile, WritesReadsAndMovesThePointer) {
    EXPECT_EQ(file._Write(handle, "0123456789", 10), 10u);
    EXPECT_EQ(file._SetPointer(handle, FILE_CURRENT, 0), 10);
    EXPECT_EQ(file._SetPointer(handle, FILE_CURRENT, -4), 6);
    char buffer[4] = {};
    EXPECT_EQ(file._Read(handle, buffer, 4), 4u);
    EXPECT_EQ(std::string(buffer, 4), "6789");
    EXPECT_EQ(file._SetPointer(handle, FILE_END, 0), 10);
    EXPECT_EQ(file._Size64(handle), 10u);
    EXPECT_EQ(file._SizeEx64(handle), 10);
    EXPECT_EQ(file._Read(handle, buffer, 0), 0u);
    EXPECT_EQ(file._Write(handle, buffer, 0), 0u);
}

TEST_F(OpenFile, ShortReadThrowsWithTheIterationText) {
    file._Write(handle, "0123456789", 10);
    file._SetPointer(handle, FILE_BEGIN, 6);
    char buffer[10] = {};
    ExpectFailure([&] { file._Read(handle, buffer, 10); },
                  {L"На итерации 0 не прочитаны данные из файла:\n\"" + file.Path() +
                   L"\"\nФайловый указатель: 10\n"
                   L"Запрошено: 10\nПрочитано: 4"});
    EXPECT_EQ(std::string(buffer, 4), "6789");
}

TEST_F(OpenFile, SetPointerChecksOriginFirstAndRefusesBeforeTheStart) {
    ExpectFailure([&] { file._SetPointer(nullptr, 3, 0); },
                  {L"Точка отсчета перемещения указателя указана неправильно."});
    ExpectFailure(
        [&] { file._SetPointer(handle, FILE_BEGIN, -1); },
        {L"Не смещён файловый указатель в файле:\r\n\"" + file.Path() + L"\"", L"\nLast Error: 1.\n"});
}

TEST_F(OpenFile, NullHandleIsRefusedNamingTheOperation) {
    const std::wstring tail =
        L"\r\n\r\nМетод не может быть выполнен.\r\nОтсутствует системный дескриптор файла:\r\n\"" +
        file.Path() + L"\"\r\nВероятно, файл не открыт.";
    char byte = 0;
    ExpectFailure(
        [&] { file._Read(nullptr, &byte, 1); },
        {L"unsigned __int64 __cdecl Utils::FileHdd::_Read(void *const ,void *,const unsigned __int64)" +
         tail});
    ExpectFailure([&] { file._Write(nullptr, &byte, 1); },
                  {L"unsigned __int64 __cdecl Utils::FileHdd::_Write(void *const ,const void *,const "
                   L"unsigned __int64)" +
                   tail});
    ExpectFailure(
        [&] { file._SetPointer(nullptr, FILE_BEGIN, 0); },
        {L"__int64 __cdecl Utils::FileHdd::_SetPointer(void *const ,const int,const __int64)" + tail});
    ExpectFailure([&] { file.Flush(nullptr); }, {L"void __cdecl Utils::FileHdd::Flush(void *const )" + tail});
    ExpectFailure([&] { file._Size64(nullptr); }, {L"Utils::FileHdd::_Size64(void *const )" + tail});
    ExpectFailure([&] { file.SetEndPhysical(nullptr); },
                  {L"Utils::FileHdd::SetEndPhysical(void *const )" + tail});
}

TEST_F(OpenFile, ResizeKeepsOrClipsThePointer) {
    file._Write(handle, "0123456789", 10);
    file._SetPointer(handle, FILE_BEGIN, 8);
    EXPECT_EQ(file.Resize<unsigned __int64>(4), 4);
    EXPECT_EQ(file._SetPointer(handle, FILE_CURRENT, 0), 4); // shrunk below the pointer: at the new end
    file._SetPointer(handle, FILE_BEGIN, 2);
    EXPECT_EQ(file.Resize<unsigned __int64>(100), 100);
    EXPECT_EQ(file._SetPointer(handle, FILE_CURRENT, 0), 2); // grown: the pointer stays
    EXPECT_EQ(file._Size64(handle), 100u);
}

TEST_F(OpenFile, FaultsOfTheSystemAreReportedAndEarlierBytesStay) {
    file._Write(handle, "keep", 4);
    Utils::SystemCalls saved = Utils::Sys();
    Utils::Sys().writeFile = [](HANDLE, LPCVOID, DWORD, LPDWORD done, LPOVERLAPPED) -> BOOL {
        *done = 0;
        ::SetLastError(ERROR_DISK_FULL);
        return FALSE;
    };
    ExpectFailure(
        [&] { file._Write(handle, "more", 4); },
        {L"На итерации 0 не записаны данные в файл:", L"Запрошено: 4\nЗаписано: 0", L"\nLast Error: 1.\n"});
    Utils::Sys() = saved;
    file.Close();
    EXPECT_EQ(TestSupport::ReadFileBytes(dir / L"io.bin"), "keep");
}

// ReadHeld and WriteHeld, for callers that hold the object's lock: the same transfers, checks and
// texts as _Read and _Write.
TEST_F(OpenFile, HeldTransfersWorkLikeTheLockedOnes) {
    Utils::Sync::Lock<Utils::Sync::CriticalSection> guard(file.Lock());
    EXPECT_EQ(file.WriteHeld(handle, "0123456789", 10), 10u);
    EXPECT_EQ(file.WriteHeld(handle, "x", 0), 0u);
    EXPECT_EQ(file._SetPointer(handle, FILE_CURRENT, 0), 10);
    file._SetPointer(handle, FILE_BEGIN, 6);
    char buffer[10] = {};
    EXPECT_EQ(file.ReadHeld(handle, buffer, 4), 4u);
    EXPECT_EQ(std::string(buffer, 4), "6789");
    EXPECT_EQ(file.ReadHeld(handle, buffer, 0), 0u);
    file._SetPointer(handle, FILE_BEGIN, 6);
    ExpectFailure(
        [&] { file.ReadHeld(handle, buffer, 10); },
        {L"unsigned __int64 __cdecl Utils::FileHdd::_Read(void *const ,void *,const unsigned __int64)",
         L"На итерации 0 не прочитаны данные из файла:\n\"" + file.Path() +
             L"\"\nФайловый указатель: 10\nЗапрошено: 10\nПрочитано: 4"});
    const std::wstring tail =
        L"\r\n\r\nМетод не может быть выполнен.\r\nОтсутствует системный дескриптор файла:\r\n\"" +
        file.Path() + L"\"\r\nВероятно, файл не открыт.";
    ExpectFailure(
        [&] { file.ReadHeld(nullptr, buffer, 1); },
        {L"unsigned __int64 __cdecl Utils::FileHdd::_Read(void *const ,void *,const unsigned __int64)" +
         tail});
    ExpectFailure([&] { file.WriteHeld(nullptr, buffer, 0); },
                  {L"unsigned __int64 __cdecl Utils::FileHdd::_Write(void *const ,const void *,const "
                   L"unsigned __int64)" +
                   tail});
}

TEST_F(OpenFile, HeldWriteFaultsAreReportedWithTheLastError) {
    Utils::SystemCalls saved = Utils::Sys();
    Utils::Sys().writeFile = [](HANDLE, LPCVOID, DWORD length, LPDWORD done, LPOVERLAPPED) -> BOOL {
        *done = length - 1; // short, and the call itself succeeds
        ::SetLastError(ERROR_DISK_FULL);
        return TRUE;
    };
    Utils::Sync::Lock<Utils::Sync::CriticalSection> guard(file.Lock());
    ExpectFailure(
        [&] { file.WriteHeld(handle, "more", 4); },
        {L"unsigned __int64 __cdecl Utils::FileHdd::_Write(void *const ,const void *,const unsigned __int64)",
         L"На итерации 0 не записаны данные в файл:", L"Запрошено: 4\nЗаписано: 3", L"\nLast Error: 1.\n"});
    Utils::Sys() = saved;
}

// A request beyond one system call's reach goes out in chunks of 0xFFFFFFFF bytes from consecutive
// addresses. The system call is replaced and touches no memory, so the buffer is only reserved.
std::vector<std::pair<const unsigned char*, DWORD>> g_calls;

TEST_F(OpenFile, RequestsBeyondOneCallGoOutInChunks) {
    const unsigned __int64 size = 0x200000001ull; // two full calls and 3 bytes
    unsigned char* const buffer = static_cast<unsigned char*>(
        ::VirtualAlloc(nullptr, static_cast<SIZE_T>(size), MEM_RESERVE, PAGE_NOACCESS));
    ASSERT_NE(buffer, nullptr);
    Utils::SystemCalls saved = Utils::Sys();
    Utils::Sys().writeFile = [](HANDLE, LPCVOID from, DWORD length, LPDWORD done, LPOVERLAPPED) -> BOOL {
        g_calls.emplace_back(static_cast<const unsigned char*>(from), length);
        *done = length;
        return TRUE;
    };
    Utils::Sys().readFile = [](HANDLE, LPVOID into, DWORD length, LPDWORD done, LPOVERLAPPED) -> BOOL {
        g_calls.emplace_back(static_cast<const unsigned char*>(into), length);
        *done = length;
        return TRUE;
    };
    {
        Utils::Sync::Lock<Utils::Sync::CriticalSection> guard(file.Lock());
        g_calls.clear();
        EXPECT_EQ(file.WriteHeld(handle, buffer, size), size);
        ASSERT_EQ(g_calls.size(), 3u);
        EXPECT_EQ(g_calls[0], std::make_pair(static_cast<const unsigned char*>(buffer), DWORD(0xFFFFFFFF)));
        EXPECT_EQ(g_calls[1], std::make_pair(static_cast<const unsigned char*>(buffer + 0xFFFFFFFFull),
                                             DWORD(0xFFFFFFFF)));
        EXPECT_EQ(g_calls[2],
                  std::make_pair(static_cast<const unsigned char*>(buffer + 0x1FFFFFFFEull), DWORD(3)));
        g_calls.clear();
        EXPECT_EQ(file.ReadHeld(handle, buffer, 0xFFFFFFFFull), 0xFFFFFFFFull); // exactly one call's reach
        ASSERT_EQ(g_calls.size(), 1u);
        EXPECT_EQ(g_calls[0], std::make_pair(static_cast<const unsigned char*>(buffer), DWORD(0xFFFFFFFF)));
    }
    g_calls.clear();
    EXPECT_EQ(file._Read(handle, buffer, 0x100000000ull), 0x100000000ull);
    ASSERT_EQ(g_calls.size(), 2u);
    EXPECT_EQ(g_calls[1],
              std::make_pair(static_cast<const unsigned char*>(buffer + 0xFFFFFFFFull), DWORD(1)));
    Utils::Sys() = saved;
    ::VirtualFree(buffer, 0, MEM_RELEASE);
}

TEST_F(OpenFile, CloseOfABadHandleThrowsAndNamesIt) {
    ExpectFailure(
        [&] { file._Close(reinterpret_cast<void*>(static_cast<intptr_t>(0x7FFF0))); },
        {L"Не закрыт файл:\n\"" + file.Path() + L"\"\nСистемный дескриптор: ", L"\nLast Error: 1.\n"});
}

} // namespace
