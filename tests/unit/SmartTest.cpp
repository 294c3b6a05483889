// Shared objects and counted pointers: counts across copies and assignments, destruction exactly
// when the last count goes, the weak factory, failure texts, singletons, and a stress run.
#include "utils/Utils.Smart.h"

#include "support/FailureText.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <future>
#include <random>
#include <thread>
#include <vector>

using Utils::Smart::Base;
using Utils::Smart::Global;
using Utils::Smart::Pointer;
using Utils::Smart::WeakFactory;

namespace {

const char kSource[] = "Utils.Smart.cpp";

// A shared object that counts its destructions.
class Tracked : public virtual Base {
public:
    explicit Tracked(int* destroyed) : destroyed_(destroyed) {}
    ~Tracked() override { ++*destroyed_; }

private:
    int* destroyed_;
};

// Data ahead of the Base part, so that a pointer that skipped the virtual-base offset would count
// in the wrong place.
struct Padding {
    virtual ~Padding() {}
    long long words[4] = {1, 2, 3, 4};
};
class Offset : public Padding, public Tracked {
public:
    explicit Offset(int* destroyed) : Tracked(destroyed) {}
};

std::wstring Caught(void (*operation)(void*), void* argument) {
    try {
        operation(argument);
    } catch (const std::wstring& text) {
        return text;
    }
    return L"(nothing thrown)";
}

// ---------------------------------------------------------------------------------------------
// Counts

TEST(SmartBase, StartsUnownedAndUnregistered) {
    int destroyed = 0;
    Tracked object(&destroyed);
    EXPECT_EQ(object.Count(), 0);
    EXPECT_EQ(object.WeakId(), -1);
}

TEST(SmartPointer, NullCopiesAsNullWithoutCounting) {
    Pointer<Tracked> empty;
    EXPECT_FALSE(empty);
    Pointer<Tracked> copy(empty);
    EXPECT_FALSE(copy);
    EXPECT_EQ(copy.Get(), nullptr);
    int destroyed = 0;
    Pointer<Tracked> full(new Tracked(&destroyed));
    full = empty; // assigning null releases the old object
    EXPECT_FALSE(full);
    EXPECT_EQ(destroyed, 1);
}

TEST(SmartPointer, CopiesCountAndTheLastOneDestroys) {
    int destroyed = 0;
    Tracked* object = new Tracked(&destroyed);
    Pointer<Tracked> first(object);
    EXPECT_EQ(object->Count(), 1);
    {
        Pointer<Tracked> second(first);
        EXPECT_EQ(second.Get(), object);
        EXPECT_EQ(object->Count(), 2);
        Pointer<Tracked> third;
        third = second;
        EXPECT_EQ(object->Count(), 3);
    }
    EXPECT_EQ(object->Count(), 1);
    EXPECT_EQ(destroyed, 0);
    first.Reset();
    EXPECT_FALSE(first);
    EXPECT_EQ(destroyed, 1);
    first.Reset(); // resetting an empty pointer does nothing
    EXPECT_EQ(destroyed, 1);
}

TEST(SmartPointer, SelfAssignmentKeepsTheObject) {
    int destroyed = 0;
    Pointer<Tracked> only(new Tracked(&destroyed));
    Pointer<Tracked>& alias = only;
    only = alias;
    EXPECT_EQ(destroyed, 0);
    EXPECT_EQ(only->Count(), 1);
    only = only.Get(); // the raw form too
    EXPECT_EQ(destroyed, 0);
    EXPECT_EQ(only->Count(), 1);
}

TEST(SmartPointer, AssignmentReleasesTheOldObject) {
    int destroyedA = 0;
    int destroyedB = 0;
    Pointer<Tracked> a(new Tracked(&destroyedA));
    Pointer<Tracked> b(new Tracked(&destroyedB));
    a = b;
    EXPECT_EQ(destroyedA, 1);
    EXPECT_EQ(destroyedB, 0);
    EXPECT_EQ(a.Get(), b.Get());
    EXPECT_EQ(b->Count(), 2);
    int destroyedC = 0;
    a = new Tracked(&destroyedC);
    EXPECT_EQ(b->Count(), 1);
    EXPECT_EQ(a->Count(), 1);
    a = nullptr;
    EXPECT_EQ(destroyedC, 1);
    EXPECT_EQ(destroyedB, 0);
}

TEST(SmartPointer, MovesHandTheCountOver) {
    int destroyed = 0;
    Pointer<Tracked> source(new Tracked(&destroyed));
    Tracked* object = source.Get();
    Pointer<Tracked> moved(std::move(source));
    EXPECT_FALSE(source);
    EXPECT_EQ(moved.Get(), object);
    EXPECT_EQ(object->Count(), 1);
    Pointer<Tracked> target;
    target = std::move(moved);
    EXPECT_EQ(object->Count(), 1);
    target.Reset();
    EXPECT_EQ(destroyed, 1);
}

TEST(SmartPointer, FindsTheBaseBehindAVirtualBaseOffset) {
    int destroyed = 0;
    Offset* object = new Offset(&destroyed);
    Pointer<Offset> derived(object);
    Pointer<Base> base(derived);
    Pointer<Tracked> middle(derived);
    EXPECT_EQ(base.Get(), static_cast<Base*>(object));
    EXPECT_EQ(object->Count(), 3);
    EXPECT_EQ(object->words[0], 1); // the data ahead of the count was not touched
    EXPECT_EQ(object->words[3], 4);
    derived.Reset();
    middle.Reset();
    EXPECT_EQ(destroyed, 0);
    base.Reset();
    EXPECT_EQ(destroyed, 1);
}

// While it is destroyed, asks another thread to take the smart-pointer lock: that thread gets it
// only when the destruction runs outside the lock. The other thread's future is kept by the test,
// so that a failure ends in a time-out instead of a deadlock.
class LockProbe : public virtual Base {
public:
    LockProbe(bool* outside, std::future<void>* other) : outside_(outside), other_(other) {}
    ~LockProbe() override {
        *other_ = std::async(std::launch::async, [] {
            Utils::Sync::Lock<Utils::Sync::CriticalSection> guard(Utils::Sync::SmartLock());
        });
        *outside_ = other_->wait_for(std::chrono::seconds(10)) == std::future_status::ready;
    }

private:
    bool* outside_;
    std::future<void>* other_;
};

TEST(SmartPointer, DestroysTheLastObjectOutsideTheLockOnEveryRelease) {
    const char* const paths[] = {"reset", "destructor", "copy assignment", "move assignment",
                                 "raw assignment"};
    for (int path = 0; path < 5; ++path) {
        SCOPED_TRACE(paths[path]);
        bool outside = false;
        std::future<void> other;
        {
            Pointer<LockProbe> probe(new LockProbe(&outside, &other));
            Pointer<LockProbe> empty;
            switch (path) {
            case 0:
                probe.Reset();
                break;
            case 1:
                break; // the end of the block
            case 2:
                probe = empty;
                break;
            case 3:
                probe = std::move(empty);
                break;
            default:
                probe = nullptr;
                break;
            }
        }
        EXPECT_TRUE(outside);
        if (other.valid())
            other.wait();
    }
}

// A destructor that releases further objects re-enters the lock on the same thread.
class Node : public virtual Base {
public:
    Node(int* destroyed, const Pointer<Node>& next) : next_(next), destroyed_(destroyed) {}
    ~Node() override { ++*destroyed_; }

private:
    Pointer<Node> next_;
    int* destroyed_;
};

TEST(SmartPointer, ReleasingAChainReleasesEveryLink) {
    int destroyed = 0;
    Pointer<Node> head;
    for (int i = 0; i < 100; ++i)
        head = Pointer<Node>(new Node(&destroyed, head));
    EXPECT_EQ(destroyed, 0);
    head.Reset();
    EXPECT_EQ(destroyed, 100);
}

// ---------------------------------------------------------------------------------------------
// Failure texts

void ReleaseTwice(void* object) {
    static_cast<Base*>(object)->Release();
}

TEST(SmartBase, NegativeCountThrowsAndDestroysNothing) {
    int destroyed = 0;
    Tracked object(&destroyed); // count 0: one more release than counts taken
    const std::wstring text = Caught(ReleaseTwice, static_cast<Base*>(&object));
    EXPECT_GT(TestSupport::ReportedLine(text), 0);
    EXPECT_EQ(text, TestSupport::ExpectedFailure("void __cdecl Utils::Smart::Base::Release(void)", kSource,
                                                 TestSupport::ReportedLine(text),
                                                 L"Отрицательное значение счётчика указателей."));
    EXPECT_EQ(object.Count(), -1);
    EXPECT_EQ(destroyed, 0);
    // The lock was left as the exception passed: another thread gets it.
    auto other = std::async(std::launch::async, [] {
        Utils::Sync::Lock<Utils::Sync::CriticalSection> guard(Utils::Sync::SmartLock());
    });
    ASSERT_EQ(other.wait_for(std::chrono::seconds(30)), std::future_status::ready);
}

struct CompareCase {
    const char* name;
    const char* signature;
    bool (Base::*method)(Base*);
    const wchar_t* condition;
    const wchar_t* methodName;
};

const CompareCase kCompares[] = {
    {"Equals", "bool __cdecl Utils::Smart::Base::Equals(class Utils::Smart::Base *)", &Base::Equals, L"равно",
     L"Equals"},
    {"Less", "bool __cdecl Utils::Smart::Base::Less(class Utils::Smart::Base *)", &Base::Less, L"меньше",
     L"Less"},
};

class SmartCompare : public testing::TestWithParam<CompareCase> {};

TEST_P(SmartCompare, BaseVersionThrowsItsText) {
    const CompareCase& c = GetParam();
    int destroyed = 0;
    Tracked left(&destroyed);
    Tracked right(&destroyed);
    std::wstring text;
    try {
        (static_cast<Base&>(left).*c.method)(&right);
    } catch (const std::wstring& thrown) {
        text = thrown;
    }
    const std::wstring message =
        std::wstring(L"Метод позволяет сравнивать объекты по условию \"") + c.condition +
        L"\" внутри класса умного указателя.\r\nДля использования этого метода необходимо определить его в "
        L"своём коде.\r\nОсновной метод \"Utils::Smart::Base::" +
        c.methodName + L"()\".\r\nТщательно проверьте этот метод, если он нужен.";
    EXPECT_GT(TestSupport::ReportedLine(text), 0);
    EXPECT_EQ(text,
              TestSupport::ExpectedFailure(c.signature, kSource, TestSupport::ReportedLine(text), message));
}

INSTANTIATE_TEST_SUITE_P(Texts, SmartCompare, testing::ValuesIn(kCompares),
                         [](const testing::TestParamInfo<CompareCase>& info) { return info.param.name; });

// ---------------------------------------------------------------------------------------------
// The weak factory

TEST(WeakFactory, DropsAnObjectWhenItsLastOutsidePointerGoes) {
    WeakFactory& factory = WeakFactory::Instance();
    const std::size_t before = factory.Size();
    int destroyed = 0;
    Tracked* object = new Tracked(&destroyed);
    Pointer<Tracked> outside(object);
    const int id = factory.Register(object);
    EXPECT_GE(id, 0);
    EXPECT_EQ(object->WeakId(), id);
    EXPECT_EQ(object->Count(), 2); // the registry holds one count
    EXPECT_EQ(factory.Register(object), id);
    EXPECT_EQ(object->Count(), 2);
    EXPECT_TRUE(factory.Contains(id));
    {
        Pointer<Tracked> copy(outside);
        EXPECT_EQ(object->Count(), 3);
    }
    EXPECT_EQ(destroyed, 0);
    EXPECT_TRUE(factory.Contains(id));
    outside.Reset(); // count falls to 1: the registry lets go and the object dies
    EXPECT_EQ(destroyed, 1);
    EXPECT_FALSE(factory.Contains(id));
    EXPECT_EQ(factory.Size(), before);
}

TEST(WeakFactory, RegistersUnderFreshIdentifiers) {
    WeakFactory& factory = WeakFactory::Instance();
    int destroyed = 0;
    Pointer<Tracked> a(new Tracked(&destroyed));
    Pointer<Tracked> b(new Tracked(&destroyed));
    const int idA = factory.Register(a.Get());
    const int idB = factory.Register(b.Get());
    EXPECT_GT(idB, idA);
    EXPECT_EQ(factory.Register(nullptr), -1);
    a.Reset();
    b.Reset();
    EXPECT_EQ(destroyed, 2);
}

TEST(WeakFactory, DirectDropLeavesAnObjectThatIsStillHeld) {
    WeakFactory& factory = WeakFactory::Instance();
    int destroyed = 0;
    Pointer<Tracked> outside(new Tracked(&destroyed));
    const int id = factory.Register(outside.Get());
    factory.DropId(id);
    EXPECT_FALSE(factory.Contains(id));
    EXPECT_EQ(outside->WeakId(), -1);
    EXPECT_EQ(outside->Count(), 1);
    EXPECT_EQ(destroyed, 0);
    outside.Reset();
    EXPECT_EQ(destroyed, 1);
}

TEST(WeakFactory, DirectDropOfTheOnlyCountDestroys) {
    WeakFactory& factory = WeakFactory::Instance();
    int destroyed = 0;
    const int id = factory.Register(new Tracked(&destroyed));
    EXPECT_EQ(destroyed, 0);
    factory.DropId(id);
    EXPECT_EQ(destroyed, 1);
}

TEST(WeakFactory, DropOfAnUnknownIdentifierThrowsAndChangesNothing) {
    WeakFactory& factory = WeakFactory::Instance();
    int destroyed = 0;
    // A registered object that must survive the failed drops, under an identifier not asked for.
    Pointer<Tracked> kept(new Tracked(&destroyed));
    int id = factory.Register(kept.Get());
    if (id == 7) {
        factory.DropId(id);
        id = factory.Register(kept.Get());
    }
    const std::size_t size = factory.Size();
    for (int unknown : {7, -5}) {
        SCOPED_TRACE(unknown);
        ASSERT_FALSE(factory.Contains(unknown));
        const std::wstring text =
            Caught([](void* value) { WeakFactory::Instance().DropId(*static_cast<int*>(value)); }, &unknown);
        EXPECT_GT(TestSupport::ReportedLine(text), 0);
        EXPECT_EQ(text, TestSupport::ExpectedFailure(
                            "void __cdecl Utils::Smart::WeakFactory::DropId(const int)", kSource,
                            TestSupport::ReportedLine(text),
                            L"Не удалось найти объект с ID = " + std::to_wstring(unknown)));
        EXPECT_EQ(factory.Size(), size);
        EXPECT_TRUE(factory.Contains(id));
        EXPECT_EQ(kept->Count(), 2);
    }
    EXPECT_EQ(destroyed, 0);
    kept.Reset();
    EXPECT_EQ(destroyed, 1);
    EXPECT_FALSE(factory.Contains(id));
}

// ---------------------------------------------------------------------------------------------
// Singletons

std::atomic<int> g_fragileBuilt{0};
std::atomic<int> g_fragileDestroyed{0};
std::atomic<bool> g_fragileFails{false};

class Fragile : public virtual Base {
public:
    Fragile() {
        if (g_fragileFails)
            throw std::wstring(L"no");
        ++g_fragileBuilt;
    }
    ~Fragile() override { ++g_fragileDestroyed; }
};

TEST(SmartGlobal, CreatesOnceAndHandsOutCounts) {
    g_fragileBuilt = 0;
    g_fragileDestroyed = 0;
    g_fragileFails = false;
    Global<Fragile> global;
    Pointer<Fragile> first = global.Get();
    ASSERT_TRUE(first);
    EXPECT_EQ(first->Count(), 2); // the global's own count and this one
    Pointer<Fragile> second = global.Get();
    EXPECT_EQ(second.Get(), first.Get());
    EXPECT_EQ(first->Count(), 3);
    EXPECT_EQ(g_fragileBuilt, 1);
    first.Reset();
    second.Reset();
    EXPECT_EQ(g_fragileDestroyed, 0); // the global still holds it
    global.Reset();
    EXPECT_EQ(g_fragileDestroyed, 1);
}

TEST(SmartGlobal, FailedConstructionLeavesItNull) {
    g_fragileBuilt = 0;
    g_fragileDestroyed = 0;
    Global<Fragile> global;
    g_fragileFails = true;
    EXPECT_THROW(global.Get(), std::wstring);
    g_fragileFails = false;
    Pointer<Fragile> made = global.Get(); // the next call tries again
    ASSERT_TRUE(made);
    EXPECT_EQ(made->Count(), 2);
    EXPECT_EQ(g_fragileBuilt, 1);
}

TEST(SmartGlobal, ReleasesItsObjectWhenDestroyed) {
    g_fragileDestroyed = 0;
    g_fragileFails = false;
    {
        Global<Fragile> global;
        global.Get();
        EXPECT_EQ(g_fragileDestroyed, 0);
    }
    EXPECT_EQ(g_fragileDestroyed, 1);
}

TEST(SmartGlobal, ConcurrentFirstUseCreatesOneObject) {
    g_fragileBuilt = 0;
    g_fragileFails = false;
    Global<Fragile> global;
    std::vector<std::future<Fragile*>> callers;
    for (int i = 0; i < 4; ++i)
        callers.push_back(std::async(std::launch::async, [&global] { return global.Get().Get(); }));
    Fragile* const first = callers[0].get();
    for (size_t i = 1; i < callers.size(); ++i)
        EXPECT_EQ(callers[i].get(), first);
    EXPECT_EQ(g_fragileBuilt, 1);
}

TEST(CSyncCS, GetterHandsOutOneInstanceWithACountPerCopy) {
    Pointer<g_CSyncCS> first = GetCSyncCS();
    ASSERT_TRUE(first);
    const int count = first->Count();
    EXPECT_GE(count, 2); // the global pointer and this copy
    {
        Pointer<g_CSyncCS> second = GetCSyncCS();
        EXPECT_EQ(second.Get(), first.Get());
        EXPECT_EQ(first->Count(), count + 1);
    }
    EXPECT_EQ(first->Count(), count);
    // It is a usable lock, and re-entrant.
    Utils::Sync::Lock<Utils::Sync::CriticalSection> outer(*first);
    Utils::Sync::Lock<Utils::Sync::CriticalSection> inner(*GetCSyncCS());
}

// ---------------------------------------------------------------------------------------------
// Stress: threads copy, assign and empty shared slots while objects come and go. Every object
// must die exactly once, after the last pointer to it is gone.

constexpr int kStressThreads = 4;
constexpr int kStressIterations = 100000;
constexpr int kStressSlots = 12;
constexpr int kStressObjects = 8000;

std::array<std::atomic<int>, kStressObjects> g_deaths;
std::atomic<int> g_useAfterDeath{0};

class StressObject : public virtual Base {
public:
    explicit StressObject(int id) : id_(id) {}
    ~StressObject() override { ++g_deaths[id_]; }
    void Touch() const {
        if (g_deaths[id_] != 0)
            ++g_useAfterDeath;
    }

private:
    int id_;
};

TEST(SmartStress, ConcurrentCopiesAndReleasesDestroyEachObjectOnce) {
    for (std::atomic<int>& death : g_deaths)
        death = 0;
    g_useAfterDeath = 0;
    const std::size_t registeredBefore = WeakFactory::Instance().Size();
    std::vector<Pointer<StressObject>> slots(kStressSlots);
    std::atomic<int> created{0};
    std::atomic<int> ready{0};
    std::atomic<bool> go{false};

    auto work = [&](unsigned seed) {
        std::mt19937 random(seed);
        Pointer<StressObject> local;
        ++ready;
        while (!go)
            std::this_thread::yield();
        for (int i = 0; i < kStressIterations; ++i) {
            const int a = static_cast<int>(random() % kStressSlots);
            const int b = static_cast<int>(random() % kStressSlots);
            switch (random() % 8) {
            case 0:
            case 1:
                local = slots[a];
                break;
            case 2:
                slots[a] = slots[b];
                break;
            case 3:
                slots[a].Reset();
                break;
            case 4:
                slots[a] = local;
                local.Reset();
                break;
            case 5: {
                Pointer<StressObject> copy(slots[a]);
                if (copy)
                    copy->Touch();
                break;
            }
            case 6: {
                const int id = created++;
                if (id >= kStressObjects)
                    break;
                Pointer<StressObject> made(new StressObject(id));
                if (id % 3 == 0) // some live in the weak factory too, and are dropped from it
                    WeakFactory::Instance().Register(made.Get());
                slots[a] = made;
                break;
            }
            default:
                if (local)
                    local->Touch();
                local = slots[b];
                break;
            }
        }
    };

    std::vector<std::future<void>> threads;
    for (int t = 0; t < kStressThreads; ++t)
        threads.push_back(std::async(std::launch::async, work, 1234u + static_cast<unsigned>(t)));
    while (ready != kStressThreads)
        std::this_thread::yield();
    go = true;
    for (std::future<void>& thread : threads) {
        if (thread.wait_for(std::chrono::seconds(120)) != std::future_status::ready) {
            std::fprintf(stderr, "SmartStress: the threads did not finish (deadlock)\n");
            std::fflush(stderr);
            std::_Exit(3);
        }
        thread.get();
    }

    const int made = std::min<int>(created, kStressObjects);
    ASSERT_GT(made, 100); // the run did make objects
    int alive = 0;
    for (int id = 0; id < made; ++id) {
        EXPECT_LE(g_deaths[id], 1) << "object " << id;
        alive += g_deaths[id] == 0;
    }
    EXPECT_LE(alive, kStressSlots); // only what the slots still hold
    slots.clear();
    for (int id = 0; id < made; ++id)
        EXPECT_EQ(g_deaths[id], 1) << "object " << id;
    for (int id = made; id < kStressObjects; ++id)
        EXPECT_EQ(g_deaths[id], 0);
    EXPECT_EQ(g_useAfterDeath, 0);
    EXPECT_EQ(WeakFactory::Instance().Size(), registeredBefore);
}

} // namespace
