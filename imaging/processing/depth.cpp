#include "imaging/processing/depth.h"
#include "core/failure.h"
#include "imaging/processing/pixels/colour_pixels.h"
#include "imaging/processing/pixels/palette.h"

namespace quillane::processing {

namespace {

/// Pixels in a layout of 8 or 16 bits a channel, from any other in form Full.
QImage DepthPixels(const Bitmap& picture, QImage::Format format)
{
    QImage pixels = picture.Pixels().convertToFormat(format);
    if (pixels.isNull()) {
        FailForMemory();
    }
    return pixels;
}

Bitmap ToColours(const Bitmap& picture, QImage::Format format)
{
    const bool alpha = format == QImage::Format_ARGB32 || format == QImage::Format_RGBA64;
    const Bitmap from = InForm(alpha ? picture : Opaque(picture), PixelForm::Full);
    // Grey with a profile of its own is brought to sRGB by it.
    const Bitmap colours = from.Icc().isEmpty() ? from : InForm(from, PixelForm::Colour);
    return PictureLike(colours, DepthPixels(colours, format), ColourModel::Rgb);
}

Bitmap ToBlackAndWhite(const Bitmap& picture, DitherChoice dither)
{
    const Bitmap grey = WithGreyDepth(GreyOf(picture), 8);
    return PictureLike(grey, BlackAndWhite(grey.Pixels(), dither), ColourModel::BlackWhite);
}

Bitmap ToPalette(const Bitmap& picture, int most, const DepthChoice& choice)
{
    if (choice.palette == PaletteChoice::Best && most == 256) {
        const Bitmap full = InForm(picture, PixelForm::Full);
        if (full.Model() == ColourModel::Grey) {
            return WithGreyDepth(full, 8);
        }
    }
    const bool alpha = picture.Model() != ColourModel::Cmyk && picture.Pixels().hasAlphaChannel();
    const Bitmap colours = ToColours(picture, alpha ? QImage::Format_ARGB32 : QImage::Format_RGB32);
    const QImage& pixels = colours.Pixels();
    switch (choice.palette) {
    case PaletteChoice::Best:
        if (std::optional<QImage> exact = ExactPalette(pixels, most)) {
            return PictureLike(colours, std::move(*exact), ColourModel::Palette);
        }
        return PictureLike(colours, ReducedPalette(pixels, most, {}, choice.dither),
                           ColourModel::Palette);
    case PaletteChoice::Fixed:
        return PictureLike(colours, ReducedPalette(pixels, most, FixedColours(most), choice.dither),
                           ColourModel::Palette);
    case PaletteChoice::Grey:
        break;
    }
    const Bitmap grey = ToColours(WithGreyDepth(GreyOf(picture), 8), QImage::Format_RGB32);
    return PictureLike(grey, ReducedPalette(grey.Pixels(), most, GreyColours(most), choice.dither),
                       ColourModel::Palette);
}

} // namespace

Bitmap ToDepth(const Bitmap& picture, qint32 bits, const DepthChoice& choice)
{
    NeedPicture(picture);
    switch (bits) {
    case 1:
        return ToBlackAndWhite(picture, choice.dither);
    case 4:
        return ToPalette(picture, 16, choice);
    case 8:
        return ToPalette(picture, 256, choice);
    case 16:
        return WithGreyDepth(GreyOf(picture), 16);
    case 24:
        return ToColours(picture, QImage::Format_RGB32);
    case 32:
        return ToColours(picture, QImage::Format_ARGB32);
    case 48:
        return ToColours(picture, QImage::Format_RGBX64);
    case 64:
        return ToColours(picture, QImage::Format_RGBA64);
    default:
        throw Failure(kFailureGeneral,
                      QStringLiteral("A picture cannot have %1 bits per pixel.").arg(bits));
    }
}

} // namespace quillane::processing
