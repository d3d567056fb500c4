#pragma once
#include "imaging/bitmap.h"
#include "imaging/worker/protocol.h"

namespace quillane::worker {

/// A picture as an encoder in the decoding process gets it: row by row in one of the layouts.
class PictureRowReader {
public:
    /// Brings a picture that is in none of the layouts to the one that holds all of it. A null
    /// picture has no rows. Failure kFailureLimit when there is no memory for that.
    explicit PictureRowReader(const Bitmap& picture);
    /// Fills in shape and colours.
    void Describe(EncodeMessage& message) const;
    qint64 RowBytes() const { return mRowBytes; }
    qint64 Height() const { return mPixels.height(); }
    /// Copies row y, RowBytes() of it.
    void CopyRow(qint64 y, uchar* to) const;

private:
    QImage mPixels;
    PixelLayout mLayout = PixelLayout::Rgb32;
    qint32 mFileDepth;
    qint64 mRowBytes = 0;
    bool mInverted = false; ///< of a Mono picture whose 0 is white
};

} // namespace quillane::worker
