// Encoders of older formats at the sizes where rows, runs and planes end, with pixels that cannot
// be packed, and what they cannot hold.
#include "codec_support_for_tests.h"
#include "encode_support.h"
#include "imaging/reader.h"
#include <random>

namespace quillane {

namespace {

using test::SamePixels;

constexpr qint16 kOldCodes[] = {1, 4, 16, 55, 56, 130, 142, 143};
constexpr qint16 kOldEps = 16, kOldSgiPacked = 143, kOldSun = 55;

/// A picture that the variant holds at a depth, every sample by chance, or, `plain`, all alike.
Bitmap OldPicture(const SaveVariant& variant, qint32 bits, QSize size, bool plain)
{
    // The small one tells which layout the depth has.
    const Bitmap like = test::PictureFor(variant, bits, {4, 4});
    QImage image(size, like.Pixels().format());
    image.setColorTable(like.Pixels().colorTable());
    std::mt19937 chance(unsigned(size.width() + bits));
    const bool five = bits == 16 && like.Pixels().depth() == 32;
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            const auto any = [&] { return plain ? 31 : int(chance() & 255); };
            const auto level = [&] { return five ? ((any() & 31) * 255 + 15) / 31 : any(); };
            uchar* row = image.scanLine(y);
            switch (image.depth()) {
            case 1:
                image.setPixel(x, y, unsigned(any() & 1));
                break;
            case 8:
                row[x] = uchar(any() & ((1 << bits) - 1));
                break;
            case 16:
                reinterpret_cast<quint16*>(row)[x] = quint16(any() * 256 + any());
                break;
            case 32:
                reinterpret_cast<QRgb*>(row)[x] =
                    qRgba(level(), level(), level(), bits == 32 ? any() : 255);
                break;
            default:
                for (int i = 0; i < 4; ++i) {
                    reinterpret_cast<quint16*>(row)[4 * x + i] =
                        i == 3 && bits == 48 ? quint16(65535) : quint16(any() * 256 + any());
                }
                break;
            }
        }
    }
    // A picture without any transparency would be told as one that has none.
    if (bits == 32 && like.Model() == ColourModel::Rgb) {
        image.setPixel(0, 0, qRgba(1, 2, 3, 77));
    }
    return {image, like.Model(), bits};
}

QByteArray OldEncoded(const Bitmap& picture, qint16 format, qint32 bits, qint32 dots = 0)
{
    EncodeRequest request;
    request.format = format;
    request.bits = bits;
    request.xResolution = request.yResolution = dots;
    return EncodePicture(picture, request);
}

class OldEncoders : public test::WorkerTest, public testing::WithParamInterface<qint16> { };

TEST_P(OldEncoders, EverySizeComesBackAsItWas)
{
    const SaveVariant* variant = FindSaveVariant(GetParam());
    ASSERT_TRUE(variant);
    for (const qint32* bits = variant->depths; *bits != 0; ++bits) {
        for (const int width : {1,   2,   3,   5,   7,   8,   9,   15,  17,  62,  63,  64,  125,
                                126, 127, 128, 129, 249, 250, 251, 254, 255, 256, 257, 500, 1001}) {
            for (const bool plain : {false, true}) {
                SCOPED_TRACE(QString("%1 bits, %2 wide, plain: %3")
                                 .arg(*bits)
                                 .arg(width)
                                 .arg(plain)
                                 .toStdString());
                const Bitmap picture =
                    OldPicture(*variant, *bits, {width, width > 500 ? 2 : 5}, plain);
                const QString path = Write(QStringLiteral("a") + variant->extension,
                                           OldEncoded(picture, GetParam(), *bits));
                if (GetParam() == kOldEps) {
                    // Some, for each page costs the start of a program.
                    if (width % 7 == 3 || width == 1) {
                        const Bitmap drawn(test::ReadPostScript(path), ColourModel::Rgb, 24);
                        ASSERT_TRUE(SamePixels(picture, drawn));
                    }
                    continue;
                }
                const LoadedImage loaded = LoadFile(path);
                EXPECT_EQ(loaded.facts.format, GetParam());
                EXPECT_EQ(loaded.facts.bits, *bits);
                EXPECT_FALSE(loaded.bitmap.IsPartial());
                ASSERT_TRUE(SamePixels(picture, loaded.bitmap));
            }
        }
    }
}

TEST_P(OldEncoders, OthersReadTheOddSizesToo)
{
    if (GetParam() == kOldEps) {
        return; // drawn above
    }
    const SaveVariant* variant = FindSaveVariant(GetParam());
    for (const qint32* bits = variant->depths; *bits != 0; ++bits) {
        if (*bits > 24 || *bits == 16) {
            continue; // what others make of transparency and depth is their own
        }
        for (const int width : {5, 17, 129, 251, 257}) {
            SCOPED_TRACE(QString("%1 bits, %2 wide").arg(*bits).arg(width).toStdString());
            const Bitmap picture = OldPicture(*variant, *bits, {width, 6}, false);
            const QString path = Write(QStringLiteral("a") + variant->extension,
                                       OldEncoded(picture, GetParam(), *bits));
            const Bitmap other(test::ReadByGraphicsMagick(path), ColourModel::Rgb, 24);
            ASSERT_EQ(other.Pixels().size(), picture.Pixels().size());
            EXPECT_TRUE(SamePixels(picture, other));
        }
    }
}

TEST_P(OldEncoders, OthersReadTheSameTransparencyAndDepth)
{
    const SaveVariant* variant = FindSaveVariant(GetParam());
    for (const qint32* bits = variant->depths; *bits != 0; ++bits) {
        const bool wide = *bits == 16 || *bits > 32;
        if (*bits <= 8 || *bits == 24 || (wide && (variant->traits & kColourIn16) != 0)) {
            continue;
        }
        SCOPED_TRACE(*bits);
        const Bitmap picture = OldPicture(*variant, *bits, {17, 6}, false);
        const QString path =
            Write(QStringLiteral("a") + variant->extension, OldEncoded(picture, GetParam(), *bits));
        // GraphicsMagick takes grey of 16 bits for red alone.
        const bool grey = *bits == 16;
        const std::optional<QByteArray> samples = grey
            ? test::RunTool(
                QStringLiteral("ffmpeg"),
                {"-v", "error", "-i", path, "-f", "rawvideo", "-pix_fmt", "gray16le", "-"})
            : test::RunTool(
                QStringLiteral("gm"),
                {"convert", path, "-depth", wide ? "16" : "8", "-endian", "LSB", "rgba:-"});
        ASSERT_TRUE(samples.has_value());
        const QImage expected =
            picture.Pixels().convertToFormat(grey       ? QImage::Format_Grayscale16
                                                 : wide ? QImage::Format_RGBA64
                                                        : QImage::Format_RGBA8888);
        const qsizetype rowBytes = 17 * expected.depth() / 8;
        ASSERT_EQ(samples->size(), 6 * rowBytes);
        for (int y = 0; y < 6; ++y) {
            EXPECT_EQ(
                samples->mid(y * rowBytes, rowBytes),
                QByteArray(reinterpret_cast<const char*>(expected.constScanLine(y)), rowBytes))
                << y;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(EveryCode, OldEncoders, testing::ValuesIn(kOldCodes),
                         [](const testing::TestParamInfo<qint16>& row) {
                             return "Code" + std::to_string(row.param);
                         });

TEST(OldFormats, ResolutionIsToldWhereTheFormatHasIt)
{
    for (const qint16 format : {qint16(1), qint16(56)}) {
        const SaveVariant* variant = FindSaveVariant(format);
        const Bitmap picture = OldPicture(*variant, 8, {20, 10}, false);
        const QByteArray bytes = OldEncoded(picture, format, 8, 240);
        MemorySource source(bytes);
        const Codec& codec =
            making::CodecFor(bytes, QString::fromLatin1(variant->extension).mid(1));
        EXPECT_EQ(codec.probe(source).xResolution, 240) << format;
        EXPECT_EQ(codec.probe(source).yResolution, 240) << format;
    }
}

class OldFormatFiles : public test::WorkerTest { };

TEST_F(OldFormatFiles, APageOfPostScriptIsAsLargeAsThePictureInPrint)
{
    const SaveVariant* variant = FindSaveVariant(kOldEps);
    const Bitmap picture = OldPicture(*variant, 24, {300, 150}, false);
    const QByteArray plain = OldEncoded(picture, kOldEps, 24);
    EXPECT_TRUE(plain.startsWith("%!PS-Adobe-3.0 EPSF-3.0\n"));
    EXPECT_TRUE(plain.contains("%%BoundingBox: 0 0 300 150\n"));
    const QByteArray dense = OldEncoded(picture, kOldEps, 24, 144);
    EXPECT_TRUE(dense.contains("%%BoundingBox: 0 0 150 75\n"));
    // No line is longer than the conventions allow, and none of the codes looks like a comment.
    bool codes = false;
    for (const QByteArray& line : plain.split('\n')) {
        EXPECT_LE(line.size(), 255);
        EXPECT_FALSE(codes && line.startsWith('%') && !line.startsWith("%%EOF"));
        codes = codes || line == "image";
    }
    EXPECT_EQ(test::ReadPostScript(Write("dense.eps", dense)).size(), QSize(150, 75));
}

TEST_F(OldFormatFiles, ACalsRasterTellsItsResolutionInItsHeader)
{
    const SaveVariant* variant = FindSaveVariant(130);
    const Bitmap picture = OldPicture(*variant, 1, {200, 100}, false);
    const QString path = Write("a.cal", OldEncoded(picture, 130, 1, 400));
    EXPECT_EQ(ProbeFile(path).xResolution, 400);
    EXPECT_EQ(ProbeFile(Write("b.cal", OldEncoded(picture, 130, 1))).xResolution, 200);
}

TEST(OldFormats, WhatTheyCannotHoldIsRefusedInWords)
{
    const auto refusal = [](qint16 format, qint32 bits, QSize size) {
        QImage image(size, bits == 1 ? QImage::Format_Mono : QImage::Format_RGB32);
        image.setColorTable(bits == 1 ? QList<QRgb>{0xff000000u, 0xffffffffu} : QList<QRgb>());
        image.fill(0u);
        const Bitmap picture(image, bits == 1 ? ColourModel::BlackWhite : ColourModel::Rgb, bits);
        return making::RefusalOf([&] { OldEncoded(picture, format, bits); });
    };
    const making::Refusal wide = refusal(56, 24, {4096, 1});
    EXPECT_EQ(wide.number, kFailureLimit);
    EXPECT_TRUE(wide.words.contains("QuickDraw picture")) << wide.words.toStdString();
    EXPECT_EQ(refusal(56, 24, {4095, 1}).number, 0);
    EXPECT_EQ(refusal(56, 1, {1, 32768}).number, kFailureLimit);
    EXPECT_EQ(refusal(1, 24, {65535, 1}).number, kFailureLimit);
    EXPECT_EQ(refusal(1, 24, {65534, 1}).number, 0);
    EXPECT_EQ(refusal(4, 24, {1, 65536}).number, kFailureLimit);
    EXPECT_EQ(refusal(142, 24, {65536, 1}).number, kFailureLimit);
    EXPECT_EQ(refusal(kOldSun, 32, {2, 2}).number, kFailureGeneral);
    EXPECT_EQ(refusal(kOldSgiPacked, 1, {2, 2}).number, 0); // grey of eight
}

} // namespace

} // namespace quillane
