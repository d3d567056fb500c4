// A search over the sample pictures: the description is found in every kind of file.
#include "core/native_path.h"
#include "search/evaluation.h"

#include <gtest/gtest.h>

namespace quillane {

namespace {

QStringList FoundInSamples(const SearchQuestion& question)
{
    const QString samples = QStringLiteral(QUILLANE_SOURCE_FOLDER "/samples/");
    QStringList found;
    ListFolder(samples, [&](DirEntry&& entry) {
        if (entry.type == FileType::Regular
            && FileMatchesSearch(samples + entry.name, question) == kTrue) {
            found.append(entry.name);
        }
        return true;
    });
    found.sort();
    return found;
}

QStringList FoundByText(const char* keyword, const char* wanted, SearchOptions options = {})
{
    SearchQuestion question;
    question.options = options;
    question.criteria.searchCharacter[0] = {kNoBound, kNoBound, QLatin1String(keyword),
                                            QString::fromUtf8(wanted), kTrue};
    return FoundInSamples(question);
}

} // namespace

TEST(SearchOfSamples, FindsTheDescriptionInEveryKindOfFile)
{
    EXPECT_EQ(FoundByText("Name", "dunes"), QStringList{"AST_0108.jpg"});
    EXPECT_EQ(FoundByText("Name", "test chart"), QStringList{"CHART.TIF"});
    EXPECT_EQ(FoundByText("Subject", "flower"), QStringList{"petals.png"});
    EXPECT_EQ(FoundByText("Name", "small chart"), QStringList{"chart.gif"});
    EXPECT_EQ(FoundByText("Name", "phantom"), QStringList{"PHANTOM.DIC"});
    EXPECT_EQ(FoundByText("Comment", "= the steep"), QStringList{"AST_0108.jpg"});
    EXPECT_EQ(FoundByText("Location", "TROMSØ"), QStringList{"AST_0109.JPG"});
    EXPECT_EQ(FoundByText("location", "Tromsø", {true, false}), QStringList{});
    EXPECT_EQ(FoundByText("Event", "Summer walk", {true, true}),
              QStringList({"AST_0101.JPG", "AST_0102.JPG", "AST_0105.JPG", "AST_0110.JPG"}));
}

TEST(SearchOfSamples, JoinsNumbersAndTexts)
{
    SearchQuestion question;
    question.criteria.searchNumeric[2] = {-20, -1, QStringLiteral("Temperature"), {}, kTrue};
    // An unset high bound counts as -1 in a range.
    EXPECT_EQ(FoundInSamples(question), QStringList({"AST_0106.JPG", "AST_0109.JPG"}));
    question.criteria.searchNumeric[2].valueHigh = -7;
    EXPECT_EQ(FoundInSamples(question), QStringList({"AST_0106.JPG", "AST_0109.JPG"}));
    question.criteria.searchCharacter[3] = {kNoBound, kNoBound, QStringLiteral("Name"),
                                            QStringLiteral("light"), kTrue};
    EXPECT_EQ(FoundInSamples(question), QStringList{"AST_0109.JPG"});
}

} // namespace quillane
