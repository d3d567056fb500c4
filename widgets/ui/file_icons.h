#pragma once
#include <QIcon>
#include <QString>

namespace quillane {

/// Icon of a file kind by its key ("colorBig", "color", "iflBig", "ifl", "PrintSetupBig",
/// "PrintSetup", "VideoBig", "Video"): the desktop's, else one that is drawn. Null for any other
/// key.
QIcon FileIcon(const QString& key);
/// Icon of a folder or place by its name in the desktop's theme, else one that is drawn.
QIcon PlaceIcon(const QString& themeName);

} // namespace quillane
