#include "platform/desktop/trash.h"

#include "core/expect_failure.h"
#include "core/paths.h"
#include "core/temp_folder.h"

#include <QProcess>
#include <array>
#include <climits>

namespace quillane {

namespace {

/// What another program that knows the trash prints, of the home trash in `data`.
QByteArray OtherReader(const QString& program, const TempFolder& home, const QByteArray& input = {})
{
    QProcess reader;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("HOME"), home.Path("home"));
    environment.insert(QStringLiteral("XDG_DATA_HOME"), home.Path("data"));
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    reader.setProcessEnvironment(environment);
    reader.setWorkingDirectory(WithoutSeparator(home.Path("pictures")));
    reader.start(program, {});
    reader.write(input);
    reader.closeWriteChannel();
    EXPECT_TRUE(reader.waitForFinished()) << program.toStdString();
    EXPECT_EQ(reader.exitCode(), 0) << reader.readAllStandardError().constData();
    return reader.readAllStandardOutput();
}

TEST(Trash, AFileGoesToTheHomeTrashWithItsNote)
{
    const TempFolder folder;
    folder.Write("a b.jpg", "one");
    const TrashedFile file = MoveToTrash(folder.Path("a b.jpg"), folder.Path("data/Trash"));
    EXPECT_EQ(file.original, folder.Path("a b.jpg"));
    EXPECT_EQ(file.trashed, folder.Path("data/Trash/files/a b.jpg"));
    EXPECT_EQ(file.info, folder.Path("data/Trash/info/a b.jpg.trashinfo"));
    const QByteArray note = folder.Content("data/Trash/info/a b.jpg.trashinfo");
    EXPECT_TRUE(note.startsWith("[Trash Info]\nPath=/")) << note.constData();
    EXPECT_TRUE(note.contains("/a%20b.jpg\nDeletionDate=2")) << note.constData();
    EXPECT_EQ(folder.Entries(), QStringList("data"));
}

TEST(Trash, ANoteHasTheWholePathAndTheTime)
{
    EXPECT_EQ(TrashNote("/p/\xff%.jpg", QDateTime(QDate(2026, 1, 2), QTime(3, 4, 5))),
              "[Trash Info]\nPath=/p/%FF%25.jpg\nDeletionDate=2026-01-02T03:04:05\n");
}

TEST(Trash, FilesOfOneNameStandSideBySideAndComeBack)
{
    const TempFolder folder;
    const QString trash = folder.Path("Trash");
    QVector<TrashedFile> files;
    for (const char* content : {"one", "two", "three"}) {
        folder.Write("x.tar.jpg", content);
        files.append(MoveToTrash(folder.Path("x.tar.jpg"), trash));
    }
    EXPECT_EQ(files.at(2).trashed, folder.Path("Trash/files/x.tar 3.jpg"));
    BringBackFromTrash(files.at(1));
    EXPECT_EQ(folder.Content("x.tar.jpg"), "two");
    // What stands there now is not replaced.
    EXPECT_EQ(FailureOf([&] { BringBackFromTrash(files.at(0)); }), kFailureIo);
    EXPECT_EQ(folder.Content("x.tar.jpg"), "two");
    EXPECT_EQ(folder.Content("Trash/files/x.tar.jpg"), "one");
    EXPECT_EQ(StatPath(files.at(1).info).type, FileType::Missing);
    EXPECT_EQ(StatPath(files.at(0).info).type, FileType::Regular);
}

TEST(Trash, ALongNameIsCutAndComesBackWhole)
{
    const TempFolder folder;
    const QByteArray name = QByteArray(251, 'n') + ".jpg";
    folder.Write(name, "one");
    const TrashedFile file = MoveToTrash(folder.Path(name), folder.Path("Trash"));
    EXPECT_TRUE(file.trashed.endsWith("n.jpg"));
    BringBackFromTrash(file);
    EXPECT_EQ(folder.Content(name), "one");
}

TEST(Trash, AnotherVolumeHasItsOwn)
{
    const TempFolder home;
    const TempFolder other("/dev/shm");
    other.Write("x.jpg", "one");
    const TrashedFile file = MoveToTrash(other.Path("x.jpg"), home.Path("Trash"));
    EXPECT_TRUE(file.trashed.startsWith("/dev/shm/.Trash")) << file.trashed.toStdString();
    const QByteArray note = ReadWholeFile(file.info, 4096);
    EXPECT_TRUE(note.contains("Path=quillane-test-")) << note.constData();
    home.MakeFolder("home");
    home.MakeFolder("pictures");
    const QByteArray listed = OtherReader(QStringLiteral("trash-list"), home);
    EXPECT_TRUE(listed.contains(' ' + other.Bytes("x.jpg") + '\n')) << listed.constData();
    BringBackFromTrash(file);
    EXPECT_EQ(other.Content("x.jpg"), "one");
    EXPECT_EQ(StatPath(file.info).type, FileType::Missing);
}

TEST(Trash, WhatIsGoneFailsAndNothingIsLeft)
{
    const TempFolder folder;
    EXPECT_EQ(FailureOf([&] { MoveToTrash(folder.Path("gone"), folder.Path("Trash")); }),
              kFailureNoFile);
    folder.MakeFolder("sub");
    folder.Write("sub/x.jpg", "one");
    EXPECT_EQ(FailureOf([&] { MoveToTrash(folder.Path("sub"), folder.Path("Trash")); }),
              kFailureIo);
    const TrashedFile file = MoveToTrash(folder.Path("sub/x.jpg"), folder.Path("Trash"));
    ASSERT_EQ(rmdir(folder.Bytes("sub").constData()), 0);
    EXPECT_EQ(FailureOf([&] { BringBackFromTrash(file); }), kFailureNoFile);
    EXPECT_EQ(folder.Content("Trash/files/x.jpg"), "one");
    ASSERT_TRUE(RemoveFile(file.trashed));
    folder.MakeFolder("sub");
    EXPECT_EQ(FailureOf([&] { BringBackFromTrash(file); }), kFailureNoFile);
}

TEST(Trash, OtherProgramsListAndRestoreWhatIsPutThere)
{
    const TempFolder folder;
    folder.MakeFolder("home");
    folder.MakeFolder("pictures");
    for (const QByteArray name : {"plain.jpg", "two words.jpg", "100%41 [x]&=+;#?.jpg",
                                  "Gr\xc3\xbc\xc3\x9f"
                                  "e.jpg"}) {
        folder.Write("pictures/" + name, name);
        MoveToTrash(folder.Path("pictures/" + name), folder.Path("data/Trash"));
        EXPECT_EQ(StatPath(folder.Path("pictures/" + name)).type, FileType::Missing);
        const QByteArray listed = OtherReader(QStringLiteral("trash-list"), folder);
        EXPECT_TRUE(listed.contains(' ' + folder.Bytes("pictures/" + name) + '\n'))
            << listed.constData();
        OtherReader(QStringLiteral("trash-restore"), folder, "0\n");
        EXPECT_EQ(folder.Content("pictures/" + name), name);
        EXPECT_EQ(OtherReader(QStringLiteral("trash-list"), folder), "");
    }
}

TEST(Trash, WhatOthersHaveRestoredIsNotBroughtBackAgain)
{
    const TempFolder folder;
    folder.MakeFolder("home");
    folder.MakeFolder("pictures");
    folder.Write("pictures/x.jpg", "one");
    const TrashedFile file = MoveToTrash(folder.Path("pictures/x.jpg"), folder.Path("data/Trash"));
    OtherReader(QStringLiteral("trash-restore"), folder, "0\n");
    EXPECT_EQ(FailureOf([&] { BringBackFromTrash(file); }), kFailureNoFile);
    EXPECT_EQ(folder.Content("pictures/x.jpg"), "one");
}

TEST(Trash, AFileOrALinkInTheTrashsPlaceIsNoTrash)
{
    const TempFolder folder;
    folder.Write("x.jpg", "one");
    folder.MakeFolder("Trash");
    folder.MakeFolder("elsewhere");
    folder.Link("../elsewhere", "Trash/files");
    TrashedFile file;
    ResumeNext([&] { file = MoveToTrash(folder.Path("x.jpg"), folder.Path("Trash")); });
    EXPECT_EQ(StatPath(folder.Path("elsewhere/x.jpg")).type, FileType::Missing);
    if (!file.trashed.isEmpty()) {
        BringBackFromTrash(file); // there was one at the top of the volume
    }
    EXPECT_EQ(folder.Content("x.jpg"), "one");
}

TEST(Trash, AFileWhosePlaceIsTooDeepToBeToldStaysAndNoOtherGoesInsteadOfIt)
{
    const TempFolder folder;
    folder.MakeFolder("here");
    folder.Write("here/a.jpg", "another");
    // Behind a link the path is short enough for the system; where the link leads is too long.
    constexpr int kSteps = 12;
    const QByteArray step = QByteArray(200, 'd') + '/';
    folder.MakeFolder("far");
    QByteArray far = "far/";
    for (int i = 0; i < kSteps; ++i) {
        folder.MakeFolder(far += step);
    }
    folder.Link(folder.Bytes(far), "link");
    QByteArrayList made;
    QByteArray deep = "link/";
    for (int i = 0; i < kSteps; ++i) {
        folder.MakeFolder(deep += step);
        made.prepend(folder.Bytes(deep));
    }
    folder.Write(deep + "a.jpg", "deep");
    std::array<char, PATH_MAX> before{};
    ASSERT_NE(getcwd(before.data(), before.size()), nullptr);
    ASSERT_EQ(chdir(folder.Bytes("here").constData()), 0);
    EXPECT_NE(FailureOf([&] { MoveToTrash(folder.Path(deep + "a.jpg"), folder.Path("Trash")); }),
              0);
    EXPECT_EQ(chdir(before.data()), 0);
    EXPECT_EQ(folder.Content("here/a.jpg"), "another");
    EXPECT_EQ(folder.Content(deep + "a.jpg"), "deep");
    EXPECT_EQ(unlink(folder.Bytes(deep + "a.jpg").constData()), 0);
    for (const QByteArray& one : made) {
        EXPECT_EQ(rmdir(one.constData()), 0); // nobody else finds the way
    }
}

} // namespace

} // namespace quillane
