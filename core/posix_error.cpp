#include "core/posix_error.h"
#include "core/paths.h"
#include <cerrno>

namespace quillane {

namespace {

constexpr qsizetype kLongestShownName = 80;

qint32 NumberOfErrno(int error)
{
    switch (error) {
    case ENOENT:
    case ENOTDIR:
    case ENAMETOOLONG:
        return kFailureNoFile;
    case EACCES:
    case EPERM:
    case EROFS:
        return kFailureDenied;
    default:
        return kFailureIo;
    }
}

QString ReasonOfErrno(int error)
{
    switch (error) {
    case ENOENT:
        return QStringLiteral("it is not there");
    case ENOTDIR:
        return QStringLiteral("a part of its path is no folder");
    case ENAMETOOLONG:
        return QStringLiteral("its path is too long");
    case EACCES:
    case EPERM:
        return QStringLiteral("you have no permission");
    case EROFS:
        return QStringLiteral("the disk is read-only");
    case ENOSPC:
    case EDQUOT:
        return QStringLiteral("the disk is full");
    case EFBIG:
        return QStringLiteral("the disk takes no file of that size");
    case ELOOP:
        return QStringLiteral("its links lead in a circle");
    case EMFILE:
    case ENFILE:
        return QStringLiteral("too many files are open");
    default:
        return QStringLiteral("the system reports an error of reading or writing (%1)").arg(error);
    }
}

} // namespace

QString WriteAdvice(int error)
{
    switch (error) {
    case ENOENT:
    case ENOTDIR:
        return QStringLiteral("Save it in a folder that is there.");
    case ENAMETOOLONG:
        return QStringLiteral("Choose a shorter name.");
    case EACCES:
    case EPERM:
        return QStringLiteral("Save it in another folder, or change the permissions.");
    case ENOSPC:
    case EDQUOT:
        return QStringLiteral("Make room there, or save it in another place.");
    case ELOOP:
        return QStringLiteral("Choose another name.");
    case EMFILE:
    case ENFILE:
        return QStringLiteral("Close what you do not need and try again.");
    default:
        return QStringLiteral("Save it in another place.");
    }
}

QString ShownName(const QString& path)
{
    QString name = LeafName(WithoutSeparator(path));
    if (name.isEmpty())
        name = path;
    if (name.size() > kLongestShownName)
        name = name.first(kLongestShownName - 1) + QChar(0x2026);
    for (qsizetype at = 0; at < name.size(); ++at) {
        const bool pair =
            name[at].isHighSurrogate() && at + 1 < name.size() && name[at + 1].isLowSurrogate();
        if (pair)
            ++at;
        else if (name[at].isSurrogate() || name[at].category() == QChar::Other_Control)
            name[at] = QChar::ReplacementCharacter;
    }
    return QStringLiteral("\"%1\"").arg(name);
}

Failure FailureFromErrno(int error, const QString& verb, const QString& path)
{
    return Failure(
        NumberOfErrno(error),
        QStringLiteral("Cannot %1 %2: %3.").arg(verb, ShownName(path), ReasonOfErrno(error)));
}

} // namespace quillane
