#include "encode_pictures.h"
#include "imaging/colour_profile.h"
#include "imaging/encode.h"
#include "imaging/reader.h"
#include "worker_support.h"
#include <QtEndian>

namespace quillane::test {

namespace {

constexpr char kCodec[] = "JPEG 2000";
constexpr qint16 kFile = 163, kStream = 164;

class Jpeg2000 : public WorkerTest {
protected:
    static EncodeRequest Wish(qint16 format, qint32 bits, qint32 quality = kBestQuality)
    {
        EncodeRequest request;
        request.format = format;
        request.bits = bits;
        request.quality = quality;
        return request;
    }
    QString EncodeTo(const Bitmap& picture, const EncodeRequest& request)
    {
        return Write(QStringLiteral("out.jp2"), worker::Encode(picture, request, kCodec));
    }
    static void ExpectSame(const Bitmap& got, const Bitmap& wanted)
    {
        EXPECT_EQ(got.Model(), wanted.Model());
        ASSERT_EQ(got.Pixels().format(), wanted.Pixels().format());
        EXPECT_TRUE(got.Pixels() == wanted.Pixels());
        EXPECT_FALSE(got.IsPartial());
        EXPECT_TRUE(got.IsExact());
    }
};

} // namespace

TEST_F(Jpeg2000, EveryDepthOfBothCodesComesBackAsItWas)
{
    for (const qint16 format : {kFile, kStream}) {
        for (const int bits : {8, 16, 24, 32, 48, 64}) {
            for (const QSize size : {QSize(131, 77), QSize(1, 1), QSize(3, 200)}) {
                SCOPED_TRACE(QStringLiteral("code %1, %2 bits, %3 x %4")
                                 .arg(format)
                                 .arg(bits)
                                 .arg(size.width())
                                 .arg(size.height())
                                 .toStdString());
                const Bitmap picture = WavePicture(bits, size.width(), size.height(), bits == 8);
                const QString path = EncodeTo(picture, Wish(format, bits));
                const ImageFacts facts = Probe(path, kCodec);
                EXPECT_EQ(facts.format, format);
                EXPECT_EQ(facts.bits, bits);
                EXPECT_EQ(facts.compression, QStringLiteral("JPEG 2000"));
                ExpectSame(Decode(path, kCodec), picture);
            }
        }
    }
}

TEST_F(Jpeg2000, PicturesOfSeveralTilesComeBackWhole)
{
    for (const int bits : {24, 64}) {
        const Bitmap picture = WavePicture(bits, 2500, 1800);
        ExpectSame(Decode(EncodeTo(picture, Wish(kFile, bits)), kCodec), picture);
    }
}

TEST_F(Jpeg2000, TwelveMegapixelsStayUnderTheMemoryLimit)
{
    const Bitmap picture = WavePicture(24, 4000, 3000);
    const QString path = EncodeTo(picture, Wish(kFile, 24, 40));
    const Bitmap back = Decode(path, kCodec);
    EXPECT_GE(Psnr(back.Pixels(), picture.Pixels()), 40);
    const Bitmap deep = WavePicture(64, 4000, 3000);
    EXPECT_EQ(Probe(EncodeTo(deep, Wish(kStream, 64, 40)), kCodec).bits, 64);
}

TEST_F(Jpeg2000, InksAreKept)
{
    const Bitmap inks = InkPicture(61, 47);
    ExpectSame(Decode(EncodeTo(inks, Wish(kFile, 32)), kCodec), inks);
}

TEST_F(Jpeg2000, QualityIsMonotonicAndBestIsLossless)
{
    const Bitmap picture = WavePicture(24, 200, 150);
    qsizetype before = 0;
    double best = 0;
    for (const int quality : {255, 180, 100, 40, 3, 2}) {
        const QByteArray file = worker::Encode(picture, Wish(kFile, 24, quality), kCodec);
        EXPECT_GE(file.size(), before) << quality;
        before = file.size();
        const double psnr =
            Psnr(Decode(Write(QStringLiteral("q.jp2"), file), kCodec).Pixels(), picture.Pixels());
        EXPECT_GE(psnr, best) << quality;
        best = psnr;
    }
    EXPECT_EQ(best, 99);
    EXPECT_GE(
        Psnr(Decode(EncodeTo(picture, Wish(kFile, 24, 40)), kCodec).Pixels(), picture.Pixels()),
        40);
}

TEST_F(Jpeg2000, ResolutionAndProfileComeBackInAFileWithBoxes)
{
    QByteArray profile(200, 'x');
    profile.replace(16, 4, "RGB ");
    EncodeRequest request = Wish(kFile, 24);
    request.xResolution = 300;
    request.yResolution = 72;
    request.icc = profile;
    const QString path = EncodeTo(WavePicture(24, 20, 10), request);
    const ImageFacts facts = Probe(path, kCodec);
    EXPECT_EQ(facts.xResolution, 300);
    EXPECT_EQ(facts.yResolution, 72);
    EXPECT_EQ(Decode(path, kCodec).Icc(), profile);
    const std::optional<QByteArray> told =
        RunTool(QStringLiteral("exiftool"),
                {QStringLiteral("-s3"), QStringLiteral("-ImageWidth"),
                 QStringLiteral("-CaptureXResolution"), QStringLiteral("-CaptureXResolutionUnit"),
                 QStringLiteral("-CaptureYResolution"), path});
    ASSERT_TRUE(told.has_value());
    // Thousands of dots a metre.
    EXPECT_EQ(*told, "20\n1.181102\n0.1 mm\n0.2834646\n");
}

TEST_F(Jpeg2000, AnotherReaderSeesTheSamePixels)
{
    if (!HasTool(QStringLiteral("ffmpeg"))) {
        FAIL() << "ffmpeg is not installed";
    }
    for (const qint16 format : {kFile, kStream}) {
        for (const int bits : {8, 24}) {
            SCOPED_TRACE(format * 100 + bits);
            const Bitmap picture = WavePicture(bits, 131, 77, bits == 8);
            const QString path =
                Write(format == kFile ? QStringLiteral("in.jp2") : QStringLiteral("in.j2k"),
                      worker::Encode(picture, Wish(format, bits), kCodec));
            const QString out = mFolder.filePath(QStringLiteral("out.png"));
            ASSERT_TRUE(RunTool(QStringLiteral("ffmpeg"),
                                {QStringLiteral("-v"), QStringLiteral("error"),
                                 QStringLiteral("-y"), QStringLiteral("-i"), path, out})
                            .has_value());
            QImage seen;
            ASSERT_TRUE(seen.load(out));
            EXPECT_EQ(LargestDifference(seen.convertToFormat(QImage::Format_RGB888),
                                        picture.Pixels().convertToFormat(QImage::Format_RGB888)),
                      0);
        }
    }
}

TEST_F(Jpeg2000, FilesOfAnotherWriterAreRead)
{
    if (!HasTool(QStringLiteral("ffmpeg"))) {
        FAIL() << "ffmpeg is not installed";
    }
    // Subsampled luminance and differences, grey of 16 bits, and RGB.
    struct Row {
        const char* pixels;
        int bits;
        QImage::Format format;
    };
    for (const Row& row :
         {Row{"yuv420p", 24, QImage::Format_RGB32}, Row{"yuv422p", 24, QImage::Format_RGB32},
          Row{"gray", 8, QImage::Format_Grayscale8},
          Row{"gray16le", 16, QImage::Format_Grayscale16}, Row{"rgb24", 24, QImage::Format_RGB32},
          Row{"rgb48le", 48, QImage::Format_RGBX64}}) {
        SCOPED_TRACE(row.pixels);
        const QImage picture = WavePicture(24, 128, 96).Pixels();
        const QString in = mFolder.filePath(QStringLiteral("in.png"));
        const QString path = mFolder.filePath(QStringLiteral("in.jp2"));
        ASSERT_TRUE(picture.save(in));
        ASSERT_TRUE(
            RunTool(QStringLiteral("ffmpeg"),
                    {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-y"),
                     QStringLiteral("-i"), in, QStringLiteral("-c:v"), QStringLiteral("jpeg2000"),
                     QStringLiteral("-pix_fmt"), QLatin1String(row.pixels), path})
                .has_value());
        const ImageFacts facts = Probe(path, kCodec);
        EXPECT_EQ(facts.bits, row.bits);
        EXPECT_EQ(facts.format, kFile);
        const Bitmap back = Decode(path, kCodec);
        EXPECT_EQ(back.Pixels().format(), row.format);
        EXPECT_EQ(back.Pixels().size(), picture.size());
        if (row.bits >= 24) {
            EXPECT_GE(Psnr(back.Pixels(), picture), 28);
        }
    }
}

TEST_F(Jpeg2000, AReducedDecodeIsAsLargeAsWantedAndNoSmaller)
{
    const Bitmap picture = WavePicture(24, 2500, 1800);
    const QString path = EncodeTo(picture, Wish(kFile, 24));
    for (const QSize least : {QSize(160, 120), QSize(700, 400), QSize(1250, 900), QSize(1251, 900),
                              QSize(2500, 1800), QSize(5000, 5000)}) {
        DecodeRequest request;
        request.atLeast = least;
        const Bitmap back = Decode(path, kCodec, request);
        EXPECT_GE(back.Width(), std::min(least.width(), 2500));
        EXPECT_GE(back.Height(), std::min(least.height(), 1800));
        const QImage scaled = picture.Pixels().scaled(back.Pixels().size(), Qt::IgnoreAspectRatio,
                                                      Qt::SmoothTransformation);
        EXPECT_GE(Psnr(back.Pixels(), scaled), 30);
    }
    DecodeRequest small;
    small.atLeast = QSize(160, 120);
    EXPECT_LT(Decode(path, kCodec, small).Width(), 400);
}

TEST_F(Jpeg2000, TheContentDecidesTheCodec)
{
    const Bitmap picture = WavePicture(24, 20, 10);
    for (const qint16 format : {kFile, kStream}) {
        const QString path =
            Write(QStringLiteral("named.jpg"), worker::Encode(picture, Wish(format, 24), kCodec));
        EXPECT_EQ(ProbeFile(path).format, format);
        EXPECT_TRUE(LoadFile(path, {}).bitmap.Pixels() == picture.Pixels());
    }
}

TEST_F(Jpeg2000, WhatSaysNothingOfThePictureGoesOverIntoANewFile)
{
    const Bitmap picture = WavePicture(24, 20, 10);
    QByteArray old = worker::Encode(picture, Wish(kFile, 24), kCodec);
    const QByteArray text = "<x>words of somebody</x>";
    QByteArray box(4, '\0');
    qToBigEndian(quint32(text.size() + 8), box.data());
    old += box + "xml " + text;
    const QString path = Write(QStringLiteral("old.jp2"), old);
    FileSource original(path);
    const Bitmap other = WavePicture(24, 31, 17);
    const QByteArray now = worker::Rewrite(original, other, Wish(kFile, 24), {}, kCodec);
    EXPECT_TRUE(now.endsWith(box + "xml " + text));
    EXPECT_EQ(now.count("jp2c"), 1);
    ExpectSame(Decode(Write(QStringLiteral("new.jp2"), now), kCodec), other);
}

TEST_F(Jpeg2000, WhatCannotBeWrittenIsRefusedInWords)
{
    const auto words = [](const Bitmap& picture, qint16 format, int bits) {
        const Failure failure =
            FailureOf([&] { worker::Encode(picture, Wish(format, bits), kCodec); });
        EXPECT_EQ(failure.Number(), kFailureGeneral);
        return failure.Description();
    };
    const Bitmap colours = WavePicture(24, 8, 8);
    EXPECT_TRUE(words(colours, kFile, 8).contains(QStringLiteral("grey only")));
    EXPECT_TRUE(words(colours, kFile, 1).contains(QStringLiteral("1 bits")));
    EXPECT_TRUE(words(colours, 10, 24).contains(QStringLiteral("10")));
    EXPECT_TRUE(words(WavePicture(8, 8, 8), kFile, 8).contains(QStringLiteral("grey only")));
}

TEST_F(Jpeg2000, TruncatedAndDamagedFilesAreRefusedOrPartialAndEndNoProcess)
{
    for (const qint16 format : {kFile, kStream}) {
        const QByteArray whole =
            worker::Encode(WavePicture(24, 300, 200), Wish(format, 24, 20), kCodec);
        int partial = 0;
        for (int i = 0; i < 40; ++i) {
            QByteArray damaged = whole.left(whole.size() * i / 40);
            if (i % 2) {
                damaged = whole;
                for (int k = 0; k < 8; ++k) {
                    damaged[(i * 7919 + k * 104'729) % damaged.size()] = char(i * 37 + k);
                }
            }
            const QString path = Write(QStringLiteral("bad.jp2"), damaged);
            const Failure probe = FailureOf([&] { Probe(path, kCodec); });
            EXPECT_NE(probe.Number(), kFailureWorker) << i;
            const Failure decode =
                FailureOf([&] { partial += Decode(path, kCodec).IsPartial() ? 1 : 0; });
            EXPECT_NE(decode.Number(), kFailureWorker) << i;
        }
        EXPECT_GT(partial, 0);
    }
}

TEST_F(Jpeg2000, APictureBeyondTheLimitsIsRefusedInWords)
{
    QByteArray file = worker::Encode(WavePicture(24, 20, 10), Wish(kStream, 24), kCodec);
    qToBigEndian(quint32(70'000), file.data() + 8);
    const QString path = Write(QStringLiteral("wide.j2k"), file);
    EXPECT_EQ(FailureOf([&] { Probe(path, kCodec); }).Number(), kFailureLimit);
    EXPECT_EQ(FailureOf([&] { Decode(path, kCodec); }).Number(), kFailureLimit);
}

} // namespace quillane::test
