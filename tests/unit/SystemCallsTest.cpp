// Faults injected through the system-call seam: disk full and short transfers, a failed truncation,
// chunking above 4 GiB, a failed close, an aborted shell, a failed hard link; and the order of the
// symbolic link's arguments, which the platform's own call may not show.
#include "support/TempDir.h"

#include "exports/Project.h"
#include "utils/Utils.File.h"
#include "utils/Utils.FileHdd.h"

#include <gtest/gtest.h>

#include <functional>
#include <vector>

using TestSupport::TempDir;

namespace {

std::wstring Thrown(const std::function<void()>& call) {
    try {
        call();
    } catch (const std::wstring& text) {
        return text;
    }
    return L"(nothing thrown)";
}

class Seam : public testing::Test {
protected:
    void SetUp() override {
        file.Init(dir / L"io.bin", nullptr, true);
        handle = file.Create(CREATE_ALWAYS);
        ASSERT_NE(handle, nullptr);
        ASSERT_EQ(file._Write(handle, "keep", 4), 4u);
    }
    void TearDown() override { file.Close(); }
    TempDir dir;
    Utils::FileHdd file;
    void* handle = nullptr;
};

DWORD g_done;
BOOL g_result;

TEST_F(Seam, FailedAndShortTransfersThrowWithTheCountsAndKeepEarlierBytes) {
    struct Case {
        BOOL result;
        DWORD done;
        const wchar_t* counts;
    };
    const Case cases[] = {{FALSE, 0, L"Записано: 0"}, {TRUE, 3, L"Записано: 3"}, {FALSE, 2, L"Записано: 2"}};
    {
        Utils::ScopedSystemCalls calls;
        for (const Case& c : cases) {
            g_done = c.done;
            g_result = c.result;
            calls->writeFile = [](HANDLE, LPCVOID, DWORD, LPDWORD done, LPOVERLAPPED) -> BOOL {
                *done = g_done;
                ::SetLastError(ERROR_DISK_FULL);
                return g_result;
            };
            const std::wstring text = Thrown([&] { file._Write(handle, "more", 4); });
            EXPECT_NE(text.find(L"На итерации 0 не записаны данные в файл:\n\"" + file.Path() +
                                L"\"\nФайловый указатель: 4\nЗапрошено: 4\n" + c.counts + L"\n"),
                      std::wstring::npos)
                << TestSupport::Narrow(text);
            EXPECT_NE(text.find(L"\nLast Error: 1.\n"), std::wstring::npos);
        }
        calls->readFile = [](HANDLE, LPVOID, DWORD length, LPDWORD done, LPOVERLAPPED) -> BOOL {
            *done = length - 1;
            return TRUE;
        };
        char buffer[4];
        EXPECT_NE(Thrown([&] { file._Read(handle, buffer, 4); }).find(L"Запрошено: 4\nПрочитано: 3\n"),
                  std::wstring::npos);
        calls->setEndOfFile = [](HANDLE) -> BOOL { return FALSE; };
        EXPECT_NE(Thrown([&] {
                      file.Resize<unsigned __int64>(1);
                  }).find(L"Не зафиксирован физический размер файла:"),
                  std::wstring::npos);
    }
    file.Close();
    EXPECT_EQ(TestSupport::ReadFileBytes(dir / L"io.bin"), "keep");
}

// Above one call's reach a transfer goes out in chunks of 0xFFFFFFFF bytes from consecutive
// addresses. The fake calls touch no memory, so the buffer is only reserved.
std::vector<std::pair<unsigned __int64, DWORD>> g_calls; // offset into the buffer, length
const char* g_buffer;

TEST_F(Seam, TransfersAboveFourGigabytesGoOutInChunks) {
    const unsigned __int64 size = 0x200000001ull;
    char* const buffer =
        static_cast<char*>(::VirtualAlloc(nullptr, static_cast<SIZE_T>(size), MEM_RESERVE, PAGE_NOACCESS));
    ASSERT_NE(buffer, nullptr);
    g_buffer = buffer;
    Utils::ScopedSystemCalls calls;
    calls->writeFile = [](HANDLE, LPCVOID from, DWORD length, LPDWORD done, LPOVERLAPPED) -> BOOL {
        g_calls.emplace_back(static_cast<const char*>(from) - g_buffer, length);
        *done = length;
        return TRUE;
    };
    calls->readFile = [](HANDLE, LPVOID into, DWORD length, LPDWORD done, LPOVERLAPPED) -> BOOL {
        g_calls.emplace_back(static_cast<const char*>(into) - g_buffer, length);
        *done = length;
        return TRUE;
    };
    g_calls.clear();
    EXPECT_EQ(file._Write(handle, buffer, size), size);
    const std::vector<std::pair<unsigned __int64, DWORD>> written = {
        {0, 0xFFFFFFFF}, {0xFFFFFFFFull, 0xFFFFFFFF}, {0x1FFFFFFFEull, 3}};
    EXPECT_EQ(g_calls, written);
    g_calls.clear();
    EXPECT_EQ(file._Read(handle, buffer, 0x100000000ull), 0x100000000ull);
    const std::vector<std::pair<unsigned __int64, DWORD>> read = {{0, 0xFFFFFFFF}, {0xFFFFFFFFull, 1}};
    EXPECT_EQ(g_calls, read);
    ::VirtualFree(buffer, 0, MEM_RELEASE);
}

std::vector<std::wstring> g_seen;

TEST(SeamLinks, SymbolicLinksNameTheLinkFirstAndTheExistingFileAsTarget) {
    TempDir dir;
    Utils::ScopedSystemCalls calls;
    calls->createSymbolicLink = [](LPCWSTR link, LPCWSTR target, DWORD flags) -> BOOLEAN {
        g_seen.insert(g_seen.end(), {link, target, std::to_wstring(flags)});
        return TRUE;
    };
    g_seen.clear();
    EXPECT_EQ(Project::SymbolicLink(dir / L"file.bin", dir / L"sub\\link.bin"), 1);
    void* handle = Project::OpenFile(dir / L"file.bin", 0xFFFFFFFF, 0xFFFFFFFF, CREATE_ALWAYS);
    EXPECT_EQ(Project::SymbolicLinkByHandle(handle, (dir / L"link2.bin").c_str()), 1);
    Project::CloseByHandle(handle);
    const std::vector<std::wstring> expected = {dir / L"sub\\link.bin", dir / L"file.bin", L"0",
                                                dir / L"link2.bin",     dir / L"file.bin", L"0"};
    EXPECT_EQ(g_seen, expected);
}

TEST(SeamLinks, AFailedHardLinkThrowsWithOrWithoutTheLastError) {
    TempDir dir;
    Utils::ScopedSystemCalls calls;
    const std::wstring source = dir / L"file.bin";
    for (DWORD error : {5ul, 0ul}) {
        SCOPED_TRACE(error);
        ::SetLastError(error); // the fake keeps whatever the library left
        g_seen.assign(1, std::to_wstring(error));
        calls->createHardLink = [](LPCWSTR, LPCWSTR, LPSECURITY_ATTRIBUTES) -> BOOL {
            ::SetLastError(std::stoul(g_seen[0]));
            return FALSE;
        };
        const std::wstring text = Thrown([&] { Utils::File::HardLink(source, dir / L"link.bin"); });
        const std::wstring message = L"Не создана жёсткая ссылка на файл:\r\n\"" + source + L"\"";
        if (error != 0) {
            EXPECT_NE(text.find(L"\nLast Error: 1.\n"), std::wstring::npos);
            EXPECT_NE(text.find(L"\n" + message + L"\n"), std::wstring::npos) << TestSupport::Narrow(text);
        } else {
            EXPECT_EQ(text.find(L"Last Error"), std::wstring::npos);
            EXPECT_NE(text.find(message +
                                L"\r\nВозможной причиной может быть попытка создания жёсткой ссылки на "
                                L"путь, который уже является ссылкой с другого диска."),
                      std::wstring::npos)
                << TestSupport::Narrow(text);
        }
    }
}

// The shell's result and its aborted flag both count; the operation is silent and confirms nothing.
TEST(SeamShell, CopyAndMoveSucceedOnlyWhenTheShellFinishedEverything) {
    struct Case {
        int result;
        BOOL aborted;
        int expected;
    };
    Utils::ScopedSystemCalls calls;
    for (const Case& c : {Case{0, FALSE, 1}, Case{0, TRUE, 0}, Case{2, FALSE, 0}}) {
        SCOPED_TRACE(c.result + c.aborted);
        g_seen.assign({std::to_wstring(c.result), std::to_wstring(c.aborted)});
        calls->fileOperation = [](LPSHFILEOPSTRUCTW operation) -> int {
            operation->fAnyOperationsAborted = std::stoi(g_seen[1]);
            g_seen.insert(g_seen.end(),
                          {std::to_wstring(operation->wFunc), std::to_wstring(operation->fFlags),
                           operation->pFrom, operation->pTo});
            return std::stoi(g_seen[0]);
        };
        EXPECT_EQ(Project::Copy(L"C:\\a.bin", L"C:\\b.bin"), c.expected);
        EXPECT_EQ(Project::Move(L"C:\\a.bin", L"C:\\c.bin"), c.expected);
        const std::vector<std::wstring> seen(g_seen.begin() + 2, g_seen.end());
        const std::vector<std::wstring> expected = {L"2", L"1557", L"C:\\a.bin", L"C:\\b.bin",
                                                    L"1", L"1557", L"C:\\a.bin", L"C:\\c.bin"};
        EXPECT_EQ(seen, expected);
    }
}

// A failed close is reported with the path; the host's handle is unknown afterwards all the same.
TEST(SeamClose, AFailedCloseThrowsAndTheHandleIsGone) {
    TempDir dir;
    void* handle = Project::OpenFile(dir / L"file.bin", 0xFFFFFFFF, 0xFFFFFFFF, CREATE_ALWAYS);
    {
        Utils::ScopedSystemCalls calls;
        calls->closeHandle = [](HANDLE) -> BOOL {
            ::SetLastError(ERROR_INVALID_HANDLE);
            return FALSE;
        };
        const std::wstring text = Thrown([&] { Project::CloseByHandle(handle); });
        EXPECT_NE(text.find(L"Не закрыт файл:\n\"" + (dir / L"file.bin") + L"\"\nСистемный дескриптор: "),
                  std::wstring::npos)
            << TestSupport::Narrow(text);
        EXPECT_NE(text.find(L"\nLast Error: 1.\n"), std::wstring::npos);
    }
    EXPECT_NE(Thrown([&] { Project::PtrCFile(handle); }), L"(nothing thrown)");
    EXPECT_TRUE(::CloseHandle(handle));
}

} // namespace
