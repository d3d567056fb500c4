#include "imaging/thumbs/shown_small.h"

#include "imaging/processing/geometry.h"
#include "imaging/thumbs/area_shrink.h"
#include <QPainter>
#include <algorithm>

namespace quillane {

namespace {

constexpr qint64 kShownAtOnce = 16'000'000; ///< pixels that are converted in one piece
constexpr int kShownSpare = 2; ///< times the wanted side that the first reduction leaves

/// The picture at about twice the wanted size: whole groups of rows are converted and reduced one
/// after the other.
QImage ReducedByBands(const Bitmap& bitmap, QSize size)
{
    const QSize whole = bitmap.Pixels().size();
    const int group = std::max(1,
                               std::min(whole.width() / (kShownSpare * size.width()),
                                        whole.height() / (kShownSpare * size.height())));
    if (group == 1) {
        return bitmap.ToDisplay();
    }
    const int width = (whole.width() + group - 1) / group;
    const int height = (whole.height() + group - 1) / group;
    const int groups = int(std::max<qint64>(1, kShownAtOnce / (qint64(whole.width()) * group)));
    QImage reduced(width, height, QImage::Format_ARGB32_Premultiplied);
    if (reduced.isNull()) {
        return {};
    }
    QPainter painter(&reduced);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    for (int row = 0; row < height; row += groups) {
        const int rows = std::min(groups, height - row);
        const QRect part(0, row * group, whole.width(),
                         std::min(rows * group, whole.height() - row * group));
        const QImage shown = processing::Trim(bitmap, part)
                                 .ToDisplay()
                                 .convertToFormat(QImage::Format_ARGB32_Premultiplied);
        painter.drawImage(0, row, ShrinkByArea(shown, {width, rows}));
    }
    painter.end();
    return bitmap.Pixels().hasAlphaChannel()
        ? reduced
        : std::move(reduced).convertToFormat(QImage::Format_RGB32);
}

} // namespace

QImage ShrunkForDisplay(const Bitmap& bitmap, QSize size)
{
    const QImage& pixels = bitmap.Pixels();
    const bool direct = pixels.format() == QImage::Format_RGB32
        || (bitmap.Model() == ColourModel::Cmyk && pixels.format() == QImage::Format_RGBA8888);
    if (direct) {
        Bitmap small = bitmap;
        small.Pixels() = ShrinkByArea(pixels, size);
        return small.ToDisplay();
    }
    if (pixels.format() == QImage::Format_ARGB32) {
        Bitmap small = bitmap;
        small.Pixels() =
            ShrinkByArea(pixels.convertToFormat(QImage::Format_ARGB32_Premultiplied), size)
                .convertToFormat(QImage::Format_ARGB32);
        return small.ToDisplay();
    }
    if (qint64(pixels.width()) * pixels.height() > kShownAtOnce) {
        return ShrinkByArea(ReducedByBands(bitmap, size), size);
    }
    return ShrinkByArea(bitmap.ToDisplay(), size);
}

} // namespace quillane
