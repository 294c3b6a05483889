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

using namespace TestSupport;

namespace {

struct Plain : Utils::Smart::Base {};

// An event holding a handle of the test's making.
struct PlantedEvent : Utils::Sync::Event {
    explicit PlantedEvent(HANDLE handle) { handle_ = handle; }
    ~PlantedEvent() override { handle_ = nullptr; }
};

struct Site {
    const wchar_t* file;
    int line; // 0: not pinned, the file only
    std::function<void()> call;
};

std::wstring g_text; // empty: the string algorithms take their text by reference
Plain g_left, g_right;
Utils::_STRINGBUF<wchar_t> g_ab;
unsigned __int64 g_number = 1;

TEST(PinnedSites, TextsShowTheirFileAndLine) {
    g_ab.Init(L"ab", 0, 0);
    Utils::Sync::Mutex mutex; // nobody owns it
    mutex.Create(L"Tovarin-pinned-" + std::to_wstring(::GetCurrentProcessId()));
    const Site sites[] = {
        {L"Utils.Smart.cpp", 350, [] { Plain().Release(); }},
        {L"Utils.Smart.cpp", 249, [] { Utils::Smart::WeakFactory::Instance().DropId(-77); }},
        {L"Utils.Smart.cpp", 376, [] { g_left.Equals(&g_right); }},
        {L"Utils.Smart.cpp", 401, [] { g_left.Less(&g_right); }},
        {L"Utils.Type.h", 342, [] { Utils::Type::IsWide<int>(L"caller"); }},
        {L"Utils.StringBuffer.h", 73, [] { Utils::_STRINGBUF<wchar_t>().Init(L"", 0, 0); }},
        {L"Utils.StringBuffer.h", 97, [] { Utils::_STRINGBUF<wchar_t>().Init(std::wstring(), 0, ~0ull); }},
        {L"Utils.StringBuffer.h", 286, [] { g_ab.Copy(5, 1); }},
        {L"Utils.StringBuffer.h", 142, [] { Utils::_STRINGBUF<char>().Pointer<char>(0); }},
        {L"Utils.Strings.cpp", 3793, [] { Utils::String::ReplaceW(g_text, 0, 1, L'a', L'b'); }},
        {L"Utils.Strings.cpp", 3981, [] { Utils::String::UpperW(g_text, 0, 4294967295ul); }},
        {L"Utils.Strings.cpp", 2976,
         [] { Utils::String::PosByReverseNumberSubStringsW(L"a", L"", g_number, ~0ull, 0); }},
        {L"Utils.Strings.cpp", 0, [] { Utils::String::Path::TrimNameFileCW(L"", 0); }},
        {L"Utils.Synchronize.cpp", 509, [] { Utils::Sync::Mutex().Create(L"NoSuchNamespace\\x"); }},
        {L"Utils.Synchronize.cpp", 560, [&] { mutex.Release(); }},
        {L"Utils.Synchronize.cpp", 341,
         [] { PlantedEvent(reinterpret_cast<HANDLE>(intptr_t(0x7FFF0))).Close(); }},
        {L"Utils.Synchronize.cpp", 356, [] { Utils::Sync::Event().Create(L"NoSuchNamespace\\x"); }},
        {L"Utils.Error.cpp", 522, [] { ::SetLastError(0x71), Utils::Error::DescriptionW<int>(0); }},
    };
    BoxRecorder boxes;
    for (const Site& site : sites) {
        SCOPED_TRACE(site.line);
        std::wstring text = Thrown(site.call);
        if (!boxes.Boxes().empty()) { // the describer's notice for a shell code: a box, not a throw
            EXPECT_EQ(boxes.Boxes()[0].icon, MB_ICONINFORMATION);
            text = boxes.Boxes()[0].text;
            boxes.Clear();
        }
        const std::wstring where = std::wstring(L"File: \"") + site.file + L"\"\r\nLine: ";
        EXPECT_NE(text.find(site.line == 0 ? where : where + std::to_wstring(site.line) + L"\r\n"),
                  std::wstring::npos)
            << Narrow(text);
    }
}

} // namespace
