#include "viewer/ui/Histogram.h"
#include "core/failure.h"
#include "core/numbers.h"

#include <QButtonGroup>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHelpEvent>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QToolTip>
#include <QVBoxLayout>
#include <cmath>
#include <iterator>
#include <memory>
#include <optional>

namespace quillane {

namespace {

struct HistogramChannelRow {
    const char* caption;
    QRgb light, dark; ///< colour of the lines on such a background; 0: that of text
};
constexpr HistogramChannelRow kHistogramChannels[] = {
    {QT_TRANSLATE_NOOP("quillane::Histogram", "&Master"), 0, 0},
    {QT_TRANSLATE_NOOP("quillane::Histogram", "&Red"), 0xffc62828u, 0xffff6b6bu},
    {QT_TRANSLATE_NOOP("quillane::Histogram", "&Green"), 0xff2e7d32u, 0xff66d06bu},
    {QT_TRANSLATE_NOOP("quillane::Histogram", "&Blue"), 0xff1e57c8u, 0xff7aa7ffu},
};
/// Entries of FilterBox, split at ";": one, without words.
constexpr QLatin1String kHistogramFilters("");
constexpr int kHistogramScaleHeight = 10; // logical pixels of the scale of greys under the lines

} // namespace

HistogramChart::HistogramChart(QWidget* parent) : QWidget(parent)
{
    setObjectName(QStringLiteral("TheHist"));
    setAccessibleName(tr("Histogram"));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void HistogramChart::Draw(const HistogramDrawing& drawing, const processing::HistogramTable& table,
                          const QColor& colour)
{
    mDrawing = drawing;
    mTable = table;
    mColour = colour;
    mWords.clear();
    update();
}

void HistogramChart::ShowWords(const QString& words)
{
    mDrawing = {};
    mWords = words;
    update();
}

QRectF HistogramChart::Plot() const
{
    const QRectF inside = QRectF(rect()).adjusted(1, 1, -1, -1 - kHistogramScaleHeight);
    return inside;
}

void HistogramChart::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), palette().color(QPalette::Base));
    const QRectF plot = Plot();
    const double across = plot.width() / double(kHistogramWidth);
    const double down = plot.height() / double(kHistogramHeight);
    const auto x = [&](double unit) {
        return plot.left() + (unit - double(kHistogramLeft)) * across;
    };
    const auto y = [&](double unit) { return plot.top() + (unit - double(kHistogramTop)) * down; };
    if (!mWords.isEmpty()) {
        painter.setPen(palette().color(QPalette::Text));
        painter.drawText(plot, Qt::AlignCenter | Qt::TextWordWrap, mWords);
    }
    if (mDrawing.max > 0) {
        const QColor colour = mColour.isValid() ? mColour : palette().color(QPalette::Text);
        for (const HistogramLine& line : mDrawing.lines) {
            // Half a unit to each side: neighbours touch, whatever the size of the window.
            const double left = std::round(x(double(line.X1) - 0.5));
            const double right = std::max(left + 1, std::round(x(double(line.X1) + 0.5)));
            const double top = y(double(line.Y2));
            painter.fillRect(QRectF(left, top, right - left, y(double(line.Y1)) - top), colour);
        }
    }
    QLinearGradient greys(x(-0.5), 0, x(255.5), 0);
    greys.setColorAt(0, Qt::black);
    greys.setColorAt(1, mColour.isValid() ? mColour : QColor(Qt::white));
    painter.fillRect(QRectF(x(-0.5), y(double(kHistogramHeight) - 2) + 2, x(255.5) - x(-0.5),
                            kHistogramScaleHeight),
                     greys);
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

bool HistogramChart::event(QEvent* event)
{
    if (event->type() != QEvent::ToolTip || mDrawing.max == 0) {
        return QWidget::event(event);
    }
    const auto* help = static_cast<QHelpEvent*>(event);
    const QRectF plot = Plot();
    const double unit = (help->pos().x() - plot.left()) / plot.width() * double(kHistogramWidth)
        + double(kHistogramLeft);
    const auto level = std::lround(unit);
    if (level < 0 || size_t(level) >= mTable.size()) {
        QToolTip::hideText();
        return true;
    }
    QToolTip::showText(
        help->globalPos(),
        tr("Level %1: %2 pixels").arg(level).arg(locale().toString(mTable[size_t(level)])), this);
    return true;
}

Histogram::Histogram(const EngineInstance& LEAD1, QWidget* parent)
    : QDialog(parent),
      mLead(LEAD1),
      mChart(new HistogramChart),
      mChannels(new QButtonGroup(this)),
      mFilter(new QComboBox),
      mMost(new QLabel),
      mHalf(new QLabel),
      mJobs(1)
{
    setObjectName(QStringLiteral("Histogram"));
    setWindowTitle(tr("Image Histogram"));
    setSizeGripEnabled(true);

    mChannels->setObjectName(QStringLiteral("Channel"));
    auto* options = new QHBoxLayout;
    for (int i = 0; i < int(std::size(kHistogramChannels)); ++i) {
        auto* option = new QRadioButton(tr(kHistogramChannels[i].caption));
        option->setObjectName(QStringLiteral("Channel_%1").arg(i));
        mChannels->addButton(option, i);
        options->addWidget(option);
    }
    options->addStretch(1);
    mFilter->setObjectName(QStringLiteral("FilterBox"));
    mFilter->setAccessibleName(tr("Filter"));
    mFilter->setToolTip(tr("Draws the chosen channel again"));
    mFilter->addItems(QString(kHistogramFilters).split(u';'));
    mFilter->setMinimumContentsLength(8);
    options->addWidget(mFilter);

    mMost->setObjectName(QStringLiteral("YMax"));
    mMost->setAccessibleName(tr("Pixels of the fullest level"));
    mHalf->setObjectName(QStringLiteral("YMaxDiv2"));
    mHalf->setAccessibleName(tr("Half of that"));
    // Room for the largest number there can be, so that nothing moves with the channel.
    const qint64 all = qint64(mLead.BitmapWidth()) * mLead.BitmapHeight();
    mMost->setMinimumWidth(mMost->fontMetrics().horizontalAdvance(TextOf(double(all) + 0.5)));
    mMost->setAlignment(Qt::AlignRight);
    auto* scale = new QVBoxLayout;
    scale->addWidget(mMost, 0, Qt::AlignRight | Qt::AlignTop);
    scale->addStretch(1);
    scale->addWidget(mHalf, 0, Qt::AlignRight | Qt::AlignVCenter);
    scale->addStretch(1);
    auto* foot = new QLabel(QStringLiteral("0"));
    foot->setContentsMargins(0, 0, 0, kHistogramScaleHeight);
    scale->addWidget(foot, 0, Qt::AlignRight | Qt::AlignBottom);
    auto* drawing = new QHBoxLayout;
    drawing->addLayout(scale);
    drawing->addWidget(mChart, 1);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    buttons->button(QDialogButtonBox::Close)->setObjectName(QStringLiteral("CloseButton"));
    auto* window = new QVBoxLayout(this);
    window->addLayout(options);
    window->addLayout(drawing, 1);
    window->addWidget(buttons);

    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(mChannels, &QButtonGroup::idToggled, this, [this](int, bool on) {
        if (on) {
            DrawChannel();
        }
    });
    connect(mFilter, &QComboBox::activated, this, &Histogram::DrawChannel);
    PlaceInMiddle();
    mChannels->button(0)->setChecked(true);
    mChannels->button(0)->setFocus();
}

void Histogram::PlaceInMiddle()
{
    adjustSize();
    if (const QScreen* shown = screen()) {
        const QRect room = shown->availableGeometry();
        move(room.center() - QPoint(width(), height()) / 2);
    }
}

void Histogram::DrawChannel()
{
    struct Count {
        processing::HistogramTable table{};
        std::optional<Failure> failure;
    };
    const int asked = ++mAsked;
    const int channel = mChannels->checkedId();
    const auto count = std::make_shared<Count>();
    mJobs.Run(
        [count, picture = mLead.Bitmap(), region = mLead.RegionShape(), channel] {
            try {
                count->table = processing::Histogram(picture, region.IsEmpty() ? nullptr : &region,
                                                     processing::HistogramChannel(channel));
            } catch (const Failure& failure) {
                count->failure = failure;
            }
        },
        [this, asked, channel, count] {
            if (asked != mAsked) {
                return;
            }
            if (count->failure) {
                ShowFailure(*count->failure);
            } else {
                ShowTable(count->table, channel);
            }
        });
}

void Histogram::ShowTable(const processing::HistogramTable& table, int channel)
{
    try {
        const HistogramDrawing drawing = LinesOf(table);
        const HistogramChannelRow& row = kHistogramChannels[channel];
        const bool dark = palette().color(QPalette::Base).lightness() < 128;
        const QRgb colour = dark ? row.dark : row.light;
        mChart->Draw(drawing, table, colour == 0 ? QColor() : QColor::fromRgb(colour));
        mMost->setText(TextOf(double(drawing.max)));
        mHalf->setText(TextOf(double(drawing.max) / 2));
    } catch (const Failure& failure) {
        ShowFailure(failure);
    }
}

void Histogram::ShowFailure(const Failure& failure)
{
    mChart->ShowWords(
        tr("There are no lines to draw.\n%1: %2").arg(failure.Number()).arg(failure.Description()));
    mMost->clear();
    mHalf->clear();
}

} // namespace quillane
