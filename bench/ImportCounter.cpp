#include "ImportCounter.h"

#include <atomic>
#include <cstddef>
#include <cstring>

namespace Bench {

namespace {

std::atomic<unsigned long long> g_allocations{0};

typedef void*(__cdecl* MallocCall)(std::size_t);
typedef void*(__cdecl* CallocCall)(std::size_t, std::size_t);
typedef void*(__cdecl* ReallocCall)(void*, std::size_t);
typedef LPVOID(WINAPI* HeapAllocCall)(HANDLE, DWORD, SIZE_T);
typedef LPVOID(WINAPI* HeapReAllocCall)(HANDLE, DWORD, LPVOID, SIZE_T);

// The original entries, as the loader filled them in (0 until patched).
ULONG_PTR g_malloc = 0;
ULONG_PTR g_calloc = 0;
ULONG_PTR g_realloc = 0;
ULONG_PTR g_heapAlloc = 0;
ULONG_PTR g_heapReAlloc = 0;

void* __cdecl CountedMalloc(std::size_t size) {
    ++g_allocations;
    return reinterpret_cast<MallocCall>(g_malloc)(size);
}

void* __cdecl CountedCalloc(std::size_t count, std::size_t size) {
    ++g_allocations;
    return reinterpret_cast<CallocCall>(g_calloc)(count, size);
}

// A realloc may move the block: it is counted as an allocation.
void* __cdecl CountedRealloc(void* block, std::size_t size) {
    ++g_allocations;
    return reinterpret_cast<ReallocCall>(g_realloc)(block, size);
}

LPVOID WINAPI CountedHeapAlloc(HANDLE heap, DWORD flags, SIZE_T size) {
    ++g_allocations;
    return reinterpret_cast<HeapAllocCall>(g_heapAlloc)(heap, flags, size);
}

LPVOID WINAPI CountedHeapReAlloc(HANDLE heap, DWORD flags, LPVOID block, SIZE_T size) {
    ++g_allocations;
    return reinterpret_cast<HeapReAllocCall>(g_heapReAlloc)(heap, flags, block, size);
}

struct Hook {
    const char* name;
    ULONG_PTR replacement;
    ULONG_PTR* original;
};

// The universal C runtime's names forward to the same three functions.
const Hook kHooks[] = {
    {"malloc", reinterpret_cast<ULONG_PTR>(&CountedMalloc), &g_malloc},
    {"_malloc_base", reinterpret_cast<ULONG_PTR>(&CountedMalloc), &g_malloc},
    {"calloc", reinterpret_cast<ULONG_PTR>(&CountedCalloc), &g_calloc},
    {"_calloc_base", reinterpret_cast<ULONG_PTR>(&CountedCalloc), &g_calloc},
    {"realloc", reinterpret_cast<ULONG_PTR>(&CountedRealloc), &g_realloc},
    {"_realloc_base", reinterpret_cast<ULONG_PTR>(&CountedRealloc), &g_realloc},
    {"HeapAlloc", reinterpret_cast<ULONG_PTR>(&CountedHeapAlloc), &g_heapAlloc},
    {"HeapReAlloc", reinterpret_cast<ULONG_PTR>(&CountedHeapReAlloc), &g_heapReAlloc},
};

bool Patch(ULONG_PTR* slot, const Hook& hook) {
    // One forwarder serves one original: a second import of the same name elsewhere is left alone
    // unless it resolves to the same function.
    if (*hook.original != 0 && *hook.original != *slot)
        return false;
    DWORD old = 0;
    if (!::VirtualProtect(slot, sizeof(*slot), PAGE_READWRITE, &old))
        return false;
    *hook.original = *slot;
    *slot = hook.replacement;
    ::VirtualProtect(slot, sizeof(*slot), old, &old);
    return true;
}

} // namespace

int ImportCounter::Install(HMODULE module) {
    if (module == nullptr)
        return 0;
    unsigned char* const base = reinterpret_cast<unsigned char*>(module);
    const IMAGE_DOS_HEADER* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const IMAGE_NT_HEADERS* nt = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const IMAGE_DATA_DIRECTORY& imports = nt->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    if (imports.VirtualAddress == 0)
        return 0;
    int patched = 0;
    for (const IMAGE_IMPORT_DESCRIPTOR* library =
             reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + imports.VirtualAddress);
         library->Name != 0; ++library) {
        const DWORD lookup =
            library->OriginalFirstThunk != 0 ? library->OriginalFirstThunk : library->FirstThunk;
        const IMAGE_THUNK_DATA* name = reinterpret_cast<const IMAGE_THUNK_DATA*>(base + lookup);
        IMAGE_THUNK_DATA* slot = reinterpret_cast<IMAGE_THUNK_DATA*>(base + library->FirstThunk);
        for (; name->u1.AddressOfData != 0; ++name, ++slot) {
            if (IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal))
                continue;
            const IMAGE_IMPORT_BY_NAME* byName =
                reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(base + name->u1.AddressOfData);
            const char* const function = reinterpret_cast<const char*>(byName->Name);
            for (const Hook& hook : kHooks)
                if (std::strcmp(function, hook.name) == 0 && Patch(&slot->u1.Function, hook))
                    ++patched;
        }
    }
    return patched;
}

unsigned long long ImportCounter::Allocations() {
    return g_allocations.load();
}

} // namespace Bench
