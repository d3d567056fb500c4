#pragma once
// The order of the file list's rows: keys worked out once, sorted off the window thread.
#include "widgets/background_jobs.h"
#include "widgets/file_rows.h"
#include <QObject>
#include <QString>
#include <QVector>

namespace quillane {

/// A text made ready for comparing: without regard to case, numbers in it by their value ("a2"
/// before "a10"). Keys compare like the texts they stand for.
QString NaturalKey(QStringView text);

/// What one sort needs of the rows, taken at once; texts are shared, not copied.
struct SortInput {
    int column = kColumnName;
    Qt::SortOrder order = Qt::AscendingOrder;
    QVector<QString> texts;  ///< paths, or tags
    QVector<qint64> numbers; ///< sizes or times
};
/// What a sort by that column needs of the rows.
SortInput SortInputOf(const FileRows& rows, int column, Qt::SortOrder order);

/// The order in which the rows then stand: row i is to be what row result[i] is. Names, sizes
/// (as numbers), times; equal rows keep their places in either direction. Rows without a size,
/// time or tag come last in ascending order. Any thread.
QVector<int> SortedOrder(const SortInput& input);

/// Sorts small sets at once and large ones on another thread; only the newest wish is answered.
class FileSorter : public QObject {
    Q_OBJECT
public:
    explicit FileSorter(QObject* parent = nullptr);

    /// Up to so many rows are sorted at once.
    static constexpr int kSortedAtOnce = 2000;
    /// `sorted` follows, from within the call for a small set.
    void Sort(SortInput input);
    /// Forgets the wish on its way.
    void Cancel();
    bool IsBusy() const { return mBusy; }

Q_SIGNALS:
    /// The order of the newest wish.
    void sorted(const QVector<int>& order);

private:
    BackgroundJobs mJobs;
    quint64 mTicket = 0;
    bool mBusy = false;
};

} // namespace quillane
