#include "album/album_look.h"
#include "core/temp_folder.h"

#include <gtest/gtest.h>

namespace quillane {

namespace {

constexpr int kPatience = 60'000; // milliseconds: all files are looked at

class AlbumLookTest : public testing::Test {
protected:
    AlbumReading Album(const QByteArray& content) const
    {
        folder.Write("a.ifl", content);
        return ReadAlbum(folder.Path("a.ifl"), kPatience);
    }
    TempFolder folder;
};

} // namespace

TEST_F(AlbumLookTest, FileHasSizeAndTime)
{
    folder.Write("p.jpg", "12345");
    const AlbumFileFacts facts = LookAtAlbumFile(folder.Path("p.jpg"));
    EXPECT_EQ(facts.state, AlbumFileState::Found);
    EXPECT_EQ(facts.size, 5);
    EXPECT_EQ(facts.modifiedSeconds, StatPath(folder.Path("p.jpg")).modifiedSeconds);
    EXPECT_EQ(facts.otherPath, "");
}

TEST_F(AlbumLookTest, WhatIsNoNormalFileIsMissing)
{
    folder.MakeFolder("folder");
    folder.Write(".hidden.jpg");
    for (const char* name : {"none.jpg", "folder", ".hidden.jpg"}) {
        EXPECT_EQ(LookAtAlbumFile(folder.Path(name)).state, AlbumFileState::Missing) << name;
    }
    EXPECT_EQ(LookAtAlbumFile(QString()).state, AlbumFileState::Missing);
    EXPECT_EQ(LookAtAlbumFile(PathFromBytes(QByteArray("/p\0q.jpg", 8))).state,
              AlbumFileState::Missing);
}

TEST_F(AlbumLookTest, EightBitLineFindsTheFileWithTheUtf8Name)
{
    folder.Write("M\xc3\xbcller.jpg");
    const AlbumFileFacts facts = LookAtAlbumFile(folder.Path("M\xfcller.jpg"));
    EXPECT_EQ(facts.state, AlbumFileState::Found);
    EXPECT_EQ(facts.otherPath, folder.Path("M\xc3\xbcller.jpg"));
    // A name that has those very bytes comes first.
    folder.Write("M\xfcller.jpg");
    EXPECT_EQ(LookAtAlbumFile(folder.Path("M\xfcller.jpg")).otherPath, "");
}

TEST_F(AlbumLookTest, MissingFirstPathStopsAnAlbumWithoutAComment)
{
    folder.Write("b.jpg");
    const AlbumReading album =
        Album(folder.Bytes("none.jpg") + "\r\n" + folder.Bytes("b.jpg") + "\r\n");
    EXPECT_FALSE(album.complete);
    ASSERT_EQ(album.text.paths.size(), 1);
    EXPECT_EQ(album.facts.first().state, AlbumFileState::Stopped);
    EXPECT_TRUE(album.holdsMore);
    EXPECT_FALSE(album.trouble.isEmpty());
}

TEST_F(AlbumLookTest, MissingFileOnAnyLaterLineIsNoTrouble)
{
    folder.Write("b.jpg");
    const AlbumReading album =
        Album(folder.Bytes("b.jpg") + "\r\n" + folder.Bytes("none.jpg") + "\r\n");
    EXPECT_TRUE(album.complete);
    ASSERT_EQ(album.facts.size(), 2);
    EXPECT_EQ(album.facts.at(1).state, AlbumFileState::Missing);
    EXPECT_EQ(album.trouble, "");
    EXPECT_FALSE(album.holdsMore);
}

TEST_F(AlbumLookTest, MissingFirstPathBehindACommentIsNoTrouble)
{
    const AlbumReading album = Album("#\r\nc\r\n#\r\n" + folder.Bytes("none.jpg") + "\r\n");
    EXPECT_TRUE(album.complete);
    EXPECT_EQ(album.facts.first().state, AlbumFileState::Missing);
}

TEST_F(AlbumLookTest, EmptyAndUnreadableAlbumsSayWhy)
{
    const AlbumReading empty = Album("");
    EXPECT_FALSE(empty.complete);
    EXPECT_FALSE(empty.trouble.isEmpty());
    EXPECT_FALSE(empty.holdsMore);
    const AlbumReading none = ReadAlbum(folder.Path("none.ifl"), kPatience);
    EXPECT_FALSE(none.complete);
    EXPECT_FALSE(none.trouble.isEmpty());
    EXPECT_FALSE(none.holdsMore);
}

TEST_F(AlbumLookTest, AlbumBeyondALimitHoldsMore)
{
    folder.Write("p.jpg");
    const AlbumReading album =
        Album(folder.Bytes("p.jpg") + "\r\n" + QByteArray(kMaxAlbumLine + 1, 'x') + "\r\n");
    EXPECT_TRUE(album.complete);
    EXPECT_TRUE(album.holdsMore);
    EXPECT_FALSE(album.trouble.isEmpty());
    EXPECT_EQ(album.text.paths.size(), 1);
}

TEST_F(AlbumLookTest, ImpatientLookTakesOneFileAtLeast)
{
    const QList<QString> paths(1000, folder.Path("none.jpg"));
    const qsizetype looked = LookAtAlbumFiles(paths, -1).size();
    EXPECT_GE(looked, 1);
    EXPECT_LE(looked, 1000);
    EXPECT_TRUE(LookAtAlbumFiles({}, kPatience).isEmpty());
}

} // namespace quillane
