#include "Utils.Error.h"

#include "Utils.CodingStr.h"

#include <windows.h>

#include <sstream>

namespace Utils {
namespace Error {

static_assert(kNoticeStyle == (MB_OK | MB_ICONINFORMATION | MB_TASKMODAL | MB_SETFOREGROUND | MB_TOPMOST),
              "the notice box: information icon, task-modal, in front");
static_assert(kErrorStyle == (MB_OK | MB_ICONERROR | MB_SETFOREGROUND | MB_TOPMOST),
              "the error box: in front");

namespace detail {
unsigned long LastError() noexcept {
    return ::GetLastError();
}
} // namespace detail

const char* BaseName(const char* path) noexcept {
    const char* base = path;
    for (const char* p = path; *p; ++p)
        if (*p == '/' || *p == '\\')
            base = p + 1;
    return base;
}

std::string WhereA(const Site& site, const char* markers) {
    std::ostringstream line;
    line << site.line;
    return std::string(site.signature) + markers + "\r\nFile: \"" + BaseName(site.file) +
           "\"\r\nLine: " + line.str() + "\r\n";
}

std::wstring WhereW(const Site& site, const char* markers) {
    return CodingStr::AnsiToUnicode(WhereA(site, markers), 0);
}

void ThrowAt(const Site& site, const char* markers, const std::wstring& message, bool withLastError,
             unsigned long lastError) {
    std::wstring where = WhereW(site, markers);
    ::SetLastError(lastError);
    throw ComposeFailureTextW(std::move(where), message, withLastError);
}

std::wstring SystemDescriptionW(unsigned long code) {
    wchar_t buffer[2048] = {};
    ::FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM, nullptr, code, 0, buffer, 2048, nullptr);
    std::wostringstream out;
    out << std::endl << L"Last Error: " << code << L"." << std::endl << buffer << std::endl;
    return out.str();
}

std::string SystemDescriptionA(unsigned long code) {
    char buffer[2048] = {};
    ::FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM, nullptr, code, 0, buffer, 2048, nullptr);
    std::ostringstream out;
    out << std::endl << "Last Error: " << code << "." << std::endl << buffer << std::endl;
    return out.str();
}

template <> std::wstring DescriptionW<bool>(bool withLastError) {
    if (!withLastError)
        return std::wstring();
    // The code becomes bool: 1 after any failure, 0 without one. Kept deliberately.
    const bool code = ::GetLastError() != 0;
    return SystemDescriptionW(code ? 1u : 0u);
}

template <> std::string DescriptionA<bool>(bool withLastError) {
    if (!withLastError)
        return std::string();
    const bool code = ::GetLastError() != 0;
    return SystemDescriptionA(code ? 1u : 0u);
}

} // namespace Error
} // namespace Utils

namespace {

// ASCII text in either character width (markers, line breaks).
template <class Char> std::basic_string<Char> Ascii(const char* text) {
    std::basic_string<Char> out;
    for (; *text; ++text)
        out += static_cast<Char>(*text);
    return out;
}

// Russian words of the headings: as they stand for wide text, in code page 1251 for 8-bit text
// (the code page the 8-bit texts of the library are written in).
std::wstring Words(const wchar_t* text, wchar_t) {
    return text;
}
std::string Words(const wchar_t* text, char) {
    const int n = ::WideCharToMultiByte(1251, 0, text, -1, nullptr, 0, nullptr, nullptr);
    std::string out(n > 0 ? static_cast<size_t>(n) - 1 : 0, '\0');
    if (n > 1)
        ::WideCharToMultiByte(1251, 0, text, -1, &out[0], n, nullptr, nullptr);
    return out;
}

template <class Char>
std::basic_string<Char> Compose(std::basic_string<Char> where, const std::basic_string<Char>& text,
                                const std::basic_string<Char>& block) {
    using String = std::basic_string<Char>;
    auto has = [&where](const char* marker) { return where.find(Ascii<Char>(marker)) != String::npos; };
    const bool parenthesised = where.find(Char('(')) != String::npos && where.find(Char(')')) != String::npos;
    const bool detected = has("[d]") || has("[D]");
    const bool function = has("()") || has("[f]") || has("[F]");
    const bool isOperator = has("(o)") || has("(O)") || has("[o]") || has("[O]");
    const bool warning = has("[w]") || has("[W]");

    // The bracket block: from the first "[" after the last "[]" to the last "]".
    const size_t pair = where.rfind(Ascii<Char>("[]"));
    const size_t from = pair == String::npos ? 0 : pair + 2;
    const size_t open = where.find(Char('['), from);
    if (open != String::npos) {
        const size_t close = where.rfind(Char(']'));
        if (close != String::npos && close > open)
            where.erase(open, close - open + 1);
    }
    // The closing suffix ends the signature: where the block stood when the line break follows it,
    // else two characters before the block (before the line break that precedes it).
    const String suffix = Ascii<Char>(parenthesised ? "\"!" : "()\"!");
    if (open == String::npos) {
        where += suffix;
    } else {
        const String lineBreak = Ascii<Char>("\r\n");
        const bool breakFollows = where.compare(open, 2, lineBreak) == 0;
        where.insert(breakFollows || open < 2 ? open : open - 2, suffix);
    }

    const Char tag = Char();
    String heading;
    if (function) {
        heading = Words(detected  ? L"Обнаружена ошибка функцией \""
                        : warning ? L"Предупреждение функции \""
                                  : L"Ошибка в функции \"",
                        tag);
    } else {
        const String noun = Words(isOperator ? L"оператор" : L"метод", tag);
        if (detected)
            heading = Words(L"Обнаружена ошибка ", tag) + noun + Words(L"ом \"", tag);
        else if (warning)
            heading = Words(L"Предупреждение ", tag) + noun + Words(L"а \"", tag);
        else
            heading = Words(L"Ошибка в ", tag) + noun + Words(L"е \"", tag);
    }

    String result = heading + where;
    if (block.empty()) {
        if (!text.empty())
            result += Char('\n') + text + Char('\n');
    } else {
        result += block;
        if (!text.empty())
            result += text + Char('\n');
    }
    return result;
}

} // namespace

std::wstring ComposeFailureTextW(std::wstring where, const std::wstring& text, bool withLastError) {
    // The block is taken first, so nothing done here can change the last error it describes.
    std::wstring block = Utils::Error::DescriptionW<bool>(withLastError);
    std::wstring result = Compose<wchar_t>(std::move(where), text, block);
    where.clear();
    return result;
}

std::string ComposeFailureTextA(std::string where, const std::string& text, bool withLastError) {
    std::string block = Utils::Error::DescriptionA<bool>(withLastError);
    std::string result = Compose<char>(std::move(where), text, block);
    where.clear();
    return result;
}

namespace Utils {
namespace Error {
namespace detail {

namespace {
HMODULE LoadedModule(const wchar_t* module) {
    HMODULE handle = nullptr;
    if (!::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT, module, &handle))
        handle = nullptr;
    return handle;
}

[[noreturn]] void ThrowNoModule(const wchar_t* boxFunction) {
    const unsigned long lastError = ::GetLastError();
    std::wostringstream out;
    out << L"Ошибка в функции \"" << boxFunction << L"()\"." << std::endl
        << L"Не получен системный дескриптор модуля \"User32.dll\"." << std::endl
        << L"Последняя ошибка: " << lastError << std::endl;
    throw out.str();
}

// Both widths: the module is found by its wide name, the box export by `procName`.
template <class Char>
void ShowVia(const wchar_t* module, const char* procName, const Char* text, const Char* caption,
             unsigned int style, unsigned long timeout) {
    ::SetLastError(0);
    const HMODULE user32 = LoadedModule(module);
    if (user32 == nullptr)
        ThrowNoModule(sizeof(Char) == 1 ? L"MessageBoxTimeoutA" : L"MessageBoxTimeoutW");
    typedef int(WINAPI * Box)(HWND, const Char*, const Char*, UINT, WORD, DWORD);
    const Box box = reinterpret_cast<Box>(reinterpret_cast<void*>(::GetProcAddress(user32, procName)));
    if (box == nullptr)
        return; // silently, deliberately: no box and no exception
    box(nullptr, text, caption, style, 0, timeout);
}

} // namespace

void ShowMessageVia(const wchar_t* module, const char* procName, const wchar_t* text, const wchar_t* caption,
                    unsigned int style, unsigned long timeout) {
    ShowVia(module, procName, text, caption, style, timeout);
}

void ShowMessageViaA(const wchar_t* module, const char* procName, const char* text, const char* caption) {
    ShowVia(module, procName, text, caption, kErrorStyle, 0);
}

} // namespace detail
} // namespace Error
} // namespace Utils

void ShowMessageW(const wchar_t* text, const wchar_t* caption, unsigned int style, unsigned long timeout) {
    Utils::Error::detail::ShowMessageVia(L"User32.dll", "MessageBoxTimeoutW", text, caption, style, timeout);
}

void ShowMessageA(const char* text, const char* caption) {
    Utils::Error::detail::ShowMessageViaA(L"User32.dll", "MessageBoxTimeoutA", text, caption);
}

void ShowNoticeW(std::wstring caption, std::wstring text) {
    ShowMessageW(text.c_str(), caption.c_str(), Utils::Error::kNoticeStyle, 0);
}

void ShowErrorW(std::wstring caption, std::wstring text) {
    ShowMessageW(text.c_str(), caption.c_str(), Utils::Error::kErrorStyle, 0);
}

void ShowErrorA(std::string caption, std::string text) {
    ShowMessageA(text.c_str(), caption.c_str());
}
