#include "platform/desktop/desktop_loop.h"

#include <QCoreApplication>
#include <QCursor>
#include <QEventLoop>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLocale>

namespace quillane {

namespace {

constexpr int kBetweenEvents = 8; // milliseconds a long action may run without a look at events
constexpr int kCallsPerLook = 8;  // yields between two looks at the clock

} // namespace

DesktopLoop::DesktopLoop()
{
    mSinceEvents.start();
    QCoreApplication::instance()->installEventFilter(this);
}

bool DesktopLoop::Yield(Generation generation)
{
    if (++mCalls >= kCallsPerLook) {
        mCalls = 0;
        if (mSinceEvents.elapsed() >= kBetweenEvents) {
            ProcessEvents();
        }
    }
    return generation == mNewest;
}

void DesktopLoop::ProcessEvents()
{
    QCoreApplication::processEvents();
    mSinceEvents.restart();
}

void DesktopLoop::WaitForEvents(int ms)
{
    QEventLoop loop;
    const int timer = loop.startTimer(ms);
    loop.processEvents(QEventLoop::WaitForMoreEvents);
    loop.killTimer(timer);
    mSinceEvents.restart();
}

bool DesktopLoop::PollEsc()
{
    const bool pressed = mEscPressed || mEscDown;
    mEscPressed = false;
    return pressed;
}

void DesktopLoop::ForgetEsc()
{
    mEscPressed = false;
    mEscDown = false;
}

bool DesktopLoop::eventFilter(QObject*, QEvent* event)
{
    // A press shows as ShortcutOverride first; either tells of it.
    if (event->type() == QEvent::KeyPress || event->type() == QEvent::ShortcutOverride) {
        if (static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
            mEscPressed = true;
            mEscDown = true;
        }
    } else if (event->type() == QEvent::KeyRelease) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_Escape && !key->isAutoRepeat()) {
            mEscDown = false;
        }
    } else if (event->type() == QEvent::ApplicationStateChange) {
        // A release that another program's window got is never seen here.
        mEscDown = false;
    }
    return false;
}

void DesktopLoop::BeginHourglass()
{
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
}

void DesktopLoop::EndHourglass()
{
    QGuiApplication::restoreOverrideCursor();
}

QDateTime DesktopLoop::Now() const
{
    return QDateTime::currentDateTime();
}

QString DesktopLoop::SystemDateText(const QDateTime& when) const
{
    return QLocale::system().toString(when, QLocale::ShortFormat);
}

} // namespace quillane
