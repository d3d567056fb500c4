#include "platform/desktop/desktop_loop.h"

#include "platform/program_log.h"
#include <QCursor>
#include <QElapsedTimer>
#include <QEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLocale>
#include <QTest>
#include <QWindow>
#include <gtest/gtest.h>
#include <thread>

namespace quillane {

/// A window that eats every key.
class KeyEater : public QWindow {
public:
    int keys = 0;

protected:
    void keyPressEvent(QKeyEvent* event) override
    {
        ++keys;
        event->accept();
    }
};

class DesktopLoopTest : public testing::Test {
protected:
    DesktopLoopTest()
    {
        window.show();
        window.requestActivate();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window, kTestPatience));
        loop.ForgetEsc();
    }

    KeyEater window;
    DesktopLoop loop;
};

using EscPoll = DesktopLoopTest;
using Yielding = DesktopLoopTest;
using LoopServices = DesktopLoopTest;

TEST_F(EscPoll, NothingPressedIsFalse)
{
    EXPECT_FALSE(loop.PollEsc());
}

TEST_F(EscPoll, PressSinceTheLastPollCountsOnceThoughTheKeyIsUpAgain)
{
    QTest::keyClick(&window, Qt::Key_Escape);
    EXPECT_GT(window.keys, 0);
    EXPECT_TRUE(loop.PollEsc());
    EXPECT_FALSE(loop.PollEsc());
}

TEST_F(EscPoll, HeldKeyCountsAtEveryPollUntilItsRelease)
{
    QTest::keyPress(&window, Qt::Key_Escape);
    EXPECT_TRUE(loop.PollEsc());
    EXPECT_TRUE(loop.PollEsc());
    QTest::keyRelease(&window, Qt::Key_Escape);
    EXPECT_FALSE(loop.PollEsc());
}

TEST_F(EscPoll, ReleaseThatOnlyRepeatsLeavesTheKeyDown)
{
    QTest::keyPress(&window, Qt::Key_Escape);
    EXPECT_TRUE(loop.PollEsc());
    QKeyEvent repeat(QEvent::KeyRelease, Qt::Key_Escape, Qt::NoModifier, {}, true);
    QCoreApplication::sendEvent(&window, &repeat);
    EXPECT_TRUE(loop.PollEsc());
}

TEST_F(EscPoll, OtherKeysDoNotCount)
{
    QTest::keyClick(&window, Qt::Key_Return);
    QTest::keyClick(&window, Qt::Key_E);
    EXPECT_EQ(window.keys, 2);
    EXPECT_FALSE(loop.PollEsc());
}

TEST_F(EscPoll, ForgottenPressAndForgottenHeldKeyDoNotCount)
{
    QTest::keyClick(&window, Qt::Key_Escape);
    loop.ForgetEsc();
    EXPECT_FALSE(loop.PollEsc());
    QTest::keyPress(&window, Qt::Key_Escape);
    loop.ForgetEsc();
    EXPECT_FALSE(loop.PollEsc());
}

TEST_F(EscPoll, KeyHeldAfterForgettingCountsAgainWhenItRepeats)
{
    QTest::keyPress(&window, Qt::Key_Escape);
    loop.ForgetEsc();
    QKeyEvent repeat(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier, {}, true);
    QCoreApplication::sendEvent(&window, &repeat);
    EXPECT_TRUE(loop.PollEsc());
}

TEST_F(EscPoll, KeyIsTakenForUpWhenAnotherWindowGetsTheKeyboard)
{
    QTest::keyPress(&window, Qt::Key_Escape);
    EXPECT_TRUE(loop.PollEsc());
    QWindow other;
    other.show();
    other.requestActivate();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&other, kTestPatience));
    EXPECT_FALSE(loop.PollEsc());
}

TEST_F(EscPoll, PressThatIsOnlyOfferedAsAShortcutCounts)
{
    QKeyEvent offer(QEvent::ShortcutOverride, Qt::Key_Escape, Qt::NoModifier);
    QCoreApplication::sendEvent(&window, &offer);
    EXPECT_TRUE(loop.PollEsc());
}

TEST_F(EscPoll, PressThatClosesADialogOrAMenuIsUsedUpByIt)
{
    QWindow dialog;
    dialog.setModality(Qt::ApplicationModal);
    QWindow menu;
    menu.setFlag(Qt::Popup);
    for (QWindow* open : {&dialog, &menu}) {
        open->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(open));
        QTest::keyClick(open, Qt::Key_Escape);
        open->hide();
        EXPECT_FALSE(loop.PollEsc());
        QTest::keyClick(&window, Qt::Key_Escape);
        EXPECT_TRUE(loop.PollEsc());
    }
}

TEST_F(EscPoll, PressThatWaitsIsSeenByAYield)
{
    const Generation run = loop.NewGeneration();
    QMetaObject::invokeMethod(
        &window, [&] { QTest::keyClick(&window, Qt::Key_Escape); }, Qt::QueuedConnection);
    QElapsedTimer since;
    since.start();
    bool pressed = false;
    while (!pressed && since.elapsed() < kTestPatience) {
        EXPECT_TRUE(loop.Yield(run));
        pressed = loop.PollEsc();
    }
    EXPECT_TRUE(pressed);
}

TEST_F(Yielding, OnlyTheNewestGenerationGoesOn)
{
    const Generation older = loop.NewGeneration();
    EXPECT_TRUE(loop.Yield(older));
    const Generation newer = loop.NewGeneration();
    EXPECT_NE(older, newer);
    EXPECT_EQ(loop.Newest(), newer);
    EXPECT_FALSE(loop.Yield(older));
    EXPECT_TRUE(loop.Yield(newer));
}

TEST_F(Yielding, ARunThatStartsInsideAYieldEndsTheOlderOne)
{
    const Generation older = loop.NewGeneration();
    QMetaObject::invokeMethod(
        &window, [&] { loop.NewGeneration(); }, Qt::QueuedConnection);
    QElapsedTimer since;
    since.start();
    bool goesOn = true;
    while (goesOn && since.elapsed() < kTestPatience) {
        goesOn = loop.Yield(older);
    }
    EXPECT_FALSE(goesOn);
}

TEST_F(Yielding, EventsAreHandledAtMostOnceInEightMilliseconds)
{
    const Generation run = loop.NewGeneration();
    qint64 rounds = 0;
    bool waiting = false;
    loop.ProcessEvents();
    QElapsedTimer since;
    since.start();
    for (int yields = 0; yields < 110000; ++yields) {
        if (!waiting) {
            waiting = true;
            QMetaObject::invokeMethod(
                &window,
                [&] {
                    waiting = false;
                    ++rounds;
                },
                Qt::QueuedConnection);
        }
        EXPECT_TRUE(loop.Yield(run));
    }
    EXPECT_LE(rounds, since.elapsed() / 8 + 1);
    QCoreApplication::removePostedEvents(&window);
}

TEST_F(Yielding, NestedYieldsStillHandleEvents)
{
    // An event that starts a long action of its own, as a menu does during a scan.
    const Generation run = loop.NewGeneration();
    bool innermost = false;
    QElapsedTimer since;
    since.start();
    QMetaObject::invokeMethod(
        &window,
        [&] {
            QMetaObject::invokeMethod(
                &window, [&] { innermost = true; }, Qt::QueuedConnection);
            while (!innermost && since.elapsed() < kTestPatience) {
                loop.Yield(run);
            }
            EXPECT_TRUE(innermost);
        },
        Qt::QueuedConnection);
    while (!innermost && since.elapsed() < kTestPatience) {
        loop.Yield(run);
    }
    EXPECT_TRUE(innermost);
}

TEST_F(LoopServices, ProcessEventsHandlesWhatWaitsNow)
{
    int handled = 0;
    QMetaObject::invokeMethod(
        &window, [&] { ++handled; }, Qt::QueuedConnection);
    loop.ProcessEvents();
    EXPECT_EQ(handled, 1);
}

TEST_F(LoopServices, WaitIsEndedByAResultOfAnotherThread)
{
    loop.ProcessEvents();
    bool handled = false;
    std::thread worker([&] {
        QMetaObject::invokeMethod(
            &window, [&] { handled = true; }, Qt::QueuedConnection);
    });
    QElapsedTimer since;
    since.start();
    while (!handled && since.elapsed() < kTestPatience) {
        loop.WaitForEvents(kTestPatience);
    }
    worker.join();
    EXPECT_TRUE(handled);
}

TEST_F(LoopServices, WaitEndsByItselfWhenNothingHappens)
{
    loop.ProcessEvents();
    for (int i = 0; i < 3; ++i) {
        loop.WaitForEvents(1);
        loop.WaitForEvents(0);
    }
}

TEST_F(LoopServices, HourglassNestsAndComesBack)
{
    ASSERT_EQ(QGuiApplication::overrideCursor(), nullptr);
    {
        const Hourglass outer(loop);
        {
            const Hourglass inner(loop);
            ASSERT_NE(QGuiApplication::overrideCursor(), nullptr);
        }
        ASSERT_NE(QGuiApplication::overrideCursor(), nullptr);
        EXPECT_EQ(QGuiApplication::overrideCursor()->shape(), Qt::WaitCursor);
    }
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
}

TEST_F(LoopServices, NowIsTheSystemsTime)
{
    const QDateTime before = QDateTime::currentDateTime();
    const QDateTime now = loop.Now();
    EXPECT_LE(before, now);
    EXPECT_LE(now, QDateTime::currentDateTime());
}

TEST_F(LoopServices, DateTextIsTheSystemsShortForm)
{
    for (const QDateTime& when :
         {QDateTime({2004, 2, 29}, {23, 5, 9}), QDateTime({1970, 1, 1}, {0, 0, 0}),
          QDateTime({2026, 12, 31}, {12, 34, 56, 789})}) {
        EXPECT_EQ(loop.SystemDateText(when),
                  QLocale::system().toString(when, QLocale::ShortFormat));
        EXPECT_FALSE(loop.SystemDateText(when).isEmpty());
    }
    EXPECT_EQ(loop.SystemDateText({}), "");
}

} // namespace quillane
