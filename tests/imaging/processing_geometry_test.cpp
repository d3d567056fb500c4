#include "core/failure.h"
#include "imaging/processing/cut_out.h"
#include "imaging/processing/depth.h"
#include "imaging/processing/geometry.h"
#include "imaging/processing/histogram.h"
#include "imaging/resize.h"
#include "processing_support.h"
#include <gtest/gtest.h>
#include <limits>

namespace quillane::processing {

namespace {

constexpr Layout kRgb24{"Rgb24", QImage::Format_RGB32, ColourModel::Rgb};

TEST(Rotate, FourQuarterTurnsGiveTheOriginalInEveryLayout)
{
    for (const Layout& layout : kLayouts) {
        const Bitmap picture = MakePicture(layout, 71, 38);
        Bitmap turned = picture;
        for (int i = 0; i < 4; ++i) {
            turned = Rotate(turned, nullptr, 9000, true, 0);
            EXPECT_EQ(turned.Width(), i % 2 == 0 ? 38 : 71);
            EXPECT_EQ(turned.Model(), layout.model);
        }
        EXPECT_TRUE(SamePixels(turned.Pixels(), picture.Pixels())) << layout.name;
        const Bitmap half = Rotate(picture, nullptr, 18000, false, 0);
        EXPECT_TRUE(SamePixels(Rotate(half, nullptr, -18000, true, 0).Pixels(), picture.Pixels()))
            << layout.name;
        EXPECT_TRUE(SamePixels(
            Rotate(Rotate(picture, nullptr, 9000, true, 0), nullptr, 27000, true, 0).Pixels(),
            picture.Pixels()))
            << layout.name;
    }
}

TEST(Rotate, AQuarterTurnGoesToTheRight)
{
    for (const Layout& layout : kLayouts) {
        const Bitmap picture = MakePicture(layout, 40, 30);
        const Bitmap right = Rotate(picture, nullptr, 9000, true, 0);
        const Bitmap left = Rotate(picture, nullptr, -9000, true, 0);
        for (int y = 0; y < 30; y += 3) {
            for (int x = 0; x < 40; x += 3) {
                ASSERT_EQ(ColourAt(right, 29 - y, x), ColourAt(picture, x, y)) << layout.name;
                ASSERT_EQ(ColourAt(left, y, 39 - x), ColourAt(picture, x, y)) << layout.name;
            }
        }
    }
}

TEST(Rotate, KeepsThePlacesAtOtherAngles)
{
    // A dark dot right of the middle goes down by a turn of 90 degrees less or more a little.
    QImage pixels(101, 101, QImage::Format_RGB32);
    pixels.fill(qRgb(255, 255, 255));
    for (int y = 48; y <= 52; ++y) {
        for (int x = 88; x <= 92; ++x) {
            pixels.setPixel(x, y, qRgb(0, 0, 0));
        }
    }
    const Bitmap picture(pixels, ColourModel::Rgb, 24);
    const double angle = 60 * 3.14159265358979 / 180;
    const Bitmap turned = Rotate(picture, nullptr, 6000, false, qRgb(255, 255, 255));
    EXPECT_EQ(turned.Width(), 101);
    EXPECT_LT(
        qGray(ColourAt(turned, int(50 + 40 * std::cos(angle)), int(50 + 40 * std::sin(angle)))),
        60);
    EXPECT_GT(qGray(ColourAt(turned, 90, 50)), 250);
}

TEST(Rotate, FillsWhatThePictureDoesNotCover)
{
    for (const Layout& layout : kLayouts) {
        const Bitmap picture = MakeConstant(layout, 60, 40, 200);
        const QRgb fill = qRgb(10, 200, 30);
        const Bitmap turned = Rotate(picture, nullptr, 4500, true, fill);
        EXPECT_EQ(turned.Width(), 71);
        EXPECT_EQ(turned.Height(), 71);
        EXPECT_EQ(ColourAt(turned, 0, 0), fill) << layout.name;
        EXPECT_EQ(ColourAt(turned, 70, 70), fill) << layout.name;
        EXPECT_EQ(LargestDifference(Trim(turned, QRect(30, 30, 8, 8)),
                                    Trim(InEffect(picture), QRect(30, 30, 8, 8))),
                  0)
            << layout.name;
        const Bitmap white = Rotate(picture, nullptr, 4500, true, qRgb(255, 255, 255));
        EXPECT_EQ(white.Model() == ColourModel::Grey,
                  layout.model == ColourModel::Grey || layout.model == ColourModel::BlackWhite);
    }
}

TEST(Rotate, WithoutRoomKeepsTheSizeAndTheMiddle)
{
    const Bitmap picture = MakePicture(kRgb24, 61, 41);
    const Bitmap turned = Rotate(picture, nullptr, 9000, false, qRgb(1, 2, 3));
    EXPECT_EQ(turned.Pixels().size(), picture.Pixels().size());
    EXPECT_EQ(ColourAt(turned, 0, 0), qRgb(1, 2, 3));
    // Turned around the middle: exact pixels, none mixed.
    for (int d = -15; d <= 15; ++d) {
        EXPECT_EQ(ColourAt(turned, 30, 20 + d), ColourAt(picture, 30 + d, 20)) << d;
    }
    EXPECT_TRUE(SamePixels(Rotate(picture, nullptr, 36000, true, 0).Pixels(), picture.Pixels()));
    EXPECT_TRUE(SamePixels(
        Rotate(picture, nullptr, std::numeric_limits<qint32>::max(), true, 0).Pixels(),
        Rotate(picture, nullptr, std::numeric_limits<qint32>::max() % 36000, true, 0).Pixels()));
}

TEST(Rotate, OfATransparentPictureBringsUpNoHiddenColour)
{
    QImage pixels(40, 40, QImage::Format_ARGB32);
    pixels.fill(qRgba(255, 0, 0, 0));
    for (int y = 10; y < 30; ++y) {
        for (int x = 10; x < 30; ++x) {
            pixels.setPixel(x, y, qRgba(0, 0, 255, 255));
        }
    }
    const Bitmap turned = Rotate(Bitmap(pixels, ColourModel::Rgb, 32), nullptr, 3000, false, 0);
    for (int y = 6; y < 34; ++y) {
        for (int x = 6; x < 34; ++x) {
            const QRgb colour = ColourAt(turned, x, y);
            ASSERT_TRUE(qAlpha(colour) == 0 || qRed(colour) == 0) << x << "," << y;
        }
    }
}

TEST(Rotate, BeyondTheLimitIsAFailure)
{
    const Bitmap wide = MakeConstant(kRgb24, 65'000, 100, 9);
    EXPECT_THROW(Rotate(wide, nullptr, 4500, true, 0), Failure);
    EXPECT_EQ(Rotate(wide, nullptr, 9000, true, 0).Height(), 65'000);
    // Longer than the library's own numbers of places reach.
    EXPECT_EQ(ColourAt(Rotate(wide, nullptr, 18001, false, 0), 64'000, 50) & 0xffffff, 0x090909u);
}

TEST(Shear, MovesRowsOrColumnsAndHoldsThePicture)
{
    const Bitmap picture = MakeConstant(kRgb24, 50, 31, 100);
    const Bitmap across = Shear(picture, nullptr, 4500, true, qRgb(255, 0, 0));
    EXPECT_EQ(across.Width(), 80);
    EXPECT_EQ(across.Height(), 31);
    EXPECT_EQ(ColourAt(across, 0, 0), qRgb(100, 100, 100));
    EXPECT_EQ(ColourAt(across, 79, 0), qRgb(255, 0, 0));
    EXPECT_EQ(ColourAt(across, 79, 30), qRgb(100, 100, 100));
    EXPECT_EQ(ColourAt(across, 0, 30), qRgb(255, 0, 0));
    const Bitmap down = Shear(picture, nullptr, -4500, false, qRgb(255, 0, 0));
    EXPECT_EQ(down.Width(), 50);
    EXPECT_EQ(down.Height(), 80);
    EXPECT_EQ(ColourAt(down, 0, 0), qRgb(255, 0, 0));
    EXPECT_EQ(ColourAt(down, 49, 0), qRgb(100, 100, 100));
    EXPECT_TRUE(SamePixels(Shear(picture, nullptr, 0, true, 0).Pixels(), picture.Pixels()));
    EXPECT_EQ(Shear(picture, nullptr, 100'000, true, 0).Width(), 80);
    const Region region = Region::Rectangle(QSize(50, 31), 5, 5, 20, 20);
    const Bitmap inside = Shear(picture, &region, 3000, true, qRgb(255, 0, 0));
    EXPECT_EQ(inside.Pixels().size(), QSize(50, 31));
    EXPECT_EQ(ColourAt(inside, 4, 4), qRgb(100, 100, 100));
    EXPECT_EQ(ColourAt(inside, 24, 5), qRgb(255, 0, 0));
}

TEST(FlipAndReverse, TwiceGiveTheOriginalAndTogetherHalfATurn)
{
    for (const Layout& layout : kLayouts) {
        const Bitmap picture = MakePicture(layout, 71, 38);
        const Bitmap flipped = Flip(picture, nullptr);
        EXPECT_EQ(ColourAt(flipped, 3, 0), ColourAt(picture, 3, 37)) << layout.name;
        EXPECT_TRUE(SamePixels(Flip(flipped, nullptr).Pixels(), picture.Pixels())) << layout.name;
        const Bitmap mirrored = Reverse(picture, nullptr);
        EXPECT_EQ(ColourAt(mirrored, 0, 5), ColourAt(picture, 70, 5)) << layout.name;
        EXPECT_TRUE(SamePixels(Reverse(mirrored, nullptr).Pixels(), picture.Pixels()))
            << layout.name;
        EXPECT_TRUE(SamePixels(Reverse(flipped, nullptr).Pixels(),
                               Rotate(picture, nullptr, 18000, true, 0).Pixels()))
            << layout.name;
    }
}

TEST(Trim, CutsOutWhatLiesInTheRectangle)
{
    for (const Layout& layout : kLayouts) {
        const Bitmap picture = MakePicture(layout, 50, 40);
        const Bitmap part = Trim(picture, QRect(13, 7, 20, 11));
        EXPECT_EQ(part.Model(), layout.model);
        EXPECT_EQ(part.Pixels().size(), QSize(20, 11));
        for (const QPoint at : {QPoint(0, 0), QPoint(19, 10), QPoint(5, 8)}) {
            EXPECT_EQ(ColourAt(part, at.x(), at.y()), ColourAt(picture, at.x() + 13, at.y() + 7))
                << layout.name;
        }
        EXPECT_EQ(Trim(picture, QRect(40, 30, 100, 100)).Pixels().size(), QSize(10, 10));
        EXPECT_THROW(Trim(picture, QRect(50, 0, 5, 5)), Failure);
        EXPECT_THROW(Trim(picture, QRect()), Failure);
    }
}

TEST(CutOut, KeepsARectangleAndMakesTheRestOfAShapeTransparent)
{
    for (const Layout& layout : kLayouts) {
        const Bitmap picture = MakePicture(layout, 50, 40);
        const Region square = Region::Rectangle(QSize(50, 40), 10, 10, 20, 20);
        EXPECT_TRUE(
            SamePixels(CutOut(picture, square).Pixels(), Trim(picture, square.Bounds()).Pixels()))
            << layout.name;
        const Region disc = Region::Ellipse(QSize(50, 40), 10, 10, 20, 20);
        const Bitmap round = CutOut(picture, disc);
        EXPECT_EQ(qAlpha(ColourAt(round, 0, 0)), 0) << layout.name;
        if (!picture.Pixels().hasAlphaChannel() || picture.Model() == ColourModel::Cmyk) {
            EXPECT_EQ(qAlpha(ColourAt(round, 10, 10)), 255) << layout.name;
        }
    }
    EXPECT_THROW(CutOut(MakePicture(kRgb24, 5, 5), {}), Failure);
}

TEST(PastedInto, PutsBackWhatWasCutOutInEveryLayout)
{
    for (const Layout& layout : kLayouts) {
        const Bitmap picture = MakePicture(layout, 50, 40);
        const Region disc = Region::Ellipse(QSize(50, 40), 10, 10, 20, 20);
        const Bitmap piece = Trim(picture, disc.Bounds());
        const Bitmap same = PastedInto(picture, disc, piece, disc.Bounds().topLeft());
        EXPECT_EQ(LargestDifference(same, picture), 0) << layout.name;
        const Region moved = disc.Moved(QSize(50, 40), 15, 12);
        const Bitmap there = PastedInto(picture, moved, piece, QPoint(25, 22));
        EXPECT_EQ(ColourAt(InEffect(there), 35, 32), ColourAt(InEffect(picture), 20, 20))
            << layout.name;
        EXPECT_EQ(ColourAt(InEffect(there), 5, 5), ColourAt(InEffect(picture), 5, 5))
            << layout.name;
        // Into a picture of another layout: its depth stays.
        for (const Layout& other : kLayouts) {
            const Bitmap host = MakePicture(other, 50, 40);
            const Bitmap mixed = PastedInto(host, moved, piece, QPoint(25, 22));
            EXPECT_EQ(mixed.Pixels().size(), QSize(50, 40));
            EXPECT_EQ(mixed.Pixels().depth() == 64 || mixed.Pixels().depth() == 16,
                      host.Pixels().depth() == 64 || host.Pixels().depth() == 16)
                << layout.name << " into " << other.name;
        }
    }
}

TEST(Resized, KeepsAConstantPictureAndItsSizeAtEveryScale)
{
    for (const Layout& layout : kLayouts) {
        const Bitmap constant = MakeConstant(layout, 37, 23, 200);
        for (const ResizeWay way : {ResizeWay::Plain, ResizeWay::Resample, ResizeWay::Bicubic}) {
            for (const QSize size : {QSize(1, 1), QSize(5, 3), QSize(36, 22), QSize(100, 10),
                                     QSize(10, 100), QSize(150, 90), QSize(1, 300)}) {
                const Bitmap result = Resized(constant, size, way);
                ASSERT_EQ(result.Pixels().size(), size);
                EXPECT_EQ(UniqueColors(result, nullptr), 1) << layout.name;
                EXPECT_LE(LargestDifference(result, Resized(constant, size, ResizeWay::Plain)), 0)
                    << layout.name << " " << int(way) << " " << size.width();
            }
        }
    }
    EXPECT_THROW(Resized(MakeConstant(kRgb24, 2, 2, 1), QSize(0, 5), ResizeWay::Plain), Failure);
}

TEST(Resized, AHalfIsTheMeanOfFourPixels)
{
    const Bitmap picture = MakePicture({"", QImage::Format_Grayscale8, ColourModel::Grey}, 40, 30);
    const Bitmap half = Resized(picture, QSize(20, 15), ResizeWay::Resample);
    for (int y = 0; y < 15; ++y) {
        for (int x = 0; x < 20; ++x) {
            int sum = 0;
            for (int i = 0; i < 4; ++i) {
                sum += picture.Pixels().constScanLine(2 * y + i / 2)[2 * x + i % 2];
            }
            ASSERT_NEAR(half.Pixels().constScanLine(y)[x], sum / 4.0, 0.76);
        }
    }
}

TEST(Resized, BicubicMissesNoPixelWhenMuchSmaller)
{
    // Fine stripes become their mean, whatever the way of mixing.
    QImage pixels(320, 320, QImage::Format_Grayscale8);
    for (int y = 0; y < 320; ++y) {
        for (int x = 0; x < 320; ++x) {
            pixels.scanLine(y)[x] = x % 2 == 0 ? 0 : 200;
        }
    }
    const Bitmap small =
        Resized(Bitmap(pixels, ColourModel::Grey, 8), QSize(40, 40), ResizeWay::Bicubic);
    for (int x = 0; x < 40; ++x) {
        EXPECT_NEAR(small.Pixels().constScanLine(20)[x], 100, 2);
    }
}

TEST(Resized, NoColourComesOutOfTransparentPixels)
{
    QImage pixels(20, 20, QImage::Format_ARGB32);
    pixels.fill(qRgba(255, 0, 0, 0));
    for (int y = 0; y < 20; ++y) {
        for (int x = 0; x < 7; ++x) {
            pixels.setPixel(x, y, qRgba(0, 0, 200, 255));
        }
    }
    for (const ResizeWay way : {ResizeWay::Resample, ResizeWay::Bicubic}) {
        const Bitmap larger = Resized(Bitmap(pixels, ColourModel::Rgb, 32), QSize(57, 57), way);
        for (int x = 0; x < 57; ++x) {
            const QRgb colour = ColourAt(larger, x, 28);
            EXPECT_TRUE(qAlpha(colour) == 0 || qRed(colour) == 0) << x;
        }
    }
}

} // namespace

} // namespace quillane::processing
