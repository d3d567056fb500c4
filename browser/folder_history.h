#pragma once
#include "core/settings_store.h"
#include <QStringList>

namespace quillane {

inline constexpr int kStoredHistoryEntries = 10;

/// The folders of cboDirPath in their order.
class FolderHistory {
public:
    const QStringList& Entries() const { return mEntries; }

    /// Records a folder: nothing when an entry equals it to the letter, else it goes to
    /// `selected` (the combo's list index), or to the top when that is -1. Returns the position
    /// it was inserted at, or -1.
    int Record(const QString& folder, int selected);
    /// Empties every entry's text and removes none: the blank rows stay until the next start.
    void Clear();

    /// Reads the ten stored entries, empty ones skipped.
    void Load(const SettingsStore& store);
    /// Writes ten entries; what the list lacks is written empty and so erases an older one.
    void Save(SettingsStore& store) const;

private:
    QStringList mEntries;
};

} // namespace quillane
