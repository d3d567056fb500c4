#include "locator/found_model.h"

#include "widgets/label_lines.h"

#include <algorithm>
#include <limits>

namespace quillane {

namespace {

/// The system's text of a time; empty for one that no calendar holds.
QString FoundDateText(const UiLoop& loop, qint64 seconds)
{
    constexpr qint64 kFarthest = std::numeric_limits<qint64>::max() / 1000;
    if (seconds > kFarthest || seconds < -kFarthest) {
        return {};
    }
    return loop.SystemDateText(QDateTime::fromMSecsSinceEpoch(seconds * 1000));
}

} // namespace

FoundModel::FoundModel(const UiLoop& loop, QObject* parent)
    : QAbstractListModel(parent),
      mLoop(loop)
{ }

void FoundModel::Clear()
{
    beginResetModel();
    mRows.clear();
    mFolders.clear();
    endResetModel();
}

void FoundModel::Append(const std::vector<LocatorSearch::Batch>& batches)
{
    size_t count = 0;
    for (const LocatorSearch::Batch& batch : batches) {
        count += batch.files.size();
    }
    count = std::min(count, size_t(std::numeric_limits<int>::max()) - mRows.size());
    if (count == 0) {
        return;
    }
    const size_t end = mRows.size() + count;
    beginInsertRows({}, int(mRows.size()), int(end) - 1);
    for (const LocatorSearch::Batch& batch : batches) {
        mFolders.append(batch.folder);
        for (const FoundFile& file : batch.files) {
            if (mRows.size() < end) {
                mRows.push_back({int(mFolders.size()) - 1, file});
            }
        }
    }
    endInsertRows();
}

QString FoundModel::Path(int row) const
{
    if (row < 0 || size_t(row) >= mRows.size()) {
        return {};
    }
    const Row& found = mRows[size_t(row)];
    return mFolders[found.folder] + found.file.name;
}

QString FoundModel::Text(int row) const
{
    QString text = Path(row);
    if (text.isEmpty() || mRows[size_t(row)].file.exact) {
        return text;
    }
    const FoundFile& file = mRows[size_t(row)].file;
    return text + QStringLiteral("   ") + QString::number(file.size) + QStringLiteral("   ")
        + FoundDateText(mLoop, file.modifiedSeconds);
}

int FoundModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(mRows.size());
}

QVariant FoundModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid()) {
        return {};
    }
    switch (role) {
    case Qt::DisplayRole:
        return DisplayName(Text(index.row()));
    case kPathRole:
        return Path(index.row());
    default:
        return {};
    }
}

} // namespace quillane
