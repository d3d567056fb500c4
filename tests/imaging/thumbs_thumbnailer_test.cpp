#include "imaging/reader.h"
#include "imaging/thumbs/area_shrink.h"
#include "imaging/thumbs/freedesktop_cache.h"
#include "imaging/thumbs/thumbnailer.h"
#include "thumbs_support.h"
#include <QDateTime>
#include <gtest/gtest.h>

namespace quillane {

namespace {

QByteArray PlainPicture(int width, int height, bool progressive = false)
{
    making::JpegMake make;
    make.width = width;
    make.height = height;
    make.progressive = progressive;
    return making::MakeJpeg(make);
}

struct Fitting {
    QSize picture, box, fitted;
};

constexpr Fitting kFittings[] = {
    {{200, 100}, {100, 100}, {100, 50}},  {{100, 200}, {100, 100}, {50, 100}},
    {{300, 300}, {100, 100}, {100, 100}}, {{40, 30}, {100, 100}, {40, 30}},
    {{100, 100}, {100, 100}, {100, 100}}, {{400, 300}, {100, 60}, {80, 60}},
    {{1000, 10}, {100, 100}, {100, 1}},   {{2000, 10}, {100, 100}, {100, 1}},
};

} // namespace

TEST(MakeThumbnail, FitsTheBoxAndKeepsTheShape)
{
    const TempFolder folder;
    for (const Fitting& row : kFittings) {
        folder.Write("a.jpg", PlainPicture(row.picture.width(), row.picture.height()));
        const Thumbnail thumbnail = MakeThumbnail(folder.Path("a.jpg"), row.box, {});
        EXPECT_EQ(thumbnail.image.size(), row.fitted);
        EXPECT_EQ(thumbnail.picture, row.picture);
        EXPECT_EQ(thumbnail.from, ThumbnailFrom::Picture);
        EXPECT_TRUE(thumbnail.failure.isEmpty());
    }
}

TEST(MakeThumbnail, ShowsThePicture)
{
    const TempFolder folder;
    folder.Write("a.jpg", PlainPicture(1600, 1200));
    folder.Write("a.png", making::MakePng({}));
    const QImage image = MakeThumbnail(folder.Path("a.jpg"), {100, 100}, {}).image;
    ASSERT_EQ(image.size(), QSize(100, 75));
    for (const QPoint at : {QPoint(10, 10), QPoint(90, 10), QPoint(50, 37), QPoint(10, 70)}) {
        EXPECT_LE(
            making::ColourDistance(image.pixel(at), making::PlaceColour(at.x(), at.y(), 100, 75)),
            8);
    }
    EXPECT_EQ(MakeThumbnail(folder.Path("a.png"), {100, 100}, {}).image.size(), QSize(32, 24));
}

TEST(MakeThumbnail, StandsUpright)
{
    const TempFolder folder;
    for (int orientation = 1; orientation <= 8; ++orientation) {
        making::JpegMake make;
        make.width = 320;
        make.height = 240;
        make.exif = making::MakeExif(orientation);
        folder.Write("a.jpg", making::MakeJpeg(make));
        const Thumbnail thumbnail = MakeThumbnail(folder.Path("a.jpg"), {80, 80}, {});
        const Bitmap upright = LoadFile(folder.Path("a.jpg")).bitmap;
        ASSERT_EQ(thumbnail.image.size(), orientation < 5 ? QSize(80, 60) : QSize(60, 80));
        EXPECT_EQ(thumbnail.picture, upright.Pixels().size());
        for (const QPoint at : {QPoint(5, 5), QPoint(50, 10), QPoint(10, 50)}) {
            EXPECT_LE(making::ColourDistance(thumbnail.image.pixel(at),
                                             upright.ToDisplay().pixel(at * 4 + QPoint(2, 2))),
                      8)
                << orientation;
        }
    }
}

TEST(MakeThumbnail, EveryKindOfPictureIsShownAsTheScreenShowsIt)
{
    const TempFolder folder;
    const QMap<QString, QByteArray> pictures = making::MadePictures();
    ASSERT_GT(pictures.size(), 10);
    for (auto picture = pictures.cbegin(); picture != pictures.cend(); ++picture) {
        // Some formats have no mark of their own and are known by their names.
        const QByteArray name = "a" + picture.key().mid(picture.key().lastIndexOf(u'.')).toUtf8();
        folder.Write(name, picture.value());
        const Thumbnail thumbnail = MakeThumbnail(folder.Path(name), {1000, 1000}, {});
        const QImage shown = LoadFile(folder.Path(name)).bitmap.ToDisplay();
        EXPECT_EQ(thumbnail.image.size(), shown.size()) << qPrintable(picture.key());
        EXPECT_TRUE(thumbnail.image.format() == QImage::Format_RGB32
                    || thumbnail.image.format() == QImage::Format_ARGB32_Premultiplied);
        const QPoint middle(shown.width() / 2, shown.height() / 2);
        EXPECT_LE(making::ColourDistance(thumbnail.image.pixel(middle), shown.pixel(middle)), 2)
            << qPrintable(picture.key());
        const QSize smaller = MakeThumbnail(folder.Path(name), {8, 8}, {}).image.size();
        EXPECT_LE(std::max(smaller.width(), smaller.height()), 8) << qPrintable(picture.key());
    }
}

TEST(MakeThumbnail, ColoursAreBroughtToTheScreens)
{
    const TempFolder folder;
    making::JpegMake make;
    make.width = 160;
    make.height = 120;
    make.icc = making::MakeWideProfile();
    folder.Write("a.jpg", making::MakeJpeg(make));
    const QImage image = MakeThumbnail(folder.Path("a.jpg"), {80, 80}, {}).image;
    const QImage shown = LoadFile(folder.Path("a.jpg")).bitmap.ToDisplay();
    make.icc = {};
    folder.Write("b.jpg", making::MakeJpeg(make));
    const QImage plain = MakeThumbnail(folder.Path("b.jpg"), {80, 80}, {}).image;
    int changed = 0;
    for (int y = 2; y < 58; ++y) {
        for (int x = 2; x < 78; ++x) {
            EXPECT_LE(making::ColourDistance(image.pixel(x, y), shown.pixel(2 * x, 2 * y)), 12);
            changed =
                std::max(changed, making::ColourDistance(image.pixel(x, y), plain.pixel(x, y)));
        }
    }
    EXPECT_GT(changed, 30);
}

TEST(MakeThumbnail, WhatCannotBeShownSaysWhy)
{
    const TempFolder folder;
    folder.Write("text.jpg", "this is no picture at all");
    folder.Write("empty.jpg", "");
    folder.Write("short.jpg", PlainPicture(320, 240).first(200));
    folder.MakeFolder("folder.jpg");
    ASSERT_EQ(mkfifo(folder.Bytes("fifo.jpg").constData(), 0600), 0);
    const qint64 opens = PathCallCount().opens;
    for (const char* unopened : {"fifo.jpg", "folder.jpg", "missing.jpg"}) {
        const Thumbnail thumbnail = MakeThumbnail(folder.Path(unopened), {100, 100}, {});
        EXPECT_TRUE(thumbnail.image.isNull());
        EXPECT_TRUE(thumbnail.failure.endsWith('.')) << qPrintable(thumbnail.failure);
        EXPECT_EQ(thumbnail.from, ThumbnailFrom::Nowhere);
    }
    EXPECT_EQ(PathCallCount().opens, opens);
    for (const char* broken : {"text.jpg", "empty.jpg", "short.jpg"}) {
        const Thumbnail thumbnail = MakeThumbnail(folder.Path(broken), {100, 100}, {});
        EXPECT_TRUE(thumbnail.image.isNull()) << broken;
        EXPECT_TRUE(thumbnail.failure.endsWith('.')) << qPrintable(thumbnail.failure);
    }
}

TEST(MakeThumbnail, EndsWhenItIsNotWantedAnyMore)
{
    const TempFolder folder;
    folder.Write("a.jpg", PlainPicture(320, 240));
    const std::atomic<bool> cancelled = true;
    ThumbnailOptions options;
    options.cancelled = &cancelled;
    const Thumbnail thumbnail = MakeThumbnail(folder.Path("a.jpg"), {100, 100}, options);
    EXPECT_TRUE(thumbnail.image.isNull());
    EXPECT_FALSE(thumbnail.failure.isEmpty());
}

TEST(MakeThumbnail, ACachedOneSparesTheFile)
{
    const TempFolder folder;
    folder.Write("a.jpg", PlainPicture(640, 480));
    making::MakeOld(folder, "a.jpg");
    const QString path = folder.Path("a.jpg");
    ThumbnailOptions options;
    options.cacheFolder = folder.Path("cache");
    const Thumbnail made = MakeThumbnail(path, {128, 128}, options);
    EXPECT_EQ(made.from, ThumbnailFrom::Picture);
    EXPECT_EQ(made.stat.modifiedSeconds, 1'000'000'000);
    WriteCachedThumbnail(options.cacheFolder, path, made.stat, CacheSizeFor({128, 128}), made.image,
                         made.picture);

    const qint64 opens = PathCallCount().opens;
    const Thumbnail again = MakeThumbnail(path, {128, 128}, options);
    EXPECT_EQ(again.from, ThumbnailFrom::Cache);
    EXPECT_EQ(again.image, made.image);
    EXPECT_EQ(PathCallCount().opens - opens, 1);
    EXPECT_EQ(MakeThumbnail(path, {64, 64}, options).image.size(), QSize(64, 48));
    EXPECT_EQ(MakeThumbnail(path, {129, 129}, options).from, ThumbnailFrom::Picture);
}

TEST(MakeThumbnail, WhatTookLongIsHandedOutForTheCache)
{
    const TempFolder folder;
    folder.Write("a.jpg", PlainPicture(4000, 3000, true)); // tens of milliseconds anywhere
    const QString path = folder.Path("a.jpg");
    ThumbnailOptions options;
    EXPECT_TRUE(MakeThumbnail(path, {100, 100}, options).forCache.isNull());
    options.cacheFolder = folder.Path("cache");
    making::MakeOld(folder, "a.jpg");
    const Thumbnail old = MakeThumbnail(path, {100, 100}, options);
    EXPECT_EQ(old.image.size(), QSize(100, 75));
    EXPECT_EQ(old.forCache.size(), QSize(128, 96));
    EXPECT_EQ(MakeThumbnail(path, {200, 200}, options).forCache.size(), QSize(256, 192));
    // Changed so lately that its time could stay the same with the next change.
    making::MakeOld(folder, "a.jpg", QDateTime::currentSecsSinceEpoch() + 100);
    EXPECT_TRUE(MakeThumbnail(path, {100, 100}, options).forCache.isNull());
}

TEST(ShrinkByArea, TakesTheMeanOfWhatFallsTogether)
{
    QImage image(4, 2, QImage::Format_RGB32);
    const int reds[2][4] = {{0, 100, 10, 20}, {200, 100, 30, 40}};
    for (int y = 0; y < 2; ++y) {
        for (int x = 0; x < 4; ++x) {
            image.setPixel(x, y, qRgb(reds[y][x], 255, 0));
        }
    }
    const QImage shrunk = ShrinkByArea(image, {2, 1});
    EXPECT_EQ(shrunk.pixel(0, 0), qRgb(100, 255, 0));
    EXPECT_EQ(shrunk.pixel(1, 0), qRgb(25, 255, 0));
    EXPECT_EQ(ShrinkByArea(image, {1, 1}).pixel(0, 0), qRgb(63, 255, 0)); // 62.5
    // A pixel that lies in two of the new ones is shared between them.
    EXPECT_EQ(qRed(ShrinkByArea(image, {3, 2}).pixel(0, 0)), 25);
}

TEST(ShrinkByArea, AConstantStaysAConstantAtAnySize)
{
    QImage image(97, 61, QImage::Format_ARGB32_Premultiplied);
    image.fill(qRgba(10, 20, 128, 200));
    for (const QSize size :
         {QSize(96, 60), QSize(31, 7), QSize(1, 1), QSize(97, 1), QSize(120, 80)}) {
        const QImage shrunk = ShrinkByArea(image, size);
        ASSERT_EQ(shrunk.size(), size);
        ASSERT_EQ(shrunk.format(), image.format());
        for (int y = 0; y < size.height(); ++y) {
            for (int x = 0; x < size.width(); ++x) {
                ASSERT_EQ(reinterpret_cast<const QRgb*>(shrunk.constScanLine(y))[x],
                          qRgba(10, 20, 128, 200));
            }
        }
    }
}

TEST(ShrinkByArea, ThinPicturesStayWhole)
{
    QImage image(60'000, 1, QImage::Format_RGB32);
    image.fill(qRgb(1, 2, 3));
    EXPECT_EQ(ShrinkByArea(image, {100, 1}).pixel(99, 0), qRgb(1, 2, 3));
    EXPECT_EQ(ShrinkByArea(image, {1, 1}).pixel(0, 0), qRgb(1, 2, 3));
}

} // namespace quillane
