#pragma once
#include "imaging/byte_source.h"
#include <QByteArray>

namespace quillane {

/// The small JPEG that a camera embeds in a JPEG's Exif block (its second directory, tags 0x0201
/// and 0x0202); empty when there is none. Reads the first segments of the file alone, and trusts
/// no offset in them.
QByteArray ReadEmbeddedPreview(ByteSource& source);

} // namespace quillane
