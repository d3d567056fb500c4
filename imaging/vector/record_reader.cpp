#include "imaging/vector/record_reader.h"
#include <bit>
#include <cmath>

namespace quillane::drawing {

quint32 RecordReader::Number(int bytes)
{
    if (Left() < bytes) {
        mEnded = true;
        mAt = mBytes.size();
        return 0;
    }
    quint32 value = 0;
    for (int i = 0; i < bytes; ++i) {
        value |= quint32(uchar(mBytes[mAt + i])) << (8 * i);
    }
    mAt += bytes;
    return value;
}

float RecordReader::F32()
{
    const float value = std::bit_cast<float>(Number(4));
    return std::isfinite(value) ? value : 0;
}

QPointF RecordReader::Point16()
{
    const double x = I16();
    return {x, double(I16())};
}

QPointF RecordReader::Point32()
{
    const double x = I32();
    return {x, double(I32())};
}

std::vector<QPointF> RecordReader::Points(qint64 count, bool wide)
{
    const qint64 there = Left() / (wide ? 8 : 4);
    mEnded = mEnded || count > there;
    std::vector<QPointF> points;
    points.reserve(size_t(qBound<qint64>(0, count, there)));
    for (qint64 i = 0; i < count && i < there; ++i) {
        points.push_back(wide ? Point32() : Point16());
    }
    return points;
}

QByteArrayView RecordReader::Bytes(qint64 count)
{
    const QByteArrayView bytes = mBytes.sliced(mAt, qBound<qint64>(0, count, Left()));
    mAt += bytes.size();
    return bytes;
}

QByteArrayView RecordReader::Part(qint64 from, qint64 count) const
{
    if (from < 0 || count < 0 || from > mBytes.size() || count > mBytes.size() - from) {
        return {};
    }
    return mBytes.sliced(from, count);
}

} // namespace quillane::drawing
