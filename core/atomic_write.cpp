// WriteWholeFile: new content appears at once and whole, or not at all.
#include "core/failure.h"
#include "core/native_path.h"
#include "core/posix_error.h"
#include <QRandomGenerator>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillane {

namespace {

constexpr int kMostLinks = 40; // as many as the system itself follows
constexpr int kNameTries = 16;

QByteArray AtomicFolderOf(const QByteArray& path)
{
    const qsizetype slash = path.lastIndexOf('/');
    return slash < 0 ? QByteArray("./") : path.first(slash + 1);
}

// Where a chain of symbolic links ends; the file itself need not be there.
QByteArray LinkTarget(QByteArray path, const QString& shown)
{
    for (int links = 0; links < kMostLinks; ++links) {
        char target[4096];
        const ssize_t length = readlink(path.constData(), target, sizeof target);
        if (length < 0)
            return path;
        const QByteArray next(target, length);
        path = next.startsWith('/') ? next : AtomicFolderOf(path) + next;
    }
    throw FailureFromErrno(ELOOP, QStringLiteral("write"), shown);
}

class AtomicWriter {
public:
    AtomicWriter(const QString& path, const WriteOptions& options)
        : mShown(path),
          mOptions(options),
          mTarget(LinkTarget(BytesFromPath(path), path)),
          mFolder(AtomicFolderOf(mTarget))
    {
        mExists = stat(mTarget.constData(), &mOld) == 0;
        if (mExists && S_ISDIR(mOld.st_mode))
            throw FailureFromErrno(EISDIR, QStringLiteral("write"), mShown);
        if (mExists && !S_ISREG(mOld.st_mode)) {
            throw Failure(kFailureIo,
                          QStringLiteral("%1 is no ordinary file and is not replaced.")
                              .arg(ShownName(mShown)));
        }
        if (mExists && faccessat(AT_FDCWD, mTarget.constData(), W_OK, AT_EACCESS) != 0)
            Fail(errno);
    }
    ~AtomicWriter()
    {
        if (!mName.isEmpty())
            unlink(mName.constData());
    }
    AtomicWriter(const AtomicWriter&) = delete;
    AtomicWriter& operator=(const AtomicWriter&) = delete;

    void Write(const QByteArray& content)
    {
        if (!OpenUnnamed())
            OpenNamed();
        Fill(content);
        if (mName.isEmpty() && !GiveName()) {
            OpenNamed();
            Fill(content);
        }
        if (rename(mName.constData(), mTarget.constData()) != 0)
            Fail(errno);
        mName.clear();
        if (mOptions.sync)
            SyncFolder();
    }

private:
    [[noreturn]] void Fail(int error) const
    {
        throw FailureFromErrno(error, QStringLiteral("write"), mShown);
    }

    // A file that replaces another stays private until it has the other's permissions.
    mode_t FirstMode() const { return mExists ? 0600 : mode_t(mOptions.newFileMode); }

    bool OpenUnnamed()
    {
        mFile =
            FileHandle(open(mFolder.constData(), O_TMPFILE | O_WRONLY | O_CLOEXEC, FirstMode()));
        return mFile.IsOpen();
    }

    QByteArray FreshName() const
    {
        const quint64 random = QRandomGenerator::system()->generate64();
        return mFolder + ".quillane-" + QByteArray::number(random, 16) + ".tmp";
    }

    void OpenNamed()
    {
        for (int tries = 0; tries < kNameTries; ++tries) {
            const QByteArray name = FreshName();
            mFile = FileHandle(
                open(name.constData(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, FirstMode()));
            if (mFile.IsOpen()) {
                mName = name;
                return;
            }
            if (errno != EEXIST)
                break;
        }
        Fail(errno);
    }

    // False where the system cannot do it (no /proc).
    bool GiveName()
    {
        char self[64];
        std::snprintf(self, sizeof self, "/proc/self/fd/%d", mFile.Fd());
        for (int tries = 0; tries < kNameTries; ++tries) {
            const QByteArray name = FreshName();
            if (linkat(AT_FDCWD, self, AT_FDCWD, name.constData(), AT_SYMLINK_FOLLOW) == 0) {
                mName = name;
                return true;
            }
            if (errno != EEXIST)
                return false;
        }
        return false;
    }

    void Fill(const QByteArray& content)
    {
        for (qsizetype at = 0; at < content.size();) {
            const ssize_t count =
                write(mFile.Fd(), content.constData() + at, size_t(content.size() - at));
            if (count < 0 && errno == EINTR)
                continue;
            if (count < 0)
                Fail(errno);
            at += count;
        }
        if (mExists) {
            // Only the owner may give a file away; where that is refused, a set-id bit must
            // not pass to another owner.
            const bool owned = fchown(mFile.Fd(), mOld.st_uid, mOld.st_gid) == 0;
            if (fchmod(mFile.Fd(), mOld.st_mode & (owned ? 07777u : 01777u)) != 0)
                Fail(errno);
        }
        if (mOptions.sync && fsync(mFile.Fd()) != 0)
            Fail(errno);
    }

    void SyncFolder() const
    {
        const FileHandle folder(open(mFolder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        if (folder.IsOpen())
            fsync(folder.Fd()); // the content is safe; not every file system syncs folders
    }

    QString mShown;
    WriteOptions mOptions;
    QByteArray mTarget, mFolder;
    bool mExists = false;
    struct stat mOld { };
    FileHandle mFile;
    QByteArray mName; // of the temporary file while it has one
};

} // namespace

void WriteWholeFile(const QString& path, const QByteArray& content, const WriteOptions& options)
{
    const QByteArray bytes = BytesFromPath(path);
    if (bytes.isEmpty() || bytes.contains('\0'))
        throw FailureFromErrno(ENOENT, QStringLiteral("write"), path);
    AtomicWriter(path, options).Write(content);
}

} // namespace quillane
