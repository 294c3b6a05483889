// Reliability: a transfer holds its file against writes and a close from other threads; handles
// and memory stay flat over many cycles.
#include "support/Exports.h"

#include <algorithm>
#include <functional>
#include <thread>

using namespace TestSupport;

namespace {

// Through a pipe, where a read waits for data: a write or a close of the same handle waits for the
// read to end, and the close forgets the handle at once.
TEST(Reliability, ATransferHoldsItsFileAgainstWritesAndACloseInUse) {
    const std::wstring name = L"\\\\.\\pipe\\tovarin-" + std::to_wstring(::GetCurrentProcessId());
    HANDLE server = ::CreateNamedPipeW(name.c_str(), PIPE_ACCESS_DUPLEX, 0, 1, 64, 64, 0, nullptr);
    BoxRecorder boxes;
    void* h = TOVARIN_FN(FileOpenExistingW)(name.c_str(), TOVARIN_DEFAULT, TOVARIN_DEFAULT);
    DWORD moved = 0, waiting = ~0u;
    const auto later = [](const std::function<void()>& call) { // a thread, given time to start waiting
        std::thread thread([call] {
            BoxRecorder boxes;
            call();
        });
        ::Sleep(150);
        return thread;
    };
    const char* line[] = {"x"};
    std::thread reader = later([&] { EXPECT_STREQ(TOVARIN_FN(FileReadStringA)(h, 4), "abcd"); });
    std::thread writer = later([&] { EXPECT_EQ(TOVARIN_FN(FileWriteInt)(h, 7), 4); });
    std::thread lines = later([&] { EXPECT_EQ(TOVARIN_FN(FileWriteStrArrayA)(h, line, 1, 0, 1), 1u); });
    EXPECT_TRUE(::PeekNamedPipe(server, nullptr, 0, nullptr, &waiting, nullptr));
    EXPECT_EQ(waiting, 0u); // the writes wait for the read
    EXPECT_TRUE(::WriteFile(server, "abcd", 4, &moved, nullptr));
    for (std::thread* thread : {&reader, &writer, &lines})
        thread->join();
    char out[16] = {};
    EXPECT_TRUE(::ReadFile(server, out, sizeof(out), &moved, nullptr) && moved == 7); // both writes
    reader = later([&] { EXPECT_EQ(TOVARIN_FN(FileReadInt)(h), 5); });
    std::thread closer = later([&] { TOVARIN_FN(FileCloseHandle)(h); });
    const wchar_t* text = nullptr; // a read of nothing takes no lock: forgotten while the close waits
    for (int i = 0; i < 100 && (text = TOVARIN_FN(FileReadStringW)(h, 0)) != nullptr; ++i)
        ::Sleep(20);
    EXPECT_EQ(text, nullptr);
    ExpectOneBox(boxes, "FileReadStringW", {L"Project::PtrCFile"});
    EXPECT_TRUE(::WriteFile(server, "\x05\0\0\0", 4, &moved, nullptr));
    reader.join();
    closer.join();
    EXPECT_FALSE(::PeekNamedPipe(server, nullptr, 0, nullptr, &waiting, nullptr)); // the client's end closed
    ::CloseHandle(server);
}

size_t HeapBytes() {
    HANDLE heaps[64];
    const DWORD count = std::min<DWORD>(::GetProcessHeaps(64, heaps), 64);
    size_t total = 0;
    for (DWORD i = 0; i < count; ++i) {
        PROCESS_HEAP_ENTRY entry = {};
        ::HeapLock(heaps[i]);
        while (::HeapWalk(heaps[i], &entry))
            total += (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0 ? entry.cbData : 0;
        ::HeapUnlock(heaps[i]);
    }
    return total;
}

// Open/close cycles and four failures each leave the handle count and the heap flat.
TEST(Reliability, CyclesAndFailuresLeakNeitherHandlesNorMemory) {
    TempDir dir;
    const std::wstring path = dir / L"cycle.bin", missing = dir / L"missing.bin", bad = dir / L"a|b";
    DWORD handles[2] = {};
    size_t heap[2] = {};
    BoxRecorder refusing(true); // refused boxes: their windows leave nothing behind
    for (int i = 0; i < 3100; ++i) {
        if (i == 100 || i == 3099) {
            ::GetProcessHandleCount(::GetCurrentProcess(), &handles[i > 100]);
            heap[i > 100] = HeapBytes();
        }
        void* h = TOVARIN_FN(FileOpenAlwaysW)(path.c_str(), TOVARIN_DEFAULT, TOVARIN_DEFAULT);
        TOVARIN_FN(FileWriteInt)(h, i);
        TOVARIN_FN(FileReadStringW)(h, 3);
        TOVARIN_FN(FileCloseHandle)(h);
        TOVARIN_FN(FileWriteInt)(h, i);
        TOVARIN_FN(FileOpenExistingW)(missing.c_str(), TOVARIN_DEFAULT, TOVARIN_DEFAULT);
        TOVARIN_FN(FileOpenAlwaysW)(bad.c_str(), TOVARIN_DEFAULT, TOVARIN_DEFAULT);
    }
    EXPECT_EQ(refusing.Refused(), 4u * 3100u);
    EXPECT_EQ(handles[1], handles[0]);
    EXPECT_LT(heap[1], heap[0] + 64 * 1024); // a few bytes lost per call would be hundreds of KiB
}

} // namespace
