#include "core/paths.h"
#include <gtest/gtest.h>

namespace quillane {

struct PathRow {
    const char* path;
    const char* expected;
};

TEST(Paths, ALeadingSlashMakesTheSlashTheSeparator)
{
    EXPECT_EQ(SeparatorOf(u"/home/ann"), u'/');
    EXPECT_EQ(SeparatorOf(u"C:\\Pics"), u'\\');
    EXPECT_EQ(SeparatorOf(u"relative/name"), u'\\');
    EXPECT_EQ(SeparatorOf(u""), u'\\');
}

TEST(Paths, TheNativeSeparatorIsThePlatforms)
{
    EXPECT_EQ(NativeSeparator(), u'/');
}

TEST(LeafName, IsTheTextAfterTheLastSeparator)
{
    constexpr PathRow kRows[] = {
        {"C:\\Pics\\a.jpg", "a.jpg"},
        {"/home/ann/a.jpg", "a.jpg"},
        {"a.jpg", "a.jpg"},
        {"C:\\Pics\\", ""},
        {"/home/ann/", ""},
        {"", ""},
        {"/", ""},
        {"/a\\b.jpg", "a\\b.jpg"},
        {"C:\\a/b.jpg", "a/b.jpg"},
        {"\\\\host\\share\\x", "x"},
        {"a/b", "a/b"},
    };
    for (const PathRow& row : kRows)
        EXPECT_EQ(LeafName(row.path), QString(row.expected)) << row.path;
}

TEST(FolderOf, KeepsTheSeparatorAndMakesThePathWithTheLeafName)
{
    constexpr PathRow kRows[] = {
        {"/home/ann/a.jpg", "/home/ann/"}, {"/a.jpg", "/"},      {"a.jpg", ""},
        {"C:\\Pics\\a.jpg", "C:\\Pics\\"}, {"/home/", "/home/"}, {"", ""},
    };
    for (const PathRow& row : kRows) {
        EXPECT_EQ(FolderOf(row.path), QString(row.expected)) << row.path;
        EXPECT_EQ(FolderOf(row.path) + LeafName(row.path), QString(row.path));
    }
}

TEST(JoinAsIs, PutsNothingBetween)
{
    EXPECT_EQ(JoinAsIs("/pics", "a.jpg"), "/picsa.jpg");
    EXPECT_EQ(JoinAsIs("/pics/", "a.jpg"), "/pics/a.jpg");
}

TEST(WithSeparator, EndsInExactlyOne)
{
    constexpr PathRow kRows[] = {
        {"/pics", "/pics/"},
        {"/pics/", "/pics/"},
        {"/pics///", "/pics/"},
        {"/", "/"},
        {"///", "/"},
        {"C:\\", "C:\\"},
        {"C:\\Pics", "C:\\Pics\\"},
        {"C:", "C:\\"},
        {"", ""},
    };
    for (const PathRow& row : kRows)
        EXPECT_EQ(WithSeparator(row.path), QString(row.expected)) << row.path;
}

TEST(WithoutSeparator, ARootKeepsItsOwn)
{
    constexpr PathRow kRows[] = {
        {"/pics/", "/pics"}, {"/pics", "/pics"},         {"/", "/"}, {"//", "/"},
        {"C:\\", "C:\\"},    {"C:\\Pics\\", "C:\\Pics"}, {"", ""},   {"\\", ""},
    };
    for (const PathRow& row : kRows)
        EXPECT_EQ(WithoutSeparator(row.path), QString(row.expected)) << row.path;
}

TEST(IsDriveRoot, IsTheSlashAloneOrFewerThanFourCharacters)
{
    EXPECT_TRUE(IsDriveRoot("/"));
    EXPECT_FALSE(IsDriveRoot("/a"));
    EXPECT_FALSE(IsDriveRoot("/ab"));
    EXPECT_FALSE(IsDriveRoot("/home"));
    EXPECT_TRUE(IsDriveRoot("C:\\"));
    EXPECT_FALSE(IsDriveRoot("C:\\a"));
}

} // namespace quillane
