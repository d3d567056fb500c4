#include "core/file_attributes.h"
#include <cerrno>
#include <sys/xattr.h>
#include <unistd.h>

namespace quillane {

namespace {

constexpr char kAccessList[] = "system.posix_acl_access";

// Sums over a file's content and what belongs to a program's: not for another content.
bool IsBoundToContent(const QByteArray& name)
{
    return name == "security.ima" || name == "security.evm" || name == "security.capability";
}

// What the user or his tools have set; the rest is the system's to give.
bool IsOfTheUser(const QByteArray& name)
{
    return name.startsWith("user.") || name == kAccessList;
}

// The list of names, or a value: asked for its size, then read; it may grow in between.
template <typename Read> int ReadAttribute(const Read& read, QByteArray& bytes)
{
    for (;;) {
        const ssize_t size = read(nullptr, 0);
        if (size <= 0) {
            bytes.clear();
            return size == 0 ? 0 : errno;
        }
        bytes.resize(size);
        const ssize_t count = read(bytes.data(), size_t(bytes.size()));
        if (count >= 0) {
            bytes.truncate(count);
            return 0;
        }
        if (errno != ERANGE)
            return errno;
    }
}

int KeepExtendedAttributes(const QByteArray& from, int to)
{
    QByteArray names;
    const int listed = ReadAttribute(
        [&](char* bytes, size_t size) { return listxattr(from.constData(), bytes, size); }, names);
    if (listed != 0)
        return listed == ENOTSUP || listed == ENOSYS ? 0 : listed;

    bool hasAccessList = false;
    const QList<QByteArray> all = names.split('\0');
    for (const QByteArray& name : all) {
        if (name.isEmpty() || IsBoundToContent(name))
            continue;
        QByteArray value;
        int error = ReadAttribute(
            [&](char* bytes, size_t size) {
                return getxattr(from.constData(), name.constData(), bytes, size);
            },
            value);
        if (error == 0
            && fsetxattr(to, name.constData(), value.constData(), size_t(value.size()), 0) != 0)
            error = errno;
        if (error == 0)
            hasAccessList = hasAccessList || name == kAccessList;
        else if (error != ENODATA && IsOfTheUser(name))
            return error;
    }
    // A new file may have got one from its folder.
    if (!hasAccessList)
        fremovexattr(to, kAccessList);
    return 0;
}

} // namespace

int KeepAttributes(const SaveCalls& calls, const QByteArray& from, const struct stat& old, int to)
{
    if (const int error = calls.Ask(SaveStep::Attributes))
        return error;
    struct stat now { };
    if (fstat(to, &now) != 0)
        return errno;
    // Only the superuser may give a file away; a group one belongs to may be set.
    const bool owned = now.st_uid == old.st_uid || fchown(to, old.st_uid, gid_t(-1)) == 0;
    const bool grouped = now.st_gid == old.st_gid || fchown(to, uid_t(-1), old.st_gid) == 0;
    if (const int error = KeepExtendedAttributes(from, to))
        return error;

    mode_t mode = old.st_mode & 07777;
    if (!owned || !grouped)
        mode &= 01777;
    if (!grouped)
        mode &= ~mode_t(070) | ((mode & 07) << 3);
    if (fstat(to, &now) != 0)
        return errno;
    if ((now.st_mode & 07777) == mode || fchmod(to, mode) == 0)
        return 0;
    // A file system without permissions; a file must not become more open by a save.
    return (now.st_mode & ~mode & 0777) == 0 ? 0 : errno;
}

} // namespace quillane
