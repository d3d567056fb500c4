#pragma once
#include "imaging/exif/tiff_editor.h"
#include <QList>

namespace quillane::carry {

/// The first picture of an encoded TIFF: its fields that describe pixels, and the pixels.
class TiffPicture {
public:
    /// Failure kFailureUnreadable when there is no picture. `encoded` must outlive it.
    explicit TiffPicture(const QByteArray& encoded);
    /// Puts it in the place of a file's own first picture, whose room becomes free. Failure
    /// kFailureGeneral when the file has its bytes in the other order and these pixels cannot be
    /// turned.
    void PutInto(exif::TiffEditor& editor) const;

    quint64 compression = 1;
    quint64 photometric = 0;
    int channels = 0; ///< of colour
    QByteArray profile;

private:
    QByteArray Turned(QByteArray bytes, int width, const exif::TiffStructure& target) const;
    QList<QByteArray> Pieces(const exif::TiffStructure& target) const;
    exif::TiffStructure mStructure;
    exif::TiffDirectory mDirectory;
    quint16 mOffsets = 0, mLengths = 0; ///< tags of strips or of tiles
    int mSampleBits = 8;                ///< the widest
};

struct JpegFrame {
    int width = 0, height = 0, channels = 0;
    int across = 1, down = 1; ///< samples of the first channel to one of the others
};
/// What the frame header of a JPEG says; nothing for what is no JPEG.
std::optional<JpegFrame> FrameOfJpeg(const QByteArray& jpeg);

} // namespace quillane::carry
