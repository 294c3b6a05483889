// Values through open files: scalars by type and bytes, array slices by type, texts and their
// trims, string arrays and host records in all four forms, short reads.
#include "support/Exports.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>

using namespace TestSupport;

namespace {

class Data : public testing::Test {
public:
    void SetUp() override {
        h = TOVARIN_FN(FileCreateAlwaysW)(path.c_str(), TOVARIN_DEFAULT, TOVARIN_DEFAULT);
        ASSERT_NE(h, nullptr);
    }
    void TearDown() override { TOVARIN_FN(FileCloseHandle)(h); }
    std::string Bytes() {
        TOVARIN_FN(FileFlushApply)(h);
        return ReadFileBytes(path);
    }
    void Rewind() { EXPECT_EQ(TOVARIN_FN(FileSetPointerBegin)(h, 0), 0); }
    void Reset() { TOVARIN_FN(FileClear)(h); }
    TempDir dir;
    const std::wstring path = dir / L"data.bin";
    BoxRecorder boxes;
    void* h = nullptr;
};

// A scalar goes out as exactly `bytes` and comes back; elements 1.. of a 3-element array (count to
// the end) go out and come back into elements 1.. of another, whose element 0 stays untouched.
template <class T, class E>
void RoundTrip(Data& d, int (*write)(void* const, const T), T (*read)(void* const), T value,
               const std::string& bytes, u64 (*writeArray)(void* const, E* const, const u64, const u64, u64),
               u64 (*readArray)(void* const, std::remove_const_t<E>*, const u64, const u64, u64)) {
    SCOPED_TRACE(bytes.size());
    d.Reset();
    EXPECT_EQ(write(d.h, value), static_cast<int>(bytes.size()));
    EXPECT_EQ(d.Bytes(), bytes);
    d.Rewind();
    const T back = read(d.h);
    EXPECT_EQ(std::memcmp(&back, &value, sizeof(T)), 0);
    EXPECT_EQ(TOVARIN_FN(FileGetPointer)(d.h), static_cast<__int64>(sizeof(T)));
    T values[3], into[3];
    std::memset(values, 0, sizeof(T));
    std::memset(&values[1], 0x11, sizeof(T));
    std::memset(&values[2], 0x01, sizeof(T));
    std::memset(into, 0x7F, sizeof(into));
    d.Reset();
    EXPECT_EQ(writeArray(d.h, values, 3, 1, TOVARIN_TO_END), 2u);
    EXPECT_EQ(d.Bytes(), std::string(reinterpret_cast<const char*>(&values[1]), 2 * sizeof(T)));
    d.Rewind();
    EXPECT_EQ(readArray(d.h, into, 3, 1, 5), 2u); // a count past the end is clipped
    EXPECT_EQ(std::memcmp(&into[1], &values[1], 2 * sizeof(T)), 0);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(into), sizeof(T)), std::string(sizeof(T), '\x7F'));
}

TEST_F(Data, EveryTypeAsItsLittleEndianBytesAloneAndInArrays) {
#define TOVARIN_TYPE(Name, Elements, T, value, bytes)                                                        \
    RoundTrip<T>(*this, TOVARIN_FN(FileWrite##Name), TOVARIN_FN(FileRead##Name), value,                      \
                 std::string(bytes, sizeof(T)), TOVARIN_FN(FileWrite##Elements##Array),                      \
                 TOVARIN_FN(FileRead##Elements##Array))
    TOVARIN_TYPE(Boolean, Bool, bool, true, "\x01");
    TOVARIN_TYPE(Char, Char, char, -128, "\x80");
    TOVARIN_TYPE(UChar, UChar, unsigned char, 0xFE, "\xFE");
    TOVARIN_TYPE(Short, Short, short, -2, "\xFE\xFF");
    TOVARIN_TYPE(UShort, UShort, unsigned short, 0xFEDC, "\xDC\xFE");
    TOVARIN_TYPE(Int, Int, int, 1, "\x01\0\0\0");
    TOVARIN_TYPE(UInt, UInt, unsigned int, 0xDEADBEEF, "\xEF\xBE\xAD\xDE");
    TOVARIN_TYPE(Int64, Long, __int64, std::numeric_limits<__int64>::min(), "\0\0\0\0\0\0\0\x80");
    TOVARIN_TYPE(UInt64, ULong, u64, 0x0102030405060708ull, "\x08\x07\x06\x05\x04\x03\x02\x01");
    TOVARIN_TYPE(Flt, Float, float, -2.0f, "\0\0\0\xC0");
    TOVARIN_TYPE(Dbl, Double, double, 1.0, "\0\0\0\0\0\0\xF0\x3F");
#undef TOVARIN_TYPE
    ExpectNoBox(boxes);
}

// A short scalar read returns 0 with the short-read text; a short array read keeps what arrived.
TEST_F(Data, ShortReadsKeepTheBytesThatArrived) {
    TOVARIN_FN(FileWriteShort)(h, 0x0102);
    Rewind();
    EXPECT_EQ(TOVARIN_FN(FileReadInt)(h), 0); // the neutral result, not the two bytes
    ExpectOneBox(boxes, "FileReadInt",
                 {L"Utils::FileHdd::_Read(void *const ,void *,const unsigned __int64)\"!\r\nFile: "
                  L"\"Utils.FileHdd.cpp\"",
                  L"\nНа итерации 0 не прочитаны данные из файла:\n\"" + path +
                      L"\"\nФайловый указатель: 2\nЗапрошено: 4\nПрочитано: 2\n\n"});
    // 4 doubles 12 bytes before the end: the 12 bytes stay in the array.
    Reset();
    const int ints[3] = {7, 8, 9};
    TOVARIN_FN(FileWriteIntArray)(h, const_cast<int*>(ints), 3, 0, 3);
    Rewind();
    double doubles[4] = {-1, -1, -1, -1};
    EXPECT_EQ(TOVARIN_FN(FileReadDoubleArray)(h, doubles, 4, 0, 4), TOVARIN_FAILED_COUNT);
    ExpectOneBox(boxes, "FileReadDoubleArray", {L"Запрошено: 32\nПрочитано: 12"});
    EXPECT_EQ(std::memcmp(doubles, ints, 12), 0);
    EXPECT_EQ(doubles[2], -1.0);
}

// A count short of the end moves that many; a count whose sum with the start overflows is clipped.
TEST_F(Data, SlicesMoveTheirCountClippedToTheEnd) {
    int values[10] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9};
    EXPECT_EQ(TOVARIN_FN(FileWriteIntArray)(h, values, 10, 3, 2), 2u);
    EXPECT_EQ(TOVARIN_FN(FileWriteIntArray)(h, values, 10, 9, ~0ull - 3), 1u);
    EXPECT_EQ(Bytes(), std::string("\3\0\0\0\4\0\0\0\x09\0\0\0", 12));
    ExpectNoBox(boxes);
}

// Texts go out as their bare characters, 8-bit ones unconverted. A read of n characters drops the
// trailing zeros, spaces, tabs, CR and LF; each width has one result buffer, which every read reuses.
TEST_F(Data, TextsAreRawAndReadsTrimTheEnd) {
    EXPECT_EQ(TOVARIN_FN(FileWriteStringW)(h, L"a b"), 6);
    EXPECT_EQ(TOVARIN_FN(FileWriteStringA)(h, "\xE9\t"), 2);
    EXPECT_EQ(TOVARIN_FN(FileWriteStringA)(h, nullptr), 0); // a null text to write is empty
    EXPECT_EQ(Bytes(), std::string("a\0 \0b\0\xE9\t", 8));
    // clang-format off
    const struct { bool wide; std::string bytes; u64 size; std::string text; } cases[] = {
        {true, std::string("a\0 \0b\0\t\0\r\0\n\0 \0\0\0", 16), 8, "a b"}, {true, "xy", 0, ""},
        {true, std::string("\t\0\0\0 \0", 6), 3, ""}, {false, std::string("x\ty\n\r\t \0", 8), 8, "x\ty"},
        {false, "\xE9 ", 2, "\xE9"}, {false, std::string("\0\r\n", 3), 3, ""}};
    // clang-format on
    u64 first[2] = {};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.bytes);
        Reset();
        TOVARIN_FN(FileWriteVoid)(h, c.bytes.data(), c.bytes.size());
        Rewind();
        const u64 text = ExportOf(c.wide ? "FileReadStringW" : "FileReadStringA")
                             .Call({h, nullptr, {}, {}, {0, 0, 0, c.size}});
        ASSERT_NE(text, 0u);
        first[c.wide] = first[c.wide] == 0 ? text : first[c.wide];
        const auto shown = [&](u64 at) {
            return c.wide ? Narrow(reinterpret_cast<const wchar_t*>(at))
                          : std::string(reinterpret_cast<const char*>(at));
        };
        EXPECT_EQ(shown(text), c.text);
        EXPECT_EQ(shown(first[c.wide]), c.text);
        EXPECT_EQ(TOVARIN_FN(FileGetPointer)(h), static_cast<__int64>(c.size * (c.wide ? 2 : 1)));
    }
    ExpectNoBox(boxes);
}

TEST_F(Data, StringArraysInAllFourForms) {
    const wchar_t* wide[] = {L"a", L"", L"bc"};
    EXPECT_EQ(TOVARIN_FN(FileWriteStrArrayW)(h, wide, 3, 1, TOVARIN_TO_END), 2u);
    const char* narrow[] = {"x", "yz"};
    EXPECT_EQ(TOVARIN_FN(FileWriteStrArrayA)(h, narrow, 2, 0, 1), 1u);
    wchar_t recordW[5] = {L'p', L'q', L' ', L'\t', 0};
    char recordA[4] = {'r', ' ', '\n', 0};
    TovarinMqlStrW recordsW[2] = {{5, recordW}, {64, nullptr}}; // no buffer: an empty line
    TovarinMqlStrA recordsA[1] = {{4, recordA}};
    EXPECT_EQ(TOVARIN_FN(FileWriteStrArrayMW)(h, recordsW, 2, 0, 2), 2u);
    EXPECT_EQ(TOVARIN_FN(FileWriteStrArrayMA)(h, recordsA, 1, 0, 1), 1u);
    EXPECT_EQ(Bytes(), std::string("\r\0\n\0b\0c\0\r\0\n\0x\r\np\0q\0\r\0\n\0\r\0\n\0r\r\n", 30));
    // Records are cut to their size and terminated; the rest of the file is consumed.
    Reset();
    const char* lines[] = {"one", "two"};
    TOVARIN_FN(FileWriteStrArrayA)(h, lines, 2, 0, 2);
    Rewind();
    char cut[3] = {'?', '?', '?'};
    TovarinMqlStrA intoA[1] = {{3, cut}};
    EXPECT_EQ(TOVARIN_FN(FileReadStrArrayMA)(h, intoA, 1, 0, 1), 1u);
    EXPECT_STREQ(cut, "on");
    EXPECT_EQ(TOVARIN_FN(FileGetPointer)(h), 10);
    Reset();
    const wchar_t* wideLines[] = {L"three"};
    TOVARIN_FN(FileWriteStrArrayW)(h, wideLines, 1, 0, 1);
    Rewind();
    wchar_t small[3] = {L'?', L'?', L'?'};
    TovarinMqlStrW into[2] = {{3, small}, {3, small}};
    EXPECT_EQ(TOVARIN_FN(FileReadStrArrayMW)(h, into, 2, 1, 1), 1u);
    EXPECT_STREQ(small, L"th");
    ExpectNoBox(boxes);
}

} // namespace
