#pragma once
// Failure texts, error descriptions and the failure box.
//
// Every failure inside the library is thrown as one std::wstring that already holds the whole
// composed text: where it happened (signature, source file, line), what happened and, when asked,
// the thread's last system error. Throw sites use TOVARIN_THROW, which captures the site as raw
// values; the text is built only on the failure path.
#include <string>
#include <type_traits>

namespace Utils {
namespace Error {

// A place in the source: the function's signature text (spelled as the failure texts show it),
// the source file (__FILE__; texts show its base name) and the line.
struct Site {
    const char* signature;
    const char* file;
    int line;
};

// The file name with its extension, without the folders of the build machine.
const char* BaseName(const char* path) noexcept;

// The where-text of a site: signature + markers + "\r\n" + "File: \"<base name>\"\r\nLine: <line>\r\n".
// `markers` is "[f]" for a function, "[f][d]" for a failure detected by a checker. The wide form is
// the 8-bit one converted with the system code page.
std::string WhereA(const Site& site, const char* markers = "[f]");
std::wstring WhereW(const Site& site, const char* markers = "[f]");

// Composes the failure text of `site` with `message` and throws it as std::wstring.
// `lastError` is the thread's last error as it was right after the failing call; it is put back
// before the composer asks for it, so building the message cannot disturb it.
[[noreturn]] void ThrowAt(const Site& site, const char* markers, const std::wstring& message,
                          bool withLastError, unsigned long lastError);

namespace detail {
// The type branches of DescriptionW: the thread's last error as a common-dialog code, as a shell
// operation code (after a notice that the shell sets no last error), or a notice for any other type.
std::wstring DialogDescriptionOfLastError();
std::wstring ShellDescriptionOfLastError();
std::wstring UnknownCodeType();
} // namespace detail

// Description of the thread's last error; the argument is not consulted. The bool form (the
// composer's) reduces the code to 1 or 0 deliberately; the long form routes network codes
// 12001..12175 to InternetW; unsigned short reads the code as a common-dialog code, int as a shell
// operation code; any other type shows a notice and gives an empty text.
template <class T> std::wstring DescriptionW(T) {
    if (std::is_same<T, unsigned short>::value)
        return detail::DialogDescriptionOfLastError();
    if (std::is_same<T, int>::value)
        return detail::ShellDescriptionOfLastError();
    return detail::UnknownCodeType();
}
template <> std::wstring DescriptionW<bool>(bool withLastError);
template <> std::wstring DescriptionW<long>(long);
template <class T> std::string DescriptionA(T value);
template <> std::string DescriptionA<bool>(bool withLastError);

// The system layout of one code: "\nLast Error: <code>.\n<system text>\n".
std::wstring SystemDescriptionW(unsigned long code);
std::string SystemDescriptionA(unsigned long code);

// Bilingual blocks of the network client's codes: "\r\nLast Error: <code>.\r\n\r\n" + English +
// "\r\n\r\n" + Russian + "\r\n\r\n". Code 0 has its own entry; codes without one get the system
// layout; 12003 gives the server's last response. The 8-bit form is in code page 1251.
std::wstring InternetW(const long code);
std::string InternetA(const long code);

} // namespace Error
} // namespace Utils

// Turns a where-text and a message into the sentence a failure box shows.
std::wstring ComposeFailureTextW(std::wstring where, const std::wstring& text, bool withLastError);
std::string ComposeFailureTextA(std::string where, const std::string& text, bool withLastError);

// Bilingual blocks of the common dialogs' extended codes ("0x0001") and of the shell file
// operation's result codes ("0x00071"), as InternetW lays them out; the 8-bit form is code page 1251.
std::wstring CommonDialogDescriptionW(unsigned long code);
std::string CommonDialogDescriptionA(unsigned long code);
std::wstring ShellOperationDescriptionW(int code);

// The failure box: MessageBoxTimeoutW/A looked up at each call in the already loaded User32.dll.
// Throws a three-line wide text when User32.dll is not loaded; returns silently when it lacks the
// timed-box export.
void ShowMessageW(const wchar_t* text, const wchar_t* caption, unsigned int style, unsigned long timeout);
void ShowMessageA(const char* text, const char* caption);
// Caption first, text second: reversed against ShowMessageW, deliberately.
void ShowNoticeW(std::wstring caption, std::wstring text); // style 0x52040
void ShowErrorW(std::wstring caption, std::wstring text);  // style 0x50010
void ShowErrorA(std::string caption, std::string text);    // style 0x50010

namespace Utils {
namespace Error {
namespace detail {
// The show functions with the module and export names as parameters, so that tests can ask for a
// module that is not loaded or an export that does not exist.
void ShowMessageVia(const wchar_t* module, const char* procName, const wchar_t* text, const wchar_t* caption,
                    unsigned int style, unsigned long timeout);
void ShowMessageViaA(const wchar_t* module, const char* procName, const char* text, const char* caption);
} // namespace detail

constexpr unsigned int kNoticeStyle = 0x52040; // MB_ICONINFORMATION|MB_TASKMODAL|MB_SETFOREGROUND|MB_TOPMOST
constexpr unsigned int kErrorStyle = 0x50010;  // MB_ICONERROR|MB_SETFOREGROUND|MB_TOPMOST
} // namespace Error
} // namespace Utils

// The spellings of the string types inside signature texts (as the failure texts show them).
#define TOVARIN_WSTRING                                                                                      \
    "class std::basic_string<wchar_t,struct std::char_traits<wchar_t>,class std::allocator<wchar_t> >"
#define TOVARIN_STRING                                                                                       \
    "class std::basic_string<char,struct std::char_traits<char>,class std::allocator<char> >"

// The place of a throw or check: the signature text, this source file and this line.
#define TOVARIN_SITE(signature) (::Utils::Error::Site{signature, __FILE__, __LINE__})
// A place whose file or line the failure texts show as a fixed value, whatever the layout of the
// source that holds it: the texts users have seen and quote keep their numbers.
#define TOVARIN_FIXED_SITE(signature, file, line) (::Utils::Error::Site{signature, file, line})

// The one way to throw: TOVARIN_THROW(signature text, with last error?, message expression), or
// TOVARIN_THROW_AT(site, markers, with last error?, message) for a fixed site or other markers.
// The last error is saved before the message is built. Write each call on one line (build a long
// message in a local first): compilers disagree on __LINE__ in a call over several lines.
#define TOVARIN_THROW_AT(site, markers, withLastError, message)                                              \
    do {                                                                                                     \
        const unsigned long tovarinLastError_ = ::Utils::Error::detail::LastError();                         \
        ::Utils::Error::ThrowAt(site, markers, (message), (withLastError), tovarinLastError_);               \
    } while (0)
#define TOVARIN_THROW(signature, withLastError, message)                                                     \
    TOVARIN_THROW_AT(TOVARIN_SITE(signature), "[f]", withLastError, message)

namespace Utils {
namespace Error {
namespace detail {
unsigned long LastError() noexcept;
} // namespace detail
} // namespace Error
} // namespace Utils
