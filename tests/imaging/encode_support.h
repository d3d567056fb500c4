#pragma once
// Pictures for the tests of writing, and what the readers of other people make of the files.
#include "imaging/encode.h"
#include "worker_support.h"

namespace quillane::test {

/// A picture that has what a variant can hold at a depth: two colours, a whole palette, grey steps,
/// colours of 5 bits, transparency, ink or 16 bits a channel. Photographic enough (smooth, with one
/// hard edge) for lossy formats to be measured.
Bitmap PictureFor(const SaveVariant& variant, qint32 bits, QSize size);
/// The size at which a variant is tried: its own where the format has but one.
QSize SizeFor(const SaveVariant& variant);

/// Whether two pictures show the same in every pixel, transparency in, 16 bits a channel; ink is
/// compared as ink.
bool SamePixels(const Bitmap& one, const Bitmap& other);
/// Peak signal to noise of red, green and blue (of the inks for CMYK) in decibels; 99 for equality,
/// 0 when sizes differ.
double Psnr(const Bitmap& one, const Bitmap& other);

/// What GraphicsMagick reads of a file, as 8-bit RGB; null when it does not.
QImage ReadByGraphicsMagick(const QString& path);
/// What FFmpeg reads of a file, as 8-bit RGB; null when it does not.
QImage ReadByFfmpeg(const QString& path);
/// What FFmpeg reads of the one codestream that is the strip of a TIFF; null when it does not.
QImage ReadTiffJpeg2000(const QString& path);
/// What libtiff reads of a raw fax of that format code; null when it does not.
QImage ReadFax(const QString& path, qint16 format, QSize size);
/// The first picture that poppler finds in a PDF.
QImage ReadPdf(const QString& path);
/// What Ghostscript draws of a page of PostScript, a pixel a point, in the box that it tells.
QImage ReadPostScript(const QString& path);
/// The one bitmap of a clipboard file, read by GraphicsMagick with a file header before it.
QImage ReadClipboardBitmap(const QString& path);
/// The one bitmap of a metafile, read in the same way; null when the page that GraphicsMagick draws
/// at 96 dots per inch has another size. (It draws between the pixels.)
QImage ReadMetafileBitmap(const QString& path);
/// What GraphicsMagick makes of raw samples.
QImage ReadRaw(const QString& path, qint32 bits, QSize size);
/// One value that exiftool tells of a file; empty when it has none.
QString ExifToolValue(const QString& path, const QString& tag);

} // namespace quillane::test
