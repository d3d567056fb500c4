#include "browser/folder_history.h"

#include <algorithm>

namespace quillane {

namespace {

const QString kHistorySection = QStringLiteral("MainComboDirEntries");

QString HistoryKey(int index)
{
    return QStringLiteral("cboDirPath.Text%1").arg(index);
}

} // namespace

int FolderHistory::Record(const QString& folder, int selected)
{
    if (mEntries.contains(folder)) {
        return -1;
    }
    const int position = std::clamp(selected, 0, int(mEntries.size()));
    mEntries.insert(position, folder);
    return position;
}

void FolderHistory::Clear()
{
    for (QString& entry : mEntries) {
        entry.clear();
    }
}

void FolderHistory::Load(const SettingsStore& store)
{
    mEntries.clear();
    for (int i = 0; i < kStoredHistoryEntries; ++i) {
        const QString text = store.GetSetting(kHistorySection, HistoryKey(i));
        if (!text.isEmpty()) {
            mEntries.append(text);
        }
    }
}

void FolderHistory::Save(SettingsStore& store) const
{
    for (int i = 0; i < kStoredHistoryEntries; ++i) {
        store.SaveSetting(kHistorySection, HistoryKey(i), mEntries.value(i));
    }
}

} // namespace quillane
