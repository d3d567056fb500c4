#include "platform/desktop/find_program.h"

#include "core/native_path.h"
#include "core/paths.h"

namespace quillane {

QString FindProgram(const QString& name)
{
    if (name.isEmpty()) {
        return {};
    }
    for (const QByteArray& folder : qgetenv("PATH").split(':')) {
        if (!folder.startsWith('/')) {
            continue; // a program is never taken from wherever this one happens to stand
        }
        const QString path = WithSeparator(PathFromBytes(folder)) + name;
        const FileStat stat = StatPath(path);
        if (stat.type == FileType::Regular && (stat.mode & 0111) != 0) {
            return path;
        }
    }
    return {};
}

} // namespace quillane
