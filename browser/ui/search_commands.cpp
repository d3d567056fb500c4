// The two commands of the search.
#include "browser/ui/frmBrowserMain.h"

#include <QDialog>

namespace quillane {

namespace {

constexpr int kFoundPanel = 2;

QString FoundText(bool on)
{
    return on ? QStringLiteral("Search Found:") : QString();
}

} // namespace

void frmBrowserMain::SearchSettings()
{
    if (auto* dialog = qobject_cast<QDialog*>(mWindows.Get(QStringLiteral("frmBrowserSearch")))) {
        dialog->exec();
    }
    if (mClosing || !mSession.gSearchActive) {
        return;
    }
    SetSearchOn(true);
    RefreshFiles();
    SetPanel(kFoundPanel, FoundText(SearchOn()));
}

void frmBrowserMain::SwitchSearch()
{
    // The entry has changed its check by itself.
    const bool on = SearchOn();
    SetPanel(kFoundPanel, FoundText(on));
    SetSearchOn(on);
    RefreshFiles();
}

} // namespace quillane
