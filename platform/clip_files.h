#pragma once
// The files that another program has put on the clipboard.
#include <QDateTime>
#include <QMimeData>
#include <QString>
#include <vector>

namespace quillane {

/// One file of such a list.
class cFileInfo {
public:
    const QString& Name() const { return mName; } ///< full path
    /// Sets the path and reads the other three at this moment. Of a file that cannot be looked at
    /// they stay as they are.
    void SetName(const QString& name);
    qint64 Size() const { return mSize; }                   ///< bytes
    const QDateTime& Modified() const { return mModified; } ///< local time
    const QString& Extension() const { return mExtension; } ///< behind the last "."; or empty

private:
    QString mName;
    qint64 mSize = 0;
    QDateTime mModified;
    QString mExtension;
};

/// A collection of files, walked in the order of the list.
class cClipFiles {
public:
    /// Clears the collection and fills it from the system's clipboard. True when there is a file
    /// list, even one of no files.
    bool GetClipboardFiles();
    /// The same from data that was dropped, or that a test holds.
    bool GetFiles(const QMimeData& data);
    void Clear(); ///< no files
    int Count() const { return int(mFiles.size()); }
    /// Whether whoever made the list wants the files moved rather than copied.
    bool IsCut() const { return mIsCut; }

    using Walk = std::vector<cFileInfo>::const_iterator;
    Walk begin() const { return mFiles.begin(); } ///< with `end`, a walk in order
    Walk end() const { return mFiles.end(); }     ///< behind the last

private:
    std::vector<cFileInfo> mFiles;
    bool mIsCut = false;
};

} // namespace quillane
