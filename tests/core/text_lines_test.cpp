#include "core/text_lines.h"

#include <QByteArrayList>
#include <gtest/gtest.h>

namespace quillane {

namespace {

QByteArrayList LinesOf(const QByteArray& text)
{
    QByteArrayList lines;
    TextLines reader(text);
    while (const auto line = reader.Next()) {
        lines.append(line->toByteArray());
    }
    EXPECT_EQ(reader.Number(), lines.size());
    return lines;
}

} // namespace

TEST(TextLines, EndInCrLfOrLfMixed)
{
    EXPECT_EQ(LinesOf("a\r\nb\nc\r\n"), (QByteArrayList{"a", "b", "c"}));
}

TEST(TextLines, LastLineNeedsNoEnd)
{
    EXPECT_EQ(LinesOf("a\nb"), (QByteArrayList{"a", "b"}));
    EXPECT_EQ(LinesOf("a"), QByteArrayList{"a"});
}

TEST(TextLines, BareCrEndsALineWhereThereIsNoLfAtAll)
{
    EXPECT_EQ(LinesOf("a\rb\r\rc\r"), (QByteArrayList{"a", "b", "", "c"}));
    EXPECT_EQ(LinesOf("\xef\xbb\xbf"
                      "a\rb"),
              (QByteArrayList{"a", "b"}));
}

TEST(TextLines, CrInsideALineIsPartOfIt)
{
    EXPECT_EQ(LinesOf("a\rb\nc\r\n"), (QByteArrayList{"a\rb", "c"}));
    EXPECT_EQ(LinesOf("a\r\r\n"), QByteArrayList{"a\r"});
}

TEST(TextLines, EmptyLinesAreKept)
{
    EXPECT_EQ(LinesOf("\n\r\na\n\n"), (QByteArrayList{"", "", "a", ""}));
}

TEST(TextLines, ByteOrderMarkIsPassedOverInFrontAlone)
{
    EXPECT_EQ(LinesOf("\xef\xbb\xbf"
                      "a\n\xef\xbb\xbf"
                      "b\n"),
              (QByteArrayList{"a",
                              "\xef\xbb\xbf"
                              "b"}));
    EXPECT_TRUE(LinesOf("\xef\xbb\xbf").isEmpty());
    EXPECT_TRUE(LinesOf("").isEmpty());
}

TEST(TextLines, NulsAreLikeAnyByte)
{
    EXPECT_EQ(LinesOf(QByteArray("a\0b\n\0", 5)),
              (QByteArrayList{QByteArray("a\0b", 3), QByteArray(1, '\0')}));
}

} // namespace quillane
