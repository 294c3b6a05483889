// The source file and line that the failure texts of the pinned sites show, each reached through
// the internal function (the export-reachable ones are tested through the DLL).
#include "support/BoxRecorder.h"
#include "support/TempDir.h"

#include "utils/Utils.Error.h"
#include "utils/Utils.Smart.h"
#include "utils/Utils.StringBuffer.h"
#include "utils/Utils.Strings.h"
#include "utils/Utils.Synchronize.h"
#include "utils/Utils.Type.h"

#include <gtest/gtest.h>

#include <functional>

namespace {

struct Plain : Utils::Smart::Base {};

// An event holding a handle of the test's making.
struct PlantedEvent : Utils::Sync::Event {
    explicit PlantedEvent(HANDLE handle) { handle_ = handle; }
    ~PlantedEvent() override { handle_ = nullptr; }
};

std::wstring Thrown(const std::function<void()>& call) {
    try {
        call();
    } catch (const std::wstring& text) {
        return text;
    }
    return L"(nothing thrown)";
}

struct Site {
    const char* what;
    const wchar_t* file;
    int line;
    std::function<void()> call;
};

TEST(PinnedSites, TextsShowTheirFileAndLine) {
    const std::wstring mutexName = L"Tovarin-pinned-" + std::to_wstring(::GetCurrentProcessId());
    const Site sites[] = {
        {"Base::Release below 0", L"Utils.Smart.cpp", 350, [] { Plain().Release(); }},
        {"WeakFactory::DropId unknown", L"Utils.Smart.cpp", 249,
         [] { Utils::Smart::WeakFactory::Instance().DropId(-77); }},
        {"Base::Equals", L"Utils.Smart.cpp", 376,
         [] {
             Plain a, b;
             a.Equals(&b);
         }},
        {"Base::Less", L"Utils.Smart.cpp", 401,
         [] {
             Plain a, b;
             a.Less(&b);
         }},
        {"IsWide<int>", L"Utils.Type.h", 342, [] { Utils::Type::IsWide<int>(L"caller"); }},
        {"Init from an empty pointer text", L"Utils.StringBuffer.h", 73,
         [] { Utils::_STRINGBUF<wchar_t>().Init(L"", 0, 0); }},
        {"Init from an empty string", L"Utils.StringBuffer.h", 97,
         [] { Utils::_STRINGBUF<char>().Init(std::string(), 0, 0); }},
        {"Copy with a bad range", L"Utils.StringBuffer.h", 286,
         [] {
             Utils::_STRINGBUF<wchar_t> buffer;
             buffer.Init(L"ab", 0, 0);
             buffer.Copy(5, 1);
         }},
        {"Pointer on an empty buffer", L"Utils.StringBuffer.h", 142,
         [] { Utils::_STRINGBUF<wchar_t>().Pointer<wchar_t>(0); }},
        {"ReplaceW on an empty text", L"Utils.Strings.cpp", 3793,
         [] {
             std::wstring text;
             Utils::String::ReplaceW(text, 0, 1, L'a', L'b');
         }},
        {"UpperW on an empty text", L"Utils.Strings.cpp", 3981,
         [] {
             std::wstring text;
             Utils::String::UpperW(text, 0, 4294967295ul);
         }},
        {"PosByReverseNumberSubStringsW with an empty sub", L"Utils.Strings.cpp", 2976,
         [] {
             unsigned __int64 number = 1;
             Utils::String::PosByReverseNumberSubStringsW(L"a\\b", L"", number, ~0ull, 0);
         }},
        {"TrimNameFileCW of an empty path", L"Utils.Strings.cpp", 0,
         [] { Utils::String::Path::TrimNameFileCW(L"", 0); }},
        {"Mutex::Create in a missing namespace", L"Utils.Synchronize.cpp", 509,
         [] { Utils::Sync::Mutex().Create(L"NoSuchNamespace\\x"); }},
        {"Mutex::Release unowned", L"Utils.Synchronize.cpp", 560,
         [&] {
             Utils::Sync::Mutex mutex;
             mutex.Create(mutexName);
             mutex.Release();
         }},
        {"Event::Close of an invalid handle", L"Utils.Synchronize.cpp", 341,
         [] { PlantedEvent(reinterpret_cast<HANDLE>(static_cast<intptr_t>(0x7FFF0))).Close(); }},
        {"Event::Create in a missing namespace", L"Utils.Synchronize.cpp", 356,
         [] { Utils::Sync::Event().Create(L"NoSuchNamespace\\x"); }},
    };
    for (const Site& site : sites) {
        SCOPED_TRACE(site.what);
        const std::wstring text = Thrown(site.call);
        const std::wstring where = std::wstring(L"File: \"") + site.file + L"\"\r\nLine: ";
        EXPECT_NE(text.find(site.line == 0 ? where : where + std::to_wstring(site.line) + L"\r\n"),
                  std::wstring::npos)
            << TestSupport::Narrow(text);
    }
}

// The describer's notice for a shell code is a box, not a throw.
TEST(PinnedSites, DescriberNoticeShowsItsFileAndLine) {
    TestSupport::BoxRecorder boxes;
    ::SetLastError(0x71);
    Utils::Error::DescriptionW<int>(0);
    const std::vector<TestSupport::Box> shown = boxes.Boxes();
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_NE(shown[0].text.find(L"File: \"Utils.Error.cpp\"\r\nLine: 522\r\n"), std::wstring::npos);
}

} // namespace
