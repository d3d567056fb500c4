// How the main window opens the viewer.
#include "gui/main_window_fixture.h"
#include "viewer/ui/frmToolImageDisplay.h"

#include <QApplication>
#include <QPointer>
#include <QPushButton>
#include <QTimer>

namespace quillane {

namespace {

class ViewerWiringTest : public MainWindowTest {
protected:
    frmToolImageDisplay* Viewer() const
    {
        return qobject_cast<frmToolImageDisplay*>(
            windows.Loaded(QStringLiteral("frmToolImageDisplay")));
    }
    void ExpectViewerOf(const QString& leaf)
    {
        ASSERT_NE(Viewer(), nullptr);
        EXPECT_TRUE(Viewer()->isVisible());
        EXPECT_EQ(Viewer()->File(), folder + leaf);
        EXPECT_TRUE(Viewer()->Picture().HasBitmap());
        EXPECT_EQ(Viewer()->parentWidget(), main.get()) << "owned by the main window";
        EXPECT_FALSE(Viewer()->isModal()) << "the browser goes on beside it";
    }
    void CloseViewer()
    {
        const QPointer<QObject> viewer(Viewer());
        Viewer()->close();
        EXPECT_TRUE(QTest::qWaitFor([&] { return viewer.isNull(); }, kWait));
        EXPECT_EQ(Viewer(), nullptr);
    }
    /// Triggers an acquire and has the scanner scan as it stands.
    static void Scanning(const std::function<void()>& trigger)
    {
        QTimer timer;
        QObject::connect(&timer, &QTimer::timeout, [] {
            QWidget* dialog = QApplication::activeModalWidget();
            if (dialog && dialog->objectName() == QStringLiteral("frmAcquire")) {
                QTest::mouseClick(dialog->findChild<QPushButton*>(QStringLiteral("cmdScan")),
                                  Qt::LeftButton);
            }
        });
        timer.start(5);
        trigger();
    }
    void Page()
    {
        fakes.scanner.sources = {{QStringLiteral("a:0"), {}, {}, {}}};
        fakes.scanner.page.width = 20;
        fakes.scanner.page.height = 10;
        fakes.scanner.page.channels = 3;
        fakes.scanner.page.bytesPerLine = 60;
        fakes.scanner.page.rows = QByteArray(600, '\x55');
    }
};

} // namespace

TEST_F(ViewerWiringTest, ADoubleClickAndEnterOpenTheDefaultTool)
{
    Pictures(3);
    Start();
    main->SetImageTool(0);
    ClickCell(1);
    QTest::mouseDClick(Grid()->viewport(), Qt::LeftButton, {}, Grid()->CellRect(1).center());
    ExpectViewerOf(QStringLiteral("p1.bmp"));
    CloseViewer();
    ClickCell(2);
    QTest::keyClick(Grid(), Qt::Key_Return);
    ExpectViewerOf(QStringLiteral("p2.bmp"));
}

TEST_F(ViewerWiringTest, TheEntryChoosesTheToolAndThePopUpOpensItAtOnce)
{
    Pictures(2);
    Start();
    main->SetImageTool(6);
    EXPECT_TRUE(Entry("mnuImage")->isEnabled());
    Click("mnuImage");
    EXPECT_EQ(session.gsImageTool, 0);
    EXPECT_EQ(Viewer(), nullptr) << "the entry only chooses";
    main->SetImageTool(6);
    ClickCell(1);
    EXPECT_TRUE(Entry("mnuPopImage")->isEnabled());
    Click("mnuPopImage");
    ExpectViewerOf(QStringLiteral("p1.bmp"));
    EXPECT_TRUE(fakes.launcher.opened.isEmpty());
}

TEST_F(ViewerWiringTest, AnotherPictureIsShownInTheSameWindow)
{
    Pictures(3);
    Start();
    ClickCell(0);
    Click("mnuPopImage");
    const frmToolImageDisplay* const first = Viewer();
    ClickCell(2);
    Click("mnuPopImage");
    EXPECT_EQ(Viewer(), first);
    ExpectViewerOf(QStringLiteral("p2.bmp"));
}

TEST_F(ViewerWiringTest, ASaveRenewsTheCell)
{
    Picture(QStringLiteral("a.bmp"), {80, 60});
    Picture(QStringLiteral("b.bmp"), {80, 60});
    Start();
    ClickCell(0);
    Click("mnuPopImage");
    ASSERT_NE(Viewer(), nullptr);
    const auto shown = [this] {
        return Grid()->viewport()->grab().toImage().pixelColor(Grid()->CellRect(0).center()
                                                               - QPoint(0, 12));
    };
    EXPECT_TRUE(QTest::qWaitFor([&] { return shown() == QColor(Qt::darkGreen); }, kWait));
    Viewer()->findChild<QAction*>(QStringLiteral("mnuInvert"))->trigger();
    Viewer()->findChild<QAction*>(QStringLiteral("mnuSingleFileSave"))->trigger();
    EXPECT_TRUE(QTest::qWaitFor([&] { return shown() == QColor(255, 127, 255); }, kWait));
    EXPECT_EQ(Grid()->PathAt(0), folder + QStringLiteral("a.bmp"));
}

TEST_F(ViewerWiringTest, AcquireShowsTheViewerWithThePage)
{
    Pictures(2);
    Start();
    Page();
    ClickCell(0);
    EXPECT_TRUE(Entry("mnuAcquireTwain")->isEnabled());
    Scanning([this] { Click("mnuAcquireTwain"); });
    ASSERT_NE(Viewer(), nullptr);
    EXPECT_TRUE(Viewer()->isVisible());
    EXPECT_EQ(Viewer()->Picture().Bitmap().Pixels().size(), QSize(20, 10));
    EXPECT_EQ(Viewer()->File(), folder + QStringLiteral("p0.bmp"));
    CloseViewer();
    Page();
    Scanning([this] { Find<QAction>("Toolbar1_6")->trigger(); });
    ASSERT_NE(Viewer(), nullptr);
    EXPECT_EQ(Viewer()->Picture().Bitmap().Pixels().size(), QSize(20, 10));
}

TEST_F(ViewerWiringTest, AnOpenViewerGoesWithTheProgramAndAsksNothing)
{
    Pictures(1);
    Start();
    ClickCell(0);
    Click("mnuPopImage");
    Viewer()->findChild<QAction*>(QStringLiteral("mnuInvert"))->trigger();
    const QPointer<QObject> viewer(Viewer());
    windows.DestroyAll();
    EXPECT_TRUE(viewer.isNull());
    EXPECT_TRUE(fakes.dialogs.Boxes().isEmpty());
}

} // namespace quillane
