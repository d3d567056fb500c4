#pragma once
#include <QScreen>
#include <QSize>
#include <QWidget>

namespace quillane {

/// Logical pixels that the desktop puts above a window.
inline constexpr int kWindowTitle = 30;

/// How large a window may be so that a screen of this size shows all of it.
inline QSize WindowRoom(const QSize& screen)
{
    return screen - QSize(0, kWindowTitle);
}

/// The same for the screen that the window is on.
inline QSize WindowRoom(const QWidget& window)
{
    return WindowRoom(window.screen()->availableSize());
}

} // namespace quillane
