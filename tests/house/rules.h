#pragma once
// The rules of the house. Each looks at one file and answers with its complaints, "path:line:
// what is wrong"; none means that the file keeps the rule.
#include "house/source_text.h"
#include <QStringList>

namespace quillane::house {

/// A folder includes itself and what stands below it; logic does not include windows; nothing
/// includes browser; the program does not include the worker; includes are written from the root.
QStringList CheckLayers(const SourceFile& file);
/// Files are opened and listed through core/native_path.h alone.
QStringList CheckFileAccess(const SourceFile& file);
/// Headers of outside libraries stand in the .cpp files of the folders that wrap them.
QStringList CheckThirdParty(const SourceFile& file);
/// Headers of single Qt classes, never of whole modules.
QStringList CheckQtModules(const SourceFile& file);
/// Tests wait for a condition, not for a time; no test is switched off.
QStringList CheckTestManners(const SourceFile& file);
/// No file is longer than 1000 lines, tables excepted.
QStringList CheckLength(const SourceFile& file);
/// Nothing is marked as left undone.
QStringList CheckLeftUndone(const SourceFile& file);
/// Headers begin with #pragma once; no file but a benchmark imports a whole namespace.
QStringList CheckHeaders(const SourceFile& file);
/// Every function declared in a header, private members excepted, has a docstring: "///" above
/// it, behind it, or above the run of declarations it stands in. One-line inline functions,
/// overrides, constructors, destructors and operators need none.
QStringList CheckDocstrings(const SourceFile& file);

} // namespace quillane::house
