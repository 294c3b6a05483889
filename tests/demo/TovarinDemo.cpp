// A small host that uses Tovarin.dll through its header and import library, as a C or C++ host would.
#include "include/Tovarin.h"
#include "support/BoxRecorder.h"
#include "support/TempDir.h"

#include <cstdio>
#include <string>

int main() {
    TestSupport::BoxRecorder boxes; // the library's failure boxes are recorded and closed
    TestSupport::TempDir dir;
    const std::wstring data = dir / L"sub\\data.bin", copy = dir / L"copy.bin";
    bool all = true;
    const auto check = [&all](const char* what, bool ok) {
        std::printf("  %-32s %s\n", what, ok ? "ok" : "FAILED");
        all = all && ok;
    };
    void* file = FileCreateAlwaysW(data.c_str(), TOVARIN_DEFAULT, TOVARIN_DEFAULT);
    check("FileCreateAlwaysW", file != nullptr);
    double closes[3] = {1.0801, 1.0812, 1.0799}, back[3] = {};
    check("FileWriteInt", FileWriteInt(file, 20261123) == 4);
    check("FileWriteDoubleArray", FileWriteDoubleArray(file, closes, 3, 0, TOVARIN_TO_END) == 3);
    FileSetPointerBegin(file, 0);
    check("FileReadInt", FileReadInt(file) == 20261123);
    check("FileReadDoubleArray",
          FileReadDoubleArray(file, back, 3, 0, TOVARIN_TO_END) == 3 && back[2] == 1.0799);
    FileCloseHandle(file);
    check("FileCopyW", FileCopyW(data.c_str(), copy.c_str()) == 1 && FileCheckW(copy.c_str()) == 1);
    check("FileWriteInt(bad handle) == -1", FileWriteInt(reinterpret_cast<void*>(0x1234), 1) == -1);
    check("one box shown", boxes.Boxes().size() == 1);
    std::printf(all ? "All demo steps passed.\n" : "Some demo steps failed.\n");
    return all ? 0 : 1;
}
