#pragma once
#include "widgets/picture_source.h"
#include <array>
#include <vector>

namespace quillane {

/// The rows of a part of a picture's columns as bytes that may be mixed: one channel, to be looked
/// up in Colours() afterwards, or four that are ready for the screen. The source outlives it.
class PictureRows {
public:
    /// Columns `left` to just before `right`.
    PictureRows(const PictureSource& source, int left, int right);

    int Channels() const { return mChannels; }
    bool HasAlpha() const { return mAlpha; }
    /// Of one channel: its 256 values on the screen, premultiplied.
    const std::array<QRgb, 256>& Colours() const { return mColours; }
    /// A row's bytes, good until the next call; null where there is no memory. Rows asked for in
    /// order are converted once each.
    const uchar* Row(int y);

private:
    enum class Kind { Bits, Bytes, Ready, Converted };

    void MixColours();
    bool ConvertBand(int y);

    const PictureSource& mSource;
    const QImage& mPixels;
    int mLeft, mRight;
    Kind mKind;
    int mChannels;
    bool mAlpha;
    std::array<QRgb, 256> mColours{};
    std::vector<uchar> mBytes; ///< of a row of bits
    QImage mBand;              ///< converted rows
    int mBandTop = 0;
};

} // namespace quillane
