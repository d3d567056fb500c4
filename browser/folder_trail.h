#pragma once
#include <QStringList>

namespace quillane {

/// The folders visited in this session, to go back and forth in with Alt and the arrow keys.
class FolderTrail {
public:
    /// Notes a visited folder. Going to one by Back or Forward does not count as a new visit.
    void Visit(const QString& folder);
    bool CanGoBack() const { return mPosition > 0; }
    bool CanGoForward() const { return mPosition + 1 < mFolders.size(); }
    QString Back();    ///< the folder before this one; empty when there is none
    QString Forward(); ///< the folder behind this one; empty when there is none

private:
    QStringList mFolders;
    qsizetype mPosition = -1;
};

} // namespace quillane
