#include "imaging/processing/histogram.h"
#include "imaging/processing/pixels/levels.h"
#include <algorithm>
#include <atomic>
#include <bit>
#include <mutex>
#include <vector>

namespace quillane::processing {

namespace {

/// Colours of 24 bits as a set of bits: 2 MB, which a core's cache holds in part.
class ColourBits {
public:
    ColourBits() : mWords(size_t(1) << 18, 0) { }
    void Add(quint32 colour) { mWords[colour >> 6] |= quint64(1) << (colour & 63); }
    void Add(const ColourBits& other)
    {
        for (size_t i = 0; i < mWords.size(); ++i) {
            mWords[i] |= other.mWords[i];
        }
    }
    qint64 Count() const
    {
        qint64 count = 0;
        for (const quint64 word : mWords) {
            count += std::popcount(word);
        }
        return count;
    }

private:
    std::vector<quint64> mWords;
};

/// Pixels of a region, or all of them.
struct CountedPixels {
    cv::Mat in, mask; ///< the mask is empty where all count
};

CountedPixels CountedPixelsOf(const QImage& pixels, const Region& part)
{
    const QRect bounds = part.Bounds();
    return {ReadView(pixels)(cv::Rect(bounds.x(), bounds.y(), bounds.width(), bounds.height())),
            part.IsRectangle() ? cv::Mat() : ReadView(part.Mask())};
}

qint64 CountColours24(const CountedPixels& counted)
{
    ColourBits all;
    std::mutex mutex;
    ForBands(counted.in.rows, std::max(64, counted.in.rows / cv::getNumThreads() + 1),
             [&](int top, int bottom) {
                 ColourBits bits;
                 for (int y = top; y < bottom; ++y) {
                     const auto* row = reinterpret_cast<const quint32*>(counted.in.ptr(y));
                     const uchar* inside = counted.mask.empty() ? nullptr : counted.mask.ptr(y);
                     quint32 last = ~0u;
                     for (int x = 0; x < counted.in.cols; ++x) {
                         const quint32 colour = row[x] & 0xffffff;
                         if (colour != last && (!inside || inside[x])) {
                             bits.Add(colour);
                             last = colour;
                         }
                     }
                 }
                 const std::lock_guard lock(mutex);
                 all.Add(bits);
             });
    return all.Count();
}

/// Colours of more bits are told apart by sorting. One of these parts of them at a time, so that
/// their list stays small.
constexpr quint64 kColourParts = 16;

template <typename Pixel> quint64 WideColour(Pixel pixel)
{
    // RGBA64 has alpha on top; CMYK has four inks and all of them count.
    return sizeof(Pixel) == 8 ? quint64(pixel) & 0xffffffffffffull : quint64(pixel);
}

template <typename Pixel> qint64 CountWideColours(const CountedPixels& counted)
{
    std::atomic<qint64> count = 0;
    ForBands(int(kColourParts), 1, [&](int part, int) {
        std::vector<quint64> colours;
        for (int y = 0; y < counted.in.rows; ++y) {
            const auto* row = reinterpret_cast<const Pixel*>(counted.in.ptr(y));
            const uchar* inside = counted.mask.empty() ? nullptr : counted.mask.ptr(y);
            for (int x = 0; x < counted.in.cols; ++x) {
                const quint64 colour = WideColour(row[x]);
                // Spread by multiplication, so that similar colours do not share a part.
                const quint64 mixed = colour * 0x9e3779b97f4a7c15ull;
                if (mixed >> 60 == quint64(part) && (!inside || inside[x])
                    && (colours.empty() || colours.back() != colour)) {
                    colours.push_back(colour);
                }
            }
        }
        std::sort(colours.begin(), colours.end());
        count += std::unique(colours.begin(), colours.end()) - colours.begin();
    });
    return count;
}

} // namespace

qint64 UniqueColors(const Bitmap& picture, const Region* region)
{
    NeedPicture(picture);
    const bool inks = picture.Model() == ColourModel::Cmyk;
    const Bitmap from = inks ? picture : InForm(picture, PixelForm::Full);
    const QImage& pixels = from.Pixels();
    if (from.Model() == ColourModel::Grey) {
        const LevelCounts counts = CountLevels(from, region, CountedLevels::Intensity);
        return std::count_if(counts.intensity.begin(), counts.intensity.end(),
                             [](qint64 level) { return level > 0; });
    }
    const QSize size(from.Width(), from.Height());
    const Region part = region ? region->ClippedTo(size)
                               : Region::Rectangle(size, 0, 0, size.width(), size.height());
    if (part.IsEmpty()) {
        return 0;
    }
    qint64 count = 0;
    CallLibrary([&] {
        const CountedPixels counted = CountedPixelsOf(pixels, part);
        if (inks) {
            count = CountWideColours<quint32>(counted);
        } else if (pixels.depth() == 64) {
            count = CountWideColours<quint64>(counted);
        } else {
            count = CountColours24(counted);
        }
    });
    return count;
}

} // namespace quillane::processing
