#include "platform/desktop/file_search.h"

#include "core/failure.h"
#include "core/native_path.h"
#include "core/paths.h"
#include "platform/desktop/find_program.h"

#include <QStringList>

namespace quillane {

namespace {

struct SearchProgram {
    const char* fileManager; ///< part of the desktop file's name it belongs to
    const char* program;
    const char* option; ///< argument before the folder, or nullptr
    const char* prefix; ///< what the folder's own argument begins with
    bool alone;         ///< worth taking under another file manager
};

// Nautilus and Nemo take no search from outside; their desktops have a tool beside them.
constexpr SearchProgram kSearchPrograms[] = {
    {"dolphin", "kfind", nullptr, "", true},
    {"thunar", "catfish", nullptr, "--path=", true},
    {"caja", "mate-search-tool", nullptr, "--path=", true},
    {"nautilus", "gnome-search-tool", nullptr, "--path=", true},
    {"pcmanfm-qt", "pcmanfm-qt", "--find-files", "", false},
    {"pcmanfm", "pcmanfm", "--find-files", "", false},
    {"spacefm", "spacefm", "--find-files", "", false},
};

constexpr qint64 kMostListBytes = 1 << 20;

/// Value of inode/directory under [Default Applications]; the first of several.
QString FolderHandlerIn(const QString& listFile)
{
    QByteArray content;
    if (!ResumeNext([&] { content = ReadWholeFile(listFile, kMostListBytes); })) {
        return {};
    }
    bool inDefaults = false;
    for (const QByteArray& raw : content.split('\n')) {
        const QByteArray line = raw.trimmed();
        if (line.startsWith('[')) {
            inDefaults = line == "[Default Applications]";
        } else if (inDefaults && line.startsWith("inode/directory")) {
            const qsizetype equals = line.indexOf('=');
            if (equals > 0 && line.first(equals).trimmed() == "inode/directory") {
                return PathFromBytes(line.mid(equals + 1).split(';').constFirst().trimmed());
            }
        }
    }
    return {};
}

QStringList FoldersOf(const char* variable, const char* otherwise)
{
    const QByteArray set = qgetenv(variable);
    QStringList folders;
    for (const QByteArray& folder : (set.isEmpty() ? QByteArray(otherwise) : set).split(':')) {
        if (folder.startsWith('/')) {
            folders.append(WithSeparator(PathFromBytes(folder)));
        }
    }
    return folders;
}

QStringList ListFolders()
{
    const QByteArray home = qgetenv("HOME");
    QStringList folders = FoldersOf("XDG_CONFIG_HOME", (home + "/.config").constData());
    folders += FoldersOf("XDG_CONFIG_DIRS", "/etc/xdg");
    QStringList data = FoldersOf("XDG_DATA_HOME", (home + "/.local/share").constData());
    data += FoldersOf("XDG_DATA_DIRS", "/usr/local/share:/usr/share");
    for (const QString& folder : data) {
        folders.append(folder + QStringLiteral("applications/"));
    }
    return folders;
}

} // namespace

QString DefaultFileManager()
{
    QStringList desktops;
    for (const QByteArray& desktop : qgetenv("XDG_CURRENT_DESKTOP").split(':')) {
        if (!desktop.isEmpty() && !desktop.contains('/')) {
            desktops.append(PathFromBytes(desktop.toLower()) + u'-');
        }
    }
    desktops.append(QString());
    for (const QString& folder : ListFolders()) {
        for (const QString& desktop : desktops) {
            const QString handler =
                FolderHandlerIn(folder + desktop + QStringLiteral("mimeapps.list"));
            if (!handler.isEmpty()) {
                return handler;
            }
        }
    }
    return {};
}

std::optional<SearchCommand> FileSearchIn(const QString& folder)
{
    const QString fileManager = DefaultFileManager();
    const auto command = [&](const SearchProgram& search) -> std::optional<SearchCommand> {
        const QString program = FindProgram(QLatin1String(search.program));
        if (program.isEmpty()) {
            return std::nullopt;
        }
        SearchCommand found{program, {}};
        if (search.option) {
            found.arguments.append(search.option);
        }
        found.arguments.append(search.prefix + BytesFromPath(folder));
        return found;
    };
    for (const SearchProgram& search : kSearchPrograms) {
        if (fileManager.contains(QLatin1String(search.fileManager), Qt::CaseInsensitive)) {
            if (auto found = command(search)) {
                return found;
            }
        }
    }
    for (const SearchProgram& search : kSearchPrograms) {
        if (search.alone) {
            if (auto found = command(search)) {
                return found;
            }
        }
    }
    return std::nullopt;
}

} // namespace quillane
