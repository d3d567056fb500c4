#include "widgets/ui/scan_settings_dialog.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>

namespace quillane {

namespace {

constexpr int kMostDotsPerInch = 19200;

int WholeDots(double resolution)
{
    return int(std::lround(std::clamp(resolution, 0.0, double(kMostDotsPerInch))));
}

QComboBox* ScanBox(const char* name, const QString& spoken, const QStringList& entries,
                   const QString& current)
{
    auto* box = new QComboBox;
    box->setObjectName(QLatin1String(name));
    box->setAccessibleName(spoken);
    box->addItems(entries);
    box->setCurrentIndex(std::max(0, int(entries.indexOf(current))));
    return box;
}

} // namespace

ScanSettingsDialog::ScanSettingsDialog(const ScanChoices& choices, QWidget* parent)
    : QDialog(parent),
      mMode(ScanBox("cboMode", tr("Colors"), choices.modes, choices.mode)),
      mFeed(ScanBox("cboFeed", tr("Paper"), choices.feeds, choices.feed)),
      mResolutions(ScanBox("cboResolution", tr("Dots per inch"), {}, {})),
      mResolution(new QSpinBox),
      mAnyResolution(choices.resolutions.isEmpty()),
      mHasResolution(!choices.resolutions.isEmpty() || choices.mostResolution > 0)
{
    setObjectName(QStringLiteral("frmAcquire"));
    setWindowTitle(tr("Acquire"));
    setModal(true);
    for (const double resolution : choices.resolutions) {
        mResolutions->addItem(QString::number(resolution), resolution);
        if (resolution == choices.resolution) {
            mResolutions->setCurrentIndex(mResolutions->count() - 1);
        }
    }
    mResolution->setObjectName(QStringLiteral("txtResolution"));
    mResolution->setAccessibleName(tr("Dots per inch"));
    mResolution->setRange(std::max(1, WholeDots(std::ceil(choices.leastResolution))),
                          std::max(1, WholeDots(choices.mostResolution)));
    mResolution->setValue(WholeDots(choices.resolution));

    auto* form = new QFormLayout;
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    const auto add = [&](const QString& words, QWidget* control, bool offered) {
        if (offered) {
            form->addRow(words, control);
        } else {
            control->setParent(this);
            control->hide();
        }
    };
    add(tr("&Colors:"), mMode, !choices.modes.isEmpty());
    add(tr("&Paper:"), mFeed, !choices.feeds.isEmpty());
    add(tr("&Dots per inch:"), mResolutions, mHasResolution && !mAnyResolution);
    add(tr("&Dots per inch:"), mResolution, mHasResolution && mAnyResolution);
    if (form->rowCount() == 0) {
        form->addRow(new QLabel(tr("This scanner offers nothing to choose.")));
    }
    auto* buttons = new QDialogButtonBox;
    QPushButton* scan = buttons->addButton(tr("&Scan"), QDialogButtonBox::AcceptRole);
    scan->setObjectName(QStringLiteral("cmdScan"));
    scan->setDefault(true);
    buttons->addButton(tr("Cancel"), QDialogButtonBox::RejectRole)
        ->setObjectName(QStringLiteral("cmdCancel"));
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* all = new QVBoxLayout(this);
    all->addLayout(form);
    all->addStretch();
    all->addWidget(buttons);
    setMinimumWidth(300);
}

void ScanSettingsDialog::Fill(ScanWishes& wishes) const
{
    if (mMode->count() > 0) {
        wishes.mode = mMode->currentText();
    }
    if (mFeed->count() > 0) {
        wishes.feed = mFeed->currentText();
    }
    if (mHasResolution) {
        wishes.resolution =
            mAnyResolution ? mResolution->value() : mResolutions->currentData().toDouble();
    }
}

bool AskScanWishes(QWidget* owner, const ScanChoices& choices, ScanWishes& wishes)
{
    ScanSettingsDialog dialog(choices, owner);
    if (dialog.exec() != QDialog::Accepted) {
        return false;
    }
    dialog.Fill(wishes);
    return true;
}

} // namespace quillane
