#include "browser/enabling.h"

#include "core/file_kinds.h"

namespace quillane {

bool FileEntriesEnabled(const Session& session)
{
    return !session.lbFilTiffs.isEmpty();
}

PopupRules UpdatePopupMenu(const Session& session)
{
    const QString& file = session.gsFileName;
    return {IsAlbumFile(file) != kTrue && IsPrintSetFile(file) != kTrue, IsImageFile(file) == kTrue,
            !session.lbExportList.isEmpty()};
}

} // namespace quillane
