#pragma once
// The functions behind the codec table; see Codec in imaging/codec.h for what each promises.
#include "imaging/codec.h"

namespace quillane::codecs {

/// Codec::matches of JPEG: JFIF, Exif and bare streams.
bool JpegMatches(QByteArrayView head, QStringView extension);
/// Codec::probe of the same.
ImageFacts JpegProbe(ByteSource& source);
/// Codec::decode of the same.
Bitmap JpegDecode(ByteSource& source, const DecodeRequest& request);
/// Codec::encode: codes 10, 21, 23, 98 and 101 without their Exif block.
QByteArray JpegEncode(const Bitmap& picture, const EncodeRequest& request);

/// Codec::matches of PNG.
bool PngMatches(QByteArrayView head, QStringView extension);
/// Codec::probe of the same.
ImageFacts PngProbe(ByteSource& source);
/// Codec::decode of the same.
Bitmap PngDecode(ByteSource& source, const DecodeRequest& request);
/// Codec::encode of the same.
QByteArray PngEncode(const Bitmap& picture, const EncodeRequest& request);

/// Codec::matches of GIF: the first frame on its screen.
bool GifMatches(QByteArrayView head, QStringView extension);
/// Codec::probe of the same.
ImageFacts GifProbe(ByteSource& source);
/// Codec::decode of the same.
Bitmap GifDecode(ByteSource& source, const DecodeRequest& request);
/// Codec::encode: one frame.
QByteArray GifEncode(const Bitmap& picture, const EncodeRequest& request);

/// Codec::matches of BMP of Windows and OS/2.
bool BmpMatches(QByteArrayView head, QStringView extension);
/// Codec::probe of the same.
ImageFacts BmpProbe(ByteSource& source);
/// Codec::decode of the same.
Bitmap BmpDecode(ByteSource& source, const DecodeRequest& request);
/// Codec::encode: codes 6, 14, 74 and 84.
QByteArray BmpEncode(const Bitmap& picture, const EncodeRequest& request);

/// Codec::matches of Windows icons and cursors: the first picture of the file.
bool IcoMatches(QByteArrayView head, QStringView extension);
/// Codec::probe of the same.
ImageFacts IcoProbe(ByteSource& source);
/// Codec::decode of the same.
Bitmap IcoDecode(ByteSource& source, const DecodeRequest& request);

/// Codec::matches of PBM, PGM and PPM, written and binary.
bool PnmMatches(QByteArrayView head, QStringView extension);
/// Codec::probe of the same.
ImageFacts PnmProbe(ByteSource& source);
/// Codec::decode of the same.
Bitmap PnmDecode(ByteSource& source, const DecodeRequest& request);

/// Codec::matches of Windows metafiles, plain and placeable.
bool WmfMatches(QByteArrayView head, QStringView extension);
/// Codec::probe of the same.
ImageFacts WmfProbe(ByteSource& source);
/// Codec::decode of the same.
Bitmap WmfDecode(ByteSource& source, const DecodeRequest& request);

/// Codec::matches of enhanced metafiles.
bool EmfMatches(QByteArrayView head, QStringView extension);
/// Codec::probe of the same.
ImageFacts EmfProbe(ByteSource& source);
/// Codec::decode of the same.
Bitmap EmfDecode(ByteSource& source, const DecodeRequest& request);

/// Codec::matches of JPEG 2000, with boxes or as a bare codestream.
bool Jpeg2000Matches(QByteArrayView head, QStringView extension);
/// Codec::matches of drawing exchange files, written and binary.
bool DxfMatches(QByteArrayView head, QStringView extension);
/// Codec::probe of the same.
ImageFacts DxfProbe(ByteSource& source);
/// Codec::decode of the same.
Bitmap DxfDecode(ByteSource& source, const DecodeRequest& request);

/// Codec::matches of FlashPix pictures, and of any other compound file.
bool FpxMatches(QByteArrayView head, QStringView extension);
/// Codec::probe of the same.
ImageFacts FpxProbe(ByteSource& source);
/// Codec::decode of the same.
Bitmap FpxDecode(ByteSource& source, const DecodeRequest& request);

/// Codec::matches of encapsulated PostScript, with a preview or without.
bool EpsMatches(QByteArrayView head, QStringView extension);
/// Codec::probe of the same.
ImageFacts EpsProbe(ByteSource& source);
/// Codec::decode of the same.
Bitmap EpsDecode(ByteSource& source, const DecodeRequest& request);

/// Codec::matches of TIFF and BigTIFF in either byte order.
bool TiffMatches(QByteArrayView head, QStringView extension);
/// Codec::matches of DICOM, with its preamble or, by the extension, without.
bool DicomMatches(QByteArrayView head, QStringView extension);

/// Codec::matches of QuickTime and MP4 clips.
bool MovMatches(QByteArrayView head, QStringView extension);
/// Codec::matches of AVI clips.
bool AviMatches(QByteArrayView head, QStringView extension);
/// Codec::matches of MPEG clips: program streams, bare ones, and by their names transport streams.
bool MpegMatches(QByteArrayView head, QStringView extension);

} // namespace quillane::codecs
