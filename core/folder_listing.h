#pragma once
#include <QString>
#include <QStringList>
#include <QVector>
#include <functional>
#include <vector>

namespace quillane {

/// The hidden file list: names of a folder's files that match a mask. The folder is read once;
/// patterns then group the names.
class FolderListing {
public:
    /// Reads the folder (and those below it when `deep`, links in a circle visited once).
    /// A folder that cannot be read gives an empty list; IsReadable tells. Below it, folders that
    /// cannot be read and hidden ones are passed over. keepGoing, if there is one, is asked before
    /// each folder; its no ends the reading with what was found so far.
    void Read(const QString& folder, bool deep = false,
              const std::function<bool()>& keepGoing = {});
    bool IsReadable() const { return mReadable; }
    const QString& Folder() const { return mFolder; }

    /// Names matching any pattern of a mask ("*.JPG;*.PNG"), each once, ordered by name without
    /// regard to case; hidden files and everything that is no regular file left out. Files of
    /// sub-folders are not in it.
    QStringList Names(const QString& mask) const;
    /// Full paths matching one pattern, in the same order; files of sub-folders behind those
    /// of the folder, folder by folder. Paths are the folder as given joined to the name.
    QStringList Paths(const QString& pattern) const;

private:
    class Walk;
    struct OneFolder {
        QString path;                    ///< as names are joined to it
        QStringList names;               ///< ordered
        std::vector<quint64> extensions; ///< of the names, packed for comparing
    };
    QString mFolder;
    bool mReadable = false;
    QVector<OneFolder> mFolders;
};

/// The patterns of a mask in their order.
QStringList PatternsOf(const QString& mask);

} // namespace quillane
