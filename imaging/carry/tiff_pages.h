#pragma once
#include "imaging/exif/tiff_structure.h"

namespace quillane::carry {

/// Fields that tell places and those that tell the sizes of what lies there.
inline constexpr std::pair<quint16, quint16> kTiffContentFields[] = {
    {exif::kTagStripOffsets, exif::kTagStripByteCounts},
    {exif::kTagTileOffsets, exif::kTagTileByteCounts},
    {exif::kTagJpegOffset, exif::kTagJpegLength}};
/// GlobalParametersIFD (TIFF-FX).
inline constexpr quint16 kTagGlobalParameters = 0x0190;
/// Fields whose values are places of directories.
inline constexpr quint16 kTiffPointerFields[] = {exif::kTagSubDirectories, exif::kTagExifPointer,
                                                 exif::kTagGpsPointer, exif::kTagInteropPointer,
                                                 kTagGlobalParameters};

/// The end of a chain of pages.
struct TiffPageChain {
    qint32 pages = 0;
    qint64 nextAt = 0; ///< where the last directory tells that none follows
};

/// Where piece number `index` of a picture lies; nothing when it is not told by both fields or does
/// not lie within the file. `lengths` may be nullptr.
std::optional<exif::ByteRange> TiffPiece(const exif::TiffStructure& structure,
                                         const exif::TiffField& offsets,
                                         const exif::TiffField* lengths, quint64 index);

/// Walks the pages and believes none: failure kFailureUnreadable when a directory is cut off, the
/// chain leaves the file or comes back, or a page claims bytes beyond the end.
TiffPageChain WalkTiffPages(const exif::TiffStructure& structure);

} // namespace quillane::carry
