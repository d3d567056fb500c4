#include "core/paths.h"

namespace quillane {

namespace {

// Length of what may not be taken off a path: "/" alone, or "C:\" with its colon.
qsizetype RootLength(const QString& path)
{
    if (path.startsWith(u'/'))
        return 1;
    return path.size() >= 3 && path[1] == u':' && path[2] == u'\\' ? 3 : 0;
}

} // namespace

QChar SeparatorOf(QStringView path)
{
    return path.startsWith(u'/') ? u'/' : u'\\';
}

QChar NativeSeparator()
{
#ifdef Q_OS_WIN
    return u'\\';
#else
    return u'/';
#endif
}

QString LeafName(const QString& path)
{
    return path.sliced(path.lastIndexOf(SeparatorOf(path)) + 1);
}

QString JoinAsIs(const QString& folder, const QString& name)
{
    return folder + name;
}

QString WithSeparator(const QString& path)
{
    if (path.isEmpty())
        return path;
    const QString bare = WithoutSeparator(path);
    const QChar separator = SeparatorOf(path);
    return bare.endsWith(separator) ? bare : bare + separator;
}

QString WithoutSeparator(const QString& path)
{
    const QChar separator = SeparatorOf(path);
    const qsizetype root = RootLength(path);
    qsizetype length = path.size();
    while (length > root && path[length - 1] == separator)
        --length;
    return path.first(length);
}

QString FolderOf(const QString& path)
{
    return path.first(path.lastIndexOf(SeparatorOf(path)) + 1);
}

bool IsDriveRoot(const QString& path)
{
    if (path.startsWith(u'/'))
        return path.size() == 1;
    return path.size() < 4;
}

} // namespace quillane
