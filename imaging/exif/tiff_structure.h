#pragma once
// A TIFF structure (a TIFF or BigTIFF file, or the Exif block of another file) as directories of
// fields. Nothing in it is believed: what lies beyond the end is told apart, never read.
#include "imaging/exif/byte_ranges.h"
#include <QByteArray>
#include <QByteArrayView>
#include <optional>
#include <vector>

namespace quillane::exif {

/// Types of values (TIFF 6.0, section 2, and BigTIFF).
enum FieldType : quint16 {
    kTypeByte = 1,
    kTypeAscii = 2,
    kTypeShort = 3,
    kTypeLong = 4,
    kTypeRational = 5,
    kTypeUndefined = 7,
    kTypeSignedRational = 10,
    kTypeIfd = 13,
    kTypeLong8 = 16,
    kTypeIfd8 = 18,
};

/// Tags that this program's writers name themselves (TIFF 6.0, Exif 2.3).
enum FieldTag : quint16 {
    kTagNewSubfileType = 0x00fe,
    kTagImageWidth = 0x0100,
    kTagImageLength = 0x0101,
    kTagBitsPerSample = 0x0102,
    kTagCompression = 0x0103,
    kTagPhotometric = 0x0106,
    kTagStripOffsets = 0x0111,
    kTagOrientation = 0x0112,
    kTagSamplesPerPixel = 0x0115,
    kTagRowsPerStrip = 0x0116,
    kTagStripByteCounts = 0x0117,
    kTagXResolution = 0x011a,
    kTagYResolution = 0x011b,
    kTagPlanarConfiguration = 0x011c,
    kTagResolutionUnit = 0x0128,
    kTagTileOffsets = 0x0144,
    kTagTileByteCounts = 0x0145,
    kTagSubDirectories = 0x014a,
    kTagJpegOffset = 0x0201,
    kTagJpegLength = 0x0202,
    kTagYCbCrSubSampling = 0x0212,
    kTagYCbCrPositioning = 0x0213,
    kTagXmp = 0x02bc,
    kTagExifPointer = 0x8769,
    kTagIccProfile = 0x8773,
    kTagGpsPointer = 0x8825,
    kTagExifVersion = 0x9000,
    kTagComponentsConfiguration = 0x9101,
    kTagMakerNote = 0x927c,
    kTagFlashpixVersion = 0xa000,
    kTagColorSpace = 0xa001,
    kTagPixelXDimension = 0xa002,
    kTagPixelYDimension = 0xa003,
    kTagInteropPointer = 0xa005,
    kTagDngPrivateData = 0xc634,
};

/// Bytes of one value of a type; 0 for a type that is not known.
int FieldTypeBytes(quint16 type);

/// One entry of a directory.
struct TiffField {
    quint16 tag = 0;
    quint16 type = 0;
    quint64 count = 0;
    QByteArray entry;  ///< the entry's last bytes (4, or 8 in a BigTIFF): the value or its offset
    ByteRange outside; ///< where the value lies when it is not in the entry; empty else
    bool sound = true; ///< false: of an unknown type, or its value lies beyond the end
};

struct TiffDirectory {
    qint64 at = 0; ///< 0: there is none
    std::vector<TiffField> fields;
    qint64 next = 0;
    ByteRange table;   ///< count, entries and the offset of the next directory
    bool whole = true; ///< false: the table is cut off by the end
};

/// Reads numbers and directories out of bytes that must outlive it.
class TiffStructure {
public:
    /// Nothing when the bytes do not begin as a TIFF structure does.
    static std::optional<TiffStructure> Open(QByteArrayView bytes);

    bool IsBig() const { return mBig; }   ///< highest byte first
    bool IsWide() const { return mWide; } ///< BigTIFF
    int HeaderBytes() const { return mWide ? 16 : 8; }
    int CountBytes() const { return mWide ? 8 : 2; }
    int EntryBytes() const { return mWide ? 20 : 12; }
    int OffsetBytes() const { return mWide ? 8 : 4; }
    qint64 FirstDirectory() const { return mFirst; }
    QByteArrayView Bytes() const { return mBytes; }

    /// A directory, at most kMaxFields of its entries; an empty one where none can be.
    TiffDirectory ReadDirectory(qint64 at) const;
    /// A field's value as it lies, empty when it is not sound.
    QByteArrayView Value(const TiffField& field) const;
    /// Value number `index` of an integer field; nothing when there is none or it is negative.
    std::optional<quint64> Number(const TiffField& field, quint64 index = 0) const;
    /// `count` (1 to 8) bytes as a number and a number as bytes, in this structure's order.
    quint64 NumberOf(QByteArrayView bytes) const;
    QByteArray BytesOf(quint64 number, int count) const;

    static constexpr quint64 kMaxFields = 65'535; ///< of one directory

private:
    explicit TiffStructure(QByteArrayView bytes) : mBytes(bytes) { }
    TiffField ReadField(qint64 at) const;
    QByteArrayView mBytes;
    bool mBig = false;
    bool mWide = false;
    qint64 mFirst = 0;
};

/// The first field of that tag; nullptr for none.
const TiffField* FindField(const TiffDirectory& directory, quint16 tag);

} // namespace quillane::exif
