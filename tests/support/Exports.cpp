#include "Exports.h"

#include "exports/ExportRows.h"

#include <cwctype>

namespace TestSupport {

namespace {
template <class R> u64 Neutral(const Project::Row<R>& row) {
    return Bits(row.neutral);
}
u64 Neutral(const Project::Row<void>&) {
    return 0;
}
} // namespace

const std::vector<ExportRow>& Exports() {
#define TOVARIN_TEST_ROW(name)                                                                               \
    ExportRow{#name,                                                                                         \
              Project::Rows::name.signature,                                                                 \
              Neutral(Project::Rows::name),                                                                  \
              &Caller<decltype(&::name)>::Run,                                                               \
              Caller<decltype(&::name)>::kByHandle,                                                          \
              Caller<decltype(&::name)>::kTexts},
    static const std::vector<ExportRow> rows = {TOVARIN_EXPORTS(TOVARIN_TEST_ROW)};
#undef TOVARIN_TEST_ROW
    return rows;
}

const ExportRow& ExportOf(const std::string& name) {
    for (const ExportRow& row : Exports())
        if (name == row.name)
            return row;
    ADD_FAILURE() << "no export " << name;
    return Exports().front();
}

std::wstring Heading(const std::string& name) {
    const std::string signature = ExportOf(name).signature;
    return L"Ошибка в функции \"" + std::wstring(signature.begin(), signature.end()) +
           L"\"!\r\nFile: \"Tovarin.cpp\"\r\nLine: ";
}

void ExpectOneBox(BoxRecorder& boxes, const std::string& name, std::initializer_list<std::wstring> pieces) {
    const std::vector<Box> shown = boxes.Boxes();
    boxes.Clear();
    ASSERT_EQ(shown.size(), 1u) << name << (shown.empty() ? "" : "\n" + Narrow(shown[0].text));
    const std::wstring& text = shown[0].text;
    EXPECT_EQ(text.find(Heading(name)), 0u) << Narrow(text);
    for (const std::wstring& piece : pieces)
        EXPECT_NE(text.find(piece), std::wstring::npos) << Narrow(piece) << "\nnot in\n" << Narrow(text);
}

void ExpectNoBox(BoxRecorder& boxes) {
    const std::vector<Box> shown = boxes.Boxes();
    boxes.Clear();
    EXPECT_TRUE(shown.empty()) << Narrow(shown[0].text);
}

std::vector<int> LinesOf(const std::wstring& text) {
    std::vector<int> lines;
    const std::wstring label = L"\r\nLine: ";
    for (size_t at = text.find(label); at != std::wstring::npos; at = text.find(label, at + 1)) {
        int line = 0;
        for (size_t i = at + label.size(); i < text.size() && std::iswdigit(text[i]); ++i)
            line = line * 10 + (text[i] - L'0');
        lines.push_back(line);
    }
    return lines;
}

CurrentFolder::CurrentFolder(const std::wstring& folder) : folder_(folder) {
    wchar_t saved[MAX_PATH] = {};
    ::GetCurrentDirectoryW(MAX_PATH, saved);
    saved_ = saved;
    ::SetCurrentDirectoryW(folder.c_str());
}

CurrentFolder::~CurrentFolder() {
    ::SetCurrentDirectoryW(saved_.c_str());
}

bool CurrentFolder::Empty() const {
    WIN32_FIND_DATAW found;
    HANDLE search = ::FindFirstFileW((folder_ + L"\\*").c_str(), &found);
    bool empty = true;
    if (search != INVALID_HANDLE_VALUE) {
        do
            empty = empty &&
                    (std::wcscmp(found.cFileName, L".") == 0 || std::wcscmp(found.cFileName, L"..") == 0);
        while (::FindNextFileW(search, &found));
        ::FindClose(search);
    }
    return empty;
}

} // namespace TestSupport
