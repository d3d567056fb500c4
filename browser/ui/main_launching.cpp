// Commands of the main window that reach other programs, and its preferences.
#include "browser/ui/frmBrowserMain.h"

#include "browser/launching.h"
#include "browser/map_road.h"
#include "browser/ui/frmBrowserPreferences.h"
#include "browser/ui/main_preferences.h"
#include "browser/ui/send_album.h"
#include "browser/wallpaper_road.h"

#include <QPointer>

namespace quillane {

namespace {

constexpr int kSlotsOfAKind = 4;
constexpr int kWidestCaption = 400; // pixels of a menu that a slot may take

/// A line for a window that may have gone when there is something to tell.
TellLine LineFor(frmBrowserMain* window)
{
    return [shown = QPointer<frmBrowserMain>(window)](const QString& line) {
        if (shown) {
            shown->Tell(line);
        }
    };
}

} // namespace

void frmBrowserMain::ConnectLaunching()
{
    for (int i = 0; i < kSlotsOfAKind; ++i) {
        const QByteArray name = "mnuCustomApp" + QByteArray::number(i + 1);
        Command(name.constData(), [this, i] { RunSlot(mSlots.apps[size_t(i)]); });
    }
    for (const char* name : {"mnuEmailImages", "mnuPopEmail"}) {
        Command(name, [this] { SendImages(); });
    }
    for (const char* name : {"mnuWayfarix", "mnuPopWayfarix"}) {
        Command(name, [this] { ShowOnMap(); });
    }
    Command("mnuPopSetWallpaper",
            [this] { SetPhotoAsWallpaper(mSession.gsFileName, mPlatform, LineFor(this)); });
    Command("mnuMainFilePreferences", [this] { ShowPreferences(); });
}

void frmBrowserMain::ApplyCustomTools()
{
    const auto apply = [this](const QString& name, const CustomSlotEntry& state) {
        QAction* action = mMenus.Action(name);
        action->setVisible(state.visible);
        action->setEnabled(state.enabled);
        if (state.visible) {
            action->setText(fontMetrics().elidedText(state.caption, Qt::ElideRight, kWidestCaption,
                                                     Qt::TextShowMnemonic));
        }
    };
    const CustomSlotEntries entries = quillane::ApplyCustomTools(mSlots);
    for (int i = 0; i < kSlotsOfAKind; ++i) {
        const QString number = QString::number(i + 1);
        apply(QStringLiteral("mnuCustomTool") + number, entries.tools[size_t(i)]);
        apply(QStringLiteral("mnuPopCustomTool") + number, entries.tools[size_t(i)]);
        apply(QStringLiteral("mnuCustomApp") + number, entries.apps[size_t(i)]);
    }
}

void frmBrowserMain::RunSlot(const CustomSlot& slot)
{
    RunCustomSlot(slot, mSession, mPlatform.launcher, LineFor(this));
}

void frmBrowserMain::ShowOnMap()
{
    const QPointer<frmBrowserMain> alive(this);
    Launcher& launcher = mPlatform.launcher;
    const MapCommand command =
        MapRoad(mSession.gsFileName, mPlatform.places.ApplicationFolder(), mPlatform.loop);
    if (alive) {
        launcher.Run(command.program, command.arguments, {}, LineFor(this));
    }
}

void frmBrowserMain::SendImages()
{
    SendImagesByMail(mSession, SelectedFlags(), mPlatform.mail,
                     ShowMailFailure(mPlatform.dialogs, this));
}

void frmBrowserMain::ShowPreferences()
{
    MainPreferences target({*mViews, mScan, mSlots, mStore,
                            [this](int style) {
                                if (!mViews->ThumbnailsShown()) {
                                    CheckView(style);
                                }
                            },
                            [this] { ApplyCustomTools(); }});
    // It may go with this window while it is shown.
    const QPointer<frmBrowserPreferences> preferences(new frmBrowserPreferences(
        mSession, target, mPlatform.dialogs, [this] { return FileOperation(kPickProgram); }, this));
    preferences->exec();
    delete preferences;
}

void frmBrowserMain::CheckView(int style)
{
    for (const ViewEntry& view : ViewEntries()) {
        mMenus.SetChecked(QLatin1String(view.name), view.style == style);
    }
}

} // namespace quillane
