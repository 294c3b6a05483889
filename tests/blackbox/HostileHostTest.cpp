// A hostile host: every export called with bad handles, null pointers, absurd sizes and bad paths.
// Each call must return within a bounded time; a call that shows a box shows exactly one, naming
// the export, and returns the export's neutral result; and a file opened before the storm keeps
// its content and keeps working afterwards.
#include "include/Tovarin.h"
#include "support/BoxRecorder.h"
#include "support/ExportTable.h"
#include "support/TempDir.h"
#include "support/TovarinDll.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

using namespace TestSupport;

namespace {

typedef unsigned __int64 u64;

// One argument as the storm sets it; the caller converts it to the parameter's C type.
struct Slot {
    u64 bits = 0;
    double real = 0;
    void* pointer = nullptr;
};

struct Outcome {
    u64 bits = 0; // the result in its width, zero-extended (0 for void)
    bool returned = false;
};

template <class T> T FromSlot(const Slot& slot) {
    if constexpr (std::is_pointer<T>::value)
        return reinterpret_cast<T>(slot.pointer);
    else if constexpr (std::is_floating_point<T>::value)
        return static_cast<T>(slot.real);
    else
        return static_cast<T>(slot.bits);
}

template <class R> u64 ToBits(R value) {
    if constexpr (std::is_pointer<R>::value) {
        return reinterpret_cast<u64>(value);
    } else if constexpr (std::is_floating_point<R>::value) {
        u64 bits = 0;
        std::memcpy(&bits, &value, sizeof(R));
        return bits;
    } else if constexpr (std::is_same<R, bool>::value) {
        return value ? 1 : 0;
    } else {
        return static_cast<u64>(static_cast<std::make_unsigned_t<R>>(value));
    }
}

template <class F> struct Caller;

template <class R, class... A> struct Caller<R(__cdecl*)(A...)> {
    template <size_t... I> static Outcome Call(FARPROC proc, const Slot* slots, std::index_sequence<I...>) {
        typedef R(__cdecl * F)(A...);
        const F f = reinterpret_cast<F>(reinterpret_cast<void*>(proc));
        Outcome outcome;
        if constexpr (std::is_void<R>::value)
            f(FromSlot<A>(slots[I])...);
        else
            outcome.bits = ToBits(f(FromSlot<A>(slots[I])...));
        outcome.returned = true;
        return outcome;
    }
    static Outcome Run(FARPROC proc, const Slot* slots) {
        return Call(proc, slots, std::index_sequence_for<A...>{});
    }
};

typedef Outcome (*Runner)(FARPROC, const Slot*);

// The runner of each export, typed from the public header's declaration.
#define TOVARIN_RUNNER(name, ...) {#name, &Caller<decltype(&::name)>::Run},
struct NamedRunner {
    const char* name;
    Runner run;
};
const NamedRunner kRunners[] = {TOVARIN_EXPORTS(TOVARIN_RUNNER)};
#undef TOVARIN_RUNNER

Runner RunnerOf(const char* name) {
    for (const NamedRunner& r : kRunners)
        if (std::strcmp(r.name, name) == 0)
            return r.run;
    return nullptr;
}

// Runs one call on a worker thread and waits a bounded time for it.
struct Job {
    Runner run;
    FARPROC proc;
    const Slot* slots;
    Outcome outcome;
};

DWORD WINAPI RunJob(void* param) {
    Job* job = static_cast<Job*>(param);
    job->outcome = job->run(job->proc, job->slots);
    return 0;
}

bool RunBounded(Job& job, DWORD timeoutMs) {
    HANDLE thread = ::CreateThread(nullptr, 0, RunJob, &job, 0, nullptr);
    if (thread == nullptr)
        return false;
    const bool done = ::WaitForSingleObject(thread, timeoutMs) == WAIT_OBJECT_0;
    if (done)
        ::CloseHandle(thread);
    return done; // a hung call keeps its thread: the test fails and the process ends with it
}

std::wstring Widen(const char* text) {
    std::wstring out;
    for (const char* p = text; *p; ++p)
        out += static_cast<wchar_t>(static_cast<unsigned char>(*p));
    return out;
}

bool HasPointerKind(Arg kind) {
    return kind == Arg::TextA || kind == Arg::TextW || kind == Arg::PtrArray || kind == Arg::MqlStrA ||
           kind == Arg::MqlStrW || kind == Arg::VoidPtr;
}

#pragma pack(push, 1)
struct RecordA {
    int length;
    char* pointer;
};
struct RecordW {
    int length;
    wchar_t* pointer;
};
#pragma pack(pop)

const u64 kBig = 1ull << 63;
const u64 kAll = ~0ull;
const size_t kBufferBytes = 4096;
const size_t kLines = 4;
const char kScratch[] = "0123456789abcdef0123456789abcdef\r\n0123456789abcdef\r\nABCDEF\r\n";

// The memory a call may touch: line buffers, a table of pointers to them, host string records.
// Each buffer is followed by an inaccessible page, so that a transfer running past it fails at once.
class CallMemory {
public:
    CallMemory() {
        const size_t page = 4096;
        const size_t stride = kBufferBytes + page;
        base_ = static_cast<char*>(
            ::VirtualAlloc(nullptr, stride * kLines, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
        for (size_t i = 0; i < kLines; ++i) {
            DWORD old = 0;
            ::VirtualProtect(base_ + i * stride + kBufferBytes, page, PAGE_NOACCESS, &old);
            lines_[i] = base_ + i * stride;
            table_[i] = lines_[i];
            recordsA_[i] = RecordA{static_cast<int>(kBufferBytes), lines_[i]};
            recordsW_[i] = RecordW{static_cast<int>(kBufferBytes / 2), reinterpret_cast<wchar_t*>(lines_[i])};
        }
    }
    ~CallMemory() { ::VirtualFree(base_, 0, MEM_RELEASE); }
    CallMemory(const CallMemory&) = delete;
    CallMemory& operator=(const CallMemory&) = delete;

    void* Pointer(Arg kind, Family family) {
        switch (kind) {
        case Arg::MqlStrA:
            return recordsA_;
        case Arg::MqlStrW:
            return recordsW_;
        case Arg::PtrArray:
            return family == Family::StrArray ? static_cast<void*>(table_) : lines_[0];
        default:
            return lines_[0];
        }
    }

private:
    char* base_;
    char* lines_[kLines];
    void* table_[kLines];
    RecordA recordsA_[kLines];
    RecordW recordsW_[kLines];
};

// What a storm call varies: one argument, set to one value.
struct Variation {
    size_t index;
    Slot value;
    std::string label;
};

class HostileHost : public testing::Test {
protected:
    // The benign value of argument `index` of `info`: a live scratch handle, a fresh path in the
    // test folder, small counts that make a valid slice, pointers into CallMemory.
    Slot Benign(const ExportInfo& info, size_t index, void* handle, CallMemory& memory,
                const std::wstring& pathW, const std::string& pathA) {
        Slot slot;
        const Arg kind = info.args[index];
        switch (kind) {
        case Arg::Handle:
            slot.pointer = handle;
            break;
        case Arg::TextW:
            slot.pointer = const_cast<wchar_t*>(pathW.c_str());
            break;
        case Arg::TextA:
            slot.pointer = const_cast<char*>(pathA.c_str());
            break;
        case Arg::Float:
        case Arg::Double:
            slot.real = 1.0;
            break;
        case Arg::ULong:
            slot.bits = 0xFFFFFFFFul;
            break;
        case Arg::UInt64:
            slot.bits = BenignCount(info, index);
            break;
        default:
            if (HasPointerKind(kind))
                slot.pointer = memory.Pointer(kind, info.family);
            else
                slot.bits = 1;
        }
        return slot;
    }

    // Slices: size 4, start 0, count 1 (string-array readers: size 4, capacity, start 0, count 1).
    static u64 BenignCount(const ExportInfo& info, size_t index) {
        if (info.family != Family::Array && info.family != Family::StrArray)
            return 1;
        size_t firstCount = 0;
        while (info.args[firstCount] != Arg::UInt64)
            ++firstCount;
        const size_t countArgs = info.argCount - firstCount;
        const size_t position = index - firstCount;
        if (countArgs == 4) {
            const u64 values[] = {kLines, kBufferBytes / 2, 0, 1};
            return values[position];
        }
        const u64 values[] = {kLines, 0, 1};
        return values[position];
    }

    // Makes a scratch file through the library and returns its handle.
    void* OpenScratch(const std::wstring& path) {
        EXPECT_TRUE(WriteFileBytes(path, kScratch));
        static const auto open =
            TovarinDll::Get<void* (*)(const wchar_t*, unsigned long, unsigned long)>("FileOpenExistingW");
        return open(path.c_str(), 0xFFFFFFFFul, 0xFFFFFFFFul);
    }

    // One call of `info` with `variation` applied; checks the invariants and cleans up.
    void Storm(const ExportInfo& info, const Variation& variation, bool failureExpected) {
        SCOPED_TRACE(std::string(info.name) + " with " + variation.label);
        const std::wstring scratchPath = dir / (L"scratch" + std::to_wstring(++calls) + L".bin");
        void* scratch = OpenScratch(scratchPath);
        ASSERT_NE(scratch, nullptr);
        CallMemory memory;
        const std::wstring pathW = dir / (L"target" + std::to_wstring(calls) + L".bin");
        const std::string pathA = Narrow(pathW);
        Slot slots[kMaxArgs];
        for (size_t i = 0; i < info.argCount; ++i)
            slots[i] = Benign(info, i, scratch, memory, pathW, pathA);
        slots[variation.index] = variation.value;

        boxes.Clear();
        Job job{RunnerOf(info.name), ::GetProcAddress(TovarinDll::Module(), info.name), slots, {}};
        ASSERT_NE(job.run, nullptr);
        ASSERT_TRUE(RunBounded(job, 20000)) << "the call did not return";
        const std::vector<Box> shown = boxes.Boxes();
        ASSERT_LE(shown.size(), 1u);
        if (!shown.empty()) {
            ++refused;
            EXPECT_NE(shown[0].text.find(L"\"" + Widen(info.signature) + L"\"!"), std::wstring::npos)
                << Narrow(shown[0].text);
            if (info.result != Result::Void) {
                EXPECT_EQ(job.outcome.bits, info.neutralBits) << Narrow(shown[0].text);
            }
        } else {
            EXPECT_FALSE(failureExpected) << "no box for a call that must fail";
        }
        if (failureExpected && info.result != Result::Void) {
            EXPECT_EQ(job.outcome.bits, info.neutralBits);
        }

        // A handle that an open export returned is the caller's to close.
        static const auto close = TovarinDll::Get<void (*)(void*)>("FileCloseHandle");
        if (info.family == Family::Open && shown.empty() && job.outcome.bits != 0)
            close(reinterpret_cast<void*>(job.outcome.bits));
        close(scratch); // may already be closed by the call: then a box, which is forgotten here
        boxes.Clear();
    }

    TempDir dir;
    BoxRecorder boxes;
    int calls = 0;
    int refused = 0;
};

std::vector<std::pair<std::wstring, std::string>> BadPaths(const std::wstring& folder) {
    std::vector<std::pair<std::wstring, std::string>> paths;
    paths.push_back({L"", "empty path"});
    paths.push_back({folder + L"\\" + std::wstring(300, L'a') + L".bin", "300-character path"});
    paths.push_back({folder + L"\\CON", "reserved name"});
    paths.push_back({folder + L"\\a|b.bin", "forbidden character"});
    paths.push_back({folder + L"\\trailing. ", "trailing space"});
    return paths;
}

// Keeps the current folder on the test's folder while it lives: a copy or move to an empty target
// path goes to the current folder, and that must stay inside the test's folder.
class CurrentFolder {
public:
    explicit CurrentFolder(const std::wstring& folder) {
        wchar_t previous[MAX_PATH] = {};
        ::GetCurrentDirectoryW(MAX_PATH, previous);
        previous_ = previous;
        ::SetCurrentDirectoryW(folder.c_str());
    }
    ~CurrentFolder() { ::SetCurrentDirectoryW(previous_.c_str()); }

private:
    std::wstring previous_;
};

TEST_F(HostileHost, EveryExportSurvivesTheStormAndTheLibraryStaysUsable) {
    const CurrentFolder current(dir.Path());
    // A file opened before the storm, with known content.
    const auto createAlways =
        TovarinDll::Get<void* (*)(const wchar_t*, unsigned long, unsigned long)>("FileCreateAlwaysW");
    const auto writeInts = TovarinDll::Get<u64 (*)(void*, int*, u64, u64, u64)>("FileWriteIntArray");
    const auto readInts = TovarinDll::Get<u64 (*)(void*, int*, u64, u64, u64)>("FileReadIntArray");
    const auto begin = TovarinDll::Get<__int64 (*)(void*, int)>("FileSetPointerBegin");
    const auto closeHandle = TovarinDll::Get<void (*)(void*)>("FileCloseHandle");
    void* sentinel = createAlways((dir / L"sentinel.bin").c_str(), 0xFFFFFFFFul, 0xFFFFFFFFul);
    ASSERT_NE(sentinel, nullptr);
    int known[64];
    for (int i = 0; i < 64; ++i)
        known[i] = i * 7919;
    ASSERT_EQ(writeInts(sentinel, known, 64, 0, 64), 64u);

    // A handle that was issued and closed. The system would give its value to the next file that
    // the storm opens, so an event of the test holds the value for the rest of the storm.
    void* closed = OpenScratch(dir / L"closed.bin");
    ASSERT_NE(closed, nullptr);
    closeHandle(closed);
    std::vector<HANDLE> placeholders;
    while (placeholders.size() < 256 && (placeholders.empty() || placeholders.back() != closed))
        placeholders.push_back(::CreateEventW(nullptr, FALSE, FALSE, nullptr));
    ASSERT_EQ(placeholders.back(), closed) << "the closed handle's value could not be held";
    placeholders.pop_back();
    for (HANDLE extra : placeholders)
        ::CloseHandle(extra);

    const std::vector<std::pair<Slot, std::string>> handles = {
        {Slot{0, 0, nullptr}, "handle 0"},
        {Slot{0, 0, INVALID_HANDLE_VALUE}, "INVALID_HANDLE_VALUE"},
        {Slot{0, 0, reinterpret_cast<void*>(0x7FFF1234)}, "a handle never issued"},
        {Slot{0, 0, closed}, "a closed handle"},
    };
    const u64 sizes[] = {0, 1, kBig, kAll};
    const std::vector<std::pair<std::wstring, std::string>> paths = BadPaths(dir.Path());
    // A lone UTF-16 surrogate for the wide exports, and bytes the code page leaves undefined for
    // the 8-bit ones.
    const std::wstring surrogate = dir / L"x\xD800y.bin";
    const std::string undefinedBytes = Narrow(dir.Path()) + "\\x\x81\x8D\x8F\x90\x9D.bin";

    for (const ExportInfo& info : kExports) {
        for (size_t i = 0; i < info.argCount; ++i) {
            const Arg kind = info.args[i];
            if (kind == Arg::Handle) {
                for (const auto& h : handles) {
                    Storm(info, Variation{i, h.first, h.second}, true);
                }
            }
            if (HasPointerKind(kind))
                Storm(info, Variation{i, Slot{}, "a null pointer in argument " + std::to_string(i + 1)},
                      false);
            if (kind == Arg::UInt64) {
                for (const u64 size : sizes) {
                    Storm(info,
                          Variation{i, Slot{size, 0, nullptr},
                                    "argument " + std::to_string(i + 1) + " = " + std::to_string(size)},
                          false);
                }
            }
            if (kind == Arg::TextW) {
                for (const auto& p : paths) {
                    Storm(info, Variation{i, Slot{0, 0, const_cast<wchar_t*>(p.first.c_str())}, p.second},
                          false);
                }
                Storm(info,
                      Variation{i, Slot{0, 0, const_cast<wchar_t*>(surrogate.c_str())}, "lone surrogate"},
                      false);
            }
            if (kind == Arg::TextA) {
                std::vector<std::string> narrow;
                for (const auto& p : paths)
                    narrow.push_back(Narrow(p.first));
                for (size_t k = 0; k < paths.size(); ++k) {
                    Storm(info,
                          Variation{i, Slot{0, 0, const_cast<char*>(narrow[k].c_str())}, paths[k].second},
                          false);
                }
                Storm(info,
                      Variation{i, Slot{0, 0, const_cast<char*>(undefinedBytes.c_str())},
                                "bytes outside the code page"},
                      false);
            }
        }
    }

    // Every export met the storm; the bad handles alone refuse 4 calls per handle argument.
    std::printf("storm: %d calls, %d refused with a box\n", calls, refused);
    EXPECT_GT(calls, 900);
    EXPECT_GT(refused, 400);

    // The sentinel still reads back what was written before the storm, and still takes writes.
    boxes.Clear();
    EXPECT_EQ(begin(sentinel, 0), 0);
    int back[64] = {};
    EXPECT_EQ(readInts(sentinel, back, 64, 0, 64), 64u);
    EXPECT_EQ(std::memcmp(back, known, sizeof(known)), 0);
    EXPECT_EQ(writeInts(sentinel, known, 64, 0, 1), 1u);
    closeHandle(sentinel);
    ::CloseHandle(closed); // the placeholder event
    EXPECT_TRUE(boxes.Boxes().empty());
    std::string expected(reinterpret_cast<const char*>(known), sizeof(known));
    expected.append(reinterpret_cast<const char*>(known), sizeof(int));
    EXPECT_EQ(ReadFileBytes(dir / L"sentinel.bin"), expected);
}

} // namespace
