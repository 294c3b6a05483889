// The public interface in its three spellings agrees with the export table: the C prototypes of
// include/Tovarin.h (as compiled types and as text), the MQL5 imports of mql5/Include/Tovarin.mqh
// (through one mapping of C types to MQL5 types) and the signature texts of the table. The example
// script calls only imports that exist, with their number of arguments.
#include "mt/MT.h"

#include "support/ExportTable.h"
#include "support/TempDir.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <cctype>
#include <cstring>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <type_traits>
#include <vector>

using namespace TestSupport;

namespace {

// ---- The compiled declarations against the table's kinds -------------------------------------

template <class T> struct NoKind : std::false_type {};

template <class T> constexpr Arg ScalarArg() {
    if constexpr (std::is_same_v<T, bool>)
        return Arg::Bool;
    else if constexpr (std::is_same_v<T, char>)
        return Arg::Char;
    else if constexpr (std::is_same_v<T, unsigned char>)
        return Arg::UChar;
    else if constexpr (std::is_same_v<T, short>)
        return Arg::Short;
    else if constexpr (std::is_same_v<T, unsigned short>)
        return Arg::UShort;
    else if constexpr (std::is_same_v<T, int>)
        return Arg::Int;
    else if constexpr (std::is_same_v<T, unsigned int>)
        return Arg::UInt;
    else if constexpr (std::is_same_v<T, unsigned long>)
        return Arg::ULong;
    else if constexpr (std::is_same_v<T, long long>)
        return Arg::Int64;
    else if constexpr (std::is_same_v<T, unsigned long long>)
        return Arg::UInt64;
    else if constexpr (std::is_same_v<T, float>)
        return Arg::Float;
    else if constexpr (std::is_same_v<T, double>)
        return Arg::Double;
    else
        static_assert(NoKind<T>::value, "an argument type without a kind");
}

template <class T> constexpr bool ArgFits(Arg kind) {
    if constexpr (std::is_same_v<T, void*>) // the handle or an untyped buffer: one type, two roles
        return kind == Arg::Handle || kind == Arg::VoidPtr;
    else if constexpr (std::is_same_v<T, const void*>)
        return kind == Arg::VoidPtr;
    else if constexpr (std::is_same_v<T, const char*>)
        return kind == Arg::TextA;
    else if constexpr (std::is_same_v<T, const wchar_t*>)
        return kind == Arg::TextW;
    else if constexpr (std::is_same_v<T, MT::_MQLSTRA*>)
        return kind == Arg::MqlStrA;
    else if constexpr (std::is_same_v<T, MT::_MQLSTRW*>)
        return kind == Arg::MqlStrW;
    else if constexpr (std::is_pointer_v<T>)
        return kind == Arg::PtrArray;
    else
        return kind == ScalarArg<T>();
}

template <class R> constexpr Result ResultOf() {
    if constexpr (std::is_void_v<R>)
        return Result::Void;
    else if constexpr (std::is_same_v<R, void*>)
        return Result::Handle;
    else if constexpr (std::is_same_v<R, char*>)
        return Result::TextA;
    else if constexpr (std::is_same_v<R, wchar_t*>)
        return Result::TextW;
    else if constexpr (std::is_same_v<R, bool>)
        return Result::Bool;
    else if constexpr (std::is_same_v<R, char>)
        return Result::Char;
    else if constexpr (std::is_same_v<R, unsigned char>)
        return Result::UChar;
    else if constexpr (std::is_same_v<R, short>)
        return Result::Short;
    else if constexpr (std::is_same_v<R, unsigned short>)
        return Result::UShort;
    else if constexpr (std::is_same_v<R, int>)
        return Result::Int;
    else if constexpr (std::is_same_v<R, unsigned int>)
        return Result::UInt;
    else if constexpr (std::is_same_v<R, long long>)
        return Result::Int64;
    else if constexpr (std::is_same_v<R, unsigned long long>)
        return Result::UInt64;
    else if constexpr (std::is_same_v<R, float>)
        return Result::Float;
    else if constexpr (std::is_same_v<R, double>)
        return Result::Double;
    else
        static_assert(NoKind<R>::value, "a result type without a kind");
}

template <class R, class... A> constexpr bool Agrees(R (*)(A...), const ExportInfo* info) {
    if (info == nullptr || ResultOf<R>() != info->result || sizeof...(A) != info->argCount)
        return false;
    std::size_t i = 0;
    return (ArgFits<A>(info->args[i++]) && ...);
}

// Every row names a declared function whose compiled result and argument types fit the row.
#define TOVARIN_AGREES(name, ...)                                                                            \
    static_assert(Agrees(static_cast<decltype(&name)>(nullptr), FindExport(#name)),                          \
                  #name " differs from its row");
TOVARIN_EXPORTS(TOVARIN_AGREES)
#undef TOVARIN_AGREES

static_assert(std::is_same_v<TovarinMqlStrA, MT::_MQLSTRA> && std::is_same_v<TovarinMqlStrW, MT::_MQLSTRW>,
              "the C names of the records are the C++ records");
static_assert(TOVARIN_GENERIC_READ == static_cast<DWORD>(GENERIC_READ) &&
                  TOVARIN_GENERIC_WRITE == static_cast<DWORD>(GENERIC_WRITE),
              "access values are CreateFileW's");
static_assert(TOVARIN_SHARE_READ == FILE_SHARE_READ && TOVARIN_SHARE_WRITE == FILE_SHARE_WRITE &&
                  TOVARIN_SHARE_DELETE == FILE_SHARE_DELETE,
              "share values are CreateFileW's");
static_assert(TOVARIN_DEFAULT == 0xFFFFFFFFu && TOVARIN_TO_END == ~0ull && TOVARIN_FAILED_COUNT == ~0ull,
              "all bits set");

// ---- Reading declarations from source text ---------------------------------------------------

std::string Source(const std::wstring& relative) {
    return ReadFileBytes(std::wstring(TOVARIN_SOURCE_DIR) + L"\\" + relative);
}

// The text with // and /* */ comments replaced by a space; string literals are kept.
std::string WithoutComments(const std::string& text) {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '"') {
            const std::size_t end = text.find('"', i + 1);
            out += text.substr(i, end == std::string::npos ? std::string::npos : end - i + 1);
            if (end == std::string::npos)
                break;
            i = end;
        } else if (text.compare(i, 2, "//") == 0) {
            i = text.find('\n', i);
            if (i == std::string::npos)
                break;
            out += '\n';
        } else if (text.compare(i, 2, "/*") == 0) {
            i = text.find("*/", i + 2);
            if (i == std::string::npos)
                break;
            ++i;
            out += ' ';
        } else {
            out += text[i];
        }
    }
    return out;
}

// The text without preprocessor lines.
std::string WithoutDirectives(const std::string& text) {
    std::string out;
    std::size_t start = 0;
    while (start < text.size()) {
        std::size_t end = text.find('\n', start);
        end = end == std::string::npos ? text.size() : end + 1;
        const std::size_t first = text.find_first_not_of(" \t", start);
        if (first >= end || text[first] != '#')
            out += text.substr(start, end - start);
        start = end;
    }
    return out;
}

bool IsWordChar(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) || c == '_';
}
bool IsWord(const std::string& token) {
    return !token.empty() && IsWordChar(token[0]);
}

// Words (qualified names such as MT::_MQLSTRW are one word), string literals and single marks.
std::vector<std::string> Tokens(const std::string& text) {
    std::vector<std::string> tokens;
    for (std::size_t i = 0; i < text.size();) {
        const char c = text[i];
        if (std::isspace(static_cast<unsigned char>(c))) {
            ++i;
        } else if (IsWordChar(c)) {
            std::size_t j = i;
            while (j < text.size() && (IsWordChar(text[j]) || text.compare(j, 2, "::") == 0))
                j += text[j] == ':' ? 2 : 1;
            tokens.push_back(text.substr(i, j - i));
            i = j;
        } else if (c == '"') {
            const std::size_t end = text.find('"', i + 1);
            tokens.push_back(text.substr(i, end - i + 1));
            i = end == std::string::npos ? text.size() : end + 1;
        } else {
            tokens.emplace_back(1, c);
            ++i;
        }
    }
    return tokens;
}

// One spelling for a type however it was spaced: "void *const", "const char **", "const uchar &[]".
std::string TypeText(const std::vector<std::string>& tokens) {
    std::string out;
    for (const std::string& token : tokens) {
        const char last = out.empty() ? '\0' : out.back();
        if (IsWord(token)) {
            if (!out.empty() && last != '*' && last != '&')
                out += ' ';
        } else if (token == "*" || token == "&") {
            if (!out.empty() && last != '*')
                out += ' ';
        }
        out += token;
    }
    return out;
}

// The type of a named parameter: without its name (the word before "[]", or the last word).
std::vector<std::string> WithoutName(std::vector<std::string> tokens) {
    for (std::size_t i = 1; i < tokens.size(); ++i)
        if (tokens[i] == "[" && IsWord(tokens[i - 1])) {
            tokens.erase(tokens.begin() + static_cast<std::ptrdiff_t>(i) - 1);
            return tokens;
        }
    if (tokens.size() > 1 && IsWord(tokens.back()))
        tokens.pop_back();
    return tokens;
}

struct Declaration {
    std::string result;
    std::string name;
    std::vector<std::string> params; // types, without names
    bool isCdecl = false;
    std::string error; // why the text is not a declaration
};

// "[TOVARIN_API] result [__cdecl] name(type name, ...)", or unnamed parameters as in signatures.
Declaration Parse(const std::vector<std::string>& tokens, bool named) {
    Declaration d;
    std::size_t open = 0;
    while (open < tokens.size() && tokens[open] != "(")
        ++open;
    if (open == 0 || open == tokens.size() || tokens.back() != ")" || !IsWord(tokens[open - 1])) {
        d.error = "no name(...) in: " + TypeText(tokens);
        return d;
    }
    d.name = tokens[open - 1];
    std::vector<std::string> result;
    for (std::size_t i = 0; i + 1 < open; ++i) {
        if (tokens[i] == "__cdecl")
            d.isCdecl = true;
        else if (tokens[i] != "TOVARIN_API")
            result.push_back(tokens[i]);
    }
    d.result = TypeText(result);
    std::vector<std::string> param;
    int depth = 0;
    for (std::size_t i = open + 1; i + 1 < tokens.size(); ++i) {
        depth += tokens[i] == "(" ? 1 : tokens[i] == ")" ? -1 : 0;
        if (depth == 0 && tokens[i] == ",") {
            d.params.push_back(TypeText(named ? WithoutName(param) : param));
            param.clear();
        } else {
            param.push_back(tokens[i]);
        }
    }
    if (!param.empty())
        d.params.push_back(TypeText(named ? WithoutName(param) : param));
    return d;
}

// The prototypes of the C header: every statement that starts with TOVARIN_API.
std::vector<Declaration> HeaderDeclarations(const std::string& header, int& cdeclCount) {
    const std::vector<std::string> tokens = Tokens(WithoutDirectives(WithoutComments(header)));
    std::vector<Declaration> declarations;
    cdeclCount = 0;
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        cdeclCount += tokens[i] == "__cdecl" ? 1 : 0;
        if (tokens[i] != "TOVARIN_API")
            continue;
        std::size_t end = i;
        while (end < tokens.size() && tokens[end] != ";")
            ++end;
        declarations.push_back(
            Parse(std::vector<std::string>(tokens.begin() + i, tokens.begin() + end), true));
    }
    return declarations;
}

const char kImportLine[] = "#import \"Tovarin.dll\"";

// The statements between #import "Tovarin.dll" and the closing #import.
std::vector<Declaration> MqlImports(const std::string& mqh, std::string& error) {
    const std::string text = WithoutComments(mqh);
    const std::size_t open = text.find(kImportLine);
    if (open == std::string::npos || text.find(kImportLine, open + 1) != std::string::npos) {
        error = "not exactly one import block of Tovarin.dll";
        return {};
    }
    const std::size_t body = open + sizeof(kImportLine) - 1;
    const std::size_t close = text.find("#import", body);
    if (close == std::string::npos) {
        error = "the import block is not closed";
        return {};
    }
    std::vector<Declaration> declarations;
    std::vector<std::string> statement;
    for (const std::string& token : Tokens(text.substr(body, close - body))) {
        if (token != ";") {
            statement.push_back(token);
            continue;
        }
        declarations.push_back(Parse(statement, true));
        statement.clear();
    }
    if (!statement.empty())
        error = "text after the last import: " + TypeText(statement);
    return declarations;
}

// The value of a numeric "#define TOVARIN_..." line as 64-bit pattern: casts, parentheses and
// integer suffixes are ignored ("((uint)0x80000000)", "(-1)", "0xFFFFFFFFFFFFFFFFULL").
std::map<std::string, std::uint64_t> NumericConstants(const std::string& text) {
    std::map<std::string, std::uint64_t> constants;
    const std::string code = WithoutComments(text);
    std::size_t start = 0;
    while (start < code.size()) {
        std::size_t end = code.find('\n', start);
        end = end == std::string::npos ? code.size() : end;
        const std::vector<std::string> tokens = Tokens(code.substr(start, end - start));
        start = end + 1;
        if (tokens.size() < 4 || tokens[0] != "#" || tokens[1] != "define" ||
            tokens[2].rfind("TOVARIN_", 0) != 0)
            continue;
        std::vector<std::string> parts;
        for (std::size_t i = 3; i < tokens.size(); ++i)
            if (tokens[i] != "(" && tokens[i] != ")")
                parts.push_back(tokens[i]);
        if (parts.size() > 1 && (parts[0] == "uint" || parts[0] == "ulong")) // an MQL5 cast
            parts.erase(parts.begin());
        std::string value;
        for (const std::string& part : parts)
            value += part;
        const bool negative = !value.empty() && value[0] == '-';
        std::string digits = negative ? value.substr(1) : value;
        while (!digits.empty() && std::strchr("uUlL", digits.back()) != nullptr)
            digits.pop_back();
        const bool hex = digits.rfind("0x", 0) == 0 || digits.rfind("0X", 0) == 0;
        const std::string body = hex ? digits.substr(2) : digits;
        if (body.empty() ||
            body.find_first_not_of(hex ? "0123456789abcdefABCDEF" : "0123456789") != std::string::npos)
            continue;
        const std::uint64_t magnitude = std::stoull(body, nullptr, hex ? 16 : 10);
        constants[tokens[2]] = negative ? ~magnitude + 1 : magnitude;
    }
    return constants;
}

std::map<std::string, Declaration> ByName(const std::vector<Declaration>& declarations) {
    std::map<std::string, Declaration> byName;
    for (const Declaration& d : declarations)
        byName.emplace(d.name, d);
    return byName;
}

std::set<std::string> TableNames() {
    std::set<std::string> names;
    for (const ExportInfo& info : kExports)
        names.insert(info.name);
    return names;
}

// The C names of the records stand for the C++ records (asserted above), which signatures spell.
std::string CxxSpelling(const std::string& type) {
    const char* const kRecords[][2] = {{"TovarinMqlStrA", "struct MT::_MQLSTRA"},
                                       {"TovarinMqlStrW", "struct MT::_MQLSTRW"}};
    for (const auto& record : kRecords)
        if (type.rfind(record[0], 0) == 0)
            return record[1] + type.substr(std::strlen(record[0]));
    return type;
}

class PublicHeader : public ::testing::Test {
protected:
    void SetUp() override {
        headerText = Source(L"include\\Tovarin.h");
        mqhText = Source(L"mql5\\Include\\Tovarin.mqh");
        ASSERT_FALSE(headerText.empty()) << "include/Tovarin.h not read";
        ASSERT_FALSE(mqhText.empty()) << "mql5/Include/Tovarin.mqh not read";
        c = HeaderDeclarations(headerText, cdeclCount);
        std::string error;
        mql = MqlImports(mqhText, error);
        ASSERT_EQ(error, "");
        // The imports that take or return addresses stand in the raw include.
        const std::vector<Declaration> raw = MqlImports(Source(L"mql5\\Include\\TovarinRaw.mqh"), error);
        ASSERT_EQ(error, "") << "mql5/Include/TovarinRaw.mqh";
        mql.insert(mql.end(), raw.begin(), raw.end());
        for (const Declaration& d : c)
            ASSERT_EQ(d.error, "") << "include/Tovarin.h";
        for (const Declaration& d : mql)
            ASSERT_EQ(d.error, "") << "mql5/Include/Tovarin.mqh";
    }

    std::string headerText, mqhText;
    std::vector<Declaration> c, mql; // the C prototypes and the MQL5 imports
    int cdeclCount = 0;
};

void ExpectExactlyTheTableNames(const std::vector<Declaration>& declarations, const char* file) {
    std::multiset<std::string> declared;
    for (const Declaration& d : declarations)
        declared.insert(d.name);
    const std::set<std::string> table = TableNames();
    for (const std::string& name : table)
        EXPECT_EQ(declared.count(name), 1u)
            << file << " declares " << name << " " << declared.count(name) << " times";
    for (const std::string& name : declared)
        EXPECT_EQ(table.count(name), 1u) << file << " declares " << name << ", which is no export";
    EXPECT_EQ(declarations.size(), 100u) << file;
}

TEST_F(PublicHeader, CHeaderDeclaresEachExportOnceWithCdecl) {
    ExpectExactlyTheTableNames(c, "include/Tovarin.h");
    for (const Declaration& d : c)
        EXPECT_TRUE(d.isCdecl) << d.name << " is not __cdecl";
    // A prototype without TOVARIN_API would escape the name check.
    EXPECT_EQ(cdeclCount, 100);
}

TEST_F(PublicHeader, MqlImportBlockDeclaresEachExportOnce) {
    ExpectExactlyTheTableNames(mql, "Tovarin.mqh and TovarinRaw.mqh");
}

// The one mapping between the two languages: a C type (as the header spells it, without the
// parameter name) and the MQL5 type that passes the same bits.
enum class Role { Result, Argument };
struct TypeRow {
    Role role;
    const char* c;
    const char* mql;
};
const TypeRow kTypeMap[] = {
    {Role::Result, "void", "void"},
    {Role::Result, "bool", "bool"},
    {Role::Result, "char", "char"},
    {Role::Result, "unsigned char", "uchar"},
    {Role::Result, "short", "short"},
    {Role::Result, "unsigned short", "ushort"},
    {Role::Result, "int", "int"},
    {Role::Result, "unsigned int", "uint"},
    {Role::Result, "__int64", "long"},
    {Role::Result, "unsigned __int64", "ulong"},
    {Role::Result, "float", "float"},
    {Role::Result, "double", "double"},
    {Role::Result, "void *", "long"}, // a handle
    {Role::Result, "char *", "long"}, // the address of 8-bit text
    {Role::Result, "wchar_t *", "string"},
    {Role::Argument, "void *const", "long"}, // a handle
    {Role::Argument, "const char *", "const uchar &[]"},
    {Role::Argument, "const wchar_t *", "string"},
    {Role::Argument, "const bool", "bool"},
    {Role::Argument, "const char", "char"},
    {Role::Argument, "const unsigned char", "uchar"},
    {Role::Argument, "const short", "short"},
    {Role::Argument, "const unsigned short", "ushort"},
    {Role::Argument, "const int", "int"},
    {Role::Argument, "const unsigned int", "uint"},
    {Role::Argument, "const unsigned long", "uint"},
    {Role::Argument, "const __int64", "long"},
    {Role::Argument, "const unsigned __int64", "ulong"},
    {Role::Argument, "unsigned __int64", "ulong"},
    {Role::Argument, "const float", "float"},
    {Role::Argument, "const double", "double"},
    {Role::Argument, "bool *const", "const bool &[]"},
    {Role::Argument, "char *const", "const char &[]"},
    {Role::Argument, "unsigned char *const", "const uchar &[]"},
    {Role::Argument, "short *const", "const short &[]"},
    {Role::Argument, "unsigned short *const", "const ushort &[]"},
    {Role::Argument, "int *const", "const int &[]"},
    {Role::Argument, "unsigned int *const", "const uint &[]"},
    {Role::Argument, "__int64 *const", "const long &[]"},
    {Role::Argument, "unsigned __int64 *const", "const ulong &[]"},
    {Role::Argument, "const float *", "const float &[]"},
    {Role::Argument, "const double *", "const double &[]"},
    {Role::Argument, "bool *", "bool &[]"},
    {Role::Argument, "char *", "char &[]"},
    {Role::Argument, "unsigned char *", "uchar &[]"},
    {Role::Argument, "short *", "short &[]"},
    {Role::Argument, "unsigned short *", "ushort &[]"},
    {Role::Argument, "int *", "int &[]"},
    {Role::Argument, "unsigned int *", "uint &[]"},
    {Role::Argument, "__int64 *", "long &[]"},
    {Role::Argument, "unsigned __int64 *", "ulong &[]"},
    {Role::Argument, "float *", "float &[]"},
    {Role::Argument, "double *", "double &[]"},
    {Role::Argument, "const char **", "const long &[]"}, // arrays of addresses
    {Role::Argument, "const wchar_t **", "const long &[]"},
    {Role::Argument, "char **", "long &[]"},
    {Role::Argument, "wchar_t **", "long &[]"},
    {Role::Argument, "TovarinMqlStrA *const", "const TovarinMqlStrA &[]"},
    {Role::Argument, "TovarinMqlStrA *", "TovarinMqlStrA &[]"},
    {Role::Argument, "TovarinMqlStrW *const", "const TovarinMqlStrW &[]"},
    {Role::Argument, "TovarinMqlStrW *", "TovarinMqlStrW &[]"},
    {Role::Argument, "void *", "uchar &[]"},
    {Role::Argument, "const void *", "const uchar &[]"},
};

TEST_F(PublicHeader, MqlTypesMapOneToOneToCTypes) {
    std::map<std::pair<Role, std::string>, std::pair<std::string, int>> map; // -> MQL5 type, uses
    for (const TypeRow& row : kTypeMap)
        EXPECT_TRUE(
            map.emplace(std::make_pair(row.role, std::string(row.c)), std::make_pair(row.mql, 0)).second)
            << "mapped twice: " << row.c;
    const auto mqlOf = [&](Role role, const std::string& cType) -> std::string {
        const auto found = map.find({role, cType});
        if (found == map.end())
            return "<no MQL5 type for C type \"" + cType + "\">";
        ++found->second.second;
        return found->second.first;
    };
    const std::map<std::string, Declaration> cByName = ByName(c), mqlByName = ByName(mql);
    for (const ExportInfo& info : kExports) {
        SCOPED_TRACE(info.name);
        const auto cd = cByName.find(info.name);
        const auto md = mqlByName.find(info.name);
        if (cd == cByName.end() || md == mqlByName.end())
            continue; // reported by the name tests
        EXPECT_EQ(md->second.result, mqlOf(Role::Result, cd->second.result));
        ASSERT_EQ(md->second.params.size(), cd->second.params.size());
        for (std::size_t i = 0; i < cd->second.params.size(); ++i) {
            // The reserved address of FileCompletedA/W is never read: MQL5 passes 0 as a long.
            const bool reserved = info.family == Family::Path && cd->second.params[i] == "void *";
            EXPECT_EQ(md->second.params[i], reserved ? "long" : mqlOf(Role::Argument, cd->second.params[i]))
                << "argument " << i + 1;
        }
    }
    for (const auto& [key, value] : map)
        EXPECT_GT(value.second, 0) << "mapping row no declaration uses: " << key.second;
}

TEST_F(PublicHeader, SignatureTextsAgreeWithTheHeaderTypes) {
    const std::map<std::string, Declaration> cByName = ByName(c);
    for (const ExportInfo& info : kExports) {
        SCOPED_TRACE(info.name);
        const Declaration signature = Parse(Tokens(info.signature), false);
        ASSERT_EQ(signature.error, "");
        EXPECT_EQ(signature.name, info.name);
        EXPECT_TRUE(signature.isCdecl);
        const auto cd = cByName.find(info.name);
        if (cd == cByName.end())
            continue;
        EXPECT_EQ(signature.result, cd->second.result);
        ASSERT_EQ(signature.params.size(), cd->second.params.size());
        EXPECT_EQ(signature.params.size(), info.argCount);
        for (std::size_t i = 0; i < signature.params.size(); ++i)
            EXPECT_EQ(signature.params[i], CxxSpelling(cd->second.params[i])) << "argument " << i + 1;
    }
}

TEST_F(PublicHeader, NamedConstantsAgreeBetweenCAndMql) {
    const std::map<std::string, std::uint64_t> inC = NumericConstants(headerText);
    const std::map<std::string, std::uint64_t> inMql = NumericConstants(mqhText);
    EXPECT_EQ(inC, inMql);
    ASSERT_EQ(inC.count("TOVARIN_FAILED_COUNT"), 1u);
    ASSERT_EQ(inC.count("TOVARIN_FAILED_WRITE"), 1u);
    ASSERT_EQ(inC.count("TOVARIN_FAILED_POSITION"), 1u);
    ASSERT_EQ(inC.count("TOVARIN_NULL_HANDLE"), 1u);
    // Each neutral constant is the neutral result of the rows it names.
    for (const ExportInfo& info : kExports) {
        SCOPED_TRACE(info.name);
        const std::uint64_t mask =
            ResultWidth(info.result) == 8 ? ~0ull : (1ull << 8 * ResultWidth(info.result)) - 1;
        const std::string neutral = info.neutralText;
        const char* constant = neutral == "18446744073709551615"                 ? "TOVARIN_FAILED_COUNT"
                               : neutral == "-1" && info.family == Family::Write ? "TOVARIN_FAILED_WRITE"
                               : neutral == "-1"                                 ? "TOVARIN_FAILED_POSITION"
                               : info.result == Result::Handle                   ? "TOVARIN_NULL_HANDLE"
                                                                                 : nullptr;
        if (constant != nullptr) {
            EXPECT_EQ(info.neutralBits, inC.at(constant) & mask) << constant;
        }
    }
}

// ---- The table itself ------------------------------------------------------------------------

TEST(ExportTable, SignaturesAreSpelledAsMsvcPrintsThem) {
    const struct {
        const char* name;
        const char* signature;
    } kPinned[] = {
        {"FileWriteInt", "int __cdecl FileWriteInt(void *const ,const int)"},
        {"FileClear", "void __cdecl FileClear(void *const )"},
        {"FileCreateNewW",
         "void *__cdecl FileCreateNewW(const wchar_t *,const unsigned long,const unsigned long)"},
        {"FileReadStringA", "char *__cdecl FileReadStringA(void *const ,const unsigned __int64)"},
        {"FileReadStringW", "wchar_t *__cdecl FileReadStringW(void *const ,const unsigned __int64)"},
        {"FileWriteStrArrayMW",
         "unsigned __int64 __cdecl FileWriteStrArrayMW(void *const ,struct MT::_MQLSTRW *const "
         ",const unsigned __int64,const unsigned __int64,const unsigned __int64)"},
        {"FileWriteBoolArray",
         "unsigned __int64 __cdecl FileWriteBoolArray(void *const ,bool *const ,const unsigned "
         "__int64,const unsigned __int64,unsigned __int64)"},
        {"FileWriteFloatArray",
         "unsigned __int64 __cdecl FileWriteFloatArray(void *const ,const float *,const "
         "unsigned __int64,const unsigned __int64,unsigned __int64)"},
        {"FileReadStrArrayW",
         "unsigned __int64 __cdecl FileReadStrArrayW(void *const ,wchar_t **,const unsigned "
         "__int64,const unsigned __int64,const unsigned __int64,const unsigned __int64)"},
    };
    for (const auto& pinned : kPinned) {
        const ExportInfo* info = FindExport(pinned.name);
        ASSERT_NE(info, nullptr) << pinned.name;
        EXPECT_STREQ(info->signature, pinned.signature);
    }
    for (const ExportInfo& info : kExports) {
        SCOPED_TRACE(info.name);
        const std::string s = info.signature;
        const std::size_t open = s.find('(');
        ASSERT_NE(open, std::string::npos);
        EXPECT_EQ(s.back(), ')');
        EXPECT_EQ(s.find(", "), std::string::npos) << "arguments are joined without a space";
        EXPECT_EQ(s.find("  "), std::string::npos);
        // "result __cdecl name(", with a pointer result's "*" right before __cdecl.
        const std::size_t callAt = s.find("__cdecl ");
        ASSERT_NE(callAt, std::string::npos);
        ASSERT_GT(callAt, 1u);
        EXPECT_EQ(s.substr(callAt + 8, open - callAt - 8), info.name);
        const bool pointerResult =
            info.result == Result::Handle || info.result == Result::TextA || info.result == Result::TextW;
        EXPECT_EQ(s.substr(callAt - 2, 2), pointerResult ? " *" : s.substr(callAt - 2, 1) + " ");
        EXPECT_NE(s.substr(callAt - 2, 2), "  ");
        // An argument ending in "*const" is followed by a space; no other argument is.
        for (std::size_t start = open + 1, at = start; at < s.size(); ++at) {
            if (s[at] != ',' && s[at] != ')')
                continue;
            const std::string arg = s.substr(start, at - start);
            start = at + 1;
            const std::size_t end = arg.find_last_not_of(' ');
            ASSERT_NE(end, std::string::npos) << "an empty argument";
            const bool constPointer = end >= 5 && arg.compare(end - 5, 6, "*const") == 0;
            EXPECT_EQ(arg.substr(end + 1), constPointer ? " " : "") << "\"" << arg << "\"";
        }
    }
}

// The neutral text of a row as the bits of its result kind, or "?" when the text does not suit it.
std::string ExpectedBits(const ExportInfo& info) {
    const std::string text = info.neutralText;
    const std::size_t width = ResultWidth(info.result);
    const std::uint64_t allSet = width == 8 ? ~0ull : (1ull << 8 * width) - 1;
    const bool pointer =
        info.result == Result::Handle || info.result == Result::TextA || info.result == Result::TextW;
    const bool real = info.result == Result::Float || info.result == Result::Double;
    const bool integer = !pointer && !real && info.result != Result::Void && info.result != Result::Bool;
    const bool signedInteger = info.result == Result::Int || info.result == Result::Int64 ||
                               info.result == Result::Char || info.result == Result::Short;
    if ((text == "none" && info.result == Result::Void) || (text == "null" && pointer) ||
        (text == "false" && info.result == Result::Bool) || (text == "0.0" && real) ||
        (text == "0" && integer))
        return std::to_string(0);
    if (text == "-1" && signedInteger)
        return std::to_string(allSet);
    if (text == "18446744073709551615" && info.result == Result::UInt64)
        return text;
    return "?";
}

TEST(ExportTable, NeutralResultsSuitTheirResultKindsAndFamilies) {
    // What each family returns after a failure.
    const std::map<Family, std::set<std::string>> kAllowed = {
        {Family::Open, {"null"}},
        {Family::Handle, {"none", "0", "-1"}},
        {Family::Write, {"-1"}},
        {Family::Read, {"0", "false", "0.0", "null"}},
        {Family::Raw, {"18446744073709551615"}},
        {Family::Array, {"18446744073709551615"}},
        {Family::StrArray, {"18446744073709551615"}},
        {Family::Path, {"0", "none"}},
        {Family::PathByHandle, {"0", "none"}},
    };
    for (const ExportInfo& info : kExports) {
        SCOPED_TRACE(info.name);
        EXPECT_EQ(std::to_string(info.neutralBits), ExpectedBits(info)) << info.neutralText;
        EXPECT_EQ(kAllowed.at(info.family).count(info.neutralText), 1u) << info.neutralText;
    }
    const struct {
        const char* name;
        const char* neutral;
        std::uint64_t bits;
    } kPinned[] = {
        {"FileReadBoolean", "false", 0},
        {"FileReadFlt", "0.0", 0},
        {"FileReadDbl", "0.0", 0},
        {"FileReadStringA", "null", 0},
        {"FileReadStringW", "null", 0},
        {"FileGetPointer", "-1", ~0ull},
        {"FileGetSize", "0", 0},
        {"FileWriteInt", "-1", 0xFFFFFFFFull},
        {"FileWriteIntArray", "18446744073709551615", ~0ull},
        {"FileCompletedW", "0", 0},
        {"FileCloseHandle", "none", 0},
    };
    for (const auto& pinned : kPinned) {
        const ExportInfo* info = FindExport(pinned.name);
        ASSERT_NE(info, nullptr) << pinned.name;
        EXPECT_STREQ(info->neutralText, pinned.neutral) << pinned.name;
        EXPECT_EQ(info->neutralBits, pinned.bits) << pinned.name;
    }
}

Arg Widened(Arg kind) {
    return kind == Arg::TextA ? Arg::TextW : kind == Arg::MqlStrA ? Arg::MqlStrW : kind;
}

TEST(ExportTable, EightBitExportsStandRightBeforeTheirWideTwins) {
    int twins = 0;
    for (std::size_t i = 0; i < kExportCount; ++i) {
        const std::string name = kExports[i].name;
        if (name.back() != 'A')
            continue;
        SCOPED_TRACE(name);
        ++twins;
        ASSERT_LT(i + 1, kExportCount);
        const ExportInfo& a = kExports[i];
        const ExportInfo& w = kExports[i + 1];
        EXPECT_EQ(std::string(w.name), name.substr(0, name.size() - 1) + "W");
        EXPECT_EQ(w.family, a.family);
        EXPECT_STREQ(w.neutralText, a.neutralText);
        EXPECT_EQ(w.neutralBits, a.neutralBits);
        EXPECT_EQ(w.result, a.result == Result::TextA ? Result::TextW : a.result);
        ASSERT_EQ(w.argCount, a.argCount);
        bool text = a.result == Result::TextA;
        for (std::size_t k = 0; k < a.argCount; ++k) {
            EXPECT_EQ(w.args[k], Widened(a.args[k])) << "argument " << k + 1;
            text = text || a.args[k] != Widened(a.args[k]);
        }
        // The 8-bit string-pointer arrays differ only in their element type.
        text = text || a.family == Family::StrArray;
        EXPECT_TRUE(text) << "an A export with no 8-bit text";
    }
    EXPECT_EQ(twins, 22);
    for (const ExportInfo& info : kExports)
        EXPECT_EQ(std::string(info.name).rfind("File", 0), 0u) << info.name;
}

// ---- The example script ----------------------------------------------------------------------

TEST(MqlExample, CallsOnlyDeclaredImportsWithTheirArgumentCounts) {
    const std::string script = Source(L"mql5\\Scripts\\TovarinExample.mq5");
    const std::string mqh = Source(L"mql5\\Include\\Tovarin.mqh");
    ASSERT_FALSE(script.empty());
    ASSERT_FALSE(mqh.empty());
    EXPECT_NE(script.find("#include <Tovarin.mqh>"), std::string::npos);
    const std::map<std::string, std::uint64_t> constants = NumericConstants(mqh);
    const std::vector<std::string> tokens = Tokens(WithoutComments(script));
    std::set<std::string> called;
    for (std::size_t i = 0; i + 1 < tokens.size(); ++i) {
        const std::string& t = tokens[i];
        if (t.rfind("TOVARIN_", 0) == 0) {
            EXPECT_EQ(constants.count(t), 1u) << t << " is not defined by Tovarin.mqh";
        }
        // Every File...( call is one of the library's (the script uses none of the terminal's own).
        if (t.size() < 5 || t.rfind("File", 0) != 0 || !std::isupper(static_cast<unsigned char>(t[4])) ||
            tokens[i + 1] != "(")
            continue;
        const ExportInfo* info = FindExport(t);
        if (info == nullptr) {
            ADD_FAILURE() << t << " is no export";
            continue;
        }
        called.insert(t);
        std::size_t args = i + 2 < tokens.size() && tokens[i + 2] == ")" ? 0 : 1;
        int depth = 0;
        for (std::size_t j = i + 1; j < tokens.size(); ++j) {
            depth += tokens[j] == "(" ? 1 : tokens[j] == ")" ? -1 : 0;
            if (depth == 0)
                break;
            args += depth == 1 && tokens[j] == "," ? 1 : 0;
        }
        EXPECT_EQ(args, info->argCount) << t;
    }
    EXPECT_GE(called.size(), 10u) << "the example exercises the library";
}

} // namespace
