#include "browser/ui/cVSplitter.h"
#include "platform/fake/fake_dialogs.h"

#include <QFrame>
#include <QTest>
#include <gtest/gtest.h>

namespace quillane {

namespace {

class SplitterTest : public testing::Test {
protected:
    SplitterTest() : splitter(dialogs)
    {
        parent.setMinimumWidth(210);
        parent.resize(800, 400);
        bar.resize(7, 400);
        parent.show();
    }
    void Take()
    {
        ASSERT_TRUE(splitter.SetControls(&parent, &first, &second, &bar));
        splitter.SetLeft(300);
    }
    void Press() { QTest::mousePress(&bar, Qt::LeftButton, {}, QPoint(2, 50)); }
    void MoveTo(int x)
    {
        const QPoint at = bar.mapFrom(&parent, QPoint(x + 2, 50));
        QMouseEvent move(QEvent::MouseMove, at, bar.mapToGlobal(at), Qt::NoButton, Qt::LeftButton,
                         {});
        QApplication::sendEvent(&bar, &move);
    }
    void Release() { QTest::mouseRelease(&bar, Qt::LeftButton, {}, QPoint(2, 50)); }

    FakeDialogs dialogs;
    QWidget parent;
    QWidget first{&parent}, second{&parent};
    QFrame bar{&parent};
    cVSplitter splitter;
};

} // namespace

TEST_F(SplitterTest, APaneThatIsNoWindowIsRefusedWithItsName)
{
    QObject pane;
    pane.setObjectName(QStringLiteral("picTreeView"));
    dialogs.Answer(BoxAnswer::Ok);
    EXPECT_FALSE(splitter.SetControls(&parent, &pane, &second, &bar));
    ASSERT_EQ(dialogs.Boxes().size(), 1);
    EXPECT_EQ(dialogs.Boxes().first().text,
              QStringLiteral("picTreeView must be a window (have a window handle)."));
    Press();
    EXPECT_FALSE(splitter.Splitting());
}

TEST_F(SplitterTest, TheBarTakesItsWidthFromTheControlLessABorder)
{
    Take();
    EXPECT_EQ(splitter.Width(), 6);
    EXPECT_EQ(bar.cursor().shape(), Qt::SizeHorCursor);
    splitter.SetWidth(0);
    EXPECT_EQ(splitter.Width(), 6);
}

TEST_F(SplitterTest, NegativePlacesAreIgnored)
{
    Take();
    splitter.SetLeft(-1);
    splitter.SetTop(-1);
    splitter.SetHeightOffset(-1);
    EXPECT_EQ(splitter.Left(), 300);
    EXPECT_EQ(splitter.Top(), 0);
    EXPECT_EQ(splitter.HeightOffset(), 0);
    splitter.SetTop(20);
    splitter.SetHeightOffset(30);
    EXPECT_EQ(first.geometry(), QRect(0, 20, 300, 350));
}

TEST_F(SplitterTest, WithTrackingThePanesFollowTheMouse)
{
    Take();
    splitter.SetTrackSplit(kTrue);
    Press();
    EXPECT_TRUE(splitter.Splitting());
    MoveTo(400);
    EXPECT_EQ(first.width(), 400);
    Release();
    EXPECT_FALSE(splitter.Splitting());
    EXPECT_EQ(splitter.Left(), 400);
}

TEST_F(SplitterTest, WithoutTrackingAGhostMovesAndThePanesAtTheEnd)
{
    Take();
    Press();
    MoveTo(420);
    EXPECT_EQ(first.width(), 300);
    auto* ghost = parent.findChild<QWidget*>(QStringLiteral("splitterGhost"));
    ASSERT_NE(ghost, nullptr);
    EXPECT_EQ(ghost->x(), 420);
    Release();
    EXPECT_EQ(first.width(), 420);
    EXPECT_EQ(parent.findChild<QWidget*>(QStringLiteral("splitterGhost")), nullptr);
}

TEST_F(SplitterTest, EscPutsTheBarBackAndReachesNothingElse)
{
    Take();
    splitter.SetTrackSplit(kTrue);
    struct Watcher : QObject {
        int keys = 0;
        bool eventFilter(QObject*, QEvent* event) override
        {
            keys += event->type() == QEvent::KeyPress;
            return false;
        }
    } watcher;
    first.installEventFilter(&watcher);
    Press();
    MoveTo(450);
    QTest::keyClick(&first, Qt::Key_Escape);
    EXPECT_FALSE(splitter.Splitting());
    EXPECT_EQ(splitter.Left(), 300);
    EXPECT_EQ(first.width(), 300);
    EXPECT_EQ(watcher.keys, 0);
    MoveTo(500);
    EXPECT_EQ(first.width(), 300);
}

TEST_F(SplitterTest, TheBarStopsAtTheRightLimitAlsoWhenMaximised)
{
    Take();
    splitter.SetTrackSplit(kTrue);
    Press();
    MoveTo(5000);
    const int smallest = parent.width() - bar.geometry().right() - 1;
    EXPECT_GT(smallest, 50);
    Release();
    parent.resize(1600, 900);
    Press();
    MoveTo(9000);
    EXPECT_EQ(parent.width() - bar.geometry().right() - 1, smallest);
    Release();
}

TEST_F(SplitterTest, AShrunkParentPullsTheBarIn)
{
    Take();
    splitter.SetLeft(600);
    parent.resize(400, 400);
    EXPECT_GT(second.width(), 50);
    EXPECT_EQ(second.geometry().right(), 399);
}

} // namespace quillane
