#pragma once
// The 100 exports as rows (name, signature text, neutral result) with a caller that fills each
// argument from one set of values by its type; expectations on the boxes the exports show.
#include "BoxRecorder.h"
#include "TempDir.h"
#include "include/Tovarin.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <tuple>
#include <type_traits>
#include <vector>

namespace TestSupport {

// The export `name` of a loaded module as a function of type F.
template <class F> F FromModule(HMODULE module, const char* name) {
    FARPROC proc = ::GetProcAddress(module, name);
    if (proc == nullptr)
        throw std::runtime_error(std::string("no export ") + name);
    return reinterpret_cast<F>(reinterpret_cast<void*>(proc));
}

// The built Tovarin.dll beside the executable, loaded once the way the terminal loads it.
inline HMODULE TovarinModule() {
    static HMODULE module = ::LoadLibraryW(L"Tovarin.dll");
    return module;
}

typedef unsigned __int64 u64;

// One call's arguments: a first pointer is the handle, the k-th text is paths[k], any other
// pointer the buffer; the k-th of n numbers is ints[k + 4 - n] (0 before the array), so that
// {.., size, start, count} fits every array export.
struct CallArgs {
    void *handle = nullptr, *buffer = nullptr;
    const char* pathA[2] = {};
    const wchar_t* pathW[2] = {};
    u64 ints[4] = {};
};

// A result as its bytes in its width, zero-extended.
template <class R> u64 Bits(R value) {
    u64 bits = 0;
    std::memcpy(&bits, &value, sizeof(R));
    return std::is_same<R, bool>::value ? bits & 1 : bits;
}

// The next argument of type T; n counts the arguments, texts and numbers taken (numbers from 4 - n).
template <class T> T Arg(const CallArgs& args, int (&n)[3]) {
    [[maybe_unused]] const bool first = n[0]++ == 0;
    if constexpr (std::is_same<T, const char*>::value)
        return args.pathA[n[1]++];
    else if constexpr (std::is_same<T, const wchar_t*>::value)
        return args.pathW[n[1]++];
    else if constexpr (std::is_pointer<T>::value)
        return static_cast<T>(first ? args.handle : args.buffer);
    else
        return n[2]++ < 0 ? T() : static_cast<T>(args.ints[n[2] - 1]);
}

template <class R, class... A> u64 Run(FARPROC proc, const CallArgs& args) {
    int n[3] = {0, 0, 4 - (std::is_arithmetic<A>::value + ... + 0)};
    const std::tuple<A...> values{Arg<A>(args, n)...}; // in order, left to right
    const auto f = reinterpret_cast<R(__cdecl*)(A...)>(reinterpret_cast<void*>(proc));
    if constexpr (std::is_void<R>::value)
        return std::apply(f, values), 0;
    else
        return Bits(std::apply(f, values));
}

struct ExportRow {
    const char *name, *signature;
    u64 neutral; // Bits of the neutral result; 0 for void
    u64 (*run)(FARPROC, const CallArgs&);
    bool byHandle; // the first argument is a handle
    int texts;     // text arguments
    u64 Call(const CallArgs& args) const { return run(FromModule<FARPROC>(TovarinModule(), name), args); }
};

const std::vector<ExportRow>& Exports();
const ExportRow& ExportOf(const std::string& name);

// Exactly one box since the last Clear, with the icon, opening with the heading of a failure of `name`
// (its signature, "Tovarin.cpp" and "Line: ") and holding each piece; the boxes are cleared afterwards.
void ExpectOneBox(BoxRecorder& boxes, const std::string& name, const std::vector<std::wstring>& pieces,
                  UINT icon = MB_ICONERROR);
void ExpectNoBox(BoxRecorder& boxes);

// Makes a folder the current folder for its lifetime.
struct CurrentFolder {
    explicit CurrentFolder(const std::wstring& folder) { std::filesystem::current_path(folder); }
    ~CurrentFolder() { std::filesystem::current_path(saved); }
    const std::filesystem::path saved = std::filesystem::current_path();
};

} // namespace TestSupport

// The export `name`, typed by its declaration in include/Tovarin.h.
#define TOVARIN_FN(name) ::TestSupport::FromModule<decltype(&::name)>(::TestSupport::TovarinModule(), #name)
