#include "TovarinDll.h"

#include "PeImage.h"

namespace TestSupport {

HMODULE TovarinDll::Module() {
    static HMODULE module = ::LoadLibraryW((ExecutableFolder() + L"Tovarin.dll").c_str());
    return module;
}

} // namespace TestSupport
