#pragma once
#include "imaging/byte_source.h"
#include <QByteArray>

namespace quillane {

/// Copies the fields that comment slots name out of a TIFF structure (a TIFF or BigTIFF file, or
/// the Exif block of another file, from its byte-order mark on) into a small TIFF structure of
/// its own: first directory, Exif and GPS directory, of a field no more than its slot needs.
/// MakerNotes, previews, pixels and chains of directories never reach the metadata library, and
/// the cost does not depend on the size of the file. Damage is no failure: what can be read
/// counts. Empty when there is no first directory with at least one entry.
QByteArray LiftExif(ByteSource& source);

} // namespace quillane
