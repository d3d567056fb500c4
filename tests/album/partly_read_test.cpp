#include "album/partly_read.h"
#include "core/temp_folder.h"

#include <gtest/gtest.h>
#include <unistd.h>

namespace quillane {

namespace {

class PartlyReadTest : public testing::Test {
protected:
    PartlyReadTest() { folder.Write("a.ifl", "x"); }
    FileStat Now() const { return StatPath(path); }
    TempFolder folder;
    const QString path = folder.Path("a.ifl");
    PartlyReadAlbums albums;
};

} // namespace

TEST_F(PartlyReadTest, AlbumReadInPartIsKnownUntilItIsReadWhole)
{
    EXPECT_FALSE(albums.Has(path, Now()));
    albums.Note(path, Now(), true);
    EXPECT_TRUE(albums.Has(path, Now()));
    albums.Note(path, Now(), false);
    EXPECT_FALSE(albums.Has(path, Now()));
}

TEST_F(PartlyReadTest, OtherNamesOfTheFileAreTheFile)
{
    albums.Note(path, Now(), true);
    const QString link = folder.Path("link.ifl");
    ASSERT_EQ(symlink(BytesFromPath(path).constData(), BytesFromPath(link).constData()), 0);
    EXPECT_TRUE(albums.Has(link, StatPath(link)));
    folder.Write("other.ifl", "x");
    EXPECT_FALSE(albums.Has(folder.Path("other.ifl"), StatPath(folder.Path("other.ifl"))));
}

TEST_F(PartlyReadTest, FilesThatAreGoneAreNotTakenForOneAnother)
{
    albums.Note(folder.Path("none1.ifl"), {}, true);
    EXPECT_FALSE(albums.Has(folder.Path("none2.ifl"), {}));
    EXPECT_TRUE(albums.Has(folder.Path("none1.ifl"), {}));
}

} // namespace quillane
