#include "Exports.h"

#include "exports/ExportRows.h"

namespace TestSupport {

namespace {
template <class R, class... A>
ExportRow Row(R(__cdecl*)(A...), const char* name, const Project::Row<R>& row) {
    u64 neutral = 0;
    if constexpr (!std::is_void<R>::value)
        neutral = Bits(row.neutral);
    const bool byHandle = std::is_same<std::tuple_element_t<0, std::tuple<A...>>, void*>::value;
    const int texts =
        (std::is_same<A, const char*>::value + ... + 0) + (std::is_same<A, const wchar_t*>::value + ... + 0);
    return ExportRow{name, row.signature, neutral, &Run<R, A...>, byHandle, texts};
}
} // namespace

const std::vector<ExportRow>& Exports() {
#define TOVARIN_TEST_ROW(name) Row(&::name, #name, Project::Rows::name),
    static const std::vector<ExportRow> rows = {TOVARIN_EXPORTS(TOVARIN_TEST_ROW)};
#undef TOVARIN_TEST_ROW
    return rows;
}

const ExportRow& ExportOf(const std::string& name) {
    for (const ExportRow& row : Exports())
        if (name == row.name)
            return row;
    throw std::runtime_error("no export " + name);
}

void ExpectOneBox(BoxRecorder& boxes, const std::string& name, const std::vector<std::wstring>& pieces,
                  UINT icon) {
    const std::vector<Box> shown = boxes.Boxes();
    boxes.Clear();
    ASSERT_EQ(shown.size(), 1u) << name << (shown.empty() ? "" : "\n" + Narrow(shown[0].text));
    EXPECT_EQ(shown[0].icon, icon);
    const std::string signature = ExportOf(name).signature;
    const std::wstring heading = L"Ошибка в функции \"" + std::wstring(signature.begin(), signature.end()) +
                                 L"\"!\r\nFile: \"Tovarin.cpp\"\r\nLine: ";
    EXPECT_EQ(shown[0].text.find(heading), 0u) << Narrow(shown[0].text);
    for (const std::wstring& piece : pieces)
        EXPECT_HAS(shown[0].text, piece) << "\nlacks\n" << Narrow(piece);
}

void ExpectNoBox(BoxRecorder& boxes) {
    EXPECT_TRUE(boxes.Boxes().empty()) << Narrow(boxes.Boxes()[0].text);
    boxes.Clear();
}

} // namespace TestSupport
