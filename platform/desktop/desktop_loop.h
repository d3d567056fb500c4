#pragma once
#include "platform/ui_loop.h"
#include <QElapsedTimer>
#include <QObject>

namespace quillane {

/// The window thread's message loop. Esc is seen by a filter on the application, so any press
/// that is handled between two polls counts.
class DesktopLoop : public QObject, public UiLoop {
    Q_OBJECT
public:
    /// Needs the application object.
    DesktopLoop();

    bool Yield(Generation generation) override;
    void ProcessEvents() override;
    void WaitForEvents(int ms) override;
    Generation NewGeneration() override { return ++mNewest; }
    Generation Newest() const override { return mNewest; }
    bool PollEsc() override;
    void ForgetEsc() override;
    void BeginHourglass() override;
    void EndHourglass() override;
    QDateTime Now() const override;
    QString SystemDateText(const QDateTime& when) const override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QElapsedTimer mSinceEvents;
    Generation mNewest = 0;
    bool mEscPressed = false; ///< since the last poll
    bool mEscDown = false;
};

} // namespace quillane
