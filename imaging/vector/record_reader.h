#pragma once
#include <QByteArrayView>
#include <QPointF>
#include <QRectF>
#include <optional>
#include <vector>

namespace quillane::drawing {

/// Numbers of one record, lowest byte first, one after the other. What stands behind the record's
/// end reads as 0, and HasEnded says so.
class RecordReader {
public:
    explicit RecordReader(QByteArrayView bytes) : mBytes(bytes) { }

    quint8 U8() { return quint8(Number(1)); }
    quint16 U16() { return quint16(Number(2)); }
    qint16 I16() { return qint16(Number(2)); }
    quint32 U32() { return quint32(Number(4)); }
    qint32 I32() { return qint32(Number(4)); }
    /// A 32-bit floating number; 0 for what is none.
    float F32();
    /// A point of two 16-bit numbers, x first.
    QPointF Point16();
    /// A point of two 32-bit numbers, x first.
    QPointF Point32();
    /// That many points, as far as the record has them.
    std::vector<QPointF> Points(qint64 count, bool wide);
    void Skip(qint64 count) { mAt = count > Left() ? mBytes.size() : mAt + qMax<qint64>(count, 0); }
    /// Goes to that byte of the record.
    void Seek(qint64 to) { mAt = to < 0 || to > mBytes.size() ? mBytes.size() : to; }
    qint64 At() const { return mAt; }
    qint64 Left() const { return mBytes.size() - mAt; }
    /// The next bytes, fewer at the end.
    QByteArrayView Bytes(qint64 count);
    /// A part of the record by position; empty when it does not lie inside.
    QByteArrayView Part(qint64 from, qint64 count) const;
    bool HasEnded() const { return mEnded; }

private:
    quint32 Number(int bytes);
    QByteArrayView mBytes;
    qint64 mAt = 0;
    bool mEnded = false;
};

} // namespace quillane::drawing
