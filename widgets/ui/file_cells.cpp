#include "widgets/ui/file_cells.h"

#include "core/paths.h"
#include "widgets/file_tip.h"
#include "widgets/label_lines.h"
#include "widgets/ui/cell_paint.h"
#include "widgets/ui/file_icons.h"

#include <QLocale>
#include <QPainter>
#include <QScrollBar>
#include <algorithm>

namespace quillane {

namespace {

constexpr int kLargeIcon = 48; // logical pixels
constexpr int kSmallIcon = 16;
constexpr int kLargeCellWidth = 112;
constexpr int kFileCellPad = 4;
constexpr int kFileCellSpacing = 4;
constexpr int kNarrowestName = 120;
constexpr int kWidestName = 280;
constexpr int kMostMeasured = 2000; // names whose width is measured for the column

QString SystemShortDate(const QDateTime& when)
{
    return QLocale::system().toString(when, QLocale::ShortFormat);
}

} // namespace

FileCells::FileCells(const FileRows& rows, QHeaderView* header, QWidget* parent)
    : CellView(parent),
      mRows(rows),
      mHeader(header),
      mProvider(FileIcon),
      mDateText(SystemShortDate)
{
    if (mHeader) {
        mHeader->setParent(this);
    } else {
        mShape = Shape::List;
    }
}

void FileCells::SetShape(Shape shape)
{
    mShape = shape;
    using Flow = GridLayout::Flow;
    Layout().SetFlow(shape == Shape::Details    ? Flow::Lines
                         : shape == Shape::List ? Flow::Columns
                                                : Flow::Rows);
    Invalidate();
}

void FileCells::SetGridLines(bool on)
{
    mGridLines = on;
    viewport()->update();
}

void FileCells::SetIconProvider(std::function<QIcon(const QString& key)> provider)
{
    mProvider = provider ? std::move(provider) : FileIcon;
    mIcons.clear();
    viewport()->update();
}

void FileCells::SetDateText(std::function<QString(const QDateTime& when)> dateText)
{
    mDateText = dateText ? std::move(dateText) : SystemShortDate;
    viewport()->update();
}

void FileCells::TakeSelection(const FileCells& other)
{
    SelectAll(false);
    for (int row = other.Selection().Next(0); row >= 0; row = other.Selection().Next(row + 1)) {
        SetSelected(row, true);
    }
    MakeCurrent(other.Current());
}

QString FileCells::PathAt(int index) const
{
    return mRows.Path(index);
}

QString FileCells::TextAt(int index) const
{
    return mRows.Text(index);
}

QString FileCells::ToolTipAt(int index) const
{
    return FileTip(mRows.Path(index), {}, {});
}

QString FileCells::SpokenText(int index) const
{
    QString text = TextAt(index);
    if (mShape == Shape::Details) {
        for (int column = kColumnSize; column < kFileColumns; ++column) {
            if (const QString more = ColumnText(index, column); !more.isEmpty()) {
                text += QStringLiteral(", ") + more;
            }
        }
    }
    return text;
}

QString FileCells::ColumnText(int row, int column) const
{
    switch (column) {
    case kColumnName:
        return TextAt(row);
    case kColumnSize:
        return mRows.Size(row) < 0 ? QString() : QString::number(mRows.Size(row));
    case kColumnModified:
        return mRows.ModifiedSeconds(row) < 0
            ? QString()
            : mDateText(QDateTime::fromSecsSinceEpoch(mRows.ModifiedSeconds(row)));
    default:
        return mRows.Tag(row, column - kColumnFirstTag);
    }
}

const QIcon& FileCells::IconOf(int row, bool big) const
{
    const FileKind kind = mRows.Kind(row);
    const QString key = big ? BigIconKey(kind) : SmallIconKey(kind);
    const auto known = mIcons.constFind(key);
    return known != mIcons.constEnd() ? *known : *mIcons.insert(key, mProvider(key));
}

void FileCells::WidthsChanged()
{
    mLongestName = 0;
    mMeasured = 0;
    Invalidate();
}

void FileCells::UpdateMetrics()
{
    GridLayout::Metrics metrics;
    const int line = std::max(fontMetrics().height() + 2, kSmallIcon) + kFileCellPad;
    switch (mShape) {
    case Shape::LargeIcons:
        metrics.cell =
            QSize(kLargeCellWidth, kLargeIcon + 3 * kFileCellPad + 2 * fontMetrics().lineSpacing());
        break;
    case Shape::SmallIcons:
    case Shape::List: {
        // As wide as the longest of the first names, so that what comes later moves nothing.
        const int measure = std::min(mRows.Count(), kMostMeasured);
        for (; mMeasured < measure; ++mMeasured) {
            mLongestName = std::max(
                mLongestName, fontMetrics().horizontalAdvance(DisplayName(TextAt(mMeasured))));
        }
        metrics.cell = QSize(std::clamp(mLongestName, kNarrowestName, kWidestName) + kSmallIcon
                                 + 4 * kFileCellPad,
                             line);
        metrics.spread = false;
        break;
    }
    case Shape::Details:
        metrics.cell = QSize(1, line);
        PlaceHeader();
        Layout().SetLineWidth(mHeader->length());
        break;
    }
    metrics.spacing = mShape == Shape::LargeIcons ? kFileCellSpacing : 2;
    Layout().SetMetrics(metrics);
}

void FileCells::PlaceHeader()
{
    if (!mHeader) {
        return;
    }
    const int height = mHeader->sizeHint().height();
    setViewportMargins(0, height, 0, 0);
    const QRect place(viewport()->x(), viewport()->y() - height, viewport()->width(), height);
    mHeader->setGeometry(place);
    const QScrollBar* bar = horizontalScrollBar();
    mHeader->setOffset(bar->value());
}

void FileCells::resizeEvent(QResizeEvent* event)
{
    CellView::resizeEvent(event);
    PlaceHeader();
}

void FileCells::scrollContentsBy(int dx, int dy)
{
    CellView::scrollContentsBy(dx, dy);
    if (mHeader) {
        mHeader->setOffset(horizontalScrollBar()->value());
    }
}

bool FileCells::StartsDrag(int index, const QPoint& position) const
{
    if (mShape != Shape::Details) {
        return true;
    }
    // Beside the name a rubber band begins, as the rows leave no other room for it.
    const int left = mHeader->sectionViewportPosition(kColumnName);
    const int text =
        fontMetrics().horizontalAdvance(DisplayName(TextAt(index))) + kSmallIcon + 4 * kFileCellPad;
    const int width = std::min(mHeader->sectionSize(kColumnName), text);
    const int from = isRightToLeft() ? left + mHeader->sectionSize(kColumnName) - width : left;
    return position.x() >= from && position.x() < from + width;
}

void FileCells::PaintBackground(QPainter& painter, const QRect& rect)
{
    if (!mGridLines || mShape != Shape::Details) {
        return;
    }
    QColor line = palette().color(QPalette::Text);
    line.setAlpha(36);
    painter.setPen(line);
    for (int column = 0; column < mHeader->count(); ++column) {
        const int left = mHeader->sectionViewportPosition(column);
        const int x = isRightToLeft() ? left : left + mHeader->sectionSize(column) - 1;
        painter.drawLine(x, rect.top(), x, rect.bottom());
    }
    const int step = Layout().LineStep();
    const int offset = ScrollPosition().y() % step;
    for (int y = step - offset - 1; y <= rect.bottom(); y += step) {
        painter.drawLine(rect.left(), y, rect.right(), y);
    }
}

void FileCells::PaintCell(QPainter& painter, const QRect& rect, int index, const CellState& state)
{
    const CellLook look{state.selected, state.current, state.hovered, state.active};
    const QColor colour = CellTextColour(palette(), look);
    const QIcon::Mode mode = state.selected && state.active ? QIcon::Selected : QIcon::Normal;
    if (mShape == Shape::Details) {
        PaintCellBack(painter, rect.adjusted(1, 0, -1, mGridLines ? -1 : 0), palette(), look);
        PaintDetails(painter, rect, index, colour);
        return;
    }
    PaintCellBack(painter, rect, palette(), look);
    if (mShape == Shape::LargeIcons) {
        const QRect icon(rect.x() + (rect.width() - kLargeIcon) / 2, rect.y() + kFileCellPad,
                         kLargeIcon, kLargeIcon);
        IconOf(index, true).paint(&painter, icon, Qt::AlignCenter, mode);
        PaintCellLabel(painter,
                       QRect(rect.x() + 2, icon.bottom() + kFileCellPad, rect.width() - 4,
                             2 * fontMetrics().lineSpacing()),
                       TextAt(index), colour);
        return;
    }
    QRect icon(rect.x() + kFileCellPad, rect.y() + (rect.height() - kSmallIcon) / 2, kSmallIcon,
               kSmallIcon);
    QRect text = rect.adjusted(kSmallIcon + 2 * kFileCellPad, 0, -kFileCellPad, 0);
    if (isRightToLeft()) {
        icon.moveRight(rect.right() - kFileCellPad);
        text = rect.adjusted(kFileCellPad, 0, -kSmallIcon - 2 * kFileCellPad, 0);
    }
    IconOf(index, false).paint(&painter, icon, Qt::AlignCenter, mode);
    painter.setPen(colour);
    painter.drawText(text, int(Qt::AlignLeading | Qt::AlignVCenter | Qt::TextSingleLine),
                     painter.fontMetrics().elidedText(DisplayName(TextAt(index)), Qt::ElideMiddle,
                                                      text.width()));
}

void FileCells::PaintDetails(QPainter& painter, const QRect& rect, int row, const QColor& colour)
{
    painter.setPen(colour);
    for (int column = 0; column < mHeader->count(); ++column) {
        QRect cell(mHeader->sectionViewportPosition(column), rect.y(), mHeader->sectionSize(column),
                   rect.height());
        if (cell.right() < 0 || cell.left() > viewport()->width()) {
            continue;
        }
        QRect text = cell.adjusted(kFileCellPad + 2, 0, -kFileCellPad - 2, 0);
        if (column == kColumnName) {
            QRect icon(cell.x() + kFileCellPad, cell.y() + (cell.height() - kSmallIcon) / 2,
                       kSmallIcon, kSmallIcon);
            if (isRightToLeft()) {
                icon.moveRight(cell.right() - kFileCellPad);
                text.setRight(icon.left() - kFileCellPad - 1);
            } else {
                text.setLeft(icon.right() + kFileCellPad + 2);
            }
            IconOf(row, false).paint(&painter, icon);
        }
        if (text.width() <= 0) {
            continue;
        }
        const bool number = column == kColumnSize;
        const Qt::TextElideMode elide = column == kColumnName ? Qt::ElideMiddle : Qt::ElideRight;
        painter.drawText(text,
                         int((number ? Qt::AlignTrailing : Qt::AlignLeading) | Qt::AlignVCenter
                             | Qt::TextSingleLine),
                         painter.fontMetrics().elidedText(DisplayName(ColumnText(row, column)),
                                                          elide, text.width()));
    }
}

QPixmap FileCells::DragPicture(int index) const
{
    return IconOf(index, true).pixmap(QSize(kLargeIcon, kLargeIcon), devicePixelRatioF());
}

} // namespace quillane
