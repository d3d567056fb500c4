#include "core/native_path.h"
#include "core/posix_error.h"
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace quillane {

void RenamePath(const QString& from, const QString& to)
{
    const QByteArray source = BytesFromPath(from);
    const QByteArray target = BytesFromPath(to);
    if (source.isEmpty() || target.isEmpty() || source.contains('\0') || target.contains('\0'))
        throw FailureFromErrno(ENOENT, QStringLiteral("rename"), from);
    int error = 0;
    if (renameat2(AT_FDCWD, source.constData(), AT_FDCWD, target.constData(), RENAME_NOREPLACE)
        != 0)
        error = errno;
    if (error == EINVAL || error == ENOSYS) {
        // A volume that cannot be asked so: look first.
        if (faccessat(AT_FDCWD, target.constData(), F_OK, AT_SYMLINK_NOFOLLOW) == 0)
            error = EEXIST;
        else
            error = rename(source.constData(), target.constData()) == 0 ? 0 : errno;
    }
    if (error == EEXIST) {
        throw Failure(
            kFailureIo,
            QStringLiteral("There is a file or folder named %1 already.").arg(ShownName(to)));
    }
    if (error != 0)
        throw FailureFromErrno(error, QStringLiteral("rename"), from);
}

} // namespace quillane
