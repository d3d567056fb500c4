#include "imaging/worker_main/codecs/tiff_tags.h"
#include "core/failure.h"
#include "imaging/limits.h"
#include "imaging/worker/protocol.h"
#include <algorithm>
#include <cmath>
#include <tiffio.h>

namespace quillane::worker {

namespace {

constexpr std::uint16_t kCompressionJpeg2000 = 34712;
constexpr std::uint16_t kMaxSamples = 64;
constexpr std::uint16_t kMaxSampleBits = 64;

struct CompressionName {
    std::uint16_t code;
    const char* words;
};
constexpr CompressionName kCompressionNames[] = {
    {COMPRESSION_NONE, "Uncompressed"},
    {COMPRESSION_CCITTRLE, "CCITT modified Huffman"},
    {COMPRESSION_CCITTRLEW, "CCITT modified Huffman"},
    {COMPRESSION_CCITTFAX3, "CCITT Group 3"},
    {COMPRESSION_CCITTFAX4, "CCITT Group 4"},
    {COMPRESSION_LZW, "LZW"},
    {COMPRESSION_OJPEG, "JPEG (old style)"},
    {COMPRESSION_JPEG, "JPEG"},
    {COMPRESSION_PACKBITS, "PackBits"},
    {COMPRESSION_ADOBE_DEFLATE, "Deflate"},
    {COMPRESSION_DEFLATE, "Deflate"},
    {COMPRESSION_THUNDERSCAN, "ThunderScan"},
    {COMPRESSION_NEXT, "NeXT"},
    {COMPRESSION_JBIG, "JBIG"},
    {kCompressionJpeg2000, "JPEG 2000"},
    {COMPRESSION_LZMA, "LZMA"},
    {COMPRESSION_ZSTD, "Zstandard"},
    {COMPRESSION_WEBP, "WebP"},
    {COMPRESSION_LERC, "LERC"},
    {COMPRESSION_PIXARLOG, "PixarLog"},
    {COMPRESSION_SGILOG, "SGI LogLuv"},
    {COMPRESSION_SGILOG24, "SGI LogLuv"},
};

/// Codes of one compression by colour: RGB, grey and palette; CMYK; YCbCr.
struct TiffCode {
    std::uint16_t compression;
    qint16 rgb, cmyk, ycbcr;
};
constexpr TiffCode kTiffCodes[] = {
    {COMPRESSION_NONE, 3, 85, 93},       {COMPRESSION_LZW, 17, 86, 94},
    {COMPRESSION_PACKBITS, 87, 88, 95},  {COMPRESSION_CCITTRLE, 25, 25, 25},
    {COMPRESSION_CCITTRLEW, 25, 25, 25}, {COMPRESSION_CCITTFAX4, 29, 29, 29},
    {COMPRESSION_JBIG, 139, 139, 139},   {kCompressionJpeg2000, 166, 166, 166},
};
constexpr qint16 kTiffPlain = 3, kTiffFax1d = 27, kTiffFax2d = 28;
constexpr qint16 kTiffJpeg444 = 11, kTiffJpeg422 = 24, kTiffJpeg411 = 22;
constexpr qint16 kTiffExifRgb = 96, kTiffExifYcbcr = 97;

qint16 TiffFormatCode(TIFF* tiff, const TiffTags& tags)
{
    std::uint64_t exif = 0;
    if (tags.compression == COMPRESSION_NONE && TIFFGetField(tiff, TIFFTAG_EXIFIFD, &exif)) {
        if (tags.photometric == PHOTOMETRIC_RGB) {
            return kTiffExifRgb;
        }
        if (tags.photometric == PHOTOMETRIC_YCBCR) {
            return kTiffExifYcbcr;
        }
    }
    if (tags.compression == COMPRESSION_CCITTFAX3) {
        std::uint32_t options = 0;
        TIFFGetField(tiff, TIFFTAG_GROUP3OPTIONS, &options);
        return options & GROUP3OPT_2DENCODING ? kTiffFax2d : kTiffFax1d;
    }
    if (tags.compression == COMPRESSION_JPEG || tags.compression == COMPRESSION_OJPEG) {
        if (tags.photometric != PHOTOMETRIC_YCBCR
            || (tags.subsamplingX == 1 && tags.subsamplingY == 1)) {
            return kTiffJpeg444;
        }
        return tags.subsamplingX == 2 && tags.subsamplingY == 1 ? kTiffJpeg422 : kTiffJpeg411;
    }
    for (const TiffCode& row : kTiffCodes) {
        if (row.compression == tags.compression) {
            return tags.photometric == PHOTOMETRIC_SEPARATED ? row.cmyk
                : tags.photometric == PHOTOMETRIC_YCBCR      ? row.ycbcr
                                                             : row.rgb;
        }
    }
    return kTiffPlain;
}

qint32 DotsPerInch(TIFF* tiff, std::uint32_t tag)
{
    float value = 0;
    std::uint16_t unit = RESUNIT_INCH;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_RESOLUTIONUNIT, &unit);
    if (!TIFFGetField(tiff, tag, &value) || unit == RESUNIT_NONE || !std::isfinite(value)) {
        return 0;
    }
    constexpr double kCentimetresPerInch = 2.54, kMost = 1e6;
    const double dots = unit == RESUNIT_CENTIMETER ? value * kCentimetresPerInch : double(value);
    return qint32(std::lround(std::clamp(dots, 0.0, kMost)));
}

QString CompressionWords(std::uint16_t compression)
{
    for (const CompressionName& row : kCompressionNames) {
        if (row.code == compression) {
            return QString::fromLatin1(row.words);
        }
    }
    return QStringLiteral("TIFF compression %1").arg(compression);
}

} // namespace

TiffTags ReadTiffTags(TiffFile& file)
{
    TIFF* tiff = file.Handle();
    TiffTags tags;
    if (!TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &tags.width)
        || !TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &tags.height) || tags.width == 0
        || tags.height == 0) {
        ThrowTiffDamaged();
    }
    TIFFGetFieldDefaulted(tiff, TIFFTAG_BITSPERSAMPLE, &tags.bits);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLESPERPIXEL, &tags.samples);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_COMPRESSION, &tags.compression);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLEFORMAT, &tags.sampleFormat);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_YCBCRSUBSAMPLING, &tags.subsamplingX, &tags.subsamplingY);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_INKSET, &tags.inkSet);
    if (!TIFFGetField(tiff, TIFFTAG_PHOTOMETRIC, &tags.photometric)) {
        tags.photometric = tags.samples >= 3 ? PHOTOMETRIC_RGB
            : tags.bits == 1                 ? PHOTOMETRIC_MINISWHITE
                                             : PHOTOMETRIC_MINISBLACK;
    }
    std::uint16_t planar = PLANARCONFIG_CONTIG;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_PLANARCONFIG, &planar);
    tags.separate = planar == PLANARCONFIG_SEPARATE && tags.samples > 1;
    const std::uint16_t* extra = nullptr;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_EXTRASAMPLES, &tags.extraSamples, &extra);
    if (tags.extraSamples > 0 && extra) {
        tags.alpha = extra[0];
    }
    tags.tiled = TIFFIsTiled(tiff) != 0;
    std::uint32_t rows = 0;
    if (tags.tiled) {
        TIFFGetField(tiff, TIFFTAG_TILELENGTH, &rows);
    } else {
        TIFFGetFieldDefaulted(tiff, TIFFTAG_ROWSPERSTRIP, &rows);
    }
    tags.bandRows = std::min(rows, tags.height);

    if (tags.bandRows == 0 || tags.bits == 0 || tags.samples == 0) {
        ThrowTiffDamaged();
    }
    if (tags.samples > kMaxSamples || tags.bits > kMaxSampleBits) {
        throw Failure(kFailureUnreadable,
                      QStringLiteral("This TIFF file asks for %1 samples of %2 bits a pixel, "
                                     "which no picture has.")
                          .arg(tags.samples)
                          .arg(tags.bits));
    }
    if (tags.width > std::uint32_t(limits::kMaxSide)
        || tags.height > std::uint32_t(limits::kMaxSide)
        || qint64(tags.width) * tags.height > limits::kMaxPixels) {
        throw Failure(kFailureLimit,
                      QStringLiteral("This TIFF picture is too large: %1 by %2 "
                                     "pixels.")
                          .arg(tags.width)
                          .arg(tags.height));
    }
    return tags;
}

ImageFacts TiffFacts(TiffFile& file, const TiffTags& tags)
{
    TIFF* tiff = file.Handle();
    ImageFacts facts;
    facts.width = qint32(tags.width);
    facts.height = qint32(tags.height);
    facts.bits = qint16(tags.bits * tags.samples);
    facts.format = TiffFormatCode(tiff, tags);
    facts.xResolution = DotsPerInch(tiff, TIFFTAG_XRESOLUTION);
    facts.yResolution = DotsPerInch(tiff, TIFFTAG_YRESOLUTION);
    std::uint16_t orientation = ORIENTATION_TOPLEFT;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_ORIENTATION, &orientation);
    facts.orientation = orientation >= 1 && orientation <= 8 ? quint8(orientation) : quint8(1);
    facts.layout.compression = tags.compression;
    if (tags.photometric == PHOTOMETRIC_YCBCR) {
        constexpr std::uint16_t kMostSubsampling = 4;
        facts.layout.horizontal = quint8(std::min(tags.subsamplingX, kMostSubsampling));
        facts.layout.vertical = quint8(std::min(tags.subsamplingY, kMostSubsampling));
    }
    facts.compression = CompressionWords(tags.compression);
    facts.sizeDisk = file.Source().Size();
    facts.sizeMemory = RowBytes(facts.width, facts.bits) * facts.height;
    facts.pages = std::max(1, int(TiffPageOffsets(file.Source()).size()));
    return facts;
}

} // namespace quillane::worker
