// The path exports: check, copy, move, delete, hard and symbolic links by path and by handle, the
// completed operation; null, empty, relative and rule-breaking paths.
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
    TOVARIN_FN(FileDeleteByHandle)(h); // closes the file first
    EXPECT_FALSE(FileExists(dir / L"moved.bin"));
    ExpectNoBox(boxes);
    EXPECT_EQ(TOVARIN_FN(FileWriteInt)(h, 1), -1);
    ExpectOneBox(boxes, "FileWriteInt", {});
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

// FileSymbolicLinkW(target, link). Wine's CreateSymbolicLinkW makes nothing and reports success;
// Windows makes a link only for an account with the right to.
TEST_F(Paths, SymbolicLinkReachesItsTarget) {
    const std::wstring link = dir / L"s\\link.bin";
    const int made = TOVARIN_FN(FileSymbolicLinkW)(src.c_str(), link.c_str());
    ExpectNoBox(boxes);
    if (!FileExists(link))
        GTEST_SKIP() << "no link made: Wine's CreateSymbolicLinkW is a stub; Windows needs the right";
    EXPECT_EQ(made, 1);
    ASSERT_TRUE(WriteFileBytes(link, "through"));
    EXPECT_EQ(ReadFileBytes(src), "through");
}

TEST_F(Paths, CompletedOperationAlwaysRefuses) {
    const std::wstring never = dir / L"never.bin";
    EXPECT_EQ(TOVARIN_FN(FileCompletedW)(never.c_str(), 2, -1, 0, 0, 0, nullptr, 0), 0u);
    ExpectOneBox(
        boxes, "FileCompletedW",
        {L"\"unsigned __int64 __cdecl Project::CompletedOperation(const class "
         L"std::basic_string<wchar_t,struct std::char_traits<wchar_t>,class std::allocator<wchar_t> > "
         L"&,const unsigned short,const int,const __int64,const unsigned short,const unsigned long,void "
         L"*,const unsigned __int64)\"!",
         L"\nДоступ к файлу выбран неправильно.\n"});
    EXPECT_FALSE(FileExists(never));
}

// Every path argument null, and every target or link empty: refused before any system call, with
// one box and the neutral result; nothing changes in the folder or in the current folder.
TEST_F(Paths, NullPathsAndEmptyTargetsAreRefused) {
    TempDir empty;
    CurrentFolder current(empty.Path());
    void* h = TOVARIN_FN(FileOpenExistingW)(src.c_str(), TOVARIN_DEFAULT, TOVARIN_DEFAULT);
    const std::string srcA = Narrow(src, CP_ACP), toA = Narrow(dir / L"to.bin", CP_ACP);
    const std::wstring to = dir / L"to.bin";
    for (const ExportRow& row : Exports()) {
        const std::string name = row.name;
        if (row.texts == 0 || (row.byHandle && name.find("Write") != std::string::npos))
            continue;
        const bool target = name.find("Copy") != std::string::npos ||
                            name.find("Move") != std::string::npos || name.find("Link") != std::string::npos;
        for (int variant = 0; variant < row.texts + (target ? 1 : 0); ++variant) {
            SCOPED_TRACE(name + " " + std::to_string(variant));
            CallArgs args{h,
                          nullptr,
                          {srcA.c_str(), toA.c_str()},
                          {src.c_str(), to.c_str()},
                          {0, 0, TOVARIN_DEFAULT, TOVARIN_DEFAULT}};
            if (row.texts == 1 && !row.byHandle) {
                args.pathA[0] = toA.c_str(); // never the source: a delete would remove it
                args.pathW[0] = to.c_str();
            }
            const int at = variant < row.texts ? variant : row.texts - 1;
            args.pathA[at] = variant < row.texts ? nullptr : "";
            args.pathW[at] = variant < row.texts ? nullptr : L"";
            EXPECT_EQ(row.Call(args), row.neutral);
            ExpectOneBox(boxes, name, {L"Отсутствует путь."});
        }
    }
    TOVARIN_FN(FileCloseHandle)(h);
    EXPECT_TRUE(current.Empty());
    EXPECT_FALSE(FileExists(to));
    EXPECT_EQ(ReadFileBytes(src), "source");
}

// Relative paths are refused by the folder step, whether their folder exists or not.
TEST_F(Paths, RelativePathsAreRefused) {
    TempDir cwd(dir.Path());
    CurrentFolder current(cwd.Path());
    ASSERT_TRUE(WriteFileBytes(dir / L"up.bin", "up"));
    ASSERT_TRUE(::CreateDirectoryW(L"rel", nullptr)); // existing or not, a relative folder is refused
    const std::pair<const wchar_t*, const wchar_t*> cases[] = {{L"rel\\x.bin", L"rel"},
                                                               {L"relnew\\x.bin", L"relnew"},
                                                               {L"..\\up.bin", L".."},
                                                               {L".\\here.bin", L"."}};
    for (const auto& [path, folder] : cases) {
        SCOPED_TRACE(Narrow(path));
        EXPECT_EQ(TOVARIN_FN(FileCreateAlwaysW)(path, TOVARIN_DEFAULT, TOVARIN_DEFAULT), nullptr);
        ExpectOneBox(boxes, "FileCreateAlwaysW",
                     {std::wstring(L"Для файла не создан каталог:\r\n\"") + folder + L"\""});
    }
    TOVARIN_FN(FileHardLinkW)(L"..\\up.bin", L"..\\up-link.bin");
    ExpectOneBox(boxes, "FileHardLinkW", {L"Для жёсткой ссылки не создан каталог:\r\n\"..\""});
    EXPECT_EQ(TOVARIN_FN(FileSymbolicLinkW)(src.c_str(), L"rel\\link"), 0);
    ExpectOneBox(boxes, "FileSymbolicLinkW", {L"Не создан для символьной ссылки каталог:\n\"rel\""});
    EXPECT_FALSE(FileExists(cwd / L"rel\\x.bin") || FileExists(cwd / L"here.bin") ||
                 FileExists(dir / L"up-link.bin"));
    EXPECT_EQ(ReadFileBytes(dir / L"up.bin"), "up");
}

TEST_F(Paths, PathRulesRefuseWithTheirTexts) {
    struct Case {
        const char* name;
        std::wstring path, message;
    };
    const std::wstring longName(260, L'n');
    const Case cases[] = {
        {"FileOpenAlwaysW", dir / L"a|b.bin",
         L"Обнаружен запрещённый символ '|' в позиции " + std::to_wstring(dir.Path().size() + 2) +
             L" в пути:\n\"" + (dir / L"a|b.bin") + L"\""},
        {"FileOpenAlwaysW", dir / L"dot.", L"Пробел в конце пути:\n\"" + (dir / L"dot.") + L"\""},
        {"FileOpenAlwaysW", dir / longName, L"Боле 255 символов в пути:\n\"" + (dir / longName) + L"\""},
        {"FileHardLinkByHandleW", L"C:\\con\\x.bin",
         L"Использовано зарезервированное в Windows имя \"nul\" с порядковым номером 2 в "
         L"пути:\n\"C:\\con\\x.bin\""},
        {"FileSymbolicLinkW", dir / L"q?.bin", L"Обнаружен запрещённый символ '?'"},
    };
    void* h = TOVARIN_FN(FileOpenExistingW)(src.c_str(), TOVARIN_DEFAULT, TOVARIN_DEFAULT);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        CallArgs args{
            h, nullptr, {}, {src.c_str(), c.path.c_str()}, {0, 0, TOVARIN_DEFAULT, TOVARIN_DEFAULT}};
        if (ExportOf(c.name).texts == 1)
            args.pathW[0] = c.path.c_str();
        EXPECT_EQ(ExportOf(c.name).Call(args), ExportOf(c.name).neutral);
        ExpectOneBox(boxes, c.name,
                     {L"Utils::String::Path::Has(", L"File: \"Utils.Strings.cpp\"\r\nLine: ", c.message});
    }
    TOVARIN_FN(FileCloseHandle)(h);
}

} // namespace
