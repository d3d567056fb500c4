// Commands of the main window that reach other programs, and its preferences.
#include "browser/ui/frmBrowserMain.h"

#include "browser/about_text.h"
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

/// Asks the desktop for something; that it cannot do it is a quiet line, and never a box.
void AskDesktop(frmBrowserMain& window, const std::function<void()>& ask)
{
    try {
        ask();
    } catch (const Failure& failure) {
        window.Tell(failure.Description());
    }
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
    Command("mnuPopSetWallpaper", [this] {
        const QString file = mSession.gsFileName; // another may be chosen meanwhile
        SetPhotoAsWallpaper(file, mPlatform, LineFor(this));
    });
    Command("mnuHelpContents", [this] { SystemOpen(mPlatform.places.HelpFile()); });
    const std::pair<const char*, QString> pages[] = {{"mnuTechSupport", SupportPage()},
                                                     {"mnuOnlineTutorial", TutorialPage()},
                                                     {"mnuQuillaneWeb", MakerSite()}};
    for (const auto& [name, address] : pages) {
        Command(name, [this, page = address] {
            AskDesktop(*this, [&] { mPlatform.launcher.OpenAddress(page); });
        });
    }
    Command("mnuMainFilePreferences", [this] { ShowPreferences(); });
}

void frmBrowserMain::Tool(int index)
{
    switch (index) {
    case 1:
        ImageTool(mSession.gsImageTool);
        break;
    case 2:
        AskDesktop(*this, [&] { mPlatform.launcher.FindIn(mSession.gsPath); });
        break;
    case 3:
        SearchSettings();
        break;
    case 6:
        Acquire();
        break;
    case 7:
        AskDesktop(*this, [&] {
            mPlatform.launcher.Run(
                mPlatform.places.ApplicationFolder() + QStringLiteral("VideoCapture"), {});
        });
        break;
    case 9:
        SendImages();
        break;
    case 10:
        ShowAlbum();
        break;
    default:
        break;
    }
}

void frmBrowserMain::SystemOpen(const QString& path)
{
    // What the system makes of the file is its own matter.
    AskDesktop(*this, [&] { mPlatform.launcher.OpenPath(path); });
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
    const QString file = mSession.gsFileName; // another may be chosen meanwhile
    const MapCommand command = MapRoad(file, mPlatform.places.ApplicationFolder(), mPlatform.loop);
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
