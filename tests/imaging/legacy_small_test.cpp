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
    const auto directory = [](bool wide, quint32 format, const QByteArray& body) {
        const int entry = wide ? 172 : 89;
        QByteArray head = Little(wide ? 0xc351 : 0xc350, 2) + Little(2, 2);
        const quint32 at = quint32(4 + 2 * entry);
        const int number = wide ? 4 : 2;
        head += (Little(1, number) + Little(4, 4) + Little(at, 4)).leftJustified(entry, '\0');
        head += (Little(format, number) + Little(quint32(body.size()), 4) + Little(at + 4, 4))
                    .leftJustified(entry, '\0');
        return head + "text" + body;
    };
    for (const bool wide : {false, true}) {
        const QString path = Write("board.clp", directory(wide, 8, dib));
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
    const QByteArray device = Little(0, 2) + Little(9, 2) + Little(1, 2) + Little(2, 2) + "\4\1"
        + Little(0, 4) + QByteArray("\x80\0\0\0\x80\0\x80\x80", 8);
    const QString path = Write("device.clp", directory(false, 2, device));
    EXPECT_EQ(ProbeFile(path).bits, 4);
    const Bitmap bitmap = LoadFile(path).bitmap;
    EXPECT_EQ(bitmap.Pixels().pixel(0, 0), qRgb(255, 85, 255));
    EXPECT_EQ(bitmap.Pixels().pixel(8, 0), qRgb(85, 85, 85));
    EXPECT_EQ(Refusal(Write("text.clp", directory(true, 13, "words"))),
              "This clipboard file holds no bitmap, which is not supported.");
}

TEST_F(SmallFormats, DrHaloTakesItsColoursFromTheFileBesideIt)
{
    QByteArray cut = Little(5, 2) + Little(3, 2) + Little(0, 2);
    for (int y = 0; y < 3; ++y) {
        const QByteArray codes = QByteArray("\x83\2\2", 3) + char(y) + '\1' + '\0';
        cut += Little(quint32(codes.size()), 2) + codes;
    }
    const QString path = Write("old.cut", cut);
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

} // namespace

} // namespace quillane::test
