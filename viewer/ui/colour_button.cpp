#include "viewer/ui/colour_button.h"
#include "imaging/processing/colour.h"

#include <QColorDialog>
#include <QPainter>
#include <QPixmap>
#include <QPointer>

namespace quillane {

namespace {

constexpr qint32 kColourBits = 0xFFFFFF;

} // namespace

ColourButton::ColourButton(qint32 colour, QWidget* parent)
    : QPushButton(tr("&Fill Color…"), parent),
      mColour(-1)
{
    setAutoDefault(false);
    setToolTip(tr("The color of what the picture does not cover"));
    SetColour(colour);
    connect(this, &QPushButton::clicked, this, &ColourButton::Ask);
}

void ColourButton::SetColour(qint32 colour)
{
    if (mColour == (colour & kColourBits)) {
        return;
    }
    mColour = colour & kColourBits;
    QPixmap swatch(iconSize() * devicePixelRatioF());
    swatch.fill(QColor::fromRgb(processing::RgbOfColour(mColour)));
    QPainter painter(&swatch);
    painter.setPen(QColor(128, 128, 128));
    painter.drawRect(swatch.rect().adjusted(0, 0, -1, -1));
    painter.end();
    setIcon(QIcon(swatch));
    Q_EMIT ColourChanged();
}

void ColourButton::Ask()
{
    const QPointer<QColorDialog> dialog =
        new QColorDialog(QColor::fromRgb(processing::RgbOfColour(mColour)), this);
    dialog->setObjectName(QStringLiteral("FillColorDialog"));
    dialog->setWindowTitle(tr("Fill Color"));
    const bool accepted = dialog->exec() == QDialog::Accepted;
    // This button may have gone with its window meanwhile, and the dialog with it.
    if (!dialog) {
        return;
    }
    const QColor chosen = dialog->selectedColor();
    delete dialog.data();
    if (accepted && chosen.isValid()) {
        SetColour(chosen.red() | chosen.green() << 8 | chosen.blue() << 16);
    }
}

} // namespace quillane
