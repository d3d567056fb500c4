#include "locator/pattern.h"

#include <gtest/gtest.h>

namespace quillane {
namespace {

LocatorPattern One(const char* typed)
{
    const std::vector<LocatorPattern> patterns = ParsePatterns(QString::fromUtf8(typed));
    EXPECT_EQ(patterns.size(), 1U);
    return patterns.empty() ? LocatorPattern{} : patterns.front();
}

NameTest Tell(const char* pattern, const char* name)
{
    return TestName(One(pattern), UpperCased(QString::fromUtf8(name)));
}

bool Finds(const char* pattern, const char* name)
{
    return Tell(pattern, name) == NameTest::Matches;
}

TEST(ParsePatterns, AnEmptySearchStringHasNone)
{
    EXPECT_TRUE(ParsePatterns({}).empty());
}

TEST(ParsePatterns, DividesAtEverySemicolonAndKeepsEmptyPieces)
{
    const std::vector<LocatorPattern> patterns = ParsePatterns(QStringLiteral("*.jpg;;a b ; c;"));
    ASSERT_EQ(patterns.size(), 5U);
    EXPECT_EQ(patterns[0].text, ".jpg");
    EXPECT_EQ(patterns[1].text, "");
    EXPECT_EQ(patterns[2].text, "a b ");
    EXPECT_EQ(patterns[3].text, " c");
    EXPECT_EQ(patterns[4].text, "");
    EXPECT_TRUE(patterns[1].IsExact());
}

TEST(ParsePatterns, CutsTheStarsAtTheEndsAlone)
{
    const struct {
        const char* typed;
        const char* text;
        bool leading, trailing;
    } kRows[] = {
        {"abc", "abc", false, false}, {"*abc", "abc", true, false}, {"abc*", "abc", false, true},
        {"*abc*", "abc", true, true}, {"a*b", "a*b", false, false}, {"*a*b*", "a*b", true, true},
        {"*", "", true, false},       {"**", "", true, true},       {"***", "", true, true},
        {"**a", "a", true, false},    {"a**", "a*", false, true},
    };
    for (const auto& row : kRows) {
        const LocatorPattern pattern = One(row.typed);
        EXPECT_EQ(pattern.text, row.text) << row.typed;
        EXPECT_EQ(pattern.HasLeadingStar, row.leading) << row.typed;
        EXPECT_EQ(pattern.HasTrailingStar, row.trailing) << row.typed;
        EXPECT_FALSE(pattern.ExactFound) << row.typed;
    }
}

TEST(TestName, AStarAloneFindsEveryName)
{
    EXPECT_TRUE(Finds("*", "a"));
    EXPECT_TRUE(Finds("*", ".hidden"));
    EXPECT_TRUE(Finds("*", "a long name.jpg"));
}

TEST(TestName, ALeadingStarFindsTheTextAtTheTailAndOnePlaceBefore)
{
    EXPECT_TRUE(Finds("*x", "ax"));
    EXPECT_TRUE(Finds("*x", "axy"));
    EXPECT_FALSE(Finds("*x", "axyz"));
    EXPECT_TRUE(Finds("*.jpg", "a.jpgx"));
    EXPECT_FALSE(Finds("*.jpg", "a.jpeg"));
    EXPECT_TRUE(Finds("*aa", "aab"));
}

TEST(TestName, ATrailingStarFindsTheBeginning)
{
    EXPECT_TRUE(Finds("ab*", "abc"));
    EXPECT_FALSE(Finds("ab*", "xabc"));
}

TEST(TestName, StarsAtBothEndsFindTheTextAnywhere)
{
    EXPECT_TRUE(Finds("*bc*", "abcd"));
    EXPECT_TRUE(Finds("*bc*", "bcd"));
    EXPECT_TRUE(Finds("*bc*", "abc"));
    EXPECT_FALSE(Finds("*bc*", "acb"));
}

TEST(TestName, NoStarMatchesNothing)
{
    EXPECT_EQ(Tell("ab", "abc"), NameTest::NextPattern);
    EXPECT_EQ(Tell("a*b", "a*bc"), NameTest::NextPattern);
    EXPECT_EQ(Tell("a*b", "axxb"), NameTest::NextPattern);
}

TEST(TestName, ANameNoLongerThanThePatternEndsTheFile)
{
    EXPECT_EQ(Tell("abc", "abc"), NameTest::NextFile);
    EXPECT_EQ(Tell("*abc*", "abc"), NameTest::NextFile);
    EXPECT_EQ(Tell("*abc", "abc"), NameTest::NextFile);
    EXPECT_EQ(Tell("abc*", "ab"), NameTest::NextFile);
}

TEST(TestName, LetterCaseDoesNotCount)
{
    EXPECT_TRUE(Finds("*.JPG", "a.jpg"));
    EXPECT_TRUE(Finds("*.jpg", "A.JPG"));
    EXPECT_TRUE(Finds("*äö*", "xÄÖx"));
    EXPECT_TRUE(Finds("д*", "Дом"));
}

TEST(UpperCased, KeepsTheLength)
{
    EXPECT_EQ(UpperCased(QStringLiteral("straße.jpg")), QStringLiteral("STRAßE.JPG"));
    const QString deseret = QString::fromUtf8("\xF0\x90\x90\xA8"); // small letter of two units
    EXPECT_EQ(UpperCased(deseret), QString::fromUtf8("\xF0\x90\x90\x80"));
    const QString broken(QChar(0xD801)); // half a character
    EXPECT_EQ(UpperCased(broken), broken);
    EXPECT_EQ(UpperCased(QString(QChar(0xDC80))), QString(QChar(0xDC80))); // a byte of a name
}

TEST(FoundStatus, TellsRowsAndCountsWithPatternsAsTyped)
{
    const std::vector<LocatorPattern> patterns = ParsePatterns(QStringLiteral("*.JPG;*.bmp"));
    EXPECT_EQ(FoundStatus(123, patterns, {100, 23}),
              "123  Files Found      .JPG - 100    .bmp - 23");
    EXPECT_EQ(FoundStatus(0, ParsePatterns(QStringLiteral("a*b;")), {0, 0}),
              "0  Files Found      a*b - 0     - 0");
    EXPECT_EQ(FoundStatus(70000, ParsePatterns(QStringLiteral("*")), {70000}),
              "70000  Files Found       - 70000");
}

} // namespace
} // namespace quillane
