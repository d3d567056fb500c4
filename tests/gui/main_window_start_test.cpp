#include "browser/about_text.h"
#include "main_window_fixture.h"

#include <QFile>
#include <QLabel>
#include <QScreen>
#include <QToolBar>

namespace quillane {

TEST_F(MainWindowTest, AFirstRunOpensAtItsPlaceWithThumbnailsAndTheTreesOwnSelection)
{
    StartBare();
    EXPECT_TRUE(main->isVisible());
    EXPECT_EQ(session.jpegQuality, 10);
    EXPECT_TRUE(Entry("mnuMainViewTileBoxTileImage")->isChecked());
    EXPECT_TRUE(Grid()->isVisible());
    EXPECT_FALSE(List()->isVisible());
    EXPECT_TRUE(
        QTest::qWaitFor([this] { return session.gsPath == fakes.places.Pictures(); }, kWait));
    EXPECT_EQ(session.browsePath, fakes.places.Home());
    EXPECT_EQ(session.exePath, QStringLiteral("/usr/bin"));
    // Where the screen is too small the window is moved to its edge and cut.
    const QSize screen = main->screen()->availableGeometry().size();
    const QRect window(main->pos(), main->size());
    EXPECT_TRUE(window.top() == 180 / 15
                || (window.top() == 0 && window.height() < screen.height()))
        << window.top();
    EXPECT_TRUE(window.left() == 105 / 15
                || (window.left() == 0 && window.width() == screen.width()))
        << window.left();
    EXPECT_LE(window.bottom(), screen.height());
}

TEST_F(MainWindowTest, TheWelcomePictureShowsUntilAFolderIsThere)
{
    main = std::make_unique<frmBrowserMain>(session, store, Services(), windows);
    main->Load();
    EXPECT_EQ(Find<QLabel>("lblPreviewTitle")->accessibleName(), QStringLiteral("Quillane"));
}

TEST_F(MainWindowTest, CaptionAndGlobalsAreSet)
{
    Start();
    EXPECT_EQ(main->windowTitle(), MainCaption(QStringLiteral("Quillane"), session.gsSiteName));
    EXPECT_EQ(session.gsAppTitle, QStringLiteral("Quillane"));
    EXPECT_EQ(session.gsCrLf, QStringLiteral("\r\n"));
    EXPECT_EQ(session.gsTab, QStringLiteral("\t"));
    EXPECT_EQ(session.gsFilter.size(), 257);
}

TEST_F(MainWindowTest, TheFirstListingIsTheRoadOfAnyClickOnAFolder)
{
    Pictures(3);
    Start();
    EXPECT_EQ(session.lbFilTiffs.size(), 3);
    EXPECT_EQ(Grid()->Count(), 3);
    EXPECT_EQ(session.gsFileName, folder + QStringLiteral("p0.bmp"));
    EXPECT_TRUE(Grid()->IsSelected(0));
    EXPECT_EQ(Grid()->Current(), 0);
    EXPECT_EQ(main->Panel(4), folder);
    EXPECT_EQ(Find<QComboBox>("cboDirPath")->currentText(), folder);
    EXPECT_FALSE(Find<QProgressBar>("proTile")->isVisible());
}

TEST_F(MainWindowTest, AStoredSearchSwitchNeverTakesEffect)
{
    store.SaveSetting(QStringLiteral("Settings"), QStringLiteral("mnuSearchOn.Checked"),
                      QStringLiteral("True"));
    Pictures(2);
    Start();
    EXPECT_FALSE(Entry("mnuSearchOn")->isChecked());
    EXPECT_FALSE(session.gSearchActive);
    EXPECT_EQ(session.lbFilTiffs.size(), 2);
}

TEST_F(MainWindowTest, SettingsMakeTheFullRound)
{
    store.SaveSetting(QStringLiteral("Settings"),
                      QStringLiteral("mnuMainViewTileBoxTileImage.Checked"),
                      QStringLiteral("False"));
    store.SaveSetting(QStringLiteral("Settings"), QStringLiteral("lvSelected.View"),
                      QStringLiteral("2"));
    store.SaveSetting(QStringLiteral("Settings"), QStringLiteral("lvSelected.GridLines"),
                      QStringLiteral("-1"));
    store.SaveSetting(QStringLiteral("Settings"), QStringLiteral("lvSelected.Sorted"),
                      QStringLiteral("False"));
    store.SaveSetting(QStringLiteral("Globals"), QStringLiteral("gsFileKeyword(1)"),
                      QStringLiteral("City"));
    store.SaveSetting(QStringLiteral("Globals"), QStringLiteral("gsImageTool"),
                      QStringLiteral("6"));
    Pictures(1);
    Start();
    EXPECT_TRUE(List()->isVisible());
    EXPECT_EQ(List()->Style(), 2);
    EXPECT_TRUE(List()->GridLines());
    EXPECT_FALSE(List()->Sorted());
    EXPECT_TRUE(Entry("mnuMainViewTileBoxTileFilename2")->isChecked());
    EXPECT_TRUE(Entry("mnuWindowsDefaultViewer")->isChecked());
    EXPECT_EQ(List()->Caption(4), QStringLiteral("City"));
    main->close();
    const SettingsStore read(store.File());
    const QString settings = QStringLiteral("Settings");
    EXPECT_EQ(read.GetSetting(settings, QStringLiteral("lvSelected.View")), QStringLiteral("2"));
    EXPECT_EQ(read.GetSetting(settings, QStringLiteral("lvSelected.GridLines")),
              QStringLiteral("True"));
    EXPECT_EQ(read.GetSetting(settings, QStringLiteral("lvSelected.Sorted")),
              QStringLiteral("False"));
    EXPECT_EQ(read.GetSetting(settings, QStringLiteral("mnuMainViewTileBoxTileImage.Checked")),
              QStringLiteral("False"));
    EXPECT_EQ(read.GetSetting(QStringLiteral("Globals"), QStringLiteral("gsPath")), folder);
    EXPECT_EQ(read.GetSetting(QStringLiteral("Globals"), QStringLiteral("gsImageTool")),
              QStringLiteral("6"));
    EXPECT_EQ(
        read.GetSetting(QStringLiteral("MainComboDirEntries"), QStringLiteral("cboDirPath.Text0")),
        folder);
    EXPECT_TRUE(read.Contains(QStringLiteral("MainScreenSettings"), QStringLiteral("Me.TOp")));
}

TEST_F(MainWindowTest, ADamagedStoreNeverKeepsTheProgramFromStarting)
{
    const QByteArray contents[] = {"[Globals]\njpegQuality=many\ngThumbnailWidth=99999999\ngsPa",
                                   QByteArray(5000, '\xff'), "[[[[\n===\n%%%\n\0\0",
                                   "[Globals]\ngThumbnailWidth=-5\ngThumbnailHeight=0\n"
                                   "[Settings]\nlvSelected.View=99\nlvSelected.Sorted=perhaps\n"
                                   "mnuMainViewTileBoxTileImage.Checked=False\n"
                                   "[MainScreenSettings]\nMe.TOp=1e30\nMe.Left=left\n"};
    for (const QByteArray& content : contents) {
        QFile file(root.path() + QStringLiteral("/damaged.ini"));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        file.close();
        SettingsStore damaged(file.fileName());
        Session fresh;
        frmBrowserMain window(fresh, damaged, Services(), windows);
        window.Load();
        EXPECT_TRUE(window.isVisible());
        EXPECT_EQ(fresh.jpegQuality, 10);
        EXPECT_TRUE(window.screen()->geometry().contains(window.geometry().center()))
            << content.left(40).toStdString();
    }
}

TEST_F(MainWindowTest, ClearHistoryLeavesBlankRowsUntilTheNextStart)
{
    Pictures(1);
    Start();
    auto* combo = Find<QComboBox>("cboDirPath");
    ASSERT_GE(combo->count(), 1);
    const int rows = combo->count();
    Click("mnuClearFileHistory");
    EXPECT_EQ(combo->count(), rows);
    for (int i = 0; i < rows; ++i) {
        EXPECT_EQ(combo->itemText(i), QString());
    }
    main->close();
    main.reset();
    StartBare();
    // The first folder of the new run is the only entry, if the tree was that quick.
    EXPECT_LE(Find<QComboBox>("cboDirPath")->count(), 1);
}

TEST_F(MainWindowTest, TheToolBarHasItsButtonsAndPlaceholders)
{
    Start();
    auto* bar = Find<QToolBar>("Toolbar1");
    QStringList tips;
    for (const QAction* action : bar->actions()) {
        if (action->objectName().startsWith(QStringLiteral("Toolbar1_"))) {
            tips.append(action->toolTip().section(u'\n', 0, 0));
        }
    }
    EXPECT_EQ(tips,
              (QStringList{QStringLiteral("Open Image"), QStringLiteral("Find Image"),
                           QStringLiteral("Search Image Text..."), QStringLiteral("Print Images"),
                           QStringLiteral("TWAIN Capture..."), QStringLiteral("Video Capture..."),
                           QStringLiteral("Send..."), QStringLiteral("View Photo Album...")}));
    EXPECT_EQ(bar->actions().at(3)->isSeparator(), true);
    EXPECT_EQ(bar->actions().at(7)->isSeparator(), true);
    EXPECT_EQ(Find<QWidget>("combo")->width(), 300);
    EXPECT_EQ(Find<QWidget>("progress")->width(), 150);
    EXPECT_EQ(Find<QComboBox>("cboDirPath")->width(), 300);
    Find<QAction>("Toolbar1_2")->trigger();
    EXPECT_EQ(fakes.launcher.searched, QStringList{folder});
}

TEST_F(MainWindowTest, EntriesThatAreNotBuiltAreDisabledAndSaySo)
{
    // Printing, batch work, stamping and tagging many, slide show, media.
    const QStringList expected{"mnuImportVideo",
                               "mnuMainFilePageSetup",
                               "mnuMainFilePrintSetup",
                               "mnuTagEditApp",
                               "mnuBatchConversionApplication",
                               "mnuAddDateTimeStampApplication",
                               "mnuGPSAddWaypoints",
                               "mnuSlideShowFolder",
                               "mnuSlideShow",
                               "mnuSlideShowAlbum",
                               "mnuVideoPlayer",
                               "mnuCaptureVideoPlayer",
                               "mnuVideoCapture",
                               "mnuVideoConvert",
                               "mnuPopAddGPSWaypoints"};
    Pictures(1);
    Start();
    QStringList disabled;
    const auto menusOpen = [this] {
        Q_EMIT main->Menus().Menu(QStringLiteral("mnuMainFile"))->aboutToShow();
        Q_EMIT main->Menus().Popup()->aboutToShow();
    };
    menusOpen(); // what they enable is never an entry that leads nowhere
    for (const auto table : {MainMenu(), PopupMenu()}) {
        for (const MenuEntry& entry : table) {
            if (entry.kind == EntryKind::Menu || entry.kind == EntryKind::Separator) {
                continue;
            }
            const QAction* action = Entry(entry.name);
            ASSERT_NE(action, nullptr) << entry.name;
            const bool saysSo =
                action->toolTip().endsWith(QStringLiteral(" is not part of this version yet."));
            EXPECT_EQ(entry.state == EntryState::NotYet, saysSo) << entry.name;
            if (saysSo) {
                disabled.append(QLatin1String(entry.name));
                EXPECT_FALSE(action->isEnabled()) << entry.name;
            }
        }
    }
    EXPECT_EQ(disabled, expected);
    EXPECT_TRUE(Entry("mnuDelete")->isEnabled());
    session.lbFilTiffs.clear();
    menusOpen();
    EXPECT_FALSE(Entry("mnuDelete")->isEnabled());
}

TEST_F(MainWindowTest, CustomSlotsAreInTheMenusExactlyWhenActive)
{
    const QString section = QStringLiteral("CustomToolPrefs");
    store.SaveSetting(section, QStringLiteral("chkCustomTool(1).value"), QStringLiteral("1"));
    store.SaveSetting(section, QStringLiteral("txtCustomTool(1).Text"), QStringLiteral("Paint"));
    store.SaveSetting(section, QStringLiteral("txtCustomToolPath(1).Text"),
                      QStringLiteral("/usr/bin/paint"));
    store.SaveSetting(section, QStringLiteral("txtCustomTool(2).Text"), QStringLiteral("Off"));
    store.SaveSetting(section, QStringLiteral("chkCustomApp(0).value"), QStringLiteral("1"));
    store.SaveSetting(section, QStringLiteral("txtCustomApp(0).Text"), QStringLiteral("Map"));
    Pictures(1);
    Start();
    EXPECT_EQ(Entry("mnuCustomTool2")->text(), QStringLiteral("Paint"));
    EXPECT_TRUE(Entry("mnuCustomTool2")->isVisible());
    EXPECT_TRUE(Entry("mnuPopCustomTool2")->isVisible());
    EXPECT_EQ(Entry("mnuPopCustomTool2")->text(), QStringLiteral("Paint"));
    EXPECT_FALSE(Entry("mnuCustomTool3")->isVisible());
    EXPECT_FALSE(Entry("mnuCustomTool3")->isEnabled());
    EXPECT_TRUE(Entry("mnuCustomApp1")->isVisible());
    EXPECT_FALSE(Entry("mnuCustomApp2")->isVisible());
    Click("mnuPopCustomTool2");
    ASSERT_EQ(fakes.launcher.started.size(), 1);
    EXPECT_EQ(fakes.launcher.started.first().program, QStringLiteral("/usr/bin/paint"));
    EXPECT_EQ(fakes.launcher.started.first().arguments, QStringList{session.gsFileName});
    EXPECT_EQ(fakes.launcher.started.first().folder, folder);
}

TEST_F(MainWindowTest, EveryControlHasANameThatCanBeSpoken)
{
    Start();
    for (QWidget* widget = main->nextInFocusChain(); widget != main.get();
         widget = widget->nextInFocusChain()) {
        if (widget->focusPolicy() != Qt::NoFocus && widget->isVisible()
            && !widget->objectName().startsWith(QStringLiteral("qt_"))) {
            EXPECT_FALSE(widget->accessibleName().isEmpty() && widget->focusProxy() == nullptr
                         && widget->parentWidget()->accessibleName().isEmpty())
                << widget->metaObject()->className() << " " << widget->objectName().toStdString();
        }
    }
}

} // namespace quillane
