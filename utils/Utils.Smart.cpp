#include "Utils.Smart.h"

#include "Utils.Error.h"

#include <string>

namespace Utils {
namespace Smart {

namespace {
const char kRelease[] = "void __cdecl Utils::Smart::Base::Release(void)";
const char kDropId[] = "void __cdecl Utils::Smart::WeakFactory::DropId(const int)";
const char kEquals[] = "bool __cdecl Utils::Smart::Base::Equals(class Utils::Smart::Base *)";
const char kLess[] = "bool __cdecl Utils::Smart::Base::Less(class Utils::Smart::Base *)";

// The lines these failure texts show, fixed on purpose (see TOVARIN_FIXED_SITE).
const int kReleaseLine = 350;
const int kDropIdLine = 249;
const int kEqualsLine = 376;
const int kLessLine = 401;

typedef Sync::Lock<Sync::CriticalSection> SmartGuard;

// The smart-pointer lock exists before any export can run.
const bool kSmartLockReady = (Sync::SmartLock(), true);
} // namespace

Base::~Base() {}

namespace {
// The base comparisons refuse: a class compared inside smart-pointer containers defines its own.
[[noreturn]] void RefuseComparison(const Error::Site& site, const wchar_t* condition, const wchar_t* method) {
    TOVARIN_THROW_AT(site, "[f]", false,
                     std::wstring(L"Метод позволяет сравнивать объекты по условию \"") + condition +
                         L"\" внутри класса умного указателя.\r\n"
                         L"Для использования этого метода необходимо определить его в своём коде.\r\n"
                         L"Основной метод \"Utils::Smart::Base::" +
                         method + L"()\".\r\nТщательно проверьте этот метод, если он нужен.");
}
} // namespace

bool Base::Equals(Base*) {
    RefuseComparison(TOVARIN_FIXED_SITE(kEquals, __FILE__, kEqualsLine), L"равно", L"Equals");
}

bool Base::Less(Base*) {
    RefuseComparison(TOVARIN_FIXED_SITE(kLess, __FILE__, kLessLine), L"меньше", L"Less");
}

void Base::Release() {
    bool last;
    {
        SmartGuard guard(Sync::SmartLock());
        last = ReleaseHeld();
    }
    if (last)
        delete this;
}

bool Base::ReleaseHeld() {
    const int count = --count_;
    if (count == 1 && weakId_ != -1) {
        // Only the registry's count is left: dropping it destroys the object here, inside the
        // (re-entered) lock. `this` is gone afterwards.
        WeakFactory::Instance().DropId(weakId_);
        return false;
    }
    if (count < 0)
        TOVARIN_THROW_AT(TOVARIN_FIXED_SITE(kRelease, __FILE__, kReleaseLine), "[f]", false,
                         L"Отрицательное значение счётчика указателей.");
    return count == 0;
}

int Base::Count() const {
    SmartGuard guard(Sync::SmartLock());
    return count_;
}

int Base::WeakId() const {
    SmartGuard guard(Sync::SmartLock());
    return weakId_;
}

WeakFactory& WeakFactory::Instance() {
    SmartGuard guard(Sync::SmartLock());
    // Never deleted: objects may still be dropped while the process exits.
    static WeakFactory* const factory = new WeakFactory();
    return *factory;
}

int WeakFactory::Register(Base* object) {
    if (object == nullptr)
        return -1;
    SmartGuard guard(Sync::SmartLock());
    if (object->weakId_ != -1)
        return object->weakId_;
    const int id = static_cast<int>(counter_++);
    objects_.emplace(id, Pointer<Base>(object));
    object->weakId_ = id;
    return id;
}

void WeakFactory::DropId(const int id) {
    SmartGuard guard(Sync::SmartLock());
    const auto found = objects_.lower_bound(id);
    if (found == objects_.end() || found->first != id)
        TOVARIN_THROW_AT(TOVARIN_FIXED_SITE(kDropId, __FILE__, kDropIdLine), "[f]", false,
                         L"Не удалось найти объект с ID = " + std::to_wstring(id));
    // The entry leaves the map before its count is released, and the object forgets its
    // identifier first, so that this release cannot come back here for the same identifier.
    Pointer<Base> held(std::move(found->second));
    objects_.erase(found);
    if (held)
        held->weakId_ = -1;
    held.Reset();
}

bool WeakFactory::Contains(const int id) const {
    SmartGuard guard(Sync::SmartLock());
    return objects_.count(id) != 0;
}

std::size_t WeakFactory::Size() const {
    SmartGuard guard(Sync::SmartLock());
    return objects_.size();
}

} // namespace Smart
} // namespace Utils

namespace {
Utils::Smart::Global<g_CSyncCS> g_CSyncCSHolder;
} // namespace

Utils::Smart::Pointer<g_CSyncCS> GetCSyncCS() {
    return g_CSyncCSHolder.Get();
}
