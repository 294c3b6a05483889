#pragma once
// The 100 exports as rows (name, signature text, neutral result) with a caller that fills each
// argument from one set of values by its type; expectations on the boxes the exports show.
#include "BoxRecorder.h"
#include "TempDir.h"
#include "include/Tovarin.h"

#include <gtest/gtest.h>

#include <cstring>
#include <stdexcept>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

namespace TestSupport {

// The folder of the running executable, with a trailing backslash.
inline std::wstring ExecutableFolder() {
    wchar_t self[MAX_PATH] = {};
    const std::wstring path(self, ::GetModuleFileNameW(nullptr, self, MAX_PATH));
    return path.substr(0, path.find_last_of(L'\\') + 1);
}

// The export `name` of a loaded module as a function of type F.
template <class F> F FromModule(HMODULE module, const char* name) {
    FARPROC proc = ::GetProcAddress(module, name);
    if (proc == nullptr)
        throw std::runtime_error(std::string("no export ") + name);
    return reinterpret_cast<F>(reinterpret_cast<void*>(proc));
}

// The built Tovarin.dll, loaded once the way the terminal loads it.
inline HMODULE TovarinModule() {
    static HMODULE module = ::LoadLibraryW((ExecutableFolder() + L"Tovarin.dll").c_str());
    return module;
}

typedef unsigned __int64 u64;

// One call's arguments: a first `void *` is the handle, the k-th text is paths[k], any other
// pointer the buffer; the k-th of n numbers is ints[k + 4 - n] (0 before the array), so that
// {.., size, start, count} fits every array export.
struct CallArgs {
    void* handle = nullptr;
    void* buffer = nullptr;
    const char* pathA[2] = {nullptr, nullptr};
    const wchar_t* pathW[2] = {nullptr, nullptr};
    u64 ints[4] = {0, 0, 0, 0};
};

// A result as its bytes in its width, zero-extended.
template <class R> u64 Bits(R value) {
    u64 bits = 0;
    std::memcpy(&bits, &value, sizeof(R));
    return std::is_same<R, bool>::value ? bits & 1 : bits;
}

template <class T> struct IsText {
    static constexpr bool value =
        std::is_same<T, const char*>::value || std::is_same<T, const wchar_t*>::value;
};

template <class F> struct Caller;
template <class R, class... A> struct Caller<R(__cdecl*)(A...)> {
    static constexpr int kNumbers = ((std::is_arithmetic<A>::value ? 1 : 0) + ... + 0);
    static constexpr int kTexts = ((IsText<A>::value ? 1 : 0) + ... + 0);
    static constexpr bool kByHandle = std::is_same<std::tuple_element_t<0, std::tuple<A...>>, void*>::value;

    // How many arguments before the I-th are of a kind.
    template <size_t I, template <class> class Kind> static constexpr int Ordinal() {
        int k = 0, i = 0;
        ((k += (i++ < static_cast<int>(I) && Kind<A>::value) ? 1 : 0), ...);
        return k;
    }
    template <class T, size_t I> static T Arg(const CallArgs& args) {
        if constexpr (std::is_same<T, const char*>::value)
            return args.pathA[Ordinal<I, IsText>()];
        else if constexpr (std::is_same<T, const wchar_t*>::value)
            return args.pathW[Ordinal<I, IsText>()];
        else if constexpr (std::is_pointer<T>::value)
            return I == 0 ? static_cast<T>(args.handle) : reinterpret_cast<T>(args.buffer);
        else
            return Ordinal<I, std::is_arithmetic>() + 4 < kNumbers
                       ? T()
                       : static_cast<T>(args.ints[Ordinal<I, std::is_arithmetic>() + 4 - kNumbers]);
    }
    template <size_t... I> static u64 Call(FARPROC proc, const CallArgs& args, std::index_sequence<I...>) {
        const auto f = reinterpret_cast<R(__cdecl*)(A...)>(reinterpret_cast<void*>(proc));
        if constexpr (std::is_void<R>::value)
            return f(Arg<A, I>(args)...), 0;
        else
            return Bits(f(Arg<A, I>(args)...));
    }
    static u64 Run(FARPROC proc, const CallArgs& args) {
        return Call(proc, args, std::index_sequence_for<A...>{});
    }
};

struct ExportRow {
    const char* name;
    const char* signature;
    u64 neutral; // Bits of the neutral result; 0 for void
    u64 (*run)(FARPROC, const CallArgs&);
    bool byHandle; // the first argument is a handle
    int texts;     // text arguments
    u64 Call(const CallArgs& args) const { return run(FromModule<FARPROC>(TovarinModule(), name), args); }
};

const std::vector<ExportRow>& Exports();
const ExportRow& ExportOf(const std::string& name);

// The heading of a failure of export `name`: its signature, "Tovarin.cpp" and "Line: ".
std::wstring Heading(const std::string& name);
// Exactly one box since the last Clear, with the icon, opening with the heading of `name` and holding
// each piece; the boxes are cleared afterwards.
void ExpectOneBox(BoxRecorder& boxes, const std::string& name, const std::vector<std::wstring>& pieces,
                  UINT icon = MB_ICONERROR);
void ExpectNoBox(BoxRecorder& boxes);

// Makes a folder the current folder for its lifetime.
struct CurrentFolder {
    explicit CurrentFolder(const std::wstring& folder) : saved(MAX_PATH, L'\0') {
        saved.resize(::GetCurrentDirectoryW(MAX_PATH, &saved[0]));
        ::SetCurrentDirectoryW(folder.c_str());
    }
    ~CurrentFolder() { ::SetCurrentDirectoryW(saved.c_str()); }
    std::wstring saved;
};

} // namespace TestSupport

// The export `name`, typed by its declaration in include/Tovarin.h.
#define TOVARIN_FN(name) ::TestSupport::FromModule<decltype(&::name)>(::TestSupport::TovarinModule(), #name)
