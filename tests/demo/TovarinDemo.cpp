// A small host that uses Tovarin.dll through its header and import library, as a C or C++ host would.
#include "include/Tovarin.h"
#include "support/BoxRecorder.h"
#include "support/TempDir.h"

#include <cstdio>

int main() {
    TestSupport::BoxRecorder boxes; // the library's failure boxes are recorded and closed
    TestSupport::TempDir dir;
    const std::wstring data = dir / L"sub\\data.bin", copy = dir / L"copy.bin";
    void* file = FileCreateAlwaysW(data.c_str(), TOVARIN_DEFAULT, TOVARIN_DEFAULT);
    double closes[3] = {1.0801, 1.0812, 1.0799}, back[3] = {};
    const bool wrote = FileWriteInt(file, 20261123) == 4 && FileWriteDoubleArray(file, closes, 3, 0, 3) == 3;
    FileSetPointerBegin(file, 0);
    const bool read = FileReadInt(file) == 20261123 &&
                      FileReadDoubleArray(file, back, 3, 0, TOVARIN_TO_END) == 3 && back[2] == 1.0799;
    FileCloseHandle(file);
    const bool copied = FileCopyW(data.c_str(), copy.c_str()) == 1 && FileCheckW(copy.c_str()) == 1;
    const bool refused = FileWriteInt(reinterpret_cast<void*>(0x1234), 1) == -1 && boxes.Boxes().size() == 1;
    std::printf("  create, write: %s\n  read back: %s\n  copy: %s\n  a bad handle refused with one box: %s\n",
                wrote ? "ok" : "FAILED", read ? "ok" : "FAILED", copied ? "ok" : "FAILED",
                refused ? "ok" : "FAILED");
    const bool all = wrote && read && copied && refused;
    std::printf(all ? "All demo steps passed.\n" : "Some demo steps failed.\n");
    return all ? 0 : 1;
}
