#include "imaging/codecs/pict_raster.h"
#include "imaging/codecs/codec_support.h"
#include "imaging/codecs/codecs.h"
#include "imaging/codecs/pict_state.h"
#include "imaging/codecs/raster_support.h"
#include <algorithm>
#include <cstring>

namespace quillane::codecs {

namespace {

enum PictPacking : int { kPictDefault = 0, kPictPlain = 1, kPictNoPad = 2 };

struct PictMap {
    int rowBytes = 0;
    bool hasColours = false; ///< a map of more than one bit or with colours
    int packing = kPictDefault;
    int bits = 1;
    int channels = 1;
    QList<QRgb> colours;
};

void PictReadColours(PictReader& reader, PictMap& map)
{
    reader.Skip(4);
    const bool inOrder = (reader.U16() & 0x8000) != 0;
    const int count = reader.U16() + 1;
    map.colours.fill(qRgb(0, 0, 0), 1 << map.bits);
    for (int i = 0; i < count && !reader.HasEnded(); ++i) {
        const int value = reader.U16();
        const int red = reader.U16() >> 8;
        const int green = reader.U16() >> 8;
        const int blue = reader.U16() >> 8;
        const int index = inOrder ? i : value;
        if (index < map.colours.size()) {
            map.colours[index] = qRgb(red, green, blue);
        }
    }
}

/// Head of a bitmap, or of a map of pixels, up to its colours.
PictMap PictReadMap(PictReader& reader, bool direct, PictRaster& raster)
{
    PictMap map;
    if (direct) {
        reader.Skip(4);
    }
    const int row = reader.U16();
    map.rowBytes = row & 0x3fff;
    map.hasColours = direct || (row & 0x8000) != 0;
    raster.bounds = reader.Rectangle();
    if (!map.hasColours) {
        return map;
    }
    reader.Skip(2);
    map.packing = reader.U16();
    reader.Skip(4);
    raster.xDots = reader.Fixed();
    raster.yDots = reader.Fixed();
    reader.Skip(2);
    map.bits = reader.U16();
    map.channels = reader.U16();
    reader.Skip(2 + 4 + 4 + 4);
    const int bits = map.bits;
    const bool known =
        direct ? bits == 16 || bits == 32 : bits == 1 || bits == 2 || bits == 4 || bits == 8;
    if (!known) {
        Unsupported(kPictName, QStringLiteral("has a bitmap of %1 bits per pixel").arg(bits));
    }
    if (!direct) {
        PictReadColours(reader, map);
    }
    return map;
}

/// Runs of two bytes, as PackBits has them of one.
bool PictUnpackWords(ByteStream& stream, uchar* to, qint64 count)
{
    qint64 done = 0;
    while (done + 2 <= count) {
        const int code = stream.Next();
        if (code < 0) {
            return false;
        }
        if (code < 128) {
            const qint64 literal = std::min<qint64>(2 * (code + 1), count - done);
            if (stream.Read(to + done, literal) != literal) {
                return false;
            }
            done += literal;
        } else if (code > 128) {
            uchar value[2];
            if (stream.Read(value, 2) != 2) {
                return false;
            }
            for (int i = 0; i < 257 - code && done + 2 <= count; ++i, done += 2) {
                to[done] = value[0];
                to[done + 1] = value[1];
            }
        }
    }
    return true;
}

/// Rows of a map, unpacked.
class PictRows {
public:
    PictRows(PictReader& reader, const PictMap& map, int width)
        : mReader(reader),
          mMap(map),
          mRow(size_t(std::max(map.rowBytes, 4 * width) + 8))
    {
        constexpr int kLeastPacked = 8; // narrower rows are never packed
        mPlain = map.rowBytes < kLeastPacked || map.packing == kPictPlain;
        // Four channels one after the other, each as wide as the picture.
        mUnpacked = map.bits == 32 ? qint64(width) * map.channels : map.rowBytes;
        mStored = map.packing == kPictNoPad && map.bits == 32 ? 3 * qint64(width) : map.rowBytes;
    }
    bool IsPlanar() const { return mMap.bits == 32 && !mPlain && mMap.packing != kPictNoPad; }
    bool IsNoPad() const { return mMap.bits == 32 && !mPlain && mMap.packing == kPictNoPad; }
    const uchar* Next()
    {
        constexpr int kLongCount = 250;
        std::fill(mRow.begin(), mRow.end(), uchar(0));
        if (mPlain || IsNoPad()) {
            const QByteArrayView bytes = mReader.Bytes(mStored);
            std::memcpy(mRow.data(), bytes.data(), size_t(bytes.size()));
            return bytes.size() == mStored ? mRow.data() : nullptr;
        }
        const int count = mMap.rowBytes > kLongCount ? mReader.U16() : mReader.U8();
        const QByteArrayView packed = mReader.Bytes(count);
        if (packed.size() < count || mReader.HasEnded()) {
            return nullptr;
        }
        MemorySource source(QByteArray::fromRawData(packed.data(), packed.size()));
        ByteStream stream(source, 0, packed.size());
        const qint64 wanted = std::min<qint64>(mUnpacked, qint64(mRow.size()));
        if (mMap.bits == 16) {
            return PictUnpackWords(stream, mRow.data(), wanted) ? mRow.data() : nullptr;
        }
        UnpackPackBits(stream, mRow.data(), wanted); // what a row lacks is zero
        return mRow.data();
    }

private:
    PictReader& mReader;
    const PictMap& mMap;
    std::vector<uchar> mRow;
    bool mPlain = false;
    qint64 mUnpacked = 0;
    qint64 mStored = 0;
};

void PictPutDirect(const uchar* row, const PictMap& map, const PictRows& rows, int width, QRgb* to)
{
    const int alpha = map.channels == 4 ? 1 : 0; // stands before the colours and is not used
    for (int x = 0; x < width; ++x) {
        if (map.bits == 16) {
            const int value = Big16(row + 2 * x);
            const auto level = [](int five) { return ((five & 31) * 255 + 15) / 31; };
            to[x] = qRgb(level(value >> 10), level(value >> 5), level(value));
        } else if (rows.IsPlanar()) {
            const uchar* p = row + x + qint64(alpha) * width;
            to[x] = qRgb(p[0], p[width], p[2 * qint64(width)]);
        } else if (rows.IsNoPad()) {
            to[x] = qRgb(row[3 * x], row[3 * x + 1], row[3 * x + 2]);
        } else {
            to[x] = qRgb(row[4 * x + 1], row[4 * x + 2], row[4 * x + 3]);
        }
    }
}

/// The rows of a map into the raster's image; `twoColours` are those of a map without any.
void ReadPictPixels(PictReader& reader, const PictMap& map, bool direct,
                    const QList<QRgb>& twoColours, const DecodeRequest& request, PictRaster& raster)
{
    const int width = int(raster.bounds.width());
    const int height = int(raster.bounds.height());
    CheckSides(kPictName, width, height);
    if (!direct && qint64(map.rowBytes) * 8 < qint64(width) * map.bits) {
        Damaged(kPictName, QStringLiteral("a bitmap's rows are shorter than its width"));
    }
    if (direct && map.bits == 32 && (map.channels < 3 || map.channels > 4)) {
        Unsupported(kPictName, QStringLiteral("has a bitmap of %1 channels").arg(map.channels));
    }
    if (direct && map.bits == 16 && map.rowBytes < 2 * width) {
        Damaged(kPictName, QStringLiteral("a bitmap's rows are shorter than its width"));
    }
    // No packing makes less than a byte of 128 pixels.
    if (qint64(width) * height / 8 / 128 > reader.Left() + 4096) {
        Damaged(kPictName, QStringLiteral("it ends before its first row"));
    }
    raster.bits = map.bits == 32 && map.channels == 3 ? 24 : map.bits;
    if (direct) {
        raster.image = NewImage(kPictName, width, height, QImage::Format_RGB32);
    } else {
        raster.image = NewIndexedImage(kPictName, width, height, map.bits,
                                       map.hasColours ? map.colours : twoColours);
    }
    PictRows rows(reader, map, width);
    std::vector<uchar> indexes(size_t(width) + 8);
    int y = 0;
    for (; y < height; ++y) {
        CheckCancelled(request);
        const uchar* row = rows.Next();
        if (!row) {
            break;
        }
        if (direct) {
            PictPutDirect(row, map, rows, width, reinterpret_cast<QRgb*>(raster.image.scanLine(y)));
        } else {
            SpreadPixels(row, map.bits, width, indexes.data());
            PutIndexes(raster.image, y, indexes.data());
        }
    }
    raster.partial = y < height;
    raster.image = FinishPicture(kPictName, std::move(raster.image), map.bits, y).Pixels();
}

} // namespace

PictRaster ReadPictRaster(PictReader& reader, int operation, QRgb ink, QRgb paper,
                          const DecodeRequest& request)
{
    const bool direct = operation == 0x9a || operation == 0x9b;
    const bool masked = operation == 0x91 || operation == 0x99 || operation == 0x9b;
    PictRaster raster;
    const PictMap map = PictReadMap(reader, direct, raster);
    raster.source = reader.Rectangle();
    raster.target = reader.Rectangle();
    raster.mode = reader.U16();
    if (masked) {
        raster.mask = ReadPictRegion(reader);
    }
    ReadPictPixels(reader, map, direct, {paper, ink}, request, raster);
    return raster;
}

void SkipPictPattern(PictReader& reader, const DecodeRequest& request)
{
    PictRaster raster;
    const PictMap map = PictReadMap(reader, false, raster);
    ReadPictPixels(reader, map, false, {qRgb(0, 0, 0), qRgb(0, 0, 0)}, request, raster);
}

PictRaster ReadPictCompressed(QByteArrayView bytes, const DecodeRequest& request)
{
    PictReader reader(bytes);
    reader.Skip(2);
    double matrix[9];
    for (double& value : matrix) {
        value = reader.Fixed();
    }
    reader.Skip(4 + 8 + 2);
    PictRaster raster;
    raster.source = reader.Rectangle();
    raster.bounds = raster.source;
    raster.target =
        QRectF(raster.source.x() * matrix[0] + matrix[6], raster.source.y() * matrix[4] + matrix[7],
               raster.source.width() * matrix[0], raster.source.height() * matrix[4]);
    constexpr char kJpegMark[] = "\xff\xd8\xff";
    const qsizetype described = bytes.indexOf("jpeg");
    const qsizetype at = described < 0 ? -1 : bytes.indexOf(kJpegMark, described);
    if (at < 0) {
        return raster;
    }
    MemorySource source(bytes.sliced(at).toByteArray());
    const Bitmap bitmap = JpegDecode(source, {{}, 0, request.cancelled});
    raster.image = bitmap.Pixels();
    raster.bits = 24;
    raster.partial = bitmap.IsPartial();
    if (bitmap.Model() == ColourModel::Cmyk) {
        raster.image = bitmap.ToDisplay();
    }
    return raster;
}

} // namespace quillane::codecs
