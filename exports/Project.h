#pragma once
// The glue between the exports and the file objects: the open-file registry that maps a host's
// file handle to its Utils::FileHdd, opening, and the string-array transfers.
#include "../mt/MT.h"
#include "../utils/Utils.FileHdd.h"
#include "../utils/Utils.Smart.h"

#include <string>

namespace Project {

typedef Utils::Smart::Pointer<Utils::FileHdd> FilePtr;
typedef Utils::Sync::Lock<Utils::Sync::CriticalSection> Guard;

// The object registered for `handle`; throws the registry's texts for an empty registry, an
// unknown handle, or an entry whose pointer is empty (that entry is removed).
FilePtr PtrCFile(void* const handle);
// Removes the entry of `handle`; throws for an empty registry or an unknown handle.
void PtrCFileDelete(void* const handle);
// Inserts (handle, object) unless the handle is already a key: then the older entry stays.
void Register(const FilePtr& file);
// Number of entries, for tests and diagnostics.
size_t RegistrySize();
// Empties the registry and releases its objects, which close their files: for the unloading of
// the library while the host still has files open. Never throws.
void ReleaseAll() noexcept;

// Makes a file object for `path`, sets access and share (0xFFFFFFFF keeps the default), opens the
// file with `disposition`, registers it and returns its handle (null when the system failed
// silently; nothing is registered then).
void* OpenFile(const std::wstring& path, const unsigned long access, const unsigned long share,
               const unsigned long disposition);

// Runs work(file, handle) under the object's lock, with the handle the object holds: a concurrent
// close cannot slip between reading the handle and using it. The work transfers with the object's
// ReadHeld and WriteHeld, which do not enter the lock again.
template <class Work>
auto WithFile(void* const handle, Work&& work) -> decltype(work(std::declval<Utils::FileHdd&>(), handle)) {
    FilePtr file = PtrCFile(handle);
    Guard guard(file->Lock());
    return work(*file, file->Handle());
}

// The process-wide string-result holder of the string reads: each call replaces the text that the
// previous call of the same width returned.
wchar_t* LoadStringResult(const wchar_t* text, const unsigned __int64 length);
char* LoadStringResult(const char* text, const unsigned __int64 length);

// String arrays: lines of text ended by CR LF.
unsigned __int64 WriteStrArrayByHandleW(void* const handle, const wchar_t** array,
                                        const unsigned __int64 size, const unsigned __int64 start,
                                        const unsigned __int64 count);
unsigned __int64 WriteStrArrayByHandleA(void* const handle, const char** array, const unsigned __int64 size,
                                        const unsigned __int64 start, const unsigned __int64 count);
template <class Record>
unsigned __int64 WriteStrArrayByHandle(void* const handle, Record* array, const unsigned __int64 size,
                                       const unsigned __int64 start, const unsigned __int64 count);
template <class Char>
unsigned __int64 ReadStrArrayByHandle(void* const handle, Char** array, const unsigned __int64 size,
                                      const unsigned __int64 capacity, const unsigned __int64 start,
                                      const unsigned __int64 count);
template <class Record>
unsigned __int64 ReadStrArrayByHandle(void* const handle, Record* array, const unsigned __int64 size,
                                      const unsigned __int64 start, const unsigned __int64 count);

// Always fails: the access selection falls through to its refusal for every value, deliberately.
unsigned __int64 CompletedOperation(const std::wstring& path, const unsigned short access, const int share);

} // namespace Project
