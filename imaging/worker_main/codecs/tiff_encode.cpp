#include "core/failure.h"
#include "imaging/limits.h"
#include "imaging/quality.h"
#include "imaging/worker_main/codecs/jpeg2000_codestream.h"
#include "imaging/worker_main/codecs/shipped_codecs.h"
#include "imaging/worker_main/codecs/tiff_output.h"
#include "imaging/worker_main/codecs/tiff_variant.h"
#include "imaging/worker_main/codecs/tiff_ycbcr.h"
#include <algorithm>
#include <cmath>
#include <cstring>
#include <tiffio.h>

namespace quillane::worker {

namespace {

constexpr qint64 kTiffStripBytes = 256 << 10; ///< samples of one strip, about

/// Samples of a pixel in the file: alpha is one more.
std::uint16_t TiffSamples(const TiffVariant& variant)
{
    return std::uint16_t(SamplesOf(variant.kind));
}

std::uint32_t RowsPerStrip(const PictureShape& shape, const TiffVariant& variant)
{
    const auto height = std::uint32_t(shape.height);
    switch (variant.compression) {
    case COMPRESSION_CCITTFAX3:
    case COMPRESSION_CCITTFAX4:
    case COMPRESSION_CCITTRLE:
    case COMPRESSION_CCITTRLEW:
    case COMPRESSION_JBIG:
    case COMPRESSION_JP2000:
        return height; // what readers expect
    default:
        break;
    }
    constexpr std::uint32_t kJpegBlock = 8;
    const std::uint32_t step = variant.compression == COMPRESSION_JPEG
        ? kJpegBlock * variant.subsamplingY
        : variant.subsamplingY;
    const qint64 rowBytes =
        std::max<qint64>(1, qint64(shape.width) * variant.bits * TiffSamples(variant) / 8);
    const auto rows = std::uint32_t(std::clamp<qint64>(kTiffStripBytes / rowBytes, 1, height));
    return (rows + step - 1) / step * step;
}

void SetTiffPalette(TiffOutput& output, const PictureShape& shape, int bits)
{
    const size_t count = size_t(1) << bits;
    std::vector<std::uint16_t> channels[3];
    for (int i = 0; i < 3; ++i) {
        channels[i].resize(count);
        for (size_t k = 0; k < std::min(count, shape.colours.size()); ++k) {
            channels[i][k] = std::uint16_t((shape.colours[k] >> (16 - 8 * i) & 0xff) * 257);
        }
    }
    output.Expect(TIFFSetField(output.Handle(), TIFFTAG_COLORMAP, channels[0].data(),
                               channels[1].data(), channels[2].data())
                  == 1);
}

void SetTiffResolution(TIFF* tiff, const EncodeWish& wish)
{
    const bool known = wish.xResolution > 0 && wish.yResolution > 0;
    TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, known ? RESUNIT_INCH : RESUNIT_NONE);
    TIFFSetField(tiff, TIFFTAG_XRESOLUTION, known ? double(wish.xResolution) : 1.0);
    TIFFSetField(tiff, TIFFTAG_YRESOLUTION, known ? double(wish.yResolution) : 1.0);
}

/// The tags that only some compressions and colours have.
void SetTiffDetails(TiffOutput& output, const PictureShape& shape, const EncodeWish& wish,
                    const TiffVariant& variant)
{
    TIFF* tiff = output.Handle();
    switch (variant.photometric) {
    case PHOTOMETRIC_PALETTE:
        SetTiffPalette(output, shape, variant.bits);
        break;
    case PHOTOMETRIC_SEPARATED:
        TIFFSetField(tiff, TIFFTAG_INKSET, INKSET_CMYK);
        break;
    case PHOTOMETRIC_YCBCR:
        TIFFSetField(tiff, TIFFTAG_YCBCRSUBSAMPLING, variant.subsamplingX, variant.subsamplingY);
        TIFFSetField(tiff, TIFFTAG_YCBCRPOSITIONING, YCBCRPOSITION_CENTERED);
        SetYcbcrRange(tiff);
        break;
    default:
        break;
    }
    if (variant.kind == SampleKind::Rgba8 || variant.kind == SampleKind::Rgba16) {
        const std::uint16_t alpha = EXTRASAMPLE_UNASSALPHA;
        TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &alpha);
    }
    switch (variant.compression) {
    case COMPRESSION_JPEG:
        TIFFSetField(tiff, TIFFTAG_JPEGQUALITY,
                     std::max(1, int(std::lround(QualityPercent(wish.quality)))));
        if (variant.photometric == PHOTOMETRIC_YCBCR) {
            TIFFSetField(tiff, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
        }
        break;
    case COMPRESSION_CCITTFAX3:
        TIFFSetField(tiff, TIFFTAG_GROUP3OPTIONS, variant.faxOptions);
        break;
    case COMPRESSION_WEBP:
        TIFFSetField(tiff, TIFFTAG_WEBP_LOSSLESS, 1);
        break;
    default:
        break;
    }
    if (variant.predicts) {
        TIFFSetField(tiff, TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL);
    }
}

void SetTiffTags(TiffOutput& output, const PictureShape& shape, const EncodeWish& wish,
                 const TiffVariant& variant)
{
    TIFF* tiff = output.Handle();
    const std::uint16_t samples = TiffSamples(variant);
    const bool set = TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, std::uint32_t(shape.width)) == 1
        && TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, std::uint32_t(shape.height)) == 1
        && TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, variant.bits) == 1
        && TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, samples) == 1
        && TIFFSetField(tiff, TIFFTAG_COMPRESSION, variant.compression) == 1
        && TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, variant.photometric) == 1
        && TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) == 1
        && TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, RowsPerStrip(shape, variant)) == 1;
    output.Expect(set);
    SetTiffResolution(tiff, wish);
    SetTiffDetails(output, shape, wish, variant);
    const int colours = variant.photometric == PHOTOMETRIC_SEPARATED ? 4
        : variant.photometric == PHOTOMETRIC_MINISBLACK
            || variant.photometric == PHOTOMETRIC_MINISWHITE
        ? 1
        : 3;
    if (ProfileFits(shape.profile, colours)) {
        output.Expect(TIFFSetField(tiff, TIFFTAG_ICCPROFILE, std::uint32_t(shape.profile.size()),
                                   shape.profile.constData())
                      == 1);
    }
}

/// Brings a row of the variant's samples to what libtiff takes.
const uchar* PackTiffRow(const uchar* from, qint32 width, const TiffVariant& variant,
                         std::vector<uchar>& to)
{
    if (variant.photometric == PHOTOMETRIC_MINISWHITE) {
        std::transform(from, from + to.size(), to.begin(), [](uchar v) { return uchar(~v); });
        if (width % 8 != 0) {
            to.back() = uchar(to.back() & 0xff00 >> width % 8);
        }
        return to.data();
    }
    if (variant.bits >= 8 || variant.kind == SampleKind::Bilevel) {
        return from;
    }
    std::fill(to.begin(), to.end(), uchar(0));
    const int perByte = 8 / variant.bits;
    const int most = (1 << variant.bits) - 1;
    const bool grey = variant.kind == SampleKind::Grey8;
    for (qint32 x = 0; x < width; ++x) {
        const int value = grey ? (from[x] * most + 127) / 255 : from[x] & most;
        uchar& byte = to[size_t(x / perByte)];
        byte = uchar(byte | value << (8 - variant.bits * (x % perByte + 1)));
    }
    return to.data();
}

void WriteTiffRows(TiffOutput& output, PictureRows& picture, const TiffVariant& variant)
{
    const PictureShape& shape = picture.Shape();
    SampleRows rows(picture, variant.kind);
    const size_t rowBytes = (size_t(shape.width) * variant.bits * TiffSamples(variant) + 7) / 8;
    std::vector<uchar> packed(rowBytes);
    // libtiff compresses the whole of a JBIG picture at once, and works on samples in place.
    const bool whole = variant.compression == COMPRESSION_JBIG;
    std::vector<uchar> all;
    if (whole) {
        all.reserve(rowBytes * size_t(shape.height));
    }
    for (qint32 y = 0; y < shape.height; ++y) {
        const uchar* row = PackTiffRow(rows.Next(), shape.width, variant, packed);
        if (whole) {
            all.insert(all.end(), row, row + rowBytes);
            continue;
        }
        if (row != packed.data()) {
            std::copy_n(row, rowBytes, packed.begin());
        }
        output.Expect(TIFFWriteScanline(output.Handle(), packed.data(), std::uint32_t(y), 0) == 1);
    }
    if (whole) {
        output.Expect(TIFFWriteEncodedStrip(output.Handle(), 0, all.data(), tmsize_t(all.size()))
                      == tmsize_t(all.size()));
    }
}

/// Takes a file in memory.
class BytesSink : public FileSink {
public:
    void WriteAt(qint64 position, const void* bytes, qint64 count) override
    {
        if (position < 0 || count < 0 || position > Size()
            || position + count > limits::kMaxEncodedBytes) {
            throw Failure(kFailureLimit, QStringLiteral("The file of this picture is too large."));
        }
        mBytes.resize(std::max(Size(), position + count));
        std::memcpy(mBytes.data() + position, bytes, size_t(count));
    }
    qint64 Size() const override { return mBytes.size(); }
    QByteArray& Bytes() { return mBytes; }

private:
    QByteArray mBytes;
};

/// libtiff has no codec for it: the strip is made here and handed over as it is.
void WriteTiffJpeg2000(TiffOutput& output, PictureRows& picture, SampleKind kind, qint32 quality)
{
    BytesSink strip;
    WriteJpeg2000Codestream(picture, kind, quality, strip);
    output.Expect(
        TIFFWriteRawStrip(output.Handle(), 0, strip.Bytes().data(), tmsize_t(strip.Size()))
        == tmsize_t(strip.Size()));
}

} // namespace

void EncodeTiff(PictureRows& picture, const EncodeWish& wish, FileSink& file)
{
    const PictureShape& shape = picture.Shape();
    if (shape.width == 0) {
        throw Failure(kFailureGeneral, QStringLiteral("There is no picture to write."));
    }
    const TiffVariant variant = ChooseTiffVariant(shape, wish);
    TiffOutput output(file);
    SetTiffTags(output, shape, wish, variant);
    if (variant.photometric == PHOTOMETRIC_YCBCR && variant.compression != COMPRESSION_JPEG) {
        WriteYcbcrStrips(output, picture, RowsPerStrip(shape, variant), variant.subsamplingX,
                         variant.subsamplingY);
    } else if (variant.compression == COMPRESSION_JP2000) {
        WriteTiffJpeg2000(output, picture, variant.kind, wish.quality);
    } else {
        WriteTiffRows(output, picture, variant);
    }
    output.Finish();
}

} // namespace quillane::worker
