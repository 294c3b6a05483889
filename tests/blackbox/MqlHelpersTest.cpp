// The plain-MQL5 helpers at the end of mql5/Include/Tovarin.mqh, mirrored in C++ (MQL5 cannot run
// here), against the bytes that the library's own string exports write and the lines they read.
#include "include/Tovarin.h"
#include "support/BoxRecorder.h"
#include "support/TempDir.h"
#include "support/TovarinDll.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace TestSupport;

namespace {

#define TOVARIN_GET(name) TovarinDll::Get<decltype(&name)>(#name)
template <class Ch> using Lines = std::vector<std::basic_string<Ch>>; // char: A, char16_t: W

// TovarinReadLinesW/A over the rest of the file: a line ends at each CR LF; text after the last
// is none. (TovarinWriteLinesW/A write each line, then CR LF: the `joined` bytes of CheckLines.)
template <class Ch> Lines<Ch> HelperParse(const std::basic_string<Ch>& text) {
    Lines<Ch> lines;
    for (std::size_t i = 0, begin = 0; i + 1 < text.size(); ++i)
        if (text[i] == 13 && text[i + 1] == 10) {
            lines.push_back(text.substr(begin, i - begin));
            begin = i + 2;
            ++i;
        }
    return lines;
}

// The string-array exports for hosts that can build arrays of addresses, of either width.
typedef unsigned __int64 u64;
template <class Ch> void ExportWrite(void* file, const Lines<Ch>& lines) {
    std::vector<const Ch*> p;
    for (const auto& line : lines)
        p.push_back(line.c_str());
    TovarinDll::Get<u64 (*)(void*, const Ch**, u64, u64, u64)>(
        sizeof(Ch) == 2 ? "FileWriteStrArrayW" : "FileWriteStrArrayA")(file, p.data(), p.size(), 0, ~0ull);
}
template <class Ch> Lines<Ch> ExportRead(void* file) {
    std::vector<Ch> buffers(8 * 64, 0); // 8 zero-filled strings of 64 characters
    Ch* p[8];
    for (int i = 0; i < 8; ++i)
        p[i] = &buffers[64 * i];
    const u64 n = TovarinDll::Get<u64 (*)(void*, Ch**, u64, u64, u64, u64)>(
        sizeof(Ch) == 2 ? "FileReadStrArrayW" : "FileReadStrArrayA")(file, p, 8, 64, 0, ~0ull);
    return Lines<Ch>(p, p + (n > 8 ? 0 : n));
}

struct LinesCase {
    const char* name;
    std::string content;            // the whole file; UTF-16 widens it byte by byte
    std::vector<std::string> lines; // the lines a reader finds in it
};
void PrintTo(const LinesCase& c, std::ostream* out) {
    *out << c.name;
}
const LinesCase kLines[] = {
    {"LinesWithAnEmptyOne", "a\r\n\r\nb c\r\n", {"a", "", "b c"}},
    {"TextAfterTheLastLineEndIsNoLine", "x\r\ny\r\nz", {"x", "y"}},
    {"LoneCrAndLfBelongToTheLine", "one\rtwo\nthree\r\n", {"one\rtwo\nthree"}},
    {"CrBeforeTheLineEnd", "\r\r\n\r\n", {"\r", ""}},
    {"EightBitCharacters", "\xE9t\xE9\r\n\xFF\r\n", {"\xE9t\xE9", "\xFF"}},
    {"EmptyFile", "", {}},
};

// The text as characters of the width: 8-bit as it stands, UTF-16 one character per byte.
template <class Ch> std::basic_string<Ch> Widen(const std::string& s) {
    return std::basic_string<Ch>(s.begin(), s.end());
}

template <class Ch> void CheckLines(const LinesCase& c) {
    BoxRecorder boxes;
    TempDir dir;
    Lines<Ch> lines;
    std::basic_string<Ch> joined;
    for (const std::string& line : c.lines) {
        lines.push_back(Widen<Ch>(line));
        joined += Widen<Ch>(line + "\r\n");
    }
    void* file = TOVARIN_GET(FileCreateAlwaysW)((dir / L"lines").c_str(), ~0ul, ~0ul);
    ASSERT_NE(file, nullptr);
    if (!lines.empty()) // the export refuses an empty array with a box; the helper writes nothing
        ExportWrite<Ch>(file, lines);
    EXPECT_EQ(ReadFileBytes(dir / L"lines"),
              std::string(reinterpret_cast<const char*>(joined.data()), joined.size() * sizeof(Ch)));
    const std::basic_string<Ch> content = Widen<Ch>(c.content);
    TOVARIN_GET(FileClear)(file);
    TOVARIN_GET(FileWriteVoid)(file, content.data(), content.size() * sizeof(Ch));
    TOVARIN_GET(FileSetPointerBegin)(file, 0);
    EXPECT_EQ(ExportRead<Ch>(file), lines);
    EXPECT_EQ(HelperParse(content), lines);
    TOVARIN_GET(FileCloseHandle)(file);
    EXPECT_TRUE(boxes.Boxes().empty()) << Narrow(boxes.Boxes()[0].text);
}

class MqlHelperLines : public testing::TestWithParam<LinesCase> {};
TEST_P(MqlHelperLines, Utf16AsTheExports) {
    CheckLines<char16_t>(GetParam());
}
TEST_P(MqlHelperLines, EightBitAsTheExports) {
    CheckLines<char>(GetParam());
}
INSTANTIATE_TEST_SUITE_P(Cases, MqlHelperLines, testing::ValuesIn(kLines),
                         [](const testing::TestParamInfo<LinesCase>& info) { return info.param.name; });

// TovarinReadStringA: size bytes less trailing zeros, spaces, tabs, CR and LF, as FileReadStringA.
TEST(MqlHelpers, ReadStringAAsTheExport) {
    const std::string kCases[] = {std::string("ab \t\r\n\0", 7), "     ", "x y", ""};
    BoxRecorder boxes;
    TempDir dir;
    void* file = TOVARIN_GET(FileCreateAlwaysW)((dir / L"a.txt").c_str(), ~0ul, ~0ul);
    for (const std::string& content : kCases) {
        TOVARIN_GET(FileClear)(file);
        TOVARIN_GET(FileWriteVoid)(file, (content + "!").data(), content.size() + 1);
        TOVARIN_GET(FileSetPointerBegin)(file, 0);
        const std::string helper = content.substr(0, content.find_last_not_of(std::string(" \t\r\n", 5)) + 1);
        EXPECT_EQ(TOVARIN_GET(FileReadStringA)(file, content.size()), helper);
        EXPECT_EQ(TOVARIN_GET(FileGetPointer)(file), static_cast<__int64>(content.size()));
    }
    TOVARIN_GET(FileCloseHandle)(file);
    EXPECT_TRUE(boxes.Boxes().empty()) << Narrow(boxes.Boxes()[0].text);
}

// Tovarin.mqh imports nothing that needs an address MQL5 cannot make; TovarinRaw.mqh has those.
TEST(MqlHelpers, MainIncludeImportsNoAddressForms) {
    const std::string mqh = ReadFileBytes(std::wstring(TOVARIN_SOURCE_DIR) + L"\\mql5\\Include\\Tovarin.mqh");
    const std::size_t open = mqh.find("#import \"Tovarin.dll\"");
    ASSERT_NE(open, std::string::npos);
    const std::string imports = mqh.substr(open, mqh.find("#import\n", open + 1) - open);
    for (const char* form : {"string &", "&strings[]", "&records[]", "struct", "FileReadStringA"})
        EXPECT_EQ(imports.find(form), std::string::npos) << form;
}

} // namespace
