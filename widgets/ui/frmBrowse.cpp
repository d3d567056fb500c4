#include "widgets/ui/frmBrowse.h"

#include "core/paths.h"
#include "platform/ui/window_room.h"
#include "widgets/ui/folder_tree.h"

#include <QHBoxLayout>
#include <QScreen>
#include <QVBoxLayout>

namespace quillane {

namespace {

constexpr QSize kFirstSize{420, 480}; // logical pixels

QPushButton* BrowseButton(const char* name, const QString& caption)
{
    auto* button = new QPushButton(caption);
    button->setObjectName(QLatin1String(name));
    button->setAutoDefault(false);
    return button;
}

} // namespace

frmBrowse::frmBrowse(Session& session, Dialogs& dialogs, const QString& home, QWidget* parent)
    : QDialog(parent),
      mSession(session),
      mTree(new FolderTree(dialogs)),
      mSelect(BrowseButton("cmdSelect", tr("&Select"))),
      mNewFolder(BrowseButton("cmdNewFolder", tr("&New Folder")))
{
    setObjectName(QStringLiteral("frmBrowse"));
    setModal(true);
    setSizeGripEnabled(true);
    mTree->setObjectName(QStringLiteral("FolderView1"));
    mTree->setAccessibleName(tr("Folders"));
    mTree->SetEnterOpens(false); // it is the default button's
    mNewFolder->setToolTip(tr("Make a folder in the selected one"));

    // Until the tree has found what is selected in it there is nothing to go by.
    mSelect->setEnabled(false);
    mSelect->setDefault(true);
    QPushButton* cancel = BrowseButton("cmdCancel", tr("&Cancel"));
    connect(mSelect, &QPushButton::clicked, this, &QDialog::accept);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(mNewFolder, &QPushButton::clicked, this, [this] { mTree->NewFolder(true); });
    connect(mTree, &FolderTree::nodeSelected, this,
            [this](const QString&, const QString& path) { NodeSelected(path); });

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(mNewFolder);
    buttons->addStretch();
    buttons->addWidget(mSelect);
    buttons->addWidget(cancel);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(mTree, 1);
    layout->addLayout(buttons);
    resize(FirstSizeIn(screen()->availableSize()));
    mTree->setFocus();
    mTree->Select(session.browsePath.isEmpty() ? WithoutSeparator(home)
                                               : WithoutSeparator(session.browsePath));
}

QSize frmBrowse::FirstSizeIn(const QSize& room)
{
    return kFirstSize.boundedTo(WindowRoom(room));
}

void frmBrowse::PickFiles(const QString& selected)
{
    mTree->SetShowFiles(true);
    mTree->setAccessibleName(tr("Folders and files"));
    mNewFolder->setEnabled(false);
    mSelect->setEnabled(false);
    mTree->Select(selected);
}

void frmBrowse::NodeSelected(const QString& path)
{
    mSession.browsePath = IsDriveRoot(path) ? path : path + SeparatorOf(path);
    mSelect->setEnabled(true);
}

void frmBrowse::reject()
{
    mSession.browsePath.clear();
    QDialog::reject();
}

} // namespace quillane
