#pragma once
// File-system operations on plain paths: shell copy, move and delete, hard and symbolic links.
#include <string>

namespace Utils {

namespace MainFile {
// One silent shell operation (1 move, 2 copy, 3 delete, 4 rename); true when it succeeded and
// nothing was aborted. Any other wFunc throws.
bool FileOperation(const std::wstring& from, const std::wstring& to, const unsigned short wFunc);
bool DeletePath(const std::wstring& path);
// Makes `link` a symbolic link to the file `target`, creating the link's folder first. The bool
// argument has no effect: the link is always a file link.
bool SymbolicLink(const std::wstring& link, const std::wstring& target, const bool = false);
} // namespace MainFile

namespace File {
// Makes `link` a hard link to `source` (one drive only, by the paths' first characters); throws on
// every failure.
void HardLink(const std::wstring& source, const std::wstring& link);
} // namespace File

// Creates `folder` with every missing parent; true when it exists afterwards. A folder that is
// already there costs one attribute query.
bool CreateFolder(const std::wstring& folder);

} // namespace Utils
