// Faults injected through the system-call seam: failed and short transfers, a failed truncation,
// chunking above 4 GiB, a failed close, an aborted shell, a failed hard link; and the order of the
// symbolic link's arguments, which the platform's own call may not show.
#include "support/TempDir.h"

#include "exports/Project.h"
#include "utils/Utils.File.h"

#include <gtest/gtest.h>

#include <tuple>
#include <vector>

using namespace TestSupport;

namespace {

// What the fake calls return, and what they were given.
struct Fake {
    BOOL result = TRUE;
    DWORD done = 0;
    const char* base = nullptr;
    std::vector<std::wstring> seen;
} g;

class Seam : public testing::Test {
protected:
    void SetUp() override {
        g = Fake();
        file.Init(dir / L"io.bin", nullptr, true);
        handle = file.Create(CREATE_ALWAYS);
        ASSERT_EQ(file._Write(handle, "keep", 4), 4u);
    }
    TempDir dir;
    Utils::FileHdd file;
    void* handle = nullptr;
};

TEST_F(Seam, FailedAndShortTransfersThrowWithTheCountsAndKeepEarlierBytes) {
    {
        Utils::ScopedSystemCalls calls;
        calls->writeFile = [](HANDLE, LPCVOID, DWORD, LPDWORD done, LPOVERLAPPED) -> BOOL {
            *done = g.done;
            ::SetLastError(ERROR_DISK_FULL);
            return g.result;
        };
        for (const auto& c : {std::make_pair(TRUE, 3ul), std::make_pair(FALSE, 2ul)}) { // short, failed
            g.result = c.first;
            g.done = c.second;
            const std::wstring text = Thrown([&] { file._Write(handle, "more", 4); });
            EXPECT_HAS(text, L"\nLast Error: 1.\n");
            EXPECT_HAS(text, L"На итерации 0 не записаны данные в файл:\n\"" + file.Path() +
                                 L"\"\nФайловый указатель: 4\nЗапрошено: 4\nЗаписано: " +
                                 std::to_wstring(g.done));
        }
        calls->setEndOfFile = [](HANDLE) -> BOOL { return FALSE; };
        EXPECT_HAS(Thrown([&] { file.Resize<unsigned __int64>(1); }),
                   L"Не зафиксирован физический размер файла:");
    }
    file.Close();
    EXPECT_EQ(ReadFileBytes(dir / L"io.bin"), "keep");
}

// A transfer's offset from g.base and its length, all of it done.
template <class P> BOOL WINAPI Record(HANDLE, P at, DWORD length, LPDWORD done, LPOVERLAPPED) {
    g.seen.push_back(std::to_wstring(static_cast<const char*>(at) - g.base) + L"+" + std::to_wstring(length));
    return *done = length, TRUE;
}

// Above one call's reach a transfer goes out in chunks of 0xFFFFFFFF bytes from consecutive
// addresses. The fake calls touch no memory, so the buffer is only reserved.
TEST_F(Seam, TransfersAboveFourGigabytesGoOutInChunks) {
    char* const buffer =
        static_cast<char*>(::VirtualAlloc(nullptr, 0x200000001ull, MEM_RESERVE, PAGE_NOACCESS));
    ASSERT_NE(buffer, nullptr);
    g.base = buffer;
    Utils::ScopedSystemCalls calls;
    calls->writeFile = Record<LPCVOID>;
    calls->readFile = Record<LPVOID>;
    EXPECT_EQ(file._Write(handle, buffer, 0x200000001ull), 0x200000001ull);
    EXPECT_EQ(file._Read(handle, buffer, 0x100000000ull), 0x100000000ull);
    const std::vector<std::wstring> expected = {L"0+4294967295", L"4294967295+4294967295", L"8589934590+3",
                                                L"0+4294967295", L"4294967295+1"};
    EXPECT_EQ(g.seen, expected);
    ::VirtualFree(buffer, 0, MEM_RELEASE);
}

TEST_F(Seam, SymbolicLinksNameTheLinkFirstAndTheExistingFileAsTarget) {
    Utils::ScopedSystemCalls calls;
    calls->createSymbolicLink = [](LPCWSTR link, LPCWSTR target, DWORD flags) -> BOOLEAN {
        g.seen.insert(g.seen.end(), {link, target, std::to_wstring(flags)});
        return TRUE;
    };
    EXPECT_EQ(Project::SymbolicLink(dir / L"io.bin", dir / L"sub\\link.bin"), 1);
    void* opened = Project::OpenFile(dir / L"io.bin", 0xFFFFFFFF, 0xFFFFFFFF, OPEN_EXISTING);
    EXPECT_EQ(Project::SymbolicLinkByHandle(opened, (dir / L"link2.bin").c_str()), 1);
    Project::CloseByHandle(opened);
    const std::vector<std::wstring> expected = {dir / L"sub\\link.bin", dir / L"io.bin", L"0",
                                                dir / L"link2.bin",     dir / L"io.bin", L"0"};
    EXPECT_EQ(g.seen, expected);
}

TEST_F(Seam, AFailedHardLinkWithoutALastErrorNamesALinkFromAnotherDrive) {
    Utils::ScopedSystemCalls calls;
    calls->createHardLink = [](LPCWSTR, LPCWSTR, LPSECURITY_ATTRIBUTES) -> BOOL {
        return ::SetLastError(0), FALSE;
    };
    const std::wstring text = Thrown([&] { Utils::File::HardLink(file.Path(), dir / L"link.bin"); });
    EXPECT_EQ(text.find(L"Last Error"), std::wstring::npos);
    EXPECT_HAS(text, L"Не создана жёсткая ссылка на файл:\r\n\"" + file.Path() +
                         L"\"\r\nВозможной причиной может быть попытка создания жёсткой ссылки на путь, "
                         L"который уже является ссылкой с другого диска.");
}

// The shell's result and its aborted flag both count; the operation is silent and confirms nothing.
TEST_F(Seam, CopyAndMoveSucceedOnlyWhenTheShellFinishedEverything) {
    Utils::ScopedSystemCalls calls;
    calls->fileOperation = [](LPSHFILEOPSTRUCTW operation) -> int {
        operation->fAnyOperationsAborted = g.result;
        g.seen.insert(g.seen.end(), {std::to_wstring(operation->wFunc), std::to_wstring(operation->fFlags),
                                     operation->pFrom, operation->pTo});
        return static_cast<int>(g.done);
    };
    for (const auto& c :
         {std::make_tuple(0ul, FALSE, 1), std::make_tuple(0ul, TRUE, 0), std::make_tuple(2ul, FALSE, 0)}) {
        g.done = std::get<0>(c);   // the shell's result
        g.result = std::get<1>(c); // aborted
        g.seen.clear();
        EXPECT_EQ(Project::Copy(L"C:\\a.bin", L"C:\\b.bin"), std::get<2>(c));
        EXPECT_EQ(Project::Move(L"C:\\a.bin", L"C:\\c.bin"), std::get<2>(c));
        const std::vector<std::wstring> expected = {L"2", L"1557", L"C:\\a.bin", L"C:\\b.bin",
                                                    L"1", L"1557", L"C:\\a.bin", L"C:\\c.bin"};
        EXPECT_EQ(g.seen, expected);
    }
}

// A failed close is reported with the path; the host's handle is unknown afterwards all the same.
TEST_F(Seam, AFailedCloseThrowsAndTheHandleIsGone) {
    void* opened = Project::OpenFile(dir / L"other.bin", 0xFFFFFFFF, 0xFFFFFFFF, CREATE_ALWAYS);
    {
        Utils::ScopedSystemCalls calls;
        calls->closeHandle = [](HANDLE) -> BOOL { return ::SetLastError(ERROR_INVALID_HANDLE), FALSE; };
        const std::wstring text = Thrown([&] { Project::CloseByHandle(opened); });
        EXPECT_HAS(text, L"\nLast Error: 1.\n");
        EXPECT_HAS(text, L"Не закрыт файл:\n\"" + (dir / L"other.bin") + L"\"\nСистемный дескриптор: ");
        // One spelling of a handle, whatever the standard library (0xabc, 0000000000000ABC).
        EXPECT_HAS(Thrown([&] { file._Close(reinterpret_cast<void*>(0xABC)); }), L"дескриптор: 0xABC\n");
    }
    EXPECT_NE(Thrown([&] { Project::PtrCFile(opened); }), L"(nothing thrown)");
    EXPECT_TRUE(::CloseHandle(opened));
}

} // namespace
