#include "codec_support_for_tests.h"
#include "picture_maker.h"

namespace quillane {

namespace {

using making::DecodeBytes;
using making::Little;
using making::ProbeBytes;
using making::RefusalOf;

/// An icon (type 1) or cursor (type 2) around one picture.
QByteArray MakeIco(const QByteArray& picture, int width, int height, int type = 1, int count = 1)
{
    QByteArray bytes = Little(0, 2) + Little(quint32(type), 2) + Little(quint32(count), 2);
    for (int i = 0; i < count; ++i) {
        bytes += Little(quint32(width), 1) + Little(quint32(height), 1) + Little(0, 2)
            + Little(1, 2) + Little(0, 2) + Little(quint32(picture.size()), 4)
            + Little(quint32(6 + 16 * count), 4);
    }
    return bytes + picture;
}

QByteArray MakeIcoDib(int width, int height, int bits, const QByteArray& colours,
                      const QByteArray& pixels, const QByteArray& mask)
{
    return Little(40, 4) + Little(quint32(width), 4) + Little(quint32(height * 2), 4) + Little(1, 2)
        + Little(quint32(bits), 2) + QByteArray(24, '\0') + colours + pixels + mask;
}

TEST(IcoCodec, TheMaskCutsThePictureOut)
{
    // Two rows of a bit each pixel: white, black / black, white; the mask hides the last pixel.
    const QByteArray colours("\0\0\0\0\xff\xff\xff\0", 8);
    const QByteArray pixels("\x40\0\0\0\x80\0\0\0", 8);
    const QByteArray mask("\x40\0\0\0\0\0\0\0", 8);
    for (const int type : {1, 2}) {
        const QByteArray bytes = MakeIco(MakeIcoDib(2, 2, 1, colours, pixels, mask), 2, 2, type, 3);
        const ImageFacts facts = ProbeBytes(bytes);
        EXPECT_EQ(facts.width, 2);
        EXPECT_EQ(facts.height, 2);
        EXPECT_EQ(facts.bits, 1);
        EXPECT_EQ(facts.format, type == 1 ? 91 : 92);
        EXPECT_EQ(facts.pages, 3);
        const Bitmap bitmap = DecodeBytes(bytes);
        EXPECT_EQ(bitmap.Pixels().format(), QImage::Format_ARGB32);
        EXPECT_EQ(bitmap.Pixels().pixel(0, 0), 0xffffffffu);
        EXPECT_EQ(bitmap.Pixels().pixel(1, 0), 0xff000000u);
        EXPECT_EQ(bitmap.Pixels().pixel(0, 1), 0xff000000u);
        EXPECT_EQ(qAlpha(bitmap.Pixels().pixel(1, 1)), 0);
    }
}

TEST(IcoCodec, ThirtyTwoBitsBringTheirOwnAlphaOrUseTheMask)
{
    const QByteArray mask("\x80\0\0\0", 4);
    const QByteArray withAlpha = Little(0x80ff0000, 4) + Little(0xff00ff00, 4);
    QImage pixels = DecodeBytes(MakeIco(MakeIcoDib(2, 1, 32, {}, withAlpha, mask), 2, 1)).Pixels();
    EXPECT_EQ(pixels.pixel(0, 0), 0x80ff0000u);
    EXPECT_EQ(pixels.pixel(1, 0), 0xff00ff00u);
    const QByteArray without = Little(0x00ff0000, 4) + Little(0x0000ff00, 4);
    pixels = DecodeBytes(MakeIco(MakeIcoDib(2, 1, 32, {}, without, mask), 2, 1)).Pixels();
    EXPECT_EQ(qAlpha(pixels.pixel(0, 0)), 0);
    EXPECT_EQ(pixels.pixel(1, 0), 0xff00ff00u);
}

TEST(IcoCodec, APngInsideIsRead)
{
    making::PngMake make;
    make.colourType = 6;
    make.exif = making::MakeExif(6);
    const QByteArray bytes = MakeIco(making::MakePng(make), 32, 24);
    const ImageFacts facts = ProbeBytes(bytes);
    EXPECT_EQ(facts.width, 32);
    EXPECT_EQ(facts.bits, 32);
    EXPECT_EQ(facts.format, 91);
    EXPECT_EQ(facts.orientation, 1);
    EXPECT_EQ(qAlpha(DecodeBytes(bytes).Pixels().pixel(3, 3)), 200);
}

TEST(IcoCodec, RefusesWithWords)
{
    QByteArray huge = MakeIcoDib(2, 1, 1, QByteArray(8, 0), {}, {});
    huge.replace(4, 4, Little(0xffff, 4));
    EXPECT_EQ(RefusalOf([&] { ProbeBytes(MakeIco(huge, 16, 16)); }).words,
              "This icon claims a size of 65535 x 2 pixels, which is more than can be read.");
    EXPECT_EQ(RefusalOf([&] { DecodeBytes(MakeIco("", 16, 16)); }).words,
              "This icon is damaged: its header claims 0 bytes.");
    const QByteArray cut = MakeIcoDib(2, 2, 1, QByteArray(8, 0), {}, {});
    EXPECT_EQ(RefusalOf([&] { DecodeBytes(MakeIco(cut, 2, 2)); }).words,
              "This icon is damaged: it ends before its first row.");
}

TEST(PnmCodec, EveryKindHasItsCodeAndPixels)
{
    const struct {
        QByteArray bytes;
        qint16 code, bits;
        QImage::Format format;
        ColourModel model;
        QRgb first, second;
    } rows[] = {
        {"P1\n2 1\n01\n", 102, 1, QImage::Format_Mono, ColourModel::BlackWhite, qRgb(255, 255, 255),
         qRgb(0, 0, 0)},
        {QByteArray("P4 2 1\n\x40"), 103, 1, QImage::Format_Mono, ColourModel::BlackWhite,
         qRgb(255, 255, 255), qRgb(0, 0, 0)},
        {"P2\n# words 9 9\n2 1 # more\n255\n7 200", 104, 8, QImage::Format_Grayscale8,
         ColourModel::Grey, qRgb(7, 7, 7), qRgb(200, 200, 200)},
        {"P5 2 1 255\n\x07\xc8", 105, 8, QImage::Format_Grayscale8, ColourModel::Grey,
         qRgb(7, 7, 7), qRgb(200, 200, 200)},
        {"P3 2 1 255 1 2 3 200 100 50 ", 106, 24, QImage::Format_RGB32, ColourModel::Rgb,
         qRgb(1, 2, 3), qRgb(200, 100, 50)},
        {"P6 2 1 255\n\1\2\3\xc8\x64\x32", 107, 24, QImage::Format_RGB32, ColourModel::Rgb,
         qRgb(1, 2, 3), qRgb(200, 100, 50)},
        {QByteArray("P5 2 1 65535\n\x07\x07\xc8\xc8"), 105, 16, QImage::Format_Grayscale16,
         ColourModel::Grey, qRgb(7, 7, 7), qRgb(200, 200, 200)},
        {"P2 2 1 1000 0 1000", 104, 16, QImage::Format_Grayscale16, ColourModel::Grey,
         qRgb(0, 0, 0), qRgb(255, 255, 255)},
        {QByteArray("P6 2 1 65535\n\1\1\2\2\3\3\xc8\xc8\x64\x64\x32\x32"), 107, 48,
         QImage::Format_RGBX64, ColourModel::Rgb, qRgb(1, 2, 3), qRgb(200, 100, 50)},
        {"P2 2 1 15 0 15", 104, 8, QImage::Format_Grayscale8, ColourModel::Grey, qRgb(0, 0, 0),
         qRgb(255, 255, 255)},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.bytes.toStdString());
        const ImageFacts facts = ProbeBytes(row.bytes);
        EXPECT_EQ(facts.width, 2);
        EXPECT_EQ(facts.height, 1);
        EXPECT_EQ(facts.bits, row.bits);
        EXPECT_EQ(facts.format, row.code);
        EXPECT_EQ(facts.compression, "Uncompressed");
        const Bitmap bitmap = DecodeBytes(row.bytes);
        EXPECT_EQ(bitmap.Pixels().format(), row.format);
        EXPECT_EQ(bitmap.Model(), row.model);
        EXPECT_EQ(bitmap.Pixels().pixel(0, 0), row.first);
        EXPECT_EQ(bitmap.Pixels().pixel(1, 0), row.second);
        EXPECT_FALSE(bitmap.IsPartial());
    }
}

TEST(PnmCodec, ATruncatedPictureIsPartial)
{
    const Bitmap bitmap = DecodeBytes("P5 4 4 255\n" + QByteArray(9, '\x10'));
    EXPECT_TRUE(bitmap.IsPartial());
    EXPECT_EQ(bitmap.Pixels().pixel(0, 1), qRgb(16, 16, 16));
    EXPECT_EQ(bitmap.Pixels().pixel(0, 3), qRgb(255, 255, 255));
    EXPECT_TRUE(DecodeBytes("P2 2 3 255 1 2 3 oh").IsPartial());
}

TEST(PnmCodec, RefusesWithWords)
{
    const auto words = [](const QByteArray& bytes) {
        return RefusalOf([&] { DecodeBytes(bytes); }).words;
    };
    const QString noNumbers = "This PNM is damaged: its header is cut short or holds something "
                              "else than numbers.";
    EXPECT_EQ(words("P6 -3 4 255\n"), noNumbers);
    EXPECT_EQ(words("P6 3"), noNumbers);
    EXPECT_EQ(words("P6 3x 4 255\n"), noNumbers);
    EXPECT_EQ(words("P5 3 3 70000\n"),
              "This PNM is damaged: it claims 70000 as its largest value.");
    EXPECT_EQ(words("P5 0 3 255\n"), "This PNM is damaged: it claims a size of 0 x 3 pixels.");
    EXPECT_EQ(words("P5 99999999999999 3 255\n"),
              "This PNM claims a size of 99999999 x 3 pixels, which is more than can be read.");
    EXPECT_EQ(words("P6 60000 60000 255\n"),
              "This PNM has 60000 x 60000 pixels, which is more than can be read.");
    EXPECT_EQ(words("P5 3 3 255\n"), "This PNM is damaged: it ends before its first row.");
}

TEST(PnmCodec, OtherBeginningsAreRefusedEvenWhenAsked)
{
    for (const QByteArray& bytes : {QByteArray("P-3 2 2 255 1"), QByteArray("Q3 2 2 255 1"),
                                    QByteArray("P7 2 2 255 1"), QByteArray("P"), QByteArray()}) {
        MemorySource source(bytes);
        const Codec& codec = making::CodecFor("P3 1");
        EXPECT_EQ(RefusalOf([&] { codec.probe(source); }).words,
                  "This PNM is damaged: it does not begin as one.");
    }
}

TEST(PnmCodec, BlanksWithoutEndAreNotRead)
{
    const QByteArray bytes = "P2 2 2 255 1 " + QByteArray(20'000'000, ' ');
    making::CountingSource source(bytes);
    EXPECT_EQ(RefusalOf([&] { making::CodecFor(bytes).decode(source, {}); }).number,
              kFailureUnreadable);
    EXPECT_LT(source.bytes, 300'000);
    const QByteArray comment = "P2 #" + QByteArray(20'000'000, 'x');
    making::CountingSource header(comment);
    EXPECT_EQ(RefusalOf([&] { making::CodecFor(comment).probe(header); }).number,
              kFailureUnreadable);
    EXPECT_LT(header.bytes, 100'000);
}

} // namespace

} // namespace quillane
