#include "Exports.h"

#include "exports/ExportRows.h"

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

void ExpectOneBox(BoxRecorder& boxes, const std::string& name, const std::vector<std::wstring>& pieces,
                  UINT icon) {
    const std::vector<Box> shown = boxes.Boxes();
    boxes.Clear();
    ASSERT_EQ(shown.size(), 1u) << name << (shown.empty() ? "" : "\n" + Narrow(shown[0].text));
    EXPECT_EQ(shown[0].icon, icon);
    EXPECT_EQ(shown[0].text.find(Heading(name)), 0u) << Narrow(shown[0].text);
    for (const std::wstring& piece : pieces)
        EXPECT_HAS(shown[0].text, piece) << "\nlacks\n" << Narrow(piece);
}

void ExpectNoBox(BoxRecorder& boxes) {
    const std::vector<Box> shown = boxes.Boxes();
    boxes.Clear();
    EXPECT_TRUE(shown.empty()) << Narrow(shown[0].text);
}

} // namespace TestSupport
