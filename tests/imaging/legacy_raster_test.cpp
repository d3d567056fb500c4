// PCX, Sun rasters, TARGA and Silicon Graphics images, over files made byte by byte.
#include "legacy_support.h"

namespace quillane {

namespace {

using making::IndexMake;
using making::LegacyCodec;
using making::LegacyFacts;
using making::LegacyPicture;
using making::LegacyRefusal;
using making::WrongIndexes;
using making::WrongPlaces;

TEST(Pcx, EveryDepthIsReadWithItsColours)
{
    for (const bool packed : {false, true}) {
        for (const int bits : {1, 2, 3, 4, 8}) {
            for (const bool chunky : {false, true}) {
                if (chunky && bits == 3) {
                    continue;
                }
                SCOPED_TRACE(bits);
                const IndexMake make{21, 13, bits, packed};
                const QByteArray file = making::MakePcx(make, chunky);
                const ImageFacts facts = LegacyFacts("PCX", file);
                EXPECT_EQ(facts.width, 21);
                EXPECT_EQ(facts.height, 13);
                EXPECT_EQ(facts.bits, bits);
                EXPECT_EQ(facts.format, 1);
                EXPECT_EQ(facts.xResolution, 150);
                EXPECT_EQ(facts.yResolution, 120);
                EXPECT_EQ(facts.compression.toStdString(), packed ? "RLE" : "Uncompressed");
                const Bitmap bitmap = LegacyPicture("PCX", file);
                EXPECT_EQ(WrongIndexes(bitmap, make), 0);
                EXPECT_EQ(bitmap.FileDepth(), bits);
                EXPECT_EQ(bitmap.Model(),
                          bits == 1 ? ColourModel::BlackWhite : ColourModel::Palette);
            }
        }
    }
}

TEST(Pcx, TrueColourLiesInThreePlanes)
{
    const Bitmap bitmap = LegacyPicture("PCX", making::MakePcx24(13, 7));
    EXPECT_EQ(WrongPlaces(bitmap), 0);
    EXPECT_EQ(bitmap.FileDepth(), 24);
}

TEST(Pcx, WithoutColoursBehindThePictureValuesAreGrey)
{
    QByteArray file = making::MakePcx({21, 13, 8, true});
    file.chop(769);
    const Bitmap bitmap = LegacyPicture("PCX", file);
    EXPECT_EQ(bitmap.Model(), ColourModel::Grey);
    EXPECT_EQ(qRed(bitmap.Pixels().pixel(9, 2)), 5);
}

TEST(Pcx, ColoursOfAnEarlyDisplayAreThoseOfItsSet)
{
    QByteArray file = making::MakePcx({21, 13, 2, false}, true);
    file[1] = 2;
    file[16] = 0x10; // background: blue
    file[19] = 0x40; // cyan, magenta, white
    const Bitmap bitmap = LegacyPicture("PCX", file);
    EXPECT_EQ(bitmap.Pixels().pixel(0, 0), qRgb(0, 0, 170));
    EXPECT_EQ(bitmap.Pixels().pixel(3, 0), qRgb(0, 170, 170));
    EXPECT_EQ(bitmap.Pixels().pixel(6, 0), qRgb(170, 0, 170));
    EXPECT_EQ(bitmap.Pixels().pixel(9, 0), qRgb(170, 170, 170));
    file[19] = 0x20; // bright green, red, yellow
    EXPECT_EQ(LegacyPicture("PCX", file).Pixels().pixel(3, 0), qRgb(85, 255, 85));
}

TEST(Pcx, RefusalsAreInWords)
{
    QByteArray file = making::MakePcx({21, 13, 8, true});
    EXPECT_EQ(LegacyRefusal("PCX", file.left(100)),
              "This PCX is damaged: its header is cut short.");
    EXPECT_EQ(LegacyRefusal("PCX", file.left(128)),
              "This PCX is damaged: it ends before its first row.");
    QByteArray narrow = file;
    narrow[66] = 4;
    EXPECT_EQ(LegacyRefusal("PCX", narrow),
              "This PCX is damaged: its rows are shorter than its width.");
    QByteArray planes = file;
    planes[65] = 2;
    EXPECT_EQ(LegacyRefusal("PCX", planes),
              "This PCX has 2 planes of 8 bits, which is not supported.");
    QByteArray turned = file;
    turned[8] = 0;
    EXPECT_EQ(LegacyRefusal("PCX", turned),
              "This PCX is damaged: it claims a size of -2 x 13 pixels.");
}

TEST(SunRaster, EveryDepthIsReadWithItsColours)
{
    for (const bool packed : {false, true}) {
        for (const int bits : {1, 4, 8}) {
            const IndexMake make{21, 13, bits, packed};
            const QByteArray file = making::MakeSun(make);
            const ImageFacts facts = LegacyFacts("Sun raster", file);
            EXPECT_EQ(facts.bits, bits);
            EXPECT_EQ(facts.format, 55);
            EXPECT_EQ(facts.compression.toStdString(), packed ? "RLE" : "Uncompressed");
            EXPECT_EQ(WrongIndexes(LegacyPicture("Sun raster", file), make), 0) << bits;
        }
    }
    for (const int depth : {24, 32}) {
        for (const bool rgb : {false, true}) {
            EXPECT_EQ(
                WrongPlaces(LegacyPicture("Sun raster", making::MakeSunRgb(13, 7, depth, rgb))), 0)
                << depth << rgb;
        }
    }
}

TEST(SunRaster, WithoutColoursASetBitIsInkAndBytesAreGrey)
{
    const Bitmap bits = LegacyPicture("Sun raster", making::MakeSun({21, 13, 1, false}, false));
    EXPECT_EQ(bits.Pixels().pixel(0, 0), qRgb(255, 255, 255));
    EXPECT_EQ(bits.Pixels().pixel(3, 0), qRgb(0, 0, 0));
    EXPECT_EQ(bits.Model(), ColourModel::BlackWhite);
    const Bitmap grey = LegacyPicture("Sun raster", making::MakeSun({21, 13, 8, true}, false));
    EXPECT_EQ(grey.Model(), ColourModel::Grey);
    EXPECT_EQ(qRed(grey.Pixels().pixel(3, 2)), 3);
}

TEST(Targa, ItsNameHasToTell)
{
    const QByteArray file = making::MakeTga({21, 13, 8, true});
    EXPECT_EQ(FindCodec(file.left(512), u"tga"), &LegacyCodec("TARGA"));
    EXPECT_NE(FindCodec(file.left(512), u"dat"), &LegacyCodec("TARGA"));
    EXPECT_NE(FindCodec(QByteArray(100, 'x'), u"tga"), &LegacyCodec("TARGA"));
}

TEST(Targa, MappedColours)
{
    for (const bool packed : {false, true}) {
        const IndexMake make{21, 13, 8, packed};
        const Bitmap bitmap = LegacyPicture("TARGA", making::MakeTga(make));
        EXPECT_EQ(WrongIndexes(bitmap, make), 0);
        EXPECT_EQ(LegacyFacts("TARGA", making::MakeTga(make)).format, 4);
    }
}

TEST(Targa, TrueColourFromEveryCorner)
{
    for (int kind = 0; kind < 8; ++kind) {
        for (const int depth : {15, 16, 24, 32}) {
            making::TgaMake make;
            make.depth = depth;
            make.packed = kind & 1;
            make.topDown = kind & 2;
            make.rightToLeft = kind & 4;
            make.alphaBits = depth == 32 ? 8 : 0;
            const QByteArray file = making::MakeTgaRgb(make);
            const Bitmap bitmap = LegacyPicture("TARGA", file);
            EXPECT_EQ(WrongPlaces(bitmap, depth <= 16 ? 7 : 0), 0) << kind << " " << depth;
            EXPECT_EQ(LegacyFacts("TARGA", file).bits, depth == 15 ? 16 : depth);
            if (depth == 32) {
                EXPECT_EQ(qAlpha(bitmap.Pixels().pixel(3, 2)), 253);
            }
        }
    }
}

TEST(Targa, AlphaCountsOnlyWhereTheHeaderTellsOfItAndSomeOfItIsSet)
{
    making::TgaMake make;
    make.depth = 32;
    EXPECT_EQ(LegacyPicture("TARGA", making::MakeTgaRgb(make)).Pixels().format(),
              QImage::Format_RGB32);
    make.alphaBits = 8;
    QByteArray file = making::MakeTgaRgb(make);
    for (qsizetype at = 22 + 3; at < file.size(); at += 4) {
        file[at] = '\0';
    }
    const Bitmap bitmap = LegacyPicture("TARGA", file);
    EXPECT_EQ(bitmap.Pixels().format(), QImage::Format_RGB32);
    EXPECT_EQ(WrongPlaces(bitmap), 0);
}

TEST(Sgi, EveryKindOfPlane)
{
    for (const bool packed : {false, true}) {
        for (const int planes : {1, 2, 3, 4}) {
            for (const int bytes : {1, 2}) {
                SCOPED_TRACE(QString("%1 %2 %3").arg(packed).arg(planes).arg(bytes).toStdString());
                const QByteArray file = making::MakeSgi(14, 6, planes, bytes, packed);
                const ImageFacts facts = LegacyFacts("SGI", file);
                EXPECT_EQ(facts.bits, planes * bytes * 8);
                EXPECT_EQ(facts.format, packed ? 143 : 142);
                const Bitmap bitmap = LegacyPicture("SGI", file);
                EXPECT_FALSE(bitmap.IsPartial());
                int wrong = 0;
                for (int y = 0; y < 6; ++y) {
                    for (int x = 0; x < 14; ++x) {
                        const int base = (x / 3 % 2 ? x : x / 3 * 3) * 9 + y * 5;
                        const QRgba64 there = bitmap.Pixels().pixelColor(x, y).rgba64();
                        const auto level = [&](int plane) {
                            const int value = (base + plane * 31) % 256;
                            return bytes == 2 ? value * 256 : value * 257;
                        };
                        const bool grey = planes < 3;
                        wrong += there.red() != level(0) || there.green() != level(grey ? 0 : 1)
                            || there.blue() != level(grey ? 0 : 2);
                        if (planes == 2 || planes == 4) {
                            wrong += there.alpha() != level(planes - 1);
                        }
                    }
                }
                EXPECT_EQ(wrong, 0);
            }
        }
    }
}

TEST(Sgi, RowsThatTheFileLacksAreBlankAndTheRestIsThere)
{
    const QByteArray file = making::MakeSgi(14, 6, 3, 1, false);
    const Bitmap bitmap = LegacyPicture("SGI", file.left(file.size() - 14));
    EXPECT_TRUE(bitmap.IsPartial());
    EXPECT_EQ(qRed(bitmap.Pixels().pixel(0, 3)), 15);
}

TEST(LegacyPictures, CutShortTheyAreShownInPart)
{
    int partial = 0;
    const QMap<QString, QByteArray> made = making::MadeLegacyPictures();
    for (auto i = made.begin(); i != made.end(); ++i) {
        const Codec* codec = FindCodec(i.value().left(512), i.key().section('.', -1));
        ASSERT_TRUE(codec) << i.key().toStdString();
        MemorySource source(i.value().left(i.value().size() * 19 / 20));
        SCOPED_TRACE(i.key().toStdString());
        const Bitmap bitmap = codec->decode(source, {});
        partial += bitmap.IsPartial();
    }
    EXPECT_GT(partial, made.size() * 3 / 4);
}

} // namespace

} // namespace quillane
