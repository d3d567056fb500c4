#include "processing_support.h"
#include "imaging/processing/tone.h"
#include <cstring>

namespace quillane::processing {

namespace {

Bitmap Finish(QImage pixels, const Layout& layout)
{
    return Bitmap(std::move(pixels), layout.model, 24);
}

QImage Blank(const Layout& layout, int width, int height)
{
    QImage pixels(width, height, layout.format);
    pixels.fill(0);
    if (layout.model == ColourModel::BlackWhite) {
        pixels.setColorTable({qRgb(0, 0, 0), qRgb(255, 255, 255)});
    }
    if (layout.model == ColourModel::Palette) {
        QList<QRgb> colours;
        for (int i = 0; i < 256; ++i) {
            colours.append(qRgb(i, 255 - i, i / 2));
        }
        pixels.setColorTable(colours);
    }
    return pixels;
}

} // namespace

Bitmap MakePicture(const Layout& layout, int width, int height)
{
    QImage pixels = Blank(layout, width, height);
    const int bytes = (width * pixels.depth() + 7) / 8;
    quint32 state = 12345;
    for (int y = 0; y < height; ++y) {
        uchar* row = pixels.scanLine(y);
        for (int i = 0; i < bytes; ++i) {
            state = state * 1664525u + 1013904223u;
            // Slow waves with a little noise, so that there are areas and edges.
            row[i] = uchar((i * 3 + y * 5 + int(state >> 28)) & 0xff);
        }
        for (int x = 0; x < width; ++x) {
            if (layout.format == QImage::Format_RGB32) {
                row[4 * x + 3] = 0xff;
            } else if (layout.format == QImage::Format_RGBX64) {
                row[8 * x + 6] = row[8 * x + 7] = 0xff;
            }
        }
    }
    return Finish(std::move(pixels), layout);
}

Bitmap MakeConstant(const Layout& layout, int width, int height, int value)
{
    QImage pixels = Blank(layout, width, height);
    for (int y = 0; y < height; ++y) {
        uchar* row = pixels.scanLine(y);
        std::memset(row, layout.format == QImage::Format_Mono ? (value >= 128 ? 255 : 0) : value,
                    size_t((width * pixels.depth() + 7) / 8));
        for (int x = 0; x < width; ++x) {
            if (layout.model == ColourModel::Rgb && pixels.depth() == 32) {
                row[4 * x + 3] = 0xff;
            } else if (pixels.depth() == 64) {
                row[8 * x + 6] = row[8 * x + 7] = 0xff;
            }
        }
    }
    return Finish(std::move(pixels), layout);
}

Bitmap MakeColour(QRgb colour, int width, int height)
{
    QImage pixels(width, height, QImage::Format_RGB32);
    pixels.fill(colour);
    return Bitmap(std::move(pixels), ColourModel::Rgb, 24);
}

testing::AssertionResult SamePixels(const QImage& a, const QImage& b)
{
    if (a.format() != b.format() || a.size() != b.size()) {
        return testing::AssertionFailure()
            << "other layout or size: " << a.format() << " and " << b.format() << ", " << a.width()
            << " x " << a.height() << " and " << b.width() << " x " << b.height();
    }
    if (a.colorTable() != b.colorTable()) {
        return testing::AssertionFailure() << "another colour table";
    }
    const size_t bytes = size_t(a.width()) * size_t(a.depth()) / 8;
    for (int y = 0; y < a.height(); ++y) {
        if (std::memcmp(a.constScanLine(y), b.constScanLine(y), bytes) != 0) {
            return testing::AssertionFailure() << "row " << y << " differs";
        }
        for (int x = int(bytes) * 8 / a.depth(); x < a.width(); ++x) {
            if (a.pixelIndex(x, y) != b.pixelIndex(x, y)) {
                return testing::AssertionFailure() << "row " << y << " differs";
            }
        }
    }
    return testing::AssertionSuccess();
}

int LargestDifference(const Bitmap& a, const Bitmap& b)
{
    // Not weighed with alpha, which would blur what is nearly transparent.
    const auto shown = [](const Bitmap& picture) {
        const QImage pixels =
            picture.Model() == ColourModel::Cmyk ? picture.ToDisplay() : picture.Pixels();
        return pixels.convertToFormat(QImage::Format_ARGB32);
    };
    const QImage first = shown(a);
    const QImage second = shown(b);
    EXPECT_EQ(first.size(), second.size());
    int largest = 0;
    for (int y = 0; y < first.height(); ++y) {
        for (int x = 0; x < first.width(); ++x) {
            const QRgb p = first.pixel(x, y);
            const QRgb q = second.pixel(x, y);
            largest = std::max({largest, std::abs(qRed(p) - qRed(q)),
                                std::abs(qGreen(p) - qGreen(q)), std::abs(qBlue(p) - qBlue(q))});
        }
    }
    return largest;
}

Bitmap InEffect(const Bitmap& picture)
{
    return processing::Brightness(picture, nullptr, 0);
}

QRgb ColourAt(const Bitmap& picture, int x, int y)
{
    return picture.Pixels().pixel(x, y);
}

} // namespace quillane::processing
