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

// Each rule at its edge; a refusal is the rule's text, then ":\n\"<path>\"". Reserved names are
// whole names as spelled, and the entry shown is the one at the name's position, deliberately.
TEST(PathRules, EachRuleAtItsEdge) {
    const auto bad = [](wchar_t c, int at) {
        return L"Обнаружен запрещённый символ '" + std::wstring(1, c) + L"' в позиции " + std::to_wstring(at);
    };
    const auto reserved = [](const wchar_t* entry, int number) {
        return L"Использовано зарезервированное в Windows имя \"" + std::wstring(entry) +
               L"\" с порядковым номером " + std::to_wstring(number);
    };
    const std::wstring longest = L"C:\\" + std::wstring(252, L'n'), end = L"Пробел в конце пути";
    // clang-format off
    const std::pair<std::wstring, std::wstring> cases[] = { // a path, and its refusal or nothing
        {longest, L""}, {longest + L"n", L"Боле 255 символов"}, {L"\\\\?\\" + longest + L"n", L""},
        {L"C:\\a b.c\\d", L""}, {L"C:\\d ", end}, {L"C:\\d.", end}, {L"C:\\a*b:c", L""},
        {L"\\\\?\\x", bad('?', 2)}, {L"C:\\a*", bad('*', 4)}, {L"C:\\?", bad('?', 3)},
        {L"C:\\a\"", bad('"', 4)}, {L"C:\\<", bad('<', 3)}, {L"C:\\>", bad('>', 3)},
        {L"C:\\ab|", bad('|', 5)}, {L"C:/a", bad('/', 2)}, {L"ftp://host/a", L""},
        {L"Http://h/a?b", bad('?', 10)}, {L"con", reserved(L"con", 1)},
        {L"C:\\a\\b\\LPT9\\c", reserved(L"AUX", 4)}, {L"C:\\con.txt\\CON\\aux\\COM0\\LPT10", L""}};
    // clang-format on
    for (const auto& [path, refusal] : cases) {
        const std::wstring text = Refusal(path);
        const std::wstring tail = (refusal == end ? L"" : L" в пути") + (L":\n\"" + path + L"\"");
        EXPECT_TRUE(refusal.empty() ? text == L"(nothing thrown)"
                                    : text.find(refusal + tail) != std::wstring::npos)
            << Narrow(path) << "\n"
            << Narrow(text);
    }
    EXPECT_FALSE(Utils::String::Path::Has(L"", false));
    for (std::wstring name : {L"con",  L"nul",  L"prn",  L"AUX",  L"COM1", L"COM2", L"COM3", L"COM4",
                              L"COM5", L"COM6", L"COM7", L"COM8", L"COM9", L"LPT1", L"LPT2", L"LPT3",
                              L"LPT4", L"LPT5", L"LPT6", L"LPT7", L"LPT8", L"LPT9"}) {
        EXPECT_HAS(Refusal(L"C:\\" + name), reserved(L"nul", 2) + L" в пути:\n\"C:\\" + name + L"\"");
        for (wchar_t& c : name)
            c = std::iswalpha(c) ? c ^ 0x20 : c; // the other case passes
        EXPECT_EQ(Refusal(L"C:\\" + name), L"(nothing thrown)");
    }
}

// CRC-64/XZ (ECMA-182, reflected): its check value over the nine digits; keys of UTF-16LE text in
// upper-case hexadecimal without leading zeros; and the auto-reset event, made signalled,
// that a file object opens for its path (backslashes as underscores) while it lives.
TEST(PathKeys, CheckValuesKeysAndTheEventOfAPath) {
    const Utils::Hash::CRC64_ECMA crc;
    EXPECT_EQ(crc.Evaluate(std::string("123456789")), 0x995DC9BBDF1939FAull);
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
