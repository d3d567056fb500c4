#include "viewer/ui/preview_pane.h"

#include <QButtonGroup>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QStyleOption>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>

namespace quillane {

namespace {

constexpr double kPreviewStep = 40; // pixels an arrow key moves
constexpr int kPreviewChecker = 8;  // logical pixels

void PaintPreviewChecker(QPainter& painter, const QRectF& area, bool dark)
{
    painter.fillRect(area, dark ? QColor(70, 70, 70) : QColor(255, 255, 255));
    painter.save();
    painter.setClipRect(area);
    const QColor other = dark ? QColor(95, 95, 95) : QColor(216, 216, 216);
    const int left = int(std::floor(area.left()));
    const int top = int(std::floor(area.top()));
    for (int y = 0; top + y < area.bottom(); y += kPreviewChecker) {
        for (int x = y / kPreviewChecker % 2 * kPreviewChecker; left + x < area.right();
             x += 2 * kPreviewChecker) {
            painter.fillRect(left + x, top + y, kPreviewChecker, kPreviewChecker, other);
        }
    }
    painter.restore();
}

QToolButton* MakePreviewButton(const QString& name, const QString& text, const QString& tip)
{
    auto* button = new QToolButton;
    button->setObjectName(name);
    button->setText(text);
    button->setToolTip(tip);
    button->setToolButtonStyle(Qt::ToolButtonTextOnly);
    button->setFocusPolicy(Qt::StrongFocus);
    return button;
}

} // namespace

PreviewCanvas::PreviewCanvas(LivePreview& preview, QWidget* parent)
    : QWidget(parent),
      mPreview(preview)
{
    setObjectName(QStringLiteral("Preview"));
    setAccessibleName(tr("Preview"));
    setAttribute(Qt::WA_OpaquePaintEvent);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    connect(&mPreview, &LivePreview::Changed, this, [this] { update(); });
}

const QImage& PreviewCanvas::Shown() const
{
    const PreviewLook& look = mPreview.Look();
    return mBefore ? look.before : look.after;
}

QRectF PreviewCanvas::ImageRect() const
{
    const double ratio = devicePixelRatioF();
    const QSizeF size = QSizeF(Shown().size()) / ratio;
    const auto start = [&](double room, double side) {
        return std::floor((room - side) / 2 * ratio) / ratio;
    };
    return {QPointF(start(width(), size.width()), start(height(), size.height())), size};
}

void PreviewCanvas::SetFit(bool fit)
{
    mFit = fit;
    setFocusPolicy(fit ? Qt::NoFocus : Qt::StrongFocus);
    if (!fit && mCentre.isNull()) {
        const QSize all = mPreview.PictureSize();
        mCentre = {all.width() / 2.0, all.height() / 2.0};
    }
    LookAgain();
}

void PreviewCanvas::ShowBefore(bool before)
{
    mBefore = before;
    update();
}

bool PreviewCanvas::CanMove() const
{
    const QSize all = mPreview.PictureSize();
    const QSize room = mPreview.View().room;
    return !mFit && (all.width() > room.width() || all.height() > room.height());
}

void PreviewCanvas::ShowPointer()
{
    if (CanMove()) {
        setCursor(mDragged ? Qt::ClosedHandCursor : Qt::OpenHandCursor);
    } else {
        unsetCursor();
    }
}

void PreviewCanvas::LookAgain()
{
    const QSize room = (QSizeF(size()) * devicePixelRatioF()).toSize();
    const QSize all = mPreview.PictureSize();
    mPreview.SetView({mFit, room, mCentre});
    ShowPointer();
    if (!all.isEmpty()) {
        Q_EMIT Zoomed(mFit ? double(PreviewFit(all, room).width()) / all.width() : 1.0);
    }
}

void PreviewCanvas::MoveBy(QPointF devicePixels)
{
    if (!CanMove()) {
        return;
    }
    // Counted from what is in sight, so that a move beyond the edge is forgotten.
    const QRect part =
        PreviewPart(mPreview.PictureSize(), mPreview.View().room, mCentre + devicePixels);
    mCentre = QRectF(part).center();
    LookAgain();
}

void PreviewCanvas::resizeEvent(QResizeEvent*)
{
    LookAgain();
}

void PreviewCanvas::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const bool dark = palette().color(QPalette::Base).lightness() < 128;
    painter.fillRect(rect(), palette().color(QPalette::Dark));
    const QImage& image = Shown();
    if (image.isNull()) {
        return;
    }
    const QRectF place = ImageRect();
    if (image.hasAlphaChannel()) {
        PaintPreviewChecker(painter, place, dark);
    }
    painter.drawImage(place, image);
    const QImage& outline = mPreview.Look().outline;
    if (outline.size() == image.size()) {
        painter.drawImage(place, outline);
    }
    if (hasFocus()) {
        QStyleOptionFocusRect option;
        option.initFrom(this);
        style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
    }
}

void PreviewCanvas::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton || !CanMove()) {
        event->ignore();
        return;
    }
    mDragged = true;
    mLast = event->position();
    ShowPointer();
}

void PreviewCanvas::mouseMoveEvent(QMouseEvent* event)
{
    if (!mDragged) {
        return;
    }
    MoveBy((mLast - event->position()) * devicePixelRatioF());
    mLast = event->position();
}

void PreviewCanvas::mouseReleaseEvent(QMouseEvent*)
{
    mDragged = false;
    ShowPointer();
}

void PreviewCanvas::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Left:
        return MoveBy({-kPreviewStep, 0});
    case Qt::Key_Right:
        return MoveBy({kPreviewStep, 0});
    case Qt::Key_Up:
        return MoveBy({0, -kPreviewStep});
    case Qt::Key_Down:
        return MoveBy({0, kPreviewStep});
    default:
        QWidget::keyPressEvent(event);
    }
}

PreviewPane::PreviewPane(QWidget* parent)
    : QWidget(parent),
      mCanvas(new PreviewCanvas(mPreview)),
      mFit(MakePreviewButton(QStringLiteral("FitButton"), tr("&Fit"), tr("The whole picture"))),
      mFull(
          MakePreviewButton(QStringLiteral("FullButton"), tr("&100 %"),
                            tr("A part in full size, to be dragged or moved with the arrow keys"))),
      mBefore(MakePreviewButton(QStringLiteral("BeforeButton"), tr("&Before"),
                                tr("Held down: the picture as it is without the effect"))),
      mWords(new QLabel)
{
    mWords->setObjectName(QStringLiteral("PreviewWords"));
    mWords->setWordWrap(true);
    mFit->setCheckable(true);
    mFull->setCheckable(true);
    mFit->setChecked(true);
    auto* group = new QButtonGroup(this);
    group->addButton(mFit);
    group->addButton(mFull);

    auto* below = new QHBoxLayout;
    below->addWidget(mFit);
    below->addWidget(mFull);
    below->addWidget(mBefore);
    below->addWidget(mWords, 1);
    auto* all = new QVBoxLayout(this);
    all->setContentsMargins({});
    all->addWidget(mCanvas, 1);
    all->addLayout(below);

    connect(mFull, &QToolButton::toggled, this, [this](bool on) {
        mCanvas->SetFit(!on);
        ShowWhichIsDown();
    });
    connect(mBefore, &QToolButton::pressed, this, [this] { mCanvas->ShowBefore(true); });
    connect(mBefore, &QToolButton::released, this, [this] { mCanvas->ShowBefore(false); });
    connect(mCanvas, &PreviewCanvas::Zoomed, this, [this](double zoom) {
        mZoom = zoom;
        ShowWords();
    });
    connect(&mPreview, &LivePreview::Changed, this, &PreviewPane::ShowWords);
    ShowWhichIsDown();
}

void PreviewPane::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        ShowWhichIsDown();
    }
}

void PreviewPane::ShowWhichIsDown()
{
    // Styles show it by a shade that is hard to see in the dark.
    for (QToolButton* button : {mFit, mFull}) {
        QPalette colours;
        if (button->isChecked()) {
            colours.setColor(QPalette::Button, palette().color(QPalette::Highlight));
            colours.setColor(QPalette::ButtonText, palette().color(QPalette::HighlightedText));
        }
        button->setPalette(colours);
    }
}

void PreviewPane::SetFullSize(bool possible, bool first)
{
    mFull->setVisible(possible);
    mFit->setVisible(possible);
    mFull->setChecked(possible && first);
}

void PreviewPane::ShowWords()
{
    const QString& failure = mPreview.Look().failure;
    // Small sizes are told more exactly: 0.4 % is not 0 %.
    QString words = failure;
    // What an operation turns is shown as large as it then can be.
    if (words.isEmpty() && mFull->isVisibleTo(this)) {
        words = tr("Shown at %1 %").arg(mZoom * 100, 0, 'f', mZoom < 0.1 ? 1 : 0);
    }
    mWords->setText(words);
}

} // namespace quillane
