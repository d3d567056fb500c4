#include "codec_support_for_tests.h"
#include "encode_support.h"
#include "imaging/codecs/codecs.h"
#include "imaging/quality.h"
#include "picture_maker.h"

namespace quillane {

namespace {

using making::DecodeBytes;
using making::ProbeBytes;
using test::Psnr;

Bitmap JpegPicture(qint32 bits = 24, QSize size = {161, 117})
{
    return test::PictureFor(*FindSaveVariant(10), bits, size);
}

EncodeRequest JpegRequest(qint16 format = 10, qint32 quality = kBestQuality)
{
    EncodeRequest request;
    request.format = format;
    request.quality = quality;
    return request;
}

TEST(Quality, FallsFromHundredPercentToOne)
{
    EXPECT_DOUBLE_EQ(QualityPercent(kBestQuality), 100);
    EXPECT_DOUBLE_EQ(QualityPercent(kLeastQuality), 1);
    EXPECT_DOUBLE_EQ(QualityPercent(0), 100);
    EXPECT_DOUBLE_EQ(QualityPercent(-5), 100);
    EXPECT_DOUBLE_EQ(QualityPercent(32767), 1);
    EXPECT_EQ(JpegTableScale(kBestQuality), 0);
    EXPECT_EQ(JpegTableScale(kLeastQuality), 5000);
    for (qint32 quality = kBestQuality; quality < kLeastQuality; ++quality) {
        EXPECT_GT(QualityPercent(quality), QualityPercent(quality + 1));
        EXPECT_LE(JpegTableScale(quality), JpegTableScale(quality + 1));
    }
}

TEST(JpegEncoder, AHigherFactorMakesASmallerAndWorseFile)
{
    // Grain: a smooth picture is rounded to about the same whatever the factor.
    QImage grain = JpegPicture().Pixels();
    quint32 seed = 1;
    for (int y = 0; y < grain.height(); ++y) {
        for (int x = 0; x < grain.width(); ++x) {
            seed = seed * 1664525u + 1013904223u;
            grain.setPixel(x, y, grain.pixel(x, y) ^ (seed >> 8 & 0x1f1f1f));
        }
    }
    const Bitmap picture(grain, ColourModel::Rgb, 24);
    qint64 lastSize = std::numeric_limits<qint64>::max();
    double lastPsnr = 100;
    for (const qint32 quality : {2, 5, 10, 20, 40, 80, 120, 160, 200, 230, 255}) {
        const QByteArray file = EncodePicture(picture, JpegRequest(10, quality));
        const double psnr = Psnr(picture, DecodeBytes(file));
        EXPECT_LT(file.size(), lastSize) << quality;
        EXPECT_LT(psnr, lastPsnr) << quality;
        lastSize = file.size();
        lastPsnr = psnr;
    }
}

TEST(JpegEncoder, TheFormatCodeSaysHowColourIsSampled)
{
    const QTemporaryDir folder;
    const std::pair<qint16, const char*> rows[] = {
        {10, "1 1"}, {23, "2 1"}, {98, "2 1"}, {21, "4 1"}, {101, "4 1"}};
    for (const auto& [format, sampling] : rows) {
        const QString path = folder.filePath("sampled.jpg");
        WriteWholeFile(path, EncodePicture(JpegPicture(), JpegRequest(format)));
        EXPECT_EQ(test::ExifToolValue(path, "YCbCrSubSampling").toStdString(), sampling) << format;
        EXPECT_EQ(test::ExifToolValue(path, "ColorComponents"), "3");
    }
}

TEST(JpegEncoder, ALayoutOverridesTheCode)
{
    for (const auto& [across, down] :
         {std::pair<int, int>{1, 1}, {2, 1}, {2, 2}, {1, 2}, {4, 1}, {4, 2}, {1, 4}, {3, 1}}) {
        EncodeRequest request = JpegRequest(23);
        request.layout.horizontal = quint8(across);
        request.layout.vertical = quint8(down);
        for (const bool progressive : {false, true}) {
            request.layout.progressive = progressive;
            const QByteArray file = EncodePicture(JpegPicture(), request);
            EXPECT_EQ(ProbeBytes(file).layout, request.layout);
            EXPECT_GT(Psnr(JpegPicture(), DecodeBytes(file)), 28);
        }
    }
}

TEST(JpegEncoder, ALayoutThatNoFileCanHaveIsTheCodes)
{
    for (const auto& [across, down] :
         {std::pair<int, int>{4, 4}, {3, 3}, {9, 1}, {0, 2}, {255, 255}}) {
        EncodeRequest request = JpegRequest(23);
        request.layout.horizontal = quint8(across);
        request.layout.vertical = quint8(down);
        EXPECT_EQ(ProbeBytes(EncodePicture(JpegPicture(), request)).format, 23);
    }
}

TEST(JpegEncoder, InkStaysInkAsAdobesProgramsWriteIt)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("ink.jpg");
    for (const qint16 format : {10, 23, 21}) {
        const Bitmap picture = JpegPicture(32);
        const QByteArray file = EncodePicture(picture, JpegRequest(format));
        const Bitmap back = DecodeBytes(file);
        EXPECT_EQ(back.Model(), ColourModel::Cmyk);
        EXPECT_EQ(ProbeBytes(file).format, format);
        EXPECT_EQ(ProbeBytes(file).bits, 32);
        EXPECT_GT(Psnr(picture, back), format == 10 ? 45 : 30);
        WriteWholeFile(path, file);
        EXPECT_EQ(test::ExifToolValue(path, "ColorTransform"), format == 10 ? "0" : "2");
    }
}

TEST(JpegEncoder, ColoursBecomeInkWhereInkIsAskedFor)
{
    const Bitmap picture = JpegPicture(24);
    EncodeRequest request = JpegRequest();
    request.bits = 32;
    const Bitmap back = DecodeBytes(EncodePicture(picture, request));
    ASSERT_EQ(back.Model(), ColourModel::Cmyk);
    const Bitmap shown(back.ToDisplay(), ColourModel::Rgb, 24);
    EXPECT_GT(Psnr(picture, shown), 40);
}

TEST(JpegEncoder, InkBecomesColoursWhereColoursAreAskedFor)
{
    const Bitmap picture = JpegPicture(32);
    EncodeRequest request = JpegRequest();
    request.bits = 24;
    const Bitmap back = DecodeBytes(EncodePicture(picture, request));
    ASSERT_EQ(back.Model(), ColourModel::Rgb);
    EXPECT_GT(Psnr(Bitmap(picture.ToDisplay(), ColourModel::Rgb, 24), back), 40);
}

TEST(JpegEncoder, ResolutionStandsInTheFile)
{
    EncodeRequest request = JpegRequest();
    request.xResolution = 300;
    request.yResolution = 150;
    const ImageFacts facts = ProbeBytes(EncodePicture(JpegPicture(), request));
    EXPECT_EQ(facts.xResolution, 300);
    EXPECT_EQ(facts.yResolution, 150);
    EXPECT_EQ(ProbeBytes(EncodePicture(JpegPicture(), JpegRequest())).xResolution, 0);
}

TEST(JpegEncoder, AProfileIsEmbeddedWhereItSpeaksOfThesePixels)
{
    EncodeRequest request = JpegRequest();
    request.icc = making::MakeWideProfile();
    EXPECT_EQ(DecodeBytes(EncodePicture(JpegPicture(24), request)).Icc(), request.icc);
    EXPECT_TRUE(DecodeBytes(EncodePicture(JpegPicture(8), request)).Icc().isEmpty());
    EXPECT_TRUE(DecodeBytes(EncodePicture(JpegPicture(32), request)).Icc().isEmpty());
    request.icc = QByteArray(200, 'x');
    EXPECT_TRUE(DecodeBytes(EncodePicture(JpegPicture(24), request)).Icc().isEmpty());
}

TEST(JpegEncoder, ClearPixelsBecomeWhite)
{
    QImage image(40, 40, QImage::Format_ARGB32);
    image.fill(0u);
    EncodeRequest request = JpegRequest();
    request.bits = 24;
    const Bitmap back = DecodeBytes(EncodePicture(Bitmap(image, ColourModel::Rgb, 32), request));
    EXPECT_EQ(back.Pixels().pixel(20, 20), qRgb(255, 255, 255));
}

TEST(JpegEncoder, SidesOfOnePixelWork)
{
    for (const QSize size : {QSize(1, 1), QSize(1, 40), QSize(40, 1), QSize(7, 9)}) {
        for (const qint16 format : {10, 23, 21}) {
            for (const qint32 bits : {8, 24, 32}) {
                const Bitmap picture = JpegPicture(bits, size);
                const Bitmap back = DecodeBytes(EncodePicture(picture, JpegRequest(format)));
                EXPECT_EQ(back.Pixels().size(), size);
            }
        }
    }
}

TEST(JpegEncoder, AnUnreachableSizeIsRefusedWithWords)
{
    const Bitmap wide(QImage(65501, 1, QImage::Format_Grayscale8), ColourModel::Grey, 8);
    const auto refusal = making::RefusalOf([&] { EncodePicture(wide, JpegRequest()); });
    EXPECT_EQ(refusal.number, kFailureLimit);
    EXPECT_EQ(refusal.words.toStdString(),
              "A JPEG cannot hold a picture of 65501 x 1 pixels, at most 65500 x 65500.");
}

} // namespace

} // namespace quillane
