#pragma once
#include "platform/launcher.h"
#include <QDialog>

class QLabel;

namespace quillane {

/// The About window: title, version, and links to the maker's site and support address.
class frmBrowserAbout : public QDialog {
    Q_OBJECT
public:
    frmBrowserAbout(const QString& title, Launcher& launcher, QWidget* parent = nullptr);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QLabel* MakeLink(const char* name, const QString& text, const QString& address);
    void OpenLink(const QLabel* link);
    Launcher& mLauncher;
};

} // namespace quillane
