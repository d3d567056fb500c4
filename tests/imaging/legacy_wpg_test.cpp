// WordPerfect graphics, made byte by byte.
#include "legacy_support.h"

namespace quillane {

namespace {

using making::Big;
using making::IndexMake;
using making::LegacyFacts;
using making::LegacyPicture;
using making::LegacyRefusal;
using making::Little;
using making::MakeWpgFile;
using making::MakeWpgRecord;

TEST(WordPerfect, EveryDepthOfBothVersions)
{
    for (const int version : {1, 2}) {
        for (const int bits : {1, 2, 4, 8}) {
            for (const bool packed : {false, true}) {
                SCOPED_TRACE(QString("%1 %2 %3").arg(version).arg(bits).arg(packed).toStdString());
                const IndexMake make{53, 13, bits, packed};
                const QByteArray file = making::MakeWpg(make, version);
                EXPECT_EQ(FindCodec(file.left(512), u"dat"), &making::LegacyCodec("WPG"));
                const ImageFacts facts = LegacyFacts("WPG", file);
                EXPECT_EQ(facts.width, 53);
                EXPECT_EQ(facts.height, 13);
                EXPECT_EQ(facts.bits, bits);
                EXPECT_EQ(facts.format, 54);
                EXPECT_EQ(facts.pages, 1);
                EXPECT_EQ(facts.xResolution, version == 1 ? 150 : 0);
                EXPECT_EQ(facts.yResolution, version == 1 ? 120 : 0);
                EXPECT_EQ(facts.compression.toStdString(),
                          version == 1 || packed ? "RLE" : "Uncompressed");
                const Bitmap bitmap = LegacyPicture("WPG", file);
                EXPECT_FALSE(bitmap.IsPartial());
                EXPECT_EQ(bitmap.FileDepth(), bits);
                EXPECT_EQ(bitmap.Model(),
                          bits == 1 ? ColourModel::BlackWhite : ColourModel::Palette);
                EXPECT_EQ(making::WrongIndexes(bitmap, make), 0);
            }
        }
    }
}

TEST(WordPerfect, FullColours)
{
    for (const bool packed : {false, true}) {
        const QByteArray file = MakeWpgFile(2, making::MakeWpgRgb(13, 7, packed));
        EXPECT_EQ(LegacyFacts("WPG", file).bits, 24);
        EXPECT_EQ(making::WrongPlaces(LegacyPicture("WPG", file)), 0) << packed;
    }
}

TEST(WordPerfect, WithoutColoursOfItsOwnTheFirstSixteenAreThoseOfADisplay)
{
    const QByteArray bitmap =
        Little(2, 2) + Little(1, 2) + Little(4, 2) + Little(75, 4) + QByteArray("\1\x4f", 2);
    const Bitmap picture = LegacyPicture("WPG", MakeWpgFile(1, MakeWpgRecord(1, 0x0b, bitmap)));
    EXPECT_EQ(picture.Pixels().pixel(0, 0), qRgb(170, 0, 0));
    EXPECT_EQ(picture.Pixels().pixel(1, 0), qRgb(255, 255, 255));
}

TEST(WordPerfect, ABitmapInItsPlaceAndSeveralAreEachAPage)
{
    const auto bitmap = [](int width, char byte) {
        return Little(quint32(width), 2) + Little(1, 2) + Little(1, 2) + Little(75, 4) + '\1'
            + byte;
    };
    const QByteArray file = MakeWpgFile(
        1,
        MakeWpgRecord(1, 3, QByteArray(400, 'x')) // drawing, of a long length
            + MakeWpgRecord(1, 0x14, QByteArray(10, '\0') + bitmap(8, '\x0f'))
            + MakeWpgRecord(1, 3, QByteArray(0x12345, 'x')) + MakeWpgRecord(1, 0x0b, bitmap(5, 0)));
    EXPECT_EQ(LegacyFacts("WPG", file).pages, 2);
    EXPECT_EQ(LegacyFacts("WPG", file).width, 8);
    const Bitmap first = LegacyPicture("WPG", file);
    EXPECT_EQ(first.Pixels().pixel(3, 0), qRgb(0, 0, 0));
    EXPECT_EQ(first.Pixels().pixel(4, 0), qRgb(255, 255, 255));
    EXPECT_EQ(LegacyPicture("WPG", file, 1).Width(), 5);
    EXPECT_EQ(LegacyPicture("WPG", file, 7).Width(), 8);
}

TEST(WordPerfect, CodesOfTheSecondVersion)
{
    // Two bytes a sample; a literal, the same again, blank, full, and the row once more.
    const QByteArray codes("\x7d\2\0\x12\x34\x80\x56\x78\xfd\0\x7f\0\xff\0\xfe\0", 16);
    const QByteArray body = Little(10, 2) + Little(2, 2) + "\4\1" + codes;
    const Bitmap bitmap = LegacyPicture("WPG", MakeWpgFile(2, MakeWpgRecord(2, 0x0e, body)));
    EXPECT_FALSE(bitmap.IsPartial());
    const uchar expected[10] = {0x12, 0x34, 0x56, 0x78, 0x56, 0x78, 0, 0, 0xff, 0xff};
    for (int y = 0; y < 2; ++y) {
        for (int x = 0; x < 10; ++x) {
            EXPECT_EQ(bitmap.Pixels().constScanLine(y)[x], expected[x]) << x << " " << y;
        }
    }
}

TEST(WordPerfect, RefusalsAreInWords)
{
    const QByteArray file = making::MakeWpg({21, 13, 8, true});
    EXPECT_EQ(LegacyRefusal("WPG", file.left(15)),
              "This WordPerfect graphic is damaged: its header is cut short.");
    EXPECT_EQ(LegacyRefusal("WPG", MakeWpgFile(1, MakeWpgRecord(1, 3, "line"))),
              "This WordPerfect graphic holds no bitmap but only lines and text, which is not "
              "supported.");
    EXPECT_EQ(LegacyRefusal("WPG", MakeWpgFile(3, {})),
              "This WordPerfect graphic is of version 3, which is not supported.");
    QByteArray locked = file;
    locked[12] = 1;
    EXPECT_EQ(LegacyRefusal("WPG", locked),
              "This WordPerfect graphic is locked with a password, which is not supported.");
    const QByteArray huge =
        Little(65500, 2) + Little(65500, 2) + Little(8, 2) + Little(0, 4) + QByteArray(4, '\0');
    const making::Refusal refusal = making::RefusalOf(
        [&] { LegacyPicture("WPG", MakeWpgFile(1, MakeWpgRecord(1, 0x0b, huge))); });
    EXPECT_EQ(refusal.number, kFailureLimit) << refusal.words.toStdString();
}

TEST(WordPerfect, RecordsThatClaimMoreThanThereIsEndTheSearch)
{
    const QByteArray bitmap = Little(8, 2) + Little(1, 2) + Little(1, 2) + Little(75, 4) + "\1\x0f";
    QByteArray file = MakeWpgFile(1, MakeWpgRecord(1, 0x0b, bitmap));
    file[17] = char(254); // its length
    EXPECT_EQ(LegacyPicture("WPG", file).Pixels().pixel(3, 0), qRgb(0, 0, 0));
    QByteArray endless = MakeWpgFile(1, QByteArray(100'000, '\0'));
    EXPECT_FALSE(LegacyRefusal("WPG", endless).isEmpty());
    endless = MakeWpgFile(2, QByteArray(100'000, '\xff'));
    EXPECT_FALSE(LegacyRefusal("WPG", endless).isEmpty());
}

} // namespace

} // namespace quillane
