#pragma once
// Pictures that previews are tried on.
#include "imaging/bitmap.h"
#include <cmath>

namespace quillane {

/// Slow waves in three colours.
inline Bitmap SmoothPicture(QSize size)
{
    QImage pixels(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(pixels.scanLine(y));
        for (int x = 0; x < size.width(); ++x) {
            const auto wave = [](double at) { return int(128 + 90 * std::sin(at * 6.283)); };
            row[x] = qRgb(wave(double(x) / size.width()), wave(double(y) / size.height()),
                          wave(double(x + y) / (size.width() + size.height())));
        }
    }
    return Bitmap(pixels, ColourModel::Rgb, 24);
}

/// The mean difference of two pictures of one size, in levels of 0..255.
inline double MeanDifference(const QImage& one, const QImage& other)
{
    if (one.size() != other.size() || one.isNull()) {
        return 1e9;
    }
    double sum = 0;
    for (int y = 0; y < one.height(); ++y) {
        for (int x = 0; x < one.width(); ++x) {
            const QRgb a = one.pixel(x, y);
            const QRgb b = other.pixel(x, y);
            sum +=
                qAbs(qRed(a) - qRed(b)) + qAbs(qGreen(a) - qGreen(b)) + qAbs(qBlue(a) - qBlue(b));
        }
    }
    return sum / 3 / one.width() / one.height();
}

} // namespace quillane
