#include "core/folder_cursor.h"

#include "core/failure.h"
#include "deep_folder.h"
#include "temp_folder.h"

#include <gtest/gtest.h>
#include <map>

namespace quillane {
namespace {

struct Seen {
    FileType type;
    bool link;
    FileStat stat;
};

std::map<QString, Seen> All(const QString& folder)
{
    std::map<QString, Seen> seen;
    FolderCursor cursor(folder);
    while (cursor.Next()) {
        seen.emplace(cursor.Name(), Seen{cursor.Type(), cursor.IsLink(), cursor.Stat()});
    }
    return seen;
}

TEST(FolderCursor, TellsTypesLinksAndFacts)
{
    const TempFolder folder;
    folder.Write("file", "12345");
    folder.MakeFolder("folder");
    folder.Link("file", "to file");
    folder.Link("folder", "to folder");
    folder.Link("nowhere", "to nowhere");
    folder.Write("b\xFFyte");
    ASSERT_EQ(mkfifo(folder.Bytes("pipe").constData(), 0600), 0);

    const auto seen = All(folder.Path());
    ASSERT_EQ(seen.size(), 7U);
    const struct {
        const char* name;
        FileType type;
        bool link;
    } kRows[] = {
        {"file", FileType::Regular, false},      {"folder", FileType::Folder, false},
        {"to file", FileType::Regular, true},    {"to folder", FileType::Folder, true},
        {"to nowhere", FileType::Missing, true}, {"b\xFFyte", FileType::Regular, false},
        {"pipe", FileType::Other, false},
    };
    for (const auto& row : kRows) {
        const auto found = seen.find(PathFromBytes(row.name));
        ASSERT_NE(found, seen.end()) << row.name;
        EXPECT_EQ(found->second.type, row.type) << row.name;
        EXPECT_EQ(found->second.link, row.link) << row.name;
        const FileStat plain = StatPath(folder.Path(row.name));
        EXPECT_EQ(found->second.stat.type, plain.type) << row.name;
        EXPECT_EQ(found->second.stat.size, plain.size) << row.name;
        EXPECT_EQ(found->second.stat.modifiedSeconds, plain.modifiedSeconds) << row.name;
        EXPECT_EQ(found->second.stat.inode, plain.inode) << row.name;
        EXPECT_EQ(found->second.stat.mode, plain.mode) << row.name;
    }
}

TEST(FolderCursor, AnEmptyFolderHasNoEntry)
{
    const TempFolder folder;
    FolderCursor cursor(folder.Path());
    EXPECT_FALSE(cursor.Next());
}

TEST(FolderCursor, AnEntryThatIsGoneIsMissing)
{
    const TempFolder folder;
    folder.Write("file");
    FolderCursor cursor(folder.Path());
    ASSERT_TRUE(cursor.Next());
    ASSERT_TRUE(RemoveFile(folder.Path("file")));
    EXPECT_EQ(cursor.Stat().type, FileType::Missing);
}

TEST(FolderCursor, ReadsAFolderWhosePathIsLongerThanTheSystemTakesAtOnce)
{
    const DeepFolder deep(2000, "level");
    ASSERT_GT(deep.Path().size(), 2000 * 6);
    FolderCursor cursor(deep.Path());
    ASSERT_TRUE(cursor.Next());
    EXPECT_EQ(cursor.Name(), "at the bottom");
    EXPECT_EQ(cursor.Type(), FileType::Regular);
    EXPECT_EQ(cursor.Stat().size, 5);
    EXPECT_FALSE(cursor.Next());
    EXPECT_THROW(FolderCursor{deep.Path() + QStringLiteral("none")}, Failure);
}

TEST(FolderCursor, RefusesAPathBeyondAllBounds)
{
    EXPECT_THROW(FolderCursor{QStringLiteral("/tmp/").repeated(10'000)}, Failure);
    EXPECT_THROW(FolderCursor{u'/' + QString(5000, u'x')}, Failure);
    EXPECT_THROW(FolderCursor{QStringLiteral("/tmp/") + QString(5000, u'x')}, Failure);
}

TEST(FolderCursor, RefusesWhatIsNoFolder)
{
    const TempFolder folder;
    folder.Write("file");
    for (const QString& path :
         {folder.Path("none"), folder.Path("file"), QString(), QString(QChar(0))}) {
        EXPECT_THROW(FolderCursor{path}, Failure) << path.toStdString();
    }
}

} // namespace
} // namespace quillane
