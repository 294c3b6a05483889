// The tests' imports: those of the built Tovarin.dll that the black-box tests load.
#include "Mql5.h"

#include "support/Exports.h"

void* mql::Bind(const char* name) {
    return TestSupport::FromModule<void*>(TestSupport::TovarinModule(), name);
}
