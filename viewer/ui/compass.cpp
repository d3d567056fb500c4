#include "viewer/ui/compass.h"

#include <QButtonGroup>
#include <QEvent>
#include <QGridLayout>
#include <QPainter>
#include <QPainterPath>
#include <QStyleOptionToolButton>
#include <QStylePainter>
#include <QToolButton>

namespace quillane {

namespace {

constexpr int kCompassDirections = 8;
constexpr double kCompassTurn = 45; // degrees
constexpr int kCompassSide = 30;    // logical pixels of a button

struct CompassPlace {
    int row, column;
    const char* name;
};
constexpr CompassPlace kCompassPlaces[kCompassDirections] = {
    {0, 1, QT_TRANSLATE_NOOP("quillane::Compass", "North")},
    {0, 2, QT_TRANSLATE_NOOP("quillane::Compass", "North East")},
    {1, 2, QT_TRANSLATE_NOOP("quillane::Compass", "East")},
    {2, 2, QT_TRANSLATE_NOOP("quillane::Compass", "South East")},
    {2, 1, QT_TRANSLATE_NOOP("quillane::Compass", "South")},
    {2, 0, QT_TRANSLATE_NOOP("quillane::Compass", "South West")},
    {1, 0, QT_TRANSLATE_NOOP("quillane::Compass", "West")},
    {0, 0, QT_TRANSLATE_NOOP("quillane::Compass", "North West")},
};

/// A button with an arrow in the colour of its text.
class CompassButton : public QToolButton {
public:
    explicit CompassButton(int direction) : mDirection(direction)
    {
        setCheckable(true);
        setFocusPolicy(Qt::StrongFocus);
        setFixedSize(kCompassSide, kCompassSide);
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QStylePainter painter(this);
        QStyleOptionToolButton option;
        initStyleOption(&option);
        if (isChecked()) {
            // Styles show it by a shade that is hard to see in the dark.
            option.palette.setColor(QPalette::Button, palette().color(QPalette::Highlight));
        }
        painter.drawComplexControl(QStyle::CC_ToolButton, option);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.translate(width() / 2.0, height() / 2.0);
        painter.rotate(mDirection * kCompassTurn);
        QPainterPath arrow;
        arrow.moveTo(0, -9);
        arrow.lineTo(5, -1);
        arrow.lineTo(1.5, -1);
        arrow.lineTo(1.5, 8);
        arrow.lineTo(-1.5, 8);
        arrow.lineTo(-1.5, -1);
        arrow.lineTo(-5, -1);
        arrow.closeSubpath();
        painter.fillPath(
            arrow, palette().color(isChecked() ? QPalette::HighlightedText : QPalette::ButtonText));
    }

private:
    int mDirection;
};

} // namespace

Compass::Compass(qint32 direction, QWidget* parent)
    : QWidget(parent),
      mButtons(new QButtonGroup(this))
{
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins({});
    grid->setSpacing(2);
    grid->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    for (int i = 0; i < kCompassDirections; ++i) {
        const CompassPlace& place = kCompassPlaces[i];
        auto* button = new CompassButton(i);
        button->setObjectName(QStringLiteral("Direction_%1").arg(i));
        button->setAccessibleName(tr(place.name));
        button->setToolTip(tr(place.name));
        mButtons->addButton(button, i);
        grid->addWidget(button, place.row, place.column);
    }
    SetDirection(direction);
    connect(mButtons, &QButtonGroup::idToggled, this, [this](int id, bool on) {
        if (on) {
            Q_EMIT DirectionChanged(id);
        }
    });
}

qint32 Compass::Direction() const
{
    return mButtons->checkedId();
}

void Compass::SetDirection(qint32 direction)
{
    mButtons->button(direction < 0 || direction >= kCompassDirections ? 0 : direction)
        ->setChecked(true);
}

} // namespace quillane
