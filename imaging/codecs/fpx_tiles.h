#pragma once
#include "imaging/codecs/codec_support.h"
#include "imaging/codecs/fpx_picture.h"
#include <QImage>

namespace quillane::codecs {

/// Decodes the tiles of one resolution into pictures of the screen's kind: grey, RGB32 or ARGB32.
class FpxTiles {
public:
    FpxTiles(const FpxPicture& picture, const FpxResolution& resolution);
    /// Decodes every tile; returns how many could not be.
    int DecodeAll(QImage& image, const DecodeRequest& request);
    /// How the image is kept.
    QImage::Format Layout() const;

private:
    /// Channels of one tile as they are stored, interleaved.
    bool Read(const FpxTile& tile, std::vector<uchar>& channels);
    bool ReadJpeg(const FpxTile& tile, const QByteArray& bytes, std::vector<uchar>& channels);
    void Put(const std::vector<uchar>& channels, QImage& image, QPoint at) const;
    const FpxPicture& mPicture;
    const FpxResolution& mResolution;
    CompoundStream mData;
    qint64 mDataLeft; ///< bytes that may still be read: tiles that share theirs are few
};

} // namespace quillane::codecs
