#include "core/expect_failure.h"
#include "core/strings.h"
#include <gtest/gtest.h>

namespace quillane {

struct FieldRow {
    const char* text;
    qint16 index;
    const char* delimiter;
    const char* field;
};

constexpr FieldRow kFields[] = {
    {"a;b;c", 0, ";", "a"},
    {"a;b;c", 1, ";", "b"},
    {"a;b;c", 2, ";", "c"},
    {"a;b;c", 3, ";", "NOT FOUND"},
    {"a;b;c", 4, ";", "NOT FOUND"},
    {"whole", 0, ";", "whole"},
    {"whole", 1, ";", "NOT FOUND"},
    {"", 0, ";", ""},
    {"", 1, ";", "NOT FOUND"},
    {";b", 0, ";", ""},
    {"a;;c", 1, ";", ""},
    {"a;", 0, ";", "a"},
    {"a;", 1, ";", "NOT FOUND"}, // the field would start past the end
    {"a;;", 1, ";", ""},
    {"a;;", 2, ";", "NOT FOUND"},
    {"a--b--c", 1, "--", "b"},
    {"a---b", 1, "--", "-b"},
    {"aXbxc", 1, "x", "c"}, // the delimiter's case counts
    {"a;b", -1, ";", "NOT FOUND"},
    {"a;b", 0, "", "a;b"},
    {"a;b", 1, "", "NOT FOUND"},
    {"one\nNOT FOUND\ntwo", 1, "\n", "NOT FOUND"},
    {"one\nNOT FOUND\ntwo", 2, "\n", "two"},
};

TEST(GetField, GivesTheFieldOfEachRow)
{
    for (const FieldRow& row : kFields) {
        EXPECT_EQ(GetField(row.text, row.index, row.delimiter), QString(row.field))
            << row.text << " / " << row.index << " / " << row.delimiter;
    }
}

TEST(GetField, EmptyTextHasAnEmptyFirstFieldAndNoSecond)
{
    EXPECT_EQ(GetField({}, 0, ";"), QString());
    EXPECT_EQ(GetField({}, 1, ";"), kNotFound);
}

TEST(GetField, ReachesTheLastIndexOfSixteenBits)
{
    QString text;
    for (int i = 0; i <= 32767; ++i)
        text += QString::number(i) + u'\n';
    EXPECT_EQ(GetField(text, 32767, "\n"), "32767");
    EXPECT_EQ(GetField(text, 32766, "\n"), "32766");
}

struct LineEndRow {
    QByteArray text;
    QByteArray result;
};

TEST(NormaliseLineEnds, MakesEveryLineEndCarriageReturnAndLineFeed)
{
    const LineEndRow rows[] = {
        {"", "\r\n"},
        {"a", "a\r\n"},
        {"a\n", "a\r\n"},
        {"a\r\n", "a\r\n"},
        {"a\nb", "a\r\nb\r\n"},
        {"a\n\nb\n", "a\r\n\r\nb\r\n"},
        {"a\r\nb\nc\r\n", "a\r\nb\r\nc\r\n"},
        {"\r\na", "\r\na\r\n"},
        {"\r\n\n", "\r\n\r\n"},
        {"a\r", "a\r\r\n"},
        {"a\r\r\n", "a\r\r\n"},
        {"a\rb", "a\rb\r\n"},
        {QByteArray("a\0\0", 3), "a\r\n"},
        {QByteArray("a\n\0", 3), "a\r\n"},
        {QByteArray("\0\0", 2), "\r\n"},
        {QByteArray("a\0b", 3), QByteArray("a\0b\r\n", 5)}, // one in the middle stays
    };
    for (const LineEndRow& row : rows) {
        QString text = QString::fromLatin1(row.text);
        const QString returned = NormaliseLineEnds(text);
        EXPECT_EQ(returned.toLatin1(), row.result) << row.text.toPercentEncoding().constData();
        EXPECT_EQ(text, returned);
    }
}

TEST(NormaliseLineEnds, ASecondRunChangesNothing)
{
    QString text = QStringLiteral("a\nb\r\n\nc");
    const QString once = NormaliseLineEnds(text);
    EXPECT_EQ(NormaliseLineEnds(text), once);
}

TEST(NormaliseLineEnds, ALineFeedAtTheStartFails)
{
    for (const char* text : {"\n", "\na", "\n\r\n"}) {
        QString changed = text;
        EXPECT_EQ(FailureOf([&] { NormaliseLineEnds(changed); }), kFailureGeneral);
    }
}

TEST(NormaliseLineEnds, TakesLongTexts)
{
    QString text = u'a' + QString(100'000, u'\n');
    const QString result = NormaliseLineEnds(text);
    EXPECT_EQ(result.size(), 200'001);
    EXPECT_EQ(result.count(QLatin1String("\r\n")), 100'000);
}

} // namespace quillane
