#pragma once
#include <QImage>

namespace quillane::worker {

/// An image whose pixels are not set. Large ones lie in huge pages where the system has them:
/// taking fresh small pages costs several times what copying the pixels into them does. Null
/// when there is no memory for it.
QImage NewPicture(int width, int height, QImage::Format format);

} // namespace quillane::worker
