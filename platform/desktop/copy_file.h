#pragma once
#include "platform/file_service.h"

namespace quillane {

struct CopyWish {
    bool sync =
        false;    ///< the copy is on the disk when this returns; replacing something implies it
    FileIds keep; ///< files that must not be replaced
};
/// Copies a regular file to a temporary one beside the target, which then takes the target's
/// place. As FileService::Copy.
FileId CopyFileTo(const QString& from, const QString& to, const CopyWish& wish);
/// Refuses in words a target that FileService::Copy refuses. True when something stands there that
/// is to be replaced.
bool CheckCopyTarget(const FileId& source, const QString& from, const QString& to,
                     const FileIds& keep);

} // namespace quillane
