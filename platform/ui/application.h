#pragma once
#include "platform/ui/group_box_keys.h"
#include <QApplication>

namespace quillane {

/// The application object. Its event hook is the last net for a failure that no command caught.
class Application : public QApplication {
    Q_OBJECT
public:
    Application(int& argc, char** argv);
    bool notify(QObject* receiver, QEvent* event) override;

private:
    GroupBoxKeys mGroupBoxKeys;
};

} // namespace quillane
