// Reliability: eight threads on private files and one shared handle, a close racing the calls that
// use the handle, handles and memory over many cycles.
#include "support/Exports.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <map>
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

// body(0 .. count-1) on plain system threads (no runtime caches handles for them).
template <class Body> void RunThreads(int count, Body body) {
    std::vector<std::pair<Body*, int>> starts;
    for (int i = 0; i < count; ++i)
        starts.emplace_back(&body, i);
    std::vector<HANDLE> threads;
    for (auto& start : starts)
        threads.push_back(::CreateThread(
            nullptr, 0,
            [](void* p) -> DWORD {
                auto* s = static_cast<std::pair<Body*, int>*>(p);
                (*s->first)(s->second);
                return 0;
            },
            &start, 0, nullptr));
    ::WaitForMultipleObjects(static_cast<DWORD>(threads.size()), threads.data(), TRUE, INFINITE);
    for (HANDLE thread : threads)
        ::CloseHandle(thread);
}

// Each thread appends to, cuts and reopens a private file, checked against a model, and
// appends tagged 16-int blocks to one shared handle: no block may be torn, lost or doubled.
void StressRound(const TempDir& dir, int steps, const std::wstring& round) {
    const int kThreads = 8, kBlock = 16;
    void* shared =
        TOVARIN_FN(FileCreateAlwaysW)((dir / (round + L"shared")).c_str(), TOVARIN_DEFAULT, TOVARIN_DEFAULT);
    std::vector<std::vector<int>> models(kThreads);
    std::vector<int> blocks(kThreads, 0), errors(kThreads, 0);
    RunThreads(kThreads, [&](int t) {
        BoxRecorder boxes;
        std::mt19937 random(1000 + t);
        std::vector<int>& model = models[t];
        const std::wstring path = dir / (round + std::to_wstring(t));
        void* h = TOVARIN_FN(FileCreateAlwaysW)(path.c_str(), TOVARIN_DEFAULT, TOVARIN_DEFAULT);
        for (int step = 0; step < steps; ++step) {
            const size_t n = 1 + random() % 16;
            switch (random() % 4) {
            case 0: {
                std::vector<int> values(n, (t << 24) | step);
                TOVARIN_FN(FileSetPointerEnd)(h, 0);
                errors[t] += TOVARIN_FN(FileWriteIntArray)(h, values.data(), n, 0, n) != n;
                model.insert(model.end(), values.begin(), values.end());
                break;
            }
            case 1:
            case 2:
                model.resize(model.empty() ? 0 : random() % (model.size() + 1));
                TOVARIN_FN(FileResize)(h, model.size() * 4);
                TOVARIN_FN(FileCloseHandle)(h);
                h = TOVARIN_FN(FileOpenExistingW)(path.c_str(), TOVARIN_DEFAULT, TOVARIN_DEFAULT);
                break;
            default: {
                int block[kBlock];
                block[0] = 0x5A000000 | t;
                block[1] = blocks[t]++;
                std::fill(block + 2, block + kBlock, block[1] * 7 + t);
                errors[t] += TOVARIN_FN(FileWriteIntArray)(shared, block, kBlock, 0, kBlock) != kBlock;
            }
            }
        }
        TOVARIN_FN(FileCloseHandle)(h);
        errors[t] += static_cast<int>(boxes.Boxes().size());
    });
    TOVARIN_FN(FileCloseHandle)(shared);
    std::map<int, std::vector<int>> seen;
    const std::string bytes = ReadFileBytes(dir / (round + L"shared"));
    ASSERT_EQ(bytes.size() % (kBlock * 4), 0u);
    for (size_t at = 0; at < bytes.size(); at += kBlock * 4) {
        const int* block = reinterpret_cast<const int*>(bytes.data() + at);
        ASSERT_EQ(block[0] & 0xFFFFFF00, 0x5A000000) << "torn block at " << at;
        ASSERT_TRUE(std::all_of(block + 2, block + kBlock,
                                [&](int v) { return v == block[1] * 7 + (block[0] & 0xFF); }));
        seen[block[0] & 0xFF].push_back(block[1]);
    }
    for (int t = 0; t < kThreads; ++t) {
        SCOPED_TRACE(t);
        EXPECT_EQ(errors[t], 0);
        EXPECT_EQ(ReadFileBytes(dir / (round + std::to_wstring(t))),
                  std::string(reinterpret_cast<const char*>(models[t].data()), models[t].size() * 4));
        std::vector<int> expected(blocks[t]), got = seen[t];
        for (int s = 0; s < blocks[t]; ++s)
            expected[s] = s;
        std::sort(got.begin(), got.end());
        EXPECT_EQ(got, expected);
    }
}

TEST(Reliability, EightThreadsKeepTheirFilesAndTheSharedFileWhole) {
    TempDir dir;
    BoxRecorder boxes;
    StressRound(dir, 40, L"warm"); // the system's own lazily made objects
    const size_t handles = HandleCount();
    StressRound(dir, 300, L"main");
    EXPECT_EQ(HandleCount(), handles);
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

// Many open/close cycles and failing calls leave the handle count and the heap flat.
TEST(Reliability, CyclesAndFailuresLeakNeitherHandlesNorMemory) {
    TempDir dir;
    const std::wstring path = dir / L"cycle.bin", missing = dir / L"missing.bin", bad = dir / L"a|b";
    const auto cycles = [&](int count) {
        for (int i = 0; i < count; ++i) {
            void* h = TOVARIN_FN(FileOpenAlwaysW)(path.c_str(), TOVARIN_DEFAULT, TOVARIN_DEFAULT);
            TOVARIN_FN(FileWriteInt)(h, i);
            TOVARIN_FN(FileReadStringW)(h, 3);
            TOVARIN_FN(FileCloseHandle)(h);
            TOVARIN_FN(FileWriteInt)(h, i);
            TOVARIN_FN(FileOpenExistingW)(missing.c_str(), TOVARIN_DEFAULT, TOVARIN_DEFAULT);
            TOVARIN_FN(FileOpenAlwaysW)(bad.c_str(), TOVARIN_DEFAULT, TOVARIN_DEFAULT);
        }
    };
    size_t handles[2] = {}, heap[2] = {}, refused = 0;
    RunThreads(1, [&](int) {
        BoxRecorder refusing(true); // refused boxes: their windows leave nothing behind
        cycles(100);
        handles[0] = HandleCount();
        heap[0] = HeapBytes();
        cycles(3000);
        handles[1] = HandleCount();
        heap[1] = HeapBytes();
        refused = refusing.Refused();
    });
    EXPECT_EQ(refused, 4u * 3100u);
    EXPECT_EQ(handles[1], handles[0]);
    EXPECT_LT(heap[1], heap[0] + 64 * 1024); // a few bytes lost per call would be hundreds of KiB
}

} // namespace
