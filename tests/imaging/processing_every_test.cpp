// What holds for each operation alike: every layout is taken, only the region changes, alpha and
// the original stay.
#include "core/failure.h"
#include "imaging/processing/colour.h"
#include "imaging/processing/combine.h"
#include "imaging/processing/contour.h"
#include "imaging/processing/cut_out.h"
#include "imaging/processing/depth.h"
#include "imaging/processing/geometry.h"
#include "imaging/processing/halftone.h"
#include "imaging/processing/histogram.h"
#include "imaging/processing/neighbourhood.h"
#include "imaging/processing/noise.h"
#include "imaging/processing/text.h"
#include "imaging/processing/tone.h"
#include "imaging/resize.h"
#include "processing_support.h"
#include <functional>
#include <gtest/gtest.h>

namespace quillane::processing {

namespace {

struct Operation {
    const char* name;
    std::function<Bitmap(const Bitmap&, const Region*)> run;
    bool movesPixels = false; ///< alpha and layout go with the pixels
    bool writesAlpha = false;
    bool onlyColours = false;    ///< leaves a grey picture as it is
    bool keepsExtremes = false;  ///< leaves black and white as they are
    bool keepsFullRange = false; ///< leaves a picture that uses all values as it is
};
void PrintTo(const Operation& operation, std::ostream* out)
{
    *out << operation.name;
}

using processing::ContourOption;
using processing::HalftoneType;
using processing::NoiseChannel;

Bitmap Stamp()
{
    return MakeConstant({"", QImage::Format_RGB32, ColourModel::Rgb}, 200, 200, 90);
}

// clang-format off
const Operation kOperations[] = {
    {"Brightness",        [](auto& p, auto r) { return processing::Brightness(p, r, 300); }},
    {"Contrast",          [](auto& p, auto r) { return processing::Contrast(p, r, 300); }, false, false, false, true},
    {"HistogramContrast", [](auto& p, auto r) { return processing::HistogramContrast(p, r, 300); }, false, false, false, true},
    {"GammaCorrect",      [](auto& p, auto r) { return processing::GammaCorrect(p, r, 150); }, false, false, false, true},
    {"Invert",            [](auto& p, auto r) { return processing::Invert(p, r); }},
    {"Posterize",         [](auto& p, auto r) { return processing::Posterize(p, r, 4); }, false, false, false, true},
    {"StretchIntensity",  [](auto& p, auto r) { return processing::StretchIntensity(p, r); }, false, false, false, true, true},
    {"HistogramEqualize", [](auto& p, auto r) { return processing::HistogramEqualize(p, r); }, false, false, false, true},
    {"IntensityDetect",   [](auto& p, auto r) { return processing::IntensityDetect(p, r, 60, 170); }},
    {"Hue",               [](auto& p, auto r) { return processing::Hue(p, r, 7000); }, false, false, true},
    {"Saturation",        [](auto& p, auto r) { return processing::Saturation(p, r, 500); }, false, false, true},
    {"FillColor",         [](auto& p, auto r) { return processing::FillColor(p, r, qRgb(10, 90, 200)); }, false, true},
    {"AddNoise",          [](auto& p, auto r) { return processing::AddNoise(p, r, 300, NoiseChannel::All, 7); }},
    {"Average",           [](auto& p, auto r) { return processing::Average(p, r, 4); }},
    {"Median3",           [](auto& p, auto r) { return processing::Median(p, r, 3); }},
    {"Median9",           [](auto& p, auto r) { return processing::Median(p, r, 9); }},
    {"Sharpen",           [](auto& p, auto r) { return processing::Sharpen(p, r, 700); }, false, false, false, true},
    {"Soften",            [](auto& p, auto r) { return processing::Sharpen(p, r, -700); }},
    {"Emboss",            [](auto& p, auto r) { return processing::Emboss(p, r, 1, 500); }},
    {"SpatialFilter",     [](auto& p, auto r) { return processing::SpatialFilter(p, r, 12); }},
    {"Erosion",           [](auto& p, auto r) { return processing::BinaryFilter(p, r, 0); }},
    {"Dilation",          [](auto& p, auto r) { return processing::BinaryFilter(p, r, 7); }},
    {"Mosaic",            [](auto& p, auto r) { return processing::Mosaic(p, r, 7); }},
    {"Halftone",          [](auto& p, auto r) { return processing::Halftone(p, r, HalftoneType::Dots, 4500); }, false, false, false, true},
    {"ContourFilter",     [](auto& p, auto r) { return processing::ContourFilter(p, r, {10, 40, 3, ContourOption::FillAndLines}); }},
    {"Combine",           [](auto& p, auto r) { return processing::Combine(p, r, QRect(0, 0, 200, 200), Stamp(), QPoint(), 768); }},
    {"Flip",              [](auto& p, auto r) { return processing::Flip(p, r); }, true},
    {"Reverse",           [](auto& p, auto r) { return processing::Reverse(p, r); }, true},
    {"Rotate",            [](auto& p, auto r) { return processing::Rotate(p, r, 3000, false, qRgb(1, 2, 3)); }, true},
    {"Rotate90",          [](auto& p, auto r) { return processing::Rotate(p, r, 9000, false, qRgb(1, 2, 3)); }, true},
    {"Rotate180",         [](auto& p, auto r) { return processing::Rotate(p, r, 18000, false, qRgb(1, 2, 3)); }, true},
};
// clang-format on

Region ShapeIn(const Bitmap& picture, bool ellipse)
{
    const QSize size = picture.Pixels().size();
    return ellipse ? Region::Ellipse(size, 9, 7, 31, 25) : Region::Rectangle(size, 9, 7, 31, 25);
}

/// Bytes of one pixel of a layout of whole bytes.
QByteArray PixelAt(const QImage& pixels, int x, int y)
{
    const int bytes = pixels.depth() / 8;
    return {reinterpret_cast<const char*>(pixels.constScanLine(y)) + qsizetype(x) * bytes, bytes};
}

class EveryOperation : public testing::TestWithParam<std::tuple<Operation, Layout>> {
protected:
    const Operation& mOperation = std::get<0>(GetParam());
    const Layout& mLayout = std::get<1>(GetParam());
    Bitmap mPicture = MakePicture(mLayout, 61, 45);
};

TEST_P(EveryOperation, TakesThePictureAndLeavesTheOriginalAsItWas)
{
    const QImage before = mPicture.Pixels().copy();
    const Bitmap result = mOperation.run(mPicture, nullptr);
    EXPECT_EQ(result.Pixels().size(), before.size());
    EXPECT_TRUE(SamePixels(mPicture.Pixels(), before));
    EXPECT_EQ(result.FileDepth(), mPicture.FileDepth());
    const bool grey =
        mLayout.model == ColourModel::Grey || mLayout.model == ColourModel::BlackWhite;
    const bool kept = (grey && mOperation.onlyColours) || mOperation.keepsFullRange
        || (mLayout.model == ColourModel::BlackWhite && mOperation.keepsExtremes);
    if (!kept) {
        EXPECT_GT(LargestDifference(result, mPicture), 0);
        EXPECT_FALSE(result.IsExact());
    }
}

TEST_P(EveryOperation, KeepsTheDepthOfAChannelAndTheAlpha)
{
    const Bitmap result = mOperation.run(mPicture, nullptr);
    const QImage& before = mPicture.Pixels();
    const QImage& after = result.Pixels();
    const bool deep = before.depth() == 16 || before.depth() == 64;
    EXPECT_EQ(after.depth() == 16 || after.depth() == 64, deep);
    if (mLayout.model == ColourModel::Rgb) {
        EXPECT_EQ(after.format(), before.format());
    }
    if (mLayout.model != ColourModel::Rgb || mOperation.movesPixels) {
        return;
    }
    const int alpha = deep ? 6 : 3;
    const int width = deep ? 2 : 1;
    for (int y = 0; y < before.height(); ++y) {
        for (int x = 0; x < before.width(); ++x) {
            const QByteArray expected = mOperation.writesAlpha
                ? QByteArray(width, '\xff')
                : PixelAt(before, x, y).mid(alpha, width);
            ASSERT_EQ(PixelAt(after, x, y).mid(alpha, width), expected) << x << "," << y;
        }
    }
}

TEST_P(EveryOperation, ChangesPixelsOfTheRegionAndNoOthers)
{
    const Region beside = Region::Rectangle(QSize(100, 100), 90, 90, 5, 5);
    for (const bool ellipse : {false, true}) {
        const Region region = ShapeIn(mPicture, ellipse);
        const Bitmap untouched = mOperation.run(mPicture, &beside);
        EXPECT_EQ(LargestDifference(untouched, mPicture), 0);
        const Bitmap changed = mOperation.run(mPicture, &region);
        ASSERT_EQ(changed.Pixels().format(), untouched.Pixels().format());
        ASSERT_EQ(changed.Pixels().size(), mPicture.Pixels().size());
        int different = 0;
        for (int y = 0; y < 45; ++y) {
            for (int x = 0; x < 61; ++x) {
                const bool same =
                    PixelAt(changed.Pixels(), x, y) == PixelAt(untouched.Pixels(), x, y);
                different += same ? 0 : 1;
                ASSERT_TRUE(same || region.Contains(x, y)) << x << "," << y;
            }
        }
        const bool kept = (changed.Model() == ColourModel::Grey && mOperation.onlyColours)
            || mOperation.keepsFullRange
            || (mLayout.model == ColourModel::BlackWhite && mOperation.keepsExtremes);
        if (!kept) {
            EXPECT_GT(different, 20) << "ellipse " << ellipse;
        }
    }
}

TEST_P(EveryOperation, TakesTheSmallestPictures)
{
    for (const QSize size : {QSize(1, 1), QSize(1, 9), QSize(9, 1), QSize(2, 2)}) {
        const Bitmap small = MakePicture(mLayout, size.width(), size.height());
        EXPECT_EQ(mOperation.run(small, nullptr).Pixels().size(), size);
        const Region corner = Region::Rectangle(size, 0, 0, 1, 1);
        EXPECT_EQ(mOperation.run(small, &corner).Pixels().size(), size);
    }
}

INSTANTIATE_TEST_SUITE_P(Processing, EveryOperation,
                         testing::Combine(testing::ValuesIn(kOperations),
                                          testing::ValuesIn(kLayouts)),
                         [](const auto& row) {
                             return std::string(std::get<0>(row.param).name)
                                 + std::get<1>(row.param).name;
                         });

TEST(EveryOperationAlike, FailsWithoutAPicture)
{
    const Region region = Region::Rectangle(QSize(10, 10), 1, 1, 5, 5);
    for (const Operation& operation : kOperations) {
        EXPECT_THROW(operation.run({}, nullptr), Failure) << operation.name;
        EXPECT_THROW(operation.run({}, &region), Failure) << operation.name;
    }
    EXPECT_THROW(processing::Shear({}, nullptr, 1000, true, 0), Failure);
    EXPECT_THROW(processing::Trim({}, QRect(0, 0, 1, 1)), Failure);
    EXPECT_THROW(processing::Grayscale({}, nullptr, 8), Failure);
    EXPECT_THROW(processing::ToDepth({}, 8), Failure);
    EXPECT_THROW(processing::Histogram({}, nullptr, processing::HistogramChannel::Master), Failure);
    EXPECT_THROW(processing::UniqueColors({}, nullptr), Failure);
    EXPECT_THROW(processing::CutOut({}, region), Failure);
    EXPECT_THROW(processing::DrawText({}, nullptr, QStringLiteral("a"), {}, {}), Failure);
}

TEST(EveryOperationAlike, GivesTheSamePixelsInAnyNumberOfBands)
{
    // High enough for several bands, and with a region that begins within one.
    const Layout layout{"Rgb24", QImage::Format_RGB32, ColourModel::Rgb};
    const Bitmap tall = MakePicture(layout, 1500, 700);
    const Region middle = Region::Rectangle(QSize(1500, 700), 0, 0, 1500, 650);
    for (const Operation& operation : kOperations) {
        if (operation.movesPixels || QByteArray(operation.name).startsWith("Histogram")
            || QByteArray(operation.name) == "StretchIntensity") {
            continue; // depend on the whole of what they are given
        }
        const Bitmap whole = operation.run(tall, nullptr);
        const Bitmap part = operation.run(tall, &middle);
        EXPECT_TRUE(
            SamePixels(whole.Pixels().copy(0, 0, 1500, 640), part.Pixels().copy(0, 0, 1500, 640)))
            << operation.name;
    }
}

} // namespace

} // namespace quillane::processing
