#pragma once
#include <QObject>

namespace quillane {

/// Lets keys pass a group box that cannot be checked, on their way from a control in it to the
/// dialog around it. The toolkit's own box swallows those that press a button, Enter among them on
/// some desktops, and the dialog's default button would never hear of it.
class GroupBoxKeys : public QObject {
    Q_OBJECT
public:
    /// Watches every event of the application from now on.
    explicit GroupBoxKeys(QObject* parent = nullptr);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};

} // namespace quillane
