#pragma once
// Reference-counted shared objects and their counted pointers.
//
// Every shared object derives virtually from Utils::Smart::Base. All counts of the process are
// guarded by one lock, Utils::Sync::SmartLock(): a count, and a Pointer's field while it changes,
// is only touched with that lock held. Objects are destroyed outside the lock, except when the
// weak factory drops the last count.
//
// Failures throw the composed failure text (std::wstring) without the last error.
#include "Utils.Synchronize.h"

#include <cstddef>
#include <map>
#include <type_traits>

namespace Utils {
namespace Smart {

template <class T> class Pointer;
class WeakFactory;

class Base {
public:
    Base() : count_(0), weakId_(-1) {}
    // A copy is a new object: it starts unowned and unregistered.
    Base(const Base&) : count_(0), weakId_(-1) {}
    Base& operator=(const Base&) { return *this; }
    virtual ~Base();

    // The base versions always throw; a class compared inside pointer containers overrides them.
    virtual bool Equals(Base*);
    virtual bool Less(Base*);

    // Gives up one count: at 0 the object is destroyed (outside the lock); at 1 with a weak
    // identifier, the weak factory drops it (and so destroys it). Throws "Отрицательное значение
    // счётчика указателей." when the count goes below 0.
    void Release();

    int Count() const;  // the reference count, read under the lock
    int WeakId() const; // the weak factory's identifier, -1 when not registered

private:
    template <class T> friend class Pointer;
    friend class WeakFactory;

    // Release's work for a caller that holds the smart-pointer lock already: true when the count
    // reached 0, and the caller destroys the object once it has left the lock.
    bool ReleaseHeld();

    int count_;
    int weakId_;
};

// The owning handle of a shared object. Copying, assigning and emptying take the smart-pointer
// lock, so one Pointer may be copied from and assigned to by several threads; Get, -> and * do
// not lock and are for the thread that owns the Pointer.
template <class T> class Pointer {
public:
    // Constant initialisation: a global Pointer is null before any static initialiser runs.
    constexpr Pointer() noexcept : object_(nullptr) {}
    explicit Pointer(T* object) : object_(nullptr) {
        Sync::Lock<Sync::CriticalSection> guard(Sync::SmartLock());
        object_ = Acquire(object);
    }
    Pointer(const Pointer& other) : object_(nullptr) {
        Sync::Lock<Sync::CriticalSection> guard(Sync::SmartLock());
        object_ = Acquire(other.object_);
    }
    template <class U, class = std::enable_if_t<std::is_convertible<U*, T*>::value>>
    Pointer(const Pointer<U>& other) : object_(nullptr) {
        Sync::Lock<Sync::CriticalSection> guard(Sync::SmartLock());
        object_ = Acquire(other.object_);
    }
    Pointer(Pointer&& other) noexcept : object_(nullptr) {
        Sync::Lock<Sync::CriticalSection> guard(Sync::SmartLock());
        object_ = other.object_;
        other.object_ = nullptr;
    }
    virtual ~Pointer() { Reset(); }

    // The new count is taken before the old object's count is given up, so assigning a pointer its
    // own object keeps it alive. One hold of the lock covers both; an object whose last count
    // went is destroyed after the lock is left, deliberately.
    Pointer& operator=(const Pointer& other) {
        Base* dead;
        {
            Sync::Lock<Sync::CriticalSection> guard(Sync::SmartLock());
            T* old = object_;
            object_ = Acquire(other.object_);
            dead = Drop(old);
        }
        delete dead;
        return *this;
    }
    Pointer& operator=(Pointer&& other) {
        Base* dead;
        {
            Sync::Lock<Sync::CriticalSection> guard(Sync::SmartLock());
            if (&other == this)
                return *this;
            T* old = object_;
            object_ = other.object_;
            other.object_ = nullptr;
            dead = Drop(old);
        }
        delete dead;
        return *this;
    }
    Pointer& operator=(T* object) {
        Base* dead;
        {
            Sync::Lock<Sync::CriticalSection> guard(Sync::SmartLock());
            T* old = object_;
            object_ = Acquire(object);
            dead = Drop(old);
        }
        delete dead;
        return *this;
    }

    // Empties the pointer and gives up its count under the lock; the object, when that was its
    // last count, is destroyed outside it.
    void Reset() {
        Base* dead;
        {
            Sync::Lock<Sync::CriticalSection> guard(Sync::SmartLock());
            T* old = object_;
            object_ = nullptr;
            dead = Drop(old);
        }
        delete dead;
    }

    T* Get() const { return object_; }
    T* operator->() const { return object_; }
    T& operator*() const { return *object_; }
    explicit operator bool() const { return object_ != nullptr; }

private:
    template <class U> friend class Pointer;

    // Both run with the smart-pointer lock held. Drop returns the object to destroy once the lock
    // is left, or null.
    static T* Acquire(T* object) {
        if (object != nullptr)
            ++static_cast<Base*>(object)->count_;
        return object;
    }
    static Base* Drop(T* object) {
        if (object == nullptr)
            return nullptr;
        Base* const base = static_cast<Base*>(object);
        return base->ReleaseHeld() ? base : nullptr;
    }

    T* object_;
};

// The process-wide registry that keeps objects alive under an integer identifier until they are
// dropped. Created on first use, never destroyed.
class WeakFactory {
public:
    static WeakFactory& Instance();

    // Registers `object` under the next counter value and holds one count of it; returns the
    // identifier (the existing one when the object is registered already, -1 for null).
    int Register(Base* object);
    // Removes the identifier and releases the registry's count (which may destroy the object).
    // Throws "Не удалось найти объект с ID = <id>" when it is not registered, changing nothing.
    void DropId(const int id);

    bool Contains(const int id) const;
    std::size_t Size() const;

private:
    WeakFactory() : counter_(0) {}
    WeakFactory(const WeakFactory&) = delete;
    WeakFactory& operator=(const WeakFactory&) = delete;

    unsigned int counter_;
    std::map<int, Pointer<Base>> objects_;
};

// A library-wide singleton pointer. Defined at namespace scope, it is null from load (constant
// initialisation, so static initialisers of any file may use it); Get creates its object on first
// use under the smart-pointer lock; the object is released when the process exits, globals of a
// file in reverse order of their definitions.
template <class T> class Global {
public:
    constexpr Global() noexcept = default;
    Global(const Global&) = delete;
    Global& operator=(const Global&) = delete;

    // A counted copy of the singleton, creating it first when there is none. When construction
    // fails the exception passes and the global stays null.
    Pointer<T> Get() {
        Sync::Lock<Sync::CriticalSection> guard(Sync::SmartLock());
        if (!pointer_)
            pointer_ = new T();
        return pointer_;
    }

    // Releases the singleton now (as at process exit); the next Get creates a new one.
    void Reset() { pointer_.Reset(); }

private:
    Pointer<T> pointer_;
};

} // namespace Smart
} // namespace Utils

// The lock of the open-file registry: one heap instance shared through Pointer<g_CSyncCS>.
class g_CSyncCS : public Utils::Sync::CriticalSection, public virtual Utils::Smart::Base {};

// The single g_CSyncCS, created by the first call; each call hands out one more count.
Utils::Smart::Pointer<g_CSyncCS> GetCSyncCS();
