// The 100 exported functions, in the order of the reference. Each runs its work inside the one
// export frame (Frame.h): its row (ExportRows.h) gives the signature text its failure texts show
// and the neutral result it returns after a failure; the line of its body is the line they show.
#include "../include/Tovarin.h"

#include "ExportRows.h"
#include "Frame.h"
#include "Project.h"

#define TOVARIN_EXPORT extern "C"

using Project::Call;
using Project::PathArg;
using Project::TargetArg;

// Exports that differ only in their value or element type share one body each; every one still
// stands on its own line.
#define TOVARIN_OPEN(name, charType, disposition)                                                            \
    TOVARIN_EXPORT void* __cdecl name(const charType* path, const unsigned long access,                      \
                                      const unsigned long share) {                                           \
        return Call(TOVARIN_ROW(name),                                                                       \
                    [&] { return Project::OpenFile(PathArg(path), access, share, disposition); });           \
    }
#define TOVARIN_WRITE_VALUE(name, type)                                                                      \
    TOVARIN_EXPORT int __cdecl name(void* const handle, const type value) {                                  \
        return Call(TOVARIN_ROW(name), [&] { return Project::WriteValue(handle, value); });                  \
    }
#define TOVARIN_READ_VALUE(name, type)                                                                       \
    TOVARIN_EXPORT type __cdecl name(void* const handle) {                                                   \
        return Call(TOVARIN_ROW(name), [&] { return Project::ReadValue<type>(handle); });                    \
    }
#define TOVARIN_WRITE_ARRAY(name, arrayType)                                                                 \
    TOVARIN_EXPORT unsigned __int64 __cdecl name(void* const handle, arrayType array,                        \
                                                 const unsigned __int64 size, const unsigned __int64 start,  \
                                                 unsigned __int64 count) {                                   \
        return Call(TOVARIN_ROW(name), [&](const Utils::Error::Site& site) {                                 \
            return Project::WriteArray(site, handle, array, size, start, count);                             \
        });                                                                                                  \
    }
#define TOVARIN_READ_ARRAY(name, arrayType)                                                                  \
    TOVARIN_EXPORT unsigned __int64 __cdecl name(void* const handle, arrayType array,                        \
                                                 const unsigned __int64 size, const unsigned __int64 start,  \
                                                 unsigned __int64 count) {                                   \
        return Call(TOVARIN_ROW(name), [&](const Utils::Error::Site& site) {                                 \
            return Project::ReadArray(site, handle, array, size, start, count);                              \
        });                                                                                                  \
    }

TOVARIN_EXPORT int __cdecl FileCheckA(const char* path) {
    return Call(TOVARIN_ROW(FileCheckA), [&] { return Project::Check(PathArg(path)); });
}

TOVARIN_EXPORT int __cdecl FileCheckW(const wchar_t* path) {
    return Call(TOVARIN_ROW(FileCheckW), [&] { return Project::Check(PathArg(path)); });
}

TOVARIN_EXPORT int __cdecl FileCopyA(const char* from, const char* to) {
    return Call(TOVARIN_ROW(FileCopyA), [&] { return Project::Copy(PathArg(from), TargetArg(to)); });
}

TOVARIN_EXPORT int __cdecl FileCopyW(const wchar_t* from, const wchar_t* to) {
    return Call(TOVARIN_ROW(FileCopyW), [&] { return Project::Copy(PathArg(from), TargetArg(to)); });
}

TOVARIN_EXPORT int __cdecl FileDeleteA(const char* path) {
    return Call(TOVARIN_ROW(FileDeleteA), [&] { return Project::Delete(PathArg(path)); });
}

TOVARIN_EXPORT int __cdecl FileDeleteW(const wchar_t* path) {
    return Call(TOVARIN_ROW(FileDeleteW), [&] { return Project::Delete(PathArg(path)); });
}

TOVARIN_EXPORT void __cdecl FileHardLinkA(const char* path, const char* link) {
    Call(TOVARIN_ROW(FileHardLinkA), [&] { Project::HardLink(PathArg(path), TargetArg(link)); });
}

TOVARIN_EXPORT void __cdecl FileHardLinkW(const wchar_t* path, const wchar_t* link) {
    Call(TOVARIN_ROW(FileHardLinkW), [&] { Project::HardLink(PathArg(path), TargetArg(link)); });
}

TOVARIN_EXPORT int __cdecl FileMoveA(const char* from, const char* to) {
    return Call(TOVARIN_ROW(FileMoveA), [&] { return Project::Move(PathArg(from), TargetArg(to)); });
}

TOVARIN_EXPORT int __cdecl FileMoveW(const wchar_t* from, const wchar_t* to) {
    return Call(TOVARIN_ROW(FileMoveW), [&] { return Project::Move(PathArg(from), TargetArg(to)); });
}

TOVARIN_EXPORT int __cdecl FileSymbolicLinkA(const char* path, const char* link) {
    return Call(TOVARIN_ROW(FileSymbolicLinkA),
                [&] { return Project::SymbolicLink(PathArg(path), TargetArg(link)); });
}

TOVARIN_EXPORT int __cdecl FileSymbolicLinkW(const wchar_t* path, const wchar_t* link) {
    return Call(TOVARIN_ROW(FileSymbolicLinkW),
                [&] { return Project::SymbolicLink(PathArg(path), TargetArg(link)); });
}

TOVARIN_EXPORT void __cdecl FileClear(void* const handle) {
    Call(TOVARIN_ROW(FileClear), [&] { Project::Clear(handle); });
}

TOVARIN_EXPORT void __cdecl FileCloseHandle(void* const handle) {
    Call(TOVARIN_ROW(FileCloseHandle), [&] { Project::CloseByHandle(handle); });
}

TOVARIN_EXPORT int __cdecl FileCopyByHandleA(void* const handle, const char* to) {
    return Call(TOVARIN_ROW(FileCopyByHandleA), [&] { return Project::CopyByHandle(handle, to); });
}

TOVARIN_EXPORT int __cdecl FileCopyByHandleW(void* const handle, const wchar_t* to) {
    return Call(TOVARIN_ROW(FileCopyByHandleW), [&] { return Project::CopyByHandle(handle, to); });
}

TOVARIN_EXPORT void __cdecl FileDeleteByHandle(void* const handle) {
    Call(TOVARIN_ROW(FileDeleteByHandle), [&] { Project::DeleteByHandle(handle); });
}

TOVARIN_EXPORT void __cdecl FileFlushApply(void* const handle) {
    Call(TOVARIN_ROW(FileFlushApply), [&] { Project::Flush(handle); });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileGetSize(void* const handle) {
    return Call(TOVARIN_ROW(FileGetSize), [&] { return Project::Size(handle); });
}

TOVARIN_EXPORT void __cdecl FileHardLinkByHandleA(void* const handle, const char* link) {
    Call(TOVARIN_ROW(FileHardLinkByHandleA), [&] { Project::HardLinkByHandle(handle, link); });
}

TOVARIN_EXPORT void __cdecl FileHardLinkByHandleW(void* const handle, const wchar_t* link) {
    Call(TOVARIN_ROW(FileHardLinkByHandleW), [&] { Project::HardLinkByHandle(handle, link); });
}

TOVARIN_EXPORT int __cdecl FileMoveByHandleA(void* const handle, const char* to) {
    return Call(TOVARIN_ROW(FileMoveByHandleA), [&] { return Project::MoveByHandle(handle, to); });
}

TOVARIN_EXPORT int __cdecl FileMoveByHandleW(void* const handle, const wchar_t* to) {
    return Call(TOVARIN_ROW(FileMoveByHandleW), [&] { return Project::MoveByHandle(handle, to); });
}

TOVARIN_EXPORT void __cdecl FileResize(void* const handle, const unsigned __int64 size) {
    Call(TOVARIN_ROW(FileResize), [&] { Project::Resize(handle, size); });
}

TOVARIN_EXPORT int __cdecl FileSymbolicLinkByHandleA(void* const handle, const char* link) {
    return Call(TOVARIN_ROW(FileSymbolicLinkByHandleA),
                [&] { return Project::SymbolicLinkByHandle(handle, link); });
}

TOVARIN_EXPORT int __cdecl FileSymbolicLinkByHandleW(void* const handle, const wchar_t* link) {
    return Call(TOVARIN_ROW(FileSymbolicLinkByHandleW),
                [&] { return Project::SymbolicLinkByHandle(handle, link); });
}

TOVARIN_OPEN(FileCreateAlwaysA, char, CREATE_ALWAYS)

TOVARIN_OPEN(FileCreateAlwaysW, wchar_t, CREATE_ALWAYS)

TOVARIN_OPEN(FileCreateNewA, char, CREATE_NEW)

TOVARIN_OPEN(FileCreateNewW, wchar_t, CREATE_NEW)

TOVARIN_OPEN(FileOpenAlwaysA, char, OPEN_ALWAYS)

TOVARIN_OPEN(FileOpenAlwaysW, wchar_t, OPEN_ALWAYS)

TOVARIN_OPEN(FileOpenExistingA, char, OPEN_EXISTING)

TOVARIN_OPEN(FileOpenExistingW, wchar_t, OPEN_EXISTING)

TOVARIN_OPEN(FileOpenTruncateA, char, TRUNCATE_EXISTING)

TOVARIN_OPEN(FileOpenTruncateW, wchar_t, TRUNCATE_EXISTING)

TOVARIN_EXPORT __int64 __cdecl FileGetPointer(void* const handle) {
    return Call(TOVARIN_ROW(FileGetPointer), [&] { return Project::SetPointer(handle, FILE_CURRENT, 0); });
}

TOVARIN_EXPORT __int64 __cdecl FileSetPointerBegin(void* const handle, const int distance) {
    return Call(TOVARIN_ROW(FileSetPointerBegin),
                [&] { return Project::SetPointer(handle, FILE_BEGIN, distance); });
}

TOVARIN_EXPORT __int64 __cdecl FileSetPointerCurrent(void* const handle, const int distance) {
    return Call(TOVARIN_ROW(FileSetPointerCurrent),
                [&] { return Project::SetPointer(handle, FILE_CURRENT, distance); });
}

TOVARIN_EXPORT __int64 __cdecl FileSetPointerEnd(void* const handle, const int distance) {
    return Call(TOVARIN_ROW(FileSetPointerEnd),
                [&] { return Project::SetPointer(handle, FILE_END, distance); });
}

TOVARIN_WRITE_VALUE(FileWriteBoolean, bool)

TOVARIN_WRITE_VALUE(FileWriteChar, char)

TOVARIN_WRITE_VALUE(FileWriteUChar, unsigned char)

TOVARIN_WRITE_VALUE(FileWriteShort, short)

TOVARIN_WRITE_VALUE(FileWriteUShort, unsigned short)

TOVARIN_WRITE_VALUE(FileWriteInt, int)

TOVARIN_WRITE_VALUE(FileWriteUInt, unsigned int)

TOVARIN_WRITE_VALUE(FileWriteInt64, __int64)

TOVARIN_WRITE_VALUE(FileWriteUInt64, unsigned __int64)

TOVARIN_WRITE_VALUE(FileWriteFlt, float)

TOVARIN_WRITE_VALUE(FileWriteDbl, double)

TOVARIN_EXPORT int __cdecl FileWriteStringA(void* const handle, const char* text) {
    return Call(TOVARIN_ROW(FileWriteStringA), [&] { return Project::WriteText(handle, text); });
}

TOVARIN_EXPORT int __cdecl FileWriteStringW(void* const handle, const wchar_t* text) {
    return Call(TOVARIN_ROW(FileWriteStringW), [&] { return Project::WriteText(handle, text); });
}

TOVARIN_WRITE_ARRAY(FileWriteBoolArray, bool* const)

TOVARIN_WRITE_ARRAY(FileWriteCharArray, char* const)

TOVARIN_WRITE_ARRAY(FileWriteUCharArray, unsigned char* const)

TOVARIN_WRITE_ARRAY(FileWriteShortArray, short* const)

TOVARIN_WRITE_ARRAY(FileWriteUShortArray, unsigned short* const)

TOVARIN_WRITE_ARRAY(FileWriteIntArray, int* const)

TOVARIN_WRITE_ARRAY(FileWriteUIntArray, unsigned int* const)

TOVARIN_WRITE_ARRAY(FileWriteLongArray, __int64* const)

TOVARIN_WRITE_ARRAY(FileWriteULongArray, unsigned __int64* const)

TOVARIN_WRITE_ARRAY(FileWriteFloatArray, const float*)

TOVARIN_WRITE_ARRAY(FileWriteDoubleArray, const double*)

TOVARIN_EXPORT unsigned __int64 __cdecl FileWriteStrArrayA(void* const handle, const char** array,
                                                           const unsigned __int64 size,
                                                           const unsigned __int64 start,
                                                           unsigned __int64 count) {
    return Call(TOVARIN_ROW(FileWriteStrArrayA),
                [&] { return Project::WriteStrArrayByHandleA(handle, array, size, start, count); });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileWriteStrArrayW(void* const handle, const wchar_t** array,
                                                           const unsigned __int64 size,
                                                           const unsigned __int64 start,
                                                           unsigned __int64 count) {
    return Call(TOVARIN_ROW(FileWriteStrArrayW),
                [&] { return Project::WriteStrArrayByHandleW(handle, array, size, start, count); });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileWriteStrArrayMA(void* const handle,
                                                            struct MT::_MQLSTRA* const array,
                                                            const unsigned __int64 size,
                                                            const unsigned __int64 start,
                                                            const unsigned __int64 count) {
    return Call(TOVARIN_ROW(FileWriteStrArrayMA),
                [&] { return Project::WriteStrArrayByHandle(handle, array, size, start, count); });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileWriteStrArrayMW(void* const handle,
                                                            struct MT::_MQLSTRW* const array,
                                                            const unsigned __int64 size,
                                                            const unsigned __int64 start,
                                                            const unsigned __int64 count) {
    return Call(TOVARIN_ROW(FileWriteStrArrayMW),
                [&] { return Project::WriteStrArrayByHandle(handle, array, size, start, count); });
}

TOVARIN_READ_VALUE(FileReadBoolean, bool)

TOVARIN_READ_VALUE(FileReadChar, char)

TOVARIN_READ_VALUE(FileReadUChar, unsigned char)

TOVARIN_READ_VALUE(FileReadShort, short)

TOVARIN_READ_VALUE(FileReadUShort, unsigned short)

TOVARIN_READ_VALUE(FileReadInt, int)

TOVARIN_READ_VALUE(FileReadUInt, unsigned int)

TOVARIN_READ_VALUE(FileReadInt64, __int64)

TOVARIN_READ_VALUE(FileReadUInt64, unsigned __int64)

TOVARIN_READ_VALUE(FileReadFlt, float)

TOVARIN_READ_VALUE(FileReadDbl, double)

TOVARIN_EXPORT char* __cdecl FileReadStringA(void* const handle, const unsigned __int64 size) {
    return Call(TOVARIN_ROW(FileReadStringA), [&] { return Project::ReadStringA(handle, size); });
}

TOVARIN_EXPORT wchar_t* __cdecl FileReadStringW(void* const handle, const unsigned __int64 size) {
    return Call(TOVARIN_ROW(FileReadStringW), [&] { return Project::ReadStringW(handle, size); });
}

TOVARIN_READ_ARRAY(FileReadBoolArray, bool*)

TOVARIN_READ_ARRAY(FileReadCharArray, char*)

TOVARIN_READ_ARRAY(FileReadUCharArray, unsigned char*)

TOVARIN_READ_ARRAY(FileReadShortArray, short*)

TOVARIN_READ_ARRAY(FileReadUShortArray, unsigned short*)

TOVARIN_READ_ARRAY(FileReadIntArray, int*)

TOVARIN_READ_ARRAY(FileReadUIntArray, unsigned int*)

TOVARIN_READ_ARRAY(FileReadLongArray, __int64*)

TOVARIN_READ_ARRAY(FileReadULongArray, unsigned __int64*)

TOVARIN_READ_ARRAY(FileReadFloatArray, float*)

TOVARIN_READ_ARRAY(FileReadDoubleArray, double*)

TOVARIN_EXPORT unsigned __int64 __cdecl FileReadStrArrayA(void* const handle, char** array,
                                                          const unsigned __int64 size,
                                                          const unsigned __int64 capacity,
                                                          const unsigned __int64 start,
                                                          const unsigned __int64 count) {
    return Call(TOVARIN_ROW(FileReadStrArrayA),
                [&] { return Project::ReadStrArrayByHandle(handle, array, size, capacity, start, count); });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileReadStrArrayW(void* const handle, wchar_t** array,
                                                          const unsigned __int64 size,
                                                          const unsigned __int64 capacity,
                                                          const unsigned __int64 start,
                                                          const unsigned __int64 count) {
    return Call(TOVARIN_ROW(FileReadStrArrayW),
                [&] { return Project::ReadStrArrayByHandle(handle, array, size, capacity, start, count); });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileReadStrArrayMA(void* const handle, struct MT::_MQLSTRA* array,
                                                           const unsigned __int64 size,
                                                           const unsigned __int64 start,
                                                           const unsigned __int64 count) {
    return Call(TOVARIN_ROW(FileReadStrArrayMA),
                [&] { return Project::ReadStrArrayByHandle(handle, array, size, start, count); });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileReadStrArrayMW(void* const handle, struct MT::_MQLSTRW* array,
                                                           const unsigned __int64 size,
                                                           const unsigned __int64 start,
                                                           const unsigned __int64 count) {
    return Call(TOVARIN_ROW(FileReadStrArrayMW),
                [&] { return Project::ReadStrArrayByHandle(handle, array, size, start, count); });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileCompletedA(const char* path, const unsigned short access,
                                                       const int share, const __int64 offset,
                                                       const unsigned short origin, const unsigned long size,
                                                       void* buffer, const unsigned __int64 count) {
    return Call(TOVARIN_ROW(FileCompletedA), [&] {
        return Project::CompletedOperation(PathArg(path), access, share, offset, origin, size, buffer, count);
    });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileCompletedW(const wchar_t* path, const unsigned short access,
                                                       const int share, const __int64 offset,
                                                       const unsigned short origin, const unsigned long size,
                                                       void* buffer, const unsigned __int64 count) {
    return Call(TOVARIN_ROW(FileCompletedW), [&] {
        return Project::CompletedOperation(PathArg(path), access, share, offset, origin, size, buffer, count);
    });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileReadVoid(void* const handle, void* buffer,
                                                     const unsigned __int64 count) {
    return Call(TOVARIN_ROW(FileReadVoid), [&] { return Project::ReadBlock(handle, buffer, count); });
}

TOVARIN_EXPORT unsigned __int64 __cdecl FileWriteVoid(void* const handle, const void* buffer,
                                                      const unsigned __int64 count) {
    return Call(TOVARIN_ROW(FileWriteVoid), [&] { return Project::WriteBlock(handle, buffer, count); });
}
