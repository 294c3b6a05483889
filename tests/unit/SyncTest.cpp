// Locks: critical sections and their guard, the smart-pointer lock, kernel mutexes and events
// (named and unnamed, their life cycle and failure texts), and the mutex guard.
#include "utils/Utils.Synchronize.h"

#include "support/FailureText.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <thread>
#include <vector>

using Utils::Sync::CriticalSection;
using Utils::Sync::Event;
using Utils::Sync::Lock;
using Utils::Sync::Mutex;
using Utils::Sync::SmartLock;

namespace {

const char kSource[] = "Utils.Synchronize.cpp";
const char kMutexCreate[] =
    "void *__cdecl Utils::Sync::Mutex::Create(const class std::basic_string<wchar_t,struct "
    "std::char_traits<wchar_t>,class std::allocator<wchar_t> > &,const int,const unsigned long)";
const char kMutexRelease[] = "void __cdecl Utils::Sync::Mutex::Release(void) const";
const char kEventClose[] = "void __cdecl Utils::Sync::Event::Close(void)";
const char kEventCreate[] =
    "void *__cdecl Utils::Sync::Event::Create(const class std::basic_string<wchar_t,struct "
    "std::char_traits<wchar_t>,class std::allocator<wchar_t> > &,const int,const int,const unsigned long)";

// A handle value that no object of this process has (handles are small multiples of 4).
HANDLE const kBogusHandle = reinterpret_cast<HANDLE>(static_cast<intptr_t>(0x7FFF0));

constexpr auto kBound = std::chrono::seconds(30); // every cross-thread wait is bounded

// Kernel object names unique to this process, so parallel test runs cannot meet.
std::wstring UniqueName(const wchar_t* what) {
    return L"Tovarin.SyncTest." + std::to_wstring(::GetCurrentProcessId()) + L"." + what;
}

// Runs `work` on another thread and returns its result (waits are bounded).
template <class F> auto OnOtherThread(F work) -> decltype(work()) {
    auto result = std::async(std::launch::async, work);
    EXPECT_EQ(result.wait_for(kBound), std::future_status::ready);
    return result.get();
}

// Mutex and Event with their handle reachable, for handles made behind their back.
template <class T> struct Exposed : T {
    void SetHandle(HANDLE handle) { this->handle_ = handle; }
};

// ---------------------------------------------------------------------------------------------
// Critical sections

TEST(CriticalSection, GuardSerialisesThreads) {
    CriticalSection section;
    long long total = 0; // deliberately not atomic: only the guard protects it
    constexpr int kThreads = 4;
    constexpr int kRounds = 20000;
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&] {
            for (int i = 0; i < kRounds; ++i) {
                Lock<CriticalSection> guard(section);
                const long long seen = total;
                if (i % 64 == 0)
                    ::SwitchToThread(); // widen the window a missing guard would expose
                total = seen + 1;
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(total, static_cast<long long>(kThreads) * kRounds);
}

TEST(CriticalSection, HeldGuardBlocksOtherThreadsUntilItEnds) {
    CriticalSection section;
    std::atomic<bool> entered{false};
    std::future<void> other;
    {
        Lock<CriticalSection> guard(section);
        other = std::async(std::launch::async, [&] {
            Lock<CriticalSection> inner(section);
            entered = true;
        });
        // The other thread cannot get in while the guard lives.
        EXPECT_EQ(other.wait_for(std::chrono::milliseconds(200)), std::future_status::timeout);
        EXPECT_FALSE(entered);
    }
    ASSERT_EQ(other.wait_for(kBound), std::future_status::ready);
    EXPECT_TRUE(entered);
}

TEST(CriticalSection, IsReentrantOnOneThread) {
    CriticalSection section;
    {
        Lock<CriticalSection> outer(section);
        Lock<CriticalSection> inner(section);
    }
    // Both levels were left: another thread gets in.
    EXPECT_TRUE(OnOtherThread([&] {
        Lock<CriticalSection> guard(section);
        return true;
    }));
}

TEST(SmartLock, IsOneReentrantLockForTheProcess) {
    CriticalSection& lock = SmartLock();
    EXPECT_EQ(&lock, &SmartLock());
    EXPECT_EQ(&lock, OnOtherThread([] { return &SmartLock(); }));
    {
        Lock<CriticalSection> outer(lock);
        Lock<CriticalSection> inner(SmartLock());
    }
    EXPECT_TRUE(OnOtherThread([] {
        Lock<CriticalSection> guard(SmartLock());
        return true;
    }));
}

// ---------------------------------------------------------------------------------------------
// What mutexes and events share: life cycle, names, closing. The traits give each kind's calls.

struct MutexKind {
    typedef Mutex Object;
    static HANDLE Open(const std::wstring& name) { return ::OpenMutexW(SYNCHRONIZE, FALSE, name.c_str()); }
};
struct EventKind {
    typedef Event Object;
    static HANDLE Open(const std::wstring& name) { return ::OpenEventW(SYNCHRONIZE, FALSE, name.c_str()); }
};

template <class Kind> class KernelObject : public testing::Test {
protected:
    typedef typename Kind::Object Object;

    // True when an object of this kind exists under `name`.
    static bool Exists(const std::wstring& name) {
        const HANDLE handle = Kind::Open(name);
        if (handle == nullptr)
            return false;
        ::CloseHandle(handle);
        return true;
    }
};

typedef testing::Types<MutexKind, EventKind> KernelKinds;
TYPED_TEST_SUITE(KernelObject, KernelKinds);

TYPED_TEST(KernelObject, StartsClosedAndClosingItDoesNothing) {
    typename TestFixture::Object object;
    EXPECT_EQ(object.Handle(), nullptr);
    EXPECT_EQ(object.Name(), L"");
    EXPECT_EQ(object.Timeout(), INFINITE);
    EXPECT_NO_THROW(object.Close());
    EXPECT_EQ(object.Handle(), nullptr);
    EXPECT_EQ(::GetLastError(), 0u);
}

TYPED_TEST(KernelObject, EmptyNameMakesAnUnnamedObject) {
    typename TestFixture::Object object;
    void* const handle = object.Create(L"");
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(object.Handle(), handle);
    EXPECT_EQ(object.Name(), L"");
    EXPECT_EQ(object.Timeout(), INFINITE);
    // The handle is a live kernel object of this process.
    DWORD flags = 0;
    EXPECT_TRUE(::GetHandleInformation(handle, &flags));
}

TYPED_TEST(KernelObject, NamedObjectIsFoundByNameUntilClosed) {
    const std::wstring name = UniqueName(L"Named");
    typename TestFixture::Object object;
    ASSERT_NE(object.Create(name), nullptr);
    EXPECT_EQ(object.Name(), name);
    EXPECT_TRUE(TestFixture::Exists(name));
    object.Close();
    EXPECT_EQ(object.Handle(), nullptr);
    EXPECT_FALSE(TestFixture::Exists(name));
    EXPECT_NO_THROW(object.Close()); // closed twice: nothing happens
}

TYPED_TEST(KernelObject, SecondCreateClosesTheFirstObject) {
    const std::wstring first = UniqueName(L"First");
    const std::wstring second = UniqueName(L"Second");
    typename TestFixture::Object object;
    ASSERT_NE(object.Create(first), nullptr);
    ASSERT_NE(object.Create(second), nullptr);
    EXPECT_EQ(object.Name(), second);
    EXPECT_FALSE(TestFixture::Exists(first)); // its only handle was closed
    EXPECT_TRUE(TestFixture::Exists(second));
}

TYPED_TEST(KernelObject, DestructorClosesTheHandle) {
    const std::wstring name = UniqueName(L"Destroyed");
    {
        typename TestFixture::Object object;
        ASSERT_NE(object.Create(name), nullptr);
        ASSERT_TRUE(TestFixture::Exists(name));
    }
    EXPECT_FALSE(TestFixture::Exists(name));
}

// ---------------------------------------------------------------------------------------------
// Mutexes

TEST(Mutex, OwnerAndTimeOutArgumentsAreIgnored) {
    Mutex mutex;
    ASSERT_NE(mutex.Create(UniqueName(L"Ignored"), 1, 10), nullptr);
    EXPECT_EQ(mutex.Timeout(), INFINITE);
    // Nobody owns it: another thread takes it at once.
    const HANDLE handle = mutex.Handle();
    EXPECT_EQ(OnOtherThread([handle] {
                  const DWORD result = ::WaitForSingleObject(handle, 0);
                  if (result == WAIT_OBJECT_0)
                      ::ReleaseMutex(handle);
                  return result;
              }),
              WAIT_OBJECT_0);
}

TEST(Mutex, CloseOfAnInvalidHandleSucceedsAndClearsIt) {
    Exposed<Mutex> mutex;
    mutex.SetHandle(kBogusHandle);
    EXPECT_NO_THROW(mutex.Close());
    EXPECT_EQ(mutex.Handle(), nullptr);
}

TEST(Mutex, CloseOfAHandleClosedBehindItsBackSucceeds) {
    Mutex mutex;
    ASSERT_NE(mutex.Create(L""), nullptr);
    ASSERT_TRUE(::CloseHandle(mutex.Handle()));
    EXPECT_NO_THROW(mutex.Close());
    EXPECT_EQ(mutex.Handle(), nullptr);
}

TEST(Mutex, ReleaseOfAClosedMutexDoesNothing) {
    Mutex mutex;
    ::SetLastError(5);
    EXPECT_NO_THROW(mutex.Release());
    EXPECT_EQ(::GetLastError(), 0u);
}

TEST(Event, CloseOfAnInvalidHandleThrowsAndKeepsIt) {
    const std::wstring name = UniqueName(L"Bogus");
    Exposed<Event> event;
    ASSERT_NE(event.Create(name), nullptr);
    ASSERT_TRUE(::CloseHandle(event.Handle()));
    event.SetHandle(kBogusHandle);
    std::wstring text;
    try {
        event.Close();
    } catch (const std::wstring& thrown) {
        text = thrown;
    }
    EXPECT_EQ(text, TestSupport::ExpectedFailure(
                        kEventClose, kSource, TestSupport::ReportedLine(text),
                        L"Объект синхроизации \"Событие\" с именем \"" + name + L"\" не закрыто.", 1));
    EXPECT_GT(TestSupport::ReportedLine(text), 0);
    EXPECT_EQ(event.Handle(), kBogusHandle);
    event.SetHandle(nullptr);
}

TEST(Event, StartsSignalledAndResetsItself) {
    Event event;
    ASSERT_NE(event.Create(L""), nullptr);
    EXPECT_EQ(::WaitForSingleObject(event.Handle(), 0), WAIT_OBJECT_0);
    EXPECT_EQ(::WaitForSingleObject(event.Handle(), 0), static_cast<DWORD>(WAIT_TIMEOUT));
    ASSERT_TRUE(::SetEvent(event.Handle()));
    EXPECT_EQ(::WaitForSingleObject(event.Handle(), 0), WAIT_OBJECT_0);
}

TEST(Event, ObjectsWithOneNameShareOneKernelEvent) {
    const std::wstring name = UniqueName(L"Shared");
    Event first;
    Event second;
    ASSERT_NE(first.Create(name), nullptr);
    ASSERT_NE(second.Create(name), nullptr);
    EXPECT_NE(first.Handle(), second.Handle());
    // One signal, taken through the first handle: a second event of its own would still be set.
    EXPECT_EQ(::WaitForSingleObject(first.Handle(), 0), WAIT_OBJECT_0);
    EXPECT_EQ(::WaitForSingleObject(second.Handle(), 0), static_cast<DWORD>(WAIT_TIMEOUT));
    ASSERT_TRUE(::SetEvent(second.Handle()));
    EXPECT_EQ(::WaitForSingleObject(first.Handle(), 0), WAIT_OBJECT_0);
    // Another opener by name meets the same event.
    const HANDLE opened = ::OpenEventW(SYNCHRONIZE | EVENT_MODIFY_STATE, FALSE, name.c_str());
    ASSERT_NE(opened, nullptr);
    ASSERT_TRUE(::SetEvent(opened));
    EXPECT_EQ(::WaitForSingleObject(second.Handle(), 0), WAIT_OBJECT_0);
    ::CloseHandle(opened);
}

// ---------------------------------------------------------------------------------------------
// Failure texts: each case makes one operation fail and gives the text it must throw.

struct FailureCase {
    const char* name;
    const char* signature;
    // Makes the operation fail; returns the name of the object in the message and the thrown text.
    std::function<std::pair<std::wstring, std::wstring>()> fail;
    const wchar_t* kind; // "Мьютекс" or "Событие"
    const wchar_t* ending;
};

template <class F> std::wstring Caught(F operation) {
    try {
        operation();
    } catch (const std::wstring& text) {
        return text;
    }
    return L"(nothing thrown)";
}

const FailureCase kFailures[] = {
    {"MutexCreateOverAnEventName", kMutexCreate,
     [] {
         const std::wstring name = UniqueName(L"TakenByEvent");
         Event taken;
         taken.Create(name);
         Mutex mutex;
         const std::wstring text = Caught([&] { mutex.Create(name); });
         EXPECT_EQ(mutex.Handle(), nullptr);
         return std::make_pair(name, text);
     },
     L"Мьютекс", L"не создан."},
    {"EventCreateOverAMutexName", kEventCreate,
     [] {
         const std::wstring name = UniqueName(L"TakenByMutex");
         Mutex taken;
         taken.Create(name);
         Event event;
         const std::wstring text = Caught([&] { event.Create(name); });
         EXPECT_EQ(event.Handle(), nullptr);
         return std::make_pair(name, text);
     },
     L"Событие", L"не создано."},
    {"MutexReleaseWithoutOwnership", kMutexRelease,
     [] {
         const std::wstring name = UniqueName(L"NotOwned");
         Mutex mutex;
         mutex.Create(name);
         const std::wstring text = Caught([&] { mutex.Release(); });
         EXPECT_NE(mutex.Handle(), nullptr);
         return std::make_pair(name, text);
     },
     L"Мьютекс", L"не освобождён."},
};

class SyncFailure : public testing::TestWithParam<FailureCase> {};

TEST_P(SyncFailure, ThrowsTheExactTextWithTheLastError) {
    const FailureCase& c = GetParam();
    const std::pair<std::wstring, std::wstring> result = c.fail();
    const std::wstring& text = result.second;
    EXPECT_GT(TestSupport::ReportedLine(text), 0);
    EXPECT_EQ(text, TestSupport::ExpectedFailure(c.signature, kSource, TestSupport::ReportedLine(text),
                                                 std::wstring(L"Объект синхроизации \"") + c.kind +
                                                     L"\" с именем \"" + result.first + L"\" " + c.ending,
                                                 1));
}

INSTANTIATE_TEST_SUITE_P(Texts, SyncFailure, testing::ValuesIn(kFailures),
                         [](const testing::TestParamInfo<FailureCase>& info) { return info.param.name; });

// ---------------------------------------------------------------------------------------------
// The mutex guard

TEST(MutexLock, HoldsTheMutexForItsScope) {
    Mutex mutex;
    ASSERT_NE(mutex.Create(UniqueName(L"Guarded")), nullptr);
    const HANDLE handle = mutex.Handle();
    auto tryTake = [handle] {
        return OnOtherThread([handle] {
            const DWORD result = ::WaitForSingleObject(handle, 0);
            if (result == WAIT_OBJECT_0)
                ::ReleaseMutex(handle);
            return result;
        });
    };
    {
        Lock<Mutex> guard(mutex);
        EXPECT_TRUE(guard.Owns());
        EXPECT_EQ(tryTake(), static_cast<DWORD>(WAIT_TIMEOUT));
    }
    EXPECT_EQ(tryTake(), WAIT_OBJECT_0);
}

TEST(MutexLock, SerialisesThreadsAcrossHandles) {
    // Two Mutex objects with one name: the guard of either excludes the other.
    const std::wstring name = UniqueName(L"Counter");
    Mutex first;
    Mutex second;
    ASSERT_NE(first.Create(name), nullptr);
    ASSERT_NE(second.Create(name), nullptr);
    long long total = 0;
    constexpr int kRounds = 2000;
    auto work = [&total](Mutex& mutex) {
        for (int i = 0; i < kRounds; ++i) {
            Lock<Mutex> guard(mutex);
            const long long seen = total;
            if (i % 16 == 0)
                ::SwitchToThread();
            total = seen + 1;
        }
    };
    std::thread a(work, std::ref(first));
    std::thread b(work, std::ref(second));
    a.join();
    b.join();
    EXPECT_EQ(total, 2LL * kRounds);
}

TEST(MutexLock, OnAClosedMutexDoesNothing) {
    Mutex mutex;
    Lock<Mutex> guard(mutex);
    EXPECT_FALSE(guard.Owns());
}

} // namespace
