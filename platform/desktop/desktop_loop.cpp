#include "platform/desktop/desktop_loop.h"

#include "platform/wait_for_events.h"

#include <QCoreApplication>
#include <QCursor>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLocale>
#include <QWindow>
#include <algorithm>

namespace quillane {

namespace {

constexpr int kBetweenEvents = 8; // milliseconds a long action may run without a look at events

/// Whether a dialog or a menu is open, which takes the Esc key for itself.
bool EscIsTaken()
{
    if (QGuiApplication::modalWindow()) {
        return true;
    }
    const QWindowList windows = QGuiApplication::topLevelWindows();
    return std::any_of(windows.begin(), windows.end(), [](const QWindow* window) {
        return window->type() == Qt::Popup && window->isVisible();
    });
}

} // namespace

DesktopLoop::DesktopLoop()
{
    mSinceEvents.start();
    qApp->installEventFilter(this);
    // A release that goes to another program's window is never seen here. While the key stays
    // down in one of ours, its repeated presses tell so.
    connect(qGuiApp, &QGuiApplication::focusWindowChanged, this, [this] { mEscDown = false; });
}

bool DesktopLoop::Yield(Generation generation)
{
    if (mSinceEvents.elapsed() >= kBetweenEvents) {
        ProcessEvents();
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
    WaitForThreadEvents(ms);
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
        if (static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape && !EscIsTaken()) {
            mEscPressed = true;
            mEscDown = true;
        }
    } else if (event->type() == QEvent::KeyRelease) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_Escape && !key->isAutoRepeat()) {
            mEscDown = false;
        }
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
