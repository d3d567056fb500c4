#pragma once
#include <QStringList>

namespace quillane {

/// Orders names without regard to case, by UTF-16 units of their case-folded forms; names that
/// differ in case alone are ordered by their units. Folds each name once.
void SortNamesIgnoringCase(QStringList& names);

} // namespace quillane
