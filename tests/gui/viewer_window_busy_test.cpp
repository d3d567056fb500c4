// The viewer's clipboard, and what happens while a command runs.
#include "gui/viewer_window_fixture.h"

#include <QMimeData>
#include <QPlainTextEdit>
#include <functional>

namespace quillane {

namespace {

using ViewerBusyTest = ViewerWindowTest;

/// Asks for something when the mouse button goes up: it is handled as soon as events are.
class AtRelease : public QObject {
public:
    explicit AtRelease(std::function<void()> then) : mThen(std::move(then)) { }
    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::MouseButtonRelease) {
            QMetaObject::invokeMethod(
                this, [this] { mThen(); }, Qt::QueuedConnection);
        }
        return false;
    }

private:
    std::function<void()> mThen;
};

} // namespace

TEST_F(ViewerBusyTest, CopyAndPasteGoThroughTheClipboard)
{
    Open(Small());
    const QImage before = Pixels();
    Press(7);
    EXPECT_EQ(QApplication::clipboard()->image().size(), before.size());
    QImage other(12, 9, QImage::Format_RGB32);
    other.fill(QColor(50, 60, 70));
    QApplication::clipboard()->setImage(other);
    Click("mnuPaste");
    EXPECT_EQ(Pixels().size(), QSize(12, 9));
    EXPECT_EQ(UndoPixels(), before) << "as it was loaded: the entry takes no copy";
    Click("mnuUndoLast");
    Click("mnuInvert");
    const QImage inverted = Pixels();
    Press(8);
    EXPECT_EQ(Pixels().size(), QSize(12, 9));
    EXPECT_EQ(UndoPixels(), inverted) << "the button does";
    Press(10);
    EXPECT_EQ(Pixels(), inverted);
    Click("mnuCopy");
    EXPECT_EQ(QApplication::clipboard()->image().size(), inverted.size());
}

TEST_F(ViewerBusyTest, CutCopiesAndFillsAndCanBeTakenBack)
{
    Open(Small());
    const QImage before = Pixels();
    Press(9);
    EXPECT_EQ(QApplication::clipboard()->image().size(), before.size());
    EXPECT_EQ(Pixels().pixelColor(7, 7), QColor(Qt::white));
    Press(10);
    EXPECT_EQ(Pixels(), before);
}

TEST_F(ViewerBusyTest, AClipboardWithoutAPictureIsPassedOver)
{
    Open(Small());
    const QImage before = Pixels();
    QApplication::clipboard()->setText(QStringLiteral("words"));
    Click("mnuPaste");
    EXPECT_EQ(Pixels(), before);
    EXPECT_FALSE(Line().isEmpty());
    auto* nonsense = new QMimeData;
    nonsense->setData(QStringLiteral("image/png"), QByteArray("\x89PNG\r\n\x1a\nnonsense"));
    QApplication::clipboard()->setMimeData(nonsense);
    Click("mnuPaste");
    EXPECT_EQ(Pixels(), before);
}

TEST_F(ViewerBusyTest, NothingBeginsWhileACommandRuns)
{
    Open(Copy(QStringLiteral("AST_0101.JPG")));
    const QImage before = Pixels();
    int asked = 0;
    QMetaObject::invokeMethod(
        window.get(),
        [&] {
            ++asked;
            ASSERT_TRUE(window->IsBusy());
            Click("mnuFlipImage");
            Press(10);
            QTest::mouseClick(View()->viewport(), Qt::LeftButton);
            EXPECT_TRUE(Find<QPlainTextEdit>("txtTags")->isReadOnly());
        },
        Qt::QueuedConnection);
    Click("mnuInvert");
    EXPECT_EQ(asked, 1);
    QImage inverted = before;
    inverted.invertPixels();
    EXPECT_EQ(Pixels(), inverted);
    EXPECT_FALSE(Find<QPlainTextEdit>("txtTags")->isReadOnly());
}

TEST_F(ViewerBusyTest, AWindowClosedInTheMiddleOfACommandGoesWhenItHasEnded)
{
    const QString file = Copy(QStringLiteral("AST_0101.JPG"));
    const QByteArray before = Bytes(file);
    Open(file);
    QMetaObject::invokeMethod(
        window.get(), [this] { window->close(); }, Qt::QueuedConnection);
    Click("mnuInvert");
    EXPECT_TRUE(QTest::qWaitFor([this] { return !window->Picture().HasBitmap(); }, kWait));
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(Bytes(file), before);
}

TEST_F(ViewerBusyTest, AWindowDestroyedInTheMiddleOfACommandHurtsNothing)
{
    Open(Copy(QStringLiteral("AST_0101.JPG")));
    QObject test; // what was asked for goes with it
    QMetaObject::invokeMethod(
        &test, [this] { window.reset(); }, Qt::QueuedConnection);
    Click("mnuInvert");
    EXPECT_EQ(window, nullptr);
}

TEST_F(ViewerBusyTest, EventsAreHandledWhileAPictureIsCropped)
{
    Open(Small(QStringLiteral("r.bmp"), {200, 150}));
    Region(20, 10, 100, 80);
    const QRect bounds = window->Picture().RegionBounds();
    int asked = 0;
    QMetaObject::invokeMethod(
        window.get(),
        [&] {
            ++asked;
            EXPECT_TRUE(window->IsBusy());
            Press(19); // of no use now
        },
        Qt::QueuedConnection);
    Press(19);
    EXPECT_EQ(asked, 1);
    EXPECT_EQ(Pixels().size(), bounds.size());
}

TEST_F(ViewerBusyTest, AWindowDestroyedInTheMiddleOfACropHurtsNothing)
{
    Open(Small(QStringLiteral("r.bmp"), {200, 150}));
    Region(20, 10, 100, 80);
    QObject test;
    QMetaObject::invokeMethod(
        &test, [this] { window.reset(); }, Qt::QueuedConnection);
    Press(19);
    EXPECT_EQ(window, nullptr);
}

TEST_F(ViewerBusyTest, EventsAreHandledWhileAMovedPartIsLaidDown)
{
    Open(Small(QStringLiteral("r.bmp"), {200, 150}));
    const QImage before = Pixels();
    Region(20, 10, 60, 40);
    int asked = 0;
    const auto ask = [&] { asked += window->IsBusy() ? 1 : 0; };
    AtRelease release(ask);
    View()->viewport()->installEventFilter(&release);
    DragInPicture({40, 30}, {100, 90});
    EXPECT_EQ(asked, 1);
    EXPECT_NE(Pixels(), before);
    EXPECT_FALSE(window->Picture().FloaterVisible());
}

} // namespace quillane
