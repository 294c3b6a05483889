// The string reads and the process-wide holder of their results: one buffer per width, reused in
// place, whose text stays until the next read of the same width.
#include "Project.h"

#include "../utils/Utils.StringBuffer.h"

#include <cstring>
#include <string>

namespace Project {

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

bool IsTrimmed(const unsigned c) {
    return c == 0 || c == ' ' || c == '\n' || c == '\r' || c == '\t';
}

// Short texts are read into a stack buffer: no heap work then.
template <class Char>
Char* ReadText(Utils::_STRINGBUF<Char>& result, void* const handle, const unsigned __int64 size) {
    const FilePtr file = PtrCFile(handle);
    const unsigned __int64 kStackChars = 256;
    Char stackBuffer[kStackChars];
    std::basic_string<Char> heapBuffer;
    Char* buffer = stackBuffer;
    if (size > kStackChars) {
        heapBuffer.assign(static_cast<size_t>(size), Char());
        buffer = &heapBuffer[0];
    } else {
        std::memset(stackBuffer, 0, sizeof(stackBuffer));
    }
    if (size != 0) {
        Guard guard(file->Lock());
        file->ReadHeld(file->Handle(), buffer, size * sizeof(Char));
    }
    unsigned __int64 length = size;
    while (length > 0 && IsTrimmed(static_cast<unsigned>(buffer[length - 1])))
        --length;
    return Load(result, buffer, length);
}

} // namespace

char* ReadStringA(void* const handle, const unsigned __int64 size) {
    return ReadText(Results().narrow, handle, size);
}

wchar_t* ReadStringW(void* const handle, const unsigned __int64 size) {
    return ReadText(Results().wide, handle, size);
}

} // namespace Project
