#include "core/export_list.h"

#include <QSet>

namespace quillane {

void AddNewPaths(QList<QString>& lbExportList, const QList<QString>& paths)
{
    QSet<QString> known(lbExportList.begin(), lbExportList.end());
    for (const QString& path : paths) {
        if (!known.contains(path)) {
            known.insert(path);
            lbExportList.append(path);
        }
    }
}

} // namespace quillane
