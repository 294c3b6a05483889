// Replaces the global allocation functions of the unit-test program with counting ones. The array
// forms and the sized and nothrow forms of the runtime forward here; the aligned forms stay the
// runtime's own pair.
#include "AllocationCount.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {
std::atomic<std::size_t> g_allocations{0};
} // namespace

namespace TestSupport {
std::size_t Allocations() noexcept {
    return g_allocations.load();
}
} // namespace TestSupport

void* operator new(std::size_t size) {
    ++g_allocations;
    if (void* p = std::malloc(size == 0 ? 1 : size))
        return p;
    throw std::bad_alloc();
}

void operator delete(void* p) noexcept {
    std::free(p);
}
void operator delete(void* p, std::size_t) noexcept {
    std::free(p);
}
