// The rules every path passes before it reaches the system, each at its edge; the CRC-64 key of a
// path and the event that it names for every process.
#include "support/TempDir.h"

#include "utils/Utils.FileHdd.h"
#include "utils/Utils.Hash.h"
#include "utils/Utils.Strings.h"

#include <gtest/gtest.h>

#include <cwctype>

using namespace TestSupport;

namespace {

std::wstring Refusal(const std::wstring& path) {
    return Thrown([&] { EXPECT_TRUE(Utils::String::Path::Has(path, false)); });
}

TEST(PathRules, EachRuleAtItsEdge) {
    const std::wstring longest = L"C:\\" + std::wstring(252, L'n'); // 255 characters
    const struct {
        std::wstring path;
        const wchar_t* refusal; // the text before ":\n\"<path>\""; null: the path passes
    } cases[] = {
        {longest, nullptr},
        {longest + L"n", L"Боле 255 символов в пути"},
        {L"\\\\?\\C:\\" + std::wstring(300, L'n'), nullptr}, // the long form has no limit
        {L"\\\\?\\" + std::wstring(300, L'n'), L"Обнаружен запрещённый символ '?' в позиции 2 в пути"},
        {L"C:\\a b.c\\d", nullptr},
        {L"C:\\dir ", L"Пробел в конце пути"},
        {L"C:\\dir.", L"Пробел в конце пути"},
        {L"C:\\a*b:c", nullptr}, // only what follows the last colon is searched
        {L"C:\\a*", L"Обнаружен запрещённый символ '*' в позиции 4 в пути"},
        {L"C:\\?", L"Обнаружен запрещённый символ '?' в позиции 3 в пути"},
        {L"C:\\a\"", L"Обнаружен запрещённый символ '\"' в позиции 4 в пути"},
        {L"C:\\<", L"Обнаружен запрещённый символ '<' в позиции 3 в пути"},
        {L"C:\\>", L"Обнаружен запрещённый символ '>' в позиции 3 в пути"},
        {L"C:\\ab|", L"Обнаружен запрещённый символ '|' в позиции 5 в пути"},
        {L"C:/a", L"Обнаружен запрещённый символ '/' в позиции 2 в пути"},
        {L"ftp://host/a", nullptr}, // a network address may hold "/"
        {L"Http://host/a?b", L"Обнаружен запрещённый символ '?' в позиции 13 в пути"},
        {L"con", L"Использовано зарезервированное в Windows имя \"con\" с порядковым номером 1 в пути"},
        {L"C:\\a\\b\\LPT9\\c",
         L"Использовано зарезервированное в Windows имя \"AUX\" с порядковым номером 4 в пути"},
        {L"C:\\con.txt\\CON\\aux\\Com1\\COM0\\LPT10", nullptr}, // whole names, case-sensitive
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(Narrow(c.path));
        if (c.refusal == nullptr)
            EXPECT_EQ(Refusal(c.path), L"(nothing thrown)");
        else
            EXPECT_HAS(Refusal(c.path), c.refusal + (L":\n\"" + c.path + L"\""));
    }
    EXPECT_FALSE(Utils::String::Path::Has(L"", false));
    // Every reserved name, as spelled and in the other case; the entry shown is the one at the name's
    // position, deliberately: "nul" for the second name.
    for (std::wstring name : {L"con",  L"nul",  L"prn",  L"AUX",  L"COM1", L"COM2", L"COM3", L"COM4",
                              L"COM5", L"COM6", L"COM7", L"COM8", L"COM9", L"LPT1", L"LPT2", L"LPT3",
                              L"LPT4", L"LPT5", L"LPT6", L"LPT7", L"LPT8", L"LPT9"}) {
        SCOPED_TRACE(Narrow(name));
        EXPECT_HAS(Refusal(L"C:\\" + name),
                   L"Использовано зарезервированное в Windows имя \"nul\" с порядковым "
                   L"номером 2 в пути:\n\"C:\\" +
                       name + L"\"");
        for (wchar_t& c : name)
            c = std::iswalpha(c) ? c ^ 0x20 : c;
        EXPECT_EQ(Refusal(L"C:\\" + name), L"(nothing thrown)");
    }
}

// CRC-64/XZ (ECMA-182, reflected): its check value over the nine digits, the same digits as UTF-16LE,
// keys in upper-case hexadecimal without leading zeros, and the auto-reset event, made signalled,
// that a file object opens for its path (backslashes as underscores) while it lives.
TEST(PathKeys, CheckValuesKeysAndTheEventOfAPath) {
    const Utils::Hash::CRC64_ECMA crc;
    EXPECT_EQ(crc.Evaluate(std::string("123456789")), 0x995DC9BBDF1939FAull);
    EXPECT_EQ(crc.Evaluate(std::wstring(L"123456789")), 0xCC1CBC7DE1A8AA8Dull);
    EXPECT_EQ(Utils::Hash::PathKey(L"123456789"), L"CC1CBC7DE1A8AA8D");
    EXPECT_EQ(Utils::Hash::PathKey(L"k6"), L"FF9ED9AFE0CA62D");
    EXPECT_EQ(Utils::Hash::PathKey(L""), L"0");
    Utils::FileHdd file;
    file.Init(L"C:\\Tovarin\\a.bin", nullptr, true); // the key of C:_Tovarin_a.bin
    HANDLE event =
        ::OpenEventW(SYNCHRONIZE | EVENT_MODIFY_STATE, FALSE, L"Utils::FileHdd_Event_1D19A5C1E218B1C5");
    ASSERT_NE(event, nullptr);
    EXPECT_EQ(::WaitForSingleObject(event, 0), WAIT_OBJECT_0);
    EXPECT_EQ(::WaitForSingleObject(event, 0), WAIT_TIMEOUT);
    ::CloseHandle(event);
}

} // namespace
