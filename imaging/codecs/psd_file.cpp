#include "imaging/codecs/psd_file.h"
#include "imaging/codecs/codec_support.h"
#include "imaging/limits.h"
#include <algorithm>
#include <cstring>

namespace quillane::codecs {

namespace {

constexpr int kPsdHeaderBytes = 26;
constexpr int kPsdResourceHead = 6; ///< mark and number
constexpr int kPsdResolution = 1005;
constexpr int kPsdProfile = 1039;
constexpr int kPsdPaletteBytes = 768;

qint64 PsdLength(ByteSource& source, qint64 at, bool wide)
{
    uchar p[8] = {};
    const int bytes = wide ? 8 : 4;
    if (source.ReadAt(at, p, bytes) != bytes) {
        Damaged(kPsdName, QStringLiteral("it ends before its picture"));
    }
    if (wide && Big32(p) != 0) {
        Damaged(kPsdName, QStringLiteral("a part of it lies beyond its end"));
    }
    return Big32(wide ? p + 4 : p);
}

void PsdReadPalette(ByteSource& source, qint64 at, qint64 bytes, PsdHeader& header)
{
    uchar p[kPsdPaletteBytes];
    if (bytes < kPsdPaletteBytes || source.ReadAt(at, p, sizeof(p)) != sizeof(p)) {
        Damaged(kPsdName, QStringLiteral("its colours are cut short"));
    }
    header.palette.reserve(256);
    for (int i = 0; i < 256; ++i) {
        header.palette.append(qRgb(p[i], p[256 + i], p[512 + i]));
    }
}

void PsdReadResources(ByteSource& source, qint64 at, qint64 end, PsdHeader& header)
{
    constexpr int kMostResources = 4096;
    for (int i = 0; i < kMostResources && at + kPsdResourceHead < end; ++i) {
        uchar p[kPsdResourceHead + 1];
        if (source.ReadAt(at, p, sizeof(p)) != sizeof(p)) {
            return;
        }
        const int number = Big16(p + 4);
        const int nameBytes = (p[kPsdResourceHead] + 2) / 2 * 2; // its length in, to even
        const qint64 lengthAt = at + kPsdResourceHead + nameBytes;
        if (lengthAt + 4 > end) {
            return;
        }
        const qint64 length = PsdLength(source, lengthAt, false);
        const qint64 body = lengthAt + 4;
        if (body + length > end) {
            return;
        }
        if (number == kPsdResolution && length >= 16) {
            uchar r[16];
            if (source.ReadAt(body, r, sizeof(r)) == sizeof(r)) {
                header.xResolution = qint32((Big32(r) + 0x8000u) >> 16);
                header.yResolution = qint32((Big32(r + 8) + 0x8000u) >> 16);
            }
        } else if (number == kPsdProfile && length <= limits::kMaxFieldBytes) {
            header.profile.resize(length);
            header.profile.truncate(source.ReadAt(body, header.profile.data(), length));
        }
        at = body + (length + 1) / 2 * 2;
    }
}

/// Whether the first channel behind the colours is transparency: a negative number of layers.
bool PsdHasTransparency(ByteSource& source, qint64 at, qint64 bytes, bool big)
{
    const int width = big ? 8 : 4;
    uchar p[2] = {};
    return bytes >= width + 2 && source.ReadAt(at + width, p, 2) == 2 && qint16(Big16(p)) < 0;
}

int PsdColours(const PsdHeader& header)
{
    switch (header.mode) {
    case PsdMode::Rgb:
    case PsdMode::Lab:
        return 3;
    case PsdMode::Cmyk:
        return 4;
    case PsdMode::Multichannel:
        return header.channels >= 4 ? 4 : header.channels == 3 ? 3 : 1;
    default:
        return 1;
    }
}

PsdHeader PsdReadFields(ByteSource& source)
{
    uchar p[kPsdHeaderBytes];
    if (source.ReadAt(0, p, sizeof(p)) != sizeof(p)) {
        Damaged(kPsdName, QStringLiteral("its header is cut short"));
    }
    PsdHeader header;
    header.big = Big16(p + 4) == 2;
    header.channels = Big16(p + 12);
    header.height = Big32(p + 14);
    header.width = Big32(p + 18);
    header.depth = Big16(p + 22);
    const int mode = Big16(p + 24);
    header.mode = PsdMode(mode);
    CheckSides(kPsdName, header.width, header.height);
    if (mode == 5 || mode == 6 || mode > 9) {
        Unsupported(kPsdName, QStringLiteral("is of colour mode %1").arg(mode));
    }
    const bool bilevel = header.mode == PsdMode::Bilevel;
    const int depth = header.depth;
    if (bilevel ? depth != 1 : depth != 8 && depth != 16 && depth != 32) {
        Unsupported(kPsdName, QStringLiteral("has %1 bits per sample").arg(depth));
    }
    header.colours = PsdColours(header);
    if (header.channels < header.colours) {
        Damaged(kPsdName, QStringLiteral("it has fewer channels than its colours need"));
    }
    return header;
}

} // namespace

PsdHeader ReadPsdHeader(ByteSource& source)
{
    PsdHeader header = PsdReadFields(source);
    qint64 at = kPsdHeaderBytes;
    qint64 length = PsdLength(source, at, false);
    if (header.mode == PsdMode::Indexed) {
        PsdReadPalette(source, at + 4, length, header);
    }
    at += 4 + length;
    length = PsdLength(source, at, false);
    PsdReadResources(source, at + 4, std::min(at + 4 + length, source.Size()), header);
    at += 4 + length;
    length = PsdLength(source, at, header.big);
    const int width = header.big ? 8 : 4;
    header.alpha = header.channels > header.colours && header.depth > 1
        && (header.mode == PsdMode::Rgb || header.mode == PsdMode::Grey)
        && PsdHasTransparency(source, at + width, length, header.big);
    at += width + length;
    uchar packing[2];
    if (source.ReadAt(at, packing, 2) != 2) {
        Damaged(kPsdName, QStringLiteral("it ends before its picture"));
    }
    if (Big16(packing) > 1) {
        Unsupported(kPsdName, QStringLiteral("is packed in way %1").arg(Big16(packing)));
    }
    header.packed = Big16(packing) == 1;
    header.dataAt = at + 2;
    return header;
}

} // namespace quillane::codecs
