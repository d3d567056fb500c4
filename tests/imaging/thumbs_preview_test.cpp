#include "codec_support_for_tests.h"
#include "imaging/thumbs/exif_preview.h"
#include "imaging/thumbs/thumbnailer.h"
#include "thumbs_support.h"
#include <gtest/gtest.h>

namespace quillane {

namespace {

const QRgb kBlue = qRgb(0, 0, 255); // of all previews made here

bool IsBlue(const QImage& image)
{
    return !image.isNull()
        && making::ColourDistance(image.pixel(image.width() / 2, image.height() / 2), kBlue) < 40;
}

Thumbnail ThumbnailOf(const QByteArray& jpeg, int side)
{
    const TempFolder folder;
    folder.Write("a.jpg", jpeg);
    return MakeThumbnail(folder.Path("a.jpg"), {side, side}, {});
}

} // namespace

TEST(EmbeddedPreview, IsFoundInEitherByteOrder)
{
    const QByteArray small = making::MakePlainJpeg({160, 120}, kBlue);
    for (const bool bigEndian : {false, true}) {
        making::JpegMake make;
        make.exif = making::MakePreviewExif(small, 1, bigEndian);
        MemorySource source(making::MakeJpeg(make));
        EXPECT_EQ(ReadEmbeddedPreview(source), small);
    }
}

TEST(EmbeddedPreview, IsEmptyWhereThereIsNone)
{
    for (const QByteArray& bytes :
         {making::MakeJpeg({}), making::MakePng({}), QByteArray(), QByteArray("\xff\xd8\xff"),
          QByteArray("\xff\xd8\xff\xe1\0\2", 6)}) {
        MemorySource source(bytes);
        EXPECT_TRUE(ReadEmbeddedPreview(source).isEmpty());
    }
    making::JpegMake make;
    make.exif = making::MakeExif(6);
    MemorySource source(making::MakeJpeg(make));
    EXPECT_TRUE(ReadEmbeddedPreview(source).isEmpty());
}

TEST(EmbeddedPreview, ReadsTheHeadOfTheFileAlone)
{
    const QByteArray jpeg = making::MakeJpegWithPreview({800, 600}, {160, 120});
    making::CountingSource source(jpeg);
    EXPECT_FALSE(ReadEmbeddedPreview(source).isEmpty());
    EXPECT_LT(source.bytes, 8000);
    EXPECT_LT(source.reads, 6);
}

TEST(EmbeddedPreview, DamageNeverReachesBeyondTheBlock)
{
    const QByteArray small = making::MakePlainJpeg({16, 12}, kBlue);
    making::JpegMake make;
    make.exif = making::MakePreviewExif(small);
    const QByteArray whole = making::MakeJpeg(make);
    for (qsizetype length = 0; length < whole.size(); ++length) {
        MemorySource source(whole.first(length));
        const QByteArray found = ReadEmbeddedPreview(source);
        EXPECT_TRUE(found.isEmpty() || found == small) << length;
    }
    // Every byte of the two directories as large and as small as it can be.
    const qsizetype block = whole.indexOf("Exif") + 6;
    for (qsizetype at = block; at < block + 68; ++at) {
        for (const char value : {'\0', '\x7f', '\xff'}) {
            QByteArray damaged = whole;
            damaged[at] = value;
            MemorySource source(damaged);
            EXPECT_LE(ReadEmbeddedPreview(source).size(), make.exif.size()) << at;
        }
    }
}

TEST(Preview, ServesWhenItIsLargeEnough)
{
    const Thumbnail thumbnail =
        ThumbnailOf(making::MakeJpegWithPreview({800, 600}, {160, 120}), 128);
    EXPECT_EQ(thumbnail.from, ThumbnailFrom::Preview);
    EXPECT_EQ(thumbnail.image.size(), QSize(128, 96));
    EXPECT_EQ(thumbnail.picture, QSize(800, 600));
    EXPECT_TRUE(IsBlue(thumbnail.image));
}

TEST(Preview, ThatIsTooSmallDoesNotServe)
{
    const QByteArray jpeg = making::MakeJpegWithPreview({800, 600}, {160, 120});
    EXPECT_EQ(ThumbnailOf(jpeg, 171).from, ThumbnailFrom::Preview); // 7 % larger
    const Thumbnail thumbnail = ThumbnailOf(jpeg, 172);
    EXPECT_EQ(thumbnail.from, ThumbnailFrom::Picture);
    EXPECT_FALSE(IsBlue(thumbnail.image));
    EXPECT_EQ(thumbnail.image.size(), QSize(172, 129));
}

TEST(Preview, OfAnotherShapeDoesNotServe)
{
    // A wide picture with black bars in its preview, and one cropped by a program that forgot it.
    EXPECT_EQ(ThumbnailOf(making::MakeJpegWithPreview({900, 600}, {160, 120}), 100).from,
              ThumbnailFrom::Picture);
    EXPECT_EQ(ThumbnailOf(making::MakeJpegWithPreview({600, 800}, {160, 120}), 100).from,
              ThumbnailFrom::Picture);
    // Rounded sides are the same shape.
    EXPECT_EQ(ThumbnailOf(making::MakeJpegWithPreview({900, 600}, {160, 107}), 100).from,
              ThumbnailFrom::Preview);
    EXPECT_EQ(ThumbnailOf(making::MakeJpegWithPreview({900, 600}, {160, 106}), 100).from,
              ThumbnailFrom::Preview);
    EXPECT_EQ(ThumbnailOf(making::MakeJpegWithPreview({900, 600}, {160, 110}), 100).from,
              ThumbnailFrom::Picture);
}

TEST(Preview, IsTurnedAsThePictureIs)
{
    for (int orientation = 1; orientation <= 8; ++orientation) {
        const Thumbnail thumbnail =
            ThumbnailOf(making::MakeJpegWithPreview({800, 600}, {160, 120}, orientation), 128);
        EXPECT_EQ(thumbnail.from, ThumbnailFrom::Preview);
        EXPECT_EQ(thumbnail.image.size(), orientation < 5 ? QSize(128, 96) : QSize(96, 128));
        EXPECT_EQ(thumbnail.picture, orientation < 5 ? QSize(800, 600) : QSize(600, 800));
    }
    // Which way: the preview's red grows to the right, its green downwards.
    making::JpegMake small;
    small.width = 160;
    small.height = 120;
    making::JpegMake make;
    make.width = 800;
    make.height = 600;
    make.exif = making::MakePreviewExif(making::MakeJpeg(small), 6);
    const QImage image = ThumbnailOf(making::MakeJpeg(make), 128).image;
    ASSERT_EQ(image.size(), QSize(96, 128));
    EXPECT_GT(qRed(image.pixel(48, 120)), 200); // right became bottom
    EXPECT_GT(qGreen(image.pixel(4, 64)), 200); // bottom became left
    EXPECT_LT(qGreen(image.pixel(92, 64)), 60);
}

TEST(Preview, ThatIsDamagedGivesWayToThePicture)
{
    QByteArray small = making::MakePlainJpeg({160, 120}, kBlue);
    making::JpegMake make;
    make.width = 800;
    make.height = 600;
    for (const qsizetype kept : {qsizetype(4), qsizetype(40), small.size() / 2}) {
        make.exif = making::MakePreviewExif(small.first(kept));
        const Thumbnail thumbnail = ThumbnailOf(making::MakeJpeg(make), 128);
        EXPECT_EQ(thumbnail.from, ThumbnailFrom::Picture) << kept;
        EXPECT_FALSE(thumbnail.image.isNull());
    }
}

TEST(Preview, IsNotUsedWhenItMayNot)
{
    const TempFolder folder;
    folder.Write("a.jpg", making::MakeJpegWithPreview({800, 600}, {160, 120}));
    ThumbnailOptions options;
    options.usePreviews = false;
    EXPECT_EQ(MakeThumbnail(folder.Path("a.jpg"), {128, 128}, options).from,
              ThumbnailFrom::Picture);
}

} // namespace quillane
