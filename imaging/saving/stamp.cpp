#include "imaging/saving/stamp.h"
#include "core/failure.h"
#include "imaging/encode.h"
#include "imaging/resize.h"
#include <QSize>
#include <algorithm>
#include <cmath>

namespace quillane {

namespace {

constexpr qint16 kStampFormat = 10;  // JFIF
constexpr qint32 kStampQuality = 40; // of 2..255
constexpr qsizetype kStampBytes = 48 << 10;
constexpr double kStampStep = 0.8; // sides of the next try

QSize StampSize(const Bitmap& picture, QSizeF box)
{
    const double scale =
        std::min({1.0, box.width() / picture.Width(), box.height() / picture.Height()});
    return {std::max(1, int(std::lround(picture.Width() * scale))),
            std::max(1, int(std::lround(picture.Height() * scale)))};
}

} // namespace

QByteArray MakeStamp(const Bitmap& picture, QSizeF box, qint32 bits)
{
    if (picture.IsNull() || !(box.width() >= 1) || !(box.height() >= 1)) {
        throw Failure(kFailureGeneral,
                      QStringLiteral("A stamp needs a picture and a size of at least one pixel."));
    }
    EncodeRequest request;
    request.format = kStampFormat;
    request.bits = bits == 8 ? 8 : 24;
    request.quality = kStampQuality;
    // The screen's colours: a preview has no profile of its own.
    const Bitmap source(picture.ToDisplay().convertToFormat(QImage::Format_RGB32), ColourModel::Rgb,
                        24);
    for (;;) {
        const QSize size = StampSize(source, box);
        Bitmap stamp = Resized(source, size, ResizeWay::Resample);
        if (request.bits == 8) {
            stamp = Bitmap(stamp.Pixels().convertToFormat(QImage::Format_Grayscale8),
                           ColourModel::Grey, 8);
        }
        QByteArray bytes = EncodePicture(stamp, request);
        if (bytes.size() <= kStampBytes || size == QSize(1, 1)) {
            return bytes;
        }
        box = QSizeF(size) * kStampStep;
        box = box.expandedTo(QSizeF(1, 1));
    }
}

} // namespace quillane
