// CTovarinFile, the path check (TovarinFile.mqh) and the examples that use them, translated to C++ by
// tests/mql5/translate.py and run against the built DLL. The translations come first: no Windows macro.
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
void PrintTo(const string& s, std::ostream* out); // KitTest.cpp's
}

using namespace TestSupport;
using mql::Array;
using mql::operator""_s;
using Seen = std::tuple<size_t, size_t, long long>;

namespace {

mql::string Text(const std::wstring& s) {
    return std::u16string(s.begin(), s.end());
}
template <class T> std::string Bytes(const Array<T>& a) {
    return std::string(reinterpret_cast<const char*>(a.Data()), a.items.size() * sizeof(T));
}

// What the kit's calls showed since the last look: boxes, journal lines, and calls of imports.
struct Watch {
    BoxRecorder boxes;
    long long calls = mql::dllCalls;
    Seen Take() {
        const Seen seen(boxes.Boxes().size(), mql::TakeJournal().size(), mql::dllCalls - calls);
        return boxes.Clear(), calls = mql::dllCalls, seen;
    }
};

std::string Encoded(int encoding, const std::u16string& text) {
    if (encoding == TOVARIN_UTF16)
        return std::string(reinterpret_cast<const char*>(text.data()), 2 * text.size());
    const auto* wide = reinterpret_cast<const wchar_t*>(text.data());
    const UINT cp = encoding == TOVARIN_CODEPAGE ? 1252 : CP_UTF8;
    std::string bytes(3 * text.size(), '\0');
    bytes.resize(
        ::WideCharToMultiByte(cp, 0, wide, int(text.size()), &bytes[0], int(bytes.size()), nullptr, nullptr));
    return bytes;
}

// Every encoding x line end x last line with or without its end x follow mode: the bytes written,
// the lines read, where the reader leaves the pointer, and a follower's partial line read whole later.
TEST(KitFile, TextInEveryEncodingAndLineEnd) {
    Watch watch;
    TempDir dir;
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
    EXPECT_EQ(std::get<0>(watch.Take()), 0u);
}

// A writer hands the DLL a call per MiB, the class's reader a fixed number of calls per read.
TEST(KitFile, CallsDoNotGrowWithLines) {
    Watch watch;
    TempDir dir;
    Array<mql::string> lines, back;
    lines.items.assign(100000, u"0123456789012345678901234567890123456789"_s);
    mql::CTovarinFile file;
    ASSERT_TRUE(file.Open(Text(dir / L"big.txt"), mql::FILE_READ | mql::FILE_WRITE));
    watch.Take();
    EXPECT_EQ(file.WriteLines(lines), 100000);
    EXPECT_LE(std::get<2>(watch.Take()), (100000 * 42 >> 20) + 1);
    ASSERT_TRUE(file.Seek(0, mql::SEEK_SET_));
    EXPECT_EQ(file.ReadLines(back), 100000);
    EXPECT_EQ(back.items.back(), lines.items.back());
    EXPECT_LE(std::get<2>(watch.Take()), 10);
    EXPECT_EQ(mql::TovarinWriteLinesW(file.Handle(), lines), 100000u);
    EXPECT_LE(std::get<2>(watch.Take()), (100000 * 84 >> 20) + 1);
    EXPECT_EQ(mql::TovarinWriteLinesA(file.Handle(), lines), 100000u);
    EXPECT_LE(std::get<2>(watch.Take()), (100000 * 42 >> 20) + 1);
}

// Every element type: a value and a slice written, read back, the bytes as in memory; then the end.
template <class T> void RoundTrip(mql::CTovarinFile& file, const std::array<T, 3>& values) {
    SCOPED_TRACE(typeid(T).name());
    Array<T> a, back;
    a.items.assign(values.begin(), values.end()), back.items.resize(2);
    file.Seek(0, mql::SEEK_SET_), mql::FileResize(file.Handle(), 0);
    EXPECT_TRUE(file.Write(T(values[2])));
    EXPECT_EQ(file.WriteArray(a, 1, 2), 2);
    EXPECT_EQ(file.Size(), 3 * sizeof(T));
    T one = T(values[0]);
    EXPECT_TRUE(file.Seek(0, mql::SEEK_SET_) && file.Read(one) && file.ReadArray(back) == 2);
    EXPECT_TRUE(memcmp(&one, &values[2], sizeof(T)) == 0 &&
                memcmp(back.Data(), &values[1], 2 * sizeof(T)) == 0);
    EXPECT_FALSE(file.Read(one)); // the DLL's box
}

TEST(KitFile, EveryElementTypeStructureArraysAndPositionsBeyond4GiB) {
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
    // Whole arrays of bars and ticks in one call each, 60 bytes a record.
    Array<mql::MqlRates> rates, ratesBack;
    Array<mql::MqlTick> ticks, ticksBack;
    ASSERT_EQ(mql::CopyRates(mql::_Symbol, mql::_Period, 0, 50, rates), 50);
    ASSERT_EQ(mql::CopyTicks(mql::_Symbol, ticks, mql::COPY_TICKS_ALL, 0, 3), 3);
    file.Seek(0, mql::SEEK_SET_), mql::FileResize(file.Handle(), 0);
    watch.Take();
    EXPECT_EQ(file.WriteArray(rates) + file.WriteArray(ticks), 53);
    EXPECT_EQ(watch.Take(), Seen(0, 0, 2));
    EXPECT_TRUE(ReadFileBytes(dir / L"bin") == Bytes(rates) + Bytes(ticks));
    ratesBack.items.resize(50), ticksBack.items.resize(3);
    EXPECT_EQ(file.Seek(0, mql::SEEK_SET_) + file.ReadArray(ratesBack) + file.ReadArray(ticksBack), 54);
    EXPECT_TRUE(Bytes(ratesBack) == Bytes(rates) && Bytes(ticksBack) == Bytes(ticks));
    // Size, Tell and Seek from 4 GiB on, where FileGetSize and FileGetPointer keep 32 bits.
    mql::FileResize(file.Handle(), (5ull << 30) + 3);
    EXPECT_EQ(file.Size(), (5ull << 30) + 3);
    EXPECT_TRUE(file.Seek(-1, mql::SEEK_END_));
    EXPECT_EQ(file.Tell(), (5ull << 30) + 2);
    EXPECT_TRUE(file.Seek(-(4ll << 30), mql::SEEK_CUR_));
    EXPECT_EQ(file.Tell(), (1ull << 30) + 2);
    EXPECT_TRUE(file.Seek(-10, mql::SEEK_SET_));
    EXPECT_EQ(file.Tell(), 0u);
    EXPECT_EQ(std::get<0>(watch.Take()), 0u);
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
        EXPECT_EQ(file.WriteArray(a, s[0], s[1]) + file.ReadArray(a, s[0], s[1]), -2);
        EXPECT_EQ(watch.Take(), Seen(0, 2, 0));
    }
    EXPECT_EQ(file.WriteArray(a, 3) + closed.WriteArray(a) + closed.WriteLines(Array<mql::string>()), -2);
    EXPECT_FALSE(closed.Write(1.0) || closed.Read(a[0]) || closed.Seek(0, mql::SEEK_END_));
    EXPECT_EQ(watch.Take(), Seen(0, 5, 0));
    EXPECT_EQ(file.Size(), 0u);
    // No memory for the lines read: -1, a line in the log, and the lines left for the next call.
    Array<mql::string> read;
    file.WriteLine(u"a"_s), file.Seek(0, mql::SEEK_SET_), watch.Take(), mql::resizesBeforeFailure = 0;
    EXPECT_EQ(file.ReadLines(read), -1);
    EXPECT_EQ(std::get<1>(watch.Take()), 1u);
    EXPECT_EQ(file.Tell(), 0u);
    EXPECT_EQ(file.ReadLines(read), 1);
}

// Open maps MQL5's flags as FileOpen does, the destructor closes (the second call), and a path that
// the library would refuse costs a line in the log, not a box.
TEST(KitFile, OpenFlagsAndClose) {
    Watch watch;
    TempDir dir;
    const std::wstring path = dir / L"sub\\o.txt";
    const struct {
        int flags;
        std::string before, after; // the file's bytes, "-": no file
        Seen seen;                 // boxes, log lines and DLL calls of the open and the close
    } kOpens[] = {
        {mql::FILE_READ, "-", "-", {1, 0, 1}},                  // reading alone needs the file
        {mql::FILE_READ | mql::FILE_WRITE, "-", "", {0, 0, 2}}, // both make it, and its folder
        {mql::FILE_READ, "abc", "abc", {0, 0, 2}},
        {mql::FILE_READ | mql::FILE_WRITE, "abc", "abc", {0, 0, 2}},
        {mql::FILE_WRITE, "abc", "", {0, 0, 2}}, // writing alone empties it
        {0, "abc", "abc", {0, 1, 0}},
    };
    for (const auto& o : kOpens) {
        SCOPED_TRACE(o.flags);
        if (o.before != "-")
            WriteFileBytes(path, o.before);
        watch.Take();
        EXPECT_EQ(mql::CTovarinFile().Open(Text(path), o.flags), std::get<2>(o.seen) == 2);
        EXPECT_EQ(watch.Take(), o.seen);
        EXPECT_EQ(FileExists(path) ? ReadFileBytes(path) : "-", o.after);
    }
    EXPECT_FALSE(mql::CTovarinFile().Open(Text(dir / L"bad?.txt"), mql::FILE_WRITE));
    EXPECT_EQ(watch.Take(), Seen(0, 1, 0));
}

// The path check in MQL5 and the DLL's own verdict agree on every row, for the same reason.
TEST(KitFile, PathCheckAgreesWithTheLibrary) {
    TempDir dir;
    const std::u16string base = Text(dir.Path()).text + u"\\";
    const char16_t* const kNames[] = {u"a.txt",  u"a*.txt", u"a?b", u"x/y",   u"a.",   u"a ",     u"con\\a",
                                      u"Con\\a", u"a\\AUX", u"aux", u"COM10", u"LPT9", u"nul.txt"};
    std::vector<std::u16string> paths = {u"C:a.txt", u"\\a.txt",       u"a.txt",   u"Files\\a.txt",
                                         u"1:\\a",   u"\\\\?\\C:\\a?", u"a<b:\\c", u"C:\\a|b"};
    for (const char16_t* name : kNames)
        paths.push_back(base + name);
    for (const size_t n : {255, 256}) // the longest path, and one character more
        paths.push_back(base + std::u16string(n - base.size(), u'n'));
    paths.push_back(u"\\\\?\\" + base + std::u16string(300, u'n')); // the long form has no limit
    const std::pair<const char16_t*, const wchar_t*> kReasons[] = {
        {u"forbidden", L"запрещённый символ"}, {u"at the end", L"Пробел в конце пути"},
        {u"longer than 255", L"Боле 255"},     {u"reserved", L"зарезервированное"},
        {u"absolute", L"Путь не абсолютный"},
    };
    BoxRecorder boxes;
    for (const std::u16string& path : paths) {
        SCOPED_TRACE(Narrow(std::wstring(path.begin(), path.end())));
        const std::u16string why = mql::TovarinPathProblem(path).text;
        mql::FileDeleteW(path); // nothing is there: an accepted path fails later, by another text
        const std::wstring box = boxes.Boxes().empty() ? L"" : boxes.Boxes()[0].text;
        bool refused = false;
        for (const auto& [mine, library] : kReasons) {
            refused |= box.find(library) != std::wstring::npos;
            EXPECT_EQ(why.find(mine) != std::u16string::npos, box.find(library) != std::wstring::npos)
                << Narrow(box) << "\n"
                << Narrow(std::wstring(why.begin(), why.end()));
        }
        EXPECT_EQ(why.empty(), !refused);
        boxes.Clear();
    }
}

// The signal writer and its follower side by side: the follower prints every line the writer
// completes, once, in order, and nothing before the file exists; a bad path stops OnInit quietly.
TEST(KitExamples, FollowerPrintsWhatTheWriterWrites) {
    namespace writer = mql::TovarinSignalWriter;
    namespace follower = mql::TovarinSignalFollower;
    Watch watch;
    TempDir dir;
    mql::CommonDataPath = Text(dir.Path());
    writer::InpPath = u"D:signals.csv"_s;
    EXPECT_EQ(writer::OnInit(), mql::INIT_PARAMETERS_INCORRECT);
    EXPECT_EQ(watch.Take(), Seen(0, 1, 0));
    writer::InpPath = u""_s;
    ASSERT_EQ(follower::OnInit(), mql::INIT_SUCCEEDED);
    follower::OnTimer();
    ASSERT_EQ(writer::OnInit(), mql::INIT_SUCCEEDED);
    for (int bar = 0; bar < 3; ++bar, ++mql::history)
        writer::OnTick(), writer::OnTick(), follower::OnTimer(); // a line a bar
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

// The records example: a count and the bars, a count and the ticks, as they lie in memory.
TEST(KitExamples, RecordsWrittenAsTheyLieInMemory) {
    Watch watch;
    TempDir dir;
    mql::CommonDataPath = Text(dir.Path());
    mql::TovarinRecords::InpBars = 100, mql::TovarinRecords::InpTicks = 50;
    mql::TovarinRecords::OnStart();
    Array<mql::MqlRates> rates;
    Array<mql::MqlTick> ticks;
    mql::CopyRates(mql::_Symbol, mql::_Period, 0, 100, rates),
        mql::CopyTicks(mql::_Symbol, ticks, mql::COPY_TICKS_ALL, 0, 50);
    EXPECT_TRUE(ReadFileBytes(dir / L"Tovarin\\records.bin") ==
                std::string("d\0\0\0", 4) + Bytes(rates) + std::string("2\0\0\0", 4) + Bytes(ticks));
    EXPECT_EQ(mql::TakeJournal(), std::vector<std::u16string>{u"100 bars and 50 ticks written to " +
                                                              Text(dir / L"Tovarin\\records.bin").text});
    EXPECT_EQ(std::get<0>(watch.Take()), 0u);
}

} // namespace
