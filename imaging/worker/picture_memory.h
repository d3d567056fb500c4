#pragma once
#include <QImage>

namespace quillane::worker {

/// An image whose pixels are not set. Large ones lie in huge pages where the system has them:
/// taking fresh small pages costs several times what copying the pixels into them does. Null
/// when there is no memory for it.
QImage NewPicture(int width, int height, QImage::Format format);
/// The same from memory that an earlier such image has left, where some of the right size is
/// there: fresh pages cost more than most work on pixels. At most two such ranges, 256 MB in all,
/// are kept, and the system may take them back when it runs short. Any thread.
QImage RecycledPicture(int width, int height, QImage::Format format);

} // namespace quillane::worker
