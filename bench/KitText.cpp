#include "TovarinFile.mqh.h" // first: it sees no Windows macro

#include "KitText.h"

#include <windows.h>

namespace mql {
// The benchmark's imports are those of the Tovarin.dll it has loaded through its import library.
void* Bind(const char* name) {
    return reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleW(L"Tovarin.dll"), name));
}
} // namespace mql

namespace KitText {
namespace {
mql::Array<mql::string> lines, back;
mql::CTovarinFile file;
} // namespace

void SetLines(unsigned count, const std::u16string& line) {
    lines.items.assign(count, line);
}
void* Open(const std::wstring& path) {
    return file.Open(std::u16string(path.begin(), path.end()), mql::FILE_READ | mql::FILE_WRITE)
               ? reinterpret_cast<void*>(file.Handle())
               : nullptr;
}
bool WriteLines() {
    return file.WriteLines(lines) == lines.Size();
}
bool ReadLines() {
    return file.Seek(0, mql::SEEK_SET_) && file.ReadLines(back) == lines.Size();
}
bool ReadBackIsTheLines() {
    return back.items == lines.items;
}
void Close() {
    file.Close();
}

} // namespace KitText
