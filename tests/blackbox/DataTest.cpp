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

// Writes `value`, expects exactly `bytes` in the file, reads it back.
template <class T>
void Scalar(Data& d, int (*write)(void* const, const T), T (*read)(void* const), T value,
            const std::string& bytes) {
    SCOPED_TRACE(bytes.size());
    d.Reset();
    EXPECT_EQ(write(d.h, value), static_cast<int>(bytes.size()));
    EXPECT_EQ(d.Bytes(), bytes);
    d.Rewind();
    const T back = read(d.h);
    EXPECT_EQ(std::memcmp(&back, &value, sizeof(T)), 0);
    EXPECT_EQ(TOVARIN_FN(FileGetPointer)(d.h), static_cast<__int64>(sizeof(T)));
}

TEST_F(Data, ScalarsAreTheirLittleEndianBytes) {
#define TOVARIN_SCALAR(Name, T, value, bytes)                                                                \
    Scalar<T>(*this, TOVARIN_FN(FileWrite##Name), TOVARIN_FN(FileRead##Name), value,                         \
              std::string(bytes, sizeof(T)))
    TOVARIN_SCALAR(Boolean, bool, true, "\x01");
    TOVARIN_SCALAR(Char, char, -128, "\x80");
    TOVARIN_SCALAR(UChar, unsigned char, 0xFE, "\xFE");
    TOVARIN_SCALAR(Short, short, -2, "\xFE\xFF");
    TOVARIN_SCALAR(UShort, unsigned short, 0xFEDC, "\xDC\xFE");
    TOVARIN_SCALAR(Int, int, 1, "\x01\0\0\0");
    TOVARIN_SCALAR(UInt, unsigned int, 0xDEADBEEF, "\xEF\xBE\xAD\xDE");
    TOVARIN_SCALAR(Int64, __int64, std::numeric_limits<__int64>::min(), "\0\0\0\0\0\0\0\x80");
    TOVARIN_SCALAR(UInt64, u64, 0x0102030405060708ull, "\x08\x07\x06\x05\x04\x03\x02\x01");
    TOVARIN_SCALAR(Flt, float, -2.0f, "\0\0\0\xC0");
    TOVARIN_SCALAR(Dbl, double, 1.0, "\0\0\0\0\0\0\xF0\x3F");
#undef TOVARIN_SCALAR
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

// Every typed array: elements 1.. of a 3-element array (count to the end) go out and come back
// into elements 1.. of another; its element 0 stays untouched.
template <class T>
void ArrayRoundTrip(Data& d, u64 (*write)(void* const, T* const, const u64, const u64, u64),
                    u64 (*read)(void* const, std::remove_const_t<T>*, const u64, const u64, u64)) {
    typedef std::remove_const_t<T> E;
    E values[3], back[3];
    std::memset(values, 0, sizeof(E));
    std::memset(&values[1], 0x11, sizeof(E));
    std::memset(&values[2], 0x01, sizeof(E));
    std::memset(back, 0x7F, sizeof(back));
    d.Reset();
    EXPECT_EQ(write(d.h, values, 3, 1, TOVARIN_TO_END), 2u);
    EXPECT_EQ(d.Bytes(), std::string(reinterpret_cast<const char*>(&values[1]), 2 * sizeof(E)));
    d.Rewind();
    EXPECT_EQ(read(d.h, back, 3, 1, 5), 2u); // a count past the end is clipped
    EXPECT_EQ(std::memcmp(&back[1], &values[1], 2 * sizeof(E)), 0);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(back), sizeof(E)), std::string(sizeof(E), '\x7F'));
}

TEST_F(Data, EveryTypedArrayMovesItsSliceElementByElement) {
#define TOVARIN_ARRAYS(Name)                                                                                 \
    ArrayRoundTrip(*this, TOVARIN_FN(FileWrite##Name##Array), TOVARIN_FN(FileRead##Name##Array))
    TOVARIN_ARRAYS(Bool);
    TOVARIN_ARRAYS(Char);
    TOVARIN_ARRAYS(UShort);
    TOVARIN_ARRAYS(Int);
    TOVARIN_ARRAYS(ULong);
    TOVARIN_ARRAYS(Float);
    TOVARIN_ARRAYS(Double);
#undef TOVARIN_ARRAYS
    ExpectNoBox(boxes);
}

TEST_F(Data, SlicesAreClippedOrRefusedBeforeAnyTransfer) {
    int values[10] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9};
    // clang-format off
    const struct { u64 size, start, count, result; } cases[] = { // start + count may overflow
        {10, 0, TOVARIN_TO_END, 10}, {10, 8, 5, 2}, {10, 3, 2, 2}, {10, 9, ~0ull - 3, 1}, {10, 10, 1, ~0ull}};
    // clang-format on
    std::string expected;
    for (const auto& c : cases) {
        SCOPED_TRACE(std::to_string(c.start) + " " + std::to_string(c.count));
        EXPECT_EQ(TOVARIN_FN(FileWriteIntArray)(h, values, c.size, c.start, c.count), c.result);
        expected.append(reinterpret_cast<const char*>(values + c.start),
                        c.result == ~0ull ? 0 : c.result * 4);
        if (c.result != ~0ull)
            ExpectNoBox(boxes);
        else
            ExpectOneBox(boxes, "FileWriteIntArray",
                         {L"Номер стартового элемента больше или равен количеству всех элементов.",
                          L"Количество всех элементов: 10", L"Стартовый элемент: 10"});
    }
    EXPECT_EQ(Bytes(), expected);
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
