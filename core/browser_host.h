#pragma once
#include <QString>
#include <QVector>

namespace quillane {

/// What the other windows ask of the main window, and nothing else. frmBrowserMain is the real
/// one; a fake serves the tests.
class BrowserHost {
public:
    virtual ~BrowserHost() = default;
    /// Selected flags of the visible view, one for each entry of lbFilTiffs.
    virtual QVector<bool> SelectedFlags() const = 0;
    /// Scans the folder again in the view's mode.
    virtual void RefreshFiles() = 0;
    /// Redraws the thumbnail of gsFileName after it changed on the disk.
    virtual void UpdateImageInImageList() = 0;
    /// Text of a status panel, 1 to 4.
    virtual void SetPanel(int panel, const QString& text) = 0;
    virtual QString Panel(int panel) const = 0;
    /// The check of mnuSearchOn.
    virtual bool SearchOn() const = 0;
    virtual void SetSearchOn(bool on) = 0;
    /// Fills the visible view with these files instead of a folder's.
    virtual void ShowFiles(const QVector<QString>& paths) = 0;
};

} // namespace quillane
