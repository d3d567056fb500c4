#pragma once
#include "core/globals.h"
#include <QList>
#include <QString>

namespace quillane {

/// Everything the windows share in one run. The program has one; a test makes a fresh one.
struct Session : Globals {
    /// Full paths of the folder view in view order: entry i is cell i is row i.
    QList<QString> lbFilTiffs;
    /// The photo album of this session.
    QList<QString> lbExportList;
};

} // namespace quillane
