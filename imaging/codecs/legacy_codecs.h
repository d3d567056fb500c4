#pragma once
// The functions behind the codec table for formats that few programs still write; see Codec in
// imaging/codec.h for what each promises.
#include "imaging/codec.h"

namespace quillane::codecs {

/// Codec::matches of PCX of every depth.
bool PcxMatches(QByteArrayView head, QStringView extension);
/// Codec::probe of the same.
ImageFacts PcxProbe(ByteSource& source);
/// Codec::decode of the same.
Bitmap PcxDecode(ByteSource& source, const DecodeRequest& request);

/// Codec::matches of TARGA; told by its name.
bool TgaMatches(QByteArrayView head, QStringView extension);
/// Codec::probe of the same.
ImageFacts TgaProbe(ByteSource& source);
/// Codec::decode of the same.
Bitmap TgaDecode(ByteSource& source, const DecodeRequest& request);

/// Codec::matches of Sun raster files.
bool SunMatches(QByteArrayView head, QStringView extension);
/// Codec::probe of the same.
ImageFacts SunProbe(ByteSource& source);
/// Codec::decode of the same.
Bitmap SunDecode(ByteSource& source, const DecodeRequest& request);

/// Codec::matches of Silicon Graphics images.
bool SgiMatches(QByteArrayView head, QStringView extension);
/// Codec::probe of the same.
ImageFacts SgiProbe(ByteSource& source);
/// Codec::decode of the same.
Bitmap SgiDecode(ByteSource& source, const DecodeRequest& request);

/// Codec::matches of MacPaint, with or without its wrapper.
bool MacMatches(QByteArrayView head, QStringView extension);
/// Codec::probe of the same.
ImageFacts MacProbe(ByteSource& source);
/// Codec::decode of the same.
Bitmap MacDecode(ByteSource& source, const DecodeRequest& request);

/// Codec::matches of Microsoft Paint of both versions.
bool MspMatches(QByteArrayView head, QStringView extension);
/// Codec::probe of the same.
ImageFacts MspProbe(ByteSource& source);
/// Codec::decode of the same.
Bitmap MspDecode(ByteSource& source, const DecodeRequest& request);

/// Codec::matches of GEM images, plain and extended.
bool GemMatches(QByteArrayView head, QStringView extension);
/// Codec::probe of the same.
ImageFacts GemProbe(ByteSource& source);
/// Codec::decode of the same.
Bitmap GemDecode(ByteSource& source, const DecodeRequest& request);

/// Codec::matches of interchange files: the first picture, or that of a page.
bool IffMatches(QByteArrayView head, QStringView extension);
/// Codec::probe of the same.
ImageFacts IffProbe(ByteSource& source);
/// Codec::decode of the same.
Bitmap IffDecode(ByteSource& source, const DecodeRequest& request);

/// Codec::matches of Photoshop files: the merged picture.
bool PsdMatches(QByteArrayView head, QStringView extension);
/// Codec::probe of the same.
ImageFacts PsdProbe(ByteSource& source);
/// Codec::decode of the same.
Bitmap PsdDecode(ByteSource& source, const DecodeRequest& request);

/// Codec::matches of Dr. Halo, its colours in the file beside it; told by its name.
bool CutMatches(QByteArrayView head, QStringView extension);
/// Codec::probe of the same.
ImageFacts CutProbe(ByteSource& source);
/// Codec::decode of the same.
Bitmap CutDecode(ByteSource& source, const DecodeRequest& request);

/// Codec::matches of raw samples; told by their name.
bool RawMatches(QByteArrayView head, QStringView extension);
/// Codec::probe of the same.
ImageFacts RawProbe(ByteSource& source);
/// Codec::decode of the same.
Bitmap RawDecode(ByteSource& source, const DecodeRequest& request);

/// Codec::matches of clipboard files: their bitmap.
bool ClpMatches(QByteArrayView head, QStringView extension);
/// Codec::probe of the same.
ImageFacts ClpProbe(ByteSource& source);
/// Codec::decode of the same.
Bitmap ClpDecode(ByteSource& source, const DecodeRequest& request);

/// Codec::matches of WordPerfect graphics: the first bitmap in them.
bool WpgMatches(QByteArrayView head, QStringView extension);
/// Codec::probe of the same.
ImageFacts WpgProbe(ByteSource& source);
/// Codec::decode of the same.
Bitmap WpgDecode(ByteSource& source, const DecodeRequest& request);

/// Codec::matches of QuickDraw pictures; told by their name.
bool PictMatches(QByteArrayView head, QStringView extension);
/// Codec::probe of the same.
ImageFacts PictProbe(ByteSource& source);
/// Codec::decode of the same.
Bitmap PictDecode(ByteSource& source, const DecodeRequest& request);

/// Codec::matches of bare fax pages; told by their name.
bool FaxMatches(QByteArrayView head, QStringView extension);
/// Codec::matches of CALS rasters: a record of their header.
bool CalsMatches(QByteArrayView head, QStringView extension);
/// Codec::matches of IOCA images, bare or in a document's fields.
bool IocaMatches(QByteArrayView head, QStringView extension);
/// Codec::matches of Intergraph rasters.
bool ItgMatches(QByteArrayView head, QStringView extension);

/// Codec::matches of the CMP format.
bool CmpMatches(QByteArrayView head, QStringView extension);
/// Refuses the file with words that name its format.
ImageFacts CmpProbe(ByteSource& source);
/// Refuses it in the same words.
Bitmap CmpDecode(ByteSource& source, const DecodeRequest& request);

/// Codec::matches of Microsoft Fax documents.
bool AwdMatches(QByteArrayView head, QStringView extension);
/// Refuses the file with words that name its format.
ImageFacts AwdProbe(ByteSource& source);
/// Refuses it in the same words.
Bitmap AwdDecode(ByteSource& source, const DecodeRequest& request);

/// Codec::matches of AutoCAD drawings.
bool DwgMatches(QByteArrayView head, QStringView extension);
/// Refuses the file with words that name its format.
ImageFacts DwgProbe(ByteSource& source);
/// Refuses it in the same words.
Bitmap DwgDecode(ByteSource& source, const DecodeRequest& request);

/// Codec::matches of published drawings.
bool DwfMatches(QByteArrayView head, QStringView extension);
/// Refuses the file with words that name its format.
ImageFacts DwfProbe(ByteSource& source);
/// Refuses it in the same words.
Bitmap DwfDecode(ByteSource& source, const DecodeRequest& request);

} // namespace quillane::codecs
