#include "imaging/thumbs/exif_preview.h"

#include <algorithm>

namespace quillane {

namespace {

constexpr qint64 kPreviewHeadBytes = 128 << 10; // Exif stands in one of the first segments
constexpr quint16 kTagPreviewOffset = 0x0201;   // JPEGInterchangeFormat
constexpr quint16 kTagPreviewLength = 0x0202;   // JPEGInterchangeFormatLength

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
    const QByteArray head = source.Head(kPreviewHeadBytes);
    if (!head.startsWith("\xff\xd8")) {
        return {};
    }
    const QByteArrayView view(head);
    for (qsizetype at = 2; at + 4 <= head.size() && quint8(head[at]) == 0xff;) {
        const quint8 marker = quint8(head[at + 1]);
        const qsizetype length = quint8(head[at + 2]) << 8 | quint8(head[at + 3]);
        if (marker < 0xe0 && marker != 0xdb && marker != 0xc4) {
            return {}; // frames and scans: the metadata is over
        }
        if (marker == 0xe1 && view.sliced(at + 4).startsWith(QByteArrayView("Exif\0\0", 6))) {
            const qsizetype end = std::min<qsizetype>(head.size(), at + 2 + length);
            const PreviewBlock block(view.sliced(at + 10, std::max<qsizetype>(0, end - at - 10)));
            const QByteArray preview = block.IsTiff() ? block.Preview() : QByteArray();
            return preview.startsWith("\xff\xd8") ? preview : QByteArray();
        }
        at += 2 + std::max<qsizetype>(2, length);
    }
    return {};
}

} // namespace quillane
