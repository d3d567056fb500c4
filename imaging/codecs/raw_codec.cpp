// Samples without any header: the size stands in the file's name, or the picture is a square.
#include "imaging/codecs/codec_support.h"
#include "imaging/codecs/legacy_codecs.h"
#include "imaging/codecs/raster_support.h"
#include "imaging/limits.h"
#include <QRegularExpression>
#include <cmath>

namespace quillane::codecs {

namespace {

constexpr char kRawName[] = "file of raw samples";

struct RawShape {
    qint64 width = 0;
    qint64 height = 0;
    int bytes = 0; ///< of a pixel: 1 grey, 3 RGB, 4 RGB and alpha
};

/// The shape of so many bytes under that size; `bytes` 0 when they do not fit it.
RawShape RawShapeOf(qint64 width, qint64 height, qint64 size)
{
    for (const int bytes : {1, 3, 4}) {
        if (width > 0 && height > 0 && size == width * height * bytes) {
            return {width, height, bytes};
        }
    }
    return {width, height, 0};
}

RawShape RawFind(ByteSource& source)
{
    const qint64 size = source.Size();
    const QString name = source.FileName();
    // "name_640x480.raw": the last pair of numbers.
    static const QRegularExpression kSize(
        QStringLiteral("(\\d{1,5})[xX](\\d{1,5})(?!.*\\d[xX]\\d)"));
    const QRegularExpressionMatch match = kSize.match(name);
    if (match.hasMatch()) {
        const RawShape told =
            RawShapeOf(match.captured(1).toInt(), match.captured(2).toInt(), size);
        if (told.bytes == 0) {
            Damaged(kRawName,
                    QStringLiteral("its name tells %1 x %2 pixels, and its %3 bytes are not that "
                                   "many of grey, RGB or RGB with transparency")
                        .arg(told.width)
                        .arg(told.height)
                        .arg(size));
        }
        CheckSides(kRawName, told.width, told.height);
        return told;
    }
    for (const int bytes : {1, 3, 4}) {
        const auto side = qint64(std::llround(std::sqrt(double(size) / bytes)));
        if (side > 0 && side * side * bytes == size) {
            CheckSides(kRawName, side, side);
            return {side, side, bytes};
        }
    }
    throw Failure(kFailureUnreadable,
                  QStringLiteral("This file of raw samples does not tell its size. Put it into the "
                                 "name, such as \"picture_640x480.raw\"."),
                  QString::fromLatin1(kRawName));
}

} // namespace

bool RawMatches(QByteArrayView head, QStringView extension)
{
    return !head.isEmpty() && extension.compare(u"RAW", Qt::CaseInsensitive) == 0;
}

ImageFacts RawProbe(ByteSource& source)
{
    const RawShape shape = RawFind(source);
    ImageFacts facts;
    facts.width = qint32(shape.width);
    facts.height = qint32(shape.height);
    facts.bits = qint16(8 * shape.bytes);
    facts.format = 153;
    facts.compression = QStringLiteral("Uncompressed");
    return facts;
}

Bitmap RawDecode(ByteSource& source, const DecodeRequest& request)
{
    CheckCancelled(request);
    const RawShape shape = RawFind(source);
    QImage image = NewImage(kRawName, shape.width, shape.height,
                            shape.bytes == 1       ? QImage::Format_Grayscale8
                                : shape.bytes == 3 ? QImage::Format_RGB32
                                                   : QImage::Format_ARGB32);
    ByteStream stream(source, 0, source.Size());
    std::vector<uchar> row(size_t(shape.width * shape.bytes));
    int rows = 0;
    for (; rows < image.height(); ++rows) {
        CheckCancelled(request);
        if (stream.Read(row.data(), qint64(row.size())) != qint64(row.size())) {
            break;
        }
        uchar* to = image.scanLine(rows);
        if (shape.bytes == 1) {
            std::copy(row.begin(), row.end(), to);
            continue;
        }
        const uchar* p = row.data();
        for (qint64 x = 0; x < shape.width; ++x, p += shape.bytes) {
            reinterpret_cast<QRgb*>(to)[x] = qRgba(p[0], p[1], p[2], shape.bytes == 4 ? p[3] : 255);
        }
    }
    return FinishPicture(kRawName, std::move(image), 8 * shape.bytes, rows);
}

} // namespace quillane::codecs
