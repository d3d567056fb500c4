#pragma once
// The system's calls by which a save changes the disk. Each asks the probe first and returns 0 or
// the system's error number.
#include "core/atomic_save.h"
#include <QByteArray>
#include <sys/types.h>

namespace quillane {

class SaveCalls {
public:
    /// probe must outlive this; it may be empty.
    explicit SaveCalls(const SaveProbe& probe) : mProbe(probe) { }

    /// A file without a name in folder, for reading and writing; not open when there is none.
    FileHandle OpenUnnamed(const QByteArray& folder, mode_t mode) const;
    /// A new file, for reading and writing.
    int OpenNamed(const QByteArray& path, mode_t mode, FileHandle& file) const;
    /// All bytes at the file's position.
    int Write(int fd, QByteArrayView bytes) const;
    /// The whole content of one file over that of another, from the beginning; sizes become equal.
    int CopyContent(int from, int to) const;
    /// Waits until content and size are on the disk.
    int Sync(int fd) const;
    /// Waits until a folder's names are on the disk, where the file system can.
    void SyncFolder(const QByteArray& folder) const;
    /// Gives an open file a name that must be free.
    int LinkOpen(int fd, const QByteArray& path) const;
    /// Gives a file a second name that must be free.
    int Link(const QByteArray& from, const QByteArray& to) const;
    /// Replaces what stands at `to`.
    int Rename(const QByteArray& from, const QByteArray& to) const;
    /// EEXIST when something stands at `to`.
    int RenameToFree(const QByteArray& from, const QByteArray& to) const;
    /// The size of a file, cut or filled with zeros.
    int Resize(int fd, qint64 size) const;
    /// Room for a file of that size, which stays as it is; 0 also where there is no such call.
    int Reserve(int fd, qint64 size) const;
    /// 0 also when the file is not there.
    int Remove(const QByteArray& path) const;
    /// Asks the probe alone.
    int Ask(SaveStep step) const;

private:
    const SaveProbe& mProbe;
};

/// The probe of the innermost SaveProbeScope of this thread; an empty one where there is none.
const SaveProbe& ScopeProbe();
/// The path by which this process reads an open file; empty where there is no /proc.
QByteArray PathOfOpenFile(int fd);
/// Reads until `size` bytes are there or the file ends; the count, or minus an error number.
qint64 ReadAt(int fd, char* bytes, qint64 size, qint64 at);
/// Folder of a path with its separator; "./" for a bare name.
QByteArray FolderOfBytes(const QByteArray& path);
/// A name for a temporary file in that folder (with separator) that nobody has had.
QByteArray FreshSaveName(const QByteArray& folder);
/// Whether a path's leaf is one of FreshSaveName.
bool IsSaveName(const QByteArray& path);

} // namespace quillane
