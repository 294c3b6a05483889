// README.md shows what the library shows: its sample failure box is the real text of the same call.
#include "support/Exports.h"

#include <algorithm>

using namespace TestSupport;

namespace {

// The sample: FileWriteInt with a handle that no open or create function returned, while a file is open.
TEST(Readme, SampleBoxIsTheRealTextOfItsCall) {
    BoxRecorder boxes;
    TempDir dir;
    void* file = TOVARIN_FN(FileCreateAlwaysW)((dir / L"f").c_str(), ~0ul, ~0ul);
    TOVARIN_FN(FileWriteInt)(reinterpret_cast<void*>(0x7FFFFFF0), 1);
    TOVARIN_FN(FileCloseHandle)(file);
    ASSERT_EQ(boxes.Boxes().size(), 1u);
    // Both as LF text, whatever line ends the checkout gave README.md.
    std::string real = Narrow(boxes.Boxes()[0].text);
    real.erase(std::remove(real.begin(), real.end(), '\r'), real.end());
    real.erase(real.find_last_not_of('\n') + 1);
    std::string readme = ReadFileBytes(std::wstring(TOVARIN_SOURCE_DIR) + L"\\README.md");
    readme.erase(std::remove(readme.begin(), readme.end(), '\r'), readme.end());
    const std::string begin = "<!-- sample-box:begin -->\n```\n";
    const std::size_t from = readme.find(begin) + begin.size();
    EXPECT_EQ(readme.substr(from, readme.find("\n```\n<!-- sample-box:end -->") - from), real)
        << "Put the real text into README.md between its sample-box marks:\n"
        << real;
}

} // namespace
