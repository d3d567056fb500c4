#pragma once
#include "widgets/file_order.h"
#include "widgets/file_rows.h"
#include "widgets/grid_layout.h"
#include <QDateTime>
#include <QIcon>
#include <QPoint>
#include <QWidget>
#include <functional>

class QHeaderView;

namespace quillane {

class FileCells;

/// The file list lvSelected in its four styles over one set of rows. The icons and names are in
/// the child lvSelectedIcons, the details with their headings in lvSelectedDetails.
class FileListView : public QWidget {
    Q_OBJECT
public:
    enum ListStyle : int { kLargeIcons = 0, kSmallIcons = 1, kList = 2, kDetails = 3 };

    explicit FileListView(QWidget* parent = nullptr);
    ~FileListView() override;

    /// A style 0 to 3; any other does nothing. Selection and current row stay.
    void SetStyle(int style);
    int Style() const { return mStyle; }
    /// Captions of columns 4 to 7; the first three are "Name", "Size" and "Modified".
    void SetCaptions(const TagTexts& captions);
    QString Caption(int column) const;
    /// Whether a click on a heading sorts; else it does nothing.
    void SetSorted(bool on);
    bool Sorted() const { return mSorted; }
    /// Lines between rows and columns, drawn in the details only.
    void SetGridLines(bool on);
    bool GridLines() const { return mGridLines; }

    // Rows. All that change them take O(rows) at most; appending is O(1) a row.
    int Count() const; ///< rows
    void Clear();      ///< also forgets the order of a heading
    void AddRows(const QVector<FileRow>& rows);
    void InsertAt(int row, const FileRow& content);
    void RemoveAt(int row);
    /// The file has another path now. shown: a text to show instead of its leaf name, empty for
    /// none.
    void Rename(int row, const QString& path, const QString& shown = {});
    void SetTags(int row, const TagTexts& tags);
    FileRow Row(int row) const;
    QString PathAt(int row) const;
    /// Text of a column, as shown.
    QString TextAt(int row, int column) const;

    QVector<bool> SelectedFlags() const; ///< one for each row
    QVector<int> SelectedIndexes() const;
    int SelectedCount() const;
    bool IsSelected(int row) const;
    void SetSelected(int row, bool on);
    void SelectAll(bool on = true);
    int Current() const;
    /// Makes a row current, selects it alone and brings it into view; -1 selects none.
    void MakeCurrent(int row);
    void EnsureVisible(int row);
    /// The row at a point of this widget, -1 for none.
    int RowAt(const QPoint& position) const;
    /// Where a row stands in this widget, seen or not.
    QRect RowRect(int row) const;
    GridLayout::Range VisibleRange() const;

    /// Sorts by a column as a click on its heading does. Large sets are sorted on another thread;
    /// rowsReordered tells when the rows have moved.
    void SortBy(int column, Qt::SortOrder order);
    /// Sorts once more by the heading that was clicked since the last Clear, if one was: rows or
    /// texts have come since.
    void SortRest();
    bool IsSorting() const;
    int SortColumn() const { return mSortColumn; } ///< -1 for none
    Qt::SortOrder SortDirection() const { return mSortOrder; }

    /// The icon of a key such as "colorBig"; at first the desktop's, with drawn fallbacks.
    using IconProvider = std::function<QIcon(const QString& key)>;
    void SetIconProvider(IconProvider provider);
    /// How a modification time is written; at first as the system's short form.
    using DateText = std::function<QString(const QDateTime& when)>;
    void SetDateText(DateText dateText);

    QHeaderView* Headings() const { return mHeader; }
    /// The scrolled area that shows the rows in the present style; it takes mouse and keys.
    FileCells* Cells() const;

Q_SIGNALS:
    /// Another row became current, whoever did it; -1 for none.
    void currentChanged(int row);
    /// A person chose a row by a left click (-1 beside the rows) or with the keyboard.
    void picked(int row);
    /// A mouse button was pressed; -1 beside the rows. Follows `picked`.
    void clicked(int row, Qt::MouseButton button, Qt::KeyboardModifiers modifiers,
                 const QPoint& globalPosition);
    void doubleClicked(int row); ///< with the left button, on a row
    /// A right click (-1 beside the rows) or the menu key (the current row).
    void contextMenuWanted(int row, const QPoint& globalPosition);
    void enterPressed(int row);                    ///< of the current row
    void selectionChanged();                       ///< some row is selected, or no longer
    void visibleRangeChanged(int first, int last); ///< other rows are in sight
    /// Rows have moved: row i is now what row order[i] was. Selection and current row followed.
    void rowsReordered(const QVector<int>& order);

protected:
    void changeEvent(QEvent* event) override;

private:
    void MakeHeader();
    void Connect(FileCells* cells);
    void HeadingClicked(int column);
    void ApplyOrder(const QVector<int>& order);
    void ShowSortMark();
    void SortAgain();
    void FitColumns();
    void FitColumn(int column);
    FileCells* Hidden() const;

    FileRows mRows;
    FileCells* mIcons;
    FileCells* mDetails;
    QHeaderView* mHeader = nullptr;
    FileSorter mSorter;
    TagTexts mCaptions;
    int mStyle = kDetails;
    bool mSorted = true;
    bool mGridLines = false;
    int mSortColumn = -1;
    Qt::SortOrder mSortOrder = Qt::AscendingOrder;
};

} // namespace quillane
