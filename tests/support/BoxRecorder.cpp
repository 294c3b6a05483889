#include "BoxRecorder.h"

namespace TestSupport {

namespace {

thread_local BoxRecorder* t_recorder = nullptr;

std::wstring TextOf(HWND window) {
    std::wstring text(static_cast<size_t>(::GetWindowTextLengthW(window)) + 1, L'\0');
    text.resize(static_cast<size_t>(::GetWindowTextW(window, &text[0], static_cast<int>(text.size()))));
    return text;
}

// The system icon that the box shows: error and notice boxes differ by it.
UINT IconOf(HWND box) {
    for (HWND c = ::GetWindow(box, GW_CHILD); c != nullptr; c = ::GetWindow(c, GW_HWNDNEXT))
        if (const LRESULT icon = ::SendMessageW(c, STM_GETICON, 0, 0))
            return icon == reinterpret_cast<LRESULT>(::LoadIcon(nullptr, IDI_ERROR)) ? MB_ICONERROR
                   : icon == reinterpret_cast<LRESULT>(::LoadIcon(nullptr, IDI_INFORMATION))
                       ? MB_ICONINFORMATION
                       : 0;
    return 0;
}

} // namespace

BoxRecorder::BoxRecorder(bool refuse)
    : hook_(::SetWindowsHookExW(refuse ? WH_CBT : WH_CALLWNDPROCRET, refuse ? Created : Shown, nullptr,
                                ::GetCurrentThreadId())),
      outer_(t_recorder) {
    t_recorder = this;
}

BoxRecorder::~BoxRecorder() {
    ::UnhookWindowsHookEx(hook_);
    t_recorder = outer_;
}

LRESULT CALLBACK BoxRecorder::Shown(int code, WPARAM wParam, LPARAM lParam) {
    const CWPRETSTRUCT* message = reinterpret_cast<const CWPRETSTRUCT*>(lParam);
    if (code == HC_ACTION && message->message == WM_INITDIALOG && t_recorder != nullptr) {
        t_recorder->boxes_.push_back(
            Box{TextOf(message->hwnd), TextOf(::GetDlgItem(message->hwnd, 0xFFFF)), IconOf(message->hwnd)});
        ::PostMessageW(message->hwnd, WM_COMMAND, IDOK, 0);
    }
    return ::CallNextHookEx(nullptr, code, wParam, lParam);
}

LRESULT CALLBACK BoxRecorder::Created(int code, WPARAM wParam, LPARAM lParam) {
    if (code == HCBT_CREATEWND && t_recorder != nullptr) {
        const LPCWSTR name = reinterpret_cast<const CBT_CREATEWNDW*>(lParam)->lpcs->lpszClass;
        if (IS_INTRESOURCE(name) ? name == MAKEINTRESOURCEW(32770) : std::wstring(name) == L"#32770") {
            ++t_recorder->refused_;
            return 1; // the window is not made
        }
    }
    return ::CallNextHookEx(nullptr, code, wParam, lParam);
}

} // namespace TestSupport
