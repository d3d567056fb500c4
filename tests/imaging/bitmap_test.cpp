#include "imaging/bitmap.h"
#include "picture_maker.h"
#include <QColorSpace>
#include <gtest/gtest.h>

namespace quillane {

namespace {

using making::ColourDistance;
using making::PlaceColour;

/// Pixel (x, y) has the value x + 10 y, whatever the depth.
QImage BitmapTestPicture(QImage::Format format, int width, int height)
{
    QImage image(width, height, format);
    image.fill(0);
    for (int y = 0; y < height; ++y) {
        uchar* row = image.scanLine(y);
        for (int x = 0; x < width; ++x) {
            const int value = x + 10 * y;
            switch (image.depth()) {
            case 1:
                if ((x * y) % 3 == 1) {
                    row[x >> 3] = uchar(row[x >> 3] | 0x80 >> (x & 7));
                }
                break;
            case 8:
                row[x] = uchar(value);
                break;
            case 16:
                reinterpret_cast<quint16*>(row)[x] = quint16(value * 100);
                break;
            case 32:
                reinterpret_cast<quint32*>(row)[x] = 0xff000000u | quint32(value);
                break;
            default:
                reinterpret_cast<quint64*>(row)[x] = 0xffff'0000'0000'0000u | quint64(value);
            }
        }
    }
    return image;
}

bool BitmapBitAt(const QImage& image, int x, int y)
{
    return image.constScanLine(y)[x >> 3] & (0x80 >> (x & 7));
}

quint64 BitmapValueAt(const QImage& image, int x, int y)
{
    const uchar* row = image.constScanLine(y);
    switch (image.depth()) {
    case 1:
        return BitmapBitAt(image, x, y);
    case 8:
        return row[x];
    case 16:
        return reinterpret_cast<const quint16*>(row)[x];
    case 32:
        return reinterpret_cast<const quint32*>(row)[x];
    default:
        return reinterpret_cast<const quint64*>(row)[x];
    }
}

constexpr QImage::Format kBitmapFormats[] = {
    QImage::Format_Mono,        QImage::Format_Indexed8, QImage::Format_Grayscale8,
    QImage::Format_Grayscale16, QImage::Format_RGB32,    QImage::Format_ARGB32,
    QImage::Format_RGBA8888,    QImage::Format_RGBX64,   QImage::Format_RGBA64,
};

/// Where the pixel of the stored picture (w x h) that belongs at (x, y) of the upright one lies,
/// by the words of the Exif standard on the sides that row 0 and column 0 show.
QPoint BitmapStoredPlace(int orientation, int x, int y, int w, int h)
{
    switch (orientation) {
    case 2: // row 0 is the top, column 0 the right side
        return {w - 1 - x, y};
    case 3: // bottom, right
        return {w - 1 - x, h - 1 - y};
    case 4: // bottom, left
        return {x, h - 1 - y};
    case 5: // left, top
        return {y, x};
    case 6: // right, top
        return {y, h - 1 - x};
    case 7: // right, bottom
        return {w - 1 - y, h - 1 - x};
    case 8: // left, bottom
        return {w - 1 - y, x};
    default:
        return {x, y};
    }
}

TEST(BitmapUpright, EveryOrientationAndLayoutPutsEveryPixelInItsPlace)
{
    // Larger than a tile in both directions, with sides that no tile divides.
    constexpr int kWidth = 71;
    constexpr int kHeight = 45;
    for (const QImage::Format format : kBitmapFormats) {
        const Bitmap stored(BitmapTestPicture(format, kWidth, kHeight), ColourModel::Rgb, 8);
        for (int orientation = 1; orientation <= 8; ++orientation) {
            const Bitmap upright = stored.Upright(orientation);
            ASSERT_EQ(upright.Width(), orientation >= 5 ? kHeight : kWidth);
            ASSERT_EQ(upright.Height(), orientation >= 5 ? kWidth : kHeight);
            ASSERT_EQ(upright.Pixels().format(), format);
            for (int y = 0; y < upright.Height(); ++y) {
                for (int x = 0; x < upright.Width(); ++x) {
                    const QPoint from = BitmapStoredPlace(orientation, x, y, kWidth, kHeight);
                    ASSERT_EQ(BitmapValueAt(upright.Pixels(), x, y),
                              BitmapValueAt(stored.Pixels(), from.x(), from.y()))
                        << "orientation " << orientation << " depth " << stored.Pixels().depth()
                        << " at " << x << "," << y;
                }
            }
        }
    }
}

TEST(BitmapUpright, FourQuarterTurnsGiveTheOriginal)
{
    const Bitmap stored(BitmapTestPicture(QImage::Format_RGB32, 5, 3), ColourModel::Rgb, 24);
    Bitmap turned = stored;
    for (int i = 0; i < 4; ++i) {
        turned = turned.Upright(6);
    }
    EXPECT_EQ(turned.Pixels(), stored.Pixels());
    EXPECT_EQ(stored.Upright(6).Upright(8).Pixels(), stored.Pixels());
}

TEST(BitmapUpright, OtherNumbersChangeNothing)
{
    const Bitmap stored(BitmapTestPicture(QImage::Format_RGB32, 5, 3), ColourModel::Rgb, 24);
    for (const int orientation : {-1, 0, 1, 9, 255}) {
        EXPECT_EQ(stored.Upright(orientation).Pixels(), stored.Pixels()) << orientation;
    }
    EXPECT_TRUE(Bitmap().Upright(6).IsNull());
}

TEST(BitmapUpright, KeepsWhatIsKnownOfThePicture)
{
    QImage pixels = BitmapTestPicture(QImage::Format_Indexed8, 5, 3);
    pixels.setColorTable({qRgb(1, 2, 3), qRgb(4, 5, 6)});
    Bitmap stored(pixels, ColourModel::Palette, 4);
    stored.SetIcc("profile");
    stored.SetPartial(true);
    const Bitmap upright = stored.Upright(5);
    EXPECT_EQ(upright.Pixels().colorTable(), pixels.colorTable());
    EXPECT_EQ(upright.Model(), ColourModel::Palette);
    EXPECT_EQ(upright.FileDepth(), 4);
    EXPECT_EQ(upright.Icc(), QByteArray("profile"));
    EXPECT_TRUE(upright.IsPartial());
}

TEST(Bitmap, BitsFollowTheLayout)
{
    const std::pair<QImage::Format, int> rows[] = {
        {QImage::Format_Mono, 1},       {QImage::Format_Indexed8, 8},
        {QImage::Format_Grayscale8, 8}, {QImage::Format_Grayscale16, 16},
        {QImage::Format_RGB32, 24},     {QImage::Format_ARGB32, 32},
        {QImage::Format_RGBA8888, 32},  {QImage::Format_RGBX64, 48},
        {QImage::Format_RGBA64, 64},
    };
    for (const auto& [format, bits] : rows) {
        EXPECT_EQ(Bitmap(QImage(2, 2, format), ColourModel::Rgb, bits).Bits(), bits);
    }
    EXPECT_EQ(Bitmap().Bits(), 0);
}

TEST(Bitmap, ACopyIsIndependentOfWhatIsWrittenLater)
{
    Bitmap first(BitmapTestPicture(QImage::Format_RGB32, 4, 4), ColourModel::Rgb, 24);
    const Bitmap copy = first;
    EXPECT_EQ(copy.Pixels().constBits(), first.Pixels().constBits()); // shared until written
    first.Pixels().fill(Qt::red);
    EXPECT_NE(copy.Pixels().pixel(1, 1), first.Pixels().pixel(1, 1));
    EXPECT_EQ(copy.Pixels().pixel(1, 1), 0xff00000bu);
}

TEST(BitmapToDisplay, AnswersOnlyScreenLayouts)
{
    for (const QImage::Format format : kBitmapFormats) {
        QImage pixels = BitmapTestPicture(format, 6, 4);
        if (format == QImage::Format_Indexed8) {
            QList<QRgb> colours(256, qRgb(1, 2, 3));
            pixels.setColorTable(colours);
        }
        const bool cmyk = format == QImage::Format_RGBA8888;
        const QImage shown =
            Bitmap(pixels, cmyk ? ColourModel::Cmyk : ColourModel::Rgb, 8).ToDisplay();
        const bool alpha = format == QImage::Format_ARGB32 || format == QImage::Format_RGBA64;
        EXPECT_EQ(shown.format(),
                  alpha ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32)
            << format;
        EXPECT_EQ(shown.size(), pixels.size());
    }
    EXPECT_TRUE(Bitmap().ToDisplay().isNull());
}

TEST(BitmapToDisplay, ATransparentPaletteKeepsItsTransparency)
{
    QImage pixels(1, 1, QImage::Format_Indexed8);
    pixels.setColorTable({qRgba(10, 20, 30, 0)});
    pixels.fill(0u);
    const QImage shown = Bitmap(pixels, ColourModel::Palette, 8).ToDisplay();
    EXPECT_EQ(shown.format(), QImage::Format_ARGB32_Premultiplied);
    EXPECT_EQ(qAlpha(shown.pixel(0, 0)), 0);
}

TEST(BitmapToDisplay, PlainCmykIsLightLeftByInk)
{
    const struct {
        int ink[4];
        QRgb light;
    } rows[] = {
        {{0, 0, 0, 0}, qRgb(255, 255, 255)},   {{0, 0, 0, 255}, qRgb(0, 0, 0)},
        {{255, 0, 0, 0}, qRgb(0, 255, 255)},   {{0, 255, 0, 0}, qRgb(255, 0, 255)},
        {{0, 0, 255, 0}, qRgb(255, 255, 0)},   {{255, 255, 255, 255}, qRgb(0, 0, 0)},
        {{0, 0, 0, 128}, qRgb(127, 127, 127)}, {{128, 0, 0, 128}, qRgb(63, 127, 127)},
    };
    for (const auto& row : rows) {
        QImage pixels(1, 1, QImage::Format_RGBA8888);
        for (int i = 0; i < 4; ++i) {
            pixels.scanLine(0)[i] = uchar(row.ink[i]);
        }
        EXPECT_EQ(Bitmap(pixels, ColourModel::Cmyk, 32).ToDisplay().pixel(0, 0), row.light);
    }
}

TEST(BitmapToDisplay, AWideProfileIsBroughtToSrgb)
{
    for (const QImage::Format format : {QImage::Format_RGB32, QImage::Format_ARGB32,
                                        QImage::Format_RGBX64, QImage::Format_RGBA64}) {
        QImage pixels(3, 2, QImage::Format_RGB32);
        pixels.fill(qRgb(200, 100, 50));
        Bitmap bitmap(pixels.convertToFormat(format), ColourModel::Rgb, 24);
        bitmap.SetIcc(making::MakeWideProfile());
        QImage expected = pixels;
        expected.setColorSpace(QColorSpace(QColorSpace::AdobeRgb));
        expected.convertToColorSpace(QColorSpace(QColorSpace::SRgb));
        const QRgb shown = bitmap.ToDisplay().pixel(1, 1);
        EXPECT_LE(ColourDistance(shown, expected.pixel(1, 1)), 2) << format;
        EXPECT_GT(ColourDistance(shown, pixels.pixel(1, 1)), 10) << format;
        EXPECT_EQ(qAlpha(shown), 255);
    }
}

TEST(BitmapToDisplay, AlphaPassesThroughTheProfile)
{
    QImage pixels(1, 1, QImage::Format_ARGB32);
    pixels.fill(qRgba(200, 100, 50, 128));
    Bitmap bitmap(pixels, ColourModel::Rgb, 32);
    bitmap.SetIcc(making::MakeWideProfile());
    EXPECT_EQ(qAlpha(bitmap.ToDisplay().pixel(0, 0)), 128);
}

TEST(BitmapToDisplay, TheProfileAppliesToAPalettesColours)
{
    QImage pixels(1, 1, QImage::Format_Indexed8);
    pixels.setColorTable({qRgb(200, 100, 50)});
    pixels.fill(0u);
    Bitmap bitmap(pixels, ColourModel::Palette, 8);
    bitmap.SetIcc(making::MakeWideProfile());
    EXPECT_GT(ColourDistance(bitmap.ToDisplay().pixel(0, 0), qRgb(200, 100, 50)), 10);
}

TEST(BitmapToDisplay, SrgbsOwnProfileChangesNothing)
{
    QImage pixels(64, 64, QImage::Format_RGB32);
    for (int y = 0; y < 64; ++y) {
        for (int x = 0; x < 64; ++x) {
            pixels.setPixel(x, y, PlaceColour(x, y, 64, 64));
        }
    }
    Bitmap bitmap(pixels, ColourModel::Rgb, 24);
    bitmap.SetIcc(QColorSpace(QColorSpace::SRgb).iccProfile());
    EXPECT_EQ(bitmap.ToDisplay(), pixels);
}

TEST(BitmapToDisplay, AnUnusableProfileCountsAsNone)
{
    QImage pixels(2, 2, QImage::Format_RGB32);
    pixels.fill(qRgb(200, 100, 50));
    const QByteArray wide = making::MakeWideProfile();
    for (const QByteArray& icc :
         {QByteArray("no profile"), wide.left(100), wide.left(200), QByteArray(3000, '\xff')}) {
        Bitmap bitmap(pixels, ColourModel::Rgb, 24);
        bitmap.SetIcc(icc);
        EXPECT_EQ(bitmap.ToDisplay().pixel(0, 0), qRgb(200, 100, 50));
    }
    // A profile of three colours says nothing of four inks.
    QImage ink(1, 1, QImage::Format_RGBA8888);
    ink.fill(0);
    Bitmap cmyk(ink, ColourModel::Cmyk, 32);
    cmyk.SetIcc(wide);
    EXPECT_EQ(cmyk.ToDisplay().pixel(0, 0),
              Bitmap(ink, ColourModel::Cmyk, 32).ToDisplay().pixel(0, 0));
}

TEST(BitmapToDisplay, AProfileOfAnUnknownColourSpaceCountsAsNone)
{
    QImage pixels(1, 1, QImage::Format_RGB32);
    pixels.fill(qRgb(200, 100, 50));
    QByteArray icc = making::MakeWideProfile();
    icc.replace(16, 4, "\x81\x47\x11\xe0");
    Bitmap bitmap(pixels, ColourModel::Rgb, 24);
    bitmap.SetIcc(icc);
    EXPECT_EQ(bitmap.ToDisplay().pixel(0, 0), qRgb(200, 100, 50));
}

TEST(BitmapToDisplay, AGreyPictureMayCarryAColourProfile)
{
    QImage pixels(1, 1, QImage::Format_Grayscale8);
    pixels.fill(100);
    Bitmap bitmap(pixels, ColourModel::Grey, 8);
    bitmap.SetIcc(making::MakeWideProfile());
    const QRgb shown = bitmap.ToDisplay().pixel(0, 0);
    EXPECT_LE(ColourDistance(shown, qRgb(100, 100, 100)), 4);
    EXPECT_EQ(qRed(shown), qBlue(shown));
}

} // namespace

} // namespace quillane
