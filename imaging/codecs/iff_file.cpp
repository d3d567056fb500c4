#include "imaging/codecs/iff_file.h"
#include "imaging/codecs/codec_support.h"
#include "imaging/codecs/raster_support.h"
#include "imaging/limits.h"
#include <algorithm>
#include <cstring>

namespace quillane::codecs {

namespace {

constexpr int kIffHeadBytes = 8; ///< name and length of a chunk
constexpr int kIffMaxNesting = 4;
constexpr int kIffBitmapHeaderBytes = 20;
constexpr quint32 kIffHoldAndModify = 0x800;
constexpr quint32 kIffHalfBright = 0x80;

bool IffIs(const uchar* p, const char* name)
{
    return std::memcmp(p, name, 4) == 0;
}

/// Adds the picture forms among the chunks between two positions.
void IffCollect(ByteSource& source, qint64 from, qint64 end, int nesting, QList<qint64>& forms)
{
    uchar p[kIffHeadBytes + 4];
    while (from + qint64(sizeof(p)) <= end && forms.size() < limits::kMaxPages) {
        if (source.ReadAt(from, p, sizeof(p)) != sizeof(p)) {
            return;
        }
        const qint64 length = Big32(p + 4);
        const qint64 next = from + kIffHeadBytes + length + (length & 1);
        if (IffIs(p, "FORM")) {
            if (IffIs(p + 8, "ILBM") || IffIs(p + 8, "PBM ")) {
                forms.append(from);
            }
        } else if ((IffIs(p, "CAT ") || IffIs(p, "LIST")) && nesting < kIffMaxNesting) {
            IffCollect(source, from + kIffHeadBytes + 4, std::min(next, end), nesting + 1, forms);
        }
        from = next;
    }
}

void IffReadHeader(ByteSource& source, qint64 at, qint64 length, IffPicture& picture)
{
    uchar p[kIffBitmapHeaderBytes];
    if (length < qint64(sizeof(p)) || source.ReadAt(at, p, sizeof(p)) != sizeof(p)) {
        Damaged(kIffName, QStringLiteral("its picture's header is cut short"));
    }
    picture.width = Big16(p);
    picture.height = Big16(p + 2);
    picture.planes = p[8];
    picture.hasMaskPlane = p[9] == 1;
    picture.packed = p[10] == 1;
    if (p[10] > 1) {
        Unsupported(kIffName, QStringLiteral("is packed in way %1").arg(p[10]));
    }
    CheckSides(kIffName, picture.width, picture.height);
}

QList<QRgb> IffReadColours(ByteSource& source, qint64 at, qint64 length)
{
    uchar p[3 * 256];
    const qint64 got = source.ReadAt(at, p, std::min<qint64>(length, sizeof(p))) / 3 * 3;
    // Early writers filled only the upper four bits.
    const bool coarse = std::all_of(p, p + got, [](uchar value) { return (value & 15) == 0; });
    const auto level = [coarse](uchar value) { return coarse ? value | value >> 4 : value; };
    QList<QRgb> colours;
    colours.reserve(256);
    for (qint64 i = 0; i < got; i += 3) {
        colours.append(qRgb(level(p[i]), level(p[i + 1]), level(p[i + 2])));
    }
    return colours;
}

/// Settles what the pixels mean, by the display mode or, where none is told, by the numbers.
void IffSettleMode(IffPicture& picture, bool moded, quint32 mode)
{
    const qsizetype colours = picture.colours.size();
    const int planes = picture.planes;
    if (picture.chunky) {
        if (planes != 8) {
            Unsupported(kIffName, QStringLiteral("has chunky pixels of %1 bits").arg(planes));
        }
    } else if (planes < 1 || (planes > 8 && planes != 24 && planes != 32)) {
        Unsupported(kIffName, QStringLiteral("has %1 planes").arg(planes));
    } else if (planes == 5 || planes == 6 || planes == 7 || planes == 8) {
        picture.holdAndModify =
            moded ? (mode & kIffHoldAndModify) != 0 : planes == 6 && colours <= 16;
        picture.halfBright = planes == 6 && !picture.holdAndModify
            && (moded ? (mode & kIffHalfBright) != 0 || colours <= 32 : colours <= 32);
    }
    if (planes > 8) {
        return;
    }
    const int base = picture.holdAndModify ? 1 << (planes - 2) : 1 << planes;
    if (picture.colours.isEmpty()) {
        picture.colours = GreySteps(picture.halfBright ? 32 : base);
    }
    if (picture.halfBright) {
        FitColours(picture.colours, 32);
        for (int i = 0; i < 32; ++i) {
            const QRgb full = picture.colours[i];
            picture.colours.append(qRgb(qRed(full) / 2, qGreen(full) / 2, qBlue(full) / 2));
        }
    }
    FitColours(picture.colours, base);
}

} // namespace

QList<qint64> FindIffPictures(ByteSource& source)
{
    QList<qint64> forms;
    IffCollect(source, 0, source.Size(), 0, forms);
    return forms;
}

IffPicture ReadIffPicture(ByteSource& source, qint64 form)
{
    uchar p[kIffHeadBytes + 4];
    if (source.ReadAt(form, p, sizeof(p)) != sizeof(p)) {
        Damaged(kIffName, QStringLiteral("its picture is cut short"));
    }
    IffPicture picture;
    picture.chunky = IffIs(p + 8, "PBM ");
    bool moded = false;
    quint32 mode = 0;
    const qint64 end = std::min<qint64>(form + kIffHeadBytes + Big32(p + 4), source.Size());
    constexpr int kMostChunks = 1000; // before the pixels
    qint64 at = form + qint64(sizeof(p));
    for (int chunks = 0; chunks < kMostChunks && at + kIffHeadBytes <= end; ++chunks) {
        if (source.ReadAt(at, p, kIffHeadBytes) != kIffHeadBytes) {
            break;
        }
        const qint64 length = Big32(p + 4);
        const qint64 body = at + kIffHeadBytes;
        if (IffIs(p, "BMHD")) {
            IffReadHeader(source, body, length, picture);
        } else if (IffIs(p, "CMAP")) {
            picture.colours = IffReadColours(source, body, length);
        } else if (IffIs(p, "CAMG")) {
            uchar value[4];
            moded = length >= 4 && source.ReadAt(body, value, 4) == 4;
            mode = moded ? Big32(value) : 0;
        } else if (IffIs(p, "BODY")) {
            picture.bodyAt = body;
            picture.bodyBytes = std::min(length, source.Size() - body);
            break;
        }
        at = body + length + (length & 1);
    }
    if (picture.width == 0) {
        Damaged(kIffName, QStringLiteral("its picture has no header"));
    }
    IffSettleMode(picture, moded, mode);
    return picture;
}

} // namespace quillane::codecs
