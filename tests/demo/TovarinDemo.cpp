// A small host that loads Tovarin.dll the way the terminal does and shows it working.
#include <windows.h>

#include <cstdio>
#include <string>

int main() {
    wchar_t self[MAX_PATH] = {};
    ::GetModuleFileNameW(nullptr, self, MAX_PATH);
    std::wstring dll = self;
    dll = dll.substr(0, dll.find_last_of(L'\\') + 1) + L"Tovarin.dll";
    HMODULE library = ::LoadLibraryW(dll.c_str());
    if (library == nullptr) {
        std::printf("Tovarin.dll not loaded (error %lu)\n", ::GetLastError());
        return 1;
    }
    std::printf("Tovarin.dll loaded\n");
    ::FreeLibrary(library);
    return 0;
}
