#include "platform/desktop/desktop_places.h"

#include "core/native_path.h"
#include "core/paths.h"

#include <QCoreApplication>
#include <QStandardPaths>
#include <initializer_list>
#include <pwd.h>
#include <unistd.h>

namespace quillane {

namespace {

constexpr quint32 kPrivateFolder = 0700;

/// The home folder with separator: as the environment or else the user's account has it.
QString HomeFolder()
{
    QByteArray home = qgetenv("HOME");
    if (!home.startsWith('/')) {
        const passwd* account = ::getpwuid(::getuid());
        home = account && account->pw_dir && account->pw_dir[0] == '/' ? account->pw_dir : "/";
    }
    return WithSeparator(PathFromBytes(home));
}

/// A base folder of the user from the environment, or its usual place below home.
QString BaseFolder(const char* variable, const char* below)
{
    const QByteArray set = qgetenv(variable);
    if (set.startsWith('/')) {
        return WithSeparator(PathFromBytes(set));
    }
    return HomeFolder() + QLatin1String(below);
}

QString MadePrivate(const QString& folder)
{
    MakeFolder(folder, kPrivateFolder);
    return folder;
}

QString FirstThatExists(std::initializer_list<QString> candidates)
{
    for (const QString& candidate : candidates) {
        if (StatPath(candidate).type == FileType::Regular) {
            return candidate;
        }
    }
    return *candidates.begin();
}

QString UserFolder(QStandardPaths::StandardLocation location, const QString& fallback)
{
    const QString folder = QStandardPaths::writableLocation(location);
    return folder.isEmpty() || StatPath(folder).type != FileType::Folder ? fallback
                                                                         : WithSeparator(folder);
}

} // namespace

DesktopPlaces::DesktopPlaces(QString applicationFolder)
    : mApplicationFolder(std::move(applicationFolder))
{ }

QString DesktopPlaces::Home() const
{
    return HomeFolder();
}

QString DesktopPlaces::Pictures() const
{
    return UserFolder(QStandardPaths::PicturesLocation, Home());
}

QString DesktopPlaces::SettingsFile() const
{
    return BaseFolder("XDG_CONFIG_HOME", ".config/") + QStringLiteral("quillane/quillane.ini");
}

QString DesktopPlaces::Wallpaper() const
{
    return MadePrivate(BaseFolder("XDG_DATA_HOME", ".local/share/") + QStringLiteral("quillane/"))
        + QStringLiteral("Wallpaper.bmp");
}

QString DesktopPlaces::PrintCopy() const
{
    const QString runtime = PathFromBytes(qgetenv("XDG_RUNTIME_DIR"));
    const bool hasRuntime = runtime.startsWith(u'/') && StatPath(runtime).type == FileType::Folder;
    const QString base =
        hasRuntime ? WithSeparator(runtime) : BaseFolder("XDG_CACHE_HOME", ".cache/");
    return MadePrivate(base + QStringLiteral("quillane/")) + QStringLiteral("TPrinter2Image.jpg");
}

QString DesktopPlaces::Capture() const
{
    return UserFolder(QStandardPaths::MoviesLocation, Home()) + QStringLiteral("Capture.avi");
}

QString DesktopPlaces::CaptureLower() const
{
    return UserFolder(QStandardPaths::MoviesLocation, Home()) + QStringLiteral("capture.avi");
}

QString DesktopPlaces::Programs() const
{
    return QStringLiteral("/usr/bin");
}

QString DesktopPlaces::ApplicationFolder() const
{
    return WithSeparator(mApplicationFolder.isEmpty() ? QCoreApplication::applicationDirPath()
                                                      : mApplicationFolder);
}

QString DesktopPlaces::HelpFile() const
{
    const QString folder = ApplicationFolder();
    return FirstThatExists({folder + QStringLiteral("help/index.html"),
                            folder + QStringLiteral("../share/doc/quillane/help/index.html")});
}

QString DesktopPlaces::ThumbnailCache() const
{
    return BaseFolder("XDG_CACHE_HOME", ".cache/") + QStringLiteral("thumbnails");
}

QString DesktopPlaces::CodecWorker() const
{
    return OwnProgram(QStringLiteral("quillane-codec"));
}

QString DesktopPlaces::ScanHelper() const
{
    return OwnProgram(QStringLiteral("quillane-scan"));
}

QString DesktopPlaces::OwnProgram(const QString& name) const
{
    const QString folder = ApplicationFolder();
    return FirstThatExists({folder + name, folder + QStringLiteral("../libexec/quillane/") + name});
}

} // namespace quillane
