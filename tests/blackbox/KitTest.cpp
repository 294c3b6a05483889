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

#include <limits>
#include <tuple>
#include <typeinfo>

using namespace TestSupport;
using mql::Array;
using mql::operator""_s;
using namespace std::string_literals;
using Seen = std::tuple<size_t, size_t, long long>; // boxes, lines in the log, calls of imports

namespace {

template <class C> std::string Bytes(const C& items) { // as they lie in memory
    return std::string(reinterpret_cast<const char*>(items.data()), items.size() * sizeof(items[0]));
}

// Each test has an open file; whatever the kit shows (a box, a line in the log) a test must take.
class Kit : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(file.Open(dir / L"file", mql::FILE_READ | mql::FILE_WRITE | kShared));
        Take();
    }
    void TearDown() override {
        mql::resizesBeforeFailure = -1, mql::history = 5000;
        EXPECT_EQ(boxes.Boxes().size() + mql::TakeJournal().size(), 0u)
            << "a box or a line in the log unchecked";
    }
    // What the kit showed and how often it called the DLL since the last look.
    Seen Take() {
        const Seen seen(boxes.Boxes().size(), mql::TakeJournal().size(), mql::dllCalls);
        return boxes.Clear(), mql::dllCalls = 0, seen;
    }
    // The one text the kit showed since the last look, a box or a line in the log; else how many.
    std::wstring Shown() {
        const std::vector<std::u16string> journal = mql::TakeJournal();
        const size_t n = journal.size() + boxes.Boxes().size();
        const std::wstring text = n != 1            ? L"(" + std::to_wstring(n) + L" shown)"
                                  : journal.empty() ? boxes.Boxes()[0].text
                                                    : std::wstring(journal[0].begin(), journal[0].end());
        return Take(), text;
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
};

// The content, the lines a reader finds in it after a one-character header, the text that
// TovarinReadStringA/W leave of it (less trailing spaces, tabs, CR and LF). A lone CR or LF belongs to
// its line; text after the last line end is no line.
// clang-format off
const std::tuple<std::wstring, std::vector<std::wstring>, std::wstring> kLines[] = {
    {L"\r\r\na\r\n\r\nb c\rd\ne\r\n", {L"\r", L"a", L"", L"b c\rd\ne"}, L"\r\r\na\r\n\r\nb c\rd\ne"},
    {L"\xE9t\xE9\r\n\xFF\r\nz", {L"\xE9t\xE9", L"\xFF"}, L"\xE9t\xE9\r\n\xFF\r\nz"},
    {L" \t\r\n", {L" \t"}, L""},
    {L"", {}, L""}};
// clang-format on

// The helpers of the library's string-array format: lines read from the pointer on, the pointer left at
// the end, lines written there in one call; and the string reads.
TEST_F(Kit, HelperLinesAndStrings) {
    const mql::mlong h = file.Handle();
    for (const auto& [content, expected, trimmed] : kLines)
        for (const bool wide : {true, false}) {
            SCOPED_TRACE(Narrow(content) + (wide ? " (W)" : " (A)"));
            const auto bytes = [wide](const std::wstring& s) { return wide ? Bytes(s) : Narrow(s, CP_ACP); };
            Array<mql::string> lines{{expected.begin(), expected.end()}}, read;
            std::wstring joined;
            for (const std::wstring& line : expected)
                joined += line + L"\r\n";
            Fill(bytes(L"#" + content), wide ? 2 : 1);
            EXPECT_EQ((wide ? mql::TovarinReadLinesW : mql::TovarinReadLinesA)(h, read), expected.size());
            EXPECT_EQ(read.items, lines.items);
            EXPECT_EQ(mql::FileGetPointer(h), static_cast<mql::mlong>(bytes(L"#" + content).size()));
            EXPECT_EQ((wide ? mql::TovarinWriteLinesW : mql::TovarinWriteLinesA)(h, lines), expected.size());
            EXPECT_EQ(ReadFileBytes(dir / L"file"), bytes(L"#" + content + joined));
            mql::string text = u"old"_s;
            mql::FileSetPointerBegin(h, wide ? 2 : 1);
            EXPECT_TRUE((wide ? mql::TovarinReadStringW : mql::TovarinReadStringA)(h, content.size(), text));
            EXPECT_EQ(text, mql::string(trimmed));
        }
}

// A failure is explained once: by the failing export's box or by a line in the log. Short of memory
// for the lines, the class leaves them in the file for the next call.
TEST_F(Kit, EachHelperFailureIsExplainedOnce) {
    const mql::mlong bad = 12345, h = file.Handle();
    const Array<mql::string> one{{u"a"_s}};
    Array<mql::string> lines;
    Array<mql::uchar> ansi = Array<mql::uchar>::Static(3, {});
    mql::string text;
    const auto sized = [&](unsigned long long size) { return mql::FileResize(h, size), h; };
    const auto shortOfMemory = [&](int resizes) {
        return Fill("a\r\nb\r\n", 0), mql::resizesBeforeFailure = resizes, h;
    };
    int row = 0; // each call, its result, a piece of the one box or line in the log that explains it
    const auto once = [&](unsigned long long got, unsigned long long result, const wchar_t* why) {
        SCOPED_TRACE(testing::Message() << "row " << row++);
        EXPECT_EQ(got, result);
        EXPECT_HAS(Shown(), why);
    };
    once(mql::TovarinReadLinesW(bad, lines), ~0ull, L"FileSetPointerCurrent");
    once(mql::TovarinWriteLinesW(bad, one), ~0ull, L"FileWriteStringW");
    once(mql::TovarinWriteLinesA(bad, one), ~0ull, L"FileWriteVoid");
    once(mql::TovarinReadStringA(bad, 4, text), 0, L"FileReadVoid");
    once(mql::TovarinReadStringW(bad, 4, text), 0, L"FileReadUShortArray");
    once(mql::TovarinReadLinesW(sized((4ull << 30) + 6), lines), ~0ull, L"2 GiB");
    once(mql::TovarinReadStringA(h, 3ull << 30, text), 0, L"2 GiB");
    once(mql::TovarinReadLinesA(shortOfMemory(0), lines), ~0ull, L"cannot resize");
    once(mql::TovarinReadLinesA(shortOfMemory(1), lines), ~0ull, L"cannot resize");
    once(mql::TovarinReadLinesW(shortOfMemory(0), lines), ~0ull, L"cannot resize");
    once(mql::TovarinReadStringA(shortOfMemory(0), 4, text), 0, L"cannot resize");
    once(mql::TovarinAnsi(u"abc"_s, ansi), 0, L"no room");
    EXPECT_EQ(ansi[0], 0); // an empty text when the text and its zero overflow a static array
    once((shortOfMemory(1), file.ReadLines(lines)), ~0ull, L"cannot resize"); // the lines stay in the file
    EXPECT_EQ(file.ReadLines(lines), 2);
}

// The example's OnStart: what it prints, and the file it leaves for the other program.
TEST_F(Kit, ExampleExportsBarsAndHandsOverACopy) {
    namespace example = mql::TovarinExample;
    mql::CommonDataPath = dir.Path();
    const mql::string common = dir.Path() + L"\\Tovarin\\", name = u"\\EUR_USD_H1.bars"_s;
    // The bars, the inbox, whether the copy stays, the last line printed.
    // clang-format off
    const std::tuple<int, mql::string, bool, mql::string> kRuns[] = {
        {1000, u""_s, true, u"Copied to "_s + common + u"Inbox"_s + name},
        {3, common + u"Out"_s, false, u"Copied to "_s + common + u"Out"_s + name},
        {2, common + u"In|box"_s, true, u"Copy to "_s + common + u"In|box"_s + name + u" failed"_s}};
    // clang-format on
    for (const auto& [bars, inbox, keep, last] : kRuns) {
        example::InpBars = bars, example::InpInbox = inbox, example::InpKeepCopy = keep;
        example::OnStart();
        const mql::string written = u""_s + bars + u" bars written to "_s + common + u"Export"_s + name;
        EXPECT_EQ(mql::TakeJournal(), (std::vector<std::u16string>{written, u"Read back: identical", last}));
    }
    EXPECT_HAS(Shown(), L"FileCopyW"); // the last run's box, refusing the name
    EXPECT_FALSE(FileExists(dir / L"Tovarin\\Out\\EUR_USD_H1.bars"));
    // The first run's copy, as a reader of the layout that the example states sees it.
    Array<mql::MqlRates> r;
    ASSERT_EQ(mql::CopyRates(mql::_Symbol, mql::_Period, 0, 1000, r), 1000);
    std::string bytes = "BARS\1\0\0\0\7\0\0\0E\0U\0R\0/\0U\0S\0D\0\xE8\3\0\0"s;
    const size_t kFields[] = {0, 8, 16, 24, 32, 40, 48, 52, 60}; // where MqlRates's fields begin, and its end
    for (size_t f = 0; f + 1 < std::size(kFields); ++f)          // a column a field
        for (const mql::MqlRates& bar : r.items)
            bytes.append(reinterpret_cast<const char*>(&bar) + kFields[f], kFields[f + 1] - kFields[f]);
    EXPECT_EQ(ReadFileBytes(dir / L"Tovarin\\Inbox\\EUR_USD_H1.bars"), bytes);
}

TEST(KitTranslation, KeepsMql5Rules) {
    mql::string a = u"x"_s, b = a;
    b += u"y"_s;
    EXPECT_EQ(a + b, u"xxy"_s); // strings are values
    const int value = 400;      // narrowing keeps the low bits; a number appended to a text, its digits
    EXPECT_EQ(u""_s + mql::mchar(value) + u" "_s + mql::uchar(value), u"-112 144"_s);
    Array<int> dynamic, fixed = Array<int>::Static(3, {}), values = Array<int>::Static(0, {1, 2});
    EXPECT_EQ(mql::ArraySize(dynamic), 0);
    EXPECT_EQ(mql::ArrayResize(dynamic, 5), 5);
    EXPECT_EQ(dynamic[4], int(0xA5A5A5A5));    // new elements are not initialised
    EXPECT_EQ(mql::ArrayResize(fixed, 5), -1); // a static array keeps its size
    EXPECT_EQ(mql::ArraySize(fixed), 3);
    EXPECT_EQ(values[1], 2);
    EXPECT_THROW(values[2], mql::Stop); // an index out of range is a critical error
    EXPECT_THROW(values[-1], mql::Stop);
}

// Every encoding x line end x last line with or without its end x follow mode: the bytes written,
// the lines read, where the reader leaves the pointer, and a follower's partial line read whole later.
TEST_F(Kit, TextInEveryEncodingAndLineEnd) {
    const char* const marks[] = {"", "\xEF\xBB\xBF", "\xFF\xFE", ""};
    const Array<mql::string> lines{{u"Z\u00fcrich;1.5"_s, u""_s, u"a\rb"_s}};
    for (int encoding = 0; encoding < 4; ++encoding)
        for (int bits = 0; bits < 8; ++bits) {
            const bool crlf = bits & 1, ended = bits & 2, follow = bits & 4;
            SCOPED_TRACE(testing::Message() << encoding << crlf << ended << follow);
            const auto encoded = [encoding](const std::wstring& s) { // by the system, not by the kit
                return encoding == TOVARIN_UTF16 ? Bytes(s)
                                                 : Narrow(s, encoding == TOVARIN_CODEPAGE ? 1252 : CP_UTF8);
            };
            const std::wstring end = crlf ? L"\r\n" : L"\n";
            const std::string written =
                marks[encoding] + encoded(L"Z\u00fcrich;1.5" + end + end + L"a\rb" + end);
            const std::string tail = ended ? "" : encoded(L"t\u00e9");
            mql::CTovarinFile reader; // it finds the encoding by its mark, or is told
            mql::FileClear(file.Handle());
            file.SetText(encoding, crlf, 1252);
            EXPECT_EQ(file.WriteLines(lines), 3);
            EXPECT_EQ(ReadFileBytes(dir / L"file"), written);
            Fill(written + tail, int(written.size() + tail.size()));
            ASSERT_TRUE(reader.Open(dir / L"file", mql::FILE_READ | kShared));
            reader.SetText(encoding == TOVARIN_CODEPAGE ? encoding : TOVARIN_UTF8, true, 1252);
            Array<mql::string> read;
            std::vector<mql::string> expected = lines.items;
            if (!ended && !follow)
                expected.push_back(u"t\u00e9"_s);
            EXPECT_EQ(reader.ReadLines(read, follow), int(expected.size()));
            EXPECT_EQ(read.items, expected);
            EXPECT_EQ(reader.Tell(), written.size() + (follow ? 0 : tail.size()));
            if (follow && !ended) { // the writer ends the line, with no second mark
                EXPECT_TRUE(file.WriteLine(u"!"_s));
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

// Every element type: of 2, the lowest value and -1 (cast), the last written alone and the last two
// as a slice, read back as they lie in memory; then a read at the end, refused by the DLL's box.
template <class... T> void RoundTrips(mql::CTovarinFile& file) {
    const auto roundTrip = [&file](auto none) {
        using E = decltype(none);
        SCOPED_TRACE(typeid(E).name());
        Array<E> a, back;
        a.items = {E(2), std::numeric_limits<E>::lowest(), E(-1)}, back.items.resize(3);
        mql::FileClear(file.Handle());
        EXPECT_TRUE(file.Write(a[2]) && file.WriteArray(a, 1, 2) == 2 && file.Seek(0, mql::SEEK_SET_));
        EXPECT_TRUE(file.Read(back[0]) && file.ReadArray(back, 1) == 2);
        EXPECT_EQ(Bytes(back.items), Bytes(a.items).substr(2 * sizeof(E)) + Bytes(a.items).substr(sizeof(E)));
        EXPECT_FALSE(file.Read(back[0]));
    };
    (roundTrip(T()), ...);
}

TEST_F(Kit, EveryElementTypeAndPositionsBeyond4GiB) {
    RoundTrips<bool, mql::mchar, mql::uchar, short, mql::ushort, int, mql::uint, mql::mlong, mql::ulong,
               float, double>(file);
    EXPECT_EQ(std::get<0>(Take()), 11u);
    // Size, Tell and Seek from 4 GiB on, where FileGetSize and FileGetPointer keep 32 bits.
    mql::FileResize(file.Handle(), (5ull << 30) + 3);
    EXPECT_EQ(file.Size(), (5ull << 30) + 3);
    EXPECT_TRUE(file.Seek(-1, mql::SEEK_END_) && file.Tell() == (5ull << 30) + 2);
    EXPECT_TRUE(file.Seek(-(4ll << 30), mql::SEEK_CUR_) && file.Tell() == (1ull << 30) + 2);
    EXPECT_TRUE(file.Seek(-10, mql::SEEK_SET_) && file.Tell() == 0); // before the start: to it
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
}

// Open maps MQL5's flags as FileOpen does, the destructor closes (the second call), and a path that
// the library would refuse costs a line in the log, not a box.
TEST_F(Kit, OpenFlagsAndClose) {
    const std::wstring path = dir / L"sub\\o.txt";
    // The flags, the file's bytes before and after ("-": no file), what the open and the close showed.
    const std::tuple<int, std::string, std::string, Seen> kOpens[] = {
        {mql::FILE_READ, "-", "-", {1, 0, 1}},                  // reading alone needs the file
        {mql::FILE_READ | mql::FILE_WRITE, "-", "", {0, 0, 2}}, // both make it, and its folder
        {mql::FILE_READ | mql::FILE_WRITE, "abc", "abc", {0, 0, 2}},
        {mql::FILE_WRITE, "abc", "", {0, 0, 2}}, // writing alone empties it
        {0, "abc", "abc", {0, 1, 0}},
    };
    for (const auto& [flags, before, after, seen] : kOpens) {
        SCOPED_TRACE(flags);
        if (before != "-")
            WriteFileBytes(path, before);
        EXPECT_EQ(mql::CTovarinFile().Open(path, flags), std::get<2>(seen) == 2);
        EXPECT_EQ(Take(), seen);
        EXPECT_EQ(FileExists(path) ? ReadFileBytes(path) : "-", after);
    }
    EXPECT_FALSE(mql::CTovarinFile().Open(dir / L"bad?.txt", mql::FILE_WRITE));
    EXPECT_EQ(Take(), Seen(0, 1, 0));
}

TEST_F(Kit, PathCheckAgreesWithTheLibrary) {
    const std::wstring base = dir.Path() + L"\\";
    std::vector<std::wstring> paths = {L"C:a.txt", L"\\a.txt", L"a.txt",         L"Files\\a.txt",
                                       L"1:\\a",   L"a<b:\\c", L"\\\\?\\C:\\a?", L"C:\\a|b"};
    paths.push_back(L"\\\\?\\" + base + std::wstring(300, L'n')); // the long form has no limit
    for (const wchar_t* name : {L"a.txt", L"a*.txt", L"a?b", L"x/y", L"a.", L"a ", L"con\\a", L"Con\\a",
                                L"a\\AUX", L"aux", L"COM10", L"LPT9", L"nul.txt"})
        paths.push_back(base + name);
    for (const size_t n : {255, 256}) // the longest path, and one character more
        paths.push_back(base + std::wstring(n - base.size(), L'n'));
    const std::pair<const char16_t*, const wchar_t*> kReasons[] = {
        {u"forbidden", L"запрещённый символ"}, {u"at the end", L"Пробел в конце пути"},
        {u"longer than 255", L"Боле 255"},     {u"reserved", L"зарезервированное"},
        {u"absolute", L"Путь не абсолютный"},
    };
    for (const std::wstring& path : paths) {
        const std::u16string why = mql::TovarinPathProblem(path);
        mql::FileDeleteW(path); // nothing is there: an accepted path fails later, by another text
        const std::wstring box = Shown();
        std::string mine, library; // which of the reasons each gives
        for (const auto& [kit, dll] : kReasons)
            mine += why.find(kit) != why.npos ? "1" : "0", library += box.find(dll) != box.npos ? "1" : "0";
        EXPECT_EQ(mine, library) << Narrow(path) << "\n" << Narrow(box);
        EXPECT_EQ(why.empty(), library == "00000") << Narrow(path);
    }
}

// The signal writer and its follower side by side: the follower prints every line the writer
// completes, once, in order, and nothing before the file exists; a bad path stops OnInit quietly.
TEST_F(Kit, FollowerPrintsWhatTheWriterWrites) {
    namespace writer = mql::TovarinSignalWriter;
    namespace follower = mql::TovarinSignalFollower;
    mql::CommonDataPath = dir.Path();
    writer::InpPath = u"D:signals.csv"_s;
    EXPECT_EQ(writer::OnInit(), mql::INIT_PARAMETERS_INCORRECT);
    EXPECT_HAS(Shown(), L"not absolute");
    writer::InpPath = u""_s;
    ASSERT_EQ(follower::OnInit(), mql::INIT_SUCCEEDED);
    follower::OnTimer();
    ASSERT_EQ(writer::OnInit(), mql::INIT_SUCCEEDED);
    for (int bar = 0; bar < 3; ++bar, ++mql::history) // a line a bar; the writer restarts in between
        writer::OnTick(), writer::OnTick(), follower::OnTimer(), writer::OnDeinit(0), writer::OnInit();
    writer::OnDeinit(0), follower::OnDeinit(0);
    const std::vector<std::u16string> printed = mql::TakeJournal();
    std::u16string lines = u"time,symbol,signal,close\r\n"; // the header, then what the follower printed
    for (const std::u16string& line : printed)
        lines += line.substr(8) + u"\r\n"; // less "Signal: "
    EXPECT_EQ(printed.size(), 3u);
    EXPECT_EQ(ReadFileBytes(dir / L"Tovarin\\signals.csv"), Narrow({lines.begin(), lines.end()}));
}

// The records example: a count and the bars, a count and the ticks, as they lie in memory, each array
// in one call; the class reads them back whole.
TEST_F(Kit, RecordsWrittenAsTheyLieInMemory) {
    mql::CommonDataPath = dir.Path();
    mql::TovarinRecords::InpBars = 100, mql::TovarinRecords::InpTicks = 50;
    mql::TovarinRecords::OnStart();
    EXPECT_EQ(Take(), Seen(0, 1, 6)); // the open, two counts, two arrays, the close; the line it prints
    Array<mql::MqlRates> rates;
    Array<mql::MqlTick> ticks;
    mql::CopyRates(mql::_Symbol, mql::_Period, 0, 100, rates);
    mql::CopyTicks(mql::_Symbol, ticks, mql::COPY_TICKS_ALL, 0, 50);
    const std::string barBytes = Bytes(rates.items), tickBytes = Bytes(ticks.items);
    EXPECT_TRUE(ReadFileBytes(dir / L"Tovarin\\records.bin") ==
                "d\0\0\0"s + barBytes + "2\0\0\0"s + tickBytes);
    int bars = 0, count = 0;
    rates.items.assign(100, {}), ticks.items.assign(50, {});
    ASSERT_TRUE(file.Open(dir / L"Tovarin\\records.bin", mql::FILE_READ));
    EXPECT_TRUE(file.Read(bars) && file.ReadArray(rates) == 100 && file.Read(count) &&
                file.ReadArray(ticks) == 50);
    EXPECT_TRUE(Bytes(rates.items) == barBytes && Bytes(ticks.items) == tickBytes);
}

} // namespace
