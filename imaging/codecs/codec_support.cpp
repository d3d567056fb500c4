#include "imaging/codecs/codec_support.h"
#include "imaging/limits.h"
#include <algorithm>
#include <cmath>

namespace quillane::codecs {

void Damaged(const char* format, const QString& why)
{
    const QString name = QString::fromLatin1(format);
    throw Failure(kFailureUnreadable, QStringLiteral("This %1 is damaged: %2.").arg(name, why),
                  name);
}

void Unsupported(const char* format, const QString& what)
{
    const QString name = QString::fromLatin1(format);
    throw Failure(kFailureUnreadable,
                  QStringLiteral("This %1 %2, which is not supported.").arg(name, what), name);
}

void TooMuch(const char* format, const QString& what)
{
    const QString name = QString::fromLatin1(format);
    throw Failure(kFailureLimit,
                  QStringLiteral("This %1 %2, which is more than can be read.").arg(name, what),
                  name);
}

void Cancelled()
{
    throw Failure(kFailureCancelled, QStringLiteral("Reading the picture was called off."));
}

void CheckSides(const char* format, qint64 width, qint64 height)
{
    if (width < 1 || height < 1) {
        Damaged(format,
                QStringLiteral("it claims a size of %1 x %2 pixels").arg(width).arg(height));
    }
    if (width > limits::kMaxSide || height > limits::kMaxSide) {
        TooMuch(format, QStringLiteral("claims a size of %1 x %2 pixels").arg(width).arg(height));
    }
}

QImage NewImage(const char* format, qint64 width, qint64 height, QImage::Format layout)
{
    CheckSides(format, width, height);
    // What is kept in less than the screen's four bytes a pixel must still fit when it is shown.
    const qint64 bits = std::max<qint64>(QImage::toPixelFormat(layout).bitsPerPixel(), 32);
    if (width * height > limits::kMaxPixels
        || width * height * bits / 8 > limits::kMaxPictureBytes) {
        TooMuch(format, QStringLiteral("has %1 x %2 pixels").arg(width).arg(height));
    }
    QImage image(int(width), int(height), layout);
    if (image.isNull()) {
        TooMuch(format, QStringLiteral("has %1 x %2 pixels").arg(width).arg(height));
    }
    return image;
}

qint32 DotsPerInch(double dotsPerMetre)
{
    const double dots = std::round(dotsPerMetre * 0.0254);
    return dots >= 1 && dots <= 1'000'000 ? qint32(dots) : 0;
}

const uchar* ByteWindow::Fill(qint64 position, qint64 count)
{
    if (position < 0 || count > kWidth || position > mSource.Size() - count) {
        return nullptr;
    }
    mFrom = position;
    mHeld = mSource.ReadAt(position, mBytes, kWidth);
    mFetched += mHeld;
    return mHeld >= count ? mBytes : nullptr;
}

PartSource::PartSource(ByteSource& whole, qint64 from, qint64 size)
    : mWhole(whole),
      mFrom(std::clamp<qint64>(from, 0, whole.Size())),
      mSize(std::clamp<qint64>(size, 0, whole.Size() - mFrom))
{ }

qint64 PartSource::ReadAt(qint64 position, void* to, qint64 count)
{
    if (position < 0 || position >= mSize) {
        return 0;
    }
    return mWhole.ReadAt(mFrom + position, to, std::min(count, mSize - position));
}

} // namespace quillane::codecs
