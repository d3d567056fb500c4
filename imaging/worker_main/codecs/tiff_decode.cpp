#include "core/failure.h"
#include "imaging/limits.h"
#include "imaging/worker_main/codecs/shipped_codecs.h"
#include "imaging/worker_main/codecs/tiff_jbig.h"
#include "imaging/worker_main/codecs/tiff_pixels.h"
#include <algorithm>
#include <cstring>
#include <tiffio.h>

namespace quillane::worker {

namespace {

QByteArray TiffProfile(TIFF* tiff)
{
    std::uint32_t count = 0;
    void* data = nullptr;
    if (!TIFFGetField(tiff, TIFFTAG_ICCPROFILE, &count, &data)
        || qint64(count) > limits::kMaxFieldBytes) {
        return {};
    }
    return QByteArray(static_cast<const char*>(data), count);
}

/// Grey, indexes, RGB and CMYK. True when some of the picture was missing.
bool DecodeSamples(TiffFile& file, const TiffTags& tags, TiffPixels& pixels,
                   const PictureShape& shape, PictureSink& sink)
{
    TiffRows rows(file, tags);
    sink.Begin(shape);
    if (pixels.NeedsRange()) {
        for (std::uint32_t y = 0; y < tags.height; ++y) {
            if (rows.Next()) {
                pixels.Measure(rows);
            }
        }
        rows.Restart();
    }
    for (std::uint32_t y = 0; y < tags.height; ++y) {
        uchar* to = sink.NextRow();
        if (rows.Next()) {
            pixels.Convert(rows, to);
        } else {
            pixels.Blank(to);
        }
    }
    if (!rows.AnyFound()) {
        ThrowTiffDamaged();
    }
    return rows.SomeMissing() || file.Errors() > 0;
}

/// libtiff's red, green, blue, alpha in the bytes of a word, colours multiplied by alpha.
quint32 FromRaster(std::uint32_t raster)
{
    const quint32 alpha = TIFFGetA(raster);
    const auto plain = [alpha](quint32 value) {
        return alpha == 0 || alpha == 255 ? value
                                          : std::min(255u, (value * 255 + alpha / 2) / alpha);
    };
    return alpha << 24 | plain(TIFFGetR(raster)) << 16 | plain(TIFFGetG(raster)) << 8
        | plain(TIFFGetB(raster));
}

struct RasterReader {
    TIFFRGBAImage image;
    explicit RasterReader(TIFF* tiff)
    {
        char why[1024] = "";
        if (!TIFFRGBAImageOK(tiff, why) || !TIFFRGBAImageBegin(&image, tiff, 0, why)) {
            throw Failure(kFailureUnreadable,
                          QStringLiteral("This TIFF file is damaged or holds a kind of picture "
                                         "that cannot be shown."));
        }
        image.req_orientation = image.orientation; // rows as they are stored
    }
    ~RasterReader() { TIFFRGBAImageEnd(&image); }
    RasterReader(const RasterReader&) = delete;
    RasterReader& operator=(const RasterReader&) = delete;
};

/// The rare kinds (subsampled YCbCr, LogLuv, Lab, old JPEG), through libtiff's own conversion
/// to 8-bit RGB. True when some of the picture was missing.
bool DecodeRaster(TiffFile& file, const TiffTags& tags, PictureShape shape, PictureSink& sink)
{
    RasterReader reader(file.Handle());
    const bool hasAlpha = reader.image.alpha != 0;
    shape.layout = hasAlpha ? PixelLayout::Argb32 : PixelLayout::Rgb32;
    shape.colours.clear();
    shape.exact = tags.photometric == PHOTOMETRIC_YCBCR;
    sink.Begin(shape);

    std::vector<std::uint32_t> raster(size_t(tags.width) * tags.bandRows);
    bool any = false, missing = false;
    for (std::uint32_t first = 0; first < tags.height; first += tags.bandRows) {
        const std::uint32_t rows = std::min(tags.bandRows, tags.height - first);
        std::fill(raster.begin(), raster.end(), 0xffffffffu);
        reader.image.row_offset = int(first);
        reader.image.col_offset = 0;
        const int errors = file.Errors();
        const bool read = TIFFRGBAImageGet(&reader.image, raster.data(), tags.width, rows) != 0;
        any = any || (read && file.Errors() == errors);
        missing = missing || !read || file.Errors() > errors;
        for (std::uint32_t row = 0; row < rows; ++row) {
            auto* to = reinterpret_cast<quint32*>(sink.NextRow());
            const std::uint32_t* from = raster.data() + size_t(row) * tags.width;
            const quint32 opaque = hasAlpha ? 0 : 0xff000000u;
            std::transform(from, from + tags.width, to,
                           [opaque](std::uint32_t one) { return FromRaster(one) | opaque; });
        }
    }
    if (!any && missing) {
        ThrowTiffDamaged();
    }
    return missing;
}

} // namespace

ImageFacts ProbeTiff(ByteSource& source)
{
    TiffFile file(source);
    return TiffFacts(file, ReadTiffTags(file));
}

bool DecodeTiff(ByteSource& source, const PictureWish& wish, PictureSink& sink)
{
    TiffFile file(source);
    file.GoToPage(wish.page);
    const TiffTags tags = ReadTiffTags(file);
    const bool known = tags.compression == COMPRESSION_JP2000
        ? (tags.bits == 8 || tags.bits == 16) && tags.photometric != PHOTOMETRIC_YCBCR
        : TIFFIsCODECConfigured(tags.compression) != 0;
    if (!known) {
        throw Failure(kFailureUnreadable,
                      QStringLiteral("This TIFF file is compressed with %1, which this program "
                                     "does not decode.")
                          .arg(TiffFacts(file, tags).compression));
    }
    CheckTiffJbig(file, tags);
    if (tags.compression == COMPRESSION_JPEG && tags.photometric == PHOTOMETRIC_YCBCR) {
        TIFFSetField(file.Handle(), TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
    }
    PictureShape shape;
    shape.width = qint32(tags.width);
    shape.height = qint32(tags.height);
    shape.fileDepth = tags.bits * tags.samples;
    shape.profile = TiffProfile(file.Handle());
    if (std::optional<TiffPixels> pixels = TiffPixels::For(file, tags, shape)) {
        return DecodeSamples(file, tags, *pixels, shape, sink);
    }
    return DecodeRaster(file, tags, std::move(shape), sink);
}

} // namespace quillane::worker
