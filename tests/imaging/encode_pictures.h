#pragma once
// Pictures for round trips through encoders: smooth, so that lossy variants come close, and with
// every depth that a bitmap holds.
#include "imaging/bitmap.h"
#include <cmath>

namespace quillane::test {

/// 0..1, different for every channel and place.
inline double Wave(int channel, int x, int y, int width, int height)
{
    const double u = double(x + 1) / (width + 1), v = double(y + 1) / (height + 1);
    switch (channel) {
    case 0:
        return 0.5 + 0.45 * std::sin(5 * u + v);
    case 1:
        return u * v;
    case 2:
        return 0.5 + 0.4 * std::cos(4 * v - u);
    default:
        return 0.15 + 0.8 * (1 - u) * v;
    }
}

/// A picture of 1, 4, 8 (palette), 24, 32, 48 or 64 bits; `grey` one of 8 or 16.
inline Bitmap WavePicture(int bits, int width, int height, bool grey = false)
{
    const auto at = [&](int channel, int x, int y, int most) {
        return int(std::lround(Wave(channel, x, y, width, height) * most));
    };
    QImage image;
    ColourModel model = ColourModel::Rgb;
    if (grey || bits == 16) {
        image = QImage(width, height,
                       bits == 16 ? QImage::Format_Grayscale16 : QImage::Format_Grayscale8);
        model = ColourModel::Grey;
    } else if (bits == 1) {
        image = QImage(width, height, QImage::Format_Mono);
        image.setColorTable({0xff000000u, 0xffffffffu});
        model = ColourModel::BlackWhite;
    } else if (bits <= 8) {
        image = QImage(width, height, QImage::Format_Indexed8);
        QList<QRgb> colours;
        for (int i = 0; i < 1 << bits; ++i) {
            colours.append(qRgb(i * 255 / ((1 << bits) - 1), 255 - i, i * 77 % 256));
        }
        image.setColorTable(colours);
        model = ColourModel::Palette;
    } else {
        image = QImage(width, height,
                       bits == 24       ? QImage::Format_RGB32
                           : bits == 32 ? QImage::Format_ARGB32
                           : bits == 48 ? QImage::Format_RGBX64
                                        : QImage::Format_RGBA64);
    }
    for (int y = 0; y < height; ++y) {
        uchar* row = image.scanLine(y);
        auto* words = reinterpret_cast<quint16*>(row);
        auto* pixels = reinterpret_cast<QRgb*>(row);
        for (int x = 0; x < width; ++x) {
            if (model == ColourModel::Grey) {
                if (bits == 16) {
                    words[x] = quint16(at(0, x, y, 65535));
                } else {
                    row[x] = uchar(at(0, x, y, 255));
                }
            } else if (bits == 1) {
                image.setPixel(x, y, (at(0, x, y, 30) + x + y) % 3 == 0 ? 1u : 0u);
            } else if (bits <= 8) {
                row[x] = uchar(at(0, x, y, (1 << bits) - 1));
            } else if (bits <= 32) {
                pixels[x] = qRgba(at(0, x, y, 255), at(1, x, y, 255), at(2, x, y, 255),
                                  bits == 24 ? 255 : at(3, x, y, 255));
            } else {
                for (int i = 0; i < 4; ++i) {
                    words[x * 4 + i] =
                        i == 3 && bits == 48 ? quint16(65535) : quint16(at(i, x, y, 65535));
                }
            }
        }
    }
    return Bitmap(std::move(image), model, bits);
}

/// Four channels of ink.
inline Bitmap InkPicture(int width, int height)
{
    QImage image(width, height, QImage::Format_RGBA8888);
    for (int y = 0; y < height; ++y) {
        uchar* row = image.scanLine(y);
        for (int i = 0; i < width * 4; ++i) {
            row[i] = uchar(std::lround(Wave(i % 4, i / 4, y, width, height) * 255));
        }
    }
    return Bitmap(std::move(image), ColourModel::Cmyk, 32);
}

/// Peak signal-to-noise ratio in decibels of two pictures' 8-bit red, green and blue; 99 for
/// equal ones, 0 for different sizes.
inline double Psnr(const QImage& one, const QImage& other)
{
    if (one.size() != other.size()) {
        return 0;
    }
    const QImage a = one.convertToFormat(QImage::Format_RGB888);
    const QImage b = other.convertToFormat(QImage::Format_RGB888);
    double sum = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int i = 0; i < a.width() * 3; ++i) {
            const double d = a.constScanLine(y)[i] - b.constScanLine(y)[i];
            sum += d * d;
        }
    }
    const double mean = sum / (3.0 * a.width() * a.height());
    return mean == 0 ? 99 : 10 * std::log10(255 * 255 / mean);
}

} // namespace quillane::test
