#pragma once
#include "imaging/codecs/fpx_compound.h"
#include <QHash>
#include <QSize>
#include <memory>

namespace quillane::codecs {

enum class FpxSpace : quint8 { Grey, Rgb, PhotoYcc };

/// One tile of a resolution.
struct FpxTile {
    quint32 at = 0; ///< in the data stream
    quint32 size = 0;
    quint32 packing = 0; ///< 0 none, 1 one colour, 2 JPEG
    uchar detail[4] = {};
};

/// One resolution: its tiles, row by row.
struct FpxResolution {
    QSize size;
    QSize tile;
    int channels = 0;
    std::vector<FpxTile> tiles;
    qint32 data = -1; ///< entry of its data stream
    int number = 0;
};

/// What a FlashPix file holds.
class FpxPicture {
public:
    /// Reads directory, properties and headers; Failure when there is no picture.
    explicit FpxPicture(ByteSource& source);
    /// Resolutions that can be shown, smallest first; never empty.
    const std::vector<FpxResolution>& Resolutions() const { return mResolutions; }
    FpxSpace Space() const { return mSpace; }
    bool HasAlpha() const { return mAlpha; }
    bool IsPremultiplied() const { return mPremultiplied; }
    /// Tables of JPEG tiles by their numbers.
    QByteArray Tables(int number) const { return mTables.value(number); }
    /// The stream that the tiles of a resolution lie in.
    CompoundStream Data(const FpxResolution& resolution) const
    {
        return mFile.Open(resolution.data);
    }

private:
    qint32 FindStore() const;
    void ReadContents(qint32 store);
    void ReadColour(const QByteArray& blob);
    bool ReadResolution(qint32 storage, int number);
    CompoundFile mFile;
    std::vector<FpxResolution> mResolutions;
    QHash<int, QByteArray> mTables;
    QHash<quint32, QByteArray> mColours; ///< by number of resolution
    FpxSpace mSpace = FpxSpace::Rgb;
    bool mAlpha = false;
    bool mPremultiplied = false;
};

} // namespace quillane::codecs
