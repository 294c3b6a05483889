#pragma once
// The built Tovarin.dll, loaded the way the terminal loads it, with its exports looked up by name.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>

namespace TestSupport {

class TovarinDll {
public:
    static HMODULE Module();

    // The export `name` as a function pointer of type F (fails the test when it is missing).
    template <class F> static F Get(const char* name) {
        FARPROC proc = ::GetProcAddress(Module(), name);
        EXPECT_NE(proc, nullptr) << name;
        return reinterpret_cast<F>(reinterpret_cast<void*>(proc));
    }
};

} // namespace TestSupport
