#pragma once
#include <QString>

namespace quillane {

/// Full path of an executable file of that name in PATH; empty when there is none.
QString FindProgram(const QString& name);

} // namespace quillane
