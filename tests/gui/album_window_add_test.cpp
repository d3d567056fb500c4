// Files that come into the album window by clipboard and mouse.
#include "gui/album_window_fixture.h"

#include <unistd.h>

namespace quillane {

namespace {

/// Files as another program offers them.
QMimeData* UriList(const QByteArray& lines)
{
    auto* data = new QMimeData;
    data->setData(QStringLiteral("text/uri-list"), lines);
    return data;
}

class AlbumAddTest : public AlbumWindowTest {
protected:
    void Paste(QMimeData* data)
    {
        QApplication::clipboard()->setMimeData(data);
        OpenFileMenu();
        ASSERT_TRUE(Menu("mnuPaste")->isEnabled());
        Menu("mnuPaste")->trigger();
        ASSERT_TRUE(Rest());
    }
    /// Drops onto the middle of a part of the window; whether it was taken.
    bool DropOn(QWidget* part, QMimeData* data, Qt::KeyboardModifiers modifiers = {})
    {
        const std::unique_ptr<QMimeData> owned(data);
        const QPoint at = part->rect().center();
        const Qt::DropActions actions = Qt::CopyAction | Qt::MoveAction | Qt::LinkAction;
        QDragEnterEvent enter(at, actions, data, Qt::LeftButton, modifiers);
        QApplication::sendEvent(part, &enter);
        if (!enter.isAccepted()) {
            return false;
        }
        QDragMoveEvent move(at, actions, data, Qt::LeftButton, modifiers);
        QApplication::sendEvent(part, &move);
        QDropEvent drop(at, actions, data, Qt::LeftButton, modifiers);
        QApplication::sendEvent(part, &drop);
        // Never a move: the source would remove its files.
        EXPECT_EQ(drop.dropAction(), Qt::CopyAction);
        EXPECT_TRUE(Rest());
        return drop.isAccepted();
    }
};

} // namespace

TEST_F(AlbumAddTest, PastedFilesHaveSizeAndDateInTheOrderOfTheList)
{
    const QList<QString> files{Small(QStringLiteral("b.bmp")), Small(QStringLiteral("a.bmp"))};
    Open();
    Paste(FileListMimeData(files));
    EXPECT_EQ(album->Rows().Paths(), files);
    EXPECT_EQ(session.lbExportList, files);
    EXPECT_EQ(Total(), "2");
    for (int row = 0; row < 2; ++row) {
        EXPECT_EQ(Cell(row, 1), QString::number(StatPath(files.at(row)).size));
        EXPECT_EQ(Cell(row, 2), loop.SystemDateText(ModifiedTime(StatPath(files.at(row)))));
    }
    EXPECT_TRUE(LeadShown());
}

TEST_F(AlbumAddTest, PasteKeepsDuplicatesAndMissingFilesAndLeavesOutOtherMachines)
{
    const QString file = Small(QStringLiteral("a b.bmp"));
    session.lbExportList = {file};
    Open();
    Paste(UriList("https://far.example/x.jpg\r\nfile://elsewhere/y.jpg\r\nfile://"
                  + BytesFromPath(file).replace(" ", "%20") + "\r\nfile:///nowhere/none.png\r\n"));
    const QList<QString> wanted{file, file, QStringLiteral("/nowhere/none.png")};
    EXPECT_EQ(album->Rows().Paths(), wanted);
    EXPECT_EQ(session.lbExportList, wanted);
    EXPECT_EQ(Cell(2, 1), "    ");
    EXPECT_EQ(Cell(2, 2), "File Not Found");
    // The first entry of the list is previewed.
    EXPECT_TRUE(Box("txtImageSize").startsWith(QStringLiteral("Image Size: 40 X 30 X ")));
}

TEST_F(AlbumAddTest, PasteWhoseFirstEntryIsMissingShowsTheNotFoundState)
{
    Open();
    Paste(FileListMimeData({QStringLiteral("/nowhere/none.png"), Small()}));
    EXPECT_EQ(Box("txtImageSize"), "File Not Found!");
    EXPECT_EQ(Box("txtImageFormat"), "");
    EXPECT_FALSE(LeadShown());
    EXPECT_EQ(Total(), "2");
}

TEST_F(AlbumAddTest, PasteOfRemoteAddressesAloneAddsNothingAndSaysSo)
{
    Open();
    Paste(UriList("https://far.example/x.jpg\r\n"));
    EXPECT_EQ(Total(), "0");
    EXPECT_TRUE(session.lbExportList.isEmpty());
    EXPECT_EQ(Box("txtImageSize"), "File Not Found!");
    EXPECT_FALSE(Told().isEmpty());
}

TEST_F(AlbumAddTest, PasteOfWhatIsNoListChangesNothing)
{
    session.lbExportList = {Small()};
    Open();
    ASSERT_TRUE(Rest());
    QApplication::clipboard()->setText(QStringLiteral("a walk in the rain"));
    Menu("mnuPaste")->setEnabled(true);
    Menu("mnuPaste")->trigger();
    ASSERT_TRUE(Rest());
    EXPECT_EQ(Total(), "1");
    EXPECT_EQ(session.lbExportList.size(), 1);
}

TEST_F(AlbumAddTest, PasteRefillsTheGridWhenItIsOn)
{
    Open();
    ShowThumbnails();
    Paste(FileListMimeData({Small(), QStringLiteral("/nowhere/none.png")}));
    EXPECT_TRUE(Grid()->isVisible());
    EXPECT_EQ(Grid()->Count(), 1);
    EXPECT_EQ(Grid()->Current(), 0);
    EXPECT_EQ(Total(), "2");
}

TEST_F(AlbumAddTest, FilesMayBeDroppedAnywhereInTheWindow)
{
    const QString png = Small(QStringLiteral("a.png"));
    session.lbExportList = {png};
    Open();
    ASSERT_TRUE(Rest()); // the description is shown now
    QList<QString> wanted{png};
    int number = 0;
    const auto drop = [&](QWidget* part) {
        wanted.append(Small(QStringLiteral("d%1.bmp").arg(++number)));
        EXPECT_TRUE(DropOn(part, FileListMimeData({wanted.last()})))
            << part->objectName().toStdString();
        EXPECT_EQ(session.lbExportList, wanted) << part->objectName().toStdString();
        EXPECT_EQ(Total(), QString::number(wanted.size()));
    };
    drop(List()->viewport());
    drop(Part<EngineView>("LEAD1")->viewport());
    drop(Part<QPlainTextEdit>("txtTags")->viewport());
    drop(Part<QPlainTextEdit>("rtbComment")->viewport());
    drop(Part<QLineEdit>("txtImageSize"));
    drop(album->menuBar());
    EXPECT_EQ(Comment(), "");
    ShowThumbnails();
    drop(Grid()->viewport());
    EXPECT_EQ(Grid()->Count(), wanted.size());
}

TEST_F(AlbumAddTest, TextDroppedOnTheCommentIsText)
{
    Open();
    auto* text = new QMimeData;
    text->setText(QStringLiteral("Summer"));
    EXPECT_TRUE(DropOn(Part<QPlainTextEdit>("rtbComment")->viewport(), text));
    EXPECT_EQ(Comment(), "Summer");
    EXPECT_EQ(Total(), "0");
}

TEST_F(AlbumAddTest, WhatIsNoFileListIsNotTaken)
{
    Open();
    auto* text = new QMimeData;
    text->setText(QStringLiteral("a walk in the rain"));
    EXPECT_FALSE(DropOn(List()->viewport(), text));
    auto* picture = new QMimeData;
    picture->setData(QStringLiteral("image/png"), "x");
    EXPECT_FALSE(DropOn(List()->viewport(), picture));
    EXPECT_EQ(Total(), "0");
}

TEST_F(AlbumAddTest, DropTakesFilesAloneOnceAndSaysHowMany)
{
    const QString file = Small(), other = Small(QStringLiteral("b.bmp"));
    ASSERT_TRUE(MakeFolder(Path(QStringLiteral("folder.jpg"))));
    session.lbExportList = {file};
    Open();
    ASSERT_TRUE(Rest());
    EXPECT_TRUE(DropOn(List()->viewport(),
                       UriList("file://" + BytesFromPath(file) + "\r\nfile://"
                               + BytesFromPath(Path(QStringLiteral("folder.jpg")))
                               + "\r\nfile:///nowhere/none.png\r\nhttps://far.example/x.jpg\r\n"
                                 "file://"
                               + BytesFromPath(other) + "\r\nfile:///dev/zero\r\n")));
    EXPECT_EQ(session.lbExportList, (QList<QString>{file, other}));
    EXPECT_EQ(album->Rows().Paths(), session.lbExportList);
    EXPECT_TRUE(Told().startsWith(QStringLiteral("1 of 5 added"))) << Told().toStdString();
}

TEST_F(AlbumAddTest, DropOfRemoteAddressesAloneAddsNothingAndSaysSo)
{
    Open();
    EXPECT_TRUE(DropOn(List()->viewport(), UriList("https://far.example/x.jpg\r\n")));
    EXPECT_EQ(Total(), "0");
    EXPECT_FALSE(Told().isEmpty());
}

TEST_F(AlbumAddTest, PathsDroppedAsPlainTextAreFiles)
{
    const QString file = Small();
    Open();
    auto* text = new QMimeData;
    text->setText(file + u'\n');
    EXPECT_TRUE(DropOn(List()->viewport(), text));
    EXPECT_EQ(session.lbExportList, QList<QString>{file});
}

TEST_F(AlbumAddTest, TenThousandFilesAreDroppedAtOnce)
{
    constexpr int kMany = 10'000;
    ASSERT_TRUE(MakeFolder(Path(QStringLiteral("many"))));
    const QByteArray first = BytesFromPath(Small());
    QStringList files;
    for (int i = 0; i < kMany; ++i) {
        files.append(Path(QStringLiteral("many/%1.jpg").arg(i, 5, 10, QLatin1Char('0'))));
        ASSERT_EQ(link(first.constData(), BytesFromPath(files.last()).constData()), 0);
    }
    Open();
    EXPECT_TRUE(DropOn(List()->viewport(), FileListMimeData(files)));
    EXPECT_EQ(Total(), QString::number(kMany));
    EXPECT_EQ(session.lbExportList, files);
}

TEST_F(AlbumAddTest, WindowClosedRightBehindADropTakesTheFilesFirst)
{
    const QString file = Small();
    Open();
    const std::unique_ptr<QMimeData> data(FileListMimeData({file}));
    QDragEnterEvent enter({50, 50}, Qt::CopyAction, data.get(), Qt::LeftButton, {});
    QApplication::sendEvent(album.get(), &enter);
    QDropEvent drop({50, 50}, Qt::CopyAction, data.get(), Qt::LeftButton, {});
    QApplication::sendEvent(album.get(), &drop);
    album->close();
    ASSERT_TRUE(QTest::qWaitFor([this] { return !session.lbExportList.isEmpty(); }, kWait));
    EXPECT_EQ(session.lbExportList, QList<QString>{file});
    ASSERT_TRUE(Rest());
    EXPECT_FALSE(album->isVisible());
}

TEST_F(AlbumAddTest, WindowDestroyedRightBehindADropLeavesNothingBehind)
{
    Open();
    const std::unique_ptr<QMimeData> data(FileListMimeData({Small()}));
    QDragEnterEvent enter({50, 50}, Qt::CopyAction, data.get(), Qt::LeftButton, {});
    QApplication::sendEvent(album.get(), &enter);
    QDropEvent drop({50, 50}, Qt::CopyAction, data.get(), Qt::LeftButton, {});
    QApplication::sendEvent(album.get(), &drop);
    album.reset();
    QApplication::processEvents();
    EXPECT_TRUE(session.lbExportList.isEmpty());
}

TEST_F(AlbumAddTest, RowsAreDraggedOutAsFiles)
{
    session.lbExportList = {Small(QStringLiteral("a.bmp")), Small(QStringLiteral("b.bmp"))};
    Open();
    ASSERT_TRUE(Rest());
    EXPECT_TRUE(List()->dragEnabled());
    EXPECT_FALSE(List()->viewport()->acceptDrops());
    const std::unique_ptr<QMimeData> data(List()->model()->mimeData({Index(1), Index(0)}));
    ASSERT_NE(data, nullptr);
    EXPECT_EQ(FilesOfMimeData(*data), session.lbExportList);
}

} // namespace quillane
