// CALS raster files of type 1 (MIL-PRF-28002): sixteen records of 128 characters, then a Group 4
// stream.
#include "core/failure.h"
#include "imaging/worker_main/codecs/fax_wrap.h"
#include "imaging/worker_main/codecs/shipped_codecs.h"
#include <iterator>

namespace quillane::worker {

namespace {

constexpr char kCalsName[] = "CALS raster";
constexpr int kCalsRecordBytes = 128;
constexpr int kCalsRecords = 16;

struct CalsHeader {
    int type = 1;
    qint64 width = 0, height = 0;
    int path = 0, lines = 270; ///< directions of rows and of their sequence, in degrees
    int dotsPerInch = 0;
};

/// The text behind a record's name; empty when there is no such record.
QByteArray CalsRecord(const QByteArray& head, const char* name)
{
    for (qsizetype at = 0; at < head.size(); at += kCalsRecordBytes) {
        const QByteArray record = head.mid(at, kCalsRecordBytes);
        if (record.startsWith(name)) {
            return record.mid(qsizetype(qstrlen(name))).trimmed();
        }
    }
    return {};
}

CalsHeader CalsReadHeader(ByteSource& source)
{
    const QByteArray head = ReadFaxBytes(source, kCalsRecords * kCalsRecordBytes, kCalsName, false);
    if (head.size() < kCalsRecords * kCalsRecordBytes) {
        ThrowFaxDamaged(kCalsName, QStringLiteral("its header is cut short"));
    }
    CalsHeader header;
    const QByteArray type = CalsRecord(head, "rtype:");
    header.type = type.isEmpty() ? 1 : type.left(8).toInt();
    if (header.type != 1) {
        ThrowFaxUnsupported(kCalsName,
                            header.type == 2 ? QStringLiteral("is made of tiles (type 2)")
                                             : QStringLiteral("is of type %1").arg(header.type));
    }
    const auto pair = [&](const char* name, int& first, int& second) {
        const QList<QByteArray> parts = CalsRecord(head, name).split(',');
        if (parts.size() == 2) {
            first = parts[0].trimmed().toInt();
            second = parts[1].trimmed().toInt();
        }
    };
    int width = 0, height = 0;
    pair("rpelcnt:", width, height);
    pair("rorient:", header.path, header.lines);
    header.width = width;
    header.height = height;
    header.dotsPerInch = CalsRecord(head, "rdensty:").left(8).toInt();
    CheckFaxSize(kCalsName, header.width, header.height);
    return header;
}

/// The Exif orientation that says the same as the two directions.
quint8 CalsOrientation(const CalsHeader& header)
{
    struct Row {
        int path, lines;
        quint8 orientation;
    };
    constexpr Row kRows[] = {{0, 270, 1}, {180, 270, 2}, {180, 90, 3}, {0, 90, 4},
                             {270, 0, 5}, {270, 180, 6}, {90, 180, 7}, {90, 0, 8}};
    for (const Row& row : kRows) {
        if (row.path == header.path && row.lines == header.lines) {
            return row.orientation;
        }
    }
    return 1;
}

} // namespace

ImageFacts ProbeCals(ByteSource& source)
{
    const CalsHeader header = CalsReadHeader(source);
    ImageFacts facts;
    facts.width = qint32(header.width);
    facts.height = qint32(header.height);
    facts.bits = 1;
    facts.format = 130;
    facts.xResolution = facts.yResolution = header.dotsPerInch;
    facts.orientation = CalsOrientation(header);
    facts.compression = QStringLiteral("CCITT Group 4");
    return facts;
}

bool DecodeCals(ByteSource& source, const PictureWish&, PictureSink& sink)
{
    const CalsHeader header = CalsReadHeader(source);
    BarePixels pixels;
    pixels.at = kCalsRecords * kCalsRecordBytes;
    pixels.bytes = source.Size() - pixels.at;
    pixels.width = qint32(header.width);
    pixels.height = qint32(header.height);
    return DecodeBarePixels(source, pixels, kCalsName, sink);
}

} // namespace quillane::worker
