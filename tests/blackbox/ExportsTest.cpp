// A copy of the DLL: its registry's texts whole, from empty to an unknown handle, as README.md shows
// the sample; its boxes' caption; its unloading closes the files left open.
#include "support/Exports.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace TestSupport;

namespace {

// A second copy of the DLL has a registry of its own, empty; its boxes carry its own full path.
TEST(Registry, TextsWholeAsTheReadmeShowsThemTheCaptionAndTheUnload) {
    TempDir dir;
    const std::wstring copy = dir / L"Tovarin Copy.dll";
    ASSERT_TRUE(::CopyFileW((ExecutableFolder() + L"Tovarin.dll").c_str(), copy.c_str(), FALSE));
    HMODULE module = ::LoadLibraryW(copy.c_str());
    ASSERT_NE(module, nullptr);
    const auto writeInt = FromModule<decltype(&::FileWriteInt)>(module, "FileWriteInt");
    const auto create = FromModule<decltype(&::FileCreateAlwaysW)>(module, "FileCreateAlwaysW");
    const auto close = FromModule<decltype(&::FileCloseHandle)>(module, "FileCloseHandle");
    BoxRecorder boxes;
    EXPECT_EQ(writeInt(reinterpret_cast<void*>(0x1234), 1), -1);
    void* handle = create((dir / L"a.bin").c_str(), TOVARIN_DEFAULT, TOVARIN_DEFAULT);
    EXPECT_EQ(writeInt(reinterpret_cast<void*>(0x1234), 1), -1);
    close(handle);
    EXPECT_EQ(writeInt(handle, 1), -1); // closed, and the registry is empty again
    void* left = create((dir / L"left.bin").c_str(), TOVARIN_GENERIC_READ | TOVARIN_GENERIC_WRITE, 0);
    EXPECT_EQ(writeInt(left, 1234), 4);
    const std::vector<Box> shown = boxes.Boxes();
    ASSERT_EQ(shown.size(), 3u);
    const std::wstring empty =
        L"\r\n\nМассив классов не инициализирован.\r\nСначала создайте или откройте файл.\n\n";
    for (const Box& box : shown) {
        EXPECT_EQ(box.caption, copy);
        EXPECT_EQ(box.text.find(Heading("FileWriteInt")), 0u);
    }
    for (const int i : {0, 2}) // the unknown handle's text below, with the empty registry's line and message
        EXPECT_EQ(shown[i].text.rfind(empty), shown[i].text.size() - empty.size());
    EXPECT_TRUE(::FreeLibrary(module)); // closes the file left open, which nobody else may share
    HANDLE again = ::CreateFileW((dir / L"left.bin").c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                 OPEN_EXISTING, 0, nullptr);
    EXPECT_NE(again, INVALID_HANDLE_VALUE);
    ::CloseHandle(again);
    EXPECT_EQ(ReadFileBytes(dir / L"left.bin"), std::string("\xD2\x04\0\0", 4));
    // README.md's sample is the unknown handle's box whole; both as LF, whatever the checkout's line ends.
    std::string real = Narrow(shown[1].text);
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
