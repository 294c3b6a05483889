// The plain-MQL5 helpers at the end of mql5/Include/Tovarin.mqh, mirrored in C++ (MQL5 cannot run
// here), against the bytes that the library's own string exports write and the lines they read.
#include "support/Exports.h"

using namespace TestSupport;

namespace {

template <class Ch> using Lines = std::vector<std::basic_string<Ch>>; // char: A, char16_t: W

// TovarinReadLinesW/A over the rest of the file: a line ends at each CR LF; text after the last
// is none. (TovarinWriteLinesW/A write each line, then CR LF: the `joined` bytes below.)
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

struct LinesCase {
    std::string content;            // the whole file; UTF-16 widens it byte by byte
    std::vector<std::string> lines; // the lines a reader finds in it
};
const LinesCase kLines[] = {
    {"a\r\n\r\nb c\r\n", {"a", "", "b c"}},
    {"x\r\ny\r\nz", {"x", "y"}}, // text after the last line end is no line
    {"one\rtwo\nthree\r\n", {"one\rtwo\nthree"}},
    {"\r\r\n\r\n", {"\r", ""}},
    {"\xE9t\xE9\r\n\xFF\r\n", {"\xE9t\xE9", "\xFF"}},
    {"", {}},
};

// The string-array exports of the width (FileWriteStrArrayW/A, FileReadStrArrayW/A) against the helpers.
template <class Ch> void CheckLines(const char* write, const char* read) {
    BoxRecorder boxes;
    TempDir dir;
    void* file = TOVARIN_FN(FileCreateAlwaysW)((dir / L"lines").c_str(), ~0ul, ~0ul);
    for (const LinesCase& c : kLines) {
        SCOPED_TRACE(c.content);
        Lines<Ch> lines;
        std::basic_string<Ch> joined, content(c.content.begin(), c.content.end());
        std::vector<const Ch*> pointers;
        for (const std::string& line : c.lines) {
            lines.emplace_back(line.begin(), line.end());
            joined += lines.back() + Ch(13) + Ch(10);
        }
        for (const auto& line : lines)
            pointers.push_back(line.c_str());
        TOVARIN_FN(FileClear)(file);
        if (!lines.empty()) // the export refuses an empty array with a box; the helper writes nothing
            FromModule<u64 (*)(void*, const Ch**, u64, u64, u64)>(TovarinModule(), write)(
                file, pointers.data(), lines.size(), 0, ~0ull);
        EXPECT_EQ(ReadFileBytes(dir / L"lines"),
                  std::string(reinterpret_cast<const char*>(joined.data()), joined.size() * sizeof(Ch)));
        TOVARIN_FN(FileClear)(file);
        TOVARIN_FN(FileWriteVoid)(file, content.data(), content.size() * sizeof(Ch));
        TOVARIN_FN(FileSetPointerBegin)(file, 0);
        std::vector<Ch> buffers(8 * 64, 0); // 8 zero-filled strings of 64 characters
        Ch* p[8];
        for (int i = 0; i < 8; ++i)
            p[i] = &buffers[64 * i];
        const u64 n = FromModule<u64 (*)(void*, Ch**, u64, u64, u64, u64)>(TovarinModule(),
                                                                           read)(file, p, 8, 64, 0, ~0ull);
        EXPECT_EQ(Lines<Ch>(p, p + (n > 8 ? 0 : n)), lines);
        EXPECT_EQ(HelperParse(content), lines);
    }
    TOVARIN_FN(FileCloseHandle)(file);
    ExpectNoBox(boxes);
}

TEST(MqlHelpers, LinesAsTheExportsInBothWidths) {
    CheckLines<char16_t>("FileWriteStrArrayW", "FileReadStrArrayW");
    CheckLines<char>("FileWriteStrArrayA", "FileReadStrArrayA");
}

} // namespace
