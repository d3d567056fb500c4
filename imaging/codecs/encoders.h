#pragma once
// Codec::encode of the formats that have their encoders apart from their readers.
#include "imaging/codec.h"

namespace quillane::codecs {

/// Codec::matches of what is only written: no file.
bool NoFileMatches(QByteArrayView head, QStringView extension);

/// Icons and cursors (91, 92): one picture of up to 256 x 256 pixels with its mask.
QByteArray IcoEncode(const Bitmap& picture, const EncodeRequest& request);
/// PBM, PGM and PPM, written (102, 104, 106) and binary (103, 105, 107).
QByteArray PnmEncode(const Bitmap& picture, const EncodeRequest& request);
/// MacPaint (51): 576 x 720 pixels behind the wrapper that carries the file's type; a smaller
/// picture stands in the upper left corner on white.
QByteArray MacEncode(const Bitmap& picture, const EncodeRequest& request);
/// Microsoft Paint (53), second version: rows in runs.
QByteArray MspEncode(const Bitmap& picture, const EncodeRequest& request);
/// WordPerfect Graphics 1 (54): one bitmap in runs behind its colours.
QByteArray WpgEncode(const Bitmap& picture, const EncodeRequest& request);
/// Placeable Windows metafile (15) that stretches one bitmap over its page.
QByteArray WmfEncode(const Bitmap& picture, const EncodeRequest& request);
/// Photoshop (76): the merged picture, packed; with transparency as the one layer too.
QByteArray PsdEncode(const Bitmap& picture, const EncodeRequest& request);
/// Interchange file (111): planes packed by ByteRun1.
QByteArray IffEncode(const Bitmap& picture, const EncodeRequest& request);
/// X bitmap (110).
QByteArray XbmEncode(const Bitmap& picture, const EncodeRequest& request);
/// X pixmap (109), version 3.
QByteArray XpmEncode(const Bitmap& picture, const EncodeRequest& request);
/// Raw samples without a header (153): rows from the top, channels of a pixel side by side, those
/// of 16 bits lowest byte first.
QByteArray RawEncode(const Bitmap& picture, const EncodeRequest& request);
/// PDF (146) of one page that is one picture, not compressed.
QByteArray PdfEncode(const Bitmap& picture, const EncodeRequest& request);
/// Windows clipboard file (114) with one device-independent bitmap.
QByteArray ClpEncode(const Bitmap& picture, const EncodeRequest& request);
/// Raw fax (66, 67, 68): group 3 in one or two dimensions, group 4.
QByteArray FaxEncode(const Bitmap& picture, const EncodeRequest& request);

} // namespace quillane::codecs
