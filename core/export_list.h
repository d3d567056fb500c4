#pragma once
#include <QList>
#include <QString>

namespace quillane {

/// Appends to the session's album the paths that are not in it yet, compared exactly.
void AddNewPaths(QList<QString>& lbExportList, const QList<QString>& paths);

} // namespace quillane
