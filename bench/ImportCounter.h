#pragma once
// Counts the heap allocations that one loaded module makes, without any help from the module.
//
// The DLL carries its own copy of the C++ runtime, so a replaced operator new in the benchmark
// program never sees the DLL's allocations. Every allocation inside the DLL does, however, end in
// an imported heap function (malloc, calloc and realloc of the C runtime DLL for a MinGW build;
// HeapAlloc and HeapReAlloc of KERNEL32 for a build with a static Microsoft runtime). Install
// rewrites those entries of the module's import address table in memory to counting forwarders,
// so the count covers exactly the calls that the module's own code makes: allocations inside the
// system calls it makes (made by the system DLLs through their own imports) are not counted.
#include <windows.h>

namespace Bench {

class ImportCounter {
public:
    // Patches `module`'s imports; returns the number of table entries rewritten (0: nothing to
    // count with, and Allocations() stays 0).
    static int Install(HMODULE module);
    // Allocation calls made by the module since Install.
    static unsigned long long Allocations();
};

} // namespace Bench
