#pragma once
// Reads the import and export tables of a PE image file.
#include <string>
#include <vector>

namespace TestSupport {

struct PeTables {
    bool ok = false;
    std::vector<std::string> imports; // DLL names as the image spells them
    std::vector<std::string> exports; // exported names
};

PeTables ReadPeTables(const std::wstring& path);

// The names listed under EXPORTS in a module-definition file.
std::vector<std::string> ReadDefExports(const std::wstring& path);

// The folder of the running executable, with a trailing backslash.
std::wstring ExecutableFolder();

} // namespace TestSupport
