// Readers of older pixel formats, over files made byte by byte.
#include "codec_support_for_tests.h"
#include "legacy_maker.h"
#include "picture_maker.h"
#include <cmath>

namespace quillane {

namespace {

using making::IndexMake;

const Codec& LegacyCodec(const char* name)
{
    for (const Codec& codec : AllCodecs()) {
        if (qstrcmp(codec.name, name) == 0) {
            return codec;
        }
    }
    throw Failure(kFailureGeneral, QStringLiteral("no such codec"));
}

ImageFacts LegacyFacts(const char* codec, const QByteArray& bytes)
{
    MemorySource source(bytes);
    return LegacyCodec(codec).probe(source);
}

Bitmap LegacyPicture(const char* codec, const QByteArray& bytes, qint32 page = 0)
{
    MemorySource source(bytes);
    DecodeRequest request;
    request.page = page;
    return LegacyCodec(codec).decode(source, request);
}

QString LegacyRefusal(const char* codec, const QByteArray& bytes)
{
    return making::RefusalOf([&] { LegacyPicture(codec, bytes); }).words;
}

/// Pixels that differ from the made picture of indexes.
int WrongIndexes(const Bitmap& bitmap, const IndexMake& make)
{
    int wrong = 0;
    for (int y = 0; y < make.height; ++y) {
        for (int x = 0; x < make.width; ++x) {
            wrong += bitmap.Pixels().pixel(x, y) != make.Colour(make.Index(x, y));
        }
    }
    return wrong;
}

/// Pixels that differ by more than `most` from what PlaceColour tells.
int WrongPlaces(const Bitmap& bitmap, int most = 0)
{
    int wrong = 0;
    const QImage& image = bitmap.Pixels();
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QRgb there = making::PlaceColour(x, y, image.width(), image.height());
            wrong += making::ColourDistance(image.pixel(x, y), there) > most;
        }
    }
    return wrong;
}

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

TEST(MacPaint, WithAndWithoutItsWrapper)
{
    for (const bool wrapped : {false, true}) {
        const QByteArray file = making::MakeMac(wrapped);
        EXPECT_EQ(FindCodec(file.left(512), u"mac"), &LegacyCodec("MacPaint"));
        EXPECT_EQ(FindCodec(file.left(512), u"") == &LegacyCodec("MacPaint"), wrapped);
        const Bitmap bitmap = LegacyPicture("MacPaint", file);
        EXPECT_FALSE(bitmap.IsPartial());
        int wrong = 0;
        for (int y = 0; y < 720; ++y) {
            for (int x = 0; x < 576; ++x) {
                const bool ink = (x / 3 + y) % 2;
                wrong += bitmap.Pixels().pixel(x, y) != (ink ? 0xff000000u : 0xffffffffu);
            }
        }
        EXPECT_EQ(wrong, 0);
        const ImageFacts facts = LegacyFacts("MacPaint", file);
        EXPECT_EQ(facts.width, 576);
        EXPECT_EQ(facts.height, 720);
        EXPECT_EQ(facts.bits, 1);
        EXPECT_EQ(facts.format, 51);
        EXPECT_EQ(facts.xResolution, 72);
        EXPECT_EQ(facts.compression, "PackBits");
    }
}

TEST(MicrosoftPaint, BothVersions)
{
    for (const bool packed : {false, true}) {
        const IndexMake make{45, 13, 1, packed};
        const QByteArray file = making::MakeMsp(make);
        EXPECT_EQ(WrongIndexes(LegacyPicture("MSP", file), make), 0);
        EXPECT_EQ(LegacyFacts("MSP", file).format, 53);
        EXPECT_EQ(LegacyFacts("MSP", file).bits, 1);
    }
}

TEST(GemImage, RunsPatternsAndRepeatedRows)
{
    for (const int bits : {1, 2, 4, 8}) {
        IndexMake make{50, 13, bits, true};
        const QByteArray file = making::MakeGem(make, true);
        EXPECT_EQ(WrongIndexes(LegacyPicture("GEM image", file), make), 0) << bits;
        const ImageFacts facts = LegacyFacts("GEM image", file);
        EXPECT_EQ(facts.bits, bits);
        EXPECT_EQ(facts.format, 52);
        EXPECT_EQ(facts.xResolution, 100);
        EXPECT_EQ(facts.yResolution, 200);
    }
    const Bitmap plain = LegacyPicture("GEM image", making::MakeGem({50, 13, 1, true}, false));
    EXPECT_EQ(plain.Pixels().pixel(0, 0), qRgb(255, 255, 255));
    EXPECT_EQ(plain.Pixels().pixel(3, 0), qRgb(0, 0, 0));
}

TEST(GemImage, ARowThatStandsSeveralTimes)
{
    // Eight pixels of ink, five times.
    const QByteArray file = making::Big(1, 2) + making::Big(8, 2) + making::Big(1, 2)
        + making::Big(1, 2) + making::Big(254, 4) + making::Big(8, 2) + making::Big(5, 2)
        + QByteArray("\0\0\xff\5\x81", 5);
    const Bitmap bitmap = LegacyPicture("GEM image", file);
    EXPECT_FALSE(bitmap.IsPartial());
    EXPECT_EQ(bitmap.Pixels().pixel(7, 4), qRgb(0, 0, 0));
}

TEST(Interchange, PlanesAndBytes)
{
    for (const bool packed : {false, true}) {
        for (const int bits : {1, 3, 4, 5, 8}) {
            const IndexMake make{21, 13, bits, packed};
            const QByteArray file = making::MakeIff(make);
            EXPECT_EQ(WrongIndexes(LegacyPicture("IFF", file), make), 0) << bits;
            EXPECT_EQ(LegacyFacts("IFF", file).bits, bits);
            EXPECT_EQ(LegacyFacts("IFF", file).format, 111);
            EXPECT_EQ(LegacyFacts("IFF", file).compression.toStdString(),
                      packed ? "PackBits" : "Uncompressed");
        }
        const IndexMake make{21, 13, 8, packed};
        EXPECT_EQ(WrongIndexes(LegacyPicture("IFF", making::MakeIff(make, true)), make), 0);
    }
}

TEST(Interchange, PixelsHoldAndModify)
{
    // Four pixels of six planes: colour 1, blue 15, red 0, green 7.
    const int values[4] = {0x01, 0x1f, 0x20, 0x37};
    QByteArray rows;
    for (int plane = 0; plane < 6; ++plane) {
        int bits = 0;
        for (int x = 0; x < 4; ++x) {
            bits |= (values[x] >> plane & 1) << (7 - x);
        }
        rows += char(bits);
        rows += '\0';
    }
    const QList<QRgb> colours{qRgb(0, 0, 0), qRgb(10, 20, 33)};
    const Bitmap bitmap = LegacyPicture("IFF", making::MakeIffForm(4, 1, 6, colours, 0x800, rows));
    EXPECT_EQ(bitmap.Model(), ColourModel::Rgb);
    EXPECT_EQ(bitmap.FileDepth(), 6);
    EXPECT_EQ(bitmap.Pixels().pixel(0, 0), qRgb(10, 20, 33));
    EXPECT_EQ(bitmap.Pixels().pixel(1, 0), qRgb(10, 20, 255));
    EXPECT_EQ(bitmap.Pixels().pixel(2, 0), qRgb(0, 20, 255));
    EXPECT_EQ(bitmap.Pixels().pixel(3, 0), qRgb(0, 119, 255));
}

TEST(Interchange, HalfBrightColoursAreHalfOfTheFirst)
{
    const IndexMake make{200, 2, 6, true};
    const Bitmap bitmap = LegacyPicture("IFF", making::MakeIff(make, false, 0x80));
    const QRgb full = make.Colour(5);
    EXPECT_EQ(bitmap.Pixels().pixel(15, 0), full);
    EXPECT_EQ(bitmap.Pixels().pixel(3 * 37, 0),
              qRgb(qRed(full) / 2, qGreen(full) / 2, qBlue(full) / 2));
}

TEST(Interchange, AListTellsHowManyPicturesItHoldsAndEachCanBeRead)
{
    const QByteArray first = making::MakeIff({21, 13, 4, true});
    const QByteArray second = making::MakeIff({9, 5, 8, true});
    const QByteArray body = "ILBM" + first + second;
    const QByteArray list = "CAT " + making::Big(quint32(body.size()), 4) + body;
    const ImageFacts facts = LegacyFacts("IFF", list);
    EXPECT_EQ(facts.pages, 2);
    EXPECT_EQ(facts.format, 112);
    EXPECT_EQ(facts.width, 21);
    EXPECT_EQ(LegacyPicture("IFF", list, 1).Width(), 9);
    EXPECT_EQ(LegacyRefusal("IFF", "CAT " + making::Big(4, 4) + "8SVX"),
              "This interchange file holds no picture but something else, which is not supported.");
}

TEST(Photoshop, EveryModeAndDepth)
{
    for (int kind = 0; kind < 4; ++kind) {
        for (const int depth : {8, 16}) {
            making::PsdMake make;
            make.packed = kind & 1;
            make.big = kind & 2;
            make.depth = depth;
            make.dotsPerInch = 240;
            make.icc = making::MakeWideProfile();
            const QByteArray file = making::MakePsd(make);
            const ImageFacts facts = LegacyFacts("PSD", file);
            EXPECT_EQ(facts.width, 9);
            EXPECT_EQ(facts.height, 7);
            EXPECT_EQ(facts.bits, 3 * depth);
            EXPECT_EQ(facts.format, 76);
            EXPECT_EQ(facts.xResolution, 240);
            EXPECT_EQ(facts.yResolution, 240);
            EXPECT_EQ(facts.compression.toStdString(), make.packed ? "PackBits" : "Uncompressed");
            const Bitmap bitmap = LegacyPicture("PSD", file);
            EXPECT_EQ(bitmap.Icc(), make.icc);
            EXPECT_TRUE(bitmap.IsExact());
            int wrong = 0;
            for (int y = 0; y < 7; ++y) {
                for (int x = 0; x < 9; ++x) {
                    const int base = x * 9 + y * 5;
                    const QRgb there = bitmap.Pixels().pixel(x, y);
                    wrong += making::ColourDistance(there, qRgb(base, base + 31, base + 62)) > 1;
                }
            }
            EXPECT_EQ(wrong, 0);
        }
    }
}

TEST(Photoshop, GreyIndexedBilevelAndInk)
{
    making::PsdMake make;
    make.mode = 1;
    make.channels = 1;
    make.depth = 16;
    const Bitmap grey = LegacyPicture("PSD", making::MakePsd(make));
    EXPECT_EQ(grey.Pixels().format(), QImage::Format_Grayscale16);
    EXPECT_EQ(reinterpret_cast<const quint16*>(grey.Pixels().constScanLine(1))[2], 23 * 256);
    make.mode = 2;
    make.depth = 8;
    const Bitmap indexed = LegacyPicture("PSD", making::MakePsd(make));
    EXPECT_EQ(indexed.Model(), ColourModel::Palette);
    EXPECT_EQ(indexed.Pixels().pixel(2, 1), qRgb(69, (256 + 23) * 3 & 255, (512 + 23) * 3 & 255));
    make.mode = 0;
    make.depth = 1;
    const Bitmap bits = LegacyPicture("PSD", making::MakePsd(make));
    EXPECT_EQ(bits.Model(), ColourModel::BlackWhite);
    EXPECT_EQ(bits.Pixels().pixel(0, 0), qRgb(255, 255, 255));
    EXPECT_EQ(bits.Pixels().pixel(3, 0), qRgb(0, 0, 0));
    make.mode = 4;
    make.channels = 4;
    make.depth = 8;
    const Bitmap ink = LegacyPicture("PSD", making::MakePsd(make));
    EXPECT_EQ(ink.Model(), ColourModel::Cmyk);
    EXPECT_EQ(ink.Pixels().constScanLine(1)[2 * 4 + 3], 255 - (23 + 93));
}

TEST(Photoshop, TransparencyTakesThePaperOutOfTheMergedColours)
{
    making::PsdMake make;
    make.channels = 4;
    EXPECT_EQ(LegacyFacts("PSD", making::MakePsd(make)).bits, 24);
    make.transparency = true;
    EXPECT_EQ(LegacyFacts("PSD", making::MakePsd(make)).bits, 32);
    QByteArray file = making::MakePsd(make);
    const qsizetype plane = 9 * 7;
    const auto sample = [&](int channel) -> char& {
        return file[file.size() - (4 - channel) * plane];
    };
    sample(0) = char(227); // half transparent 200 over white
    sample(3) = char(128);
    const Bitmap bitmap = LegacyPicture("PSD", file);
    EXPECT_EQ(qAlpha(bitmap.Pixels().pixel(0, 0)), 128);
    EXPECT_NEAR(qRed(bitmap.Pixels().pixel(0, 0)), 199, 1);
}

TEST(Photoshop, LightInFloatingPointIsEncodedForTheScreen)
{
    making::PsdMake make;
    make.depth = 32;
    const Bitmap bitmap = LegacyPicture("PSD", making::MakePsd(make));
    EXPECT_FALSE(bitmap.IsExact());
    const double light = 62 / 255.0;
    const double expected = (1.055 * std::pow(light, 1 / 2.4) - 0.055) * 255;
    EXPECT_NEAR(qBlue(bitmap.Pixels().pixel(0, 0)), expected, 1);
}

TEST(Photoshop, LabIsShownInColour)
{
    making::PsdMake make;
    make.mode = 9;
    QByteArray file = making::MakePsd(make);
    const qsizetype plane = 9 * 7;
    file[file.size() - 3 * plane] = char(138); // L 54.1, a 81, b 70: red
    file[file.size() - 2 * plane] = char(128 + 81);
    file[file.size() - plane] = char(128 + 70);
    const QRgb red = LegacyPicture("PSD", file).Pixels().pixel(0, 0);
    EXPECT_LE(making::ColourDistance(red, qRgb(255, 0, 0)), 8);
}

TEST(Photoshop, RefusalsAreInWords)
{
    making::PsdMake make;
    make.mode = 5;
    EXPECT_EQ(LegacyRefusal("PSD", making::MakePsd(make)),
              "This Photoshop file is of colour mode 5, which is not supported.");
    make.mode = 4;
    EXPECT_EQ(LegacyRefusal("PSD", making::MakePsd(make)),
              "This Photoshop file is damaged: it has fewer channels than its colours need.");
    make.mode = 3;
    const QByteArray file = making::MakePsd(make);
    EXPECT_EQ(LegacyRefusal("PSD", file.left(30)),
              "This Photoshop file is damaged: it ends before its picture.");
    EXPECT_EQ(LegacyRefusal("PSD", file.left(file.size() - 3 * 9 * 7)),
              "This Photoshop file is damaged: it ends before its first row.");
}

TEST(LegacyPictures, CutShortTheyAreShownInPart)
{
    int partial = 0;
    const QMap<QString, QByteArray> made = making::MadeLegacyPictures();
    for (auto i = made.begin(); i != made.end(); ++i) {
        const Codec* codec = FindCodec(i.value().left(512), i.key().section('.', -1));
        ASSERT_TRUE(codec) << i.key().toStdString();
        MemorySource source(i.value().left(i.value().size() * 19 / 20));
        const Bitmap bitmap = codec->decode(source, {});
        partial += bitmap.IsPartial();
    }
    EXPECT_GT(partial, made.size() * 3 / 4);
}

} // namespace

} // namespace quillane
