#include "album/album_picture.h"
#include "core/native_path.h"
#include "core/temp_folder.h"

#include <gtest/gtest.h>

namespace quillane {

namespace {

AlbumPicture Read(const QString& path)
{
    const std::atomic<bool> cancelled = false;
    return ReadAlbumPicture(path, {}, cancelled);
}

} // namespace

TEST(AlbumPicture, FactsReadAsWritten)
{
    EXPECT_EQ(AlbumSizeText({640, 480}, 24), "Image Size: 640 X 480 X 24");
    EXPECT_TRUE(AlbumFormatText(10).startsWith(QStringLiteral("Format: ")));
    EXPECT_GT(AlbumFormatText(10).size(), 8);
}

TEST(AlbumPicture, MissingFileIsNotFound)
{
    const TempFolder folder;
    const AlbumPicture picture = Read(folder.Path("none.jpg"));
    EXPECT_FALSE(picture.found);
    EXPECT_EQ(picture.sizeText, "");
}

TEST(AlbumPicture, PictureHasFactsAndOnlyImageFilesADescription)
{
    const TempFolder folder;
    QImage image(12, 7, QImage::Format_RGB32);
    image.fill(Qt::red);
    ASSERT_TRUE(image.save(folder.Path("a.bmp")));
    ASSERT_TRUE(image.save(folder.Path("a.png")));
    const AlbumPicture bitmap = Read(folder.Path("a.bmp"));
    EXPECT_TRUE(bitmap.found);
    EXPECT_EQ(bitmap.pixels, QSize(12, 7));
    EXPECT_TRUE(bitmap.sizeText.startsWith(QStringLiteral("Image Size: 12 X 7 X ")));
    EXPECT_FALSE(bitmap.hasDescription);
    EXPECT_TRUE(Read(folder.Path("a.png")).hasDescription);
}

TEST(AlbumPicture, RubbishIsThereButNotShown)
{
    const TempFolder folder;
    folder.Write("a.jpg", "no picture");
    const AlbumPicture picture = Read(folder.Path("a.jpg"));
    EXPECT_TRUE(picture.found);
    EXPECT_TRUE(picture.shown.isNull());
    EXPECT_FALSE(picture.failure.isEmpty());
}

} // namespace quillane
