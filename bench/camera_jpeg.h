#pragma once
#include <QByteArray>

namespace quillane::bench {

/// A JPEG with the metadata that a camera writes (three directories, a MakerNote, a preview) and
/// that description; its pixels nobody looks at, but it has their bytes.
QByteArray CameraJpeg(int number, const QByteArray& description);

} // namespace quillane::bench
