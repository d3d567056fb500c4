// Which commands set a wallpaper on which desktop.
#include "core/native_path.h"
#include "platform/desktop/desktop_launcher.h"
#include "platform/desktop/desktop_wallpaper.h"

namespace quillane {

namespace {

/// A key of gsettings, divided by a blank; those marked '?' are not known everywhere.
struct WallpaperDesktop {
    const char* desktops; ///< names it serves, divided by colons; empty: any
    const char* program;
    const char* keys; ///< of gsettings, divided by semicolons
    bool address;     ///< the value is a file: address, else a path
};

constexpr char kXfconf[] = "xfconf-query";

constexpr WallpaperDesktop kWallpaperDesktops[] = {
    {"GNOME:Unity:Budgie:Pantheon", "gsettings",
     "org.gnome.desktop.background picture-uri;?org.gnome.desktop.background picture-uri-dark",
     true},
    {"X-Cinnamon:Cinnamon", "gsettings", "org.cinnamon.desktop.background picture-uri", true},
    {"MATE", "gsettings", "org.mate.background picture-filename", false},
    {"KDE", "plasma-apply-wallpaperimage", "", false},
    {"XFCE", kXfconf, "", false},
    {"", "feh", "", false},
};

bool Serves(const WallpaperDesktop& row, const QString& currentDesktop)
{
    if (currentDesktop.isEmpty() || row.desktops[0] == '\0') {
        return true;
    }
    for (const QString& name : QString::fromLatin1(row.desktops).split(u':')) {
        if (currentDesktop.split(u':').contains(name, Qt::CaseInsensitive)) {
            return true;
        }
    }
    return false;
}

QList<WallpaperCommand::Call> GsettingsCalls(const WallpaperDesktop& row, const QString& path)
{
    const QByteArray value = row.address ? FileAddress(path) : BytesFromPath(path);
    QList<WallpaperCommand::Call> calls;
    for (const QByteArray& key : QByteArray(row.keys).split(';')) {
        const bool mayFail = key.startsWith('?');
        const QList<QByteArray> words = key.mid(mayFail ? 1 : 0).split(' ');
        calls.append({{"set", words.value(0), words.value(1), value}, mayFail});
    }
    return calls;
}

} // namespace

QList<WallpaperCommand> WallpaperCommands(const QString& currentDesktop, const QString& path)
{
    QList<WallpaperCommand> commands;
    const QByteArray bytes = BytesFromPath(path);
    for (const WallpaperDesktop& row : kWallpaperDesktops) {
        if (!Serves(row, currentDesktop)) {
            continue;
        }
        WallpaperCommand command{QString::fromLatin1(row.program), {}, {}};
        if (row.keys[0] != '\0') {
            command.calls = GsettingsCalls(row, path);
        } else if (command.program == QLatin1String(kXfconf)) {
            command.query = {"-c", "xfce4-desktop", "-l"};
        } else if (command.program == QLatin1String("feh")) {
            command.calls = {{{"--bg-fill", bytes}, false}};
        } else {
            command.calls = {{{bytes}, false}};
        }
        commands.append(command);
    }
    return commands;
}

QList<WallpaperCommand::Call> XfceWallpaperCalls(const QByteArray& listed, const QString& path)
{
    const QByteArray bytes = BytesFromPath(path);
    QList<WallpaperCommand::Call> calls;
    for (const QByteArray& line : listed.split('\n')) {
        const QByteArray name = line.trimmed();
        if (name.startsWith("/backdrop/") && name.endsWith("/last-image")) {
            calls.append({{"-c", "xfce4-desktop", "-p", name, "-s", bytes}, false});
        }
    }
    if (calls.isEmpty()) {
        calls.append(
            {{"-c", "xfce4-desktop", "-p", "/backdrop/screen0/monitor0/workspace0/last-image", "-n",
              "-t", "string", "-s", bytes},
             false});
    }
    return calls;
}

} // namespace quillane
