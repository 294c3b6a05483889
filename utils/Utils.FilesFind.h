#pragma once
// Whether a path names a file, a folder or nothing.
#include <string>

namespace Utils {

class FilesFind {
public:
    enum Place : unsigned short { kLocal = 1, kFtp = 2 };

    // `place` says where to search: the local file system, or the FTP connection of the object.
    explicit FilesFind(unsigned short place = kLocal, void* ftpConnection = nullptr)
        : place_(place), connection_(ftpConnection) {}

    // 0 when nothing is found, 1 for a folder, 2 for a file. Wildcards are passed to the search as
    // they are, so a pattern that matches a file gives 2.
    unsigned short Status(const std::wstring& path) const;

private:
    unsigned short place_;
    void* connection_;
};

} // namespace Utils
