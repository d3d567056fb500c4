#include "imaging/encode_pixels.h"
#include "core/failure.h"
#include "imaging/colour_profile.h"
#include "imaging/resize.h"
#include <algorithm>
#include <array>

namespace quillane {

namespace {

/// The colour space that an ICC profile's header names (ICC.1, 7.2.6).
QByteArrayView EncodeProfileSpace(const QByteArray& icc)
{
    return icc.size() >= 128 ? QByteArrayView(icc).sliced(16, 4) : QByteArrayView();
}

bool EncodeIsGrey(const Bitmap& picture)
{
    return picture.Model() == ColourModel::Grey || picture.Model() == ColourModel::BlackWhite;
}

bool EncodeHasAlpha(const Bitmap& picture)
{
    return picture.Model() != ColourModel::Cmyk && picture.Pixels().hasAlphaChannel();
}

bool EncodeIsInk(const SaveVariant& variant, const Bitmap& picture, qint32 bits)
{
    const bool kept = (variant.traits & kInkKept) != 0 && picture.Model() == ColourModel::Cmyk;
    return variant.colour == StoredColour::Cmyk
        || (bits == 32 && (kept || (variant.traits & kInkIn32) != 0));
}

bool EncodeBecomesGrey(const SaveVariant& variant, const Bitmap& picture, qint32 bits)
{
    return variant.colour == StoredColour::Grey || (bits <= 16 && (variant.traits & kGreyIn8) != 0)
        || (bits == 16 && (variant.traits & kColourIn16) == 0)
        || (bits <= 8 && EncodeIsGrey(picture));
}

Bitmap EncodeWith(const Bitmap& from, QImage pixels, ColourModel model)
{
    if (pixels.isNull()) {
        throw Failure(kFailureLimit,
                      QStringLiteral("There is not enough memory to write the picture."));
    }
    return {std::move(pixels), model, from.FileDepth()};
}

/// The picture on white where it is clear.
Bitmap EncodeOpaque(const Bitmap& picture)
{
    if (!EncodeHasAlpha(picture)) {
        return picture;
    }
    const QImage& pixels = picture.Pixels();
    if (pixels.colorCount() > 0) {
        QImage opaque = pixels;
        for (int i = 0; i < pixels.colorCount(); ++i) {
            const QRgb p = pixels.color(i);
            const int rest = 255 - qAlpha(p);
            const auto mix = [&](int c) { return (c * qAlpha(p) + 255 * rest + 127) / 255; };
            opaque.setColor(i, qRgb(mix(qRed(p)), mix(qGreen(p)), mix(qBlue(p))));
        }
        return EncodeWith(picture, std::move(opaque), picture.Model());
    }
    const bool wide = pixels.depth() == 64;
    QImage opaque = pixels.convertToFormat(wide ? QImage::Format_RGBX64 : QImage::Format_RGB32);
    for (int y = 0; y < opaque.height(); ++y) {
        if (wide) {
            const quint16* in = reinterpret_cast<const quint16*>(pixels.constScanLine(y));
            quint16* to = reinterpret_cast<quint16*>(opaque.scanLine(y));
            for (int x = 0; x < 4 * opaque.width(); ++x) {
                const quint64 alpha = in[x | 3];
                to[x] = quint16((in[x] * alpha + 65535 * (65535 - alpha) + 32767) / 65535);
                to[x] = (x & 3) == 3 ? 65535 : to[x];
            }
            continue;
        }
        const QRgb* in = reinterpret_cast<const QRgb*>(pixels.constScanLine(y));
        QRgb* to = reinterpret_cast<QRgb*>(opaque.scanLine(y));
        for (int x = 0; x < opaque.width(); ++x) {
            const int alpha = qAlpha(in[x]);
            const auto mix = [&](int c) { return (c * alpha + 255 * (255 - alpha) + 127) / 255; };
            to[x] = qRgb(mix(qRed(in[x])), mix(qGreen(in[x])), mix(qBlue(in[x])));
        }
    }
    return EncodeWith(picture, std::move(opaque), ColourModel::Rgb);
}

/// Colours of a picture as they come, up to so many; more make it empty.
class EncodeColours {
public:
    explicit EncodeColours(int most) : mMost(most) { mSlots.fill(-1); }
    /// Index of the colour, -1 when there are too many.
    int IndexOf(QRgb colour)
    {
        size_t at = (colour * 0x9e3779b1u) >> 22;
        while (mSlots[at] >= 0) {
            if (mColours[mSlots[at]] == colour) {
                return mSlots[at];
            }
            at = (at + 1) % kSlots;
        }
        if (mColours.size() >= mMost) {
            return -1;
        }
        mSlots[at] = int(mColours.size());
        mColours.append(colour);
        return mSlots[at];
    }
    const QList<QRgb>& Colours() const { return mColours; }

private:
    static constexpr size_t kSlots = 1024; ///< four times the colours at most
    int mMost;
    QList<QRgb> mColours;
    std::array<int, kSlots> mSlots{};
};

/// The same picture with a palette of its own colours; null when it has more of them than that.
QImage EncodeOwnPalette(const QImage& pixels, int most)
{
    EncodeColours colours(most);
    QImage result(pixels.size(), QImage::Format_Indexed8);
    const bool small = pixels.depth() <= 8;
    const QImage full =
        pixels.depth() == 32 || small ? pixels : pixels.convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < pixels.height() && !result.isNull(); ++y) {
        const QRgb* in = reinterpret_cast<const QRgb*>(full.constScanLine(y));
        uchar* to = result.scanLine(y);
        QRgb last = 0;
        int index = -1;
        for (int x = 0; x < pixels.width(); ++x) {
            const QRgb colour = small ? full.pixel(x, y) : in[x];
            if (index < 0 || colour != last) {
                index = colours.IndexOf(colour);
                last = colour;
            }
            if (index < 0) {
                return {};
            }
            to[x] = uchar(index);
        }
    }
    result.setColorTable(colours.Colours());
    return result;
}

/// A palette as it stands where it is small enough, so that indexes stay what they were.
bool EncodeKeepsPalette(const Bitmap& picture, qint32 bits)
{
    return picture.Pixels().format() == QImage::Format_Indexed8
        && picture.Pixels().colorCount() <= 1 << bits;
}

/// Even steps of red, green and blue, as many as the bits allow.
QList<QRgb> EncodeEvenPalette(int most)
{
    int steps[3] = {2, 2, 2};
    constexpr int kOrder[] = {1, 0, 2}; // green first, which the eye sees most of
    for (int i = 0; steps[0] * steps[1] * steps[2] > most; ++i) {
        steps[2 - i % 3] = 1;
    }
    for (bool grown = true; grown;) {
        grown = false;
        for (const int channel : kOrder) {
            if (steps[0] * steps[1] * steps[2] / steps[channel] * (steps[channel] + 1) <= most) {
                ++steps[channel];
                grown = true;
            }
        }
    }
    QList<QRgb> colours;
    colours.reserve(most);
    const auto level = [&](int channel, int i) {
        return steps[channel] > 1 ? i * 255 / (steps[channel] - 1) : 128;
    };
    for (int r = 0; r < steps[0]; ++r) {
        for (int g = 0; g < steps[1]; ++g) {
            for (int b = 0; b < steps[2]; ++b) {
                colours.append(qRgb(level(0, r), level(1, g), level(2, b)));
            }
        }
    }
    return colours;
}

/// Fewer colours than the picture has, one of them for what is clear.
QImage EncodeReduce(const Bitmap& picture, qint32 bits)
{
    const bool clear = EncodeHasAlpha(picture);
    const int most = (1 << bits) - (clear ? 1 : 0);
    const Bitmap opaque = EncodeOpaque(picture);
    QImage reduced = opaque.Pixels()
                         .convertToFormat(QImage::Format_RGB32)
                         .convertToFormat(QImage::Format_Indexed8, EncodeEvenPalette(most));
    if (!clear || reduced.isNull()) {
        return reduced;
    }
    const int hole = reduced.colorCount();
    reduced.setColorCount(hole + 1);
    reduced.setColor(hole, qRgba(255, 255, 255, 0));
    for (int y = 0; y < reduced.height(); ++y) {
        uchar* row = reduced.scanLine(y);
        for (int x = 0; x < reduced.width(); ++x) {
            if (qAlpha(picture.Pixels().pixel(x, y)) < 128) {
                row[x] = uchar(hole);
            }
        }
    }
    return reduced;
}

Bitmap EncodePalette(const Bitmap& picture, qint32 bits)
{
    if (EncodeKeepsPalette(picture, bits)) {
        return picture;
    }
    QImage own = EncodeOwnPalette(picture.Pixels(), 1 << bits);
    if (own.isNull()) {
        own = EncodeReduce(picture, bits);
    }
    return EncodeWith(picture, std::move(own), ColourModel::Palette);
}

/// Two colours: the picture's own where it has no more, else black and white.
Bitmap EncodeOneBit(const Bitmap& picture, const SaveVariant& variant)
{
    const bool anyColours = variant.colour == StoredColour::Any && (variant.traits & kGreyIn8) == 0;
    if (picture.Pixels().format() == QImage::Format_Mono && (anyColours || EncodeIsGrey(picture))) {
        return picture;
    }
    if (anyColours && picture.Bits() > 1) {
        const QImage own = EncodeOwnPalette(picture.Pixels(), 2);
        if (!own.isNull()) {
            QList<QRgb> colours = own.colorTable();
            colours.resize(2, qRgb(255, 255, 255));
            std::sort(colours.begin(), colours.end(),
                      [](QRgb a, QRgb b) { return qGray(a) < qGray(b); });
            const bool plain = colours[0] == qRgb(0, 0, 0) && colours[1] == qRgb(255, 255, 255);
            QImage two = own.convertToFormat(QImage::Format_Mono, colours);
            return EncodeWith(picture, std::move(two),
                              plain ? ColourModel::BlackWhite : ColourModel::Palette);
        }
    }
    return AtDepth(EncodeOpaque(picture), 1);
}

Bitmap EncodeInk(const Bitmap& picture)
{
    if (picture.Model() == ColourModel::Cmyk) {
        return picture;
    }
    const Bitmap opaque = EncodeOpaque(picture);
    return EncodeWith(picture,
                      PlainSrgbToCmyk(opaque.Pixels().convertToFormat(QImage::Format_RGB32)),
                      ColourModel::Cmyk);
}

Bitmap EncodeDeep(const SaveVariant& variant, const Bitmap& picture, qint32 bits)
{
    const bool blended = (variant.traits & kBlendedGrey) != 0 && EncodeHasAlpha(picture);
    const QImage& pixels = picture.Pixels();
    const auto as = [&](const Bitmap& from, QImage::Format layout, ColourModel model) {
        return EncodeWith(from, from.Pixels().convertToFormat(layout), model);
    };
    switch (bits) {
    case 16:
        if (blended) {
            return as(picture, QImage::Format_ARGB32, ColourModel::Rgb);
        }
        if (variant.traits & kColourIn16) {
            return as(EncodeOpaque(picture), QImage::Format_RGB32, ColourModel::Rgb);
        }
        return as(EncodeOpaque(picture), QImage::Format_Grayscale16, ColourModel::Grey);
    case 24:
        return as(EncodeOpaque(picture), QImage::Format_RGB32, ColourModel::Rgb);
    case 32:
        if (blended && pixels.format() == QImage::Format_RGBA64 && picture.FileDepth() == 32) {
            return picture;
        }
        return as(picture, QImage::Format_ARGB32, ColourModel::Rgb);
    case 48:
        return as(EncodeOpaque(picture), QImage::Format_RGBX64, ColourModel::Rgb);
    default:
        return as(picture, QImage::Format_RGBA64, ColourModel::Rgb);
    }
}

/// The picture in sRGB; one with a palette keeps its indexes, a grey one its greyness.
Bitmap EncodeShown(const Bitmap& picture)
{
    if (picture.Model() == ColourModel::Palette || picture.Model() == ColourModel::BlackWhite) {
        const QImage shown = ProfileToSrgb(picture.Pixels(), picture.Icc(), false);
        return shown.isNull() ? picture : EncodeWith(picture, shown, picture.Model());
    }
    const QImage shown = picture.ToDisplay();
    if (picture.Model() == ColourModel::Grey) {
        return EncodeWith(picture, shown.convertToFormat(QImage::Format_Grayscale8),
                          ColourModel::Grey);
    }
    const bool clear = shown.hasAlphaChannel();
    return EncodeWith(picture,
                      shown.convertToFormat(clear ? QImage::Format_ARGB32 : QImage::Format_RGB32),
                      ColourModel::Rgb);
}

/// Whether the profile goes into the file with the pixels that it speaks of.
bool EncodeKeepsProfile(const SaveVariant& variant, const Bitmap& picture, qint32 bits,
                        const QByteArray& icc)
{
    const QByteArrayView space = EncodeProfileSpace(icc);
    if ((variant.traits & kHoldsProfile) == 0) {
        return false;
    }
    if (EncodeIsInk(variant, picture, bits)) {
        return space == "CMYK" && picture.Model() == ColourModel::Cmyk;
    }
    if (picture.Model() == ColourModel::Cmyk) {
        return false;
    }
    return EncodeBecomesGrey(variant, picture, bits) ? space == "GRAY" && EncodeIsGrey(picture)
                                                     : space == "RGB ";
}

} // namespace

QImage PlainSrgbToCmyk(const QImage& pixels)
{
    QImage ink(pixels.size(), QImage::Format_RGBA8888);
    for (int y = 0; y < ink.height(); ++y) {
        const QRgb* in = reinterpret_cast<const QRgb*>(pixels.constScanLine(y));
        uchar* to = ink.scanLine(y);
        for (int x = 0; x < ink.width(); ++x, to += 4) {
            const int light = std::max({qRed(in[x]), qGreen(in[x]), qBlue(in[x])});
            const auto share = [light](int value) {
                return light > 0 ? uchar(((light - value) * 255 + light / 2) / light) : uchar(0);
            };
            to[0] = share(qRed(in[x]));
            to[1] = share(qGreen(in[x]));
            to[2] = share(qBlue(in[x]));
            to[3] = uchar(255 - light);
        }
    }
    return ink;
}

Bitmap PixelsFor(const SaveVariant& variant, const Bitmap& picture, qint32 bits, QByteArray& icc)
{
    Bitmap from = picture;
    if (!EncodeKeepsProfile(variant, picture, bits, icc)) {
        icc.clear();
        const bool wide = picture.Pixels().depth() == 64
            || picture.Pixels().format() == QImage::Format_Grayscale16;
        const bool ink =
            picture.Model() == ColourModel::Cmyk && !EncodeIsInk(variant, picture, bits);
        if (ink || (!picture.Icc().isEmpty() && !wide && picture.Model() != ColourModel::Cmyk)) {
            from = EncodeShown(picture);
        }
    }
    if (EncodeIsInk(variant, picture, bits)) {
        return EncodeInk(from);
    }
    if (bits == 1) {
        return EncodeOneBit(from, variant);
    }
    if (bits <= 8 && EncodeBecomesGrey(variant, picture, bits) && bits == 8) {
        const Bitmap opaque = EncodeOpaque(from);
        return EncodeWith(from, opaque.Pixels().convertToFormat(QImage::Format_Grayscale8),
                          ColourModel::Grey);
    }
    return bits <= 8 ? EncodePalette(from, bits) : EncodeDeep(variant, from, bits);
}

} // namespace quillane
