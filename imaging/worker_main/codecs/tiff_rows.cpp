#include "imaging/worker_main/codecs/tiff_rows.h"
#include "core/failure.h"
#include "imaging/limits.h"
#include "imaging/worker_main/codecs/jpeg2000_codestream.h"
#include <algorithm>
#include <cstring>
#include <tiffio.h>

namespace quillane::worker {

namespace {

/// Reads out of bytes that are there already.
class BytesSource : public ByteSource {
public:
    explicit BytesSource(QByteArrayView bytes) : mBytes(bytes) { }
    qint64 Size() const override { return mBytes.size(); }
    qint64 ReadAt(qint64 position, void* to, qint64 count) override
    {
        const qint64 got = position < 0 ? 0 : std::clamp<qint64>(Size() - position, 0, count);
        if (got > 0) {
            std::memcpy(to, mBytes.data() + position, size_t(got));
        }
        return got;
    }

private:
    QByteArrayView mBytes;
};

} // namespace

TiffRows::TiffRows(TiffFile& file, const TiffTags& tags)
    : mFile(file),
      mTags(tags),
      mPlanes(tags.separate ? tags.samples : 1),
      // libtiff decodes a JBIG strip only as a whole, and JPEG 2000 not at all.
      mBanded(tags.tiled || tags.separate || tags.compression == COMPRESSION_JBIG
              || tags.compression == COMPRESSION_JP2000)
{
    TIFF* tiff = file.Handle();
    const qint64 inRow = qint64(tags.width) * tags.bits * (tags.separate ? 1 : tags.samples);
    mRowBytes = (inRow + 7) / 8;
    const qint64 bandBytes = mBanded ? mRowBytes * tags.bandRows * mPlanes : TIFFScanlineSize(tiff);
    const qint64 tileBytes = tags.tiled ? TIFFTileSize(tiff) : 0;
    if (bandBytes < mRowBytes || (tags.tiled && tileBytes <= 0)) {
        ThrowTiffDamaged();
    }
    if (bandBytes > limits::kMaxPictureBytes || tileBytes > limits::kMaxPictureBytes) {
        throw Failure(kFailureLimit,
                      QStringLiteral("This TIFF file needs more memory than a picture may take."));
    }
    mBand.resize(bandBytes);
    mTile.resize(tileBytes);
}

const uchar* TiffRows::Samples(int plane) const
{
    const auto* band = reinterpret_cast<const uchar*>(mBand.constData());
    if (!mBanded) {
        return band;
    }
    const std::uint32_t row = (mRow - 1) % mTags.bandRows;
    return band + (qint64(plane) * mTags.bandRows + row) * mRowBytes;
}

void TiffRows::Restart()
{
    mRow = 0;
    mBrokenUntil = 0;
    mBandGood = false;
}

bool TiffRows::Next()
{
    const bool found = mBanded ? NextOfBand() : NextScanline();
    mMissing = mMissing || !found;
    mFound = mFound || found;
    return found;
}

bool TiffRows::NextScanline()
{
    const std::uint32_t row = mRow++;
    if (row < mBrokenUntil) {
        return false;
    }
    if (TIFFReadScanline(mFile.Handle(), mBand.data(), row, 0) < 0) {
        // The next strip may be sound again.
        mBrokenUntil = (row / mTags.bandRows + 1) * mTags.bandRows;
        return false;
    }
    return true;
}

bool TiffRows::NextOfBand()
{
    const std::uint32_t row = mRow++;
    if (row % mTags.bandRows == 0) {
        mBandGood = mTags.tiled ? LoadTiles(row) : LoadStrips(row);
    }
    return mBandGood;
}

bool TiffRows::LoadStrips(std::uint32_t first)
{
    const std::uint32_t rows = std::min(mTags.bandRows, mTags.height - first);
    bool any = false;
    for (int plane = 0; plane < mPlanes; ++plane) {
        char* to = mBand.data() + qint64(plane) * mTags.bandRows * mRowBytes;
        const std::uint32_t strip = TIFFComputeStrip(mFile.Handle(), first, std::uint16_t(plane));
        const tmsize_t wanted = tmsize_t(rows) * mRowBytes;
        const bool read = mTags.compression == COMPRESSION_JP2000
            ? DecodeJpeg2000(strip, mTags.width, rows, to)
            : TIFFReadEncodedStrip(mFile.Handle(), strip, to, wanted) == wanted;
        if (read) {
            any = true;
        } else {
            std::memset(to, 0, size_t(wanted));
            mMissing = true;
        }
    }
    return any;
}

bool TiffRows::DecodeJpeg2000(std::uint32_t index, std::uint32_t width, std::uint32_t rows,
                              char* to)
{
    const std::uint64_t bytes = TIFFGetStrileByteCount(mFile.Handle(), index);
    const int samples = mTags.separate ? 1 : mTags.samples;
    if (bytes == 0 || bytes > std::uint64_t(mFile.Source().Size())
        || bytes > std::uint64_t(limits::kMaxPictureBytes)) {
        return false;
    }
    mRaw.resize(qsizetype(bytes));
    const tmsize_t got = mTags.tiled
        ? TIFFReadRawTile(mFile.Handle(), index, mRaw.data(), tmsize_t(bytes))
        : TIFFReadRawStrip(mFile.Handle(), index, mRaw.data(), tmsize_t(bytes));
    if (got <= 0) {
        return false;
    }
    BytesSource source(QByteArrayView(mRaw.constData(), got));
    try {
        const bool whole = ReadJpeg2000Samples(source, qint32(width), qint32(rows), samples,
                                               mTags.bits, reinterpret_cast<uchar*>(to));
        mMissing = mMissing || !whole;
    } catch (const Failure&) {
        return false;
    }
    return true;
}

bool TiffRows::LoadTiles(std::uint32_t first)
{
    TIFF* tiff = mFile.Handle();
    std::uint32_t tileWidth = 0, tileHeight = 0;
    TIFFGetField(tiff, TIFFTAG_TILEWIDTH, &tileWidth);
    TIFFGetField(tiff, TIFFTAG_TILELENGTH, &tileHeight);
    const qint64 tileRowBytes = TIFFTileRowSize(tiff);
    if (tileWidth == 0 || tileRowBytes <= 0
        || tileRowBytes * std::min(mTags.bandRows, mTags.height - first) > mTile.size()) {
        ThrowTiffDamaged();
    }
    const std::uint32_t rows = std::min(mTags.bandRows, mTags.height - first);
    const qint64 pixelBits = qint64(mTags.bits) * (mTags.separate ? 1 : mTags.samples);
    bool any = false;
    for (int plane = 0; plane < mPlanes; ++plane) {
        char* band = mBand.data() + qint64(plane) * mTags.bandRows * mRowBytes;
        for (std::uint64_t x = 0; x < mTags.width; x += tileWidth) {
            const std::uint32_t tile =
                TIFFComputeTile(tiff, std::uint32_t(x), first, 0, std::uint16_t(plane));
            const bool read = mTags.compression == COMPRESSION_JP2000
                ? DecodeJpeg2000(tile, tileWidth, tileHeight, mTile.data())
                : TIFFReadTile(tiff, mTile.data(), std::uint32_t(x), first, 0, std::uint16_t(plane))
                    >= 0;
            any = any || read;
            mMissing = mMissing || !read;
            // Tiles are a multiple of 16 pixels wide by the format; others could begin within
            // a byte, and are taken from the byte they begin in.
            const qint64 at = qint64(x) * pixelBits / 8;
            const qint64 bytes = std::min(tileRowBytes, mRowBytes - at);
            for (std::uint32_t row = 0; row < rows && bytes > 0; ++row) {
                char* to = band + row * mRowBytes + at;
                if (read) {
                    std::memcpy(to, mTile.constData() + row * tileRowBytes, size_t(bytes));
                } else {
                    std::memset(to, 0, size_t(bytes));
                }
            }
        }
    }
    return any;
}

} // namespace quillane::worker
