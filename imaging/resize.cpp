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
    const QImage::Format layout = from.Pixels().format();
    QImage scaled = from.Pixels().scaled(
        size, Qt::IgnoreAspectRatio, smooth ? Qt::SmoothTransformation : Qt::FastTransformation);
    if (scaled.format() != layout) {
        scaled = scaled.convertToFormat(layout);
    }
    return ResizeWith(from, std::move(scaled), from.Model());
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
