// The path exports: check, copy, move, delete, hard and symbolic links by path and by handle, the
// completed operation; null, empty, rule-breaking and relative paths, refused before any system call.
#include "support/Exports.h"

#include <gtest/gtest.h>

using namespace TestSupport;

namespace {

class Paths : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(WriteFileBytes(dir / L"src.bin", "source")); }
    TempDir dir;
    const std::wstring src = dir / L"src.bin";
    BoxRecorder boxes;
};

TEST_F(Paths, CheckCopyMoveAndDelete) {
    EXPECT_EQ(TOVARIN_FN(FileCheckW)(src.c_str()), 1);
    EXPECT_EQ(TOVARIN_FN(FileCheckW)(dir.Path().c_str()), 0); // a folder
    EXPECT_EQ(TOVARIN_FN(FileCheckW)((dir / L"missing").c_str()), 0);
    EXPECT_EQ(TOVARIN_FN(FileCheckW)((dir / L"s*.b?n").c_str()), 1); // the check takes wildcards
    // A copy leaves its source and replaces its target, making folders on the way.
    ASSERT_TRUE(WriteFileBytes(dir / L"old.bin", "older content"));
    EXPECT_EQ(TOVARIN_FN(FileCopyW)(src.c_str(), (dir / L"old.bin").c_str()), 1);
    EXPECT_EQ(
        TOVARIN_FN(FileCopyA)(Narrow(src, CP_ACP).c_str(), Narrow(dir / L"a\\b\\copy.bin", CP_ACP).c_str()),
        1);
    EXPECT_EQ(ReadFileBytes(dir / L"old.bin"), "source");
    EXPECT_EQ(ReadFileBytes(dir / L"a\\b\\copy.bin"), "source");
    EXPECT_EQ(ReadFileBytes(src), "source");
    // A move removes its source.
    EXPECT_EQ(TOVARIN_FN(FileMoveW)((dir / L"old.bin").c_str(), (dir / L"a\\m.bin").c_str()), 1);
    EXPECT_FALSE(FileExists(dir / L"old.bin"));
    EXPECT_EQ(ReadFileBytes(dir / L"a\\m.bin"), "source");
    EXPECT_EQ(TOVARIN_FN(FileDeleteW)((dir / L"a\\m.bin").c_str()), 1);
    EXPECT_FALSE(FileExists(dir / L"a\\m.bin"));
    // A folder is copied and deleted whole.
    EXPECT_EQ(TOVARIN_FN(FileCopyW)((dir / L"a").c_str(), (dir / L"c").c_str()), 1);
    EXPECT_EQ(TOVARIN_FN(FileDeleteW)((dir / L"a").c_str()), 1);
    EXPECT_EQ(ReadFileBytes(dir / L"c\\b\\copy.bin"), "source");
    EXPECT_FALSE(FileExists(dir / L"a"));
    // The shell fails silently: 0 and no box.
    EXPECT_EQ(TOVARIN_FN(FileDeleteW)((dir / L"a\\m.bin").c_str()), 0);
    ExpectNoBox(boxes);
}

TEST_F(Paths, ByHandleOperationsFollowTheFile) {
    void* h = TOVARIN_FN(FileOpenExistingW)(src.c_str(), TOVARIN_DEFAULT,
                                            TOVARIN_SHARE_READ | TOVARIN_SHARE_WRITE | TOVARIN_SHARE_DELETE);
    ASSERT_NE(h, nullptr);
    EXPECT_EQ(TOVARIN_FN(FileCopyByHandleW)(h, (dir / L"copy.bin").c_str()), 1);
    EXPECT_EQ(TOVARIN_FN(FileMoveByHandleA)(h, Narrow(dir / L"moved.bin", CP_ACP).c_str()), 1);
    EXPECT_FALSE(FileExists(src));
    EXPECT_EQ(TOVARIN_FN(FileWriteInt)(h, 0x21212121), 4); // the handle still works
    TOVARIN_FN(FileFlushApply)(h);
    // From the new path.
    EXPECT_EQ(TOVARIN_FN(FileCopyByHandleA)(h, Narrow(dir / L"copy2.bin", CP_ACP).c_str()), 1);
    TOVARIN_FN(FileHardLinkByHandleW)(h, (dir / L"l\\hard.bin").c_str());
    EXPECT_EQ(ReadFileBytes(dir / L"copy.bin"), "source");
    EXPECT_EQ(ReadFileBytes(dir / L"copy2.bin"), "!!!!ce");
    EXPECT_EQ(ReadFileBytes(dir / L"l\\hard.bin"), "!!!!ce");
    TOVARIN_FN(FileDeleteByHandle)(h); // closes the file first, at its new path
    EXPECT_FALSE(FileExists(dir / L"moved.bin"));
    ExpectNoBox(boxes);
}

TEST_F(Paths, HardLinksShareTheFileOnOneDriveOnly) {
    TOVARIN_FN(FileHardLinkW)(src.c_str(), (dir / L"sub\\link.bin").c_str());
    ExpectNoBox(boxes);
    ASSERT_TRUE(WriteFileBytes(dir / L"sub\\link.bin", "shared"));
    EXPECT_EQ(ReadFileBytes(src), "shared");
    TOVARIN_FN(FileHardLinkW)(src.c_str(), (dir / L"sub\\link.bin").c_str()); // exists
    ExpectOneBox(boxes, "FileHardLinkW",
                 {L"Не создана жёсткая ссылка на файл:\r\n\"" + src + L"\"", L"Last Error: 1."});
    std::wstring drive = L"C:"; // another fixed drive, as Z: under Wine when the temporary folder is on C:
    while (drive[0] <= L'Z' &&
           (drive[0] == towupper(src[0]) || ::GetDriveTypeW((drive + L"\\").c_str()) != DRIVE_FIXED))
        ++drive[0];
    if (drive[0] > L'Z')
        GTEST_SKIP() << "one fixed drive only: there is no link across drives to refuse";
    TempDir other(drive); // removes a link that a refusal failed to refuse
    const std::wstring link = other / L"link.bin";
    TOVARIN_FN(FileHardLinkW)(src.c_str(), link.c_str());
    ASSERT_EQ(boxes.Boxes().size(), 1u);
    EXPECT_EQ(boxes.Boxes()[0].text.find(L"Last Error"), std::wstring::npos);
    ExpectOneBox(boxes, "FileHardLinkW",
                 {L"!\r\nFile: \"Utils.File.cpp\"\r\nLine: ",
                  L"\nЖёсткая ссылка на файл может создаваться только в пределах одного логического "
                  L"диска.\r\nИсходный файл:\r\n\"" +
                      src + L"\"\r\nЖёсткая ссылка на файл:\r\n\"" + link + L"\"\n\n"});
    EXPECT_FALSE(FileExists(link));
}

// Every path an export resolves, null, empty, breaking a rule or not absolute (plain, drive- or
// root-relative, through "." or ".."; its folder existing or not), is refused before any system call with one
// box and the neutral result: by the path rules, by the folder step of an open or a link, or by the copy,
// move or delete itself. Nothing changes on disk or in the current folder. The check, which only looks,
// refuses nothing.
TEST_F(Paths, BadPathsAreRefusedBeforeAnySystemCall) {
    const std::wstring cwd = dir / L"cwd";
    ::CreateDirectoryW(cwd.c_str(), nullptr);
    CurrentFolder current(cwd);
    ::CreateDirectoryW(L"rel", nullptr); // an existing relative folder is refused all the same
    void* h = TOVARIN_FN(FileOpenExistingW)(src.c_str(), TOVARIN_DEFAULT, TOVARIN_DEFAULT);
    const std::wstring to = dir / L"to.bin", wild = dir / L"*.bin", blank = dir / L"x.bin ";
    const std::string srcA = Narrow(src, CP_ACP), toA = Narrow(to, CP_ACP);
    const auto refuse = [&](const ExportRow& row, int at, const wchar_t* path, const std::wstring& text) {
        SCOPED_TRACE(std::string(row.name) + " " + std::to_string(at) + " " + (path ? Narrow(path) : "null"));
        const std::string pathA = path ? Narrow(path, CP_ACP) : "";
        CallArgs args{h,
                      nullptr,
                      {srcA.c_str(), toA.c_str()},
                      {src.c_str(), to.c_str()},
                      {0, 0, TOVARIN_DEFAULT, TOVARIN_DEFAULT}};
        args.pathA[at] = path ? pathA.c_str() : nullptr;
        args.pathW[at] = path;
        EXPECT_EQ(row.Call(args), row.neutral);
        ExpectOneBox(boxes, row.name, {text});
    };
    // A rule's refusal (each rule's own edges are unit-tested), then paths relative in each way.
    const std::pair<std::wstring, std::wstring> cases[] = {
        {wild, L"Обнаружен запрещённый символ '*' в позиции " + std::to_wstring(dir.Path().size() + 1) +
                   L" в пути:\n\"" + wild + L"\""},
        {blank, L"Пробел в конце пути:\n\"" + blank + L"\""},
        {L"C:\\con\\x.bin", L"Использовано зарезервированное в Windows имя \"nul\" с порядковым номером 2 в "
                            L"пути:\n\"C:\\con\\x.bin\""},
        {L"rel\\x.bin", L""},
        {cwd.substr(0, 2) + L"new\\x.bin", L""},
        {cwd.substr(2) + L"\\new\\x.bin", L""},
        {L".\\x.bin", L""},
        {L"..\\x.bin", L""}};
    for (const ExportRow& row : Exports()) {
        const std::string name = row.name;
        const auto has = [&](const char* part) { return name.find(part) != std::string::npos; };
        if (row.texts == 0 || (row.byHandle && has("Write")))
            continue;
        for (int at = 0; at < row.texts; ++at) {
            const bool target = at == row.texts - 1 && (has("Copy") || has("Move") || has("Link"));
            refuse(row, at, nullptr, L"Отсутствует путь.");
            if (target)
                refuse(row, at, L"", L"Отсутствует путь.");
            if (has("Check") || has("Completed") || (has("SymbolicLink") && !target))
                continue;
            for (const auto& [path, text] : cases) {
                // A path that is not absolute: refused by the folder step of an open or a link.
                const std::wstring folder = L"\"" + path.substr(0, path.size() - 6) + L"\"";
                const std::wstring relative =
                    has("Link") && target
                        ? (has("Hard") ? L"Для жёсткой ссылки не создан каталог:\r\n" + folder
                                       : L"Не создан для символьной ссылки каталог:\n" + folder)
                    : has("Open") || has("Create") ? L"Для файла не создан каталог:\r\n" + folder
                                                   : L"Путь не абсолютный:\r\n\"" + path + L"\"";
                refuse(row, at, path.c_str(), text.empty() ? relative : text);
            }
        }
    }
    TOVARIN_FN(FileCloseHandle)(h);
    for (const wchar_t* made : {L"cwd\\new", L"cwd\\rel\\x.bin", L"cwd\\x.bin", L"x.bin", L"to.bin"})
        EXPECT_FALSE(FileExists(dir / made)) << Narrow(made);
    EXPECT_EQ(ReadFileBytes(src), "source");
}

// A relative target is not resolved against the current folder: the link points to it from its own.
// Wine's CreateSymbolicLinkW makes nothing and reports success; Windows makes a link only for an
// account with the right to.
TEST_F(Paths, ASymbolicLinkTargetMayBeRelative) {
    TempDir cwd(dir.Path());
    CurrentFolder current(cwd.Path());
    const int made = TOVARIN_FN(FileSymbolicLinkW)(L"src.bin", (dir / L"link.bin").c_str());
    ExpectNoBox(boxes);
    if (!FileExists(dir / L"link.bin"))
        GTEST_SKIP() << "no link made: Wine's CreateSymbolicLinkW is a stub; Windows needs the right";
    EXPECT_EQ(made, 1);
    EXPECT_EQ(ReadFileBytes(dir / L"link.bin"), "source");
}

} // namespace
