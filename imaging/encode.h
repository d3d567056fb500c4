#pragma once
// What a save asks of a codec beside the pixels, and the table of what can be written.
#include "imaging/bitmap.h"
#include "imaging/image_facts.h"
#include <span>

namespace quillane {

inline constexpr qint32 kBestQuality = 2;    ///< lossless where the format has it
inline constexpr qint32 kLeastQuality = 255; ///< the smallest file

struct EncodeRequest {
    qint16 format = 0;             ///< format code: container, colour space, sampling, compression
    qint32 bits = 0;               ///< per pixel in the file; 0: those of the picture
    qint32 quality = kBestQuality; ///< kBestQuality..kLeastQuality
    qint32 xResolution = 0, yResolution = 0; ///< dots per inch; 0 unknown
    QByteArray icc;                          ///< profile to embed; empty for none
    SourceLayout layout;
};

/// Colours that a variant stores.
enum class StoredColour : quint8 { Any, Grey, Rgb, Cmyk, YCbCr };
/// What carries the comments of a file of that format.
enum class CommentCarrier : quint8 { None, Jpeg, Tiff, Png, Gif, Dicom };

/// One format code that can be written.
struct SaveVariant {
    qint16 format;
    const char* codec;     ///< Codec::name of the codec that writes it
    const char* extension; ///< usual one, with its dot
    StoredColour colour;
    /// Depths that it holds, ascending, ended by 0: of 1 to 8, 16, 24, 32, 48 and 64.
    qint32 depths[10];
    bool lossy;
    bool stamp; ///< holds an embedded preview
    CommentCarrier carrier;
    quint8 traits = 0; ///< VariantTrait, added up

    bool Holds(qint32 bits) const; ///< whether it is one of the depths
};
/// What the depths of a variant mean where formats differ.
enum VariantTrait : quint8 {
    kColourIn16 = 1,   ///< 16 bits are red, green and blue of 5 or 6; else grey
    kBlendedGrey = 2,  ///< 16 and 32 bits are also grey with as fine a transparency
    kHoldsProfile = 4, ///< embeds a colour profile
    kGreyIn8 = 8,      ///< up to 8 bits are grey; else a palette, or grey where the picture is
    kInkIn32 = 16,     ///< 32 bits are CMYK; else colours with transparency
    kInkKept = 32,     ///< of a picture in CMYK, 32 bits are CMYK too
};

/// Every format code that can be written, by code.
std::span<const SaveVariant> SaveVariants();
/// nullptr for a code that cannot be written.
const SaveVariant* FindSaveVariant(qint16 format);

/// The depth that a picture is written with when `bits` are asked for (0: its own): the same, or
/// where the variant lacks it and nothing is lost the next larger one (a palette of 5 bits in 8,
/// grey in the full colours of a variant without grey). With 0 the nearest that there is. Failure
/// for a depth that would lose something, in words that name the format and what it holds.
qint32 WrittenDepth(const SaveVariant& variant, const Bitmap& picture, qint32 bits);

/// The whole file without metadata but for profile and resolution: the picture at the wanted
/// depth (WrittenDepth) in exactly the wanted variant. What is clear in a picture becomes white
/// where the variant knows no transparency; colours of a profile that the file does not hold
/// become sRGB. Failure: a code or depth that cannot be written (in words that name the format),
/// a picture beyond the format's own limits, no memory. Any thread.
QByteArray EncodePicture(const Bitmap& picture, const EncodeRequest& request);

} // namespace quillane
