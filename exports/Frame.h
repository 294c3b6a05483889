#pragma once
// The frame every export runs in: the work runs inside one try block; whatever it throws is shown
// in the failure box (caption: the library's module name) and the export returns its neutral
// result. No exception ever leaves an export.
#include "../utils/Utils.Error.h"

#include <string>
#include <type_traits>

namespace Project {

// An export's row: the signature text its failure texts show and the result it returns after a
// failure (a void export has none). ExportRows.h holds the 100 rows.
template <class Result> struct Row {
    const char* signature;
    Result neutral;
};
template <> struct Row<void> { const char* signature; };

// The library's module file name: the caption of every failure box.
const std::wstring& ModuleName() noexcept;

// The three catch clauses. Each shows one box and never throws.
void ReportNarrow(const Utils::Error::Site& site, const std::string& failure) noexcept;
void ReportWide(const Utils::Error::Site& site, const std::wstring& failure) noexcept;
void ReportUnknown(const Utils::Error::Site& site) noexcept;

// Runs work() (or work(site), for work that names the export in its own checks) and returns its
// result; after a failure, one box and the row's neutral result.
template <class Result, class Work>
Result Call(const Row<Result>& row, const Utils::Error::Site& site, Work&& work) noexcept {
    try {
        if constexpr (std::is_invocable<Work&, const Utils::Error::Site&>::value)
            return work(site);
        else
            return work();
    } catch (const std::string& failure) {
        ReportNarrow(site, failure);
    } catch (const std::wstring& failure) {
        ReportWide(site, failure);
    } catch (...) {
        ReportUnknown(site);
    }
    if constexpr (!std::is_void<Result>::value)
        return row.neutral;
}

} // namespace Project

// An export's row and the place of its body, which its failure texts show.
#define TOVARIN_ROW(name) ::Project::Rows::name, TOVARIN_SITE(::Project::Rows::name.signature)
