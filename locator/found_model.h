#pragma once
#include "locator/search_run.h"
#include "platform/ui_loop.h"
#include <QAbstractListModel>
#include <QStringList>
#include <vector>

namespace quillane {

/// The rows of a search: path, three blanks, size in bytes, three blanks, date of the last change;
/// the path alone for a file found by its exact name. Texts are made when they are asked for, so
/// that rows nobody looks at cost their name and two numbers.
class FoundModel : public QAbstractListModel {
    Q_OBJECT
public:
    enum Role : int { kPathRole = Qt::UserRole };
    /// loop writes the dates.
    explicit FoundModel(const UiLoop& loop, QObject* parent = nullptr);

    void Clear(); ///< no rows any more
    /// Rows behind those that are there.
    void Append(const std::vector<LocatorSearch::Batch>& batches);
    QString Path(int row) const; ///< the file's full path; empty for a row that is not there
    QString Text(int row) const; ///< the row as shown; empty for a row that is not there

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

private:
    struct Row {
        int folder; ///< in mFolders
        FoundFile file;
    };
    const UiLoop& mLoop;
    QStringList mFolders;
    std::vector<Row> mRows;
};

} // namespace quillane
