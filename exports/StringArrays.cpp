// String arrays: lines of text ended by CR LF, from and into host arrays of string pointers or
// of the host's string records.
#include "Project.h"

#include "../utils/Utils.Error.h"
#include "../utils/Utils.StringBuffer.h"
#include "../utils/Utils.Strings.h"

#include <cstring>
#include <cwchar>
#include <memory>
#include <string_view>
#include <type_traits>

namespace Project {

namespace {

// The glue's texts name this file and the lines of its calls, although the shared checks they
// call stand in Project.cpp.
const char kWriteByHandleW[] =
    "unsigned __int64 __cdecl Project::WriteStrArrayByHandleW(void *const ,const wchar_t "
    "**,const unsigned __int64,const unsigned __int64,unsigned __int64)";
const char kWriteByHandleA[] =
    "unsigned __int64 __cdecl Project::WriteStrArrayByHandleA(void *const ,const char "
    "**,const unsigned __int64,const unsigned __int64,unsigned __int64)";
const char kWriteByHandleMW[] =
    "unsigned __int64 __cdecl Project::WriteStrArrayByHandle<struct MT::_MQLSTRW>(void "
    "*const ,struct MT::_MQLSTRW *const ,const unsigned __int64,const unsigned "
    "__int64,const unsigned __int64)";
const char kWriteByHandleMA[] =
    "unsigned __int64 __cdecl Project::WriteStrArrayByHandle<struct MT::_MQLSTRA>(void "
    "*const ,struct MT::_MQLSTRA *const ,const unsigned __int64,const unsigned "
    "__int64,const unsigned __int64)";
const char kWriteByPtr[] =
    "unsigned __int64 __cdecl Project::WriteStrArrayByPtr(class "
    "Utils::Smart::Pointer<class Utils::FileHdd>,const void *,const unsigned __int64,const "
    "unsigned __int64,const unsigned __int64)";
const char kReadByHandle[] =
    "unsigned __int64 __cdecl Project::ReadStrArrayByHandle(void *const ,void *,const "
    "unsigned __int64,const unsigned __int64,const unsigned __int64,const unsigned __int64)";
const char kReadByPtr[] =
    "unsigned __int64 __cdecl Project::ReadStrArrayByPtr(class Utils::Smart::Pointer<class "
    "Utils::FileHdd>,void *,const unsigned __int64,const unsigned __int64,const unsigned "
    "__int64,const unsigned __int64)";

const wchar_t kNoLines[] = L"Отсутствует массив строк: указатель на массив равен нулю.";

// The glue's own lock, under which the shared pointer passes into and out of the transfer.
Utils::Sync::CriticalSection& GlueLock() {
    static Utils::Sync::CriticalSection* lock = new Utils::Sync::CriticalSection();
    return *lock;
}

FilePtr Hand(const FilePtr& file) {
    Guard guard(GlueLock());
    return file;
}

size_t Length(const char* text) {
    return text == nullptr ? 0 : std::strlen(text);
}
size_t Length(const wchar_t* text) {
    return text == nullptr ? 0 : std::wcslen(text);
}

template <class Char> bool IsTrimmed(const Char c) {
    return c == 0 || c == Char(' ') || c == Char('\n') || c == Char('\r') || c == Char('\t');
}

// One line: the characters, then CR LF as a second transfer.
template <class Char>
void WriteLine(Utils::FileHdd& file, void* const handle, const Char* text, const size_t length) {
    static const Char kLineEnd[2] = {Char('\r'), Char('\n')};
    file.WriteHeld(handle, text, length * sizeof(Char));
    file.WriteHeld(handle, kLineEnd, sizeof(kLineEnd));
}

void WriteItem(Utils::FileHdd& file, void* const handle, const wchar_t* text) {
    WriteLine(file, handle, text, Length(text));
}
void WriteItem(Utils::FileHdd& file, void* const handle, const char* text) {
    WriteLine(file, handle, text, Length(text));
}

// A host record: its buffer of `length` characters, seen through a string buffer, without the
// trailing blanks and zeros. A record without a buffer holds no text: it is an empty line, as a null
// line pointer is (the view would copy `length` characters from address 0).
template <class Record> void WriteItem(Utils::FileHdd& file, void* const handle, const Record& record) {
    typedef typename std::remove_pointer<decltype(record.pointer)>::type Char;
    if (record.pointer == nullptr) {
        WriteLine(file, handle, static_cast<const Char*>(nullptr), 0);
        return;
    }
    Utils::_STRINGBUF<Char> view;
    view.Init(record.pointer, static_cast<unsigned __int64>(record.length < 0 ? 0 : record.length), 0);
    const Char* text = view.template Pointer<Char>(0);
    size_t length = static_cast<size_t>(view.Size() - 1);
    while (length > 0 && IsTrimmed(text[length - 1]))
        --length;
    WriteLine(file, handle, text, length);
}

template <class Item>
unsigned __int64 WriteStrArrayByPtr(FilePtr file, const Item* array, const unsigned __int64 size,
                                    const unsigned __int64 start, const unsigned __int64 count) {
    const unsigned __int64 n = Utils::Checking::CountDirect(TOVARIN_SITE(kWriteByPtr), size, start, count);
    Guard guard(file->Lock());
    void* const handle = file->Handle();
    unsigned __int64 i = 0;
    for (; i < n && start + i < size; ++i)
        WriteItem(*file, handle, array[start + i]);
    return i;
}

template <class Item>
unsigned __int64 WriteByHandle(const char* signature, void* const handle, const Item* array,
                               const unsigned __int64 size, const unsigned __int64 start,
                               const unsigned __int64 count) {
    const FilePtr file = PtrCFile(handle);
    const unsigned __int64 n = CheckedCount(TOVARIN_SITE(signature), array, 1, size, start, count, kNoLines);
    return WriteStrArrayByPtr(Hand(file), array, size, start, n);
}

// ---- Reading ----

// The whole rest of the file, in one transfer into `text`, a new buffer of its exact length: the
// pointer ends at the end of the file. Returns the number of characters. The buffer is zero-filled
// first although the transfer fills all of it or throws: under Wine, touching the new pages before
// the system call writes them is measurably faster than letting the system call fault them in.
template <class Char>
size_t ReadRest(Utils::FileHdd& file, void* const handle, std::unique_ptr<Char[]>& text) {
    const unsigned __int64 total = file._Size64(handle);
    const unsigned __int64 position =
        static_cast<unsigned __int64>(file._SetPointer(handle, FILE_CURRENT, 0));
    // A pointer at or past the end reads nothing: no line, a result of 0 and no box.
    const unsigned __int64 k = position < total ? (total - position) / sizeof(Char) : 0;
    if (k != 0) {
        text.reset(new Char[static_cast<size_t>(k)]());
        file.ReadHeld(handle, text.get(), k * sizeof(Char));
    }
    return static_cast<size_t>(k);
}

template <class Char>
void Place(Char** array, const unsigned __int64 index, const unsigned __int64 capacity, const Char* piece,
           const size_t length) {
    if (length == 0)
        return;
    Char* buffer = array[index];
    if (buffer == nullptr) {
        const std::wstring text =
            L"Отсутствует буфер строки массива: указатель равен нулю.\r\nЭлемент массива: " +
            std::to_wstring(index);
        TOVARIN_THROW(kReadByPtr, false, text);
    }
    // The host's buffer must hold the whole line; no terminating zero is written.
    if (length > capacity) {
        const std::wstring text = L"Буфер строки массива меньше прочитанной строки.\r\nЭлемент массива: " +
                                  std::to_wstring(index) + L"\r\nДлина строки: " + std::to_wstring(length) +
                                  L"\r\nРазмер буфера: " + std::to_wstring(capacity);
        TOVARIN_THROW(kReadByPtr, false, text);
    }
    std::memcpy(buffer, piece, length * sizeof(Char));
}

template <class Record, class Char>
void Place(Record* array, const unsigned __int64 index, const unsigned __int64, const Char* piece,
           const size_t pieceLength) {
    Record& record = array[index];
    if (record.length <= 0 || record.pointer == nullptr)
        return;
    // Cut to the record's buffer and always terminated within it.
    const size_t length = static_cast<size_t>(record.length);
    const size_t copied = pieceLength < length ? pieceLength : length;
    std::memcpy(record.pointer, piece, copied * sizeof(Char));
    const size_t zeroAt = (length < pieceLength + 1 ? length : pieceLength + 1) - 1;
    record.pointer[zeroAt] = Char();
}

template <class Char, class Item>
unsigned __int64 ReadStrArrayByPtr(FilePtr file, Item* array, const unsigned __int64 size,
                                   const unsigned __int64 capacity, const unsigned __int64 start,
                                   const unsigned __int64 count) {
    const unsigned __int64 n = Utils::Checking::CountDirect(TOVARIN_SITE(kReadByPtr), size, start, count);
    std::unique_ptr<Char[]> text;
    size_t length;
    {
        Guard guard(file->Lock());
        length = ReadRest<Char>(*file, file->Handle(), text);
    }
    // The lines are placed straight from the text: no copy of a line is made.
    static const Char kLineEnd[2] = {Char('\r'), Char('\n')};
    unsigned __int64 i = 0;
    Utils::String::VisitThruSubstring(text.get(), length, std::basic_string_view<Char>(kLineEnd, 2), n,
                                      [&](const Char* piece, const size_t length) {
                                          if (start + i < size) {
                                              Place(array, start + i, capacity, piece, length);
                                              ++i;
                                          }
                                      });
    return i;
}

template <class Char, class Item>
unsigned __int64 ReadByHandle(void* const handle, Item* array, const unsigned __int64 size,
                              const unsigned __int64 capacity, const unsigned __int64 start,
                              const unsigned __int64 count) {
    const FilePtr file = PtrCFile(handle);
    const unsigned __int64 n =
        CheckedCount(TOVARIN_SITE(kReadByHandle), array, 1, size, start, count, kNoLines);
    return ReadStrArrayByPtr<Char>(Hand(file), array, size, capacity, start, n);
}

} // namespace

unsigned __int64 WriteStrArrayByHandleW(void* const handle, const wchar_t** array,
                                        const unsigned __int64 size, const unsigned __int64 start,
                                        const unsigned __int64 count) {
    return WriteByHandle(kWriteByHandleW, handle, array, size, start, count);
}

unsigned __int64 WriteStrArrayByHandleA(void* const handle, const char** array, const unsigned __int64 size,
                                        const unsigned __int64 start, const unsigned __int64 count) {
    return WriteByHandle(kWriteByHandleA, handle, array, size, start, count);
}

unsigned __int64 WriteStrArrayByHandle(void* const handle, MT::_MQLSTRW* array, const unsigned __int64 size,
                                       const unsigned __int64 start, const unsigned __int64 count) {
    return WriteByHandle(kWriteByHandleMW, handle, array, size, start, count);
}

unsigned __int64 WriteStrArrayByHandle(void* const handle, MT::_MQLSTRA* array, const unsigned __int64 size,
                                       const unsigned __int64 start, const unsigned __int64 count) {
    return WriteByHandle(kWriteByHandleMA, handle, array, size, start, count);
}

unsigned __int64 ReadStrArrayByHandle(void* const handle, wchar_t** array, const unsigned __int64 size,
                                      const unsigned __int64 capacity, const unsigned __int64 start,
                                      const unsigned __int64 count) {
    return ReadByHandle<wchar_t>(handle, array, size, capacity, start, count);
}

unsigned __int64 ReadStrArrayByHandle(void* const handle, char** array, const unsigned __int64 size,
                                      const unsigned __int64 capacity, const unsigned __int64 start,
                                      const unsigned __int64 count) {
    return ReadByHandle<char>(handle, array, size, capacity, start, count);
}

unsigned __int64 ReadStrArrayByHandle(void* const handle, MT::_MQLSTRW* array, const unsigned __int64 size,
                                      const unsigned __int64 start, const unsigned __int64 count) {
    return ReadByHandle<wchar_t>(handle, array, size, 0, start, count);
}

unsigned __int64 ReadStrArrayByHandle(void* const handle, MT::_MQLSTRA* array, const unsigned __int64 size,
                                      const unsigned __int64 start, const unsigned __int64 count) {
    return ReadByHandle<char>(handle, array, size, 0, start, count);
}

} // namespace Project
