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
std::wstring WideA(const char* text) {
    return Utils::CodingStr::AnsiToUnicode(text == nullptr ? "" : text, 0);
}
std::wstring WideW(const wchar_t* text) {
    return text == nullptr ? std::wstring() : std::wstring(text);
}

template <class T> int WriteValue(void* const handle, const T& value) {
    return static_cast<int>(
        WithFile(handle, [&](FileHdd& file, void* h) { return file.WriteHeld(h, &value, sizeof(T)); }));
}

// The count read is deliberately ignored; a short read throws in the file object.
template <class T> T ReadValue(void* const handle) {
    T value = T();
    WithFile(handle, [&](FileHdd& file, void* h) { file.ReadHeld(h, &value, sizeof(T)); });
    return value;
}

__int64 SetPointer(void* const handle, const int method, const int distance) {
    return WithFile(handle, [&](FileHdd& file, void* h) { return file._SetPointer(h, method, distance); });
}

template <class Char> int WriteText(void* const handle, const Char* text) {
    const size_t length = text == nullptr ? 0 : std::char_traits<Char>::length(text);
    return static_cast<int>(WithFile(
        handle, [&](FileHdd& file, void* h) { return file.WriteHeld(h, text, length * sizeof(Char)); }));
}

bool IsTrimmed(const unsigned c) {
    return c == 0 || c == ' ' || c == '\n' || c == '\r' || c == '\t';
}

// Reads `size` characters, drops the trailing zeros and blanks, and hands the text back through the
// shared string-result holder. Short texts are read into a stack buffer: no heap work then.
template <class Char> Char* ReadText(void* const handle, const unsigned __int64 size) {
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
// The number of elements of the slice, after the checks that every array transfer makes first.
template <class T>
unsigned __int64 CheckedSlice(const Site& site, const T* array, const unsigned __int64 size,
                              const unsigned __int64 start, const unsigned __int64 count) {
    const unsigned __int64 n = Utils::Checking::CountDirect(site, size, start, count);
    if (array == nullptr)
        Utils::Error::ThrowAt(site, "[f]", kNoArray, false, 0);
    if (n > kAllBits / sizeof(T))
        Utils::Error::ThrowAt(site, "[f]", kTooLarge, false, 0);
    return n;
}

template <class T>
unsigned __int64 WriteArray(const Site& site, void* const handle, const T* array, const unsigned __int64 size,
                            const unsigned __int64 start, const unsigned __int64 count) {
    const unsigned __int64 n = CheckedSlice(site, array, size, start, count);
    return WithFile(handle,
                    [&](FileHdd& file, void* h) { return file.WriteHeld(h, array + start, n * sizeof(T)); }) /
           sizeof(T);
}

template <class T>
unsigned __int64 ReadArray(const Site& site, void* const handle, T* array, const unsigned __int64 size,
                           const unsigned __int64 start, const unsigned __int64 count) {
    const unsigned __int64 n = CheckedSlice<T>(site, array, size, start, count);
    return WithFile(handle,
                    [&](FileHdd& file, void* h) { return file.ReadHeld(h, array + start, n * sizeof(T)); }) /
           sizeof(T);
}

// The operations on the path of an open file, shared by the 8-bit and wide exports.
int CopyOnFile(void* const handle, const std::wstring& to) {
    return WithFile(handle, [&](FileHdd& file, void*) { return file.Copy(to); }) ? 1 : 0;
}

int MoveOnFile(void* const handle, const std::wstring& to) {
    return WithFile(handle, [&](FileHdd& file, void*) { return file.Move(to); }) ? 1 : 0;
}

void HardLinkOnFile(void* const handle, const std::wstring& link) {
    WithFile(handle, [&](FileHdd& file, void*) { file.HardLink(link); });
}

int SymbolicLinkOnFile(void* const handle, const std::wstring& link) {
    return WithFile(handle,
                    [&](FileHdd& file, void*) { return Utils::MainFile::SymbolicLink(link, file.Path()); })
               ? 1
               : 0;
}

// The registry entry goes before the system handle is closed: once closed, the system may hand
// the same value to a file that another thread opens, and that file's entry must find the key free.
void CloseByHandle(void* const handle) {
    const Project::FilePtr file = Project::PtrCFile(handle);
    Project::PtrCFileDelete(handle);
    Project::Guard guard(file->Lock());
    if (file->Handle() != nullptr)
        file->_Close(file->Handle());
    file->SetHandle(nullptr);
}

void DeleteByHandle(void* const handle) {
    const Project::FilePtr file = Project::PtrCFile(handle);
    Project::PtrCFileDelete(handle);
    file->Delete();
}

} // namespace

// When the host unloads the library (FreeLibrary) the files it left open close with it: their
// objects live in the registry, which outlives every static object deliberately. At the end of the
// process (reserved not null) nothing is done: the system closes the files, and the other threads
// have already been stopped wherever they were, perhaps holding a lock the release would need.
extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID reserved) {
    if (reason == DLL_PROCESS_DETACH && reserved == nullptr)
        Project::ReleaseAll();
    return TRUE;
}

// Exports that differ only in their value or element type share one body each. Every export still
// spells its own signature and stands on its own line, which its failure texts show.
#define TOVARIN_OPEN(name, charType, widen, disposition, signature)                                          \
    TOVARIN_EXPORT void* __cdecl name(const charType* path, const unsigned long access,                      \
                                      const unsigned long share) {                                           \
        return Call<void*>(TOVARIN_SITE(signature), nullptr,                                                 \
                           [&] { return Project::OpenFile(widen(path), access, share, disposition); });      \
    }
#define TOVARIN_WRITE_VALUE(name, type, signature)                                                           \
    TOVARIN_EXPORT int __cdecl name(void* const handle, const type value) {                                  \
        return Call<int>(TOVARIN_SITE(signature), -1, [&] { return WriteValue(handle, value); });            \
    }
#define TOVARIN_READ_VALUE(name, type, signature)                                                            \
    TOVARIN_EXPORT type __cdecl name(void* const handle) {                                                   \
        return Call<type>(TOVARIN_SITE(signature), static_cast<type>(0),                                     \
                          [&] { return ReadValue<type>(handle); });                                          \
    }
#define TOVARIN_WRITE_ARRAY(name, arrayType, signature)                                                      \
    TOVARIN_EXPORT unsigned __int64 __cdecl name(void* const handle, arrayType array,                        \
                                                 const unsigned __int64 size, const unsigned __int64 start,  \
                                                 unsigned __int64 count) {                                   \
        const Site site = TOVARIN_SITE(signature);                                                           \
        return Call<unsigned __int64>(site, kAllBits,                                                        \
                                      [&] { return WriteArray(site, handle, array, size, start, count); });  \
    }
#define TOVARIN_READ_ARRAY(name, arrayType, signature)                                                       \
    TOVARIN_EXPORT unsigned __int64 __cdecl name(void* const handle, arrayType array,                        \
                                                 const unsigned __int64 size, const unsigned __int64 start,  \
                                                 unsigned __int64 count) {                                   \
        const Site site = TOVARIN_SITE(signature);                                                           \
        return Call<unsigned __int64>(site, kAllBits,                                                        \
                                      [&] { return ReadArray(site, handle, array, size, start, count); });   \
    }

TOVARIN_EXPORT int __cdecl FileCheckA(const char* path) {
    const Site site = TOVARIN_SITE("int __cdecl FileCheckA(const char *)");
    return Call<int>(site, 0, [&] { return Utils::FilesFind().Status(WideA(path)) == 2 ? 1 : 0; });
}

TOVARIN_EXPORT int __cdecl FileCheckW(const wchar_t* path) {
    const Site site = TOVARIN_SITE("int __cdecl FileCheckW(const wchar_t *)");
    return Call<int>(site, 0, [&] { return Utils::FilesFind().Status(WideW(path)) == 2 ? 1 : 0; });
}

TOVARIN_EXPORT int __cdecl FileCopyA(const char* from, const char* to) {
    const Site site = TOVARIN_SITE("int __cdecl FileCopyA(const char *,const char *)");
    return Call<int>(site, 0,
                     [&] { return Utils::MainFile::FileOperation(WideA(from), WideA(to), FO_COPY) ? 1 : 0; });
}

TOVARIN_EXPORT int __cdecl FileCopyW(const wchar_t* from, const wchar_t* to) {
    const Site site = TOVARIN_SITE("int __cdecl FileCopyW(const wchar_t *,const wchar_t *)");
    return Call<int>(site, 0,
                     [&] { return Utils::MainFile::FileOperation(WideW(from), WideW(to), FO_COPY) ? 1 : 0; });
}

TOVARIN_EXPORT int __cdecl FileDeleteA(const char* path) {
    const Site site = TOVARIN_SITE("int __cdecl FileDeleteA(const char *)");
    return Call<int>(site, 0, [&] { return Utils::MainFile::DeletePath(WideA(path)) ? 1 : 0; });
}

TOVARIN_EXPORT int __cdecl FileDeleteW(const wchar_t* path) {
    const Site site = TOVARIN_SITE("int __cdecl FileDeleteW(const wchar_t *)");
    return Call<int>(site, 0, [&] { return Utils::MainFile::DeletePath(WideW(path)) ? 1 : 0; });
}

TOVARIN_EXPORT void __cdecl FileHardLinkA(const char* from, const char* to) {
    const Site site = TOVARIN_SITE("void __cdecl FileHardLinkA(const char *,const char *)");
    Call(site, [&] { Utils::File::HardLink(WideA(from), WideA(to)); });
}

TOVARIN_EXPORT void __cdecl FileHardLinkW(const wchar_t* from, const wchar_t* to) {
    const Site site = TOVARIN_SITE("void __cdecl FileHardLinkW(const wchar_t *,const wchar_t *)");
    Call(site, [&] { Utils::File::HardLink(WideW(from), WideW(to)); });
}

TOVARIN_EXPORT int __cdecl FileMoveA(const char* from, const char* to) {
    const Site site = TOVARIN_SITE("int __cdecl FileMoveA(const char *,const char *)");
    return Call<int>(site, 0,
                     [&] { return Utils::MainFile::FileOperation(WideA(from), WideA(to), FO_MOVE) ? 1 : 0; });
}

TOVARIN_EXPORT int __cdecl FileMoveW(const wchar_t* from, const wchar_t* to) {
    const Site site = TOVARIN_SITE("int __cdecl FileMoveW(const wchar_t *,const wchar_t *)");
    return Call<int>(site, 0,
                     [&] { return Utils::MainFile::FileOperation(WideW(from), WideW(to), FO_MOVE) ? 1 : 0; });
}

TOVARIN_EXPORT int __cdecl FileSymbolicLinkA(const char* from, const char* to) {
    const Site site = TOVARIN_SITE("int __cdecl FileSymbolicLinkA(const char *,const char *)");
    return Call<int>(site, 0, [&] { return Utils::MainFile::SymbolicLink(WideA(to), WideA(from)) ? 1 : 0; });
}

TOVARIN_EXPORT int __cdecl FileSymbolicLinkW(const wchar_t* from, const wchar_t* to) {
    const Site site = TOVARIN_SITE("int __cdecl FileSymbolicLinkW(const wchar_t *,const wchar_t *)");
    return Call<int>(site, 0, [&] { return Utils::MainFile::SymbolicLink(WideW(to), WideW(from)) ? 1 : 0; });
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
    Call(site, [&] { CloseByHandle(handle); });
}

TOVARIN_EXPORT int __cdecl FileCopyByHandleA(void* const handle, const char* path) {
    return Call<int>(TOVARIN_SITE("int __cdecl FileCopyByHandleA(void *const ,const char *)"), 0,
                     [&] { return CopyOnFile(handle, WideA(path)); });
}

TOVARIN_EXPORT int __cdecl FileCopyByHandleW(void* const handle, const wchar_t* path) {
    return Call<int>(TOVARIN_SITE("int __cdecl FileCopyByHandleW(void *const ,const wchar_t *)"), 0,
                     [&] { return CopyOnFile(handle, WideW(path)); });
}

TOVARIN_EXPORT void __cdecl FileDeleteByHandle(void* const handle) {
    const Site site = TOVARIN_SITE("void __cdecl FileDeleteByHandle(void *const )");
    Call(site, [&] { DeleteByHandle(handle); });
}

TOVARIN_EXPORT void __cdecl FileFlushApply(void* const handle) {
    const Site site = TOVARIN_SITE("void __cdecl FileFlushApply(void *const )");
    Call(site, [&] { WithFile(handle, [](FileHdd& file, void* h) { file.Flush(h); }); });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileGetSize(void* const handle) {
    const Site site = TOVARIN_SITE("unsigned __int64 __cdecl FileGetSize(void *const )");
    return Call<unsigned __int64>(site, static_cast<unsigned __int64>(0), [&] {
        // Deliberately the low 32 bits, sign-extended: sizes of 2 GiB and more come back wrong.
        const unsigned __int64 size =
            WithFile(handle, [](FileHdd& file, void* h) { return file._Size64(h); });
        return static_cast<unsigned __int64>(
            static_cast<__int64>(static_cast<int>(static_cast<unsigned int>(size))));
    });
}

TOVARIN_EXPORT void __cdecl FileHardLinkByHandleA(void* const handle, const char* path) {
    Call(TOVARIN_SITE("void __cdecl FileHardLinkByHandleA(void *const ,const char *)"),
         [&] { HardLinkOnFile(handle, WideA(path)); });
}

TOVARIN_EXPORT void __cdecl FileHardLinkByHandleW(void* const handle, const wchar_t* path) {
    Call(TOVARIN_SITE("void __cdecl FileHardLinkByHandleW(void *const ,const wchar_t *)"),
         [&] { HardLinkOnFile(handle, WideW(path)); });
}

TOVARIN_EXPORT int __cdecl FileMoveByHandleA(void* const handle, const char* path) {
    return Call<int>(TOVARIN_SITE("int __cdecl FileMoveByHandleA(void *const ,const char *)"), 0,
                     [&] { return MoveOnFile(handle, WideA(path)); });
}

TOVARIN_EXPORT int __cdecl FileMoveByHandleW(void* const handle, const wchar_t* path) {
    return Call<int>(TOVARIN_SITE("int __cdecl FileMoveByHandleW(void *const ,const wchar_t *)"), 0,
                     [&] { return MoveOnFile(handle, WideW(path)); });
}

TOVARIN_EXPORT void __cdecl FileResize(void* const handle, const unsigned __int64 size) {
    const Site site = TOVARIN_SITE("void __cdecl FileResize(void *const ,const unsigned __int64)");
    Call(site, [&] { WithFile(handle, [&](FileHdd& file, void*) { file.Resize<unsigned __int64>(size); }); });
}

TOVARIN_EXPORT int __cdecl FileSymbolicLinkByHandleA(void* const handle, const char* path) {
    return Call<int>(TOVARIN_SITE("int __cdecl FileSymbolicLinkByHandleA(void *const ,const char *)"), 0,
                     [&] { return SymbolicLinkOnFile(handle, WideA(path)); });
}

TOVARIN_EXPORT int __cdecl FileSymbolicLinkByHandleW(void* const handle, const wchar_t* path) {
    return Call<int>(TOVARIN_SITE("int __cdecl FileSymbolicLinkByHandleW(void *const ,const wchar_t *)"), 0,
                     [&] { return SymbolicLinkOnFile(handle, WideW(path)); });
}

TOVARIN_OPEN(FileCreateAlwaysA, char, WideA, CREATE_ALWAYS,
             "void *__cdecl FileCreateAlwaysA(const char *,const unsigned long,const unsigned long)")

TOVARIN_OPEN(FileCreateAlwaysW, wchar_t, WideW, CREATE_ALWAYS,
             "void *__cdecl FileCreateAlwaysW(const wchar_t *,const unsigned long,const unsigned long)")

TOVARIN_OPEN(FileCreateNewA, char, WideA, CREATE_NEW,
             "void *__cdecl FileCreateNewA(const char *,const unsigned long,const unsigned long)")

TOVARIN_OPEN(FileCreateNewW, wchar_t, WideW, CREATE_NEW,
             "void *__cdecl FileCreateNewW(const wchar_t *,const unsigned long,const unsigned long)")

TOVARIN_OPEN(FileOpenAlwaysA, char, WideA, OPEN_ALWAYS,
             "void *__cdecl FileOpenAlwaysA(const char *,const unsigned long,const unsigned long)")

TOVARIN_OPEN(FileOpenAlwaysW, wchar_t, WideW, OPEN_ALWAYS,
             "void *__cdecl FileOpenAlwaysW(const wchar_t *,const unsigned long,const unsigned long)")

TOVARIN_OPEN(FileOpenExistingA, char, WideA, OPEN_EXISTING,
             "void *__cdecl FileOpenExistingA(const char *,const unsigned long,const unsigned long)")

TOVARIN_OPEN(FileOpenExistingW, wchar_t, WideW, OPEN_EXISTING,
             "void *__cdecl FileOpenExistingW(const wchar_t *,const unsigned long,const unsigned long)")

TOVARIN_OPEN(FileOpenTruncateA, char, WideA, TRUNCATE_EXISTING,
             "void *__cdecl FileOpenTruncateA(const char *,const unsigned long,const unsigned long)")

TOVARIN_OPEN(FileOpenTruncateW, wchar_t, WideW, TRUNCATE_EXISTING,
             "void *__cdecl FileOpenTruncateW(const wchar_t *,const unsigned long,const unsigned long)")

TOVARIN_EXPORT __int64 __cdecl FileGetPointer(void* const handle) {
    const Site site = TOVARIN_SITE("__int64 __cdecl FileGetPointer(void *const )");
    return Call<__int64>(site, -1, [&] {
        return WithFile(handle, [](FileHdd& file, void* h) { return file._SetPointer(h, FILE_CURRENT, 0); });
    });
}

TOVARIN_EXPORT __int64 __cdecl FileSetPointerBegin(void* const handle, const int distance) {
    const Site site = TOVARIN_SITE("__int64 __cdecl FileSetPointerBegin(void *const ,const int)");
    return Call<__int64>(site, -1, [&] { return SetPointer(handle, FILE_BEGIN, distance); });
}

TOVARIN_EXPORT __int64 __cdecl FileSetPointerCurrent(void* const handle, const int distance) {
    const Site site = TOVARIN_SITE("__int64 __cdecl FileSetPointerCurrent(void *const ,const int)");
    return Call<__int64>(site, -1, [&] { return SetPointer(handle, FILE_CURRENT, distance); });
}

TOVARIN_EXPORT __int64 __cdecl FileSetPointerEnd(void* const handle, const int distance) {
    const Site site = TOVARIN_SITE("__int64 __cdecl FileSetPointerEnd(void *const ,const int)");
    return Call<__int64>(site, -1, [&] { return SetPointer(handle, FILE_END, distance); });
}

TOVARIN_WRITE_VALUE(FileWriteBoolean, bool, "int __cdecl FileWriteBoolean(void *const ,const bool)")

TOVARIN_WRITE_VALUE(FileWriteChar, char, "int __cdecl FileWriteChar(void *const ,const char)")

TOVARIN_WRITE_VALUE(FileWriteUChar, unsigned char,
                    "int __cdecl FileWriteUChar(void *const ,const unsigned char)")

TOVARIN_WRITE_VALUE(FileWriteShort, short, "int __cdecl FileWriteShort(void *const ,const short)")

TOVARIN_WRITE_VALUE(FileWriteUShort, unsigned short,
                    "int __cdecl FileWriteUShort(void *const ,const unsigned short)")

TOVARIN_WRITE_VALUE(FileWriteInt, int, "int __cdecl FileWriteInt(void *const ,const int)")

TOVARIN_WRITE_VALUE(FileWriteUInt, unsigned int, "int __cdecl FileWriteUInt(void *const ,const unsigned int)")

TOVARIN_WRITE_VALUE(FileWriteInt64, __int64, "int __cdecl FileWriteInt64(void *const ,const __int64)")

TOVARIN_WRITE_VALUE(FileWriteUInt64, unsigned __int64,
                    "int __cdecl FileWriteUInt64(void *const ,const unsigned __int64)")

TOVARIN_WRITE_VALUE(FileWriteFlt, float, "int __cdecl FileWriteFlt(void *const ,const float)")

TOVARIN_WRITE_VALUE(FileWriteDbl, double, "int __cdecl FileWriteDbl(void *const ,const double)")

TOVARIN_EXPORT int __cdecl FileWriteStringA(void* const handle, const char* text) {
    const Site site = TOVARIN_SITE("int __cdecl FileWriteStringA(void *const ,const char *)");
    return Call<int>(site, -1, [&] { return WriteText(handle, text); });
}

TOVARIN_EXPORT int __cdecl FileWriteStringW(void* const handle, const wchar_t* text) {
    const Site site = TOVARIN_SITE("int __cdecl FileWriteStringW(void *const ,const wchar_t *)");
    return Call<int>(site, -1, [&] { return WriteText(handle, text); });
}

TOVARIN_WRITE_ARRAY(FileWriteBoolArray, bool* const,
                    "unsigned __int64 __cdecl FileWriteBoolArray(void *const ,bool *const ,const unsigned "
                    "__int64,const unsigned __int64,unsigned __int64)")

TOVARIN_WRITE_ARRAY(FileWriteCharArray, char* const,
                    "unsigned __int64 __cdecl FileWriteCharArray(void *const ,char *const ,const unsigned "
                    "__int64,const unsigned __int64,unsigned __int64)")

TOVARIN_WRITE_ARRAY(FileWriteUCharArray, unsigned char* const,
                    "unsigned __int64 __cdecl FileWriteUCharArray(void *const ,unsigned char *const ,const "
                    "unsigned __int64,const unsigned __int64,unsigned __int64)")

TOVARIN_WRITE_ARRAY(FileWriteShortArray, short* const,
                    "unsigned __int64 __cdecl FileWriteShortArray(void *const ,short *const ,const unsigned "
                    "__int64,const unsigned __int64,unsigned __int64)")

TOVARIN_WRITE_ARRAY(FileWriteUShortArray, unsigned short* const,
                    "unsigned __int64 __cdecl FileWriteUShortArray(void *const ,unsigned short *const ,const "
                    "unsigned __int64,const unsigned __int64,unsigned __int64)")

TOVARIN_WRITE_ARRAY(FileWriteIntArray, int* const,
                    "unsigned __int64 __cdecl FileWriteIntArray(void *const ,int *const ,const unsigned "
                    "__int64,const unsigned __int64,unsigned __int64)")

TOVARIN_WRITE_ARRAY(FileWriteUIntArray, unsigned int* const,
                    "unsigned __int64 __cdecl FileWriteUIntArray(void *const ,unsigned int *const ,const "
                    "unsigned __int64,const unsigned __int64,unsigned __int64)")

TOVARIN_WRITE_ARRAY(FileWriteLongArray, __int64* const,
                    "unsigned __int64 __cdecl FileWriteLongArray(void *const ,__int64 *const ,const unsigned "
                    "__int64,const unsigned __int64,unsigned __int64)")

TOVARIN_WRITE_ARRAY(FileWriteULongArray, unsigned __int64* const,
                    "unsigned __int64 __cdecl FileWriteULongArray(void *const ,unsigned __int64 *const "
                    ",const unsigned __int64,const unsigned __int64,unsigned __int64)")

TOVARIN_WRITE_ARRAY(FileWriteFloatArray, const float*,
                    "unsigned __int64 __cdecl FileWriteFloatArray(void *const ,const float *,const unsigned "
                    "__int64,const unsigned __int64,unsigned __int64)")

TOVARIN_WRITE_ARRAY(FileWriteDoubleArray, const double*,
                    "unsigned __int64 __cdecl FileWriteDoubleArray(void *const ,const double *,const "
                    "unsigned __int64,const unsigned __int64,unsigned __int64)")

TOVARIN_EXPORT unsigned __int64 __cdecl FileWriteStrArrayA(void* const handle, const char** array,
                                                           const unsigned __int64 size,
                                                           const unsigned __int64 start,
                                                           unsigned __int64 count) {
    const Site site = TOVARIN_SITE("unsigned __int64 __cdecl FileWriteStrArrayA(void *const ,const char "
                                   "**,const unsigned __int64,const unsigned __int64,unsigned __int64)");
    return Call<unsigned __int64>(
        site, kAllBits, [&] { return Project::WriteStrArrayByHandleA(handle, array, size, start, count); });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileWriteStrArrayW(void* const handle, const wchar_t** array,
                                                           const unsigned __int64 size,
                                                           const unsigned __int64 start,
                                                           unsigned __int64 count) {
    const Site site = TOVARIN_SITE("unsigned __int64 __cdecl FileWriteStrArrayW(void *const ,const wchar_t "
                                   "**,const unsigned __int64,const unsigned __int64,unsigned __int64)");
    return Call<unsigned __int64>(
        site, kAllBits, [&] { return Project::WriteStrArrayByHandleW(handle, array, size, start, count); });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileWriteStrArrayMA(void* const handle,
                                                            struct MT::_MQLSTRA* const array,
                                                            const unsigned __int64 size,
                                                            const unsigned __int64 start,
                                                            const unsigned __int64 count) {
    const Site site =
        TOVARIN_SITE("unsigned __int64 __cdecl FileWriteStrArrayMA(void *const ,struct MT::_MQLSTRA *const "
                     ",const unsigned __int64,const unsigned __int64,const unsigned __int64)");
    return Call<unsigned __int64>(
        site, kAllBits, [&] { return Project::WriteStrArrayByHandle(handle, array, size, start, count); });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileWriteStrArrayMW(void* const handle,
                                                            struct MT::_MQLSTRW* const array,
                                                            const unsigned __int64 size,
                                                            const unsigned __int64 start,
                                                            const unsigned __int64 count) {
    const Site site =
        TOVARIN_SITE("unsigned __int64 __cdecl FileWriteStrArrayMW(void *const ,struct MT::_MQLSTRW *const "
                     ",const unsigned __int64,const unsigned __int64,const unsigned __int64)");
    return Call<unsigned __int64>(
        site, kAllBits, [&] { return Project::WriteStrArrayByHandle(handle, array, size, start, count); });
}

TOVARIN_READ_VALUE(FileReadBoolean, bool, "bool __cdecl FileReadBoolean(void *const )")

TOVARIN_READ_VALUE(FileReadChar, char, "char __cdecl FileReadChar(void *const )")

TOVARIN_READ_VALUE(FileReadUChar, unsigned char, "unsigned char __cdecl FileReadUChar(void *const )")

TOVARIN_READ_VALUE(FileReadShort, short, "short __cdecl FileReadShort(void *const )")

TOVARIN_READ_VALUE(FileReadUShort, unsigned short, "unsigned short __cdecl FileReadUShort(void *const )")

TOVARIN_READ_VALUE(FileReadInt, int, "int __cdecl FileReadInt(void *const )")

TOVARIN_READ_VALUE(FileReadUInt, unsigned int, "unsigned int __cdecl FileReadUInt(void *const )")

TOVARIN_READ_VALUE(FileReadInt64, __int64, "__int64 __cdecl FileReadInt64(void *const )")

TOVARIN_READ_VALUE(FileReadUInt64, unsigned __int64, "unsigned __int64 __cdecl FileReadUInt64(void *const )")

TOVARIN_READ_VALUE(FileReadFlt, float, "float __cdecl FileReadFlt(void *const )")

TOVARIN_READ_VALUE(FileReadDbl, double, "double __cdecl FileReadDbl(void *const )")

TOVARIN_EXPORT char* __cdecl FileReadStringA(void* const handle, const unsigned __int64 size) {
    const Site site = TOVARIN_SITE("char *__cdecl FileReadStringA(void *const ,const unsigned __int64)");
    return Call<char*>(site, nullptr, [&] { return ReadText<char>(handle, size); });
}

TOVARIN_EXPORT wchar_t* __cdecl FileReadStringW(void* const handle, const unsigned __int64 size) {
    const Site site = TOVARIN_SITE("wchar_t *__cdecl FileReadStringW(void *const ,const unsigned __int64)");
    return Call<wchar_t*>(site, nullptr, [&] { return ReadText<wchar_t>(handle, size); });
}

TOVARIN_READ_ARRAY(FileReadBoolArray, bool*,
                   "unsigned __int64 __cdecl FileReadBoolArray(void *const ,bool *,const unsigned "
                   "__int64,const unsigned __int64,unsigned __int64)")

TOVARIN_READ_ARRAY(FileReadCharArray, char*,
                   "unsigned __int64 __cdecl FileReadCharArray(void *const ,char *,const unsigned "
                   "__int64,const unsigned __int64,unsigned __int64)")

TOVARIN_READ_ARRAY(FileReadUCharArray, unsigned char*,
                   "unsigned __int64 __cdecl FileReadUCharArray(void *const ,unsigned char *,const unsigned "
                   "__int64,const unsigned __int64,unsigned __int64)")

TOVARIN_READ_ARRAY(FileReadShortArray, short*,
                   "unsigned __int64 __cdecl FileReadShortArray(void *const ,short *,const unsigned "
                   "__int64,const unsigned __int64,unsigned __int64)")

TOVARIN_READ_ARRAY(FileReadUShortArray, unsigned short*,
                   "unsigned __int64 __cdecl FileReadUShortArray(void *const ,unsigned short *,const "
                   "unsigned __int64,const unsigned __int64,unsigned __int64)")

TOVARIN_READ_ARRAY(FileReadIntArray, int*,
                   "unsigned __int64 __cdecl FileReadIntArray(void *const ,int *,const unsigned "
                   "__int64,const unsigned __int64,unsigned __int64)")

TOVARIN_READ_ARRAY(FileReadUIntArray, unsigned int*,
                   "unsigned __int64 __cdecl FileReadUIntArray(void *const ,unsigned int *,const unsigned "
                   "__int64,const unsigned __int64,unsigned __int64)")

TOVARIN_READ_ARRAY(FileReadLongArray, __int64*,
                   "unsigned __int64 __cdecl FileReadLongArray(void *const ,__int64 *,const unsigned "
                   "__int64,const unsigned __int64,unsigned __int64)")

TOVARIN_READ_ARRAY(FileReadULongArray, unsigned __int64*,
                   "unsigned __int64 __cdecl FileReadULongArray(void *const ,unsigned __int64 *,const "
                   "unsigned __int64,const unsigned __int64,unsigned __int64)")

TOVARIN_READ_ARRAY(FileReadFloatArray, float*,
                   "unsigned __int64 __cdecl FileReadFloatArray(void *const ,float *,const unsigned "
                   "__int64,const unsigned __int64,unsigned __int64)")

TOVARIN_READ_ARRAY(FileReadDoubleArray, double*,
                   "unsigned __int64 __cdecl FileReadDoubleArray(void *const ,double *,const unsigned "
                   "__int64,const unsigned __int64,unsigned __int64)")

TOVARIN_EXPORT unsigned __int64 __cdecl FileReadStrArrayA(void* const handle, char** array,
                                                          const unsigned __int64 size,
                                                          const unsigned __int64 capacity,
                                                          const unsigned __int64 start,
                                                          const unsigned __int64 count) {
    const Site site =
        TOVARIN_SITE("unsigned __int64 __cdecl FileReadStrArrayA(void *const ,char **,const unsigned "
                     "__int64,const unsigned __int64,const unsigned __int64,const unsigned __int64)");
    return Call<unsigned __int64>(site, kAllBits, [&] {
        return Project::ReadStrArrayByHandle(handle, array, size, capacity, start, count);
    });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileReadStrArrayW(void* const handle, wchar_t** array,
                                                          const unsigned __int64 size,
                                                          const unsigned __int64 capacity,
                                                          const unsigned __int64 start,
                                                          const unsigned __int64 count) {
    const Site site =
        TOVARIN_SITE("unsigned __int64 __cdecl FileReadStrArrayW(void *const ,wchar_t **,const unsigned "
                     "__int64,const unsigned __int64,const unsigned __int64,const unsigned __int64)");
    return Call<unsigned __int64>(site, kAllBits, [&] {
        return Project::ReadStrArrayByHandle(handle, array, size, capacity, start, count);
    });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileReadStrArrayMA(void* const handle, struct MT::_MQLSTRA* array,
                                                           const unsigned __int64 size,
                                                           const unsigned __int64 start,
                                                           const unsigned __int64 count) {
    const Site site =
        TOVARIN_SITE("unsigned __int64 __cdecl FileReadStrArrayMA(void *const ,struct MT::_MQLSTRA *,const "
                     "unsigned __int64,const unsigned __int64,const unsigned __int64)");
    return Call<unsigned __int64>(
        site, kAllBits, [&] { return Project::ReadStrArrayByHandle(handle, array, size, start, count); });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileReadStrArrayMW(void* const handle, struct MT::_MQLSTRW* array,
                                                           const unsigned __int64 size,
                                                           const unsigned __int64 start,
                                                           const unsigned __int64 count) {
    const Site site =
        TOVARIN_SITE("unsigned __int64 __cdecl FileReadStrArrayMW(void *const ,struct MT::_MQLSTRW *,const "
                     "unsigned __int64,const unsigned __int64,const unsigned __int64)");
    return Call<unsigned __int64>(
        site, kAllBits, [&] { return Project::ReadStrArrayByHandle(handle, array, size, start, count); });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileCompletedA(const char* path, const unsigned short access,
                                                       const int share, const __int64 /*offset*/,
                                                       const unsigned short /*origin*/,
                                                       const unsigned long /*size*/, void* /*buffer*/,
                                                       const unsigned __int64 /*count*/) {
    const Site site = TOVARIN_SITE(
        "unsigned __int64 __cdecl FileCompletedA(const char *,const unsigned short,const int,const "
        "__int64,const unsigned short,const unsigned long,void *,const unsigned __int64)");
    return Call<unsigned __int64>(site, static_cast<unsigned __int64>(0),
                                  [&] { return Project::CompletedOperation(WideA(path), access, share); });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileCompletedW(const wchar_t* path, const unsigned short access,
                                                       const int share, const __int64 /*offset*/,
                                                       const unsigned short /*origin*/,
                                                       const unsigned long /*size*/, void* /*buffer*/,
                                                       const unsigned __int64 /*count*/) {
    const Site site = TOVARIN_SITE(
        "unsigned __int64 __cdecl FileCompletedW(const wchar_t *,const unsigned short,const int,const "
        "__int64,const unsigned short,const unsigned long,void *,const unsigned __int64)");
    return Call<unsigned __int64>(site, static_cast<unsigned __int64>(0),
                                  [&] { return Project::CompletedOperation(WideW(path), access, share); });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileReadVoid(void* const handle, void* buffer,
                                                     const unsigned __int64 count) {
    const Site site =
        TOVARIN_SITE("unsigned __int64 __cdecl FileReadVoid(void *const ,void *,const unsigned __int64)");
    return Call<unsigned __int64>(site, kAllBits, [&] {
        return WithFile(handle, [&](FileHdd& file, void* h) { return file.ReadHeld(h, buffer, count); });
    });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileWriteVoid(void* const handle, const void* buffer,
                                                      const unsigned __int64 count) {
    const Site site = TOVARIN_SITE(
        "unsigned __int64 __cdecl FileWriteVoid(void *const ,const void *,const unsigned __int64)");
    return Call<unsigned __int64>(site, kAllBits, [&] {
        return WithFile(handle, [&](FileHdd& file, void* h) { return file.WriteHeld(h, buffer, count); });
    });
}
