#pragma once
#include "platform/file_service.h"
#include <QByteArray>
#include <QMap>
#include <QSet>
#include <QStringList>
#include <functional>

namespace quillane {

/// Files in memory, with failures where a test wants them.
class FakeFiles : public FileService {
public:
    QMap<QString, QByteArray> files; ///< path and content
    QSet<QString> failCopy;          ///< sources that cannot be copied
    QSet<QString> failDelete, failTrash, failRename;
    QStringList calls;            ///< "copy /a /b" and the like, in order
    std::function<void()> before; ///< runs before each call

    FileId Copy(const QString& from, const QString& to, const FileIds& keep = {}) override;
    MoveResult Move(const QString& from, const QString& to, const FileIds& keep = {}) override;
    void Delete(const QString& path) override;
    TrashedFile Trash(const QString& path) override;
    void BringBack(const TrashedFile& file) override;
    bool WouldReplace(const QString& from, const QString& to) override;
    void Rename(const QString& from, const QString& to, bool replace) override;

private:
    void Note(const QString& call);
    FileId CopyQuietly(const QString& from, const QString& to, const FileIds& keep);

    QMap<QString, quint64> mNumbers; ///< what stands for inodes
    quint64 mLast = 0;
};

} // namespace quillane
