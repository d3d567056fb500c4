#include "core/failure.h"
#include "imaging/processing/combine.h"
#include "imaging/processing/neighbourhood.h"
#include "imaging/processing/text.h"
#include "processing_support.h"
#include <gtest/gtest.h>
#include <limits>

namespace quillane::processing {

namespace {

constexpr Layout kRgb24{"Rgb24", QImage::Format_RGB32, ColourModel::Rgb};

TEST(Combine, AddsAndClamps)
{
    const Bitmap picture = MakeColour(qRgb(100, 200, 50), 20, 20);
    const Bitmap source = MakeColour(qRgb(30, 90, 0), 10, 10);
    const Bitmap result =
        Combine(picture, nullptr, QRect(5, 6, 10, 10), source, QPoint(), kCombineAdd);
    EXPECT_EQ(ColourAt(result, 5, 6), qRgb(130, 255, 50));
    EXPECT_EQ(ColourAt(result, 14, 15), qRgb(130, 255, 50));
    EXPECT_EQ(ColourAt(result, 4, 6), qRgb(100, 200, 50));
    EXPECT_EQ(ColourAt(result, 15, 15), qRgb(100, 200, 50));
    EXPECT_EQ(ColourAt(result, 5, 16), qRgb(100, 200, 50));
}

TEST(Combine, BlackLeavesThePictureAsItIs)
{
    for (const Layout& layout : kLayouts) {
        const Bitmap picture = MakePicture(layout, 30, 20);
        const Bitmap result = Combine(picture, nullptr, QRect(0, 0, 30, 20),
                                      MakeColour(qRgb(0, 0, 0), 30, 20), QPoint(), kCombineAdd);
        EXPECT_EQ(LargestDifference(result, InEffect(picture)), 0) << layout.name;
    }
}

TEST(Combine, OfAFilterWithThePictureItCameFromRaisesItsEdgesAlone)
{
    QImage pixels(40, 30, QImage::Format_RGB32);
    pixels.fill(qRgb(60, 60, 60));
    for (int y = 0; y < 30; ++y) {
        for (int x = 20; x < 40; ++x) {
            pixels.setPixel(x, y, qRgb(120, 110, 100));
        }
    }
    const Bitmap picture(pixels, ColourModel::Rgb, 24);
    const Bitmap edges = SpatialFilter(picture, nullptr, 16);
    const Bitmap result =
        Combine(edges, nullptr, QRect(0, 0, 40, 30), picture, QPoint(), kCombineAdd);
    EXPECT_EQ(ColourAt(result, 5, 15), qRgb(60, 60, 60));
    EXPECT_EQ(ColourAt(result, 35, 15), qRgb(120, 110, 100));
    EXPECT_EQ(ColourAt(result, 20, 15), qRgb(180, 160, 140));
}

TEST(Combine, LaysACutOutOverAPhotograph)
{
    QImage disc(20, 20, QImage::Format_ARGB32);
    disc.fill(qRgba(0, 0, 0, 0));
    for (int y = 5; y < 15; ++y) {
        for (int x = 5; x < 15; ++x) {
            disc.setPixel(x, y, qRgba(200, 190, 100, 255));
        }
    }
    disc.setPixel(0, 0, qRgba(0, 0, 0, 128));
    const Bitmap moon(disc, ColourModel::Rgb, 32);
    const Bitmap photograph = MakeColour(qRgb(255, 255, 255), 60, 50);
    // Wider than the moon, as the window that shows it is.
    const Bitmap result =
        Combine(photograph, nullptr, QRect(30, 20, 500, 400), moon, QPoint(), kCombineAdd);
    EXPECT_EQ(ColourAt(result, 40, 30), qRgb(200, 190, 100));
    EXPECT_EQ(ColourAt(result, 32, 22), qRgb(255, 255, 255));
    EXPECT_NEAR(qRed(ColourAt(result, 30, 20)), 127, 1);
    EXPECT_EQ(ColourAt(result, 29, 20), qRgb(255, 255, 255));
    EXPECT_EQ(result.Bits(), 24);
}

TEST(Combine, TakesEveryPairOfLayouts)
{
    for (const Layout& to : kLayouts) {
        for (const Layout& from : kLayouts) {
            const Bitmap picture = MakePicture(to, 30, 20);
            const Bitmap source = MakePicture(from, 12, 12);
            const Bitmap result =
                Combine(picture, nullptr, QRect(4, 4, 12, 12), source, QPoint(), kCombineAdd);
            EXPECT_EQ(result.Pixels().size(), QSize(30, 20));
            const bool deep = picture.Pixels().depth() == 16 || picture.Pixels().depth() == 64;
            EXPECT_EQ(result.Pixels().depth() == 16 || result.Pixels().depth() == 64, deep)
                << from.name << " into " << to.name;
            EXPECT_EQ(ColourAt(result, 25, 18), ColourAt(InEffect(picture), 25, 18))
                << from.name << " into " << to.name;
            EXPECT_GT(LargestDifference(result, picture), 0) << from.name << " into " << to.name;
        }
    }
}

TEST(Combine, LeavesOutWhatLiesBesideEitherPicture)
{
    constexpr qint32 kMost = std::numeric_limits<qint32>::max();
    const Bitmap picture = MakeColour(qRgb(10, 10, 10), 20, 20);
    const Bitmap source = MakeColour(qRgb(5, 5, 5), 8, 8);
    const auto sum = [&](QRect at, QPoint from) {
        const Bitmap result = Combine(picture, nullptr, at, source, from, kCombineAdd);
        int count = 0;
        for (int y = 0; y < 20; ++y) {
            for (int x = 0; x < 20; ++x) {
                count += ColourAt(result, x, y) == qRgb(15, 15, 15) ? 1 : 0;
            }
        }
        return count;
    };
    EXPECT_EQ(sum(QRect(-4, -4, 8, 8), QPoint()), 16);
    EXPECT_EQ(sum(QRect(16, 16, 8, 8), QPoint()), 16);
    EXPECT_EQ(sum(QRect(0, 0, 20, 20), QPoint()), 64);
    EXPECT_EQ(sum(QRect(0, 0, 20, 20), QPoint(4, 6)), 8);
    EXPECT_EQ(sum(QRect(0, 0, 8, 8), QPoint(-3, 0)), 40);
    EXPECT_EQ(sum(QRect(0, 0, 3, 2), QPoint()), 6);
    EXPECT_EQ(sum(QRect(30, 0, 8, 8), QPoint()), 0);
    EXPECT_EQ(sum(QRect(0, 0, 8, 8), QPoint(8, 0)), 0);
    EXPECT_EQ(sum(QRect(0, 0, -8, 8), QPoint()), 0);
    EXPECT_EQ(sum(QRect(0, 0, kMost, kMost), QPoint()), 64);
    EXPECT_EQ(sum(QRect(-kMost, 0, 5, 5), QPoint(kMost, 0)), 0);
}

TEST(Combine, KnowsOneWayOnly)
{
    const Bitmap picture = MakeColour(qRgb(10, 10, 10), 20, 20);
    EXPECT_THROW(Combine(picture, nullptr, QRect(0, 0, 5, 5), picture, QPoint(), 0), Failure);
    EXPECT_THROW(Combine(picture, nullptr, QRect(0, 0, 5, 5), {}, QPoint(), kCombineAdd), Failure);
}

QFont StampFont()
{
    QFont font(QStringLiteral("Arial"));
    font.setPointSize(18);
    font.setBold(true);
    return font;
}

TEST(TextSize, GrowsWithTheTextAndItsLines)
{
    const QSize one = TextSize(QStringLiteral("Jan 12,2005"), StampFont());
    EXPECT_GT(one.width(), 80);
    EXPECT_LT(one.width(), 260);
    EXPECT_GT(one.height(), 18);
    EXPECT_LT(one.height(), 48);
    const QSize two = TextSize(QStringLiteral("Jan 12,2005  3:30:07 PM"), StampFont());
    EXPECT_GT(two.width(), one.width());
    EXPECT_EQ(two.height(), one.height());
    EXPECT_GT(TextSize(QStringLiteral("a\r\nb"), StampFont()).height(), one.height() + 18);
    EXPECT_EQ(TextSize(QString(), StampFont()).width(), 0);
}

TEST(DrawText, DrawsInItsColourWithinItsSize)
{
    const QString text = QStringLiteral("Jan 12");
    const QSize size = TextSize(text, StampFont());
    const Bitmap white = MakeColour(qRgb(255, 255, 255), 300, 100);
    const Bitmap result =
        DrawText(white, nullptr, text, QPoint(50, 40), {StampFont(), qRgb(255, 0, 0), true});
    QRect drawn;
    int full = 0;
    for (int y = 0; y < 100; ++y) {
        for (int x = 0; x < 300; ++x) {
            const QRgb colour = ColourAt(result, x, y);
            if (colour != qRgb(255, 255, 255)) {
                drawn = drawn.united(QRect(x, y, 1, 1));
                EXPECT_EQ(qRed(colour), 255);
                full += colour == qRgb(255, 0, 0) ? 1 : 0;
            }
        }
    }
    EXPECT_GT(full, 30);
    EXPECT_TRUE(QRect(QPoint(49, 40), size + QSize(2, 0)).contains(drawn));
    EXPECT_GT(drawn.width(), size.width() * 3 / 4);
}

TEST(DrawText, TakesEveryLayoutAndKeepsItsDepth)
{
    for (const Layout& layout : kLayouts) {
        const Bitmap picture = MakeConstant(layout, 120, 60, 30);
        const Bitmap result = DrawText(picture, nullptr, QStringLiteral("Ag"), QPoint(10, 10),
                                       {StampFont(), qRgb(255, 255, 255), true});
        EXPECT_GT(LargestDifference(result, picture), 50) << layout.name;
        EXPECT_EQ(ColourAt(result, 119, 59), ColourAt(InEffect(picture), 119, 59)) << layout.name;
        EXPECT_EQ(result.Pixels().depth() == 64 || result.Pixels().depth() == 16,
                  picture.Pixels().depth() == 64 || picture.Pixels().depth() == 16);
        const bool grey =
            layout.model == ColourModel::Grey || layout.model == ColourModel::BlackWhite;
        EXPECT_EQ(result.Model() == ColourModel::Grey, grey) << layout.name;
        const Bitmap red = DrawText(picture, nullptr, QStringLiteral("Ag"), QPoint(10, 10),
                                    {StampFont(), qRgb(255, 0, 0), true});
        EXPECT_EQ(red.Model(), ColourModel::Rgb) << layout.name;
    }
}

TEST(DrawText, OnTransparentPixelsIsSeen)
{
    QImage pixels(120, 60, QImage::Format_ARGB32);
    pixels.fill(qRgba(0, 255, 0, 0));
    const Bitmap result =
        DrawText(Bitmap(pixels, ColourModel::Rgb, 32), nullptr, QStringLiteral("Ag"),
                 QPoint(10, 10), {StampFont(), qRgb(255, 0, 0), true});
    int seen = 0;
    for (int y = 0; y < 60; ++y) {
        for (int x = 0; x < 120; ++x) {
            const QRgb colour = ColourAt(result, x, y);
            if (qAlpha(colour) > 0) {
                ++seen;
                EXPECT_EQ(qGreen(colour), 0);
            }
        }
    }
    EXPECT_GT(seen, 50);
}

TEST(DrawText, StaysInTheRegionAndOnThePicture)
{
    const Bitmap white = MakeColour(qRgb(255, 255, 255), 100, 60);
    const Region left = Region::Rectangle(QSize(100, 60), 0, 0, 30, 60);
    const Bitmap result =
        DrawText(white, &left, QStringLiteral("MMMMMM"), QPoint(0, 5), {StampFont(), 0, true});
    EXPECT_GT(LargestDifference(result, white), 100);
    for (int y = 0; y < 60; ++y) {
        for (int x = 30; x < 100; ++x) {
            ASSERT_EQ(ColourAt(result, x, y), qRgb(255, 255, 255));
        }
    }
    for (const QPoint at : {QPoint(-500, 0), QPoint(99, 59), QPoint(0, -1000), QPoint(-10, -10),
                            QPoint(2'000'000'000, -2'000'000'000)}) {
        EXPECT_EQ(DrawText(white, nullptr, QString(3000, u'M'), at, {StampFont(), 0, true})
                      .Pixels()
                      .size(),
                  QSize(100, 60));
    }
    EXPECT_TRUE(SamePixels(
        DrawText(white, nullptr, QString(), QPoint(5, 5), {StampFont(), 0, true}).Pixels(),
        white.Pixels()));
}

TEST(DrawText, WithoutTransparencyIsWhiteBehindTheLetters)
{
    const Bitmap blue = MakeColour(qRgb(0, 0, 255), 200, 60);
    const QSize size = TextSize(QStringLiteral("Ag"), StampFont());
    const Bitmap result = DrawText(blue, nullptr, QStringLiteral("Ag"), QPoint(20, 10),
                                   {StampFont(), qRgb(0, 0, 0), false});
    EXPECT_EQ(ColourAt(result, 20, 10), qRgb(255, 255, 255));
    EXPECT_EQ(ColourAt(result, 19, 10), qRgb(0, 0, 255));
    EXPECT_EQ(ColourAt(result, 20 + size.width(), 10), qRgb(0, 0, 255));
    EXPECT_EQ(ColourAt(result, 20, 10 + size.height()), qRgb(0, 0, 255));
}

} // namespace

} // namespace quillane::processing
