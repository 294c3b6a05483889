// The kit's own MQL5 (the helpers of Tovarin.mqh, the example script) translated to C++ at build time
// by tests/mql5/translate.py and run against the built DLL; Semantics.mq5 shows the MQL5 rules that
// the translation keeps. The translated headers come first: they see no Windows macro.
#include "Semantics.mq5.h"
#include "TovarinExample.mq5.h"

#include "support/BoxRecorder.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

using namespace TestSupport;
using mql::Array;
using mql::operator""_s;

namespace {

std::u16string Widen(const std::string& bytes) {
    std::u16string wide;
    for (const unsigned char c : bytes)
        wide += c;
    return wide;
}
std::string Utf16Bytes(const std::u16string& s) { return std::string(reinterpret_cast<const char*>(s.data()), 2 * s.size()); }
mql::string Text(const std::wstring& s) { return std::u16string(s.begin(), s.end()); }

std::vector<std::u16string> TakeJournal() {
    std::vector<std::u16string> journal;
    return journal.swap(mql::Journal()), journal;
}
std::vector<std::u16string> Texts(const Array<mql::string>& a) {
    std::vector<std::u16string> texts;
    for (const mql::string& s : a.items)
        texts.push_back(s.text);
    return texts;
}

// Writes bytes through the DLL at the start of an emptied file, then puts the pointer at `pointer`.
void Fill(mql::mlong file, const std::string& bytes, int pointer) {
    mql::FileClear(file);
    mql::FileWriteVoid(file, Array<mql::uchar>{std::vector<mql::uchar>(bytes.begin(), bytes.end())}, bytes.size());
    mql::FileSetPointerBegin(file, pointer);
}

struct LinesCase {
    std::string content;            // after a one-character header; UTF-16 widens it byte by byte
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

TEST(Kit, LinesWrittenAndReadInBothWidths) {
    BoxRecorder boxes;
    TempDir dir;
    const mql::mlong file = mql::FileCreateAlwaysW(Text(dir / L"lines"), ~0u, ~0u);
    for (const LinesCase& c : kLines)
        for (const bool wide : {true, false}) {
            SCOPED_TRACE(c.content + (wide ? " (W)" : " (A)"));
            const auto bytes = [wide](const std::string& s) { return wide ? Utf16Bytes(Widen(s)) : s; };
            Array<mql::string> lines, read;
            std::string joined;
            for (const std::string& line : c.lines)
                lines.items.push_back(Widen(line)), joined += line + "\r\n";
            mql::FileClear(file);
            EXPECT_EQ((wide ? mql::TovarinWriteLinesW : mql::TovarinWriteLinesA)(file, lines), c.lines.size());
            EXPECT_EQ(ReadFileBytes(dir / L"lines"), bytes(joined));
            Fill(file, bytes("#" + c.content), wide ? 2 : 1);
            EXPECT_EQ((wide ? mql::TovarinReadLinesW : mql::TovarinReadLinesA)(file, read), c.lines.size());
            EXPECT_EQ(Texts(read), Texts(lines));
            EXPECT_EQ(mql::FileGetPointer(file), static_cast<mql::mlong>(bytes("#" + c.content).size()));
        }
    mql::FileCloseHandle(file);
    EXPECT_TRUE(boxes.Boxes().empty());
    EXPECT_TRUE(TakeJournal().empty());
}

// TovarinReadStringA: size bytes less trailing zeros, spaces, tabs, CR and LF, as FileReadStringA.
TEST(Kit, ReadStringATrimsAsTheExport) {
    BoxRecorder boxes;
    TempDir dir;
    const mql::mlong file = mql::FileCreateAlwaysW(Text(dir / L"a.txt"), ~0u, ~0u);
    for (const auto& [content, text] : {std::pair<std::string, std::u16string>{std::string("ab \t\r\n\0", 7), u"ab"},
                                        {"     ", u""}, {"x y", u"x y"}}) {
        Fill(file, content + "!", 0);
        mql::string read = u"old"_s;
        EXPECT_TRUE(mql::TovarinReadStringA(file, content.size(), read));
        EXPECT_EQ(read.text, text);
        EXPECT_EQ(mql::FileGetPointer(file), static_cast<mql::mlong>(content.size()));
    }
    mql::FileCloseHandle(file);
    EXPECT_TRUE(boxes.Boxes().empty());
}

// A failure shows one box (the failing export's) or one line in the journal, never both, never more.
TEST(Kit, EachFailureIsExplainedOnce) {
    BoxRecorder boxes;
    TempDir dir;
    const mql::mlong file = mql::FileCreateAlwaysW(Text(dir / L"big"), ~0u, ~0u), bad = 12345;
    const Array<mql::string> one{{u"a"_s}};
    Array<mql::string> lines;
    mql::string text;
    const auto sized = [&](unsigned long long size) { return mql::FileResize(file, size), file; };
    const auto shortOfMemory = [&](int resizes) { Fill(file, "a\r\nb\r\n", 0), mql::ResizesBeforeFailure() = resizes; };
    const struct {
        std::function<unsigned long long()> call;
        unsigned long long result;
        const wchar_t* box;  // a piece of the box's text
        const char16_t* log; // a piece of the journal's line
    } kFailures[] = {
        {[&] { return mql::TovarinReadLinesW(bad, lines); }, ~0ull, L"FileSetPointerCurrent", nullptr},
        {[&] { return mql::TovarinReadLinesA(bad, lines); }, ~0ull, L"FileSetPointerCurrent", nullptr},
        {[&] { return mql::TovarinWriteLinesW(bad, one); }, ~0ull, L"FileWriteUShortArray", nullptr},
        {[&] { return mql::TovarinWriteLinesA(bad, one); }, ~0ull, L"FileWriteVoid", nullptr},
        {[&] { return +mql::TovarinReadStringA(bad, 4, text); }, 0, L"FileReadVoid", nullptr},
        {[&] { return mql::TovarinReadLinesW(sized((4ull << 30) + 6), lines); }, ~0ull, nullptr, u"2 GiB"},
        {[&] { return mql::TovarinReadLinesA(sized((8ull << 30) + 6), lines); }, ~0ull, nullptr, u"2 GiB"},
        {[&] { return +mql::TovarinReadStringA(file, 3ull << 30, text); }, 0, nullptr, u"2 GiB"},
        {[&] { return shortOfMemory(0), mql::TovarinReadLinesA(file, lines); }, ~0ull, nullptr, u"no memory"},
        {[&] { return shortOfMemory(1), mql::TovarinReadLinesA(file, lines); }, ~0ull, nullptr, u"no memory"},
        {[&] { return shortOfMemory(0), mql::TovarinReadLinesW(file, lines); }, ~0ull, nullptr, u"no memory"},
        {[&] { return shortOfMemory(0), +mql::TovarinReadStringA(file, 4, text); }, 0, nullptr, u"no memory"},
    };
    for (const auto& f : kFailures) {
        SCOPED_TRACE(testing::Message() << "row " << &f - kFailures);
        EXPECT_EQ(f.call(), f.result);
        const std::vector<std::u16string> journal = TakeJournal();
        const size_t shown = boxes.Boxes().size() + journal.size();
        EXPECT_EQ(shown, 1u) << (boxes.Boxes().empty() ? "" : Narrow(boxes.Boxes()[0].text));
        EXPECT_TRUE(shown == 1 && (f.box ? boxes.Boxes()[0].text.find(f.box) != std::wstring::npos
                                         : journal[0].find(f.log) != std::u16string::npos));
        boxes.Clear();
        mql::ResizesBeforeFailure() = -1;
    }
    mql::FileCloseHandle(file);
}

// TovarinAnsi: the text with its zero, or 0 and an empty text when a static array cannot hold them.
TEST(Kit, AnsiTextKeepsInsideItsArray) {
    const struct {
        std::u16string text;
        int fixed; // the static array's size; 0: a dynamic array
        int result;
        std::string bytes;
    } kAnsi[] = {{u"abc", 0, 4, {"abc", 4}}, {u"", 0, 1, {"", 1}}, {u"\u00e9t\u00e9", 0, 4, {"\xE9t\xE9", 4}},
                 {u"ab", 4, 3, {"ab", 3}},   {u"abc", 3, 0, {"", 1}}};
    for (const auto& a : kAnsi) {
        Array<mql::uchar> ansi = a.fixed ? Array<mql::uchar>::Static(a.fixed, {}) : Array<mql::uchar>();
        EXPECT_EQ(mql::TovarinAnsi(a.text, ansi), a.result);
        EXPECT_EQ(std::string(ansi.items.begin(), ansi.items.begin() + a.bytes.size()), a.bytes);
        EXPECT_EQ(TakeJournal().size(), a.result ? 0u : 1u);
    }
}

// The example's OnStart against the DLL: what it prints, the file it leaves for the other program.
TEST(Kit, ExampleExportsBarsAndHandsOverACopy) {
    namespace example = mql::TovarinExample;
    BoxRecorder boxes;
    TempDir dir;
    mql::CommonDataPath() = Text(dir.Path());
    const std::u16string common = Text(dir.Path()).text + u"\\Tovarin\\";
    const struct {
        int bars;
        std::u16string inbox;
        bool keep;
        std::vector<std::u16string> journal;
    } kRuns[] = {
        {1000, u"", true, {u"1000 bars written to " + common + u"Export\\EUR_USD_H1.bars", u"Read back: identical",
                           u"Copied to " + common + u"Inbox\\EUR_USD_H1.bars"}},
        {3, common + u"Out", false, {u"3 bars written to " + common + u"Export\\EUR_USD_H1.bars", u"Read back: identical",
                                     u"Copied to " + common + u"Out\\EUR_USD_H1.bars"}},
        {2, common + u"In|box", true, {u"2 bars written to " + common + u"Export\\EUR_USD_H1.bars", u"Read back: identical",
                                       u"Copy to " + common + u"In|box\\EUR_USD_H1.bars failed"}}, // a failed copy shows no box
    };
    for (const auto& run : kRuns) {
        SCOPED_TRACE(run.bars);
        example::InpBars = run.bars, example::InpInbox = run.inbox, example::InpKeepCopy = run.keep;
        example::OnStart();
        EXPECT_EQ(TakeJournal(), run.journal);
    }
    EXPECT_TRUE(boxes.Boxes().empty()) << (boxes.Boxes().empty() ? "" : Narrow(boxes.Boxes()[0].text));
    // The copy of the first run, as a reader of the documented layout sees it.
    Array<mql::MqlRates> r;
    ASSERT_EQ(mql::CopyRates(mql::_Symbol, mql::_Period, 0, 1000, r), 1000);
    std::string bytes;
    const auto put = [&bytes](auto value) { bytes.append(reinterpret_cast<const char*>(&value), sizeof value); };
    const auto column = [&](auto field) { for (const mql::MqlRates& bar : r.items) put(bar.*field); };
    put(0x53524142u), put(1), put(7), bytes += Utf16Bytes(u"EUR/USD"), put(1000);
    column(&mql::MqlRates::time), column(&mql::MqlRates::open), column(&mql::MqlRates::high);
    column(&mql::MqlRates::low), column(&mql::MqlRates::close), column(&mql::MqlRates::tick_volume);
    column(&mql::MqlRates::spread), column(&mql::MqlRates::real_volume);
    EXPECT_EQ(ReadFileBytes(dir / L"Tovarin\\Inbox\\EUR_USD_H1.bars"), bytes);
    EXPECT_FALSE(FileExists(dir / L"Tovarin\\Out\\EUR_USD_H1.bars"));
}

TEST(Kit, TranslationKeepsMql5Rules) {
    namespace s = mql::Semantics;
    EXPECT_EQ(s::CopiedString().text, u"x xy");
    EXPECT_EQ(s::ResizedArrays().text, u"0 5 -1 3");
    EXPECT_EQ(s::Narrowed(400, -2.7).text, u"-112 144 -2");
    EXPECT_EQ(s::Utf8RoundTrip(u"\u00e9\u20ac"_s).text, u"6 \u00e9\u20ac");
    EXPECT_EQ(s::Element(1), 2);
    EXPECT_THROW(s::Element(2), mql::Stop);
    EXPECT_THROW(s::Element(-1), mql::Stop);
}

} // namespace
