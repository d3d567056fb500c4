// Commands of the viewer: menus, tool bar, mouse tools.
#include "viewer/ui/frmToolImageDisplay.h"

#include "platform/run_aside.h"
#include "platform/ui/command_connector.h"
#include "viewer/date_stamp.h"
#include "viewer/menu_table.h"
#include "viewer/ui/viewer_dialogs.h"

#include <QActionGroup>
#include <QStatusBar>
#include <QStyle>
#include <cmath>

namespace quillane {

namespace {

constexpr qint32 kPaletteAndRegion = 0;  // flags of the clipboard; both are always honoured
constexpr qint32 kWhitePaper = 0xFFFFFF; // what a cut leaves behind
constexpr qint32 kZoomStep = 10;

enum ViewerButton : quint8 {
    kOpenButton = 1,
    kSaveButton = 2,
    kPrintButton = 4,
    kAcquireButton = 5,
    kCopyButton = 7,
    kPasteButton = 8,
    kCutButton = 9,
    kUndoButton = 10,
    kPointerButton = 12,
    kMagnifierButton = 13,
    kZoomInButton = 14,
    kZoomOutButton = 15,
    kRectangleButton = 16,
    kFreeHandButton = 17,
    kCropButton = 19,
    kFillButton = 20,
};

struct ToolEntry {
    const char* name;
    RegionTool tool;
};
constexpr ToolEntry kToolEntries[] = {
    {"mnuSelectNone", RegionTool::None},
    {"mnuSelectRectangle", RegionTool::Rectangle},
    {"mnuSelectEllipse", RegionTool::Ellipse},
    {"mnuSelectRoundedRectangle", RegionTool::RoundedRectangle},
    {"mnuSelectFreeHand", RegionTool::FreeHand},
};

struct ButtonKeys {
    int position;
    const char* keys;
};
constexpr ButtonKeys kButtonKeys[] = {
    {kCutButton, "Ctrl+X"},
    {kZoomInButton, "Ctrl++ Ctrl+= +"},
    {kZoomOutButton, "Ctrl+- -"},
};

QString ButtonName(int position)
{
    return QStringLiteral("Toolbar1_%1").arg(position);
}

} // namespace

void frmToolImageDisplay::BuildToolBar()
{
    Toolbar1->setObjectName(QStringLiteral("Toolbar1"));
    Toolbar1->setMovable(false);
    Toolbar1->setContextMenuPolicy(Qt::PreventContextMenu);
    addToolBar(Toolbar1);
    const int side = style()->pixelMetric(QStyle::PM_ToolBarIconSize, nullptr, this);
    Toolbar1->setIconSize({side, side});
    for (const ToolButton& button : ViewerToolButtons()) {
        QAction* action = AddToolButton(Toolbar1, button);
        if (!action) {
            continue;
        }
        action->setCheckable(button.index == kPointerButton || button.index == kMagnifierButton
                             || button.index == kRectangleButton
                             || button.index == kFreeHandButton);
        action->setVisible(button.index != kDrawTextButton && button.index != kDrawButton);
        ConnectCommand(
            action, &QAction::triggered, this, mPlatform.dialogs,
            [this, index = button.index] { Begun([this, index] { ToolPressed(index); }); });
    }
    for (const ButtonKeys& row : kButtonKeys) {
        QAction* action = Toolbar1->window()->findChild<QAction*>(ButtonName(row.position));
        QList<QKeySequence> keys;
        for (const QString& key : QString::fromLatin1(row.keys).split(u' ')) {
            keys.append(QKeySequence(key, QKeySequence::PortableText));
        }
        action->setShortcuts(keys);
    }
}

void frmToolImageDisplay::Command(const char* name, const std::function<void()>& command)
{
    ConnectCommand(mMenus.Action(QLatin1String(name)), &QAction::triggered, this, mPlatform.dialogs,
                   [this, command] { Begun(command); });
}

void frmToolImageDisplay::Begun(const std::function<void()>& command)
{
    const QPointer<frmToolImageDisplay> self(this);
    if (mBusy == 0) {
        Try(command);
    }
    if (self) {
        ShowTool();
    }
}

void frmToolImageDisplay::ConnectFileMenu()
{
    Command("mnuOpen", [this] { OpenImage(); });
    Command("mnuSingleFileSave", [this] { SaveImage(); });
    Command("mnuSingleFileSaveAs", [this] { SaveImageAs(); });
    Command("mnuPrint", [this] { Print(); });
    Command("mnuAcquireTwain", [this] { AcquireTwain(); });
    Command("mnuSelectTwainSource", [this] { SelectTwainSource(); });
    connect(mMenus.Action(QStringLiteral("mnuExit")), &QAction::triggered, this, &QWidget::close);
}

void frmToolImageDisplay::ConnectEditMenu()
{
    Command("mnuUndoLast", [this] { Undo(); });
    Command("mnuCopy", [this] { Copy(); });
    Command("mnuPaste", [this] { Paste(); });
    for (const ToolEntry& entry : kToolEntries) {
        Command(entry.name, [this, tool = entry.tool] { mTools->Select(tool); });
    }
    Command("mnuCancelSelectRegion", [this] { mTools->SetRegionFrame(0); });
    Command("mnuCrop", [this] { mTools->Crop(); });
    connect(mMenus.Menu(QStringLiteral("mnuSelectRegion")), &QMenu::aboutToShow, this,
            [this] { mTools->SetRegionFrame(1); });
    connect(mMenus.Menu(QStringLiteral("mnuEdit")), &QMenu::aboutToShow, this,
            [this] { mMenus.SetEnabled(QStringLiteral("mnuCrop"), LEAD1.HasRegion()); });
}

void frmToolImageDisplay::ConnectViewMenu()
{
    const auto zoom = [this](const ZoomItem& item) {
        const QString name = QLatin1String(item.name);
        connect(mMenus.Action(name), &QAction::triggered, this, [this, name] { ChooseZoom(name); });
    };
    for (const ZoomItem& item : kZoomItems) {
        zoom(item);
    }
    zoom(kZoomFit);
    Command("mnuMag", [this] { mTools->ToggleMagnifier(); });
    connect(mView, &EngineView::zoomChosen, this, [this] { ChooseZoom({}); });
}

void frmToolImageDisplay::ConnectCommands()
{
    for (const EnhanceCommand& command : EnhanceCommands()) {
        Command(command.name, [this, &command] { Run(command); });
    }
}

void frmToolImageDisplay::ConnectTools()
{
    connect(mTools, &RegionTools::PictureChanged, this, &frmToolImageDisplay::ShowFacts);
    connect(mTools, &RegionTools::ToolChanged, this, &frmToolImageDisplay::ShowTool);
    connect(mTools, &RegionTools::MagnifierChanged, this, &frmToolImageDisplay::ShowTool);
}

void frmToolImageDisplay::ShowTool()
{
    const bool magnifier = mTools->IsMagnifierOn();
    const RegionTool tool = mTools->Tool();
    for (const ToolEntry& entry : kToolEntries) {
        mMenus.SetChecked(QLatin1String(entry.name), !magnifier && entry.tool == tool);
    }
    mMenus.SetChecked(QStringLiteral("mnuMag"), magnifier);
    const auto check = [this](int position, bool on) {
        findChild<QAction*>(ButtonName(position))->setChecked(on);
    };
    check(kPointerButton, !magnifier && tool == RegionTool::None);
    check(kMagnifierButton, magnifier);
    check(kRectangleButton, !magnifier && tool == RegionTool::Rectangle);
    check(kFreeHandButton, !magnifier && tool == RegionTool::FreeHand);
}

void frmToolImageDisplay::ToolPressed(int position)
{
    switch (position) {
    case kOpenButton:
        OpenImage();
        break;
    case kSaveButton:
        SaveImage();
        break;
    case kPrintButton:
        Print();
        break;
    case kAcquireButton:
        AcquireTwain();
        break;
    case kCopyButton:
        Copy();
        break;
    case kPasteButton:
        TakeUndoCopy();
        Paste();
        break;
    case kCutButton:
        Cut();
        break;
    case kUndoButton:
        Undo();
        break;
    case kPointerButton:
        mTools->Pointer();
        break;
    case kMagnifierButton:
        mTools->SetMagnifier(true);
        break;
    case kZoomInButton:
        ZoomBy(kZoomStep);
        break;
    case kZoomOutButton:
        ZoomBy(-kZoomStep);
        break;
    case kRectangleButton:
        TakeUndoCopy();
        mTools->StartRubberBand(kBandRectangle);
        break;
    case kFreeHandButton:
        TakeUndoCopy();
        mTools->StartRubberBand(kBandFreeHand);
        break;
    case kCropButton:
        mTools->Crop();
        break;
    case kFillButton:
        if (const EnhanceCommand* fill = FindEnhanceCommand(QLatin1String("mnuFill"))) {
            Run(*fill);
        }
        break;
    default:
        break;
    }
}

void frmToolImageDisplay::OnCopy(const std::function<void(EngineInstance&)>& work)
{
    // On a copy, so that a window that is asked to paint or to go finds its picture whole.
    const QPointer<frmToolImageDisplay> self(this);
    const auto copy = std::make_shared<EngineInstance>(LEAD1);
    const BusyScope busy(*this);
    RunAside(mPlatform.loop, [&] { work(*copy); });
    if (!self) {
        throw Failure(kFailureCancelled, QStringLiteral("The window is gone."));
    }
    LEAD1 = std::move(*copy);
    ShowPicture();
}

void frmToolImageDisplay::Run(const EnhanceCommand& command)
{
    if (!command.work && command.dialog == CommandDialog::None) {
        AddDateStamp();
        return;
    }
    if (command.dialog == CommandDialog::MessageBox) {
        CountUniqueColors();
        return;
    }
    CommandRoad road;
    road.ask = [this](const EnhanceCommand& which) {
        const QPointer<frmToolImageDisplay> self(this);
        const CommandValues values = AskCommandValues(this, which, LEAD1);
        if (!self) {
            throw Failure(kFailureCancelled, QStringLiteral("The window is gone."));
        }
        return values;
    };
    road.run = [this](const std::function<void(EngineInstance&)>& work) { OnCopy(work); };
    RunEnhanceCommand(command, LEAD1, LEAD2, road);
}

void frmToolImageDisplay::AddDateStamp()
{
    ChooseZoom(QLatin1String(kZoomItems[2].name));
    mView->SetDragEnabled(false);
    const QPointer<frmToolImageDisplay> self(this);
    const QString file = mHeld.file;
    try {
        OnCopy([file](EngineInstance& lead) { StampText(lead, DateStampText(lead, file)); });
    } catch (const Failure&) {
        if (self) {
            mView->SetDragEnabled(true);
        }
        throw;
    }
    mView->SetDragEnabled(true);
}

void frmToolImageDisplay::CountUniqueColors()
{
    const auto colours = std::make_shared<qint64>(0);
    OnCopy([colours](EngineInstance& lead) { *colours = lead.UniqueColors(); });
    mPlatform.dialogs.Box(UniqueColorsText(*colours), mSession.gsAppTitle);
}

void frmToolImageDisplay::Undo()
{
    UndoLast(LEAD1, LEAD2);
    ShowPicture();
}

void frmToolImageDisplay::Copy()
{
    LEAD1.CopyToClipboard(kPaletteAndRegion);
}

void frmToolImageDisplay::Paste()
{
    LEAD1.PasteFromClipboard(0);
    ShowPicture();
}

void frmToolImageDisplay::Cut()
{
    TakeUndoCopy();
    Copy();
    OnCopy([](EngineInstance& lead) { lead.FillColor(kWhitePaper); });
}

void frmToolImageDisplay::ChooseZoom(const QString& name)
{
    for (const ZoomItem& item : kZoomItems) {
        mMenus.SetChecked(QLatin1String(item.name), name == QLatin1String(item.name));
    }
    mMenus.SetChecked(QLatin1String(kZoomFit.name), name == QLatin1String(kZoomFit.name));
    ApplyZoom();
}

void frmToolImageDisplay::ApplyZoom()
{
    for (const ZoomItem& item : kZoomItems) {
        if (mMenus.IsChecked(QLatin1String(item.name))) {
            mView->SetPaintScalar(item.percent);
            mView->SetPaintSizeMode(EngineView::kPaintScaled);
        }
    }
    if (mMenus.IsChecked(QLatin1String(kZoomFit.name))) {
        mView->SetPaintSizeMode(EngineView::kPaintFit);
    }
    ShowFacts();
}

void frmToolImageDisplay::ZoomBy(qint32 step)
{
    mTools->Pointer();
    // A picture that is fitted grows from the size at which it is seen.
    if (mView->PaintSizeMode() != EngineView::kPaintScaled && mView->HasImage()) {
        mView->SetPaintScalar(qint32(std::lround(mView->ZoomPercent())));
    }
    ChooseZoom({});
    mView->SetAutoScroll(true);
    mView->SetPaintSizeMode(EngineView::kPaintScaled);
    mView->SetPaintScalar(mView->PaintScalar() + step);
    ShowFacts();
}

} // namespace quillane
