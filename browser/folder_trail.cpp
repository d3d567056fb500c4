#include "browser/folder_trail.h"

namespace quillane {

void FolderTrail::Visit(const QString& folder)
{
    if (mPosition >= 0 && mFolders.at(mPosition) == folder) {
        return;
    }
    mFolders = mFolders.mid(0, mPosition + 1);
    mFolders.append(folder);
    mPosition = mFolders.size() - 1;
}

QString FolderTrail::Back()
{
    return CanGoBack() ? mFolders.at(--mPosition) : QString();
}

QString FolderTrail::Forward()
{
    return CanGoForward() ? mFolders.at(++mPosition) : QString();
}

} // namespace quillane
