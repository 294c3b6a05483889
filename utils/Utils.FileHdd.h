#pragma once
// Utils::FileHdd: the library's one open-file object. It holds a path, the system file handle, the
// arguments of the next open, and the locks that serialise every operation on it. The raw
// operations take the handle as an argument, so they can work on any handle under the object's
// lock; every failure is thrown as a composed failure text.
#include "Utils.Error.h"
#include "Utils.File.h"
#include "Utils.Smart.h"
#include "Utils.Synchronize.h"

#include <windows.h>

#include <string>

namespace Utils {

// Raw operations on a handle of type H, in this slot order.
template <class H> class FileOperation {
public:
    virtual ~FileOperation() {}
    virtual void _Close(H const handle) = 0;
    virtual unsigned __int64 _Read(H const handle, void* buffer, const unsigned __int64 size) = 0;
    virtual __int64 _SetPointer(H const handle, const int origin, const __int64 distance) = 0;
    virtual unsigned __int64 _Write(H const handle, const void* buffer, const unsigned __int64 size) = 0;
};

// The largest count that one ReadFile or WriteFile call takes.
const unsigned long kLargestCall = 0xFFFFFFFFul;

// How a transfer of `size` bytes is cut into calls of at most 0xFFFFFFFF bytes each.
struct ChunkPlan {
    unsigned __int64 count; // number of calls; 0 for size 0
    unsigned long last;     // length of the last call
};
ChunkPlan PlanChunks(const unsigned __int64 size);

// The creation dispositions that the open and create exports pass, as CreateFileW takes them.
static_assert(CREATE_NEW == 1 && CREATE_ALWAYS == 2 && OPEN_EXISTING == 3 && OPEN_ALWAYS == 4 &&
                  TRUNCATE_EXISTING == 5,
              "the dispositions are the row numbers of their names");

// Names of the creation dispositions 0..5 in failure texts; "EMPTY" for any other value.
const wchar_t* DispositionName(const unsigned long disposition);

class FileHdd : public FileOperation<void*>, public virtual Smart::Base {
public:
    FileHdd();
    ~FileHdd() override;
    FileHdd(const FileHdd&) = delete;
    FileHdd& operator=(const FileHdd&) = delete;

    // Describes one file by its path, its handle, or both (the path is then taken from the handle)
    // and opens the file's named event. The fourth argument has no effect.
    void Init(const std::wstring& path, void* const handle, const bool closeOnRelease, const bool = false);
    // Every field but the locks back to the constructor's values; does not close the handle.
    void Reset();

    // Creates the file's folder and opens or creates the file; returns the handle, or null without
    // throwing when the system failed without setting the last error.
    void* _Create(const std::wstring& path, const unsigned long disposition);
    // Closes a held handle (owned or not), then _Create on the object's path; stores the result.
    void* Create(const unsigned long disposition);
    void _Close(void* const handle) override;
    // Closes the handle if the object owns it, then Reset.
    void Close();
    void Flush(void* const handle);
    // Throws unless `handle` is non-null; `name` is the refused operation's signature text.
    void CheckHandle(const char* name, void* const handle) const;
    // The final path of an open handle, with the system's "\\?\" prefix.
    std::wstring PathByHandle(void* const handle);

    // Positioned I/O at the handle's file pointer: everything asked for is transferred, or it throws.
    unsigned __int64 _Read(void* const handle, void* buffer, const unsigned __int64 size) override;
    unsigned __int64 _Write(void* const handle, const void* buffer, const unsigned __int64 size) override;
    // _Read and _Write for a caller that holds Lock() already: the same checks, failure texts and
    // system calls, without entering the lock again. A request that one system call takes is made
    // from the caller's own frame: these sit on the path of every value and array export, and each
    // frame held across the system call costs a mispredicted return on the way back.
    unsigned __int64 ReadHeld(void* const handle, void* buffer, const unsigned __int64 size);
    unsigned __int64 WriteHeld(void* const handle, const void* buffer, const unsigned __int64 size);
    __int64 _SetPointer(void* const handle, const int origin, const __int64 distance) override;
    unsigned __int64 _Size64(void* const handle);
    __int64 _SizeEx64(void* const handle);
    void SetEndPhysical(void* const handle);
    // Sets the size of the object's own file; the pointer stays, or moves to the new end when it
    // would lie beyond it. Returns the size read back.
    template <class T> __int64 Resize(const T newSize);

    // Path operations on the object's path (shell copy/move/delete; hard link).
    bool Copy(const std::wstring& to);
    bool Move(const std::wstring& to);
    bool Delete();
    void HardLink(const std::wstring& link);

    void* Handle() const { return handle_; }
    void SetHandle(void* const handle) { handle_ = handle; }
    const std::wstring& Path() const { return path_; }
    const std::wstring& Folder() const { return folder_; }
    const std::wstring& FileName() const { return fileName_; }
    const std::wstring& BaseName() const { return baseName_; }
    const std::wstring& Extension() const { return extension_; }
    unsigned long Access() const { return access_; }
    unsigned long Share() const { return share_; }
    void SetAccess(const unsigned long access) { access_ = access; }
    void SetShare(const unsigned long share) { share_ = share; }
    const std::wstring& EventName() const { return fileEvent_.Name(); }
    Sync::CriticalSection& Lock() { return lock_; }

    static constexpr unsigned long kDefaultAccess = 0xC0000000; // GENERIC_READ | GENERIC_WRITE
    static constexpr unsigned long kDefaultFlags = 0x80;        // FILE_ATTRIBUTE_NORMAL
    static constexpr unsigned long kDefaultShare = 3;           // FILE_SHARE_READ | FILE_SHARE_WRITE

private:
    // ReadHeld and WriteHeld: one call inline, anything else through Transfer.
    unsigned __int64 TransferHeld(const bool write, void* const handle, void* buffer,
                                  const unsigned __int64 size);
    // One system call of a transfer, `iteration` counted from 0. A short transfer is a failure too:
    // everything asked for arrives, or this throws.
    DWORD TransferCall(bool write, void* const handle, void* buffer, const DWORD length,
                       const unsigned __int64 iteration);
    // The chunked transfer, with the lock held.
    unsigned __int64 Transfer(bool write, void* const handle, void* buffer, const unsigned __int64 size);
    // CheckHandle with the signature of _Write or _Read. The held transfers call it for a null
    // handle only, the one it refuses: the call costs more than the test on the way of every export.
    void CheckTransfer(bool write, void* const handle) const;
    // Throws the text of a failed or short call `iteration` of a transfer.
    [[noreturn]] void TransferFailed(bool write, void* const handle, const unsigned __int64 iteration,
                                     const unsigned long length, const unsigned long done);
    void MakeEvent();
    // Throws "Отсутствует путь к исходному файлу." with `purpose` ("копирования файла", ...) when
    // the object has no path; `site` is the refused operation's.
    void RequirePath(const Error::Site& site, const wchar_t* purpose) const;

    void* handle_;
    std::wstring path_;
    bool closeOnRelease_;
    unsigned long access_;
    unsigned long flags_;
    unsigned long share_;
    void* templateFile_;
    std::wstring extension_;
    std::wstring fileName_;
    std::wstring baseName_;
    std::wstring folder_;
    Sync::CriticalSection lock_;
    Sync::Event fileEvent_;
};

inline unsigned __int64 FileHdd::TransferHeld(const bool write, void* const handle, void* buffer,
                                              const unsigned __int64 size) {
    if (size == 0 || size > kLargestCall)
        return Transfer(write, handle, buffer, size);
    if (handle == nullptr)
        CheckTransfer(write, handle);
    ::SetLastError(0);
    return TransferCall(write, handle, buffer, static_cast<DWORD>(size), 0);
}

inline DWORD FileHdd::TransferCall(bool write, void* const handle, void* buffer, const DWORD length,
                                   const unsigned __int64 iteration) {
    DWORD done = 0;
    const BOOL ok = write ? Sys().writeFile(handle, buffer, length, &done, nullptr)
                          : Sys().readFile(handle, buffer, length, &done, nullptr);
    if (!ok || done != length)
        TransferFailed(write, handle, iteration, length, done);
    return done;
}

inline unsigned __int64 FileHdd::ReadHeld(void* const handle, void* buffer, const unsigned __int64 size) {
    return TransferHeld(false, handle, buffer, size);
}

inline unsigned __int64 FileHdd::WriteHeld(void* const handle, const void* buffer,
                                           const unsigned __int64 size) {
    return TransferHeld(true, handle, const_cast<void*>(buffer), size);
}

} // namespace Utils
