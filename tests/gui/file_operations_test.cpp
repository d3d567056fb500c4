// Delete, copy, move and the trash, by menus and keys of the real main window.
#include "file_operations_fixture.h"

#include "album/ui/frmBrowserImageFileList.h"
#include "platform/clip_files.h"
#include "widgets/ui/folder_tree.h"

#include <QClipboard>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QThread>
#include <atomic>

namespace quillane {

namespace {

/// Chooses a folder in frmBrowse and presses "Select".
void SelectFolder(QDialog& browse, const QString& path, const QString& browsePath)
{
    auto* tree = In<FolderTree>(browse, "FolderView1");
    tree->Select(WithoutSeparator(path));
    ASSERT_TRUE(QTest::qWaitFor(
        [&] { return !tree->IsSelecting() && tree->SelectedPath() == WithoutSeparator(path); },
        10'000));
    EXPECT_EQ(browsePath, path);
    QTest::mouseClick(In<QPushButton>(browse, "cmdSelect"), Qt::LeftButton);
}

} // namespace

TEST_F(FileOperationsTest, NoAtTheQuestionLeavesTheFilesAndYesDeletesTheSelected)
{
    StartActive(3);
    for (const char* entry : {"mnuDelete", "mnuPopDelete"}) {
        SelectCells({0, 2});
        InDialog(
            "messageBox", [&] { Click(entry); },
            [](QDialog& dialog) {
                auto* box = qobject_cast<QMessageBox*>(&dialog);
                ASSERT_NE(box, nullptr);
                EXPECT_EQ(box->text(), QStringLiteral("Delete Files?"));
                EXPECT_EQ(box->windowTitle(), QStringLiteral("Confirm File Delete"));
                EXPECT_EQ(box->icon(), QMessageBox::Warning);
                EXPECT_EQ(box->standardButtons(), QMessageBox::Yes | QMessageBox::No);
                QTest::mouseClick(In<QPushButton>(dialog, "cmdNo"), Qt::LeftButton);
            });
        EXPECT_TRUE(Exists(File(0)) && Exists(File(2)));
        EXPECT_EQ(Grid()->SelectedCount(), 2);
    }
    Answer([&] { Click("mnuDelete"); }, "cmdYes");
    EXPECT_FALSE(Exists(File(0)));
    EXPECT_TRUE(Exists(File(1)));
    EXPECT_FALSE(Exists(File(2)));
    EXPECT_EQ(session.lbFilTiffs, QList<QString>{File(1)});
    EXPECT_EQ(Grid()->Count(), 1);
    EXPECT_EQ(Line(), QStringLiteral("2 of 2 files deleted."));
    EXPECT_FALSE(Find<QProgressBar>("proTile")->isVisible());
    EXPECT_EQ(InTrash(), 0);
}

TEST_F(FileOperationsTest, EscAtTheQuestionIsANo)
{
    StartActive(1);
    SelectCells({0});
    InDialog(
        "messageBox", [&] { Click("mnuDelete"); },
        [](QDialog& box) { QTest::keyClick(&box, Qt::Key_Escape); });
    EXPECT_TRUE(Exists(File(0)));
}

TEST_F(FileOperationsTest, ADeleteOfNothingAsksDeletesNothingAndScans)
{
    StartActive(2);
    Grid()->SelectAll(false);
    Picture(QStringLiteral("new.bmp"));
    Answer([&] { Click("mnuDelete"); }, "cmdYes");
    EXPECT_EQ(session.lbFilTiffs.size(), 3);
    EXPECT_TRUE(Exists(File(0)) && Exists(File(1)));
    EXPECT_EQ(Line(), QStringLiteral("No file is selected."));
}

TEST_F(FileOperationsTest, RowsOfAListAreDeletedAsCellsAre)
{
    StartActive(3);
    for (const char* view : {"mnuMainViewTileBoxTileFilename", "mnuMainViewTileBoxTileFilename3"}) {
        Click(view);
        const QString first = session.lbFilTiffs.first();
        ClickRow(0);
        Answer([&] { Click("mnuDelete"); }, "cmdYes");
        EXPECT_FALSE(Exists(first)) << view;
        EXPECT_EQ(List()->Count(), session.lbFilTiffs.size());
    }
    EXPECT_EQ(session.lbFilTiffs, QList<QString>{File(2)});
}

TEST_F(FileOperationsTest, ACopyGoesToThePickedFolderAndTheViewIsNotScanned)
{
    StartActive(3);
    for (const char* entry : {"mnuCopy", "mnuPopCopy"}) {
        SelectCells({1, 2});
        WriteWholeFile(target + Name(1), "is overwritten");
        session.browsePath = folder;
        Picture(QStringLiteral("unseen.bmp"));
        InDialog(
            "frmBrowse", [&] { Click(entry); },
            [&](QDialog& browse) {
                EXPECT_EQ(browse.windowTitle(), QStringLiteral("Copy File(s) to..."));
                SelectFolder(browse, target, session.browsePath);
            });
        EXPECT_EQ(ReadWholeFile(target + Name(1), 1 << 20), ReadWholeFile(File(1), 1 << 20));
        EXPECT_TRUE(Exists(target + Name(2)));
        EXPECT_FALSE(Exists(target + Name(0)));
        EXPECT_EQ(session.lbFilTiffs.size(), 3);
        EXPECT_EQ(session.browsePath, target);
        EXPECT_EQ(Line(), QStringLiteral("2 of 2 files copied."));
    }
}

TEST_F(FileOperationsTest, AMoveTakesTheFilesAwayAndScans)
{
    StartActive(3);
    for (const char* entry : {"mnuMove", "mnuPopMove"}) {
        const QString first = session.lbFilTiffs.first();
        SelectCells({0});
        session.browsePath = target;
        InDialog(
            "frmBrowse", [&] { Click(entry); },
            [&](QDialog& browse) {
                EXPECT_EQ(browse.windowTitle(), QStringLiteral("Move File(s) to..."));
                SelectFolder(browse, target, session.browsePath);
            });
        EXPECT_FALSE(Exists(first));
        EXPECT_TRUE(Exists(target + LeafName(first)));
        EXPECT_EQ(Line(), QStringLiteral("1 of 1 file moved."));
    }
    EXPECT_EQ(session.lbFilTiffs, QList<QString>{File(2)});
    EXPECT_EQ(InTrash(), 0);
}

TEST_F(FileOperationsTest, ACancelOfTheFolderPickDoesNothingAndGoesHome)
{
    StartActive(1);
    for (const char* entry : {"mnuCopy", "mnuMove"}) {
        SelectCells({0});
        session.browsePath = target;
        InDialog(
            "frmBrowse", [&] { Click(entry); },
            [](QDialog& browse) {
                QTest::mouseClick(In<QPushButton>(browse, "cmdCancel"), Qt::LeftButton);
            });
        EXPECT_EQ(session.browsePath, fakes.places.Home());
        EXPECT_TRUE(Exists(File(0)));
        EXPECT_FALSE(Exists(target + Name(0)));
    }
}

TEST_F(FileOperationsTest, AMoveOntoItselfEndsInTheTrashAndACopyOntoItselfInNothing)
{
    StartActive(2);
    SelectCells({0});
    const auto here = [&](QDialog& browse) { SelectFolder(browse, folder, session.browsePath); };
    session.browsePath = folder;
    InDialog(
        "frmBrowse", [&] { Click("mnuCopy"); }, here);
    EXPECT_TRUE(Exists(File(0)));
    EXPECT_TRUE(Line().startsWith(QStringLiteral("0 of 1 file copied. First failed: ")));
    InDialog(
        "frmBrowse", [&] { Click("mnuMove"); }, here);
    EXPECT_FALSE(Exists(File(0)));
    EXPECT_EQ(InTrash(), 1);
    EXPECT_TRUE(Line().startsWith(QStringLiteral("0 of 1 file moved. 1 file went to the trash "
                                                 "instead. Ctrl+Z brings it back. First failed: "
                                                 "\"p0.bmp\"")))
        << Line().toStdString();
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_TRUE(Exists(File(0)));
    EXPECT_EQ(Line(), QStringLiteral("1 of 1 file brought back from the trash."));
}

TEST_F(FileOperationsTest, DeletePutsIntoTheTrashWithoutAQuestionAndCtrlZBringsBack)
{
    StartActive(4);
    ClickCell(1);
    Key(Qt::Key_Delete);
    EXPECT_FALSE(Exists(File(1)));
    EXPECT_EQ(InTrash(), 1);
    EXPECT_EQ(Line(), QStringLiteral("1 of 1 file moved to the trash. Ctrl+Z brings it back."));
    // The next picture is the current one, and it alone is selected.
    EXPECT_EQ(session.gsFileName, File(2));
    EXPECT_EQ(main->SelectedFlags(), (QVector<bool>{false, true, false}));
    Key(Qt::Key_Delete);
    EXPECT_EQ(session.lbFilTiffs, (QList<QString>{File(0), File(3)}));
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(session.lbFilTiffs, (QList<QString>{File(0), File(2), File(3)}));
    EXPECT_EQ(session.gsFileName, File(2));
    EXPECT_EQ(main->SelectedFlags(), (QVector<bool>{false, true, false}));
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(session.lbFilTiffs.size(), 4);
    EXPECT_EQ(InTrash(), 0);
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Line(), QStringLiteral("There is nothing to bring back."));
}

TEST_F(FileOperationsTest, WhatCouldNotComeBackComesBackWhenItCan)
{
    StartActive(3);
    ClickCell(0);
    Key(Qt::Key_Delete); // p0
    Key(Qt::Key_Delete); // p1
    Picture(Name(1));
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_TRUE(Line().startsWith(QStringLiteral("0 of 1 file brought back")))
        << Line().toStdString();
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_TRUE(Exists(File(0)));
    ASSERT_TRUE(RemoveFile(File(1)));
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_TRUE(Exists(File(1)));
    EXPECT_EQ(InTrash(), 0);
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Line(), QStringLiteral("There is nothing to bring back."));
}

TEST_F(FileOperationsTest, DeleteInAListTakesTheSelectedRows)
{
    StartActive(3);
    Click("mnuMainViewTileBoxTileFilename3");
    ClickRow(0);
    ClickRow(2, Qt::ControlModifier);
    List()->setFocus();
    Key(Qt::Key_Delete);
    EXPECT_EQ(session.lbFilTiffs, QList<QString>{File(1)});
    EXPECT_EQ(session.gsFileName, File(1));
    EXPECT_EQ(InTrash(), 2);
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(List()->Count(), 3);
}

TEST_F(FileOperationsTest, DeleteOfTheLastFileLeavesAnEmptyFolder)
{
    StartActive(1);
    ClickCell(0);
    Key(Qt::Key_Delete);
    EXPECT_TRUE(session.lbFilTiffs.isEmpty());
    Key(Qt::Key_Delete);
    EXPECT_EQ(Line(), QStringLiteral("No file is selected."));
}

TEST_F(FileOperationsTest, ShiftDeleteDeletesForGoodAfterTheQuestion)
{
    StartActive(2);
    ClickCell(0);
    Answer([&] { Key(Qt::Key_Delete, Qt::ShiftModifier); }, "cmdNo");
    EXPECT_TRUE(Exists(File(0)));
    Answer([&] { Key(Qt::Key_Delete, Qt::ShiftModifier); }, "cmdYes");
    EXPECT_FALSE(Exists(File(0)));
    EXPECT_EQ(InTrash(), 0);
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Line(), QStringLiteral("There is nothing to bring back."));
}

TEST_F(FileOperationsTest, KeysOfTheFileMenuWorkAgainAfterAnEmptyFolder)
{
    StartActive(0);
    Q_EMIT main->Menus().Menu(QStringLiteral("mnuMainFile"))->aboutToShow();
    EXPECT_FALSE(Entry("mnuDelete")->isEnabled());
    Pictures(1);
    Click("mnuRefresh");
    ClickCell(0);
    Answer([&] { Key(Qt::Key_Delete, Qt::ShiftModifier); }, "cmdYes");
    EXPECT_FALSE(Exists(File(0)));
}

TEST_F(FileOperationsTest, DeleteAndCtrlZInTheFolderBoxAreOfItsText)
{
    StartActive(2);
    ClickCell(0);
    auto* box = Find<QComboBox>("cboDirPath");
    box->setFocus();
    QTest::keyClicks(box, QStringLiteral("abc"));
    Key(Qt::Key_Home);
    Key(Qt::Key_Delete);
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(InTrash(), 0);
    EXPECT_EQ(session.lbFilTiffs.size(), 2);
}

TEST_F(FileOperationsTest, AWalkWithFailuresTellsHowManyAndWhichFailedFirst)
{
    StartActive(3);
    Grid()->SelectAll();
    ASSERT_TRUE(RemoveFile(File(1)));
    Answer([&] { Click("mnuDelete"); }, "cmdYes");
    EXPECT_TRUE(Line().startsWith(QStringLiteral("2 of 3 files deleted. First failed: ")))
        << Line().toStdString();
    EXPECT_TRUE(Line().contains(QStringLiteral("\"p1.bmp\""))) << Line().toStdString();
    EXPECT_TRUE(session.lbFilTiffs.isEmpty());
}

TEST_F(FileOperationsTest, FilesCopiedWithCtrlCArePastedIntoTheAlbum)
{
    StartActive(3);
    SelectCells({0, 2});
    Key(Qt::Key_C, Qt::ControlModifier);
    cClipFiles held;
    EXPECT_TRUE(held.GetClipboardFiles());
    ASSERT_EQ(held.Count(), 2);
    EXPECT_EQ(held.begin()->Name(), File(0));
    EXPECT_EQ(held.begin()->Size(), StatPath(File(0)).size);
    Click("mnuPopShow");
    auto* album = qobject_cast<frmBrowserImageFileList*>(
        windows.Loaded(QStringLiteral("frmBrowserImageFileList")));
    ASSERT_NE(album, nullptr);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !album->IsWorking(); }, kWait));
    album->findChild<QAction*>(QStringLiteral("mnuPaste"))->trigger();
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return !album->IsWorking() && album->Rows().Count() == 2; }, kWait));
    EXPECT_EQ(session.lbExportList, (QList<QString>{File(0), File(2)}));
    QApplication::clipboard()->clear();
    EXPECT_FALSE(held.GetClipboardFiles());
    EXPECT_EQ(held.Count(), 0);
}

TEST_F(FileOperationsTest, CtrlCTakesNoPathThatDoesNotLieInTheShownFolder)
{
    StartActive(1);
    QApplication::clipboard()->setText(QStringLiteral("before"));
    // As "Show All Files" joins them.
    session.gsPath = WithoutSeparator(folder);
    session.lbFilTiffs = {session.gsPath + Name(0)};
    SelectCells({0});
    Key(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("before"));
    QApplication::clipboard()->clear();
}

TEST_F(FileOperationsTest, TheProgressIsShownWhileFilesAreCopied)
{
    StartActive(3);
    Grid()->SelectAll();
    session.browsePath = target;
    std::atomic<bool> seen = false;
    auto* bar = Find<QProgressBar>("proTile");
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, [&] {
        if (bar->isVisible() && bar->maximum() == 2 && bar->value() == 1) {
            seen = true;
        }
    });
    look.start(1);
    files.before = [&](const QString& path) {
        while (path == File(1) && !seen) {
            QThread::yieldCurrentThread();
        }
    };
    main->FileOperation(9); // no operation: it walks over the files and does nothing
    EXPECT_FALSE(bar->isVisible());
    InDialog(
        "frmBrowse", [&] { Click("mnuCopy"); },
        [&](QDialog& browse) { SelectFolder(browse, target, session.browsePath); });
    EXPECT_TRUE(seen);
    EXPECT_FALSE(bar->isVisible());
    EXPECT_TRUE(Exists(target + Name(2)));
}

} // namespace quillane
