#include "widgets/ui/file_list_view.h"

#include "widgets/ui/file_cells.h"

#include <QAbstractTableModel>
#include <QEvent>
#include <QHeaderView>
#include <QVBoxLayout>
#include <algorithm>
#include <numeric>
#include <utility>

namespace quillane {

namespace {

// Widths of the columns in average characters.
constexpr int kColumnChars[kFileColumns] = {34, 14, 26, 18, 18, 18, 18};
constexpr int kUnnamedChars = 4; // a tag column that nobody gave a name

/// Headings alone: the rows are painted without a model.
class HeadingModel : public QAbstractTableModel {
public:
    HeadingModel(const FileListView& view, QObject* parent)
        : QAbstractTableModel(parent),
          mView(view)
    { }
    int rowCount(const QModelIndex& = {}) const override { return 0; }
    int columnCount(const QModelIndex& = {}) const override { return kFileColumns; }
    QVariant data(const QModelIndex&, int) const override { return {}; }
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override
    {
        if (orientation != Qt::Horizontal) {
            return {};
        }
        if (role == Qt::DisplayRole || role == Qt::ToolTipRole) {
            return mView.Caption(section);
        }
        if (role == Qt::TextAlignmentRole) {
            return int((section == kColumnSize ? Qt::AlignTrailing : Qt::AlignLeading)
                       | Qt::AlignVCenter);
        }
        return {};
    }

private:
    const FileListView& mView;
};

} // namespace

FileListView::FileListView(QWidget* parent)
    : QWidget(parent),
      mIcons(new FileCells(mRows, nullptr, this))
{
    setObjectName(QStringLiteral("lvSelected"));
    setAccessibleName(tr("Files"));
    MakeHeader();
    mDetails = new FileCells(mRows, mHeader, this);
    mDetails->setObjectName(QStringLiteral("lvSelectedDetails"));
    mIcons->setObjectName(QStringLiteral("lvSelectedIcons"));
    auto* box = new QVBoxLayout(this);
    box->setContentsMargins(0, 0, 0, 0);
    box->setSpacing(0);
    for (FileCells* cells : {mIcons, mDetails}) {
        cells->setAccessibleName(tr("Files"));
        box->addWidget(cells);
        Connect(cells);
    }
    mDetails->SetShape(FileCells::Shape::Details);
    mIcons->SetShape(FileCells::Shape::List);
    mIcons->hide();
    setFocusProxy(mDetails);
    connect(&mSorter, &FileSorter::sorted, this, &FileListView::ApplyOrder);
}

FileListView::~FileListView() = default;

void FileListView::MakeHeader()
{
    mHeader = new QHeaderView(Qt::Horizontal, this);
    mHeader->setObjectName(QStringLiteral("lvSelectedHeadings"));
    mHeader->setAccessibleName(tr("Columns"));
    mHeader->setModel(new HeadingModel(*this, mHeader));
    mHeader->setSectionsClickable(true);
    mHeader->setHighlightSections(false);
    mHeader->setMinimumSectionSize(40);
    mHeader->setTextElideMode(Qt::ElideRight);
    mHeader->setFocusPolicy(Qt::NoFocus);
    FitColumns();
    connect(mHeader, &QHeaderView::sectionClicked, this, &FileListView::HeadingClicked);
    connect(mHeader, &QHeaderView::sectionResized, this, [this] { mDetails->Invalidate(); });
    connect(mHeader, &QHeaderView::sectionHandleDoubleClicked, this, [this](int column) {
        // As wide as what is in sight needs.
        const GridLayout::Range seen = mDetails->VisibleRange();
        int width = mHeader->sectionSizeHint(column);
        for (int row = seen.first; row <= seen.last; ++row) {
            width = std::max(width, fontMetrics().horizontalAdvance(TextAt(row, column)) + 36);
        }
        mHeader->resizeSection(column, std::min(width, 800));
    });
}

void FileListView::FitColumns()
{
    for (int column = 0; column < kFileColumns; ++column) {
        FitColumn(column);
    }
}

void FileListView::FitColumn(int column)
{
    const int chars = Caption(column).isEmpty() ? kUnnamedChars : kColumnChars[column];
    mHeader->resizeSection(column, fontMetrics().averageCharWidth() * chars);
}

void FileListView::Connect(FileCells* cells)
{
    connect(cells, &CellView::currentChanged, this, [this, cells](int row) {
        if (cells == Cells()) {
            Q_EMIT currentChanged(row);
        }
    });
    connect(cells, &CellView::selectionChanged, this, [this, cells] {
        if (cells == Cells()) {
            Q_EMIT selectionChanged();
        }
    });
    connect(cells, &CellView::visibleRangeChanged, this, [this, cells](int first, int last) {
        if (cells == Cells()) {
            Q_EMIT visibleRangeChanged(first, last);
        }
    });
    connect(cells, &CellView::picked, this, &FileListView::picked);
    connect(cells, &CellView::clicked, this, &FileListView::clicked);
    connect(cells, &CellView::doubleClicked, this, &FileListView::doubleClicked);
    connect(cells, &CellView::contextMenuWanted, this, &FileListView::contextMenuWanted);
    connect(cells, &CellView::enterPressed, this, &FileListView::enterPressed);
}

FileCells* FileListView::Cells() const
{
    return mStyle == kDetails ? mDetails : mIcons;
}

FileCells* FileListView::Hidden() const
{
    return mStyle == kDetails ? mIcons : mDetails;
}

void FileListView::SetStyle(int style)
{
    if (style < kLargeIcons || style > kDetails || style == mStyle) {
        return;
    }
    FileCells* before = Cells();
    const bool focus = before->hasFocus();
    if (style != kDetails) {
        using Shape = FileCells::Shape;
        constexpr Shape kShapes[] = {Shape::LargeIcons, Shape::SmallIcons, Shape::List};
        mIcons->SetShape(kShapes[style]);
    }
    if ((style == kDetails) != (mStyle == kDetails)) {
        Hidden()->TakeSelection(*before);
    }
    mStyle = style;
    FileCells* shown = Cells();
    Hidden()->hide();
    shown->show();
    setFocusProxy(shown);
    if (focus) {
        shown->setFocus();
    }
    shown->EnsureVisible(shown->Current());
}

void FileListView::SetCaptions(const TagTexts& captions)
{
    const TagTexts before = std::exchange(mCaptions, captions);
    for (size_t tag = 0; tag < captions.size(); ++tag) {
        // A width that a person chose stays while the column stands for a tag.
        if (before[tag].isEmpty() != captions[tag].isEmpty()) {
            FitColumn(kColumnFirstTag + int(tag));
        }
    }
    Q_EMIT mHeader->model()->headerDataChanged(Qt::Horizontal, 0, kFileColumns - 1);
}

QString FileListView::Caption(int column) const
{
    switch (column) {
    case kColumnName:
        return QStringLiteral("Name");
    case kColumnSize:
        return QStringLiteral("Size");
    case kColumnModified:
        return QStringLiteral("Modified");
    default:
        return column < kFileColumns ? mCaptions[size_t(column - kColumnFirstTag)] : QString();
    }
}

void FileListView::SetSorted(bool on)
{
    mSorted = on;
    ShowSortMark();
}

void FileListView::SetGridLines(bool on)
{
    mGridLines = on;
    mDetails->SetGridLines(on);
}

int FileListView::Count() const
{
    return mRows.Count();
}

void FileListView::Clear()
{
    mSorter.Cancel();
    mSortColumn = -1;
    ShowSortMark();
    mRows.Clear();
    Hidden()->CellsCleared();
    mIcons->WidthsChanged();
    Cells()->CellsCleared();
}

void FileListView::AddRows(const QVector<FileRow>& rows)
{
    for (const FileRow& row : rows) {
        mRows.Append(row);
    }
    mIcons->CellsAppended(int(rows.size()));
    mDetails->CellsAppended(int(rows.size()));
    SortAgain();
}

void FileListView::InsertAt(int row, const FileRow& content)
{
    row = std::clamp(row, 0, Count());
    mRows.InsertAt(row, content);
    mIcons->CellsInserted(row, 1);
    mDetails->CellsInserted(row, 1);
    SortAgain();
}

void FileListView::RemoveAt(int row)
{
    if (row >= 0 && row < Count()) {
        mRows.RemoveAt(row);
        Hidden()->CellsRemoved(row, 1);
        Cells()->CellsRemoved(row, 1);
        SortAgain();
    }
}

void FileListView::SortAgain()
{
    // An order that is being worked out is of rows that are no more these.
    if (mSorter.IsBusy()) {
        mSorter.Sort(SortInputOf(mRows, mSortColumn, mSortOrder));
    }
}

void FileListView::SortRest()
{
    if (mSortColumn >= 0) {
        mSorter.Sort(SortInputOf(mRows, mSortColumn, mSortOrder));
    }
}

void FileListView::Rename(int row, const QString& path, const QString& shown)
{
    mRows.SetPath(row, path, shown);
    mIcons->UpdateCell(row);
    mDetails->UpdateCell(row);
}

void FileListView::SetTags(int row, const TagTexts& tags)
{
    mRows.SetTags(row, tags);
    mDetails->UpdateCell(row);
}

FileRow FileListView::Row(int row) const
{
    return mRows.Row(row);
}

QString FileListView::PathAt(int row) const
{
    return mRows.Path(row);
}

QString FileListView::TextAt(int row, int column) const
{
    return mDetails->ColumnText(row, column);
}

QVector<bool> FileListView::SelectedFlags() const
{
    return Cells()->SelectedFlags();
}

QVector<int> FileListView::SelectedIndexes() const
{
    return Cells()->SelectedIndexes();
}

int FileListView::SelectedCount() const
{
    return Cells()->SelectedCount();
}

bool FileListView::IsSelected(int row) const
{
    return Cells()->IsSelected(row);
}

void FileListView::SetSelected(int row, bool on)
{
    Cells()->SetSelected(row, on);
}

void FileListView::SelectAll(bool on)
{
    Cells()->SelectAll(on);
}

int FileListView::Current() const
{
    return Cells()->Current();
}

void FileListView::MakeCurrent(int row)
{
    Cells()->SelectOnly(row);
}

void FileListView::EnsureVisible(int row)
{
    Cells()->EnsureVisible(row);
}

int FileListView::RowAt(const QPoint& position) const
{
    FileCells* cells = Cells();
    return cells->HitTest(cells->viewport()->mapFrom(this, position));
}

QRect FileListView::RowRect(int row) const
{
    FileCells* cells = Cells();
    const QRect rect = cells->CellRect(row);
    return rect.isNull() ? rect
                         : QRect(cells->viewport()->mapTo(this, rect.topLeft()), rect.size());
}

GridLayout::Range FileListView::VisibleRange() const
{
    return Cells()->VisibleRange();
}

void FileListView::HeadingClicked(int column)
{
    if (!mSorted) {
        return;
    }
    const bool again = column == mSortColumn && mSortOrder == Qt::AscendingOrder;
    SortBy(column, again ? Qt::DescendingOrder : Qt::AscendingOrder);
}

void FileListView::SortBy(int column, Qt::SortOrder order)
{
    if (column < 0 || column >= kFileColumns) {
        return;
    }
    mSortColumn = column;
    mSortOrder = order;
    ShowSortMark();
    mSorter.Sort(SortInputOf(mRows, column, order));
}

bool FileListView::IsSorting() const
{
    return mSorter.IsBusy();
}

void FileListView::ShowSortMark()
{
    mHeader->setSortIndicatorShown(mSorted && mSortColumn >= 0);
    mHeader->setSortIndicator(mSortColumn, mSortOrder);
}

void FileListView::ApplyOrder(const QVector<int>& order)
{
    if (order.size() != Count()) {
        return;
    }
    mRows.Permute(order);
    mIcons->CellsPermuted(order);
    mDetails->CellsPermuted(order);
    Cells()->EnsureVisible(Current());
    Q_EMIT rowsReordered(order);
}

void FileListView::SetIconProvider(IconProvider provider)
{
    mIcons->SetIconProvider(provider);
    mDetails->SetIconProvider(std::move(provider));
}

void FileListView::SetDateText(DateText dateText)
{
    mIcons->SetDateText(dateText);
    mDetails->SetDateText(std::move(dateText));
}

void FileListView::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        FitColumns();
        mIcons->WidthsChanged();
    }
}

} // namespace quillane
