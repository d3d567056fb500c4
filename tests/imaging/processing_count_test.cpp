#include "imaging/processing/depth.h"
#include "imaging/processing/histogram.h"
#include "processing_support.h"
#include <algorithm>
#include <gtest/gtest.h>
#include <numeric>
#include <set>

namespace quillane::processing {

namespace {

qint64 SumOf(const HistogramTable& table)
{
    return std::accumulate(table.begin(), table.end(), qint64(0));
}

TEST(Histogram, SumsToTheNumberOfPixelsForEveryChannelAndLayout)
{
    for (const Layout& layout : kLayouts) {
        const Bitmap picture = MakePicture(layout, 123, 77);
        const Region region = Region::Ellipse(QSize(123, 77), 10, 10, 50, 40);
        qint64 inside = 0;
        for (int y = 0; y < 77; ++y) {
            for (int x = 0; x < 123; ++x) {
                inside += region.Contains(x, y) ? 1 : 0;
            }
        }
        for (const auto channel : {HistogramChannel::Master, HistogramChannel::Red,
                                   HistogramChannel::Green, HistogramChannel::Blue}) {
            EXPECT_EQ(SumOf(Histogram(picture, nullptr, channel)), 123 * 77) << layout.name;
            EXPECT_EQ(SumOf(Histogram(picture, &region, channel)), inside) << layout.name;
        }
    }
}

TEST(Histogram, CountsEachValueOfAChannel)
{
    QImage pixels(10, 10, QImage::Format_RGB32);
    pixels.fill(qRgb(10, 20, 30));
    pixels.setPixel(1, 1, qRgb(255, 0, 30));
    pixels.setPixel(2, 2, qRgb(255, 0, 31));
    const Bitmap picture(pixels, ColourModel::Rgb, 24);
    const HistogramTable red = Histogram(picture, nullptr, HistogramChannel::Red);
    EXPECT_EQ(red[10], 98);
    EXPECT_EQ(red[255], 2);
    EXPECT_EQ(Histogram(picture, nullptr, HistogramChannel::Green)[0], 2);
    EXPECT_EQ(Histogram(picture, nullptr, HistogramChannel::Blue)[31], 1);
    const HistogramTable master = Histogram(picture, nullptr, HistogramChannel::Master);
    EXPECT_EQ(master[18], 98);
    EXPECT_EQ(master[80], 2);
}

TEST(Histogram, OfOneColourIsOneLineOfAllPixels)
{
    for (const Layout& layout : kLayouts) {
        const HistogramTable table =
            Histogram(MakeConstant(layout, 40, 30, 255), nullptr, HistogramChannel::Master);
        EXPECT_EQ(*std::max_element(table.begin(), table.end()), 1200) << layout.name;
    }
}

TEST(Histogram, CountsSixteenBitsByTheirUpperHalf)
{
    QImage pixels(2, 1, QImage::Format_Grayscale16);
    reinterpret_cast<quint16*>(pixels.scanLine(0))[0] = 0x7fff;
    reinterpret_cast<quint16*>(pixels.scanLine(0))[1] = 0x8000;
    const HistogramTable table =
        Histogram(Bitmap(pixels, ColourModel::Grey, 16), nullptr, HistogramChannel::Master);
    EXPECT_EQ(table[0x7f], 1);
    EXPECT_EQ(table[0x80], 1);
}

TEST(UniqueColors, IsExactInEveryLayout)
{
    for (const Layout& layout : kLayouts) {
        const Bitmap picture = MakePicture(layout, 90, 70);
        const QImage& pixels = picture.Pixels();
        std::set<QByteArray> all;
        std::set<QByteArray> inside;
        const Region region = Region::Ellipse(QSize(90, 70), 20, 20, 40, 30);
        for (int y = 0; y < 70; ++y) {
            for (int x = 0; x < 90; ++x) {
                QByteArray colour;
                if (pixels.depth() <= 8) {
                    colour = QByteArray::number(pixels.pixel(x, y));
                } else {
                    const int bytes = pixels.depth() / 8;
                    const auto* at =
                        reinterpret_cast<const char*>(pixels.constScanLine(y)) + x * bytes;
                    const bool alpha = layout.model == ColourModel::Rgb;
                    colour = QByteArray(at, alpha ? bytes * 3 / 4 : bytes);
                }
                all.insert(colour);
                if (region.Contains(x, y)) {
                    inside.insert(colour);
                }
            }
        }
        EXPECT_EQ(UniqueColors(picture, nullptr), qint64(all.size())) << layout.name;
        EXPECT_EQ(UniqueColors(picture, &region), qint64(inside.size())) << layout.name;
    }
}

TEST(UniqueColors, CountsAllOfThem)
{
    // Every colour once: 4096 x 4096 pixels.
    QImage pixels(4096, 4096, QImage::Format_RGB32);
    quint32 colour = 0;
    for (int y = 0; y < 4096; ++y) {
        auto* row = reinterpret_cast<quint32*>(pixels.scanLine(y));
        for (int x = 0; x < 4096; ++x) {
            row[x] = 0xff000000u | colour++;
        }
    }
    EXPECT_EQ(UniqueColors(Bitmap(pixels, ColourModel::Rgb, 24), nullptr), 16'777'216);
}

TEST(UniqueColors, TakesColoursOfAPaletteOnceAndOnlyThoseInUse)
{
    QImage pixels(4, 1, QImage::Format_Indexed8);
    pixels.setColorTable({qRgb(1, 1, 1), qRgb(1, 1, 1), qRgb(2, 2, 2), qRgb(3, 3, 3)});
    pixels.scanLine(0)[0] = 0;
    pixels.scanLine(0)[1] = 1;
    pixels.scanLine(0)[2] = 2;
    pixels.scanLine(0)[3] = 2;
    EXPECT_EQ(UniqueColors(Bitmap(pixels, ColourModel::Palette, 8), nullptr), 2);
}

} // namespace

} // namespace quillane::processing
