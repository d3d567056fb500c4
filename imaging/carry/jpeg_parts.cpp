#include "imaging/carry/jpeg_parts.h"
#include "core/failure.h"
#include <QtEndian>
#include <cstring>

namespace quillane::carry {

namespace {

constexpr quint8 kPartStart = 0xd8, kPartEnd = 0xd9, kPartScan = 0xda;
constexpr qsizetype kPartMost = 65'533; ///< bytes of a segment's content

bool PartIsBare(quint8 marker)
{
    return marker == 0x01 || (marker >= 0xd0 && marker <= kPartStart);
}

/// The next marker of a coded picture at or behind `at`: its second byte's place, -1 for none.
qint64 PartNextMarker(const QByteArray& bytes, qint64 at)
{
    const char* begin = bytes.constData();
    while (at + 1 < bytes.size()) {
        const void* found = std::memchr(begin + at, 0xff, size_t(bytes.size() - 1 - at));
        if (!found) {
            return -1;
        }
        at = static_cast<const char*>(found) - begin + 1;
        const auto marker = quint8(bytes[at]);
        if (marker != 0 && marker != 0xff && !PartIsBare(marker)) {
            return at;
        }
    }
    return -1;
}

/// Sets where the picture ends; its scans are walked over marker by marker.
void PartFindEnd(const QByteArray& bytes, JpegParts& parts)
{
    qint64 at = parts.scan;
    while ((at = PartNextMarker(bytes, at)) >= 0) {
        if (quint8(bytes[at]) == kPartEnd) {
            parts.end = at + 1;
            parts.ended = true;
            return;
        }
        if (at + 3 > bytes.size()) {
            break;
        }
        at += 1 + qFromBigEndian<quint16>(bytes.constData() + at + 1);
    }
    parts.end = bytes.size();
}

} // namespace

JpegParts CutJpeg(const QByteArray& bytes, JpegMaker maker)
{
    JpegParts parts;
    qint64 at = 2;
    while (bytes.startsWith("\xff\xd8") && at + 4 <= bytes.size()) {
        const auto marker = quint8(bytes[at + 1]);
        if (quint8(bytes[at]) != 0xff || marker == 0xff || marker == 0) {
            ++at; // stray bytes between segments are passed over
            continue;
        }
        if (marker == kPartEnd) {
            break;
        }
        if (marker == kPartScan) {
            parts.scan = at;
            if (maker == JpegMaker::Program && bytes.endsWith("\xff\xd9")) {
                parts.end = bytes.size();
                parts.ended = true;
            } else {
                PartFindEnd(bytes, parts);
            }
            return parts;
        }
        const qint64 length = qFromBigEndian<quint16>(bytes.constData() + at + 2);
        if (PartIsBare(marker) || length < 2) {
            at += 2;
            continue;
        }
        if (at + 2 + length > bytes.size()) {
            break;
        }
        parts.segments.push_back({marker, bytes.sliced(at + 4, length - 2), at + 4});
        at += 2 + length;
    }
    throw Failure(kFailureUnreadable,
                  QStringLiteral("This JPEG is damaged: it has no scan, so its metadata cannot be "
                                 "carried over."));
}

bool DescribesPixels(quint8 marker)
{
    return (marker >= 0xc0 && marker <= 0xcf) || (marker >= kPartScan && marker <= 0xdf);
}

QByteArray SegmentBytes(quint8 marker, const QByteArray& content, const QString& what)
{
    if (content.size() > kPartMost) {
        throw Failure(kFailureLimit,
                      QStringLiteral("%1 of this picture is too long for a JPEG, which has room "
                                     "for 64 KB.")
                          .arg(what));
    }
    char head[4] = {char(0xff), char(marker)};
    qToBigEndian(quint16(content.size() + 2), head + 2);
    return QByteArray(head, 4) + content;
}

} // namespace quillane::carry
