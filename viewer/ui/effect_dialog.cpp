#include "viewer/ui/effect_dialog.h"
#include "core/failure.h"
#include "viewer/ui/number_row.h"
#include "viewer/ui/preview_pane.h"

#include <QDialogButtonBox>
#include <QEvent>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace quillane {

EffectDialog::EffectDialog(QWidget* owner, const QString& name, const QString& title,
                           const Bitmap& picture, const Region& region)
    : QDialog(owner),
      mPane(new PreviewPane),
      mRows(new QGridLayout),
      mOwner(owner ? owner->window() : nullptr)
{
    setObjectName(name);
    setWindowTitle(title);
    setWindowModality(owner ? Qt::WindowModal : Qt::ApplicationModal);
    setSizeGripEnabled(true);
    mRows->setColumnStretch(1, 1);
    mPane->Preview().SetPicture(picture, region);
    mPane->setVisible(!picture.IsNull());

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    QPushButton* accept = buttons->button(QDialogButtonBox::Ok);
    accept->setObjectName(QStringLiteral("OkButton"));
    accept->setDefault(true);
    buttons->button(QDialogButtonBox::Cancel)->setObjectName(QStringLiteral("CancelButton"));
    QPushButton* reset = buttons->addButton(tr("&Reset"), QDialogButtonBox::ResetRole);
    reset->setObjectName(QStringLiteral("ResetButton"));
    reset->setToolTip(tr("Back to the values of the beginning"));
    reset->setAutoDefault(false);

    auto* all = new QVBoxLayout(this);
    all->addWidget(mPane, 1);
    all->addLayout(mRows);
    all->addWidget(buttons);

    // Rows come in front of these; the preview follows what is chosen.
    setTabOrder(reset, accept);
    setTabOrder(accept, buttons->button(QDialogButtonBox::Cancel));
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(reset, &QPushButton::clicked, this, &EffectDialog::ResetAll);
    if (mOwner) {
        mOwner->installEventFilter(this);
    }
}

NumberRow* EffectDialog::AddNumber(const EffectRange& range, qint32 start)
{
    auto* row = new NumberRow(range, start, *mRows, this);
    if (mResets.empty()) {
        row->TakeFocus();
    }
    OnReset([row] { row->Reset(); });
    connect(row, &NumberRow::ValueChanged, this, &EffectDialog::ValuesChanged);
    return row;
}

void EffectDialog::AddControl(const QString& label, QWidget* control)
{
    const int row = mRows->rowCount();
    if (!label.isEmpty()) {
        auto* words = new QLabel(label);
        words->setObjectName(control->objectName() + QStringLiteral("Label"));
        words->setBuddy(control);
        const bool tall = control->sizeHint().height() > 2 * words->sizeHint().height();
        mRows->addWidget(words, row, 0, tall ? Qt::AlignTop : Qt::AlignVCenter);
        QString plain = label;
        control->setAccessibleName(plain.remove(u'&').remove(u':'));
    }
    const bool button = qobject_cast<QPushButton*>(control) != nullptr;
    mRows->addWidget(control, row, 1, 1, 2, button ? Qt::AlignLeft : Qt::Alignment());
}

void EffectDialog::SetWish(std::function<EffectWish()> wish)
{
    mWish = std::move(wish);
    const EffectReach reach = mWish().reach;
    mPane->SetFullSize(reach != EffectReach::Turn, reach == EffectReach::Near);
    ValuesChanged();
}

void EffectDialog::ValuesChanged()
{
    if (mWish && !mResetting) {
        mPane->Preview().SetWish(mWish());
    }
}

void EffectDialog::ResetAll()
{
    mResetting = true;
    for (const auto& reset : mResets) {
        reset();
    }
    mResetting = false;
    ValuesChanged();
}

void EffectDialog::Run(const std::function<void()>& take)
{
    const QPointer<EffectDialog> self(this);
    const bool accepted = exec() == QDialog::Accepted;
    // The owner may be gone by now, and this dialog with it.
    const bool taken = accepted && self;
    if (taken) {
        take();
    }
    delete self.data();
    if (!taken) {
        throw Failure(kFailureCancelled, QStringLiteral("The dialog was cancelled."));
    }
}

bool EffectDialog::eventFilter(QObject* watched, QEvent* event)
{
    // A window that is only minimized is hidden by the system, and comes back.
    if (watched == mOwner && event->type() == QEvent::Hide && !event->spontaneous()) {
        reject();
    }
    return QDialog::eventFilter(watched, event);
}

} // namespace quillane
