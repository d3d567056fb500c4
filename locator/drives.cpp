#include "locator/drives.h"

#include "core/paths.h"
#include "widgets/mounted_volumes.h"

namespace quillane {

QStringList LocatorDrives(const QByteArray& mountTable)
{
    return QStringList{QString(NativeSeparator())} + VolumesOf(mountTable);
}

int DriveOf(const QStringList& drives, const QString& folder)
{
    const QString inside = WithSeparator(folder);
    int best = 0;
    qsizetype longest = 0;
    for (qsizetype i = 0; i < drives.size(); ++i) {
        const QString drive = WithSeparator(drives[i]);
        if (drive.size() > longest && inside.startsWith(drive)) {
            best = int(i);
            longest = drive.size();
        }
    }
    return best;
}

} // namespace quillane
