#include "Utils.Checking.h"

#include <iostream>
#include <mutex>
#include <sstream>

namespace Utils {
namespace Checking {
namespace detail {

namespace {

const char kDirect64[] =
    "unsigned __int64 __cdecl Utils::Checking::CountDirect<unsigned __int64,unsigned __int64,"
    "unsigned __int64>(const " TOVARIN_WSTRING
    " &,const unsigned __int64,const unsigned __int64,const unsigned __int64)";
const char kDirect32[] =
    "unsigned long __cdecl Utils::Checking::CountDirect<unsigned __int64,unsigned long,"
    "unsigned long>(const " TOVARIN_WSTRING " &,const unsigned __int64,const unsigned long,const "
    "unsigned long)";
const char kDirectOther[] =
    "Count __cdecl Utils::Checking::CountDirect<Total,Start,Count>(const " TOVARIN_WSTRING
    " &,const Total,const Start,const Count)";
const char kReverse64[] =
    "unsigned __int64 __cdecl Utils::Checking::CountReverse<unsigned __int64,unsigned __int64,"
    "unsigned __int64>(const " TOVARIN_WSTRING
    " &,const unsigned __int64,unsigned __int64 &,const unsigned __int64)";

const char* Signature(Instance instance) {
    switch (instance) {
    case Instance::Direct64:
        return kDirect64;
    case Instance::Direct32:
        return kDirect32;
    case Instance::Reverse64:
        return kReverse64;
    case Instance::Other:
        break;
    }
    return kDirectOther;
}

// The range message, one line per fact, with the caller's numbers as given.
std::wstring RangeMessage(const std::wstring& method, bool zeroTotal, bool startBeyond,
                          unsigned __int64 total, unsigned __int64 start, unsigned __int64 count) {
    std::wostringstream out;
    out << L"В методе" << std::endl << method << std::endl;
    if (zeroTotal)
        out << L"Количество всех элементов равно нулю." << std::endl;
    if (startBeyond)
        out << L"Номер стартового элемента больше или равен количеству всех элементов." << std::endl;
    out << std::endl
        << L"Количество всех элементов: " << total << std::endl
        << L"Стартовый элемент: " << start << std::endl
        << L"Количество элементов: " << count;
    return out.str();
}

// The diagnostic copy goes to the runtime's wide log stream. Nothing reads it back; a failed
// conversion of the Russian text (no locale set) must not leave the stream failed for the next one.
void Log(const std::wstring& message) {
    static std::mutex lock;
    const std::lock_guard<std::mutex> guard(lock);
    std::wclog << message << std::endl;
    std::wclog.clear();
}

[[noreturn]] void RefuseRange(Instance instance, const std::wstring& message) {
    Log(message);
    TOVARIN_THROW_AT(TOVARIN_SITE(Signature(instance)), "[f][d]", false, message);
}

} // namespace

void DirectRefused(Instance instance, const std::wstring& method, unsigned __int64 total,
                   unsigned __int64 start, unsigned __int64 count) {
    // Asking for nothing is an error, not an empty result.
    if (count == 0) {
        const std::wstring message = L"В методе\n" + method + L"\r\nОтсутствует количество элементов.";
        TOVARIN_THROW_AT(TOVARIN_SITE(Signature(instance)), "[f][d]", false, message);
    }
    // With a zero total any start is beyond the end: both lines stand.
    RefuseRange(instance, RangeMessage(method, total == 0, true, total, start, count));
}

void DirectRefused(Instance instance, const Error::Site& method, unsigned __int64 total,
                   unsigned __int64 start, unsigned __int64 count) {
    DirectRefused(instance, Error::WhereW(method), total, start, count);
}

void ReverseRefused(const std::wstring& method, unsigned __int64 start) {
    // The backward walk takes no count, so the message shows the whole-array value.
    RefuseRange(Instance::Reverse64,
                RangeMessage(method, true, false, 0, start, static_cast<unsigned __int64>(-1)));
}

void ReverseRefused(const Error::Site& method, unsigned __int64 start) {
    ReverseRefused(Error::WhereW(method), start);
}

} // namespace detail
} // namespace Checking
} // namespace Utils
