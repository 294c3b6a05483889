// The string-array reader of the glue: lines placed straight from the text it read, with a number
// of allocations that does not grow with the number of lines.
#include "exports/Project.h"

#include "AllocationCount.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

class StringArrayRead : public testing::Test {
protected:
    // A file of `count` lines "line <i>", open through the registry with the pointer at its start.
    void* Open(const unsigned count) {
        std::string bytes;
        for (unsigned i = 0; i < count; ++i) {
            const std::wstring line = L"line " + std::to_wstring(i) + L"\r\n";
            bytes.append(reinterpret_cast<const char*>(line.data()), line.size() * sizeof(wchar_t));
        }
        const std::wstring path = dir / (L"lines" + std::to_wstring(count) + L".txt");
        EXPECT_TRUE(TestSupport::WriteFileBytes(path, bytes));
        return Project::OpenFile(path, 0xFFFFFFFFul, 0xFFFFFFFFul, OPEN_EXISTING);
    }
    static void Close(void* const handle) {
        Project::WithFile(handle, [](Utils::FileHdd& file, void* h) {
            file._Close(h);
            file.SetHandle(nullptr);
        });
        Project::PtrCFileDelete(handle);
    }
    // Reads `count` lines into zero-filled buffers; returns the allocations the reader made.
    static std::size_t Read(void* const handle, const unsigned count, std::vector<std::wstring>& lines) {
        const unsigned __int64 capacity = 16;
        std::vector<wchar_t> storage(count * capacity, L'\0');
        std::vector<wchar_t*> buffers(count);
        for (unsigned i = 0; i < count; ++i)
            buffers[i] = &storage[i * capacity];
        const std::size_t before = TestSupport::Allocations();
        const unsigned __int64 read =
            Project::ReadStrArrayByHandle(handle, buffers.data(), count, capacity, 0, ~0ull);
        const std::size_t made = TestSupport::Allocations() - before;
        EXPECT_EQ(read, count);
        lines.clear();
        for (wchar_t* buffer : buffers)
            lines.emplace_back(buffer);
        return made;
    }
    TestSupport::TempDir dir;
};

TEST_F(StringArrayRead, PlacesEveryLineWithAllocationsIndependentOfTheirNumber) {
    // The glue makes its own lock on first use: that allocation is not the reader's.
    void* const first = Open(1);
    ASSERT_NE(first, nullptr);
    std::vector<std::wstring> lines;
    Read(first, 1, lines);
    Close(first);
    void* const few = Open(10);
    void* const many = Open(2000);
    ASSERT_NE(few, nullptr);
    ASSERT_NE(many, nullptr);
    const std::size_t forFew = Read(few, 10, lines);
    ASSERT_EQ(lines.size(), 10u);
    EXPECT_EQ(lines[9], L"line 9");
    const std::size_t forMany = Read(many, 2000, lines);
    ASSERT_EQ(lines.size(), 2000u);
    EXPECT_EQ(lines[0], L"line 0");
    EXPECT_EQ(lines[1234], L"line 1234");
    EXPECT_EQ(lines[1999], L"line 1999");
    // The text of the rest of the file is the one buffer it needs; no line is copied on its own.
    EXPECT_EQ(forMany, forFew);
    EXPECT_LE(forMany, 1u);
    Close(few);
    Close(many);
}

TEST_F(StringArrayRead, StopsAtTheCountAndStillConsumesTheRest) {
    void* const handle = Open(5);
    ASSERT_NE(handle, nullptr);
    std::vector<std::wstring> lines;
    Read(handle, 3, lines);
    EXPECT_EQ(lines, (std::vector<std::wstring>{L"line 0", L"line 1", L"line 2"}));
    // The pointer is at the end: the lines beyond the third are gone for the next read.
    const __int64 end = Project::WithFile(
        handle, [](Utils::FileHdd& file, void* h) { return file._SetPointer(h, FILE_CURRENT, 0); });
    EXPECT_EQ(end, static_cast<__int64>(5 * 8 * sizeof(wchar_t)));
    Close(handle);
}

} // namespace
