#pragma once
// Counts the unit-test program's calls of the global operator new, so that tests can assert that
// a path allocates nothing.
#include <cstddef>

namespace TestSupport {
std::size_t Allocations() noexcept;
} // namespace TestSupport
