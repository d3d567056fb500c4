#include "album/album_model.h"

#include "platform/file_list_mime.h"

#include <QGuiApplication>
#include <QMimeData>
#include <QPalette>
#include <QSet>
#include <QThreadPool>
#include <algorithm>
#include <functional>
#include <iterator>
#include <memory>
#include <utility>

namespace quillane {

namespace {

constexpr qsizetype kFewRemovals = 50; // as many are told to the views one by one

/// Whether each position is that which its row has before any of the steps.
bool AreOldPositions(const QVector<int>& steps)
{
    return std::adjacent_find(steps.begin(), steps.end(), std::less_equal<>()) == steps.end();
}

/// Takes those positions, the largest first, out of a list in one walk.
template <typename List> void TakeOut(List& list, const QVector<int>& positions)
{
    auto kept = list.begin();
    auto next = positions.rbegin();
    for (auto from = list.begin(); from != list.end(); ++from) {
        if (next != positions.rend() && *next == int(from - list.begin())) {
            ++next;
        } else {
            if (kept != from) {
                *kept = std::move(*from);
            }
            ++kept;
        }
    }
    list.erase(kept, list.end());
}

} // namespace

AlbumModel::AlbumModel(QList<QString>& lbExportList, QObject* parent)
    : QAbstractTableModel(parent),
      mExports(lbExportList)
{ }

void AlbumModel::SetDateText(std::function<QString(const QDateTime& when)> dateText)
{
    mDateText = std::move(dateText);
}

QString AlbumModel::Path(int row) const
{
    return Has(row) ? mRows[size_t(row)].path : QString();
}

QList<QString> AlbumModel::Paths() const
{
    QList<QString> paths;
    paths.reserve(Count());
    for (const Row& row : mRows) {
        paths.append(row.path);
    }
    return paths;
}

AlbumFileState AlbumModel::State(int row) const
{
    return Has(row) ? mRows[size_t(row)].state : AlbumFileState::Unknown;
}

QList<QString> AlbumModel::FoundPaths() const
{
    QList<QString> paths;
    paths.reserve(Count());
    for (const Row& row : mRows) {
        if (row.state == AlbumFileState::Found) {
            paths.append(row.path);
        }
    }
    return paths;
}

void AlbumModel::Clear()
{
    mExports.clear();
    mKnownExports = 0;
    ClearRows();
}

void AlbumModel::ClearRows()
{
    beginResetModel();
    LetGoOfRows();
    mSettled = 0;
    mWaiting = 0;
    mKnownExports = 0;
    endResetModel();
}

std::vector<AlbumModel::Row> AlbumModel::RowsOfFile(QList<QString> paths)
{
    std::vector<Row> rows;
    rows.reserve(size_t(paths.size()));
    for (QString& path : paths) {
        rows.push_back({std::move(path), 0, 0, AlbumFileState::Unknown, Joins::WhenFound});
    }
    return rows;
}

void AlbumModel::Append(std::vector<Row> rowsOfFile)
{
    if (rowsOfFile.empty()) {
        return;
    }
    mWaiting += int(rowsOfFile.size());
    beginInsertRows({}, Count(), Count() + int(rowsOfFile.size()) - 1);
    if (mRows.empty()) {
        mRows = std::move(rowsOfFile);
    } else {
        std::move(rowsOfFile.begin(), rowsOfFile.end(), std::back_inserter(mRows));
    }
    endInsertRows();
}

void AlbumModel::LetGoOfRows()
{
    constexpr size_t kMany = 50'000; // strings that are freed one by one
    if (mRows.size() > kMany) {
        auto old = std::make_shared<std::vector<Row>>(std::move(mRows));
        QThreadPool::globalInstance()->start([rows = std::move(old)]() mutable { rows.reset(); });
    }
    mRows.clear();
}

void AlbumModel::Append(const QList<QString>& paths, AlbumFeed feed)
{
    if (feed == AlbumFeed::File) {
        Append(RowsOfFile(paths));
        return;
    }
    if (paths.isEmpty()) {
        return;
    }
    Joins joins = Joins::No;
    if (feed == AlbumFeed::Added) {
        // Behind rows that may still join, so that the list has the order of the rows.
        joins = mWaiting > 0 ? Joins::Yes : Joins::No;
        if (joins == Joins::No) {
            mExports += paths;
            mKnownExports += paths.size();
        }
    } else {
        mKnownExports += paths.size();
    }
    if (joins != Joins::No) {
        mWaiting += int(paths.size());
    }
    beginInsertRows({}, Count(), Count() + int(paths.size()) - 1);
    for (const QString& path : paths) {
        Row row;
        row.path = path;
        row.joins = joins;
        mRows.push_back(std::move(row));
    }
    endInsertRows();
}

QList<QString> AlbumModel::Unsettled(int most) const
{
    QList<QString> paths;
    const int end = mSettled + std::min(most, Count() - mSettled);
    paths.reserve(end - mSettled);
    for (int row = mSettled; row < end; ++row) {
        paths.append(mRows[size_t(row)].path);
    }
    return paths;
}

void AlbumModel::Settle(const QVector<AlbumFileFacts>& facts)
{
    const int first = mSettled;
    for (const AlbumFileFacts& known : facts) {
        if (mSettled == Count()) {
            break;
        }
        Row& row = mRows[size_t(mSettled++)];
        row.state = known.state;
        row.size = known.size;
        row.modifiedSeconds = known.modifiedSeconds;
        const bool waited = row.joins != Joins::No;
        const bool joins = row.joins == Joins::Yes
            || (row.joins == Joins::WhenFound && known.state == AlbumFileState::Found);
        row.joins = Joins::No;
        mWaiting -= waited ? 1 : 0;
        if (!known.otherPath.isEmpty() && waited) {
            row.path = known.otherPath;
        }
        if (joins) {
            mExports.append(row.path);
            ++mKnownExports;
        }
    }
    if (mSettled > first) {
        Q_EMIT dataChanged(index(first, 0), index(mSettled - 1, kColumns - 1));
    }
}

bool AlbumModel::TakeNewExports()
{
    mKnownExports = std::clamp(mKnownExports, qsizetype(0), mExports.size());
    const QList<QString> fresh = mExports.mid(mKnownExports);
    Append(fresh, AlbumFeed::List);
    return !fresh.isEmpty();
}

void AlbumModel::RemoveSteps(const QVector<int>& positions)
{
    const bool oneByOne = positions.size() <= kFewRemovals;
    if (!oneByOne && AreOldPositions(positions)) {
        RemoveMany(positions);
        return;
    }
    if (!oneByOne) {
        beginResetModel();
    }
    for (const int position : positions) {
        if (!Has(position)) {
            continue;
        }
        if (oneByOne) {
            beginRemoveRows({}, position, position);
        }
        mWaiting -= mRows[size_t(position)].joins != Joins::No ? 1 : 0;
        mRows.erase(mRows.begin() + position);
        mSettled -= position < mSettled ? 1 : 0;
        if (position < mExports.size()) {
            mExports.removeAt(position);
            --mKnownExports;
        }
        if (oneByOne) {
            endRemoveRows();
        }
    }
    if (!oneByOne) {
        endResetModel();
    }
}

void AlbumModel::RemoveMany(const QVector<int>& positions)
{
    beginResetModel();
    int settled = mSettled;
    for (const int position : positions) {
        if (Has(position)) {
            mWaiting -= mRows[size_t(position)].joins != Joins::No ? 1 : 0;
            settled -= position < mSettled ? 1 : 0;
        }
    }
    mSettled = settled;
    const qsizetype before = mExports.size();
    TakeOut(mRows, positions);
    TakeOut(mExports, positions);
    mKnownExports -= before - mExports.size();
    endResetModel();
}

int AlbumModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : Count();
}

int AlbumModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(kColumns);
}

QVariant AlbumModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || !Has(index.row())) {
        return {};
    }
    const Row& row = mRows[size_t(index.row())];
    if (role == Qt::ToolTipRole) {
        return ShortPath(row.path);
    }
    if (role == Qt::ForegroundRole && row.state >= AlbumFileState::Missing) {
        return QGuiApplication::palette().placeholderText();
    }
    if (role == Qt::TextAlignmentRole && index.column() == kSize) {
        return int(Qt::AlignRight | Qt::AlignVCenter);
    }
    if (role != Qt::DisplayRole) {
        return {};
    }
    if (index.column() == kFilename) {
        return row.path;
    }
    const bool size = index.column() == kSize;
    if (row.state == AlbumFileState::Missing) {
        return size ? QStringLiteral("    ") : QStringLiteral("File Not Found");
    }
    if (row.state != AlbumFileState::Found) {
        return QString();
    }
    if (size) {
        return QString::number(row.size);
    }
    return mDateText ? mDateText(QDateTime::fromSecsSinceEpoch(row.modifiedSeconds)) : QString();
}

QVariant AlbumModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Horizontal && role == Qt::TextAlignmentRole) {
        return int((section == kSize ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    }
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) {
        return {};
    }
    switch (section) {
    case kFilename:
        return QStringLiteral("Filename");
    case kSize:
        return QStringLiteral("Size");
    case kModified:
        return QStringLiteral("Modified");
    default:
        return {};
    }
}

Qt::ItemFlags AlbumModel::flags(const QModelIndex& index) const
{
    return index.isValid() ? Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemIsDragEnabled
            | Qt::ItemNeverHasChildren
                           : Qt::NoItemFlags;
}

QStringList AlbumModel::mimeTypes() const
{
    return {QStringLiteral("text/uri-list")};
}

QMimeData* AlbumModel::mimeData(const QModelIndexList& indexes) const
{
    QSet<int> rows;
    for (const QModelIndex& index : indexes) {
        rows.insert(index.row());
    }
    QList<int> ordered(rows.begin(), rows.end());
    std::sort(ordered.begin(), ordered.end());
    QStringList paths;
    paths.reserve(ordered.size());
    for (const int row : ordered) {
        if (State(row) == AlbumFileState::Found) {
            paths.append(Path(row));
        }
    }
    return paths.isEmpty() ? nullptr : FileListMimeData(paths);
}

QString ShortPath(const QString& path)
{
    constexpr qsizetype kMost = 4096; // as long as a path can be that leads somewhere
    QString shown =
        path.size() <= kMost ? path : path.first(kMost / 2) + QChar(0x2026) + path.last(kMost / 2);
    for (QChar& unit : shown) {
        if (unit.category() == QChar::Other_Control) {
            unit = QChar::ReplacementCharacter;
        }
    }
    return shown;
}

QVector<int> AlbumRemovalSteps(const QVector<bool>& rows, const QVector<bool>& cells)
{
    QVector<int> steps;
    // The cells that are left from position i on, the first of them last.
    std::vector<bool> cellsFrom;
    for (qsizetype i = cells.size() - 1; i >= rows.size(); --i) {
        cellsFrom.push_back(cells[i]);
    }
    for (qsizetype i = rows.size() - 1; i >= 0; --i) {
        if (i < cells.size()) {
            cellsFrom.push_back(cells[i]);
        }
        const auto remove = [&] {
            steps.append(int(i));
            if (!cellsFrom.empty()) {
                cellsFrom.pop_back();
            }
        };
        if (rows[i]) {
            remove();
        }
        if (!cellsFrom.empty() && cellsFrom.back()) {
            remove();
        }
    }
    return steps;
}

} // namespace quillane
