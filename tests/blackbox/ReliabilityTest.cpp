// Reliability: eight threads on private files and one shared handle, a close racing the calls that
// use the handle, handles and memory over many cycles.
#include "support/Exports.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <functional>
#include <thread>

using namespace TestSupport;

namespace {

size_t HandleCount() {
    DWORD count = 0;
    ::GetProcessHandleCount(::GetCurrentProcess(), &count);
    return count;
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

// Each thread appends tagged 16-int blocks to a private file, which it reopens every fourth step, and
// to one shared handle: each file holds its blocks whole, the private one in order, none lost or doubled.
TEST(Reliability, EightThreadsKeepTheirFilesAndTheSharedFileWhole) {
    const int kThreads = 8, kSteps = 300, kBlock = 16;
    TempDir dir;
    BoxRecorder boxes;
    void* shared = TOVARIN_FN(FileCreateAlwaysW)((dir / L"shared").c_str(), TOVARIN_DEFAULT, TOVARIN_DEFAULT);
    std::vector<int> errors(kThreads, 0);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&, t] {
            BoxRecorder boxes;
            const std::wstring path = dir / std::to_wstring(t);
            void* h = TOVARIN_FN(FileCreateAlwaysW)(path.c_str(), TOVARIN_DEFAULT, TOVARIN_DEFAULT);
            for (int step = 0; step < kSteps; ++step) {
                std::vector<int> block(kBlock, (t << 24) | step);
                errors[t] += TOVARIN_FN(FileWriteIntArray)(shared, block.data(), kBlock, 0, kBlock) != kBlock;
                errors[t] += TOVARIN_FN(FileWriteIntArray)(h, block.data(), kBlock, 0, kBlock) != kBlock;
                if (step % 4 == 3) {
                    TOVARIN_FN(FileCloseHandle)(h);
                    h = TOVARIN_FN(FileOpenExistingW)(path.c_str(), TOVARIN_DEFAULT, TOVARIN_DEFAULT);
                    TOVARIN_FN(FileSetPointerEnd)(h, 0);
                }
            }
            TOVARIN_FN(FileCloseHandle)(h);
            errors[t] += static_cast<int>(boxes.Boxes().size());
        });
    for (std::thread& thread : threads)
        thread.join();
    TOVARIN_FN(FileCloseHandle)(shared);
    // The tags of the blocks in a file, each block checked whole.
    const auto tags = [&](const std::wstring& name) {
        const std::string bytes = ReadFileBytes(dir / name);
        std::vector<int> found;
        for (size_t at = 0; at + kBlock * 4 <= bytes.size(); at += kBlock * 4) {
            const int* block = reinterpret_cast<const int*>(bytes.data() + at);
            EXPECT_TRUE(std::all_of(block, block + kBlock, [&](int v) { return v == block[0]; })) << at;
            found.push_back(block[0]);
        }
        EXPECT_EQ(bytes.size() % (kBlock * 4), 0u);
        return found;
    };
    std::vector<int> all, shown = tags(L"shared");
    for (int t = 0; t < kThreads; ++t) {
        std::vector<int> own(kSteps);
        for (int step = 0; step < kSteps; ++step)
            own[step] = (t << 24) | step;
        EXPECT_EQ(tags(std::to_wstring(t)), own) << t;
        EXPECT_EQ(errors[t], 0) << t;
        all.insert(all.end(), own.begin(), own.end());
    }
    std::sort(shown.begin(), shown.end());
    EXPECT_EQ(shown, all); // tags ascend by thread, then by step
    ExpectNoBox(boxes);
}

// A close while another thread uses the handle: the user's later calls fail with a registry or
// file-object box and the neutral result, never with wrong data.
TEST(Reliability, CloseWhileInUseFailsCleanly) {
    TempDir dir;
    void* h = TOVARIN_FN(FileCreateAlwaysW)((dir / L"race.bin").c_str(), TOVARIN_DEFAULT, TOVARIN_DEFAULT);
    std::atomic<int> progress{0};
    int wrong = 0, failures = 0;
    std::vector<Box> shown;
    std::thread user([&] {
        BoxRecorder boxes;
        for (int i = 1; i < 100000 && failures < 3; ++i) {
            const int wrote = TOVARIN_FN(FileWriteInt)(h, i);
            TOVARIN_FN(FileSetPointerCurrent)(h, -4);
            const int read = TOVARIN_FN(FileReadInt)(h);
            wrong += (wrote != 4 && wrote != -1) || (read != i && read != 0);
            failures += wrote == -1 || read == 0;
            progress = i;
        }
        shown = boxes.Boxes();
    });
    while (progress < 50)
        ::Sleep(0);
    TOVARIN_FN(FileCloseHandle)(h);
    user.join();
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(failures, 3);
    EXPECT_GE(shown.size(), 3u);
    for (const Box& box : shown)
        EXPECT_TRUE(box.text.find(L"Project::PtrCFile") != std::wstring::npos ||
                    box.text.find(L"Utils::FileHdd::") != std::wstring::npos)
            << Narrow(box.text);
}

// Many open/close cycles and failing calls leave the handle count and the heap flat. They run on a
// plain system thread, for which no runtime caches handles.
TEST(Reliability, CyclesAndFailuresLeakNeitherHandlesNorMemory) {
    TempDir dir;
    const std::wstring path = dir / L"cycle.bin", missing = dir / L"missing.bin", bad = dir / L"a|b";
    size_t handles[2] = {}, heap[2] = {}, refused = 0;
    const std::function<void()> body = [&] {
        BoxRecorder refusing(true); // refused boxes: their windows leave nothing behind
        for (int i = 0; i < 3100; ++i) {
            if (i == 100 || i == 3099)
                handles[i > 100] = HandleCount(), heap[i > 100] = HeapBytes();
            void* h = TOVARIN_FN(FileOpenAlwaysW)(path.c_str(), TOVARIN_DEFAULT, TOVARIN_DEFAULT);
            TOVARIN_FN(FileWriteInt)(h, i);
            TOVARIN_FN(FileReadStringW)(h, 3);
            TOVARIN_FN(FileCloseHandle)(h);
            TOVARIN_FN(FileWriteInt)(h, i);
            TOVARIN_FN(FileOpenExistingW)(missing.c_str(), TOVARIN_DEFAULT, TOVARIN_DEFAULT);
            TOVARIN_FN(FileOpenAlwaysW)(bad.c_str(), TOVARIN_DEFAULT, TOVARIN_DEFAULT);
        }
        refused = refusing.Refused();
    };
    HANDLE thread = ::CreateThread(
        nullptr, 0, [](void* run) -> DWORD { return (*static_cast<std::function<void()>*>(run))(), 0; },
        const_cast<std::function<void()>*>(&body), 0, nullptr);
    ::WaitForSingleObject(thread, INFINITE);
    ::CloseHandle(thread);
    EXPECT_EQ(refused, 4u * 3100u);
    EXPECT_EQ(handles[1], handles[0]);
    EXPECT_LT(heap[1], heap[0] + 64 * 1024); // a few bytes lost per call would be hundreds of KiB
}

} // namespace
