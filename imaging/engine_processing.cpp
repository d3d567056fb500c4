#include "core/failure.h"
#include "imaging/engine.h"
#include "imaging/limits.h"
#include "imaging/processing/colour.h"
#include "imaging/processing/depth.h"
#include "imaging/processing/geometry.h"
#include "imaging/processing/tone.h"
#include "imaging/resize.h"
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
    Guarded([&] { mBitmap = work(mRegion.IsEmpty() ? nullptr : &mRegion); });
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
    });
}

} // namespace quillane
