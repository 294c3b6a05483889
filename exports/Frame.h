#pragma once
// The frame every export runs in: the work runs inside one try block; whatever it throws is shown
// in the failure box (caption: the library's module name) and the export returns its neutral
// result. No exception ever leaves an export.
#include "../utils/Utils.Error.h"

#include <string>

namespace Project {

// The library's module file name: the caption of every failure box.
const std::wstring& ModuleName() noexcept;

// The three catch clauses. Each shows one box and never throws.
void ReportNarrow(const Utils::Error::Site& site, const std::string& failure) noexcept;
void ReportWide(const Utils::Error::Site& site, const std::wstring& failure) noexcept;
void ReportUnknown(const Utils::Error::Site& site) noexcept;

template <class Result, class Work>
Result Call(const Utils::Error::Site& site, const Result neutral, Work&& work) noexcept {
    try {
        return work();
    } catch (const std::string& failure) {
        ReportNarrow(site, failure);
    } catch (const std::wstring& failure) {
        ReportWide(site, failure);
    } catch (...) {
        ReportUnknown(site);
    }
    return neutral;
}

template <class Work> void Call(const Utils::Error::Site& site, Work&& work) noexcept {
    try {
        work();
    } catch (const std::string& failure) {
        ReportNarrow(site, failure);
    } catch (const std::wstring& failure) {
        ReportWide(site, failure);
    } catch (...) {
        ReportUnknown(site);
    }
}

} // namespace Project
