#include "Utils.Synchronize.h"

#include "Utils.Error.h"

namespace Utils {
namespace Sync {

namespace {
const char kInit[] = "void __cdecl Utils::Sync::CriticalSection::Init(unsigned long)";
const char kMutexClose[] = "void __cdecl Utils::Sync::Mutex::Close(void)";
const char kMutexCreate[] =
    "void *__cdecl Utils::Sync::Mutex::Create(const " TOVARIN_WSTRING " &,const int,const unsigned long)";
const char kMutexRelease[] = "void __cdecl Utils::Sync::Mutex::Release(void) const";
const char kEventClose[] = "void __cdecl Utils::Sync::Event::Close(void)";
const char kEventCreate[] = "void *__cdecl Utils::Sync::Event::Create(const " TOVARIN_WSTRING
                            " &,const int,const int,const unsigned long)";

// The lines of the lock failures' texts, fixed on purpose (see TOVARIN_FIXED_SITE).
const int kInitLine = 270;
const int kMutexCloseLine = 495;
const int kMutexCreateLine = 509;
const int kMutexReleaseLine = 560;
const int kEventCloseLine = 341;
const int kEventCreateLine = 356;

#define TOVARIN_THROW_LOCK(signature, line, message)                                                         \
    TOVARIN_THROW_AT(TOVARIN_FIXED_SITE(signature, __FILE__, line), "[f]", true, message)

// "синхроизации" is the library's own spelling in all of these texts, kept deliberately.
std::wstring MutexText(const std::wstring& name, const wchar_t* what) {
    return L"Объект синхроизации \"Мьютекс\" с именем \"" + name + L"\" " + what;
}
std::wstring EventText(const std::wstring& name, const wchar_t* what) {
    return L"Объект синхроизации \"Событие\" с именем \"" + name + L"\" " + what;
}

const wchar_t* NameOrNull(const std::wstring& name) {
    return name.empty() ? nullptr : name.c_str();
}
} // namespace

CriticalSection::CriticalSection() {
    Init(1);
}

CriticalSection::~CriticalSection() {
    ::DeleteCriticalSection(&section_);
}

void CriticalSection::Init(unsigned long spinCount) {
    ::SetLastError(0);
    if (!::InitializeCriticalSectionAndSpinCount(&section_, spinCount))
        TOVARIN_THROW_LOCK(kInit, kInitLine, L"Неудачная инициализация критической секции.");
}

Mutex::Mutex() {}

Mutex::~Mutex() {
    try {
        Close();
    } catch (const std::wstring&) {
        // A destructor has no caller to report to; the handle is left to the process's end.
    }
}

void* Mutex::Create(const std::wstring& name, const int, const unsigned long) {
    Close();
    timeout_ = INFINITE;
    handle_ = nullptr;
    name_ = name;
    ::SetLastError(0);
    handle_ = ::CreateMutexW(nullptr, FALSE, NameOrNull(name_));
    if (handle_ == nullptr)
        TOVARIN_THROW_LOCK(kMutexCreate, kMutexCreateLine, MutexText(name_, L"не создан."));
    return handle_;
}

void Mutex::Release() const {
    ::SetLastError(0);
    if (handle_ != nullptr && !::ReleaseMutex(handle_))
        TOVARIN_THROW_LOCK(kMutexRelease, kMutexReleaseLine, MutexText(name_, L"не освобождён."));
}

void Mutex::Close() {
    ::SetLastError(0);
    if (handle_ != nullptr && !::CloseHandle(handle_) && ::GetLastError() != ERROR_INVALID_HANDLE)
        TOVARIN_THROW_LOCK(kMutexClose, kMutexCloseLine, MutexText(name_, L"не закрыт."));
    handle_ = nullptr;
}

Event::Event() {}

Event::~Event() {
    try {
        Close();
    } catch (const std::wstring&) {
        // A destructor has no caller to report to; the handle is left to the process's end.
    }
}

void* Event::Create(const std::wstring& name, const int, const int, const unsigned long) {
    Close();
    timeout_ = INFINITE;
    handle_ = nullptr;
    name_ = name;
    ::SetLastError(0);
    handle_ = ::CreateEventW(nullptr, FALSE, TRUE, NameOrNull(name_));
    if (handle_ == nullptr)
        TOVARIN_THROW_LOCK(kEventCreate, kEventCreateLine, EventText(name_, L"не создано."));
    return handle_;
}

void Event::Close() {
    ::SetLastError(0);
    // No exception for an already invalid handle here, unlike Mutex::Close: deliberate.
    if (handle_ != nullptr && !::CloseHandle(handle_))
        TOVARIN_THROW_LOCK(kEventClose, kEventCloseLine, EventText(name_, L"не закрыто."));
    handle_ = nullptr;
}

Lock<Mutex>::Lock(const Mutex& mutex) : mutex_(nullptr) {
    if (mutex.Handle() == nullptr)
        return;
    const DWORD result = ::WaitForSingleObject(mutex.Handle(), mutex.Timeout());
    // An abandoned mutex is owned all the same; a failed or timed-out wait owns nothing to release.
    if (result == WAIT_OBJECT_0 || result == WAIT_ABANDONED)
        mutex_ = &mutex;
}

Lock<Mutex>::~Lock() {
    if (mutex_ != nullptr) {
        try {
            mutex_->Release();
        } catch (const std::wstring&) {
            // Only possible when the handle was closed while held; a guard cannot report it.
        }
    }
    mutex_ = nullptr;
}

CriticalSection& SmartLock() {
    // A heap object that is never deleted: global pointers are still released through it while
    // the process exits, after every static object could have been destroyed.
    static CriticalSection* const lock = new CriticalSection();
    return *lock;
}

} // namespace Sync
} // namespace Utils
