#pragma once
// The comment slots: which metadata field each small integer names, and in what shape.
#include <QtGlobal>
#include <span>

namespace quillane {

inline constexpr qint16 kFirstSlot = 0;
inline constexpr qint16 kLastSlot = 178;
inline constexpr qint16 kDescriptionSlot = 3;
inline constexpr qint16 kDateTakenSlot = 22;

enum class SlotShape : quint8 { Text, Integer, Rational, RationalTriple, Bytes };
enum class SlotHome : quint8 { TiffDirectory, ExifDirectory, GpsDirectory, Dicom, PngText };

struct CommentSlot {
    qint16 slot;
    SlotShape shape;
    SlotHome home;
    quint32 tag;       ///< TIFF, Exif or GPS tag; DICOM group << 16 | element; 0 for PNG text
    const char* field; ///< standard name; the keyword for PNG text
};
/// Every slot that names a field, in order of number; the others are always empty.
std::span<const CommentSlot> CommentSlots();
/// nullptr for a slot without a field.
const CommentSlot* FindSlot(qint16 slot);

} // namespace quillane
