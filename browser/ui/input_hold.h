#pragma once
#include <QObject>
#include <QPointer>
#include <QWidget>

namespace quillane {

/// While it lives, nothing that a person does reaches the program's windows; painting and timers go
/// on. A window that was to be closed meanwhile is closed afterwards.
class InputHold : public QObject {
    Q_OBJECT
public:
    InputHold();
    ~InputHold() override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QList<QPointer<QWidget>> mToClose;
};

} // namespace quillane
