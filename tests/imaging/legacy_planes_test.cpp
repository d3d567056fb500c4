// MacPaint, Microsoft Paint, GEM images and interchange files, over files made byte by byte.
#include "legacy_support.h"

namespace quillane {

namespace {

using making::IndexMake;
using making::LegacyCodec;
using making::LegacyFacts;
using making::LegacyPicture;
using making::LegacyRefusal;
using making::WrongIndexes;

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

} // namespace

} // namespace quillane
