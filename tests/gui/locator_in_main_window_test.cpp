// "Find Files" as a window of the program.
#include "gui/main_window_fixture.h"
#include "locator/ui/frmLocate.h"

#include <QPointer>
#include <QPushButton>

namespace quillane {
namespace {

class LocatorInMainWindowTest : public MainWindowTest { };

TEST_F(LocatorInMainWindowTest, TheProgramMayEndWhileItSearches)
{
    for (int i = 0; i < 200; ++i) {
        MakeFolder(folder + QStringLiteral("sub%1").arg(i));
        Picture(QStringLiteral("sub%1/p.bmp").arg(i));
    }
    Start();
    Click("mnuFileFiles");
    const QPointer<frmLocate> window(
        qobject_cast<frmLocate*>(windows.Loaded(QStringLiteral("frmLocate"))));
    ASSERT_FALSE(window.isNull());
    window->findChild<QLineEdit*>(QStringLiteral("Text1"))->setText(QStringLiteral("*"));
    window->findChild<QPushButton*>(QStringLiteral("cmdAction(0)"))->click();
    EXPECT_TRUE(window->IsSearching());
    main->close();
    windows.DestroyAll();
    main.reset();
    EXPECT_TRUE(window.isNull());
    QCoreApplication::processEvents();
}

TEST_F(LocatorInMainWindowTest, FindFilesOpensTheWindowOwnedAndAnewAfterItsEnd)
{
    Picture(QStringLiteral("p.bmp"));
    Start();
    Click("mnuFileFiles");
    const QPointer<QObject> first(windows.Loaded(QStringLiteral("frmLocate")));
    auto* window = qobject_cast<frmLocate*>(first.data());
    ASSERT_NE(window, nullptr);
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(window->parentWidget(), main.get());
    EXPECT_EQ(window->findChild<DirList*>(QStringLiteral("Dir1"))->Path() + u'/', folder);
    Click("mnuFileFiles");
    EXPECT_EQ(windows.Loaded(QStringLiteral("frmLocate")), first.data());
    window->close();
    ASSERT_TRUE(QTest::qWaitFor([&] { return first.isNull(); }, kWait));
    Click("mnuFileFiles");
    EXPECT_NE(windows.Loaded(QStringLiteral("frmLocate")), nullptr);
}

TEST_F(LocatorInMainWindowTest, ItsExitEndsTheProcessAndSavesNothing)
{
    Picture(QStringLiteral("p.bmp"));
    Start();
    Click("mnuFileFiles");
    const QObject* window = windows.Loaded(QStringLiteral("frmLocate"));
    ASSERT_NE(window, nullptr);
    auto* exit = window->findChild<QAction*>(QStringLiteral("mnuFileSub"));
    ASSERT_NE(exit, nullptr);
    const QString settings = root.filePath(QStringLiteral("s.ini"));
    const FileStat before = StatPath(settings);
    EXPECT_EXIT(exit->trigger(), testing::ExitedWithCode(0), "^$");
    EXPECT_EQ(StatPath(settings).inode, before.inode);
    EXPECT_EQ(StatPath(settings).size, before.size);
}

} // namespace
} // namespace quillane
