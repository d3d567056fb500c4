#include "imaging/codecs/wmf_player.h"
#include "imaging/codecs/codec_support.h"
#include "imaging/codecs/wmf_records.h"
#include <cmath>

namespace quillane::codecs {

namespace {

constexpr char kWmfName[] = "WMF";
constexpr int kWmfPlaceableBytes = 22;
constexpr int kWmfHeaderBytes = 18;
constexpr quint32 kWmfPlaceableMark = 0x9ac6cdd7;
constexpr qint64 kWmfMostRecords = 2'000'000;

bool WmfIsPlain(const uchar* p)
{
    const quint16 type = Little16(p);
    const quint16 version = Little16(p + 4);
    return (type == 1 || type == 2) && Little16(p + 2) == 9
        && (version == 0x0300 || version == 0x0100) && Little16(p + 16) == 0;
}

struct WmfRecord {
    quint16 function = 0;
    QByteArrayView parameters;
};

/// Walks the records; the walker is told each and says whether to go on. False when the file ends
/// before its last record.
template <typename Walker> bool WmfWalk(const QByteArray& bytes, qint64 at, Walker&& walker)
{
    for (qint64 count = 0; count < kWmfMostRecords; ++count) {
        if (bytes.size() - at < 6) {
            return false;
        }
        const uchar* p = reinterpret_cast<const uchar*>(bytes.constData()) + at;
        const qint64 size = qint64(Little32(p)) * 2;
        WmfRecord record;
        record.function = Little16(p + 4);
        if (record.function == 0) {
            return true;
        }
        if (size < 6 || size > bytes.size() - at) {
            return false;
        }
        record.parameters = QByteArrayView(bytes).sliced(at + 6, size - 6);
        if (!walker(record)) {
            return true;
        }
        at += size;
    }
    return false;
}

struct WmfWindow {
    QPointF org;
    QPointF ext;
    bool set = false;
};

/// The first window that the records set before they draw.
WmfWindow WmfFirstWindow(const QByteArray& bytes, qint64 at)
{
    WmfWindow window;
    bool placed = false;
    WmfWalk(bytes, at, [&](const WmfRecord& record) {
        drawing::RecordReader in(record.parameters);
        const bool origin = record.function == 0x020b;
        if (!origin && record.function != 0x020c) {
            return !(placed && window.set);
        }
        const double y = in.I16();
        const QPointF value(in.I16(), y);
        if (origin && !placed) {
            window.org = value;
            placed = true;
        } else if (!origin && !window.set && value.x() != 0 && value.y() != 0) {
            window.ext = value;
            window.set = true;
        }
        return true;
    });
    return window;
}

/// The placeable file's box in the units of the first window, where the two belong together.
QRectF WmfView(const WmfHeader& header, const WmfWindow& window)
{
    const QRectF whole(0, 0, std::abs(window.ext.x()), std::abs(window.ext.y()));
    const QRectF box = header.box.normalized();
    if (!header.placeable || box.isEmpty()) {
        return whole;
    }
    const auto device = [&window](QPointF at) {
        return QPointF((at.x() - window.org.x()) * (window.ext.x() < 0 ? -1 : 1),
                       (at.y() - window.org.y()) * (window.ext.y() < 0 ? -1 : 1));
    };
    const QRectF mapped = QRectF(device(box.topLeft()), device(box.bottomRight())).normalized();
    const QRectF common = mapped.intersected(whole);
    const double shared = common.width() * common.height();
    const bool alike = shared > 0.8 * mapped.width() * mapped.height()
        && shared > 0.8 * whole.width() * whole.height();
    return alike ? mapped : whole;
}

} // namespace

bool WmfIsHeader(QByteArrayView head)
{
    const uchar* p = reinterpret_cast<const uchar*>(head.data());
    if (head.size() >= kWmfPlaceableBytes + 4 && Little32(p) == kWmfPlaceableMark) {
        return true;
    }
    return head.size() >= kWmfHeaderBytes && WmfIsPlain(p);
}

WmfHeader ReadWmfHeader(QByteArrayView bytes)
{
    WmfHeader header;
    if (!WmfIsHeader(bytes)) {
        Damaged(kWmfName, QStringLiteral("its header is cut short"));
    }
    const uchar* p = reinterpret_cast<const uchar*>(bytes.data());
    if (Little32(p) == kWmfPlaceableMark) {
        header.placeable = true;
        drawing::RecordReader in(bytes.sliced(6));
        const QPointF from = in.Point16();
        header.box = QRectF(from, in.Point16());
        header.unitsPerInch = in.U16();
        header.recordsAt = kWmfPlaceableBytes;
    }
    const QByteArrayView plain = bytes.sliced(header.recordsAt);
    if (plain.size() < kWmfHeaderBytes) {
        Damaged(kWmfName, QStringLiteral("its header is cut short"));
    }
    header.recordsAt += qint64(Little16(p + header.recordsAt + 2)) * 2;
    if (header.recordsAt > bytes.size()) {
        Damaged(kWmfName, QStringLiteral("its header is longer than the file"));
    }
    return header;
}

drawing::DrawnPage PlayWmf(const QByteArray& bytes, const std::atomic<bool>* cancelled)
{
    const WmfHeader header = ReadWmfHeader(bytes);
    drawing::DrawnPage page;
    const WmfWindow window = WmfFirstWindow(bytes, header.recordsAt);
    WmfRecords records(page.drawing);
    if (window.set) {
        // One device unit is one unit of the first window.
        records.Context().SetMapMode(8);
        records.Context().SetViewportExt({std::abs(window.ext.x()), std::abs(window.ext.y())});
        records.Context().SetWindowOrg(window.org);
        records.Context().SetWindowExt(window.ext);
    }
    page.partial = !WmfWalk(bytes, header.recordsAt, [&](const WmfRecord& record) {
        if (cancelled && cancelled->load(std::memory_order_relaxed)) {
            Cancelled();
        }
        records.Play(record.function, record.parameters);
        return !page.drawing.IsFull();
    });
    page.partial = page.partial || records.IsCutShort();
    if (page.drawing.IsEmpty() && page.partial) {
        Damaged(kWmfName, QStringLiteral("it ends before it draws anything"));
    }
    if (header.placeable && header.unitsPerInch > 0 && !header.box.normalized().isEmpty()) {
        page.unitless = false;
        page.inchWidth = std::abs(header.box.width()) / header.unitsPerInch;
        page.inchHeight = std::abs(header.box.height()) / header.unitsPerInch;
    }
    drawing::SettleView(page,
                        window.set             ? WmfView(header, window)
                            : header.placeable ? header.box
                                               : page.drawing.Extents());
    drawing::TakeInFigures(page);
    return page;
}

} // namespace quillane::codecs
