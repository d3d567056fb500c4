// While files are deleted, copied or moved: nothing that a person does reaches the program, and a
// window that is to be closed closes afterwards.
#include "file_operations_fixture.h"

#include <QThread>
#include <atomic>

namespace quillane {

namespace {

/// A walk over three files that stands still at the second until it is let go.
class FileWalkHoldTest : public FileOperationsTest {
protected:
    /// Starts a walk with `start` and does `meanwhile` in its middle, on the window thread.
    void InWalk(const std::function<void()>& start, const std::function<void()>& meanwhile)
    {
        files.before = [this](const QString& path) {
            if (path != File(1)) {
                return;
            }
            mReached = true;
            while (!mGo) {
                QThread::yieldCurrentThread();
            }
        };
        QTimer timer;
        QObject::connect(&timer, &QTimer::timeout, [&] {
            if (!mReached || mGo) {
                return;
            }
            timer.stop();
            meanwhile();
            mGo = true;
        });
        timer.start(1);
        start();
        EXPECT_TRUE(mGo);
    }
    void TrashAll()
    {
        Grid()->SelectAll();
        Key(Qt::Key_Delete);
    }

private:
    std::atomic<bool> mReached = false;
    std::atomic<bool> mGo = false;
};

} // namespace

TEST_F(FileWalkHoldTest, KeysClicksAndCommandsDoNothing)
{
    StartActive(3);
    MakeFolder(folder + QStringLiteral("sub"));
    InWalk([this] { TrashAll(); },
           [this] {
               const qint32 index = session.gImageListIndex;
               const QString current = session.gsFileName;
               ClickCell(2);
               QTest::mouseDClick(Grid()->viewport(), Qt::LeftButton, {},
                                  Grid()->CellRect(2).center());
               ClickCell(2, Qt::RightButton);
               for (const Qt::Key key : {Qt::Key_Delete, Qt::Key_Right, Qt::Key_Return, Qt::Key_F5,
                                         Qt::Key_F2, Qt::Key_Escape}) {
                   QTest::keyClick(main->windowHandle(), key);
               }
               QTest::keyClick(main->windowHandle(), Qt::Key_Z, Qt::ControlModifier);
               QTest::keyClick(main->windowHandle(), Qt::Key_Delete, Qt::ShiftModifier);
               QTest::keyClick(main->windowHandle(), Qt::Key_2, Qt::ControlModifier);
               EXPECT_EQ(session.gImageListIndex, index);
               EXPECT_EQ(session.gsFileName, current);
               EXPECT_EQ(session.lbFilTiffs.size(), 3);
               EXPECT_TRUE(Grid()->isVisible());
               EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
               EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
               // Nor do the operations themselves begin a second time.
               Click("mnuDelete");
               Click("mnuRename");
               main->FileOperation(kCopyFiles);
               EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
           });
    EXPECT_TRUE(session.lbFilTiffs.isEmpty());
    EXPECT_EQ(InTrash(), 3);
    // Afterwards everything works again.
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(session.lbFilTiffs.size(), 3);
    ClickCell(2);
    EXPECT_EQ(session.gImageListIndex, 2);
}

TEST_F(FileWalkHoldTest, AWindowThatIsClosedMeanwhileClosesWhenAllIsDone)
{
    StartActive(3);
    InWalk([this] { TrashAll(); },
           [this] {
               EXPECT_FALSE(main->close());
               EXPECT_TRUE(main->isVisible());
           });
    EXPECT_EQ(InTrash(), 3);
    ASSERT_TRUE(QTest::qWaitFor([this] { return !main->isVisible(); }, kWait));
}

TEST_F(FileWalkHoldTest, ExitMeanwhileEndsTheProgramWhenAllIsDone)
{
    StartActive(3);
    QMetaObject::invokeMethod(
        main.get(), [&] { InWalk([this] { TrashAll(); }, [this] { Click("mnuMainFIleExit"); }); },
        Qt::QueuedConnection);
    QApplication::exec(); // ends with the window
    EXPECT_EQ(InTrash(), 3);
    EXPECT_FALSE(main->isVisible());
    EXPECT_FALSE(Exists(File(0)));
}

TEST_F(FileWalkHoldTest, AQuitMeanwhileLosesNothing)
{
    StartActive(3);
    QMetaObject::invokeMethod(
        main.get(), [&] { InWalk([this] { TrashAll(); }, [] { QCoreApplication::quit(); }); },
        Qt::QueuedConnection);
    QApplication::exec();
    EXPECT_EQ(InTrash(), 3);
    EXPECT_FALSE(main->isVisible());
}

TEST_F(FileWalkHoldTest, AFolderThatDisappearsMeanwhileEndsInWords)
{
    StartActive(3);
    InWalk([this] { TrashAll(); },
           [this] {
               ASSERT_TRUE(RemoveFile(File(1)));
               ASSERT_TRUE(RemoveFile(File(2)));
               ASSERT_EQ(rmdir(BytesFromPath(folder).constData()), 0);
           });
    EXPECT_EQ(InTrash(), 1);
    // The scan that follows empties the view and may say so itself.
    EXPECT_TRUE(session.lbFilTiffs.isEmpty());
    EXPECT_TRUE(Line().startsWith(
        QStringLiteral("1 of 3 files moved to the trash. Ctrl+Z brings it back. First failed: ")))
        << Line().toStdString();
    // What is in the trash stays there as long as it has no place to go to.
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(InTrash(), 1);
    EXPECT_TRUE(Line().startsWith(QStringLiteral("0 of 1 file brought back")))
        << Line().toStdString();
}

} // namespace quillane
