#include "imaging/worker_main/codecs/tiff_variant.h"
#include "core/failure.h"
#include <algorithm>
#include <tiffio.h>

namespace quillane::worker {

namespace {

enum class TiffColour : quint8 { Any, Cmyk, Ycbcr, Fax, Jpeg, Jpeg2000 };

struct TiffCodeRow {
    qint16 format;
    std::uint16_t compression;
    TiffColour colour;
    std::uint32_t faxOptions;
    std::uint16_t across, down; ///< samples of luminance to one of colour
};
constexpr TiffCodeRow kTiffCodeRows[] = {
    {3, COMPRESSION_NONE, TiffColour::Any, 0, 2, 1},
    {11, COMPRESSION_JPEG, TiffColour::Jpeg, 0, 1, 1},
    {17, COMPRESSION_LZW, TiffColour::Any, 0, 1, 1},
    {22, COMPRESSION_JPEG, TiffColour::Jpeg, 0, 4, 1},
    {24, COMPRESSION_JPEG, TiffColour::Jpeg, 0, 2, 1},
    {25, COMPRESSION_CCITTRLE, TiffColour::Fax, 0, 1, 1},
    {27, COMPRESSION_CCITTFAX3, TiffColour::Fax, 0, 1, 1},
    {28, COMPRESSION_CCITTFAX3, TiffColour::Fax, GROUP3OPT_2DENCODING, 1, 1},
    {29, COMPRESSION_CCITTFAX4, TiffColour::Fax, 0, 1, 1},
    {85, COMPRESSION_NONE, TiffColour::Cmyk, 0, 1, 1},
    {86, COMPRESSION_LZW, TiffColour::Cmyk, 0, 1, 1},
    {87, COMPRESSION_PACKBITS, TiffColour::Any, 0, 1, 1},
    {88, COMPRESSION_PACKBITS, TiffColour::Cmyk, 0, 1, 1},
    {93, COMPRESSION_NONE, TiffColour::Ycbcr, 0, 2, 1},
    {94, COMPRESSION_LZW, TiffColour::Ycbcr, 0, 2, 1},
    {95, COMPRESSION_PACKBITS, TiffColour::Ycbcr, 0, 2, 1},
    {96, COMPRESSION_NONE, TiffColour::Any, 0, 1, 1},
    {97, COMPRESSION_NONE, TiffColour::Ycbcr, 0, 2, 1},
    {139, COMPRESSION_JBIG, TiffColour::Fax, 0, 1, 1},
    {166, COMPRESSION_JP2000, TiffColour::Jpeg2000, 0, 1, 1},
};
constexpr qint16 kTiffNearest = 3; ///< of compressions without a code of their own
constexpr qint16 kTiffFaxWords = 25;
constexpr qint16 kTiffFullJpeg = 11, kTiffCoarseJpeg = 22;
constexpr qint16 kTiffExif = 96;

/// Compressions without a code of their own that can be written.
constexpr std::uint16_t kTiffKept[] = {COMPRESSION_ADOBE_DEFLATE, COMPRESSION_DEFLATE,
                                       COMPRESSION_LZMA, COMPRESSION_ZSTD, COMPRESSION_WEBP};

[[noreturn]] void RefuseDepth(const TiffCodeRow& row, qint32 bits)
{
    throw Failure(
        kFailureGeneral,
        row.colour == TiffColour::Fax
            ? QStringLiteral("A TIFF file with this compression holds black and white "
                             "only, not %1 bits a pixel.")
                  .arg(bits)
            : QStringLiteral("A TIFF file of this kind does not hold %1 bits a pixel.").arg(bits));
}

qint32 OwnBits(const PictureShape& shape)
{
    switch (shape.layout) {
    case PixelLayout::Mono:
        return 1;
    case PixelLayout::Indexed8:
        return shape.fileDepth == 1 || shape.fileDepth == 4 ? shape.fileDepth : 8;
    case PixelLayout::Grey8:
        return 8;
    case PixelLayout::Grey16:
        return 16;
    case PixelLayout::Rgb32:
        return 24;
    case PixelLayout::Argb32:
    case PixelLayout::Cmyk32:
        return 32;
    case PixelLayout::Rgbx64:
        return 48;
    case PixelLayout::Rgba64:
        return 64;
    }
    return 0;
}

/// Black and white, palette, grey or RGB.
void ChooseTiffDepth(const TiffCodeRow& row, const PictureShape& shape, qint32 bits,
                     TiffVariant& variant)
{
    const bool indexed = shape.layout == PixelLayout::Indexed8;
    const bool few = indexed || shape.layout == PixelLayout::Mono
        || shape.layout == PixelLayout::Grey8 || shape.layout == PixelLayout::Grey16;
    variant.bits = 8;
    switch (bits) {
    case 1:
    case 4:
    case 8:
        if (!few && bits > 1) {
            throw Failure(kFailureGeneral,
                          QStringLiteral("This picture has too many colours for a TIFF file of "
                                         "%1 bits a pixel.")
                              .arg(bits));
        }
        if (indexed && shape.colours.size() > size_t(1) << bits) {
            RefuseDepth(row, bits);
        }
        variant.bits = std::uint16_t(bits);
        variant.photometric = indexed ? PHOTOMETRIC_PALETTE : PHOTOMETRIC_MINISBLACK;
        variant.kind = indexed ? SampleKind::Index
            : bits == 1        ? SampleKind::Bilevel
                               : SampleKind::Grey8;
        return;
    case 16:
        variant.bits = 16;
        variant.photometric = PHOTOMETRIC_MINISBLACK;
        variant.kind = SampleKind::Grey16;
        return;
    case 24:
        variant.kind = SampleKind::Rgb8;
        return;
    case 32:
        variant.kind = SampleKind::Rgba8;
        return;
    case 48:
        variant.bits = 16;
        variant.kind = SampleKind::Rgb16;
        return;
    case 64:
        variant.bits = 16;
        variant.kind = SampleKind::Rgba16;
        return;
    default:
        RefuseDepth(row, bits);
    }
}

void ChooseInks(TiffVariant& variant)
{
    variant.photometric = PHOTOMETRIC_SEPARATED;
    variant.bits = 8;
    variant.kind = SampleKind::Cmyk8;
}

/// The sampling that the original had, else that of the row.
void ChooseSampling(const TiffCodeRow& row, const SourceLayout& layout, TiffVariant& variant)
{
    const auto known = [](quint8 value) { return value == 1 || value == 2 || value == 4; };
    const bool kept = known(layout.horizontal) && known(layout.vertical)
        && layout.vertical <= layout.horizontal
        && (row.colour != TiffColour::Jpeg || row.format == kTiffCoarseJpeg);
    variant.subsamplingX = kept ? layout.horizontal : row.across;
    variant.subsamplingY = kept ? layout.vertical : row.down;
    // The code of coarse JPEG is that of all that is neither 1 x 1 nor 2 x 1.
    if (row.format == kTiffCoarseJpeg && variant.subsamplingX <= 2 && variant.subsamplingY == 1) {
        variant.subsamplingX = row.across;
    }
}

void ChooseYcbcr(const TiffCodeRow& row, const SourceLayout& layout, TiffVariant& variant)
{
    variant.photometric = PHOTOMETRIC_YCBCR;
    variant.bits = 8;
    variant.kind = SampleKind::Rgb8;
    ChooseSampling(row, layout, variant);
}

void ChooseJpeg(const TiffCodeRow& row, const PictureShape& shape, const EncodeWish& wish,
                qint32 bits, TiffVariant& variant)
{
    // Inks are told from RGB with alpha by what the picture is.
    if (bits == 32 && shape.layout == PixelLayout::Cmyk32 && row.format == kTiffFullJpeg) {
        ChooseInks(variant);
    } else if (bits == 8 && row.format == kTiffFullJpeg) {
        variant.photometric = PHOTOMETRIC_MINISBLACK;
        variant.kind = SampleKind::Grey8;
    } else if (bits == 24) {
        ChooseYcbcr(row, wish.layout, variant);
    } else {
        RefuseDepth(row, bits);
    }
}

/// Takes over the compression of an original that has no code of its own, and with it the
/// colours that the code does not name.
bool KeepCompression(const TiffCodeRow& row, const PictureShape& shape, const EncodeWish& wish,
                     qint32 bits, TiffVariant& variant)
{
    if (row.format == kTiffFaxWords && wish.layout.compression == COMPRESSION_CCITTRLEW) {
        variant.compression = COMPRESSION_CCITTRLEW;
        return false;
    }
    const std::uint16_t kept = wish.layout.compression;
    if (row.format != kTiffNearest
        || std::find(std::begin(kTiffKept), std::end(kTiffKept), kept) == std::end(kTiffKept)
        || !TIFFIsCODECConfigured(kept)) {
        return false;
    }
    if (kept == COMPRESSION_WEBP && bits != 24 && bits != 32) {
        return false;
    }
    variant.compression = kept;
    if (bits == 32 && shape.layout == PixelLayout::Cmyk32 && kept != COMPRESSION_WEBP) {
        ChooseInks(variant);
        return true;
    }
    if (bits == 24 && wish.layout.horizontal > 0 && kept != COMPRESSION_WEBP) {
        ChooseYcbcr(row, wish.layout, variant);
        return true;
    }
    return false;
}

bool CanPredict(const TiffVariant& variant)
{
    switch (variant.compression) {
    case COMPRESSION_LZW:
    case COMPRESSION_ADOBE_DEFLATE:
    case COMPRESSION_DEFLATE:
    case COMPRESSION_ZSTD:
    case COMPRESSION_LZMA:
        return variant.bits >= 8 && variant.photometric != PHOTOMETRIC_PALETTE
            && variant.photometric != PHOTOMETRIC_YCBCR;
    default:
        return false;
    }
}

} // namespace

TiffVariant ChooseTiffVariant(const PictureShape& shape, const EncodeWish& wish)
{
    const auto* row =
        std::find_if(std::begin(kTiffCodeRows), std::end(kTiffCodeRows),
                     [&](const TiffCodeRow& one) { return one.format == wish.format; });
    if (row == std::end(kTiffCodeRows)) {
        throw Failure(
            kFailureGeneral,
            wish.format == 138
                ? QStringLiteral("TIFF files with CMP compression cannot be written: the "
                                 "compression is not publicly described.")
                : wish.format == 140
                ? QStringLiteral("TIFF files with a vector drawing (DXF) inside cannot "
                                 "be written: a picture has no lines to store.")
                : QStringLiteral("TIFF files of format %1 cannot be written.").arg(wish.format));
    }
    const qint32 bits = wish.bits > 0 ? wish.bits : OwnBits(shape);
    TiffVariant variant;
    variant.compression = row->compression;
    variant.faxOptions = row->faxOptions;
    if (!KeepCompression(*row, shape, wish, bits, variant)) {
        switch (row->colour) {
        case TiffColour::Any:
            if (row->format == kTiffExif && bits < 24) {
                RefuseDepth(*row, bits);
            }
            ChooseTiffDepth(*row, shape, bits, variant);
            break;
        case TiffColour::Cmyk:
            if (bits != 24 && bits != 32) {
                RefuseDepth(*row, bits);
            }
            ChooseInks(variant);
            break;
        case TiffColour::Ycbcr:
            if (bits != 24) {
                RefuseDepth(*row, bits);
            }
            ChooseYcbcr(*row, wish.layout, variant);
            break;
        case TiffColour::Fax:
            if (bits != 1) {
                RefuseDepth(*row, bits);
            }
            variant.bits = 1;
            variant.photometric = PHOTOMETRIC_MINISWHITE;
            variant.kind = SampleKind::Bilevel;
            break;
        case TiffColour::Jpeg2000:
            if (bits < 8 || (bits == 8 && shape.layout == PixelLayout::Indexed8)) {
                RefuseDepth(*row, bits);
            }
            ChooseTiffDepth(*row, shape, bits, variant);
            break;
        case TiffColour::Jpeg:
            ChooseJpeg(*row, shape, wish, bits, variant);
            break;
        }
    }
    variant.predicts = CanPredict(variant);
    return variant;
}

} // namespace quillane::worker
