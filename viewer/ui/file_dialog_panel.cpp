#include "viewer/ui/file_dialog_panel.h"

#include "core/native_path.h"
#include "core/paths.h"
#include <QAbstractButton>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QHeaderView>
#include <QPainter>
#include <QScreen>
#include <QTreeView>
#include <QUrl>

namespace quillane {

namespace {

constexpr QSize kWellSize(264, 198);   // logical pixels
constexpr QSize kDialogSize(960, 620); // logical pixels, where the screen has them
constexpr int kKindColumn = 2;         // of the list of files
constexpr int kDateColumn = 3;
constexpr int kWellSquare = 8; // of the pattern

/// The image over squares, where it is clear.
QImage OverSquares(const QImage& image)
{
    if (!image.hasAlphaChannel()) {
        return image;
    }
    QImage shown(image.size(), QImage::Format_RGB32);
    QPainter painter(&shown);
    for (int y = 0; y < shown.height(); y += kWellSquare) {
        for (int x = 0; x < shown.width(); x += kWellSquare) {
            const bool light = (x / kWellSquare + y / kWellSquare) % 2 == 0;
            painter.fillRect(x, y, kWellSquare, kWellSquare,
                             light ? QColor(Qt::white) : QColor(Qt::lightGray));
        }
    }
    painter.drawImage(0, 0, image);
    return shown;
}

} // namespace

PreviewWell::PreviewWell(QWidget* parent) : QLabel(parent)
{
    setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
    setAlignment(Qt::AlignCenter);
    setFixedSize(kWellSize + QSize(2 * frameWidth(), 2 * frameWidth()));
}

QSize PreviewWell::Box() const
{
    return kWellSize * devicePixelRatioF();
}

void PreviewWell::ShowImage(const QImage& image)
{
    if (image.isNull()) {
        clear();
        return;
    }
    QPixmap pixels = QPixmap::fromImage(OverSquares(image));
    pixels.setDevicePixelRatio(devicePixelRatioF());
    setPixmap(pixels);
}

FileDialogWithPanel::FileDialogWithPanel(QWidget* owner, const QString& title,
                                         const QString& folder)
    : QFileDialog(owner, title, folder),
      mPanel(new QVBoxLayout),
      mWell(new PreviewWell),
      mWords(new QLabel),
      mHint(new QLabel)
{
    setOption(QFileDialog::DontUseNativeDialog);
    setOption(QFileDialog::DontConfirmOverwrite);
    setModal(true);
    mName = findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
    Q_ASSERT(mName);
    mWell->setObjectName(QStringLiteral("PreviewPicture"));
    mWell->setAccessibleName(tr("Preview"));
    mWords->setObjectName(QStringLiteral("PreviewWords"));
    mWords->setTextFormat(Qt::PlainText);
    mWords->setWordWrap(true);
    mWords->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    mHint->setObjectName(QStringLiteral("DialogHint"));
    mHint->setTextFormat(Qt::PlainText);
    mHint->setWordWrap(true);
    mHint->hide();
    connect(mName, &QLineEdit::textChanged, this, [this] { Hint({}); });
    Arrange();
}

// The toolkit remembers the list's columns for every program's dialogs: they get theirs back.
FileDialogWithPanel::~FileDialogWithPanel()
{
    if (const auto* const list = findChild<QTreeView*>(QStringLiteral("treeView"))) {
        list->header()->restoreState(mHeaderBefore);
    }
}

void FileDialogWithPanel::HideDates()
{
    if (const auto* const list = findChild<QTreeView*>(QStringLiteral("treeView"))) {
        list->header()->hideSection(kDateColumn);
    }
}

// The panel stands beside the list of files, and the buttons below both.
void FileDialogWithPanel::Arrange()
{
    mPanel->addWidget(mWell, 0, Qt::AlignHCenter);
    mPanel->addWidget(mWords);
    auto* const grid = qobject_cast<QGridLayout*>(layout());
    Q_ASSERT(grid);
    auto* const buttons = findChild<QDialogButtonBox*>(QStringLiteral("buttonBox"));
    auto* const kinds = findChild<QComboBox*>(QStringLiteral("fileTypeCombo"));
    const int right = grid->columnCount();
    if (buttons && kinds) {
        grid->removeWidget(buttons);
        grid->removeWidget(mName);
        grid->removeWidget(kinds);
        buttons->setOrientation(Qt::Horizontal);
        grid->addWidget(mName, 2, 1, 1, right - 1);
        grid->addWidget(kinds, 3, 1, 1, right - 1);
        grid->addWidget(buttons, 5, 0, 1, right + 1);
    }
    auto* const side = new QWidget;
    mPanel->setContentsMargins(0, 0, 0, 0);
    side->setLayout(mPanel);
    grid->addWidget(side, 0, right, 4, 1);
    grid->addWidget(mHint, 4, 0, 1, right + 1);
    grid->setColumnStretch(1, 1);
    if (auto* const list = findChild<QTreeView*>(QStringLiteral("treeView"))) {
        QHeaderView& header = *list->header();
        mHeaderBefore = header.saveState();
        header.hideSection(kKindColumn); // the names tell
        header.setSectionResizeMode(QHeaderView::ResizeToContents);
        header.setSectionResizeMode(0, QHeaderView::Stretch);
    }
    if (const QScreen* const onto = screen()) {
        resize(kDialogSize.boundedTo(onto->availableSize()));
    }
}

QString FileDialogWithPanel::Target() const
{
    const QString name = mName->text();
    if (name.isEmpty() || name.startsWith(u'/')) {
        return name;
    }
    return WithSeparator(directoryUrl().toLocalFile()) + name;
}

void FileDialogWithPanel::Hint(const QString& words)
{
    mHint->setText(words);
    mHint->setVisible(!words.isEmpty());
}

bool FileDialogWithPanel::EnterFolder(const QString& path)
{
    if (StatPath(path).type != quillane::FileType::Folder) {
        return false;
    }
    setDirectory(path);
    mName->clear();
    return true;
}

void FileDialogWithPanel::OrderTabs(const QList<QWidget*>& controls)
{
    QWidget* before = findChild<QComboBox*>(QStringLiteral("fileTypeCombo"));
    for (QWidget* const control : controls) {
        setTabOrder(before, control);
        before = control;
    }
    if (auto* const buttons = findChild<QDialogButtonBox*>(QStringLiteral("buttonBox"))) {
        for (QAbstractButton* const button : buttons->buttons()) {
            setTabOrder(before, button);
            before = button;
        }
    }
}

} // namespace quillane
