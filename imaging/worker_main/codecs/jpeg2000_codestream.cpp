#include "imaging/worker_main/codecs/jpeg2000_codestream.h"
#include "core/failure.h"
#include "imaging/quality.h"
#include "imaging/worker_main/codecs/jpeg2000_header.h"
#include "imaging/worker_main/codecs/jpeg2000_stream.h"
#include <algorithm>
#include <bit>
#include <cstring>

namespace quillane::worker {

namespace {

constexpr qint64 kOneTilePixels = 4 << 20; ///< larger pictures are cut into tiles
constexpr int kTileSide = 1024, kLeastTileSide = 128;
constexpr qint64 kTileRowBytes = 48 << 20; ///< samples of one row of tiles
constexpr qint64 kBandSamples = 12 << 20;  ///< that are decoded at once

class Jpeg2000Encoder {
public:
    Jpeg2000Encoder(PictureRows& picture, SampleKind kind, qint32 quality, FileSink& file)
        : mShape(picture.Shape()),
          mKind(kind),
          mSamples(SamplesOf(kind)),
          mBits(SampleBitsOf(kind)),
          mRows(picture, kind),
          mStream(file)
    {
        ChooseTiles();
        Begin(quality);
    }
    void Run()
    {
        OPJ_UINT32 index = 0;
        for (int top = 0; top < mShape.height; top += mTileHeight) {
            const int rows = std::min(mTileHeight, mShape.height - top);
            ReadRows(rows);
            for (int left = 0; left < mShape.width; left += mTileWidth) {
                WriteTile(index++, left, rows);
            }
        }
        Expect(opj_end_compress(mCodec.get(), mStream.Handle()));
    }

private:
    qint64 SampleBytes() const { return mBits / 8; }
    void ChooseTiles()
    {
        mTileWidth = mShape.width;
        mTileHeight = mShape.height;
        if (qint64(mShape.width) * mShape.height > kOneTilePixels) {
            mTileWidth = std::min(mShape.width, kTileSide);
            mTileHeight = std::min(mShape.height, kTileSide);
            while (mTileHeight > kLeastTileSide && mRows.RowBytes() * mTileHeight > kTileRowBytes) {
                mTileHeight /= 2;
            }
        }
        mBand.resize(size_t(mRows.RowBytes()) * size_t(mTileHeight));
    }
    void Expect(OPJ_BOOL done) const
    {
        mStream.Rethrow();
        if (!done) {
            throw Failure(kFailureLimit,
                          QStringLiteral("This picture cannot be written as JPEG 2000: there is "
                                         "not enough memory."));
        }
    }
    void Begin(qint32 quality)
    {
        opj_cparameters_t parameters;
        opj_set_default_encoder_parameters(&parameters);
        parameters.tcp_numlayers = 1;
        const double percent = QualityPercent(quality);
        if (quality <= kBestQuality) {
            parameters.cp_disto_alloc = 1;
            parameters.tcp_rates[0] = 0;
        } else {
            // Decibels against the samples' range, as people judge pictures: 24 to 52.
            parameters.cp_fixed_quality = 1;
            parameters.tcp_distoratio[0] = float(24 + 0.28 * percent);
            parameters.irreversible = 1;
        }
        const bool colours = mSamples >= 3 && mKind != SampleKind::Cmyk8;
        parameters.tcp_mct = colours ? 1 : 0;
        const int side = std::min(mTileWidth, mTileHeight);
        constexpr int kMostResolutions = 6;
        parameters.numresolution =
            std::clamp(int(std::bit_width(unsigned(side))), 1, kMostResolutions);
        parameters.tile_size_on = OPJ_TRUE;
        parameters.cp_tdx = mTileWidth;
        parameters.cp_tdy = mTileHeight;

        const auto samples = size_t(mSamples);
        std::vector<opj_image_cmptparm_t> components(samples);
        for (opj_image_cmptparm_t& one : components) {
            one = {};
            one.dx = one.dy = 1;
            one.w = OPJ_UINT32(mShape.width);
            one.h = OPJ_UINT32(mShape.height);
            one.prec = OPJ_UINT32(mBits);
        }
        mImage.reset(opj_image_tile_create(OPJ_UINT32(mSamples), components.data(),
                                           mSamples == 1 ? OPJ_CLRSPC_GRAY : OPJ_CLRSPC_SRGB));
        mCodec.reset(opj_create_compress(OPJ_CODEC_J2K));
        Expect(mImage && mCodec);
        mImage->x1 = OPJ_UINT32(mShape.width);
        mImage->y1 = OPJ_UINT32(mShape.height);
        CountJpeg2000Complaints(mCodec.get(), mComplaints);
        Expect(opj_setup_encoder(mCodec.get(), &parameters, mImage.get()));
        Expect(opj_start_compress(mCodec.get(), mImage.get(), mStream.Handle()));
    }
    void ReadRows(int rows)
    {
        for (int y = 0; y < rows; ++y) {
            std::memcpy(mBand.data() + y * mRows.RowBytes(), mRows.Next(),
                        size_t(mRows.RowBytes()));
        }
    }
    /// Component after component, as the library takes them.
    void WriteTile(OPJ_UINT32 index, int left, int rows)
    {
        const int columns = std::min(mTileWidth, mShape.width - left);
        const qint64 bytes = SampleBytes();
        const qint64 pixel = bytes * mSamples;
        mTile.resize(size_t(pixel) * size_t(columns) * size_t(rows));
        uchar* to = mTile.data();
        for (int s = 0; s < mSamples; ++s) {
            for (int y = 0; y < rows; ++y) {
                const uchar* from = mBand.data() + y * mRows.RowBytes() + left * pixel + s * bytes;
                for (int x = 0; x < columns; ++x, from += pixel, to += bytes) {
                    to[0] = from[0];
                    if (bytes == 2) {
                        to[1] = from[1];
                    }
                }
            }
        }
        Expect(opj_write_tile(mCodec.get(), index, mTile.data(), OPJ_UINT32(mTile.size()),
                              mStream.Handle()));
    }

    const PictureShape& mShape;
    SampleKind mKind;
    int mSamples, mBits;
    SampleRows mRows;
    Jpeg2000Stream mStream;
    Jpeg2000Image mImage;
    Jpeg2000Codec mCodec;
    int mComplaints = 0; ///< what failed is told by the calls themselves
    int mTileWidth = 0, mTileHeight = 0;
    std::vector<uchar> mBand, mTile;
};

/// Rows that are decoded at once: all of a small picture, else whole tiles.
quint32 CodestreamBandRows(const Jpeg2000Header& header)
{
    const qint64 inRow = qint64(header.width) * header.components;
    const qint64 most = std::max<qint64>(1, kBandSamples / std::max<qint64>(1, inRow));
    if (!header.tiled || header.tileHeight == 0 || most >= header.height) {
        return header.height;
    }
    const qint64 tile = header.tileHeight;
    return quint32(
        std::clamp<qint64>(most / tile * tile, tile, std::max(tile, qint64(header.height))));
}

/// Component after component into packed samples.
void CopyCodestreamBand(const opj_image_t& image, quint32 width, quint32 rows, int samples,
                        int bits, uchar* to)
{
    for (int s = 0; s < samples; ++s) {
        if (int(image.numcomps) != samples || image.comps[s].w != width
            || image.comps[s].h != rows) {
            ThrowJpeg2000Damaged();
        }
        const opj_image_comp_t& one = image.comps[s];
        const auto most = OPJ_INT32((qint64(1) << std::min(one.prec, 30u)) - 1);
        const OPJ_INT32 zero = one.sgnd ? most / 2 + 1 : 0;
        const qint64 count = qint64(width) * rows;
        for (qint64 i = 0; i < count; ++i) {
            const auto value = OPJ_INT32(std::clamp<qint64>(qint64(one.data[i]) + zero, 0, most));
            const qint64 at = i * samples + s;
            if (bits == 8) {
                to[at] = uchar(std::min(value, 255));
            } else {
                const auto word = quint16(std::min(value, 65535));
                std::memcpy(to + at * 2, &word, sizeof(word));
            }
        }
    }
}

} // namespace

void WriteJpeg2000Codestream(PictureRows& picture, SampleKind kind, qint32 quality, FileSink& file)
{
    Jpeg2000Encoder(picture, kind, quality, file).Run();
}

bool ReadJpeg2000Samples(ByteSource& source, qint32 width, qint32 height, int samples, int bits,
                         uchar* to)
{
    const Jpeg2000Header header = ReadJpeg2000Header(source);
    if (header.width != quint32(width) || header.height != quint32(height)
        || header.components != samples || (bits != 8 && bits != 16)) {
        ThrowJpeg2000Damaged();
    }
    const quint32 step = CodestreamBandRows(header);
    const quint32 end = header.y0 + header.height;
    const quint32 from = header.tiled && step < header.height ? header.tileTop : header.y0;
    bool whole = true;
    for (quint32 top = header.y0; top < end;) {
        const auto bottom =
            quint32(std::min<quint64>(end, quint64(top - from) / step * step + step + from));
        const Jpeg2000Band band(source, header, 0, top, bottom);
        CopyCodestreamBand(*band.image, header.width, bottom - top, samples, bits,
                           to + qint64(top - header.y0) * width * samples * (bits / 8));
        whole = whole && band.whole;
        top = bottom;
    }
    return whole;
}

} // namespace quillane::worker
