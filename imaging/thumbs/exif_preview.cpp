#include "imaging/thumbs/exif_preview.h"

#include <algorithm>
#include <cstring>

namespace quillane {

namespace {

constexpr int kPreviewMostSegments = 16;      // Exif stands in one of the first segments
constexpr quint16 kTagPreviewOffset = 0x0201; // JPEGInterchangeFormat
constexpr quint16 kTagPreviewLength = 0x0202; // JPEGInterchangeFormatLength

/// A TIFF structure in memory; reading beyond its end gives 0.
class PreviewBlock {
public:
    explicit PreviewBlock(QByteArrayView bytes)
        : mBytes(bytes),
          mBig(bytes.size() >= 2 && bytes[0] == 'M')
    { }
    bool IsTiff() const
    {
        const bool mark = mBytes.startsWith(QByteArrayView("II*\0", 4))
            || mBytes.startsWith(QByteArrayView("MM\0*", 4));
        return mark && mBytes.size() > 8;
    }
    quint32 Number(qint64 at, int bytes) const
    {
        if (at < 0 || at + bytes > mBytes.size()) {
            return 0;
        }
        quint32 value = 0;
        for (int i = 0; i < bytes; ++i) {
            value = value << 8 | quint8(mBytes[at + (mBig ? i : bytes - 1 - i)]);
        }
        return value;
    }
    /// Offset of the directory behind the first one; 0 for none.
    qint64 SecondDirectory() const
    {
        const qint64 first = Number(4, 4);
        return Number(first + 2 + 12 * qint64(Number(first, 2)), 4);
    }
    QByteArray Preview() const
    {
        const qint64 directory = SecondDirectory();
        if (directory == 0) {
            return {};
        }
        qint64 offset = 0, length = 0;
        const qint64 count = Number(directory, 2);
        for (qint64 i = 0; i < count && directory + 2 + 12 * i + 12 <= mBytes.size(); ++i) {
            const qint64 entry = directory + 2 + 12 * i;
            const quint32 tag = Number(entry, 2);
            const qint64 value =
                Number(entry + 2, 2) == 3 ? Number(entry + 8, 2) : Number(entry + 8, 4);
            offset = tag == kTagPreviewOffset ? value : offset;
            length = tag == kTagPreviewLength ? value : length;
        }
        if (offset <= 0 || length <= 4 || offset + length > mBytes.size()) {
            return {};
        }
        return mBytes.sliced(offset, length).toByteArray();
    }

private:
    QByteArrayView mBytes;
    bool mBig;
};

} // namespace

QByteArray ReadEmbeddedPreview(ByteSource& source)
{
    uchar head[10]; // 0xff, marker, length of two bytes, what an Exif block begins with
    qint64 at = 2;  // behind the mark of the beginning
    for (int i = 0; i < kPreviewMostSegments; ++i) {
        const qint64 got = source.ReadAt(at, head, sizeof head);
        if (got < 4 || head[0] != 0xff) {
            return {};
        }
        const quint8 marker = head[1];
        const qint64 length = head[2] << 8 | head[3];
        // Comments and applications' segments only: what comes behind them is the picture.
        if (length < 2 || ((marker & 0xf0) != 0xe0 && marker != 0xfe)) {
            return {};
        }
        if (marker == 0xe1 && got == sizeof head && std::memcmp(head + 4, "Exif\0", 6) == 0) {
            QByteArray bytes(std::max<qint64>(length - 8, 0), Qt::Uninitialized);
            bytes.truncate(source.ReadAt(at + 10, bytes.data(), bytes.size()));
            const PreviewBlock block(bytes);
            const QByteArray preview = block.IsTiff() ? block.Preview() : QByteArray();
            return preview.startsWith("\xff\xd8") ? preview : QByteArray();
        }
        at += 2 + length;
    }
    return {};
}

} // namespace quillane
