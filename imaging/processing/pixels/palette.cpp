#include "imaging/processing/pixels/palette.h"
#include "core/failure.h"
#include "imaging/processing/pixels/pixel_work.h"
#include <QHash>
#include <algorithm>
#include <array>
#include <libimagequant.h>
#include <memory>
#include <vector>

namespace quillane::processing {

namespace {

struct QuantizerFree {
    void operator()(liq_attr* attributes) const { liq_attr_destroy(attributes); }
    void operator()(liq_image* image) const { liq_image_destroy(image); }
    void operator()(liq_result* result) const { liq_result_destroy(result); }
};
template <typename Part> using QuantizerPart = std::unique_ptr<Part, QuantizerFree>;

/// The library's setting from 1, the best, to 10. Beyond 6 it takes short cuts in dithering; for
/// pictures of photographs' size the steps below it cost seconds and are not seen.
constexpr int kQuantizerSpeed = 5;
constexpr int kQuantizerSpeedOfLarge = 7;
constexpr qint64 kQuantizerLargePixels = 4'000'000;

void CheckQuantizer(liq_error error)
{
    if (error == LIQ_OUT_OF_MEMORY) {
        FailForMemory();
    }
    if (error != LIQ_OK) {
        throw Failure(kFailureGeneral,
                      QStringLiteral("The number of colours could not be reduced (error %1).")
                          .arg(int(error)));
    }
}

template <typename Part> QuantizerPart<Part> CheckQuantizer(Part* part)
{
    if (!part) {
        FailForMemory();
    }
    return QuantizerPart<Part>(part);
}

/// Called by the library, on any of its threads, for a row of the picture.
void QuantizerRow(liq_color* out, int row, int width, void* info)
{
    const auto* pixels = static_cast<const QImage*>(info);
    const QRgb* in = reinterpret_cast<const QRgb*>(pixels->constScanLine(row));
    const bool opaque = pixels->format() == QImage::Format_RGB32;
    for (int x = 0; x < width; ++x) {
        out[x] = {uchar(qRed(in[x])), uchar(qGreen(in[x])), uchar(qBlue(in[x])),
                  opaque ? uchar(255) : uchar(qAlpha(in[x]))};
    }
}

liq_color QuantizerColour(QRgb colour)
{
    return {uchar(qRed(colour)), uchar(qGreen(colour)), uchar(qBlue(colour)),
            uchar(qAlpha(colour))};
}

/// A set of at most 256 colours with their places, looked up once a pixel.
class FewColours {
public:
    FewColours() { mPlaces.fill(-1); }
    /// Place of a colour, which is added when new; -1 when that would be one too many.
    int Add(QRgb colour, int most)
    {
        size_t slot = Slot(colour);
        while (mPlaces[slot] >= 0) {
            if (mColours[mPlaces[slot]] == colour) {
                return mPlaces[slot];
            }
            slot = (slot + 1) % kSlots;
        }
        if (mColours.size() >= most) {
            return -1;
        }
        mPlaces[slot] = qint16(mColours.size());
        mColours.append(colour);
        return mPlaces[slot];
    }
    const QList<QRgb>& Colours() const { return mColours; }

private:
    static constexpr size_t kSlots = 1024;
    static size_t Slot(QRgb colour) { return (colour * 0x9e3779b1u) >> 22; }
    std::array<qint16, kSlots> mPlaces;
    QList<QRgb> mColours;
};

} // namespace

std::optional<QImage> ExactPalette(const QImage& pixels, int most)
{
    FewColours colours;
    const QRgb opaque = pixels.format() == QImage::Format_RGB32 ? 0xff000000u : 0;
    // Most pictures show within a few rows that they have more: counted first, written then.
    for (int y = 0; y < pixels.height(); ++y) {
        const QRgb* in = reinterpret_cast<const QRgb*>(pixels.constScanLine(y));
        for (int x = 0; x < pixels.width(); ++x) {
            if ((x == 0 || in[x] != in[x - 1]) && colours.Add(in[x] | opaque, most) < 0) {
                return std::nullopt;
            }
        }
    }
    QList<QRgb> sorted = colours.Colours();
    std::sort(sorted.begin(), sorted.end(),
              [](QRgb a, QRgb b) { return std::pair(qGray(a), a) < std::pair(qGray(b), b); });
    FewColours places;
    for (const QRgb colour : sorted) {
        places.Add(colour, most);
    }
    QImage result = BlankPixels(pixels.size(), QImage::Format_Indexed8);
    result.setColorTable(sorted);
    for (int y = 0; y < pixels.height(); ++y) {
        const QRgb* in = reinterpret_cast<const QRgb*>(pixels.constScanLine(y));
        uchar* out = result.scanLine(y);
        for (int x = 0; x < pixels.width(); ++x) {
            out[x] =
                x > 0 && in[x] == in[x - 1] ? out[x - 1] : uchar(places.Add(in[x] | opaque, most));
        }
    }
    return result;
}

QImage ReducedPalette(const QImage& pixels, int most, const QList<QRgb>& given, DitherChoice dither)
{
    const auto attributes = CheckQuantizer(liq_attr_create());
    const bool large = qint64(pixels.width()) * pixels.height() > kQuantizerLargePixels;
    // Where fewer are given, the library would add some of its own.
    const int wanted = given.isEmpty() ? most : int(given.size());
    CheckQuantizer(liq_set_max_colors(attributes.get(), wanted));
    CheckQuantizer(
        liq_set_speed(attributes.get(), large ? kQuantizerSpeedOfLarge : kQuantizerSpeed));
    const auto image = CheckQuantizer(liq_image_create_custom(attributes.get(), QuantizerRow,
                                                              const_cast<QImage*>(&pixels),
                                                              pixels.width(), pixels.height(), 0));
    for (const QRgb colour : given) {
        CheckQuantizer(liq_image_add_fixed_color(image.get(), QuantizerColour(colour)));
    }
    liq_result* made = nullptr;
    CheckQuantizer(liq_image_quantize(image.get(), attributes.get(), &made));
    const auto result = CheckQuantizer(made);
    CheckQuantizer(
        liq_set_dithering_level(result.get(), dither == DitherChoice::None ? 0.0f : 1.0f));
    QImage reduced = BlankPixels(pixels.size(), QImage::Format_Indexed8);
    std::vector<uchar*> rows;
    rows.reserve(size_t(reduced.height()));
    for (int y = 0; y < reduced.height(); ++y) {
        rows.push_back(reduced.scanLine(y));
    }
    CheckQuantizer(liq_write_remapped_image_rows(result.get(), image.get(), rows.data()));
    const liq_palette* palette = liq_get_palette(result.get());
    QList<QRgb> colours;
    colours.reserve(int(palette->count));
    for (unsigned i = 0; i < palette->count; ++i) {
        const liq_color& colour = palette->entries[i];
        colours.append(qRgba(colour.r, colour.g, colour.b, colour.a));
    }
    reduced.setColorTable(colours);
    return reduced;
}

QList<QRgb> FixedColours(int most)
{
    // The eye tells greens apart best, blues least: 2 x 4 x 2 and 6 x 7 x 6 levels.
    const int reds = most >= 252 ? 6 : 2;
    const int greens = most >= 252 ? 7 : 4;
    const int blues = reds;
    QList<QRgb> colours;
    colours.reserve(reds * greens * blues);
    for (int red = 0; red < reds; ++red) {
        for (int green = 0; green < greens; ++green) {
            for (int blue = 0; blue < blues; ++blue) {
                colours.append(qRgb(red * 255 / (reds - 1), green * 255 / (greens - 1),
                                    blue * 255 / (blues - 1)));
            }
        }
    }
    return colours;
}

QList<QRgb> GreyColours(int most)
{
    QList<QRgb> colours;
    colours.reserve(most);
    for (int i = 0; i < most; ++i) {
        const int value = i * 255 / (most - 1);
        colours.append(qRgb(value, value, value));
    }
    return colours;
}

QImage BlackAndWhite(const QImage& grey, DitherChoice dither)
{
    QImage result = BlankPixels(grey.size(), QImage::Format_Mono);
    result.setColorTable({qRgb(0, 0, 0), qRgb(255, 255, 255)});
    const int width = grey.width();
    // Errors of this row and the next, in sixteenths, with a place more at each end. Rows are
    // walked to and fro, so that no pattern leans to one side.
    std::vector<int> now(size_t(width) + 2, 0);
    std::vector<int> next(size_t(width) + 2, 0);
    for (int y = 0; y < grey.height(); ++y) {
        const uchar* in = grey.constScanLine(y);
        uchar* out = result.scanLine(y);
        std::fill_n(out, result.bytesPerLine(), uchar(0));
        const int step = y % 2 == 0 ? 1 : -1;
        for (int x = step > 0 ? 0 : width - 1; x >= 0 && x < width; x += step) {
            const int wanted = in[x] + (dither == DitherChoice::None ? 0 : now[size_t(x) + 1] / 16);
            const bool white = wanted >= 128;
            if (white) {
                out[x >> 3] = uchar(out[x >> 3] | 0x80 >> (x & 7));
            }
            const int error = wanted - (white ? 255 : 0);
            const size_t at = size_t(x) + 1;
            now[at + size_t(step)] += error * 7;
            next[at - size_t(step)] += error * 3;
            next[at] += error * 5;
            next[at + size_t(step)] += error;
        }
        now.swap(next);
        std::fill(next.begin(), next.end(), 0);
    }
    return result;
}

} // namespace quillane::processing
