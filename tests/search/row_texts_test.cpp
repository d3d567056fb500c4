#include "search/row_texts.h"

#include "core/failure.h"

#include <gtest/gtest.h>

namespace quillane {

namespace {

qint16 Bound(const char* text)
{
    return BoundOfText(QString::fromUtf8(text));
}

qint32 FailureOf(const char* text)
{
    try {
        BoundOfText(QString::fromLatin1(text));
        return 0;
    } catch (const Failure& failure) {
        EXPECT_FALSE(failure.Description().isEmpty());
        return failure.Number();
    }
}

} // namespace

TEST(SearchRows, ABoundIsTheNumericPrefixRoundedToTheNearestTiesToEven)
{
    EXPECT_EQ(Bound("12.5"), 12);
    EXPECT_EQ(Bound("13.5"), 14);
    EXPECT_EQ(Bound("12.51"), 13);
    EXPECT_EQ(Bound("-2.5"), -2);
    EXPECT_EQ(Bound("100 or more"), 100);
    EXPECT_EQ(Bound("  7"), 7);
    EXPECT_EQ(Bound("1e3"), 1000);
}

TEST(SearchRows, AnEmptyBoxIsUnsetAndAWordWithoutDigitsIsZero)
{
    EXPECT_EQ(Bound(""), -1);
    EXPECT_EQ(Bound("many"), 0);
    EXPECT_EQ(Bound(" "), 0);
    EXPECT_EQ(Bound("-"), 0);
    EXPECT_EQ(Bound("-1"), -1);
}

TEST(SearchRows, ANumberBeyondSixteenBitsOverflows)
{
    EXPECT_EQ(Bound("32767"), 32767);
    EXPECT_EQ(Bound("32767.4"), 32767);
    EXPECT_EQ(Bound("-32768"), -32768);
    EXPECT_EQ(FailureOf("32768"), kFailureOverflow);
    EXPECT_EQ(FailureOf("32767.5"), kFailureOverflow);
    EXPECT_EQ(FailureOf("-32769"), kFailureOverflow);
    EXPECT_EQ(FailureOf("1e300"), kFailureOverflow);
    EXPECT_EQ(FailureOf("99999999999999999999"), kFailureOverflow);
}

TEST(SearchRows, TheRowsOfTheWindowBecomeCriteria)
{
    SearchWindowTexts window;
    window.character[1] = {true, QStringLiteral("City"), QStringLiteral(" Rome "), {}, {}};
    window.numeric[3] = {
        true, QStringLiteral("ISO"), {}, QStringLiteral("100"), QStringLiteral("400.5")};
    SearchCriteria criteria;
    ReadSearchRows(window, criteria);
    EXPECT_EQ(criteria.searchCharacter[1].checked, -1);
    EXPECT_EQ(criteria.searchCharacter[1].keyword, "City");
    EXPECT_EQ(criteria.searchCharacter[1].text, " Rome ");
    EXPECT_EQ(criteria.searchCharacter[0], SearchCriterion());
    EXPECT_EQ(criteria.searchNumeric[3].checked, -1);
    EXPECT_EQ(criteria.searchNumeric[3].keyword, "ISO");
    EXPECT_EQ(criteria.searchNumeric[3].value, 100);
    EXPECT_EQ(criteria.searchNumeric[3].valueHigh, 400);
    EXPECT_EQ(criteria.searchNumeric[0], SearchCriterion());
}

TEST(SearchRows, BlankRowsClearTheTwoEditedArraysAndNoOther)
{
    SearchCriteria criteria;
    for (const SearchArrayRow& array : kSearchArrays) {
        for (SearchCriterion& row : RowsOf(criteria, array.array)) {
            row = {1, 2, QStringLiteral("key"), QStringLiteral("text"), kTrue};
        }
    }
    const SearchCriteria before = criteria;
    ReadSearchRows({}, criteria);
    EXPECT_EQ(criteria.searchScope, before.searchScope);
    EXPECT_EQ(criteria.searchInfo, before.searchInfo);
    EXPECT_EQ(criteria.searchSample, before.searchSample);
    EXPECT_EQ(criteria.searchSpectrum, before.searchSpectrum);
    for (size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(criteria.searchCharacter[i].checked, 0);
        EXPECT_TRUE(criteria.searchCharacter[i].keyword.isEmpty());
        EXPECT_TRUE(criteria.searchCharacter[i].text.isEmpty());
        EXPECT_EQ(criteria.searchNumeric[i].checked, 0);
        EXPECT_TRUE(criteria.searchNumeric[i].keyword.isEmpty());
        EXPECT_EQ(criteria.searchNumeric[i].value, -1);
        EXPECT_EQ(criteria.searchNumeric[i].valueHigh, -1);
    }
}

TEST(SearchRows, AnOverflowLeavesTheRowsBeforeItRead)
{
    SearchWindowTexts window;
    window.character[3].text = QStringLiteral("read");
    window.numeric[0].value = QStringLiteral("5");
    window.numeric[1].value = QStringLiteral("6");
    window.numeric[1].valueHigh = QStringLiteral("32768");
    window.numeric[2].value = QStringLiteral("7");
    SearchCriteria criteria;
    EXPECT_THROW(ReadSearchRows(window, criteria), Failure);
    EXPECT_EQ(criteria.searchCharacter[3].text, "read");
    EXPECT_EQ(criteria.searchNumeric[0].value, 5);
    EXPECT_EQ(criteria.searchNumeric[1].valueHigh, -1);
    EXPECT_EQ(criteria.searchNumeric[2].value, -1);
}

} // namespace quillane
