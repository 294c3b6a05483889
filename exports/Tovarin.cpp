// The exported functions, in the order the reference lists them. Each runs its work inside the
// one export frame (Frame.h): its signature text and line name it in a failure box, and it then
// returns its neutral result.
#include "../include/Tovarin.h"

#include "Frame.h"
#include "Project.h"

#include "../utils/Utils.Checking.h"
#include "../utils/Utils.CodingStr.h"
#include "../utils/Utils.File.h"
#include "../utils/Utils.FilesFind.h"

#include <windows.h>
#include <shellapi.h>

#include <cstring>
#include <cwchar>
#include <string>

#define TOVARIN_EXPORT extern "C"

namespace {

using Project::Call;
using Project::WithFile;
using Utils::FileHdd;
using Utils::Error::Site;

const unsigned __int64 kAllBits = ~0ull;

// Text arguments: 8-bit text is converted with the system code page on entry; a null pointer
// counts as an empty text.
std::wstring WideA(const char* text) { return Utils::CodingStr::AnsiToUnicode(text == nullptr ? "" : text, 0); }
std::wstring WideW(const wchar_t* text) { return text == nullptr ? std::wstring() : std::wstring(text); }

template <class T>
int WriteValue(void* const handle, const T& value) {
    return static_cast<int>(
        WithFile(handle, [&](FileHdd& file, void* h) { return file.WriteHeld(h, &value, sizeof(T)); }));
}

// The count read is deliberately ignored; a short read throws in the file object.
template <class T>
T ReadValue(void* const handle) {
    T value = T();
    WithFile(handle, [&](FileHdd& file, void* h) { file.ReadHeld(h, &value, sizeof(T)); });
    return value;
}

__int64 SetPointer(void* const handle, const int method, const int distance) {
    return WithFile(handle, [&](FileHdd& file, void* h) { return file._SetPointer(h, method, distance); });
}

template <class Char>
int WriteText(void* const handle, const Char* text) {
    const size_t length = text == nullptr ? 0 : std::char_traits<Char>::length(text);
    return static_cast<int>(WithFile(
        handle, [&](FileHdd& file, void* h) { return file.WriteHeld(h, text, length * sizeof(Char)); }));
}

bool IsTrimmed(const unsigned c) { return c == 0 || c == ' ' || c == '\n' || c == '\r' || c == '\t'; }

// Reads `size` characters, drops the trailing zeros and blanks, and hands the text back through the
// shared string-result holder. Short texts are read into a stack buffer: no heap work then.
template <class Char>
Char* ReadText(void* const handle, const unsigned __int64 size) {
    const unsigned __int64 kStackChars = 256;
    Char stackBuffer[kStackChars];
    std::basic_string<Char> heapBuffer;
    Char* buffer = stackBuffer;
    if (size > kStackChars) {
        heapBuffer.assign(static_cast<size_t>(size), Char());
        buffer = &heapBuffer[0];
    } else {
        std::memset(stackBuffer, 0, sizeof(stackBuffer));
    }
    if (size != 0)
        WithFile(handle, [&](FileHdd& file, void* h) { file.ReadHeld(h, buffer, size * sizeof(Char)); });
    unsigned __int64 length = size;
    while (length > 0 && IsTrimmed(static_cast<unsigned>(buffer[length - 1])))
        --length;
    return Project::LoadStringResult(buffer, length);
}

const wchar_t kNoArray[] = L"Отсутствует массив: указатель на массив равен нулю.";
const wchar_t kTooLarge[] = L"Размер передаваемых данных превышает адресное пространство.";

// Typed arrays: the slice is checked before the handle is looked up; the where-text is built only
// when the check fails.
template <class T>
unsigned __int64 WriteArray(const Site& site, void* const handle, const T* array, const unsigned __int64 size,
                            const unsigned __int64 start, const unsigned __int64 count) {
    const unsigned __int64 n = Utils::Checking::CountDirect(site, size, start, count);
    if (array == nullptr)
        Utils::Error::ThrowAt(site, "[f]", kNoArray, false, 0);
    if (n > kAllBits / sizeof(T))
        Utils::Error::ThrowAt(site, "[f]", kTooLarge, false, 0);
    return WithFile(handle,
                    [&](FileHdd& file, void* h) { return file.WriteHeld(h, array + start, n * sizeof(T)); }) /
           sizeof(T);
}

template <class T>
unsigned __int64 ReadArray(const Site& site, void* const handle, T* array, const unsigned __int64 size,
                           const unsigned __int64 start, const unsigned __int64 count) {
    const unsigned __int64 n = Utils::Checking::CountDirect(site, size, start, count);
    if (array == nullptr)
        Utils::Error::ThrowAt(site, "[f]", kNoArray, false, 0);
    if (n > kAllBits / sizeof(T))
        Utils::Error::ThrowAt(site, "[f]", kTooLarge, false, 0);
    return WithFile(handle,
                    [&](FileHdd& file, void* h) { return file.ReadHeld(h, array + start, n * sizeof(T)); }) /
           sizeof(T);
}

// The object closes its handle first; then the registry entry goes.
void CloseByHandle(void* const handle) {
    WithFile(handle, [](FileHdd& file, void* h) {
        if (h != nullptr)
            file._Close(h);
        file.SetHandle(nullptr);
    });
    Project::PtrCFileDelete(handle);
}

void DeleteByHandle(void* const handle) {
    Project::PtrCFile(handle)->Delete();
    Project::PtrCFileDelete(handle);
}

} // namespace

TOVARIN_EXPORT int __cdecl FileCheckA(const char* path) {
    const Site site = TOVARIN_SITE("int __cdecl FileCheckA(const char *)");
    return Call<int>(site, 0, [&] {
        return Utils::FilesFind().Status(WideA(path)) == 2 ? 1 : 0;
    });
}

TOVARIN_EXPORT int __cdecl FileCheckW(const wchar_t* path) {
    const Site site = TOVARIN_SITE("int __cdecl FileCheckW(const wchar_t *)");
    return Call<int>(site, 0, [&] {
        return Utils::FilesFind().Status(WideW(path)) == 2 ? 1 : 0;
    });
}

TOVARIN_EXPORT int __cdecl FileCopyA(const char* from, const char* to) {
    const Site site = TOVARIN_SITE("int __cdecl FileCopyA(const char *,const char *)");
    return Call<int>(site, 0, [&] {
        return Utils::MainFile::FileOperation(WideA(from), WideA(to), FO_COPY) ? 1 : 0;
    });
}

TOVARIN_EXPORT int __cdecl FileCopyW(const wchar_t* from, const wchar_t* to) {
    const Site site = TOVARIN_SITE("int __cdecl FileCopyW(const wchar_t *,const wchar_t *)");
    return Call<int>(site, 0, [&] {
        return Utils::MainFile::FileOperation(WideW(from), WideW(to), FO_COPY) ? 1 : 0;
    });
}

TOVARIN_EXPORT int __cdecl FileDeleteA(const char* path) {
    const Site site = TOVARIN_SITE("int __cdecl FileDeleteA(const char *)");
    return Call<int>(site, 0, [&] {
        return Utils::MainFile::DeletePath(WideA(path)) ? 1 : 0;
    });
}

TOVARIN_EXPORT int __cdecl FileDeleteW(const wchar_t* path) {
    const Site site = TOVARIN_SITE("int __cdecl FileDeleteW(const wchar_t *)");
    return Call<int>(site, 0, [&] {
        return Utils::MainFile::DeletePath(WideW(path)) ? 1 : 0;
    });
}

TOVARIN_EXPORT void __cdecl FileHardLinkA(const char* from, const char* to) {
    const Site site = TOVARIN_SITE("void __cdecl FileHardLinkA(const char *,const char *)");
    Call(site, [&] {
        Utils::File::HardLink(WideA(from), WideA(to));
    });
}

TOVARIN_EXPORT void __cdecl FileHardLinkW(const wchar_t* from, const wchar_t* to) {
    const Site site = TOVARIN_SITE("void __cdecl FileHardLinkW(const wchar_t *,const wchar_t *)");
    Call(site, [&] {
        Utils::File::HardLink(WideW(from), WideW(to));
    });
}

TOVARIN_EXPORT int __cdecl FileMoveA(const char* from, const char* to) {
    const Site site = TOVARIN_SITE("int __cdecl FileMoveA(const char *,const char *)");
    return Call<int>(site, 0, [&] {
        return Utils::MainFile::FileOperation(WideA(from), WideA(to), FO_MOVE) ? 1 : 0;
    });
}

TOVARIN_EXPORT int __cdecl FileMoveW(const wchar_t* from, const wchar_t* to) {
    const Site site = TOVARIN_SITE("int __cdecl FileMoveW(const wchar_t *,const wchar_t *)");
    return Call<int>(site, 0, [&] {
        return Utils::MainFile::FileOperation(WideW(from), WideW(to), FO_MOVE) ? 1 : 0;
    });
}

TOVARIN_EXPORT int __cdecl FileSymbolicLinkA(const char* from, const char* to) {
    const Site site = TOVARIN_SITE("int __cdecl FileSymbolicLinkA(const char *,const char *)");
    return Call<int>(site, 0, [&] {
        return Utils::MainFile::SymbolicLink(WideA(to), WideA(from)) ? 1 : 0;
    });
}

TOVARIN_EXPORT int __cdecl FileSymbolicLinkW(const wchar_t* from, const wchar_t* to) {
    const Site site = TOVARIN_SITE("int __cdecl FileSymbolicLinkW(const wchar_t *,const wchar_t *)");
    return Call<int>(site, 0, [&] {
        return Utils::MainFile::SymbolicLink(WideW(to), WideW(from)) ? 1 : 0;
    });
}

TOVARIN_EXPORT void __cdecl FileClear(void* const handle) {
    const Site site = TOVARIN_SITE("void __cdecl FileClear(void *const )");
    Call(site, [&] {
        WithFile(handle, [](FileHdd& file, void* h) {
            if (file._Size64(h) != 0) {
                file._SetPointer(h, FILE_BEGIN, 0);
                file.SetEndPhysical(h);
            }
        });
    });
}

TOVARIN_EXPORT void __cdecl FileCloseHandle(void* const handle) {
    const Site site = TOVARIN_SITE("void __cdecl FileCloseHandle(void *const )");
    Call(site, [&] {
        CloseByHandle(handle);
    });
}

TOVARIN_EXPORT int __cdecl FileCopyByHandleA(void* const handle, const char* path) {
    const Site site = TOVARIN_SITE("int __cdecl FileCopyByHandleA(void *const ,const char *)");
    return Call<int>(site, 0, [&] {
        const std::wstring target = WideA(path);
        return WithFile(handle, [&](FileHdd& file, void*) { return file.Copy(target); }) ? 1 : 0;
    });
}

TOVARIN_EXPORT int __cdecl FileCopyByHandleW(void* const handle, const wchar_t* path) {
    const Site site = TOVARIN_SITE("int __cdecl FileCopyByHandleW(void *const ,const wchar_t *)");
    return Call<int>(site, 0, [&] {
        const std::wstring target = WideW(path);
        return WithFile(handle, [&](FileHdd& file, void*) { return file.Copy(target); }) ? 1 : 0;
    });
}

TOVARIN_EXPORT void __cdecl FileDeleteByHandle(void* const handle) {
    const Site site = TOVARIN_SITE("void __cdecl FileDeleteByHandle(void *const )");
    Call(site, [&] {
        DeleteByHandle(handle);
    });
}

TOVARIN_EXPORT void __cdecl FileFlushApply(void* const handle) {
    const Site site = TOVARIN_SITE("void __cdecl FileFlushApply(void *const )");
    Call(site, [&] {
        WithFile(handle, [](FileHdd& file, void* h) { file.Flush(h); });
    });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileGetSize(void* const handle) {
    const Site site = TOVARIN_SITE("unsigned __int64 __cdecl FileGetSize(void *const )");
    return Call<unsigned __int64>(site, static_cast<unsigned __int64>(0), [&] {
        // Deliberately the low 32 bits, sign-extended: sizes of 2 GiB and more come back wrong.
        const unsigned __int64 size = WithFile(handle, [](FileHdd& file, void* h) { return file._Size64(h); });
        return static_cast<unsigned __int64>(static_cast<__int64>(static_cast<int>(static_cast<unsigned int>(size))));
    });
}

TOVARIN_EXPORT void __cdecl FileHardLinkByHandleA(void* const handle, const char* path) {
    const Site site = TOVARIN_SITE("void __cdecl FileHardLinkByHandleA(void *const ,const char *)");
    Call(site, [&] {
        const std::wstring target = WideA(path);
        WithFile(handle, [&](FileHdd& file, void*) { file.HardLink(target); });
    });
}

TOVARIN_EXPORT void __cdecl FileHardLinkByHandleW(void* const handle, const wchar_t* path) {
    const Site site = TOVARIN_SITE("void __cdecl FileHardLinkByHandleW(void *const ,const wchar_t *)");
    Call(site, [&] {
        const std::wstring target = WideW(path);
        WithFile(handle, [&](FileHdd& file, void*) { file.HardLink(target); });
    });
}

TOVARIN_EXPORT int __cdecl FileMoveByHandleA(void* const handle, const char* path) {
    const Site site = TOVARIN_SITE("int __cdecl FileMoveByHandleA(void *const ,const char *)");
    return Call<int>(site, 0, [&] {
        const std::wstring target = WideA(path);
        return WithFile(handle, [&](FileHdd& file, void*) { return file.Move(target); }) ? 1 : 0;
    });
}

TOVARIN_EXPORT int __cdecl FileMoveByHandleW(void* const handle, const wchar_t* path) {
    const Site site = TOVARIN_SITE("int __cdecl FileMoveByHandleW(void *const ,const wchar_t *)");
    return Call<int>(site, 0, [&] {
        const std::wstring target = WideW(path);
        return WithFile(handle, [&](FileHdd& file, void*) { return file.Move(target); }) ? 1 : 0;
    });
}

TOVARIN_EXPORT void __cdecl FileResize(void* const handle, const unsigned __int64 size) {
    const Site site = TOVARIN_SITE("void __cdecl FileResize(void *const ,const unsigned __int64)");
    Call(site, [&] {
        WithFile(handle, [&](FileHdd& file, void*) { file.Resize<unsigned __int64>(size); });
    });
}

TOVARIN_EXPORT int __cdecl FileSymbolicLinkByHandleA(void* const handle, const char* path) {
    const Site site = TOVARIN_SITE("int __cdecl FileSymbolicLinkByHandleA(void *const ,const char *)");
    return Call<int>(site, 0, [&] {
        const std::wstring link = WideA(path);
        return WithFile(handle, [&](FileHdd& file, void*) { return Utils::MainFile::SymbolicLink(link, file.Path()); }) ? 1 : 0;
    });
}

TOVARIN_EXPORT int __cdecl FileSymbolicLinkByHandleW(void* const handle, const wchar_t* path) {
    const Site site = TOVARIN_SITE("int __cdecl FileSymbolicLinkByHandleW(void *const ,const wchar_t *)");
    return Call<int>(site, 0, [&] {
        const std::wstring link = WideW(path);
        return WithFile(handle, [&](FileHdd& file, void*) { return Utils::MainFile::SymbolicLink(link, file.Path()); }) ? 1 : 0;
    });
}

TOVARIN_EXPORT void* __cdecl FileCreateAlwaysA(const char* path, const unsigned long access, const unsigned long share) {
    const Site site = TOVARIN_SITE("void *__cdecl FileCreateAlwaysA(const char *,const unsigned long,const unsigned long)");
    return Call<void*>(site, nullptr, [&] {
        return Project::OpenFile(WideA(path), access, share, CREATE_ALWAYS);
    });
}

TOVARIN_EXPORT void* __cdecl FileCreateAlwaysW(const wchar_t* path, const unsigned long access, const unsigned long share) {
    const Site site = TOVARIN_SITE("void *__cdecl FileCreateAlwaysW(const wchar_t *,const unsigned long,const unsigned long)");
    return Call<void*>(site, nullptr, [&] {
        return Project::OpenFile(WideW(path), access, share, CREATE_ALWAYS);
    });
}

TOVARIN_EXPORT void* __cdecl FileCreateNewA(const char* path, const unsigned long access, const unsigned long share) {
    const Site site = TOVARIN_SITE("void *__cdecl FileCreateNewA(const char *,const unsigned long,const unsigned long)");
    return Call<void*>(site, nullptr, [&] {
        return Project::OpenFile(WideA(path), access, share, CREATE_NEW);
    });
}

TOVARIN_EXPORT void* __cdecl FileCreateNewW(const wchar_t* path, const unsigned long access, const unsigned long share) {
    const Site site = TOVARIN_SITE("void *__cdecl FileCreateNewW(const wchar_t *,const unsigned long,const unsigned long)");
    return Call<void*>(site, nullptr, [&] {
        return Project::OpenFile(WideW(path), access, share, CREATE_NEW);
    });
}

TOVARIN_EXPORT void* __cdecl FileOpenAlwaysA(const char* path, const unsigned long access, const unsigned long share) {
    const Site site = TOVARIN_SITE("void *__cdecl FileOpenAlwaysA(const char *,const unsigned long,const unsigned long)");
    return Call<void*>(site, nullptr, [&] {
        return Project::OpenFile(WideA(path), access, share, OPEN_ALWAYS);
    });
}

TOVARIN_EXPORT void* __cdecl FileOpenAlwaysW(const wchar_t* path, const unsigned long access, const unsigned long share) {
    const Site site = TOVARIN_SITE("void *__cdecl FileOpenAlwaysW(const wchar_t *,const unsigned long,const unsigned long)");
    return Call<void*>(site, nullptr, [&] {
        return Project::OpenFile(WideW(path), access, share, OPEN_ALWAYS);
    });
}

TOVARIN_EXPORT void* __cdecl FileOpenExistingA(const char* path, const unsigned long access, const unsigned long share) {
    const Site site = TOVARIN_SITE("void *__cdecl FileOpenExistingA(const char *,const unsigned long,const unsigned long)");
    return Call<void*>(site, nullptr, [&] {
        return Project::OpenFile(WideA(path), access, share, OPEN_EXISTING);
    });
}

TOVARIN_EXPORT void* __cdecl FileOpenExistingW(const wchar_t* path, const unsigned long access, const unsigned long share) {
    const Site site = TOVARIN_SITE("void *__cdecl FileOpenExistingW(const wchar_t *,const unsigned long,const unsigned long)");
    return Call<void*>(site, nullptr, [&] {
        return Project::OpenFile(WideW(path), access, share, OPEN_EXISTING);
    });
}

TOVARIN_EXPORT void* __cdecl FileOpenTruncateA(const char* path, const unsigned long access, const unsigned long share) {
    const Site site = TOVARIN_SITE("void *__cdecl FileOpenTruncateA(const char *,const unsigned long,const unsigned long)");
    return Call<void*>(site, nullptr, [&] {
        return Project::OpenFile(WideA(path), access, share, TRUNCATE_EXISTING);
    });
}

TOVARIN_EXPORT void* __cdecl FileOpenTruncateW(const wchar_t* path, const unsigned long access, const unsigned long share) {
    const Site site = TOVARIN_SITE("void *__cdecl FileOpenTruncateW(const wchar_t *,const unsigned long,const unsigned long)");
    return Call<void*>(site, nullptr, [&] {
        return Project::OpenFile(WideW(path), access, share, TRUNCATE_EXISTING);
    });
}

TOVARIN_EXPORT __int64 __cdecl FileGetPointer(void* const handle) {
    const Site site = TOVARIN_SITE("__int64 __cdecl FileGetPointer(void *const )");
    return Call<__int64>(site, -1, [&] {
        return WithFile(handle, [](FileHdd& file, void* h) { return file._SetPointer(h, FILE_CURRENT, 0); });
    });
}

TOVARIN_EXPORT __int64 __cdecl FileSetPointerBegin(void* const handle, const int distance) {
    const Site site = TOVARIN_SITE("__int64 __cdecl FileSetPointerBegin(void *const ,const int)");
    return Call<__int64>(site, -1, [&] {
        return SetPointer(handle, FILE_BEGIN, distance);
    });
}

TOVARIN_EXPORT __int64 __cdecl FileSetPointerCurrent(void* const handle, const int distance) {
    const Site site = TOVARIN_SITE("__int64 __cdecl FileSetPointerCurrent(void *const ,const int)");
    return Call<__int64>(site, -1, [&] {
        return SetPointer(handle, FILE_CURRENT, distance);
    });
}

TOVARIN_EXPORT __int64 __cdecl FileSetPointerEnd(void* const handle, const int distance) {
    const Site site = TOVARIN_SITE("__int64 __cdecl FileSetPointerEnd(void *const ,const int)");
    return Call<__int64>(site, -1, [&] {
        return SetPointer(handle, FILE_END, distance);
    });
}

TOVARIN_EXPORT int __cdecl FileWriteBoolean(void* const handle, const bool value) {
    const Site site = TOVARIN_SITE("int __cdecl FileWriteBoolean(void *const ,const bool)");
    return Call<int>(site, -1, [&] {
        return WriteValue(handle, value);
    });
}

TOVARIN_EXPORT int __cdecl FileWriteChar(void* const handle, const char value) {
    const Site site = TOVARIN_SITE("int __cdecl FileWriteChar(void *const ,const char)");
    return Call<int>(site, -1, [&] {
        return WriteValue(handle, value);
    });
}

TOVARIN_EXPORT int __cdecl FileWriteUChar(void* const handle, const unsigned char value) {
    const Site site = TOVARIN_SITE("int __cdecl FileWriteUChar(void *const ,const unsigned char)");
    return Call<int>(site, -1, [&] {
        return WriteValue(handle, value);
    });
}

TOVARIN_EXPORT int __cdecl FileWriteShort(void* const handle, const short value) {
    const Site site = TOVARIN_SITE("int __cdecl FileWriteShort(void *const ,const short)");
    return Call<int>(site, -1, [&] {
        return WriteValue(handle, value);
    });
}

TOVARIN_EXPORT int __cdecl FileWriteUShort(void* const handle, const unsigned short value) {
    const Site site = TOVARIN_SITE("int __cdecl FileWriteUShort(void *const ,const unsigned short)");
    return Call<int>(site, -1, [&] {
        return WriteValue(handle, value);
    });
}

TOVARIN_EXPORT int __cdecl FileWriteInt(void* const handle, const int value) {
    const Site site = TOVARIN_SITE("int __cdecl FileWriteInt(void *const ,const int)");
    return Call<int>(site, -1, [&] {
        return WriteValue(handle, value);
    });
}

TOVARIN_EXPORT int __cdecl FileWriteUInt(void* const handle, const unsigned int value) {
    const Site site = TOVARIN_SITE("int __cdecl FileWriteUInt(void *const ,const unsigned int)");
    return Call<int>(site, -1, [&] {
        return WriteValue(handle, value);
    });
}

TOVARIN_EXPORT int __cdecl FileWriteInt64(void* const handle, const __int64 value) {
    const Site site = TOVARIN_SITE("int __cdecl FileWriteInt64(void *const ,const __int64)");
    return Call<int>(site, -1, [&] {
        return WriteValue(handle, value);
    });
}

TOVARIN_EXPORT int __cdecl FileWriteUInt64(void* const handle, const unsigned __int64 value) {
    const Site site = TOVARIN_SITE("int __cdecl FileWriteUInt64(void *const ,const unsigned __int64)");
    return Call<int>(site, -1, [&] {
        return WriteValue(handle, value);
    });
}

TOVARIN_EXPORT int __cdecl FileWriteFlt(void* const handle, const float value) {
    const Site site = TOVARIN_SITE("int __cdecl FileWriteFlt(void *const ,const float)");
    return Call<int>(site, -1, [&] {
        return WriteValue(handle, value);
    });
}

TOVARIN_EXPORT int __cdecl FileWriteDbl(void* const handle, const double value) {
    const Site site = TOVARIN_SITE("int __cdecl FileWriteDbl(void *const ,const double)");
    return Call<int>(site, -1, [&] {
        return WriteValue(handle, value);
    });
}

TOVARIN_EXPORT int __cdecl FileWriteStringA(void* const handle, const char* text) {
    const Site site = TOVARIN_SITE("int __cdecl FileWriteStringA(void *const ,const char *)");
    return Call<int>(site, -1, [&] {
        return WriteText(handle, text);
    });
}

TOVARIN_EXPORT int __cdecl FileWriteStringW(void* const handle, const wchar_t* text) {
    const Site site = TOVARIN_SITE("int __cdecl FileWriteStringW(void *const ,const wchar_t *)");
    return Call<int>(site, -1, [&] {
        return WriteText(handle, text);
    });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileWriteBoolArray(void* const handle, bool* const array, const unsigned __int64 size, const unsigned __int64 start, unsigned __int64 count) {
    const Site site = TOVARIN_SITE("unsigned __int64 __cdecl FileWriteBoolArray(void *const ,bool *const ,const unsigned __int64,const unsigned __int64,unsigned __int64)");
    return Call<unsigned __int64>(site, kAllBits, [&] {
        return WriteArray(site, handle, array, size, start, count);
    });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileWriteCharArray(void* const handle, char* const array, const unsigned __int64 size, const unsigned __int64 start, unsigned __int64 count) {
    const Site site = TOVARIN_SITE("unsigned __int64 __cdecl FileWriteCharArray(void *const ,char *const ,const unsigned __int64,const unsigned __int64,unsigned __int64)");
    return Call<unsigned __int64>(site, kAllBits, [&] {
        return WriteArray(site, handle, array, size, start, count);
    });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileWriteUCharArray(void* const handle, unsigned char* const array, const unsigned __int64 size, const unsigned __int64 start, unsigned __int64 count) {
    const Site site = TOVARIN_SITE("unsigned __int64 __cdecl FileWriteUCharArray(void *const ,unsigned char *const ,const unsigned __int64,const unsigned __int64,unsigned __int64)");
    return Call<unsigned __int64>(site, kAllBits, [&] {
        return WriteArray(site, handle, array, size, start, count);
    });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileWriteShortArray(void* const handle, short* const array, const unsigned __int64 size, const unsigned __int64 start, unsigned __int64 count) {
    const Site site = TOVARIN_SITE("unsigned __int64 __cdecl FileWriteShortArray(void *const ,short *const ,const unsigned __int64,const unsigned __int64,unsigned __int64)");
    return Call<unsigned __int64>(site, kAllBits, [&] {
        return WriteArray(site, handle, array, size, start, count);
    });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileWriteUShortArray(void* const handle, unsigned short* const array, const unsigned __int64 size, const unsigned __int64 start, unsigned __int64 count) {
    const Site site = TOVARIN_SITE("unsigned __int64 __cdecl FileWriteUShortArray(void *const ,unsigned short *const ,const unsigned __int64,const unsigned __int64,unsigned __int64)");
    return Call<unsigned __int64>(site, kAllBits, [&] {
        return WriteArray(site, handle, array, size, start, count);
    });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileWriteIntArray(void* const handle, int* const array, const unsigned __int64 size, const unsigned __int64 start, unsigned __int64 count) {
    const Site site = TOVARIN_SITE("unsigned __int64 __cdecl FileWriteIntArray(void *const ,int *const ,const unsigned __int64,const unsigned __int64,unsigned __int64)");
    return Call<unsigned __int64>(site, kAllBits, [&] {
        return WriteArray(site, handle, array, size, start, count);
    });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileWriteUIntArray(void* const handle, unsigned int* const array, const unsigned __int64 size, const unsigned __int64 start, unsigned __int64 count) {
    const Site site = TOVARIN_SITE("unsigned __int64 __cdecl FileWriteUIntArray(void *const ,unsigned int *const ,const unsigned __int64,const unsigned __int64,unsigned __int64)");
    return Call<unsigned __int64>(site, kAllBits, [&] {
        return WriteArray(site, handle, array, size, start, count);
    });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileWriteLongArray(void* const handle, __int64* const array, const unsigned __int64 size, const unsigned __int64 start, unsigned __int64 count) {
    const Site site = TOVARIN_SITE("unsigned __int64 __cdecl FileWriteLongArray(void *const ,__int64 *const ,const unsigned __int64,const unsigned __int64,unsigned __int64)");
    return Call<unsigned __int64>(site, kAllBits, [&] {
        return WriteArray(site, handle, array, size, start, count);
    });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileWriteULongArray(void* const handle, unsigned __int64* const array, const unsigned __int64 size, const unsigned __int64 start, unsigned __int64 count) {
    const Site site = TOVARIN_SITE("unsigned __int64 __cdecl FileWriteULongArray(void *const ,unsigned __int64 *const ,const unsigned __int64,const unsigned __int64,unsigned __int64)");
    return Call<unsigned __int64>(site, kAllBits, [&] {
        return WriteArray(site, handle, array, size, start, count);
    });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileWriteFloatArray(void* const handle, const float* array, const unsigned __int64 size, const unsigned __int64 start, unsigned __int64 count) {
    const Site site = TOVARIN_SITE("unsigned __int64 __cdecl FileWriteFloatArray(void *const ,const float *,const unsigned __int64,const unsigned __int64,unsigned __int64)");
    return Call<unsigned __int64>(site, kAllBits, [&] {
        return WriteArray(site, handle, array, size, start, count);
    });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileWriteDoubleArray(void* const handle, const double* array, const unsigned __int64 size, const unsigned __int64 start, unsigned __int64 count) {
    const Site site = TOVARIN_SITE("unsigned __int64 __cdecl FileWriteDoubleArray(void *const ,const double *,const unsigned __int64,const unsigned __int64,unsigned __int64)");
    return Call<unsigned __int64>(site, kAllBits, [&] {
        return WriteArray(site, handle, array, size, start, count);
    });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileWriteStrArrayA(void* const handle, const char** array, const unsigned __int64 size, const unsigned __int64 start, unsigned __int64 count) {
    const Site site = TOVARIN_SITE("unsigned __int64 __cdecl FileWriteStrArrayA(void *const ,const char **,const unsigned __int64,const unsigned __int64,unsigned __int64)");
    return Call<unsigned __int64>(site, kAllBits, [&] {
        return Project::WriteStrArrayByHandleA(handle, array, size, start, count);
    });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileWriteStrArrayW(void* const handle, const wchar_t** array, const unsigned __int64 size, const unsigned __int64 start, unsigned __int64 count) {
    const Site site = TOVARIN_SITE("unsigned __int64 __cdecl FileWriteStrArrayW(void *const ,const wchar_t **,const unsigned __int64,const unsigned __int64,unsigned __int64)");
    return Call<unsigned __int64>(site, kAllBits, [&] {
        return Project::WriteStrArrayByHandleW(handle, array, size, start, count);
    });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileWriteStrArrayMA(void* const handle, struct MT::_MQLSTRA* const array, const unsigned __int64 size, const unsigned __int64 start, const unsigned __int64 count) {
    const Site site = TOVARIN_SITE("unsigned __int64 __cdecl FileWriteStrArrayMA(void *const ,struct MT::_MQLSTRA *const ,const unsigned __int64,const unsigned __int64,const unsigned __int64)");
    return Call<unsigned __int64>(site, kAllBits, [&] {
        return Project::WriteStrArrayByHandle(handle, array, size, start, count);
    });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileWriteStrArrayMW(void* const handle, struct MT::_MQLSTRW* const array, const unsigned __int64 size, const unsigned __int64 start, const unsigned __int64 count) {
    const Site site = TOVARIN_SITE("unsigned __int64 __cdecl FileWriteStrArrayMW(void *const ,struct MT::_MQLSTRW *const ,const unsigned __int64,const unsigned __int64,const unsigned __int64)");
    return Call<unsigned __int64>(site, kAllBits, [&] {
        return Project::WriteStrArrayByHandle(handle, array, size, start, count);
    });
}

TOVARIN_EXPORT bool __cdecl FileReadBoolean(void* const handle) {
    const Site site = TOVARIN_SITE("bool __cdecl FileReadBoolean(void *const )");
    return Call<bool>(site, false, [&] {
        return ReadValue<bool>(handle);
    });
}

TOVARIN_EXPORT char __cdecl FileReadChar(void* const handle) {
    const Site site = TOVARIN_SITE("char __cdecl FileReadChar(void *const )");
    return Call<char>(site, static_cast<char>(0), [&] {
        return ReadValue<char>(handle);
    });
}

TOVARIN_EXPORT unsigned char __cdecl FileReadUChar(void* const handle) {
    const Site site = TOVARIN_SITE("unsigned char __cdecl FileReadUChar(void *const )");
    return Call<unsigned char>(site, static_cast<unsigned char>(0), [&] {
        return ReadValue<unsigned char>(handle);
    });
}

TOVARIN_EXPORT short __cdecl FileReadShort(void* const handle) {
    const Site site = TOVARIN_SITE("short __cdecl FileReadShort(void *const )");
    return Call<short>(site, static_cast<short>(0), [&] {
        return ReadValue<short>(handle);
    });
}

TOVARIN_EXPORT unsigned short __cdecl FileReadUShort(void* const handle) {
    const Site site = TOVARIN_SITE("unsigned short __cdecl FileReadUShort(void *const )");
    return Call<unsigned short>(site, static_cast<unsigned short>(0), [&] {
        return ReadValue<unsigned short>(handle);
    });
}

TOVARIN_EXPORT int __cdecl FileReadInt(void* const handle) {
    const Site site = TOVARIN_SITE("int __cdecl FileReadInt(void *const )");
    return Call<int>(site, 0, [&] {
        return ReadValue<int>(handle);
    });
}

TOVARIN_EXPORT unsigned int __cdecl FileReadUInt(void* const handle) {
    const Site site = TOVARIN_SITE("unsigned int __cdecl FileReadUInt(void *const )");
    return Call<unsigned int>(site, static_cast<unsigned int>(0), [&] {
        return ReadValue<unsigned int>(handle);
    });
}

TOVARIN_EXPORT __int64 __cdecl FileReadInt64(void* const handle) {
    const Site site = TOVARIN_SITE("__int64 __cdecl FileReadInt64(void *const )");
    return Call<__int64>(site, static_cast<__int64>(0), [&] {
        return ReadValue<__int64>(handle);
    });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileReadUInt64(void* const handle) {
    const Site site = TOVARIN_SITE("unsigned __int64 __cdecl FileReadUInt64(void *const )");
    return Call<unsigned __int64>(site, static_cast<unsigned __int64>(0), [&] {
        return ReadValue<unsigned __int64>(handle);
    });
}

TOVARIN_EXPORT float __cdecl FileReadFlt(void* const handle) {
    const Site site = TOVARIN_SITE("float __cdecl FileReadFlt(void *const )");
    return Call<float>(site, 0.0f, [&] {
        return ReadValue<float>(handle);
    });
}

TOVARIN_EXPORT double __cdecl FileReadDbl(void* const handle) {
    const Site site = TOVARIN_SITE("double __cdecl FileReadDbl(void *const )");
    return Call<double>(site, 0.0, [&] {
        return ReadValue<double>(handle);
    });
}

TOVARIN_EXPORT char* __cdecl FileReadStringA(void* const handle, const unsigned __int64 size) {
    const Site site = TOVARIN_SITE("char *__cdecl FileReadStringA(void *const ,const unsigned __int64)");
    return Call<char*>(site, nullptr, [&] {
        return ReadText<char>(handle, size);
    });
}

TOVARIN_EXPORT wchar_t* __cdecl FileReadStringW(void* const handle, const unsigned __int64 size) {
    const Site site = TOVARIN_SITE("wchar_t *__cdecl FileReadStringW(void *const ,const unsigned __int64)");
    return Call<wchar_t*>(site, nullptr, [&] {
        return ReadText<wchar_t>(handle, size);
    });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileReadBoolArray(void* const handle, bool* array, const unsigned __int64 size, const unsigned __int64 start, unsigned __int64 count) {
    const Site site = TOVARIN_SITE("unsigned __int64 __cdecl FileReadBoolArray(void *const ,bool *,const unsigned __int64,const unsigned __int64,unsigned __int64)");
    return Call<unsigned __int64>(site, kAllBits, [&] {
        return ReadArray(site, handle, array, size, start, count);
    });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileReadCharArray(void* const handle, char* array, const unsigned __int64 size, const unsigned __int64 start, unsigned __int64 count) {
    const Site site = TOVARIN_SITE("unsigned __int64 __cdecl FileReadCharArray(void *const ,char *,const unsigned __int64,const unsigned __int64,unsigned __int64)");
    return Call<unsigned __int64>(site, kAllBits, [&] {
        return ReadArray(site, handle, array, size, start, count);
    });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileReadUCharArray(void* const handle, unsigned char* array, const unsigned __int64 size, const unsigned __int64 start, unsigned __int64 count) {
    const Site site = TOVARIN_SITE("unsigned __int64 __cdecl FileReadUCharArray(void *const ,unsigned char *,const unsigned __int64,const unsigned __int64,unsigned __int64)");
    return Call<unsigned __int64>(site, kAllBits, [&] {
        return ReadArray(site, handle, array, size, start, count);
    });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileReadShortArray(void* const handle, short* array, const unsigned __int64 size, const unsigned __int64 start, unsigned __int64 count) {
    const Site site = TOVARIN_SITE("unsigned __int64 __cdecl FileReadShortArray(void *const ,short *,const unsigned __int64,const unsigned __int64,unsigned __int64)");
    return Call<unsigned __int64>(site, kAllBits, [&] {
        return ReadArray(site, handle, array, size, start, count);
    });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileReadUShortArray(void* const handle, unsigned short* array, const unsigned __int64 size, const unsigned __int64 start, unsigned __int64 count) {
    const Site site = TOVARIN_SITE("unsigned __int64 __cdecl FileReadUShortArray(void *const ,unsigned short *,const unsigned __int64,const unsigned __int64,unsigned __int64)");
    return Call<unsigned __int64>(site, kAllBits, [&] {
        return ReadArray(site, handle, array, size, start, count);
    });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileReadIntArray(void* const handle, int* array, const unsigned __int64 size, const unsigned __int64 start, unsigned __int64 count) {
    const Site site = TOVARIN_SITE("unsigned __int64 __cdecl FileReadIntArray(void *const ,int *,const unsigned __int64,const unsigned __int64,unsigned __int64)");
    return Call<unsigned __int64>(site, kAllBits, [&] {
        return ReadArray(site, handle, array, size, start, count);
    });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileReadUIntArray(void* const handle, unsigned int* array, const unsigned __int64 size, const unsigned __int64 start, unsigned __int64 count) {
    const Site site = TOVARIN_SITE("unsigned __int64 __cdecl FileReadUIntArray(void *const ,unsigned int *,const unsigned __int64,const unsigned __int64,unsigned __int64)");
    return Call<unsigned __int64>(site, kAllBits, [&] {
        return ReadArray(site, handle, array, size, start, count);
    });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileReadLongArray(void* const handle, __int64* array, const unsigned __int64 size, const unsigned __int64 start, unsigned __int64 count) {
    const Site site = TOVARIN_SITE("unsigned __int64 __cdecl FileReadLongArray(void *const ,__int64 *,const unsigned __int64,const unsigned __int64,unsigned __int64)");
    return Call<unsigned __int64>(site, kAllBits, [&] {
        return ReadArray(site, handle, array, size, start, count);
    });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileReadULongArray(void* const handle, unsigned __int64* array, const unsigned __int64 size, const unsigned __int64 start, unsigned __int64 count) {
    const Site site = TOVARIN_SITE("unsigned __int64 __cdecl FileReadULongArray(void *const ,unsigned __int64 *,const unsigned __int64,const unsigned __int64,unsigned __int64)");
    return Call<unsigned __int64>(site, kAllBits, [&] {
        return ReadArray(site, handle, array, size, start, count);
    });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileReadFloatArray(void* const handle, float* array, const unsigned __int64 size, const unsigned __int64 start, unsigned __int64 count) {
    const Site site = TOVARIN_SITE("unsigned __int64 __cdecl FileReadFloatArray(void *const ,float *,const unsigned __int64,const unsigned __int64,unsigned __int64)");
    return Call<unsigned __int64>(site, kAllBits, [&] {
        return ReadArray(site, handle, array, size, start, count);
    });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileReadDoubleArray(void* const handle, double* array, const unsigned __int64 size, const unsigned __int64 start, unsigned __int64 count) {
    const Site site = TOVARIN_SITE("unsigned __int64 __cdecl FileReadDoubleArray(void *const ,double *,const unsigned __int64,const unsigned __int64,unsigned __int64)");
    return Call<unsigned __int64>(site, kAllBits, [&] {
        return ReadArray(site, handle, array, size, start, count);
    });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileReadStrArrayA(void* const handle, char** array, const unsigned __int64 size, const unsigned __int64 capacity, const unsigned __int64 start, const unsigned __int64 count) {
    const Site site = TOVARIN_SITE("unsigned __int64 __cdecl FileReadStrArrayA(void *const ,char **,const unsigned __int64,const unsigned __int64,const unsigned __int64,const unsigned __int64)");
    return Call<unsigned __int64>(site, kAllBits, [&] {
        return Project::ReadStrArrayByHandle(handle, array, size, capacity, start, count);
    });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileReadStrArrayW(void* const handle, wchar_t** array, const unsigned __int64 size, const unsigned __int64 capacity, const unsigned __int64 start, const unsigned __int64 count) {
    const Site site = TOVARIN_SITE("unsigned __int64 __cdecl FileReadStrArrayW(void *const ,wchar_t **,const unsigned __int64,const unsigned __int64,const unsigned __int64,const unsigned __int64)");
    return Call<unsigned __int64>(site, kAllBits, [&] {
        return Project::ReadStrArrayByHandle(handle, array, size, capacity, start, count);
    });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileReadStrArrayMA(void* const handle, struct MT::_MQLSTRA* array, const unsigned __int64 size, const unsigned __int64 start, const unsigned __int64 count) {
    const Site site = TOVARIN_SITE("unsigned __int64 __cdecl FileReadStrArrayMA(void *const ,struct MT::_MQLSTRA *,const unsigned __int64,const unsigned __int64,const unsigned __int64)");
    return Call<unsigned __int64>(site, kAllBits, [&] {
        return Project::ReadStrArrayByHandle(handle, array, size, start, count);
    });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileReadStrArrayMW(void* const handle, struct MT::_MQLSTRW* array, const unsigned __int64 size, const unsigned __int64 start, const unsigned __int64 count) {
    const Site site = TOVARIN_SITE("unsigned __int64 __cdecl FileReadStrArrayMW(void *const ,struct MT::_MQLSTRW *,const unsigned __int64,const unsigned __int64,const unsigned __int64)");
    return Call<unsigned __int64>(site, kAllBits, [&] {
        return Project::ReadStrArrayByHandle(handle, array, size, start, count);
    });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileCompletedA(const char* path, const unsigned short access, const int share, const __int64 /*offset*/, const unsigned short /*origin*/, const unsigned long /*size*/, void* /*buffer*/, const unsigned __int64 /*count*/) {
    const Site site = TOVARIN_SITE("unsigned __int64 __cdecl FileCompletedA(const char *,const unsigned short,const int,const __int64,const unsigned short,const unsigned long,void *,const unsigned __int64)");
    return Call<unsigned __int64>(site, static_cast<unsigned __int64>(0), [&] {
        return Project::CompletedOperation(WideA(path), access, share);
    });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileCompletedW(const wchar_t* path, const unsigned short access, const int share, const __int64 /*offset*/, const unsigned short /*origin*/, const unsigned long /*size*/, void* /*buffer*/, const unsigned __int64 /*count*/) {
    const Site site = TOVARIN_SITE("unsigned __int64 __cdecl FileCompletedW(const wchar_t *,const unsigned short,const int,const __int64,const unsigned short,const unsigned long,void *,const unsigned __int64)");
    return Call<unsigned __int64>(site, static_cast<unsigned __int64>(0), [&] {
        return Project::CompletedOperation(WideW(path), access, share);
    });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileReadVoid(void* const handle, void* buffer, const unsigned __int64 count) {
    const Site site = TOVARIN_SITE("unsigned __int64 __cdecl FileReadVoid(void *const ,void *,const unsigned __int64)");
    return Call<unsigned __int64>(site, kAllBits, [&] {
        return WithFile(handle, [&](FileHdd& file, void* h) { return file.ReadHeld(h, buffer, count); });
    });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileWriteVoid(void* const handle, const void* buffer, const unsigned __int64 count) {
    const Site site = TOVARIN_SITE("unsigned __int64 __cdecl FileWriteVoid(void *const ,const void *,const unsigned __int64)");
    return Call<unsigned __int64>(site, kAllBits, [&] {
        return WithFile(handle, [&](FileHdd& file, void* h) { return file.WriteHeld(h, buffer, count); });
    });
}
