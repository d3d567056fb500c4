#include "imaging/worker/picture_rows.h"
#include "core/failure.h"
#include <algorithm>
#include <cstring>

namespace quillane::worker {

namespace {

constexpr QRgb kRowsBlack = 0xff000000u, kRowsWhite = 0xffffffffu;

bool LayoutOf(QImage::Format format, ColourModel model, PixelLayout& layout)
{
    switch (format) {
    case QImage::Format_Mono:
        layout = PixelLayout::Mono;
        return true;
    case QImage::Format_Indexed8:
        layout = PixelLayout::Indexed8;
        return true;
    case QImage::Format_Grayscale8:
        layout = PixelLayout::Grey8;
        return true;
    case QImage::Format_Grayscale16:
        layout = PixelLayout::Grey16;
        return true;
    case QImage::Format_RGB32:
        layout = PixelLayout::Rgb32;
        return true;
    case QImage::Format_ARGB32:
        layout = PixelLayout::Argb32;
        return true;
    case QImage::Format_RGBX64:
        layout = PixelLayout::Rgbx64;
        return true;
    case QImage::Format_RGBA64:
        layout = PixelLayout::Rgba64;
        return true;
    case QImage::Format_RGBA8888:
        layout = PixelLayout::Cmyk32;
        return model == ColourModel::Cmyk;
    default:
        return false;
    }
}

} // namespace

PictureRowReader::PictureRowReader(const Bitmap& picture)
    : mPixels(picture.Pixels()),
      mFileDepth(picture.FileDepth())
{
    if (mPixels.isNull()) {
        return;
    }
    if (mPixels.format() == QImage::Format_Mono) {
        const QList<QRgb> colours = mPixels.colorTable();
        const QRgb zero = colours.value(0, kRowsBlack), one = colours.value(1, kRowsWhite);
        mInverted = zero == kRowsWhite && one == kRowsBlack;
        if (!mInverted && (zero != kRowsBlack || one != kRowsWhite)) {
            mPixels.convertTo(QImage::Format_Indexed8);
        }
    }
    if (!LayoutOf(mPixels.format(), picture.Model(), mLayout)) {
        mPixels.convertTo(mPixels.hasAlphaChannel() ? QImage::Format_ARGB32 : QImage::Format_RGB32);
        LayoutOf(mPixels.format(), ColourModel::Rgb, mLayout);
    }
    if (mPixels.isNull()) {
        throw Failure(kFailureLimit,
                      QStringLiteral("There is not enough memory for this picture."));
    }
    mRowBytes = worker::RowBytes(mPixels.width(), BitsOf(mLayout));
}

void PictureRowReader::Describe(EncodeMessage& message) const
{
    message.width = mPixels.width();
    message.height = mPixels.height();
    message.layout = mLayout;
    message.fileDepth = mFileDepth;
    if (mLayout == PixelLayout::Indexed8) {
        const QList<QRgb> colours = mPixels.colorTable();
        message.colourCount = qint32(std::min<qsizetype>(colours.size(), kMaxColours));
        std::copy_n(colours.begin(), message.colourCount, message.colours);
    }
}

void PictureRowReader::CopyRow(qint64 y, uchar* to) const
{
    const uchar* from = mPixels.constScanLine(int(y));
    const auto bytes = std::min<qint64>(mRowBytes, mPixels.bytesPerLine());
    if (mInverted) {
        std::transform(from, from + bytes, to, [](uchar value) { return uchar(~value); });
    } else {
        std::memcpy(to, from, size_t(bytes));
    }
}

} // namespace quillane::worker
