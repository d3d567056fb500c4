#include "viewer/ui/number_row.h"
#include "viewer/ui/number_box.h"

#include <QGridLayout>
#include <QLabel>
#include <QSlider>

namespace quillane {

namespace {

constexpr int kSliderWidth = 180; // logical pixels, at least

} // namespace

NumberRow::NumberRow(const EffectRange& range, qint32 start, QGridLayout& grid, QObject* parent)
    : QObject(parent),
      mRange(range),
      mStart(IntoRange(range, start)),
      mSlider(new QSlider(Qt::Horizontal)),
      mBox(new NumberBox(range.divisor))
{
    const QString name = QLatin1String(range.name);
    auto* label = new QLabel(tr(range.label));
    label->setObjectName(name + QStringLiteral("Label"));
    label->setBuddy(mSlider);
    QString words = tr(range.label);
    words.remove(u'&').remove(u':');

    mSlider->setObjectName(name + QStringLiteral("Slider"));
    mSlider->setAccessibleName(words);
    mSlider->setRange(range.least, range.most);
    mSlider->setSingleStep(range.step);
    mSlider->setPageStep(range.page);
    mSlider->setMinimumWidth(kSliderWidth);
    mSlider->setValue(mStart);
    mBox->setObjectName(name + QStringLiteral("Box"));
    mBox->setAccessibleName(words);
    mBox->setSuffix(QString::fromUtf8(range.unit));
    mBox->setRange(range.least, range.most);
    mBox->setSingleStep(range.step);
    mBox->SetPageStep(range.page);
    mBox->setValue(mStart);

    const int row = grid.rowCount();
    grid.addWidget(label, row, 0);
    grid.addWidget(mSlider, row, 1);
    grid.addWidget(mBox, row, 2);

    connect(mSlider, &QSlider::valueChanged, this, [this](int value) {
        // A number that is being typed keeps its text.
        if (mBox->value() != value) {
            mBox->setValue(value);
        }
        Q_EMIT ValueChanged(value);
    });
    connect(mBox, &QSpinBox::valueChanged, mSlider, &QSlider::setValue);
}

qint32 NumberRow::Value() const
{
    return mSlider->value();
}

void NumberRow::SetValue(qint32 value)
{
    mSlider->setValue(IntoRange(mRange, value));
}

void NumberRow::Reset()
{
    SetValue(mStart);
    mBox->setValue(mStart); // also where only its text was another
}

void NumberRow::TakeFocus()
{
    mSlider->setFocus();
}

} // namespace quillane
