// Reliability: eight threads on private files and one shared handle, a close racing the calls that
// use the handle, handles and memory over many cycles.
#include "support/Exports.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <functional>
#include <mutex>
#include <random>
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

// Each thread appends to, cuts and reopens a private file, checked against a model, and appends
// 16-int blocks, each of one tag, to one shared handle: no block may be torn, lost or doubled.
TEST(Reliability, EightThreadsKeepTheirFilesAndTheSharedFileWhole) {
    const int kThreads = 8, kBlock = 16;
    TempDir dir;
    BoxRecorder boxes;
    void* shared = TOVARIN_FN(FileCreateAlwaysW)((dir / L"shared").c_str(), TOVARIN_DEFAULT, TOVARIN_DEFAULT);
    std::vector<std::vector<int>> models(kThreads);
    std::vector<int> tags, errors(kThreads, 0);
    std::mutex tagsLock;
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&, t] {
            BoxRecorder boxes;
            std::mt19937 random(1000 + t);
            std::vector<int>& model = models[t];
            const std::wstring path = dir / std::to_wstring(t);
            void* h = TOVARIN_FN(FileCreateAlwaysW)(path.c_str(), TOVARIN_DEFAULT, TOVARIN_DEFAULT);
            for (int step = 0; step < 300; ++step) {
                const size_t n = 1 + random() % 16, what = random() % 4;
                std::vector<int> values(what == 3 ? kBlock : n, (t << 24) | step);
                if (what == 0) {
                    TOVARIN_FN(FileSetPointerEnd)(h, 0);
                    errors[t] += TOVARIN_FN(FileWriteIntArray)(h, values.data(), n, 0, n) != n;
                    model.insert(model.end(), values.begin(), values.end());
                } else if (what == 3) {
                    errors[t] +=
                        TOVARIN_FN(FileWriteIntArray)(shared, values.data(), kBlock, 0, kBlock) != kBlock;
                    std::lock_guard<std::mutex> lock(tagsLock);
                    tags.push_back(values[0]);
                } else {
                    model.resize(model.empty() ? 0 : random() % (model.size() + 1));
                    TOVARIN_FN(FileResize)(h, model.size() * 4);
                    TOVARIN_FN(FileCloseHandle)(h);
                    h = TOVARIN_FN(FileOpenExistingW)(path.c_str(), TOVARIN_DEFAULT, TOVARIN_DEFAULT);
                }
            }
            TOVARIN_FN(FileCloseHandle)(h);
            errors[t] += static_cast<int>(boxes.Boxes().size());
        });
    for (std::thread& thread : threads)
        thread.join();
    TOVARIN_FN(FileCloseHandle)(shared);
    const std::string bytes = ReadFileBytes(dir / L"shared");
    ASSERT_EQ(bytes.size(), tags.size() * kBlock * 4);
    std::vector<int> seen;
    for (size_t at = 0; at < bytes.size(); at += kBlock * 4) {
        const int* block = reinterpret_cast<const int*>(bytes.data() + at);
        EXPECT_TRUE(std::all_of(block, block + kBlock, [&](int v) { return v == block[0]; }))
            << "torn at " << at;
        seen.push_back(block[0]);
    }
    std::sort(seen.begin(), seen.end());
    std::sort(tags.begin(), tags.end());
    EXPECT_EQ(seen, tags);
    for (int t = 0; t < kThreads; ++t) {
        EXPECT_EQ(errors[t], 0) << t;
        EXPECT_EQ(ReadFileBytes(dir / std::to_wstring(t)),
                  std::string(reinterpret_cast<const char*>(models[t].data()), models[t].size() * 4))
            << t;
    }
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
