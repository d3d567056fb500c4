#include "widgets/file_order.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <algorithm>
#include <gtest/gtest.h>
#include <random>

namespace quillane {

namespace {

QStringList NamesInOrder(const QStringList& names, Qt::SortOrder order = Qt::AscendingOrder)
{
    FileRows rows;
    for (const QString& name : names) {
        rows.Append({QStringLiteral("/some/folder/") + name, 1, 1, {}});
    }
    QStringList sorted;
    for (const int from : SortedOrder(SortInputOf(rows, kColumnName, order))) {
        sorted.append(names[from]);
    }
    return sorted;
}

TEST(FileOrder, NumbersInNamesCountByTheirValue)
{
    EXPECT_EQ(NamesInOrder({"img10.jpg", "img9.jpg", "img1.jpg", "img010.jpg", "img2b.jpg"}),
              (QStringList{"img1.jpg", "img2b.jpg", "img9.jpg", "img10.jpg", "img010.jpg"}));
    EXPECT_EQ(NamesInOrder({"a99999999999999999999999", "a100000000000000000000000", "a3"}),
              (QStringList{"a3", "a99999999999999999999999", "a100000000000000000000000"}));
    EXPECT_EQ(NamesInOrder({"b", "a0", "a", "a00"}), (QStringList{"a", "a0", "a00", "b"}));
}

TEST(FileOrder, CaseDoesNotCount)
{
    EXPECT_EQ(NamesInOrder({"b.JPG", "A.jpg", "a2.jpg", "B2.jpg"}),
              (QStringList{"A.jpg", "a2.jpg", "b.JPG", "B2.jpg"}));
}

TEST(FileOrder, TheLeafNameAloneCounts)
{
    FileRows rows;
    rows.Append({"/z/a.jpg", 1, 1, {}});
    rows.Append({"/a/b.jpg", 1, 1, {}});
    EXPECT_EQ(SortedOrder(SortInputOf(rows, kColumnName, Qt::AscendingOrder)),
              (QVector<int>{0, 1}));
}

TEST(FileOrder, SizesAndTimesCountAsNumbersAndUnknownOnesComeLast)
{
    FileRows rows;
    rows.Append({"/a", 1000, 5, {}});
    rows.Append({"/b", 9, -1, {}});
    rows.Append({"/c", -1, 50, {}});
    rows.Append({"/d", 200, 40, {}});
    EXPECT_EQ(SortedOrder(SortInputOf(rows, kColumnSize, Qt::AscendingOrder)),
              (QVector<int>{1, 3, 0, 2}));
    EXPECT_EQ(SortedOrder(SortInputOf(rows, kColumnModified, Qt::AscendingOrder)),
              (QVector<int>{0, 3, 2, 1}));
    EXPECT_EQ(SortedOrder(SortInputOf(rows, kColumnSize, Qt::DescendingOrder)),
              (QVector<int>{2, 0, 3, 1}));
}

TEST(FileOrder, TagsSortAsTextWithEmptyOnesLast)
{
    FileRows rows;
    rows.Append({"/a", 1, 1, {"", "B2", "", ""}});
    rows.Append({"/b", 1, 1, {}});
    rows.Append({"/c", 1, 1, {"", "b10", "", ""}});
    rows.Append({"/d", 1, 1, {"", "a", "", ""}});
    EXPECT_EQ(SortedOrder(SortInputOf(rows, kColumnFirstTag + 1, Qt::AscendingOrder)),
              (QVector<int>{3, 0, 2, 1}));
}

TEST(FileOrder, EqualRowsKeepTheirPlacesInBothDirections)
{
    FileRows rows;
    for (const qint64 size : {5, 3, 5, 3, 5}) {
        rows.Append({"/x", size, 1, {}});
    }
    EXPECT_EQ(SortedOrder(SortInputOf(rows, kColumnSize, Qt::AscendingOrder)),
              (QVector<int>{1, 3, 0, 2, 4}));
    EXPECT_EQ(SortedOrder(SortInputOf(rows, kColumnSize, Qt::DescendingOrder)),
              (QVector<int>{0, 2, 4, 1, 3}));
}

TEST(FileOrder, EveryRowOccursOnceInTheOrder)
{
    std::mt19937 random(3);
    FileRows rows;
    for (int i = 0; i < 5000; ++i) {
        rows.Append({QStringLiteral("/p/IMG_%1.jpg").arg(random() % 3000),
                     qint64(random() % 100),
                     qint64(random() % 50) - 1,
                     {}});
    }
    for (int column = 0; column < kFileColumns; ++column) {
        for (const Qt::SortOrder direction : {Qt::AscendingOrder, Qt::DescendingOrder}) {
            QVector<int> order = SortedOrder(SortInputOf(rows, column, direction));
            std::sort(order.begin(), order.end());
            ASSERT_EQ(order.size(), 5000);
            for (int row = 0; row < 5000; ++row) {
                ASSERT_EQ(order[row], row);
            }
        }
    }
}

SortInput ManyNumbers(int count)
{
    SortInput input;
    input.column = kColumnSize;
    for (int i = 0; i < count; ++i) {
        input.numbers.append((i * 7919) % 1000);
    }
    return input;
}

void WaitUntil(const std::function<bool()>& condition)
{
    QElapsedTimer limit;
    limit.start();
    while (!condition() && limit.elapsed() < 30'000) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    }
    ASSERT_TRUE(condition());
}

TEST(FileSorter, ASmallSetIsSortedWithinTheCall)
{
    FileSorter sorter;
    QVector<int> answer;
    QObject::connect(&sorter, &FileSorter::sorted,
                     [&](const QVector<int>& order) { answer = order; });
    sorter.Sort(ManyNumbers(10));
    EXPECT_EQ(answer.size(), 10);
    EXPECT_FALSE(sorter.IsBusy());
}

TEST(FileSorter, OfSeveralWishesForALargeSetOnlyTheLastIsAnswered)
{
    FileSorter sorter;
    int answers = 0;
    qsizetype size = 0;
    QObject::connect(&sorter, &FileSorter::sorted, [&](const QVector<int>& order) {
        ++answers;
        size = order.size();
    });
    sorter.Sort(ManyNumbers(50'000));
    sorter.Sort(ManyNumbers(60'000));
    sorter.Sort(ManyNumbers(70'000));
    EXPECT_TRUE(sorter.IsBusy());
    WaitUntil([&] { return !sorter.IsBusy(); });
    EXPECT_EQ(answers, 1);
    EXPECT_EQ(size, 70'000);
}

TEST(FileSorter, ACancelledWishIsNotAnswered)
{
    FileSorter sorter;
    QVector<qsizetype> answers;
    QObject::connect(&sorter, &FileSorter::sorted,
                     [&](const QVector<int>& order) { answers.append(order.size()); });
    sorter.Sort(ManyNumbers(50'000));
    sorter.Cancel();
    EXPECT_FALSE(sorter.IsBusy());
    sorter.Sort(ManyNumbers(40'000)); // answered behind the one that was cancelled
    WaitUntil([&] { return !answers.isEmpty(); });
    EXPECT_EQ(answers, QVector<qsizetype>{40'000});
}

TEST(FileSorter, MayGoWhileItSorts)
{
    for (int i = 0; i < 20; ++i) {
        FileSorter sorter;
        sorter.Sort(ManyNumbers(20'000));
    }
    QCoreApplication::processEvents();
    SUCCEED();
}

} // namespace

} // namespace quillane
