#pragma once
// The glue between the exports and the file objects: the open-file registry that maps a host's
// file handle to its Utils::FileHdd, the host's arguments, and the work each export family does.
// Every function throws the library's composed failure texts; the export frame shows them.
#include "../mt/MT.h"
#include "../utils/Utils.Checking.h"
#include "../utils/Utils.FileHdd.h"
#include "../utils/Utils.Smart.h"

#include <string>

namespace Project {

typedef Utils::Smart::Pointer<Utils::FileHdd> FilePtr;
typedef Utils::Sync::Lock<Utils::Sync::CriticalSection> Guard;

// ---- The open-file registry (Registry.cpp) ----------------------------------------------------

// The object registered for `handle`; throws the registry's texts for an empty registry, an
// unknown handle, or an entry whose pointer is empty (that entry is removed).
FilePtr PtrCFile(void* const handle);
// Removes the entry of `handle`; throws for an empty registry or an unknown handle.
void PtrCFileDelete(void* const handle);
// Inserts (handle, object) unless the handle is already a key: then the older entry stays.
void Register(const FilePtr& file);
// Empties the registry and releases its objects, which close their files: for the unloading of
// the library while the host still has files open. Never throws.
void ReleaseAll() noexcept;

// ---- Arguments (Project.cpp) -----------------------------------------------------------------

// A path argument as wide text: 8-bit paths are converted with the system code page. A null path
// is refused ("Отсутствует путь."): no host means the current folder by it.
std::wstring PathArg(const char* path);
std::wstring PathArg(const wchar_t* path);
// The target of a copy or move, or the link of a link: null or empty is refused the same way,
// before any system call, since the system would take it as the current folder.
std::wstring TargetArg(const char* path);
std::wstring TargetArg(const wchar_t* path);

// ---- Open, close and whole-file operations (Project.cpp) ---------------------------------------

// Makes a file object for `path`, sets access and share (0xFFFFFFFF keeps the default), opens the
// file with `disposition`, registers it and returns its handle (null when the system failed
// silently; nothing is registered then).
void* OpenFile(const std::wstring& path, const unsigned long access, const unsigned long share,
               const unsigned long disposition);
void CloseByHandle(void* const handle);
void DeleteByHandle(void* const handle);
void Clear(void* const handle);
void Flush(void* const handle);
unsigned __int64 Size(void* const handle);
void Resize(void* const handle, const unsigned __int64 size);
__int64 SetPointer(void* const handle, const int method, const int distance);

// Runs work(file, handle) under the object's lock, with the handle the object holds: a concurrent
// close cannot slip between reading the handle and using it. The work transfers with the object's
// ReadHeld and WriteHeld, which do not enter the lock again.
template <class Work>
auto WithFile(void* const handle, Work&& work) -> decltype(work(std::declval<Utils::FileHdd&>(), handle)) {
    const FilePtr file = PtrCFile(handle);
    Guard guard(file->Lock());
    return work(*file, file->Handle());
}

// ---- Values, texts and raw blocks -------------------------------------------------------------

template <class T> int WriteValue(void* const handle, const T& value) {
    return static_cast<int>(WithFile(
        handle, [&](Utils::FileHdd& file, void* h) { return file.WriteHeld(h, &value, sizeof(T)); }));
}

// The count read is not returned: everything arrives, or the read throws.
template <class T> T ReadValue(void* const handle) {
    T value = T();
    WithFile(handle, [&](Utils::FileHdd& file, void* h) { file.ReadHeld(h, &value, sizeof(T)); });
    return value;
}

// A text argument to write: a null text is an empty text.
template <class Char> int WriteText(void* const handle, const Char* text) {
    const size_t length = text == nullptr ? 0 : std::char_traits<Char>::length(text);
    return static_cast<int>(WithFile(handle, [&](Utils::FileHdd& file, void* h) {
        return file.WriteHeld(h, text, length * sizeof(Char));
    }));
}

unsigned __int64 ReadBlock(void* const handle, void* buffer, const unsigned __int64 count);
unsigned __int64 WriteBlock(void* const handle, const void* buffer, const unsigned __int64 count);

// Reads `size` characters, drops the trailing zeros and blanks, and returns the text from the
// process-wide string-result holder (StringResults.cpp): each call replaces the text that the
// previous call of the same width returned. The handle is looked up even when `size` is 0.
char* ReadStringA(void* const handle, const unsigned __int64 size);
wchar_t* ReadStringW(void* const handle, const unsigned __int64 size);

// ---- Typed arrays -----------------------------------------------------------------------------

// The checks of an array transfer, which need no file: the slice (its texts name `site`), the array
// pointer (refused with `noArray`) and that the slice's bytes fit the address space. Returns the
// number of elements. The typed arrays check before they look the handle up, so that a bad slice
// is reported even for a bad handle; the string arrays look the handle up first.
unsigned __int64 CheckedCount(const Utils::Error::Site& site, const void* array, const size_t elementSize,
                              const unsigned __int64 size, const unsigned __int64 start,
                              const unsigned __int64 count, const wchar_t* noArray);
extern const wchar_t kNoArray[];

// One transfer of the slice, under the object's lock.
template <class T>
unsigned __int64 WriteArray(const Utils::Error::Site& site, void* const handle, const T* array,
                            const unsigned __int64 size, const unsigned __int64 start,
                            const unsigned __int64 count) {
    const unsigned __int64 n = CheckedCount(site, array, sizeof(T), size, start, count, kNoArray);
    return WithFile(handle, [&](Utils::FileHdd& file, void* h) {
        return file.WriteHeld(h, array + start, n * sizeof(T)) / sizeof(T);
    });
}

template <class T>
unsigned __int64 ReadArray(const Utils::Error::Site& site, void* const handle, T* array,
                           const unsigned __int64 size, const unsigned __int64 start,
                           const unsigned __int64 count) {
    const unsigned __int64 n = CheckedCount(site, array, sizeof(T), size, start, count, kNoArray);
    return WithFile(handle, [&](Utils::FileHdd& file, void* h) {
        return file.ReadHeld(h, array + start, n * sizeof(T)) / sizeof(T);
    });
}

// ---- String arrays: lines of text ended by CR LF (StringArrays.cpp) ----------------------------

unsigned __int64 WriteStrArrayByHandleW(void* const handle, const wchar_t** array,
                                        const unsigned __int64 size, const unsigned __int64 start,
                                        const unsigned __int64 count);
unsigned __int64 WriteStrArrayByHandleA(void* const handle, const char** array, const unsigned __int64 size,
                                        const unsigned __int64 start, const unsigned __int64 count);
unsigned __int64 WriteStrArrayByHandle(void* const handle, MT::_MQLSTRW* array, const unsigned __int64 size,
                                       const unsigned __int64 start, const unsigned __int64 count);
unsigned __int64 WriteStrArrayByHandle(void* const handle, MT::_MQLSTRA* array, const unsigned __int64 size,
                                       const unsigned __int64 start, const unsigned __int64 count);
unsigned __int64 ReadStrArrayByHandle(void* const handle, wchar_t** array, const unsigned __int64 size,
                                      const unsigned __int64 capacity, const unsigned __int64 start,
                                      const unsigned __int64 count);
unsigned __int64 ReadStrArrayByHandle(void* const handle, char** array, const unsigned __int64 size,
                                      const unsigned __int64 capacity, const unsigned __int64 start,
                                      const unsigned __int64 count);
unsigned __int64 ReadStrArrayByHandle(void* const handle, MT::_MQLSTRW* array, const unsigned __int64 size,
                                      const unsigned __int64 start, const unsigned __int64 count);
unsigned __int64 ReadStrArrayByHandle(void* const handle, MT::_MQLSTRA* array, const unsigned __int64 size,
                                      const unsigned __int64 start, const unsigned __int64 count);

// ---- Path operations (Project.cpp): 1 on success, 0 on failure ---------------------------------

int Check(const std::wstring& path);
int Copy(const std::wstring& from, const std::wstring& to);
int Move(const std::wstring& from, const std::wstring& to);
int Delete(const std::wstring& path);
void HardLink(const std::wstring& from, const std::wstring& link);
int SymbolicLink(const std::wstring& from, const std::wstring& link);
// On an open file: the handle is looked up before the target or link path is taken (TargetArg).
int CopyByHandle(void* const handle, const char* to);
int CopyByHandle(void* const handle, const wchar_t* to);
int MoveByHandle(void* const handle, const char* to);
int MoveByHandle(void* const handle, const wchar_t* to);
void HardLinkByHandle(void* const handle, const char* link);
void HardLinkByHandle(void* const handle, const wchar_t* link);
int SymbolicLinkByHandle(void* const handle, const char* link);
int SymbolicLinkByHandle(void* const handle, const wchar_t* link);

// Always fails: the access selection falls through to its refusal for every value, deliberately.
// The arguments after `share` are never used.
unsigned __int64 CompletedOperation(const std::wstring& path, const unsigned short access, const int share,
                                    const __int64 offset, const unsigned short origin,
                                    const unsigned long size, void* buffer, const unsigned __int64 count);

} // namespace Project
