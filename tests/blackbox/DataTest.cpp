// Values through open files: scalars by type and bytes, array slices by type, texts and their
// trims, string arrays and host records in all four forms, short reads.
#include "support/Exports.h"

#include <limits>
#include <typeinfo>

using namespace TestSupport;

namespace {

class Data : public testing::Test {
public:
    void TearDown() override {
        TOVARIN_FN(FileCloseHandle)(h);
        ExpectNoBox(boxes);
    }
    // Empties the file, writes `bytes` and puts the pointer back at 0.
    void Fill(const std::string& bytes) {
        TOVARIN_FN(FileClear)(h);
        TOVARIN_FN(FileWriteVoid)(h, bytes.data(), bytes.size());
        EXPECT_EQ(TOVARIN_FN(FileSetPointerBegin)(h, 0), 0);
    }
    TempDir dir;
    const std::wstring path = dir / L"data.bin";
    BoxRecorder boxes;
    void* h = TOVARIN_FN(FileCreateAlwaysW)(path.c_str(), TOVARIN_DEFAULT, TOVARIN_DEFAULT);
};

// A scalar goes out as exactly `bytes` and comes back; elements 1.. of a 3-element array (count to
// the end) go out after it and come back into elements 1.. of another (a count past the end is
// clipped), whose element 0 stays untouched.
template <class T, class W, class R, class WA, class RA>
void RoundTrip(Data& d, W write, R read, T value, const std::string& bytes, WA writeArray, RA readArray) {
    SCOPED_TRACE(typeid(T).name());
    T values[3] = {T(), value, value}, into[3] = {};
    d.Fill("");
    EXPECT_EQ(write(d.h, value), static_cast<int>(bytes.size()));
    EXPECT_EQ(writeArray(d.h, values, 3, 1, TOVARIN_TO_END), 2u);
    EXPECT_EQ(ReadFileBytes(d.path), bytes + bytes + bytes);
    EXPECT_EQ(TOVARIN_FN(FileSetPointerBegin)(d.h, 0), 0);
    const T back = read(d.h);
    EXPECT_EQ(readArray(d.h, into, 3, 1, 5), 2u);
    EXPECT_EQ(std::memcmp(&back, &value, sizeof(T)), 0);
    EXPECT_EQ(std::memcmp(into, values, sizeof(into)), 0);
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
}

// A short scalar read returns 0 with the short-read text; a short array read keeps what arrived.
// Array writes move their count, clipped to the end even when start + count wraps around.
TEST_F(Data, ShortReadsKeepTheBytesThatArrived) {
    int ints[4] = {7, 8, 9, 10};
    double doubles[5] = {-1, -1, -1, -1, -1};
    EXPECT_EQ(TOVARIN_FN(FileWriteIntArray)(h, ints, 4, 0, 3), 3u);
    EXPECT_EQ(TOVARIN_FN(FileWriteIntArray)(h, ints, 4, 3, ~0ull - 2), 1u);
    EXPECT_EQ(TOVARIN_FN(FileSetPointerBegin)(h, 14), 14);
    EXPECT_EQ(TOVARIN_FN(FileReadInt)(h), 0); // the neutral result, not the two bytes
    ExpectOneBox(boxes, "FileReadInt",
                 {L"Utils::FileHdd::_Read(void *const ,void *,const unsigned __int64)\"!\r\nFile: "
                  L"\"Utils.FileHdd.cpp\"",
                  L"\nНа итерации 0 не прочитаны данные из файла:\n\"" + path +
                      L"\"\nФайловый указатель: 16\nЗапрошено: 4\nПрочитано: 2\n\n"});
    EXPECT_EQ(TOVARIN_FN(FileSetPointerBegin)(h, 0), 0);
    EXPECT_EQ(TOVARIN_FN(FileReadDoubleArray)(h, doubles, 5, 0, 5), TOVARIN_FAILED_COUNT);
    ExpectOneBox(boxes, "FileReadDoubleArray", {L"Запрошено: 40\nПрочитано: 16"});
    EXPECT_EQ(std::memcmp(doubles, ints, 16), 0); // the 16 bytes that arrived; the rest untouched
    EXPECT_EQ(doubles[2], -1.0);
}

// Texts go out as their bare characters, 8-bit ones unconverted. A read of n characters drops the
// trailing zeros, spaces, tabs, CR and LF; each width has one result buffer, which every read reuses.
TEST_F(Data, TextsAreRawAndReadsTrimTheEnd) {
    EXPECT_EQ(TOVARIN_FN(FileWriteStringW)(h, L"a b"), 6);
    EXPECT_EQ(TOVARIN_FN(FileWriteStringA)(h, "\xE9\t"), 2);
    EXPECT_EQ(TOVARIN_FN(FileWriteStringA)(h, nullptr), 0); // a null text to write is empty
    EXPECT_EQ(ReadFileBytes(path), std::string("a\0 \0b\0\xE9\t", 8));
    // clang-format off
    const struct { bool wide; std::string bytes; u64 size; std::string text; } cases[] = { // the longest first
        {true, std::string("a\0 \0b\0\t\0\r\0\n\0 \0\0\0", 16), 8, "a b"}, {true, "xy", 0, ""},
        {true, std::string("\t\0\0\0 \0", 6), 3, ""}, {false, std::string("x\ty\n\r\t \0", 8), 8, "x\ty"},
        {false, "\xE9 ", 2, "\xE9"}, {false, std::string("\0\r\n", 3), 3, ""}};
    // clang-format on
    const void* first[2] = {};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.bytes);
        Fill(c.bytes);
        const void* text = c.wide ? static_cast<const void*>(TOVARIN_FN(FileReadStringW)(h, c.size))
                                  : TOVARIN_FN(FileReadStringA)(h, c.size);
        ASSERT_NE(text, nullptr);
        first[c.wide] = first[c.wide] ? first[c.wide] : text;
        EXPECT_EQ(text, first[c.wide]);
        EXPECT_EQ(c.wide ? Narrow(static_cast<const wchar_t*>(text)) : static_cast<const char*>(text),
                  c.text);
        EXPECT_EQ(TOVARIN_FN(FileGetPointer)(h), static_cast<__int64>(c.size * (c.wide ? 2 : 1)));
    }
}

// Lines end in CR LF; records go out without their trailing blanks, and come back cut to their size
// and terminated, into the record at the slice's start; a read consumes the rest of the file.
TEST_F(Data, StringArraysInAllFourForms) {
    const wchar_t* wide[] = {L"a", L"", L"bc"};
    const char* narrow[] = {"x", "yz"};
    wchar_t recordW[5] = {L'p', L'q', L' ', L'\t', 0}, small[4] = L"???";
    char recordA[4] = {'r', ' ', '\n', 0}, cut[4] = "???";
    TovarinMqlStrW recordsW[2] = {{5, recordW}, {64, nullptr}},
                   into[2] = {{0, nullptr}, {3, small}}; // no buffer: an empty line
    TovarinMqlStrA recordsA[1] = {{4, recordA}}, intoA[1] = {{3, cut}};
    EXPECT_EQ(TOVARIN_FN(FileWriteStrArrayW)(h, wide, 3, 1, TOVARIN_TO_END), 2u);
    EXPECT_EQ(TOVARIN_FN(FileWriteStrArrayA)(h, narrow, 2, 0, 1), 1u);
    EXPECT_EQ(TOVARIN_FN(FileWriteStrArrayMW)(h, recordsW, 2, 0, 2), 2u);
    EXPECT_EQ(TOVARIN_FN(FileWriteStrArrayMA)(h, recordsA, 1, 0, 1), 1u);
    EXPECT_EQ(ReadFileBytes(path), std::string("\r\0\n\0b\0c\0\r\0\n\0x\r\np\0q\0\r\0\n\0\r\0\n\0r\r\n", 30));
    Fill("one\r\ntwo\r\n");
    EXPECT_EQ(TOVARIN_FN(FileReadStrArrayMA)(h, intoA, 1, 0, 1), 1u);
    EXPECT_STREQ(cut, "on");
    EXPECT_EQ(TOVARIN_FN(FileGetPointer)(h), 10);
    Fill(std::string(reinterpret_cast<const char*>(L"three\r\n"), 14));
    EXPECT_EQ(TOVARIN_FN(FileReadStrArrayMW)(h, into, 2, 1, 1), 1u);
    EXPECT_STREQ(small, L"th");
    Fill("ab\r\nabc\r\n"); // a host buffer takes the whole line or nothing, without a zero
    char first[2], second[2], *lines[2] = {first, second};
    EXPECT_EQ(TOVARIN_FN(FileReadStrArrayA)(h, lines, 2, 2, 0, 2), TOVARIN_FAILED_COUNT);
    ExpectOneBox(boxes, "FileReadStrArrayA", {L"Элемент массива: 1\r\nДлина строки: 3\r\nРазмер буфера: 2"});
    EXPECT_EQ(std::string(first, 2), "ab");
}

} // namespace
