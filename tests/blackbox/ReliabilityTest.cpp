// Reliability through the built DLL: threads sharing files and handles, a close racing the calls
// that use the handle, handles and memory over many cycles, refused writes, two processes on one
// file, and unloading the DLL with files open.
#include "include/Tovarin.h"
#include "support/BoxRecorder.h"
#include "support/TempDir.h"
#include "support/TovarinDll.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <cstring>
#include <map>
#include <random>
#include <string>
#include <thread>
#include <vector>

using namespace TestSupport;

namespace {

typedef unsigned __int64 u64;

#define TOVARIN_FN(name) TovarinDll::Get<decltype(&::name)>(#name)

struct Dll {
    decltype(&::FileCreateAlwaysW) createAlways = TOVARIN_FN(FileCreateAlwaysW);
    decltype(&::FileOpenExistingW) openExisting = TOVARIN_FN(FileOpenExistingW);
    decltype(&::FileOpenAlwaysW) openAlways = TOVARIN_FN(FileOpenAlwaysW);
    decltype(&::FileCloseHandle) close = TOVARIN_FN(FileCloseHandle);
    decltype(&::FileFlushApply) flush = TOVARIN_FN(FileFlushApply);
    decltype(&::FileGetSize) size = TOVARIN_FN(FileGetSize);
    decltype(&::FileResize) resize = TOVARIN_FN(FileResize);
    decltype(&::FileSetPointerBegin) begin = TOVARIN_FN(FileSetPointerBegin);
    decltype(&::FileSetPointerEnd) end = TOVARIN_FN(FileSetPointerEnd);
    decltype(&::FileWriteInt) writeInt = TOVARIN_FN(FileWriteInt);
    decltype(&::FileReadInt) readInt = TOVARIN_FN(FileReadInt);
    decltype(&::FileWriteIntArray) writeInts = TOVARIN_FN(FileWriteIntArray);
    decltype(&::FileReadIntArray) readInts = TOVARIN_FN(FileReadIntArray);
};

// Handles of this process: the system's count where it gives one, else a probe of handle values.
size_t HandleCount() {
    DWORD count = 0;
    if (::GetProcessHandleCount(::GetCurrentProcess(), &count) && count != 0)
        return count;
    size_t probed = 0;
    for (ULONG_PTR value = 4; value < 0x4000; value += 4) {
        DWORD flags = 0;
        if (::GetHandleInformation(reinterpret_cast<HANDLE>(value), &flags))
            ++probed;
    }
    return probed;
}

// Bytes in use on every heap of the process.
size_t HeapBytes() {
    HANDLE heaps[64];
    const DWORD count = std::min<DWORD>(::GetProcessHeaps(64, heaps), 64);
    size_t total = 0;
    for (DWORD i = 0; i < count; ++i) {
        if (!::HeapLock(heaps[i]))
            continue;
        PROCESS_HEAP_ENTRY entry = {};
        while (::HeapWalk(heaps[i], &entry))
            if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0)
                total += entry.cbData;
        ::HeapUnlock(heaps[i]);
    }
    return total;
}

// Runs body(0..count-1) on `count` system threads and waits for all of them. Plain system threads:
// the handle counts below must not see a threading runtime's own cached handles.
template <class Body> void RunThreads(int count, Body body) {
    struct Start {
        Body* body;
        int index;
    };
    std::vector<Start> starts;
    for (int i = 0; i < count; ++i)
        starts.push_back(Start{&body, i});
    std::vector<HANDLE> threads;
    for (Start& start : starts)
        threads.push_back(::CreateThread(
            nullptr, 0,
            [](void* param) -> DWORD {
                Start* s = static_cast<Start*>(param);
                (*s->body)(s->index);
                return 0;
            },
            &start, 0, nullptr));
    ::WaitForMultipleObjects(static_cast<DWORD>(threads.size()), threads.data(), TRUE, INFINITE);
    for (HANDLE thread : threads)
        ::CloseHandle(thread);
}

std::string IntBytes(const std::vector<int>& values) {
    return std::string(reinterpret_cast<const char*>(values.data()), values.size() * sizeof(int));
}

class Reliability : public testing::Test {
protected:
    TempDir dir;
    Dll dll;
};

// Eight threads, each with a private file it writes, reads, resizes, closes and reopens, and all
// appending tagged blocks to one shared handle. Fixed seeds, a fixed number of steps.
void StressRound(const Dll& dll, const TempDir& dir, const int kSteps, const std::wstring& round) {
    BoxRecorder boxes;
    const int kThreads = 8;
    const int kBlockInts = 16;
    void* shared = dll.createAlways((dir / (round + L"shared.bin")).c_str(), 0xFFFFFFFFul, 0xFFFFFFFFul);
    ASSERT_NE(shared, nullptr);

    std::vector<std::vector<std::string>> errors(kThreads);
    std::vector<std::vector<int>> models(kThreads);
    std::vector<int> blocksWritten(kThreads, 0);
    RunThreads(kThreads, [&](int t) {
        std::mt19937 random(1000 + t);
        std::vector<std::string>& error = errors[t];
        std::vector<int>& model = models[t];
        const std::wstring path = dir / (round + L"private" + std::to_wstring(t) + L".bin");
        void* h = dll.createAlways(path.c_str(), 0xFFFFFFFFul, 0xFFFFFFFFul);
        if (h == nullptr) {
            error.push_back("create failed");
            return;
        }
        for (int step = 0; step < kSteps && error.empty(); ++step) {
            const std::string where = "step " + std::to_string(step) + ": ";
            switch (random() % 5) {
            case 0: { // append a few values
                std::vector<int> values(1 + random() % 32);
                for (size_t k = 0; k < values.size(); ++k)
                    values[k] = (t << 24) | (step << 8) | static_cast<int>(k);
                dll.end(h, 0);
                if (dll.writeInts(h, values.data(), values.size(), 0, values.size()) != values.size())
                    error.push_back(where + "append");
                model.insert(model.end(), values.begin(), values.end());
                break;
            }
            case 1: { // read a slice back
                if (model.empty())
                    break;
                const size_t start = random() % model.size();
                const size_t n = std::min<size_t>(1 + random() % 16, model.size() - start);
                std::vector<int> back(n, -1);
                if (dll.begin(h, static_cast<int>(start * 4)) != static_cast<__int64>(start * 4) ||
                    dll.readInts(h, back.data(), n, 0, n) != n ||
                    !std::equal(back.begin(), back.end(), model.begin() + start))
                    error.push_back(where + "read back");
                break;
            }
            case 2: { // cut the file
                const size_t keep = model.empty() ? 0 : random() % (model.size() + 1);
                dll.resize(h, keep * 4);
                model.resize(keep);
                if (dll.size(h) != keep * 4)
                    error.push_back(where + "resize");
                break;
            }
            case 3: // close and open again
                dll.close(h);
                h = dll.openExisting(path.c_str(), 0xFFFFFFFFul, 0xFFFFFFFFul);
                if (h == nullptr)
                    error.push_back(where + "reopen");
                break;
            default: { // one tagged block on the shared handle
                int block[kBlockInts];
                const int sequence = blocksWritten[t]++;
                block[0] = 0x5A000000 | t;
                block[1] = sequence;
                int sum = block[0] ^ block[1];
                for (int k = 2; k < kBlockInts - 1; ++k) {
                    block[k] = t * 1000003 + sequence * 7 + k;
                    sum ^= block[k];
                }
                block[kBlockInts - 1] = sum;
                if (dll.writeInts(shared, block, kBlockInts, 0, kBlockInts) != static_cast<u64>(kBlockInts))
                    error.push_back(where + "shared block");
            }
            }
        }
        dll.close(h);
    });
    dll.close(shared);

    for (int t = 0; t < kThreads; ++t) {
        SCOPED_TRACE(t);
        EXPECT_EQ(errors[t], std::vector<std::string>());
        EXPECT_EQ(ReadFileBytes(dir / (round + L"private" + std::to_wstring(t) + L".bin")),
                  IntBytes(models[t]));
    }
    // The shared file holds whole blocks only, each (thread, sequence) exactly once.
    const std::string bytes = ReadFileBytes(dir / (round + L"shared.bin"));
    ASSERT_EQ(bytes.size() % (kBlockInts * 4), 0u);
    std::map<int, std::vector<int>> seen;
    for (size_t offset = 0; offset < bytes.size(); offset += kBlockInts * 4) {
        int block[kBlockInts];
        std::memcpy(block, bytes.data() + offset, sizeof(block));
        int sum = 0;
        for (int k = 0; k < kBlockInts - 1; ++k)
            sum ^= block[k];
        ASSERT_EQ(block[0] & 0x7F000000, 0x5A000000) << "torn block at " << offset;
        ASSERT_EQ(sum, block[kBlockInts - 1]) << "torn block at " << offset;
        seen[block[0] & 0xFF].push_back(block[1]);
    }
    int total = 0;
    for (int t = 0; t < kThreads; ++t) {
        std::vector<int>& sequences = seen[t];
        std::sort(sequences.begin(), sequences.end());
        ASSERT_EQ(sequences.size(), static_cast<size_t>(blocksWritten[t]));
        for (int s = 0; s < blocksWritten[t]; ++s)
            EXPECT_EQ(sequences[s], s);
        total += blocksWritten[t];
    }
    EXPECT_GT(total, kThreads * kSteps / 10);
    EXPECT_TRUE(boxes.Boxes().empty()) << Narrow(boxes.Boxes()[0].text);
}

TEST_F(Reliability, EightThreadsKeepTheirFilesAndTheSharedFileWhole) {
    // The first round also lets the system make what it keeps for contended locks and threads;
    // the second must end with exactly the handles it started with.
    StressRound(dll, dir, 60, L"first-");
    const size_t handlesBefore = HandleCount();
    StressRound(dll, dir, 300, L"second-");
    EXPECT_EQ(HandleCount(), handlesBefore);
}

// One thread writes and reads a handle in a loop while another closes it: the loop's later calls
// fail with a box and the neutral result, never with wrong data.
TEST_F(Reliability, CloseWhileInUseFailsCleanly) {
    BoxRecorder boxes;
    void* h = dll.createAlways((dir / L"race.bin").c_str(), 0xFFFFFFFFul, 0xFFFFFFFFul);
    ASSERT_NE(h, nullptr);
    std::atomic<int> progress{0};
    std::vector<std::string> wrong;
    int failures = 0;
    std::thread user([&] {
        for (int i = 1; i < 100000 && failures < 4; ++i) {
            const bool moved = dll.begin(h, 0) == 0;
            const int wrote = dll.writeInt(h, i);
            const bool back = dll.begin(h, 0) == 0;
            const int read = dll.readInt(h);
            // A failed read gives 0, which the loop never writes.
            if (moved && wrote == 4 && back && read != i && read != 0)
                wrong.push_back(std::to_string(i) + " read as " + std::to_string(read));
            if (!moved || wrote != 4 || !back || read == 0) {
                if (wrote != 4 && wrote != -1)
                    wrong.push_back("write gave " + std::to_string(wrote));
                ++failures;
            }
            progress = i;
        }
    });
    while (progress < 50)
        ::Sleep(0);
    dll.close(h);
    user.join();
    EXPECT_TRUE(wrong.empty()) << wrong.front();
    EXPECT_GE(failures, 4);
    const std::vector<Box> shown = boxes.Boxes();
    ASSERT_FALSE(shown.empty());
    for (const Box& box : shown) {
        const bool registry =
            box.text.find(L"Project::PtrCFile") != std::wstring::npos &&
            (box.text.find(L"\nНеверный системный дескриптор файла.\n") != std::wstring::npos ||
             box.text.find(L"\nМассив классов не инициализирован.") != std::wstring::npos);
        const bool fileObject = box.text.find(L"Utils::FileHdd::") != std::wstring::npos;
        EXPECT_TRUE(registry || fileObject) << Narrow(box.text);
    }
}

// Many open and close cycles, and many failing calls, leave the handle count and the heap flat.
TEST_F(Reliability, CyclesAndFailuresLeakNeitherHandlesNorMemory) {
    const std::wstring path = dir / L"cycle.bin";
    const auto cycle = [&](int count) {
        for (int i = 0; i < count; ++i) {
            void* h = dll.openAlways(path.c_str(), 0xFFFFFFFFul, 0xFFFFFFFFul);
            dll.writeInt(h, i);
            dll.close(h);
        }
    };
    const auto fail = [&](int count) {
        for (int i = 0; i < count; ++i) {
            dll.writeInt(reinterpret_cast<void*>(0x4444), i);                       // unknown handle
            dll.openExisting((dir / L"missing.bin").c_str(), 0xFFFFFFFFul, 0);      // the system refuses
            dll.openAlways((dir / L"a|b.bin").c_str(), 0xFFFFFFFFul, 0xFFFFFFFFul); // the path rules refuse
        }
    };
    size_t handles[2] = {};
    size_t heap[2] = {};
    size_t refused = 0;
    // On a thread of its own: the refused boxes leave nothing behind on the test's main thread.
    RunThreads(1, [&](int) {
        BoxSuppressor suppressor;
        cycle(100); // warm-up: lazily made tables and buffers
        fail(100);
        handles[0] = HandleCount();
        heap[0] = HeapBytes();
        cycle(10000);
        fail(3334);
        handles[1] = HandleCount();
        heap[1] = HeapBytes();
        refused = suppressor.Count();
    });
    EXPECT_EQ(refused, 3u * 3434u);
    EXPECT_EQ(handles[1], handles[0]);
    // A leak of a few bytes per call would show as hundreds of kilobytes here.
    EXPECT_LT(heap[1], heap[0] + 64 * 1024);
}

// Refused writes: a read-only handle and a second open against a share mode. What was written
// before stays as it was.
TEST_F(Reliability, RefusedWritesLoseNothing) {
    BoxRecorder boxes;
    const std::wstring path = dir / L"kept.bin";
    void* writer = dll.createAlways(path.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ);
    ASSERT_NE(writer, nullptr);
    int values[4] = {1, 2, 3, 4};
    ASSERT_EQ(dll.writeInts(writer, values, 4, 0, 4), 4u);
    dll.flush(writer);

    // A second writer is refused by the share mode; the first one keeps working.
    EXPECT_EQ(
        dll.openExisting(path.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE),
        nullptr);
    ASSERT_EQ(boxes.Boxes().size(), 1u);
    EXPECT_NE(boxes.Boxes()[0].text.find(L"Last Error"), std::wstring::npos)
        << "[" << Narrow(boxes.Boxes()[0].caption) << "] " << boxes.Boxes()[0].text.size() << " "
        << Narrow(boxes.Boxes()[0].text);
    dll.close(writer);

    // A read-only handle refuses writes with the file object's text.
    boxes.Clear();
    void* reader = dll.openExisting(path.c_str(), GENERIC_READ, FILE_SHARE_READ);
    ASSERT_NE(reader, nullptr);
    EXPECT_EQ(dll.writeInt(reader, 99), -1);
    EXPECT_EQ(dll.writeInts(reader, values, 4, 0, 4), ~0ull);
    ASSERT_EQ(boxes.Boxes().size(), 2u);
    EXPECT_NE(boxes.Boxes()[0].text.find(L"не записаны данные в файл"), std::wstring::npos);
    EXPECT_EQ(dll.readInt(reader), 1);
    dll.close(reader);
    EXPECT_EQ(ReadFileBytes(path), IntBytes({1, 2, 3, 4}));
}

// The named event that every object of a path meets, as the library names it.
std::wstring EventName(std::wstring path) {
    std::replace(path.begin(), path.end(), L'\\', L'_');
    u64 crc = ~0ull;
    const unsigned char* bytes = reinterpret_cast<const unsigned char*>(path.data());
    for (size_t i = 0; i < path.size() * 2; ++i) {
        crc ^= bytes[i];
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 1) ? (crc >> 1) ^ 0xC96C5795D7870F42ull : crc >> 1;
    }
    crc = ~crc;
    wchar_t hex[24] = {};
    std::swprintf(hex, 24, L"%llX", crc);
    return L"Utils::FileHdd_Event_" + std::wstring(hex);
}

const wchar_t kChildVariable[] = L"TOVARIN_TEST_CHILD_PATH";

// Runs in the second process only (started by the test below): opens the parent's file through
// the library, meets the parent's event, writes and flushes.
TEST(ReliabilityChild, DISABLED_WritesThroughTheLibrary) {
    wchar_t path[1024] = {};
    ASSERT_NE(::GetEnvironmentVariableW(kChildVariable, path, 1024), 0u);
    HANDLE event = ::OpenEventW(SYNCHRONIZE, FALSE, EventName(path).c_str());
    ASSERT_NE(event, nullptr) << "the parent's event is not reachable";
    ::CloseHandle(event);
    Dll dll;
    void* h = dll.openExisting(path, 0xFFFFFFFFul, 0xFFFFFFFFul);
    ASSERT_NE(h, nullptr);
    dll.end(h, 0);
    int values[3] = {7, 8, 9};
    ASSERT_EQ(dll.writeInts(h, values, 3, 0, 3), 3u);
    dll.flush(h);
    dll.close(h);
}

TEST_F(Reliability, TwoProcessesMeetOneEventAndShareWrites) {
    BoxRecorder boxes;
    const std::wstring path = dir / L"two.bin";
    void* h = dll.createAlways(path.c_str(), 0xFFFFFFFFul, 0xFFFFFFFFul);
    ASSERT_NE(h, nullptr);
    ASSERT_EQ(dll.writeInt(h, 6), 4);
    dll.flush(h);

    wchar_t self[MAX_PATH] = {};
    ::GetModuleFileNameW(nullptr, self, MAX_PATH);
    std::wstring command = L"\"" + std::wstring(self) +
                           L"\" --gtest_also_run_disabled_tests "
                           L"--gtest_filter=ReliabilityChild.DISABLED_WritesThroughTheLibrary";
    ::SetEnvironmentVariableW(kChildVariable, path.c_str());
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION child = {};
    ASSERT_TRUE(::CreateProcessW(nullptr, &command[0], nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                                 &child));
    ::SetEnvironmentVariableW(kChildVariable, nullptr);
    ASSERT_EQ(::WaitForSingleObject(child.hProcess, 60000), WAIT_OBJECT_0) << "the second process hangs";
    DWORD exitCode = 1;
    ::GetExitCodeProcess(child.hProcess, &exitCode);
    ::CloseHandle(child.hThread);
    ::CloseHandle(child.hProcess);
    EXPECT_EQ(exitCode, 0u);

    // What the other process wrote and flushed reads here, through the handle kept open.
    EXPECT_EQ(dll.size(h), 16u);
    EXPECT_EQ(dll.begin(h, 4), 4);
    int back[3] = {};
    EXPECT_EQ(dll.readInts(h, back, 3, 0, 3), 3u);
    EXPECT_EQ(back[0] * 100 + back[1] * 10 + back[2], 789);
    dll.close(h);
    EXPECT_TRUE(boxes.Boxes().empty());
}

// A second copy of the DLL, loaded, used, unloaded with files still open, and loaded again.
TEST_F(Reliability, UnloadWithFilesOpenAndLoadAgain) {
    wchar_t self[MAX_PATH] = {};
    ::GetModuleFileNameW(TovarinDll::Module(), self, MAX_PATH);
    const std::wstring copy = dir / L"TovarinCopy.dll";
    ASSERT_TRUE(::CopyFileW(self, copy.c_str(), FALSE));
    for (int round = 0; round < 2; ++round) {
        SCOPED_TRACE(round);
        HMODULE module = ::LoadLibraryW(copy.c_str());
        ASSERT_NE(module, nullptr);
        const auto create = reinterpret_cast<decltype(&::FileCreateAlwaysW)>(
            reinterpret_cast<void*>(::GetProcAddress(module, "FileCreateAlwaysW")));
        const auto write = reinterpret_cast<decltype(&::FileWriteInt)>(
            reinterpret_cast<void*>(::GetProcAddress(module, "FileWriteInt")));
        const auto flush = reinterpret_cast<decltype(&::FileFlushApply)>(
            reinterpret_cast<void*>(::GetProcAddress(module, "FileFlushApply")));
        ASSERT_TRUE(create != nullptr && write != nullptr && flush != nullptr);
        const std::wstring path = dir / (L"unload" + std::to_wstring(round) + L".bin");
        void* h = create(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0); // shared with nobody
        ASSERT_NE(h, nullptr);
        EXPECT_EQ(write(h, 1234 + round), 4);
        flush(h);
        EXPECT_TRUE(::FreeLibrary(module));
        // The unloaded library closed the file it left open: nobody holds it any more.
        HANDLE again =
            ::CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
        EXPECT_NE(again, INVALID_HANDLE_VALUE);
        ::CloseHandle(again);
        EXPECT_EQ(ReadFileBytes(path), IntBytes({1234 + round}));
    }
}

} // namespace
