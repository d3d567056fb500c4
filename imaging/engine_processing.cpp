#include "core/failure.h"
#include "imaging/engine.h"
#include "imaging/limits.h"
#include "imaging/processing/colour.h"
#include "imaging/processing/combine.h"
#include "imaging/processing/contour.h"
#include "imaging/processing/depth.h"
#include "imaging/processing/geometry.h"
#include "imaging/processing/halftone.h"
#include "imaging/processing/histogram.h"
#include "imaging/processing/neighbourhood.h"
#include "imaging/processing/noise.h"
#include "imaging/processing/tone.h"
#include "imaging/resize.h"
#include <QRandomGenerator>
#include <algorithm>
#include <cmath>

namespace quillane {

namespace {

/// The image grows to hold the turned picture.
constexpr qint32 kRotateResizes = 1;

int EngineSide(float wanted)
{
    if (!std::isfinite(wanted) || wanted > float(limits::kMaxSide)) {
        throw Failure(kFailureOverflow,
                      QStringLiteral("A picture cannot be made that large: at most %1 pixels a "
                                     "side.")
                          .arg(limits::kMaxSide));
    }
    return std::max(1, int(std::lround(wanted)));
}

ResizeWay EngineResizeWay(qint32 flags)
{
    switch (flags) {
    case kResizePlain:
        return ResizeWay::Plain;
    case kResizeBicubic:
        return ResizeWay::Bicubic;
    default:
        return ResizeWay::Resample;
    }
}

} // namespace

void EngineInstance::Guarded(const std::function<void()>& step) const
{
    if (mMethodErrors) {
        step();
    } else {
        ResumeNext(step);
    }
}

void EngineInstance::Process(const std::function<quillane::Bitmap(const Region*)>& work)
{
    Guarded([&] {
        const QSize before = mBitmap.Pixels().size();
        mBitmap = work(mRegion.IsEmpty() ? nullptr : &mRegion);
        KeepToImage(before);
    });
}

void EngineInstance::Contrast(qint32 value)
{
    Process([&](const Region* region) { return processing::Contrast(mBitmap, region, value); });
}

void EngineInstance::Brightness(qint32 value)
{
    Process([&](const Region* region) { return processing::Brightness(mBitmap, region, value); });
}

void EngineInstance::HistogramContrast(qint32 value)
{
    Process([&](const Region* region) {
        return processing::HistogramContrast(mBitmap, region, value);
    });
}

void EngineInstance::Saturation(qint32 value)
{
    Process([&](const Region* region) { return processing::Saturation(mBitmap, region, value); });
}

void EngineInstance::Hue(qint32 angle)
{
    Process([&](const Region* region) { return processing::Hue(mBitmap, region, angle); });
}

void EngineInstance::GammaCorrect(qint32 gamma)
{
    Process([&](const Region* region) { return processing::GammaCorrect(mBitmap, region, gamma); });
}

void EngineInstance::Invert()
{
    Process([&](const Region* region) { return processing::Invert(mBitmap, region); });
}

void EngineInstance::Posterize(qint32 levels)
{
    Process([&](const Region* region) { return processing::Posterize(mBitmap, region, levels); });
}

void EngineInstance::StretchIntensity()
{
    Process([&](const Region* region) { return processing::StretchIntensity(mBitmap, region); });
}

void EngineInstance::HistogramEqualize()
{
    Process([&](const Region* region) { return processing::HistogramEqualize(mBitmap, region); });
}

void EngineInstance::IntensityDetect(qint32 low, qint32 high)
{
    Process([&](const Region* region) {
        return processing::IntensityDetect(mBitmap, region, low, high);
    });
}

void EngineInstance::Grayscale(qint32 bits)
{
    Process([&](const Region* region) { return processing::Grayscale(mBitmap, region, bits); });
}

void EngineInstance::FillColor(qint32 colour)
{
    Process([&](const Region* region) {
        return processing::FillColor(mBitmap, region, processing::RgbOfColour(colour));
    });
}

void EngineInstance::Flip()
{
    Process([&](const Region* region) { return processing::Flip(mBitmap, region); });
}

void EngineInstance::Reverse()
{
    Process([&](const Region* region) { return processing::Reverse(mBitmap, region); });
}

void EngineInstance::Rotate(qint32 angle, qint32 flags, qint32 fill)
{
    Process([&](const Region* region) {
        return processing::Rotate(mBitmap, region, angle, (flags & kRotateResizes) != 0,
                                  processing::RgbOfColour(fill));
    });
}

void EngineInstance::Shear(qint32 angle, bool horizontal, qint32 fill)
{
    Process([&](const Region* region) {
        return processing::Shear(mBitmap, region, angle, horizontal, processing::RgbOfColour(fill));
    });
}

void EngineInstance::Resize(float width, float height, qint32 flags)
{
    Guarded([&] {
        if (mBitmap.IsNull()) {
            throw Failure(kFailureGeneral, QStringLiteral("There is no picture to resize."));
        }
        const QSize size(EngineSide(width), EngineSide(height));
        mBitmap = Resized(mBitmap, size, EngineResizeWay(flags));
        mRegion = {};
        mFloater = {};
    });
}

void EngineInstance::ChangeColorDepth(qint32 bits, qint32 palette, qint32 dither)
{
    Guarded([&] {
        mBitmap = processing::ToDepth(mBitmap, bits,
                                      {processing::PaletteChoice(std::clamp(palette, 0, 2)),
                                       processing::DitherChoice(std::clamp(dither, 0, 1))});
    });
}

void EngineInstance::Trim(qint32 left, qint32 top, qint32 width, qint32 height)
{
    Guarded([&] {
        const Region part = Region::Rectangle(mBitmap.Pixels().size(), left, top, width, height);
        mBitmap = processing::Trim(mBitmap, part.Bounds());
        mRegion =
            mRegion.Moved(mBitmap.Pixels().size(), -part.Bounds().left(), -part.Bounds().top());
        mFloater = {};
    });
}

void EngineInstance::AddNoise(qint32 range, qint32 channel)
{
    Process([&](const Region* region) {
        return processing::AddNoise(mBitmap, region, range,
                                    processing::NoiseChannel(std::clamp(channel, 0, 3)),
                                    QRandomGenerator::global()->generate());
    });
}

void EngineInstance::Average(qint32 size)
{
    Process([&](const Region* region) { return processing::Average(mBitmap, region, size); });
}

void EngineInstance::Median(qint32 size)
{
    Process([&](const Region* region) { return processing::Median(mBitmap, region, size); });
}

void EngineInstance::Sharpen(qint32 value)
{
    Process([&](const Region* region) { return processing::Sharpen(mBitmap, region, value); });
}

void EngineInstance::Mosaic(qint32 size)
{
    Process([&](const Region* region) { return processing::Mosaic(mBitmap, region, size); });
}

void EngineInstance::Emboss(qint32 direction, qint32 depth)
{
    Process([&](const Region* region) {
        return processing::Emboss(mBitmap, region, direction, depth);
    });
}

void EngineInstance::SpatialFilter(qint32 code)
{
    Process([&](const Region* region) { return processing::SpatialFilter(mBitmap, region, code); });
}

void EngineInstance::BinaryFilter(qint32 code)
{
    Process([&](const Region* region) { return processing::BinaryFilter(mBitmap, region, code); });
}

void EngineInstance::Halftone(qint32 type, qint32 angle)
{
    Process([&](const Region* region) {
        return processing::Halftone(mBitmap, region,
                                    processing::HalftoneType(std::clamp(type, 0, 1)), angle);
    });
}

void EngineInstance::ContourFilter(qint32 threshold, qint32 interval, qint32 smoothing,
                                   qint32 option)
{
    Process([&](const Region* region) {
        return processing::ContourFilter(
            mBitmap, region,
            {threshold, interval, smoothing, processing::ContourOption(std::clamp(option, 0, 4))});
    });
}

void EngineInstance::Combine(qint32 left, qint32 top, qint32 width, qint32 height,
                             const quillane::Bitmap& source, qint32 sourceLeft, qint32 sourceTop,
                             qint32 flags)
{
    Process([&](const Region* region) {
        return processing::Combine(mBitmap, region, QRect(left, top, width, height), source,
                                   QPoint(sourceLeft, sourceTop), flags);
    });
}

qint64 EngineInstance::UniqueColors() const
{
    qint64 count = 0;
    Guarded(
        [&] { count = processing::UniqueColors(mBitmap, mRegion.IsEmpty() ? nullptr : &mRegion); });
    return count;
}

void EngineInstance::GetHistogram(qint32 channel)
{
    Guarded([&] {
        mHistogram = processing::Histogram(mBitmap, mRegion.IsEmpty() ? nullptr : &mRegion,
                                           processing::HistogramChannel(std::clamp(channel, 0, 3)));
    });
}

qint64 EngineInstance::HistogramValue(qint32 index) const
{
    qint64 value = 0;
    Guarded([&] {
        if (index < 0 || size_t(index) >= mHistogram.size()) {
            throw Failure(kFailureIndex, QStringLiteral("A histogram has no level %1.").arg(index));
        }
        value = mHistogram[size_t(index)];
    });
    return value;
}

} // namespace quillane
