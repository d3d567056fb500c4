// Microsoft Paint of Windows 1 and 2: one bit a pixel; the second version packs its rows.
#include "imaging/codecs/codec_support.h"
#include "imaging/codecs/legacy_codecs.h"
#include "imaging/codecs/raster_support.h"
#include <cstring>

namespace quillane::codecs {

namespace {

constexpr char kMspName[] = "Microsoft Paint picture";
constexpr int kMspHeaderBytes = 32;

struct MspHeader {
    bool packed = false;
    int width = 0;
    int height = 0;
    int RowBytes() const { return (width + 7) / 8; }
};

MspHeader MspReadHeader(ByteSource& source)
{
    uchar p[kMspHeaderBytes];
    if (source.ReadAt(0, p, sizeof(p)) != sizeof(p)) {
        Damaged(kMspName, QStringLiteral("its header is cut short"));
    }
    MspHeader header;
    header.packed = p[0] == 'L';
    header.width = Little16(p + 4);
    header.height = Little16(p + 6);
    CheckSides(kMspName, header.width, header.height);
    return header;
}

/// One packed row of `bytes` bytes: 0 is followed by a count and a value, anything else by so many
/// literal bytes. What the row does not fill stays white.
bool MspUnpackRow(ByteSource& source, qint64 at, qint64 bytes, uchar* to, qint64 count)
{
    ByteStream stream(source, at, bytes);
    qint64 done = 0;
    while (done < count) {
        const int code = stream.Next();
        if (code < 0) {
            break;
        }
        if (code > 0) {
            done += stream.Read(to + done, std::min<qint64>(code, count - done));
            continue;
        }
        const int run = stream.Next();
        const int value = stream.Next();
        if (value < 0) {
            break;
        }
        const qint64 part = std::min<qint64>(run, count - done);
        std::memset(to + done, value, size_t(part));
        done += part;
    }
    return at + bytes <= source.Size();
}

} // namespace

bool MspMatches(QByteArrayView head, QStringView)
{
    return head.size() >= kMspHeaderBytes
        && (std::memcmp(head.data(), "DanM", 4) == 0 || std::memcmp(head.data(), "LinS", 4) == 0);
}

ImageFacts MspProbe(ByteSource& source)
{
    const MspHeader header = MspReadHeader(source);
    ImageFacts facts;
    facts.width = header.width;
    facts.height = header.height;
    facts.bits = 1;
    facts.format = 53;
    facts.compression = header.packed ? QStringLiteral("RLE") : QStringLiteral("Uncompressed");
    return facts;
}

Bitmap MspDecode(ByteSource& source, const DecodeRequest& request)
{
    CheckCancelled(request);
    const MspHeader header = MspReadHeader(source);
    QImage image = NewImage(kMspName, header.width, header.height, QImage::Format_Mono);
    image.setColorTable({qRgb(0, 0, 0), qRgb(255, 255, 255)});
    image.fill(1);
    int rows = 0;
    if (header.packed) {
        ByteStream lengths(source, kMspHeaderBytes, 2 * qint64(header.height));
        qint64 at = kMspHeaderBytes + 2 * qint64(header.height);
        for (; rows < header.height; ++rows) {
            CheckCancelled(request);
            uchar length[2];
            if (lengths.Read(length, 2) != 2
                || !MspUnpackRow(source, at, Little16(length), image.scanLine(rows),
                                 header.RowBytes())) {
                break;
            }
            at += Little16(length);
        }
    } else {
        ByteStream stream(source, kMspHeaderBytes, source.Size());
        while (rows < header.height
               && stream.Read(image.scanLine(rows), header.RowBytes()) == header.RowBytes()) {
            ++rows;
        }
    }
    return FinishPicture(kMspName, std::move(image), 1, rows);
}

} // namespace quillane::codecs
