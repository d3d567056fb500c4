#include "imaging/processing/text.h"
#include "imaging/processing/pixels/colour_pixels.h"
#include "imaging/processing/pixels/levels.h"
#include <QFontMetrics>
#include <QPainter>
#include <QStringList>
#include <algorithm>
#include <cmath>

namespace quillane::processing {

namespace {

constexpr double kPointsPerInch = 72;
constexpr double kPixelsPerInch = 96;

QFont TextFont(QFont font)
{
    if (font.pointSizeF() > 0) {
        font.setPixelSize(
            std::max(1, int(std::lround(font.pointSizeF() * kPixelsPerInch / kPointsPerInch))));
    }
    // A picture has no screen's order of red, green and blue dots.
    font.setStyleStrategy(QFont::NoSubpixelAntialias);
    return font;
}

QStringList TextLines(QString text)
{
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    text.replace(u'\r', u'\n');
    return text.split(u'\n');
}

/// How much of each pixel of a part of the picture the text covers: grey of 8 bits.
QImage TextCoverage(const QString& text, QPoint place, const QRect& part, const QFont& font)
{
    QImage drawn(part.size(), QImage::Format_ARGB32_Premultiplied);
    if (drawn.isNull()) {
        FailForMemory();
    }
    drawn.fill(0);
    QPainter painter(&drawn);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
    painter.setFont(font);
    painter.setPen(Qt::black);
    const QFontMetrics metrics(font);
    int y = place.y() - part.top() + metrics.ascent();
    for (const QString& line : TextLines(text)) {
        painter.drawText(place.x() - part.left(), y, line);
        y += metrics.lineSpacing();
    }
    painter.end();
    return drawn.convertToFormat(QImage::Format_Alpha8);
}

/// One pixel of paint with a coverage of 0..1 on values that count to `most`.
template <typename Value>
void PaintPixel(Value* pixel, int channels, const cv::Scalar& paint, double cover)
{
    constexpr double kMost = Value(~Value(0));
    const int colours = std::min(channels, 3);
    const double below = channels == 4 ? double(pixel[3]) / kMost : 1;
    const double alpha = cover + below * (1 - cover);
    if (alpha <= 0) {
        return;
    }
    for (int channel = 0; channel < colours; ++channel) {
        const double mixed = paint[channel] * cover + pixel[channel] * below * (1 - cover);
        pixel[channel] = Value(std::lround(std::clamp(mixed / alpha, 0.0, kMost)));
    }
    if (channels == 4) {
        pixel[3] = Value(std::lround(alpha * kMost));
    }
}

template <typename Value>
void PaintText(cv::Mat& out, const QImage& cover, QPoint at, const cv::Scalar& ink,
               const cv::Scalar& paper, bool transparent)
{
    for (int y = 0; y < out.rows; ++y) {
        const uchar* covers = cover.constScanLine(at.y() + y) + at.x();
        Value* pixel = out.ptr<Value>(y);
        for (int x = 0; x < out.cols; ++x, pixel += out.channels()) {
            if (!transparent) {
                PaintPixel(pixel, out.channels(), paper, 1);
            }
            if (covers[x] > 0) {
                PaintPixel(pixel, out.channels(), ink, covers[x] / 255.0);
            }
        }
    }
}

} // namespace

QSize TextSize(const QString& text, const QFont& font)
{
    const QFontMetrics metrics(TextFont(font));
    const QStringList lines = TextLines(text);
    int width = 0;
    for (const QString& line : lines) {
        width = std::max(width, metrics.horizontalAdvance(line));
    }
    return {width, metrics.height() + int(lines.size() - 1) * metrics.lineSpacing()};
}

Bitmap DrawText(const Bitmap& picture, const Region* region, const QString& text, QPoint place,
                const TextStyle& style)
{
    NeedPicture(picture);
    if (text.isEmpty()) {
        return picture;
    }
    const Bitmap from = InFormFor(picture, style.colour);
    const QFont font = TextFont(style.font);
    const QSize size = TextSize(text, style.font);
    // Slanted letters reach over their width; without a background nothing is lost by room.
    const int room = style.transparent ? size.height() : 0;
    const QSize whole(from.Width(), from.Height());
    const Region box = Region::Rectangle(whole, place.x() - room, place.y() - room,
                                         size.width() + 2 * room, size.height() + 2 * room);
    const Region part = region ? region->Within(whole, box.Bounds()) : box;
    if (part.IsEmpty()) {
        return from;
    }
    const QImage cover = TextCoverage(text, place, part.Bounds(), font);
    const cv::Scalar ink = ScalarOf(from.Pixels(), style.colour);
    const cv::Scalar paper = ScalarOf(from.Pixels(), 0xffffffffu);
    return WorkInBands(from, &part, PixelForm::Full, FourthChannel::Written,
                       [&](const cv::Mat& in, cv::Mat& out, QPoint at) {
                           in.copyTo(out);
                           if (in.depth() == CV_16U) {
                               PaintText<quint16>(out, cover, at, ink, paper, style.transparent);
                           } else {
                               PaintText<uchar>(out, cover, at, ink, paper, style.transparent);
                           }
                       });
}

} // namespace quillane::processing
