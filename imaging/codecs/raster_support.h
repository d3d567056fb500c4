#pragma once
// What the readers of plain pixel formats share: packed rows, planes, colours, and the end of a
// picture that was cut short.
#include "imaging/bitmap.h"
#include "imaging/codecs/byte_stream.h"
#include <QList>
#include <QRgb>
#include <vector>

namespace quillane::codecs {

/// Where a row of PackBits codes ends early or overflows.
enum class UnpackEnd : quint8 { Whole, Short };
/// Unpacks `count` bytes of PackBits: 0 to 127 is followed by one more literal byte than it tells,
/// 129 to 255 by a byte that is repeated 257 minus so many times, 128 is nothing. A run that goes
/// beyond the row is cut. Short: the stream ended first, what is missing is zero.
UnpackEnd UnpackPackBits(ByteStream& stream, uchar* to, qint64 count);

/// Spreads `planes` rows of one bit a pixel, `planeBytes` apart and with the lowest bit first, into
/// one byte a pixel.
void MergePlanes(const uchar* from, int planes, qint64 planeBytes, qint64 width, uchar* to);
/// Spreads pixels of 1, 2, 4 or 8 bits, the highest first, into one byte each.
void SpreadPixels(const uchar* from, int bits, qint64 width, uchar* to);

/// Sixteen colours as the text mode of a personal computer has them.
const QList<QRgb>& SixteenColours();
/// Even steps from black to white.
QList<QRgb> GreySteps(int count);
/// Fills up with black, or cuts, to `count` colours, so that every value a pixel can have is one.
void FitColours(QList<QRgb>& colours, int count);
/// Whether these are the two colours black and white, in either order.
bool AreBlackAndWhite(const QList<QRgb>& colours);
/// Whether these are even steps from black to white.
bool AreGreySteps(const QList<QRgb>& colours);

/// An empty image for indexes of `bits` a pixel into the colours: one bit a pixel for black and
/// white, one byte for everything else. Refuses as NewImage does.
QImage NewIndexedImage(const char* format, qint64 width, qint64 height, int bits,
                       QList<QRgb> colours);
/// Puts a row of indexes, one byte each, into such an image.
void PutIndexes(QImage& image, int y, const uchar* indexes);
/// The model of an image by its layout; indexes that are even steps of grey are still a palette.
ColourModel ModelOfImage(const QImage& image);

/// Which rows of a picture came first.
enum class RowOrder : quint8 { TopFirst, BottomFirst };
/// The picture of which `rows` rows were read: the others are made blank (white, or the first
/// colour), and it is marked as partial. Refuses a picture without any row.
Bitmap FinishPicture(const char* format, QImage image, int fileDepth, int rows,
                     RowOrder order = RowOrder::TopFirst);

} // namespace quillane::codecs
