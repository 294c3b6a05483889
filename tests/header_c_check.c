/* include/Tovarin.h compiles as C: its records, constants and prototypes. Built, never linked. */
#include "include/Tovarin.h"

typedef char tovarin_record_a_is_packed[sizeof(TovarinMqlStrA) == 12 ? 1 : -1];
typedef char tovarin_record_w_is_packed[sizeof(TovarinMqlStrW) == 12 ? 1 : -1];
typedef char tovarin_pointer_at_byte_4[offsetof(TovarinMqlStrW, pointer) == 4 ? 1 : -1];

/* A C caller passes C types: bool, wchar_t text, records and the to-the-end count. */
unsigned __int64 tovarin_header_c_check(void* handle, TovarinMqlStrW* records, bool* flags) {
    void* file = FileOpenExistingW(L"x", TOVARIN_GENERIC_READ, TOVARIN_SHARE_READ | TOVARIN_SHARE_WRITE);
    if (file == TOVARIN_NULL_HANDLE || FileWriteBoolean(file, flags[0]) == TOVARIN_FAILED_WRITE)
        return 0;
    FileCloseHandle(file);
    return FileWriteStrArrayMW(handle, records, 1, 0, TOVARIN_TO_END) +
           FileReadBoolArray(handle, flags, 1, 0, 1);
}
