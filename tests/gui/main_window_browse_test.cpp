#include "browser/ui/frmBrowserAbout.h"
#include "main_window_fixture.h"

#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTimer>

namespace quillane {

TEST_F(MainWindowTest, AClickMakesAFileCurrentAndShowsIt)
{
    Pictures(3);
    Start();
    ClickCell(2);
    EXPECT_EQ(session.gImageListIndex, 2);
    EXPECT_EQ(session.gsFileName, folder + QStringLiteral("p2.bmp"));
    EXPECT_EQ(Find<QLabel>("lblPreviewTitle")->accessibleName(), QStringLiteral("p2.bmp"));
    EXPECT_TRUE(QTest::qWaitFor(
        [this] { return session.gsImageDimension == QStringLiteral("Dimension:  8 X 6 X 24"); },
        kWait));
    EXPECT_EQ(session.gsImageFormat, QStringLiteral("Format: Windows BMP"));
    EXPECT_FALSE(Find<QPlainTextEdit>("txtImageDescriptionTags")->isVisible());
    EXPECT_TRUE(
        QTest::qWaitFor([this] { return !Find<QLabel>("LEAD1")->pixmap().isNull(); }, kWait));
    EXPECT_TRUE(main->Lead2().HasBitmap());
}

TEST_F(MainWindowTest, AClickBesideTheCellsChangesNothingButTheIndex)
{
    Pictures(2);
    Start();
    ClickCell(1);
    const QWidget* viewport = Grid()->viewport();
    QTest::mouseClick(Grid()->viewport(), Qt::LeftButton, {},
                      QPoint(viewport->width() - 3, viewport->height() - 3));
    EXPECT_EQ(session.gImageListIndex, -1);
    EXPECT_EQ(session.gsFileName, folder + QStringLiteral("p1.bmp"));
}

TEST_F(MainWindowTest, TheKeyboardMovesTheCurrentFile)
{
    Pictures(3);
    Start();
    QTest::keyClick(Grid(), Qt::Key_Right);
    EXPECT_EQ(session.gsFileName, folder + QStringLiteral("p1.bmp"));
    QTest::keyClick(Grid(), Qt::Key_End);
    EXPECT_EQ(session.gsFileName, folder + QStringLiteral("p2.bmp"));
    EXPECT_EQ(session.gImageListIndex, 2);
}

TEST_F(MainWindowTest, EachViewEntryChecksItselfAloneAndScansAgain)
{
    Pictures(2);
    Start();
    for (const ViewEntry& view : ViewEntries()) {
        Picture(QStringLiteral("new%1.bmp").arg(view.style));
        const qsizetype before = session.lbFilTiffs.size();
        Click(view.name);
        EXPECT_EQ(session.lbFilTiffs.size(), before + 1) << view.name;
        for (const ViewEntry& other : ViewEntries()) {
            EXPECT_EQ(Entry(other.name)->isChecked(), &other == &view) << other.name;
        }
        EXPECT_EQ(Grid()->isVisible(), view.style < 0);
        EXPECT_EQ(List()->isVisible(), view.style >= 0);
        if (view.style >= 0) {
            EXPECT_EQ(List()->Style(), view.style);
            EXPECT_EQ(List()->Count(), session.lbFilTiffs.size());
        } else {
            EXPECT_EQ(Grid()->Count(), session.lbFilTiffs.size());
        }
    }
}

TEST_F(MainWindowTest, RowsShowNameSizeAndTime)
{
    Picture(QStringLiteral("a.bmp"));
    Start();
    Click("mnuMainViewTileBoxTileFilename3");
    ASSERT_EQ(List()->Count(), 1);
    const FileStat stat = StatPath(folder + QStringLiteral("a.bmp"));
    EXPECT_EQ(List()->Caption(0), QStringLiteral("Name"));
    EXPECT_EQ(List()->Caption(1), QStringLiteral("Size"));
    EXPECT_EQ(List()->Caption(2), QStringLiteral("Modified"));
    EXPECT_EQ(List()->TextAt(0, 0), QStringLiteral("a.bmp"));
    EXPECT_EQ(List()->TextAt(0, 1), QString::number(stat.size));
    EXPECT_EQ(List()->TextAt(0, 2),
              loop.SystemDateText(QDateTime::fromSecsSinceEpoch(stat.modifiedSeconds)));
}

TEST_F(MainWindowTest, AClickOnARowMakesItsFileCurrent)
{
    Pictures(3);
    Start();
    Click("mnuMainViewTileBoxTileFilename3");
    ClickRow(2);
    EXPECT_EQ(session.gImageListIndex, 2);
    EXPECT_EQ(session.gsFileName, folder + QStringLiteral("p2.bmp"));
}

TEST_F(MainWindowTest, SortingByAHeadingReordersTheOneTruth)
{
    Picture(QStringLiteral("small.bmp"), {2, 2});
    Picture(QStringLiteral("large.bmp"), {40, 40});
    Picture(QStringLiteral("mid.bmp"), {10, 10});
    Start();
    Click("mnuMainViewTileBoxTileFilename3");
    ClickRow(1); // mid.bmp
    List()->SortBy(kColumnSize, Qt::AscendingOrder);
    ASSERT_TRUE(QTest::qWaitFor(
        [this] { return session.lbFilTiffs.first().endsWith(QStringLiteral("small.bmp")); },
        kWait));
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(session.lbFilTiffs.at(i), List()->PathAt(i));
    }
    EXPECT_EQ(session.gsFileName, folder + QStringLiteral("mid.bmp"));
    EXPECT_EQ(session.gImageListIndex, 1);
}

TEST_F(MainWindowTest, SortingWhileRowsComeKeepsTheFilesThatHaveNoneYet)
{
    Picture(QStringLiteral("a.bmp"), {40, 40});
    Picture(QStringLiteral("b.bmp"), {2, 2});
    Start();
    Click("mnuMainViewTileBoxTileFilename3");
    const QString later = folder + QStringLiteral("later.bmp");
    session.lbFilTiffs.append(later);
    List()->SortBy(kColumnSize, Qt::AscendingOrder);
    EXPECT_EQ(session.lbFilTiffs,
              (QList<QString>{folder + QStringLiteral("b.bmp"), folder + QStringLiteral("a.bmp"),
                              later}));
}

TEST_F(MainWindowTest, SelectAllOfThePopupIsForTheGridAlone)
{
    Pictures(3);
    Start();
    Click("mnuMainViewTileBoxTileFilename3");
    ClickRow(0);
    Click("mnuPopSelect");
    EXPECT_EQ(List()->SelectedCount(), 1);
    Click("mnuMainViewTileBoxTileImage");
    Click("mnuPopSelect");
    EXPECT_EQ(Grid()->SelectedCount(), 3);
    EXPECT_EQ(main->SelectedFlags(), QVector<bool>(3, true));
}

TEST_F(MainWindowTest, AddingToTheAlbumSkipsWhatIsThere)
{
    Pictures(3);
    Start();
    ClickCell(0);
    ClickCell(2, Qt::LeftButton, Qt::ControlModifier);
    Click("mnuPopAdd");
    EXPECT_EQ(
        session.lbExportList,
        (QList<QString>{folder + QStringLiteral("p0.bmp"), folder + QStringLiteral("p2.bmp")}));
    Click("mnuMainViewTileBoxTileFilename");
    ClickRow(1);
    ClickRow(2, Qt::ControlModifier);
    Click("mnuPopAdd");
    EXPECT_EQ(session.lbExportList.size(), 3);
}

TEST_F(MainWindowTest, AnEmptyFolderAddsNothing)
{
    Start();
    Click("mnuPopAdd");
    EXPECT_TRUE(session.lbExportList.isEmpty());
    EXPECT_EQ(main->Panel(3), QStringLiteral("Total Images = 0"));
}

TEST_F(MainWindowTest, TheSevenToolEntriesOnlyChooseTheDefault)
{
    Pictures(1);
    Start();
    Click("mnuWindowsDefaultViewer");
    EXPECT_EQ(session.gsImageTool, 6);
    EXPECT_TRUE(fakes.launcher.opened.isEmpty());
    main->SetImageTool(0);
    EXPECT_TRUE(Entry("mnuImage")->isChecked());
    EXPECT_FALSE(Entry("mnuWindowsDefaultViewer")->isChecked());
    Click("mnuPopWindowsDefaultViewer");
    EXPECT_EQ(fakes.launcher.opened, QStringList{session.gsFileName});
    EXPECT_EQ(session.gsImageTool, 0);
    main->ImageTool(7);
    EXPECT_EQ(fakes.launcher.opened.size(), 1);
}

TEST_F(MainWindowTest, AToolThatOpensNothingIsSilent)
{
    Pictures(1);
    Start();
    fakes.launcher.fails = true;
    main->ImageTool(6);
    EXPECT_TRUE(fakes.dialogs.Boxes().isEmpty());
}

TEST_F(MainWindowTest, ADoubleClickOpensAndTheCellKeepsItsPlace)
{
    Pictures(3);
    Start();
    main->SetImageTool(6);
    for (const int cell : {1, 2}) {
        const QString file = folder + QStringLiteral("p%1.bmp").arg(cell);
        ClickCell(cell);
        QTest::mouseDClick(Grid()->viewport(), Qt::LeftButton, {}, Grid()->CellRect(cell).center());
        EXPECT_EQ(fakes.launcher.opened.value(cell - 1), file);
        EXPECT_EQ(Grid()->PathAt(cell), file);
        EXPECT_EQ(session.lbFilTiffs.at(cell), file);
        EXPECT_TRUE(Grid()->IsSelected(cell));
    }
}

TEST_F(MainWindowTest, AChangedFileGetsANewThumbnailInItsPlace)
{
    Pictures(3);
    Start();
    ClickCell(1);
    Picture(QStringLiteral("p1.bmp"), {200, 100});
    main->UpdateImageInImageList();
    EXPECT_EQ(Grid()->Count(), 3);
    EXPECT_TRUE(Grid()->HasThumbnail(1));
    EXPECT_EQ(session.gsImageDimension, QStringLiteral("Dimension:  200 X 100 X 24"));
}

TEST_F(MainWindowTest, AFileThatCanNoLongerBeReadKeepsItsCell)
{
    Pictures(2);
    Start();
    ClickCell(1);
    WriteWholeFile(folder + QStringLiteral("p1.bmp"), "gone bad");
    main->UpdateImageInImageList();
    EXPECT_EQ(Grid()->Count(), 2);
    EXPECT_FALSE(Grid()->FailureAt(1).isEmpty());
}

TEST_F(MainWindowTest, AClipOpensWithTheSystemWhenTheSwitchSaysSo)
{
    WriteWholeFile(folder + QStringLiteral("clip.avi"), "RIFF");
    store.SaveSetting(QStringLiteral("Globals"), QStringLiteral("gsVideoTool"),
                      QStringLiteral("1"));
    Start();
    Click("mnuMainViewTileBoxTileFilename3");
    ClickRow(0);
    QWidget* at = List()->childAt(List()->RowRect(0).center());
    QTest::mouseDClick(at, Qt::LeftButton, {}, at->mapFrom(List(), List()->RowRect(0).center()));
    EXPECT_EQ(fakes.launcher.opened, QStringList{folder + QStringLiteral("clip.avi")});
}

TEST_F(MainWindowTest, ARightClickBesideTheRowsShowsTheMenuForTheCurrentFile)
{
    Pictures(2);
    Start();
    Click("mnuMainViewTileBoxTileFilename3");
    ClickRow(1);
    Q_EMIT List()->contextMenuWanted(-1, QPoint(5, 5));
    EXPECT_TRUE(main->Menus().Popup()->isVisible());
    EXPECT_EQ(session.gsFileName, folder + QStringLiteral("p1.bmp"));
    main->Menus().Popup()->close();
}

TEST_F(MainWindowTest, OpenAsksForAFileAndHandsItToTheDefaultTool)
{
    Pictures(1);
    Start();
    main->SetImageTool(6);
    fakes.dialogs.AnswerFile(QStringLiteral("/elsewhere/x.jpg"));
    Click("mnuMainFileOpen");
    ASSERT_EQ(fakes.dialogs.FileDialogs().size(), 1);
    EXPECT_EQ(fakes.dialogs.FileDialogs().first().title, QStringLiteral("Open File"));
    EXPECT_EQ(fakes.dialogs.FileDialogs().first().folder, folder);
    EXPECT_EQ(fakes.dialogs.FileDialogs().first().fileName, QString());
    EXPECT_EQ(session.gsFileName, QStringLiteral("/elsewhere/x.jpg"));
    EXPECT_EQ(fakes.launcher.opened, QStringList{QStringLiteral("/elsewhere/x.jpg")});
    Click("mnuMainFileOpen"); // cancelled
    EXPECT_EQ(fakes.launcher.opened.size(), 1);
    EXPECT_TRUE(fakes.dialogs.Boxes().isEmpty());
}

TEST_F(MainWindowTest, HelpAndPagesOpenByTheSystem)
{
    Start();
    Click("mnuHelpContents");
    EXPECT_EQ(fakes.launcher.opened, QStringList{fakes.places.HelpFile()});
    Click("mnuTechSupport");
    Click("mnuOnlineTutorial");
    Click("mnuQuillaneWeb");
    EXPECT_EQ(fakes.launcher.addresses.size(), 3);
}

TEST_F(MainWindowTest, AboutShowsTitleVersionAndLinks)
{
    frmBrowserAbout about(QStringLiteral("Quillane"), fakes.launcher);
    about.show();
    EXPECT_EQ(about.windowTitle(), QStringLiteral("About Quillane"));
    EXPECT_EQ(about.findChild<QLabel*>(QStringLiteral("lblTitle"))->text(),
              QStringLiteral("Quillane"));
    auto* site = about.findChild<QLabel*>(QStringLiteral("Label1"));
    QTest::mouseClick(site, Qt::LeftButton);
    auto* mail = about.findChild<QLabel*>(QStringLiteral("Label2"));
    QTest::mouseClick(mail, Qt::LeftButton);
    ASSERT_EQ(fakes.launcher.addresses.size(), 2);
    EXPECT_TRUE(fakes.launcher.addresses.at(1).startsWith(QStringLiteral("mailto:")));
    EXPECT_TRUE(fakes.launcher.addresses.at(1).contains(QStringLiteral("Help%20Request")));
    QEnterEvent enter({1, 1}, {1, 1}, {1, 1});
    QApplication::sendEvent(site, &enter);
    EXPECT_EQ(site->palette().color(QPalette::Link), QColor(255, 0, 0));
    QTest::mouseClick(about.findChild<QPushButton*>(QStringLiteral("cmdOK")), Qt::LeftButton);
    EXPECT_FALSE(about.isVisible());
}

TEST_F(MainWindowTest, APathTypedInTheBoxIsBrowsed)
{
    Pictures(1);
    Start();
    MakeFolder(folder + QStringLiteral("sub"));
    auto* combo = Find<QComboBox>("cboDirPath");
    combo->setEditText(folder + QStringLiteral("sub"));
    QTest::keyClick(combo, Qt::Key_Return);
    EXPECT_TRUE(QTest::qWaitFor(
        [this] { return session.gsPath == folder + QStringLiteral("sub/"); }, kWait));
    QTest::keyClick(main.get(), Qt::Key_Left, Qt::AltModifier);
    EXPECT_TRUE(QTest::qWaitFor([this] { return session.gsPath == folder; }, kWait));
}

TEST_F(MainWindowTest, AFolderThatChangesShowsAQuietLineAndRefreshTakesItAway)
{
    Pictures(1);
    Start();
    auto* line = Find<QLabel>("lblFolderChanged");
    EXPECT_EQ(fakes.watch.folder, folder);
    EXPECT_FALSE(line->isVisible());
    Picture(QStringLiteral("new.bmp"));
    fakes.watch.Fire();
    EXPECT_TRUE(line->isVisible());
    EXPECT_EQ(session.lbFilTiffs.size(), 1);
    EXPECT_TRUE(line->accessibleName().contains(QStringLiteral("Refresh (F5)")));
    Click("mnuRefresh");
    EXPECT_FALSE(line->isVisible());
    EXPECT_EQ(session.lbFilTiffs.size(), 2);
}

TEST_F(MainWindowTest, EscDuringAScanShowsTheMessageAndKeepsTheCells)
{
    Pictures(30);
    Start();
    fakes.dialogs.Answer(BoxAnswer::Ok);
    QTest::keyPress(Grid(), Qt::Key_Escape);
    main->BrowseImages(1);
    QTest::keyRelease(Grid(), Qt::Key_Escape);
    ASSERT_GE(fakes.dialogs.Boxes().size(), 1);
    EXPECT_EQ(fakes.dialogs.Boxes().first().text, QStringLiteral("Browsing Directory Canceled."));
    EXPECT_EQ(session.lbFilTiffs.size(), Grid()->Count());
    EXPECT_LT(Grid()->Count(), 30);
}

TEST_F(MainWindowTest, ShowAllFilesShowsAFileWithoutAScan)
{
    Pictures(2);
    Start();
    Click("mnuShowAll");
    EXPECT_TRUE(Find<FolderTree>("tvExplore")->ShowFiles());
    const QString file = folder + QStringLiteral("p1.bmp");
    Q_EMIT Find<FolderTree>("tvExplore")->nodeSelected(QStringLiteral("p1.bmp"), file);
    EXPECT_EQ(main->Panel(4), QStringLiteral("File: ") + file);
    EXPECT_EQ(session.gsFileName, file);
    EXPECT_EQ(session.gsPath, file);
    EXPECT_EQ(Grid()->Count(), 2);
    main->SetImageTool(6);
    Q_EMIT Find<FolderTree>("tvExplore")->nodeDoubleClicked(file);
    EXPECT_EQ(fakes.launcher.opened, QStringList{file});
}

TEST_F(MainWindowTest, CtrlAAndCtrlCActOnTheVisibleView)
{
    Pictures(3);
    Start();
    main->activateWindow();
    Click("mnuMainViewTileBoxTileFilename3");
    List()->setFocus();
    QTest::keyClick(main->focusWidget(), Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(List()->SelectedCount(), 3);
    QTest::keyClick(main->focusWidget(), Qt::Key_C, Qt::ControlModifier);
    const QMimeData* files = QApplication::clipboard()->mimeData();
    ASSERT_NE(files, nullptr);
    EXPECT_EQ(files->urls().size(), 3);
    EXPECT_TRUE(files->hasFormat(QStringLiteral("x-special/gnome-copied-files")));
}

TEST_F(MainWindowTest, ExitSavesAndCloses)
{
    Pictures(1);
    Start();
    Click("mnuMainFIleExit");
    EXPECT_FALSE(main->isVisible());
    const SettingsStore read(store.File());
    EXPECT_EQ(read.GetSetting(QStringLiteral("Globals"), QStringLiteral("gsPath")), folder);
}

} // namespace quillane
