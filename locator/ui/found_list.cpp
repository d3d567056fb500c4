#include "locator/ui/found_list.h"

#include <QEvent>
#include <QFontMetricsF>
#include <QStyledItemDelegate>
#include <algorithm>
#include <cmath>

namespace quillane {

namespace {

constexpr int kExtentUnit = 9; // logical pixels
constexpr int kRowPadding = 3; // logical pixels above and below a row's text together

} // namespace

/// Rows of one size, so that no text is made for a row out of sight.
class FoundList::Delegate : public QStyledItemDelegate {
public:
    explicit Delegate(FoundList* list) : QStyledItemDelegate(list), mList(list) { }
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const override
    {
        const int frame =
            2 * (option.widget->style()->pixelMetric(QStyle::PM_FocusFrameHMargin) + 1);
        return {mList->HorizontalExtent() + frame, option.fontMetrics.height() + kRowPadding};
    }

private:
    FoundList* mList;
};

FoundList::FoundList(const UiLoop& loop, QWidget* parent)
    : QListView(parent),
      mLoop(loop),
      mModel(new FoundModel(loop, this))
{
    setModel(mModel);
    setItemDelegate(new Delegate(this));
    setUniformItemSizes(true);
    setTextElideMode(Qt::ElideNone);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    setAlternatingRowColors(true);
    ForgetWidths();
}

void FoundList::Clear()
{
    mModel->Clear();
    mWidestText = 0;
    scheduleDelayedItemsLayout();
}

void FoundList::Append(const std::vector<LocatorSearch::Batch>& batches)
{
    Measure(batches);
    mModel->Append(batches);
}

int FoundList::HorizontalExtent() const
{
    return mWidestText * kExtentUnit;
}

QStringList FoundList::SelectedPaths() const
{
    QModelIndexList rows = selectionModel()->selectedRows();
    std::sort(rows.begin(), rows.end());
    QStringList paths;
    paths.reserve(rows.size());
    for (const QModelIndex& row : rows) {
        paths.append(mModel->Path(row.row()));
    }
    return paths;
}

void FoundList::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
        ForgetWidths();
    }
    QListView::changeEvent(event);
}

void FoundList::ForgetWidths()
{
    mUsualWidths.fill(-1);
    mWidths.clear();
    mDateWidth = -1;
}

qreal FoundList::WidthOf(QStringView text)
{
    // The sum of single widths is a little more than the text's own where letters move together.
    qreal width = 0;
    for (const QChar unit : text) {
        if (unit.unicode() < mUsualWidths.size()) {
            qreal& usual = mUsualWidths[unit.unicode()];
            if (usual < 0) {
                usual = QFontMetricsF(font()).horizontalAdvance(unit);
            }
            width += usual;
            continue;
        }
        auto known = mWidths.constFind(unit.unicode());
        if (known == mWidths.cend()) {
            known = mWidths.insert(unit.unicode(), QFontMetricsF(font()).horizontalAdvance(unit));
        }
        width += *known;
    }
    return width;
}

qreal FoundList::DateWidth()
{
    if (mDateWidth < 0) {
        mDateWidth = 0;
        for (int hour = 0; hour < 24; ++hour) {
            const QDateTime when(QDate(2028, 1 + hour % 12, 28), QTime(hour, 58, 58));
            mDateWidth = std::max(mDateWidth, WidthOf(mLoop.SystemDateText(when)));
        }
    }
    return mDateWidth;
}

void FoundList::Measure(const std::vector<LocatorSearch::Batch>& batches)
{
    const qreal blanks = WidthOf(u"   ");
    const qreal date = DateWidth();
    qreal digit = 0;
    for (const QChar one : QStringView(u"0123456789")) {
        digit = std::max(digit, WidthOf(QStringView(&one, 1)));
    }
    qreal widest = 0;
    for (const LocatorSearch::Batch& batch : batches) {
        const qreal folder = WidthOf(batch.folder);
        for (const FoundFile& file : batch.files) {
            qreal width = folder + WidthOf(file.name);
            if (!file.exact) {
                int digits = 1;
                for (qint64 rest = file.size / 10; rest > 0; rest /= 10) {
                    ++digits;
                }
                width += 2 * blanks + digits * digit + date;
            }
            widest = std::max(widest, width);
        }
    }
    const auto units = qint32(std::ceil(widest / kExtentUnit));
    if (units > mWidestText) {
        mWidestText = units;
        scheduleDelayedItemsLayout();
    }
}

} // namespace quillane
