// The top nodes of the folder tree.
#include "core/native_path.h"
#include "core/paths.h"
#include "widgets/folder_tree_model.h"
#include "widgets/mounted_volumes.h"

#include <QCoreApplication>
#include <QStandardPaths>

namespace quillane {

namespace {

constexpr int kMostVolumes = 32;

QString PlaceText(const char* text)
{
    return QCoreApplication::translate("FolderTree", text);
}

} // namespace

QVector<FolderTreeModel::Place> FolderTreeModel::SystemPlaces()
{
    QVector<Place> places;
    const QString home = WithoutSeparator(PathFromBytes(qgetenv("HOME")));
    if (home.startsWith(u'/') && home != QLatin1String("/")
        && StatPath(home).type == FileType::Folder) {
        places.append({PlaceText("Home"), home, QStringLiteral("user-home")});
    }
    const QString pictures =
        WithoutSeparator(QStandardPaths::writableLocation(QStandardPaths::PicturesLocation));
    if (!pictures.isEmpty() && pictures != home && StatPath(pictures).type == FileType::Folder) {
        places.append({PlaceText("Pictures"), pictures, QStringLiteral("folder-pictures")});
    }
    places.append({QStringLiteral("/"), QStringLiteral("/"), QStringLiteral("drive-harddisk")});
    for (const QString& volume : VolumesOf(ReadMountTable())) {
        if (places.size() >= kMostVolumes) {
            break;
        }
        places.append({LeafName(volume), volume, QStringLiteral("drive-removable-media")});
    }
    return places;
}

} // namespace quillane
