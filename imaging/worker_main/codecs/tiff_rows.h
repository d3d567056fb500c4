#pragma once
#include "imaging/worker_main/codecs/tiff_tags.h"
#include <QByteArray>

namespace quillane::worker {

/// Decodes a page row by row, whether it lies in strips or tiles, its samples side by side or
/// in planes.
class TiffRows {
public:
    /// Failure kFailureLimit when a strip or tile is too large, kFailureUnreadable.
    TiffRows(TiffFile& file, const TiffTags& tags);

    /// Decodes the next row, from the top; false when the file lacks it.
    bool Next();
    /// The samples of the row: all of them packed behind one another, or with separate planes
    /// those of one sample. Valid until Next.
    const uchar* Samples(int plane) const;
    int Planes() const { return mPlanes; }
    /// Begins again at the top.
    void Restart();
    bool SomeMissing() const { return mMissing; }
    bool AnyFound() const { return mFound; }

private:
    bool NextScanline();
    bool NextOfBand();
    bool LoadStrips(std::uint32_t first);
    bool LoadTiles(std::uint32_t first);
    bool DecodeJpeg2000(std::uint32_t index, std::uint32_t width, std::uint32_t rows, char* to);

    TiffFile& mFile;
    const TiffTags& mTags;
    int mPlanes = 1;
    bool mBanded; ///< strips or tiles are decoded whole, else row after row
    qint64 mRowBytes = 0;
    QByteArray mBand; ///< plane after plane, bandRows rows each
    QByteArray mTile;
    QByteArray mRaw; ///< a strip or tile as it lies in the file
    std::uint32_t mRow = 0;         ///< the next one
    std::uint32_t mBrokenUntil = 0; ///< rows of a strip that broke off
    bool mBandGood = false;
    bool mMissing = false;
    bool mFound = false;
};

} // namespace quillane::worker
