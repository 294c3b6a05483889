#pragma once
// Records the message boxes that the calling thread shows, and closes each one as it opens.
#include <windows.h>

#include <string>
#include <vector>

namespace TestSupport {

struct Box {
    std::wstring caption, text;
    UINT icon; // MB_ICONERROR, MB_ICONINFORMATION, or 0 for any other
};

// Hooks the calling thread's window messages: a dialog that has taken its text is recorded and
// closed at once. With `refuse`, boxes are not made at all, only counted (for loops of many failures).
class BoxRecorder {
public:
    explicit BoxRecorder(bool refuse = false);
    ~BoxRecorder();
    BoxRecorder(const BoxRecorder&) = delete;
    BoxRecorder& operator=(const BoxRecorder&) = delete;
    const std::vector<Box>& Boxes() const { return boxes_; }
    size_t Refused() const { return refused_; }
    void Clear() { boxes_.clear(); }

private:
    static LRESULT CALLBACK Shown(int code, WPARAM wParam, LPARAM lParam);
    static LRESULT CALLBACK Created(int code, WPARAM wParam, LPARAM lParam);
    HHOOK hook_;
    BoxRecorder* outer_;
    std::vector<Box> boxes_;
    size_t refused_ = 0;
};

} // namespace TestSupport
