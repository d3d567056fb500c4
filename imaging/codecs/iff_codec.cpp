// Interchange files: planes or bytes, with colours, half-bright colours, or pixels that hold their
// neighbour's colour and modify one channel of it.
#include "imaging/codecs/codec_support.h"
#include "imaging/codecs/iff_file.h"
#include "imaging/codecs/legacy_codecs.h"
#include "imaging/codecs/raster_support.h"
#include <algorithm>
#include <cstring>

namespace quillane::codecs {

namespace {

qint64 IffFirstOf(ByteSource& source, qint32 page)
{
    const QList<qint64> forms = FindIffPictures(source);
    if (forms.isEmpty()) {
        Unsupported(kIffName, QStringLiteral("holds no picture but something else"));
    }
    return forms[page > 0 && page < forms.size() ? page : 0];
}

/// Pixels of a row that hold and modify, from their indexes.
void IffHoldAndModify(const IffPicture& picture, const uchar* indexes, QRgb* to)
{
    const int low = picture.planes - 2; // bits of an index or a level; the two above choose
    const int mask = (1 << low) - 1;
    QRgb colour = picture.colours[0];
    for (int x = 0; x < picture.width; ++x) {
        const int value = indexes[x] & mask;
        const int level = (value * 255 + mask / 2) / mask;
        switch (indexes[x] >> low) {
        case 0:
            colour = picture.colours[value];
            break;
        case 1:
            colour = qRgb(qRed(colour), qGreen(colour), level);
            break;
        case 2:
            colour = qRgb(level, qGreen(colour), qBlue(colour));
            break;
        default:
            colour = qRgb(qRed(colour), level, qBlue(colour));
            break;
        }
        to[x] = colour;
    }
}

class IffRows {
public:
    IffRows(ByteSource& source, const IffPicture& picture)
        : mPicture(picture),
          mStream(source, picture.bodyAt, picture.bodyBytes),
          mPlaneBytes(picture.chunky ? (picture.width + 1) / 2 * 2 : (picture.width + 15) / 16 * 2),
          mRow(size_t(mPlaneBytes
                      * (picture.chunky ? 1 : picture.planes + (picture.hasMaskPlane ? 1 : 0)))),
          mIndexes(size_t(picture.width) * (picture.planes > 8 ? size_t(picture.planes / 8) : 1))
    { }

    bool Next()
    {
        if (!mPicture.packed) {
            return mStream.Read(mRow.data(), qint64(mRow.size())) == qint64(mRow.size());
        }
        // The codes of a plane's row end with it.
        for (size_t at = 0; at < mRow.size(); at += size_t(mPlaneBytes)) {
            if (UnpackPackBits(mStream, &mRow[at], mPlaneBytes) == UnpackEnd::Short) {
                return false;
            }
        }
        return true;
    }

    void Put(QImage& image, int y)
    {
        if (mPicture.planes > 8) {
            PutDeep(reinterpret_cast<QRgb*>(image.scanLine(y)));
            return;
        }
        if (mPicture.chunky) {
            std::memcpy(mIndexes.data(), mRow.data(), mIndexes.size());
        } else {
            MergePlanes(mRow.data(), mPicture.planes, mPlaneBytes, mPicture.width, mIndexes.data());
        }
        if (mPicture.holdAndModify) {
            IffHoldAndModify(mPicture, mIndexes.data(), reinterpret_cast<QRgb*>(image.scanLine(y)));
        } else {
            PutIndexes(image, y, mIndexes.data());
        }
    }

private:
    /// Eight planes each of red, green, blue and perhaps alpha.
    void PutDeep(QRgb* to)
    {
        const int channels = mPicture.planes / 8;
        const size_t width = size_t(mPicture.width);
        for (int channel = 0; channel < channels; ++channel) {
            MergePlanes(&mRow[size_t(channel * 8 * mPlaneBytes)], 8, mPlaneBytes, mPicture.width,
                        &mIndexes[size_t(channel) * width]);
        }
        for (size_t x = 0; x < width; ++x) {
            to[x] = qRgba(mIndexes[x], mIndexes[width + x], mIndexes[2 * width + x],
                          channels == 4 ? mIndexes[3 * width + x] : 255);
        }
    }
    const IffPicture& mPicture;
    ByteStream mStream;
    int mPlaneBytes;
    std::vector<uchar> mRow;
    std::vector<uchar> mIndexes; ///< or the channels of a deep row, one after the other
};

QImage IffNewImage(const IffPicture& picture)
{
    if (picture.planes > 8 || picture.holdAndModify) {
        return NewImage(kIffName, picture.width, picture.height,
                        picture.planes == 32 ? QImage::Format_ARGB32 : QImage::Format_RGB32);
    }
    return NewIndexedImage(kIffName, picture.width, picture.height, picture.planes,
                           picture.colours);
}

} // namespace

bool IffMatches(QByteArrayView head, QStringView)
{
    if (head.size() < 12) {
        return false;
    }
    const char* p = head.data();
    if (std::memcmp(p, "FORM", 4) == 0) {
        return std::memcmp(p + 8, "ILBM", 4) == 0 || std::memcmp(p + 8, "PBM ", 4) == 0;
    }
    return std::memcmp(p, "CAT ", 4) == 0 || std::memcmp(p, "LIST", 4) == 0;
}

ImageFacts IffProbe(ByteSource& source)
{
    const QList<qint64> forms = FindIffPictures(source);
    const IffPicture picture = ReadIffPicture(source, IffFirstOf(source, 0));
    ImageFacts facts;
    facts.width = picture.width;
    facts.height = picture.height;
    facts.bits = qint16(picture.planes);
    facts.pages = qint32(forms.size());
    facts.format = forms.size() > 1 ? 112 : 111;
    facts.compression =
        picture.packed ? QStringLiteral("PackBits") : QStringLiteral("Uncompressed");
    return facts;
}

Bitmap IffDecode(ByteSource& source, const DecodeRequest& request)
{
    CheckCancelled(request);
    const IffPicture picture = ReadIffPicture(source, IffFirstOf(source, request.page));
    QImage image = IffNewImage(picture);
    IffRows reader(source, picture);
    int rows = 0;
    for (; rows < picture.height && reader.Next(); ++rows) {
        CheckCancelled(request);
        reader.Put(image, rows);
    }
    return FinishPicture(kIffName, std::move(image), picture.planes, rows);
}

} // namespace quillane::codecs
