// The open-file registry: the host's file handle, as the key, to the object that owns the file.
#include "Project.h"

#include "../utils/Utils.Error.h"

#include <windows.h>

#include <map>

namespace Project {

namespace {

const char kPtrCFile[] =
    "class Utils::Smart::Pointer<class Utils::FileHdd> __cdecl Project::PtrCFile(void *const )";
const char kPtrCFileDelete[] = "void __cdecl Project::PtrCFileDelete(void *const )";

// The registry is part of the glue, and its texts name the glue's header as their file.
const char kGlueHeader[] = "Project.h";
#define TOVARIN_REGISTRY_THROW(signature, message)                                                           \
    TOVARIN_THROW_AT(TOVARIN_FIXED_SITE(signature, kGlueHeader, __LINE__), "[f]", false, message)

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

// The entry of `handle`, with the registry lock held; an empty registry is reported as such even
// when the handle is simply wrong.
Registry::iterator Find(const char* signature, void* const handle) {
    Registry& files = Files();
    if (files.empty())
        TOVARIN_REGISTRY_THROW(signature, kNotInitialised);
    const Registry::iterator entry = files.find(Key(handle));
    if (entry == files.end())
        TOVARIN_REGISTRY_THROW(signature, kUnknownHandle);
    return entry;
}

} // namespace

FilePtr PtrCFile(void* const handle) {
    Guard guard(RegistryLock());
    const Registry::iterator entry = Find(kPtrCFile, handle);
    if (!entry->second) {
        Files().erase(entry);
        const wchar_t* const stale = L"Несуществующий или устаревший или закрытый системный дескриптор "
                                     L"файла из-за ошибки функции WinAPI.";
        TOVARIN_REGISTRY_THROW(kPtrCFile, stale);
    }
    return entry->second;
}

void PtrCFileDelete(void* const handle) {
    FilePtr removed;
    {
        Guard guard(RegistryLock());
        const Registry::iterator entry = Find(kPtrCFileDelete, handle);
        removed = entry->second;
        Files().erase(entry);
    }
    // `removed` lets the object go here, outside the registry lock.
}

void Register(const FilePtr& file) {
    Guard guard(RegistryLock());
    Files().insert(Registry::value_type(Key(file->Handle()), file));
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

} // namespace Project

// When the host unloads the library (FreeLibrary) the files it left open close with it: their
// objects live in the registry, which outlives every static object deliberately. At the end of the
// process (reserved not null) nothing is done: the system closes the files, and the other threads
// have already been stopped wherever they were, perhaps holding a lock the release would need.
extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID reserved) {
    if (reason == DLL_PROCESS_DETACH && reserved == nullptr)
        Project::ReleaseAll();
    return TRUE;
}
