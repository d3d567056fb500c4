#include "imaging/codecs/dib.h"
#include <algorithm>

namespace quillane::codecs {

namespace {

constexpr int kDibCoreBytes = 12;  ///< OS/2 1.x
constexpr int kDibInfoBytes = 40;  ///< Windows 3
constexpr int kDibMaxHeader = 124; ///< Windows, version 5
constexpr int kDibOs22Bytes = 64;
constexpr int kDibMaxColours = 256;

bool DibIsWindows(quint32 size)
{
    return size == kDibInfoBytes || size == 52 || size == 56 || size == 108 || size == 124;
}

void DibReadCore(const uchar* p, DibHeader& header)
{
    header.kind = DibKind::Os21;
    header.colourBytes = 3;
    header.width = Little16(p + 4);
    header.height = Little16(p + 6);
    header.bits = Little16(p + 10);
    header.colourCount = header.bits <= 8 ? 1 << header.bits : 0;
}

/// How the pixels are packed, by the numbers of the two systems.
void DibReadPacking(quint32 code, DibHeader& header, bool& masked, const char* format)
{
    const bool windows = header.kind == DibKind::Windows;
    masked = windows && (code == 3 || code == 6);
    if (code == 0 || masked) {
        return;
    }
    if (code == 1 && header.bits == 8) {
        header.packing = DibPacking::Rle8;
    } else if (code == 2 && header.bits == 4) {
        header.packing = DibPacking::Rle4;
    } else if (!windows && code == 4 && header.bits == 24) {
        header.packing = DibPacking::Rle24;
    } else if (!windows && code == 3) {
        Unsupported(format, QStringLiteral("is packed as a fax"));
    } else if (windows && (code == 4 || code == 5)) {
        Unsupported(format, QStringLiteral("wraps a JPEG or PNG for a printer"));
    } else {
        Damaged(format,
                QStringLiteral("it claims packing %1 at %2 bits").arg(code).arg(header.bits));
    }
}

/// The masks that stand in the header or behind it, or else the usual ones.
void DibReadMasks(ByteSource& source, qint64 position, quint32 size, quint32 code, bool masked,
                  DibHeader& header)
{
    if (header.bits == 16) {
        header.masks = {0x7c00, 0x03e0, 0x001f, 0};
    } else {
        header.masks = {0xff0000, 0xff00, 0xff, 0};
    }
    if (!masked || (header.bits != 16 && header.bits != 32)) {
        return;
    }
    uchar bytes[16] = {};
    const int count = size >= 56 || code == 6 ? 4 : 3;
    if (source.ReadAt(position + kDibInfoBytes, bytes, count * 4) == count * 4) {
        for (int i = 0; i < count; ++i) {
            header.masks[size_t(i)] = Little32(bytes + 4 * i);
        }
    }
    if (size == kDibInfoBytes) {
        header.end += count * 4;
    }
}

} // namespace

DibHeader ReadDibHeader(ByteSource& source, qint64 position, const char* format)
{
    uchar p[kDibMaxHeader] = {};
    const qint64 got = source.ReadAt(position, p, sizeof(p));
    const quint32 size = Little32(p);
    const bool core = size == kDibCoreBytes;
    const bool windows = DibIsWindows(size);
    if (!core && !windows && (size < 16 || size > kDibOs22Bytes)) {
        Damaged(format, QStringLiteral("its header claims %1 bytes").arg(size));
    }
    if (got < qint64(std::min<quint32>(size, kDibMaxHeader))) {
        Damaged(format, QStringLiteral("its header is cut short"));
    }
    DibHeader header;
    header.end = position + size;
    bool masked = false;
    if (core) {
        DibReadCore(p, header);
    } else {
        std::fill(p + size, p + std::max<quint32>(size, kDibMaxHeader), uchar(0));
        header.kind = windows ? DibKind::Windows : DibKind::Os22;
        header.width = qint32(Little32(p + 4));
        header.height = qint32(Little32(p + 8));
        header.bits = Little16(p + 14);
        if (header.height < 0) {
            header.topDown = true;
            header.height = -header.height;
        }
        DibReadPacking(Little32(p + 16), header, masked, format);
        header.xResolution = DotsPerInch(qint32(Little32(p + 24)));
        header.yResolution = DotsPerInch(qint32(Little32(p + 28)));
        const quint32 used = Little32(p + 32);
        const quint32 most = header.bits <= 8 ? 1u << header.bits : kDibMaxColours;
        header.colourCount =
            int(header.bits <= 8 && (used == 0 || used > most) ? most : std::min(used, most));
        DibReadMasks(source, position, size, Little32(p + 16), masked, header);
    }
    constexpr int kDepths[] = {1, 2, 4, 8, 16, 24, 32};
    if (std::find(std::begin(kDepths), std::end(kDepths), header.bits) == std::end(kDepths)) {
        Unsupported(format, QStringLiteral("has %1 bits per pixel").arg(header.bits));
    }
    CheckSides(format, header.width, header.height);
    header.coloursAt = header.end;
    header.end += qint64(header.colourCount) * header.colourBytes;
    return header;
}

QList<QRgb> ReadDibColours(ByteSource& source, const DibHeader& header)
{
    uchar bytes[kDibMaxColours * 4] = {};
    const int count = std::min(header.colourCount, 1 << header.bits);
    source.ReadAt(header.coloursAt, bytes, qint64(count) * header.colourBytes);
    QList<QRgb> colours(1 << header.bits, qRgb(0, 0, 0));
    for (int i = 0; i < count; ++i) {
        const uchar* p = bytes + i * header.colourBytes;
        colours[i] = qRgb(p[2], p[1], p[0]);
    }
    return colours;
}

} // namespace quillane::codecs
