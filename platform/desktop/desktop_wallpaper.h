#pragma once
#include "platform/wallpaper.h"
#include <QByteArray>
#include <QList>
#include <QObject>

namespace quillane {

/// Sets the wallpaper by the desktop's portal, else by the command of the desktop that runs.
class DesktopWallpaper : public QObject, public WallpaperService {
    Q_OBJECT
public:
    void Set(const QString& path, ServiceEnded ended) override;
};

/// One program that can set a wallpaper, with what it is called with, in turn.
struct WallpaperCommand {
    QString program;
    QList<QByteArray> query; ///< asks for the names that are to be set; empty: nothing is asked
    struct Call {
        QList<QByteArray> arguments;
        bool mayFail = false; ///< what not every version knows
    };
    QList<Call> calls;
};
/// The commands for a desktop, the best first: those that serve one of the names in
/// `currentDesktop` ("ubuntu:GNOME", as in XDG_CURRENT_DESKTOP), then feh; all of them where it
/// is empty, because a setting that nobody reads is set without an error.
QList<WallpaperCommand> WallpaperCommands(const QString& currentDesktop, const QString& path);
/// The calls that set `path` for each of the names xfconf-query listed; for the first screen
/// where it listed none.
QList<WallpaperCommand::Call> XfceWallpaperCalls(const QByteArray& listed, const QString& path);

} // namespace quillane
