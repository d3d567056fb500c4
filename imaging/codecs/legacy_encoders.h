#pragma once
// Codec::encode of formats that few programs still write.
#include "imaging/codec.h"

namespace quillane::codecs {

/// PCX (1): version 3.0 in runs; 16 colours in four planes.
QByteArray PcxEncode(const Bitmap& picture, const EncodeRequest& request);
/// TARGA (4): not packed, from the top, with the second version's mark at its end.
QByteArray TgaEncode(const Bitmap& picture, const EncodeRequest& request);
/// Encapsulated PostScript (16): one image in the language's second level.
QByteArray EpsEncode(const Bitmap& picture, const EncodeRequest& request);
/// Sun raster (55): standard type, not packed.
QByteArray SunEncode(const Bitmap& picture, const EncodeRequest& request);
/// QuickDraw picture (56): version 2 with one packed map of pixels.
QByteArray PictEncode(const Bitmap& picture, const EncodeRequest& request);
/// CALS raster (130): type 1, Group 4.
QByteArray CalsEncode(const Bitmap& picture, const EncodeRequest& request);
/// Silicon Graphics image (142 plain, 143 packed).
QByteArray SgiEncode(const Bitmap& picture, const EncodeRequest& request);

} // namespace quillane::codecs
