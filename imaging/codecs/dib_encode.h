#pragma once
// Writes the device-independent bitmap: what stands in a BMP behind its file header, and in
// icons, metafiles and clipboard files.
#include "imaging/codecs/dib.h"
#include "imaging/codecs/encode_support.h"

namespace quillane::codecs {

/// How a picture is laid down.
struct DibOut {
    DibKind kind = DibKind::Windows;
    DibPacking packing = DibPacking::None; ///< None, Rle4 or Rle8
    int bits = 24;                         ///< 1, 4, 8, 16, 24 or 32
    /// Masks of red, green, blue and alpha; all 0 where the depth says enough.
    std::array<quint32, 4> masks{};
    qint32 xResolution = 0, yResolution = 0; ///< dots per inch
    bool opacity = false;                    ///< the fourth byte of 32 bits tells it
    bool twiceAsHigh = false;                ///< a mask follows the pixels, as in an icon

    /// Bytes of the header with its masks and colours, and those up to the colours.
    int HeadBytes() const;
    int ColoursAt() const;
};

/// The layout for this picture: `bits` of the request, masks where its values need them (more
/// than 5 bits of green in 16, transparency in 32).
DibOut DibLayout(const Bitmap& picture, const EncodeRequest& request, DibKind kind,
                 DibPacking packing);
/// Bytes of one unpacked row, filled up to four.
qint64 DibRowBytes(const Bitmap& picture, int bits);
/// Header, masks and colours; `dataBytes` is the size of the pixels.
void WriteDibHead(ByteWriter& to, const Bitmap& picture, const DibOut& out, qint64 dataBytes);
/// Rows from the bottom up, unpacked.
void WriteDibRows(ByteWriter& to, const Bitmap& picture, const DibOut& out);
/// Rows from the bottom up in runs of 4 or 8 bits, with the mark of their end.
void WriteDibRuns(ByteWriter& to, const Bitmap& picture, DibPacking packing);

} // namespace quillane::codecs
