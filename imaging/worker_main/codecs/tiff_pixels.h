#pragma once
#include "imaging/worker_main/codecs/tiff_rows.h"
#include "imaging/worker_main/service/worker_codec.h"
#include <optional>
#include <vector>

namespace quillane::worker {

/// Turns rows of samples into rows of pixels.
class TiffPixels {
public:
    /// Fills in layout, colours and exactness of the shape; nothing for a page whose samples
    /// are not simply grey, indexes, RGB or CMYK.
    static std::optional<TiffPixels> For(TiffFile& file, const TiffTags& tags, PictureShape& shape);

    /// Whether values have to be looked over before they can be shown (floats, wide integers).
    bool NeedsRange() const { return mSampling != Sampling::Narrow; }
    /// Takes the values of a row into the range of all.
    void Measure(const TiffRows& rows);
    /// Writes one row of the shape's layout.
    void Convert(const TiffRows& rows, uchar* to);
    /// Writes a row that the file lacks: white, or no ink, or the first colour.
    void Blank(uchar* to) const;

private:
    enum class Sampling : quint8 { Narrow, WideUnsigned, WideSigned, Float };
    TiffPixels(const TiffTags& tags, PixelLayout layout, int used);
    bool ConvertPlainly(const uchar* from, uchar* to) const;
    void Unpack(const TiffRows& rows, int sample, std::uint16_t* to, bool scaled) const;
    double WideValue(const uchar* from, qint64 index) const;
    void Put(uchar* to) const;

    const TiffTags& mTags;
    PixelLayout mLayout;
    Sampling mSampling = Sampling::Narrow;
    int mUsed; ///< samples of a pixel that are shown
    qint64 mRowBytes;
    double mLow = 0, mHigh = 0;
    bool mAnyValue = false;
    std::vector<std::uint16_t> mSamples; ///< of one row, sample after sample
};

} // namespace quillane::worker
