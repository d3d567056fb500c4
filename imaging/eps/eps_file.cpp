#include "imaging/eps/eps_file.h"
#include "imaging/codecs/codec_support.h"
#include <QList>
#include <cmath>
#include <optional>

namespace quillane::eps {

namespace {

using codecs::Little32;

constexpr char kEpsFormat[] = "EPS";
constexpr uchar kEpsDosMark[] = {0xc5, 0xd0, 0xd3, 0xc6};
constexpr int kEpsDosHeader = 30;
constexpr qint64 kEpsComments = 64 * 1024; ///< bytes looked at for comments, at either end
constexpr double kEpsMostPoints = 200'000; ///< of a side
const QRectF kEpsSheet(0, 0, 595, 842);    ///< A4

/// The four numbers of a box; nothing for "(atend)" and for what is no box.
std::optional<QRectF> EpsBox(QByteArrayView value)
{
    double sides[4];
    int count = 0;
    for (const QByteArray& word : value.toByteArray().simplified().split(' ')) {
        bool sound = false;
        const double side = word.toDouble(&sound);
        if (!sound || !std::isfinite(side) || count == 4) {
            break;
        }
        sides[count++] = side;
    }
    if (count < 4 || sides[2] <= sides[0] || sides[3] <= sides[1]) {
        return {};
    }
    return QRectF(QPointF(sides[0], sides[1]), QPointF(sides[2], sides[3]));
}

/// The box that comments in `bytes` tell, the exact one if there is one.
std::optional<QRectF> EpsBoxIn(const QByteArray& bytes, bool last)
{
    for (const char* name : {"%%HiResBoundingBox:", "%%BoundingBox:"}) {
        const QByteArrayView mark(name);
        qsizetype at = last ? bytes.lastIndexOf(mark) : bytes.indexOf(mark);
        while (at >= 0) {
            const qsizetype from = at + mark.size();
            qsizetype end = from;
            while (end < bytes.size() && bytes[end] != '\n' && bytes[end] != '\r') {
                ++end;
            }
            const bool begins = at == 0 || bytes[at - 1] == '\n' || bytes[at - 1] == '\r';
            const auto box = begins ? EpsBox(QByteArrayView(bytes).sliced(from, end - from))
                                    : std::optional<QRectF>();
            if (box) {
                return box;
            }
            at = last && at > 0 ? bytes.lastIndexOf(mark, at - 1)
                : last          ? -1
                                : bytes.indexOf(mark, end);
        }
    }
    return {};
}

void EpsReadDosHeader(ByteSource& source, const uchar* p, EpsFile& file)
{
    const auto inside = [&](qint64 at, qint64 size) {
        return at >= kEpsDosHeader && size > 0 && at <= source.Size() - size;
    };
    file.scriptAt = Little32(p + 4);
    file.scriptSize = std::min<qint64>(Little32(p + 8), source.Size() - file.scriptAt);
    if (!inside(file.scriptAt, file.scriptSize)) {
        codecs::Damaged(kEpsFormat, QStringLiteral("its header points outside the file"));
    }
    const qint64 wmfAt = Little32(p + 12), wmfSize = Little32(p + 16);
    const qint64 tiffAt = Little32(p + 20), tiffSize = Little32(p + 24);
    if (inside(tiffAt, tiffSize)) {
        file.preview = Preview::Tiff;
        file.previewAt = tiffAt;
        file.previewSize = tiffSize;
    } else if (inside(wmfAt, wmfSize)) {
        file.preview = Preview::Wmf;
        file.previewAt = wmfAt;
        file.previewSize = wmfSize;
    }
}

} // namespace

bool IsEps(QByteArrayView head)
{
    if (head.size() >= kEpsDosHeader && head.first(4) == QByteArrayView(kEpsDosMark, 4)) {
        return true;
    }
    // Some put the sign for the end of a transmission before it.
    return head.startsWith("%!PS") || head.startsWith("\x04%!PS");
}

EpsFile ReadEps(ByteSource& source)
{
    EpsFile file;
    file.scriptSize = source.Size();
    uchar header[kEpsDosHeader] = {};
    const qint64 got = source.ReadAt(0, header, sizeof(header));
    if (got == qint64(sizeof(header)) && std::equal(kEpsDosMark, kEpsDosMark + 4, header)) {
        EpsReadDosHeader(source, header, file);
    }
    codecs::PartSource script(source, file.scriptAt, file.scriptSize);
    const QByteArray head = script.Head(kEpsComments);
    auto box = EpsBoxIn(head, false);
    if (!box) {
        QByteArray tail(qsizetype(std::min(kEpsComments, script.Size())), '\0');
        tail.resize(script.ReadAt(script.Size() - tail.size(), tail.data(), tail.size()));
        box = EpsBoxIn(tail, true);
    }
    file.box = box.value_or(kEpsSheet);
    if (!(file.box.width() <= kEpsMostPoints && file.box.height() <= kEpsMostPoints)) {
        codecs::TooMuch(kEpsFormat,
                        QStringLiteral("has a bounding box of %1 by %2 points")
                            .arg(file.box.width())
                            .arg(file.box.height()));
    }
    return file;
}

} // namespace quillane::eps
