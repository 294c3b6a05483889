// The kit's own MQL5 (Tovarin.mqh's helpers, TovarinFile.mqh's class and path check, the examples),
// translated to C++ at build time by tests/mql5/translate.py, against the built DLL. The translations
// come first: they see no Windows macro.
#include "TovarinExample.mq5.h"
#include "TovarinFile.mqh.h"
#include "TovarinRecords.mq5.h"
#include "TovarinSignalFollower.mq5.h"
#include "TovarinSignalWriter.mq5.h"

const int kShared = mql::FILE_SHARE_READ | mql::FILE_SHARE_WRITE; // <windows.h> has macros of these names

#include "support/BoxRecorder.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <array>
#include <tuple>
#include <typeinfo>

namespace mql {
void PrintTo(const string& s, std::ostream* out) {
    *out << testing::PrintToString(s.text);
}
} // namespace mql

using namespace TestSupport;
using mql::Array;
using mql::operator""_s;
using namespace std::string_literals;
using Seen = std::tuple<size_t, size_t, long long>; // boxes, lines in the log, calls of imports

namespace {

mql::string Text(const std::string& bytes) { // byte by byte
    const auto* first = reinterpret_cast<const unsigned char*>(bytes.data());
    return std::u16string(first, first + bytes.size());
}
mql::string Text(const std::wstring& s) {
    return std::u16string(s.begin(), s.end());
}
template <class C> std::string Bytes(const C& items) { // as they lie in memory
    return std::string(reinterpret_cast<const char*>(items.data()), items.size() * sizeof(items[0]));
}

std::string Utf8(const std::u16string& s) {
    return Narrow(std::wstring(s.begin(), s.end()));
}
std::string Encoded(int encoding, const std::u16string& text) { // by the system, not by the kit
    std::string bytes(3 * text.size(), '\0');
    bytes.resize(::WideCharToMultiByte(encoding == TOVARIN_CODEPAGE ? 1252 : CP_UTF8, 0,
                                       reinterpret_cast<const wchar_t*>(text.data()), int(text.size()),
                                       &bytes[0], int(bytes.size()), nullptr, nullptr));
    return encoding == TOVARIN_UTF16 ? Bytes(text) : bytes;
}

// Each test has an open file; whatever the kit shows (a box, a line in the log) a test must take.
class Kit : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(file.Open(Text(dir / L"file"), mql::FILE_READ | mql::FILE_WRITE | kShared));
        Take();
    }
    void TearDown() override {
        mql::resizesBeforeFailure = -1, mql::history = 5000;
        const Seen left = Take();
        EXPECT_EQ(std::get<0>(left) + std::get<1>(left), 0u) << "a box or a line in the log left unchecked";
    }
    // What the kit showed and how often it called the DLL since the last look.
    Seen Take() {
        const Seen seen(boxes.Boxes().size(), mql::TakeJournal().size(), mql::dllCalls - calls);
        return boxes.Clear(), calls = mql::dllCalls, seen;
    }
    // Empties the file, writes bytes and puts the pointer at `pointer`.
    void Fill(const std::string& bytes, int pointer) {
        mql::FileClear(file.Handle());
        mql::FileWriteVoid(file.Handle(), Array<mql::uchar>{{bytes.begin(), bytes.end()}}, bytes.size());
        mql::FileSetPointerBegin(file.Handle(), pointer);
    }
    BoxRecorder boxes;
    TempDir dir;
    mql::CTovarinFile file;
    long long calls = 0;
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

// The helpers of the library's string-array format: lines written in one call, read back from the
// pointer on, the pointer left at the end; and the string reads.
TEST_F(Kit, HelperLinesAndStrings) {
    const mql::mlong h = file.Handle();
    for (const LinesCase& c : kLines)
        for (const bool wide : {true, false}) {
            SCOPED_TRACE(c.content + (wide ? " (W)" : " (A)"));
            const auto bytes = [wide](const std::string& s) { return wide ? Bytes(Text(s).text) : s; };
            Array<mql::string> lines, read;
            std::string joined;
            for (const std::string& line : c.lines)
                lines.items.push_back(Text(line)), joined += line + "\r\n";
            mql::FileClear(h), Take();
            EXPECT_EQ((wide ? mql::TovarinWriteLinesW : mql::TovarinWriteLinesA)(h, lines), c.lines.size());
            EXPECT_EQ(Take(), Seen(0, 0, c.lines.empty() ? 0 : 1));
            EXPECT_EQ(ReadFileBytes(dir / L"file"), bytes(joined));
            Fill(bytes("#" + c.content), wide ? 2 : 1);
            EXPECT_EQ((wide ? mql::TovarinReadLinesW : mql::TovarinReadLinesA)(h, read), c.lines.size());
            EXPECT_EQ(read.items, lines.items);
            EXPECT_EQ(mql::FileGetPointer(h), static_cast<mql::mlong>(bytes("#" + c.content).size()));
            mql::string text = u"old"_s;
            Fill(bytes(c.content + "!"), 0);
            EXPECT_TRUE(
                (wide ? mql::TovarinReadStringW : mql::TovarinReadStringA)(h, c.content.size(), text));
            EXPECT_EQ(text, Text(c.trimmed));
        }
}

// A failure is explained once: by the failing export's box or by a line in the log.
TEST_F(Kit, EachHelperFailureIsExplainedOnce) {
    const mql::mlong bad = 12345, h = file.Handle();
    const Array<mql::string> one{{u"a"_s}};
    Array<mql::string> lines;
    Array<mql::uchar> ansi = Array<mql::uchar>::Static(3, {});
    mql::string text;
    const auto sized = [&](unsigned long long size) { return mql::FileResize(h, size), h; };
    const auto shortOfMemory = [&](int resizes) {
        Fill("a\r\nb\r\n", 0), mql::resizesBeforeFailure = resizes;
    };
    const struct {
        std::function<unsigned long long()> call;
        unsigned long long result;
        const wchar_t* why; // a piece of the box or of the line in the log
    } kFailures[] = {
        {[&] { return mql::TovarinReadLinesW(bad, lines); }, ~0ull, L"FileSetPointerCurrent"},
        {[&] { return mql::TovarinWriteLinesW(bad, one); }, ~0ull, L"FileWriteStringW"},
        {[&] { return mql::TovarinWriteLinesA(bad, one); }, ~0ull, L"FileWriteVoid"},
        {[&] { return +mql::TovarinReadStringA(bad, 4, text); }, 0, L"FileReadVoid"},
        {[&] { return +mql::TovarinReadStringW(bad, 4, text); }, 0, L"FileReadUShortArray"},
        {[&] { return mql::TovarinReadLinesW(sized((4ull << 30) + 6), lines); }, ~0ull, L"2 GiB"},
        {[&] { return +mql::TovarinReadStringA(h, 3ull << 30, text); }, 0, L"2 GiB"},
        {[&] { return shortOfMemory(0), mql::TovarinReadLinesA(h, lines); }, ~0ull, L"cannot resize"},
        {[&] { return shortOfMemory(1), mql::TovarinReadLinesA(h, lines); }, ~0ull, L"cannot resize"},
        {[&] { return shortOfMemory(0), mql::TovarinReadLinesW(h, lines); }, ~0ull, L"cannot resize"},
        {[&] { return shortOfMemory(0), +mql::TovarinReadStringA(h, 4, text); }, 0, L"cannot resize"},
        // TovarinAnsi leaves an empty text when the text and its zero overflow a static array
        {[&] { return mql::TovarinAnsi(u"abc"_s, ansi) + ansi[0]; }, 0, L"no room"},
    };
    for (const auto& f : kFailures) {
        SCOPED_TRACE(testing::Message() << "row " << &f - kFailures);
        EXPECT_EQ(f.call(), f.result);
        const std::vector<std::u16string> journal = mql::TakeJournal();
        const std::wstring shown = !journal.empty() ? std::wstring(journal[0].begin(), journal[0].end())
                                   : boxes.Boxes().empty() ? L""
                                                           : boxes.Boxes()[0].text;
        EXPECT_EQ(journal.size() + boxes.Boxes().size(), 1u) << Narrow(shown);
        EXPECT_HAS(shown, f.why);
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
    EXPECT_HAS(boxes.Boxes()[0].text, L"FileCopyW");
    boxes.Clear();
    EXPECT_FALSE(FileExists(dir / L"Tovarin\\Out\\EUR_USD_H1.bars"));
    // The first run's copy, as a reader of the layout that the example states sees it.
    Array<mql::MqlRates> r;
    ASSERT_EQ(mql::CopyRates(mql::_Symbol, mql::_Period, 0, 1000, r), 1000);
    std::string bytes = "BARS\1\0\0\0\7\0\0\0"s + Bytes(u"EUR/USD"_s.text) + "\xE8\3\0\0"s;
    const size_t kFields[] = {0, 8, 16, 24, 32, 40, 48, 52, 60}; // where MqlRates's fields begin, and its end
    for (size_t f = 0; f + 1 < std::size(kFields); ++f)          // a column a field
        for (const mql::MqlRates& bar : r.items)
            bytes.append(reinterpret_cast<const char*>(&bar) + kFields[f], kFields[f + 1] - kFields[f]);
    EXPECT_EQ(ReadFileBytes(dir / L"Tovarin\\Inbox\\EUR_USD_H1.bars"), bytes);
}

// Where MQL5's rules differ from C++'s, the prelude of the translated kit follows MQL5's.
TEST(KitTranslation, KeepsMql5Rules) {
    mql::string a = u"x"_s, b = a;
    b += u"y"_s;
    EXPECT_EQ(a + b, u"xxy"_s); // strings are values
    const int value = 400;      // narrowing keeps the low bits; a number appended to a text, its digits
    EXPECT_EQ(u""_s + mql::mchar(value) + u" "_s + mql::uchar(value), u"-112 144"_s);
    Array<int> dynamic, fixed = Array<int>::Static(3, {}), values = Array<int>::Static(0, {1, 2});
    EXPECT_EQ(mql::ArraySize(dynamic), 0);
    EXPECT_EQ(mql::ArrayResize(dynamic, 5, 100), 5);
    EXPECT_EQ(mql::ArrayResize(fixed, 5), -1); // a static array keeps its size
    EXPECT_EQ(mql::ArraySize(fixed), 3);
    Array<mql::uchar> bytes; // a text's bytes end with a 0
    EXPECT_EQ(mql::StringToCharArray(u"\u00e9\u20ac"_s, bytes, 0, -1, CP_UTF8), 6);
    EXPECT_EQ(mql::CharArrayToString(bytes, 0, -1, CP_UTF8), u"\u00e9\u20ac"_s);
    EXPECT_EQ(values[1], 2);
    EXPECT_THROW(values[2], mql::Stop); // an index out of range is a critical error
    EXPECT_THROW(values[-1], mql::Stop);
}

// Every encoding x line end x last line with or without its end x follow mode: the bytes written,
// the lines read, where the reader leaves the pointer, and a follower's partial line read whole later.
TEST_F(Kit, TextInEveryEncodingAndLineEnd) {
    const std::wstring path = dir / L"t.txt";
    const char* const marks[] = {"", "\xEF\xBB\xBF", "\xFF\xFE", ""};
    const Array<mql::string> lines{{u"Z\u00fcrich;1.5"_s, u""_s, u"a\rb"_s}};
    for (int encoding = 0; encoding < 4; ++encoding)
        for (const bool crlf : {true, false})
            for (const bool ended : {true, false})
                for (const bool follow : {false, true}) {
                    SCOPED_TRACE(testing::Message() << encoding << crlf << ended << follow);
                    mql::CTovarinFile writer, reader; // the reader finds the encoding by its mark, or is told
                    ASSERT_TRUE(writer.Open(Text(path), mql::FILE_WRITE));
                    writer.SetText(encoding, crlf, 1252);
                    EXPECT_EQ(writer.WriteLines(lines), 3);
                    writer.Close();
                    const std::u16string end = crlf ? u"\r\n" : u"\n";
                    const std::string written =
                        marks[encoding] + Encoded(encoding, u"Z\u00fcrich;1.5" + end + end + u"a\rb" + end);
                    const std::string tail = ended ? "" : Encoded(encoding, u"t\u00e9");
                    EXPECT_EQ(ReadFileBytes(path), written);
                    WriteFileBytes(path, written + tail);
                    ASSERT_TRUE(reader.Open(Text(path), mql::FILE_READ | kShared));
                    reader.SetText(encoding == TOVARIN_CODEPAGE ? encoding : TOVARIN_UTF8, true, 1252);
                    Array<mql::string> read;
                    std::vector<mql::string> expected = lines.items;
                    if (!ended && !follow)
                        expected.push_back(u"t\u00e9"_s);
                    EXPECT_EQ(reader.ReadLines(read, follow), int(expected.size()));
                    EXPECT_EQ(read.items, expected);
                    EXPECT_EQ(reader.Tell(), written.size() + (follow ? 0 : tail.size()));
                    if (follow && !ended) {
                        WriteFileBytes(path, written + tail + Encoded(encoding, u"!\n"));
                        EXPECT_EQ(reader.ReadLines(read, true), 1);
                        EXPECT_EQ(read.items, std::vector<mql::string>{u"t\u00e9!"_s});
                    }
                }
}

// A writer hands the DLL whole lines, a call per MiB; the reader takes a fixed number of calls.
TEST_F(Kit, LinesBatchedAMiBPerCall) {
    Array<mql::string> lines, back;
    lines.items.assign(100000, u"0123456789012345678901234567890123456789"_s);
    EXPECT_EQ(file.WriteLines(lines), 100000);
    EXPECT_LE(std::get<2>(Take()), (100000 * 42 >> 20) + 1);
    ASSERT_TRUE(file.Seek(0, mql::SEEK_SET_));
    EXPECT_EQ(file.ReadLines(back), 100000);
    EXPECT_TRUE(back.items == lines.items);
    EXPECT_LE(std::get<2>(Take()), 10);
}

// Every element type: a value and a slice written, read back, the bytes as in memory; then the end.
template <class T> void RoundTrip(mql::CTovarinFile& file, const std::array<T, 3>& values) {
    SCOPED_TRACE(typeid(T).name());
    Array<T> a, back;
    a.items.assign(values.begin(), values.end()), back.items.resize(3);
    file.Seek(0, mql::SEEK_SET_), mql::FileResize(file.Handle(), 0);
    EXPECT_TRUE(file.Write(values[2]) && file.WriteArray(a, 1, 2) == 2 && file.Seek(0, mql::SEEK_SET_));
    EXPECT_TRUE(file.Read(back[0]) && file.ReadArray(back, 1) == 2);
    EXPECT_EQ(Bytes(back.items), Bytes(std::array<T, 3>{values[2], values[1], values[2]}));
    EXPECT_FALSE(file.Read(back[0])); // the end: the DLL's box
}

TEST_F(Kit, EveryElementTypeAndPositionsBeyond4GiB) {
    RoundTrip<bool>(file, {true, false, true});
    RoundTrip<mql::mchar>(file, {-1, 2, -128});
    RoundTrip<mql::uchar>(file, {1, 200, 255});
    RoundTrip<short>(file, {-1, 2, -32768});
    RoundTrip<mql::ushort>(file, {1, 2, 65535});
    RoundTrip<int>(file, {-1, 2, INT_MIN});
    RoundTrip<mql::uint>(file, {1, 2, UINT_MAX});
    RoundTrip<mql::mlong>(file, {-1, 2, INT64_MIN});
    RoundTrip<mql::ulong>(file, {1, 2, UINT64_MAX});
    RoundTrip<float>(file, {1.5f, -2.25f, 3e38f});
    RoundTrip<double>(file, {1.5, -2.25, 1e300});
    EXPECT_EQ(std::get<0>(Take()), 11u);
    // Size, Tell and Seek from 4 GiB on, where FileGetSize and FileGetPointer keep 32 bits.
    mql::FileResize(file.Handle(), (5ull << 30) + 3);
    EXPECT_EQ(file.Size(), (5ull << 30) + 3);
    EXPECT_TRUE(file.Seek(-1, mql::SEEK_END_));
    EXPECT_EQ(file.Tell(), (5ull << 30) + 2);
    EXPECT_TRUE(file.Seek(-(4ll << 30), mql::SEEK_CUR_));
    EXPECT_EQ(file.Tell(), (1ull << 30) + 2);
    EXPECT_TRUE(file.Seek(-10, mql::SEEK_SET_));
    EXPECT_EQ(file.Tell(), 0u);
}

// A slice outside the array, or no open file, is refused in MQL5: a line in the log, no DLL call.
TEST_F(Kit, BadSlicesNeverReachTheDll) {
    mql::CTovarinFile closed;
    Array<double> a = Array<double>::Static(3, {1, 2, 3});
    const int kSlices[][2] = {{-1, 1}, {4, mql::WHOLE_ARRAY}, {0, 4}, {2, 2}, {1, -2}, {3, 1}, {INT_MAX, 2}};
    for (const auto& s : kSlices) {
        SCOPED_TRACE(testing::Message() << s[0] << ", " << s[1]);
        EXPECT_EQ(file.WriteArray(a, s[0], s[1]) + file.ReadArray(a, s[0], s[1]), -2);
        EXPECT_EQ(Take(), Seen(0, 2, 0));
    }
    EXPECT_EQ(file.WriteArray(a, 3) + closed.WriteArray(a) + closed.WriteLines(Array<mql::string>()), -2);
    EXPECT_FALSE(closed.Write(1.0) || closed.Read(a[0]) || closed.Seek(0, mql::SEEK_END_));
    EXPECT_EQ(Take(), Seen(0, 5, 0));
    // No memory for the lines read: -1, a line in the log, and the lines left for the next call.
    Array<mql::string> read;
    file.WriteLine(u"a"_s), file.Seek(0, mql::SEEK_SET_), Take(), mql::resizesBeforeFailure = 0;
    EXPECT_EQ(file.ReadLines(read), -1);
    EXPECT_EQ(std::get<1>(Take()), 1u);
    EXPECT_EQ(file.Tell(), 0u);
    EXPECT_EQ(file.ReadLines(read), 1);
}

// Open maps MQL5's flags as FileOpen does, the destructor closes (the second call), and a path that
// the library would refuse costs a line in the log, not a box.
TEST_F(Kit, OpenFlagsAndClose) {
    const std::wstring path = dir / L"sub\\o.txt";
    const struct {
        int flags;
        std::string before, after; // the file's bytes, "-": no file
        Seen seen;                 // boxes, log lines and DLL calls of the open and the close
    } kOpens[] = {
        {mql::FILE_READ, "-", "-", {1, 0, 1}},                  // reading alone needs the file
        {mql::FILE_READ | mql::FILE_WRITE, "-", "", {0, 0, 2}}, // both make it, and its folder
        {mql::FILE_READ | mql::FILE_WRITE, "abc", "abc", {0, 0, 2}},
        {mql::FILE_WRITE, "abc", "", {0, 0, 2}}, // writing alone empties it
        {0, "abc", "abc", {0, 1, 0}},
    };
    for (const auto& o : kOpens) {
        SCOPED_TRACE(o.flags);
        if (o.before != "-")
            WriteFileBytes(path, o.before);
        Take();
        EXPECT_EQ(mql::CTovarinFile().Open(Text(path), o.flags), std::get<2>(o.seen) == 2);
        EXPECT_EQ(Take(), o.seen);
        EXPECT_EQ(FileExists(path) ? ReadFileBytes(path) : "-", o.after);
    }
    EXPECT_FALSE(mql::CTovarinFile().Open(Text(dir / L"bad?.txt"), mql::FILE_WRITE));
    EXPECT_EQ(Take(), Seen(0, 1, 0));
}

// The path check in MQL5 and the DLL's own verdict agree on every row, for the same reason.
TEST_F(Kit, PathCheckAgreesWithTheLibrary) {
    const std::u16string base = Text(dir.Path()).text + u"\\";
    std::vector<std::u16string> paths = {u"C:a.txt", u"\\a.txt", u"a.txt",         u"Files\\a.txt",
                                         u"1:\\a",   u"a<b:\\c", u"\\\\?\\C:\\a?", u"C:\\a|b"};
    paths.push_back(u"\\\\?\\" + base + std::u16string(300, u'n')); // the long form has no limit
    for (const char16_t* name : {u"a.txt", u"a*.txt", u"a?b", u"x/y", u"a.", u"a ", u"con\\a", u"Con\\a",
                                 u"a\\AUX", u"aux", u"COM10", u"LPT9", u"nul.txt"})
        paths.push_back(base + name);
    for (const size_t n : {255, 256}) // the longest path, and one character more
        paths.push_back(base + std::u16string(n - base.size(), u'n'));
    const std::pair<const char16_t*, const wchar_t*> kReasons[] = {
        {u"forbidden", L"запрещённый символ"}, {u"at the end", L"Пробел в конце пути"},
        {u"longer than 255", L"Боле 255"},     {u"reserved", L"зарезервированное"},
        {u"absolute", L"Путь не абсолютный"},
    };
    for (const std::u16string& path : paths) {
        const std::u16string why = mql::TovarinPathProblem(path).text;
        mql::FileDeleteW(path); // nothing is there: an accepted path fails later, by another text
        const std::wstring box = boxes.Boxes().empty() ? L"" : boxes.Boxes()[0].text;
        std::string mine, library; // which of the reasons each gives
        for (const auto& [kit, dll] : kReasons)
            mine += why.find(kit) != why.npos ? "1" : "0", library += box.find(dll) != box.npos ? "1" : "0";
        EXPECT_EQ(mine, library) << Utf8(path) << "\n" << Utf8(why) << "\n" << Narrow(box);
        EXPECT_EQ(why.empty(), library == "00000") << Utf8(path);
        boxes.Clear();
    }
}

// The signal writer and its follower side by side: the follower prints every line the writer
// completes, once, in order, and nothing before the file exists; a bad path stops OnInit quietly.
TEST_F(Kit, FollowerPrintsWhatTheWriterWrites) {
    namespace writer = mql::TovarinSignalWriter;
    namespace follower = mql::TovarinSignalFollower;
    mql::CommonDataPath = Text(dir.Path());
    writer::InpPath = u"D:signals.csv"_s;
    EXPECT_EQ(writer::OnInit(), mql::INIT_PARAMETERS_INCORRECT);
    EXPECT_EQ(Take(), Seen(0, 1, 0));
    writer::InpPath = u""_s;
    ASSERT_EQ(follower::OnInit(), mql::INIT_SUCCEEDED);
    follower::OnTimer();
    ASSERT_EQ(writer::OnInit(), mql::INIT_SUCCEEDED);
    for (int bar = 0; bar < 3; ++bar, ++mql::history)
        writer::OnTick(), writer::OnTick(), follower::OnTimer(); // a line a bar
    writer::OnDeinit(0), follower::OnDeinit(0);
    const std::vector<std::u16string> printed = mql::TakeJournal();
    std::vector<std::u16string> written;
    const std::string bytes = ReadFileBytes(dir / L"Tovarin\\signals.csv");
    for (size_t from = 0, end; (end = bytes.find("\r\n", from)) != std::string::npos; from = end + 2)
        written.push_back(u"Signal: " + std::u16string(bytes.begin() + from, bytes.begin() + end));
    ASSERT_EQ(written.size(), 4u);
    EXPECT_EQ(written[0], u"Signal: time,symbol,signal,close");
    EXPECT_EQ(printed, std::vector<std::u16string>(written.begin() + 1, written.end()));
}

// The records example: a count and the bars, a count and the ticks, as they lie in memory, each array
// in one call; the class reads them back whole.
TEST_F(Kit, RecordsWrittenAsTheyLieInMemory) {
    mql::CommonDataPath = Text(dir.Path());
    mql::TovarinRecords::InpBars = 100, mql::TovarinRecords::InpTicks = 50;
    mql::TovarinRecords::OnStart();
    const std::wstring path = dir / L"Tovarin\\records.bin";
    EXPECT_EQ(Take(), Seen(0, 1, 6)); // the open, two counts, two arrays, the close; the line it prints
    Array<mql::MqlRates> rates, ratesBack;
    Array<mql::MqlTick> ticks, ticksBack;
    mql::CopyRates(mql::_Symbol, mql::_Period, 0, 100, rates);
    mql::CopyTicks(mql::_Symbol, ticks, mql::COPY_TICKS_ALL, 0, 50);
    EXPECT_TRUE(ReadFileBytes(path) == "d\0\0\0"s + Bytes(rates.items) + "2\0\0\0"s + Bytes(ticks.items));
    int bars = 0, count = 0;
    ratesBack.items.resize(100), ticksBack.items.resize(50);
    ASSERT_TRUE(file.Open(Text(path), mql::FILE_READ));
    EXPECT_TRUE(file.Read(bars) && file.ReadArray(ratesBack) == 100 && file.Read(count) &&
                file.ReadArray(ticksBack) == 50);
    EXPECT_TRUE(Bytes(ratesBack.items) == Bytes(rates.items) && Bytes(ticksBack.items) == Bytes(ticks.items));
}

} // namespace
