#pragma once
#include <QVector>
#include <vector>

namespace quillane {

/// Which rows of a list are selected: one bit a row, with the count kept. Rows run from 0; a row
/// beyond the end is never selected and setting it does nothing.
class SelectionSet {
public:
    int Size() const { return mSize; }   ///< rows
    int Count() const { return mCount; } ///< selected rows
    bool Contains(int row) const;        ///< whether a row is selected

    /// Another number of rows; new ones at the end are not selected. O(1) but for the growth.
    void Resize(int size);
    /// No rows at all, no anchor.
    void Clear();

    // Each answers whether anything changed.
    bool Set(int row, bool on);                  ///< one row
    bool SetRange(int first, int last, bool on); ///< both ends included, in either order
    bool SetOnly(int first, int last);           ///< these and no other
    bool SetAll(bool on);

    /// Where a range of Shift begins; -1 for none. Moves with its row.
    int Anchor() const { return mAnchor; }
    void SetAnchor(int row) { mAnchor = row; }

    void Insert(int row, int count = 1); ///< new rows before `row`, not selected
    void Remove(int row, int count = 1);
    /// Row i becomes what row order[i] was; order holds every row once.
    void Permute(const QVector<int>& order);

    QVector<bool> Flags() const; ///< one for each row
    QVector<int> Rows() const;   ///< selected rows, ascending
    int Next(int row) const;     ///< first selected row at or behind `row`, -1 for none
    bool operator==(const SelectionSet& other) const = default;

private:
    void Recount();

    std::vector<quint64> mWords;
    int mSize = 0;
    int mCount = 0;
    int mAnchor = -1;
};

} // namespace quillane
