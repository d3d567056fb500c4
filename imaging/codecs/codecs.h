#pragma once
// The functions behind the codec table; see Codec in imaging/codec.h for what each promises.
#include "imaging/codec.h"

namespace quillane::codecs {

bool JpegMatches(QByteArrayView head, QStringView extension);
ImageFacts JpegProbe(ByteSource& source);
Bitmap JpegDecode(ByteSource& source, const DecodeRequest& request);

bool PngMatches(QByteArrayView head, QStringView extension);
ImageFacts PngProbe(ByteSource& source);
Bitmap PngDecode(ByteSource& source, const DecodeRequest& request);

bool GifMatches(QByteArrayView head, QStringView extension);
ImageFacts GifProbe(ByteSource& source);
Bitmap GifDecode(ByteSource& source, const DecodeRequest& request);

bool BmpMatches(QByteArrayView head, QStringView extension);
ImageFacts BmpProbe(ByteSource& source);
Bitmap BmpDecode(ByteSource& source, const DecodeRequest& request);

bool IcoMatches(QByteArrayView head, QStringView extension);
ImageFacts IcoProbe(ByteSource& source);
Bitmap IcoDecode(ByteSource& source, const DecodeRequest& request);

bool PnmMatches(QByteArrayView head, QStringView extension);
ImageFacts PnmProbe(ByteSource& source);
Bitmap PnmDecode(ByteSource& source, const DecodeRequest& request);

bool TiffMatches(QByteArrayView head, QStringView extension);
bool DicomMatches(QByteArrayView head, QStringView extension);

} // namespace quillane::codecs
