#include "Frame.h"

#include "../utils/Utils.CodingStr.h"

#include <windows.h>

namespace Project {

const std::wstring& ModuleName() noexcept {
    static const std::wstring name = []() -> std::wstring {
        try {
            HMODULE self = nullptr;
            if (!::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS |
                                          GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                                      reinterpret_cast<LPCWSTR>(&ModuleName), &self))
                return L"Tovarin.dll";
            std::wstring path(MAX_PATH, L'\0');
            for (;;) {
                const DWORD n = ::GetModuleFileNameW(self, &path[0], static_cast<DWORD>(path.size()));
                if (n == 0)
                    return L"Tovarin.dll";
                if (n < path.size()) {
                    path.resize(n);
                    return path;
                }
                path.resize(path.size() * 2);
            }
        } catch (...) {
            return std::wstring();
        }
    }();
    return name;
}

// The failure header: "File: \"<exports' source>\"\r\nLine: <line>\r\n", after "[f]\r\n".
void ReportNarrow(const Utils::Error::Site& site, const std::string& failure) noexcept {
    try {
        const std::string final = ComposeFailureTextA(Utils::Error::WhereA(site), failure, false);
        ShowErrorA(Utils::CodingStr::UnicodeToAnsi(ModuleName(), 0), final);
    } catch (...) {
        // The box could not be shown; the export still returns its neutral result.
    }
}

void ReportWide(const Utils::Error::Site& site, const std::wstring& failure) noexcept {
    try {
        ShowErrorW(ModuleName(), ComposeFailureTextW(Utils::Error::WhereW(site), failure, false));
    } catch (...) {
    }
}

void ReportUnknown(const Utils::Error::Site& site) noexcept {
    try {
        ShowNoticeW(ModuleName(),
                    ComposeFailureTextW(Utils::Error::WhereW(site), L"Unknown exception!", true));
    } catch (...) {
    }
}

} // namespace Project
