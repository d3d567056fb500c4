#include "browser/tree_node.h"

#include <gtest/gtest.h>

namespace quillane {

TEST(TreeNode, AFolderGetsASeparatorAtItsEnd)
{
    const TreeNodeChoice choice = ChooseTreeNode(QStringLiteral("/home/ann/Pictures"), false);
    EXPECT_EQ(choice.path, QStringLiteral("/home/ann/Pictures/"));
    EXPECT_FALSE(choice.isFile);
}

TEST(TreeNode, ADriveRootGetsNoSecondSeparator)
{
    EXPECT_EQ(ChooseTreeNode(QStringLiteral("/"), false).path, QStringLiteral("/"));
    EXPECT_EQ(ChooseTreeNode(QStringLiteral("/"), true).path, QStringLiteral("/"));
    EXPECT_FALSE(ChooseTreeNode(QStringLiteral("/"), true).isFile);
}

TEST(TreeNode, AShortFolderIsNoDriveRootHere)
{
    EXPECT_EQ(ChooseTreeNode(QStringLiteral("/a"), false).path, QStringLiteral("/a/"));
}

TEST(TreeNode, WhileFilesAreShownAFolderStaysBare)
{
    const TreeNodeChoice choice = ChooseTreeNode(QStringLiteral("/home/ann"), true);
    EXPECT_EQ(choice.path, QStringLiteral("/home/ann"));
    EXPECT_FALSE(choice.isFile);
}

TEST(TreeNode, WhileFilesAreShownTheFourthCharacterFromTheEndDecides)
{
    EXPECT_TRUE(ChooseTreeNode(QStringLiteral("/p/a.jpg"), true).isFile);
    EXPECT_TRUE(ChooseTreeNode(QStringLiteral("/p/a.bcd"), true).isFile);
    EXPECT_FALSE(ChooseTreeNode(QStringLiteral("/p/a.bc"), true).isFile);
    EXPECT_FALSE(ChooseTreeNode(QStringLiteral("/p/a.jpeg"), true).isFile);
    EXPECT_FALSE(ChooseTreeNode(QStringLiteral("/p/a.jpg"), false).isFile);
}

TEST(TreeNode, ATextOfThreeCharactersIsNoFile)
{
    EXPECT_FALSE(LooksLikeFile(QStringLiteral(".ab")));
    EXPECT_FALSE(LooksLikeFile({}));
}

} // namespace quillane
