// Clipboard files, Dr. Halo, raw samples, and the words for formats that are not read.
#include "codec_support_for_tests.h"
#include "imaging/reader.h"
#include "legacy_maker.h"
#include "picture_maker.h"
#include "worker_support.h"

namespace quillane::test {

namespace {

using making::Little;

class SmallFormats : public WorkerTest {
protected:
    static QString Refusal(const QString& path)
    {
        return making::RefusalOf([&] { LoadFile(path); }).words;
    }
};

TEST_F(SmallFormats, ClipboardFilesOfBothKindsGiveTheirBitmap)
{
    const QByteArray colours = Little(0, 4) + Little(0xffffff, 4);
    const QByteArray dib = Little(40, 4) + Little(9, 4) + Little(2, 4) + Little(1, 2) + Little(1, 2)
        + QByteArray(16, '\0') + Little(2, 4) + Little(0, 4) + colours
        + QByteArray("\xaa\x80\0\0\x55\0\0\0", 8);
    for (const bool wide : {false, true}) {
        const QString path = Write("board.clp", making::MakeClp(8, dib, wide));
        const ImageFacts facts = ProbeFile(path);
        EXPECT_EQ(facts.width, 9);
        EXPECT_EQ(facts.height, 2);
        EXPECT_EQ(facts.bits, 1);
        EXPECT_EQ(facts.format, 114);
        const Bitmap bitmap = LoadFile(path).bitmap;
        EXPECT_EQ(bitmap.Pixels().pixel(0, 1), qRgb(255, 255, 255));
        EXPECT_EQ(bitmap.Pixels().pixel(8, 1), qRgb(255, 255, 255));
        EXPECT_EQ(bitmap.Pixels().pixel(0, 0), qRgb(0, 0, 0));
    }
    // A device's bitmap: four planes, rows of two bytes.
    const QString path = Write("device.clp", making::MakeClpPlanes());
    EXPECT_EQ(ProbeFile(path).bits, 4);
    const Bitmap bitmap = LoadFile(path).bitmap;
    EXPECT_EQ(bitmap.Pixels().pixel(0, 0), qRgb(255, 85, 255));
    EXPECT_EQ(bitmap.Pixels().pixel(8, 0), qRgb(85, 85, 85));
    EXPECT_EQ(Refusal(Write("text.clp", making::MakeClp(13, "words", true))),
              "This clipboard file holds no bitmap, which is not supported.");
}

TEST_F(SmallFormats, DrHaloTakesItsColoursFromTheFileBesideIt)
{
    const QString path = Write("old.cut", making::MakeCut());
    EXPECT_EQ(ProbeFile(path).format, 108);
    EXPECT_EQ(ProbeFile(path).bits, 8);
    const Bitmap grey = LoadFile(path).bitmap;
    EXPECT_EQ(grey.Model(), ColourModel::Grey);
    EXPECT_EQ(qRed(grey.Pixels().pixel(2, 1)), 2);
    EXPECT_EQ(qRed(grey.Pixels().pixel(3, 2)), 2);
    EXPECT_EQ(qRed(grey.Pixels().pixel(4, 1)), 1);
    QByteArray palette = "AH" + Little(227, 2) + Little(0, 2) + QByteArray("\x0a\0", 2)
        + Little(0, 4) + Little(2, 2) + Little(255, 2) + Little(63, 2) + Little(255, 2);
    palette = palette.leftJustified(40, '\0');
    palette += Little(0, 6) + Little(9, 2) + Little(63, 2) + Little(0, 2) + Little(200, 2)
        + Little(0, 2) + Little(100, 2);
    Write("old.pal", palette);
    const Bitmap coloured = LoadFile(path).bitmap;
    EXPECT_EQ(coloured.Model(), ColourModel::Palette);
    EXPECT_EQ(coloured.Pixels().pixel(4, 1), qRgb(9, 255, 0));
    EXPECT_EQ(coloured.Pixels().pixel(0, 0), qRgb(200, 0, 100));
}

TEST_F(SmallFormats, RawSamplesTakeTheirSizeFromTheNameOrAreASquare)
{
    QByteArray samples;
    for (int i = 0; i < 48; ++i) {
        samples += char(i * 5);
    }
    const ImageFacts grey = ProbeFile(Write("grey_8x6.raw", samples));
    EXPECT_EQ(grey.width, 8);
    EXPECT_EQ(grey.height, 6);
    EXPECT_EQ(grey.bits, 8);
    EXPECT_EQ(grey.format, 153);
    const QString colour = Write("two 1x1 colour 4X4.raw", samples);
    EXPECT_EQ(ProbeFile(colour).bits, 24);
    EXPECT_EQ(LoadFile(colour).bitmap.Pixels().pixel(1, 2), qRgb(135, 140, 145));
    EXPECT_EQ(ProbeFile(Write("6x2.RAW", samples)).bits, 32);
    EXPECT_EQ(ProbeFile(Write("square.raw", samples.left(36))).width, 6);
    EXPECT_EQ(ProbeFile(Write("square.raw", samples.left(27))).width, 3);
    EXPECT_EQ(Refusal(Write("plain.raw", samples.left(47))),
              "This file of raw samples does not tell its size. Put it into the name, such as "
              "\"picture_640x480.raw\".");
    EXPECT_EQ(Refusal(Write("wrong_5x5.raw", samples)),
              "This file of raw samples is damaged: its name tells 5 x 5 pixels, and its 48 bytes "
              "are not that many of grey, RGB or RGB with transparency.");
}

TEST_F(SmallFormats, WhatIsKnownAndNotReadIsRefusedByItsName)
{
    EXPECT_EQ(Refusal(Write("a.cmp", "anything")),
              "This is a picture in the CMP format, which is not publicly described, so it cannot "
              "be read. Save it as JPEG or TIFF in the program that made it.");
    EXPECT_EQ(Refusal(Write("a.awd", "AWD\2")),
              "This is a Microsoft Fax document (AWD), a format that is not publicly described, so "
              "it cannot be read. Save it as TIFF in the program that made it.");
    EXPECT_EQ(Refusal(Write("renamed.dat", "AC1018rest")),
              "This is an AutoCAD drawing (DWG), a format that is not publicly described, so it "
              "cannot be read. Save it as DXF in the program that made it.");
    EXPECT_EQ(Refusal(Write("a.dwf", "(DWF V06.00)PK")),
              "This is a published drawing (DWF), which this program does not read. Save it as DXF "
              "or as a picture in the program that made it.");
    // A picture under such a name is read all the same.
    EXPECT_EQ(ProbeFile(Write("picture.cmp", making::MakePcx24(5, 4))).format, 1);
}

TEST(CodecTable, HasACodecForEveryExtensionThatIsListed)
{
    QStringList known;
    for (const Codec& codec : AllCodecs()) {
        known += QString::fromLatin1(codec.extensions).split(u' ');
    }
    const QStringList listed{"AWD", "BMP", "CAL", "CLP", "CMP", "CUR", "CUT", "DIC", "DWF",
                             "DWG", "DXF", "EMF", "EPS", "FAX", "GIF", "ICA", "ICO", "IFF",
                             "IMG", "ITG", "JPG", "MAC", "MSP", "PBM", "PCT", "PCX", "PGM",
                             "PNG", "PPM", "PSD", "RAS", "RAW", "TGA", "TIF", "WMF", "WPG"};
    for (const QString& extension : listed) {
        EXPECT_TRUE(known.contains(extension)) << extension.toStdString();
    }
}

TEST(CodecTable, KnowsWhatHasAMarkByItsContentUnderAnyName)
{
    // What only the name tells; the mark of QuickDraw's first version is too short as well.
    const QStringList named{"tga", "cut", "raw", "mac"};
    const QMap<QString, QByteArray> made = making::MadePictures();
    for (auto i = made.begin(); i != made.end(); ++i) {
        const QString extension = i.key().section(u'.', -1);
        // A picture of QuickDraw has its mark behind 512 bytes of anything.
        const QByteArray bytes = extension == "pct" ? i.value().mid(512) : i.value();
        const Codec* codec = FindCodec(bytes.left(512), extension);
        ASSERT_TRUE(codec) << i.key().toStdString();
        if (!named.contains(extension) && i.key() != "made old.pct") {
            for (const QString& other : {QStringLiteral("dat"), QStringLiteral("tga"), QString()}) {
                EXPECT_EQ(FindCodec(bytes.left(512), other), codec) << i.key().toStdString();
            }
        }
    }
}

} // namespace

} // namespace quillane::test
