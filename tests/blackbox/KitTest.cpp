// The kit's own MQL5 (Tovarin.mqh's helpers, the example script), translated to C++ at build time by
// tests/mql5/translate.py, against the built DLL. The translations come first: they see no Windows macro.
#include "Semantics.mq5.h"
#include "TovarinExample.mq5.h"

#include "support/BoxRecorder.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

namespace mql {
void PrintTo(const string& s, std::ostream* out) {
    *out << testing::PrintToString(s.text);
}
} // namespace mql

using namespace TestSupport;
using mql::Array;
using mql::operator""_s;

namespace {

mql::string Text(const std::string& bytes) { // byte by byte
    std::u16string text;
    for (const unsigned char c : bytes)
        text += c;
    return text;
}
mql::string Text(const std::wstring& s) {
    return std::u16string(s.begin(), s.end());
}
std::string Bytes(const mql::string& s) {
    return std::string(reinterpret_cast<const char*>(s.text.data()), 2 * s.text.size());
}

class Kit : public testing::Test {
protected:
    void TearDown() override {
        mql::FileCloseHandle(file);
        mql::resizesBeforeFailure = -1;
        EXPECT_TRUE(mql::TakeJournal().empty());
    }
    // Empties the file, writes bytes and puts the pointer at `pointer`.
    void Fill(const std::string& bytes, int pointer) {
        mql::FileClear(file);
        mql::FileWriteVoid(file, Array<mql::uchar>{{bytes.begin(), bytes.end()}}, bytes.size());
        mql::FileSetPointerBegin(file, pointer);
    }
    BoxRecorder boxes;
    TempDir dir;
    const mql::mlong file = mql::FileCreateAlwaysW(Text(dir / L"file"), ~0u, ~0u);
};

struct LinesCase {
    std::string content;            // UTF-16 widens it byte by byte
    std::vector<std::string> lines; // the lines a reader finds in it (after a one-character header)
    std::string trimmed;            // TovarinReadStringA/W: less trailing zeros, spaces, tabs, CR and LF
};
const LinesCase kLines[] = {
    {"a\r\n\r\nb c\r\n", {"a", "", "b c"}, "a\r\n\r\nb c"},
    {"x\r\ny\r\nz", {"x", "y"}, "x\r\ny\r\nz"}, // text after the last line end is no line
    {"one\rtwo\nthree\r\n", {"one\rtwo\nthree"}, "one\rtwo\nthree"},
    {"\r\r\n\r\n", {"\r", ""}, ""},
    {"\xE9t\xE9\r\n\xFF\r\n", {"\xE9t\xE9", "\xFF"}, "\xE9t\xE9\r\n\xFF"},
    {{"a \tb\0 \t\0", 9}, {}, "a \tb"},
    {"", {}, ""},
};

TEST_F(Kit, LinesAndTextWrittenAndRead) {
    for (const LinesCase& c : kLines)
        for (const bool wide : {true, false}) {
            SCOPED_TRACE(c.content + (wide ? " (W)" : " (A)"));
            const auto bytes = [wide](const std::string& s) { return wide ? Bytes(Text(s)) : s; };
            Array<mql::string> lines, read;
            std::string joined;
            for (const std::string& line : c.lines)
                lines.items.push_back(Text(line)), joined += line + "\r\n";
            mql::FileClear(file);
            EXPECT_EQ((wide ? mql::TovarinWriteLinesW : mql::TovarinWriteLinesA)(file, lines),
                      c.lines.size());
            EXPECT_EQ(ReadFileBytes(dir / L"file"), bytes(joined));
            Fill(bytes("#" + c.content), wide ? 2 : 1);
            EXPECT_EQ((wide ? mql::TovarinReadLinesW : mql::TovarinReadLinesA)(file, read), c.lines.size());
            EXPECT_EQ(read.items, lines.items);
            EXPECT_EQ(mql::FileGetPointer(file), static_cast<mql::mlong>(bytes("#" + c.content).size()));
            mql::string text = u"old"_s;
            Fill(bytes(c.content + "!"), 0);
            EXPECT_TRUE((wide ? mql::TovarinReadStringW : mql::TovarinReadStringA)(file, c.content.size(), text));
            EXPECT_EQ(text, Text(c.trimmed));
        }
    EXPECT_TRUE(boxes.Boxes().empty());
}

// A failure is explained once: by the failing export's box or by a line in the journal.
TEST_F(Kit, EachFailureIsExplainedOnce) {
    const mql::mlong bad = 12345;
    const Array<mql::string> one{{u"a"_s}};
    Array<mql::string> lines;
    Array<mql::uchar> ansi = Array<mql::uchar>::Static(3, {});
    mql::string text;
    const auto sized = [&](unsigned long long size) { return mql::FileResize(file, size), file; };
    const auto shortOfMemory = [&](int resizes) {
        Fill("a\r\nb\r\n", 0), mql::resizesBeforeFailure = resizes;
    };
    const struct {
        std::function<unsigned long long()> call;
        unsigned long long result;
        const wchar_t* box;  // a piece of the box's text
        const char16_t* log; // a piece of the journal's line
    } kFailures[] = {
        {[&] { return mql::TovarinReadLinesW(bad, lines); }, ~0ull, L"FileSetPointerCurrent", nullptr},
        {[&] { return mql::TovarinReadLinesA(bad, lines); }, ~0ull, L"FileSetPointerCurrent", nullptr},
        {[&] { return mql::TovarinWriteLinesW(bad, one); }, ~0ull, L"FileWriteStringW", nullptr},
        {[&] { return mql::TovarinWriteLinesA(bad, one); }, ~0ull, L"FileWriteVoid", nullptr},
        {[&] { return +mql::TovarinReadStringA(bad, 4, text); }, 0, L"FileReadVoid", nullptr},
        {[&] { return +mql::TovarinReadStringW(bad, 4, text); }, 0, L"FileReadUShortArray", nullptr},
        {[&] { return mql::TovarinReadLinesW(sized((4ull << 30) + 6), lines); }, ~0ull, nullptr, u"2 GiB"},
        {[&] { return mql::TovarinReadLinesA(sized((8ull << 30) + 6), lines); }, ~0ull, nullptr, u"2 GiB"},
        {[&] { return +mql::TovarinReadStringA(file, 3ull << 30, text); }, 0, nullptr, u"2 GiB"},
        {[&] { return shortOfMemory(0), mql::TovarinReadLinesA(file, lines); }, ~0ull, nullptr,
         u"cannot resize"},
        {[&] { return shortOfMemory(1), mql::TovarinReadLinesA(file, lines); }, ~0ull, nullptr,
         u"cannot resize"},
        {[&] { return shortOfMemory(0), mql::TovarinReadLinesW(file, lines); }, ~0ull, nullptr,
         u"cannot resize"},
        {[&] { return shortOfMemory(0), +mql::TovarinReadStringA(file, 4, text); }, 0, nullptr,
         u"cannot resize"},
        // TovarinAnsi leaves an empty text when the text and its zero overflow a static array
        {[&] { return mql::TovarinAnsi(u"abc"_s, ansi) + ansi[0]; }, 0, nullptr, u"no room"},
    };
    for (const auto& f : kFailures) {
        SCOPED_TRACE(testing::Message() << "row " << &f - kFailures);
        EXPECT_EQ(f.call(), f.result);
        const std::vector<std::u16string> journal = mql::TakeJournal();
        const size_t shown = boxes.Boxes().size() + journal.size();
        EXPECT_EQ(shown, 1u) << (boxes.Boxes().empty() ? "" : Narrow(boxes.Boxes()[0].text));
        EXPECT_TRUE(shown == 1 && (f.box ? boxes.Boxes()[0].text.find(f.box) != std::wstring::npos
                                         : journal[0].find(f.log) != std::u16string::npos));
        boxes.Clear();
    }
}

// The example's OnStart: what it prints, and the file it leaves for the other program.
TEST_F(Kit, ExampleExportsBarsAndHandsOverACopy) {
    namespace example = mql::TovarinExample;
    mql::CommonDataPath = Text(dir.Path());
    const mql::string common = Text(dir.Path()) + u"\\Tovarin\\"_s, name = u"\\EUR_USD_H1.bars"_s;
    const struct {
        int bars;
        mql::string inbox;
        bool keep;
        mql::string last; // the last line printed
    } kRuns[] = {{1000, u""_s, true, u"Copied to "_s + common + u"Inbox"_s + name},
                 {3, common + u"Out"_s, false, u"Copied to "_s + common + u"Out"_s + name},
                 {2, common + u"In|box"_s, true, u"Copy to "_s + common + u"In|box"_s + name + u" failed"_s}};
    for (const auto& run : kRuns) {
        example::InpBars = run.bars, example::InpInbox = run.inbox, example::InpKeepCopy = run.keep;
        example::OnStart();
        const mql::string written = u""_s + run.bars + u" bars written to "_s + common + u"Export"_s + name;
        EXPECT_EQ(mql::TakeJournal(),
                  (std::vector<std::u16string>{written.text, u"Read back: identical", run.last.text}));
    }
    ASSERT_EQ(boxes.Boxes().size(), 1u); // the last run's, refusing the name
    EXPECT_NE(boxes.Boxes()[0].text.find(L"FileCopyW"), std::wstring::npos);
    EXPECT_FALSE(FileExists(dir / L"Tovarin\\Out\\EUR_USD_H1.bars"));
    // The first run's copy, as a reader of the layout that the example states sees it.
    Array<mql::MqlRates> r;
    ASSERT_EQ(mql::CopyRates(mql::_Symbol, mql::_Period, 0, 1000, r), 1000);
    std::string bytes =
        "BARS" + std::string("\1\0\0\0\7\0\0\0", 8) + Bytes(u"EUR/USD"_s) + std::string("\xE8\3\0\0", 4);
    const auto column = [&](auto field) {
        for (const mql::MqlRates& bar : r.items)
            bytes.append(reinterpret_cast<const char*>(&(bar.*field)), sizeof(bar.*field));
    };
    column(&mql::MqlRates::time), column(&mql::MqlRates::open), column(&mql::MqlRates::high);
    column(&mql::MqlRates::low), column(&mql::MqlRates::close), column(&mql::MqlRates::tick_volume);
    column(&mql::MqlRates::spread), column(&mql::MqlRates::real_volume);
    EXPECT_EQ(ReadFileBytes(dir / L"Tovarin\\Inbox\\EUR_USD_H1.bars"), bytes);
}

TEST(KitTranslation, KeepsMql5Rules) {
    namespace s = mql::Semantics;
    EXPECT_EQ(s::Values(400, -2.7), u"xxy 0 5 -1 3 -112 144 -2"_s);
    EXPECT_EQ(s::Utf8RoundTrip(u"\u00e9\u20ac"_s), u"6 \u00e9\u20ac"_s);
    EXPECT_EQ(s::Element(1), 2);
    EXPECT_THROW(s::Element(2), mql::Stop);
    EXPECT_THROW(s::Element(-1), mql::Stop);
}

} // namespace
