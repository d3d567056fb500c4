#include "imaging/resize.h"
#include "core/failure.h"
#include "imaging/limits.h"

namespace quillane {

namespace {

Bitmap ResizeWith(const Bitmap& from, QImage pixels, ColourModel model)
{
    if (pixels.isNull()) {
        throw Failure(kFailureLimit,
                      QStringLiteral("There is not enough memory for the changed picture."));
    }
    Bitmap result(std::move(pixels), model, from.FileDepth());
    result.SetIcc(from.Icc());
    result.SetExact(false);
    result.SetPartial(from.IsPartial());
    return result;
}

/// Takes a picture out of layouts whose values are names of colours, so that values can be mixed.
Bitmap ResizeMixable(const Bitmap& from)
{
    if (from.Model() == ColourModel::BlackWhite) {
        return ResizeWith(from, from.Pixels().convertToFormat(QImage::Format_Grayscale8),
                          ColourModel::Grey);
    }
    if (from.Model() == ColourModel::Palette) {
        const QImage::Format full =
            from.Pixels().hasAlphaChannel() ? QImage::Format_ARGB32 : QImage::Format_RGB32;
        return ResizeWith(from, from.Pixels().convertToFormat(full), ColourModel::Rgb);
    }
    return from;
}

template <typename Pixel> void ResizeNearest(const QImage& from, QImage& to)
{
    const qint64 across = from.width();
    const qint64 down = from.height();
    for (qint64 y = 0; y < to.height(); ++y) {
        const int row = int((2 * y + 1) * down / (2 * to.height()));
        const Pixel* in = reinterpret_cast<const Pixel*>(from.constScanLine(row));
        Pixel* out = reinterpret_cast<Pixel*>(to.scanLine(int(y)));
        for (qint64 x = 0; x < to.width(); ++x) {
            out[x] = in[(2 * x + 1) * across / (2 * to.width())];
        }
    }
}

/// The nearest pixel of each place, whatever the layout.
QImage ResizePlainly(const QImage& from, QSize size)
{
    if (from.depth() == 1) {
        QImage wide = from.convertToFormat(QImage::Format_Indexed8);
        return ResizePlainly(wide, size).convertToFormat(QImage::Format_Mono, wide.colorTable());
    }
    QImage to(size, from.format());
    if (to.isNull()) {
        return to;
    }
    to.setColorTable(from.colorTable());
    switch (from.depth()) {
    case 8:
        ResizeNearest<quint8>(from, to);
        break;
    case 16:
        ResizeNearest<quint16>(from, to);
        break;
    case 64:
        ResizeNearest<quint64>(from, to);
        break;
    default:
        ResizeNearest<quint32>(from, to);
        break;
    }
    return to;
}

/// Mixed by Qt in a layout that it mixes without loss, then brought back.
QImage ResizeSmoothly(const Bitmap& from, QSize size)
{
    const QImage::Format layout = from.Pixels().format();
    QImage pixels = from.Pixels();
    const auto scaled = [&] {
        return pixels.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    };
    if (from.Model() == ColourModel::Cmyk) {
        // Four bytes that are mixed each for itself: the same as a picture with its alpha in.
        pixels.reinterpretAsFormat(QImage::Format_ARGB32_Premultiplied);
        QImage mixed = scaled();
        mixed.reinterpretAsFormat(layout);
        return mixed;
    }
    if (layout == QImage::Format_Grayscale16) {
        pixels.convertTo(QImage::Format_RGBX64);
    } else if (layout == QImage::Format_RGBA64) {
        pixels.convertTo(QImage::Format_RGBA64_Premultiplied);
    }
    return scaled().convertToFormat(layout);
}

} // namespace

Bitmap Resized(const Bitmap& bitmap, QSize size, bool smooth)
{
    if (bitmap.IsNull() || bitmap.Pixels().size() == size) {
        return bitmap;
    }
    const qint64 pixels = qint64(size.width()) * size.height();
    if (pixels > limits::kMaxPixels
        || pixels * bitmap.Pixels().depth() / 8 > limits::kMaxPictureBytes) {
        throw Failure(kFailureLimit,
                      QStringLiteral("A picture of %1 x %2 pixels is more than can be held.")
                          .arg(size.width())
                          .arg(size.height()));
    }
    const Bitmap from = smooth ? ResizeMixable(bitmap) : bitmap;
    return ResizeWith(from,
                      smooth ? ResizeSmoothly(from, size) : ResizePlainly(from.Pixels(), size),
                      from.Model());
}

Bitmap AtDepth(const Bitmap& bitmap, qint32 bits)
{
    if (bitmap.IsNull() || bitmap.Bits() == bits) {
        return bitmap;
    }
    Bitmap from = bitmap;
    if (bitmap.Model() == ColourModel::Cmyk) {
        from = Bitmap(bitmap.ToDisplay(), ColourModel::Rgb, bitmap.FileDepth());
    }
    const QImage& pixels = from.Pixels();
    switch (bits) {
    case 1:
        return ResizeWith(from, pixels.convertToFormat(QImage::Format_Mono),
                          ColourModel::BlackWhite);
    case 8:
        if (from.Model() == ColourModel::BlackWhite || from.Model() == ColourModel::Grey) {
            return ResizeWith(from, pixels.convertToFormat(QImage::Format_Grayscale8),
                              ColourModel::Grey);
        }
        return ResizeWith(from, pixels.convertToFormat(QImage::Format_Indexed8),
                          ColourModel::Palette);
    case 16:
        return ResizeWith(from, pixels.convertToFormat(QImage::Format_Grayscale16),
                          ColourModel::Grey);
    case 24:
        return ResizeWith(from, pixels.convertToFormat(QImage::Format_RGB32), ColourModel::Rgb);
    case 32:
        return ResizeWith(from, pixels.convertToFormat(QImage::Format_ARGB32), ColourModel::Rgb);
    default:
        throw Failure(kFailureGeneral,
                      QStringLiteral("A picture cannot have %1 bits per pixel.").arg(bits));
    }
}

} // namespace quillane
