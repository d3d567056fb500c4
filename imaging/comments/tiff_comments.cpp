#include "imaging/comments/carriers.h"
#include "imaging/comments/exif_lift.h"
#include "imaging/comments/exif_values.h"

namespace quillane {

void ReadTiffComments(ByteSource& source, CommentSet& set)
{
    const QByteArray lifted = LiftExif(source);
    if (!lifted.isEmpty()) {
        AddExifValues(lifted, set);
    }
}

} // namespace quillane
