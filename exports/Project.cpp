#include "Project.h"

#include "../utils/Utils.CodingStr.h"
#include "../utils/Utils.Error.h"
#include "../utils/Utils.File.h"
#include "../utils/Utils.FilesFind.h"

#include <windows.h>
#include <shellapi.h>

namespace Project {

namespace {

const char kPathArgA[] = TOVARIN_WSTRING " __cdecl Project::PathArg(const char *)";
const char kPathArgW[] = TOVARIN_WSTRING " __cdecl Project::PathArg(const wchar_t *)";
const char kTargetArgA[] = TOVARIN_WSTRING " __cdecl Project::TargetArg(const char *)";
const char kTargetArgW[] = TOVARIN_WSTRING " __cdecl Project::TargetArg(const wchar_t *)";
const char kCompleted[] = "unsigned __int64 __cdecl Project::CompletedOperation(const " TOVARIN_WSTRING
                          " &,const unsigned short,const int,const __int64,const unsigned short,const "
                          "unsigned long,void *,const unsigned __int64)";

const wchar_t kNoPath[] = L"Отсутствует путь.";
const wchar_t kTooLarge[] = L"Размер передаваемых данных превышает адресное пространство.";

std::wstring Wide(const char* path) {
    return Utils::CodingStr::AnsiToUnicode(path, 0);
}
std::wstring Wide(const wchar_t* path) {
    return path;
}

template <class Char> std::wstring Path(const char* signature, const Char* path) {
    if (path == nullptr)
        TOVARIN_THROW(signature, false, kNoPath);
    return Wide(path);
}

template <class Char> std::wstring Target(const char* signature, const Char* path) {
    if (path == nullptr || path[0] == Char())
        TOVARIN_THROW(signature, false, kNoPath);
    return Wide(path);
}

int Ok(const bool done) {
    return done ? 1 : 0;
}

} // namespace

const wchar_t kNoArray[] = L"Отсутствует массив: указатель на массив равен нулю.";

std::wstring PathArg(const char* path) {
    return Path(kPathArgA, path);
}
std::wstring PathArg(const wchar_t* path) {
    return Path(kPathArgW, path);
}
std::wstring TargetArg(const char* path) {
    return Target(kTargetArgA, path);
}
std::wstring TargetArg(const wchar_t* path) {
    return Target(kTargetArgW, path);
}

// ---- Open, close and whole-file operations ------------------------------------------------------

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

// The registry entry goes before the system handle is closed, deliberately: once closed, the
// system may hand the same value to a file that another thread opens, and its entry must find the key free.
void CloseByHandle(void* const handle) {
    const FilePtr file = PtrCFile(handle);
    PtrCFileDelete(handle);
    Guard guard(file->Lock());
    if (file->Handle() != nullptr)
        file->_Close(file->Handle());
    file->SetHandle(nullptr);
}

// The same order as CloseByHandle, for the same reason; Delete closes the handle first.
void DeleteByHandle(void* const handle) {
    const FilePtr file = PtrCFile(handle);
    PtrCFileDelete(handle);
    file->Delete();
}

// An empty file is left untouched: its pointer does not move.
void Clear(void* const handle) {
    WithFile(handle, [](Utils::FileHdd& file, void* h) {
        if (file._Size64(h) != 0) {
            file._SetPointer(h, FILE_BEGIN, 0);
            file.SetEndPhysical(h);
        }
    });
}

void Flush(void* const handle) {
    WithFile(handle, [](Utils::FileHdd& file, void* h) { file.Flush(h); });
}

// The low 32 bits, sign-extended: deliberately so, a size from 2 GiB on comes back wrong.
unsigned __int64 Size(void* const handle) {
    const unsigned __int64 size =
        WithFile(handle, [](Utils::FileHdd& file, void* h) { return file._Size64(h); });
    return static_cast<unsigned __int64>(
        static_cast<__int64>(static_cast<int>(static_cast<unsigned int>(size))));
}

void Resize(void* const handle, const unsigned __int64 size) {
    PtrCFile(handle)->Resize<unsigned __int64>(size);
}

// One call moves the pointer by a 32-bit distance at most, deliberately.
__int64 SetPointer(void* const handle, const int method, const int distance) {
    return WithFile(handle,
                    [&](Utils::FileHdd& file, void* h) { return file._SetPointer(h, method, distance); });
}

// ---- Raw blocks and arrays ------------------------------------------------------------------------

unsigned __int64 ReadBlock(void* const handle, void* buffer, const unsigned __int64 count) {
    return WithFile(handle, [&](Utils::FileHdd& file, void* h) { return file.ReadHeld(h, buffer, count); });
}

unsigned __int64 WriteBlock(void* const handle, const void* buffer, const unsigned __int64 count) {
    return WithFile(handle, [&](Utils::FileHdd& file, void* h) { return file.WriteHeld(h, buffer, count); });
}

unsigned __int64 CheckedCount(const Utils::Error::Site& site, const void* array, const size_t elementSize,
                              const unsigned __int64 size, const unsigned __int64 start,
                              const unsigned __int64 count, const wchar_t* noArray) {
    const unsigned __int64 n = Utils::Checking::CountDirect(site, size, start, count);
    if (array == nullptr)
        TOVARIN_THROW_AT(site, "[f]", false, noArray);
    if (n > ~0ull / elementSize)
        TOVARIN_THROW_AT(site, "[f]", false, kTooLarge);
    return n;
}

// ---- Path operations ---------------------------------------------------------------------------

int Check(const std::wstring& path) {
    return Ok(Utils::FilesFind().Status(path) == 2);
}

int Copy(const std::wstring& from, const std::wstring& to) {
    return Ok(Utils::MainFile::FileOperation(from, to, FO_COPY));
}

int Move(const std::wstring& from, const std::wstring& to) {
    return Ok(Utils::MainFile::FileOperation(from, to, FO_MOVE));
}

int Delete(const std::wstring& path) {
    return Ok(Utils::MainFile::DeletePath(path));
}

void HardLink(const std::wstring& from, const std::wstring& link) {
    Utils::File::HardLink(from, link);
}

// The existing file comes first from the host, second to the system call.
int SymbolicLink(const std::wstring& from, const std::wstring& link) {
    return Ok(Utils::MainFile::SymbolicLink(link, from));
}

namespace {

template <class Char> int CopyOnFile(void* const handle, const Char* to) {
    return Ok(WithFile(handle, [&](Utils::FileHdd& file, void*) { return file.Copy(TargetArg(to)); }));
}

template <class Char> int MoveOnFile(void* const handle, const Char* to) {
    return Ok(WithFile(handle, [&](Utils::FileHdd& file, void*) { return file.Move(TargetArg(to)); }));
}

template <class Char> void HardLinkOnFile(void* const handle, const Char* link) {
    WithFile(handle, [&](Utils::FileHdd& file, void*) { file.HardLink(TargetArg(link)); });
}

// The open file is the link's target.
template <class Char> int SymbolicLinkOnFile(void* const handle, const Char* link) {
    return Ok(WithFile(handle, [&](Utils::FileHdd& file, void*) {
        return Utils::MainFile::SymbolicLink(TargetArg(link), file.Path());
    }));
}

} // namespace

int CopyByHandle(void* const handle, const char* to) {
    return CopyOnFile(handle, to);
}
int CopyByHandle(void* const handle, const wchar_t* to) {
    return CopyOnFile(handle, to);
}
int MoveByHandle(void* const handle, const char* to) {
    return MoveOnFile(handle, to);
}
int MoveByHandle(void* const handle, const wchar_t* to) {
    return MoveOnFile(handle, to);
}
void HardLinkByHandle(void* const handle, const char* link) {
    HardLinkOnFile(handle, link);
}
void HardLinkByHandle(void* const handle, const wchar_t* link) {
    HardLinkOnFile(handle, link);
}
int SymbolicLinkByHandle(void* const handle, const char* link) {
    return SymbolicLinkOnFile(handle, link);
}
int SymbolicLinkByHandle(void* const handle, const wchar_t* link) {
    return SymbolicLinkOnFile(handle, link);
}

unsigned __int64 CompletedOperation(const std::wstring& path, const unsigned short access, const int share,
                                    const __int64, const unsigned short, const unsigned long, void*,
                                    const unsigned __int64) {
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
