#pragma once
// The kit's text files (TovarinFile.mqh, translated to C++ as the tests translate it) for the
// benchmark, behind plain functions: the translation's names stay out of the benchmark's own file.
#include <string>

namespace KitText {

// The lines the kit writes: `count` copies of `line`.
void SetLines(unsigned count, const std::u16string& line);
// Opens `path` for reading and writing through CTovarinFile; its system handle, or null.
void* Open(const std::wstring& path);
bool WriteLines();         // all the lines, UTF-8 and CR LF, from the pointer on
bool ReadLines();          // from the start to the end of the file
bool ReadBackIsTheLines(); // what ReadLines found
void Close();

} // namespace KitText
