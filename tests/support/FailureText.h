#pragma once
// Expected failure texts of the library's throw sites, for exact comparison in tests.
#include <string>

namespace TestSupport {

// The line number a composed failure text reports after "Line: ", or -1 when it has none.
int ReportedLine(const std::wstring& text);

// The whole text a function throws: heading for a function, its signature, its location in `file`
// at `line`, then the message. `lastError` is the code the last-error block shows (the composer
// reduces any error to 1), or -1 for a text without that block.
std::wstring ExpectedFailure(const std::string& signature, const std::string& file, int line,
                             const std::wstring& message, int lastError = -1);

} // namespace TestSupport
