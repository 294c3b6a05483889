#pragma once
// Locks: in-process critical sections, kernel mutexes and events (optionally named, so shared with
// other processes), scoped guards, and the library-wide lock that guards every reference count.
//
// Failures throw the composed failure text (std::wstring) with the thread's last error.
#include <windows.h>

#include <string>

namespace Utils {
namespace Sync {

// An in-process, re-entrant lock with spin count 1.
class CriticalSection {
public:
    // Throws "Неудачная инициализация критической секции." when the system cannot set it up.
    CriticalSection();
    virtual ~CriticalSection();
    CriticalSection(const CriticalSection&) = delete;
    CriticalSection& operator=(const CriticalSection&) = delete;

    void Enter() { ::EnterCriticalSection(&section_); }
    void Leave() { ::LeaveCriticalSection(&section_); }

private:
    void Init(unsigned long spinCount);

    CRITICAL_SECTION section_;
};

// What a mutex and an event hold: the wait time-out (INFINITE), the handle (null while closed) and
// the name (empty for an unnamed object).
class KernelObject {
public:
    void* Handle() const { return handle_; }
    const std::wstring& Name() const { return name_; }
    unsigned long Timeout() const { return timeout_; }

protected:
    KernelObject() : timeout_(INFINITE), handle_(nullptr) {}
    KernelObject(const KernelObject&) = delete;
    KernelObject& operator=(const KernelObject&) = delete;

    // Protected so that a derived object (a test, say) can hold a handle of its own making.
    unsigned long timeout_;
    HANDLE handle_;
    std::wstring name_;
};

// A kernel mutex; closed (null handle) until Create.
class Mutex : public KernelObject {
public:
    Mutex();
    virtual ~Mutex(); // closes the handle; a failure to close is not reported from here

    // Closes the current handle, then creates (or opens, when the name exists) a mutex that nobody
    // owns; an empty name makes an unnamed one. The last two arguments are ignored deliberately:
    // the initial owner is always none and the time-out always INFINITE. Returns the new handle;
    // throws "... не создан." with the handle left null.
    void* Create(const std::wstring& name, const int = 0, const unsigned long = 0xFFFFFFFF);
    // Gives up ownership; nothing when closed. Throws "... не освобождён." when the system refuses.
    void Release() const;
    // Closes the handle; nothing when closed. A handle that is already invalid counts as closed.
    // Throws "... не закрыт." on any other failure, keeping the handle.
    void Close();
};

// A kernel auto-reset event that starts signalled; closed (null handle) until Create.
class Event : public KernelObject {
public:
    Event();
    virtual ~Event(); // closes the handle; a failure to close is not reported from here

    // Closes the current handle, then creates (or opens, when the name exists) an auto-reset event
    // that starts signalled; an empty name makes an unnamed one. The numeric arguments are ignored
    // deliberately. Returns the new handle; throws "... не создано." with the handle left null.
    void* Create(const std::wstring& name, const int = 0, const int = 0, const unsigned long = 0);
    // Closes the handle; nothing when closed. Unlike Mutex::Close, an invalid handle throws
    // "... не закрыто." (the handle is kept).
    void Close();
};

// Scoped guards. Lock<CriticalSection> and Lock<Mutex> are the two kinds.
template <class T> class Lock;

template <> class [[nodiscard]] Lock<CriticalSection> {
public:
    explicit Lock(CriticalSection& section) : section_(&section) { section_->Enter(); }
    virtual ~Lock() {
        if (section_ != nullptr)
            section_->Leave();
        section_ = nullptr;
    }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

private:
    CriticalSection* section_;
};

template <> class [[nodiscard]] Lock<Mutex> {
public:
    // Waits for the mutex with its time-out; a closed mutex is not waited for.
    explicit Lock(const Mutex& mutex);
    virtual ~Lock(); // releases the mutex when the wait acquired it
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

    // True when the wait gave this thread ownership.
    bool Owns() const { return mutex_ != nullptr; }

private:
    const Mutex* mutex_;
};

// The library-wide lock of all reference counts: created on the first call (during static
// initialisation), never destroyed, re-entrant on the same thread.
CriticalSection& SmartLock();

} // namespace Sync
} // namespace Utils
