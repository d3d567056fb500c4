#include "platform/run_aside.h"

#include "core/failure.h"
#include "platform/desktop/desktop_loop.h"

#include <QCoreApplication>
#include <QThread>
#include <atomic>
#include <gtest/gtest.h>
#include <new>

namespace quillane {

TEST(RunAside, WorksOnAnotherThreadAndComesBackWhenItIsDone)
{
    DesktopLoop loop;
    QThread* other = nullptr;
    RunAside(loop, [&] { other = QThread::currentThread(); });
    EXPECT_NE(other, nullptr);
    EXPECT_NE(other, QThread::currentThread());
}

TEST(RunAside, HandlesEventsMeanwhile)
{
    DesktopLoop loop;
    std::atomic<bool> handled = false;
    QMetaObject::invokeMethod(
        QCoreApplication::instance(), [&] { handled = true; }, Qt::QueuedConnection);
    // The work ends only when the event was handled on the other thread.
    RunAside(loop, [&] {
        while (!handled) {
            QThread::yieldCurrentThread();
        }
    });
    EXPECT_TRUE(handled);
}

TEST(RunAside, LetsAFailureOut)
{
    DesktopLoop loop;
    try {
        RunAside(loop, [] { throw Failure(kFailureIo, QStringLiteral("No room.")); });
        FAIL();
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.Number(), kFailureIo);
        EXPECT_EQ(failure.Description(), QStringLiteral("No room."));
    }
    EXPECT_THROW(RunAside(loop, [] { throw std::bad_alloc(); }), std::bad_alloc);
}

} // namespace quillane
