// The path exports: check, copy, move, delete, hard and symbolic links by path and by handle, the
// completed operation; null, empty, rule-breaking and relative paths, refused before any system call.
#include "support/Exports.h"

using namespace TestSupport;

namespace {

class Paths : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(WriteFileBytes(src, "source")); }
    TempDir dir;
    const std::wstring src = dir / L"src.bin";
    BoxRecorder boxes;
};

// Steps by path, then by a handle of src.bin that shares deleting: each step's result, then what the
// tree holds. The check finds files, not folders, by wildcards too; a copy replaces its target, making
// folders on the way; folders go whole; a handle follows its file when it moves; links share the file.
TEST_F(Paths, CopyMoveDeleteAndLinksByPathAndByHandle) {
    ASSERT_TRUE(WriteFileBytes(dir / L"old.bin", "older content"));
    // clang-format off
    const struct { const char* name; const wchar_t *from, *to; u64 result; } steps[] = { // from: null by handle
        {"FileCheckW", L"src.bin", nullptr, 1}, {"FileCheckA", L"s*.b?n", nullptr, 1},
        {"FileCheckW", L".", nullptr, 0}, {"FileCheckW", L"missing", nullptr, 0},
        {"FileCopyW", L"src.bin", L"old.bin", 1}, {"FileCopyA", L"src.bin", L"a\\b\\copy.bin", 1},
        {"FileMoveW", L"old.bin", L"a\\m.bin", 1}, {"FileCheckW", L"old.bin", nullptr, 0},
        {"FileCopyW", L"a", L"c", 1}, {"FileDeleteW", L"a", nullptr, 1},
        {"FileDeleteA", L"a\\m.bin", nullptr, 0}, // the shell fails silently: 0 and no box
        {"FileHardLinkW", L"src.bin", L"sub\\link.bin", 0}, {"FileCopyByHandleW", nullptr, L"copy.bin", 1},
        {"FileMoveByHandleA", nullptr, L"moved.bin", 1}, {"FileCheckW", L"src.bin", nullptr, 0},
        {"FileWriteInt", nullptr, nullptr, 4}, {"FileCopyByHandleA", nullptr, L"copy2.bin", 1},
        {"FileHardLinkByHandleW", nullptr, L"l\\hard.bin", 0}, {"FileDeleteByHandle", nullptr, nullptr, 0},
        {"FileCheckW", L"moved.bin", nullptr, 0}};
    const std::pair<const wchar_t*, const char*> tree[] = {{L"c\\m.bin", "source"}, {L"c\\b\\copy.bin", "source"},
        {L"copy.bin", "source"}, {L"copy2.bin", "!!!!ce"}, {L"l\\hard.bin", "!!!!ce"}, {L"sub\\link.bin", "!!!!ce"}};
    // clang-format on
    void* h = TOVARIN_FN(FileOpenExistingW)(src.c_str(), TOVARIN_DEFAULT,
                                            TOVARIN_SHARE_READ | TOVARIN_SHARE_WRITE | TOVARIN_SHARE_DELETE);
    for (const auto& s : steps) {
        const std::wstring to = s.to ? dir / s.to : L"", first = s.from ? dir / s.from : to; // by handle: to
        const std::string firstA = Narrow(first, CP_ACP), toA = Narrow(to, CP_ACP);
        const CallArgs args{
            h, nullptr, {firstA.c_str(), toA.c_str()}, {first.c_str(), to.c_str()}, {0, 0, 0, 0x21212121}};
        EXPECT_EQ(ExportOf(s.name).Call(args), s.result) << s.name << " " << Narrow(first + L" " + to);
    }
    ExpectNoBox(boxes);
    for (const auto& [name, bytes] : tree)
        EXPECT_EQ(ReadFileBytes(dir / name), bytes) << Narrow(name);
    // A link that exists already fails with the system's error; one to another drive is refused.
    TOVARIN_FN(FileHardLinkW)((dir / L"copy.bin").c_str(), (dir / L"sub\\link.bin").c_str());
    ExpectOneBox(boxes, "FileHardLinkW",
                 {L"Не создана жёсткая ссылка на файл:\r\n\"" + dir / L"copy.bin\"", L"Last Error: 1."});
    std::wstring drive = L"C:"; // another fixed drive, as Z: under Wine when the temporary folder is on C:
    while (drive[0] <= L'Z' &&
           (drive[0] == towupper(src[0]) || ::GetDriveTypeW((drive + L"\\").c_str()) != DRIVE_FIXED))
        ++drive[0];
    if (drive[0] > L'Z')
        GTEST_SKIP() << "one fixed drive only: there is no link across drives to refuse";
    TempDir other(drive); // removes a link that a refusal failed to refuse
    TOVARIN_FN(FileHardLinkW)((dir / L"copy.bin").c_str(), (other / L"link.bin").c_str());
    ASSERT_EQ(boxes.Boxes().size(), 1u);
    EXPECT_EQ(boxes.Boxes()[0].text.find(L"Last Error"), std::wstring::npos);
    ExpectOneBox(
        boxes, "FileHardLinkW",
        {L"\"Utils.File.cpp\"", L"только в пределах одного логического диска.\r\nИсходный файл:\r\n\"" +
                                    dir / L"copy.bin\"\r\nЖёсткая ссылка на файл:\r\n\"" + other.Path()});
    EXPECT_FALSE(FileExists(other / L"link.bin"));
}

// Every path an export resolves, null, empty, breaking a rule or not absolute, is refused before any
// system call, with one box and the neutral result; nothing changes on disk or in the current folder.
// The check, which only looks, refuses only null.
TEST_F(Paths, BadPathsAreRefusedBeforeAnySystemCall) {
    const std::wstring cwd = dir / L"cwd";
    std::filesystem::create_directories(cwd + L"\\rel"); // an existing relative folder is refused too
    CurrentFolder current(cwd);
    void* h = TOVARIN_FN(FileOpenExistingW)(src.c_str(), TOVARIN_DEFAULT, TOVARIN_DEFAULT);
    const std::wstring to = dir / L"to.bin", wild = dir / L"*.bin", blank = dir / L"x.bin ";
    const std::string srcA = Narrow(src, CP_ACP), toA = Narrow(to, CP_ACP);
    const CallArgs base{
        h, nullptr, {srcA.c_str(), toA.c_str()}, {src.c_str(), to.c_str()}, {0, 0, ~0ull, ~0ull}};
    const std::wstring driveRelative = cwd.substr(0, 2) + L"new\\x.bin",
                       rootRelative = cwd.substr(2) + L"\\new\\x.bin";
    // Null, empty (a target's), a rule's refusal (each rule's edges are unit-tested), then relative paths
    // (an existing folder, drive- and root-relative, through ".."), refused as each export refuses them.
    // clang-format off
    const std::pair<const wchar_t*, std::wstring> cases[] = {{nullptr, L"Отсутствует путь."}, {L"", L"Отсутствует путь."},
        {wild.c_str(), L"Обнаружен запрещённый символ '*' в позиции " + std::to_wstring(dir.Path().size() + 1) +
                           L" в пути:\n\"" + wild + L"\""},
        {blank.c_str(), L"Пробел в конце пути:\n\"" + blank + L"\""},
        {L"C:\\con\\x.bin", L"Использовано зарезервированное в Windows имя \"nul\" с порядковым номером 2 в пути:\n\"C:\\con\\x.bin\""},
        {L"rel\\x.bin", L""}, {driveRelative.c_str(), L""}, {rootRelative.c_str(), L""}, {L"..\\x.bin", L""}};
    // clang-format on
    for (const ExportRow& row : Exports()) {
        const std::string name = row.name;
        const auto has = [&](const char* part) { return name.find(part) != std::string::npos; };
        for (int at = 0; at < row.texts && !(row.byHandle && has("Write")); ++at) {
            const bool target = at == row.texts - 1 && (has("Copy") || has("Move") || has("Link"));
            const bool onlyNull = has("Check") || has("Completed") || (has("SymbolicLink") && !target);
            for (const auto& [path, text] : cases) {
                if (path != nullptr && (*path == 0 ? !target : onlyNull))
                    continue;
                const std::wstring wide = path ? path : L"",
                                   folder = L"\"" + wide.substr(0, wide.size() - 6) + L"\"";
                const std::string narrow = Narrow(wide, CP_ACP);
                SCOPED_TRACE(name + " " + std::to_string(at) + " " + (path ? Narrow(wide) : "null"));
                CallArgs args = base;
                args.pathA[at] = path ? narrow.c_str() : nullptr;
                args.pathW[at] = path;
                EXPECT_EQ(row.Call(args), row.neutral);
                // A path that is not absolute: refused by the folder step of an open or a link.
                ExpectOneBox(boxes, name,
                             {!text.empty() ? text
                              : has("Link") && target
                                  ? (has("Hard") ? L"Для жёсткой ссылки не создан каталог:\r\n" + folder
                                                 : L"Не создан для символьной ссылки каталог:\n" + folder)
                              : has("Open") || has("Create") ? L"Для файла не создан каталог:\r\n" + folder
                                                             : L"Путь не абсолютный:\r\n\"" + wide + L"\""});
            }
        }
    }
    TOVARIN_FN(FileCloseHandle)(h);
    for (const wchar_t* made : {L"cwd\\new", L"cwd\\rel\\x.bin", L"cwd\\x.bin", L"x.bin", L"to.bin"})
        EXPECT_FALSE(FileExists(dir / made)) << Narrow(made);
    EXPECT_EQ(ReadFileBytes(src), "source");
}

// A relative target is not resolved against the current folder: the link points to it from its own.
// Wine's CreateSymbolicLinkW makes nothing and reports success; Windows needs the right to.
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
