#pragma once
#include <QSize>
#include <QString>

namespace quillane {

/// Tool tip of a file: its name, the picture's size in pixels when known, size on disk and
/// modification time, and why it cannot be shown. Looks at the file; safe for any name.
QString FileTip(const QString& path, QSize pixels, const QString& failure);

} // namespace quillane
