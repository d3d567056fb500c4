#include "imaging/colour_profile.h"
#include "widgets/picture_source.h"

#include <QColorSpace>
#include <cmath>
#include <gtest/gtest.h>
#include <random>

namespace quillane {

namespace {

/// Thin lines on paper, or the other way round.
Bitmap Drawing(QSize size, int every, bool inverted)
{
    QImage pixels(size, QImage::Format_Mono);
    pixels.setColorTable({qRgb(0, 0, 0), qRgb(255, 255, 255)});
    pixels.fill(inverted ? 0u : 1u);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            if (x % every == 3 || y % (every + 5) == 1) {
                pixels.setPixel(x, y, inverted ? 1u : 0u);
            }
        }
    }
    return Bitmap(pixels, ColourModel::BlackWhite, 1);
}

Bitmap Noise(QSize size, QImage::Format format, ColourModel model)
{
    QImage pixels(size, format);
    std::mt19937 random(7);
    for (int y = 0; y < size.height(); ++y) {
        uchar* const row = pixels.scanLine(y);
        for (qsizetype i = 0; i < pixels.bytesPerLine(); ++i) {
            row[i] = uchar(random());
        }
    }
    if (format == QImage::Format_Indexed8) {
        QList<QRgb> colours;
        for (int i = 0; i < 256; ++i) {
            colours.append(qRgb(255 - i, i / 2, (i * 7) % 256));
        }
        pixels.setColorTable(colours);
    }
    return Bitmap(pixels, model, pixels.depth());
}

struct Mean {
    double red = 0, green = 0, blue = 0, alpha = 0;
};

Mean MeanOf(const QImage& image)
{
    Mean mean;
    for (int y = 0; y < image.height(); ++y) {
        const QRgb* row = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            mean.red += qRed(row[x]);
            mean.green += qGreen(row[x]);
            mean.blue += qBlue(row[x]);
            mean.alpha += qAlpha(row[x]);
        }
    }
    const double pixels = double(image.width()) * image.height();
    return {mean.red / pixels, mean.green / pixels, mean.blue / pixels, mean.alpha / pixels};
}

void ExpectNear(const Mean& is, const Mean& wanted, double share)
{
    EXPECT_NEAR(is.red, wanted.red, share * std::max(wanted.red, 1.0));
    EXPECT_NEAR(is.green, wanted.green, share * std::max(wanted.green, 1.0));
    EXPECT_NEAR(is.blue, wanted.blue, share * std::max(wanted.blue, 1.0));
    EXPECT_NEAR(is.alpha, wanted.alpha, share * std::max(wanted.alpha, 1.0));
}

QByteArray WideProfile()
{
    return QColorSpace(QColorSpace::AdobeRgb).iccProfile();
}

TEST(MeanPart, EveryLayoutKeepsItsMeanAtEveryZoom)
{
    struct Layout {
        QImage::Format format;
        ColourModel model;
        bool profile;
    };
    const Layout layouts[] = {
        {QImage::Format_Mono, ColourModel::BlackWhite, false},
        {QImage::Format_Grayscale8, ColourModel::Grey, false},
        {QImage::Format_Grayscale16, ColourModel::Grey, false},
        {QImage::Format_Indexed8, ColourModel::Palette, false},
        {QImage::Format_Indexed8, ColourModel::Palette, true},
        {QImage::Format_RGB32, ColourModel::Rgb, false},
        {QImage::Format_RGB32, ColourModel::Rgb, true},
        {QImage::Format_ARGB32, ColourModel::Rgb, false},
        {QImage::Format_RGBX64, ColourModel::Rgb, false},
        {QImage::Format_RGBA8888, ColourModel::Cmyk, false},
    };
    for (const Layout& layout : layouts) {
        Bitmap bitmap = Noise({333, 217}, layout.format, layout.model);
        if (layout.profile) {
            bitmap.SetIcc(WideProfile());
        }
        const PictureSource whole = PictureSource::Whole(bitmap);
        const Mean wanted = MeanOf(bitmap.ToDisplay().convertToFormat(
            whole.HasAlpha() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32));
        for (const QSize shown : {QSize(332, 216), QSize(200, 130), QSize(83, 54), QSize(20, 13),
                                  QSize(1, 1), QSize(480, 300)}) {
            const QImage part = MeanPart(whole, shown, QRect(QPoint(), shown));
            ASSERT_EQ(part.size(), shown);
            SCOPED_TRACE(testing::Message() << "format " << layout.format << " profile "
                                            << layout.profile << " width " << shown.width());
            ExpectNear(MeanOf(part), wanted, 0.02);
        }
    }
}

TEST(MeanPart, ThinStrokesShowAtEveryZoomAndOnEitherGround)
{
    for (const bool inverted : {false, true}) {
        const Bitmap drawing = Drawing({1999, 1501}, 37, inverted);
        const Mean wanted = MeanOf(drawing.ToDisplay());
        const PictureSource whole = PictureSource::Whole(drawing);
        const PictureSource eighth = ReducedBy(8, whole);
        const PictureSource small = ReducedBy(4, eighth);
        for (const int width : {1500, 999, 500, 249, 130, 62, 40}) {
            const QSize shown(width, width * 1501 / 1999);
            for (const PictureSource* source : {&whole, &eighth, &small}) {
                if (source->ReachesTo(shown)) {
                    const QImage part = MeanPart(*source, shown, QRect(QPoint(), shown));
                    ExpectNear(MeanOf(part), wanted, 0.02);
                }
            }
        }
    }
}

TEST(MeanPart, AnyPartIsThatOfTheWhole)
{
    for (const QImage::Format format : {QImage::Format_Mono, QImage::Format_RGB32}) {
        const PictureSource whole =
            PictureSource::Whole(Noise({301, 203}, format, ColourModel::Rgb));
        for (const QSize shown :
             {QSize(301, 203), QSize(190, 128), QSize(40, 27), QSize(450, 303)}) {
            const QImage all = MeanPart(whole, shown, QRect(QPoint(), shown));
            for (const QRect part :
                 {QRect(5, 3, 30, 20), QRect(shown.width() - 9, shown.height() - 7, 9, 7),
                  QRect(0, 0, 1, 1)}) {
                const QImage alone = MeanPart(whole, shown, part);
                for (int y = 0; y < part.height(); ++y) {
                    for (int x = 0; x < part.width(); ++x) {
                        const QRgb a = alone.pixel(x, y);
                        const QRgb b = all.pixel(part.topLeft() + QPoint(x, y));
                        ASSERT_NEAR(qRed(a), qRed(b), 1);
                        ASSERT_NEAR(qGreen(a), qGreen(b), 1);
                        ASSERT_NEAR(qBlue(a), qBlue(b), 1);
                    }
                }
            }
        }
    }
}

TEST(MeanPart, AConstantStaysWhatItIs)
{
    QImage pixels(517, 311, QImage::Format_RGB32);
    for (const QRgb colour : {qRgb(255, 255, 255), qRgb(0, 0, 0), qRgb(1, 128, 254)}) {
        pixels.fill(colour);
        const PictureSource whole = PictureSource::Whole(Bitmap(pixels, ColourModel::Rgb, 24));
        const PictureSource quarter = ReducedBy(4, whole);
        for (const PictureSource* source : {&whole, &quarter}) {
            QImage part = MeanPart(*source, {97, 61}, QRect(0, 0, 97, 61));
            QImage wanted(97, 61, QImage::Format_RGB32);
            wanted.fill(colour);
            EXPECT_EQ(part, wanted);
        }
    }
}

TEST(MeanPart, AProfileCountsPixelByPixel)
{
    // Lines of colours that the profile shifts: the mean is that of what is shown, not what the
    // shown mean of the stored values would be.
    QImage pixels(400, 300, QImage::Format_RGB32);
    for (int y = 0; y < 300; ++y) {
        for (int x = 0; x < 400; ++x) {
            pixels.setPixel(x, y, x % 2 ? qRgb(20, 200, 40) : qRgb(230, 30, 120));
        }
    }
    Bitmap bitmap(pixels, ColourModel::Rgb, 24);
    bitmap.SetIcc(WideProfile());
    const QImage shown = MeanPart(PictureSource::Whole(bitmap), {100, 75}, QRect(0, 0, 100, 75));
    ExpectNear(MeanOf(shown), MeanOf(bitmap.ToDisplay()), 0.005);
}

TEST(MeanPart, StopsWhenToldTo)
{
    const StopFlag stop = true;
    const PictureSource whole =
        PictureSource::Whole(Noise({64, 64}, QImage::Format_RGB32, ColourModel::Rgb));
    EXPECT_TRUE(MeanPart(whole, {32, 32}, QRect(0, 0, 32, 32), &stop).isNull());
    EXPECT_TRUE(ReducedBy(4, whole, &stop).IsEmpty());
    EXPECT_TRUE(MeanPart({}, {32, 32}, QRect(0, 0, 32, 32)).isNull());
}

TEST(ReducedBy, AColumnCoveredInPartWeighsByThatPart)
{
    // 1025 = 256 whole boxes and one of a single column, which holds the only dark line.
    QImage pixels(1025, 16, QImage::Format_Grayscale8);
    pixels.fill(255);
    for (int y = 0; y < 16; ++y) {
        pixels.scanLine(y)[1024] = 0;
    }
    const PictureSource quarter =
        ReducedBy(4, PictureSource::Whole(Bitmap(pixels, ColourModel::Grey, 8)));
    EXPECT_EQ(quarter.bitmap.Width(), 257);
    EXPECT_EQ(quarter.bitmap.Pixels().format(), QImage::Format_Grayscale8);
    EXPECT_EQ(quarter.bitmap.Pixels().constScanLine(0)[256], 0);
    EXPECT_EQ(quarter.bitmap.Pixels().constScanLine(0)[255], 255);
    const PictureSource sixteenth = ReducedBy(4, quarter);
    EXPECT_EQ(sixteenth.bitmap.Width(), 65);
    const QImage part = MeanPart(sixteenth, {8, 1}, QRect(0, 0, 8, 1));
    EXPECT_NEAR(qRed(part.pixel(7, 0)), 255 - 255.0 * 8 / 1025, 2);
}

TEST(ReducedBy, ABlackAndWhitePictureKeepsItsOwnTwoColours)
{
    QImage pixels(64, 64, QImage::Format_Mono);
    pixels.setColorTable({qRgb(200, 0, 0), qRgb(0, 0, 100)});
    pixels.fill(0);
    for (int y = 0; y < 64; ++y) {
        for (int x = 0; x < 64; x += 2) {
            pixels.setPixel(x, y, 1);
        }
    }
    const PictureSource reduced =
        ReducedBy(8, PictureSource::Whole(Bitmap(pixels, ColourModel::BlackWhite, 1)));
    EXPECT_EQ(reduced.bitmap.Pixels().depth(), 8) << "a byte a pixel";
    const QImage part = MeanPart(reduced, {4, 4}, QRect(0, 0, 4, 4));
    EXPECT_NEAR(qRed(part.pixel(1, 1)), 100, 2);
    EXPECT_NEAR(qBlue(part.pixel(1, 1)), 50, 2);
}

TEST(NearestPart, PixelsAreSquares)
{
    const Bitmap bitmap = Noise({9, 7}, QImage::Format_Mono, ColourModel::BlackWhite);
    const QImage display = bitmap.ToDisplay();
    const QSize shown(9 * 5, 7 * 5);
    const QImage large = NearestPart(PictureSource::Whole(bitmap), shown, QRect(QPoint(), shown));
    for (int y = 0; y < shown.height(); ++y) {
        for (int x = 0; x < shown.width(); ++x) {
            ASSERT_EQ(large.pixel(x, y), display.pixel(x / 5, y / 5));
        }
    }
}

TEST(NearestPart, EveryLayoutLooksAsTheWholeConvertedDoes)
{
    for (const QImage::Format format :
         {QImage::Format_Grayscale8, QImage::Format_Grayscale16, QImage::Format_Indexed8,
          QImage::Format_RGB32, QImage::Format_RGBX64}) {
        Bitmap bitmap = Noise({40, 30}, format, ColourModel::Rgb);
        if (format != QImage::Format_Grayscale16) {
            bitmap.SetIcc(WideProfile());
        }
        const QImage wanted = bitmap.ToDisplay();
        const QImage part =
            NearestPart(PictureSource::Whole(bitmap), {40, 30}, QRect(0, 0, 40, 30));
        EXPECT_EQ(part.convertToFormat(QImage::Format_RGB32),
                  wanted.convertToFormat(QImage::Format_RGB32))
            << "format " << format;
    }
}

TEST(SoftPart, StandsInWithoutSteps)
{
    QImage early(4, 1, QImage::Format_RGB32);
    for (int x = 0; x < 4; ++x) {
        early.setPixel(x, 0, qRgb(x * 80, x * 80, x * 80));
    }
    const PictureSource source = PictureSource::StandIn(early, {400, 100});
    const QImage part = SoftPart(source, {400, 100}, QRect(0, 0, 400, 100));
    for (int x = 1; x < 400; ++x) {
        const int step = qRed(part.pixel(x, 50)) - qRed(part.pixel(x - 1, 50));
        ASSERT_GE(step, 0);
        ASSERT_LE(step, 2);
    }
    EXPECT_EQ(qRed(part.pixel(0, 0)), 0);
    EXPECT_GE(qRed(part.pixel(399, 99)), 238);
}

TEST(PictureSource, AStandInIsReadyForTheScreen)
{
    QImage odd(5, 5, QImage::Format_RGB888);
    odd.fill(Qt::red);
    odd.setDevicePixelRatio(2);
    const PictureSource source = PictureSource::StandIn(odd, {50, 50});
    EXPECT_EQ(source.bitmap.Pixels().format(), QImage::Format_RGB32);
    EXPECT_EQ(source.bitmap.Pixels().devicePixelRatio(), 1.0);
    EXPECT_EQ(source.picture, QSize(50, 50));
    EXPECT_FALSE(source.HasAlpha());
    EXPECT_TRUE(PictureSource::StandIn({}, {50, 50}).IsEmpty());
}

} // namespace

} // namespace quillane
