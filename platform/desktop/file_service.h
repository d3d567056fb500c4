#pragma once
#include "platform/file_service.h"

namespace quillane {

/// The real one. The trash is laid out as the desktops share it: "files" and "info" side by side.
class DesktopFileService : public FileService {
public:
    /// homeTrash: the trash folder of files on the volume of the home folder, without a separator
    /// at its end; empty: the usual one, below the user's data folder.
    explicit DesktopFileService(QString homeTrash = {});

    FileId Copy(const QString& from, const QString& to, const FileIds& keep = {}) override;
    MoveResult Move(const QString& from, const QString& to, const FileIds& keep = {}) override;
    void Delete(const QString& path) override;
    TrashedFile Trash(const QString& path) override;
    void BringBack(const TrashedFile& file) override;
    bool WouldReplace(const QString& from, const QString& to) override;
    void Rename(const QString& from, const QString& to, bool replace) override;

private:
    QString mHomeTrash;
};

} // namespace quillane
