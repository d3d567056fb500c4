#include "search/evaluation.h"

#include "core/failure.h"
#include "core/native_path.h"
#include "search/tagged_gif.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace quillane {

namespace {

qint16 Numeric(const char* tag, qint16 value, qint16 valueHigh)
{
    return NumericMatches(QStringLiteral("ISO"), QString::fromUtf8(tag), value, valueHigh);
}

qint16 Text(const char* wanted, const char* tags, SearchOptions options, const char* key = "City")
{
    return TextMatches(QString::fromLatin1(key), QString::fromUtf8(tags), QString::fromUtf8(wanted),
                       options);
}

constexpr SearchOptions kInAnyCase{false, false};
constexpr SearchOptions kEqualInAnyCase{false, true};
constexpr SearchOptions kInThisCase{true, false};
constexpr SearchOptions kEqualInThisCase{true, true};

SearchCriterion IsoRow()
{
    return {100, 400, QStringLiteral("ISO"), {}, kTrue};
}

class FileSearchTest : public testing::Test {
protected:
    QString File(const QString& name, const QByteArray& description)
    {
        const QString path = root.filePath(name);
        WriteWholeFile(path, TaggedGif(description));
        return path;
    }
    QTemporaryDir root;
    SearchQuestion question;
};

} // namespace

TEST(NumericMatches, WithoutBoundsAnyPositiveNumberIsMet)
{
    EXPECT_EQ(Numeric("ISO=1", -1, -1), -1);
    EXPECT_EQ(Numeric("ISO=0.01", -1, -1), -1);
    EXPECT_EQ(Numeric("ISO=0", -1, -1), 0);
    EXPECT_EQ(Numeric("ISO=fast", -1, -1), 0);
    EXPECT_EQ(Numeric("", -1, -1), 0);
    EXPECT_EQ(Numeric("ISO=-2", -1, -1), 0);
    // That number is the bound itself.
    EXPECT_EQ(Numeric("ISO=-1", -1, -1), -1);
}

TEST(NumericMatches, WithoutAHighBoundTheNumberIsExact)
{
    EXPECT_EQ(Numeric("ISO=5", 5, -1), -1);
    EXPECT_EQ(Numeric("ISO=5.0", 5, -1), -1);
    EXPECT_EQ(Numeric("ISO=5.5", 5, -1), 0);
    EXPECT_EQ(Numeric("ISO=6", 5, -1), 0);
    EXPECT_EQ(Numeric("ISO=4", 5, -1), 0);
}

TEST(NumericMatches, ARangeIncludesBothItsEnds)
{
    EXPECT_EQ(Numeric("ISO=100", 100, 400), -1);
    EXPECT_EQ(Numeric("ISO=400", 100, 400), -1);
    EXPECT_EQ(Numeric("ISO=401", 100, 400), 0);
    EXPECT_EQ(Numeric("ISO=400.5", 100, 400), 0);
    EXPECT_EQ(Numeric("ISO=99.9", 100, 400), 0);
    EXPECT_EQ(Numeric("ISO=200", 400, 100), 0);
}

TEST(NumericMatches, AnUnsetLowBoundCountsAsMinusOneInARange)
{
    EXPECT_EQ(Numeric("ISO=-1", -1, 7), -1);
    EXPECT_EQ(Numeric("ISO=7", -1, 7), -1);
    EXPECT_EQ(Numeric("ISO=7.1", -1, 7), 0);
    EXPECT_EQ(Numeric("ISO=-1.1", -1, 7), 0);
    EXPECT_EQ(Numeric("City=Rome", -1, 7), -1);
}

TEST(NumericMatches, ZeroWithoutAHighBoundIsMetByAMissingTag)
{
    EXPECT_EQ(Numeric("", 0, -1), -1);
    EXPECT_EQ(Numeric("ISO=none", 0, -1), -1);
    EXPECT_EQ(Numeric("ISO=1", 0, -1), 0);
}

TEST(NumericMatches, TheNumberIsThePrefixOfTheValue)
{
    EXPECT_EQ(Numeric("ISO=2.8mm", 2, 3), -1);
    EXPECT_EQ(Numeric("ISO=2.8mm", 3, 4), 0);
    EXPECT_EQ(Numeric("ISO=f2.8", 2, 3), 0);
    EXPECT_EQ(Numeric("ISO= 12e1 ", 120, -1), -1);
}

TEST(NumericMatches, TheKeywordIsFoundInAnyCase)
{
    EXPECT_EQ(Numeric("iso=200", 100, 400), -1);
    EXPECT_EQ(Numeric("Iso=200", 100, 400), -1);
}

TEST(TextMatches, OptionsOffFindsTheTextInAnyCaseAnywhereInTheValue)
{
    EXPECT_EQ(Text("Paris", "City=PARIS", kInAnyCase), -1);
    EXPECT_EQ(Text("ARI", "city=Paris France", kInAnyCase), -1);
    EXPECT_EQ(Text("Rome", "City=Paris", kInAnyCase), 0);
    EXPECT_EQ(Text("Rome", "", kInAnyCase), 0);
    EXPECT_EQ(Text("\xc3\xa9t\xc3\xa9", "City=\xc3\x89T\xc3\x89", kInAnyCase), -1);
}

TEST(TextMatches, WholeWordMeansTheWholeValue)
{
    EXPECT_EQ(Text("paris", "CITY=PARIS", kEqualInAnyCase), -1);
    EXPECT_EQ(Text("Paris", "City=Paris France", kEqualInAnyCase), 0);
    EXPECT_EQ(Text("Paris", "City=Paris France", kEqualInThisCase), 0);
    EXPECT_EQ(Text("Paris", "City= Paris ", kEqualInThisCase), -1);
}

TEST(TextMatches, MatchCaseCountsInValueAndKeyword)
{
    EXPECT_EQ(Text("Paris", "City=Paris France", kInThisCase), -1);
    EXPECT_EQ(Text("paris", "City=Paris France", kInThisCase), 0);
    EXPECT_EQ(Text("Paris", "CITY=Paris", kInThisCase), 0);
    EXPECT_EQ(Text("Paris", "CITY=Paris", kEqualInThisCase), 0);
    EXPECT_EQ(Text("paris", "City=Paris", kEqualInThisCase), 0);
    EXPECT_EQ(Text("Paris", "CITY=Paris", kInAnyCase), -1);
}

TEST(TextMatches, AnEmptyWantedTextIsFoundInAnyValueButAnEmptyOne)
{
    for (const SearchOptions& inside : {kInAnyCase, kInThisCase}) {
        EXPECT_EQ(Text("", "City=Rome", inside), -1);
        EXPECT_EQ(Text("", "City=", inside), 0);
        EXPECT_EQ(Text("", "Name=Ann", inside), 0);
        EXPECT_EQ(Text("", "", inside, ""), 0);
    }
    for (const SearchOptions& equal : {kEqualInAnyCase, kEqualInThisCase}) {
        EXPECT_EQ(Text("", "City=Rome", equal), 0);
        EXPECT_EQ(Text("", "City=", equal), -1);
        EXPECT_EQ(Text("", "Name=Ann", equal), -1);
        EXPECT_EQ(Text("", "", equal, ""), -1);
    }
}

TEST(TextMatchesSearch, WithoutACheckedRowEverythingPasses)
{
    SearchQuestion question;
    EXPECT_EQ(TextMatchesSearch({}, question), -1);
    question.criteria.searchNumeric[0] = IsoRow();
    question.criteria.searchNumeric[0].checked = kFalse;
    EXPECT_EQ(TextMatchesSearch({}, question), -1);
}

TEST(TextMatchesSearch, OnlyMinusOneTakesPart)
{
    SearchQuestion question;
    question.criteria.searchNumeric[0] = IsoRow();
    question.criteria.searchNumeric[0].checked = 1;
    EXPECT_EQ(TextMatchesSearch({}, question), -1);
}

TEST(TextMatchesSearch, EveryCheckedRowMustHold)
{
    SearchQuestion question;
    question.criteria.searchNumeric[2] = IsoRow();
    question.criteria.searchCharacter[3] = {kNoBound, kNoBound, QStringLiteral("City"),
                                            QStringLiteral("paris"), kTrue};
    EXPECT_EQ(TextMatchesSearch(QStringLiteral("ISO=200\r\nCity=Paris\r\n"), question), -1);
    EXPECT_EQ(TextMatchesSearch(QStringLiteral("ISO=500\r\nCity=Paris\r\n"), question), 0);
    EXPECT_EQ(TextMatchesSearch(QStringLiteral("ISO=200\r\nCity=Rome\r\n"), question), 0);
    EXPECT_EQ(TextMatchesSearch(QStringLiteral("ISO=200\r\n"), question), 0);
}

TEST(TextMatchesSearch, ACheckedRowThatIsBlankAsksForItsEmptyKeyword)
{
    SearchQuestion question;
    question.criteria.searchNumeric[0].checked = kTrue;
    EXPECT_EQ(TextMatchesSearch(QStringLiteral("ISO=200"), question), 0);
    EXPECT_EQ(TextMatchesSearch(QStringLiteral("=3"), question), -1);
    question = {};
    question.criteria.searchCharacter[0].checked = kTrue;
    EXPECT_EQ(TextMatchesSearch(QStringLiteral("City=Rome"), question), 0);
    question.options.matchWord = true;
    EXPECT_EQ(TextMatchesSearch(QStringLiteral("City=Rome"), question), -1);
}

TEST(TextMatchesSearch, ACheckedRowOfAnyArrayTakesPart)
{
    for (const SearchArrayRow& array : kSearchArrays) {
        for (int i = 0; i < array.rows; ++i) {
            SearchQuestion question;
            SearchCriterion& row = RowsOf(question.criteria, array.array)[size_t(i)];
            row.checked = kTrue;
            row.value = 4;
            row.text = QStringLiteral("4");
            // The keyword of a row without one is met by a line without a name.
            EXPECT_EQ(TextMatchesSearch(QStringLiteral("=4"), question), -1) << i;
            EXPECT_EQ(TextMatchesSearch(QStringLiteral("=5"), question), 0) << i;
        }
    }
}

TEST_F(FileSearchTest, WithoutACheckedRowFilesOfTheFiveKindsPassAndOthersFail)
{
    for (const char* name : {"a.tif", "b.JPG", "c.gif", "d.Png", "e.dic", "f.tiff"}) {
        EXPECT_EQ(FileMatchesSearch(File(QLatin1String(name), {}), question), -1) << name;
    }
    for (const char* name : {"a.bmp", "b.jpeg", "c.psd", "d.ifl", "gif"}) {
        EXPECT_EQ(FileMatchesSearch(File(QLatin1String(name), "ISO=200"), question), 0) << name;
    }
}

TEST_F(FileSearchTest, TheDescriptionOfTheFileIsAsked)
{
    question.criteria.searchNumeric[0] = IsoRow();
    EXPECT_EQ(FileMatchesSearch(File(QStringLiteral("a.gif"), "ISO=400\r\n"), question), -1);
    EXPECT_EQ(FileMatchesSearch(File(QStringLiteral("b.gif"), "ISO=401\r\n"), question), 0);
    EXPECT_EQ(FileMatchesSearch(File(QStringLiteral("c.gif"), {}), question), 0);
}

TEST_F(FileSearchTest, AFileThatCannotBeOpenedFails)
{
    EXPECT_THROW(FileMatchesSearch(root.filePath(QStringLiteral("gone.gif")), question), Failure);
    // One of another kind is not even looked for.
    EXPECT_EQ(FileMatchesSearch(root.filePath(QStringLiteral("gone.bmp")), question), 0);
}

TEST_F(FileSearchTest, WhatCannotBeParsedHasAnEmptyDescription)
{
    const QString path = root.filePath(QStringLiteral("rubbish.jpg"));
    WriteWholeFile(path, QByteArray(4000, '\xff'));
    EXPECT_EQ(FileMatchesSearch(path, question), -1);
    question.criteria.searchNumeric[0] = IsoRow();
    EXPECT_EQ(FileMatchesSearch(path, question), 0);
}

} // namespace quillane
