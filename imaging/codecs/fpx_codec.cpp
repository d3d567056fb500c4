#include "imaging/codecs/codec_support.h"
#include "imaging/codecs/codecs.h"
#include "imaging/codecs/fpx_tiles.h"

namespace quillane::codecs {

namespace {

constexpr char kFpxCodecName[] = "FlashPix";

/// Code and words by how the tiles are packed: the most demanding way of them counts.
void FpxPacking(const FpxPicture& picture, ImageFacts& facts)
{
    const FpxResolution& resolution = picture.Resolutions().back();
    facts.format = 81;
    facts.compression = QStringLiteral("Single colour");
    for (const FpxTile& tile : resolution.tiles) {
        if (tile.packing == 2) {
            // With tables of the file's own the quality was chosen for the whole picture.
            facts.format = tile.detail[3] != 0 ? 82 : 83;
            facts.compression = QStringLiteral("JPEG");
            return;
        }
        if (tile.packing == 0) {
            facts.format = 80;
            facts.compression = QStringLiteral("Uncompressed");
        }
    }
}

/// The smallest resolution that is large enough.
const FpxResolution& FpxChoose(const FpxPicture& picture, QSize atLeast)
{
    if (!atLeast.isEmpty()) {
        for (const FpxResolution& one : picture.Resolutions()) {
            if (one.size.width() >= atLeast.width() && one.size.height() >= atLeast.height()) {
                return one;
            }
        }
    }
    return picture.Resolutions().back();
}

} // namespace

bool FpxMatches(QByteArrayView head, QStringView)
{
    return IsCompoundFile(head);
}

ImageFacts FpxProbe(ByteSource& source)
{
    const FpxPicture picture(source);
    const QSize size = picture.Resolutions().back().size;
    ImageFacts facts;
    facts.width = size.width();
    facts.height = size.height();
    facts.bits = picture.HasAlpha() ? 32 : picture.Space() == FpxSpace::Grey ? 8 : 24;
    FpxPacking(picture, facts);
    return facts;
}

Bitmap FpxDecode(ByteSource& source, const DecodeRequest& request)
{
    CheckCancelled(request);
    const FpxPicture picture(source);
    const FpxResolution& resolution = FpxChoose(picture, request.atLeast);
    FpxTiles tiles(picture, resolution);
    QImage image =
        NewImage(kFpxCodecName, resolution.size.width(), resolution.size.height(), tiles.Layout());
    image.fill(0xffffffff);
    const int missing = tiles.DecodeAll(image, request);
    const qint64 across =
        (resolution.size.width() + resolution.tile.width() - 1) / resolution.tile.width();
    const qint64 down =
        (resolution.size.height() + resolution.tile.height() - 1) / resolution.tile.height();
    if (missing >= across * down) {
        Damaged(kFpxCodecName, QStringLiteral("none of its tiles can be read"));
    }
    const bool grey = image.format() == QImage::Format_Grayscale8;
    const int bits = grey ? 8 : picture.HasAlpha() ? 32 : 24;
    Bitmap bitmap(std::move(image), grey ? ColourModel::Grey : ColourModel::Rgb, bits);
    bitmap.SetPartial(missing > 0);
    return bitmap;
}

} // namespace quillane::codecs
