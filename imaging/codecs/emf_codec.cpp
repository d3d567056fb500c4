#include "imaging/codecs/codec_support.h"
#include "imaging/codecs/codecs.h"
#include "imaging/codecs/emf_records.h"
#include "imaging/vector/drawn_page.h"
#include <cmath>

namespace quillane::codecs {

namespace {

constexpr char kEmfName[] = "EMF";
constexpr qint16 kEmfFormat = 116;
constexpr int kEmfHeaderBytes = 88; ///< of the oldest header
constexpr int kEmfMarkAt = 40;
constexpr quint32 kEmfMark = 0x464d4520; ///< " EMF"
constexpr qint64 kEmfMostRecords = 2'000'000;

bool EmfIsHeader(QByteArrayView head)
{
    const uchar* p = reinterpret_cast<const uchar*>(head.data());
    return head.size() >= kEmfHeaderBytes && Little32(p) == 1
        && Little32(p + kEmfMarkAt) == kEmfMark;
}

struct EmfHeader {
    QRectF bounds; ///< device units, the last one included
    QRectF frame;  ///< hundredths of a millimetre
    QPointF dots;  ///< device units in a millimetre
};

EmfHeader EmfReadHeader(QByteArrayView bytes)
{
    if (!EmfIsHeader(bytes)) {
        Damaged(kEmfName, QStringLiteral("its header is cut short"));
    }
    EmfHeader header;
    drawing::RecordReader in(bytes);
    in.Skip(8);
    const QPointF first = in.Point32();
    header.bounds = QRectF(first, in.Point32() + QPointF(1, 1));
    const QPointF frameFirst = in.Point32();
    header.frame = QRectF(frameFirst, in.Point32());
    in.Seek(72);
    const QPointF device = in.Point32();
    const QPointF millimetres = in.Point32();
    // A device that says nothing of itself is taken for a screen of 96 dots per inch.
    const auto dots = [](double pixels, double size) {
        return pixels > 0 && size > 0 ? pixels / size : 96 / 25.4;
    };
    header.dots = {dots(device.x(), millimetres.x()), dots(device.y(), millimetres.y())};
    return header;
}

drawing::DrawnPage EmfPlay(const QByteArray& bytes, const std::atomic<bool>* cancelled)
{
    const EmfHeader header = EmfReadHeader(bytes);
    drawing::DrawnPage page;
    EmfRecords records(page.drawing);
    records.Context().SetDotsPerMillimetre(header.dots);
    qint64 at = 0;
    page.partial = true; // until the record that ends the file
    for (qint64 count = 0; count < kEmfMostRecords && bytes.size() - at >= 8; ++count) {
        if (cancelled && cancelled->load(std::memory_order_relaxed)) {
            Cancelled();
        }
        const uchar* p = reinterpret_cast<const uchar*>(bytes.constData()) + at;
        const quint32 type = Little32(p);
        const qint64 size = Little32(p + 4);
        if (type == 14) {
            page.partial = false;
            break;
        }
        if (size < 8 || size % 4 != 0 || size > bytes.size() - at || page.drawing.IsFull()) {
            break;
        }
        records.Play(type, QByteArrayView(bytes).sliced(at, size));
        at += size;
    }
    page.partial = page.partial || records.IsCutShort();
    if (page.drawing.IsEmpty() && records.IsPlusAlone()) {
        Unsupported(kEmfName, QStringLiteral("is drawn in EMF+ alone"));
    }
    if (page.drawing.IsEmpty() && page.partial) {
        Damaged(kEmfName, QStringLiteral("it ends before it draws anything"));
    }
    const QRectF frame = header.frame.normalized();
    QRectF view(frame.x() / 100 * header.dots.x(), frame.y() / 100 * header.dots.y(),
                frame.width() / 100 * header.dots.x(), frame.height() / 100 * header.dots.y());
    if (view.isEmpty()) {
        view = header.bounds.normalized();
    }
    if (view.isEmpty()) {
        view = page.drawing.Extents();
    }
    page.unitless = false;
    page.inchWidth = view.width() / header.dots.x() / 25.4;
    page.inchHeight = view.height() / header.dots.y() / 25.4;
    drawing::SettleView(page, view);
    drawing::TakeInFigures(page);
    return page;
}

} // namespace

bool EmfMatches(QByteArrayView head, QStringView)
{
    return EmfIsHeader(head);
}

ImageFacts EmfProbe(ByteSource& source)
{
    return drawing::DrawnFacts(EmfPlay(drawing::DrawnBytes(source, kEmfName), nullptr), kEmfFormat);
}

Bitmap EmfDecode(ByteSource& source, const DecodeRequest& request)
{
    const QByteArray bytes = drawing::DrawnBytes(source, kEmfName);
    return drawing::PaintPage(EmfPlay(bytes, request.cancelled), request, kEmfName);
}

} // namespace quillane::codecs
