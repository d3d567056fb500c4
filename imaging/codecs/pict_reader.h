#pragma once
#include <QByteArray>
#include <QPointF>
#include <QRectF>

namespace quillane::codecs {

/// Numbers of a QuickDraw picture, highest byte first. What stands behind the end reads as 0, and
/// HasEnded says so.
class PictReader {
public:
    explicit PictReader(QByteArrayView bytes) : mBytes(bytes) { }

    quint8 U8() { return quint8(Number(1)); }
    qint8 I8() { return qint8(Number(1)); }
    quint16 U16() { return quint16(Number(2)); }
    qint16 I16() { return qint16(Number(2)); }
    quint32 U32() { return Number(4); }
    qint32 I32() { return qint32(Number(4)); }
    /// Sixteen bits before the point and sixteen behind it.
    double Fixed() { return double(I32()) / 65536; }
    /// The vertical coordinate stands first.
    QPointF Point()
    {
        const int down = I16();
        return {double(I16()), double(down)};
    }
    /// Top, left, bottom, right.
    QRectF Rectangle()
    {
        const QPointF first = Point();
        return {first, Point()};
    }
    /// The next bytes, fewer at the end.
    QByteArrayView Bytes(qint64 count)
    {
        const qint64 there = qBound<qint64>(0, count, Left());
        mEnded = mEnded || there < count;
        const QByteArrayView part = mBytes.sliced(mAt, there);
        mAt += there;
        return part;
    }
    void Skip(qint64 count) { Bytes(count); }
    /// Goes to an even place.
    void Align() { mAt = qMin<qint64>(mAt + (mAt & 1), mBytes.size()); }
    qint64 At() const { return mAt; }
    qint64 Left() const { return mBytes.size() - mAt; }
    bool HasEnded() const { return mEnded; }

private:
    quint32 Number(int bytes)
    {
        quint32 value = 0;
        for (int i = 0; i < bytes; ++i) {
            value = value << 8 | (mAt < mBytes.size() ? quint8(mBytes[mAt]) : 0u);
            mEnded = mEnded || mAt >= mBytes.size();
            mAt += mAt < mBytes.size() ? 1 : 0;
        }
        return value;
    }
    QByteArrayView mBytes;
    qint64 mAt = 0;
    bool mEnded = false;
};

} // namespace quillane::codecs
