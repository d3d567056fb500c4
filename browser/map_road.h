#pragma once
// How the map program is called.
#include "platform/ui_loop.h"
#include <QString>
#include <QStringList>

namespace quillane {

struct MapCommand {
    QString program; ///< full path
    /// Joined with blanks they are the command line: a path with a blank is two of them, and a tag
    /// that is absent is an empty one.
    QStringList arguments;
};

/// "Wayfarix.exe" in the application's folder (with its separator). For a file that is not
/// IsImageFile there are no arguments; else the file, and the tags Lat, Long and Elevation of its
/// description. Failure when the picture cannot be read. Events are handled
/// meanwhile, and `file` must stand through them.
MapCommand MapRoad(const QString& file, const QString& applicationFolder, UiLoop& loop);

} // namespace quillane
