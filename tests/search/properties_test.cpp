// What holds for every search, tried on many that are made by chance from a fixed seed.
#include "search/evaluation.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>

namespace quillane {

namespace {

constexpr int kTrials = 3000;

class Chance {
public:
    explicit Chance(unsigned seed) : mEngine(seed) { }
    int UpTo(int most) { return std::uniform_int_distribution<int>(0, most)(mEngine); }
    bool Coin() { return UpTo(1) == 1; }
    QString OneOf(const QStringList& texts) { return texts.at(UpTo(int(texts.size()) - 1)); }
    std::mt19937& Engine() { return mEngine; }

private:
    std::mt19937 mEngine;
};

const QStringList kKeys = {QStringLiteral("ISO"), QStringLiteral("City"), QStringLiteral("iso"),
                           QString(), QStringLiteral("Lat")};
const QStringList kValues = {
    QStringLiteral("5"),           QStringLiteral("Paris"), QString(),
    QStringLiteral("PARIS"),       QStringLiteral("-1"),    QStringLiteral("2.8mm"),
    QStringLiteral("Paris France")};

SearchCriterion RandomRow(Chance& chance)
{
    SearchCriterion row;
    row.checked = kTrue;
    row.keyword = chance.OneOf(kKeys);
    row.text = chance.OneOf(kValues);
    row.value = qint16(chance.UpTo(8) - 1);
    row.valueHigh = chance.Coin() ? kNoBound : qint16(chance.UpTo(8));
    return row;
}

QString RandomText(Chance& chance)
{
    QString text;
    for (int line = chance.UpTo(4); line > 0; --line) {
        text += chance.OneOf(kKeys) + u'=' + chance.OneOf(kValues) + QStringLiteral("\r\n");
    }
    return text;
}

/// Some rows of every array checked; few, so that many texts pass.
SearchQuestion RandomQuestion(Chance& chance)
{
    SearchQuestion question;
    question.options = {chance.Coin(), chance.Coin()};
    for (const SearchArrayRow& array : kSearchArrays) {
        for (SearchCriterion& row : RowsOf(question.criteria, array.array)) {
            if (chance.UpTo(60) == 0) {
                row = RandomRow(chance);
            }
        }
    }
    return question;
}

} // namespace

TEST(SearchProperties, TheOrderOfTheRowsNeverMatters)
{
    Chance chance(1);
    int passed = 0;
    for (int trial = 0; trial < kTrials; ++trial) {
        const SearchQuestion question = RandomQuestion(chance);
        const QString text = RandomText(chance);
        SearchQuestion shuffled = question;
        for (const SearchArrayRow& array : kSearchArrays) {
            const std::span<SearchCriterion> rows = RowsOf(shuffled.criteria, array.array);
            std::shuffle(rows.begin(), rows.end(), chance.Engine());
        }
        const qint16 answer = TextMatchesSearch(text, question);
        EXPECT_EQ(TextMatchesSearch(text, shuffled), answer);
        passed += answer == kTrue ? 1 : 0;
    }
    EXPECT_GT(passed, kTrials / 50);
    EXPECT_LT(passed, kTrials - kTrials / 50);
}

TEST(SearchProperties, AnotherCriterionNeverAddsAFile)
{
    Chance chance(2);
    int removed = 0;
    for (int trial = 0; trial < kTrials; ++trial) {
        const SearchQuestion question = RandomQuestion(chance);
        const QString text = RandomText(chance);
        SearchQuestion narrower = question;
        const SearchArrayRow& array = kSearchArrays[chance.UpTo(int(std::size(kSearchArrays)) - 1)];
        SearchCriterion& row =
            RowsOf(narrower.criteria, array.array)[size_t(chance.UpTo(array.rows - 1))];
        if (row.checked == kTrue) {
            continue;
        }
        row = RandomRow(chance);
        const qint16 before = TextMatchesSearch(text, question);
        const qint16 after = TextMatchesSearch(text, narrower);
        EXPECT_FALSE(before == kFalse && after == kTrue);
        removed += before == kTrue && after == kFalse ? 1 : 0;
    }
    EXPECT_GT(removed, 0);
}

TEST(SearchProperties, ASearchPassesExactlyWhereEachOfItsRowsAloneDoes)
{
    Chance chance(3);
    for (int trial = 0; trial < kTrials; ++trial) {
        const SearchQuestion question = RandomQuestion(chance);
        const QString text = RandomText(chance);
        bool all = true;
        for (const SearchArrayRow& array : kSearchArrays) {
            for (const SearchCriterion& row : RowsOf(question.criteria, array.array)) {
                SearchQuestion alone;
                alone.options = question.options;
                RowsOf(alone.criteria, array.array)[0] = row;
                all = all && TextMatchesSearch(text, alone) == kTrue;
            }
        }
        EXPECT_EQ(TextMatchesSearch(text, question), all ? kTrue : kFalse);
    }
}

TEST(SearchProperties, AStricterOptionNeverAddsAFile)
{
    Chance chance(4);
    for (int trial = 0; trial < kTrials; ++trial) {
        const SearchCriterion row = RandomRow(chance);
        const QString text = RandomText(chance);
        // A value that equals a text that is not empty contains it as well.
        const bool word =
            !row.text.isEmpty() && TextMatches(row.keyword, text, row.text, {false, true}) == kTrue;
        if (word) {
            EXPECT_EQ(TextMatches(row.keyword, text, row.text, {false, false}), kTrue);
        }
        if (!row.text.isEmpty()
            && TextMatches(row.keyword, text, row.text, {true, true}) == kTrue) {
            EXPECT_EQ(TextMatches(row.keyword, text, row.text, {true, false}), kTrue);
        }
    }
}

} // namespace quillane
