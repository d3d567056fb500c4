#include "imaging/processing/cut_out.h"
#include "core/failure.h"
#include "imaging/processing/depth.h"
#include "imaging/processing/geometry.h"
#include "imaging/processing/pixels/pixel_work.h"

namespace quillane::processing {

namespace {

/// Pixels outside a mask lose their colour and become transparent.
template <typename Pixel> void ClearOutside(QImage& pixels, const QImage& mask)
{
    for (int y = 0; y < pixels.height(); ++y) {
        auto* pixel = reinterpret_cast<Pixel*>(pixels.scanLine(y));
        const uchar* inside = mask.constScanLine(y);
        for (int x = 0; x < pixels.width(); ++x) {
            if (!inside[x]) {
                pixel[x] = 0;
            }
        }
    }
}

bool HasSameLayout(const Bitmap& a, const Bitmap& b)
{
    return a.Model() == b.Model() && a.Pixels().format() == b.Pixels().format()
        && a.Pixels().colorTable() == b.Pixels().colorTable() && a.Icc() == b.Icc();
}

} // namespace

Bitmap CutOut(const Bitmap& picture, const Region& region)
{
    NeedPicture(picture);
    const Region part = region.ClippedTo(picture.Pixels().size());
    const Bitmap trimmed = Trim(picture, part.Bounds());
    if (part.IsRectangle()) {
        return trimmed;
    }
    const QImage::Format format = trimmed.Pixels().format();
    const bool deep = trimmed.Pixels().depth() == 64 || format == QImage::Format_Grayscale16;
    const Bitmap full = ToDepth(trimmed, deep ? 64 : 32);
    QImage pixels = full.Pixels();
    if (deep) {
        ClearOutside<quint64>(pixels, part.Mask());
    } else {
        ClearOutside<quint32>(pixels, part.Mask());
    }
    return PictureLike(full, std::move(pixels), ColourModel::Rgb);
}

Bitmap PastedInto(const Bitmap& picture, const Region& region, const Bitmap& pixels, QPoint place)
{
    NeedPicture(picture);
    NeedPicture(pixels);
    Bitmap to = InForm(picture, PixelForm::Stored);
    Bitmap from = InForm(pixels, PixelForm::Stored);
    if (!HasSameLayout(to, from)) {
        to = InForm(to, PixelForm::Full);
        from = InForm(from, PixelForm::Full);
        if (from.Model() != ColourModel::Grey) {
            to = InForm(to, PixelForm::Colour);
        }
        from = from.Bits() == to.Bits() ? from : ToDepth(from, to.Bits());
    }
    const QSize size(to.Width(), to.Height());
    const Region part =
        region.ClippedTo(size).Within(size, QRect(place, QSize(from.Width(), from.Height())));
    if (part.IsEmpty()) {
        return to;
    }
    const QPoint move = part.Bounds().topLeft() - place;
    return WorkInBands(to, &part, PixelForm::Stored, FourthChannel::Written,
                       [&](const cv::Mat& in, cv::Mat& out, QPoint at) {
                           ReadView(from.Pixels())(
                               cv::Rect(at.x() + move.x(), at.y() + move.y(), in.cols, in.rows))
                               .copyTo(out);
                       });
}

} // namespace quillane::processing
