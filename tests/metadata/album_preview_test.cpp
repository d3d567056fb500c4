#include "core/expect_failure.h"
#include "core/temp_folder.h"
#include "metadata/album_preview.h"

#include <gtest/gtest.h>

namespace quillane {

namespace {

AlbumPreview AlbumOf(const QByteArray& content)
{
    const TempFolder folder;
    folder.Write("a.ifl", content);
    return ReadAlbumPreview(folder.Path("a.ifl"));
}

} // namespace

TEST(ReadAlbumPreview, LinesMayEndInBareLineFeedsAndBeginWithAByteOrderMark)
{
    const AlbumPreview album = AlbumOf("\xef\xbb\xbf#\nSummer\n#\n/p/a.jpg\n/p/b.jpg");
    EXPECT_TRUE(album.hasComment);
    EXPECT_EQ(album.comment, "Summer\r\n");
    EXPECT_EQ(album.files, "/p/a.jpg\r\n/p/b.jpg\r\n");
    EXPECT_EQ(album.count, 2);
}

TEST(ReadAlbumPreview, OnlyALoneMarkIsAMark)
{
    const AlbumPreview album = AlbumOf("# \r\n#\r\n##\r\n");
    EXPECT_FALSE(album.hasComment);
    EXPECT_EQ(album.count, 3);
}

TEST(ReadAlbumPreview, MarkInsideTheCommentEndsIt)
{
    const AlbumPreview album = AlbumOf("#\r\na\r\n#\r\nb\r\n#\r\n/p/a.jpg\r\n");
    EXPECT_EQ(album.comment, "a\r\n");
    EXPECT_EQ(album.files, "b\r\n#\r\n/p/a.jpg\r\n");
    EXPECT_EQ(album.count, 3);
}

TEST(ReadAlbumPreview, CommentAloneHasNoFiles)
{
    const AlbumPreview album = AlbumOf("#\r\na\r\n#\r\n");
    EXPECT_EQ(album.files, "");
    EXPECT_EQ(album.count, 0);
    EXPECT_EQ(AlbumOf("#").comment, "");
    EXPECT_EQ(AlbumOf("#").count, 0);
}

TEST(ReadAlbumPreview, PathsKeepTheirBytes)
{
    const AlbumPreview album = AlbumOf("/p/caf\xc3\xa9.jpg\r\n/p/caf\xe9.jpg\r\n");
    EXPECT_EQ(BytesFromPath(album.files), "/p/caf\xc3\xa9.jpg\r\n/p/caf\xe9.jpg\r\n");
}

TEST(ReadAlbumPreview, EmptyMissingAndEndlessFilesAreRefused)
{
    const TempFolder folder;
    folder.Write("empty.ifl", "");
    folder.Write("mark.ifl", "\xef\xbb\xbf");
    folder.Write("large.ifl", QByteArray((16 << 20) + 1, 'x'));
    EXPECT_EQ(FailureOf([&] { ReadAlbumPreview(folder.Path("empty.ifl")); }), kFailureIo);
    EXPECT_EQ(FailureOf([&] { ReadAlbumPreview(folder.Path("mark.ifl")); }), kFailureIo);
    EXPECT_EQ(FailureOf([&] { ReadAlbumPreview(folder.Path("large.ifl")); }), kFailureLimit);
    EXPECT_EQ(FailureOf([&] { ReadAlbumPreview(folder.Path("none.ifl")); }), kFailureNoFile);
}

} // namespace quillane
