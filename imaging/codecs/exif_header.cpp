#include "imaging/codecs/exif_header.h"
#include "imaging/codecs/codec_support.h"
#include <cmath>

namespace quillane::codecs {

namespace {

/// Tags of the first directory (Exif 2.3, table 4).
enum ExifHeaderTag : quint16 {
    kExifOrientation = 0x0112,
    kExifXResolution = 0x011a,
    kExifYResolution = 0x011b,
    kExifResolutionUnit = 0x0128,
};
constexpr int kExifMaxEntries = 300; ///< a first directory has a few dozen
constexpr int kExifEntryBytes = 12;

struct ExifOrder {
    bool big;
    quint16 Short(const uchar* p) const { return big ? Big16(p) : Little16(p); }
    quint32 Long(const uchar* p) const { return big ? Big32(p) : Little32(p); }
};

double ExifRatio(const ExifOrder& order, const uchar* p)
{
    const quint32 below = p ? order.Long(p + 4) : 0;
    return below ? double(order.Long(p)) / double(below) : 0.0;
}

} // namespace

ExifHeader ReadExifHeader(qint64 size,
                          const std::function<const uchar*(qint64 offset, qint64 count)>& at)
{
    ExifHeader header;
    const uchar* head = size >= 8 ? at(0, 8) : nullptr;
    if (!head || head[0] != head[1] || (head[0] != 'I' && head[0] != 'M')) {
        return header;
    }
    const ExifOrder order{head[0] == 'M'};
    const qint64 first = order.Long(head + 4);
    if (order.Short(head + 2) != 42 || first < 8) {
        return header;
    }
    const uchar* counter = at(first, 2);
    const int entries = counter ? std::min<int>(order.Short(counter), kExifMaxEntries) : 0;
    quint32 xAt = 0;
    quint32 yAt = 0;
    quint16 unit = 2; // inches, when nothing is said
    for (int i = 0; i < entries; ++i) {
        const uchar* entry = at(first + 2 + qint64(i) * kExifEntryBytes, kExifEntryBytes);
        if (!entry) {
            break;
        }
        header.directory = true;
        const quint16 type = order.Short(entry + 2);
        switch (order.Short(entry)) {
        case kExifOrientation: {
            // A writer here and there stores a long instead of a short.
            const quint32 value = type == 4 ? order.Long(entry + 8) : order.Short(entry + 8);
            header.orientation = value >= 1 && value <= 8 ? quint8(value) : quint8(1);
            break;
        }
        case kExifXResolution:
            xAt = type == 5 ? order.Long(entry + 8) : 0;
            break;
        case kExifYResolution:
            yAt = type == 5 ? order.Long(entry + 8) : 0;
            break;
        case kExifResolutionUnit:
            unit = order.Short(entry + 8);
            break;
        default:
            break;
        }
    }
    const double perMetre = unit == 3 ? 100.0 : unit == 2 ? 1 / 0.0254 : 0.0;
    if (xAt != 0) {
        header.xResolution = DotsPerInch(ExifRatio(order, at(xAt, 8)) * perMetre);
    }
    if (yAt != 0) {
        header.yResolution = DotsPerInch(ExifRatio(order, at(yAt, 8)) * perMetre);
    }
    return header;
}

} // namespace quillane::codecs
