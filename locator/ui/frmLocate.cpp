#include "locator/ui/frmLocate.h"

#include "core/paths.h"
#include "locator/drives.h"
#include "locator/ui/status_line.h"
#include "platform/file_list_mime.h"
#include "platform/ui/command_connector.h"
#include "platform/ui/window_room.h"
#include "widgets/mounted_volumes.h"

#include <QApplication>
#include <QClipboard>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QMenuBar>
#include <QShortcut>
#include <QSplitter>
#include <QStyle>
#include <QVBoxLayout>

namespace quillane {

namespace {

constexpr QSize kLocateSize(860, 520); // logical pixels
constexpr int kChoicesWidth = 280;     // logical pixels, of the left half at first

template <typename Kind> Kind* NameControl(Kind* control, const char* name, const QString& spoken)
{
    control->setObjectName(QLatin1String(name));
    control->setAccessibleName(spoken);
    return control;
}

} // namespace

frmLocate::frmLocate(Session& session, Platform platform, std::function<void()> endProgram,
                     QWidget* parent)
    : QMainWindow(parent),
      mSession(session),
      mPlatform(platform),
      mEndProgram(std::move(endProgram)),
      Text1(new QLineEdit),
      Check1(new QCheckBox(QStringLiteral("Include Sub Directories"))),
      cmdAction{new QPushButton(QStringLiteral("Find Files")),
                new QPushButton(QStringLiteral("Cancel"))},
      Drive1(new QComboBox),
      Dir1(new DirList),
      List1(new FoundList(platform.loop)),
      Status(new StatusLine)
{
    setObjectName(QStringLiteral("frmLocate"));
    setWindowTitle(QStringLiteral("Find Files"));
    setAttribute(Qt::WA_DeleteOnClose);
    BuildMenu();
    Build();
    ConnectControls();
}

frmLocate::~frmLocate()
{
    mSearch.Terminate();
    // The controls go after what their signals lead to.
    for (QObject* child : findChildren<QObject*>()) {
        child->disconnect(this);
    }
}

void frmLocate::BuildMenu()
{
    QMenu* file = menuBar()->addMenu(tr("F&ile")); // Alt+F is the button's
    file->setObjectName(QStringLiteral("mnuFile"));
    file->setToolTipsVisible(true);
    QAction* exit = file->addAction(QStringLiteral("E&xit"));
    exit->setObjectName(QStringLiteral("mnuFileSub"));
    exit->setIcon(QIcon::fromTheme(QStringLiteral("application-exit")));
    exit->setToolTip(tr("Ends the whole program at once; nothing is saved."));
    connect(exit, &QAction::triggered, this, [this] { mEndProgram(); });
}

QWidget* frmLocate::BuildChoices()
{
    NameControl(Text1, "Text1", tr("Search string"));
    Text1->setClearButtonEnabled(true);
    Text1->setToolTip(tr("Patterns divided by \";\", with \"*\" at their beginning or end: "
                         "*.jpg;holiday*;*beach*"));
    NameControl(Check1, "Check1(0)", tr("Include subfolders"));
    NameControl(cmdAction[0], "cmdAction(0)", tr("Find files"));
    NameControl(cmdAction[1], "cmdAction(1)", tr("Cancel the search"));
    NameControl(Drive1, "Drive1", tr("Drive to search"));
    NameControl(Dir1, "Dir1", tr("Folder to search"));
    Drive1->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);

    const auto label = [](const QString& text, QWidget* buddy) {
        auto* made = new QLabel(text);
        made->setBuddy(buddy);
        return made;
    };
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(cmdAction[0], 1);
    buttons->addWidget(cmdAction[1], 1);
    auto* choices = new QWidget;
    auto* column = new QVBoxLayout(choices);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(label(QStringLiteral("Search String:"), Text1));
    column->addWidget(Text1);
    column->addWidget(Check1);
    column->addLayout(buttons);
    column->addSpacing(column->spacing());
    column->addWidget(label(QStringLiteral("Drive to Search:"), Drive1));
    column->addWidget(Drive1);
    column->addWidget(label(QStringLiteral("Folders to Search:"), Dir1));
    column->addWidget(Dir1, 1);
    return choices;
}

void frmLocate::Build()
{
    NameControl(List1, "List1", tr("Files found"));
    NameControl(Status, "Status", tr("State of the search"));
    Status->setTextFormat(Qt::PlainText);

    auto* frame = new QGroupBox(QStringLiteral("Files Found"));
    frame->setObjectName(QStringLiteral("Frame1"));
    auto* inFrame = new QVBoxLayout(frame);
    inFrame->addWidget(List1);

    auto* halves = new QSplitter;
    halves->setChildrenCollapsible(false);
    halves->addWidget(BuildChoices());
    halves->addWidget(frame);
    halves->setStretchFactor(0, 0);
    halves->setStretchFactor(1, 1);
    halves->setSizes({kChoicesWidth, kLocateSize.width() - kChoicesWidth});

    auto* content = new QWidget;
    auto* all = new QVBoxLayout(content);
    all->addWidget(halves, 1);
    all->addWidget(Status);
    setCentralWidget(content);
    resize(kLocateSize.boundedTo(WindowRoom(*this)));
    EnableActions();
}

void frmLocate::ConnectControls()
{
    Dialogs& dialogs = mPlatform.dialogs;
    ConnectCommand(cmdAction[0], &QPushButton::clicked, this, dialogs, [this] { StartSearch(); });
    ConnectCommand(cmdAction[1], &QPushButton::clicked, this, dialogs, [this] { CancelSearch(); });
    ConnectCommand(Text1, &QLineEdit::returnPressed, this, dialogs, [this] { StartSearch(); });
    connect(Text1, &QLineEdit::textChanged, this, &frmLocate::EnableActions);
    connect(Check1, &QCheckBox::toggled, &mSearch, &LocatorSearch::SetIncludesSubfolders);
    ConnectCommand(Dir1, &DirList::pathChanged, this, dialogs, [this] { StartSearch(); });
    ConnectCommand(Drive1, &QComboBox::activated, this, dialogs,
                   [this](int drive) { Dir1->SetPath(Drive1->itemData(drive).toString()); });
    ConnectCommand(new QShortcut(Qt::Key_Escape, this), &QShortcut::activated, this, dialogs,
                   [this] { CancelSearch(); });

    const auto onList = [this](const QString& text, const QKeySequence& key) {
        auto* action = new QAction(text, List1);
        action->setShortcut(key);
        action->setShortcutContext(Qt::WidgetShortcut);
        List1->addAction(action);
        return action;
    };
    List1->setContextMenuPolicy(Qt::ActionsContextMenu);
    ConnectCommand(onList(tr("&Open"), {}), &QAction::triggered, this, dialogs,
                   [this] { OpenFound(List1->currentIndex().row()); });
    ConnectCommand(onList(tr("&Copy"), QKeySequence::Copy), &QAction::triggered, this, dialogs,
                   [this] { CopyFound(); });
    ConnectCommand(List1, &QListView::activated, this, dialogs,
                   [this](const QModelIndex& row) { OpenFound(row.row()); });

    connect(&mSearch, &LocatorSearch::folderShown, Status, &QLabel::setText);
    connect(&mSearch, &LocatorSearch::found, List1, &FoundList::Append);
    connect(&mSearch, &LocatorSearch::ended, this, &frmLocate::Ended);
    connect(&mSearch, &LocatorSearch::failed, this, &frmLocate::Failed);
}

void frmLocate::setVisible(bool visible)
{
    if (visible && !mFormLoaded) {
        mFormLoaded = true;
        RunCommand(mPlatform.dialogs, [this] { LoadForm(); });
    }
    QMainWindow::setVisible(visible);
}

void frmLocate::LoadForm()
{
    const QStringList drives = LocatorDrives(ReadMountTable());
    const QIcon disk = QIcon::fromTheme(QStringLiteral("drive-harddisk"),
                                        style()->standardIcon(QStyle::SP_DriveHDIcon));
    const QIcon card = QIcon::fromTheme(QStringLiteral("drive-removable-media"), disk);
    for (const QString& drive : drives) {
        const QString leaf = LeafName(drive);
        if (leaf.isEmpty()) {
            Drive1->addItem(disk, drive, drive);
        } else {
            Drive1->addItem(card, leaf + QStringLiteral("  (%1)").arg(drive), drive);
        }
    }
    Drive1->setCurrentIndex(DriveOf(drives, mSession.gsPath));
    Dir1->SetPath(mSession.gsPath);
    Check1->setChecked(true);
    cmdAction[0]->setText(QStringLiteral("&Find Files"));
    Text1->setFocus();
}

void frmLocate::StartSearch()
{
    mSearch.Terminate();
    auto busy = std::make_unique<Hourglass>(mPlatform.loop);
    List1->Clear();
    if (!Text1->text().isEmpty()) {
        mBusy = std::move(busy);
        mSearch.Start(Dir1->Path(), Text1->text(), Check1->isChecked());
    } else {
        mBusy.reset();
    }
    EnableActions();
}

void frmLocate::CancelSearch()
{
    mSearch.Stop();
}

void frmLocate::Ended(const FindResult& result)
{
    mBusy.reset();
    if (!result.stopped) {
        Status->setText(FoundStatus(List1->Rows().rowCount(), result.Patterns, result.HitCount));
    }
    EnableActions();
}

void frmLocate::Failed()
{
    mBusy.reset();
    EnableActions();
    // Whoever looks for files in a folder that cannot be read gets no wrong count: the program
    // ends.
    mEndProgram();
}

void frmLocate::EnableActions()
{
    // The button that is pressed keeps the keyboard with its neighbour.
    const bool hadFocus = cmdAction[1]->hasFocus();
    cmdAction[0]->setEnabled(!Text1->text().isEmpty());
    cmdAction[1]->setEnabled(mSearch.IsRunning());
    if (hadFocus && !cmdAction[1]->isEnabled()) {
        cmdAction[0]->setFocus();
    }
}

void frmLocate::OpenFound(int row)
{
    const QString path = List1->Rows().Path(row);
    if (!path.isEmpty()) {
        mPlatform.launcher.OpenPath(path);
    }
}

void frmLocate::CopyFound()
{
    const QStringList paths = List1->SelectedPaths();
    if (!paths.isEmpty()) {
        QApplication::clipboard()->setMimeData(FileListMimeData(paths));
    }
}

} // namespace quillane
