// Faults injected through the system-call seam: disk full and short transfers, a failed truncation,
// chunking above 4 GiB.
#include "support/TempDir.h"

#include "utils/Utils.FileHdd.h"

#include <gtest/gtest.h>

#include <functional>
#include <vector>

using TestSupport::TempDir;

namespace {

// Restores the real calls when the test ends, also after a failed assertion.
struct ScopedCalls {
    Utils::SystemCalls saved = Utils::Sys();
    ~ScopedCalls() { Utils::Sys() = saved; }
};

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
        ScopedCalls calls;
        for (const Case& c : cases) {
            g_done = c.done;
            g_result = c.result;
            Utils::Sys().writeFile = [](HANDLE, LPCVOID, DWORD, LPDWORD done, LPOVERLAPPED) -> BOOL {
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
        Utils::Sys().readFile = [](HANDLE, LPVOID, DWORD length, LPDWORD done, LPOVERLAPPED) -> BOOL {
            *done = length - 1;
            return TRUE;
        };
        char buffer[4];
        EXPECT_NE(Thrown([&] { file._Read(handle, buffer, 4); }).find(L"Запрошено: 4\nПрочитано: 3\n"),
                  std::wstring::npos);
        Utils::Sys().setEndOfFile = [](HANDLE) -> BOOL { return FALSE; };
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
std::vector<std::pair<const char*, DWORD>> g_calls;

TEST_F(Seam, TransfersAboveFourGigabytesGoOutInChunks) {
    const unsigned __int64 size = 0x200000001ull;
    char* const buffer =
        static_cast<char*>(::VirtualAlloc(nullptr, static_cast<SIZE_T>(size), MEM_RESERVE, PAGE_NOACCESS));
    ASSERT_NE(buffer, nullptr);
    ScopedCalls calls;
    Utils::Sys().writeFile = [](HANDLE, LPCVOID from, DWORD length, LPDWORD done, LPOVERLAPPED) -> BOOL {
        g_calls.emplace_back(static_cast<const char*>(from), length);
        *done = length;
        return TRUE;
    };
    Utils::Sys().readFile = [](HANDLE, LPVOID into, DWORD length, LPDWORD done, LPOVERLAPPED) -> BOOL {
        g_calls.emplace_back(static_cast<const char*>(into), length);
        *done = length;
        return TRUE;
    };
    g_calls.clear();
    EXPECT_EQ(file._Write(handle, buffer, size), size);
    const std::vector<std::pair<const char*, DWORD>> written = {
        {buffer, 0xFFFFFFFF}, {buffer + 0xFFFFFFFFull, 0xFFFFFFFF}, {buffer + 0x1FFFFFFFEull, 3}};
    EXPECT_EQ(g_calls, written);
    g_calls.clear();
    EXPECT_EQ(file._Read(handle, buffer, 0x100000000ull), 0x100000000ull);
    const std::vector<std::pair<const char*, DWORD>> read = {{buffer, 0xFFFFFFFF},
                                                             {buffer + 0xFFFFFFFFull, 1}};
    EXPECT_EQ(g_calls, read);
    ::VirtualFree(buffer, 0, MEM_RELEASE);
}

} // namespace
