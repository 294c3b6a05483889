// The export frame: each catch clause shows one box with its style and caption, and the neutral
// result comes back. Also the show functions' lookup of the timed box.
#include "exports/Frame.h"
#include "utils/Utils.CodingStr.h"

#include "support/BoxRecorder.h"
#include "support/TempDir.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <new>

using TestSupport::Box;
using TestSupport::BoxIcon;
using TestSupport::BoxRecorder;

namespace {

const char kSignature[] = "int __cdecl FileWriteInt(void *const ,const int)";

std::wstring Header(int line) {
    return L"Ошибка в функции \"int __cdecl FileWriteInt(void *const ,const int)\"!\r\nFile: "
           L"\"FrameTest.cpp\"\r\nLine: " +
           std::to_wstring(line) + L"\r\n";
}

TEST(Frame, SuccessReturnsTheWorkResultWithoutABox) {
    BoxRecorder boxes;
    EXPECT_EQ(Project::Call(Project::Row<int>{kSignature, -1}, TOVARIN_SITE(kSignature), [] { return 42; }), 42);
    EXPECT_TRUE(boxes.Boxes().empty());
}

TEST(Frame, WideFailureShowsErrorBoxAndReturnsNeutral) {
    BoxRecorder boxes;
    const Utils::Error::Site site = TOVARIN_SITE(kSignature);
    const int line = site.line;
    const int result = Project::Call(Project::Row<int>{kSignature, -1}, site, []() -> int { throw std::wstring(L"Внутренний текст."); });
    EXPECT_EQ(result, -1);
    const std::vector<Box> shown = boxes.Boxes();
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_EQ(shown[0].text, Header(line) + L"\nВнутренний текст.\n");
    EXPECT_EQ(shown[0].caption, Project::ModuleName());
    EXPECT_EQ(shown[0].icon, BoxIcon::Error);
}

TEST(Frame, NarrowFailureShowsErrorBoxThroughTheNarrowComposer) {
    BoxRecorder boxes;
    const Utils::Error::Site site = TOVARIN_SITE(kSignature);
    const int line = site.line;
    const double result = Project::Call(Project::Row<double>{kSignature, 0.0}, site, []() -> double { throw std::string("narrow text"); });
    EXPECT_EQ(result, 0.0);
    const std::vector<Box> shown = boxes.Boxes();
    ASSERT_EQ(shown.size(), 1u);
    // The box shows 8-bit text; only its ASCII part is compared here.
    EXPECT_NE(
        shown[0].text.find(
            L"\"int __cdecl FileWriteInt(void *const ,const int)\"!\r\nFile: \"FrameTest.cpp\"\r\nLine: " +
            std::to_wstring(line) + L"\r\n\nnarrow text\n"),
        std::wstring::npos)
        << TestSupport::Narrow(shown[0].text);
    EXPECT_EQ(shown[0].caption,
              Utils::CodingStr::AnsiToUnicode(Utils::CodingStr::UnicodeToAnsi(Project::ModuleName(), 0), 0));
    EXPECT_EQ(shown[0].icon, BoxIcon::Error);
}

TEST(Frame, AnyOtherFailureShowsNoticeBoxWithUnknownException) {
    BoxRecorder boxes;
    const Utils::Error::Site site = TOVARIN_SITE(kSignature);
    const int line = site.line;
    void* result =
        Project::Call(Project::Row<void*>{kSignature, nullptr}, site, []() -> void* { throw std::bad_alloc(); });
    EXPECT_EQ(result, nullptr);
    const std::vector<Box> shown = boxes.Boxes();
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_EQ(shown[0].text.find(Header(line) + L"\nLast Error: "), 0u) << TestSupport::Narrow(shown[0].text);
    EXPECT_EQ(shown[0].text.substr(shown[0].text.size() - 19), L"Unknown exception!\n");
    EXPECT_EQ(shown[0].icon, BoxIcon::Information);
}

TEST(Frame, VoidExportsHaveNoResultButStillShowTheBox) {
    BoxRecorder boxes;
    bool ran = false;
    Project::Call(Project::Row<void>{"void __cdecl FileClear(void *const )"},
                  TOVARIN_SITE("void __cdecl FileClear(void *const )"), [&] {
        ran = true;
        throw 7;
    });
    EXPECT_TRUE(ran);
    ASSERT_EQ(boxes.Boxes().size(), 1u);
    EXPECT_EQ(boxes.Boxes()[0].text.find(L"Ошибка в функции \"void __cdecl FileClear(void *const )\"!\r\n"),
              0u);
}

TEST(ShowMessage, MissingTimedBoxExportReturnsSilently) {
    BoxRecorder boxes;
    EXPECT_NO_THROW(Utils::Error::detail::ShowMessageVia(L"User32.dll", "NoSuchExport", L"t", L"c", 0, 0));
    EXPECT_NO_THROW(Utils::Error::detail::ShowMessageViaA(L"User32.dll", "NoSuchExport", "t", "c"));
    EXPECT_TRUE(boxes.Boxes().empty());
}

TEST(ShowMessage, ModuleNotLoadedThrowsThreeLines) {
    try {
        Utils::Error::detail::ShowMessageVia(L"NotLoadedAnywhere.dll", "MessageBoxTimeoutW", L"t", L"c", 0,
                                             0);
        FAIL() << "no throw";
    } catch (const std::wstring& text) {
        EXPECT_EQ(text, L"Ошибка в функции \"MessageBoxTimeoutW()\".\nНе получен системный дескриптор модуля "
                        L"\"User32.dll\".\nПоследняя ошибка: " +
                            std::to_wstring(ERROR_MOD_NOT_FOUND) + L"\n");
    }
    EXPECT_EQ(::GetModuleHandleW(L"NotLoadedAnywhere.dll"), nullptr);
    try {
        Utils::Error::detail::ShowMessageViaA(L"NotLoadedAnywhere.dll", "MessageBoxTimeoutA", "t", "c");
        FAIL() << "no throw";
    } catch (const std::wstring& text) {
        EXPECT_EQ(text.find(L"Ошибка в функции \"MessageBoxTimeoutA()\".\n"), 0u);
    }
}

TEST(ShowMessage, NoticeAndErrorPassTheirFirstArgumentAsCaption) {
    BoxRecorder boxes;
    ShowNoticeW(L"Caption N", L"Text N");
    ShowErrorW(L"Caption E", L"Text E");
    ShowErrorA("Caption A", "Text A");
    const std::vector<Box> shown = boxes.Boxes();
    ASSERT_EQ(shown.size(), 3u);
    EXPECT_EQ(shown[0].caption, L"Caption N");
    EXPECT_EQ(shown[0].text, L"Text N");
    EXPECT_EQ(shown[0].icon, BoxIcon::Information);
    EXPECT_EQ(shown[1].caption, L"Caption E");
    EXPECT_EQ(shown[1].icon, BoxIcon::Error);
    EXPECT_EQ(shown[2].caption, L"Caption A");
    EXPECT_EQ(shown[2].text, L"Text A");
    EXPECT_EQ(shown[2].icon, BoxIcon::Error);
}

} // namespace
