// FlashPix pictures and the compound files they live in.
#include "codec_support_for_tests.h"
#include "core/native_path.h"
#include "fpx_maker.h"
#include "imaging/codecs/codecs.h"
#include "imaging/codecs/fpx_compound.h"
#include "imaging/reader.h"
#include "picture_maker.h"
#include <iostream>

namespace quillane {

namespace {

using making::FpxMake;
using making::FpxTileMake;

FpxTileMake FpxColour(int a, int b, int c, int d = 0)
{
    FpxTileMake tile;
    tile.packing = 1;
    tile.detail = {};
    for (const int value : {a, b, c, d}) {
        tile.detail += char(value);
    }
    return tile;
}

/// A tile of 64 by 64 whose every pixel tells where it stands.
FpxTileMake FpxPlaces()
{
    FpxTileMake tile;
    for (int y = 0; y < 64; ++y) {
        for (int x = 0; x < 64; ++x) {
            const QRgb colour = making::PlaceColour(x, y, 64, 64);
            tile.bytes += char(qRed(colour));
            tile.bytes += char(qGreen(colour));
            tile.bytes += char(qBlue(colour));
        }
    }
    return tile;
}

FpxTileMake FpxJpeg(const QByteArray& jpeg, bool converted, int tables)
{
    FpxTileMake tile;
    tile.packing = 2;
    tile.bytes = jpeg;
    tile.detail = QByteArray("\0\x22", 2);
    tile.detail += char(converted);
    tile.detail += char(tables);
    return tile;
}

QByteArray FpxTileJpeg()
{
    making::JpegMake make;
    make.width = 64;
    make.height = 64;
    make.across = make.down = 1;
    make.quality = 98;
    return making::MakeJpeg(make);
}

TEST(Fpx, TilesStandSideBySideAndAreCutAtTheEdges)
{
    FpxMake make;
    make.resolutions.append(
        {QSize(100, 70),
         {FpxPlaces(), FpxColour(255, 0, 0), FpxColour(0, 255, 0), FpxColour(0, 0, 255)}});
    const QByteArray bytes = making::MakeFpx(make);
    const ImageFacts facts = making::ProbeBytes(bytes);
    EXPECT_EQ(facts.width, 100);
    EXPECT_EQ(facts.height, 70);
    EXPECT_EQ(facts.bits, 24);
    EXPECT_EQ(facts.format, 80);
    const Bitmap bitmap = making::DecodeBytes(bytes);
    EXPECT_FALSE(bitmap.IsPartial());
    EXPECT_EQ(bitmap.Pixels().size(), QSize(100, 70));
    EXPECT_EQ(bitmap.Pixels().pixel(0, 0), making::PlaceColour(0, 0, 64, 64));
    EXPECT_EQ(bitmap.Pixels().pixel(63, 40), making::PlaceColour(63, 40, 64, 64));
    EXPECT_EQ(bitmap.Pixels().pixel(64, 0), qRgb(255, 0, 0));
    EXPECT_EQ(bitmap.Pixels().pixel(99, 63), qRgb(255, 0, 0));
    EXPECT_EQ(bitmap.Pixels().pixel(0, 64), qRgb(0, 255, 0));
    EXPECT_EQ(bitmap.Pixels().pixel(99, 69), qRgb(0, 0, 255));
}

TEST(Fpx, TheHighestResolutionIsThePictureAndALowerOneTheReducedOne)
{
    FpxMake make;
    make.resolutions.append({QSize(32, 20), {FpxColour(1, 2, 3)}});
    make.resolutions.append({QSize(64, 40), {FpxColour(4, 5, 6)}});
    const QByteArray bytes = making::MakeFpx(make);
    EXPECT_EQ(making::ProbeBytes(bytes).width, 64);
    EXPECT_EQ(making::ProbeBytes(bytes).format, 81);
    EXPECT_EQ(making::DecodeBytes(bytes).Pixels().pixel(5, 5), qRgb(4, 5, 6));
    DecodeRequest request;
    request.atLeast = QSize(30, 20);
    EXPECT_EQ(making::DecodeBytes(bytes, request).Pixels().pixel(5, 5), qRgb(1, 2, 3));
    request.atLeast = QSize(33, 20);
    EXPECT_EQ(making::DecodeBytes(bytes, request).Width(), 64);
}

TEST(Fpx, JpegTilesTakeTheTablesOfTheirNumber)
{
    const QByteArray jpeg = FpxTileJpeg();
    for (const bool shared : {false, true}) {
        FpxMake make;
        make.tables.insert(7, making::JpegTablesOf(jpeg));
        make.resolutions.append({QSize(64, 64),
                                 {shared ? FpxJpeg(making::JpegWithoutTables(jpeg), true, 7)
                                         : FpxJpeg(jpeg, true, 0)}});
        const QByteArray bytes = making::MakeFpx(make);
        EXPECT_EQ(making::ProbeBytes(bytes).format, shared ? 82 : 83);
        EXPECT_EQ(making::ProbeBytes(bytes).compression, u"JPEG");
        const Bitmap bitmap = making::DecodeBytes(bytes);
        EXPECT_FALSE(bitmap.IsPartial());
        for (const QPoint at : {QPoint(3, 3), QPoint(60, 3), QPoint(3, 60), QPoint(40, 50)}) {
            EXPECT_LE(making::ColourDistance(bitmap.Pixels().pixel(at),
                                             making::PlaceColour(at.x(), at.y(), 64, 64)),
                      8);
        }
    }
}

TEST(Fpx, JpegTilesWithoutConversionKeepTheirChannels)
{
    // Read as stored, the channels are luminance and chroma: a middling grey has 128 in the others.
    FpxMake make;
    make.resolutions.append(
        {QSize(64, 64), {FpxJpeg(making::JpegWithoutTables(FpxTileJpeg()), false, 1)}});
    make.tables.insert(1, making::JpegTablesOf(FpxTileJpeg()));
    const QRgb pixel = making::DecodeBytes(making::MakeFpx(make)).Pixels().pixel(32, 32);
    const QRgb colour = making::PlaceColour(32, 32, 64, 64);
    EXPECT_NEAR(qRed(pixel), qGray(colour), 10);
    EXPECT_NEAR(qGreen(pixel), 128 + 0.564 * (qBlue(colour) - qGray(colour)), 14);
    EXPECT_NEAR(qBlue(pixel), 128 + 0.713 * (qRed(colour) - qGray(colour)), 14);
}

TEST(Fpx, ColoursOfPhotoYccBecomeRgb)
{
    FpxMake make;
    make.channels = {0x20000, 0x20001, 0x20002};
    make.resolutions.append({QSize(64, 128), {FpxColour(182, 156, 137), FpxColour(100, 156, 172)}});
    const QImage image = making::DecodeBytes(making::MakeFpx(make)).Pixels();
    EXPECT_LE(making::ColourDistance(image.pixel(0, 0), qRgb(247, 247, 247)), 1);
    // 1.3584 * 100 = 135.8, and 1.8215 * 35 = 63.8 more red, 0.509 times that less green
    EXPECT_LE(making::ColourDistance(image.pixel(0, 100), qRgb(200, 103, 136)), 1);
}

TEST(Fpx, OneChannelIsGreyAndOpacityIsKept)
{
    FpxMake grey;
    grey.channels = {0x80010000};
    grey.resolutions.append({QSize(10, 10), {FpxColour(77, 0, 0)}});
    const QByteArray bytes = making::MakeFpx(grey);
    EXPECT_EQ(making::ProbeBytes(bytes).bits, 8);
    EXPECT_EQ(making::DecodeBytes(bytes).Model(), ColourModel::Grey);
    EXPECT_EQ(qGray(making::DecodeBytes(bytes).Pixels().pixel(5, 5)), 77);
    for (const bool premultiplied : {false, true}) {
        FpxMake alpha;
        const quint32 mark = premultiplied ? 0x8000 : 0;
        alpha.channels = {0x30000 | mark, 0x30001 | mark, 0x30002 | mark, 0x37ffe};
        alpha.resolutions.append({QSize(10, 10), {FpxColour(100, 50, 0, 128)}});
        const QByteArray made = making::MakeFpx(alpha);
        EXPECT_EQ(making::ProbeBytes(made).bits, 32);
        const QRgb pixel = making::DecodeBytes(made).Pixels().pixel(5, 5);
        EXPECT_EQ(qAlpha(pixel), 128);
        EXPECT_NEAR(qRed(pixel), premultiplied ? 199 : 100, 1);
    }
}

TEST(Fpx, AFileThatIsTheImageObjectItselfIsRead)
{
    FpxMake make;
    make.store.clear();
    make.resolutions.append({QSize(10, 10), {FpxColour(9, 8, 7)}});
    EXPECT_EQ(making::DecodeBytes(making::MakeFpx(make)).Pixels().pixel(5, 5), qRgb(9, 8, 7));
}

TEST(Fpx, MissingTilesLeaveAPartialPicture)
{
    FpxMake make;
    FpxTileMake broken = FpxPlaces();
    broken.bytes.truncate(100);
    make.resolutions.append({QSize(128, 64), {FpxColour(9, 8, 7), broken}});
    const Bitmap bitmap = making::DecodeBytes(making::MakeFpx(make));
    EXPECT_TRUE(bitmap.IsPartial());
    EXPECT_EQ(bitmap.Pixels().pixel(5, 5), qRgb(9, 8, 7));
    make.resolutions[0].tiles = {broken, broken};
    const making::Refusal refusal =
        making::RefusalOf([&] { making::DecodeBytes(making::MakeFpx(make)); });
    EXPECT_EQ(refusal.words, u"This FlashPix is damaged: none of its tiles can be read.");
}

TEST(Fpx, AnotherCompoundFileIsRefusedInWords)
{
    const QByteArray other = making::MakeCompound({{"WordDocument", QByteArray(5000, 'x')}});
    const making::Refusal refusal = making::RefusalOf([&] { making::ProbeBytes(other); });
    EXPECT_EQ(refusal.number, kFailureUnreadable);
    EXPECT_EQ(refusal.words, u"This FlashPix is damaged: it holds no picture.");
}

/// A file with everything that is read of one: plain, packed and coloured tiles, shared tables.
QByteArray FpxOfEverything()
{
    FpxMake make;
    const QByteArray jpeg = FpxTileJpeg();
    make.tables.insert(3, making::JpegTablesOf(jpeg));
    make.resolutions.append({QSize(96, 32), {FpxColour(5, 6, 7), FpxPlaces()}});
    make.resolutions.append(
        {QSize(192, 64),
         {FpxPlaces(), FpxJpeg(making::JpegWithoutTables(jpeg), true, 3), FpxColour(1, 2, 3)}});
    return making::MakeFpx(make);
}

/// Reads it wholly; what it does must be a refusal in words or a picture, within bounds.
void ExpectBounded(const QByteArray& bytes)
{
    making::CountingSource source(bytes);
    const making::Refusal refusal = making::RefusalOf([&] {
        const ImageFacts facts = codecs::FpxProbe(source);
        const Bitmap bitmap = codecs::FpxDecode(source, {});
        EXPECT_EQ(bitmap.Width(), facts.width);
        EXPECT_EQ(bitmap.Height(), facts.height);
    });
    EXPECT_TRUE(refusal.number == 0 || refusal.number == kFailureUnreadable
                || refusal.number == kFailureLimit)
        << refusal.number;
    EXPECT_EQ(refusal.number == 0, refusal.words.isEmpty());
    EXPECT_LT(source.bytes, 20 * bytes.size() + (4 << 20));
}

TEST(Fpx, CutShortAtAnyPlaceItIsRefusedOrPartial)
{
    const QByteArray whole = FpxOfEverything();
    ASSERT_FALSE(making::DecodeBytes(whole).IsPartial());
    for (int i = 0; i < 20; ++i) {
        SCOPED_TRACE(i);
        const QByteArray cut = whole.first(whole.size() * i / 20);
        ExpectBounded(cut);
        // The table that chains the sectors is the last thing in it: nothing is found without.
        MemorySource source(cut);
        const making::Refusal refusal = making::RefusalOf([&] { codecs::FpxDecode(source, {}); });
        EXPECT_NE(refusal.number, 0);
    }
    // Cut inside its tiles, the table whole: what is there is shown.
    QByteArray holed = whole;
    const qsizetype places = holed.indexOf(FpxPlaces().bytes.first(600));
    ASSERT_GT(places, 0);
    const qsizetype picture = holed.indexOf("\xff\xd8\xff\xc0", places);
    ASSERT_GT(picture, 0);
    holed.replace(picture, 2, "??");
    EXPECT_TRUE(making::DecodeBytes(holed).IsPartial());
}

TEST(Fpx, DamageAnywhereStaysWithinBounds)
{
    const QByteArray whole = FpxOfEverything();
    quint32 random = 12345;
    const auto next = [&random] { return random = random * 1664525 + 1013904223, random >> 8; };
    for (int i = 0; i < 400; ++i) {
        SCOPED_TRACE(i);
        QByteArray damaged = whole;
        for (int k = 0; k < 1 + i % 5; ++k) {
            const qsizetype at = qsizetype(next() % quint32(damaged.size()));
            damaged[at] = i % 2 ? char(next()) : char(0xff);
        }
        ExpectBounded(damaged);
    }
}

TEST(Fpx, PicturesThatAreTooLargeAreRefusedBeforeAnythingIsMadeForThem)
{
    FpxMake make;
    make.resolutions.append({QSize(70'000, 64), {FpxColour(1, 2, 3)}});
    EXPECT_EQ(making::RefusalOf([&] { making::ProbeBytes(making::MakeFpx(make)); }).number,
              kFailureLimit);
    make.resolutions[0].size = QSize(60'000, 60'000);
    const QByteArray bytes = making::MakeFpx(make);
    EXPECT_EQ(making::ProbeBytes(bytes).width, 60'000);
    EXPECT_EQ(making::RefusalOf([&] { making::DecodeBytes(bytes); }).number, kFailureLimit);
}

TEST(Fpx, TilesThatShareTheirBytesAreReadOnlySoOften)
{
    // Every tile of a large picture claims the same bytes.
    FpxMake make;
    make.resolutions.append({QSize(64 * 300, 64 * 20), {FpxPlaces()}});
    FpxTileMake shared;
    shared.sharesFirst = true;
    for (int i = 1; i < 300 * 20; ++i) {
        make.resolutions[0].tiles.append(shared);
    }
    making::CountingSource source(making::MakeFpx(make));
    const Bitmap bitmap = codecs::FpxDecode(source, {});
    EXPECT_TRUE(bitmap.IsPartial());
    EXPECT_LT(source.bytes, 4 << 20);
}

TEST(CompoundFile, StreamsSmallAndLargeComeBackWhole)
{
    QMap<QString, QByteArray> streams;
    for (const int size : {0, 1, 63, 64, 65, 4095, 4096, 4097, 70'000, 300'000}) {
        QByteArray content;
        for (int i = 0; i < size; ++i) {
            content += char(i * 7 + size);
        }
        streams.insert(QString("a/b/s%1").arg(size), content);
    }
    MemorySource source(making::MakeCompound(streams));
    const codecs::CompoundFile file(source, "test");
    const qint32 inner = file.Find(file.Find(0, u"A"), u"b");
    EXPECT_EQ(qsizetype(file.Inside(inner).size()), streams.size());
    for (auto stream = streams.begin(); stream != streams.end(); ++stream) {
        const qint32 index = file.Find(inner, QString(stream.key()).remove("a/b/"));
        ASSERT_GE(index, 0);
        codecs::CompoundStream opened = file.Open(index);
        EXPECT_EQ(opened.Size(), stream->size());
        EXPECT_EQ(opened.Head(stream->size() + 10), *stream);
        char bytes[100];
        EXPECT_EQ(opened.ReadAt(30, bytes, 100), std::clamp<qint64>(stream->size() - 30, 0, 100));
        EXPECT_EQ(QByteArray(bytes, std::clamp<qint64>(stream->size() - 30, 0, 100)),
                  stream->mid(30, 100));
    }
    EXPECT_EQ(file.Find(inner, u"s2"), -1);
    EXPECT_THROW(file.Open(0), Failure);
}

TEST(CompoundFile, ChainsThatRunInCirclesEnd)
{
    QByteArray bytes = making::MakeCompound({{"big", QByteArray(100'000, 'x')}});
    // The table's last sector is the last of the file; every chain in it leads to sector 3.
    for (qsizetype at = bytes.size() - 1024; at < bytes.size(); at += 4) {
        bytes.replace(at, 4, making::Little(3, 4));
    }
    MemorySource source(bytes);
    ResumeNext([&] {
        const codecs::CompoundFile file(source, "test");
        for (const qint32 index : file.Inside(0)) {
            if (file.At(index).isStream) {
                EXPECT_LE(file.Open(index).Size(), 100'000);
            }
        }
    });
}

TEST(FpxSamples, PicturesHaveTheirSizeAndAreWhole)
{
    const QString folder = QStringLiteral(QUILLANE_SOURCE_FOLDER "/../shared/samples/formats/");
    if (StatPath(folder).type != FileType::Folder) {
        std::cout << "no folder of samples here: nothing to see\n";
        return;
    }
    struct Row {
        const char* name;
        QSize size;
        int bits;
        ColourModel model;
        bool hasLower; ///< resolutions below its own
    };
    const Row rows[] = {
        {"flashpix_jpeg.fpx", QSize(70, 46), 24, ColourModel::Rgb, true},
        {"flashpix_bw.fpx", QSize(70, 46), 8, ColourModel::Grey, true},
        {"kodak_dc210_DCP15606.FPX", QSize(1152, 864), 24, ColourModel::Rgb, false},
    };
    int seen = 0;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const LoadedImage loaded = LoadFile(folder + row.name);
        ++seen;
        EXPECT_EQ(QSize(loaded.facts.width, loaded.facts.height), row.size);
        EXPECT_EQ(loaded.facts.bits, row.bits);
        EXPECT_EQ(loaded.bitmap.Pixels().size(), row.size);
        EXPECT_EQ(loaded.bitmap.Model(), row.model);
        EXPECT_FALSE(loaded.bitmap.IsPartial());
        // The lower resolutions show the same picture.
        DecodeRequest request;
        request.atLeast = row.size / 2 - QSize(1, 1);
        const LoadedImage reduced = LoadFile(folder + row.name, request);
        EXPECT_EQ(reduced.bitmap.Width() < row.size.width(), row.hasLower);
        const auto small = [](const Bitmap& bitmap) {
            return bitmap.ToDisplay().scaled(8, 8, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        };
        for (int i = 0; i < 64; ++i) {
            EXPECT_LE(making::ColourDistance(small(loaded.bitmap).pixel(i % 8, i / 8),
                                             small(reduced.bitmap).pixel(i % 8, i / 8)),
                      40);
        }
    }
    std::cout << seen << " samples seen\n";
    EXPECT_GT(seen, 0);
}

} // namespace

} // namespace quillane
