#pragma once
// The device-independent bitmap: what stands in a BMP behind its file header, and in an icon.
#include "imaging/codecs/byte_stream.h"
#include "imaging/codecs/codec_support.h"
#include <QList>
#include <array>

namespace quillane::codecs {

enum class DibKind : quint8 { Windows, Os21, Os22 };
enum class DibPacking : quint8 { None, Rle4, Rle8, Rle24 };

/// A header with its colours, checked: sides within limits, a depth of 1, 2, 4, 8, 16, 24 or 32.
struct DibHeader {
    DibKind kind = DibKind::Windows;
    DibPacking packing = DibPacking::None;
    qint64 width = 0;
    qint64 height = 0; ///< of everything stored; in an icon twice that of the picture
    bool topDown = false;
    int bits = 0;
    qint32 xResolution = 0; ///< dots per inch
    qint32 yResolution = 0;
    std::array<quint32, 4> masks{}; ///< of red, green, blue and alpha, for 16 and 32 bits
    qint64 coloursAt = 0;           ///< position of the colours in the source
    int colourBytes = 4;            ///< of one colour
    int colourCount = 0;
    qint64 end = 0; ///< position behind header, masks and colours

    /// Bytes of one unpacked row.
    qint64 RowBytes() const { return (width * bits + 31) / 32 * 4; }
};

/// Reads the header at `position`. `format` names the file's format in failures.
DibHeader ReadDibHeader(ByteSource& source, qint64 position, const char* format);
/// The colours of a picture of 1 to 8 bits, one for every value a pixel can have.
QList<QRgb> ReadDibColours(ByteSource& source, const DibHeader& header);

/// Turns stored rows of one header's kind into pixels: Indexed8 up to 8 bits, else RGB32, or
/// ARGB32 where an alpha mask is set.
class DibRows {
public:
    explicit DibRows(const DibHeader& header);
    /// One stored row (RowBytes of the header) to one row of pixels.
    void Unpack(const uchar* from, uchar* to) const;

private:
    struct Channel {
        int shift = 0;
        quint32 mask = 0;
        std::array<uchar, 256> values{};
        uchar Of(quint32 pixel) const { return values[(pixel & mask) >> shift]; }
    };
    void UnpackIndexes(const uchar* from, uchar* to) const;
    void UnpackMasked(const uchar* from, QRgb* to) const;
    qint64 mWidth;
    int mBits;
    bool mPlain = false; ///< 32 bits as the screen has them
    std::array<Channel, 4> mChannels;
};

/// Decodes run-length packed pixels from the stream into an image that is all background. Returns
/// the number of stored rows that were reached; fewer than there are when the data end early.
int DecodeDibRuns(ByteStream& stream, const DibHeader& header, QImage& image,
                  const DecodeRequest& request);

} // namespace quillane::codecs
