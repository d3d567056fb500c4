// WordPerfect graphics: the bitmaps in them.
#include "imaging/codecs/codec_support.h"
#include "imaging/codecs/legacy_codecs.h"
#include "imaging/codecs/raster_support.h"
#include "imaging/codecs/wpg_file.h"
#include <algorithm>
#include <cstring>

namespace quillane::codecs {

namespace {

/// Rows of bytes, out of codes that go on from one row to the next.
class WpgRows {
public:
    WpgRows(ByteSource& source, const WpgBitmap& bitmap)
        : mStream(source, bitmap.at, bitmap.bytes),
          mPacking(bitmap.packing),
          mRow(size_t(bitmap.RowBytes())),
          mBefore(mRow.size())
    { }
    /// The next row, or nullptr when the data end before it does.
    const uchar* Next()
    {
        if (mPacking == WpgPacking::None) {
            return mStream.Read(mRow.data(), qint64(mRow.size())) == qint64(mRow.size())
                ? mRow.data()
                : nullptr;
        }
        for (size_t at = 0; at < mRow.size();) {
            if (mRepeatRows > 0 && at == 0) {
                --mRepeatRows;
                mRow = mBefore;
                break;
            }
            if (mLeft == 0) {
                if (!(mPacking == WpgPacking::First ? TakeFirst() : TakeSecond())) {
                    return nullptr;
                }
                continue;
            }
            --mLeft;
            int value = mValue[mAt];
            if (mLiteral) {
                value = mStream.Next();
                if (value < 0) {
                    return nullptr;
                }
            } else {
                mAt = (mAt + 1) % mPeriod;
            }
            mRow[at++] = uchar(value);
        }
        mBefore = mRow;
        return mRow.data();
    }

private:
    void Repeat(int value, int count)
    {
        mLiteral = false;
        mPeriod = 1;
        mAt = 0;
        mValue[0] = uchar(std::max(value, 0));
        mLeft = count;
    }
    /// One code of the first version; false at the end.
    bool TakeFirst()
    {
        const int code = mStream.Next();
        if (code < 0) {
            return false;
        }
        const int count = code & 0x7f;
        if (code & 0x80) {
            if (count > 0) {
                Repeat(mStream.Next(), count);
            } else {
                Repeat(0xff, std::max(mStream.Next(), 0));
            }
        } else if (count > 0) {
            mLiteral = true;
            mLeft = count;
        } else {
            mRepeatRows = std::max(mStream.Next(), 0);
        }
        return !mStream.HasEnded();
    }
    /// One code of the second version, whose samples have a size of their own.
    bool TakeSecond()
    {
        const int code = mStream.Next();
        if (code < 0) {
            return false;
        }
        switch (code) {
        case 0x7d:
            mSample = std::clamp(mStream.Next(), 1, int(sizeof(mValue)));
            break;
        case 0x7e:
            return false; // rows against the one before, of which no writer is known
        case 0x7f:
            Repeat(0, mSample * (mStream.Next() + 1));
            break;
        case 0xfd:
            mLiteral = false;
            mPeriod = mSample;
            mAt = 0;
            mLeft = mSample * (mStream.Next() + 1);
            break;
        case 0xfe:
            mRepeatRows = mStream.Next() + 1;
            break;
        case 0xff:
            Repeat(0xff, mSample * (mStream.Next() + 1));
            break;
        default:
            mLeft = mSample * ((code & 0x7f) + 1);
            mLiteral = (code & 0x80) == 0;
            if (!mLiteral) {
                mPeriod = mSample;
                mAt = 0;
                mStream.Read(mValue, mSample);
            }
            break;
        }
        return !mStream.HasEnded();
    }

    ByteStream mStream;
    WpgPacking mPacking;
    std::vector<uchar> mRow, mBefore;
    bool mLiteral = false;
    int mLeft = 0; ///< bytes of the running code
    int mRepeatRows = 0;
    int mSample = 1;
    int mPeriod = 1;
    int mAt = 0;
    uchar mValue[8] = {};
};

const WpgBitmap& WpgPage(const QList<WpgBitmap>& found, qint32 page)
{
    return found[page > 0 && page < found.size() ? page : 0];
}

} // namespace

bool WpgMatches(QByteArrayView head, QStringView)
{
    constexpr char kWpgKind = 0x16; // among the files of that family
    return head.size() >= 16 && std::memcmp(head.data(), "\xffWPC", 4) == 0 && head[9] == kWpgKind;
}

ImageFacts WpgProbe(ByteSource& source)
{
    const QList<WpgBitmap> found = FindWpgBitmaps(source);
    const WpgBitmap& bitmap = WpgPage(found, 0);
    CheckSides(kWpgName, bitmap.width, bitmap.height);
    ImageFacts facts;
    facts.width = qint32(bitmap.width);
    facts.height = qint32(bitmap.height);
    facts.bits = qint16(bitmap.depth);
    facts.format = 54;
    facts.pages = qint32(found.size());
    facts.xResolution = bitmap.xResolution;
    facts.yResolution = bitmap.yResolution;
    facts.compression =
        bitmap.packing == WpgPacking::None ? QStringLiteral("Uncompressed") : QStringLiteral("RLE");
    return facts;
}

Bitmap WpgDecode(ByteSource& source, const DecodeRequest& request)
{
    CheckCancelled(request);
    const QList<WpgBitmap> found = FindWpgBitmaps(source);
    const WpgBitmap& bitmap = WpgPage(found, request.page);
    const bool indexed = bitmap.depth <= 8;
    QImage image = indexed
        ? NewIndexedImage(kWpgName, bitmap.width, bitmap.height, bitmap.depth, bitmap.colours)
        : NewImage(kWpgName, bitmap.width, bitmap.height, QImage::Format_RGB32);
    WpgRows reader(source, bitmap);
    std::vector<uchar> indexes(indexed ? size_t(bitmap.width) : 0);
    int rows = 0;
    for (; rows < bitmap.height; ++rows) {
        CheckCancelled(request);
        const uchar* row = reader.Next();
        if (!row) {
            break;
        }
        if (indexed) {
            SpreadPixels(row, bitmap.depth, bitmap.width, indexes.data());
            PutIndexes(image, rows, indexes.data());
            continue;
        }
        QRgb* to = reinterpret_cast<QRgb*>(image.scanLine(rows));
        for (qint64 x = 0; x < bitmap.width; ++x, row += 3) {
            to[x] = qRgb(row[0], row[1], row[2]);
        }
    }
    return FinishPicture(kWpgName, std::move(image), bitmap.depth, rows);
}

} // namespace quillane::codecs
