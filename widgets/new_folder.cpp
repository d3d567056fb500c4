#include "widgets/new_folder.h"

#include "core/failure.h"
#include "core/native_path.h"
#include "core/paths.h"
#include "widgets/label_lines.h"

#include <QCoreApplication>

namespace quillane {

namespace {

constexpr int kMostNewFolders = 1000;

QString NewFolderText(const char* text)
{
    return QCoreApplication::translate("NewFolder", text);
}

} // namespace

QString MakeNewFolder(const QString& parent)
{
    const QString base = WithSeparator(parent) + NewFolderText("New Folder");
    QString path = base;
    for (int number = 2; StatPath(path).type != FileType::Missing; ++number) {
        if (number > kMostNewFolders) {
            throw Failure(kFailureIo,
                          NewFolderText("There are too many new folders here. Give "
                                        "those that are there other names first."));
        }
        path = QStringLiteral("%1 (%2)").arg(base).arg(number);
    }
    if (StatPath(parent).type != FileType::Folder) {
        throw Failure(kFailureNoFile,
                      NewFolderText("The folder \"%1\" is not there any more.")
                          .arg(DisplayName(LeafName(WithoutSeparator(parent)))));
    }
    if (!MakeFolder(path)) {
        throw Failure(kFailureDenied,
                      NewFolderText("No folder can be made in \"%1\". It may be write-protected.")
                          .arg(DisplayName(parent)));
    }
    return path;
}

QString RenameFolder(const QString& path, const QString& name)
{
    if (name.isEmpty() || name == QLatin1String(".") || name == QLatin1String("..")
        || name.contains(NativeSeparator()) || name.contains(QChar(u'\0'))) {
        throw Failure(
            kFailureGeneral,
            NewFolderText("\"%1\" cannot be the name of a folder.").arg(DisplayName(name)));
    }
    const QString to = FolderOf(WithoutSeparator(path)) + name;
    RenamePath(path, to);
    return to;
}

} // namespace quillane
