#include "widgets/picture_source.h"

namespace quillane {

PictureSource PictureSource::Whole(const Bitmap& bitmap)
{
    PictureSource source;
    source.bitmap = bitmap;
    source.picture = bitmap.Pixels().size();
    source.extent = source.picture;
    return source;
}

PictureSource PictureSource::StandIn(const QImage& image, QSize picture)
{
    QImage ready = image;
    ready.setDevicePixelRatio(1);
    if (!image.isNull() && image.format() != QImage::Format_RGB32) {
        ready = ready.convertToFormat(image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied
                                                              : QImage::Format_RGB32);
    }
    PictureSource source =
        Whole(Bitmap(ready, ColourModel::Rgb, ready.hasAlphaChannel() ? 32 : 24));
    source.picture = ready.isNull() ? QSize() : picture;
    return source;
}

bool PictureSource::HasAlpha() const
{
    return bitmap.Model() != ColourModel::Cmyk && bitmap.Pixels().hasAlphaChannel();
}

} // namespace quillane
