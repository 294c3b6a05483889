// Faults injected through the system-call seam, and the arguments that the calls are given.
#include "support/TempDir.h"

#include "exports/Project.h"
#include "utils/Utils.File.h"

#include <gtest/gtest.h>

using namespace TestSupport;

namespace {

struct Fake { // what the fake calls return, and what they were given
    BOOL result;
    DWORD done;
    const char* base;
    std::wstring seen;
} g;

// A transfer's offset from g.base and its length, all of it done.
template <class P> BOOL WINAPI Record(HANDLE, P at, DWORD length, LPDWORD done, LPOVERLAPPED) {
    g.seen += std::to_wstring(static_cast<const char*>(at) - g.base) + L"+" + std::to_wstring(length) + L" ";
    return *done = length, TRUE;
}

// Failed calls show their counts and own last error. Above 4 GiB a transfer goes in chunks of
// 0xFFFFFFFF bytes (from a buffer only reserved: the fakes touch no memory). A hard link that fails
// without a last error blames a link from another drive; copy and move need the shell's 0 and
// nothing aborted; a failed close still forgets the host's handle.
TEST(Seam, FailedCallsAndTheArgumentsOfEachCall) {
    TempDir dir;
    Utils::FileHdd file;
    file.Init(dir / L"io.bin", nullptr, true);
    void* const handle = file.Create(CREATE_ALWAYS);
    ASSERT_EQ(file._Write(handle, "keep", 4), 4u); // the pointer that the failure texts show
    Utils::ScopedSystemCalls calls;
    calls->writeFile = [](HANDLE, LPCVOID, DWORD, LPDWORD done, LPOVERLAPPED) -> BOOL {
        *done = g.done;
        ::SetLastError(ERROR_DISK_FULL);
        return g.result;
    };
    for (const auto& [result, done] : {std::make_pair(TRUE, 3ul), {FALSE, 2ul}}) { // short, failed
        g.result = result;
        g.done = done;
        const std::wstring text = Thrown([&] { file._Write(handle, "more", 4); });
        EXPECT_HAS(text, L"\nLast Error: 1.\n");
        EXPECT_HAS(text, L"На итерации 0 не записаны данные в файл:\n\"" + file.Path() +
                             L"\"\nФайловый указатель: 4\nЗапрошено: 4\nЗаписано: " + std::to_wstring(done));
    }
    calls->setEndOfFile = [](HANDLE) -> BOOL { return FALSE; };
    EXPECT_HAS(Thrown([&] { file.Resize<unsigned __int64>(1); }), L"Не зафиксирован физический размер");

    const auto buffer =
        static_cast<char*>(::VirtualAlloc(nullptr, 0x200000001ull, MEM_RESERVE, PAGE_NOACCESS));
    ASSERT_NE(buffer, nullptr);
    g.base = buffer;
    calls->writeFile = Record<LPCVOID>;
    calls->readFile = Record<LPVOID>;
    EXPECT_EQ(file._Write(handle, buffer, 0x200000001ull), 0x200000001ull);
    EXPECT_EQ(file._Read(handle, buffer, 0x100000000ull), 0x100000000ull);
    EXPECT_EQ(g.seen, L"0+4294967295 4294967295+4294967295 8589934590+3 0+4294967295 4294967295+1 ");
    ::VirtualFree(buffer, 0, MEM_RELEASE);

    const std::wstring target = file.Path();
    calls->createSymbolicLink = [](LPCWSTR link, LPCWSTR target, DWORD flags) -> BOOLEAN {
        return g.seen += std::wstring(link) + L" " + target + L" " + std::to_wstring(flags) + L"\n", TRUE;
    };
    g.seen.clear();
    EXPECT_EQ(Project::SymbolicLink(target, dir / L"sub\\link.bin"), 1);
    void* opened = Project::OpenFile(target, 0xFFFFFFFF, 0xFFFFFFFF, OPEN_EXISTING);
    EXPECT_EQ(Project::SymbolicLinkByHandle(opened, (dir / L"link2.bin").c_str()), 1);
    EXPECT_EQ(g.seen, dir / L"sub\\link.bin " + target + L" 0\n" + dir / L"link2.bin " + target + L" 0\n");

    calls->createHardLink = [](LPCWSTR, LPCWSTR, LPSECURITY_ATTRIBUTES) { return ::SetLastError(0), FALSE; };
    const std::wstring text = Thrown([&] { Utils::File::HardLink(target, dir / L"link.bin"); });
    EXPECT_EQ(text.find(L"Last Error"), std::wstring::npos);
    EXPECT_HAS(text, L"Не создана жёсткая ссылка на файл:\r\n\"" + target +
                         L"\"\r\nВозможной причиной может быть попытка создания жёсткой ссылки на путь, "
                         L"который уже является ссылкой с другого диска.");

    calls->fileOperation = [](LPSHFILEOPSTRUCTW o) -> int {
        o->fAnyOperationsAborted = g.result;
        g.seen += std::to_wstring(o->wFunc) + L" " + std::to_wstring(o->fFlags) + L" " + o->pFrom + L" " +
                  o->pTo + L"\n";
        return static_cast<int>(g.done);
    };
    // The shell's result, its aborted flag, and what copy and move return.
    for (const auto& [shell, aborted, ok] :
         {std::make_tuple(0ul, FALSE, 1), {0ul, TRUE, 0}, {2ul, FALSE, 0}}) {
        g = {aborted, shell, nullptr, L""};
        EXPECT_EQ(Project::Copy(L"C:\\a.bin", L"C:\\b.bin"), ok);
        EXPECT_EQ(Project::Move(L"C:\\a.bin", L"C:\\c.bin"), ok);
        EXPECT_EQ(g.seen, L"2 1557 C:\\a.bin C:\\b.bin\n1 1557 C:\\a.bin C:\\c.bin\n");
    }

    calls->closeHandle = [](HANDLE) -> BOOL { return ::SetLastError(ERROR_INVALID_HANDLE), FALSE; };
    const std::wstring closed = Thrown([&] { Project::CloseByHandle(opened); });
    EXPECT_HAS(closed, L"\nLast Error: 1.\n");
    EXPECT_HAS(closed, L"Не закрыт файл:\n\"" + target + L"\"\nСистемный дескриптор: ");
    EXPECT_NE(Thrown([&] { Project::PtrCFile(opened); }), L"(nothing thrown)");
    EXPECT_TRUE(::CloseHandle(opened));
    // One spelling of a handle, whatever the standard library (0xabc, 0000000000000ABC).
    EXPECT_HAS(Thrown([&] { file._Close(reinterpret_cast<void*>(0xABC)); }), L"дескриптор: 0xABC\n");
}

} // namespace
