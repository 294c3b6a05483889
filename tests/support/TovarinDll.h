#pragma once
// The built Tovarin.dll, loaded the way the terminal loads it, with its exports looked up by name.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>

namespace TestSupport {

// The folder of the running executable, with a trailing backslash.
inline std::wstring ExecutableFolder() {
    wchar_t self[MAX_PATH] = {};
    const std::wstring path(self, ::GetModuleFileNameW(nullptr, self, MAX_PATH));
    return path.substr(0, path.find_last_of(L'\\') + 1);
}

// Stands in for an export the DLL lacks: the test has failed already, the call gives R().
template <class F> struct Missing;
template <class R, class... A> struct Missing<R(__cdecl*)(A...)> {
    static R __cdecl Call(A...) { return R(); }
};

struct TovarinDll {
    static HMODULE Module() {
        static HMODULE module = ::LoadLibraryW((ExecutableFolder() + L"Tovarin.dll").c_str());
        return module;
    }
    // The export `name` as a function of type F; a missing export fails the test.
    template <class F> static F Get(const char* name) {
        FARPROC proc = ::GetProcAddress(Module(), name);
        EXPECT_NE(proc, nullptr) << name;
        return proc != nullptr ? reinterpret_cast<F>(reinterpret_cast<void*>(proc)) : &Missing<F>::Call;
    }
};

} // namespace TestSupport

// The export `name`, typed by its declaration in include/Tovarin.h.
#define TOVARIN_FN(name) ::TestSupport::TovarinDll::Get<decltype(&::name)>(#name)
