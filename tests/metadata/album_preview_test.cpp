#include "core/expect_failure.h"
#include "core/temp_folder.h"
#include "metadata/album_preview.h"

#include <gtest/gtest.h>
#include <unistd.h>

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

TEST(ReadAlbumPreview, BareCrEndsLinesWhereThereIsNoLf)
{
    const AlbumPreview album = AlbumOf("#\ra\r#\r/p/a.jpg\r/p/b.jpg\r");
    EXPECT_EQ(album.comment, "a\r\n");
    EXPECT_EQ(album.count, 2);
}

TEST(ReadAlbumPreview, AllFilesAreCountedAndTheFirstShown)
{
    QByteArray content;
    for (int i = 0; i < kMostShownAlbumLines + 7; ++i) {
        content += "/p/" + QByteArray::number(i) + "\n";
    }
    const AlbumPreview album = AlbumOf(content);
    EXPECT_EQ(album.count, kMostShownAlbumLines + 7);
    EXPECT_EQ(album.files.count(u'\n'), kMostShownAlbumLines + 1);
    EXPECT_TRUE(album.files.endsWith(QStringLiteral("/p/9999\r\n... and 7 more\r\n")));
}

TEST(ReadAlbumPreview, EndlessLinesAndCommentsAreCut)
{
    const QByteArray endless(3 << 20, 'x');
    const AlbumPreview files = AlbumOf("/a\n" + endless + "\n/b\n");
    EXPECT_EQ(files.count, 3);
    EXPECT_LT(files.files.size(), 10'000);
    const AlbumPreview comment = AlbumOf("#\n" + endless + "\n#\n/b\n");
    EXPECT_LE(comment.comment.size(), kMaxAlbumComment + 5000);
    EXPECT_EQ(comment.count, 1);
    const AlbumPreview lines =
        AlbumOf("#\n" + QByteArray(endless).replace("xx", "x\n") + "#\n/b\n");
    EXPECT_LE(lines.comment.size(), kMaxAlbumComment + 5000);
    EXPECT_EQ(lines.count, 1);
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
    folder.Write("large.ifl", "x");
    ASSERT_EQ(truncate(folder.Bytes("large.ifl").constData(), kMaxAlbumBytes + 1), 0);
    EXPECT_EQ(FailureOf([&] { ReadAlbumPreview(folder.Path("empty.ifl")); }), kFailureIo);
    EXPECT_EQ(FailureOf([&] { ReadAlbumPreview(folder.Path("mark.ifl")); }), kFailureIo);
    EXPECT_EQ(FailureOf([&] { ReadAlbumPreview(folder.Path("large.ifl")); }), kFailureLimit);
    EXPECT_EQ(FailureOf([&] { ReadAlbumPreview(folder.Path("none.ifl")); }), kFailureNoFile);
}

} // namespace quillane
