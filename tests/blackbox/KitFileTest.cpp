// CTovarinFile, the path check (TovarinFile.mqh) and the examples that use them,
// translated to C++ by tests/mql5/translate.py and run against the built DLL.
#include "TovarinFile.mqh.h"
#include "TovarinRecords.mq5.h"
#include "TovarinSignalFollower.mq5.h"
#include "TovarinSignalWriter.mq5.h"

const int kShared = mql::FILE_SHARE_READ | mql::FILE_SHARE_WRITE; // before <windows.h> has macros of these names

#include "support/BoxRecorder.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <array>
#include <tuple>
#include <typeinfo>

using namespace TestSupport;
using mql::Array;
using mql::operator""_s;

namespace {

mql::string Text(const std::wstring& s) { return std::u16string(s.begin(), s.end()); }

// What a test sees of a kit call: boxes, journal lines and DLL calls made since the last look.
struct Watch {
    BoxRecorder boxes;
    long long calls = mql::dllCalls;
    std::tuple<size_t, size_t, long long> Take() {
        const auto seen = std::make_tuple(boxes.Boxes().size(), mql::journal.size(), mql::dllCalls - calls);
        boxes.Clear(), mql::journal.clear(), calls = mql::dllCalls;
        return seen;
    }
};

std::string Encoded(int encoding, const std::u16string& text) {
    if (encoding == TOVARIN_UTF16)
        return std::string(reinterpret_cast<const char*>(text.data()), 2 * text.size());
    const UINT cp = encoding == TOVARIN_CODEPAGE ? 1252 : CP_UTF8;
    const auto* wide = reinterpret_cast<const wchar_t*>(text.data());
    std::string bytes(::WideCharToMultiByte(cp, 0, wide, int(text.size()), nullptr, 0, nullptr, nullptr), '\0');
    ::WideCharToMultiByte(cp, 0, wide, int(text.size()), &bytes[0], int(bytes.size()), nullptr, nullptr);
    return bytes;
}

// Every encoding x line end x last line with or without line end x follow mode: what the writer
// puts on disk, what the reader finds, where it leaves the pointer, and that a follower reads a
// last line whole once its writer has ended it.
TEST(KitFile, TextInEveryEncodingAndLineEnd) {
    Watch watch;
    TempDir dir;
    const std::vector<std::u16string> lines = {u"Z\u00fcrich;1.5", u"", u"a\rb"};
    const char* const marks[] = {"", "\xEF\xBB\xBF", "\xFF\xFE", ""};
    for (int encoding = 0; encoding < 4; ++encoding)
        for (const bool crlf : {true, false})
            for (const bool ended : {true, false})
                for (const bool follow : {false, true}) {
                    SCOPED_TRACE(testing::Message() << encoding << crlf << ended << follow);
                    const std::wstring path = dir / L"t.txt";
                    std::u16string all;
                    for (const auto& line : lines)
                        all += line + (crlf ? u"\r\n" : u"\n");
                    Array<mql::string> in, out;
                    for (const auto& line : lines)
                        in.items.push_back(line);
                    {
                        mql::CTovarinFile writer;
                        ASSERT_TRUE(writer.Open(Text(path), mql::FILE_WRITE));
                        writer.SetText(encoding, crlf, 1252);
                        EXPECT_EQ(writer.WriteLines(in), 3);
                    }
                    const std::string written = marks[encoding] + Encoded(encoding, all);
                    EXPECT_EQ(ReadFileBytes(path), written);
                    const std::string tail = ended ? "" : Encoded(encoding, u"t\u00e9");
                    WriteFileBytes(path, written + tail);
                    mql::CTovarinFile reader; // finds the encoding by the mark, but a code page
                    ASSERT_TRUE(reader.Open(Text(path), mql::FILE_READ | kShared));
                    if (encoding == TOVARIN_CODEPAGE)
                        reader.SetText(encoding, true, 1252);
                    std::vector<std::u16string> expected = lines;
                    if (!ended && !follow)
                        expected.push_back(u"t\u00e9");
                    EXPECT_EQ(reader.ReadLines(out, follow), int(expected.size()));
                    std::vector<std::u16string> read;
                    for (const auto& s : out.items)
                        read.push_back(s.text);
                    EXPECT_EQ(read, expected);
                    EXPECT_EQ(reader.Tell(), written.size() + (follow ? 0 : tail.size()));
                    if (follow && !ended) {
                        WriteFileBytes(path, written + tail + Encoded(encoding, u"!\n"));
                        EXPECT_EQ(reader.ReadLines(out, true), 1);
                        EXPECT_EQ(out.items.at(0).text, u"t\u00e9!");
                    }
                }
    EXPECT_EQ(std::get<0>(watch.Take()), 0u);
}

// A writer's batch goes to the DLL in one call per MiB; a reader makes a fixed number of calls.
TEST(KitFile, CallsDoNotGrowWithLines) {
    Watch watch;
    TempDir dir;
    Array<mql::string> lines, back;
    lines.items.assign(100000, u"0123456789012345678901234567890123456789"_s); // 4.1 MB as UTF-8
    mql::CTovarinFile file;
    ASSERT_TRUE(file.Open(Text(dir / L"big.txt"), mql::FILE_READ | mql::FILE_WRITE));
    watch.Take();
    EXPECT_EQ(file.WriteLines(lines), 100000);
    EXPECT_LE(std::get<2>(watch.Take()), (100000 * 42 >> 20) + 1); // one call per MiB, and the rest
    ASSERT_TRUE(file.Seek(0, mql::SEEK_SET_));
    EXPECT_EQ(file.ReadLines(back), 100000);
    EXPECT_EQ(back.items.back(), lines.items.back());
    EXPECT_LE(std::get<2>(watch.Take()), 10);
    EXPECT_EQ(mql::TovarinWriteLinesW(file.Handle(), lines), 100000u);
    EXPECT_LE(std::get<2>(watch.Take()), (100000 * 84 >> 20) + 1);
    EXPECT_EQ(mql::TovarinWriteLinesA(file.Handle(), lines), 100000u);
    EXPECT_LE(std::get<2>(watch.Take()), (100000 * 42 >> 20) + 1);
}

// Every element type: a value and an array slice written, read back, the same bytes as in memory.
template <class T> void RoundTrip(mql::CTovarinFile& file, const std::array<T, 3>& values) {
    SCOPED_TRACE(typeid(T).name());
    Array<T> a, back;
    a.items.assign(values.begin(), values.end());
    back.items.resize(values.size());
    ASSERT_TRUE(file.Seek(0, mql::SEEK_SET_));
    EXPECT_TRUE(file.Write(T(values[2])));
    EXPECT_EQ(file.WriteArray(a, 1, 2), 2);
    EXPECT_EQ(file.Size(), 3 * sizeof(T));
    ASSERT_TRUE(file.Seek(0, mql::SEEK_SET_));
    T one = T(values[0]);
    EXPECT_TRUE(file.Read(one));
    EXPECT_EQ(file.ReadArray(back, 0, 2), 2);
    EXPECT_TRUE(memcmp(&one, &values[2], sizeof(T)) == 0 && memcmp(back.Data(), &a.Data()[1], 2 * sizeof(T)) == 0);
    EXPECT_FALSE(file.Read(one)); // at the end: the DLL's box
    file.Seek(0, mql::SEEK_SET_), mql::FileResize(file.Handle(), 0);
}

TEST(KitFile, EveryElementTypeAndStructureArray) {
    Watch watch;
    TempDir dir;
    mql::CTovarinFile file;
    ASSERT_TRUE(file.Open(Text(dir / L"bin"), mql::FILE_READ | mql::FILE_WRITE | kShared));
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
    EXPECT_EQ(std::get<0>(watch.Take()), 11u);
    Array<mql::MqlRates> rates, ratesBack;
    ASSERT_EQ(mql::CopyRates(mql::_Symbol, mql::_Period, 0, 50, rates), 50);
    Array<mql::MqlTick> ticks, ticksBack;
    ticks.items.resize(3);
    ticks.items[1] = {1704067200, 1.1, 1.2, 1.15, 7, 1704067200123, 6, 0.5};
    EXPECT_EQ(file.WriteArray(rates), 50);
    EXPECT_EQ(file.WriteArray(ticks), 3);
    EXPECT_EQ(std::get<2>(watch.Take()), 2);
    EXPECT_TRUE(ReadFileBytes(dir / L"bin") == std::string(reinterpret_cast<const char*>(rates.Data()), 3000) +
                                               std::string(reinterpret_cast<const char*>(ticks.Data()), 180));
    ratesBack.items.resize(50), ticksBack.items.resize(3);
    file.Seek(0, mql::SEEK_SET_);
    EXPECT_EQ(file.ReadArray(ratesBack) + file.ReadArray(ticksBack), 53);
    EXPECT_EQ(memcmp(ticksBack.Data(), ticks.Data(), 180) + memcmp(ratesBack.Data(), rates.Data(), 3000), 0);
}

// A slice outside the array, or no open file, is refused in MQL5: a line in the log, no DLL call.
TEST(KitFile, BadSlicesNeverReachTheDll) {
    Watch watch;
    TempDir dir;
    mql::CTovarinFile file, closed;
    ASSERT_TRUE(file.Open(Text(dir / L"s"), mql::FILE_READ | mql::FILE_WRITE));
    Array<double> a = Array<double>::Static(3, {1, 2, 3});
    const int kSlices[][2] = {{-1, 1}, {4, mql::WHOLE_ARRAY}, {0, 4}, {2, 2}, {1, -2}, {3, 1}, {INT_MAX, 2}};
    watch.Take();
    for (const auto& s : kSlices) {
        SCOPED_TRACE(testing::Message() << s[0] << ", " << s[1]);
        EXPECT_EQ(file.WriteArray(a, s[0], s[1]), -1);
        EXPECT_EQ(file.ReadArray(a, s[0], s[1]), -1);
        EXPECT_EQ(watch.Take(), std::make_tuple(size_t(0), size_t(2), 0LL));
    }
    EXPECT_EQ(file.WriteArray(a, 3, mql::WHOLE_ARRAY) + closed.WriteArray(a) + closed.WriteLines(Array<mql::string>()), -2);
    EXPECT_FALSE(closed.Write(1.0) || closed.Read(a[0]) || closed.Seek(0, mql::SEEK_END_));
    EXPECT_EQ(watch.Take(), std::make_tuple(size_t(0), size_t(5), 0LL));
    EXPECT_EQ(file.Size(), 0u);
}

// Open maps MQL5's flags; a refused path costs a log line, not a box; the destructor closes.
TEST(KitFile, OpenFlagsAndClose) {
    Watch watch;
    TempDir dir;
    const std::wstring path = dir / L"sub\\o.txt";
    const struct {
        int flags;
        bool opens;
        std::string after; // the file's bytes after the open; "-" none
        std::tuple<size_t, size_t, long long> seen;
    } kOpens[] = {
        {mql::FILE_READ, false, "-", {1, 0, 1}},              // reading alone needs the file
        {mql::FILE_READ | mql::FILE_WRITE, true, "", {0, 0, 1}}, // both make it, and its folder
        {mql::FILE_READ, true, "abc", {0, 0, 1}},
        {mql::FILE_READ | mql::FILE_WRITE, true, "abc", {0, 0, 1}},
        {mql::FILE_WRITE, true, "", {0, 0, 1}},                  // writing alone empties it
        {0, false, "abc", {0, 1, 0}},
    };
    for (const auto& o : kOpens) {
        SCOPED_TRACE(o.flags);
        if (o.after == "abc")
            WriteFileBytes(path, "abc");
        watch.Take();
        {
            mql::CTovarinFile file;
            EXPECT_EQ(file.Open(Text(path), o.flags), o.opens);
            EXPECT_EQ(watch.Take(), o.seen);
        }
        EXPECT_EQ(FileExists(path) ? ReadFileBytes(path) : "-", o.after);
    }
    mql::CTovarinFile again;
    {
        mql::CTovarinFile holder, other;
        ASSERT_TRUE(holder.Open(Text(path), mql::FILE_WRITE)); // shares nothing
        EXPECT_FALSE(other.Open(Text(path), mql::FILE_READ | kShared));
        watch.Take();
        EXPECT_FALSE(again.Open(Text(dir / L"bad?.txt"), mql::FILE_WRITE));
        EXPECT_EQ(watch.Take(), std::make_tuple(size_t(0), size_t(1), 0LL));
    }
    EXPECT_TRUE(again.Open(Text(path), mql::FILE_READ)); // the destructor closed the holder's file
}

// Size, Tell and Seek beyond 4 GiB, where FileGetSize and FileGetPointer keep 32 bits.
TEST(KitFile, PositionsBeyondFourGiB) {
    Watch watch;
    TempDir dir;
    mql::CTovarinFile file;
    ASSERT_TRUE(file.Open(Text(dir / L"huge"), mql::FILE_READ | mql::FILE_WRITE));
    const mql::ulong size = (5ull << 30) + 3;
    mql::FileResize(file.Handle(), size);
    EXPECT_EQ(file.Size(), size);
    EXPECT_TRUE(file.Seek(-1, mql::SEEK_END_));
    EXPECT_EQ(file.Tell(), size - 1);
    EXPECT_TRUE(file.Seek(-(4ll << 30), mql::SEEK_CUR_));
    EXPECT_EQ(file.Tell(), (1ull << 30) + 2);
    EXPECT_TRUE(file.Seek(-10, mql::SEEK_SET_));
    EXPECT_EQ(file.Tell(), 0u);
    EXPECT_EQ(std::get<0>(watch.Take()), 0u);
}

// The path check in MQL5 and the DLL's own verdict agree on every row, for the same reason.
TEST(KitFile, PathCheckAgreesWithTheLibrary) {
    TempDir dir;
    const std::u16string base = Text(dir.Path()).text + u"\\";
    const std::u16string kPaths[] = {
        base + u"a.txt", base + u"a*.txt", base + u"a?b", base + u"x/y", base + u"a.", base + u"a ",
        base + u"con\\a", base + u"Con\\a", base + u"a\\AUX", base + u"aux", base + u"COM10", base + u"LPT9",
        base + u"nul.txt", u"C:a.txt", u"\\a.txt", u"a.txt", u"Files\\a.txt", u"1:\\a", u"\\\\?\\" + base + u"b",
        base + std::u16string(255 - base.size(), u'n'), base + std::u16string(256 - base.size(), u'n'),
        u"\\\\?\\" + base + std::u16string(300, u'n'), u"\\\\?\\C:\\a?", u"a<b:\\c", u"C:\\a|b",
    };
    const std::pair<const char16_t*, const wchar_t*> kReasons[] = {
        {u"forbidden", L"запрещённый символ"}, {u"at the end", L"Пробел в конце пути"}, {u"longer than 255", L"Боле 255"},
        {u"reserved", L"зарезервированное"},   {u"absolute", L"Путь не абсолютный"},
    };
    BoxRecorder boxes;
    for (const std::u16string& path : kPaths) {
        SCOPED_TRACE(Narrow(std::wstring(path.begin(), path.end())));
        const std::u16string why = mql::TovarinPathProblem(path).text;
        mql::FileDeleteW(path); // nothing is there: an accepted path fails later, by another text
        const std::wstring box = boxes.Boxes().empty() ? L"" : boxes.Boxes()[0].text;
        bool refused = false;
        for (const auto& [mine, library] : kReasons) {
            refused |= box.find(library) != std::wstring::npos;
            EXPECT_EQ(why.find(mine) != std::u16string::npos, box.find(library) != std::wstring::npos)
                << Narrow(box) << "\n" << Narrow(std::wstring(why.begin(), why.end()));
        }
        EXPECT_EQ(why.empty(), !refused);
        boxes.Clear();
    }
}

// The signal writer and its follower run side by side: the follower prints every line the writer
// completes, once, in order, and nothing before the file exists; a bad path stops OnInit quietly.
TEST(KitExamples, FollowerPrintsWhatTheWriterWrites) {
    namespace writer = mql::TovarinSignalWriter;
    namespace follower = mql::TovarinSignalFollower;
    Watch watch;
    TempDir dir;
    mql::CommonDataPath = Text(dir.Path());
    writer::InpPath = u"D:signals.csv"_s;
    EXPECT_EQ(writer::OnInit(), mql::INIT_PARAMETERS_INCORRECT);
    EXPECT_EQ(watch.Take(), std::make_tuple(size_t(0), size_t(1), 0LL));
    writer::InpPath = follower::InpPath = u""_s;
    ASSERT_EQ(follower::OnInit(), mql::INIT_SUCCEEDED);
    follower::OnTimer();
    ASSERT_EQ(writer::OnInit(), mql::INIT_SUCCEEDED);
    for (int bar = 0; bar < 3; ++bar, ++mql::history) {
        writer::OnTick(), writer::OnTick(); // one line a bar
        follower::OnTimer();
    }
    writer::OnDeinit(0), follower::OnDeinit(0);
    mql::history = 5000;
    const std::vector<std::u16string> printed = mql::TakeJournal();
    std::vector<std::u16string> written;
    const std::string bytes = ReadFileBytes(dir / L"Tovarin\\signals.csv");
    for (size_t from = 0, end; (end = bytes.find("\r\n", from)) != std::string::npos; from = end + 2)
        written.push_back(u"Signal: " + std::u16string(bytes.begin() + from, bytes.begin() + end));
    ASSERT_EQ(written.size(), 4u);
    EXPECT_EQ(written[0], u"Signal: time,symbol,signal,close");
    EXPECT_EQ(printed, std::vector<std::u16string>(written.begin() + 1, written.end()));
    EXPECT_EQ(std::get<0>(watch.Take()), 0u);
}

// The records example: two counts and two arrays of records as they lie in memory.
TEST(KitExamples, RecordsWrittenAsTheyLieInMemory) {
    Watch watch;
    TempDir dir;
    mql::CommonDataPath = Text(dir.Path());
    mql::TovarinRecords::InpBars = 100, mql::TovarinRecords::InpTicks = 50;
    mql::TovarinRecords::OnStart();
    Array<mql::MqlRates> rates;
    Array<mql::MqlTick> ticks;
    ASSERT_EQ(mql::CopyRates(mql::_Symbol, mql::_Period, 0, 100, rates) + mql::CopyTicks(mql::_Symbol, ticks, mql::COPY_TICKS_ALL, 0, 50), 150);
    const std::string expected = std::string("\x64\0\0\0", 4) + std::string(reinterpret_cast<const char*>(rates.Data()), 6000) +
                                 std::string("\x32\0\0\0", 4) + std::string(reinterpret_cast<const char*>(ticks.Data()), 3000);
    EXPECT_TRUE(ReadFileBytes(dir / L"Tovarin\\records.bin") == expected);
    EXPECT_EQ(mql::TakeJournal(), std::vector<std::u16string>{u"100 bars and 50 ticks written to " + Text(dir / L"Tovarin\\records.bin").text});
    EXPECT_EQ(std::get<0>(watch.Take()), 0u);
}

} // namespace
