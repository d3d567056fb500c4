#include "viewer/save_preview.h"

#include "imaging/worker/worker_host.h"
#include <QLocale>
#include <gtest/gtest.h>

namespace quillane {
namespace {

Bitmap PreviewPicture(QSize size)
{
    QImage pixels(size, QImage::Format_RGB32);
    for (int y = 0; y < pixels.height(); ++y) {
        auto* const row = reinterpret_cast<QRgb*>(pixels.scanLine(y));
        for (int x = 0; x < pixels.width(); ++x) {
            row[x] = qRgb((x * 3) % 256, (y * 5) % 256, (x * y) % 256);
        }
    }
    return {pixels, ColourModel::Rgb, 24};
}

EncodeRequest PreviewRequest(qint16 format, qint32 bits, qint32 quality = 2)
{
    EncodeRequest request;
    request.format = format;
    request.bits = bits;
    request.quality = quality;
    return request;
}

class SavePreviewTest : public testing::Test {
protected:
    SavePreviewTest()
    {
        worker::Configure(QStringLiteral(QUILLANE_BINARY_FOLDER "/bin/quillane-codec"), 1);
    }
};

TEST_F(SavePreviewTest, EveryFormatHasALookAndTheSizeThatItWillHave)
{
    const Bitmap picture = PreviewPicture({120, 80});
    for (const SaveVariant& variant : SaveVariants()) {
        EncodeRequest request = PreviewRequest(variant.format, 0, 40);
        const SavePreview preview = MakeSavePreview(picture, request, {60, 60});
        EXPECT_EQ(preview.failure, QString()) << variant.format;
        EXPECT_EQ(preview.whole.size(), QSize(60, 40)) << variant.format;
        EXPECT_EQ(preview.detail.size(), QSize(60, 60)) << variant.format;
        EXPECT_TRUE(preview.exact);
        request.bits = WrittenDepth(variant, picture, 0);
        if (QByteArrayView(variant.codec)
            != QByteArrayView("DICOM")) { // it writes a number that varies
            EXPECT_EQ(preview.bytes, EncodePicture(picture, request).size()) << variant.format;
        }
    }
}

TEST_F(SavePreviewTest, ALosslessLookIsThePictureItself)
{
    const Bitmap picture = PreviewPicture({40, 30});
    for (const qint16 format : {75, 3, 6}) {
        const SavePreview preview =
            MakeSavePreview(picture, PreviewRequest(format, 24), {100, 100});
        EXPECT_EQ(preview.whole.convertToFormat(QImage::Format_RGB32), picture.Pixels()) << format;
        EXPECT_EQ(preview.detail.convertToFormat(QImage::Format_RGB32), picture.Pixels());
    }
}

TEST_F(SavePreviewTest, ShowsWhatQualityAndDepthDo)
{
    const Bitmap picture = PreviewPicture({40, 30});
    const SavePreview best = MakeSavePreview(picture, PreviewRequest(10, 24, 2), {100, 100});
    const SavePreview least = MakeSavePreview(picture, PreviewRequest(10, 24, 255), {100, 100});
    EXPECT_GT(best.bytes, least.bytes);
    EXPECT_NE(best.whole, least.whole);
    const SavePreview two = MakeSavePreview(picture, PreviewRequest(75, 1), {100, 100});
    const QImage shown = two.whole.convertToFormat(QImage::Format_RGB32);
    for (int y = 0; y < shown.height(); ++y) {
        for (int x = 0; x < shown.width(); ++x) {
            EXPECT_TRUE(shown.pixel(x, y) == 0xff000000 || shown.pixel(x, y) == 0xffffffff);
        }
    }
}

TEST_F(SavePreviewTest, TheSizeOfALargePictureIsReckoned)
{
    const SavePreview preview =
        MakeSavePreview(PreviewPicture({5000, 4000}), PreviewRequest(6, 24), {50, 50});
    EXPECT_FALSE(preview.exact);
    EXPECT_NEAR(double(preview.bytes), 60e6, 0.1e6);
    EXPECT_EQ(preview.whole.size(), QSize(50, 40));
}

TEST_F(SavePreviewTest, WhatCannotBeWrittenSaysSo)
{
    const Bitmap picture = PreviewPicture({8, 8});
    EXPECT_FALSE(MakeSavePreview(picture, PreviewRequest(124, 24), {9, 9}).failure.isEmpty());
    EXPECT_FALSE(MakeSavePreview(picture, PreviewRequest(2, 24), {9, 9}).failure.isEmpty());
    EXPECT_FALSE(MakeSavePreview(Bitmap(), PreviewRequest(75, 24), {9, 9}).failure.isEmpty());
}

TEST(PreviewSizeWords, TellBytesWhereTheyAreKnown)
{
    QLocale::setDefault(QLocale(QLocale::English));
    SavePreview preview;
    preview.bytes = 900;
    EXPECT_EQ(PreviewSizeWords(preview), QStringLiteral("900 bytes"));
    preview.bytes = 1'234'567;
    EXPECT_EQ(PreviewSizeWords(preview), QStringLiteral("1.2 MiB (1,234,567 bytes)"));
    preview.exact = false;
    preview.bytes = 12'600'000;
    EXPECT_EQ(PreviewSizeWords(preview), QStringLiteral("about 12 MiB"));
    QLocale::setDefault(QLocale::system());
}

} // namespace
} // namespace quillane
