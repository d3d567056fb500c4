#include "core/failure.h"
#include "imaging/quality.h"
#include "imaging/worker_main/codecs/jpeg2000_header.h"
#include "imaging/worker_main/codecs/jpeg2000_stream.h"
#include "imaging/worker_main/codecs/shipped_codecs.h"
#include "imaging/worker_main/service/sample_rows.h"
#include <QtEndian>
#include <algorithm>
#include <bit>
#include <cstring>

namespace quillane::worker {

namespace {

constexpr qint16 kJpeg2000File = 163, kJpeg2000Stream = 164;
constexpr qint64 kOneTilePixels = 4 << 20; ///< larger pictures are cut into tiles
constexpr int kTileSide = 1024, kLeastTileSide = 128;
constexpr qint64 kTileRowBytes = 48 << 20; ///< samples of one row of tiles

/// What the samples of a JPEG 2000 picture are.
struct Jpeg2000Variant {
    SampleKind kind = SampleKind::Rgb8;
    int samples = 3;
    int bits = 8; ///< of a sample
    bool alpha = false;
};

[[noreturn]] void RefuseJpeg2000(const QString& words)
{
    throw Failure(kFailureGeneral, words);
}

bool IsGreyPalette(const PictureShape& shape)
{
    return std::all_of(shape.colours.begin(), shape.colours.end(), [](quint32 colour) {
        return (colour >> 16 & 0xff) == (colour & 0xff) && (colour >> 8 & 0xff) == (colour & 0xff);
    });
}

Jpeg2000Variant ChooseJpeg2000(const PictureShape& shape, qint32 wanted, bool boxed)
{
    qint32 bits = wanted;
    if (bits <= 0) {
        switch (shape.layout) {
        case PixelLayout::Indexed8:
            bits = IsGreyPalette(shape) ? 8 : 24;
            break;
        case PixelLayout::Mono:
        case PixelLayout::Grey8:
            bits = 8;
            break;
        case PixelLayout::Grey16:
            bits = 16;
            break;
        case PixelLayout::Rgb32:
            bits = 24;
            break;
        case PixelLayout::Argb32:
        case PixelLayout::Cmyk32:
            bits = 32;
            break;
        case PixelLayout::Rgbx64:
            bits = 48;
            break;
        case PixelLayout::Rgba64:
            bits = 64;
            break;
        }
    }
    const bool grey = shape.layout == PixelLayout::Mono || shape.layout == PixelLayout::Grey8
        || shape.layout == PixelLayout::Grey16
        || (shape.layout == PixelLayout::Indexed8 && IsGreyPalette(shape));
    switch (bits) {
    case 8:
        if (!grey) {
            RefuseJpeg2000(QStringLiteral("A JPEG 2000 file of 8 bits a pixel holds grey only, and "
                                          "this picture has colours."));
        }
        return {SampleKind::Grey8, 1, 8, false};
    case 16:
        return {SampleKind::Grey16, 1, 16, false};
    case 24:
        return {SampleKind::Rgb8, 3, 8, false};
    case 32:
        // A bare codestream does not tell inks from colours.
        if (shape.layout == PixelLayout::Cmyk32 && boxed) {
            return {SampleKind::Cmyk8, 4, 8, false};
        }
        return {SampleKind::Rgba8, 4, 8, true};
    case 48:
        return {SampleKind::Rgb16, 3, 16, false};
    case 64:
        return {SampleKind::Rgba16, 4, 16, true};
    default:
        RefuseJpeg2000(QStringLiteral("A JPEG 2000 file does not hold %1 bits a pixel.").arg(bits));
    }
}

/// Boxes under construction.
class BoxWriter {
public:
    QByteArray& Bytes() { return mBytes; }
    void Number(quint32 value, int bytes)
    {
        for (int i = bytes - 1; i >= 0; --i) {
            mBytes.append(char(value >> 8 * i));
        }
    }
    void Box(quint32 type, const QByteArray& content)
    {
        Number(quint32(content.size()) + 8, 4);
        Number(type, 4);
        mBytes += content;
    }

private:
    QByteArray mBytes;
};

QByteArray ColourBox(const QByteArray& profile, const Jpeg2000Variant& variant)
{
    constexpr quint32 kSrgb = 16, kGrey = 17, kInk = 12;
    BoxWriter colour;
    const int colours = variant.alpha ? variant.samples - 1 : variant.samples;
    if (ProfileFits(profile, colours)) {
        colour.Number(2, 1);
        colour.Number(0, 2);
        colour.Bytes() += profile;
    } else {
        colour.Number(1, 1);
        colour.Number(0, 2);
        colour.Number(colours == 1 ? kGrey : colours == 4 ? kInk : kSrgb, 4);
    }
    return colour.Bytes();
}

/// Everything that stands before the codestream (ISO 15444-1, annex I).
QByteArray FileHead(const PictureShape& shape, const EncodeWish& wish,
                    const Jpeg2000Variant& variant)
{
    BoxWriter header, head, channels, file;
    head.Number(quint32(shape.height), 4);
    head.Number(quint32(shape.width), 4);
    head.Number(quint32(variant.samples), 2);
    head.Number(quint32(variant.bits - 1), 1);
    head.Number(7, 1);                                         // the compression there is
    head.Number(0, 2);                                         // colours known, nobody's property
    header.Box(0x69686472, head.Bytes());                      // "ihdr"
    header.Box(0x636f6c72, ColourBox(shape.profile, variant)); // "colr"
    if (variant.alpha) {
        channels.Number(quint32(variant.samples), 2);
        for (int i = 0; i < variant.samples; ++i) {
            const bool alpha = i + 1 == variant.samples;
            channels.Number(quint32(i), 2);
            channels.Number(alpha ? 1 : 0, 2);
            channels.Number(alpha ? 0 : quint32(i + 1), 2);
        }
        header.Box(0x63646566, channels.Bytes()); // "cdef"
    }
    constexpr qint32 kMostDots = 65535;
    if (wish.xResolution > 0 && wish.yResolution > 0 && wish.xResolution <= kMostDots
        && wish.yResolution <= kMostDots) {
        // Dots per inch are 10000 / 254 times as many to the metre.
        BoxWriter capture, resolution;
        for (const qint32 dots : {wish.yResolution, wish.xResolution}) {
            capture.Number(quint32(dots), 2);
            capture.Number(254, 2);
        }
        capture.Number(4, 1);
        capture.Number(4, 1);
        resolution.Box(0x72657363, capture.Bytes()); // "resc"
        header.Box(0x72657320, resolution.Bytes());  // "res "
    }
    file.Box(kBoxSignature, QByteArray("\r\n\x87\n", 4));
    file.Box(kBoxFileType, QByteArray("jp2 \0\0\0\0jp2 ", 12));
    file.Box(kBoxHeader, header.Bytes());
    return file.Bytes();
}

/// Boxes of the original that say nothing of the picture's shape go over: text, Exif, rights.
void CarryBoxes(ByteSource& original, FileSink& file)
{
    const Jpeg2000Header header = ReadJpeg2000Header(original);
    for (const Jpeg2000Box& box : header.boxes) {
        if (box.type == kBoxSignature || box.type == kBoxFileType || box.type == kBoxHeader
            || box.type == kBoxCodestream) {
            continue;
        }
        QByteArray bytes(box.end - box.content, Qt::Uninitialized);
        if (original.ReadAt(box.content, bytes.data(), bytes.size()) != bytes.size()) {
            ThrowJpeg2000Damaged();
        }
        BoxWriter copy;
        copy.Box(box.type, bytes);
        file.Append(copy.Bytes().constData(), copy.Bytes().size());
    }
}

class Jpeg2000Encoder {
public:
    Jpeg2000Encoder(PictureRows& picture, const Jpeg2000Variant& variant, qint32 quality,
                    FileSink& file)
        : mShape(picture.Shape()),
          mVariant(variant),
          mRows(picture, variant.kind),
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
    qint64 SampleBytes() const { return mVariant.bits / 8; }
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
        const bool colours = mVariant.samples >= 3 && mVariant.kind != SampleKind::Cmyk8;
        parameters.tcp_mct = colours ? 1 : 0;
        const int side = std::min(mTileWidth, mTileHeight);
        constexpr int kMostResolutions = 6;
        parameters.numresolution =
            std::clamp(int(std::bit_width(unsigned(side))), 1, kMostResolutions);
        parameters.tile_size_on = OPJ_TRUE;
        parameters.cp_tdx = mTileWidth;
        parameters.cp_tdy = mTileHeight;

        std::vector<opj_image_cmptparm_t> components(size_t(mVariant.samples));
        for (opj_image_cmptparm_t& one : components) {
            one = {};
            one.dx = one.dy = 1;
            one.w = OPJ_UINT32(mShape.width);
            one.h = OPJ_UINT32(mShape.height);
            one.prec = OPJ_UINT32(mVariant.bits);
        }
        mImage.reset(
            opj_image_tile_create(OPJ_UINT32(mVariant.samples), components.data(),
                                  mVariant.samples == 1 ? OPJ_CLRSPC_GRAY : OPJ_CLRSPC_SRGB));
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
        const qint64 pixel = bytes * mVariant.samples;
        mTile.resize(size_t(pixel) * size_t(columns) * size_t(rows));
        uchar* to = mTile.data();
        for (int s = 0; s < mVariant.samples; ++s) {
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
    Jpeg2000Variant mVariant;
    SampleRows mRows;
    Jpeg2000Stream mStream;
    Jpeg2000Image mImage;
    Jpeg2000Codec mCodec;
    int mComplaints = 0; ///< what failed is told by the calls themselves
    int mTileWidth = 0, mTileHeight = 0;
    std::vector<uchar> mBand, mTile;
};

} // namespace

void EncodeJpeg2000(PictureRows& picture, const EncodeWish& wish, FileSink& file)
{
    const PictureShape& shape = picture.Shape();
    if (shape.width == 0) {
        RefuseJpeg2000(QStringLiteral("There is no picture to write."));
    }
    if (wish.format != kJpeg2000File && wish.format != kJpeg2000Stream) {
        RefuseJpeg2000(
            QStringLiteral("JPEG 2000 files of format %1 cannot be written.").arg(wish.format));
    }
    const bool boxed = wish.format == kJpeg2000File;
    const Jpeg2000Variant variant = ChooseJpeg2000(shape, wish.bits, boxed);
    qint64 box = 0;
    if (boxed) {
        const QByteArray head = FileHead(shape, wish, variant);
        file.Append(head.constData(), head.size());
        box = file.Size();
        const uchar open[8] = {0, 0, 0, 0, 'j', 'p', '2', 'c'};
        file.Append(open, sizeof(open));
    }
    Jpeg2000Encoder(picture, variant, wish.quality, file).Run();
    if (boxed) {
        uchar length[4];
        qToBigEndian(quint32(file.Size() - box), length);
        file.WriteAt(box, length, sizeof(length));
        if (wish.original) {
            CarryBoxes(*wish.original, file);
        }
    }
}

} // namespace quillane::worker
