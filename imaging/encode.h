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
    /// Depths that it holds, ascending, ended by 0: of 1, 4, 8, 16, 24, 32, 48 and 64.
    qint32 depths[9];
    bool lossy;
    bool stamp; ///< holds an embedded preview
    CommentCarrier carrier;
};

/// Every format code that can be written, by code.
std::span<const SaveVariant> SaveVariants();
/// nullptr for a code that cannot be written.
const SaveVariant* FindSaveVariant(qint16 format);

/// The whole file without metadata but for profile and resolution: the picture at the wanted
/// depth in exactly the wanted variant. Failure: a code or depth that cannot be written (in words
/// that name the format), a picture beyond the format's own limits, no memory. Any thread.
QByteArray EncodePicture(const Bitmap& picture, const EncodeRequest& request);

} // namespace quillane
