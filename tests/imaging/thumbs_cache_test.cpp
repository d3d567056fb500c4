#include "imaging/thumbs/freedesktop_cache.h"
#include "imaging/thumbs/thumbnail_png.h"
#include "thumbs_support.h"
#include <QImageReader>
#include <fcntl.h>
#include <gtest/gtest.h>

namespace quillane {

namespace {

struct Address {
    const char* path; ///< bytes
    const char* address;
    const char* key;
};

// As GLib's g_filename_to_uri makes them.
constexpr Address kAddresses[] = {
    {"/home/anna/Pictures/plain.jpg", "file:///home/anna/Pictures/plain.jpg",
     "17462a23212c967ae757ef2a36d2dd15"},
    {"/home/anna/a b.jpg", "file:///home/anna/a%20b.jpg", "5c562cab2a58f8b78b728928620b5441"},
    {"/home/anna/100%.jpg", "file:///home/anna/100%25.jpg", "736371e8646bb1c385cfa7c13b99aa29"},
    {"/home/anna/\xce\x95\xce\xb9\xce\xba\xcf\x8c\xce\xbd\xce\xb1.jpg",
     "file:///home/anna/%CE%95%CE%B9%CE%BA%CF%8C%CE%BD%CE%B1.jpg",
     "cd6013765e9bb506c37b33b41bd66e31"},
    {"/home/anna/it's \"x\".jpg", "file:///home/anna/it's%20%22x%22.jpg",
     "27ebddc794174b2ff871b526222eeab1"},
    {"/home/anna/a#b?c;d.jpg", "file:///home/anna/a%23b%3Fc%3Bd.jpg",
     "6a1ef65db30a77657172b5a5a0dafefd"},
    {"/p/[a]{b}|c^d`e<f>\\g.jpg", "file:///p/%5Ba%5D%7Bb%7D%7Cc%5Ed%60e%3Cf%3E%5Cg.jpg",
     "fb2b0e150af269456525c666963261de"},
    {"/p/-._~!$&'()*+,:=@.jpg", "file:///p/-._~!$&'()*+,:=@.jpg",
     "40ac698dd869d3329c0f08e009c1c891"},
    {"/p/\xff\xfe\x80.jpg", "file:///p/%FF%FE%80.jpg", "82b9470edf8fdf782774384cd99c7d0f"},
    {"/p/line\nbreak.jpg", "file:///p/line%0Abreak.jpg", "389161c292166220079517e3b05699cf"},
};

QImage PlainThumbnail(QSize size, QRgb colour = qRgb(10, 200, 30))
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(colour);
    return image;
}

/// A picture file and a cache, with the texts a thumbnail of it has to have.
class ThumbnailCache : public testing::Test {
protected:
    ThumbnailCache()
    {
        mFolder.Write("a.jpg", "content");
        making::MakeOld(mFolder, "a.jpg");
        mFolder.MakeFolder("cache");
        mFolder.MakeFolder("cache/normal");
        mFolder.MakeFolder("cache/large");
    }
    QString Cache() const { return mFolder.Path("cache"); }
    QString File() const { return mFolder.Path("a.jpg"); }
    FileStat Stat() const { return StatPath(File()); }
    QImage Read(int side) const
    {
        return ReadCachedThumbnail(Cache(), File(), Stat(), QSize(side, side));
    }
    /// Puts a thumbnail with these texts into the cache, as another program would.
    void Put(const std::vector<ThumbnailText>& texts, QSize size = {128, 96},
             int cacheSide = 128) const
    {
        const QString path =
            CachedThumbnailPath(Cache(), CacheSizeFor({cacheSide, cacheSide}), File());
        WriteWholeFile(path, EncodeThumbnailPng(PlainThumbnail(size), texts));
    }
    static quint32 Mode(const QString& path) { return StatPath(path).mode; }

    TempFolder mFolder;
    const ThumbnailText kFresh{"Thumb::MTime", "1000000000"};
};

} // namespace

TEST(ThumbnailAddress, IsEscapedAsOtherProgramsDo)
{
    for (const Address& row : kAddresses) {
        const QString path = PathFromBytes(row.path);
        EXPECT_EQ(ThumbnailAddress(path), QByteArray(row.address));
        EXPECT_EQ(CachedThumbnailPath("/c", CacheSizeFor({128, 128}), path),
                  QStringLiteral("/c/normal/%1.png").arg(QLatin1String(row.key)));
    }
}

TEST(CacheSizeFor, IsTheSmallestThatCoversTheBox)
{
    EXPECT_STREQ(CacheSizeFor({1, 1}).folder, "normal");
    EXPECT_STREQ(CacheSizeFor({128, 128}).folder, "normal");
    EXPECT_STREQ(CacheSizeFor({100, 129}).folder, "large");
    EXPECT_STREQ(CacheSizeFor({257, 10}).folder, "x-large");
    EXPECT_STREQ(CacheSizeFor({513, 513}).folder, "xx-large");
    EXPECT_STREQ(CacheSizeFor({5000, 5000}).folder, "xx-large");
    EXPECT_EQ(CacheSizeFor({5000, 5000}).side, 1024);
}

TEST_F(ThumbnailCache, ServesAThumbnailMadeOfTheFileAsItIs)
{
    EXPECT_TRUE(Read(128).isNull());
    Put({kFresh});
    const QImage image = Read(128);
    ASSERT_EQ(image.size(), QSize(128, 96));
    EXPECT_EQ(image.pixel(64, 48), qRgb(10, 200, 30));
}

TEST_F(ThumbnailCache, RefusesWhatWasMadeOfAnotherStateOfTheFile)
{
    Put({{"Thumb::MTime", "1000000001"}});
    EXPECT_TRUE(Read(128).isNull());
    Put({{"Thumb::MTime", ""}});
    EXPECT_TRUE(Read(128).isNull());
    Put({});
    EXPECT_TRUE(Read(128).isNull());
    Put({kFresh, {"Thumb::Size", "6"}});
    EXPECT_TRUE(Read(128).isNull());
    Put({kFresh, {"Thumb::URI", "file:///another.jpg"}});
    EXPECT_TRUE(Read(128).isNull());

    Put({kFresh, {"Thumb::Size", "7"}, {"Thumb::URI", ThumbnailAddress(File())}});
    EXPECT_FALSE(Read(128).isNull());
    making::MakeOld(mFolder, "a.jpg", 1'000'000'002);
    EXPECT_TRUE(Read(128).isNull());
}

TEST_F(ThumbnailCache, AFileOfTheYear1970NeedsItsTimeToo)
{
    making::MakeOld(mFolder, "a.jpg", 0);
    Put({});
    EXPECT_TRUE(Read(128).isNull());
    Put({{"Thumb::MTime", "0"}});
    EXPECT_FALSE(Read(128).isNull());
}

TEST_F(ThumbnailCache, TakesATimeWithAFraction)
{
    Put({{"Thumb::MTime", "1000000000.25"}});
    EXPECT_FALSE(Read(128).isNull());
}

TEST_F(ThumbnailCache, ALargerSizeServesASmallerBoxAndNotTheOtherWay)
{
    Put({kFresh}, {128, 96});
    EXPECT_TRUE(Read(200).isNull());
    Put({kFresh}, {256, 192}, 256);
    EXPECT_EQ(Read(200).size(), QSize(256, 192));
    RemoveFile(CachedThumbnailPath(Cache(), CacheSizeFor({1, 1}), File()));
    EXPECT_EQ(Read(100).size(), QSize(256, 192));
}

TEST_F(ThumbnailCache, ASmallPictureIsWholeInEverySize)
{
    Put({kFresh}, {40, 30}, 256);
    EXPECT_EQ(Read(256).size(), QSize(40, 30));
}

TEST_F(ThumbnailCache, RefusesWhatIsLargerThanItsFolderAllows)
{
    Put({kFresh}, {129, 96});
    EXPECT_TRUE(Read(128).isNull());
}

TEST_F(ThumbnailCache, PassesOverDamagedThumbnails)
{
    const QByteArray whole = EncodeThumbnailPng(PlainThumbnail({128, 96}), {kFresh});
    const QString path = CachedThumbnailPath(Cache(), CacheSizeFor({128, 128}), File());
    for (qsizetype length = 0; length < whole.size() - 16; length += 3) {
        WriteWholeFile(path, whole.first(length));
        EXPECT_TRUE(Read(128).isNull()) << length;
    }
    WriteWholeFile(path, whole);
    EXPECT_FALSE(Read(128).isNull());
}

TEST_F(ThumbnailCache, KeepsAThumbnailWithItsTextsForItsOwnerAlone)
{
    const QString cache = mFolder.Path("new/cache");
    const FileStat stat = Stat();
    const qint64 bytes = WriteCachedThumbnail(cache, File(), stat, CacheSizeFor({128, 128}),
                                              PlainThumbnail({128, 96}), {4000, 3000});
    const QString path = CachedThumbnailPath(cache, CacheSizeFor({128, 128}), File());
    EXPECT_EQ(StatPath(path).size, bytes);
    EXPECT_GT(bytes, 0);
    EXPECT_EQ(Mode(path), 0600u);
    EXPECT_EQ(Mode(cache), 0700u);
    EXPECT_EQ(Mode(cache + "/normal"), 0700u);

    const QByteArray png = ReadWholeFile(path, 1 << 20);
    EXPECT_EQ(ThumbnailPngText(png, "Thumb::URI"), ThumbnailAddress(File()));
    EXPECT_EQ(ThumbnailPngText(png, "Thumb::MTime"), "1000000000");
    EXPECT_EQ(ThumbnailPngText(png, "Thumb::Size"), "7");
    EXPECT_EQ(ThumbnailPngText(png, "Thumb::Image::Width"), "4000");
    EXPECT_EQ(ThumbnailPngText(png, "Thumb::Image::Height"), "3000");
    EXPECT_EQ(ThumbnailPngText(png, "Software"), "Quillane");
    EXPECT_EQ(ThumbnailPngText(png, "Thumb"), "");

    // Another reader finds the same, so lengths and check sums are right.
    const QImage other = QImageReader(path).read();
    EXPECT_EQ(other.text("Thumb::MTime"), "1000000000");
    EXPECT_EQ(other.text("Thumb::URI").toLatin1(), ThumbnailAddress(File()));
    EXPECT_EQ(other.size(), QSize(128, 96));
    EXPECT_EQ(other.pixel(3, 4), qRgb(10, 200, 30));

    EXPECT_FALSE(ReadCachedThumbnail(cache, File(), stat, {100, 100}).isNull());
}

TEST_F(ThumbnailCache, KeepsTransparency)
{
    QImage half(64, 64, QImage::Format_ARGB32_Premultiplied);
    half.fill(qPremultiply(qRgba(200, 100, 0, 128)));
    WriteCachedThumbnail(Cache(), File(), Stat(), CacheSizeFor({128, 128}), half, {64, 64});
    const QImage image = Read(128);
    ASSERT_FALSE(image.isNull());
    EXPECT_EQ(image.format(), QImage::Format_ARGB32_Premultiplied);
    EXPECT_EQ(qAlpha(image.pixel(5, 5)), 128);
    EXPECT_LE(making::ColourDistance(image.pixel(5, 5), half.pixel(5, 5)), 2);
}

TEST_F(ThumbnailCache, ReplacesAnOlderThumbnailAndLeavesNothingElse)
{
    Put({{"Thumb::MTime", "5"}});
    WriteCachedThumbnail(Cache(), File(), Stat(), CacheSizeFor({128, 128}),
                         PlainThumbnail({100, 50}), {400, 200});
    EXPECT_EQ(Read(100).size(), QSize(100, 50));
    int entries = 0;
    ListFolder(Cache() + "/normal", [&](DirEntry&&) { return ++entries > 0; });
    EXPECT_EQ(entries, 1);
}

TEST_F(ThumbnailCache, HoldsNothingOfItsOwnFilesOrOfPathsThatAreNotFull)
{
    mFolder.Write("cache/normal/x.png", "content");
    const QString own = mFolder.Path("cache/normal/x.png");
    const CacheSize& size = CacheSizeFor({128, 128});
    EXPECT_EQ(
        WriteCachedThumbnail(Cache(), own, StatPath(own), size, PlainThumbnail({9, 9}), {9, 9}), 0);
    EXPECT_EQ(WriteCachedThumbnail(Cache(), "a.jpg", Stat(), size, PlainThumbnail({9, 9}), {9, 9}),
              0);
    EXPECT_EQ(WriteCachedThumbnail({}, File(), Stat(), size, PlainThumbnail({9, 9}), {9, 9}), 0);
    EXPECT_EQ(WriteCachedThumbnail(Cache(), File(), Stat(), size, {}, {9, 9}), 0);
    // A neighbour whose name only begins like the cache's is an ordinary file.
    mFolder.Write("cache2.jpg", "content");
    const QString neighbour = mFolder.Path("cache2.jpg");
    EXPECT_GT(WriteCachedThumbnail(Cache(), neighbour, StatPath(neighbour), size,
                                   PlainThumbnail({9, 9}), {9, 9}),
              0);
}

TEST_F(ThumbnailCache, SaysNothingWhenItCannotBeWritten)
{
    mFolder.Write("file", "no folder");
    EXPECT_EQ(WriteCachedThumbnail(mFolder.Path("file"), File(), Stat(), CacheSizeFor({128, 128}),
                                   PlainThumbnail({9, 9}), {9, 9}),
              0);
}

TEST_F(ThumbnailCache, CountsWhatItHolds)
{
    EXPECT_EQ(CachedThumbnailBytes(Cache(), 1 << 20), 0);
    mFolder.Write("cache/normal/x.png", QByteArray(100, 'x'));
    mFolder.Write("cache/large/y.png", QByteArray(1000, 'x'));
    EXPECT_EQ(CachedThumbnailBytes(Cache(), 1 << 20), 1100);
    EXPECT_GE(CachedThumbnailBytes(Cache(), 50), 50);
    EXPECT_EQ(CachedThumbnailBytes(mFolder.Path("nowhere"), 1 << 20), 0);
}

} // namespace quillane
