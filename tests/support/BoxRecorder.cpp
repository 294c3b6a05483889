#include "BoxRecorder.h"

#include <chrono>

namespace TestSupport {

namespace {

std::wstring WindowText(HWND window) {
    wchar_t buffer[8192] = {};
    DWORD_PTR copied = 0;
    if (!::SendMessageTimeoutW(window, WM_GETTEXT, sizeof(buffer) / sizeof(buffer[0]),
                               reinterpret_cast<LPARAM>(buffer), SMTO_ABORTIFHUNG, 2000, &copied))
        return std::wstring();
    return std::wstring(buffer, copied);
}

BoxIcon IconOf(HWND box) {
    // The box's icon is a shared system icon, so its handle tells which one it is.
    HWND control = ::GetDlgItem(box, 0x0440);
    if (control == nullptr)
        control = ::GetDlgItem(box, 0x0014);
    if (control == nullptr)
        return BoxIcon::None;
    DWORD_PTR icon = 0;
    if (!::SendMessageTimeoutW(control, STM_GETICON, 0, 0, SMTO_ABORTIFHUNG, 2000, &icon) || icon == 0)
        return BoxIcon::None;
    if (reinterpret_cast<HICON>(icon) == ::LoadIconW(nullptr, MAKEINTRESOURCEW(32513)))
        return BoxIcon::Error;
    if (reinterpret_cast<HICON>(icon) == ::LoadIconW(nullptr, MAKEINTRESOURCEW(32516)))
        return BoxIcon::Information;
    return BoxIcon::Other;
}

struct Search {
    DWORD process;
    std::vector<HWND> found;
};

BOOL CALLBACK Collect(HWND window, LPARAM param) {
    Search* search = reinterpret_cast<Search*>(param);
    DWORD process = 0;
    ::GetWindowThreadProcessId(window, &process);
    if (process != search->process)
        return TRUE;
    wchar_t cls[64] = {};
    ::GetClassNameW(window, cls, 64);
    // A box is shown once its caption and text are set: until then it is not visible.
    if (std::wstring(cls) == L"#32770" && ::IsWindowVisible(window))
        search->found.push_back(window);
    return TRUE;
}

} // namespace

BoxRecorder::BoxRecorder() {
    // Dialog windows that exist already are not this recorder's to record or close.
    Search search{::GetCurrentProcessId(), {}};
    ::EnumWindows(Collect, reinterpret_cast<LPARAM>(&search));
    seen_ = search.found;
    thread_ = std::thread([this] { Watch(); });
}

BoxRecorder::~BoxRecorder() {
    stop_ = true;
    thread_.join();
}

void BoxRecorder::Watch() {
    while (!stop_) {
        Search search{::GetCurrentProcessId(), {}};
        ::EnumWindows(Collect, reinterpret_cast<LPARAM>(&search));
        for (HWND window : search.found) {
            {
                std::lock_guard<std::mutex> lock(mutex_);
                bool known = false;
                for (HWND w : seen_)
                    known = known || w == window;
                if (known)
                    continue;
            }
            Box box;
            box.caption = WindowText(window);
            if (HWND text = ::GetDlgItem(window, 0xFFFF))
                box.text = WindowText(text);
            // Every box of the library has a caption and a text; a dialog without them is still
            // being made (it is looked at again on the next round) or is none of the library's.
            if (box.caption.empty() || box.text.empty())
                continue;
            box.icon = IconOf(window);
            {
                std::lock_guard<std::mutex> lock(mutex_);
                seen_.push_back(window);
                boxes_.push_back(box);
            }
            ::PostMessageW(window, WM_COMMAND, IDOK, 0);
        }
        // A closed box's handle may be reused by a later box: forget handles that are gone.
        {
            std::lock_guard<std::mutex> lock(mutex_);
            std::vector<HWND> alive;
            for (HWND w : seen_)
                if (::IsWindow(w))
                    alive.push_back(w);
            seen_.swap(alive);
        }
        ::Sleep(5);
    }
}

std::vector<Box> BoxRecorder::WaitFor(size_t count, DWORD timeoutMs) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    for (;;) {
        {
            std::lock_guard<std::mutex> lock(mutex_);
            if (boxes_.size() >= count || std::chrono::steady_clock::now() >= deadline)
                return boxes_;
        }
        ::Sleep(5);
    }
}

std::vector<Box> BoxRecorder::Boxes() {
    std::lock_guard<std::mutex> lock(mutex_);
    return boxes_;
}

void BoxRecorder::Clear() {
    std::lock_guard<std::mutex> lock(mutex_);
    boxes_.clear();
}

namespace {
thread_local BoxSuppressor* t_suppressor = nullptr;

bool IsDialogClass(LPCWSTR name) {
    if ((reinterpret_cast<ULONG_PTR>(name) >> 16) == 0)
        return name == MAKEINTRESOURCEW(32770);
    return std::wstring(name) == L"#32770";
}
} // namespace

BoxSuppressor::BoxSuppressor() : hook_(::SetWindowsHookExW(WH_CBT, Hook, nullptr, ::GetCurrentThreadId())) {
    t_suppressor = this;
}

BoxSuppressor::~BoxSuppressor() {
    ::UnhookWindowsHookEx(hook_);
    t_suppressor = nullptr;
}

LRESULT CALLBACK BoxSuppressor::Hook(int code, WPARAM wParam, LPARAM lParam) {
    if (code == HCBT_CREATEWND && t_suppressor != nullptr) {
        const CBT_CREATEWNDW* create = reinterpret_cast<const CBT_CREATEWNDW*>(lParam);
        if (IsDialogClass(create->lpcs->lpszClass)) {
            ++t_suppressor->count_;
            return 1; // the window is not made
        }
    }
    return ::CallNextHookEx(nullptr, code, wParam, lParam);
}

} // namespace TestSupport
