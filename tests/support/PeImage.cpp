#include "PeImage.h"

#include "TempDir.h"

#include <windows.h>

#include <cstring>
#include <sstream>

namespace TestSupport {

namespace {

template <class T> bool At(const std::string& image, size_t offset, T& out) {
    if (offset + sizeof(T) > image.size())
        return false;
    std::memcpy(&out, image.data() + offset, sizeof(T));
    return true;
}

std::string CString(const std::string& image, size_t offset) {
    if (offset >= image.size())
        return std::string();
    return std::string(image.c_str() + offset);
}

} // namespace

PeTables ReadPeTables(const std::wstring& path) {
    PeTables tables;
    const std::string image = ReadFileBytes(path);
    IMAGE_DOS_HEADER dos = {};
    IMAGE_NT_HEADERS64 nt = {};
    if (!At(image, 0, dos) || dos.e_magic != IMAGE_DOS_SIGNATURE || !At(image, dos.e_lfanew, nt) ||
        nt.Signature != IMAGE_NT_SIGNATURE || nt.OptionalHeader.Magic != IMAGE_NT_OPTIONAL_HDR64_MAGIC)
        return tables;
    const size_t sectionsAt =
        dos.e_lfanew + offsetof(IMAGE_NT_HEADERS64, OptionalHeader) + nt.FileHeader.SizeOfOptionalHeader;
    std::vector<IMAGE_SECTION_HEADER> sections(nt.FileHeader.NumberOfSections);
    for (size_t i = 0; i < sections.size(); ++i)
        if (!At(image, sectionsAt + i * sizeof(IMAGE_SECTION_HEADER), sections[i]))
            return tables;
    auto fileOffset = [&sections](DWORD rva) -> size_t {
        for (const IMAGE_SECTION_HEADER& s : sections)
            if (rva >= s.VirtualAddress && rva < s.VirtualAddress + s.Misc.VirtualSize)
                return rva - s.VirtualAddress + s.PointerToRawData;
        return static_cast<size_t>(-1);
    };

    const IMAGE_DATA_DIRECTORY& importDir = nt.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    if (importDir.VirtualAddress != 0) {
        size_t at = fileOffset(importDir.VirtualAddress);
        IMAGE_IMPORT_DESCRIPTOR descriptor = {};
        while (At(image, at, descriptor) && descriptor.Name != 0) {
            tables.imports.push_back(CString(image, fileOffset(descriptor.Name)));
            at += sizeof(descriptor);
        }
    }
    const IMAGE_DATA_DIRECTORY& exportDir = nt.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT];
    if (exportDir.VirtualAddress != 0) {
        IMAGE_EXPORT_DIRECTORY directory = {};
        if (At(image, fileOffset(exportDir.VirtualAddress), directory)) {
            const size_t names = fileOffset(directory.AddressOfNames);
            for (DWORD i = 0; i < directory.NumberOfNames; ++i) {
                DWORD nameRva = 0;
                if (At(image, names + i * sizeof(DWORD), nameRva))
                    tables.exports.push_back(CString(image, fileOffset(nameRva)));
            }
        }
    }
    tables.ok = true;
    return tables;
}

std::vector<std::string> ReadDefExports(const std::wstring& path) {
    std::istringstream in(ReadFileBytes(path));
    std::vector<std::string> names;
    std::string line;
    bool inExports = false;
    while (std::getline(in, line)) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        std::istringstream words(line);
        std::string word;
        if (!(words >> word) || word[0] == ';')
            continue;
        if (word == "EXPORTS") {
            inExports = true;
            continue;
        }
        if (word == "LIBRARY")
            continue;
        if (inExports)
            names.push_back(word);
    }
    return names;
}

std::wstring ExecutableFolder() {
    wchar_t self[MAX_PATH] = {};
    ::GetModuleFileNameW(nullptr, self, MAX_PATH);
    std::wstring path = self;
    return path.substr(0, path.find_last_of(L'\\') + 1);
}

} // namespace TestSupport
