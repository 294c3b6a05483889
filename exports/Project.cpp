#include "Project.h"

#include "../utils/Utils.Checking.h"
#include "../utils/Utils.Error.h"
#include "../utils/Utils.StringBuffer.h"
#include "../utils/Utils.Strings.h"

#include <cwchar>
#include <cstring>
#include <map>
#include <memory>
#include <type_traits>
#include <string_view>

namespace Project {

namespace {

const char kPtrCFile[] =
    "class Utils::Smart::Pointer<class Utils::FileHdd> __cdecl Project::PtrCFile(void *const )";
const char kPtrCFileDelete[] = "void __cdecl Project::PtrCFileDelete(void *const )";
const char kCompleted[] = "unsigned __int64 __cdecl Project::CompletedOperation(const " TOVARIN_WSTRING
                          " &,const unsigned short,const int)";

const wchar_t kNotInitialised[] =
    L"Массив классов не инициализирован.\r\nСначала создайте или откройте файл.";
const wchar_t kUnknownHandle[] = L"Неверный системный дескриптор файла.";

typedef std::map<unsigned __int64, FilePtr> Registry;

Registry& Files() {
    static Registry* files = new Registry(); // lives to the end of the process, like the files it keeps open
    return *files;
}

// The registry lock. The global pointer that its getter fills keeps it alive; one copy kept here
// spares a count round trip on every call.
Utils::Sync::CriticalSection& RegistryLock() {
    static const Utils::Smart::Pointer<g_CSyncCS> lock = GetCSyncCS();
    return *lock.Get();
}

unsigned __int64 Key(void* const handle) {
    return reinterpret_cast<unsigned __int64>(handle);
}

} // namespace

FilePtr PtrCFile(void* const handle) {
    Guard guard(RegistryLock());
    Registry& files = Files();
    if (files.empty())
        TOVARIN_THROW(kPtrCFile, false, kNotInitialised);
    const Registry::iterator entry = files.find(Key(handle));
    if (entry == files.end())
        TOVARIN_THROW(kPtrCFile, false, kUnknownHandle);
    if (!entry->second) {
        files.erase(entry);
        TOVARIN_THROW(
            kPtrCFile, false,
            L"Несуществующий или устаревший или закрытый системный дескриптор файла из-за ошибки функции "
            L"WinAPI.");
    }
    return entry->second;
}

void PtrCFileDelete(void* const handle) {
    FilePtr removed;
    {
        Guard guard(RegistryLock());
        Registry& files = Files();
        if (files.empty())
            TOVARIN_THROW(kPtrCFileDelete, false, kNotInitialised);
        const Registry::iterator entry = files.find(Key(handle));
        if (entry == files.end())
            TOVARIN_THROW(kPtrCFileDelete, false, kUnknownHandle);
        removed = entry->second;
        files.erase(entry);
    }
    // `removed` lets the object go here, outside the registry lock.
}

void Register(const FilePtr& file) {
    Guard guard(RegistryLock());
    Files().insert(Registry::value_type(Key(file->Handle()), file));
}

size_t RegistrySize() {
    Guard guard(RegistryLock());
    return Files().size();
}

void ReleaseAll() noexcept {
    Registry released;
    try {
        Guard guard(RegistryLock());
        released.swap(Files());
    } catch (...) {
        // Without its lock the registry cannot be emptied safely; its files stay open then.
    }
    // `released` lets the objects go here, outside the registry lock; each closes its file.
}

void* OpenFile(const std::wstring& path, const unsigned long access, const unsigned long share,
               const unsigned long disposition) {
    FilePtr file(new Utils::FileHdd());
    file->Init(path, nullptr, true);
    {
        Guard guard(file->Lock());
        if (access != 0xFFFFFFFFul)
            file->SetAccess(access);
        if (share != 0xFFFFFFFFul)
            file->SetShare(share);
        file->SetHandle(file->_Create(path, disposition)); // a new object holds no handle yet
    }
    if (file->Handle() == nullptr)
        return nullptr; // the system failed without a last error; nothing to register
    Register(file);
    return file->Handle();
}

// ---- The string-result holder ---------------------------------------------------------------

namespace {

class StringResults : public virtual Utils::Smart::Base {
public:
    Utils::Sync::CriticalSection lock;
    Utils::_STRINGBUF<char> narrow;
    Utils::_STRINGBUF<wchar_t> wide;
};

StringResults& Results() {
    static const Utils::Smart::Pointer<StringResults> results = [] {
        Utils::Sync::Lock<Utils::Sync::CriticalSection> guard(Utils::Sync::SmartLock());
        return Utils::Smart::Pointer<StringResults>(new StringResults());
    }();
    return *results.Get();
}

template <class Char>
Char* Load(Utils::_STRINGBUF<Char>& buffer, const Char* text, const unsigned __int64 length) {
    Guard guard(Results().lock);
    // An empty text is a valid result of a read, though the buffer's Init refuses it.
    if (length == 0)
        buffer.Empty();
    else
        buffer.Init(text, length, length);
    return buffer.template Pointer<Char>(0);
}

} // namespace

wchar_t* LoadStringResult(const wchar_t* text, const unsigned __int64 length) {
    return Load(Results().wide, text, length);
}

char* LoadStringResult(const char* text, const unsigned __int64 length) {
    return Load(Results().narrow, text, length);
}

// ---- String arrays ----------------------------------------------------------------------------

namespace {

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

const wchar_t kNoArray[] = L"Отсутствует массив строк: указатель на массив равен нулю.";

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
    const unsigned __int64 n =
        Utils::Checking::CountDirect(Utils::Error::Site{signature, __FILE__, __LINE__}, size, start, count);
    if (array == nullptr)
        TOVARIN_THROW(signature, false, kNoArray);
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
    if (buffer == nullptr)
        TOVARIN_THROW(kReadByPtr, false,
                      L"Отсутствует буфер строки массива: указатель равен нулю.\r\nЭлемент массива: " +
                          std::to_wstring(index));
    // The host's buffer must hold the whole line; no terminating zero is written.
    if (length > capacity)
        TOVARIN_THROW(kReadByPtr, false,
                      L"Буфер строки массива меньше прочитанной строки.\r\nЭлемент массива: " +
                          std::to_wstring(index) + L"\r\nДлина строки: " + std::to_wstring(length) +
                          L"\r\nРазмер буфера: " + std::to_wstring(capacity));
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
    const unsigned __int64 n = Utils::Checking::CountDirect(TOVARIN_SITE(kReadByHandle), size, start, count);
    if (array == nullptr)
        TOVARIN_THROW(kReadByHandle, false, kNoArray);
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

template <>
unsigned __int64
WriteStrArrayByHandle<MT::_MQLSTRW>(void* const handle, MT::_MQLSTRW* array, const unsigned __int64 size,
                                    const unsigned __int64 start, const unsigned __int64 count) {
    return WriteByHandle(kWriteByHandleMW, handle, array, size, start, count);
}

template <>
unsigned __int64
WriteStrArrayByHandle<MT::_MQLSTRA>(void* const handle, MT::_MQLSTRA* array, const unsigned __int64 size,
                                    const unsigned __int64 start, const unsigned __int64 count) {
    return WriteByHandle(kWriteByHandleMA, handle, array, size, start, count);
}

template <>
unsigned __int64 ReadStrArrayByHandle<wchar_t>(void* const handle, wchar_t** array,
                                               const unsigned __int64 size, const unsigned __int64 capacity,
                                               const unsigned __int64 start, const unsigned __int64 count) {
    return ReadByHandle<wchar_t>(handle, array, size, capacity, start, count);
}

template <>
unsigned __int64 ReadStrArrayByHandle<char>(void* const handle, char** array, const unsigned __int64 size,
                                            const unsigned __int64 capacity, const unsigned __int64 start,
                                            const unsigned __int64 count) {
    return ReadByHandle<char>(handle, array, size, capacity, start, count);
}

template <>
unsigned __int64 ReadStrArrayByHandle<MT::_MQLSTRW>(void* const handle, MT::_MQLSTRW* array,
                                                    const unsigned __int64 size, const unsigned __int64 start,
                                                    const unsigned __int64 count) {
    return ReadByHandle<wchar_t>(handle, array, size, 0, start, count);
}

template <>
unsigned __int64 ReadStrArrayByHandle<MT::_MQLSTRA>(void* const handle, MT::_MQLSTRA* array,
                                                    const unsigned __int64 size, const unsigned __int64 start,
                                                    const unsigned __int64 count) {
    return ReadByHandle<char>(handle, array, size, 0, start, count);
}

// ---- The completed operation -------------------------------------------------------------------

unsigned __int64 CompletedOperation(const std::wstring& path, const unsigned short access, const int share) {
    FilePtr file(new Utils::FileHdd());
    file->Init(path, nullptr, true);
    Guard guard(file->Lock());
    switch (access) {
    case 2:
        file->SetAccess(GENERIC_WRITE);
        if (share != -1)
            file->SetShare(static_cast<unsigned long>(share));
        [[fallthrough]]; // deliberately: every case ends in the refusal below
    case 1:
        file->SetAccess(GENERIC_READ);
        if (share != -1)
            file->SetShare(static_cast<unsigned long>(share));
        [[fallthrough]];
    default:
        TOVARIN_THROW(kCompleted, false, L"Доступ к файлу выбран неправильно.");
    }
}

} // namespace Project
