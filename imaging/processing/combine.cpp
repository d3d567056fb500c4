#include "imaging/processing/combine.h"
#include "core/failure.h"
#include "imaging/processing/depth.h"
#include "imaging/processing/pixels/levels.h"
#include <algorithm>

namespace quillane::processing {

namespace {

enum class CombineWay : quint8 { Add, AddWeighed, LayOver };

/// The source in the picture's layout; its own alpha, if any, in the fourth channel.
Bitmap CombineSource(const Bitmap& source, const Bitmap& picture)
{
    switch (picture.Bits()) {
    case 8:
    case 16:
        return ToDepth(source, picture.Bits());
    case 48:
    case 64:
        return ToDepth(source, source.Pixels().hasAlphaChannel() ? 64 : 48);
    default:
        return ToDepth(source, source.Pixels().hasAlphaChannel() ? 32 : 24);
    }
}

template <typename Value>
void CombineRows(const cv::Mat& in, const cv::Mat& source, cv::Mat& out, CombineWay way)
{
    constexpr quint32 kMost = Value(~Value(0));
    for (int y = 0; y < in.rows; ++y) {
        const Value* from = in.ptr<Value>(y);
        const Value* with = source.ptr<Value>(y);
        Value* to = out.ptr<Value>(y);
        for (int x = 0; x < in.cols; ++x, from += 4, with += 4, to += 4) {
            const quint64 alpha = with[3];
            for (int channel = 0; channel < 3; ++channel) {
                const quint64 below = way == CombineWay::LayOver ? from[channel] * (kMost - alpha)
                                                                 : quint64(from[channel]) * kMost;
                to[channel] = Value(
                    std::min<quint64>((below + with[channel] * alpha + kMost / 2) / kMost, kMost));
            }
            to[3] = from[3];
        }
    }
}

/// The part of a span that lies on a picture whose span begins at 0.
struct CombineSpan {
    qint64 to, from, length;
};

CombineSpan CombineSpanOf(qint64 to, qint64 length, qint64 from, qint64 toSize, qint64 fromSize)
{
    const qint64 cut = std::max<qint64>({0, -to, -from});
    return {to + cut, from + cut, std::min({length, toSize - to, fromSize - from}) - cut};
}

} // namespace

Bitmap Combine(const Bitmap& picture, const Region* region, QRect at, const Bitmap& source,
               QPoint from, qint32 flags)
{
    NeedPicture(picture);
    NeedPicture(source);
    if (flags != kCombineAdd) {
        throw Failure(
            kFailureGeneral,
            QStringLiteral("Pictures cannot be combined in the way of number %1.").arg(flags));
    }
    const CombineSpan across =
        CombineSpanOf(at.x(), at.width(), from.x(), picture.Width(), source.Width());
    const CombineSpan down =
        CombineSpanOf(at.y(), at.height(), from.y(), picture.Height(), source.Height());
    Bitmap to = InForm(picture, PixelForm::Full);
    const Bitmap plain = InForm(source, PixelForm::Full);
    if (plain.Model() != ColourModel::Grey) {
        to = InForm(to, PixelForm::Colour);
    }
    if (across.length <= 0 || down.length <= 0) {
        return to;
    }
    const QSize size(to.Width(), to.Height());
    Region where =
        Region::Rectangle(size, int(across.to), int(down.to), int(across.length), int(down.length));
    if (region) {
        where = region->Within(size, where.Bounds());
    }
    if (where.IsEmpty()) {
        return to;
    }
    const Bitmap with = CombineSource(plain, to);
    CombineWay way = CombineWay::Add;
    if (with.Pixels().hasAlphaChannel()) {
        way = to.Pixels().hasAlphaChannel() ? CombineWay::AddWeighed : CombineWay::LayOver;
    }
    const QPoint move(int(across.from - across.to), int(down.from - down.to));
    const Region* const part =
        where.Bounds() == to.Pixels().rect() && where.IsRectangle() ? nullptr : &where;
    const QPoint corner = part ? where.Bounds().topLeft() : QPoint();
    return WorkInBands(to, part, PixelForm::Full, FourthChannel::Kept,
                       [&](const cv::Mat& in, cv::Mat& out, QPoint band) {
                           const QPoint place = corner + band + move;
                           const cv::Mat other = ReadView(with.Pixels())(
                               cv::Rect(place.x(), place.y(), in.cols, in.rows));
                           if (way == CombineWay::Add) {
                               cv::add(in, other, out);
                           } else if (in.depth() == CV_16U) {
                               CombineRows<quint16>(in, other, out, way);
                           } else {
                               CombineRows<uchar>(in, other, out, way);
                           }
                       });
}

} // namespace quillane::processing
