#include "encode_pictures.h"
#include "imaging/bitmap.h"
#include "imaging/colour_profile.h"
#include "imaging/encode.h"
#include "worker_support.h"
#include <set>

namespace quillane::test {

namespace {

constexpr double kSame = 99;

struct VariantRow {
    qint16 format;
    std::vector<int> depths;
    double psnr;             ///< decibels that come back at least; kSame for equal pixels
    const char* compression; ///< as tiffinfo names it
    const char* photometric; ///< of colours; others by depth
    const char* sampling;    ///< of colour, or empty
};
const std::vector<int> kAnyDepth = {1, 4, 8, 16, 24, 32, 48, 64};
const VariantRow kVariants[] = {
    {3, kAnyDepth, kSame, "None", "RGB color", ""},
    {17, kAnyDepth, kSame, "LZW", "RGB color", ""},
    {87, kAnyDepth, kSame, "PackBits", "RGB color", ""},
    {96, {24, 32, 48, 64}, kSame, "None", "RGB color", ""},
    {85, {24, 32}, 48, "None", "separated", ""},
    {86, {24, 32}, 48, "LZW", "separated", ""},
    {88, {24, 32}, 48, "PackBits", "separated", ""},
    {93, {24}, 34, "None", "YCbCr", "2, 1"},
    {94, {24}, 34, "LZW", "YCbCr", "2, 1"},
    {95, {24}, 34, "PackBits", "YCbCr", "2, 1"},
    {97, {24}, 34, "None", "YCbCr", "2, 1"},
    {11, {8, 24}, 45, "JPEG", "YCbCr", "1, 1"},
    {24, {24}, 34, "JPEG", "YCbCr", "2, 1"},
    {22, {24}, 31, "JPEG", "YCbCr", "4, 1"},
    {25, {1}, kSame, "CCITT RLE", "min-is-white", ""},
    {27, {1}, kSame, "CCITT Group 3", "min-is-white", ""},
    {28, {1}, kSame, "CCITT Group 3", "min-is-white", ""},
    {29, {1}, kSame, "CCITT Group 4", "min-is-white", ""},
    {139, {1}, kSame, "ISO JBIG", "min-is-white", ""},
    {166, {8, 16, 24, 32, 48, 64}, kSame, "34712", "RGB color", ""},
};

class TiffEncode : public WorkerTest {
protected:
    QString EncodeTo(const Bitmap& picture, const EncodeRequest& request)
    {
        return Write(QStringLiteral("out.tif"), worker::Encode(picture, request, "TIFF"));
    }
    static EncodeRequest Wish(qint16 format, qint32 bits)
    {
        EncodeRequest request;
        request.format = format;
        request.bits = bits;
        return request;
    }
    /// Codes that only an Exif directory, which the pixels do not bring, makes different.
    static qint16 WithoutExif(qint16 format)
    {
        return format == 96 ? qint16(3) : format == 97 ? qint16(93) : format;
    }
    static void ExpectSamePixels(const Bitmap& got, const Bitmap& wanted)
    {
        EXPECT_EQ(got.Model(), wanted.Model());
        ASSERT_EQ(got.Pixels().format(), wanted.Pixels().format());
        ASSERT_EQ(got.Pixels().size(), wanted.Pixels().size());
        for (int y = 0; y < got.Height(); ++y) {
            for (int x = 0; x < got.Width(); ++x) {
                const auto at = [x, y](const QImage& image) {
                    return image.depth() > 32 ? quint64(image.pixelColor(x, y).rgba64())
                        : image.format() == QImage::Format_Grayscale16
                        ? reinterpret_cast<const quint16*>(image.constScanLine(y))[x]
                        : image.pixel(x, y);
                };
                ASSERT_EQ(at(got.Pixels()), at(wanted.Pixels())) << x << ", " << y;
            }
        }
    }
    static void ExpectComesBack(const QString& path, const Bitmap& picture, const VariantRow& row,
                                int bits)
    {
        const ImageFacts facts = Probe(path, "TIFF");
        EXPECT_EQ(facts.format, WithoutExif(row.format));
        const bool ink = std::string_view(row.photometric) == "separated";
        EXPECT_EQ(facts.bits, ink ? 32 : bits);
        EXPECT_EQ(facts.pages, 1);
        const Bitmap back = Decode(path, "TIFF");
        EXPECT_EQ(back.FileDepth(), ink ? 32 : bits);
        EXPECT_FALSE(back.IsPartial());
        if (row.psnr == kSame) {
            ExpectSamePixels(back, picture);
            return;
        }
        const QImage shown = ink ? PlainCmykToSrgb(back.Pixels()) : back.Pixels();
        QImage wanted = picture.Pixels();
        if (wanted.hasAlphaChannel()) {
            // Where a variant has no alpha, the picture lies on white.
            QImage white(wanted.size(), QImage::Format_RGB32);
            for (int y = 0; y < wanted.height(); ++y) {
                for (int x = 0; x < wanted.width(); ++x) {
                    const QRgb p = wanted.pixel(x, y);
                    const auto over = [p](int v) {
                        return (v * qAlpha(p) + 255 * (255 - qAlpha(p)) + 127) / 255;
                    };
                    white.setPixel(x, y, qRgb(over(qRed(p)), over(qGreen(p)), over(qBlue(p))));
                }
            }
            wanted = white;
        }
        EXPECT_GE(Psnr(shown, wanted), row.psnr);
    }
    static void ExpectTiffinfoAgrees(const QString& path, const VariantRow& row, int bits)
    {
        const std::optional<QByteArray> told =
            RunTool(QStringLiteral("tiffinfo"),
                    row.format == 166 ? QStringList{path} // which it does not decode
                                      : QStringList{QStringLiteral("-D"), path});
        ASSERT_TRUE(told.has_value());
        EXPECT_TRUE(told->contains(QByteArray("Compression Scheme: ") + row.compression))
            << told->constData();
        if (bits >= 24 || row.format >= 25) {
            const bool grey = bits < 24 && std::string_view(row.photometric) == "RGB color";
            EXPECT_TRUE(
                grey
                || told->contains(QByteArray("Photometric Interpretation: ") + row.photometric))
                << told->constData();
        }
        if (*row.sampling && bits >= 24) {
            EXPECT_TRUE(told->contains(QByteArray("YCbCr Subsampling: ") + row.sampling))
                << told->constData();
        }
        if (row.format == 27) {
            EXPECT_FALSE(told->contains("2-d encoding")) << told->constData();
        }
        if (row.format == 28) {
            EXPECT_TRUE(told->contains("2-d encoding")) << told->constData();
        }
    }
};

} // namespace

TEST_F(TiffEncode, EveryCodeAndDepthComesBackAsItWasAskedFor)
{
    for (const VariantRow& row : kVariants) {
        for (const int bits : row.depths) {
            for (const QSize size : {QSize(131, 77), QSize(1, 1), QSize(160, 400)}) {
                SCOPED_TRACE(QStringLiteral("code %1, %2 bits, %3 x %4")
                                 .arg(row.format)
                                 .arg(bits)
                                 .arg(size.width())
                                 .arg(size.height())
                                 .toStdString());
                const bool jpegGrey = (row.format == 11 || row.format == 166) && bits == 8;
                const Bitmap picture = WavePicture(bits, size.width(), size.height(), jpegGrey);
                const QString path = EncodeTo(picture, Wish(row.format, bits));
                ExpectComesBack(path, picture, row, bits);
                ExpectTiffinfoAgrees(path, row, bits);
            }
        }
    }
}

TEST_F(TiffEncode, GreyOfFourAndEightBitsStaysGrey)
{
    for (const qint16 format : {qint16(3), qint16(17), qint16(87)}) {
        const Bitmap eight = WavePicture(8, 51, 43, true);
        const Bitmap back = Decode(EncodeTo(eight, Wish(format, 8)), "TIFF");
        ExpectSamePixels(back, eight);
        // Sixteen levels fall on values that eight bits hold exactly.
        QImage image = eight.Pixels();
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                image.scanLine(y)[x] = uchar(image.scanLine(y)[x] / 17 * 17);
            }
        }
        const Bitmap few(image, ColourModel::Grey, 4);
        const QString path = EncodeTo(few, Wish(format, 4));
        EXPECT_EQ(Probe(path, "TIFF").bits, 4);
        ExpectSamePixels(Decode(path, "TIFF"), few);
    }
}

TEST_F(TiffEncode, APaletteOfTwoColoursHasOneBit)
{
    QImage image(9, 5, QImage::Format_Mono);
    image.setColorTable({0xff0000ffu, 0xffffff00u});
    image.fill(0u);
    image.setPixel(3, 2, 1);
    image.setPixel(8, 4, 1);
    const QString path = EncodeTo(Bitmap(image, ColourModel::BlackWhite, 1), Wish(3, 1));
    EXPECT_EQ(Probe(path, "TIFF").bits, 1);
    EXPECT_EQ(LargestDifference(AsRgb(Decode(path, "TIFF")),
                                image.convertToFormat(QImage::Format_RGB888)),
              0);
}

TEST_F(TiffEncode, WithoutADepthThePicturesOwnIsTaken)
{
    for (const int bits : kAnyDepth) {
        const Bitmap picture = WavePicture(bits, 20, 10);
        EXPECT_EQ(Probe(EncodeTo(picture, Wish(17, 0)), "TIFF").bits, bits);
    }
    EXPECT_EQ(Probe(EncodeTo(InkPicture(20, 10), Wish(85, 0)), "TIFF").bits, 32);
}

TEST_F(TiffEncode, InksAreKeptAsTheyAre)
{
    const Bitmap inks = InkPicture(61, 47);
    for (const qint16 format : {qint16(85), qint16(86), qint16(88)}) {
        const Bitmap back = Decode(EncodeTo(inks, Wish(format, 32)), "TIFF");
        ASSERT_EQ(back.Model(), ColourModel::Cmyk);
        EXPECT_EQ(back.Pixels(), inks.Pixels());
    }
}

TEST_F(TiffEncode, InksBecomeColoursWhereTheCodeSaysRgb)
{
    const Bitmap inks = InkPicture(61, 47);
    const Bitmap back = Decode(EncodeTo(inks, Wish(3, 24)), "TIFF");
    EXPECT_EQ(back.Model(), ColourModel::Rgb);
    EXPECT_LE(
        LargestDifference(AsRgb(back),
                          PlainCmykToSrgb(inks.Pixels()).convertToFormat(QImage::Format_RGB888)),
        1);
}

TEST_F(TiffEncode, QualityIsMonotonic)
{
    const Bitmap picture = WavePicture(24, 200, 150);
    for (const qint16 format : {qint16(11), qint16(24), qint16(22)}) {
        qsizetype before = 0;
        double best = 0;
        for (const int quality : {255, 180, 100, 40, 2}) {
            EncodeRequest request = Wish(format, 24);
            request.quality = quality;
            const QByteArray file = worker::Encode(picture, request, "TIFF");
            EXPECT_GT(file.size(), before) << format << ' ' << quality;
            before = file.size();
            const double psnr = Psnr(Decode(Write(QStringLiteral("q.tif"), file), "TIFF").Pixels(),
                                     picture.Pixels());
            EXPECT_GE(psnr, best - 0.5) << format << ' ' << quality;
            best = std::max(best, psnr);
        }
    }
}

TEST_F(TiffEncode, ResolutionAndProfileComeBack)
{
    QByteArray rgb(200, 'x'), grey(200, 'x'), cmyk(200, 'x');
    rgb.replace(16, 4, "RGB ");
    grey.replace(16, 4, "GRAY");
    cmyk.replace(16, 4, "CMYK");
    struct Row {
        qint16 format;
        int bits;
        QByteArray profile;
        bool fits;
    };
    for (const Row& row : {Row{3, 24, rgb, true}, Row{3, 24, cmyk, false}, Row{3, 8, rgb, true},
                           Row{3, 16, grey, true}, Row{3, 16, rgb, false}, Row{85, 32, cmyk, true},
                           Row{85, 32, rgb, false}, Row{24, 24, rgb, true}, Row{93, 24, rgb, true},
                           Row{29, 1, grey, true}}) {
        SCOPED_TRACE(row.format);
        EncodeRequest request = Wish(row.format, row.bits);
        request.xResolution = 300;
        request.yResolution = 72;
        request.icc = row.profile;
        const QString path =
            EncodeTo(row.format == 85 ? InkPicture(9, 9) : WavePicture(row.bits, 9, 9), request);
        const ImageFacts facts = Probe(path, "TIFF");
        EXPECT_EQ(facts.xResolution, 300);
        EXPECT_EQ(facts.yResolution, 72);
        EXPECT_EQ(Decode(path, "TIFF").Icc(), row.fits ? row.profile : QByteArray());
    }
    EXPECT_EQ(Probe(EncodeTo(WavePicture(24, 9, 9), Wish(3, 24)), "TIFF").xResolution, 0);
}

TEST_F(TiffEncode, ASaveInPlaceKeepsTheCompressionThatHasNoCodeOfItsOwn)
{
    struct Row {
        quint16 compression;
        int bits;
        const char* name;
    };
    for (const Row& row :
         {Row{8, 24, "AdobeDeflate"}, Row{32946, 24, "Deflate"}, Row{8, 8, "AdobeDeflate"},
          Row{8, 48, "AdobeDeflate"}, Row{8, 16, "AdobeDeflate"}, Row{34925, 24, "LZMA"},
          Row{50000, 24, "ZSTD"}, Row{50000, 1, "ZSTD"}, Row{50001, 24, "WEBP"},
          Row{50001, 32, "WEBP"}}) {
        SCOPED_TRACE(row.name);
        EncodeRequest request = Wish(3, row.bits);
        request.layout.compression = row.compression;
        const Bitmap picture = WavePicture(row.bits, 77, 55);
        const QString path = EncodeTo(picture, request);
        const ImageFacts facts = Probe(path, "TIFF");
        EXPECT_EQ(facts.format, 3);
        EXPECT_EQ(facts.layout.compression, row.compression);
        ExpectSamePixels(Decode(path, "TIFF"), picture);
        const std::optional<QByteArray> told =
            RunTool(QStringLiteral("tiffinfo"), {QStringLiteral("-D"), path});
        ASSERT_TRUE(told.has_value());
        EXPECT_TRUE(told->contains(QByteArray("Compression Scheme: ") + row.name))
            << told->constData();
    }
}

TEST_F(TiffEncode, ASaveInPlaceKeepsInksAndLuminanceBehindTheNearestCode)
{
    EncodeRequest request = Wish(3, 32);
    request.layout.compression = 8;
    const Bitmap inks = Decode(EncodeTo(InkPicture(33, 22), request), "TIFF");
    EXPECT_EQ(inks.Model(), ColourModel::Cmyk);
    EXPECT_EQ(inks.Pixels(), InkPicture(33, 22).Pixels());

    request = Wish(11, 32);
    request.layout.compression = 7;
    const QString jpeg = EncodeTo(InkPicture(33, 22), request);
    EXPECT_EQ(Probe(jpeg, "TIFF").format, 11);
    EXPECT_EQ(Decode(jpeg, "TIFF").Model(), ColourModel::Cmyk);

    request = Wish(3, 24);
    request.layout = {2, 2, 8, false};
    const ImageFacts facts = Probe(EncodeTo(WavePicture(24, 33, 22), request), "TIFF");
    EXPECT_EQ(facts.format, 3);
    EXPECT_EQ(facts.layout, request.layout);
}

TEST_F(TiffEncode, ASaveInPlaceKeepsTheSamplingThatTheCodeDoesNotName)
{
    struct Row {
        qint16 format;
        quint8 across, down;
    };
    for (const Row& row : {Row{93, 1, 1}, Row{93, 2, 2}, Row{94, 4, 1}, Row{95, 4, 2},
                           Row{97, 4, 4}, Row{22, 2, 2}, Row{22, 4, 2}, Row{22, 4, 1}}) {
        EncodeRequest request = Wish(row.format, 24);
        request.layout.horizontal = row.across;
        request.layout.vertical = row.down;
        const Bitmap picture = WavePicture(24, 101, 67);
        const QString path = EncodeTo(picture, request);
        const ImageFacts facts = Probe(path, "TIFF");
        EXPECT_EQ(facts.format, WithoutExif(row.format));
        EXPECT_EQ(facts.layout.horizontal, row.across);
        EXPECT_EQ(facts.layout.vertical, row.down);
        EXPECT_GE(Psnr(Decode(path, "TIFF").Pixels(), picture.Pixels()), 28);
    }
    // What the code does name is not overruled.
    EncodeRequest request = Wish(24, 24);
    request.layout.horizontal = request.layout.vertical = 2;
    EXPECT_EQ(Probe(EncodeTo(WavePicture(24, 40, 40), request), "TIFF").format, 24);
    request = Wish(22, 24);
    request.layout.horizontal = request.layout.vertical = 1;
    EXPECT_EQ(Probe(EncodeTo(WavePicture(24, 40, 40), request), "TIFF").format, 22);
}

TEST_F(TiffEncode, WhatCannotBeWrittenIsRefusedByName)
{
    const auto words = [](qint16 format, int bits, const Bitmap& picture) {
        const Failure failure =
            FailureOf([&] { worker::Encode(picture, Wish(format, bits), "TIFF"); });
        EXPECT_EQ(failure.Number(), kFailureGeneral);
        return failure.Description();
    };
    const Bitmap colours = WavePicture(24, 8, 8);
    EXPECT_TRUE(words(138, 24, colours).contains(QStringLiteral("CMP")));
    EXPECT_TRUE(words(140, 24, colours).contains(QStringLiteral("DXF")));
    EXPECT_TRUE(words(75, 24, colours).contains(QStringLiteral("75")));
    for (const qint16 format : {qint16(25), qint16(27), qint16(28), qint16(29), qint16(139)}) {
        EXPECT_TRUE(words(format, 24, colours).contains(QStringLiteral("black and white")));
    }
    EXPECT_TRUE(words(3, 8, colours).contains(QStringLiteral("too many colours")));
    EXPECT_TRUE(words(3, 4, WavePicture(8, 8, 8)).contains(QStringLiteral("4 bits")));
    EXPECT_TRUE(words(3, 12, colours).contains(QStringLiteral("12 bits")));
    for (const qint16 format : {qint16(24), qint16(22), qint16(93), qint16(97)}) {
        EXPECT_TRUE(words(format, 8, WavePicture(8, 8, 8)).contains(QStringLiteral("8 bits")));
    }
}

TEST_F(TiffEncode, AnotherReaderSeesTheSamePixels)
{
    if (!HasTool(QStringLiteral("gm"))) {
        FAIL() << "gm is not installed";
    }
    for (const VariantRow& row : kVariants) {
        // It does not read all of JBIG, JPEG 2000 and subsampled colours.
        if (row.psnr != kSame || row.format == 139 || row.format == 166) {
            continue;
        }
        for (const int bits : row.depths) {
            SCOPED_TRACE(row.format * 100 + bits);
            const Bitmap picture = WavePicture(bits, 53, 31);
            const QString path = EncodeTo(picture, Wish(row.format, bits));
            const QString out = mFolder.filePath(QStringLiteral("out.ppm"));
            ASSERT_TRUE(RunTool(QStringLiteral("gm"),
                                {QStringLiteral("convert"), path, QStringLiteral("+matte"),
                                 QStringLiteral("-depth"), QStringLiteral("8"),
                                 QStringLiteral("ppm:") + out})
                            .has_value());
            QImage seen;
            ASSERT_TRUE(seen.load(out));
            EXPECT_LE(LargestDifference(seen.convertToFormat(QImage::Format_RGB888),
                                        picture.Pixels().convertToFormat(QImage::Format_RGB888)),
                      bits > 32 || bits == 16 ? 1 : 0);
        }
    }
}

TEST_F(TiffEncode, TwelveMegapixelsStayUnderTheMemoryLimit)
{
    for (const qint16 format : {qint16(3), qint16(17), qint16(24), qint16(93), qint16(86)}) {
        const Bitmap picture = WavePicture(24, 4000, 3000);
        const QString path = EncodeTo(picture, Wish(format, 24));
        EXPECT_EQ(Probe(path, "TIFF").width, 4000);
    }
    const Bitmap deep = WavePicture(64, 4000, 3000);
    const QString path = EncodeTo(deep, Wish(3, 64));
    EXPECT_EQ(Decode(path, "TIFF").Pixels(), deep.Pixels());
}

} // namespace quillane::test
