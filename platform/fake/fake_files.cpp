#include "platform/fake/fake_files.h"

#include "core/failure.h"
#include "core/paths.h"

namespace quillane {

namespace {

void FailFileWhen(bool fails, const char* why)
{
    if (fails) {
        throw Failure(kFailureIo, QString::fromLatin1(why));
    }
}

} // namespace

void FakeFiles::Note(const QString& call)
{
    calls.append(call);
    if (before) {
        before();
    }
}

FileId FakeFiles::CopyQuietly(const QString& from, const QString& to, const FileIds& keep)
{
    FailFileWhen(!files.contains(from), "It is not there.");
    FailFileWhen(failCopy.contains(from), "The disk is full.");
    FailFileWhen(from == to, "It is the same file.");
    FailFileWhen(mNumbers.contains(to) && keep.contains({1, mNumbers.value(to)}),
                 "It has the same name as another of these files.");
    files.insert(to, files.value(from));
    mNumbers.insert(to, ++mLast);
    return {1, mLast};
}

FileId FakeFiles::Copy(const QString& from, const QString& to, const FileIds& keep)
{
    Note(QStringLiteral("copy %1 %2").arg(from, to));
    return CopyQuietly(from, to, keep);
}

MoveResult FakeFiles::Move(const QString& from, const QString& to, const FileIds& keep)
{
    Note(QStringLiteral("move %1 %2").arg(from, to));
    const FileId made = CopyQuietly(from, to, keep);
    if (failDelete.contains(from)) {
        return {made, QStringLiteral("It is write-protected.")};
    }
    files.remove(from);
    return {made, {}};
}

void FakeFiles::Delete(const QString& path)
{
    Note(QStringLiteral("delete %1").arg(path));
    FailFileWhen(failDelete.contains(path), "It is write-protected.");
    FailFileWhen(files.remove(path) == 0, "It is not there.");
}

TrashedFile FakeFiles::Trash(const QString& path)
{
    Note(QStringLiteral("trash %1").arg(path));
    FailFileWhen(failTrash.contains(path), "There is no trash.");
    FailFileWhen(!files.contains(path), "It is not there.");
    const QString trashed = QStringLiteral("/trash/%1-%2").arg(++mLast).arg(LeafName(path));
    files.insert(trashed, files.take(path));
    return {path, trashed, trashed + QStringLiteral(".trashinfo")};
}

void FakeFiles::BringBack(const TrashedFile& file)
{
    Note(QStringLiteral("bring back %1").arg(file.original));
    FailFileWhen(files.contains(file.original), "There is another file.");
    FailFileWhen(!files.contains(file.trashed), "It is no longer in the trash.");
    files.insert(file.original, files.take(file.trashed));
}

bool FakeFiles::WouldReplace(const QString& from, const QString& to)
{
    return from != to && files.contains(to);
}

void FakeFiles::Rename(const QString& from, const QString& to, bool replace)
{
    Note(QStringLiteral("rename %1 %2").arg(from, to));
    FailFileWhen(failRename.contains(from), "You have no permission.");
    FailFileWhen(!files.contains(from), "It is not there.");
    FailFileWhen(!replace && WouldReplace(from, to), "There is a file of that name already.");
    files.insert(to, files.take(from));
}

} // namespace quillane
