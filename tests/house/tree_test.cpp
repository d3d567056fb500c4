// The whole tree keeps the rules of the house.
#include "house/rules.h"
#include <gtest/gtest.h>
#include <set>

namespace quillane::house {

using Rule = QStringList (*)(const SourceFile&);

const std::vector<SourceFile>& Tree()
{
    static const std::vector<SourceFile> kTree = ReadTree(QStringLiteral(QUILLANE_SOURCE_FOLDER));
    return kTree;
}

void ExpectKept(Rule rule)
{
    for (const SourceFile& file : Tree()) {
        for (const QString& complaint : rule(file))
            ADD_FAILURE() << complaint.toStdString();
    }
}

TEST(Tree, IsSeenWhole)
{
    std::set<std::string> folders;
    int headers = 0;
    for (const SourceFile& file : Tree()) {
        EXPECT_FALSE(file.path.startsWith("build/"));
        EXPECT_FALSE(file.text.isEmpty() && file.IsCpp()) << file.path.toStdString();
        folders.insert(file.path.section('/', 0, 0).toStdString());
        headers += file.IsHeader();
    }
    for (const char* folder :
         {"core", "platform", "imaging", "metadata", "widgets", "browser", "tests", "main.cpp"})
        EXPECT_TRUE(folders.contains(folder)) << folder;
    EXPECT_GT(headers, 30);
}

TEST(Tree, FoldersIncludeOnlyWhatStandsBelowThem)
{
    ExpectKept(CheckLayers);
}

TEST(Tree, FilesAreOpenedAndListedInOnePlace)
{
    ExpectKept(CheckFileAccess);
}

TEST(Tree, OutsideHeadersStandInTheirAdapters)
{
    ExpectKept(CheckThirdParty);
}

TEST(Tree, QtHeadersAreThoseOfSingleClasses)
{
    ExpectKept(CheckQtModules);
}

TEST(Tree, TestsWaitForConditionsAndNoneIsOff)
{
    ExpectKept(CheckTestManners);
}

TEST(Tree, NoFileIsTooLong)
{
    ExpectKept(CheckLength);
    for (const SourceFile& file : Tree()) {
        const qsizetype lines = file.text.count('\n');
        if (file.IsCpp() && lines > 500)
            std::cout << file.path.toStdString() << " has " << lines << " lines\n";
    }
}

TEST(Tree, NothingIsLeftUndone)
{
    ExpectKept(CheckLeftUndone);
}

TEST(Tree, HeadersAreIncludedOnceAndNoNamespaceIsImported)
{
    ExpectKept(CheckHeaders);
}

TEST(Tree, EveryFunctionOfAHeaderHasADocstring)
{
    ExpectKept(CheckDocstrings);
}

} // namespace quillane::house
