#include "core/failure.h"
#include "imaging/processing/contour.h"
#include "imaging/processing/filters.h"
#include "imaging/processing/halftone.h"
#include "imaging/processing/histogram.h"
#include "imaging/processing/neighbourhood.h"
#include "imaging/processing/noise.h"
#include "imaging/processing/tone.h"
#include "processing_support.h"
#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <set>
#include <vector>

namespace quillane::processing {

namespace {

constexpr qint32 kMost = std::numeric_limits<qint32>::max();
constexpr qint32 kLeast = std::numeric_limits<qint32>::min();
constexpr Layout kGrey8{"Grey8", QImage::Format_Grayscale8, ColourModel::Grey};
constexpr Layout kGrey16{"Grey16", QImage::Format_Grayscale16, ColourModel::Grey};

int Value8(const Bitmap& picture, int x, int y)
{
    return picture.Pixels().constScanLine(y)[x];
}

int Value16(const Bitmap& picture, int x, int y)
{
    return reinterpret_cast<const quint16*>(picture.Pixels().constScanLine(y))[x];
}

/// Grey of 8 bits, black but for one white pixel in the middle.
Bitmap Dot(int size)
{
    QImage pixels(size, size, QImage::Format_Grayscale8);
    pixels.fill(0);
    pixels.scanLine(size / 2)[size / 2] = 255;
    return Bitmap(pixels, ColourModel::Grey, 8);
}

TEST(Filters, LeaveAConstantPictureConstant)
{
    for (const Layout& layout : kLayouts) {
        const Bitmap constant = MakeConstant(layout, 40, 30, 180);
        const Bitmap results[] = {
            Average(constant, nullptr, 5),
            Average(constant, nullptr, 200),
            Median(constant, nullptr, 3),
            Median(constant, nullptr, 11),
            Sharpen(constant, nullptr, 1000),
            Sharpen(constant, nullptr, -1000),
            Sharpen(constant, nullptr, 333),
            Mosaic(constant, nullptr, 9),
            BinaryFilter(constant, nullptr, 0),
            BinaryFilter(constant, nullptr, 4),
            Contrast(constant, nullptr, 0),
            AddNoise(constant, nullptr, 0, NoiseChannel::All, 3),
        };
        for (size_t i = 0; i < std::size(results); ++i) {
            EXPECT_EQ(LargestDifference(results[i], constant), 0) << layout.name << " " << i;
        }
        for (const SpatialKernel& kernel : SpatialKernels()) {
            const Bitmap flat = SpatialFilter(constant, nullptr, kernel.code);
            EXPECT_EQ(ColourAt(flat, 0, 0) & 0xffffff, 0u) << layout.name << " " << kernel.code;
            EXPECT_EQ(UniqueColors(flat, nullptr), 1) << layout.name << " " << kernel.code;
        }
        const Bitmap relief = Emboss(constant, nullptr, 3, 1000);
        EXPECT_EQ(qGreen(ColourAt(relief, 20, 20)), 128) << layout.name;
        EXPECT_EQ(UniqueColors(relief, nullptr), 1) << layout.name;
    }
}

TEST(Average, SpreadsADotOverItsSquare)
{
    const Bitmap result = Average(Dot(21), nullptr, 5);
    for (int y = 0; y < 21; ++y) {
        for (int x = 0; x < 21; ++x) {
            const bool near = std::abs(x - 10) <= 2 && std::abs(y - 10) <= 2;
            EXPECT_EQ(Value8(result, x, y), near ? 10 : 0);
        }
    }
    EXPECT_TRUE(SamePixels(Average(Dot(9), nullptr, 0).Pixels(), Dot(9).Pixels()));
    EXPECT_TRUE(SamePixels(Average(Dot(9), nullptr, kLeast).Pixels(), Dot(9).Pixels()));
    EXPECT_EQ(Average(Dot(9), nullptr, kMost).Width(), 9);
}

TEST(Average, InARegionMixesWhatLiesAroundItIn)
{
    QImage pixels(20, 20, QImage::Format_Grayscale8);
    pixels.fill(0);
    for (int y = 0; y < 20; ++y) {
        pixels.scanLine(y)[9] = 250;
    }
    const Region right = Region::Rectangle(QSize(20, 20), 10, 0, 10, 20);
    const Bitmap result = Average(Bitmap(pixels, ColourModel::Grey, 8), &right, 5);
    EXPECT_EQ(Value8(result, 10, 10), 50);
    EXPECT_EQ(Value8(result, 8, 10), 0);
}

TEST(Median, RemovesADotAndKeepsAnEdge)
{
    EXPECT_EQ(UniqueColors(Median(Dot(15), nullptr, 3), nullptr), 1);
    for (const Layout& layout : {kGrey8, kGrey16}) {
        for (const qint32 size : {2, 3, 5, 7, 13}) {
            QImage pixels = MakeConstant(layout, 30, 30, 0).Pixels();
            for (int y = 0; y < 30; ++y) {
                std::memset(pixels.scanLine(y), 200, size_t(15 * pixels.depth() / 8));
            }
            const Bitmap edge(pixels, ColourModel::Grey,
                              layout.format == QImage::Format_Grayscale8 ? 8 : 16);
            EXPECT_TRUE(SamePixels(Median(edge, nullptr, size).Pixels(), pixels))
                << layout.name << " " << size;
        }
    }
}

TEST(Median, OfSixteenBitsIsTheMiddleOfTheSortedValues)
{
    const Bitmap picture = MakePicture(kGrey16, 40, 30);
    for (const qint32 size : {3, 7, 11}) {
        const Bitmap result = Median(picture, nullptr, size);
        for (const QPoint at : {QPoint(20, 15), QPoint(8, 20), QPoint(0, 0), QPoint(39, 29)}) {
            std::vector<int> values;
            for (int y = at.y() - size / 2; y <= at.y() + size / 2; ++y) {
                for (int x = at.x() - size / 2; x <= at.x() + size / 2; ++x) {
                    values.push_back(Value16(picture, std::clamp(x, 0, 39), std::clamp(y, 0, 29)));
                }
            }
            std::sort(values.begin(), values.end());
            EXPECT_EQ(Value16(result, at.x(), at.y()), values[values.size() / 2])
                << size << " at " << at.x() << "," << at.y();
        }
    }
}

TEST(Median, InARegionSeesWhatLiesAroundIt)
{
    const Bitmap picture = MakePicture(kGrey8, 60, 50);
    const Bitmap whole = Median(picture, nullptr, 9);
    const Region region = Region::Rectangle(QSize(60, 50), 20, 15, 20, 20);
    const Bitmap part = Median(picture, &region, 9);
    for (int y = 15; y < 35; ++y) {
        for (int x = 20; x < 40; ++x) {
            ASSERT_EQ(Value8(part, x, y), Value8(whole, x, y)) << x << "," << y;
        }
    }
}

TEST(Sharpen, RaisesTheDifferenceAtAnEdgeAndBelowZeroLowersIt)
{
    QImage pixels(20, 10, QImage::Format_Grayscale8);
    pixels.fill(100);
    for (int y = 0; y < 10; ++y) {
        std::fill_n(pixels.scanLine(y), 10, uchar(150));
    }
    const Bitmap edge(pixels, ColourModel::Grey, 8);
    int last = 0;
    for (const qint32 value : {-1000, -500, 0, 100, 200}) {
        const Bitmap result = Sharpen(edge, nullptr, value);
        const int step = Value8(result, 9, 5) - Value8(result, 10, 5);
        EXPECT_GT(step, last) << value;
        last = step;
    }
    EXPECT_TRUE(SamePixels(Sharpen(edge, nullptr, 0).Pixels(), pixels));
    const Bitmap most = Sharpen(edge, nullptr, kMost);
    EXPECT_EQ(Value8(most, 9, 5), 255);
    EXPECT_EQ(Value8(most, 10, 5), 0);
}

TEST(Emboss, IsBrightOnTheSideOfTheLightOnly)
{
    // A raised square: the side that faces the light is bright, the other dark.
    QImage pixels(30, 30, QImage::Format_Grayscale8);
    pixels.fill(50);
    for (int y = 10; y < 20; ++y) {
        std::fill_n(pixels.scanLine(y) + 10, 10, uchar(150));
    }
    const Bitmap square(pixels, ColourModel::Grey, 8);
    const struct {
        qint32 direction;
        QPoint lit, dark;
    } rows[] = {
        {0, {15, 10}, {15, 19}}, {2, {19, 15}, {10, 15}}, {4, {15, 19}, {15, 10}},
        {6, {10, 15}, {19, 15}}, {1, {19, 10}, {10, 19}}, {5, {10, 19}, {19, 10}},
    };
    for (const auto& row : rows) {
        const Bitmap relief = Emboss(square, nullptr, row.direction, 300);
        EXPECT_GT(Value8(relief, row.lit.x(), row.lit.y()), 140) << row.direction;
        EXPECT_LT(Value8(relief, row.dark.x(), row.dark.y()), 116) << row.direction;
    }
    EXPECT_EQ(UniqueColors(Emboss(square, nullptr, 0, 0), nullptr), 1);
}

TEST(SpatialFilter, TablesAreNumberedInOrderAndComplete)
{
    std::set<FilterFamily> families;
    for (size_t i = 0; i < SpatialKernels().size(); ++i) {
        const SpatialKernel& kernel = SpatialKernels()[i];
        EXPECT_EQ(kernel.code, qint32(i));
        EXPECT_EQ(FindSpatialKernel(kernel.code), &kernel);
        int sum = 0;
        for (const int weight : kernel.weights) {
            sum += weight;
        }
        EXPECT_EQ(sum, 0) << kernel.code; // plain areas become black
        families.insert(kernel.family);
    }
    for (size_t i = 0; i < BinaryKernels().size(); ++i) {
        EXPECT_EQ(BinaryKernels()[i].code, qint32(i));
        families.insert(BinaryKernels()[i].family);
    }
    EXPECT_EQ(families.size(), 8u);
    EXPECT_EQ(FindSpatialKernel(16)->family, FilterFamily::ShiftAndDifference);
    for (const qint32 code : {-1, 23, kMost, kLeast}) {
        EXPECT_EQ(FindSpatialKernel(code), nullptr);
        EXPECT_THROW(SpatialFilter(Dot(9), nullptr, code), Failure);
        EXPECT_THROW(BinaryFilter(Dot(9), nullptr, code), Failure);
    }
}

TEST(SpatialFilter, AnswersADotWithItsWeights)
{
    for (const Layout& layout : {kGrey8, kGrey16}) {
        QImage pixels = MakeConstant(layout, 9, 9, 0).Pixels();
        if (layout.format == QImage::Format_Grayscale8) {
            pixels.scanLine(4)[4] = 10;
        } else {
            reinterpret_cast<quint16*>(pixels.scanLine(4))[4] = 10;
        }
        const Bitmap dot(pixels, ColourModel::Grey, 8);
        for (const SpatialKernel& kernel : SpatialKernels()) {
            const Bitmap result = SpatialFilter(dot, nullptr, kernel.code);
            for (int i = 0; i < 9; ++i) {
                // The pixel that has the dot in its upper left weighs it with the first weight.
                const int x = 4 - (i % 3 - 1);
                const int y = 4 - (i / 3 - 1);
                const int signedValue = 10 * kernel.weights[i];
                const int expected =
                    kernel.bright ? std::max(signedValue, 0) : std::abs(signedValue);
                const int value = layout.format == QImage::Format_Grayscale8
                    ? Value8(result, x, y)
                    : Value16(result, x, y);
                EXPECT_EQ(value, expected) << layout.name << " " << kernel.code << " " << i;
            }
        }
    }
}

TEST(BinaryFilter, GrowsAndShrinksADotAlongItsMembers)
{
    for (const BinaryKernel& kernel : BinaryKernels()) {
        const Bitmap result = BinaryFilter(Dot(9), nullptr, kernel.code);
        for (int i = 0; i < 9; ++i) {
            const bool grown = kernel.family == FilterFamily::Dilation && kernel.members[i];
            EXPECT_EQ(Value8(result, 3 + i % 3, 3 + i / 3), grown ? 255 : 0)
                << kernel.code << " " << i;
        }
    }
}

TEST(BinaryFilter, ErosionIsDilationOfTheNegative)
{
    const Bitmap picture = MakePicture(kGrey8, 50, 40);
    for (const qint32 code : {0, 1, 2, 3}) {
        const Bitmap eroded = BinaryFilter(picture, nullptr, code);
        const Bitmap other =
            Invert(BinaryFilter(Invert(picture, nullptr), nullptr, code + 4), nullptr);
        EXPECT_TRUE(SamePixels(eroded.Pixels(), other.Pixels())) << code;
    }
}

TEST(Mosaic, FillsEachTileWithItsMean)
{
    const Bitmap picture = MakePicture(kGrey8, 23, 17);
    const Bitmap result = Mosaic(picture, nullptr, 5);
    for (int top = 0; top < 17; top += 5) {
        for (int left = 0; left < 23; left += 5) {
            int sum = 0;
            int count = 0;
            for (int y = top; y < std::min(top + 5, 17); ++y) {
                for (int x = left; x < std::min(left + 5, 23); ++x) {
                    sum += Value8(picture, x, y);
                    ++count;
                    ASSERT_EQ(Value8(result, x, y), Value8(result, left, top));
                }
            }
            EXPECT_NEAR(Value8(result, left, top), double(sum) / count, 0.51);
        }
    }
    EXPECT_EQ(UniqueColors(Mosaic(picture, nullptr, kMost), nullptr), 1);
    EXPECT_TRUE(SamePixels(Mosaic(picture, nullptr, kLeast).Pixels(), picture.Pixels()));
}

TEST(AddNoise, StaysWithinItsRangeAndItsChannel)
{
    const Bitmap grey = MakeColour(qRgb(100, 100, 100), 100, 100);
    const Bitmap red = AddNoise(grey, nullptr, 200, NoiseChannel::Red, 11);
    int least = 255;
    int most = 0;
    for (int y = 0; y < 100; ++y) {
        for (int x = 0; x < 100; ++x) {
            const QRgb colour = ColourAt(red, x, y);
            ASSERT_EQ(qGreen(colour), 100);
            ASSERT_EQ(qBlue(colour), 100);
            least = std::min(least, qRed(colour));
            most = std::max(most, qRed(colour));
        }
    }
    EXPECT_EQ(least, 49);
    EXPECT_EQ(most, 151);
    EXPECT_EQ(qRed(ColourAt(AddNoise(grey, nullptr, 200, NoiseChannel::Green, 1), 5, 5)), 100);
    EXPECT_NE(UniqueColors(AddNoise(grey, nullptr, 200, NoiseChannel::Blue, 1), nullptr), 1);
}

TEST(AddNoise, IsTheSameForASeedAndEvenOverThePicture)
{
    const Bitmap grey = MakeColour(qRgb(100, 100, 100), 200, 200);
    const Bitmap first = AddNoise(grey, nullptr, 300, NoiseChannel::All, 5);
    EXPECT_TRUE(
        SamePixels(first.Pixels(), AddNoise(grey, nullptr, 300, NoiseChannel::All, 5).Pixels()));
    EXPECT_FALSE(
        SamePixels(first.Pixels(), AddNoise(grey, nullptr, 300, NoiseChannel::All, 6).Pixels()));
    double sum[3] = {};
    for (int y = 0; y < 200; ++y) {
        for (int x = 0; x < 200; ++x) {
            const QRgb colour = ColourAt(first, x, y);
            sum[0] += qRed(colour);
            sum[1] += qGreen(colour);
            sum[2] += qBlue(colour);
        }
    }
    for (const double each : sum) {
        EXPECT_NEAR(each / 40000, 100, 1.5);
    }
    // No row is like the one above it.
    for (int y = 1; y < 200; ++y) {
        EXPECT_FALSE(
            SamePixels(first.Pixels().copy(0, y - 1, 200, 1), first.Pixels().copy(0, y, 200, 1)));
    }
}

TEST(Halftone, IsAsBrightAsThePictureOnTheWhole)
{
    for (const HalftoneType type : {HalftoneType::Dots, HalftoneType::Lines}) {
        for (const qint32 angle : {0, 1500, 4500, -4500, 9000, kMost, kLeast}) {
            for (const int value : {0, 1, 64, 128, 200, 254, 255}) {
                const Bitmap result =
                    Halftone(MakeConstant(kGrey8, 160, 160, value), nullptr, type, angle);
                const HistogramTable table = Histogram(result, nullptr, HistogramChannel::Master);
                EXPECT_EQ(table[0] + table[255], 160 * 160);
                // At right angles a cell has only eight places across and down.
                EXPECT_NEAR(double(table[255]) / (160 * 160), value / 255.0, 0.1)
                    << angle << " " << value;
                if (value == 0 || value == 255) {
                    EXPECT_EQ(UniqueColors(result, nullptr), 1);
                }
            }
        }
    }
}

TEST(ContourFilter, DrawsLinesWhereTheStepsMeet)
{
    QImage pixels(256, 5, QImage::Format_Grayscale8);
    for (int y = 0; y < 5; ++y) {
        for (int x = 0; x < 256; ++x) {
            pixels.scanLine(y)[x] = uchar(x);
        }
    }
    const Bitmap ramp(pixels, ColourModel::Grey, 8);
    const Bitmap lines = ContourFilter(ramp, nullptr, {40, 50, 0, ContourOption::BlackLines});
    for (int x = 0; x < 256; ++x) {
        const bool line = x == 39 || x == 89 || x == 139 || x == 189 || x == 239;
        EXPECT_EQ(Value8(lines, x, 2), line ? 0 : 255) << x;
    }
    const Bitmap white = ContourFilter(ramp, nullptr, {40, 50, 0, ContourOption::WhiteLines});
    EXPECT_TRUE(SamePixels(Invert(white, nullptr).Pixels(), lines.Pixels()));
    const Bitmap over = ContourFilter(ramp, nullptr, {40, 50, 0, ContourOption::LinesOnPicture});
    EXPECT_EQ(Value8(over, 89, 2), 0);
    EXPECT_EQ(Value8(over, 90, 2), 90);
    const Bitmap fill = ContourFilter(ramp, nullptr, {40, 50, 0, ContourOption::Fill});
    EXPECT_EQ(UniqueColors(fill, nullptr), 6);
    EXPECT_EQ(Value8(fill, 0, 2), 0);
    EXPECT_EQ(Value8(fill, 255, 2), 255);
    const Bitmap both = ContourFilter(ramp, nullptr, {40, 50, 0, ContourOption::FillAndLines});
    EXPECT_EQ(Value8(both, 89, 2), 0);
    EXPECT_EQ(Value8(both, 100, 2), Value8(fill, 100, 2));
    EXPECT_EQ(ContourFilter(ramp, nullptr, {kMost, kLeast, kMost, ContourOption::Fill}).Width(),
              256);
}

} // namespace

} // namespace quillane::processing
