#include "Utils.FileHdd.h"

#include "Utils.CodingStr.h"
#include "Utils.Error.h"
#include "Utils.File.h"
#include "Utils.Hash.h"
#include "Utils.Strings.h"

#include <shellapi.h>

#include <sstream>

namespace Utils {

namespace {

#define FILEHDD "Utils::FileHdd::"
const char kInit[] =
    "void __cdecl " FILEHDD "Init(const " TOVARIN_WSTRING " &,void *const ,const bool,const bool)";
const char kCreate[] = "void *__cdecl " FILEHDD "_Create(const " TOVARIN_WSTRING " &,const unsigned long)";
const char kClose[] = "void __cdecl " FILEHDD "_Close(void *const )";
const char kFlush[] = "void __cdecl " FILEHDD "Flush(void *const )";
const char kCheckHandle[] =
    "void __cdecl " FILEHDD "CheckHandle(const " TOVARIN_WSTRING " &,void *const ) const";
const char kPathByHandle[] = TOVARIN_WSTRING " __cdecl " FILEHDD "PathByHandle(void *const )";
const char kRead[] = "unsigned __int64 __cdecl " FILEHDD "_Read(void *const ,void *,const unsigned __int64)";
const char kWrite[] =
    "unsigned __int64 __cdecl " FILEHDD "_Write(void *const ,const void *,const unsigned __int64)";
const char kSetPointer[] = "__int64 __cdecl " FILEHDD "_SetPointer(void *const ,const int,const __int64)";
const char kSize64[] = "unsigned __int64 __cdecl " FILEHDD "_Size64(void *const )";
const char kSizeEx64[] = "__int64 __cdecl " FILEHDD "_SizeEx64(void *const )";
const char kSetEnd[] = "void __cdecl " FILEHDD "SetEndPhysical(void *const )";
const char kResize[] = "__int64 __cdecl " FILEHDD "Resize<unsigned __int64>(const unsigned __int64)";
const char kCopy[] = "bool __cdecl " FILEHDD "Copy(const " TOVARIN_WSTRING " &)";
const char kMove[] = "bool __cdecl " FILEHDD "Move(const " TOVARIN_WSTRING " &)";
const char kDelete[] = "bool __cdecl " FILEHDD "Delete(void)";
const char kHardLink[] = "void __cdecl " FILEHDD "HardLink(const " TOVARIN_WSTRING " &)";
#undef FILEHDD

typedef Sync::Lock<Sync::CriticalSection> Guard;

static_assert(FileHdd::kDefaultAccess == (GENERIC_READ | GENERIC_WRITE), "read and write by default");
static_assert(FileHdd::kDefaultShare == (FILE_SHARE_READ | FILE_SHARE_WRITE), "shared for both by default");
static_assert(FileHdd::kDefaultFlags == FILE_ATTRIBUTE_NORMAL, "plain files");

} // namespace

ChunkPlan PlanChunks(const unsigned __int64 size) {
    ChunkPlan plan = {size / kLargestCall + (size % kLargestCall != 0 ? 1 : 0), 0};
    if (plan.count != 0)
        plan.last = size % kLargestCall == 0 ? kLargestCall : static_cast<unsigned long>(size % kLargestCall);
    return plan;
}

const wchar_t* DispositionName(const unsigned long disposition) {
    static const wchar_t* const kNames[] = {L"EMPTY",         L"CREATE_NEW",  L"CREATE_ALWAYS",
                                            L"OPEN_EXISTING", L"OPEN_ALWAYS", L"TRUNCATE_EXISTING"};
    return disposition < 6 ? kNames[disposition] : kNames[0];
}

FileHdd::FileHdd()
    : handle_(nullptr), closeOnRelease_(true), access_(kDefaultAccess), flags_(kDefaultFlags),
      share_(kDefaultShare), templateFile_(nullptr) {}

FileHdd::~FileHdd() {
    try {
        Close();
    } catch (...) {
        // A handle the system refuses to close cannot be helped here.
    }
}

void FileHdd::Reset() {
    Guard guard(lock_);
    closeOnRelease_ = true;
    extension_.clear();
    fileName_.clear();
    baseName_.clear();
    folder_.clear();
    access_ = kDefaultAccess;
    share_ = kDefaultShare;
    flags_ = kDefaultFlags;
    templateFile_ = nullptr;
    handle_ = nullptr;
    path_.clear();
}

void FileHdd::MakeEvent() {
    // Every object for this path, in any process, meets the same event.
    std::wstring name = path_;
    String::ReplaceW(name, 0, static_cast<unsigned __int64>(-1), L'\\', L'_');
    fileEvent_.Create(L"Utils::FileHdd_Event_" + Hash::PathKey(name));
}

void FileHdd::Init(const std::wstring& path, void* const handle, const bool closeOnRelease, const bool) {
    Guard guard(lock_);
    if (!path.empty())
        String::Path::Has(path);
    Reset();
    closeOnRelease_ = closeOnRelease;
    handle_ = handle;
    path_ = path;
    if (path_.empty() && handle_ != nullptr)
        path_ = PathByHandle(handle_);
    const wchar_t* const noFile =
        L"Класс не инициализирован.\r\nДолжены быть указан путь к файлу или системный дескриптор файла.";
    if (path_.empty())
        TOVARIN_THROW(kInit, false, noFile);
    folder_ = String::Path::TrimNameFileCW(path_, 0);
    const size_t slash = path_.rfind(L'\\');
    fileName_ = slash == std::wstring::npos ? path_ : path_.substr(slash + 1);
    const size_t dot = path_.rfind(L'.');
    const bool hasExtension = dot != std::wstring::npos && (slash == std::wstring::npos || dot > slash);
    extension_ = hasExtension ? path_.substr(dot + 1) : std::wstring();
    const size_t nameDot = fileName_.rfind(L'.');
    baseName_ = hasExtension && nameDot != std::wstring::npos ? fileName_.substr(0, nameDot) : fileName_;
    MakeEvent();
}

void* FileHdd::_Create(const std::wstring& path, const unsigned long disposition) {
    Guard guard(lock_);
    String::Path::Has(path);
    // The folder step matters only when the file cannot be opened without it. In a folder on a
    // drive the file is tried first: a file that opens proves its folder is there, so the folder
    // step would have found it and changed nothing; an attempt that fails changes nothing either,
    // and the steps then run in their order.
    if (IsDriveFolder(String::Path::TrimNameFileCW(path, 0))) {
        ::SetLastError(0);
        HANDLE handle = Sys().createFile(path.c_str(), access_, share_, nullptr, disposition, flags_,
                                         static_cast<HANDLE>(templateFile_));
        if (handle != INVALID_HANDLE_VALUE && handle != nullptr)
            return handle;
    }
    const FolderStep step = CreateFolder(path);
    if (!step.made)
        TOVARIN_THROW(kCreate, false, L"Для файла не создан каталог:\r\n\"" + step.folder + L"\"");
    ::SetLastError(0);
    HANDLE handle = Sys().createFile(path.c_str(), access_, share_, nullptr, disposition, flags_,
                                     static_cast<HANDLE>(templateFile_));
    if (handle != INVALID_HANDLE_VALUE && handle != nullptr)
        return handle;
    const unsigned long lastError = ::GetLastError();
    if (lastError == 0)
        return nullptr; // failed without a last error: deliberately silent, callers test for null
    const std::wstring text = L"Не открыт файл:\r\n\"" + path + L"\"\r\nВыполняемые действия с файлом: " +
                              DispositionName(disposition);
    ::SetLastError(lastError); // the box reports the open's error, whatever building the text did
    TOVARIN_THROW(kCreate, true, text);
}

void* FileHdd::Create(const unsigned long disposition) {
    Guard guard(lock_);
    if (handle_ != nullptr)
        _Close(handle_);
    handle_ = nullptr;
    handle_ = _Create(path_, disposition);
    return handle_;
}

void FileHdd::_Close(void* const handle) {
    Guard guard(lock_);
    ::SetLastError(0);
    if (handle == nullptr)
        return;
    if (!Sys().closeHandle(handle)) {
        const unsigned long lastError = ::GetLastError(); // the box reports the close's own error
        // The handle is formatted here: standard libraries stream a pointer as 0x1234 or 0000000000001234.
        const std::wstring shown = NumToStrW(reinterpret_cast<unsigned __int64>(handle), 2, true);
        std::wostringstream text;
        text << L"Не закрыт файл:" << std::endl
             << L"\"" << path_ << L"\"" << std::endl
             << L"Системный дескриптор: " << shown;
        ::SetLastError(lastError);
        TOVARIN_THROW(kClose, true, text.str());
    }
}

void FileHdd::Close() {
    Guard guard(lock_);
    if (closeOnRelease_ && handle_ != nullptr)
        _Close(handle_);
    handle_ = nullptr;
    Reset();
}

void FileHdd::CheckHandle(const char* name, void* const handle) const {
    // Only null is refused: INVALID_HANDLE_VALUE fails later, in the system call.
    if (handle == nullptr) {
        const std::wstring text =
            CodingStr::AnsiToUnicode(name, 0) +
            L"\r\n\r\nМетод не может быть выполнен.\r\nОтсутствует системный дескриптор файла:\r\n\"" +
            path_ + L"\"\r\nВероятно, файл не открыт.";
        TOVARIN_THROW(kCheckHandle, false, text);
    }
}

void FileHdd::Flush(void* const handle) {
    Guard guard(lock_);
    CheckHandle(kFlush, handle);
    ::SetLastError(0);
    if (!::FlushFileBuffers(handle))
        TOVARIN_THROW(kFlush, true, L"Не записаны буферизированные данные в файл:\r\n\"" + path_ + L"\"");
}

std::wstring FileHdd::PathByHandle(void* const handle) {
    Guard guard(lock_);
    ::SetLastError(0);
    wchar_t probe[1] = {};
    const DWORD length = ::GetFinalPathNameByHandleW(handle, probe, 1, 0);
    if (length == 0)
        TOVARIN_THROW(kPathByHandle, true, L"Не получена длина пути к файлу.");
    std::wstring path(length, L'\0');
    const DWORD written = ::GetFinalPathNameByHandleW(handle, &path[0], length, 0);
    if (written == 0)
        TOVARIN_THROW(kPathByHandle, true, L"Не получен путь к файлу.");
    path.resize(written < length ? written : length);
    return path;
}

void FileHdd::RequirePath(const Error::Site& site, const wchar_t* purpose) const {
    if (path_.empty())
        TOVARIN_THROW_AT(site, "[f]", false,
                         std::wstring(L"Отсутствует путь к исходному файлу.\r\nДля ") + purpose +
                             L" необходимо инициализировать класс путём к файлу.");
}

void FileHdd::CheckTransfer(bool write, void* const handle) const {
    CheckHandle(write ? kWrite : kRead, handle);
}

void FileHdd::TransferFailed(bool write, void* const handle, const unsigned __int64 iteration,
                             const unsigned long length, const unsigned long done) {
    // The text shows the failed call's own last error, not the one the position query leaves.
    const unsigned long lastError = ::GetLastError();
    __int64 pointer = -1;
    try {
        pointer = _SetPointer(handle, FILE_CURRENT, 0);
    } catch (...) {
    }
    std::wostringstream text;
    text << L"На итерации " << iteration
         << (write ? L" не записаны данные в файл:" : L" не прочитаны данные из файла:") << std::endl
         << L"\"" << path_ << L"\"" << std::endl
         << L"Файловый указатель: " << pointer << std::endl
         << L"Запрошено: " << length << std::endl
         << (write ? L"Записано: " : L"Прочитано: ") << done;
    ::SetLastError(lastError);
    TOVARIN_THROW(write ? kWrite : kRead, true, text.str());
}

unsigned __int64 FileHdd::Transfer(bool write, void* const handle, void* buffer,
                                   const unsigned __int64 size) {
    const ChunkPlan plan = PlanChunks(size);
    CheckTransfer(write, handle);
    if (plan.count == 0)
        return 0;
    ::SetLastError(0);
    unsigned char* position = static_cast<unsigned char*>(buffer);
    unsigned __int64 total = 0;
    for (unsigned __int64 i = 0; i < plan.count; ++i) {
        total += TransferCall(write, handle, position, i + 1 == plan.count ? plan.last : kLargestCall, i);
        if (i + 1 < plan.count)
            position += kLargestCall;
    }
    return total;
}

unsigned __int64 FileHdd::_Read(void* const handle, void* buffer, const unsigned __int64 size) {
    Guard guard(lock_);
    return ReadHeld(handle, buffer, size);
}

unsigned __int64 FileHdd::_Write(void* const handle, const void* buffer, const unsigned __int64 size) {
    Guard guard(lock_);
    return WriteHeld(handle, buffer, size);
}

__int64 FileHdd::_SetPointer(void* const handle, const int origin, const __int64 distance) {
    Guard guard(lock_);
    if (origin != FILE_BEGIN && origin != FILE_CURRENT && origin != FILE_END)
        TOVARIN_THROW(kSetPointer, false, L"Точка отсчета перемещения указателя указана неправильно.");
    CheckHandle(kSetPointer, handle);
    const LONG low = static_cast<LONG>(distance & 0xFFFFFFFF);
    LONG high = static_cast<LONG>(distance >> 32);
    // The high half goes by address only when it is not 0, and the failure test differs with it:
    // with it the last error decides, without it the INVALID_SET_FILE_POINTER result. Deliberate.
    PLONG highArgument = high != 0 ? &high : nullptr;
    ::SetLastError(0);
    const DWORD result = ::SetFilePointer(handle, low, highArgument, static_cast<DWORD>(origin));
    const bool failed = highArgument != nullptr ? ::GetLastError() != 0 : result == INVALID_SET_FILE_POINTER;
    if (failed)
        TOVARIN_THROW(kSetPointer, true, L"Не смещён файловый указатель в файле:\r\n\"" + path_ + L"\"");
    if (highArgument == nullptr)
        return static_cast<__int64>(result);
    return (static_cast<__int64>(high) << 32) + static_cast<__int64>(result);
}

unsigned __int64 FileHdd::_Size64(void* const handle) {
    Guard guard(lock_);
    CheckHandle(kSize64, handle);
    ::SetLastError(0);
    DWORD high = 0;
    const DWORD low = ::GetFileSize(handle, &high);
    // Low 32 bits of all ones count as a failure even for a file of such a size: kept so.
    if (low == INVALID_FILE_SIZE)
        TOVARIN_THROW(kSize64, true, L"Не получен размер файла:\r\n\"" + path_ + L"\"");
    return (static_cast<unsigned __int64>(high) << 32) + low;
}

__int64 FileHdd::_SizeEx64(void* const handle) {
    Guard guard(lock_);
    CheckHandle(kSizeEx64, handle);
    ::SetLastError(0);
    LARGE_INTEGER size = {};
    if (!::GetFileSizeEx(handle, &size))
        TOVARIN_THROW(kSizeEx64, true, L"Не получен размер файла:\r\n\"" + path_ + L"\"");
    return size.QuadPart;
}

void FileHdd::SetEndPhysical(void* const handle) {
    Guard guard(lock_);
    CheckHandle(kSetEnd, handle);
    ::SetLastError(0);
    if (!Sys().setEndOfFile(handle))
        TOVARIN_THROW(kSetEnd, true, L"Не зафиксирован физический размер файла:\r\n\"" + path_ + L"\"");
}

template <class T> __int64 FileHdd::Resize(const T newSize) {
    Guard guard(lock_);
    const __int64 position = _SetPointer(handle_, FILE_CURRENT, 0);
    _SetPointer(handle_, FILE_BEGIN, static_cast<__int64>(newSize));
    SetEndPhysical(handle_);
    const __int64 size = _SizeEx64(handle_);
    if (static_cast<unsigned __int64>(size) != static_cast<unsigned __int64>(newSize)) {
        const std::wstring text = L"Размер файла изменён неверно.\r\nУстанавливаемый размер: " +
                                  std::to_wstring(newSize) + L"\r\nУстановленный размер: " +
                                  std::to_wstring(size);
        TOVARIN_THROW(kResize, false, text);
    }
    if (static_cast<unsigned __int64>(position) > _Size64(handle_))
        _SetPointer(handle_, FILE_END, 0);
    else
        _SetPointer(handle_, FILE_BEGIN, position);
    return size;
}

template __int64 FileHdd::Resize<unsigned __int64>(const unsigned __int64);

bool FileHdd::Copy(const std::wstring& to) {
    Guard guard(lock_);
    RequirePath(TOVARIN_SITE(kCopy), L"копирования файла");
    return MainFile::FileOperation(path_, to, FO_COPY);
}

bool FileHdd::Move(const std::wstring& to) {
    Guard guard(lock_);
    RequirePath(TOVARIN_SITE(kMove), L"перемещения файла");
    if (!MainFile::FileOperation(path_, to, FO_MOVE))
        return false;
    path_ = to;
    MakeEvent();
    return true;
}

bool FileHdd::Delete() {
    Guard guard(lock_);
    RequirePath(TOVARIN_SITE(kDelete), L"удаления файла");
    if (handle_ != nullptr)
        _Close(handle_);
    handle_ = nullptr;
    return MainFile::DeletePath(path_);
}

void FileHdd::HardLink(const std::wstring& link) {
    Guard guard(lock_);
    RequirePath(TOVARIN_SITE(kHardLink), L"создания жёсткой ссылки на файл");
    File::HardLink(path_, link);
}

} // namespace Utils
