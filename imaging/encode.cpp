#include "imaging/encode.h"
#include "core/failure.h"
#include "imaging/codec.h"
#include "imaging/encode_pixels.h"
#include "imaging/format_table.h"
#include "imaging/worker/worker_host.h"
#include <algorithm>
#include <cstring>
#include <new>

namespace quillane {

namespace {

QString EncodeName(qint16 format)
{
    const QString words = FormatDescription(format);
    return words.isEmpty() ? QStringLiteral("format %1").arg(format) : words;
}

const Codec* EncodeCodec(const SaveVariant& variant)
{
    const std::span<const Codec> all = AllCodecs();
    const auto found = std::find_if(all.begin(), all.end(), [&](const Codec& codec) {
        return std::strcmp(codec.name, variant.codec) == 0
            && (codec.encode || codec.encodesInWorker);
    });
    return found == all.end() ? nullptr : &*found;
}

/// "1, 4, 8 or 24"
QString EncodeDepthWords(const SaveVariant& variant)
{
    QString words;
    for (const qint32* depth = variant.depths; *depth != 0; ++depth) {
        const bool last = depth[1] == 0;
        const bool first = words.isEmpty();
        words += first ? QString() : last ? QStringLiteral(" or ") : QStringLiteral(", ");
        words += QString::number(*depth);
    }
    return words;
}

/// The depth nearest to the picture's own that the variant has.
qint32 EncodeNearestDepth(const SaveVariant& variant, const Bitmap& picture)
{
    qint32 own = picture.Bits();
    if (own == 8 && picture.FileDepth() >= 1 && picture.FileDepth() < 8) {
        own = picture.FileDepth();
    }
    if (variant.colour == StoredColour::Grey && own > 16) {
        own = own > 32 ? 16 : 8;
    }
    qint32 nearest = variant.depths[0];
    for (const qint32* depth = variant.depths; *depth != 0 && nearest < own; ++depth) {
        nearest = *depth;
    }
    return nearest;
}

} // namespace

bool SaveVariant::Holds(qint32 bits) const
{
    return bits > 0 && std::find(std::begin(depths), std::end(depths), bits) != std::end(depths);
}

const SaveVariant* FindSaveVariant(qint16 format)
{
    const std::span<const SaveVariant> all = SaveVariants();
    const auto found = std::find_if(all.begin(), all.end(), [&](const SaveVariant& variant) {
        return variant.format == format;
    });
    return found == all.end() ? nullptr : &*found;
}

qint32 WrittenDepth(const SaveVariant& variant, const Bitmap& picture, qint32 bits)
{
    if (bits == 0) {
        return EncodeNearestDepth(variant, picture);
    }
    if (variant.Holds(bits)) {
        return bits;
    }
    if (bits > 0 && (bits <= 8 || bits == 24)) {
        for (const qint32* depth = variant.depths; *depth != 0; ++depth) {
            const bool full = *depth == 24 || variant.colour == StoredColour::Cmyk;
            if (*depth > bits && (*depth <= 8 || full)) {
                return *depth;
            }
        }
    }
    throw Failure(kFailureGeneral,
                  QStringLiteral("\"%1\" cannot be written with %2 bits per pixel, only with %3.")
                      .arg(EncodeName(variant.format))
                      .arg(bits)
                      .arg(EncodeDepthWords(variant)));
}

QByteArray EncodePicture(const Bitmap& picture, const EncodeRequest& request)
{
    const SaveVariant* variant = FindSaveVariant(request.format);
    const Codec* codec = variant ? EncodeCodec(*variant) : nullptr;
    if (!codec) {
        throw Failure(kFailureGeneral,
                      QStringLiteral("\"%1\" cannot be written. Choose another format.")
                          .arg(EncodeName(request.format)));
    }
    if (picture.IsNull()) {
        throw Failure(kFailureGeneral, QStringLiteral("There is no picture to write."));
    }
    EncodeRequest exact = request;
    exact.bits = WrittenDepth(*variant, picture, request.bits);
    try {
        const Bitmap ready = PixelsFor(*variant, picture, exact.bits, exact.icc);
        return codec->encodesInWorker ? worker::Encode(ready, exact, codec->name)
                                      : codec->encode(ready, exact);
    } catch (const std::bad_alloc&) {
        throw Failure(kFailureLimit,
                      QStringLiteral("There is not enough memory to write the picture."));
    }
}

} // namespace quillane
