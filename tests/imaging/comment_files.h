#pragma once
// Makes files that carry comments, byte by byte, so that what is read does not depend on the
// library that reads it.
#include <QByteArray>
#include <QList>
#include <map>

namespace quillane::making {

/// A field of an Exif directory as it is stored.
struct ExifField {
    quint16 type = 0;
    quint32 count = 0;
    QByteArray value; ///< in the block's byte order
};

/// An Exif block (or a TIFF file) under construction, from its byte-order mark on.
class ExifMaker {
public:
    enum Directory { Tiff, Exif, Gps };
    explicit ExifMaker(bool bigEndian = false, bool bigTiff = false);

    ExifMaker& Ascii(Directory directory, quint16 tag, const QByteArray& text);
    ExifMaker& Bytes(Directory directory, quint16 tag, const QByteArray& bytes, quint16 type = 7);
    ExifMaker& Short(Directory directory, quint16 tag, const QList<qint64>& values);
    ExifMaker& Long(Directory directory, quint16 tag, const QList<qint64>& values,
                    quint16 type = 4);
    /// Numerators and denominators in turn; type 10 for signed ones.
    ExifMaker& Rational(Directory directory, quint16 tag, const QList<qint64>& parts,
                        quint16 type = 5);
    ExifMaker& Field(Directory directory, quint16 tag, const ExifField& field);
    /// An offset that the first directory states for another, in place of the right one.
    ExifMaker& PointTo(Directory directory, quint32 offset);

    QByteArray Block() const;
    QByteArray Number(qint64 value, int bytes) const;

private:
    QByteArray Entry(quint16 tag, const ExifField& field, qint64 valuesAt,
                     QByteArray& values) const;
    bool mBig, mWide;
    std::map<quint16, ExifField> mDirectories[3];
    std::map<Directory, quint32> mPointers;
};

/// A segment of a JPEG.
QByteArray JpegSegment(quint8 marker, const QByteArray& content);
/// A JPEG of one grey pixel with these segments in front of its frame. It ends at its scan.
QByteArray JpegWith(const QByteArray& segments);
/// The same with an Exif segment.
QByteArray JpegWithExif(const QByteArray& block);

/// A chunk of a PNG, check sum included.
QByteArray PngChunk(const QByteArray& type, const QByteArray& content);
QByteArray PngText(const QByteArray& keyword, const QByteArray& text);
QByteArray PngCompressedText(const QByteArray& keyword, const QByteArray& text);
QByteArray PngUtf8Text(const QByteArray& keyword, const QByteArray& text, bool compressed);
/// A PNG of one grey pixel with chunks before and behind its pixels.
QByteArray PngWith(const QByteArray& before, const QByteArray& behind = {});

/// An extension of a GIF, its content cut into sub-blocks.
QByteArray GifExtension(quint8 label, const QByteArray& content);
/// A GIF of one pixel with extensions before and behind it.
QByteArray GifWith(const QByteArray& before, const QByteArray& behind = {});

} // namespace quillane::making
