#pragma once
// Records the message boxes this process shows, and closes each one.
//
// A watcher thread looks for dialog windows (class "#32770") of this process, reads their caption
// and text, notes which icon the style chose, and presses OK. Every wait is bounded.
#include <windows.h>

#include <mutex>
#include <string>
#include <thread>
#include <vector>
#include <atomic>

namespace TestSupport {

enum class BoxIcon { None, Error, Information, Other };

struct Box {
    std::wstring caption;
    std::wstring text;
    BoxIcon icon = BoxIcon::None;
};

class BoxRecorder {
public:
    BoxRecorder();
    ~BoxRecorder();
    BoxRecorder(const BoxRecorder&) = delete;
    BoxRecorder& operator=(const BoxRecorder&) = delete;

    // Waits until `count` boxes have been recorded or `timeoutMs` passed; returns all recorded so far.
    std::vector<Box> WaitFor(size_t count, DWORD timeoutMs = 10000);
    // The boxes recorded so far, without waiting.
    std::vector<Box> Boxes();
    // Forgets the boxes recorded so far.
    void Clear();

private:
    void Watch();
    std::mutex mutex_;
    std::vector<Box> boxes_;
    std::vector<HWND> seen_;
    std::atomic<bool> stop_{false};
    std::thread thread_;
};

// Refuses every dialog box that the calling thread tries to create, and counts them: the box
// function then returns at once. For loops of many failing calls, where showing and closing each
// real box would cost tens of milliseconds. Only boxes of the thread that made it are refused.
class BoxSuppressor {
public:
    BoxSuppressor();
    ~BoxSuppressor();
    BoxSuppressor(const BoxSuppressor&) = delete;
    BoxSuppressor& operator=(const BoxSuppressor&) = delete;

    size_t Count() const { return count_; }

private:
    static LRESULT CALLBACK Hook(int code, WPARAM wParam, LPARAM lParam);
    HHOOK hook_;
    size_t count_ = 0;
};

} // namespace TestSupport
