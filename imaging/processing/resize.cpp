#include "imaging/resize.h"
#include "core/failure.h"
#include "imaging/processing/depth.h"
#include "imaging/processing/pixels/warp.h"
#include <algorithm>
#include <opencv2/imgproc.hpp>
#include <vector>

namespace quillane {

namespace {

using processing::BlankPixels;
using processing::CallLibrary;
using processing::ReadView;
using processing::WriteView;

/// Number of the pixel whose area holds the middle of each place.
std::vector<int> ResizePlaces(int from, int to)
{
    std::vector<int> places(static_cast<size_t>(to));
    for (qint64 i = 0; i < to; ++i) {
        places[size_t(i)] = int((2 * i + 1) * from / (2 * qint64(to)));
    }
    return places;
}

template <typename Pixel>
void ResizeNearest(const cv::Mat& in, cv::Mat& out, const std::vector<int>& columns,
                   const std::vector<int>& rows, int top, int bottom)
{
    for (int y = top; y < bottom; ++y) {
        Pixel* to = out.ptr<Pixel>(y);
        if (y > top && rows[size_t(y)] == rows[size_t(y - 1)]) {
            std::copy_n(out.ptr<Pixel>(y - 1), out.cols, to);
            continue;
        }
        const Pixel* from = in.ptr<Pixel>(rows[size_t(y)]);
        for (int x = 0; x < out.cols; ++x) {
            to[x] = from[columns[size_t(x)]];
        }
    }
}

/// The nearest pixel of each place, whatever the layout.
QImage ResizePlainly(const QImage& from, QSize size)
{
    if (from.depth() == 1) {
        const QImage wide = from.convertToFormat(QImage::Format_Indexed8);
        return ResizePlainly(wide, size).convertToFormat(QImage::Format_Mono, wide.colorTable());
    }
    QImage to = BlankPixels(size, from.format());
    to.setColorTable(from.colorTable());
    CallLibrary([&] {
        const cv::Mat in = ReadView(from);
        cv::Mat out = WriteView(to);
        const std::vector<int> columns = ResizePlaces(in.cols, out.cols);
        const std::vector<int> rows = ResizePlaces(in.rows, out.rows);
        processing::ForBands(out.rows, processing::BandRows(out), [&](int top, int bottom) {
            switch (from.depth()) {
            case 8:
                return ResizeNearest<quint8>(in, out, columns, rows, top, bottom);
            case 16:
                return ResizeNearest<quint16>(in, out, columns, rows, top, bottom);
            case 64:
                return ResizeNearest<quint64>(in, out, columns, rows, top, bottom);
            default:
                return ResizeNearest<quint32>(in, out, columns, rows, top, bottom);
            }
        });
    });
    return to;
}

/// Mixed by the library. What falls together is averaged first where a curve would miss pixels.
void ResizeMixed(const cv::Mat& in, cv::Mat& out, ResizeWay way)
{
    const bool smaller = out.cols <= in.cols && out.rows <= in.rows;
    if (way == ResizeWay::Resample) {
        cv::resize(in, out, out.size(), 0, 0, smaller ? cv::INTER_AREA : cv::INTER_LINEAR);
        return;
    }
    const int across = std::max(1, in.cols / out.cols);
    const int down = std::max(1, in.rows / out.rows);
    if (across == 1 && down == 1) {
        cv::resize(in, out, out.size(), 0, 0, cv::INTER_CUBIC);
        return;
    }
    cv::Mat fewer;
    cv::resize(in, fewer, cv::Size((in.cols + across - 1) / across, (in.rows + down - 1) / down), 0,
               0, cv::INTER_AREA);
    cv::resize(fewer, out, out.size(), 0, 0, cv::INTER_CUBIC);
}

QImage ResizeSmoothly(const QImage& from, QSize size, ResizeWay way)
{
    const QImage weighed = processing::WithWeighedColours(from);
    QImage to = BlankPixels(size, weighed.format());
    CallLibrary([&] {
        cv::Mat out = WriteView(to);
        ResizeMixed(ReadView(weighed), out, way);
        if (weighed.format() != from.format()) {
            // A curve overshoots; a colour is never above the alpha it is weighed with.
            processing::CapByAlpha(out);
        }
    });
    return processing::WithPlainColours(std::move(to), from.format());
}

} // namespace

Bitmap Resized(const Bitmap& bitmap, QSize size, ResizeWay way)
{
    if (bitmap.IsNull() || bitmap.Pixels().size() == size) {
        return bitmap;
    }
    if (size.isEmpty()) {
        throw Failure(kFailureGeneral, QStringLiteral("A picture has at least one pixel."));
    }
    if (way == ResizeWay::Plain) {
        return processing::PictureLike(bitmap, ResizePlainly(bitmap.Pixels(), size),
                                       bitmap.Model());
    }
    // Inks mix as well as light does; indexes do not.
    const Bitmap from = bitmap.Model() == ColourModel::Cmyk
        ? bitmap
        : processing::InForm(bitmap, processing::PixelForm::Full);
    return processing::PictureLike(from, ResizeSmoothly(from.Pixels(), size, way), from.Model());
}

Bitmap AtDepth(const Bitmap& bitmap, qint32 bits)
{
    if (bitmap.IsNull() || bitmap.Bits() == bits) {
        return bitmap;
    }
    return processing::ToDepth(bitmap, bits);
}

} // namespace quillane
