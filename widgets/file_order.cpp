#include "widgets/file_order.h"

#include "core/paths.h"

#include <algorithm>
#include <memory>
#include <numeric>

namespace quillane {

namespace {

bool IsAsciiDigit(QChar unit)
{
    return unit >= u'0' && unit <= u'9';
}

/// Rows by a key each; a row whose key says so comes behind all others.
template <typename Keys, typename Missing>
QVector<int> OrderByKeys(const Keys& keys, Qt::SortOrder direction, const Missing& isMissing)
{
    QVector<int> order(int(keys.size()));
    std::iota(order.begin(), order.end(), 0);
    const auto less = [&](int left, int right) {
        const auto& leftKey = keys[left];
        const auto& rightKey = keys[right];
        const bool leftMissing = isMissing(leftKey);
        const bool rightMissing = isMissing(rightKey);
        if (leftMissing || rightMissing) {
            return !leftMissing && rightMissing;
        }
        return leftKey < rightKey;
    };
    if (direction == Qt::AscendingOrder) {
        std::stable_sort(order.begin(), order.end(), less);
    } else {
        std::stable_sort(order.begin(), order.end(),
                         [&](int left, int right) { return less(right, left); });
    }
    return order;
}

} // namespace

QString NaturalKey(QStringView text)
{
    // A run of digits becomes its length without leading zeros, as one unit, and the digits: the
    // longer number is the larger. The unit lies where '0' does among the others, so that numbers
    // keep their place before letters.
    constexpr char16_t kNumber = u'0';
    QString key;
    key.reserve(text.size() + 8);
    const QString folded = text.toString().toCaseFolded();
    for (qsizetype at = 0; at < folded.size();) {
        if (!IsAsciiDigit(folded[at])) {
            key += folded[at++];
            continue;
        }
        qsizetype end = at;
        while (end < folded.size() && IsAsciiDigit(folded[end])) {
            ++end;
        }
        while (at < end - 1 && folded[at] == u'0') {
            ++at;
        }
        key += QChar(kNumber);
        key += QChar(char16_t(std::min<qsizetype>(end - at, 0xFFFF)));
        key += QStringView(folded).mid(at, end - at);
        at = end;
    }
    return key;
}

SortInput SortInputOf(const FileRows& rows, int column, Qt::SortOrder order)
{
    SortInput input;
    input.column = column;
    input.order = order;
    const int count = rows.Count();
    if (column == kColumnSize || column == kColumnModified) {
        input.numbers.reserve(count);
        for (int row = 0; row < count; ++row) {
            input.numbers.append(column == kColumnSize ? rows.Size(row)
                                                       : rows.ModifiedSeconds(row));
        }
        return input;
    }
    input.texts.reserve(count);
    for (int row = 0; row < count; ++row) {
        input.texts.append(column == kColumnName ? rows.Path(row)
                                                 : rows.Tag(row, column - kColumnFirstTag));
    }
    return input;
}

QVector<int> SortedOrder(const SortInput& input)
{
    if (input.column == kColumnSize || input.column == kColumnModified) {
        return OrderByKeys(input.numbers, input.order, [](qint64 number) { return number < 0; });
    }
    QVector<QString> keys;
    keys.reserve(input.texts.size());
    for (const QString& text : input.texts) {
        keys.append(NaturalKey(input.column == kColumnName ? LeafName(text) : text));
    }
    return OrderByKeys(keys, input.order, [](const QString& key) { return key.isEmpty(); });
}

FileSorter::FileSorter(QObject* parent) : QObject(parent), mJobs(1)
{ }

void FileSorter::Sort(SortInput input)
{
    const quint64 ticket = ++mTicket;
    if (std::max(input.texts.size(), input.numbers.size()) <= kSortedAtOnce) {
        mBusy = false;
        Q_EMIT sorted(SortedOrder(input));
        return;
    }
    mBusy = true;
    const auto order = std::make_shared<QVector<int>>();
    mJobs.Run([order, input = std::move(input)] { *order = SortedOrder(input); },
              [this, order, ticket] {
                  if (mBusy && ticket == mTicket) {
                      mBusy = false;
                      Q_EMIT sorted(*order);
                  }
              });
}

void FileSorter::Cancel()
{
    ++mTicket;
    mBusy = false;
}

} // namespace quillane
