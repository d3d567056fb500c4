#include "widgets/selection_set.h"

#include <algorithm>
#include <bit>

namespace quillane {

namespace {

constexpr int kBits = 64; // in a word

size_t SelectionWords(int rows)
{
    return (size_t(rows) + kBits - 1) / kBits;
}

quint64 SelectionBit(int row)
{
    return quint64(1) << (row % kBits);
}

/// The lowest `count` bits, 0 to 64.
quint64 SelectionLowBits(int count)
{
    return count >= kBits ? ~quint64(0) : (quint64(1) << count) - 1;
}

} // namespace

bool SelectionSet::Contains(int row) const
{
    return row >= 0 && row < mSize && (mWords[size_t(row) / kBits] & SelectionBit(row)) != 0;
}

void SelectionSet::Resize(int size)
{
    size = std::max(size, 0);
    const bool shorter = size < mSize;
    mSize = size;
    mWords.resize(SelectionWords(size), 0);
    if (shorter) {
        if (size % kBits != 0) {
            mWords.back() &= SelectionLowBits(size % kBits);
        }
        if (mAnchor >= size) {
            mAnchor = -1;
        }
        Recount();
    }
}

void SelectionSet::Clear()
{
    mWords.clear();
    mSize = 0;
    mCount = 0;
    mAnchor = -1;
}

void SelectionSet::Recount()
{
    mCount = 0;
    for (const quint64 word : mWords) {
        mCount += std::popcount(word);
    }
}

bool SelectionSet::Set(int row, bool on)
{
    return SetRange(row, row, on);
}

bool SelectionSet::SetRange(int first, int last, bool on)
{
    if (first > last) {
        std::swap(first, last);
    }
    first = std::max(first, 0);
    last = std::min(last, mSize - 1);
    const int before = mCount;
    for (int row = first; row <= last;) {
        quint64& word = mWords[size_t(row) / kBits];
        const int bit = row % kBits;
        const int count = std::min(last - row + 1, kBits - bit);
        const quint64 mask = SelectionLowBits(count) << bit;
        const quint64 changed = on ? word | mask : word & ~mask;
        mCount += std::popcount(changed) - std::popcount(word);
        word = changed;
        row += count;
    }
    return mCount != before;
}

bool SelectionSet::SetOnly(int first, int last)
{
    if (first > last) {
        std::swap(first, last);
    }
    bool changed = SetRange(0, first - 1, false);
    changed = SetRange(last + 1, mSize - 1, false) || changed;
    return SetRange(first, last, true) || changed;
}

bool SelectionSet::SetAll(bool on)
{
    return mSize > 0 && SetRange(0, mSize - 1, on);
}

void SelectionSet::Insert(int row, int count)
{
    row = std::clamp(row, 0, mSize);
    if (count <= 0) {
        return;
    }
    SelectionSet moved;
    moved.Resize(mSize + count);
    for (int from = Next(0); from >= 0; from = Next(from + 1)) {
        moved.Set(from < row ? from : from + count, true);
    }
    moved.mAnchor = mAnchor >= row ? mAnchor + count : mAnchor;
    *this = std::move(moved);
}

void SelectionSet::Remove(int row, int count)
{
    const int first = std::max(row, 0);
    const int end = std::min(row + count, mSize);
    if (first >= end) {
        return;
    }
    SelectionSet moved;
    moved.Resize(mSize - (end - first));
    for (int from = Next(0); from >= 0; from = Next(from + 1)) {
        if (from < first || from >= end) {
            moved.Set(from < first ? from : from - (end - first), true);
        }
    }
    if (mAnchor < first) {
        moved.mAnchor = mAnchor;
    } else if (mAnchor >= end) {
        moved.mAnchor = mAnchor - (end - first);
    }
    *this = std::move(moved);
}

void SelectionSet::Permute(const QVector<int>& order)
{
    SelectionSet moved;
    moved.Resize(mSize);
    for (int row = 0; row < mSize && row < order.size(); ++row) {
        if (Contains(order[row])) {
            moved.Set(row, true);
        }
        if (mAnchor >= 0 && order[row] == mAnchor) {
            moved.mAnchor = row;
        }
    }
    *this = std::move(moved);
}

QVector<bool> SelectionSet::Flags() const
{
    QVector<bool> flags(mSize, false);
    for (int row = Next(0); row >= 0; row = Next(row + 1)) {
        flags[row] = true;
    }
    return flags;
}

QVector<int> SelectionSet::Rows() const
{
    QVector<int> rows;
    rows.reserve(mCount);
    for (int row = Next(0); row >= 0; row = Next(row + 1)) {
        rows.append(row);
    }
    return rows;
}

int SelectionSet::Next(int row) const
{
    row = std::max(row, 0);
    if (row >= mSize) {
        return -1;
    }
    size_t at = size_t(row) / kBits;
    quint64 word = mWords[at] & ~SelectionLowBits(row % kBits);
    while (word == 0) {
        if (++at == mWords.size()) {
            return -1;
        }
        word = mWords[at];
    }
    return int(at) * kBits + std::countr_zero(word);
}

} // namespace quillane
