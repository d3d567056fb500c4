#pragma once
#include "imaging/byte_source.h"
#include <QByteArray>

namespace quillane {

/// The small JPEG that a camera embeds in a JPEG's Exif block; empty when there is none. Reads
/// only the head of the file and trusts no offset in it.
QByteArray ReadEmbeddedPreview(ByteSource& source);

} // namespace quillane
