#pragma once
// What the encoders share: bytes to write, colours and rows of indexes, refusals in the same words.
#include "core/failure.h"
#include "imaging/codec.h"
#include <QByteArray>
#include <QImage>
#include <QList>

namespace quillane::codecs {

/// Failure kFailureLimit: "A <format> cannot hold <what>."
[[noreturn]] void CannotHold(const char* format, const QString& what);
/// CannotHold for a picture wider or higher than the format allows; nothing for one that fits.
void CheckFits(const char* format, const Bitmap& picture, qint64 mostWidth, qint64 mostHeight);
/// CannotHold for a file that would be larger than any the program reads.
void CheckFileBytes(const char* format, qint64 bytes);

/// Builds up a file in memory.
class ByteWriter {
public:
    void Reserve(qint64 bytes) { mBytes.reserve(qsizetype(bytes)); }
    void Byte(int value) { mBytes.append(char(value)); }
    void Fill(qint64 count, int value = 0) { mBytes.append(qsizetype(count), char(value)); }
    /// Appends `count` bytes.
    void Bytes(const void* from, qint64 count)
    {
        mBytes.append(static_cast<const char*>(from), qsizetype(count));
    }
    void Text(const char* text) { mBytes.append(text); }
    void Text(const QByteArray& text) { mBytes.append(text); }
    /// Two and four bytes, lowest first.
    void Little16(quint32 value);
    void Little32(quint32 value);
    /// Two and four bytes, highest first.
    void Big16(quint32 value);
    void Big32(quint32 value);
    /// Puts four bytes, lowest or highest first, over what was written at `position`.
    void PatchLittle32(qint64 position, quint32 value);
    void PatchBig32(qint64 position, quint32 value);

    qint64 Size() const { return mBytes.size(); }
    QByteArray Take() { return std::move(mBytes); }

private:
    QByteArray mBytes;
};

/// Colours of a picture of up to 8 bits (Format_Mono, Indexed8 or Grayscale8), as many as
/// `bits` can tell apart: what the picture has no colour for is black.
QList<QRgb> EncodedColours(const QImage& pixels, int bits);
/// One row of a picture of up to 8 bits as indexes of 1, 2, 4 or 8 bits, first pixel highest; the
/// bits behind the last pixel are 0. Writes (width * bits + 7) / 8 bytes.
void PackIndexes(const QImage& pixels, int y, int bits, uchar* to);
/// One row of a picture of 1 bit, 1 where it is white (or, `blackIsOne`, where it is black), by
/// which of its two colours is the lighter; the bits behind the last pixel are 0.
void PackBilevel(const QImage& pixels, int y, bool blackIsOne, uchar* to);

/// Pixels a metre of dots per inch; 0 for unknown.
inline quint32 DotsPerMetre(qint32 dotsPerInch)
{
    return dotsPerInch > 0 ? quint32(dotsPerInch / 0.0254 + 0.5) : 0;
}

} // namespace quillane::codecs
