#include "widgets/ui/scan_source_dialog.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>

namespace quillane {

namespace {

constexpr int kSourceName = Qt::UserRole;

} // namespace

ScanSourceDialog::ScanSourceDialog(SourceSearch& search, QString current, QWidget* parent)
    : QDialog(parent),
      mSearch(search),
      mCurrent(std::move(current)),
      mWords(new QLabel),
      mBusy(new QProgressBar),
      mList(new QListWidget)
{
    setObjectName(QStringLiteral("frmSelectSource"));
    setWindowTitle(tr("Select Source"));
    setModal(true);

    mWords->setObjectName(QStringLiteral("lblSources"));
    mWords->setWordWrap(true);
    mWords->setBuddy(mList);
    mBusy->setObjectName(QStringLiteral("proSources"));
    mBusy->setAccessibleName(tr("Looking for scanners"));
    mBusy->setRange(0, 0);
    mBusy->setTextVisible(false);
    mList->setObjectName(QStringLiteral("lstSources"));
    mList->setAccessibleName(tr("Scanners"));
    mList->setUniformItemSizes(true);

    auto* buttons = new QDialogButtonBox;
    mSelect = buttons->addButton(tr("&Select"), QDialogButtonBox::AcceptRole);
    mSelect->setObjectName(QStringLiteral("cmdSelect"));
    mSelect->setDefault(true);
    QPushButton* cancel = buttons->addButton(tr("Cancel"), QDialogButtonBox::RejectRole);
    cancel->setObjectName(QStringLiteral("cmdCancel"));
    mAgain = buttons->addButton(tr("&Look Again"), QDialogButtonBox::ActionRole);
    mAgain->setObjectName(QStringLiteral("cmdLookAgain"));

    auto* all = new QVBoxLayout(this);
    all->addWidget(mWords);
    all->addWidget(mBusy);
    all->addWidget(mList, 1);
    all->addWidget(buttons);
    resize(420, 280);

    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(mAgain, &QPushButton::clicked, this, &ScanSourceDialog::ShowSearching);
    connect(mList, &QListWidget::itemSelectionChanged, this, &ScanSourceDialog::ShowWhetherChosen);
    connect(mList, &QListWidget::itemActivated, this, &QDialog::accept);
    connect(&mSearch, &SourceSearch::Found, this, &ScanSourceDialog::ShowSources);
    connect(&mSearch, &SourceSearch::Failed, this, &ScanSourceDialog::ShowWords);
    ShowSearching();
}

QString ScanSourceDialog::Chosen() const
{
    const QList<QListWidgetItem*> marked = mList->selectedItems();
    return marked.isEmpty() ? QString() : marked.constFirst()->data(kSourceName).toString();
}

void ScanSourceDialog::ShowSearching()
{
    mSearch.Start();
    mList->clear();
    mWords->setText(tr("Looking for scanners…"));
    mBusy->show();
    mAgain->setEnabled(false);
    ShowWhetherChosen();
}

void ScanSourceDialog::ShowSources(const QList<ScanSource>& sources)
{
    if (sources.isEmpty()) {
        ShowWords(tr("No scanner was found. Look whether it is switched on and connected."));
        return;
    }
    ShowWords(tr("&Pictures are acquired from:"));
    for (const ScanSource& source : sources) {
        // Two of the same make are told apart by what they are opened by.
        const bool alone =
            std::count_if(sources.begin(), sources.end(),
                          [&](const ScanSource& other) { return other.Title() == source.Title(); })
            == 1;
        const QString words =
            alone ? source.Title() : QStringLiteral("%1 (%2)").arg(source.Title(), source.name);
        auto* item = new QListWidgetItem(words, mList);
        item->setData(kSourceName, source.name);
        item->setToolTip(QStringLiteral("%1\n%2").arg(source.kind, source.name).trimmed());
        if (source.name == mCurrent) {
            mList->setCurrentItem(item);
        }
    }
    if (mList->selectedItems().isEmpty()) {
        mList->setCurrentRow(0);
    }
    mList->setFocus();
}

void ScanSourceDialog::ShowWords(const QString& words)
{
    mWords->setText(words);
    mBusy->hide();
    mAgain->setEnabled(true);
}

void ScanSourceDialog::ShowWhetherChosen()
{
    mSelect->setEnabled(!mList->selectedItems().isEmpty());
}

void ChooseScanSource(Scanner& scanner, QWidget* owner)
{
    TwainSelect(scanner, [owner](SourceSearch& search, const QString& current) {
        ScanSourceDialog dialog(search, current, owner);
        const bool chosen = dialog.exec() == QDialog::Accepted && !dialog.Chosen().isEmpty();
        return chosen ? std::optional(dialog.Chosen()) : std::nullopt;
    });
}

} // namespace quillane
