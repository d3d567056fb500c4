#include "locator/found_model.h"
#include "platform/fake/fake_loop.h"

#include <QDateTime>
#include <gtest/gtest.h>

namespace quillane {
namespace {

qint64 Seconds(const char* local)
{
    return QDateTime::fromString(QString::fromLatin1(local), Qt::ISODate).toSecsSinceEpoch();
}

TEST(FoundModel, ARowIsPathSizeAndDateWithThreeBlanksBetween)
{
    const FakeLoop loop;
    FoundModel model(loop);
    model.Append({{QStringLiteral("/a/"),
                   {{QStringLiteral("exact"), 0, 0, true},
                    {QStringLiteral("b c.jpg"), 12345, Seconds("2026-11-21T04:05:06"), false}}},
                  {QStringLiteral("/a/d/"),
                   {{QStringLiteral("e"), 0, Seconds("1969-12-31T23:59:59"), false}}}});
    ASSERT_EQ(model.rowCount(), 3);
    EXPECT_EQ(model.Text(0), "/a/exact");
    EXPECT_EQ(model.Text(1), "/a/b c.jpg   12345   2026-11-21 04:05:06");
    EXPECT_EQ(model.Text(2), "/a/d/e   0   1969-12-31 23:59:59");
    EXPECT_EQ(model.Path(1), "/a/b c.jpg");
    EXPECT_EQ(model.data(model.index(1), Qt::DisplayRole).toString(), model.Text(1));
    EXPECT_EQ(model.data(model.index(2), FoundModel::kPathRole).toString(), "/a/d/e");
    EXPECT_FALSE(model.data(model.index(0), Qt::DecorationRole).isValid());
    EXPECT_EQ(model.Path(3), QString());
    EXPECT_EQ(model.Text(-1), QString());
}

TEST(FoundModel, LaterRowsComeBehindAndClearTakesAll)
{
    const FakeLoop loop;
    FoundModel model(loop);
    model.Append({{QStringLiteral("/a/"), {{QStringLiteral("1"), 0, 0, true}}}});
    model.Append({});
    model.Append({{QStringLiteral("/b/"), {{QStringLiteral("2"), 0, 0, true}}}});
    EXPECT_EQ(model.rowCount(), 2);
    EXPECT_EQ(model.Path(1), "/b/2");
    model.Clear();
    EXPECT_EQ(model.rowCount(), 0);
    model.Append({{QStringLiteral("/c/"), {{QStringLiteral("3"), 0, 0, true}}}});
    EXPECT_EQ(model.Path(0), "/c/3");
}

TEST(FoundModel, ATimeBeyondEveryCalendarHasNoText)
{
    const FakeLoop loop;
    FoundModel model(loop);
    constexpr qint64 kFar = std::numeric_limits<qint64>::max();
    model.Append({{QStringLiteral("/a/"), {{QStringLiteral("f"), 1, kFar, false}}}});
    EXPECT_EQ(model.Text(0), "/a/f   1   ");
}

} // namespace
} // namespace quillane
