// A small host that uses Tovarin.dll through its header and import library, as a C or C++ host
// would, and shows each family of exports working.
#include "include/Tovarin.h"
#include "support/BoxRecorder.h"
#include "support/TempDir.h"

#include <windows.h>

#include <cstdio>
#include <cwchar>
#include <string>

namespace {

std::wstring Folder() {
    wchar_t temp[MAX_PATH + 1] = {};
    ::GetTempPathW(MAX_PATH, temp);
    return std::wstring(temp) + L"TovarinDemo";
}

void Show(const char* what, bool ok) {
    std::printf("  %-44s %s\n", what, ok ? "ok" : "FAILED");
}

} // namespace

int main() {
    // Failure boxes are shown by the library; here they are printed and closed.
    TestSupport::BoxRecorder boxes;
    const std::wstring folder = Folder();
    const std::wstring data = folder + L"\\data.bin";
    bool all = true;
    auto check = [&all](const char* what, bool ok) {
        Show(what, ok);
        all = all && ok;
    };

    std::printf("Tovarin demo: files in %ls\n", folder.c_str());
    // Missing folders are made on the way.
    void* file = FileCreateAlwaysW(data.c_str(), TOVARIN_DEFAULT, TOVARIN_DEFAULT);
    check("FileCreateAlwaysW", file != nullptr);
    if (file == nullptr)
        return 1;

    std::printf("Writing mixed values, an array and a string array...\n");
    FileWriteInt(file, 20261123);
    FileWriteDbl(file, 1.08345);
    FileWriteBoolean(file, true);
    FileWriteStringW(file, L"EURUSD");
    double closes[5] = {1.0801, 1.0812, 1.0799, 1.0834, 1.0830};
    FileWriteDoubleArray(file, closes, 5, 0, TOVARIN_TO_END);
    const wchar_t* symbols[3] = {L"EURUSD", L"GBPUSD", L"USDJPY"};
    FileWriteStrArrayW(file, symbols, 3, 0, TOVARIN_TO_END);
    std::printf("  size %llu bytes\n", static_cast<unsigned long long>(FileGetSize(file)));

    std::printf("Reading them back...\n");
    FileSetPointerBegin(file, 0);
    const int date = FileReadInt(file);
    const double price = FileReadDbl(file);
    const bool flag = FileReadBoolean(file);
    const std::wstring symbol = FileReadStringW(file, 6);
    double back[5] = {};
    const unsigned __int64 read = FileReadDoubleArray(file, back, 5, 0, TOVARIN_TO_END);
    wchar_t lines[3][16] = {};
    wchar_t* targets[3] = {lines[0], lines[1], lines[2]};
    const unsigned __int64 lineCount = FileReadStrArrayW(file, targets, 3, 16, 0, TOVARIN_TO_END);
    std::printf("  int %d, double %.5f, bool %d, string %ls\n", date, price, flag ? 1 : 0, symbol.c_str());
    std::printf("  array of %llu: %.4f %.4f %.4f %.4f %.4f\n", static_cast<unsigned long long>(read), back[0],
                back[1], back[2], back[3], back[4]);
    std::printf("  %llu lines: %ls %ls %ls\n", static_cast<unsigned long long>(lineCount), lines[0], lines[1],
                lines[2]);
    check("values read back", date == 20261123 && price == 1.08345 && flag && symbol == L"EURUSD");
    check("array read back", read == 5 && back[3] == 1.0834);
    check("string array read back", lineCount == 3 && std::wcscmp(lines[2], L"USDJPY") == 0);
    FileCloseHandle(file);

    std::printf("File-system operations...\n");
    check("FileCopyW", FileCopyW(data.c_str(), (folder + L"\\copy.bin").c_str()) == 1);
    check("FileMoveW", FileMoveW((folder + L"\\copy.bin").c_str(), (folder + L"\\moved.bin").c_str()) == 1);
    FileHardLinkW(data.c_str(), (folder + L"\\hardlink.bin").c_str());
    check("FileHardLinkW", FileCheckW((folder + L"\\hardlink.bin").c_str()) == 1);
    check("FileDeleteW", FileDeleteW(folder.c_str()) == 1 && FileCheckW(data.c_str()) == 0);

    std::printf("A caught failure: a handle the library never issued is refused with a box,\n"
                "and the export returns its neutral result:\n");
    check("FileWriteInt(bad handle) == -1", FileWriteInt(reinterpret_cast<void*>(0x1234), 1) == -1);
    for (const TestSupport::Box& box : boxes.Boxes()) {
        const std::string text =
            TestSupport::Narrow(L"--- " + box.caption + L" ---\n" + box.text + L"\n---\n");
        std::fwrite(text.data(), 1, text.size(), stdout);
    }
    std::printf(all ? "All demo steps passed.\n" : "Some demo steps failed.\n");
    return all ? 0 : 1;
}
