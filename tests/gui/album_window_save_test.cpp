// How the album window saves, and what it keeps when it cannot.
#include "core/unprivileged.h"
#include "gui/album_window_fixture.h"

#include <sys/stat.h>
#include <unistd.h>

namespace quillane {

TEST_F(AlbumFilesTest, SaveIntoAReadOnlyFolderIsToldAndChangesNothing)
{
    const QString folder = Path(QStringLiteral("locked"));
    ASSERT_TRUE(MakeFolder(folder));
    const QString file = folder + QStringLiteral("/a.ifl");
    WriteWholeFile(file, "as it was");
    session.lbExportList = {Small()};
    Open();
    ASSERT_TRUE(Rest());
    ASSERT_EQ(chmod(BytesFromPath(folder).constData(), 0555), 0);
    {
        const Unprivileged person;
        SaveAs(file);
    }
    ASSERT_EQ(chmod(BytesFromPath(folder).constData(), 0755), 0);
    EXPECT_TRUE(Told().startsWith(QStringLiteral("The album was not saved. ")))
        << Told().toStdString();
    EXPECT_EQ(Bytes(file), "as it was");
    EXPECT_TRUE(fakes.dialogs.Boxes().isEmpty());
}

TEST_F(AlbumFilesTest, SaveOntoAFolderAFifoOrADeviceIsToldAndChangesNothing)
{
    MakeFifo(QStringLiteral("fifo.ifl"));
    ASSERT_TRUE(MakeFolder(Path(QStringLiteral("folder.ifl"))));
    session.lbExportList = {Small()};
    Open();
    ASSERT_TRUE(Rest());
    for (const QString& path : {Path(QStringLiteral("fifo.ifl")),
                                Path(QStringLiteral("folder.ifl")), QStringLiteral("/dev/full")}) {
        album->statusBar()->clearMessage();
        album->WriteAlbumFile(path);
        ASSERT_TRUE(Rest());
        EXPECT_TRUE(Told().startsWith(QStringLiteral("The album was not saved. ")))
            << path.toStdString() << ' ' << Told().toStdString();
    }
    EXPECT_EQ(StatPath(Path(QStringLiteral("fifo.ifl"))).type, FileType::Other);
    EXPECT_EQ(StatPath(Path(QStringLiteral("folder.ifl"))).type, FileType::Folder);
    EXPECT_EQ(StatPath(QStringLiteral("/dev/full")).type, FileType::Other);
    EXPECT_EQ(session.lbExportList.size(), 1);
}

TEST_F(AlbumFilesTest, SaveBehindALinkReplacesItsTarget)
{
    const QString file = Album("as it was"), link = Path(QStringLiteral("link.ifl"));
    ASSERT_EQ(symlink("a.ifl", BytesFromPath(link).constData()), 0);
    session.lbExportList = {Small()};
    Open();
    ASSERT_TRUE(Rest());
    SaveAs(link);
    struct stat found;
    ASSERT_EQ(lstat(BytesFromPath(link).constData(), &found), 0);
    EXPECT_TRUE(S_ISLNK(found.st_mode));
    EXPECT_EQ(Bytes(file), BytesFromPath(Small()) + "\r\n");
    EXPECT_TRUE(Told().contains(QStringLiteral("saved"))) << Told().toStdString();
}

TEST_F(AlbumFilesTest, SaveAsksBeforeItReplacesAFileOfTheCompletedName)
{
    session.lbExportList = {Small()};
    Open();
    ASSERT_TRUE(Rest());
    const QString file = Album("as it was");
    fakes.dialogs.Answer(BoxAnswer::No);
    SaveAs(Path(QStringLiteral("a")));
    EXPECT_EQ(Bytes(file), "as it was");
    fakes.dialogs.Answer(BoxAnswer::Yes);
    SaveAs(Path(QStringLiteral("a")));
    EXPECT_EQ(Bytes(file), BytesFromPath(Small()) + "\r\n");
    ASSERT_EQ(fakes.dialogs.Boxes().size(), 2);
}

TEST_F(AlbumFilesTest, NameWithADotIsCompletedToo)
{
    session.lbExportList = {Small()};
    Open();
    ASSERT_TRUE(Rest());
    SaveAs(Path(QStringLiteral("Trip 2.5")));
    EXPECT_EQ(Bytes(Path(QStringLiteral("Trip 2.5.ifl"))), BytesFromPath(Small()) + "\r\n");
    SaveAs(Path(QStringLiteral("B.IFL")));
    EXPECT_EQ(Bytes(Path(QStringLiteral("B.IFL"))), BytesFromPath(Small()) + "\r\n");
    EXPECT_TRUE(fakes.dialogs.Boxes().isEmpty());
}

TEST_F(AlbumFilesTest, CancelledSaveWritesNothing)
{
    session.lbExportList = {Small()};
    Open();
    ASSERT_TRUE(Rest());
    Menu("mnuSave")->trigger();
    ASSERT_EQ(fakes.dialogs.FileDialogs().size(), 1);
    EXPECT_EQ(fakes.dialogs.FileDialogs().first().filter, "Photo Album (*.ifl)|*.ifl");
    EXPECT_EQ(fakes.dialogs.FileDialogs().first().folder, session.gsPath);
    EXPECT_EQ(Told(), "");
}

TEST_F(AlbumFilesTest, SavedAlbumIsReadBackByASecondWindow)
{
    const QList<QString> paths = OneOfThreeMissing();
    OpenAlbum(AlbumOf(paths, QStringLiteral("Summer trip")));
    const QString copy = Path(QStringLiteral("copy.ifl"));
    SaveAs(copy);
    EXPECT_EQ(Bytes(copy), AlbumBytes(QStringLiteral("Summer trip"), paths));
    OpenAlbum(copy);
    EXPECT_EQ(album->Rows().Paths(), paths);
    EXPECT_EQ(Comment(), "Summer trip");
}

} // namespace quillane
