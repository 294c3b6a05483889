// The cost of a call through Tovarin.dll against the raw Win32 calls that do the same work on the
// same kind of handle, measured in one run. Every figure is a ratio: the median, over pairs of
// runs made back to back (the side that goes first alternating), of Tovarin's time over the raw
// time, so that drift of the machine hits both alike. Contents are checked after every run (and
// values as they are read), so that no work can be skipped.
//
//   TovarinBench                 the full run (under five minutes), prints the table
//   TovarinBench --smoke         tiny sizes and one repetition: checks that every case still runs
//                                and verifies, and that the allocation-free paths stay so; timings
//                                mean nothing
//   TovarinBench --only a,b      only the named cases: scalar, bulk, strings, open, threads, text
//
// Exit code: 0 when every check passed, 1 otherwise (targets missed in a full run are reported,
// not failed: shared machines are noisy).
#include "ImportCounter.h"
#include "KitText.h"
#include "include/Tovarin.h"

#include <windows.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstring>
#include <cwchar>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

// ---- Sizes --------------------------------------------------------------------------------------

struct Sizes {
    unsigned scalarCalls; // single-value calls per run
    size_t bulkBytes;     // bytes of one array transfer
    unsigned lines;       // lines of one string array
    unsigned opens;       // open-and-close pairs per run
    unsigned threadCalls; // single-value calls per thread and run
    int repetitions;      // timed runs per side, after one warm-up run
    unsigned textLines;   // lines of 40 characters through the kit
};

const Sizes kFull = {1000000, 64u << 20, 100000, 2000, 300000, 7, 1000000};
const Sizes kSmoke = {2000, 1u << 20, 1000, 20, 2000, 1, 1000};

// ---- Clock, medians ------------------------------------------------------------------------------

double Now() {
    static const double frequency = [] {
        LARGE_INTEGER f;
        ::QueryPerformanceFrequency(&f);
        return static_cast<double>(f.QuadPart);
    }();
    LARGE_INTEGER t;
    ::QueryPerformanceCounter(&t);
    return static_cast<double>(t.QuadPart) / frequency;
}

double Median(std::vector<double> values) {
    if (values.empty())
        return 0.0;
    std::sort(values.begin(), values.end());
    const size_t middle = values.size() / 2;
    return values.size() % 2 != 0 ? values[middle] : (values[middle - 1] + values[middle]) / 2.0;
}

// The median of `values` with their smallest and largest.
struct Spread {
    double median;
    double low;
    double high;
};

Spread SpreadOf(const std::vector<double>& values) {
    if (values.empty())
        return {0.0, 0.0, 0.0};
    return {Median(values), *std::min_element(values.begin(), values.end()),
            *std::max_element(values.begin(), values.end())};
}

// ---- Failures -----------------------------------------------------------------------------------

int g_failures = 0;

void Fail(const char* where, const char* what) {
    ++g_failures;
    std::fprintf(stderr, "FAILED: %s: %s\n", where, what);
}

// A failing export shows a box that waits for a click: this thread notes and closes every box of
// the process, so that a failure shows up as a failed check instead of a hang.
class BoxWatch {
public:
    BoxWatch() : stop_(::CreateEventW(nullptr, TRUE, FALSE, nullptr)), thread_([this] { Run(); }) {}
    ~BoxWatch() {
        ::SetEvent(stop_);
        thread_.join();
        ::CloseHandle(stop_);
    }
    int Seen() const { return seen_.load(); }

private:
    static BOOL CALLBACK Close(HWND window, LPARAM param) {
        DWORD process = 0;
        ::GetWindowThreadProcessId(window, &process);
        wchar_t name[16] = {};
        ::GetClassNameW(window, name, 16);
        if (process != ::GetCurrentProcessId() || std::wcscmp(name, L"#32770") != 0 ||
            !::IsWindowVisible(window))
            return TRUE;
        wchar_t text[2048] = {};
        DWORD_PTR copied = 0;
        if (HWND label = ::GetDlgItem(window, 0xFFFF))
            ::SendMessageTimeoutW(label, WM_GETTEXT, 2048, reinterpret_cast<LPARAM>(text), SMTO_ABORTIFHUNG,
                                  1000, &copied);
        std::fprintf(stderr, "failure box: %ls\n", text);
        ++reinterpret_cast<BoxWatch*>(param)->seen_;
        ::PostMessageW(window, WM_COMMAND, IDOK, 0);
        return TRUE;
    }
    void Run() {
        // Rarely enough not to disturb the measurements.
        while (::WaitForSingleObject(stop_, 200) == WAIT_TIMEOUT)
            ::EnumWindows(Close, reinterpret_cast<LPARAM>(this));
    }

    HANDLE stop_;
    std::atomic<int> seen_{0};
    std::thread thread_;
};

// ---- Raw file helpers (the untimed set-up and checks of both sides) -----------------------------

void Rewind(void* handle) {
    ::SetFilePointer(handle, 0, nullptr, FILE_BEGIN);
}

// Empties the file and lets the system finish with it, so that no write-back of an earlier run is
// under way while the next one is timed.
void Truncate(void* handle) {
    Rewind(handle);
    ::SetEndOfFile(handle);
    ::FlushFileBuffers(handle);
}

// The whole file, read through `handle` from the start; the pointer ends at the end.
std::vector<unsigned char> Contents(void* handle) {
    LARGE_INTEGER size = {};
    ::GetFileSizeEx(handle, &size);
    std::vector<unsigned char> bytes(static_cast<size_t>(size.QuadPart));
    Rewind(handle);
    DWORD done = 0;
    if (!bytes.empty() &&
        (!::ReadFile(handle, bytes.data(), static_cast<DWORD>(bytes.size()), &done, nullptr) ||
         done != bytes.size()))
        bytes.clear();
    return bytes;
}

bool HoldsCounter(void* handle, const unsigned count) {
    const std::vector<unsigned char> bytes = Contents(handle);
    if (bytes.size() != count * sizeof(int))
        return false;
    for (unsigned i = 0; i < count; ++i) {
        int value = 0;
        std::memcpy(&value, &bytes[i * sizeof(int)], sizeof(int));
        if (value != static_cast<int>(i))
            return false;
    }
    return true;
}

bool Holds(void* handle, const void* expected, const size_t size) {
    const std::vector<unsigned char> bytes = Contents(handle);
    return bytes.size() == size && std::memcmp(bytes.data(), expected, size) == 0;
}

HANDLE RawOpen(const std::wstring& path, const DWORD disposition) {
    return ::CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                         nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
}

// ---- One comparison ------------------------------------------------------------------------------

struct Side {
    std::function<void()> prepare; // untimed, before every run
    std::function<bool()> run;     // timed; false when a call reported a failure
    std::function<bool()> verify;  // untimed, after every run
};

struct Outcome {
    double tovarin; // median seconds of one run
    double raw;
    Spread ratio;              // over the pairs of runs, of Tovarin's time / raw time
    double allocationsPerCall; // Tovarin's heap allocations per export call in the timed runs
};

// One warm-up run of each side, then `repetitions` pairs of timed runs, the two runs of a pair
// back to back and the side that goes first alternating. A pair sees the same state of the
// machine, so the median of the pairs' ratios is steadier than the ratio of the medians.
Outcome Compare(const char* name, const Side& tovarin, const Side& raw, const int repetitions,
                const unsigned callsPerRun) {
    std::vector<double> times[2];
    std::vector<double> ratios;
    unsigned long long allocations = 0;
    for (int r = -1; r < repetitions; ++r) {
        double pair[2] = {0.0, 0.0};
        for (int k = 0; k < 2; ++k) {
            const bool isTovarin = (k == 0) == (r % 2 == 0);
            const Side& side = isTovarin ? tovarin : raw;
            side.prepare();
            const unsigned long long before = Bench::ImportCounter::Allocations();
            const double start = Now();
            const bool ran = side.run();
            const double elapsed = Now() - start;
            const unsigned long long made = Bench::ImportCounter::Allocations() - before;
            if (!ran)
                Fail(name, isTovarin ? "a Tovarin call failed" : "a raw call failed");
            if (!side.verify())
                Fail(name, isTovarin ? "file contents after Tovarin calls are wrong"
                                     : "file contents after raw calls are wrong");
            pair[isTovarin ? 0 : 1] = elapsed;
            if (r >= 0 && isTovarin) // the warm-up run does the first-use work of both sides
                allocations += made;
        }
        if (r < 0)
            continue;
        times[0].push_back(pair[0]);
        times[1].push_back(pair[1]);
        ratios.push_back(pair[1] > 0 ? pair[0] / pair[1] : 0.0);
    }
    const double calls = static_cast<double>(repetitions) * callsPerRun;
    return {Median(times[0]), Median(times[1]), SpreadOf(ratios),
            calls > 0 ? static_cast<double>(allocations) / calls : 0.0};
}

// ---- The table ------------------------------------------------------------------------------------

struct Row {
    std::string name;
    std::string perUnit; // what the two times are given for
    double tovarin;      // seconds per unit
    double raw;
    Spread ratio;
    double target;
    bool atLeast;       // the ratio must reach the target (throughput) instead of staying below
    double allocations; // per call; negative when not counted
    bool allocationsMustBeZero;
};

std::vector<Row> g_rows;

std::string Time(const double seconds) {
    char text[32];
    if (seconds < 1e-3)
        std::snprintf(text, sizeof(text), "%.3f us", seconds * 1e6);
    else
        std::snprintf(text, sizeof(text), "%.2f ms", seconds * 1e3);
    return text;
}

void Add(const std::string& name, const std::string& perUnit, const Outcome& outcome, const double units,
         const double target, const bool countAllocations, const bool mustBeZero) {
    g_rows.push_back({name, perUnit, outcome.tovarin / units, outcome.raw / units, outcome.ratio, target,
                      false, countAllocations ? outcome.allocationsPerCall : -1.0, mustBeZero});
}

void Print(const Sizes& sizes) {
    std::printf(
        "\nTovarin against raw Win32 in one run. Times: medians of %d runs per side after a warm-up run;\n"
        "ratio: median of the %d pairs' ratios (Tovarin time / raw time, the two runs of a pair back to "
        "back);\npairs: the smallest and largest of those ratios. A row named \"a | b\" has a and b in the\n"
        "time columns, given per call of all threads together; its ratio is a / b, but for \"2 threads |\n"
        "1 thread\" the throughput gain b / a\n",
        sizes.repetitions, sizes.repetitions);
    std::printf("%-46s %-10s %12s %12s %7s %11s %8s  %-22s %s\n", "case", "per", "Tovarin", "raw", "ratio",
                "pairs", "target", "result", "allocations/call");
    for (const Row& row : g_rows) {
        char target[16] = "-";
        char result[48] = "-";
        if (row.target > 0) {
            std::snprintf(target, sizeof(target), "%s%.2f", row.atLeast ? ">=" : "<=", row.target);
            const double ratio = row.ratio.median;
            const bool met = row.atLeast ? ratio >= row.target : ratio <= row.target;
            if (met)
                std::snprintf(result, sizeof(result), "met");
            else
                std::snprintf(result, sizeof(result), "MISSED by %.1f%%",
                              100.0 * (row.atLeast ? row.target / ratio - 1.0 : ratio / row.target - 1.0));
        }
        char allocations[32] = "-";
        if (row.allocations >= 0)
            std::snprintf(allocations, sizeof(allocations), "%.3g%s", row.allocations,
                          row.allocationsMustBeZero ? " (target 0)" : "");
        const std::string tovarin = row.tovarin > 0 ? Time(row.tovarin) : "-";
        const std::string raw = row.raw > 0 ? Time(row.raw) : "-";
        char pairs[32];
        std::snprintf(pairs, sizeof(pairs), "%.2f-%.2f", row.ratio.low, row.ratio.high);
        std::printf("%-46s %-10s %12s %12s %7.3f %11s %8s  %-22s %s\n", row.name.c_str(), row.perUnit.c_str(),
                    tovarin.c_str(), raw.c_str(), row.ratio.median, pairs, target, result, allocations);
    }
}

// ---- The cases ------------------------------------------------------------------------------------

struct Files {
    std::wstring folder;
    std::wstring Path(const wchar_t* name) const { return folder + L"\\" + name; }
};

// 1 and 2: one 4-byte value per call.
void ScalarCases(const Files& files, const Sizes& sizes) {
    const unsigned n = sizes.scalarCalls;
    void* const t =
        FileCreateAlwaysW(files.Path(L"scalar-tovarin.bin").c_str(), TOVARIN_DEFAULT, TOVARIN_DEFAULT);
    const HANDLE r = RawOpen(files.Path(L"scalar-raw.bin"), CREATE_ALWAYS);
    if (t == nullptr || r == INVALID_HANDLE_VALUE) {
        Fail("scalar", "the files could not be created");
        return;
    }
    const Side writeT = {[t] { Truncate(t); },
                         [t, n] {
                             unsigned bad = 0;
                             for (unsigned i = 0; i < n; ++i)
                                 bad += FileWriteInt(t, static_cast<int>(i)) != 4;
                             return bad == 0;
                         },
                         [t, n] { return HoldsCounter(t, n); }};
    const Side writeR = {[r] { Truncate(r); },
                         [r, n] {
                             unsigned bad = 0;
                             for (unsigned i = 0; i < n; ++i) {
                                 const int value = static_cast<int>(i);
                                 DWORD done = 0;
                                 bad += !::WriteFile(r, &value, sizeof(value), &done, nullptr) || done != 4;
                             }
                             return bad == 0;
                         },
                         [r, n] { return HoldsCounter(r, n); }};
    Add("1. scalar write: FileWriteInt / WriteFile 4 B", "call",
        Compare("scalar write", writeT, writeR, sizes.repetitions, n), n, 1.10, true, true);

    // The files now hold 0 .. n-1; every value read is checked as it arrives.
    const Side readT = {[t] { Rewind(t); },
                        [t, n] {
                            unsigned bad = 0;
                            for (unsigned i = 0; i < n; ++i)
                                bad += FileReadInt(t) != static_cast<int>(i);
                            return bad == 0;
                        },
                        [t, n] { return HoldsCounter(t, n); }};
    const Side readR = {[r] { Rewind(r); },
                        [r, n] {
                            unsigned bad = 0;
                            for (unsigned i = 0; i < n; ++i) {
                                int value = -1;
                                DWORD done = 0;
                                bad += !::ReadFile(r, &value, sizeof(value), &done, nullptr) || done != 4 ||
                                       value != static_cast<int>(i);
                            }
                            return bad == 0;
                        },
                        [r, n] { return HoldsCounter(r, n); }};
    Add("2. scalar read: FileReadInt / ReadFile 4 B", "call",
        Compare("scalar read", readT, readR, sizes.repetitions, n), n, 1.10, true, true);
    FileCloseHandle(t);
    ::CloseHandle(r);
}

// 3: one array of doubles in one call against one WriteFile / ReadFile of the same buffer.
void BulkCases(const Files& files, const Sizes& sizes) {
    const size_t count = sizes.bulkBytes / sizeof(double);
    const DWORD bytes = static_cast<DWORD>(count * sizeof(double));
    std::vector<double> source(count);
    for (size_t i = 0; i < count; ++i)
        source[i] = static_cast<double>(i) * 0.25 - 1.0;
    std::vector<double> target(count);
    void* const t =
        FileCreateAlwaysW(files.Path(L"bulk-tovarin.bin").c_str(), TOVARIN_DEFAULT, TOVARIN_DEFAULT);
    const HANDLE r = RawOpen(files.Path(L"bulk-raw.bin"), CREATE_ALWAYS);
    if (t == nullptr || r == INVALID_HANDLE_VALUE) {
        Fail("bulk", "the files could not be created");
        return;
    }
    const std::string megabytes = std::to_string(sizes.bulkBytes >> 20) + " MiB";
    const double* const from = source.data();
    double* const into = target.data();
    const Side writeT = {
        [t] { Truncate(t); },
        [t, from, count] { return FileWriteDoubleArray(t, from, count, 0, TOVARIN_TO_END) == count; },
        [t, from, bytes] { return Holds(t, from, bytes); }};
    const Side writeR = {[r] { Truncate(r); },
                         [r, from, bytes] {
                             DWORD done = 0;
                             return ::WriteFile(r, from, bytes, &done, nullptr) && done == bytes;
                         },
                         [r, from, bytes] { return Holds(r, from, bytes); }};
    Add("3. bulk write: FileWriteDoubleArray " + megabytes, "array",
        Compare("bulk write", writeT, writeR, sizes.repetitions, 1), 1, 1.05, true, true);

    const Side readT = {
        [t, into, bytes] {
            Rewind(t);
            std::memset(into, 0, bytes);
        },
        [t, into, count] { return FileReadDoubleArray(t, into, count, 0, TOVARIN_TO_END) == count; },
        [into, from, bytes] { return std::memcmp(into, from, bytes) == 0; }};
    const Side readR = {[r, into, bytes] {
                            Rewind(r);
                            std::memset(into, 0, bytes);
                        },
                        [r, into, bytes] {
                            DWORD done = 0;
                            return ::ReadFile(r, into, bytes, &done, nullptr) && done == bytes;
                        },
                        [into, from, bytes] { return std::memcmp(into, from, bytes) == 0; }};
    Add("3. bulk read: FileReadDoubleArray " + megabytes, "array",
        Compare("bulk read", readT, readR, sizes.repetitions, 1), 1, 1.05, true, true);
    FileCloseHandle(t);
    ::CloseHandle(r);
}

// 4: short lines, each written as its characters and then CR LF, as two writes, as the library does.
void StringArrayCases(const Files& files, const Sizes& sizes) {
    const unsigned n = sizes.lines;
    // Characters of every host buffer of the reader, a value known only when running, as the
    // library sees it: the raw side's copies must not be specialised for a size fixed at compile time.
    static volatile size_t hostCapacity = 32;
    const size_t capacity = hostCapacity;
    std::vector<std::wstring> lines(n);
    std::vector<const wchar_t*> pointers(n);
    std::wstring expected;
    for (unsigned i = 0; i < n; ++i) {
        wchar_t text[32];
        std::swprintf(text, 32, L"line %u %c", i * 7919u % 1000003u, static_cast<wchar_t>(L'a' + i % 26));
        lines[i] = text;
        pointers[i] = lines[i].c_str();
        expected += lines[i] + L"\r\n";
    }
    const size_t expectedBytes = expected.size() * sizeof(wchar_t);
    void* const t =
        FileCreateAlwaysW(files.Path(L"lines-tovarin.txt").c_str(), TOVARIN_DEFAULT, TOVARIN_DEFAULT);
    const HANDLE r = RawOpen(files.Path(L"lines-raw.txt"), CREATE_ALWAYS);
    if (t == nullptr || r == INVALID_HANDLE_VALUE) {
        Fail("string arrays", "the files could not be created");
        return;
    }
    const wchar_t** const array = pointers.data();
    const wchar_t* const whole = expected.c_str();
    const Side writeT = {[t] { Truncate(t); },
                         [t, array, n] { return FileWriteStrArrayW(t, array, n, 0, TOVARIN_TO_END) == n; },
                         [t, whole, expectedBytes] { return Holds(t, whole, expectedBytes); }};
    const Side writeR = {[r] { Truncate(r); },
                         [r, array, n] {
                             static const wchar_t kLineEnd[2] = {L'\r', L'\n'};
                             unsigned bad = 0;
                             for (unsigned i = 0; i < n; ++i) {
                                 const DWORD length =
                                     static_cast<DWORD>(std::wcslen(array[i]) * sizeof(wchar_t));
                                 DWORD done = 0;
                                 bad += !::WriteFile(r, array[i], length, &done, nullptr) || done != length;
                                 bad += !::WriteFile(r, kLineEnd, sizeof(kLineEnd), &done, nullptr) ||
                                        done != sizeof(kLineEnd);
                             }
                             return bad == 0;
                         },
                         [r, whole, expectedBytes] { return Holds(r, whole, expectedBytes); }};
    Add("4. string array write: FileWriteStrArrayW", "array",
        Compare("string array write", writeT, writeR, sizes.repetitions, 1), 1, 1.15, true, true);

    // The reader's host buffers: zero-filled before every run (the reader writes no terminator).
    std::vector<wchar_t> storage(n * capacity);
    std::vector<wchar_t*> buffers(n);
    for (unsigned i = 0; i < n; ++i)
        buffers[i] = &storage[i * capacity];
    wchar_t** const into = buffers.data();
    const std::vector<std::wstring>* const wanted = &lines;
    auto clear = [&storage] { std::fill(storage.begin(), storage.end(), L'\0'); };
    auto filled = [into, wanted, n] {
        for (unsigned i = 0; i < n; ++i)
            if ((*wanted)[i] != into[i])
                return false;
        return true;
    };
    const Side readT = {
        [t, clear] {
            Rewind(t);
            clear();
        },
        [t, into, n, capacity] { return FileReadStrArrayW(t, into, n, capacity, 0, TOVARIN_TO_END) == n; },
        filled};
    // The raw equivalent of the reader: the size, the position, the rest of the file in one read
    // into a new zero-filled buffer of its exact length, then the lines cut at CR LF into the host's
    // buffers.
    const Side readR = {[r, clear] {
                            Rewind(r);
                            clear();
                        },
                        [r, into, n, capacity] {
                            DWORD high = 0;
                            const DWORD low = ::GetFileSize(r, &high);
                            const DWORD position = ::SetFilePointer(r, 0, nullptr, FILE_CURRENT);
                            if (low == INVALID_FILE_SIZE || position == INVALID_SET_FILE_POINTER)
                                return false;
                            const size_t total = (static_cast<size_t>(high) << 32) + low;
                            const size_t k = position < total ? (total - position) / sizeof(wchar_t) : 0;
                            std::unique_ptr<wchar_t[]> text(new wchar_t[k]());
                            DWORD done = 0;
                            if (k != 0 && (!::ReadFile(r, text.get(), static_cast<DWORD>(k * sizeof(wchar_t)),
                                                       &done, nullptr) ||
                                           done != k * sizeof(wchar_t)))
                                return false;
                            unsigned i = 0;
                            size_t at = 0;
                            for (; i < n && at < k; ++i) {
                                size_t end = at;
                                while (end + 1 < k && !(text[end] == L'\r' && text[end + 1] == L'\n'))
                                    ++end;
                                if (end + 1 >= k)
                                    break;
                                if (end - at > capacity)
                                    return false;
                                std::memcpy(into[i], &text[at], (end - at) * sizeof(wchar_t));
                                at = end + 2;
                            }
                            return i == n;
                        },
                        filled};
    Add("4. string array read: FileReadStrArrayW", "array",
        Compare("string array read", readT, readR, sizes.repetitions, 1), 1, 1.15, true, false);
    FileCloseHandle(t);
    ::CloseHandle(r);
}

// 5: opening an existing file and closing it again.
void OpenCloseCase(const Files& files, const Sizes& sizes) {
    const unsigned n = sizes.opens;
    const std::wstring pathT = files.Path(L"open-tovarin.bin");
    const std::wstring pathR = files.Path(L"open-raw.bin");
    const char content[] = "opened and closed, never changed";
    for (const std::wstring* path : {&pathT, &pathR}) {
        const HANDLE h = RawOpen(*path, CREATE_ALWAYS);
        DWORD done = 0;
        ::WriteFile(h, content, sizeof(content), &done, nullptr);
        ::CloseHandle(h);
    }
    // Unchanged, and no handle left open: an exclusive open succeeds only when every one was closed.
    auto closed = [content](const std::wstring& path) {
        const HANDLE h = ::CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING,
                                       FILE_ATTRIBUTE_NORMAL, nullptr);
        if (h == INVALID_HANDLE_VALUE)
            return false;
        const bool same = Holds(h, content, sizeof(content));
        ::CloseHandle(h);
        return same;
    };
    const Side t = {[] {},
                    [&pathT, n] {
                        unsigned bad = 0;
                        for (unsigned i = 0; i < n; ++i) {
                            void* const h =
                                FileOpenExistingW(pathT.c_str(), TOVARIN_DEFAULT, TOVARIN_DEFAULT);
                            bad += h == nullptr;
                            FileCloseHandle(h);
                        }
                        return bad == 0;
                    },
                    [&pathT, closed] { return closed(pathT); }};
    const Side r = {[] {},
                    [&pathR, n] {
                        unsigned bad = 0;
                        for (unsigned i = 0; i < n; ++i) {
                            const HANDLE h = RawOpen(pathR, OPEN_EXISTING);
                            bad += h == INVALID_HANDLE_VALUE;
                            bad += !::CloseHandle(h);
                        }
                        return bad == 0;
                    },
                    [&pathR, closed] { return closed(pathR); }};
    Add("5. FileOpenExistingW+FileCloseHandle", "pair", Compare("open and close", t, r, sizes.repetitions, n),
        n, 2.0, true, false);
}

// 6: one or two threads, each on its own file, each writing one value per call.
double Writers(const std::vector<HANDLE>& handles, const bool tovarin, const unsigned n, bool& ok) {
    const HANDLE go = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
    std::vector<std::thread> threads;
    std::vector<int> results(handles.size(), 0);
    for (size_t k = 0; k < handles.size(); ++k)
        threads.emplace_back([&, k] {
            const HANDLE h = handles[k];
            ::WaitForSingleObject(go, INFINITE);
            unsigned bad = 0;
            for (unsigned i = 0; i < n; ++i) {
                const int value = static_cast<int>(i);
                if (tovarin) {
                    bad += FileWriteInt(h, value) != 4;
                } else {
                    DWORD done = 0;
                    bad += !::WriteFile(h, &value, sizeof(value), &done, nullptr) || done != 4;
                }
            }
            results[k] = bad == 0;
        });
    ::Sleep(20); // every thread is waiting on the event
    const double start = Now();
    ::SetEvent(go);
    for (std::thread& thread : threads)
        thread.join();
    const double elapsed = Now() - start;
    ::CloseHandle(go);
    for (int result : results)
        ok = ok && result != 0;
    return elapsed;
}

void ThreadCases(const Files& files, const Sizes& sizes) {
    const unsigned n = sizes.threadCalls;
    const std::vector<HANDLE> tovarin = {
        FileCreateAlwaysW(files.Path(L"thread-tovarin-1.bin").c_str(), TOVARIN_DEFAULT, TOVARIN_DEFAULT),
        FileCreateAlwaysW(files.Path(L"thread-tovarin-2.bin").c_str(), TOVARIN_DEFAULT, TOVARIN_DEFAULT)};
    const std::vector<HANDLE> raw = {RawOpen(files.Path(L"thread-raw-1.bin"), CREATE_ALWAYS),
                                     RawOpen(files.Path(L"thread-raw-2.bin"), CREATE_ALWAYS)};
    if (tovarin[0] == nullptr || tovarin[1] == nullptr || raw[0] == INVALID_HANDLE_VALUE ||
        raw[1] == INVALID_HANDLE_VALUE) {
        Fail("threads", "the files could not be created");
        return;
    }
    // Configurations: Tovarin with one and two threads, raw with one and two threads.
    struct Configuration {
        std::vector<HANDLE> handles;
        bool tovarin;
        std::vector<double> times;
    };
    Configuration configurations[4] = {
        {{tovarin[0]}, true, {}}, {tovarin, true, {}}, {{raw[0]}, false, {}}, {raw, false, {}}};
    for (int r = -1; r < sizes.repetitions; ++r) {
        for (int k = 0; k < 4; ++k) {
            Configuration& c = configurations[(k + (r < 0 ? 0 : r)) % 4];
            for (HANDLE h : c.handles)
                Truncate(h);
            bool ok = true;
            const double elapsed = Writers(c.handles, c.tovarin, n, ok);
            if (!ok)
                Fail("threads", c.tovarin ? "a Tovarin call failed" : "a raw call failed");
            for (HANDLE h : c.handles)
                if (!HoldsCounter(h, n))
                    Fail("threads", "file contents after the writers are wrong");
            if (r >= 0)
                c.times.push_back(elapsed);
        }
    }
    // Per repetition, from the four runs that went together: throughput of two threads against
    // one, (2n / two) / (n / one), and the two-thread times of Tovarin against raw.
    std::vector<double> scaling, rawScaling, twoThreads;
    for (int r = 0; r < sizes.repetitions; ++r) {
        const double t1 = configurations[0].times[r], t2 = configurations[1].times[r];
        const double r1 = configurations[2].times[r], r2 = configurations[3].times[r];
        scaling.push_back(2.0 * t1 / t2);
        rawScaling.push_back(2.0 * r1 / r2);
        twoThreads.push_back(t2 / r2);
    }
    const double t1 = Median(configurations[0].times), t2 = Median(configurations[1].times);
    const double r1 = Median(configurations[2].times), r2 = Median(configurations[3].times);
    // The times are per call of one thread, aggregated: the wall time over all calls.
    g_rows.push_back({"6. FileWriteInt, 2 threads | 1 thread", "call", t2 / (2.0 * n), t1 / n,
                      SpreadOf(scaling), 1.6, true, -1.0, false});
    g_rows.push_back({"6. 2 threads, FileWriteInt | WriteFile", "call", t2 / (2.0 * n), r2 / (2.0 * n),
                      SpreadOf(twoThreads), 0.0, false, -1.0, false});
    g_rows.push_back({"6. machine: WriteFile, 2 threads | 1 thread", "call", r2 / (2.0 * n), r1 / n,
                      SpreadOf(rawScaling), 0.0, true, -1.0, false});
    FileCloseHandle(tovarin[0]);
    FileCloseHandle(tovarin[1]);
    ::CloseHandle(raw[0]);
    ::CloseHandle(raw[1]);
}

std::wstring MakeFolder() {
    wchar_t temp[MAX_PATH + 1] = {};
    ::GetTempPathW(MAX_PATH, temp);
    std::wstring folder = std::wstring(temp) + L"TovarinBench-" + std::to_wstring(::GetCurrentProcessId());
    ::CreateDirectoryW(folder.c_str(), nullptr);
    return folder;
}

void RemoveFolder(const std::wstring& folder) {
    WIN32_FIND_DATAW found;
    const HANDLE search = ::FindFirstFileW((folder + L"\\*").c_str(), &found);
    if (search != INVALID_HANDLE_VALUE) {
        do {
            if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0)
                ::DeleteFileW((folder + L"\\" + found.cFileName).c_str());
        } while (::FindNextFileW(search, &found));
        ::FindClose(search);
    }
    ::RemoveDirectoryW(folder.c_str());
}

// 7: UTF-8 lines of 40 characters ended by CR LF, written and read back through the kit's file class
// (its MQL5 run as C++) against the same work on the raw block calls: the lines encoded here and
// written a MiB per FileWriteVoid, read by one FileReadVoid, decoded and split here.
void KitTextCases(const Files& files, const Sizes& sizes) {
    const unsigned n = sizes.textLines;
    const std::u16string line = u"2024.01.02 10:00:00,EURUSD,buy,1.1050,\u00e9\u20ac";
    const auto* wide = reinterpret_cast<const wchar_t*>(line.c_str());
    const int length = static_cast<int>(line.size());
    std::string expected,
        encoded(::WideCharToMultiByte(CP_UTF8, 0, wide, length, nullptr, 0, nullptr, nullptr), 0);
    ::WideCharToMultiByte(CP_UTF8, 0, wide, length, &encoded[0], static_cast<int>(encoded.size()), nullptr,
                          nullptr);
    for (unsigned i = 0; i < n; ++i)
        expected += encoded + "\r\n";
    KitText::SetLines(n, line);
    void* const t = KitText::Open(files.Path(L"text-kit.txt"));
    void* const r = FileCreateAlwaysW(files.Path(L"text-raw.txt").c_str(), TOVARIN_DEFAULT, TOVARIN_DEFAULT);
    if (t == nullptr || r == nullptr) {
        Fail("text", "the files could not be created");
        return;
    }
    const std::vector<std::u16string> lines(n, line);
    std::vector<std::u16string> back;
    const int repetitions = std::min(sizes.repetitions, 3);
    const Side writeT = {[t] { Truncate(t); }, [] { return KitText::WriteLines(); },
                         [t, &expected] { return Holds(t, expected.data(), expected.size()); }};
    const Side writeR = {[r] { Truncate(r); },
                         [r, &lines] {
                             std::string batch;
                             bool ok = true;
                             for (size_t i = 0; i < lines.size(); ++i) {
                                 const size_t at = batch.size();
                                 const auto* text = reinterpret_cast<const wchar_t*>(lines[i].c_str());
                                 batch.resize(at + 3 * lines[i].size() + 2);
                                 const int made = ::WideCharToMultiByte(
                                     CP_UTF8, 0, text, static_cast<int>(lines[i].size()), &batch[at],
                                     static_cast<int>(3 * lines[i].size()), nullptr, nullptr);
                                 batch.resize(at + made);
                                 batch += "\r\n";
                                 if (batch.size() >= (1u << 20) || i + 1 == lines.size()) {
                                     ok &= FileWriteVoid(r, batch.data(), batch.size()) == batch.size();
                                     batch.clear();
                                 }
                             }
                             return ok;
                         },
                         [r, &expected] { return Holds(r, expected.data(), expected.size()); }};
    Add("7. text write: CTovarinFile UTF-8 lines", "line",
        Compare("text write", writeT, writeR, repetitions, 1), n, 1.3, false, false);
    const Side readT = {[] {}, [] { return KitText::ReadLines(); },
                        [] { return KitText::ReadBackIsTheLines(); }};
    const Side readR = {
        [r, &back] { Rewind(r), back.clear(); },
        [r, &back] {
            const unsigned long long size = FileGetSize(r);
            std::string bytes(size, 0);
            if (FileReadVoid(r, &bytes[0], size) != size)
                return false;
            std::u16string text(
                ::MultiByteToWideChar(CP_UTF8, 0, bytes.data(), static_cast<int>(size), nullptr, 0), 0);
            ::MultiByteToWideChar(CP_UTF8, 0, bytes.data(), static_cast<int>(size),
                                  reinterpret_cast<wchar_t*>(&text[0]), static_cast<int>(text.size()));
            back.reserve(std::count(text.begin(), text.end(), u'\n'));
            for (size_t from = 0, end; (end = text.find(u'\n', from)) != text.npos; from = end + 1)
                back.emplace_back(text, from, end - from - (end > from && text[end - 1] == u'\r'));
            return true;
        },
        [&back, &lines] { return back == lines; }};
    Add("7. text read: CTovarinFile UTF-8 lines", "line", Compare("text read", readT, readR, repetitions, 1),
        n, 1.3, false, false);
    KitText::Close();
    FileCloseHandle(r);
}

// True when the work of `name` was asked for: all of it without --only.
bool Wanted(const std::string& only, const char* name) {
    return only.empty() || ("," + only + ",").find("," + std::string(name) + ",") != std::string::npos;
}

// The counter must see the allocations of an open (a new file object): otherwise a count of 0
// elsewhere would prove nothing.
void CheckTheCounter(const Files& files) {
    const unsigned long long before = Bench::ImportCounter::Allocations();
    void* const handle =
        FileCreateAlwaysW(files.Path(L"counter.bin").c_str(), TOVARIN_DEFAULT, TOVARIN_DEFAULT);
    FileCloseHandle(handle);
    if (handle == nullptr || Bench::ImportCounter::Allocations() == before)
        Fail("allocation counter", "it saw no allocation in an open and close: it does not count");
}

} // namespace

int main(int argc, char** argv) {
    bool smoke = false;
    std::string only;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--smoke") == 0) {
            smoke = true;
        } else if (std::strcmp(argv[i], "--only") == 0 && i + 1 < argc) {
            only = argv[++i];
        } else {
            std::fprintf(stderr,
                         "usage: TovarinBench [--smoke] [--only scalar,bulk,strings,open,threads,text]\n");
            return 2;
        }
    }
    const Sizes& sizes = smoke ? kSmoke : kFull;
    const int hooks = Bench::ImportCounter::Install(::GetModuleHandleW(L"Tovarin.dll"));
    if (hooks == 0)
        Fail("allocation counter", "no heap import of Tovarin.dll could be counted");
    std::printf(
        "Tovarin benchmark%s: %u scalar calls, %u MiB arrays, %u lines, %u opens, %u calls per thread\n",
        smoke ? " (smoke run, timings mean nothing)" : "", sizes.scalarCalls,
        static_cast<unsigned>(sizes.bulkBytes >> 20), sizes.lines, sizes.opens, sizes.threadCalls);
    std::fflush(stdout);

    const Files files = {MakeFolder()};
    int boxes = 0;
    {
        BoxWatch watch;
        CheckTheCounter(files);
        if (Wanted(only, "scalar"))
            ScalarCases(files, sizes);
        if (Wanted(only, "bulk"))
            BulkCases(files, sizes);
        if (Wanted(only, "strings"))
            StringArrayCases(files, sizes);
        if (Wanted(only, "open"))
            OpenCloseCase(files, sizes);
        if (Wanted(only, "threads"))
            ThreadCases(files, sizes);
        if (Wanted(only, "text"))
            KitTextCases(files, sizes);
        boxes = watch.Seen();
    }
    RemoveFolder(files.folder);
    if (boxes != 0)
        Fail("failure boxes", "Tovarin showed failure boxes");
    for (const Row& row : g_rows)
        if (row.allocationsMustBeZero && row.allocations > 0)
            Fail(row.name.c_str(), "the success path allocates");

    Print(sizes);
    std::printf("\nAllocations: Tovarin.dll's imports of the heap functions (%d entries) were redirected to\n"
                "counting forwarders; the count is of allocation calls made by the library's own code.\n",
                hooks);
    if (g_failures != 0)
        std::printf("\n%d check(s) FAILED\n", g_failures);
    return g_failures == 0 ? 0 : 1;
}
