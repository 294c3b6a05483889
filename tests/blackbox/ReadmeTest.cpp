// README.md shows what the library shows: its sample failure box is the real text of the same call,
// and every Russian text of its "Messages you will see" table stands in the built DLL.
#include "support/Exports.h"

using namespace TestSupport;

namespace {

std::string Between(const std::string& text, const std::string& begin, const std::string& end) {
    const std::size_t from = text.find(begin), to = text.find(end, from);
    return from == std::string::npos || to == std::string::npos
               ? ""
               : text.substr(from + begin.size(), to - from - begin.size());
}

const std::string kReadme = ReadFileBytes(std::wstring(TOVARIN_SOURCE_DIR) + L"\\README.md");

// The sample: FileWriteInt with a handle that no open or create function returned, while a file is open.
TEST(Readme, SampleBoxIsTheRealTextOfItsCall) {
    BoxRecorder boxes;
    TempDir dir;
    void* file = TOVARIN_FN(FileCreateAlwaysW)((dir / L"f").c_str(), ~0ul, ~0ul);
    TOVARIN_FN(FileWriteInt)(reinterpret_cast<void*>(0x7FFFFFF0), 1);
    TOVARIN_FN(FileCloseHandle)(file);
    ASSERT_EQ(boxes.Boxes().size(), 1u);
    std::string real = Narrow(boxes.Boxes()[0].text);
    for (std::size_t at = real.find("\r\n"); at != std::string::npos; at = real.find("\r\n", at))
        real.erase(at, 1);
    real.erase(real.find_last_not_of('\n') + 1);
    EXPECT_EQ(Between(kReadme, "<!-- sample-box:begin -->\n```\n", "\n```\n<!-- sample-box:end -->"), real)
        << "Put the real text into README.md between its sample-box marks:\n"
        << real;
}

TEST(Readme, MessagesTableQuotesTheLibrarysTexts) {
    const std::string dll = ReadFileBytes(ExecutableFolder() + L"Tovarin.dll");
    const std::string table = Between(kReadme, "<!-- messages:begin -->", "<!-- messages:end -->");
    int quoted = 0;
    for (std::size_t open = table.find('`'); open != std::string::npos; open = table.find('`', open + 1)) {
        const std::size_t close = table.find('`', open + 1);
        const std::string span = table.substr(open + 1, close - open - 1);
        open = close;
        if (span.find('\xD0') == std::string::npos && span.find('\xD1') == std::string::npos)
            continue; // no Cyrillic letter: a name of ours, not a message
        std::wstring wide(span.size(), L'\0');
        wide.resize(::MultiByteToWideChar(CP_UTF8, 0, span.data(), static_cast<int>(span.size()), &wide[0],
                                          static_cast<int>(wide.size())));
        EXPECT_NE(dll.find(std::string(reinterpret_cast<const char*>(wide.data()), wide.size() * 2)),
                  std::string::npos)
            << span;
        ++quoted;
    }
    EXPECT_GE(quoted, 10);
}

} // namespace
