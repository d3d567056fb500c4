#include "widgets/picture_rows.h"
#include "widgets/picture_source.h"
#include <algorithm>
#include <cmath>
#include <vector>

namespace quillane {

namespace {

/// The pixel of the source under the centre of each new one along one side.
std::vector<int> SamplePlaces(int first, int count, double step, double extent)
{
    const int most = std::max(0, int(std::ceil(extent)) - 1);
    std::vector<int> places;
    places.reserve(size_t(count));
    for (int i = first; i < first + count; ++i) {
        places.push_back(std::clamp(int((i + 0.5) * step), 0, most));
    }
    return places;
}

template <typename Pixel>
void SampleCopy(const QImage& from, QImage& to, const std::vector<int>& across,
                const std::vector<int>& down)
{
    for (size_t y = 0; y < down.size(); ++y) {
        const auto* in = reinterpret_cast<const Pixel*>(from.constScanLine(down[y]));
        auto* out = reinterpret_cast<Pixel*>(to.scanLine(int(y)));
        if (y > 0 && down[y] == down[y - 1]) {
            std::copy_n(reinterpret_cast<const Pixel*>(to.constScanLine(int(y) - 1)), across.size(),
                        out);
            continue;
        }
        for (size_t x = 0; x < across.size(); ++x) {
            out[x] = in[across[x]];
        }
    }
}

/// Samples of a picture of one channel.
QImage SampleLookedUp(const PictureSource& source, const std::vector<int>& across,
                      const std::vector<int>& down)
{
    const QImage& pixels = source.bitmap.Pixels();
    PictureRows table(source, 0, 1);
    const bool bits = pixels.format() == QImage::Format_Mono;
    QImage made(int(across.size()), int(down.size()),
                table.HasAlpha() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
    if (made.isNull()) {
        return {};
    }
    for (size_t y = 0; y < down.size(); ++y) {
        const uchar* const in = pixels.constScanLine(down[y]);
        QRgb* const out = reinterpret_cast<QRgb*>(made.scanLine(int(y)));
        for (size_t x = 0; x < across.size(); ++x) {
            const int at = across[x];
            const int value = !bits ? in[at] : (in[at >> 3] & (0x80 >> (at & 7))) != 0 ? 255 : 0;
            out[x] = table.Colours()[size_t(value)];
        }
    }
    return made;
}

QImage SampleAt(const PictureSource& source, const std::vector<int>& across,
                const std::vector<int>& down)
{
    const QImage& pixels = source.bitmap.Pixels();
    if (PictureRows(source, 0, 1).Channels() == 1) {
        return SampleLookedUp(source, across, down);
    }
    QImage samples(int(across.size()), int(down.size()), pixels.format());
    if (samples.isNull()) {
        return {};
    }
    samples.setColorTable(pixels.colorTable());
    switch (pixels.depth()) {
    case 8:
        SampleCopy<quint8>(pixels, samples, across, down);
        break;
    case 16:
        SampleCopy<quint16>(pixels, samples, across, down);
        break;
    case 32:
        SampleCopy<quint32>(pixels, samples, across, down);
        break;
    case 64:
        SampleCopy<quint64>(pixels, samples, across, down);
        break;
    default:
        return {};
    }
    Bitmap piece(std::move(samples), source.bitmap.Model(), source.bitmap.FileDepth());
    piece.SetIcc(source.bitmap.Icc());
    return piece.ToDisplay();
}

/// Two neighbours and how much of the second is mixed in, of 256.
struct SoftPlace {
    int first, second;
    quint32 share;
};

std::vector<SoftPlace> SoftPlaces(int first, int count, double step, double extent, int& from,
                                  int& to)
{
    const int most = std::max(0, int(std::ceil(extent)) - 1);
    std::vector<SoftPlace> places;
    places.reserve(size_t(count));
    for (int i = first; i < first + count; ++i) {
        const double at = std::clamp((i + 0.5) * step - 0.5, 0.0, double(most));
        const int whole = int(at);
        places.push_back({whole, std::min(whole + 1, most), quint32((at - whole) * 256)});
    }
    from = places.front().first;
    to = places.back().second + 1;
    for (SoftPlace& place : places) {
        place.first -= from;
        place.second -= from;
    }
    return places;
}

/// Mixes four channels of eight bits at once.
QRgb SoftMix(QRgb a, QRgb b, quint32 share)
{
    const quint32 rest = 256 - share;
    const quint32 even = (((a & 0xff00ffu) * rest + (b & 0xff00ffu) * share) >> 8) & 0xff00ffu;
    const quint32 odd =
        (((a >> 8) & 0xff00ffu) * rest + ((b >> 8) & 0xff00ffu) * share) & 0xff00ff00u;
    return even | odd;
}

} // namespace

QImage NearestPart(const PictureSource& source, QSize shown, const QRect& part)
{
    if (source.IsEmpty() || part.isEmpty()) {
        return {};
    }
    return SampleAt(source,
                    SamplePlaces(part.left(), part.width(), source.extent.width() / shown.width(),
                                 source.extent.width()),
                    SamplePlaces(part.top(), part.height(), source.extent.height() / shown.height(),
                                 source.extent.height()));
}

QImage SoftPart(const PictureSource& source, QSize shown, const QRect& part)
{
    if (source.IsEmpty() || part.isEmpty()) {
        return {};
    }
    int left = 0, right = 0, top = 0, bottom = 0;
    const std::vector<SoftPlace> across =
        SoftPlaces(part.left(), part.width(), source.extent.width() / shown.width(),
                   source.extent.width(), left, right);
    const std::vector<SoftPlace> down =
        SoftPlaces(part.top(), part.height(), source.extent.height() / shown.height(),
                   source.extent.height(), top, bottom);
    std::vector<int> columns(static_cast<size_t>(right - left));
    std::vector<int> rows(static_cast<size_t>(bottom - top));
    for (size_t i = 0; i < columns.size(); ++i) {
        columns[i] = left + int(i);
    }
    for (size_t i = 0; i < rows.size(); ++i) {
        rows[i] = top + int(i);
    }
    const QImage samples = SampleAt(source, columns, rows);
    QImage made(part.size(), samples.format());
    if (samples.isNull() || made.isNull()) {
        return {};
    }
    // Enlarged, a row has fewer samples than pixels: they are mixed downwards first.
    std::vector<QRgb> mixed(columns.size());
    for (int y = 0; y < part.height(); ++y) {
        const SoftPlace& row = down[size_t(y)];
        const QRgb* const upper = reinterpret_cast<const QRgb*>(samples.constScanLine(row.first));
        const QRgb* const lower = reinterpret_cast<const QRgb*>(samples.constScanLine(row.second));
        for (size_t x = 0; x < mixed.size(); ++x) {
            mixed[x] = SoftMix(upper[x], lower[x], row.share);
        }
        QRgb* const out = reinterpret_cast<QRgb*>(made.scanLine(y));
        for (int x = 0; x < part.width(); ++x) {
            const SoftPlace& column = across[size_t(x)];
            out[x] =
                SoftMix(mixed[size_t(column.first)], mixed[size_t(column.second)], column.share);
        }
    }
    return made;
}

} // namespace quillane
